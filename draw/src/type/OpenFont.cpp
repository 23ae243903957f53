#include "OpenFont.h"

#include "BakedFace.h"
#include "FreeTypeFace.h"
#include "WordShapes.h"

#include <hb-ot.h>

#include <algorithm>
#include <atomic>

namespace gui::draw
{

namespace
{

std::uint64_t newID()
{
    static std::atomic<std::uint64_t> s_last{0};
    return ++s_last;
}

std::span<const td::BYTE> bytesOf(hb_blob_t* pBlob)
{
    unsigned int n = 0;
    const char* const bytes = hb_blob_get_data(pBlob, &n);
    return {reinterpret_cast<const td::BYTE*>(bytes), n};
}

// The table of colours where it is of version 1 or newer.
Blob paintsOf(hb_face_t* pFace)
{
    Blob pTable(hb_face_reference_table(pFace, HB_TAG('C', 'O', 'L', 'R')));
    const std::span<const td::BYTE> bytes = bytesOf(pTable.get());
    return bytes.size() >= 2 && (bytes[0] != 0 || bytes[1] != 0) ? std::move(pTable) : nullptr;
}

} // namespace

std::shared_ptr<const OpenFont> OpenFont::open(Blob pBlob, unsigned int index, std::string& cause)
{
    const bool isBaked = BakedFace::isOne(bytesOf(pBlob.get()));
    if (isBaked)
    {
        const auto size = static_cast<unsigned int>(BakedFace::fontIn(bytesOf(pBlob.get()), cause).size());
        if (size == 0)
            return nullptr;
        pBlob.reset(hb_blob_create_sub_blob(pBlob.get(), BakedFace::cHeaderSize, size));
    }
    const unsigned int nFaces = hb_face_count(pBlob.get());
    const Face pFace(hb_face_create(pBlob.get(), index));
    if (nFaces == 0 || (index < nFaces && hb_face_get_glyph_count(pFace.get()) == 0))
        cause = "not a TrueType or OpenType font";
    else if (index >= nFaces)
        cause = "no face of index " + std::to_string(index);
    else
    {
        hb_face_make_immutable(pFace.get());
        return make(std::move(pBlob), hb_font_create(pFace.get()), index, isBaked, cause);
    }
    return nullptr;
}

std::shared_ptr<const OpenFont> OpenFont::make(Blob pBlob, hb_font_t* pFont, unsigned int index, bool isBaked,
                                               std::string& cause)
{
    std::unique_ptr<FreeTypeFace> pFreeType;
    if (!isBaked && FreeTypeFace::isThere())
    {
        pFreeType = FreeTypeFace::open(bytesOf(pBlob.get()), index, cause);
        if (pFreeType == nullptr)
        {
            hb_font_destroy(pFont);
            return nullptr;
        }
        unsigned int n = 0;
        if (const float* const coordinates = hb_font_get_var_coords_design(pFont, &n))
            pFreeType->setCoordinates({coordinates, n});
    }
    return std::shared_ptr<const OpenFont>(new OpenFont(std::move(pBlob), pFont, std::move(pFreeType), index, isBaked));
}

OpenFont::OpenFont(Blob pBlob, hb_font_t* pFont, std::unique_ptr<FreeTypeFace> pFreeType, unsigned int index,
                   bool isBaked)
    : _pBlob(std::move(pBlob))
    , _pFont(pFont)
    , _outlines(pFont)
    , _pFreeType(std::move(pFreeType))
    , _index(index)
    , _isBaked(isBaked)
    , _id(newID())
    , _pPaints(_pFreeType != nullptr ? paintsOf(getFace()) : nullptr)
    , _hasPictures(hb_ot_color_has_png(getFace()) != 0)
    , _hasLayers(hb_ot_color_has_layers(getFace()) != 0)
    , _pCharacters(hb_set_create())
    , _pWordShapes(std::make_unique<WordShapes>())
{
    hb_face_collect_unicodes(getFace(), _pCharacters.get());
    for (hb_codepoint_t c = HB_SET_VALUE_INVALID; hb_set_next(_pCharacters.get(), &c) != 0 && c < _hasFirst.size();)
        _hasFirst[c] = true;
    hb_font_make_immutable(_pFont);
    if (_pPaints != nullptr)
        _pFreeType->setPaints(bytesOf(_pPaints.get()));
    readMetrics();
    readCoordinates();
}

OpenFont::~OpenFont() { hb_font_destroy(_pFont); }

std::shared_ptr<const OpenFont> OpenFont::moved(hb_font_t* pFont) const
{
    std::string cause;
    return make(Blob(hb_blob_reference(_pBlob.get())), pFont, _index, isBaked(), cause);
}

std::shared_ptr<const OpenFont> OpenFont::withVariations(std::span<const hb_variation_t> variations) const
{
    // HarfBuzz sets the axes that aren't named back to their standard.
    std::vector<hb_variation_t> all;
    const std::span<const float> coordinates = getCoordinates();
    for (unsigned int i = 0; i < coordinates.size(); ++i)
    {
        hb_ot_var_axis_info_t info{};
        unsigned int n = 1;
        hb_ot_var_get_axis_infos(getFace(), i, &n, &info);
        hb_variation_t variation{info.tag, coordinates[i]};
        for (const hb_variation_t& wanted : variations)
            if (wanted.tag == info.tag)
                variation.value = std::clamp(wanted.value, info.min_value, std::max(info.min_value, info.max_value));
        all.push_back(variation);
    }
    hb_font_t* const pFont = hb_font_create(getFace());
    hb_font_set_variations(pFont, all.data(), static_cast<unsigned int>(all.size()));
    return moved(pFont);
}

std::shared_ptr<const OpenFont> OpenFont::withNamedInstance(unsigned int instance) const
{
    hb_font_t* const pFont = hb_font_create(getFace());
    hb_font_set_var_named_instance(pFont, instance);
    return moved(pFont);
}

void OpenFont::readCoordinates()
{
    unsigned int n = 0;
    const float* const moved = hb_font_get_var_coords_design(_pFont, &n);
    _coordinates.assign(moved, moved + n);
    // Before it is moved it has none.
    for (unsigned int i = n; i < hb_ot_var_get_axis_count(getFace()); ++i)
    {
        hb_ot_var_axis_info_t info{};
        unsigned int nInfos = 1;
        hb_ot_var_get_axis_infos(getFace(), i, &nInfos, &info);
        _coordinates.push_back(info.default_value);
    }
}

void OpenFont::readMetrics()
{
    const auto value = [this](hb_ot_metrics_tag_t tag, double instead)
    {
        hb_position_t position = 0;
        return hb_ot_metrics_get_position(_pFont, tag, &position) != 0 ? double(position) : instead;
    };
    // How high a letter is where the font doesn't tell.
    const auto height = [this](hb_codepoint_t letter, double instead)
    {
        hb_codepoint_t glyph = 0;
        hb_glyph_extents_t extents;
        return hb_font_get_nominal_glyph(_pFont, letter, &glyph) != 0 &&
                       hb_font_get_glyph_extents(_pFont, glyph, &extents) != 0
                   ? double(extents.y_bearing)
                   : instead;
    };
    const double em = hb_face_get_upem(getFace());
    hb_font_extents_t line;
    hb_font_get_extents_for_direction(_pFont, HB_DIRECTION_LTR, &line);
    _metrics.unitsPerEm = em;
    _metrics.ascent = line.ascender;
    _metrics.descent = -double(line.descender);
    _metrics.lineGap = std::max(line.line_gap, 0);
    _metrics.underlineThickness = value(HB_OT_METRICS_TAG_UNDERLINE_SIZE, 0);
    if (_metrics.underlineThickness <= 0)
        _metrics.underlineThickness = em / 20;
    // The font's places are the lines' upper edges.
    _metrics.underlinePosition = _metrics.underlineThickness / 2 - value(HB_OT_METRICS_TAG_UNDERLINE_OFFSET, -em / 10);
    _metrics.xHeight = value(HB_OT_METRICS_TAG_X_HEIGHT, 0);
    if (_metrics.xHeight <= 0)
        _metrics.xHeight = height('x', em / 2);
    _metrics.capHeight = value(HB_OT_METRICS_TAG_CAP_HEIGHT, 0);
    if (_metrics.capHeight <= 0)
        _metrics.capHeight = height('H', em * 0.7);
    _metrics.strikeoutPosition =
        value(HB_OT_METRICS_TAG_STRIKEOUT_OFFSET, 0) - value(HB_OT_METRICS_TAG_STRIKEOUT_SIZE, 0) / 2;
    if (_metrics.strikeoutPosition <= 0)
        _metrics.strikeoutPosition = _metrics.xHeight / 2;
}

std::string OpenFont::getName(unsigned int preferredID, unsigned int nameID) const
{
    for (const unsigned int id : {preferredID, nameID})
    {
        const unsigned int n = hb_ot_name_get_utf8(getFace(), id, hb_language_from_string("en", -1), nullptr, nullptr);
        if (n == 0)
            continue;
        std::string name(n + 1, '\0');
        unsigned int size = n + 1;
        hb_ot_name_get_utf8(getFace(), id, hb_language_from_string("en", -1), &size, name.data());
        name.resize(size);
        return name;
    }
    return {};
}

const char* OpenFont::getImage(std::uint32_t glyph, const GlyphRequest& request, GlyphImage& image) const
{
    if (glyph >= hb_face_get_glyph_count(getFace()))
        return "no such glyph";
    if (!(request.pixelsPerEm > 0 && request.pixelsPerEm <= GlyphOutlines::cMostPixels))
        return "no such size";
    if (!_outlines.isFinite(glyph))
        return "broken composite";
    const bool isColor = isColorGlyph(glyph);
    if (_pFreeType != nullptr)
        return _pFreeType->getImage(glyph, isColor, request, image);
    return isColor ? "in colour, which needs FreeType" : _outlines.getImage(glyph, request, image);
}

std::vector<OpenFont::Layer> OpenFont::getLayers(std::uint32_t glyph) const
{
    std::vector<Layer> layers;
    if (!_hasLayers)
        return layers;
    const unsigned int nColors = hb_ot_color_palette_get_colors(getFace(), 0, 0, nullptr, nullptr);
    std::vector<hb_color_t> colors(nColors);
    unsigned int n = nColors;
    hb_ot_color_palette_get_colors(getFace(), 0, 0, &n, colors.data());
    std::vector<hb_ot_color_layer_t> found(hb_ot_color_glyph_get_layers(getFace(), glyph, 0, nullptr, nullptr));
    n = static_cast<unsigned int>(found.size());
    hb_ot_color_glyph_get_layers(getFace(), glyph, 0, &n, found.data());
    for (const hb_ot_color_layer_t& layer : found)
    {
        const hb_color_t color = layer.color_index < colors.size() ? colors[layer.color_index] : hb_color_t(0);
        layers.push_back({layer.glyph,
                          td::Color(hb_color_get_red(color), hb_color_get_green(color), hb_color_get_blue(color),
                                    hb_color_get_alpha(color)),
                          layer.color_index >= colors.size()});
    }
    return layers;
}

std::optional<GlyphPaint> OpenFont::getPaint(std::uint32_t glyph) const
{
    return _pPaints != nullptr ? _pFreeType->getPaint(glyph) : std::nullopt;
}

bool OpenFont::isColorGlyph(std::uint32_t glyph) const
{
    if (getPaint(glyph))
        return true;
    if (_hasLayers && hb_ot_color_glyph_get_layers(getFace(), glyph, 0, nullptr, nullptr) > 0)
        return true;
    if (!_hasPictures)
        return false;
    const Blob pPicture(hb_ot_color_glyph_reference_png(_pFont, glyph));
    return hb_blob_get_length(pPicture.get()) > 0;
}

} // namespace gui::draw
