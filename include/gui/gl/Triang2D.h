#pragma once

#include "Primitive.h"

#include <cnt/PushBackVector.h>
#include <td/Color.h>
#include <td/ColorID.h>
#include <td/Export.h>
#include <td/Point.h>

#include <glm/vec2.hpp>

#include <memory>
#include <span>
#include <tuple>
#include <utility>

namespace gui::gl
{

class Buffer;
class Command;
class SimplePolygon;
class VertexFinder;

/// Turns 2D shapes into what GL draws: filled polygons, polylines of any width, and lines over vertices that a buffer
/// already holds.
///
/// Each shape has a form that appends to two lists of the caller, and one that appends to a Buffer whose layout is one
/// Vec2 and records the draw in the buffer's command list. Both give the same vertices and indices. Commands come
/// without colour and not encoded: set a colour, call Buffer::encode, and when all is appended commit the buffer. Forms
/// with a colour leave only the last of these to do, and Program::draw does that.
/// @code
/// gui::gl::Triang2D triang(200);
/// triang.triangulate(&_buffer, lake, td::ColorID::SteelBlue);
/// triang.triangulateLine(&_buffer, river, 2, false, td::ColorID::SteelBlue);
/// @endcode
/// Coordinates are in the caller's units, and y grows upwards where left, right and clockwise are spoken of. Results
/// are the same to the last bit on every machine. It is one outline at a time: holes are not known.
///
/// Two things to know of polygons. One of four corners is always a fan from its first corner: where it bends inwards at
/// the second or the fourth, the fan spills over the edge, so begin at the corner that bends inwards. And no triangle
/// that is cut from a polygon is smaller than 1e-10 in doubled area, in square units: corners of shapes that measure
/// less than 1e-5 units across find no ear. Scale such shapes up. An object says in one line of the log, the first time
/// only, that a polygon could not be filled: "Warning! Triang2D::triangulate the fan of a polygon of four corners
/// leaves it" or "Warning! Triang2D::triangulate found no ear in a polygon of N corners, of which N were left".
///
/// An object keeps working memory from call to call, so use one for many shapes. Not copyable; one object must not be
/// used from two threads at once. A buffer that is committed is refused: null, with the buffer's own log line and
/// assertion.
class GUIGL_API Triang2D
{
public:
    /// Vertices, and what counts them.
    using Points = cnt::PushBackVector<td::Point<float>, 0>;
    using Indices = cnt::PushBackVector<unsigned int, 0>;

    /// What triangulate returns with 0 when there is nothing to draw: no primitive, one past the last.
    static constexpr Primitive cNothing = static_cast<Primitive>(8);

    /// @param nExpectedPoints  corners to make room for; larger polygons are accepted, and make room for themselves
    explicit Triang2D(unsigned int nExpectedPoints);
    ~Triang2D();
    Triang2D(const Triang2D&) = delete;
    Triang2D& operator=(const Triang2D&) = delete;

    /// Fills a simple polygon, one whose edges meet at its corners only. Appends its n corners to vertices; one that is
    /// fannable (see isConvex) needs no indices and is stored from its odd corner on, any other gets three indices for
    /// each of its n - 2 triangles, which turn left.
    /// @param points    n corners in either direction, the first not repeated at the end. A polygon of 4 is always
    ///                  taken for fannable, from its first corner (see above)
    /// @param n         at least 3 (an assertion)
    /// @param indices   count from the first of vertices
    /// @return TriangleFan and 0: draw the n vertices appended as a fan. Triangles and the number of indices appended:
    ///         draw those. cNothing and 0 when no ear is found, as in many polygons that cross themselves (the corners
    ///         stay appended), or fewer than 3 points are given (nothing is appended)
    std::pair<Primitive, unsigned int> triangulate(const td::Point<float>* points, unsigned int n, Points& vertices,
                                                   Indices& indices);
    std::pair<Primitive, unsigned int> triangulate(const Points& points, Points& vertices, Indices& indices);

    /// The same into a buffer.
    /// @param pBuffer  open, its layout two floats; another writes "Error! Triang2D::triangulate obtained wrong stride
    ///                 size. Expected 2 elemens, obtained N elements" and asserts
    /// @return the command, owned by the buffer's command list and good until that next grows: an array draw of the fan
    ///         or an element draw of the triangles. Null when no ear is found (the corners stay appended), and for
    ///         misuse (nothing is appended)
    Command* triangulate(Buffer* pBuffer, const td::Point<float>* points, unsigned int n);
    Command* triangulate(Buffer* pBuffer, const Points& points);
    /// The same with its colour, as Command::setColor takes it, and encoded.
    Command* triangulate(Buffer* pBuffer, std::span<const td::Point<float>> points, td::ColorID color);
    Command* triangulate(Buffer* pBuffer, std::span<const td::Point<float>> points, td::Color color);

    /// A band along a polyline, as triangles that turn left. Each point becomes a pair of vertices, on the left and on
    /// the right of the direction of travel; where the corner of the outer edge would lie further than 2 * width from
    /// the point, at turns of more than 120 degrees, it is cut off at the distance width and there are two pairs.
    /// A straight continuation has no corner. Where the line turns back, it ends square, width beyond the point.
    /// Beside the cut of a turn to the right the outer edge closes in on the line, to width * |cos(turn)|: by half of
    /// it at 120 degrees, by hardly anything near 180. Turns to the left keep it.
    /// @param points  n points, not those of vertices. One equal to its predecessor is left out, and so are those at
    ///                the end of a closed line that equal the first
    /// @param n       at least 2 (an assertion)
    /// @param width   from the line to each edge: the band is twice as thick. Above 0
    /// @param closed  whether the last point is joined to the first
    /// @param indices  count from the first of vertices
    /// @return Triangles, the number of vertices and of indices appended. Both are 0, and nothing is appended, with
    ///         fewer than two distinct points or a width of 0 or NaN. Points that are not finite, or so close together
    ///         that the square of their distance is no float (1e-23), make vertices that are not finite
    std::tuple<Primitive, unsigned int, unsigned int> triangulateLine(const td::Point<float>* points, unsigned int n,
                                                                      float width, bool closed, Points& vertices,
                                                                      Indices& indices);

    /// The same into a buffer whose layout is two floats; another layout is an assertion.
    /// @return the command, owned by the buffer's command list and good until that next grows: an element draw. Null
    ///         when there is nothing to draw, and for misuse
    Command* triangulateLine(Buffer* pBuffer, const td::Point<float>* points, unsigned int n, float width, bool closed);
    /// The same with its colour, and encoded.
    Command* triangulateLine(Buffer* pBuffer, std::span<const td::Point<float>> points, float width, bool closed,
                             td::ColorID color);
    Command* triangulateLine(Buffer* pBuffer, std::span<const td::Point<float>> points, float width, bool closed,
                             td::Color color);

    /// Draws a primitive through points that the buffer already holds: the outline of a filled polygon, say. Only
    /// indices are appended, one for each point, in their order.
    /// @param pBuffer  open, its layout two floats; another writes "Error! Triang2D::createRecycledLine wrong input
    ///                 data! This method can be used only with layouts having 2d points" and asserts
    /// @param points   nVerticesToSearch points, each equal to a vertex of the range. Of several equal vertices the
    ///                 first from the point's own place on is taken, else the first of the range. Vertices in the
    ///                 order of the points are the quickest to find; for others the object keeps some memory
    /// @param firstSearchPos, nVerticesToSearch  the range of vertices; past the buffer's end it writes "Error!
    ///                 Triang2D::createRecycledLine wrong input data! Number of vertices in buffer=N, lastSearchPos=N"
    ///                 and asserts
    /// @return the command, owned by the buffer's command list and good until that next grows. Null, with the buffer
    ///         and its list as they were, when a point is not in the range, and for misuse
    Command* createRecycledLine(Buffer* pBuffer, Primitive primitive, const td::Point<float>* points,
                                unsigned int firstSearchPos, unsigned int nVerticesToSearch);

private:
    void checkFan(const td::Point<float>* points, unsigned int n);
    bool cut(const td::Point<float>* points, unsigned int n);

    std::unique_ptr<SimplePolygon> _pSimplePolygon;
    std::unique_ptr<VertexFinder> _pVertexFinder;
    bool _hasSaidUnfilled = false;
};

/// Twice the signed area of a triangle: above 0 when a, b, c turn left.
GUIGL_API float crossProduct(const td::Point<float>& a, const td::Point<float>& b, const td::Point<float>& c);

/// Which way the path from a over b to c turns: 1 left, -1 right, 0 straight on, straight back, or NaN.
GUIGL_API int orientation(const td::Point<float>& a, const td::Point<float>& b, const td::Point<float>& c);

/// 1 above 0, -1 below, 0 for 0 and NaN.
template <typename T>
constexpr int sgn(T v)
{
    return (T(0) < v) - (v < T(0));
}

/// Whether a fan covers a simple polygon, judged by the turns at its corners.
/// @return whether it does; how many corners turn against all others, 0 or 1; where the fan starts: at the odd corner,
///         or at 0. Up to four points are not looked at: true, 0, 0. A polygon that no fan covers is false, 0, 0
GUIGL_API std::tuple<bool, unsigned int, unsigned int> isConvex(const td::Point<float>* points, unsigned int n);

/// From a line's first point, a, to the left edge of its band; b is the next point. The length is width, and the right
/// edge lies the other way. Not finite when a equals b; so for all of these.
GUIGL_API glm::vec2 getStartPointOutlineVector(const glm::vec2& a, const glm::vec2& b, float width);
GUIGL_API td::Point<float> getStartPointOutlineVector(const td::Point<float>& a, const td::Point<float>& b,
                                                      float width);

/// From a line's last point, b, to the left edge of its band; a is the point before.
GUIGL_API glm::vec2 getEndPointOutlineVector(const glm::vec2& a, const glm::vec2& b, float width);
GUIGL_API td::Point<float> getEndPointOutlineVector(const td::Point<float>& a, const td::Point<float>& b, float width);

/// From b to where the left edges of the bands along a, b and b, c meet: width / cos(turn / 2) long. When the line goes
/// straight on or straight back (the sine of the turn is at most 1e-4), they do not meet, and it is the vector of the
/// end of the band along a, b.
GUIGL_API glm::vec2 getMiddlePointOutlineVector(const glm::vec2& a, const glm::vec2& b, const glm::vec2& c,
                                                float width);
GUIGL_API td::Point<float> getMiddlePointOutlineVector(const td::Point<float>& a, const td::Point<float>& b,
                                                       const td::Point<float>& c, float width);

/// The same point for glm and for the toolkit.
inline glm::vec2 toGlm2(const td::Point<float>& pt) { return {pt.x, pt.y}; }
inline td::Point<float> toPt2(const glm::vec2& v) { return {v.x, v.y}; }

} // namespace gui::gl
