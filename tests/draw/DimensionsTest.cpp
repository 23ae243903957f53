#include "Coverage.h"
#include "support/OffscreenGL.h"

#include <gui/draw/Dimensions.h>
#include <gui/draw/ScaleBar.h>

#include <array>
#include <cmath>
#include <limits>
#include <string>

namespace
{

using namespace gui::draw;
using test::Coverage;
using Point = Drawing::Point;

constexpr double cNoNumber = std::numeric_limits<double>::quiet_NaN();

class DimensionsTest : public test::OffscreenGL
{
protected:
    DimensionsTest()
        : OffscreenGL({400, 200})
    {
    }

    /// With a point of the model at (100, 100) points.
    static Coverage drawn(Drawing& drawing, Point at, double zoom, double up, double scale = 1)
    {
        const Affine toView =
            Affine::translation(100, 100) * Affine::scaling(zoom, -up * zoom) * Affine::translation(-at.x, -at.y);
        clear({255, 255, 255});
        EXPECT_TRUE(drawing.draw(toView, scale));
        return test::readCoverage();
    }
};

// An end that a zoom, a far place or a y that grows downwards moves, stretches or turns the wrong way round; one whose
// arrow turns round too late, or whose tick does.
TEST_F(DimensionsTest, EndsLookTheSameEverywhere)
{
    for (const DimensionStyle::End end : {DimensionStyle::End::Arrow, DimensionStyle::End::Tick})
    {
        const bool isTick = end == DimensionStyle::End::Tick;
        const auto endOf = [&](Point from, double length, double zoom, double up, double scale = 1)
        {
            Drawing drawing;
            Dimensions dimensions(drawing);
            dimensions.addLinear(from, {from.x + length, from.y}, {0, up * 20 / zoom},
                                 {.text = {.size = 9},
                                  .paint = "#000",
                                  .arrow = 10,
                                  .gap = 5,
                                  .overshoot = 4,
                                  .label = "12",
                                  .end = end});
            return drawn(drawing, from, zoom, up, scale);
        };
        const Coverage usual = endOf({0, 0}, 100, 1, 1);
        EXPECT_GT(usual.at(110, 80), 0.4) << "the line";
        EXPECT_GT(usual.at(100, 90), 0.4) << "the extension";
        EXPECT_GT(usual.at(100, 77), 0.4) << "beyond the line";
        EXPECT_EQ(usual.at(100, 97) + usual.at(100, 74), 0) << "a gap, and the end";
        EXPECT_EQ(usual.at(102, 77) > 0.5, isTick) << "the upper half of a tick";
        EXPECT_EQ(usual.at(97, 82) > 0.5, isTick) << "and its other end";
        EXPECT_EQ(usual.at(109, 78) > 0.1, !isTick) << "the back of an arrow";
        const Coverage::Region region{80, 60, 135, 110};
        EXPECT_TRUE(isClose(endOf({0, 0}, 1, 100, 1), usual, region, {1, 3, 3}));
        EXPECT_TRUE(isClose(endOf({1e7 + .001, 5e6}, .0001, 1e6, 1), usual, region, {5, 26, 26}));
        EXPECT_TRUE(isClose(endOf({0, 0}, 1e4, .01, -1), usual, region, {1, 3, 3}));
        EXPECT_TRUE(isClose(endOf({3, 0}, 1e9, 1, 1), usual, {80, 60, 120, 110}, {1, 3, 3})) << "zoomed into";
        const Coverage narrow = endOf({0, 0}, 24, 1, 1);
        EXPECT_EQ(narrow.at(91, 78) > 0.1, !isTick) << "an arrow from outside";
        EXPECT_GT(narrow.at(101, 80), 0.4) << "the line between";
        EXPECT_EQ(endOf({0, 0}, 2, 1, 1).at(100, 90), 0) << "too short";
    }
}

// A number that is not in the middle of its line, or upside down; shapes that hide, colour or go by themselves; arrows
// that count for bounds; what goes on being laid out when it is gone.
TEST_F(DimensionsTest, AreGroupsOfTheDrawing)
{
    Drawing drawing;
    Dimensions dimensions(drawing);
    const Drawing::ID layer = drawing.beginGroup();
    const Drawing::ID length = dimensions.addLinear({0, 0}, {200, 0}, {0, 10}, {.factor = 10, .unit = " mm"});
    const Drawing::ID angle = dimensions.addAngle({0, -50}, {1, 0}, {1, 1}, 30);
    drawing.endGroup();
    const Drawing::ID radius = dimensions.addRadius({250, -50}, 30, {0, 1});
    EXPECT_EQ(dimensions.getText(length) + ' ' + dimensions.getText(angle) + ' ' + dimensions.getText(radius),
              "2000 mm 45\u00b0 R 30");
    EXPECT_EQ(drawing.getGroup(length), layer);
    for (const double zoom : {1.0, 1e-3, 1e3})
    {
        drawn(drawing, {0, 0}, zoom, 1);
        const Drawing::Rect bounds = drawing.getBounds(length).value_or(Drawing::Rect());
        EXPECT_TRUE(zoom < 1 || (std::abs(bounds.left) < 1e-4 && std::abs(bounds.right - 200) < 1e-4)) << zoom;
    }
    Coverage picture = drawn(drawing, {0, 0}, 1, 1);
    EXPECT_EQ(drawing.getGroup(drawing.pick({100, 10})), length) << "by its number";
    EXPECT_EQ(drawing.getGroup(drawing.pick({30, 10}, 1)), length) << "by its line";
    EXPECT_EQ(drawing.getGroup(drawing.pick({250, -35}, 1)), radius);
    EXPECT_TRUE(drawing.setColor(length, "#ff0000"));
    drawn(drawing, {0, 0}, 1, 1);
    EXPECT_EQ(pixel(108, 109), (test::Pixel{255, 0, 0})) << "an arrow";
    dimensions.addAngle({-1e4, 0}, {1, -.1}, {1, .1}, 1e4);
    for (const double t : {-.09, -.053, -.0217, .0132, .0444, .071})
        EXPECT_NE(drawing.pick({1e4 * std::cos(t) - 1e4, 1e4 * std::sin(t)}, .1), 0U) << "an arc, not its chord, " << t;
    EXPECT_TRUE(drawing.setVisible(layer, false));
    picture = drawn(drawing, {0, 0}, 1, 1);
    EXPECT_EQ(picture.at(130, 90), 0);
    EXPECT_TRUE(drawing.remove(angle));
    EXPECT_EQ(dimensions.getNumberOfDimensions(), 3U);
    EXPECT_EQ(dimensions.getText(angle), "");
    for (const Drawing::ID none :
         {dimensions.addLinear({1, 1}, {1, 1}, {0, 1}), dimensions.addLinear({0, 0}, {cNoNumber, 0}, {0, 1}),
          dimensions.addLinearAlong({0, 0}, {1, 0}, {0, 1}, {0, 1}), dimensions.addRadius({0, 0}, 0, {1, 0}),
          dimensions.addDiameter({0, 0}, 1, {0, 0}), dimensions.addAngle({0, 0}, {1, 0}, {2, 0}, 1)})
        EXPECT_EQ(none, 0U);
    dimensions.clear();
    EXPECT_EQ(drawing.getNumberOfShapes(), 0U);
}

// Lines, texts and ends elsewhere than what they measure, stretched or mirrored with it; another number for that; what
// stays as it was when a group moves and the view does not.
TEST_F(DimensionsTest, GoWithTheGroupsAroundThem)
{
    const DimensionStyle style{.text = {.size = 9}, .paint = "#000", .gap = 3};
    const Point from(10, -20), to(60, -20), offset(2, 10);
    Drawing drawing;
    Dimensions dimensions(drawing);
    const Drawing::ID outer = drawing.beginGroup();
    drawing.beginGroup(Affine::rotation(.3));
    const Drawing::ID id = dimensions.addLinear(from, to, offset, style);
    drawing.endGroup();
    drawing.endGroup();
    for (const Affine& group : {Affine::translation(20, -30), Affine::scaling(2, -2), Affine{.7, .3, -.2, 2, 0, 5}})
    {
        EXPECT_TRUE(drawing.setTransform(outer, group));
        const Affine whole = group * Affine::rotation(.3);
        Drawing plain;
        DimensionStyle same = style;
        same.label = "50";
        Dimensions alike(plain);
        alike.addLinear(whole.map(from), whole.map(to), whole.mapVector(offset), same);
        EXPECT_TRUE(isClose(drawn(drawing, {0, 0}, 2, 1), drawn(plain, {0, 0}, 2, 1), {0, 0, 400, 200}, {1, 3, 3}));
        EXPECT_NE(drawing.pick(whole.map(from + offset + Point(10, 0)), 1), 0U);
        EXPECT_EQ(dimensions.getText(id), "50");
    }
}

// A bar that is longer than it says, than it may be, or shorter than it could; a unit that is too small, or too large.
TEST_F(DimensionsTest, ScaleBarsAreAsLongAsTheySay)
{
    ScaleBar bar({.units = {{1000, " km"}, {1, " m"}, {0, "?"}}, .length = 140});
    for (int i = -30; i < 60; ++i)
    {
        const double zoom = std::exp2(i / 4.0) / 50, scale = i % 2 == 0 ? 1 : 1.5;
        ASSERT_TRUE(bar.draw({400, 200}, zoom, scale));
        const bool isKilometres = bar.getText().ends_with(" km");
        const double length = std::stod(bar.getText()) * (isKilometres ? 1000 : 1);
        EXPECT_NEAR(bar.getLength(), length * zoom, 0.5001 / scale) << bar.getText();
        EXPECT_LE(bar.getLength(), 140);
        EXPECT_GT(bar.getLength(), 140 / 2.5 - 1);
        EXPECT_EQ(isKilometres, 140 / zoom >= 1000) << bar.getText();
    }
    ASSERT_TRUE(bar.draw({400, 200}, .1));
    EXPECT_EQ(bar.getText(), "1 km");
    for (const int x : {25, 115})
        EXPECT_EQ(pixel(x, 20), (test::Pixel{32, 40, 48}));
    EXPECT_EQ(pixel(20, 26), pixel(119, 26)) << "both ends on whole pixels";
    EXPECT_FALSE(bar.draw({400, 200}, 0) || bar.draw({400, 200}, cNoNumber));
}

} // namespace
