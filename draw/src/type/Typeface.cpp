#include <gui/draw/Typeface.h>

#include "NamedFaces.h"
#include "OpenFont.h"
#include "TypefaceImpl.h"

#include <gui/Res.h>
#include <td/Assert.h>
#include <vo/Log.h>

#include <hb-ot.h>

#include <algorithm>
#include <filesystem>
#include <utility>

namespace gui::draw
{

namespace
{

hb_variation_t toHarfBuzz(const FontVariation& variation) { return {variation.axis.value, float(variation.value)}; }

// The file's bytes, or those of a resource; null when there are none. Devices and pipes may never end.
Blob readFile(const char* fileName)
{
    td::String path(fileName);
    std::span<const td::BYTE> bytes;
    if (fileName[0] == ':' && !gui::Res::find(fileName, path, bytes))
        return nullptr;
    if (fileName[0] == ':' && path.length() == 0)
        return Blob(hb_blob_create(reinterpret_cast<const char*>(bytes.data()), static_cast<unsigned int>(bytes.size()),
                                   HB_MEMORY_MODE_READONLY, nullptr, nullptr));
    std::error_code error;
    if (!std::filesystem::is_regular_file(path.c_str(), error))
        return nullptr;
    return Blob(hb_blob_create_from_file_or_fail(path.c_str()));
}

} // namespace

Typeface::Typeface(std::shared_ptr<const TypefaceImpl> pImpl)
    : _pImpl(std::move(pImpl))
{
}

Typeface Typeface::fromFile(const char* fileName, unsigned int index)
{
    TD_ASSERT(fileName != nullptr, {});
    Blob pBlob = readFile(fileName);
    if (pBlob == nullptr)
    {
        vo::dbgLog("ERROR! Typeface::fromFile cannot open font file: %s", fileName);
        return {};
    }
    std::string cause;
    auto pFont = OpenFont::open(std::move(pBlob), index, cause);
    if (pFont == nullptr)
        vo::dbgLog("ERROR! Typeface::fromFile cannot use font file: %s (%s)", fileName, cause.c_str());
    return TypefaceImpl::make(std::move(pFont));
}

Typeface Typeface::fromMemory(std::span<const td::BYTE> bytes, unsigned int index)
{
    std::string cause = "too large";
    std::shared_ptr<const OpenFont> pFont;
    if (std::in_range<int>(bytes.size()))
        pFont = OpenFont::open(
            Blob(hb_blob_create(reinterpret_cast<const char*>(bytes.data()), static_cast<unsigned int>(bytes.size()),
                                HB_MEMORY_MODE_DUPLICATE, nullptr, nullptr)),
            index, cause);
    if (pFont == nullptr)
        vo::dbgLog("ERROR! Typeface::fromMemory cannot use font of %zu bytes (%s)", bytes.size(), cause.c_str());
    return TypefaceImpl::make(std::move(pFont));
}

Typeface Typeface::named(const std::string& family, const Look& look)
{
    Typeface face = NamedFaces::instance().find(family, look);
    if (!face)
        vo::dbgLog("ERROR! Typeface::named finds no font for: %s", family.c_str());
    return face;
}

void Typeface::provide(const std::string& family, std::vector<Typeface> faces)
{
    NamedFaces::instance().provide(family, std::move(faces));
}

Typeface Typeface::withVariations(std::span<const FontVariation> variations) const
{
    if (!_pImpl || _pImpl->font().getCoordinates().empty())
        return *this;
    std::vector<hb_variation_t> values(variations.size());
    std::ranges::transform(variations, values.begin(), toHarfBuzz);
    auto pFont = _pImpl->font().withVariations(values);
    if (pFont == nullptr)
        return {};
    return Typeface(
        std::make_shared<const TypefaceImpl>(std::move(pFont), _pImpl->getFallbacks(), _pImpl->asksSystem()));
}

Typeface Typeface::withFallbacks(std::vector<Typeface> faces, bool asksSystem) const
{
    if (!_pImpl)
        return {};
    return Typeface(std::make_shared<const TypefaceImpl>(_pImpl->getOpenFont(), std::move(faces), asksSystem));
}

std::uint64_t Typeface::getID() const { return _pImpl ? _pImpl->font().getID() : 0; }

std::string Typeface::getFamily() const
{
    return _pImpl ? _pImpl->font().getName(HB_OT_NAME_ID_TYPOGRAPHIC_FAMILY, HB_OT_NAME_ID_FONT_FAMILY) : "";
}

std::string Typeface::getStyleName() const
{
    return _pImpl ? _pImpl->font().getName(HB_OT_NAME_ID_TYPOGRAPHIC_SUBFAMILY, HB_OT_NAME_ID_FONT_SUBFAMILY) : "";
}

const Typeface::Metrics& Typeface::getMetrics() const
{
    static const Metrics s_none;
    return _pImpl ? _pImpl->font().getMetrics() : s_none;
}

std::uint32_t Typeface::getNumberOfGlyphs() const
{
    return _pImpl ? hb_face_get_glyph_count(_pImpl->font().getFace()) : 0;
}

std::vector<Typeface::Axis> Typeface::getAxes() const
{
    std::vector<Axis> axes;
    if (!_pImpl)
        return axes;
    hb_face_t* const pFace = _pImpl->font().getFace();
    std::vector<hb_ot_var_axis_info_t> infos(hb_ot_var_get_axis_count(pFace));
    auto n = static_cast<unsigned int>(infos.size());
    hb_ot_var_get_axis_infos(pFace, 0, &n, infos.data());
    for (const hb_ot_var_axis_info_t& info : infos)
        axes.push_back({.tag = FontTag::of(info.tag),
                        .name = _pImpl->font().getName(info.name_id, info.name_id),
                        .minimum = double(info.min_value),
                        .standard = double(info.default_value),
                        .maximum = double(info.max_value),
                        .isHidden = (info.flags & HB_OT_VAR_AXIS_FLAG_HIDDEN) != 0});
    return axes;
}

std::vector<FontVariation> Typeface::getVariations() const
{
    std::vector<FontVariation> variations;
    if (_pImpl)
    {
        const std::span<const float> coordinates = _pImpl->font().getCoordinates();
        const std::vector<Axis> axes = getAxes();
        for (std::size_t i = 0; i < std::min(axes.size(), coordinates.size()); ++i)
            variations.push_back({axes[i].tag, double(coordinates[i])});
    }
    return variations;
}

std::vector<FontTag> Typeface::getFeatures() const
{
    std::vector<FontTag> features;
    if (!_pImpl)
        return features;
    for (const hb_tag_t table : {HB_OT_TAG_GSUB, HB_OT_TAG_GPOS})
    {
        hb_face_t* const pFace = _pImpl->font().getFace();
        unsigned int n = hb_ot_layout_table_get_feature_tags(pFace, table, 0, nullptr, nullptr);
        std::vector<hb_tag_t> tags(n);
        hb_ot_layout_table_get_feature_tags(pFace, table, 0, &n, tags.data());
        std::ranges::transform(tags, std::back_inserter(features), FontTag::of);
    }
    std::ranges::sort(features, {}, &FontTag::value);
    features.erase(std::unique(features.begin(), features.end()), features.end());
    return features;
}

std::uint32_t Typeface::getGlyph(char32_t character) const
{
    hb_codepoint_t glyph = 0;
    if (_pImpl)
        hb_font_get_nominal_glyph(_pImpl->font().getFont(), character, &glyph);
    return glyph;
}

Typeface Typeface::forCharacter(char32_t character, std::string_view language) const
{
    if (!_pImpl || _pImpl->has(character))
        return *this;
    const Typeface* const pFace = _pImpl->fallbackFor(character, TypefaceImpl::Presentation::Text, language);
    return pFace != nullptr ? *pFace : Typeface();
}

double Typeface::getAdvance(std::uint32_t glyph) const
{
    return _pImpl ? double(hb_font_get_glyph_h_advance(_pImpl->font().getFont(), glyph)) : 0;
}

std::optional<Typeface::Rect> Typeface::getBounds(std::uint32_t glyph) const
{
    hb_glyph_extents_t extents;
    if (!_pImpl || !_pImpl->font().getOutlines().isFinite(glyph) ||
        hb_font_get_glyph_extents(_pImpl->font().getFont(), glyph, &extents) == 0 || extents.width == 0 ||
        extents.height == 0)
        return std::nullopt;
    return Rect(extents.x_bearing, -double(extents.y_bearing), double(extents.x_bearing) + extents.width,
                -double(extents.y_bearing) - extents.height);
}

Path Typeface::getOutline(std::uint32_t glyph) const
{
    return _pImpl ? _pImpl->font().getOutlines().get(glyph) : Path();
}

bool Typeface::isColorGlyph(std::uint32_t glyph) const { return _pImpl && _pImpl->font().isColorGlyph(glyph); }

std::optional<GlyphImage> Typeface::getImage(std::uint32_t glyph, const GlyphRequest& request) const
{
    if (!_pImpl)
        return std::nullopt;
    GlyphImage image;
    const char* const cause = _pImpl->font().getImage(glyph, request, image);
    if (cause == nullptr)
        return image;
    vo::dbgLog("ERROR! Typeface::getImage cannot draw glyph %u of %s at %g pixels (%s)", glyph, getFamily().c_str(),
               request.pixelsPerEm, cause);
    return std::nullopt;
}

} // namespace gui::draw
