#include "TessellationFixture.h"

#include <common/TopoJSON.h>
#include <gui/Res.h>

#include <algorithm>
#include <span>
#include <vector>

namespace
{

using test::Outline;
using test::Tessellation;

class WorldRingsTest : public test::Tessellating
{
protected:
    static std::vector<Outline> load()
    {
        std::vector<Outline> rings;
        examples::TopoJSON world;
        std::span<const td::BYTE> file;
        if (!gui::Res::getCompiled(":test/countries-50m.json", file) ||
            !world.load({reinterpret_cast<const char*>(file.data()), file.size()}, "countries"))
            return rings;
        for (const examples::TopoJSON::Area& area : world.getAreas())
        {
            for (const examples::TopoJSON::Polygon& polygon : area.polygons)
            {
                for (const examples::TopoJSON::Ring& ring : polygon)
                {
                    Outline& outline = rings.emplace_back();
                    for (const td::Point<double>& p : ring)
                        outline.push_back({static_cast<float>(p.x), static_cast<float>(p.y)});
                }
            }
        }
        return rings;
    }
};

TEST_F(WorldRingsTest, EveryCountryIsFilledAsByThePlainForm)
{
    std::vector<Outline> rings = load();
    ASSERT_EQ(rings.size(), 1629U);
    std::size_t nFailed = 0;
    for (int winding = 0; winding < 2; ++winding)
    {
        for (Outline& ring : rings)
        {
            SCOPED_TRACE(&ring - rings.data());
            const Tessellation expected = test::reference::triangulate(ring);
            ASSERT_TRUE(isPolygon(ring, expected));
            const bool isFilled = expected.primitive != static_cast<gui::gl::Primitive>(8);
            nFailed += isFilled ? 0 : 1;
            // Four corners are taken for a fan from the first, whether it fits or not.
            if (isFilled && ring.size() != 4)
            {
                EXPECT_TRUE(coversOnce(expected, ring));
            }
            std::reverse(ring.begin(), ring.end());
        }
    }
    // Four lead across the antimeridian: where longitudes jump they cross themselves, in both directions.
    EXPECT_EQ(nFailed, 8U);
}

// Borders of a constant width on screen, at a zoom that shows the world and at one that shows a street.
TEST_F(WorldRingsTest, EveryBorderIsTheBandOfThePlainForm)
{
    for (const Outline& ring : load())
        for (const float width : {0.1f, 1e-4f})
            ASSERT_TRUE(isLine(ring, {width, true}, test::reference::triangulateLine(ring, width, true)));
}

} // namespace
