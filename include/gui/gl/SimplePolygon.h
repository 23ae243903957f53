#pragma once

#include <cnt/PushBackVector.h>
#include <cnt/SafeFullVector.h>
#include <td/Export.h>
#include <td/Point.h>

#include <cstddef>
#include <memory>

namespace gui::gl
{

class EarClipper;

/// Cuts a simple polygon into triangles by clipping its ears: three corners in a row that turn left, with no other
/// corner inside or on the edge of their triangle, lose the one in the middle until two are left.
///
/// Triang2D uses it for the polygons that no fan covers; use it alone when indices are all that is wanted. It keeps its
/// memory from call to call. Not copyable; one object must not be used from two threads at once.
class GUIGL_API SimplePolygon
{
public:
    /// @param nExpectedPoints  corners to make room for; larger polygons are accepted, and make room for themselves
    explicit SimplePolygon(std::size_t nExpectedPoints);
    ~SimplePolygon();
    SimplePolygon(const SimplePolygon&) = delete;
    SimplePolygon& operator=(const SimplePolygon&) = delete;

    /// On success getIndices() holds 3 (n - 2) corner numbers, three for each triangle:
    /// 1. all triangles turn left (y upwards), also when the corners go clockwise;
    /// 2. they cover a simple polygon exactly once;
    /// 3. they are the same, in the same order, on every machine.
    /// The first ear is looked for from the first corner on, each further one from behind the one before it. A corner
    /// on the edge of a triangle counts as inside, so one that is repeated keeps its neighbours from being ears.
    /// Neither is one an ear whose triangle is smaller than 1e-10 in doubled area, in square units of the points: of
    /// shapes less than 1e-5 units across there are none.
    /// @param points  n corners, below 2^30, the first not repeated at the end; read during the call only
    /// @return false when fewer than three corners are given or no corner of what is left is an ear, as in many
    ///         polygons that cross themselves; getIndices() then holds the triangles found so far
    bool triangulate(const td::Point<float>* points, unsigned int n);

    /// The result of the last call; others may clear and refill it.
    cnt::PushBackVector<unsigned int, 0>& getIndices() { return _indices; }
    const cnt::PushBackVector<unsigned int, 0>& getIndices() const { return _indices; }

    /// Whether P lies in the triangle A, B, C, which turns left, or on its edge.
    static bool insideTriangle(float Ax, float Ay, float Bx, float By, float Cx, float Cy, float Px, float Py);

private:
    float area() const;
    bool snip(int u, int v, int w, int nv) const;
    bool clipEars(int nv);

    const float _epsilon = 1e-10f;                           // doubled area below which a triangle is no ear
    const td::Point<float>* _points = nullptr;               // the caller's, of the last call
    cnt::SafeFullVector<unsigned int, false> _vertexIndices; // corners left, counter-clockwise
    cnt::PushBackVector<unsigned int, 0> _indices;
    unsigned int _nPoints = 0;
    std::unique_ptr<EarClipper> _pEarClipper; // for all but the smallest polygons
};

} // namespace gui::gl
