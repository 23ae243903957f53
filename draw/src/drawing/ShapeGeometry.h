#pragma once

#include "../fill/GridTessellator.h"

#include <gui/draw/Path.h>
#include <gui/draw/Stroke.h>

#include <array>
#include <bit>
#include <cstdint>
#include <vector>

namespace gui::draw
{

/// A box around some consecutive lines and, before the next node that is not within it, those around parts of them.
struct EdgeNode
{
    std::array<std::int32_t, 4> box{}; // left, top, right, bottom
    std::int32_t next = 0;             // the node to go on with when this one's inside does not matter
    std::int32_t first = 0;            // its first point
    std::int32_t last = 0;             // its last one; the same for nodes of several rings
    // Bit 0: whether lines are all that is in it. Bits 1 to 7: the turn, up from 64ths, the most being cSharpest or
    // more. The others are those of the deviation, a float that has no more.
    std::uint32_t form = 0;

    static constexpr float cSharpest = 127.0F / 64;

    bool isLeaf() const { return (form & 1U) != 0; }
    /// How far its points are, in steps, from the line between its first and its last one, at most.
    float getDeviation() const { return std::bit_cast<float>(form & ~255U); }
    /// How far the directions of its lines are from that line's, as unit vectors, at most.
    float getTurn() const { return static_cast<float>(form >> 1 & 127U) / 64; }
    void setForm(bool isLeaf, double deviation, double turn);
    bool operator==(const EdgeNode&) const = default;
};
static_assert(sizeof(EdgeNode) == 32);

/// What a quad is made from.
enum class ElementKind : std::uint32_t
{
    Triangle, ///< three points, and how large the smallest node around them is: see cTriangleSizeShift
    Edge,     ///< of a fill's boundary: the leaf that it is in, and which of its lines
    Line,     ///< of a stroke, likewise
    Tip,      ///< of a mitre: the leaf of the line that begins at its corner, and which of its lines
    Box,      ///< around the whole shape, drawn in place of all others while that is small
    Node,     ///< around a node, drawn in place of its lines while that is small: the node, and the one it is part of
    Glyph,    ///< of a text: its number, and the bits of the floats that say where it stands
    Placed,   ///< of a halo or a text along a path: its number, where place, cosine and sine stand among the numbers,
              ///< and for halos one more than where those that it touches stand among the links
    Long = 15 ///< what has no room in an element: its number among the long ones
};

/// A quad to draw.
struct Element
{
    /// Bits of each point of a triangle, of the line within a leaf, and of the way from a node back to its parent.
    static constexpr unsigned int cPointBits = 9, cLineBits = 2, cWayBits = 12;

    std::uint32_t shapeAndKind = 0; // the kind in the topmost four bits
    std::uint32_t what = 0;         // its numbers, the first one in the lowest bits
};
static_assert(sizeof(Element) == 8);

/// The same with room for larger numbers; all glyphs are such.
struct LongElement
{
    std::uint32_t shapeAndKind = 0;
    std::array<std::uint32_t, 3> points{};
};
static_assert(sizeof(LongElement) == 16);

inline std::uint32_t bitsOf(ElementKind kind) { return static_cast<std::uint32_t>(kind) << 28; }

/// The topmost five bits of a triangle's first point: the power of two, in steps, that the smallest node with all of
/// its points is not larger than. Where that node is small enough to be one quad, the triangle has no pixels of its
/// own. Drivers' texture buffers have no room for more points than the other bits can number.
inline constexpr unsigned int cTriangleSizeShift = 27;

/// Marks the corner of a stroke that is round whatever its joins are; coordinates leave a bit for it.
inline GridPoint markRound(GridPoint p) { return {p.x ^ 0x40000000, p.y}; }
inline GridPoint withoutMark(GridPoint p) { return {(p.x & ~0x40000000) | ((p.x >> 1) & 0x40000000), p.y}; }
inline bool isMarkedRound(GridPoint p) { return withoutMark(p).x != p.x; }

/// A shape as it is kept and drawn: its points on a grid about an origin of its own, and a tree of boxes over the lines
/// between consecutive ones. Numbers of points and nodes begin with 0.
struct ShapeGeometry
{
    td::Point<double> origin;
    double step = 1;
    std::vector<GridPoint> points;
    std::vector<EdgeNode> nodes;
    std::vector<Element> elements; // of shape 0
    std::vector<LongElement> longElements;
    std::uint32_t nTriangles = 0; // the last elements
    std::vector<float> lengths;   // of a dashed stroke: of the subpath up to each point, in steps, below 0 at its end
    bool hasRound = false;        // corners within curves
    float reach = 1;              // how far from its points a stroke's parts are, in halves of its width
    // Of a stroke of one line, as EdgeNode::form: the most that its leaves deviate and turn, the least that they do,
    // and the least that nodes do which are none. All are 0 where the tree is to be looked through.
    std::uint32_t mostOfLeaves = 0, leastOfLeaves = 0, leastOfOthers = 0;

    void clear();
};

/// Makes them, with memory that is kept from one to the next.
class ShapeBuilder
{
public:
    void makeFill(const Path& path, FillRule rule, double tolerance, ShapeGeometry& shape);
    /// @param step  of the shape's grid; 0 for one that suits the path
    void makeStroke(const Path& path, const Stroke& stroke, double tolerance, ShapeGeometry& shape, double step = 0);
    /// The same path with another stroke. @param shape  origin, step, points and nodes are those of the one before
    void remakeStroke(const Stroke& stroke, ShapeGeometry& shape);

private:
    void linkRings(ShapeGeometry& shape);
    template <typename Next>
    GridPoint* linkRing(std::uint32_t vertex, GridPoint shift, const ShapeGeometry& shape, GridPoint* pPoint,
                        Next next);
    void sortRings(const ShapeGeometry& shape);
    template <ElementKind Kind>
    void addTree(ShapeGeometry& shape);
    void lookAtForms(ShapeGeometry& shape) const;
    void addLine(const Polylines::Line& line, const Stroke& stroke, ShapeGeometry& shape);
    void addCorners(std::uint32_t first, std::uint32_t last, const Stroke& stroke, ShapeGeometry& shape);
    void finishStroke(const Stroke& stroke, ShapeGeometry& shape);
    void addLengths(std::uint32_t first, std::uint32_t last, ShapeGeometry& shape);
    template <ElementKind Kind>
    void addChain(ShapeGeometry& shape, std::int32_t first, std::int32_t last, std::size_t parent);
    template <ElementKind Kind>
    void addLeaf(ShapeGeometry& shape, std::int32_t first, std::int32_t last, std::size_t number);
    template <ElementKind Kind>
    void addRings(ShapeGeometry& shape, std::size_t first, std::size_t last, std::size_t parent);
    std::size_t addNode(ShapeGeometry& shape, std::size_t parent);
    void addTriangles(ShapeGeometry& shape);

    struct Ring
    {
        std::int32_t first, last; // points, the last one where the first is
        std::uint64_t place;      // along a curve that fills the plane, where there are many
    };

    GridTessellator _fill;
    Polylines _lines;
    std::vector<std::uint32_t> _starts, _ends, _next, _numbers;
    std::vector<Ring> _rings;
    std::vector<GridPoint> _line;
    std::vector<bool> _areWithinCurves;  // of the points in _line
    std::vector<std::uint32_t> _tips;    // points of corners, in their order
    std::vector<std::uint32_t> _leaves;  // of a fill's points
    std::vector<std::uint32_t> _parents; // of nodes
};

/// The tolerance that stands for "as fine as the path wants".
double toleranceFor(const Path& path, double tolerance);

} // namespace gui::draw
