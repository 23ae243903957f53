#pragma once

#include "ShapeTables.h"

#include <gui/draw/Typeface.h>

#include <cstdint>
#include <map>
#include <tuple>

namespace gui::draw
{

/// The outlines that a drawing's texts have in its tables, each there once however often it is drawn.
class GlyphStore
{
public:
    /// Of stroked outlines, in em.
    static constexpr double cStrokeStep = 0x1p-24;

    struct Glyph
    {
        std::uint32_t number = 0;
        bool isEmpty = true; // there is nothing to see
    };

    /// Adds an outline when it is not there yet. @param isStroked  for a line along it instead of its inside
    const Glyph& get(const Typeface& face, std::uint32_t glyph, bool isStroked, ShapeBuilder& builder,
                     ShapeTables& tables);
    void clear() { _glyphs.clear(); }

private:
    std::map<std::tuple<std::uint64_t, std::uint32_t, bool>, Glyph> _glyphs; // by face, glyph and whether stroked
    ShapeGeometry _geometry;
};

} // namespace gui::draw
