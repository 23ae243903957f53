#pragma once

#include "Affine.h"
#include "Hatch.h"
#include "PathSegment.h"
#include "Polylines.h"

#include <td/Export.h>
#include <td/Point.h>
#include <td/RectNormalized.h>

#include <cstddef>
#include <iterator>
#include <optional>
#include <ranges>
#include <string_view>
#include <utility>
#include <vector>

namespace gui::draw
{

/// What has an x and a y (td::Point, glm vectors) or two numbers to take apart (std::pair, std::array of two).
template <typename T>
concept PointLike = requires(const T& point)
{
    {double(point.x)};
    {double(point.y)};
}
|| requires(const T& point)
{
    requires std::tuple_size<T>::value == 2;
    {double(std::get<0>(point))};
    {double(std::get<1>(point))};
};

/// Such a point in double precision.
template <PointLike T>
td::Point<double> toPoint(const T& point)
{
    if constexpr (requires { point.x; })
        return {double(point.x), double(point.y)};
    else
        return {double(std::get<0>(point)), double(std::get<1>(point))};
}

/// Points in a row in memory: a vector, an array or a span of them.
template <typename T>
concept PointRange =
    std::ranges::contiguous_range<T> && std::ranges::sized_range<T> && PointLike<std::ranges::range_value_t<T>>;

/// Lines and curves in double precision, in subpaths that are open or closed: a shape without a colour or a width.
///
///     #include <gui/draw/Path.h>
///     #include <cstdio>
///
///     int main()
///     {
///         const gui::draw::Path path = gui::draw::Path::fromSVG("M 0 0 H 30 A 10 10 0 0 1 30 20 H 0 Z");
///         std::printf("%g long\n", path.getLength());
///     }
///
/// It is a value: copied, moved, compared with nothing else; for any thread, one at a time. Building operations return
/// the path, so that they can follow each other:
///
///     Path arrow;
///     arrow.moveTo({0, 0}).lineTo({8, 4}).lineTo({0, 8}).close();
///
/// A subpath begins with moveTo; a lineTo, quadTo, cubicTo or arcTo without one begins at its own first point, and
/// after close at the point where the subpath before began. Which way y grows is the user's; "clockwise" below means
/// downwards. Arcs stay arcs: transforming them, their bounds and flattening them are as exact as for lines. Numbers
/// that are not finite are taken as they are; bounds pass over NaN, and fills over such points.
class GUIGL_API Path
{
public:
    using Point = td::Point<double>;         ///< in model units
    using Rect = td::RectNormalized<double>; ///< in model units
    /// What a segment is.
    using Verb = PathSegment::Verb;

    /// What is wrong with path data: where, and what should stand there.
    struct SVGError
    {
        std::size_t position = 0;  ///< in bytes from the beginning; the size of the text when it ends too early
        const char* expected = ""; ///< such as "a number" or "0 or 1"; lives for ever
    };

    /// The segments in their order, each made when it is asked for: `for (const PathSegment& segment : path)`.
    class GUIGL_API Iterator
    {
    public:
        using value_type = PathSegment;                    ///< what it makes
        using difference_type = std::ptrdiff_t;            ///< as iterators have one
        using iterator_category = std::input_iterator_tag; ///< segments are made, not kept

        Iterator() = default;
        PathSegment operator*() const;
        Iterator& operator++();
        Iterator operator++(int);
        bool operator==(const Iterator& other) const { return _verb == other._verb; }

    private:
        friend class Path;

        const Path* _pPath = nullptr;
        std::size_t _verb = 0, _point = 0, _arc = 0;
        Point _at, _start;
    };

    /// What SVG path data say, up to the first error, as SVG wants them shown. @param pError  may be null; else it is
    /// filled when there is an error and left alone when there is none
    static Path fromSVG(std::string_view data, SVGError* pError = nullptr);

    /// Begins a subpath. One that has nothing but its beginning goes.
    Path& moveTo(Point p);
    Path& lineTo(Point p);
    Path& quadTo(Point control, Point p);
    Path& cubicTo(Point control1, Point control2, Point p);
    /// An elliptical arc to a point, as SVG's command A has it: radii without sign, enlarged when they don't reach, a
    /// line when one is 0, and nothing when it ends where it begins.
    /// @param rotation   of the ellipse's first axis, in radians
    /// @param isLarge    of the two arcs on each side, the longer one
    /// @param isPositive the one on which angles grow
    Path& arcTo(Point radii, double rotation, bool isLarge, bool isPositive, Point p);
    /// Closes the subpath with a line to its beginning. Without a subpath it does nothing.
    Path& close();

    /// A piece of an ellipse, after a line from the current point to its beginning; without one it begins there.
    /// @param start, sweep  angles in radians before the ellipse is rotated; a sweep beyond a full turn goes on turning
    Path& arc(Point center, Point radii, double start, double sweep, double rotation = 0);

    /// Whole subpaths, clockwise from the left top corner, or from the right end of the horizontal axis. Radii are
    /// limited to half of the sides, each to half of its own; a single one is that of circles at any size, limited to
    /// half of the shorter sides: `path.addRoundedRect(box, 8)`.
    Path& addRect(const Rect& rect);
    Path& addRoundedRect(const Rect& rect, Point radii);
    Path& addRoundedRect(const Rect& rect, double radius);
    Path& addEllipse(Point center, Point radii);
    Path& addCircle(Point center, double radius) { return addEllipse(center, {radius, radius}); }

    /// An open or a closed subpath through points; nothing for no points.
    template <PointRange Points>
    Path& addPolyline(const Points& points)
    {
        reserve(std::ranges::size(points));
        bool isFirst = true;
        for (const auto& point : points)
        {
            isFirst ? moveTo(toPoint(point)) : lineTo(toPoint(point));
            isFirst = false;
        }
        return *this;
    }
    template <PointRange Points>
    Path& addPolygon(const Points& points)
    {
        return std::ranges::empty(points) ? *this : addPolyline(points).close();
    }

    /// All subpaths of another path, or of itself.
    Path& addPath(const Path& path);
    /// The path data of SVG 2, and exponents, which its grammar leaves out and everybody writes: all commands, absolute
    /// and relative, smooth ones, arcs whose flags run together ("a1 1 0 0110 10"), numbers that do ("1.5.5-3").
    /// @return false when something is wrong; what stands before it was added, and pError (may be null) says where
    bool addSVG(std::string_view data, SVGError* pError = nullptr);

    /// Moves all of the path as the map says.
    Path& transform(const Affine& affine);
    /// The same, of a copy.
    Path transformed(const Affine& affine) const;

    /// Makes room for so many more lines.
    void reserve(std::size_t nLines);
    void clear();

    bool isEmpty() const { return _verbs.empty(); }
    /// Whether both are made of the same calls.
    bool operator==(const Path&) const = default;
    /// Whether there is anything but straight lines in it.
    bool hasCurves() const;
    /// Where the next segment begins; 0, 0 in an empty path.
    Point getCurrentPoint() const;

    Iterator begin() const;
    Iterator end() const;

    /// The smallest rectangle around everything that the path draws, curves' turning points included; its numbers are
    /// off by rounding alone. A moveTo without anything after it draws nothing. Empty when nothing is drawn.
    std::optional<Rect> getBounds() const;

    /// The length of all segments, closing lines included. Takes an integration for each curve.
    double getLength() const;

    /// A point on the path and the way on from there.
    struct Place
    {
        Point position;
        Point direction; ///< of length 1; 0, 0 on a segment that is one point
    };
    /// The place at a length from the beginning, which is held between 0 and getLength(); gaps between subpaths have no
    /// length. Empty when nothing is drawn. Takes as long as getLength.
    std::optional<Place> placeAt(double length) const;

    /// Lines within the path's area, to be stroked; open subpaths are closed. Cross-hatching is two of them.
    ///
    ///     drawing.stroke(wall.hatched({.spacing = 150}), {.width = 0.7}, "#7a6a40");
    ///
    /// Curves are taken as a drawing takes them, to 1/4096 of the path's size.
    /// @return nothing where the path has no area, spacing is not above 0 or a number is not finite; nor, after
    ///         "Warning! Path::hatched: lines at a distance of 1e-09 are too many for an area of 40", where they cross
    ///         edges a million times
    Path hatched(const Hatch& hatch) const;

    /// The path as straight lines: each point of either is within the tolerance of the other, up to the 65,536 lines
    /// that a single curve gets at most. Beginnings and ends of segments stay as they are, to the bit. A moveTo without
    /// anything after it gives no line; a subpath that stands still gives one of a single point or of equal points.
    /// @param tolerance  above 0 (else it is an assertion, and nothing is appended)
    /// @param result     what the lines are appended to
    /// @param hasTangents  adds a point close to each end of a curve, so that the lines that meet its ends have its
    ///                     direction there: for strokes
    void flatten(double tolerance, Polylines& result, bool hasTangents = false) const;
    Polylines flatten(double tolerance) const;

private:
    Path& addArc(const PathSegment::Arc& arc, Point to);
    void startAt(Point p);

    std::vector<Verb> _verbs;
    std::vector<Point> _points;          // one for MoveTo, LineTo, ArcTo, two for QuadTo, three for CubicTo
    std::vector<PathSegment::Arc> _arcs; // one for ArcTo
    std::size_t _start = 0;              // the point where the current subpath began
};

} // namespace gui::draw
