#include "GlyphStore.h"

#include "../type/TypefaceImpl.h"

namespace gui::draw
{

namespace
{

/// How far lines may be from an outline's curves, in em: a fiftieth of a pixel where letters are 400 pixels high.
constexpr double cTolerance = 1.0 / 20000;

/// The widest lines that are drawn into pictures, in pixels.
constexpr double cWidest = 16;

/// Of pictures in colour, in pixels per em; and the widest and highest, in pixels.
constexpr double cLargestColored = 128;
constexpr unsigned int cMostColored = 240;

/// A picture's transparency is the text's anyway.
std::uint32_t opaque(td::Color color) { return color.rgba() | 0xff000000U; }

} // namespace

const GlyphStore::Glyph& GlyphStore::get(const Typeface& face, std::uint32_t number, bool isStroked,
                                         ShapeBuilder& builder, ShapeTables& tables)
{
    const auto [found, isNew] = _glyphs.try_emplace({face.getID(), number, isStroked});
    Glyph& glyph = found->second;
    if (!isNew)
        return glyph;
    const double unit = 1 / face.getMetrics().unitsPerEm;
    Path path = face.getOutline(number);
    path.transform(Affine::scaling(unit));
    if (isStroked)
        builder.makeStroke(path, {.width = 1, .join = Join::Round}, cTolerance, _geometry, cStrokeStep);
    else
        builder.makeFill(path, FillRule::NonZero, cTolerance, _geometry);
    if (_geometry.nodes.empty())
        return glyph;
    glyph = {tables.addGlyph(_geometry), false};
    return glyph;
}

GlyphPicture GlyphStore::beginningOf(const Sized& sized) const
{
    if (sized.isColored)
        return {GlyphPicture::cIsColored | GlyphPicture::cIsWaited, 0};
    const auto [face, glyph, size, lineWidth, foreground] = sized.key;
    const bool isSmall = size * _scale <= cLargest && lineWidth * _scale <= cWidest;
    return {isSmall && _scale > 0 ? GlyphPicture::cIsWaited : 0, 0};
}

GlyphStore::Glyph GlyphStore::getSized(const Typeface& face, std::uint32_t number, double size, double lineWidth,
                                       ShapeBuilder& builder, ShapeTables& tables)
{
    const Key key{face.getID(), number, static_cast<float>(size), static_cast<float>(lineWidth), 0};
    if (const auto found = _numbers.find(key); found != _numbers.end())
        return {found->second, false};
    Glyph glyph = get(face, number, lineWidth > 0, builder, tables);
    if (glyph.isEmpty)
        return glyph;
    glyph.number = tables.copyGlyph(glyph.number);
    _numbers.emplace(key, glyph.number);
    const Sized& sized = _sized.insert_or_assign(glyph.number, Sized{face, key, false}).first->second;
    tables.setPicture(glyph.number, beginningOf(sized));
    return glyph;
}

void GlyphStore::getColored(const Typeface& face, std::uint32_t glyph, double size, td::Color foreground,
                            bool isStroked, ShapeBuilder& builder, ShapeTables& tables,
                            std::vector<std::uint32_t>& numbers)
{
    const OpenFont& font = TypefaceImpl::of(face)->font();
    const std::optional<GlyphPaint> paint = font.getPaint(glyph);
    const std::vector<OpenFont::Layer> layers = paint ? std::vector<OpenFont::Layer>() : font.getLayers(glyph);
    for (const OpenFont::Layer& layer : layers)
    {
        const Glyph outline = get(face, layer.glyph, isStroked, builder, tables);
        if (outline.isEmpty)
            continue;
        if (isStroked || layer.isText)
        {
            numbers.push_back(outline.number);
            continue;
        }
        const std::uint32_t color = layer.color.rgba();
        const auto [found, isNew] = _painted.try_emplace({face.getID(), layer.glyph, color});
        if (isNew)
        {
            found->second = tables.copyGlyph(outline.number);
            tables.setPicture(found->second, {GlyphPicture::cIsPaint, color});
        }
        numbers.push_back(found->second);
    }
    if (!layers.empty() || isStroked)
        return;
    // A width that no line has.
    numbers.push_back(getColoredPicture(
        face,
        {face.getID(), glyph, static_cast<float>(size), -1.0F, paint && paint->usesForeground ? opaque(foreground) : 0},
        tables));
}

std::uint32_t GlyphStore::getColoredPicture(const Typeface& face, const Key& key, ShapeTables& tables)
{
    const auto [found, isNew] = _numbers.try_emplace(key);
    if (isNew)
    {
        found->second = tables.addColoredGlyph();
        _sized.insert_or_assign(found->second, Sized{face, key, true});
    }
    return found->second;
}

std::uint32_t GlyphStore::recolored(std::uint32_t number, td::Color foreground, ShapeTables& tables)
{
    const auto found = _sized.find(number);
    if (found == _sized.end() || std::get<4>(found->second.key) == 0)
        return number;
    Key key = found->second.key;
    std::get<4>(key) = opaque(foreground);
    return getColoredPicture(Typeface(found->second.face), key, tables);
}

void GlyphStore::makeWait(std::span<const std::uint32_t> numbers, ShapeTables& tables)
{
    for (const std::uint32_t number : numbers)
        tables.setPicture(number,
                          {GlyphPicture::cIsWaited | (tables.getPicture(number).place & GlyphPicture::cIsColored), 0});
}

// Pictures in one of a few sizes that is not smaller than on the screen, or where that is not known, as large as there
// is; paints in exactly that size, as far as there is room.
GlyphStore::Result GlyphStore::drawColored(std::uint32_t number, const Sized& sized, ShapeTables& tables,
                                           std::vector<std::uint32_t>* pEvicted)
{
    const auto [face, glyph, size, lineWidth, foreground] = sized.key;
    double pixelsPerEm = cLargestColored;
    while (size > 0 && pixelsPerEm > 16 && pixelsPerEm / 2 >= size * _scale)
        pixelsPerEm /= 2;
    const OpenFont& font = TypefaceImpl::of(sized.face)->font();
    if (const std::optional<GlyphPaint> paint = font.getPaint(glyph))
    {
        if (size > 0 && _scale > 0)
            pixelsPerEm = size * _scale;
        // A pixel more where its edges are none of pixels.
        const double most = std::max({paint->width, paint->height, 1.0}) / font.getMetrics().unitsPerEm;
        pixelsPerEm = std::min({pixelsPerEm, (cMostColored - 1) / most, double(GlyphOutlines::cMostPixels)});
    }
    GlyphImage image;
    const char* const cause =
        font.getImage(glyph, {.pixelsPerEm = pixelsPerEm, .foreground = td::Color(foreground)}, image);
    if (cause != nullptr || !image.isColor || image.width == 0 || image.height == 0 || image.width > cMostColored ||
        image.height > cMostColored)
    {
        tables.setPicture(number, {GlyphPicture::cIsColored, 0});
        return Result::Impossible;
    }
    const std::size_t nEvicted = pEvicted != nullptr ? pEvicted->size() : 0;
    const std::optional<PictureAtlas::Place> place = _coloredPictures.add(
        static_cast<int>(image.width), static_cast<int>(image.height), image.pixels, number, pEvicted);
    if (pEvicted != nullptr)
        makeWait(std::span(*pEvicted).subspan(nEvicted), tables);
    if (!place)
        return Result::NoRoom;
    const double step = 1 / image.pixelsPerEm;
    tables.setColoredPicture(number,
                             {GlyphPicture::cIsThere | GlyphPicture::cIsColored |
                                  static_cast<std::uint32_t>(place->y) << 12 | static_cast<std::uint32_t>(place->x),
                              image.width | image.height << 8},
                             step, image.left * step, -image.top * step);
    return Result::Drawn;
}

bool GlyphStore::setScale(double pixelsPerPoint, ShapeTables& tables)
{
    if (pixelsPerPoint == _scale)
        return false;
    _scale = pixelsPerPoint;
    _pictures.clear();
    _coloredPictures.clear();
    for (const auto& [number, sized] : _sized)
        tables.setPicture(number, beginningOf(sized));
    return true;
}

GlyphStore::Result GlyphStore::drawPicture(std::uint32_t number, ShapeTables& tables, double& cost,
                                           std::vector<std::uint32_t>* pEvicted)
{
    const Sized& sized = _sized.at(number);
    if (sized.isColored)
    {
        cost = 0; // there is nothing to draw instead
        return drawColored(number, sized, tables, pEvicted);
    }
    const auto [face, glyph, size, lineWidth, foreground] = sized.key;
    const GlyphOutlines& outlines = TypefaceImpl::of(sized.face)->font().getOutlines();
    const std::optional<GlyphCoverage> coverage =
        lineWidth > 0 ? outlines.getStrokeCoverage(glyph, size * _scale, lineWidth * _scale)
                      : outlines.getCoverage(glyph, size * _scale);
    cost = (10 + (coverage ? double(coverage->width * coverage->height) / 20 : 0)) * (lineWidth > 0 ? 8 : 1);
    const auto fits = [](int n) { return n >= -128 && n < 128; };
    if (!coverage || !fits(coverage->left) || !fits(coverage->top) || coverage->height > 60)
    {
        tables.setPicture(number, {});
        return Result::Impossible;
    }
    const std::size_t nEvicted = pEvicted != nullptr ? pEvicted->size() : 0;
    const std::optional<PictureAtlas::Place> place = _pictures.add(
        static_cast<int>(4 * coverage->width), static_cast<int>(coverage->height), coverage->pixels, number, pEvicted);
    if (pEvicted != nullptr)
        makeWait(std::span(*pEvicted).subspan(nEvicted), tables);
    if (!place)
        return Result::NoRoom;
    tables.setPicture(
        number,
        {GlyphPicture::cIsThere | static_cast<std::uint32_t>(place->y) << 12 | static_cast<std::uint32_t>(place->x),
         coverage->width | coverage->height << 8 | static_cast<std::uint32_t>(coverage->left + 128) << 16 |
             static_cast<std::uint32_t>(coverage->top + 128) << 24});
    return Result::Drawn;
}

void GlyphStore::sweep(const std::vector<bool>& areUsed, ShapeTables& tables)
{
    std::erase_if(_sized,
                  [&](const auto& entry)
                  {
                      const auto& [number, sized] = entry;
                      if (number < areUsed.size() && areUsed[number])
                          return false;
                      _numbers.erase(sized.key);
                      tables.removeCopy(number);
                      return true;
                  });
    _pictures.keepOwners(areUsed);
    _coloredPictures.keepOwners(areUsed);
}

void GlyphStore::clear()
{
    _glyphs.clear();
    _numbers.clear();
    _sized.clear();
    _painted.clear();
    _pictures.clear();
    _coloredPictures.clear();
}

} // namespace gui::draw
