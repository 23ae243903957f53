#include <gui/draw/Path.h>

#include "support/CapturedLog.h"
#include "support/CaughtAsserts.h"

#include <glm/vec2.hpp>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>
#include <random>
#include <string>
#include <vector>

namespace
{

using gui::draw::Affine;
using gui::draw::FillRule;
using gui::draw::Hatch;
using gui::draw::Path;
using gui::draw::PathSegment;
using gui::draw::Polylines;
using Point = Path::Point;

double distance(Point p, Point q) { return std::hypot(p.x - q.x, p.y - q.y); }

double distanceFromLine(Point p, Point a, Point b)
{
    const double dx = b.x - a.x, dy = b.y - a.y, square = dx * dx + dy * dy;
    const double t = square > 0 ? std::clamp(((p.x - a.x) * dx + (p.y - a.y) * dy) / square, 0.0, 1.0) : 0;
    return distance(p, {a.x + t * dx, a.y + t * dy});
}

/// Single curves of all kinds: also with cusps, loops and control points that coincide, flat and far away.
std::vector<Path> curves()
{
    std::mt19937 random(3);
    std::vector<Path> paths;
    for (int i = 0; i < 400; ++i)
    {
        // On a grid, points meet and lie on one line.
        const bool isOnGrid = i % 2 == 0;
        std::uniform_real_distribution<double> anywhere(-10, 10);
        const auto number = [&] { return isOnGrid ? double(random() % 5) : anywhere(random); };
        const auto point = [&] { return Point(number(), number()); };
        Path path;
        path.moveTo(point());
        if (i % 3 == 0)
            path.quadTo(point(), point());
        else if (i % 3 == 1)
            path.cubicTo(point(), point(), point());
        else
            path.arc(point(), {1 + std::abs(number()), 0.1 + std::abs(number())}, number(), number(), number());
        if (i % 5 == 0)
            path.transform(Affine::translation(1000, -500) * Affine::rotation(1) * Affine::scaling(30, 0.1));
        paths.push_back(path);
    }
    return paths;
}

TEST(PathTest, FlatteningStaysWithinTheTolerance)
{
    for (const Path& path : curves())
        for (const double tolerance : {1.0, 0.01, 1e-4})
        {
            const Polylines lines = path.flatten(tolerance);
            ASSERT_EQ(lines.lines.size(), 1u);
            double worst = 0;
            std::size_t line = 0;
            for (const PathSegment& s : path)
            {
                if (s.verb == Path::Verb::MoveTo)
                    continue;
                const unsigned int n = s.nPieces(tolerance);
                for (unsigned int i = 0; i < n; ++i, ++line)
                    for (int k = 0; k <= 8; ++k)
                        worst = std::max(worst, distanceFromLine(s.at((i + k / 8.0) / n), lines.points[line],
                                                                 lines.points[line + 1]));
            }
            EXPECT_EQ(line + 1, lines.points.size());
            EXPECT_LE(worst, tolerance * (1 + 1e-9));
        }
    // And no finer than it must be: one piece less of a circle would be too coarse.
    const PathSegment circle = *++Path().addCircle({7, 7}, 100).begin();
    const unsigned int n = circle.nPieces(0.001);
    EXPECT_GT(100 * (1 - std::cos(3.14159265358979 / (n - 1))), 0.001);
    EXPECT_EQ(circle.nPieces(1e-30), 65536u);
}

TEST(PathTest, FlatteningKeepsSubpaths)
{
    Path path;
    path.moveTo({9, 9})
        .moveTo({0, 0})
        .lineTo({1, 0})
        .lineTo({1, 1})
        .lineTo({0, 0})
        .close(); // its end repeats its start
    path.lineTo({5, 5}).moveTo({2, 2}).close().moveTo({3, 3}).lineTo({3, 3}).moveTo({4, 4});
    const Polylines flat = path.flatten(0.1);
    std::vector<std::pair<std::size_t, bool>> found;
    for (const Polylines::Line& line : flat.lines)
        found.emplace_back(line.count, line.isClosed);
    EXPECT_EQ(found, (std::vector<std::pair<std::size_t, bool>>{{3, true}, {2, false}, {1, true}, {2, false}}));
    EXPECT_EQ(flat.pointsOf(flat.lines[1])[0], Point(0, 0));

    test::CaughtAsserts asserts;
    EXPECT_TRUE(path.flatten(0).points.empty());
    EXPECT_TRUE(path.flatten(std::numeric_limits<double>::quiet_NaN()).points.empty());
    EXPECT_TRUE(asserts.caught(std::vector<std::string>(2, "tolerance > 0")));
}

TEST(PathTest, BoundsTouchTheCurve)
{
    for (const Path& path : curves())
    {
        const Path::Rect bounds = path.getBounds().value();
        double left = 1e9, right = -1e9, top = 1e9, bottom = -1e9;
        for (const PathSegment& s : path)
            for (int i = 0; i <= 3000 && s.verb != Path::Verb::MoveTo; ++i)
            {
                const Point p = s.at(i / 3000.0);
                left = std::min(left, p.x);
                right = std::max(right, p.x);
                top = std::min(top, p.y);
                bottom = std::max(bottom, p.y);
            }
        const double size = right - left + bottom - top, slack = 1e-12 * (1000 + size), gap = 1e-5 * size + slack;
        EXPECT_TRUE(bounds.left <= left + slack && bounds.left >= left - gap) << bounds.left << ' ' << left;
        EXPECT_TRUE(bounds.right >= right - slack && bounds.right <= right + gap) << bounds.right << ' ' << right;
        EXPECT_TRUE(bounds.top <= top + slack && bounds.top >= top - gap) << bounds.top << ' ' << top;
        EXPECT_TRUE(bounds.bottom >= bottom - slack && bounds.bottom <= bottom + gap) << bounds.bottom << ' ' << bottom;
    }
    EXPECT_FALSE(Path().moveTo({1, 1}).getBounds());
    EXPECT_EQ(Path().moveTo({1, 1}).close().getBounds(), Path::Rect(1, 1, 1, 1));
}

TEST(PathTest, LengthAndPlacesAgreeWithTheCurve)
{
    for (const Path& path : curves())
    {
        const double length = path.getLength();
        double sum = 0, least = 1e9;
        const Point middle = path.placeAt(length / 2).value().position;
        double atMiddle = 0;
        Point last;
        bool isFirst = true;
        for (const PathSegment& s : path)
            for (int i = 0; i <= 20000 && s.verb != Path::Verb::MoveTo; ++i)
            {
                const Point p = s.at(i / 20000.0);
                sum += isFirst ? 0 : distance(last, p);
                last = p;
                isFirst = false;
                // Where the curve crosses itself, the length tells the place.
                if (const double d = distance(p, middle) + 1e-3 * std::abs(sum - length / 2); d < least)
                {
                    least = d;
                    atMiddle = sum;
                }
            }
        EXPECT_NEAR(length, sum, 1e-5 * (1 + length));
        EXPECT_NEAR(atMiddle, length / 2, 1e-3 * (1 + length));
        const Point direction = path.placeAt(length / 3)->direction;
        EXPECT_NEAR(std::hypot(direction.x, direction.y), length > 0 ? 1 : 0, 1e-9);
    }
    Path path;
    path.moveTo({0, 0}).lineTo({3, 0}).moveTo({10, 0}).lineTo({10, 0}).lineTo({10, 4}).close();
    EXPECT_EQ(path.getLength(), 11);
    EXPECT_EQ(path.placeAt(-1)->position, Point(0, 0));
    EXPECT_EQ(path.placeAt(5)->position, Point(10, 2));
    EXPECT_EQ(path.placeAt(5)->direction, Point(0, 1));
    EXPECT_EQ(path.placeAt(9)->direction, Point(0, -1));
    EXPECT_EQ(path.placeAt(99)->position, Point(10, 0));
    EXPECT_FALSE(Path().moveTo({1, 1}).placeAt(0));
}

TEST(PathTest, MapsLikeItsPoints)
{
    const Affine affine = Affine::rotation(0.7) * Affine{1, 0.5, -0.3, 2, 40, -7} * Affine::scaling(-2, 3);
    for (const Path& path : curves())
    {
        const Path mapped = path.transformed(affine);
        auto segment = mapped.begin();
        for (const PathSegment& s : path)
        {
            for (const double t : {0.0, 0.2, 0.7, 1.0})
                EXPECT_LT(distance((*segment).at(t), affine.map(s.at(t))), 1e-9 * 30000);
            ++segment;
        }
    }
    const Affine identity = affine * affine.inverse().value();
    EXPECT_LT(distance(identity.map({3, 4}), {3, 4}), 1e-12);
    EXPECT_FALSE(Affine::scaling(1, 0).inverse());
}

TEST(PathTest, WholeShapes)
{
    const double pi = 3.14159265358979;
    EXPECT_NEAR(Path().addCircle({5, 5}, 2).getLength(), 4 * pi, 1e-9);
    Path rounded;
    rounded.addRoundedRect({0, 0, 10, 6}, {2, 2});
    EXPECT_NEAR(rounded.getLength(), 2 * (6 + 2) + 4 * pi, 1e-9);
    EXPECT_EQ(rounded.getBounds(), Path::Rect(0, 0, 10, 6));
    EXPECT_EQ(rounded, Path().addRoundedRect({0, 0, 10, 6}, 2));
    EXPECT_NEAR(Path().addRoundedRect({0, 0, 10, 6}, 99).getLength(), 2 * 4 + 6 * pi, 1e-9) << "half discs at the ends";
    EXPECT_NEAR(Path().addRoundedRect({0, 0, 10, 6}, {99, 3}).getLength(),
                Path().addEllipse({5, 3}, {5, 3}).getLength(), 1e-9);
    EXPECT_EQ(Path().addRect({0, 0, 10, 6}).getLength(), 32);
    // Parts join without a gap, and an arc is led to by a line.
    EXPECT_NEAR(Path().moveTo({0, 0}).arc({5, 0}, {1, 1}, 0, pi).getLength(), 6 + pi, 1e-9);

    const std::vector<glm::vec2> vectors{{0, 0}, {1, 0}};
    const std::pair<int, int> pairs[] = {{5, 5}, {5, 7}};
    const std::array<std::array<float, 2>, 2> arrays{{{0, 0}, {0, 8}}};
    const std::vector<td::Point<float>> points{{0, 0}, {16, 0}};
    Path path;
    path.addPolyline(vectors).addPolyline(pairs).addPolyline(arrays).addPolygon(points).addPolygon(
        std::vector<Point>());
    EXPECT_EQ(path.getLength(), 1 + 2 + 8 + 32);
    path.addPath(path).lineTo({0, 1});
    EXPECT_EQ(path.getLength(), 87);
}

// Lines that lie outside, end short of the edge, stop at a hole or a corner, or go by the other rule: by their ends
// where these are plain, and by the area that lines of their distance stand for.
TEST(PathTest, HatchesGoFromEdgeToEdge)
{
    const Path frame = Path().addRect({0, 0, 10, 10}).addRect({2, 2, 8, 8});
    const auto text = [](const Path& path)
    {
        std::string ends;
        for (const PathSegment& segment : path)
            if (segment.verb == Path::Verb::LineTo)
                for (const double x : {segment.from.x, segment.to.x})
                    ends += std::to_string(std::lround(10 * x)) + ' ';
        return ends;
    };
    EXPECT_EQ(text(frame.hatched({.spacing = 3, .angle = 0, .origin = {7, 1}, .rule = FillRule::EvenOdd})),
              "0 100 0 20 80 100 0 20 80 100 ");
    EXPECT_EQ(text(frame.hatched({.spacing = 5, .angle = 0})), "0 100 0 100 ") << "each side belongs to one of two";

    const Path disc = Path().addCircle({1e6, 3}, 50);
    const Path ring = Path(disc).addCircle({1e6, 3}, 20);
    const double pi = std::numbers::pi;
    for (const double angle : {0.0, 45.0, 90.0, -30.0, 200.0})
    {
        const double spacing = 0.25;
        const Hatch hatch{.spacing = spacing, .angle = angle};
        EXPECT_NEAR(spacing * disc.hatched(hatch).getLength(), pi * 2500, 7);
        EXPECT_NEAR(spacing * ring.hatched(hatch).getLength(), pi * 2500, 7);
        const Path lines = ring.hatched({.spacing = spacing, .angle = angle, .rule = FillRule::EvenOdd});
        EXPECT_NEAR(spacing * lines.getLength(), pi * 2100, 7);
        for (const PathSegment& segment : lines)
            EXPECT_NEAR(
                std::min(std::abs(distance(segment.to, {1e6, 3}) - 50), std::abs(distance(segment.to, {1e6, 3}) - 20)),
                0, 0.03);
    }
}

// What would take for ever, or all memory, and what is no number.
TEST(PathTest, HatchesThatCannotBeAreNone)
{
    test::CapturedLog log;
    const double infinity = std::numeric_limits<double>::infinity();
    const Path square = Path().addRect({0, 0, 40, 40});
    for (const Hatch& hatch : {Hatch{.spacing = 0},
                               {.spacing = -1},
                               {.spacing = infinity},
                               {.spacing = NAN},
                               {.angle = infinity},
                               {.origin = {NAN, 0}},
                               {.origin = {0, infinity}}})
        EXPECT_TRUE(square.hatched(hatch).isEmpty());
    EXPECT_TRUE(Path().hatched({}).isEmpty());
    EXPECT_TRUE(Path().moveTo({0, 0}).lineTo({0, 0}).hatched({}).isEmpty());
    EXPECT_TRUE(Path().addRect({0, 0, infinity, 1}).hatched({}).isEmpty());
    EXPECT_TRUE(Path(square).lineTo({NAN, 3}).hatched({}).isEmpty());
    EXPECT_TRUE(square.hatched({.spacing = 1e-9}).isEmpty());
    EXPECT_TRUE(log.said("Warning! Path::hatched: lines at a distance of 1e-09 are too many for an area of 40"));
    EXPECT_TRUE(square.hatched({.origin = {0, 1e17}}).isEmpty());
    EXPECT_EQ(log.take().size(), 1U);
}

} // namespace
