#include "ColorPaint.h"

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_COLOR_H

#include <algorithm>
#include <cmath>
#include <numbers>
#include <span>

namespace gui::draw
{

namespace
{

// The kinds of paints as the table numbers them; one more where numbers vary.
struct Format
{
    enum : std::uint32_t
    {
        Layers = 1,
        Solid = 2,
        Linear = 4,
        Radial = 6,
        Sweep = 8,
        Outline = 10,
        Glyph = 11,
        Transform = 12,
        Translate = 14,
        Scale = 16,
        ScaleAbout = 18,
        ScaleUniform = 20,
        ScaleUniformAbout = 22,
        Rotate = 24,
        RotateAbout = 26,
        Skew = 28,
        SkewAbout = 30,
        Composite = 32
    };
};

// Where the header says what is where.
constexpr std::size_t cGlyphs = 14, cLayers = 18, cBoxes = 22, cMap = 26, cStore = 30;

// Larger than any glyph is meant to be, in pixels or font units; and than any number of a transform.
constexpr double cLargest = 1e6, cLargestNumber = 1e9;

Affine about(double x, double y, const Affine& map)
{
    return Affine::translation(x, y) * map * Affine::translation(-x, -y);
}

bool isSane(const Affine& map)
{
    return std::ranges::all_of(std::array{map.a, map.b, map.c, map.d, map.e, map.f},
                               [](double value) { return std::abs(value) <= cLargestNumber; });
}

// What is drawn of a paint, by area. @param within  what it is cut off by
double areaOf(const ColorPaint& paint, PaintBounds within)
{
    within.intersect(paint.bounds);
    if (within.isEmpty())
        return 0;
    double area = paint.kind == ColorPaint::Kind::Layers ? 0 : within.getArea();
    for (const ColorPaint& part : paint.parts)
        area += areaOf(part, within);
    return area;
}

Spread spreadOf(std::uint32_t extend)
{
    return extend == 1 ? Spread::Repeat : extend == 2 ? Spread::Reflect : Spread::Pad;
}

} // namespace

PaintBounds PaintBounds::plane()
{
    const PaintBounds nothing;
    return {nothing.right, nothing.bottom, nothing.left, nothing.top};
}

void PaintBounds::add(const PaintBounds& other)
{
    left = std::min(left, other.left);
    top = std::min(top, other.top);
    right = std::max(right, other.right);
    bottom = std::max(bottom, other.bottom);
}

void PaintBounds::intersect(const PaintBounds& other)
{
    left = std::max(left, other.left);
    top = std::max(top, other.top);
    right = std::min(right, other.right);
    bottom = std::min(bottom, other.bottom);
    if (isEmpty())
        *this = {};
}

bool PaintBounds::contains(const PaintBounds& other) const
{
    return left <= other.left && top <= other.top && right >= other.right && bottom >= other.bottom;
}

FT_Outline_* loadPaintOutline(FT_FaceRec_* pFace, std::uint32_t glyph)
{
    if (FT_Load_Glyph(pFace, glyph, FT_LOAD_NO_BITMAP | FT_LOAD_NO_HINTING) != 0 ||
        pFace->glyph->format != FT_GLYPH_FORMAT_OUTLINE)
        return nullptr;
    return &pFace->glyph->outline;
}

ColorPaintReader::ColorPaintReader(FT_FaceRec_* pFace, std::span<const td::BYTE> table,
                                   std::span<const float> coordinates, td::Color foreground)
    : _pFace(pFace)
    , _table(table)
    , _deltas(_table, _table.unsigned32(cMap), _table.unsigned32(cStore), coordinates)
    , _foreground(foreground)
{
    FT_Color* colors = nullptr;
    FT_Palette_Data palette{};
    if (FT_Palette_Data_Get(pFace, &palette) == 0 && FT_Palette_Select(pFace, 0, &colors) == 0 && colors != nullptr)
        for (const FT_Color& color : std::span(colors, palette.num_palette_entries))
            _palette.emplace_back(color.red, color.green, color.blue, color.alpha);
}

std::optional<ColorPaint> ColorPaintReader::read(std::uint32_t glyph, const Affine& toTarget)
{
    // A pixel is a font unit then.
    const auto size = static_cast<FT_F26Dot6>(_pFace->units_per_EM) * 64;
    ColorPaint paint;
    if (!FT_IS_SCALABLE(_pFace) || size == 0 || FT_Set_Char_Size(_pFace, size, size, 72, 72) != 0 ||
        !readGlyph(glyph, toTarget, 0, paint))
        return std::nullopt;
    const PaintBounds most{-cLargest, -cLargest, cLargest, cLargest};
    const PaintBounds& bounds = paint.bounds;
    if (!bounds.isEmpty() && (!most.contains(bounds) || areaOf(paint, bounds) > cMostOverEachOther * bounds.getArea()))
        return std::nullopt;
    return paint;
}

// Records begin with a glyph, and are in order of it. @return the last one that is not beyond a glyph
std::optional<std::size_t> ColorPaintReader::find(std::size_t records, std::size_t n, std::size_t size,
                                                  std::uint32_t glyph) const
{
    n = std::min(n, _table.getSize() / size);
    std::size_t low = 0, high = n;
    while (low < high)
    {
        const std::size_t middle = (low + high) / 2;
        if (_table.unsigned16(records + middle * size) <= glyph)
            low = middle + 1;
        else
            high = middle;
    }
    return low > 0 ? std::optional(records + (low - 1) * size) : std::nullopt;
}

std::optional<ColorPaintReader::Numbers> ColorPaintReader::boxOf(std::uint32_t glyph)
{
    const std::size_t boxes = _table.unsigned32(cBoxes);
    if (boxes == 0)
        return std::nullopt;
    const std::optional<std::size_t> record = find(boxes + 5, _table.unsigned32(boxes + 1), 7, glyph);
    if (!record || _table.unsigned16(*record + 2) < glyph)
        return std::nullopt;
    const std::size_t box = boxes + _table.unsigned24(*record + 4);
    return numbersAt(box + 1, "wwww", _table.unsigned8(box) == 2);
}

bool ColorPaintReader::readGlyph(std::uint32_t glyph, const Affine& toTarget, int depth, ColorPaint& paint)
{
    const std::size_t glyphs = _table.unsigned32(cGlyphs);
    const std::optional<std::size_t> record =
        glyphs != 0 ? find(glyphs + 4, _table.unsigned32(glyphs), 6, glyph) : std::nullopt;
    if (!record || _table.unsigned16(*record) != glyph ||
        !readPaint(glyphs + _table.unsigned32(*record + 2), toTarget, depth, paint))
        return false;
    const std::optional<Numbers> box = boxOf(glyph);
    if (!box || paint.bounds.isEmpty())
        return true;
    const auto [left, bottom, right, top, unused1, unused2] = *box;
    ColorPaint clipped;
    clipped.kind = ColorPaint::Kind::Box;
    clipped.corners = {toTarget.map({left, bottom}), toTarget.map({left, top}), toTarget.map({right, top}),
                       toTarget.map({right, bottom})};
    PaintBounds within;
    for (const td::Point<double>& corner : clipped.corners)
        within.add(corner);
    // Most boxes only tell where a glyph is.
    if (toTarget.b == 0 && toTarget.c == 0 && within.contains(paint.bounds))
        return true;
    clipped.bounds = paint.bounds;
    clipped.bounds.intersect(within);
    clipped.parts.push_back(std::move(paint));
    paint = std::move(clipped);
    return true;
}

bool ColorPaintReader::isTooMuch() const
{
    return _nPaints > cMostPaints || _nPoints > cMostPoints || _deltas.getCost() > 4 * cMostPoints;
}

bool ColorPaintReader::readPaint(std::size_t at, const Affine& toTarget, int depth, ColorPaint& paint)
{
    ++_nPaints;
    if (depth > cMostDepth || isTooMuch() || !isSane(toTarget))
        return false;
    const std::uint32_t format = _table.unsigned8(at);
    if (format >= Format::Transform && format < Format::Composite)
        return readPaint(at + _table.unsigned24(at + 1), toTarget * transformOf(at), depth + 1, paint);
    switch (format)
    {
    case Format::Layers:
        return readLayers(at, toTarget, depth, paint);
    case Format::Outline:
        return readOutline(at, toTarget, depth, paint);
    case Format::Glyph:
        return readGlyph(_table.unsigned16(at + 1), toTarget, depth + 1, paint);
    case Format::Composite:
        return readComposite(at, toTarget, depth, paint);
    default:
        return readFill(at, toTarget, paint);
    }
}

bool ColorPaintReader::readLayers(std::size_t at, const Affine& toTarget, int depth, ColorPaint& paint)
{
    const std::size_t layers = _table.unsigned32(cLayers);
    const std::size_t first = _table.unsigned32(at + 2), n = _table.unsigned8(at + 1);
    if (layers == 0 || first + n > _table.unsigned32(layers))
        return false;
    paint.kind = ColorPaint::Kind::Layers;
    for (std::size_t i = first; i < first + n; ++i)
    {
        ColorPaint& part = paint.parts.emplace_back();
        if (!readPaint(layers + _table.unsigned32(layers + 4 + 4 * i), toTarget, depth + 1, part))
            return false;
        paint.bounds.add(part.bounds);
    }
    return true;
}

bool ColorPaintReader::readOutline(std::size_t at, const Affine& toTarget, int depth, ColorPaint& paint)
{
    paint.kind = ColorPaint::Kind::Outline;
    paint.glyph = _table.unsigned16(at + 4);
    paint.toTarget = toTarget;
    if (const FT_Outline* const pOutline = loadPaintOutline(_pFace, paint.glyph))
    {
        const auto n = static_cast<std::size_t>(std::max(int(pOutline->n_points), 0));
        _nPoints += n;
        for (const FT_Vector& p : std::span(pOutline->points, n))
            paint.bounds.add(toTarget.map({double(p.x) / 64, double(p.y) / 64}));
    }
    ColorPaint& part = paint.parts.emplace_back();
    if (!readPaint(at + _table.unsigned24(at + 1), toTarget, depth + 1, part))
        return false;
    paint.bounds.intersect(part.bounds);
    return true;
}

bool ColorPaintReader::readComposite(std::size_t at, const Affine& toTarget, int depth, ColorPaint& paint)
{
    const std::uint32_t mode = _table.unsigned8(at + 4);
    if (mode >= cNumberOfBlendModes)
        return false;
    paint.kind = ColorPaint::Kind::Composite;
    paint.mode = static_cast<BlendMode>(mode);
    paint.parts.resize(2);
    if (!readPaint(at + _table.unsigned24(at + 5), toTarget, depth + 1, paint.parts[0]) ||
        !readPaint(at + _table.unsigned24(at + 1), toTarget, depth + 1, paint.parts[1]))
        return false;
    if (paint.mode == BlendMode::Clear)
        return true;
    const PaintBounds &backdrop = paint.parts[0].bounds, &source = paint.parts[1].bounds;
    const bool ofSource = showsSource(paint.mode), ofBackdrop = showsBackdrop(paint.mode);
    paint.bounds = ofBackdrop || !ofSource ? backdrop : source;
    if (ofSource && ofBackdrop)
        paint.bounds.add(source);
    else if (!ofSource && !ofBackdrop)
        paint.bounds.intersect(source);
    return true;
}

bool ColorPaintReader::readFill(std::size_t at, const Affine& toTarget, ColorPaint& paint)
{
    const std::uint32_t format = _table.unsigned8(at);
    const bool isVariable = format % 2 != 0;
    const std::size_t line = at + _table.unsigned24(at + 1);
    const Spread spread = spreadOf(_table.unsigned8(line));
    paint.kind = ColorPaint::Kind::Fill;
    switch (format & ~1U)
    {
    case Format::Solid:
        paint.fill = ColorFill(colorOf(_table.unsigned16(at + 1), numbersAt(at + 3, "f", isVariable)[0]));
        break;
    case Format::Linear:
    {
        const auto [x0, y0, x1, y1, x2, y2] = numbersAt(at + 4, "wwwwww", isVariable);
        paint.fill = ColorFill::linear(stopsAt(line, isVariable), spread, toTarget, {x0, y0}, {x1, y1}, {x2, y2});
        break;
    }
    case Format::Radial:
    {
        const auto [x0, y0, r0, x1, y1, r1] = numbersAt(at + 4, "wwuwwu", isVariable);
        paint.fill = ColorFill::radial(stopsAt(line, isVariable), spread, toTarget, {{x0, y0}, r0}, {{x1, y1}, r1});
        break;
    }
    case Format::Sweep:
    {
        // Angles are parts of half a turn, and less by one.
        const auto [x, y, from, to, unused1, unused2] = numbersAt(at + 4, "wwff", isVariable);
        paint.fill =
            ColorFill::sweep(stopsAt(line, isVariable), spread, toTarget, {x, y}, (from + 1) / 2, (to + 1) / 2);
        break;
    }
    default:
        return false;
    }
    if (!paint.fill.isNothing())
        paint.bounds = PaintBounds::plane();
    return !isTooMuch();
}

// Of a paint that moves another one.
Affine ColorPaintReader::transformOf(std::size_t at)
{
    const std::uint32_t format = _table.unsigned8(at);
    const bool isVariable = format % 2 != 0;
    const auto scale = [](double x, double y) { return Affine::scaling(x, y); };
    const auto rotation = [](double halfTurns) { return Affine::rotation(halfTurns * std::numbers::pi); };
    const auto skew = [](double x, double y)
    { return Affine{1, std::tan(y * std::numbers::pi), -std::tan(x * std::numbers::pi), 1, 0, 0}; };
    const auto numbers = [&](std::string_view kinds) { return numbersAt(at + 4, kinds, isVariable); };
    Numbers n{};
    switch (format & ~1U)
    {
    case Format::Transform:
        n = numbersAt(at + _table.unsigned24(at + 4), "xxxxxx", isVariable);
        return {n[0], n[1], n[2], n[3], n[4], n[5]};
    case Format::Translate:
        n = numbers("ww");
        return Affine::translation(n[0], n[1]);
    case Format::Scale:
        n = numbers("ff");
        return scale(n[0], n[1]);
    case Format::ScaleAbout:
        n = numbers("ffww");
        return about(n[2], n[3], scale(n[0], n[1]));
    case Format::ScaleUniform:
        n = numbers("f");
        return scale(n[0], n[0]);
    case Format::ScaleUniformAbout:
        n = numbers("fww");
        return about(n[1], n[2], scale(n[0], n[0]));
    case Format::Rotate:
        n = numbers("f");
        return rotation(n[0]);
    case Format::RotateAbout:
        n = numbers("fww");
        return about(n[1], n[2], rotation(n[0]));
    case Format::Skew:
        n = numbers("ff");
        return skew(n[0], n[1]);
    default:
        n = numbers("ffww");
        return about(n[2], n[3], skew(n[0], n[1]));
    }
}

// One after the other: w and u are font units, with a sign and without, f has 14 bits after the point, x 16. Where they
// vary the index of the first one's differences follows.
ColorPaintReader::Numbers ColorPaintReader::numbersAt(std::size_t at, std::string_view kinds, bool isVariable)
{
    const auto sizeOf = [](char kind) { return std::size_t(kind == 'x' ? 4 : 2); };
    std::uint32_t index = VariationDeltas::cNone;
    if (isVariable)
    {
        std::size_t end = at;
        for (const char kind : kinds)
            end += sizeOf(kind);
        index = _table.unsigned32(end);
    }
    Numbers numbers{};
    for (std::size_t i = 0; i < kinds.size(); ++i)
    {
        const char kind = kinds[i];
        double number = kind == 'x'   ? double(_table.signed32(at))
                        : kind == 'u' ? double(_table.unsigned16(at))
                                      : double(_table.signed16(at));
        if (index != VariationDeltas::cNone)
            number += _deltas.of(index + static_cast<std::uint32_t>(i));
        numbers[i] = number / (kind == 'f' ? 16384.0 : kind == 'x' ? 65536.0 : 1.0);
        at += sizeOf(kind);
    }
    return numbers;
}

std::vector<ColorFill::Stop> ColorPaintReader::stopsAt(std::size_t at, bool isVariable)
{
    std::vector<ColorFill::Stop> stops;
    const std::size_t n = _table.unsigned16(at + 1), size = isVariable ? 10 : 6;
    if (!_table.has(at + 3, n * size))
        return stops;
    _nPoints += n;
    for (std::size_t i = 0; i < n && !isTooMuch(); ++i)
    {
        const std::size_t stop = at + 3 + i * size;
        // The offset and, after the colour, the alpha; the index of their differences follows both.
        double numbers[2] = {double(_table.signed16(stop)), double(_table.signed16(stop + 4))};
        if (const std::uint32_t index = _table.unsigned32(stop + 6); isVariable && index != VariationDeltas::cNone)
        {
            numbers[0] += _deltas.of(index);
            numbers[1] += _deltas.of(index + 1);
        }
        stops.push_back({numbers[0] / 16384, colorOf(_table.unsigned16(stop + 2), numbers[1] / 16384)});
    }
    return stops;
}

std::array<float, 4> ColorPaintReader::colorOf(std::uint32_t index, double alpha)
{
    _usesForeground = _usesForeground || index >= _palette.size();
    const td::Color color = index < _palette.size() ? _palette[index] : _foreground;
    const auto share = [](td::BYTE value) { return static_cast<float>(value) / 255; };
    return {share(color.red()), share(color.green()), share(color.blue()),
            share(color.alpha()) * static_cast<float>(std::clamp(alpha, 0.0, 1.0))};
}

} // namespace gui::draw
