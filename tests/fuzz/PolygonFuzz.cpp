// Polygons: both forms of one object, and the plain form.

#include "Outlines.h"

namespace fuzz::polygon
{

namespace
{

void run(const std::uint8_t* bytes, std::size_t n)
{
    Input input(bytes, n);
    // The plain form takes up to the cube of the number of corners.
    const test::Outline points = takeOutline(input, 160);
    if (points.size() >= 3)
        require(shapes().isPolygon(points, test::reference::triangulate(points)));
}

const Target cTarget("polygon", run);

} // namespace

} // namespace fuzz::polygon
