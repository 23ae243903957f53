#pragma once

#include "GrowingArray.h"

#include <gui/gl/Quads.h>

#include <td/Point.h>
#include <td/RectNormalized.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <span>
#include <vector>

namespace gui::draw
{

/// The zooms, in points per unit of the model, that something is shown at: from `min` on, below `max`.
struct ZoomRange
{
    float min = 0;
    float max = std::numeric_limits<float>::infinity();

    /// As floats have it, so that what begins where something else ends is neither missing nor there twice.
    bool has(double zoom) const
    {
        const auto rounded = static_cast<float>(std::min(zoom, 1e38));
        return rounded >= min && rounded < max;
    }
    /// Of something within something else.
    ZoomRange operator&(const ZoomRange& other) const { return {std::max(min, other.min), std::min(max, other.max)}; }
    bool operator==(const ZoomRange&) const = default;
};

/// The shapes in the order of drawing, as far as it takes to choose which quads are drawn: those of shapes that may be
/// seen, or, of shapes too small for it to matter, one box each. Shapes are taken by the hundred where that is enough.
/// Glyphs, which have programs of their own, and images, which have textures, part what is drawn into passes.
class DrawList
{
public:
    using Rect = td::RectNormalized<double>;

    /// Quads from this number on are long elements, and from that one on boxes around the shapes of records.
    static constexpr std::uint32_t cLongElements = 1U << 27, cBoxes = 1U << 28;

    /// What is drawn together: shapes of any kind where fills and strokes alternate, or only the ones or the others;
    /// glyphs by their outlines, by their pictures or some by either; and what has an image, by the numbers from
    /// cImages on.
    static constexpr std::uint32_t cShapes = 0, cFills = 1, cStrokes = 2, cGlyphs = 3, cPictures = 4, cBoth = 5;
    static constexpr std::uint32_t cImages = 6;
    static bool areShapes(std::uint32_t ink) { return ink < cGlyphs; }
    static bool areGlyphs(std::uint32_t ink) { return !areShapes(ink) && ink < cImages; }

    struct Shape
    {
        Rect bounds;                  // in model units, with a stroke's width if that is in model units
        float margin = 0;             // in points, around them
        std::uint32_t first = 0;      // its quads
        std::uint32_t count = 0;      // 0 when there is nothing to see
        std::uint32_t nTriangles = 0; // of its quads the last ones, if it is a fill
        std::uint32_t record = 0;
        std::uint32_t ink = cShapes;
        ZoomRange zooms;
    };

    /// Some of the ranges, in a row, that one program draws.
    struct Pass
    {
        std::size_t first = 0;
        std::size_t count = 0;
        std::uint32_t ink = cShapes;
    };

    void clear();
    /// Sets the shape at a place, at the end or before.
    void set(std::size_t place, const Shape& shape);
    void removeAt(std::size_t place);

    /// In how many pieces the elements lie in order, and the long ones.
    std::size_t countRanges() const;

    /// @param visible  in model units  @param pixelsPerUnit  at most, in any direction  @param pixelsPerPoint  of
    /// margins  @param zoom  in points per unit
    void select(const Rect& visible, double pixelsPerUnit, double pixelsPerPoint, double zoom);

    /// Those selected last, and how they are parted.
    std::span<const gl::Quads::Range> getRanges() const { return _selected; }
    std::span<const Pass> getPasses() const { return _passes; }
    /// Of fills among them that are neither boxes alone nor images, the triangles, and between these some other quads.
    std::span<const gl::Quads::Range> getTriangles() const { return _triangles; }
    /// The extent of the largest shape that was selected last, in model units, or more.
    double getLargest() const { return _largest; }

private:
    static constexpr std::size_t cChunk = 128;

    struct Box
    {
        float left, top, right, bottom; // from _base
    };
    /// The boxes of a chunk's shapes in 256ths of the one around them all, side by side for the processor to compare
    /// many at once.
    struct Cells
    {
        std::array<std::int8_t, cChunk> left, top, right, bottom;
    };
    struct Entry
    {
        Box box;
        float margin;
        std::uint32_t first, count, nTriangles, record;
        std::uint32_t ink;
        ZoomRange zooms;
    };
    struct Piece
    {
        gl::Quads::Range range;
        std::uint32_t ink;
    };
    /// Quads in a row from first to end, and the range that has all triangles among them.
    struct Inside
    {
        std::uint32_t first, end;
        gl::Quads::Range triangles;
    };
    struct Chunk
    {
        Box box{};
        float size = 0;          // of the largest
        float area = 0;          // of a square as large as a shape, on average
        float margin = 0;        // the largest
        ZoomRange zooms, shared; // of any, and of all
        bool isStale = true;
        bool isMixed = false; // its fills and strokes are not told apart
        Cells cells{};

        std::uint32_t inkOf(const Entry& entry) const { return isMixed && areShapes(entry.ink) ? cShapes : entry.ink; }
        std::vector<Piece> parts, boxes;
        std::vector<Inside> insides; // of parts
    };

    static std::int8_t cellOf(float place, float low, float high);
    void renew(std::size_t chunk);
    static bool touches(const Box& a, const Box& b)
    {
        return a.left <= b.right && a.right >= b.left && a.top <= b.bottom && a.bottom >= b.top;
    }
    static void append(std::vector<Piece>& pieces, const Piece& piece);
    static void append(std::vector<Inside>& insides, const Inside& inside);
    static void append(std::vector<Inside>& insides, const Entry& entry);
    void select(const Piece& piece);
    void selectWithin(std::size_t chunk, const Box& seen, bool isSmall, double zoom);

    td::Point<double> _base;
    GrowingArray<Entry> _shapes;
    std::vector<Chunk> _chunks;
    std::vector<gl::Quads::Range> _selected, _triangles;
    std::vector<Inside> _insides; // of those selected
    std::vector<Pass> _passes;
    double _largest = 0;
};

} // namespace gui::draw
