// Polygons: both forms of one object, and the plain form.

#include "Outlines.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t n)
{
    fuzz::Input input(bytes, n);
    // The plain form takes up to the cube of the number of corners.
    const test::Outline points = fuzz::takeOutline(input, 160);
    if (points.size() >= 3)
        fuzz::require(fuzz::shapes().isPolygon(points, test::reference::triangulate(points)));
    return 0;
}
