#include "Coverage.h"
#include "support/OffscreenGL.h"

#include <gui/draw/Drawing.h>

#include <string>

namespace
{

using gui::draw::Affine;
using gui::draw::Cap;
using gui::draw::Drawing;
using gui::draw::FillRule;
using gui::draw::Join;
using gui::draw::Path;
using gui::draw::Stroke;
using gui::draw::Unit;
using test::Closeness;
using test::Coverage;

constexpr int cCell = 64;
constexpr int cColumns = 16;

/// A page of shapes, each in a cell of its own.
class SVGShapesTest : public test::OffscreenGL
{
protected:
    SVGShapesTest()
        : OffscreenGL({cColumns * cCell, 16 * cCell})
    {
    }

    /// Where the next cell is, which has a name.
    Affine next(std::string name)
    {
        const auto i = static_cast<int>(_names.size());
        _names.push_back(std::move(name));
        return Affine::translation(i % cColumns * cCell, i / cColumns * cCell);
    }

    void check(const Closeness& limits)
    {
        ASSERT_LE(_names.size(), cColumns * 16U);
        clear({255, 255, 255});
        ASSERT_TRUE(_drawing.draw(Affine()));
        const Coverage picture = test::readCoverage();
        for (int i = 0; i < static_cast<int>(_names.size()); ++i)
        {
            const int x = i % cColumns * cCell, y = i / cColumns * cCell;
            EXPECT_TRUE(isClose(picture, _exact, {x, y, x + cCell, y + cCell}, limits))
                << _names[static_cast<std::size_t>(i)];
        }
    }

    Drawing _drawing;
    Coverage _exact{cColumns * cCell, 16 * cCell};
    std::vector<std::string> _names;
};

TEST_F(SVGShapesTest, FillRules)
{
    for (const char* data : {
             "M8 8H56V56H8ZM20 20H44V44H20Z",                  // both the same way round
             "M8 8H56V56H8ZM20 20V44H44V20Z",                  // and not
             "M4 4H60V60H4ZM14 14H50V50H14ZM24 24V40H40V24Z",  // twice around,
                                                               // then once
             "M32 4L49 56L5 24H59L15 56Z",                     // a pentagram
             "M15 56L59 24H5L49 56L32 4Z",                     // and the other way round
             "M8 8H56V56H8ZM8 8H56V56H8Z",                     // a ring twice
             "M8 8H56V56H8ZM8 8V56H56V8Z",                     // a ring and back
             "M8 8H40V40H8ZM24 24H56V56H24ZM20 4L60 30L10 60", // three that
                                                               // overlap
             "M8 8H56L32 56M20 16H44L32 40",                   // open ones are closed
             "M8 8H40V40ZL8 56H24Z",                           // what follows Z begins where that began
             "M8 8L56 56ZM8 32H56M32 8",                       // no area
             "M8 56C120 0-56 0 56 56",                         // a loop
             "M8 32A24 24 0 1 1 56 32A24 24 0 1 1 8 32M20 32A12 8 30 1 0 44 "
             "32A12 8 30 1 0 20 32",
             "M4 4H60V12H4ZM4 12H60V20H4ZM4 20.5H60V20.75H4ZM32 "
             "24V60H32.25V24ZM40 24.1L40.1 60L40.2 24.1",
             "M8 8Q56 8 56 56Q8 56 8 8Q8 56 56 8",
         })
        for (const FillRule rule : {FillRule::NonZero, FillRule::EvenOdd})
        {
            const Path path =
                Path::fromSVG(data).transform(next(data + std::string(rule == FillRule::NonZero ? "" : ", even-odd")));
            _drawing.fill(path, td::Color(0, 0, 0, 255), rule);
            _exact.add(test::fillRings(path), rule);
        }
    // A curve's chords are up to 1/4096 of its size from it.
    check({3, 6, 6});
}

TEST_F(SVGShapesTest, Strokes)
{
    struct Row
    {
        const char* data;
        Stroke stroke;
        Affine map{};
    };
    const Affine cSkewed{1, .2, -.7, .6, 32, 10}, cMirrored{-.5, .6, .6, .5, 30, -4};
    const char *cSquare = "M16 16H48V48H16Z", *cZigzag = "M8 56L20 8L32 56L40 24H56";
    for (const Row& row : std::initializer_list<Row>{
             // Corners: right, acute, obtuse, straight, back again, in either
             // direction, open and closed.
             {"M12 44V16H44", {.width = 10}},
             {"M12 44L32 16L50 44", {.width = 10}},
             {"M6 26L32 20L58 26M6 48L32 54L58 48", {.width = 8}},
             {"M8 20H32H56M8 44L32 44.001L56 44", {.width = 10}},
             {"M16 24H48H20", {.width = 10}},
             {"M12 16H48L12 48Z", {.width = 8}},
             {"M16 16H48V48L16 16Z", {.width = 8}},
             {"M12 32H12H32V32V56", {.width = 10}},
             {"M24 24H40L32 38Z", {.width = 20}},
             {"M12 12L52 30L12 34L52 52", {.width = 3, .miterLimit = 100}},
             // Limits below and above what a right angle and one of 2 asin 0.1
             // take.
             {"M12 44V16H44", {.width = 10, .miterLimit = 1.414}},
             {"M12 44V16H44", {.width = 10, .miterLimit = 1.415}},
             {"M12 44V16H44", {.width = 10, .miterLimit = .5}},
             {"M59.70 28L20 32L59.70 36", {.width = 3, .miterLimit = 9.9}},
             {"M59.70 28L20 32L59.70 36", {.width = 3, .miterLimit = 10.1}},
             // Ends, also of lines that are short or nothing.
             {"M16 16H48M16 32V56M28 56L52 36", {.width = 8}},
             {"M32 32h1", {.width = 20}},
             {"M32 32L32 32", {.width = 20}},
             {"M32 32Z", {.width = 20}},
             {"M32 32C32 32 32 32 32 32H32Z", {.width = 20}},
             {"M32 32", {.width = 20}},
             {"M32 32L32 32", {.width = 20}, cSkewed},
             {"M16 24H40V24Z", {.width = 10}},
             // Dashes.
             {"M8 32H56", {.width = 8, .dashes = {8, 6}}},
             {"M8 32H56", {.width = 4, .dashes = {7}}},
             {"M8 32H56", {.width = 2, .dashes = {8, 4, 2}}},
             {"M8 32H56", {.width = 8, .dashes = {0, 12}}},
             {"M8 32H56", {.width = 8, .dashes = {12, 0}}},
             {"M8 32H56", {.width = 8, .dashes = {0, 0}}},
             {"M8 32H56", {.width = 8, .dashes = {-4, 8}}},
             {"M8 32H56", {.width = 4, .dashes = {10, 6, 0, 6}, .dashOffset = -5}},
             {"M8 32H56", {.width = 4, .dashes = {10, 6, 4}, .dashOffset = 107}},
             {"M8 32H56", {.width = 4, .dashes = {8, 8}, .dashOffset = 8}}, // one of length 0 at the beginning
             {"M8 32H48", {.width = 4, .dashes = {10, 10}}},                // and none at the end
             {"M8 32H56", {.width = 8, .dashes = {100, 10}}},
             {"M8 16H56M8 32H56M8 48H32L56 52", {.width = 4, .dashes = {10, 8}, .dashOffset = 3}},
             {"M32 32Z", {.width = 20, .dashes = {10, 10}}},
             {"M32 32Z", {.width = 20, .dashes = {10, 10}, .dashOffset = 15}},
             {cSquare, {.width = 8, .dashes = {20, 12}}},
             {cSquare, {.width = 8, .dashes = {20, 12}, .dashOffset = 10}},
             {cSquare, {.width = 8, .dashes = {32, 32}}}, // from corner to corner
             {cSquare, {.width = 8, .dashes = {200, 10}}},
             {cSquare, {.width = 8, .dashes = {0, 15}}},
             {cZigzag, {.width = 4, .dashes = {20, 10}}},
             {cZigzag, {.width = 6, .miterLimit = 10, .dashes = {70, 12}}},
             {"M32 8A24 24 0 1 1 31.9 8Z", {.width = 6, .dashes = {12, 9}}},
             {"M8 56C56 8 8 8 56 56", {.width = 4, .dashes = {15, 8}}},
             {"M8 32H56", {.width = 10, .dashes = {.01, .01}}},
             // Curves: arcs, a loop, nearly a cusp, ones that begin slowly.
             {"M10 32A20 16 30 1 1 54 32", {.width = 8}},
             {"M32 10A22 22 0 1 1 31.99 10Z", {.width = 12}},
             {"M32 26A26 6 0 1 1 31.99 26Z", {.width = 10}},
             {"M8 48C110 0-46 0 56 48", {.width = 6}},
             {"M8 52C54 12 10 12 56 52", {.width = 10}},
             {"M12 20C12 20 12 48 52 48", {.width = 10}},
             {"M12 32C12 32 52 32 52 32", {.width = 10}},
             {"M8 40Q32 0 32 32T56 20", {.width = 6}},
             {"M31 14L32 12L33 14", {.width = 20}},
             // Maps turn, skew and mirror what the brush leaves.
             {"M12 44L32 16L50 44", {.width = 10}, cSkewed},
             {cSquare, {.width = 10}, cMirrored},
             {cSquare, {.width = 8, .dashes = {20, 12}}, cSkewed},
             {cZigzag, {.width = 3, .miterLimit = 10, .dashes = {70, 12}}, cSkewed},
             {"M10 32A20 16 30 1 1 54 32", {.width = 8, .dashes = {9, 12}}, Affine{1, 0, 0, .2, 0, 25}},
         })
        for (int look = 0; look < 3; ++look)
        {
            Stroke stroke = row.stroke;
            stroke.cap = Cap(look);
            stroke.join = Join((look + 1) % 3);
            stroke.unit = stroke.dashUnit = Unit::Model;
            const Path path = Path::fromSVG(row.data);
            const Affine map =
                next(std::to_string(_names.size() / 3) + ": " + row.data + ", look " + std::to_string(look)) * row.map;
            _drawing.setTransform(_drawing.stroke(path, stroke, td::Color(0, 0, 0, 255)), map);
            _exact.add(test::mapped(test::strokeRings(path, stroke), map), FillRule::NonZero);
        }
    check({6, 30, 30});
}

} // namespace
