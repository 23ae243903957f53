// Rings cut into triangles: whatever they are, the area is covered once, exactly.

#include "Fuzz.h"
#include "draw/FillChecks.h"

namespace fuzz::fill
{

namespace
{

void run(const std::uint8_t* bytes, std::size_t nBytes)
{
    Input input(bytes, nBytes);
    const unsigned int way = input.below(4);
    const auto rule = input.below(2) == 0 ? gui::draw::FillRule::NonZero : gui::draw::FillRule::EvenOdd;
    // Ways 0 and 1 are on a grid of 16 by 16, the first with crossings rounded to it; way 3 is any bits.
    test::Rings rings;
    std::size_t nPoints = 0;
    while (input.left() > 0 && nPoints < 100)
    {
        auto& ring = rings.emplace_back();
        for (unsigned int n = input.below(16); n > 0 && input.left() > 0; --n, ++nPoints)
        {
            if (way == 3)
            {
                const auto x = input.take<double>();
                ring.emplace_back(x, input.take<double>());
            }
            else if (way == 2)
            {
                const double x = input.take<std::uint16_t>();
                ring.emplace_back(x, input.take<std::uint16_t>());
            }
            else
            {
                const unsigned int both = input.take<std::uint8_t>();
                ring.emplace_back(both % 16, both / 16);
            }
        }
    }
    gui::draw::FillTessellator fill;
    if (way == 0)
        fill.setLeastStep(1);
    for (const auto& ring : rings)
        fill.addRing(ring);
    fill.tessellate(rule);
    const std::string mesh = test::checkMesh(fill);
    require(mesh.empty(), mesh.c_str());
    if (way != 3)
    {
        const double size = way == 2 ? 65536 : 16;
        const std::string area = test::checkArea(fill, rings, rule, size, way == 0 ? 0.75 : 0.01 * size / 16);
        require(area.empty(), area.c_str());
    }
}

const Target cTarget("fill", run);

} // namespace

} // namespace fuzz::fill
