#include <common/TopoJSON.h>

#include <gui/Res.h>
#include <support/CapturedLog.h>

#include <string>

namespace
{

using examples::TopoJSON;

// Two triangles that share the arc from (1, 0) to (0, 1), in steps of half a degree from (10, 20).
constexpr const char* cTwoTriangles = R"({"type": "Topology",
 "transform": {"scale": [0.5, 0.5], "translate": [10, 20]},
 "arcs": [[[1, 0], [-1, 1]], [[0, 1], [0, -1], [1, 0]], [[0, 1], [1, 0], [0, -1]]],
 "objects": {"areas": {"type": "GeometryCollection", "geometries": [
  {"type": "Polygon", "arcs": [[0, 1]], "properties": {"name": "Ä", "size": 3}},
  {"type": "MultiPolygon", "arcs": [[[2, 0]]]}]}}})";

std::string replaced(const std::string& part, const std::string& by)
{
    std::string text = cTwoTriangles;
    const std::size_t place = text.find(part);
    EXPECT_NE(place, std::string::npos) << part;
    return text.replace(place, part.size(), by);
}

std::string repeated(const std::string& part, int n)
{
    std::string text;
    for (int i = 0; i < n; ++i)
        text += part;
    return text;
}

TEST(TopoJSON, SharedArcsAreReadBothWays)
{
    TopoJSON two;
    ASSERT_TRUE(two.load(replaced("[[2, 0]]", "[[-3, -1]]"), "areas")) << "both arcs backwards";
    ASSERT_TRUE(two.load(cTwoTriangles, "areas"));
    ASSERT_EQ(two.getAreas().size(), 2U);
    EXPECT_EQ(two.getAreas()[0].name, "Ä");
    EXPECT_EQ(two.getAreas()[1].name, "");
    const TopoJSON::Ring expected = {{10.5, 20}, {10, 20.5}, {10, 20}};
    EXPECT_EQ(two.getAreas()[0].polygons, std::vector<TopoJSON::Polygon>{{expected}});
    ASSERT_EQ(two.getBorders().size(), 1U);
    EXPECT_EQ(two.getBorders()[0].areas, (std::vector<std::size_t>{0, 1}));
    EXPECT_EQ(two.getBorders()[0].line, (TopoJSON::Ring{{10.5, 20}, {10, 20.5}}));
    ASSERT_EQ(two.getCoasts().size(), 2U);
    EXPECT_EQ(two.getCoasts()[0].line, (TopoJSON::Line{{10, 20.5}, {10, 20}, {10.5, 20}}));
    EXPECT_EQ(two.getCoasts()[1].areas, std::vector<std::size_t>{1});
    EXPECT_EQ(two.getCoasts()[1].line, (TopoJSON::Line{{10, 20.5}, {10.5, 20.5}, {10.5, 20}}));
    // What lies along the edge of a map is no coast.
    TopoJSON atEdge;
    ASSERT_TRUE(atEdge.load(replaced("[10, 20]", "[179.5, 20]"), "areas"));
    EXPECT_EQ(atEdge.getCoasts()[1].line, (TopoJSON::Line{{179.5, 20.5}, {180, 20.5}}));
    EXPECT_EQ(two.color(6), (std::vector<std::size_t>{0, 1}));
    // Of a coast with a zigzag of half degrees, what is left are points a degree apart and its ends.
    const std::string zigzag =
        replaced("[[0, 1], [0, -1], [1, 0]]", "[[0, 1], [-1, 0], [-1, 0], [-1, 0], [0, -1], [0, -1], [1, 0], [3, 1]]");
    ASSERT_TRUE(two.load(zigzag, "areas", 1));
    EXPECT_EQ(two.getCoasts()[0].line, (TopoJSON::Line{{10, 20.5}, {9, 20.5}, {8.5, 19.5}, {10.5, 20}}));
}

TEST(TopoJSON, RefusesWhatIsBrokenAndKeepsWhatItHas)
{
    // A small file of a long arc that one ring names over and over.
    std::string tooMany = replaced("[-1, 1]]", repeated("[0, 0], ", 20'000) + "[-1, 1]]");
    tooMany.replace(tooMany.find("[0, 1]], \"properties\""), 1, '[' + repeated("0, -1, ", 250));

    const struct
    {
        std::string text;
        const char* cause;
    } cases[] = {
        {"", "no valid JSON"},
        {std::string(cTwoTriangles).substr(0, 200), "no valid JSON"},
        {std::string(100'000, '['), "no valid JSON"},
        {replaced("Ä", "\xff"), "no valid JSON"},
        {replaced("[10, 20]", "[1e999, 20]"), "no valid JSON"},
        {"[1, 2]", "no TopoJSON"},
        {replaced("Topology", "Feature"), "no TopoJSON"},
        {replaced("\"objects\"", "\"object\""), "file has no \"objects\""},
        {replaced("\"areas\"", "\"area\""), "file has no \"areas\""},
        {replaced("geometries", "features"), "object has no list \"geometries\""},
        {replaced("\"arcs\": [[[1", "\"curves\": [[[1"), "file has no list \"arcs\""},
        {replaced("[0.5, 0.5]", "0.5"), "transform has no list \"scale\""},
        {replaced("[0.5, 0.5]", "[0.5]"), "scale is no pair of numbers"},
        {replaced("[[1, 0], [-1, 1]]", "[[1, 0]]"), "arc 0 has fewer than two positions"},
        {replaced("[[1, 0], [-1, 1]]", "[[1, 0], [-1]]"), "arc 0 is no pair of numbers"},
        {replaced("[[1, 0], [-1, 1]]", "[[1, 0], [\"-1\", 1]]"), "arc 0 is no pair of numbers"},
        {replaced("[[1, 0], [-1, 1]]", "[[1, 0], [-1, 1e300]]"), "arc 0 leaves the globe"},
        {replaced("[[1, 0], [-1, 1]]", "[[1, 0], [-1, 141]]"), "arc 0 leaves the globe"},
        {replaced("\"Polygon\"", "\"Point\""), "geometry 0 is neither Polygon nor MultiPolygon"},
        {replaced("\"type\": \"Polygon\", ", ""), "geometry 0 has no \"type\""},
        {replaced("{\"type\": \"Polygon\"", "7, {\"type\": \"Polygon\""), "geometry 0 has no \"type\""},
        {replaced("[[2, 0]]", "7"), "geometry 1 has a polygon that is no list of rings"},
        {replaced("[[0, 1]]", "[0, 1]"), "geometry 0 has a ring that is no list of arcs"},
        {replaced("[[0, 1]]", "[[]]"), "geometry 0 has a ring that is no list of arcs"},
        {replaced("[[0, 1]]", "[[0.5, 1]]"), "geometry 0 names an arc that is no number"},
        {replaced("[[0, 1]]", "[[3, 1]]"), "geometry 0 names arc 3 of 3"},
        {replaced("[[0, 1]]", "[[-4, 1]]"), "geometry 0 names arc -4 of 3"},
        {replaced("[[0, 1]]", "[[18446744073709551615, 1]]"), "geometry 0 names arc 18446744073709551615 of 3"},
        {replaced("[[0, 1]]", "[[-9223372036854775808]]"), "geometry 0 names arc -9223372036854775808 of 3"},
        {replaced("[[0, 1]]", "[[0, -2]]"), "geometry 0 has arcs that don't meet"},
        {replaced("[[0, 1]]", "[[1]]"), "geometry 0 has a ring that is not closed"},
        {replaced("[[0, 1]]", "[[0, -1]]"), "geometry 0 has a ring that is not closed"},
        {tooMany, "more than 10000000 points"},
    };

    test::CapturedLog log;
    TopoJSON two;
    ASSERT_TRUE(two.load(cTwoTriangles, "areas"));
    for (const auto& [text, cause] : cases)
    {
        EXPECT_FALSE(two.load(text, "areas")) << cause;
        EXPECT_TRUE(log.said(std::string("ERROR! TopoJSON::load cannot read object: areas (") + cause + ')'));
    }
    EXPECT_EQ(two.getNoOfRings(), 2U);
}

} // namespace
