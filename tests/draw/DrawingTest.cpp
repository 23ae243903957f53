#include "Coverage.h"
#include "support/OffscreenGL.h"
#include "support/Thorough.h"

#include <gui/draw/Drawing.h>
#include <gui/gl/Context.h>
#include <gui/gl/FrameLedger.h>

#include <epoxy/gl.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <numbers>
#include <random>
#include <vector>

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
using Point = Path::Point;

constexpr int cSize = 1024;
const td::Color cBlack(0, 0, 0, 255);

/// What stands between a model and the pixels.
struct Setting
{
    const char* name;
    Affine view;
    double pixelsPerPoint = 1;
    std::array<Affine, 2> groups{}; // the second within the first
    unsigned int alpha = 255;
    int samples = 0;

    Affine toPixels() const { return Affine::scaling(pixelsPerPoint) * view * groups[0] * groups[1]; }
};

const std::array<Setting, 5> cSettings{
    {{"as it is", {}},
     {"turned, mirrored, two pixels per point", Affine{1.5, 2, 2, -1.5, 700, -3000}, 2},
     {"in groups",
      {},
      1,
      {Affine{.1, 0, .05, -.12, 30, 90}, Affine::translation(-1e4, 777) * Affine::rotation(1) * Affine::scaling(7)}},
     {"translucent", {}, 1, {}, 128},
     {"with samples", {}, 1, {}, 255, 4}}};

class DrawingTest : public test::OffscreenGL
{
protected:
    DrawingTest()
        : OffscreenGL({cSize, cSize})
    {
    }

    double uniform(double low, double high) { return std::uniform_real_distribution<>(low, high)(_random); }
    int below(int n) { return static_cast<int>(uniform(0, n)); }
    Point around(Point center, double half)
    {
        const double x = uniform(-half, half);
        return {center.x + x, center.y + uniform(-half, half)};
    }

    /// Within 28 pixels of a centre: 0 regular, 1 a star with a hole, 2 a sliver, 3 a ring that crosses itself.
    Path makeShape(int family, Point center)
    {
        Path path;
        const int n = family == 0 ? 3 + below(9) : family == 1 ? 2 * (3 + below(7)) : 5 + below(8);
        const double radius = uniform(family == 1 ? 8 : 3, 28), start = uniform(0, 7), inner = uniform(.3, .8);
        const auto corner = [&](double size, double turn)
        {
            return Point(center.x + size * std::cos(start + turn * 2 * std::numbers::pi),
                         center.y + size * std::sin(start + turn * 2 * std::numbers::pi));
        };
        std::vector<Point> ring;
        for (int i = 0; i < n; ++i)
            ring.push_back(family == 3 ? around(center, 28)
                                       : corner(family == 1 && i % 2 == 1 ? radius * inner : radius, double(i) / n));
        if (family == 2)
        {
            const double angle = uniform(.1, 2) / radius / 8;
            ring = {corner(radius, -angle), corner(radius, angle), corner(radius, .5 - angle)};
            if (below(2) == 0)
                ring.push_back(corner(radius, .5 + angle));
        }
        path.addPolygon(ring);
        for (Point& p : ring)
            p = {center.x + .4 * (p.x - center.x), center.y + .4 * (p.y - center.y)};
        return family == 1 ? path.addPolygon(ring) : path;
    }

    /// Draws with a setting, on white.
    Coverage drawn(Drawing& drawing, const Setting& setting = cSettings[0])
    {
        std::array<GLuint, 2> names{};
        const int nSamples = mostSamples() > 1 ? std::min(setting.samples, mostSamples()) : 0;
        if (nSamples > 0)
        {
            glGenFramebuffers(1, &names[0]);
            glGenRenderbuffers(1, &names[1]);
            glBindFramebuffer(GL_FRAMEBUFFER, names[0]);
            glBindRenderbuffer(GL_RENDERBUFFER, names[1]);
            glRenderbufferStorageMultisample(GL_RENDERBUFFER, nSamples, GL_RGBA8, cSize, cSize);
            glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, names[1]);
        }
        clear({255, 255, 255});
        EXPECT_TRUE(drawing.draw(setting.view, setting.pixelsPerPoint));
        if (nSamples > 0)
        {
            glBindFramebuffer(GL_DRAW_FRAMEBUFFER, 0);
            glBlitFramebuffer(0, 0, cSize, cSize, 0, 0, cSize, cSize, GL_COLOR_BUFFER_BIT, GL_NEAREST);
            glBindFramebuffer(GL_FRAMEBUFFER, 0);
            glDeleteFramebuffers(1, &names[0]);
            glDeleteRenderbuffers(1, &names[1]);
        }
        return test::readCoverage();
    }

    /// Picks at random places, exactly, with a tolerance and in squares: what is covered is found, and nothing else.
    void expectPicks(const Drawing& drawing, const Coverage& exact, const Setting& setting)
    {
        const Affine toModel = *(Affine::scaling(setting.pixelsPerPoint) * setting.view).inverse();
        const double covered = setting.alpha / 255.0; // what a pixel is that is covered as a whole
        constexpr int cNear = 12, cTolerance = 8;
        const double unit = std::hypot(toModel.a, toModel.b); // a pixel's
        // A tolerance is that of a group which is not larger one way than the other.
        const Affine map = setting.toPixels();
        const bool isSkewed = std::abs(map.a * map.c + map.b * map.d) > 1e-9 * (map.a * map.a + map.b * map.b);
        const bool isUpright = toModel.b == 0 && toModel.c == 0;
        int nWrong = 0, nFound = 0;
        for (int i = 0; i < 1000; ++i)
        {
            const int x = cNear + below(cSize - 2 * cNear), y = cNear + below(cSize - 2 * cNear);
            // The nearest that is covered as a whole, and that is touched: round the place, and by rows and columns.
            double whole = 99, touched = 99, wholeSquare = 99, touchedSquare = 99;
            bool isInside = true;
            for (int dy = -cNear; dy <= cNear; ++dy)
                for (int dx = -cNear; dx <= cNear; ++dx)
                {
                    const double there = exact.at(x + dx, y + dy), distance = std::hypot(dx, dy);
                    const double square = std::max(std::abs(dx), std::abs(dy));
                    isInside = isInside && (square > 1 || there > covered - 1e-6);
                    whole = there > covered - 1e-6 ? std::min(whole, distance) : whole;
                    touched = there > 0 ? std::min(touched, distance) : touched;
                    wholeSquare = there > covered - 1e-6 ? std::min(wholeSquare, square) : wholeSquare;
                    touchedSquare = there > 0 ? std::min(touchedSquare, square) : touchedSquare;
                }
            const Point place = toModel.map({x + .5, y + .5});
            const bool isFound = drawing.pick(place) != 0;
            nFound += isFound ? 1 : 0;
            nWrong += (isInside && !isFound) || (touched > 1.5 && isFound) ? 1 : 0;
            const bool isNear = isSkewed || drawing.pick(place, cTolerance * unit) != 0;
            nWrong += whole < cTolerance - 1 && !isNear ? 1 : 0;
            nWrong += touched > cTolerance + 1.5 && isNear && !isSkewed ? 1 : 0;
            if (!isUpright)
                continue;
            const Point a = toModel.map({x - 4.0, y - 4.0}), b = toModel.map({x + 5.0, y + 5.0});
            const bool isIn =
                !drawing.pickAll({std::min(a.x, b.x), std::min(a.y, b.y), std::max(a.x, b.x), std::max(a.y, b.y)})
                     .empty();
            nWrong += (wholeSquare < 4 && !isIn) || (touchedSquare > 5.5 && isIn) ? 1 : 0;
        }
        EXPECT_EQ(nWrong, 0);
        EXPECT_GT(nFound, 30);
    }

    std::mt19937 _random{7};
};

TEST_F(DrawingTest, FillsCoverTheirArea)
{
    for (const Setting& setting : cSettings)
    {
        SCOPED_TRACE(setting.name);
        Drawing drawing;
        Coverage exact(cSize, cSize);
        const Affine toModel = *setting.toPixels().inverse();
        for (const Affine& group : setting.groups)
            drawing.beginGroup(group);
        for (int cell = 0; cell < 256; ++cell)
        {
            const Point center(cell % 16 * 64 + uniform(31, 33), cell / 16 * 64 + uniform(31, 33));
            const Path path = makeShape(cell / 64, center);
            const auto rule = below(2) == 0 ? FillRule::EvenOdd : FillRule::NonZero;
            drawing.fill(path.transformed(toModel), td::Color(0, 0, 0, setting.alpha), rule);
            exact.add(test::fillRings(path), rule, setting.alpha / 255.0);
        }
        const Coverage picture = drawn(drawing, setting);
        for (int family = 0; family < 4; ++family)
            EXPECT_TRUE(isClose(picture, exact, {0, family * 256, cSize, family * 256 + 256}, {1, 4, 64})) << family;
        expectPicks(drawing, exact, setting);
    }
}

// A fill of so many corners that numbers of points and nodes have no room in an element, a node of it so small that it
// is one quad, and elements and glyphs that are brought into another order.
TEST_F(DrawingTest, ShapesOfManyCornersAreExactInAnyOrder)
{
    // A quarter of the corners lie within five pixels of the lowest one, where the ring begins.
    std::vector<Point> ring{{100, 100}};
    const auto addTeeth = [&ring](Point from, Point to, int n, Point depth)
    {
        for (int i = 0; i < n; ++i)
            ring.emplace_back(from.x + (to.x - from.x) * i / n + depth.x * (i % 2),
                              from.y + (to.y - from.y) * i / n + depth.y * (i % 2));
    };
    addTeeth({101, 101}, {900, 140}, 5000, {0, 9});
    addTeeth({900, 140}, {850, 900}, 5000, {-7, 0});
    addTeeth({850, 900}, {130, 860}, 4999, {0, -5});
    addTeeth({103, 104}, {100, 100.1}, 5000, {2, 0});
    const Path large = Path().addPolygon(ring);
    Coverage exact(cSize, cSize);
    exact.add(test::fillRings(large), FillRule::NonZero);
    Drawing alone;
    alone.fill(large, cBlack);
    EXPECT_TRUE(isClose(drawn(alone), exact, {0, 0, cSize, cSize}, {1, 4, 64}));

    constexpr int cShapes = 1100;
    std::vector<Path> shapes;
    for (int i = 0; i < cShapes; ++i)
        shapes.push_back(makeShape(i % 4, around({512, 512}, 480)));
    shapes[400] = large;
    shapes[800] = large.transformed(Affine{-.9, 0, 0, .9, 1000, 0});
    const auto add = [&](Drawing& drawing, int i)
    {
        const auto gray = static_cast<td::BYTE>(i % 251);
        const td::Color color(gray, gray, gray, 255);
        if (i % 100 == 7)
            return drawing.text({i % 1000 + 10.0, 500}, "order", {.size = 60, .unit = Unit::Model, .paint = color});
        return drawing.fill(shapes[static_cast<std::size_t>(i)], color);
    };
    Drawing ordered, raised;
    std::vector<Drawing::ID> ids;
    for (int i = 0; i < cShapes; ++i)
    {
        ids.push_back(add(raised, i));
        add(ordered, cShapes - 1 - i);
    }
    for (auto id = ids.rbegin(); id != ids.rend(); ++id)
        raised.raise(*id);
    // Which small ones are boxes goes by those beside them.
    EXPECT_TRUE(isClose(drawn(raised), drawn(ordered), {0, 0, cSize, cSize}, {.1, 2, 4}));
}

// Where a translucent stroke crosses itself, or its own joins and caps, it is no darker either.
TEST_F(DrawingTest, StrokesCoverWhatTheirBrushGoesOver)
{
    for (const Setting& setting : cSettings)
    {
        SCOPED_TRACE(setting.name);
        Drawing drawing;
        Coverage exact(cSize, cSize);
        const Affine toPixels = setting.toPixels(), toModel = *toPixels.inverse();
        const double scale = std::sqrt(std::abs(toPixels.a * toPixels.d - toPixels.b * toPixels.c));
        const bool isSkewed = std::abs(toPixels.a * toPixels.c + toPixels.b * toPixels.d) > 1e-9 * scale * scale;
        for (const Affine& group : setting.groups)
            drawing.beginGroup(group);
        for (int cell = 0; cell < 64; ++cell)
        {
            // Thin, wide, and dashed ones, with all caps and joins. In pixels at first.
            Stroke stroke{.width = cell % 4 == 0   ? uniform(.25, 3)
                                   : cell % 4 == 1 ? uniform(3, 40)
                                                   : uniform(.5, 20),
                          .unit = isSkewed || below(2) == 0 ? Unit::Model : Unit::Points,
                          .cap = Cap(cell % 3),
                          .join = Join(cell / 3 % 3),
                          .miterLimit = uniform(1, 10),
                          .dashes = {},
                          .dashUnit = isSkewed || below(2) == 0 ? Unit::Model : Unit::Points};
            for (int n = cell % 4 > 1 ? 2 + below(4) : 0; n > 0; --n)
                stroke.dashes.push_back(n == 1 ? uniform(2, 20) : below(6) == 0 ? 0 : uniform(1, 30));
            stroke.dashOffset = uniform(-30, 30);
            std::vector<Point> points;
            for (int n = 2 + below(6); n > 0; --n)
                points.push_back(around({cell % 8 * 128 + 64.0, cell / 8 * 128 + 64.0}, 34));
            Path path;
            points.size() > 2 && below(5) < 2 ? path.addPolygon(points) : path.addPolyline(points);
            const Path modelPath = path.transformed(toModel);

            const auto scaled = [](Stroke s, double width, double dashes)
            {
                s.width *= width;
                s.dashOffset *= dashes;
                for (double& dash : s.dashes)
                    dash *= dashes;
                return s;
            };
            const Stroke modelStroke = scaled(stroke, 1 / scale, 1 / scale);
            drawing.stroke(modelPath,
                           scaled(stroke, 1 / (stroke.unit == Unit::Model ? scale : setting.pixelsPerPoint),
                                  1 / (stroke.dashUnit == Unit::Model ? scale : setting.pixelsPerPoint)),
                           td::Color(0, 0, 0, setting.alpha));
            exact.add(test::mapped(test::strokeRings(modelPath, modelStroke), toPixels), FillRule::NonZero,
                      setting.alpha / 255.0);
        }
        EXPECT_TRUE(isClose(drawn(drawing, setting), exact, {0, 0, cSize, cSize}, {3.5, 24, 64}));
        expectPicks(drawing, exact, setting);
    }
}

// Rings so small that they are points, and dashes of lines that cross, many in one path: each is looked for in all.
TEST_F(DrawingTest, StrokesOfManySubpathsCoverWhatEachDoes)
{
    for (const Join join : {Join::Miter, Join::Round})
    {
        Drawing drawing;
        Coverage exact(cSize, cSize);
        for (int cell = 0; cell < 64; ++cell)
        {
            const Point center(cell % 8 * 128 + 64.0, cell / 8 * 128 + 64.0);
            const bool areRings = cell < 32;
            Stroke stroke{.width = areRings ? uniform(1, 8) : uniform(1, 4), .join = join, .dashes = {}};
            if (!areRings)
                stroke.dashes = {uniform(2, 9), uniform(1, 6)};
            Path path;
            for (int n = 12; n > 0; --n)
            {
                std::vector<Point> points;
                const Point middle = around(center, 40);
                for (int i = 0; i < (areRings ? 16 : 3); ++i)
                    points.push_back(areRings
                                         ? Point(middle.x + .02 * std::cos(.4 * i), middle.y + .02 * std::sin(.4 * i))
                                         : around(center, 50));
                areRings ? path.addPolygon(points) : path.addPolyline(points);
            }
            drawing.stroke(path, stroke, "#000000");
            exact.add(test::strokeRings(path, stroke), FillRule::NonZero);
        }
        const Coverage picture = drawn(drawing);
        EXPECT_TRUE(isClose(picture, exact, {0, 0, cSize, cSize / 2}, {3.5, 24, 64})) << "rings " << int(join);
        EXPECT_TRUE(isClose(picture, exact, {0, cSize / 2, cSize, cSize}, {3.5, 24, 64})) << "dashes " << int(join);
    }
}

// What is so small that all of its lines are looked at, or of a curve one for several: any number of them, which may
// be one more than a node has. Arcs that are smaller than their brush, which goes no farther back than they begin.
TEST_F(DrawingTest, SmallStrokesAreAsExactAsOthers)
{
    for (const Join join : {Join::Miter, Join::Round, Join::Bevel})
    {
        Drawing drawing;
        Coverage exact(cSize, cSize);
        for (int cell = 0; cell < 1024; ++cell)
        {
            const Point c(cell % 32 * 32 + 16.0, cell / 32 * 32 + 16.0);
            const double r = uniform(.4, cell % 8 == 1 ? 1.5 : 7), k = .55 * r;
            const Stroke stroke{.width = uniform(.5, 3),
                                .cap = join == Join::Bevel ? Cap::Round : Cap::Butt,
                                .join = join,
                                .dashes = {}};
            std::vector<Point> points;
            for (int n = 3 + cell / 8 % 32; n > 0; --n)
                points.push_back(around(c, r));
            Path path;
            if (cell % 4 == 0)
                path.addCircle(c, r);
            else if (cell % 4 == 1)
                path.moveTo({c.x - r, c.y}).cubicTo({c.x - r, c.y - k}, {c.x - k, c.y - r}, {c.x, c.y - r});
            else
                cell % 4 == 2 ? path.addPolygon(points) : path.addPolyline(points);
            drawing.stroke(path, stroke, cBlack);
            exact.add(test::strokeRings(path, stroke), FillRule::NonZero);
        }
        EXPECT_TRUE(isClose(drawn(drawing), exact, {0, 0, cSize, cSize}, {3.5, 24, 64})) << int(join);
    }
}

// Another stroke along what is left of a path: curves with other corners, subpaths in another order, dashes from the
// middle; and what was too thin to be seen, which is nowhere then.
TEST_F(DrawingTest, AnotherStrokeIsWhatANewOneWouldBe)
{
    Drawing changed, fresh;
    for (int cell = 0; cell < 64; ++cell)
    {
        const Point c(cell % 8 * 128 + 64.0, cell / 8 * 128 + 64.0);
        Path path;
        for (int n = cell % 8; n >= 0; --n)
        {
            path.moveTo(around(c, 40)).quadTo(around(c, 40), around(c, 40)).lineTo(around(c, 40));
            path.cubicTo(around(c, 40), around(c, 40), around(c, 40));
            if (below(2) == 0)
                path.close();
        }
        std::array<Stroke, 2> strokes;
        for (Stroke& stroke : strokes)
            stroke = {.width = uniform(1, 9),
                      .cap = Cap(below(3)),
                      .join = Join(below(3)),
                      .miterLimit = uniform(1, 9),
                      .dashes = below(3) == 0 ? std::vector<double>{9, 4} : std::vector<double>{}};
        strokes[0].width *= cell % 5 == 0 ? 0 : 1;
        const Drawing::ID id = changed.stroke(path, strokes[0], cBlack);
        EXPECT_EQ(changed.getBounds(id).has_value(), cell % 5 != 0);
        EXPECT_TRUE(changed.setStroke(id, strokes[1]));
        fresh.stroke(path, strokes[1], cBlack);
    }
    EXPECT_TRUE(isClose(drawn(changed), drawn(fresh), {0, 0, cSize, cSize}, {0, 0, 0}));
}

// A drawing at the origin in the corner of a view: the view's middle, many times as far away, fits in no unit of its.
TEST_F(DrawingTest, WhatIsSmallBesideTheViewIsInItsPlace)
{
    for (const double size : {0.5, 2.0, 16.0})
        for (const double zoom : {1e-3, 1.0, 1e9})
        {
            Drawing drawing;
            drawing.fill(Path().addRect({0, 0, size / zoom, size / zoom}), cBlack);
            Coverage picture = drawn(drawing, {"", Affine::scaling(zoom)});
            EXPECT_NEAR(picture.at(0, 0), std::min(size * size, 1.0), 0.005) << size << ' ' << zoom;
            picture = drawn(drawing, {"", Affine::translation(1000, 7) * Affine::scaling(zoom)});
            EXPECT_NEAR(picture.at(1000, 7), std::min(size * size, 1.0), 0.005) << size << ' ' << zoom;
            // Larger ones later, and the view far away from all of them.
            drawing.fill(Path().addRect({0, 20 / zoom, size * 7 / zoom, 20 / zoom + size * 7 / zoom}), cBlack);
            picture = drawn(drawing, {"", Affine::scaling(zoom)});
            EXPECT_NEAR(picture.at(0, 0), std::min(size * size, 1.0), 0.005) << size << ' ' << zoom;
            picture = drawn(drawing, {"", Affine::translation(-1e5, -3e6) * Affine::scaling(zoom)});
            EXPECT_FALSE(std::ranges::any_of(std::vector{0, 300, 384, 512, 640, 1023},
                                             [&picture](int i) { return picture.at(i, i) > 0; }));
            Drawing word;
            word.text({size / zoom, size / zoom}, "H", {.size = 20}, {.anchor = gui::draw::Anchor::TopLeft});
            picture = drawn(word, {"", Affine::scaling(zoom)});
            double inCorner = 0, all = 0;
            for (int y = 0; y < cSize; ++y)
                for (int x = 0; x < cSize; ++x)
                {
                    all += picture.at(x, y);
                    inCorner += x < 50 && y < 50 ? picture.at(x, y) : 0;
                }
            EXPECT_GT(inCorner, 20) << size << ' ' << zoom;
            EXPECT_EQ(inCorner, all);
        }
}

// What is set and returns false, or is forgotten; one of four in the wrong place of the order.
TEST_F(DrawingTest, PicksFollowTheOrderAndWhatIsSet)
{
    Drawing drawing;
    std::array<Drawing::ID, 4> ids{};
    for (int i = 0; i < 3; ++i)
        ids[std::size_t(i)] = drawing.fill(Path().addRect({0, 0, 10.0 + i, 10}), cBlack);
    ids[3] = drawing.stroke(Path().moveTo({0, 5}).lineTo({20, 5}), {.width = 2, .unit = Unit::Model}, cBlack);
    const auto order = [&]
    {
        std::vector<int> found;
        for (const Drawing::ID id : drawing.pickAll({4, 4, 6, 6}))
            found.push_back(int(std::ranges::find(ids, id) - ids.begin()));
        EXPECT_EQ(drawing.pick({5, 5}), ids[std::size_t(found.front())]);
        return found;
    };
    using Order = std::vector<int>;
    EXPECT_EQ(order(), (Order{3, 2, 1, 0}));
    EXPECT_TRUE(drawing.lower(ids[2]));
    EXPECT_EQ(order(), (Order{3, 1, 0, 2}));
    EXPECT_TRUE(drawing.raise(ids[0]));
    EXPECT_EQ(order(), (Order{0, 3, 1, 2}));
    EXPECT_TRUE(drawing.moveAbove(ids[2], ids[1]) && drawing.moveBelow(ids[0], ids[1]));
    EXPECT_EQ(order(), (Order{3, 2, 1, 0}));
    EXPECT_TRUE(drawing.setStroke(ids[3], {.width = 2, .unit = Unit::Model})) << "as it is";
    EXPECT_TRUE(drawing.setPickable(ids[3], false) && drawing.setPickable(ids[1], false));
    EXPECT_FALSE(drawing.setPickable(99, true));
    EXPECT_EQ(order(), (Order{2, 0}));
    EXPECT_EQ(drawing.pick({16, 5}), 0U);
    drawing.setPickable(ids[3], true);
    drawing.setVisible(ids[2], false);
    EXPECT_EQ(order(), (Order{3, 0}));
    // What is hidden stays so with another stroke; and lines in points are as wide as they are seen.
    EXPECT_TRUE(drawing.setVisible(ids[3], false) && drawing.setStroke(ids[3], {.width = 3, .unit = Unit::Model}));
    EXPECT_EQ(drawn(drawing).at(16, 5), 0);
    EXPECT_TRUE(drawing.setStroke(ids[3], {.width = 10}) && drawing.setVisible(ids[3], true));
    drawn(drawing, {"from afar", Affine::scaling(.1)});
    EXPECT_EQ(drawing.pickAll({4, 40, 6, 42}), (std::vector<Drawing::ID>{ids[3]}));
    // A program that draws wires sees its drawings whole.
    gui::gl::Context::setPolygonMode(gui::gl::Context::PolygonMode::Line);
    const Coverage picture = drawn(drawing);
    gui::gl::Context::setPolygonMode(gui::gl::Context::PolygonMode::Fill);
    for (const int x : {2, 4, 6, 8}) // and beside diagonals
        EXPECT_EQ(picture.at(x, 2), 1) << x;
    EXPECT_EQ(picture.at(24, 2), 0);
}

// Squares and lines of some pixels, and lines and edges whose ends are up to 10^11 pixels away.
TEST_F(DrawingTest, PlacesFarFromTheOriginAreExact)
{
    ASSERT_TRUE(context().resize({64, 64}));
    Drawing drawing;
    drawing.fill(Path().addRect({1e7, 1e7, 1e7 + 1e-3, 1e7 + 1e-3}), cBlack);
    const std::array shapes{drawing.fill({}, cBlack), drawing.stroke({}, {.width = 2}, cBlack)};
    for (int i = 0; i < (test::cIsThorough ? 1200 : 200) && !HasFailure(); ++i)
    {
        const bool isStroke = i % 2 == 1, isLong = i % 4 > 1;
        const double zoom = std::pow(10, isLong ? uniform(-2, 4) : uniform(-6, 6));
        const Affine linear = Affine::rotation(uniform(0, 7)) * Affine::scaling(below(2) == 0 ? zoom : -zoom, zoom);
        const Affine back = *linear.inverse();
        std::vector<Point> points;
        Point at = around({0, 0}, 1e7);
        const Point way = isLong ? Affine::rotation(uniform(0, 7)).map({1e7, 0}) : back.mapVector(around({6, 6}, 4));
        if (isLong)
        {
            // Whole numbers, which the steps of a path are parts of.
            points = {{std::round(at.x), std::round(at.y)}, {std::round(at.x + way.x), std::round(at.y + way.y)}};
            const double t = uniform(.2, .8);
            at = {points[0].x + t * (points[1].x - points[0].x), points[0].y + t * (points[1].y - points[0].y)};
        }
        else
            points = {{at.x - way.x, at.y - way.y}, {at.x + way.x, at.y + way.y}};
        if (!isStroke)
            points.emplace_back(points[1].x - way.y, points[1].y + way.x);
        for (std::size_t k = 0; isLong && k < points.size(); ++k)
            points[k] = {std::round(points[k].x), std::round(points[k].y)};
        const Point seen = around({32, 32}, 12), moved = linear.mapVector(at);
        const Affine view = Affine::translation(seen.x - moved.x, seen.y - moved.y) * linear;

        // In pixels, the lines about where the view is.
        using Exact = td::Point<long double>;
        std::vector<Exact> ends;
        for (const Point& p : points)
            ends.emplace_back(view.a * (long double) (p.x) + view.c * (long double) (p.y) + view.e,
                              view.b * (long double) (p.x) + view.d * (long double) (p.y) + view.f);
        const Exact along(ends[1].x - ends[0].x, ends[1].y - ends[0].y);
        const long double length = std::hypot(along.x, along.y), u = along.x / length, v = along.y / length;
        const long double middle = (32 - ends[0].x) * u + (32 - ends[0].y) * v;
        const auto placeAt = [&](long double t) { return Point(double(ends[0].x + t * u), double(ends[0].y + t * v)); };
        const Point a = placeAt(std::clamp(0.0L, middle - 200, middle + 200));
        const Point b = placeAt(std::clamp(length, middle - 200, middle + 200));
        Coverage exact(64, 64);
        if (isStroke)
            exact.add(test::strokeRings(Path().addPolyline(std::vector{a, b}), {.width = 2}), FillRule::NonZero);
        else if (isLong)
        {
            const double side = (ends[2].x - ends[0].x) * v < (ends[2].y - ends[0].y) * u ? 200 : -200;
            const Point across(-side * double(v), side * double(u));
            exact.add({{a, b, {b.x + across.x, b.y + across.y}, {a.x + across.x, a.y + across.y}}}, FillRule::NonZero);
        }
        else
            exact.add({{a, b, {double(ends[2].x), double(ends[2].y)}}}, FillRule::NonZero);

        Path path;
        isStroke ? path.addPolyline(points) : path.addPolygon(points);
        drawing.setPath(shapes[i % 2], path);
        drawing.setPath(shapes[1 - i % 2], {});
        // A tenth of a pixel beside an edge is 25.
        EXPECT_TRUE(isClose(drawn(drawing, {"far", view}), exact, {0, 0, 64, 64},
                            isStroke ? Closeness{8, 24, 24} : Closeness{3, 10, 10}))
            << i << ", zoom " << zoom;
    }
}

// What is near an end of a shape that is far larger than the view, which floats would leave out with all around it.
TEST_F(DrawingTest, EndsOfHugeShapesAreThere)
{
    const auto pictureOf = [&](double size, bool isStroke, double angle)
    {
        const Affine turn = Affine::translation(100, 100) * Affine::rotation(angle);
        const Path path = Path().addRect({10, 10, 20, 20}).addRect({30, 30, 30 + size, 40}).transformed(turn);
        Drawing drawing;
        isStroke ? drawing.stroke(path, {.width = 3}, cBlack) : drawing.fill(path, cBlack);
        return drawn(drawing);
    };
    for (const bool isStroke : {false, true})
        for (const double angle : {0.0, std::numbers::pi / 2, std::numbers::pi})
            EXPECT_TRUE(isClose(pictureOf(3e8, isStroke, angle), pictureOf(3e3, isStroke, angle), {0, 0, cSize, cSize},
                                {1, 3, 3}))
                << isStroke << ' ' << angle;
}

// Neither along the edges that shapes share nor at the point where all of them meet, unless one is missing.
TEST_F(DrawingTest, NothingShowsBetweenShapesThatMeet)
{
    ASSERT_TRUE(context().resize({64, 64}));
    for (int i = 0; i < 60; ++i)
    {
        const int n = 3 + i % 7;
        const Point middle = around({32, 32}, .5);
        const double start = uniform(0, 7);
        std::vector<Path> sectors;
        std::vector<Point> corners;
        for (int k = 0; k < n; ++k)
        {
            const double angle = start + (k + uniform(0, .3)) * 2 * std::numbers::pi / n;
            corners.emplace_back(middle.x + 24 * std::cos(angle), middle.y + 24 * std::sin(angle));
        }
        for (std::size_t k = 0; k < corners.size(); ++k)
            sectors.push_back(Path().addPolygon(std::array{middle, corners[k], corners[(k + 1) % corners.size()]}));
        std::shuffle(sectors.begin(), sectors.end(), _random);
        Drawing drawing;
        std::vector<Drawing::ID> ids;
        for (const Path& sector : sectors)
        {
            ids.push_back(drawing.fill(i % 3 == 0 ? sectors[0] : sector, cBlack));
            if (i % 5 == 0 && ids.size() == 1)
                drawn(drawing);
        }
        // What they were before counts for nothing.
        for (std::size_t k = 0; k < ids.size(); ++k)
            drawing.setPath(ids[k], sectors[k]);
        // And in which groups they are, for as little.
        const Drawing::ID group = drawing.beginGroup();
        drawing.endGroup();
        for (std::size_t k = 0; k < ids.size(); k += 2)
            EXPECT_TRUE(drawing.setGroup(ids[k], group));
        const auto lightest = [&]
        {
            drawn(drawing);
            int most = 0;
            for (int p = 0; p < 36; ++p)
                most = std::max(most, int(pixel(29 + p % 6, 29 + p / 6).red));
            return most;
        };
        EXPECT_EQ(lightest(), 0) << n << " shapes";
        const Drawing::ID one = ids[std::size_t(below(n))];
        i % 2 == 0 ? drawing.remove(one) : drawing.setTransform(one, Affine::translation(100, 0));
        EXPECT_GT(lightest(), 100) << n << " shapes";
        drawing.fill(sectors[std::size_t(std::find(ids.begin(), ids.end(), one) - ids.begin())], cBlack);
        EXPECT_EQ(lightest(), 0) << n << " shapes, one of them added again";
        if (i % 4 == 0)
        {
            for (int k = 0; k < 2000; ++k)
                drawing.fill(Path().addRect({100 + k * 3., 0, 103 + k * 3., 3}), cBlack);
            drawn(drawing);
            drawing.remove(ids[std::size_t(n - 1)]);
            EXPECT_TRUE(one == ids[std::size_t(n - 1)] || lightest() > 100) << n << " shapes and many";
            drawing.fill(sectors[std::size_t(n - 1)], cBlack);
            EXPECT_EQ(lightest(), 0) << n << " shapes among many";
        }
    }
}

TEST_F(DrawingTest, OnlyWhatChangesIsUploaded)
{
    ASSERT_TRUE(context().resize({64, 64}));
    Drawing drawing;
    std::vector<Drawing::ID> ids;
    const Drawing::ID group = drawing.beginGroup();
    for (int i = 0; i < 500; ++i)
    {
        if (i == 10)
            drawing.endGroup();
        const Path path = makeShape(i % 4, around({32, 32}, 32));
        ids.push_back(i % 5 == 0 ? drawing.stroke(path, {.width = 2, .dashes = {3, 1}}, cBlack)
                                 : drawing.fill(path, cBlack));
    }
    drawn(drawing);
    // The tables grow with this, by half, and are sent once more.
    ids.push_back(drawing.fill(makeShape(0, {32, 32}), cBlack));
    drawn(drawing);
    const Path triangle = Path().addPolygon(std::vector<Point>{{10, 10}, {20, 10}, {10, 20}});
    struct Step
    {
        const char* name;
        std::function<void()> change;
        Affine view;
        std::size_t least, most; // bytes
        std::size_t mostDraws = 8;
    };
    for (const Step& step :
         std::initializer_list<Step>{
             {"what it is already",
              [&]
              {
                  drawing.setColor(ids[9], cBlack);
                  drawing.setVisible(ids[20], true);
                  drawing.setStroke(ids[100], {.width = 2, .dashes = {3, 1}});
                  drawing.setTransform(group, {});
              },
              {},
              0,
              0,
              1},
             {"zoomed", [] {}, Affine::scaling(3), 0, 0},
             {"panned", [] {}, Affine::translation(-100, 2000), 0, 0},
             {"turned", [] {}, Affine::rotation(1), 0, 0},
             {"coloured", [&] { drawing.setColor(ids[9], td::Color(9, 9, 9, 255)); }, {}, 4, 63},
             {"a group coloured", [&] { drawing.setColor(group, td::Color(7, 7, 7, 255)); }, {}, 40, 400},
             {"hidden", [&] { drawing.setVisible(ids[20], false); }, {}, 4, 63},
             {"shown", [&] { drawing.setVisible(ids[20], true); }, {}, 4, 63},
             {"another path", [&] { drawing.setPath(ids[1], triangle); }, {}, 100, 500},
             {"another stroke", [&] { drawing.setStroke(ids[100], {.width = 7}); }, {}, 4, 2000},
             {"shown from nearby alone", [&] { drawing.setZoomRange(group, 2, 9); }, {}, 0, 0},
             {"nearer", [] {}, Affine::scaling(3), 0, 0},
             {"a group moved", [&] { drawing.setTransform(group, Affine::translation(5, 5)); }, {}, 80, 960},
             {"one more", [&] { ids.push_back(drawing.fill(triangle, cBlack)); }, {}, 100, 500},
             {"one less", [&] { drawing.remove(ids[2]); }, {}, 0, 100}})
    {
        gui::gl::FrameLedger::start();
        step.change();
        gui::gl::FrameLedger::begin();
        EXPECT_TRUE(drawing.draw(step.view));
        gui::gl::FrameLedger::end();
        const gui::gl::FrameLedger::Frame& frame = gui::gl::FrameLedger::getLast();
        EXPECT_GE(frame.nBytesUploaded, step.least) << step.name;
        EXPECT_LE(frame.nBytesUploaded, step.most) << step.name;
        EXPECT_LE(frame.nUploads, step.most == 0 ? 0 : 16) << step.name;
        EXPECT_LE(frame.nDraws, step.mostDraws) << step.name;
        gui::gl::FrameLedger::stop();
    }
}

// Two rows of two colours, and what is seen of them.
TEST_F(DrawingTest, PanningLeadsToWhatIsDrawnAtOnce)
{
    std::vector<Path> paths;
    for (int i = 0; i < 600; ++i)
        paths.push_back(makeShape(i % 4, {uniform(-500, 1500), uniform(-500, 1500)}));
    const auto add = [&](Drawing& drawing)
    {
        for (std::size_t i = 0; i < paths.size(); ++i)
            if (i % 3 == 0)
                drawing.stroke(paths[i], {.width = 3}, cBlack);
            else
                drawing.fill(paths[i], td::Color(0, 0, 0, i % 3 == 1 ? 255 : 100));
        for (int i = 0; i < 100; ++i)
            drawing.text({(i % 10) * 140.3, (i / 10) * 120.7}, "Label", {.size = 12, .halo = {2, "#ffffff"}});
    };
    Drawing panned;
    add(panned);
    const auto drawnBy = [this](Drawing& drawing, const Affine& view)
    {
        clear({255, 255, 255});
        EXPECT_TRUE(drawing.draw(view, 2));
        return test::readCoverage();
    };
    // When all letters have their pictures.
    const auto settled = [&](Drawing& drawing, const Affine& view)
    {
        for (int i = 0; i < 20; ++i)
            drawing.draw(view, 2);
        return drawnBy(drawing, view);
    };
    Point at(0, 0);
    settled(panned, {.75, 0, 0, -.75, 0, 400});
    for (const Point step : {Point(0, 0), Point(40, 0), Point(-25.5, 30), Point(0, -7), Point(-60, -80), Point(.5, .5),
                             Point(.3, 0), Point(.0004, .4996), Point(300, 1), Point(500, 500)})
    {
        at = {at.x + step.x, at.y + step.y};
        const Affine view{.75, 0, 0, -.75, at.x, at.y + 400};
        Drawing fresh;
        add(fresh);
        const Coverage all = settled(fresh, view);
        EXPECT_TRUE(test::isClose(drawnBy(panned, view), all, {0, 0, cSize, cSize}, {0.1, 5, 12}))
            << at.x << ' ' << at.y;
    }
}

TEST_F(DrawingTest, ImagesAreUprightAndMixedByAlpha)
{
    using gui::draw::Image;
    const std::array<td::Color, 4> pixels{td::Color(255, 0, 0, 255), td::Color(0, 255, 0, 255),
                                          td::Color(0, 0, 255, 255), td::Color(255, 255, 255, 0)};
    const Image image(2, 2, pixels);
    Drawing drawing;
    const Drawing::ID id = drawing.image({0, 0, 400, 400}, image);
    drawing.fill(Path().addRect({600, 0, 700, 100}), cBlack);
    drawing.image({600, 600, 601, 601}, image);
    // Upwards or downwards, the first row is at the top; near the edge a pixel has its own colour alone.
    for (const Affine& view : {Affine(), Affine{1, 0, 0, -1, 0, 400}})
    {
        clear({0, 0, 0});
        gui::gl::FrameLedger::start();
        gui::gl::FrameLedger::begin();
        ASSERT_TRUE(drawing.draw(view));
        gui::gl::FrameLedger::end();
        EXPECT_LE(gui::gl::FrameLedger::getLast().nDraws, 5U);
        gui::gl::FrameLedger::stop();
        const auto at = [](int x, int y) { return pixel(x, cSize - 1 - y); };
        EXPECT_EQ(at(50, 50), (test::Pixel{255, 0, 0, 255}));
        EXPECT_EQ(at(350, 50), (test::Pixel{0, 255, 0, 255}));
        EXPECT_EQ(at(0, 399), (test::Pixel{0, 0, 255, 255}));
        EXPECT_EQ(at(398, 398).red, 0);
        EXPECT_NEAR(at(200, 50).red, 127, 2);
        EXPECT_NEAR(at(200, 50).green, 127, 2);
        // What is not there gives no white to its neighbours.
        EXPECT_LE(at(250, 300).red, 2);
    }
    // All of it in one pixel: the mean.
    clear({0, 0, 0});
    ASSERT_TRUE(drawing.draw(Affine::translation(-100, -100)));
    EXPECT_NEAR(pixel(500, cSize - 1 - 500).red, 64, 2);
    EXPECT_NEAR(pixel(500, cSize - 1 - 500).blue, 64, 2);
    EXPECT_EQ(drawing.pick({399, 399}), id);
    EXPECT_TRUE(drawing.setColor(id, "#102030"));
    ASSERT_TRUE(drawing.draw(Affine()));
    EXPECT_EQ(pixel(50, cSize - 51), (test::Pixel{16, 32, 48, 255}));
    for (const auto& paint :
         {gui::draw::Paint("#102030"),
          gui::draw::Paint(gui::draw::LinearGradient{{0, 0}, {400, 0}, {{0, "#000"}, {1, "#fff"}}})})
    {
        EXPECT_TRUE(drawing.setColor(id, paint) && drawing.setImage(id, image));
        ASSERT_TRUE(drawing.draw(Affine()));
        EXPECT_EQ(pixel(50, cSize - 51), (test::Pixel{255, 0, 0, 255}));
    }
    // Through what is not there, other shapes are seen, also where they share an edge.
    drawing.lower(drawing.fill(Path().addRect({0, 0, 400, 400}), "#ff8000"));
    drawing.lower(drawing.fill(Path().addRect({400, 0, 500, 400}), "#ff8000"));
    ASSERT_TRUE(drawing.draw(Affine()));
    for (const int x : {350, 390, 398})
        EXPECT_EQ(pixel(x, cSize - 351), (test::Pixel{255, 128, 0, 255})) << x;
    EXPECT_FALSE(drawing.setImage(drawing.fill(Path(), cBlack), image));
}

// Along a line through the middle: x, and the red that is there, from none to all of it.
TEST_F(DrawingTest, GradientsHaveTheirColoursWhereTheyShould)
{
    using gui::draw::LinearGradient;
    using gui::draw::Paint;
    using gui::draw::RadialGradient;
    using gui::draw::Spread;
    const std::vector<gui::draw::GradientStop> stops{{0, "#000"}, {.5, "#800000"}, {1, "#f00"}};
    const Point middle(512, 512);
    const LinearGradient linear{{100, 0}, {356, 0}, stops};
    struct Case
    {
        const char* name;
        Paint paint;
        std::vector<std::pair<int, int>> reds;
        Affine map{};
    };
    for (const Case& c : std::initializer_list<Case>{
             {"linear", linear, {{50, 0}, {164, 64}, {228, 128}, {292, 191}, {500, 255}}},
             {"reflected",
              LinearGradient{{100, 0}, {356, 0}, stops, Spread::Reflect},
              {{36, 64}, {420, 191}, {548, 64}}},
             {"repeated",
              LinearGradient{{100, 0}, {356, 0}, stops, Spread::Repeat},
              {{36, 191}, {420, 64}, {548, 191}}},
             {"radial", RadialGradient{middle, 256, stops}, {{512, 0}, {640, 128}, {384, 128}, {800, 255}}},
             {"with a focus",
              RadialGradient{middle, 256, stops, Spread::Pad, Point(384, 512)},
              {{576, 128}, {320, 128}}},
             {"of no length", LinearGradient{{9, 0}, {9, 0}, stops}, {{5, 255}, {500, 255}}},
             {"of no radius", RadialGradient{middle, 0, stops}, {{5, 255}, {512, 255}}},
             {"scaled", linear, {{200, 0}, {456, 128}}, Affine::scaling(2)}})
    {
        SCOPED_TRACE(c.name);
        Drawing drawing;
        const Drawing::ID id = drawing.fill(Path().addRect({-9, -9, 90, 90}), c.paint);
        drawing.setTransform(id, c.map);
        drawing.setPath(id, Path().addRect({0, 0, 1024, 1024})); // under the same gradient
        clear({255, 255, 255});
        ASSERT_TRUE(drawing.draw(Affine()));
        for (const auto& [x, red] : c.reds)
        {
            EXPECT_NEAR(pixel(x, 512).red, red, 2) << x;
            EXPECT_EQ(pixel(x, 512).green, 0) << x;
        }
    }
}

} // namespace
