// Thick lines: both forms of one object, and the plain form; lines over vertices that a buffer holds.

#include "Outlines.h"

namespace fuzz::line
{

namespace
{

void run(const std::uint8_t* bytes, std::size_t n)
{
    Input input(bytes, n);
    const bool isClosed = input.below(2) == 0;
    const float width = input.below(2) == 0 ? input.take<float>() : static_cast<float>(input.below(256)) / 16;
    const unsigned int first = input.below(8), stride = 1 + input.below(8), moved = input.below(256);
    const test::Outline points = takeOutline(input, 400);
    if (points.size() < 2)
        return;
    const test::Tessellation band = test::reference::triangulateLine(points, width, isClosed);
    require(shapes().isLine(points, {width, isClosed}, band));

    // Some of the band's vertices, in an order of their own; one of them perhaps elsewhere.
    const test::Outline& stored = band.vertices;
    test::Outline wanted;
    for (std::size_t i = 0; i < stored.size(); ++i)
        wanted.push_back(stored[(first + i * stride) % stored.size()]);
    if (moved < wanted.size())
        wanted[moved].x += 1;
    if (!wanted.empty())
        require(shapes().isRecycled(stored, wanted, test::reference::recycle(stored, wanted, 0)));
}

const Target cTarget("line", run);

} // namespace

} // namespace fuzz::line
