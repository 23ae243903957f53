#include "GlyphStore.h"

namespace gui::draw
{

namespace
{

/// How far lines may be from an outline's curves, in em: a fiftieth of a pixel where letters are 400 pixels high.
constexpr double cTolerance = 1.0 / 20000;

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

} // namespace gui::draw
