#include "SpaceMeshes.h"
#include "support/CapturedLog.h"
#include "support/Thorough.h"

#include <gui/draw/TriangleIndex.h>

#include <gtest/gtest.h>

#include <glm/ext/matrix_clip_space.hpp>
#include <glm/geometric.hpp>
#include <glm/trigonometric.hpp>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <string>

namespace
{

using namespace gui::draw;
using Hit = TriangleIndex::Hit;
using Reach = TriangleIndex::Reach;
using enum TriangleIndex::Build;
using test::randomIn;
using test::SpaceMesh;

constexpr double cInfinity = std::numeric_limits<double>::infinity();
constexpr double cNaN = std::numeric_limits<double>::quiet_NaN();

bool set(TriangleIndex& index, TriangleIndex::Kind kind, const SpaceMesh& mesh, TriangleIndex::Build build)
{
    if (kind == TriangleIndex::Kind::Points)
        return index.setPoints(mesh.vertices, build);
    if (kind == TriangleIndex::Kind::Triangles)
        return index.setTriangles(mesh.vertices, mesh.indices, build);
    std::vector<std::uint32_t> lines(mesh.indices.begin(), mesh.indices.end() - mesh.indices.size() % 2);
    return index.setLines(mesh.vertices, lines, build);
}

bool isSame(const Hit& a, const Hit& b)
{
    return a.index == b.index && a.distance == b.distance && a.point == b.point && a.weights == b.weights &&
           a.isFront == b.isFront && a.aside == b.aside;
}

bool isSame(const std::optional<Hit>& a, const std::optional<Hit>& b)
{
    return a.has_value() == b.has_value() && (!a || isSame(*a, *b));
}

/// A square of n by n pairs of triangles, flat, of whole numbers: rays along the axes meet its edges and corners.
SpaceMesh makeSheet(std::uint32_t n)
{
    SpaceMesh mesh;
    for (std::uint32_t y = 0; y <= n; ++y)
        for (std::uint32_t x = 0; x <= n; ++x)
            mesh.vertices.emplace_back(x, y, 0);
    for (std::uint32_t y = 0; y < n; ++y)
        for (std::uint32_t x = 0; x < n; ++x)
        {
            const std::uint32_t i = y * (n + 1) + x;
            mesh.indices.insert(mesh.indices.end(), {i, i + 1, i + n + 2, i, i + n + 2, i + n + 1});
        }
    return mesh;
}

SpaceMesh placed(SpaceMesh mesh, double scale, const glm::dvec3& at)
{
    for (glm::dvec3& vertex : mesh.vertices)
        vertex = vertex * scale + at;
    return mesh;
}

SpaceMesh joined(SpaceMesh mesh, const SpaceMesh& other)
{
    const auto first = static_cast<std::uint32_t>(mesh.vertices.size());
    mesh.vertices.insert(mesh.vertices.end(), other.vertices.begin(), other.vertices.end());
    for (const std::uint32_t index : other.indices)
        mesh.indices.push_back(first + index);
    return mesh;
}

struct NamedMesh
{
    const char* name;
    SpaceMesh mesh;
};

std::vector<NamedMesh> makeMeshes()
{
    SpaceMesh broken = test::makeSoup(2000, 0.1);
    const double numbers[] = {cNaN, cInfinity, -1e300, 1e99, 0};
    for (std::size_t i = 0; i < 100; ++i)
    {
        broken.vertices[i * 50][static_cast<int>(i % 3)] = numbers[i % 5];
        broken.indices[i * 60 + 1] = broken.indices[i * 60]; // without an area
    }
    SpaceMesh growing = test::makeSoup(3000, 1);
    for (std::size_t i = 0; i < growing.vertices.size(); ++i)
        growing.vertices[i] += glm::dvec3(double(i * i) / 9, 0, 0);
    SpaceMesh point;
    point.vertices = {{1, 2, 3}};
    point.indices.assign(3000, 0);
    const SpaceMesh soup = test::makeSoup(1000, 0.3);
    return {{"knot", test::makeKnot(200, 20)},
            {"twice", joined(soup, soup)},
            {"sheets", joined(makeSheet(20), joined(makeSheet(20), placed(makeSheet(10), 1, {5, 5, -3})))},
            {"far", placed(test::makeKnot(100, 10), 1e-3, {6.4e6, -3e6, 1e5})},
            {"a thing on a globe", joined(placed(test::makeKnot(60, 10), 0.5, {6.4e6, 0, 0}),
                                          placed(test::makeSoup(500, 0.3), 6.4e6, {0, 0, 0}))},
            {"broken", broken},
            {"growing", growing},
            {"a point", point},
            {"one", makeSheet(1)},
            {"none", {}}};
}

/// From all around, along the axes, from corner to corner, from within.
Ray randomRay(std::mt19937& random, const SpaceMesh& mesh, const Box3& box)
{
    const auto anyVertex = [&]
    { return mesh.vertices.empty() ? glm::dvec3(0) : mesh.vertices[random() % mesh.vertices.size()]; };
    const glm::dvec3 middle = box.getCenter();
    const double radius = box.isEmpty() || box.getRadius() == 0 ? 1 : box.getRadius();
    Ray ray{middle + radius * randomIn(random, glm::dvec3(-2), glm::dvec3(2)),
            randomIn(random, glm::dvec3(-1), glm::dvec3(1))};
    const std::size_t way = random() % 8;
    if (way < 4)
        ray.direction = randomIn(random, box.min, box.max) - ray.origin;
    else if (way == 4)
        ray.direction = anyVertex() - ray.origin;
    else if (way == 5)
        ray = {anyVertex(), anyVertex() - anyVertex()};
    else if (way == 6)
    {
        const int axis = static_cast<int>(random() % 3);
        ray.direction = glm::dvec3(0);
        ray.direction[axis] = random() % 2 == 0 ? 1 : -1;
        ray.origin = anyVertex() - radius * 3 * ray.direction;
    }
    // Way 7 may go past it all.
    const double length = glm::length(ray.direction);
    if (length > 0 && random() % 4 != 0)
        ray.direction /= length;
    return ray;
}

void compare(const TriangleIndex& tree, const TriangleIndex& plain, const SpaceMesh& mesh, std::mt19937& random,
             int nRays)
{
    for (int i = 0; i < nRays; ++i)
    {
        const Ray ray = randomRay(random, mesh, plain.getBounds());
        const double radius = plain.getBounds().getRadius();
        const Reach reach(random() % 2 == 0 ? radius * 0.01 : 0, random() % 2 == 0 ? 0.01 : 0);
        const double farthest = random() % 3 == 0 ? radius * 1.5 : cInfinity;
        ASSERT_TRUE(isSame(tree.getNearest(ray, reach, farthest), plain.getNearest(ray, reach, farthest)));
        const auto some = tree.getAll(ray, reach, farthest), all = plain.getAll(ray, reach, farthest);
        ASSERT_TRUE(std::equal(some.begin(), some.end(), all.begin(), all.end(),
                               [](const Hit& a, const Hit& b) { return isSame(a, b); }));
        ASSERT_TRUE(isSame(tree.getClosest(ray, reach, farthest), plain.getClosest(ray, reach, farthest)));
        if (all.empty())
            continue;
        // What it says of a hit is so.
        const Hit& hit = all.front();
        const glm::dvec3 seen = ray.at(hit.distance);
        const double length = glm::length(ray.direction);
        const double aside = hit.aside * (reach.atOrigin + reach.perDistance * hit.distance * length);
        const double slack = 1e-9 * (radius + glm::length(seen) + glm::length(ray.origin));
        ASSERT_LE(glm::distance(hit.point, seen), aside + slack);
        ASSERT_NEAR(hit.weights.x + hit.weights.y + hit.weights.z, 1, 1e-9);
        ASSERT_TRUE(isSame(tree.getNearest(ray, reach, farthest), hit));
    }
}

Eye eyeAt(const Box3& box, const glm::dvec3& way, double distance, bool isOrthographic)
{
    const glm::dvec3 back = glm::normalize(way), right = glm::normalize(glm::cross(glm::dvec3(0.1, 1, 0), back));
    const glm::dmat3 rows(right, glm::cross(back, right), back);
    const double radius = box.getRadius();
    const glm::dmat4 projection = isOrthographic ? glm::ortho(-radius, radius, -radius, radius, 0.0, 4 * radius)
                                                 : glm::perspective(glm::radians(50.0), 1.0, radius * 0.1, radius * 9);
    return {box.getCenter() + distance * radius * back, glm::transpose(rows), projection, {400, 400}};
}

// What a lasso takes of both is the same, and what a rectangle takes is what corners say.
void compareSelections(const TriangleIndex& tree, const TriangleIndex& plain, const SpaceMesh& mesh,
                       std::mt19937& random)
{
    const auto kind = tree.getKind();
    for (int i = 0; i < (test::cIsThorough ? 30 : 6); ++i)
    {
        // Also from within, where much is behind the eye.
        const Eye eye = eyeAt(plain.getBounds(), randomIn(random, glm::dvec3(-1), glm::dvec3(1)),
                              i % 3 == 0 ? 0.3 : 2.2, i % 4 == 1);
        std::vector<td::Point<double>> lasso;
        for (std::size_t k = 3 + random() % 20; k > 0; --k)
            lasso.emplace_back(double(random() % 500) - 50, double(random() % 500) - 50);
        for (const auto take : {TriangleIndex::Take::Touched, TriangleIndex::Take::Whole})
            for (const FillRule rule : {FillRule::NonZero, FillRule::EvenOdd})
                ASSERT_EQ(tree.getWithin(eye, lasso, take, rule), plain.getWithin(eye, lasso, take, rule));
        // In a rectangle, whole is what has all of its corners there; what has one there is touched, and what
        // has all of them beyond one side is not.
        const td::RectNormalized<double> rect(lasso[0].x, lasso[0].y, lasso[1].x, lasso[1].y);
        const auto touched = tree.getWithin(eye, rect), whole = tree.getWithin(eye, rect, TriangleIndex::Take::Whole);
        const std::size_t nCorners = kind == TriangleIndex::Kind::Triangles ? 3
                                     : kind == TriangleIndex::Kind::Lines   ? 2
                                                                            : 1;
        for (std::size_t k = 0; k < tree.size() && eye.isValid(); ++k)
        {
            std::size_t nIn = 0, nSeen = 0, beyond[4] = {};
            glm::dvec3 corners[3];
            for (std::size_t c = 0; c < nCorners; ++c)
            {
                corners[c] = mesh.vertices[nCorners == 1 ? k : mesh.indices[k * nCorners + c]];
                const auto at = eye.project(corners[c]);
                if (!at || at->z < eye.getNearest() || !(glm::length(corners[c]) < 1e100))
                    continue;
                ++nSeen;
                const bool isBeyond[] = {at->x<rect.left, at->x> rect.right, at->y<rect.top, at->y> rect.bottom};
                for (int side = 0; side < 4; ++side)
                    beyond[side] += isBeyond[side] ? 1 : 0;
                nIn += std::find(isBeyond, isBeyond + 4, true) == isBeyond + 4 ? 1 : 0;
            }
            const bool isFlat =
                nCorners == 3 && glm::cross(corners[1] - corners[0], corners[2] - corners[0]) == glm::dvec3(0);
            const bool isTouched = std::binary_search(touched.begin(), touched.end(), k);
            ASSERT_EQ(std::binary_search(whole.begin(), whole.end(), k), nIn == nCorners && !isFlat);
            if (nSeen == nCorners)
            {
                ASSERT_TRUE(isTouched || nIn == 0 || isFlat);
                ASSERT_FALSE(isTouched && *std::max_element(beyond, beyond + 4) == nCorners);
            }
        }
    }
}

TEST(TriangleIndexTest, FindsWhatAPlainSearchFinds)
{
    std::mt19937 random(1);
    for (const auto& [name, mesh] : makeMeshes())
        for (const auto kind :
             {TriangleIndex::Kind::Triangles, TriangleIndex::Kind::Lines, TriangleIndex::Kind::Points})
        {
            SCOPED_TRACE(name);
            TriangleIndex tree, plain;
            ASSERT_TRUE(set(tree, kind, mesh, Now) && set(plain, kind, mesh, InPieces));
            ASSERT_TRUE(tree.isBuilt() && (mesh.indices.empty() || !plain.isBuilt()));
            EXPECT_EQ(tree.getBounds(), plain.getBounds());
            compare(tree, plain, mesh, random, test::cIsThorough ? 400 : 60);
            compareSelections(tree, plain, mesh, random);
            // In pieces, and after its vertices went elsewhere and came back, a few of them to nowhere.
            int nPieces = 0;
            for (double progress = -1; !plain.buildSome(0); ++nPieces)
            {
                EXPECT_GE(plain.getProgress(), progress);
                progress = plain.getProgress();
            }
            // Each has thousands; were neighbours joined one at a time, there would be thousands of rounds.
            EXPECT_LT(nPieces, 200);
            SpaceMesh moved = mesh;
            for (glm::dvec3& vertex : moved.vertices)
                vertex += 0.1 * randomIn(random, glm::dvec3(-1), glm::dvec3(1));
            for (std::size_t i = 0; i < moved.vertices.size(); i += 40)
                moved.vertices[i].z = i % 80 == 0 ? cNaN : 1;
            TriangleIndex after;
            ASSERT_TRUE(set(after, kind, moved, InPieces));
            ASSERT_TRUE(tree.move(moved.vertices));
            EXPECT_EQ(tree.getBounds(), after.getBounds());
            compare(tree, after, moved, random, test::cIsThorough ? 200 : 30);
            ASSERT_TRUE(tree.move(mesh.vertices) && tree.isBuilt());
            compare(tree, plain, mesh, random, 30);
            TriangleIndex taken = std::move(tree);
            EXPECT_EQ(tree.size(), 0U);
            EXPECT_EQ(taken.size(), plain.size());
        }
}

// Rays to points of edges and to corners, as close to them as rounding lets them be, and into the notches between: none
// slips through, and of those that go all the way through a closed mesh as many come out as went in.
TEST(TriangleIndexTest, NoRaySlipsThroughAnEdgeOrACorner)
{
    std::mt19937 random(2);
    for (const glm::dvec3& place : {glm::dvec3(0), glm::dvec3(6.4e6, 0.1, -1e3)})
    {
        // A ball, seen from within.
        SpaceMesh ball;
        constexpr std::uint32_t cStacks = 12, cSectors = 24;
        for (std::uint32_t i = 0; i <= cStacks; ++i)
            for (std::uint32_t k = 0; k < cSectors; ++k)
            {
                const double a = 3.14159265358979 * i / cStacks, b = 2 * 3.14159265358979 * k / cSectors;
                // One corner at each pole.
                const double r = i % cStacks == 0 ? 0 : std::sin(a);
                ball.vertices.push_back(place + glm::dvec3(r * std::cos(b), r * std::sin(b), std::cos(a)));
            }
        for (std::uint32_t i = 0; i < cStacks; ++i)
            for (std::uint32_t k = 0; k < cSectors; ++k)
            {
                const std::uint32_t a = i * cSectors + k, b = i * cSectors + (k + 1) % cSectors;
                ball.indices.insert(ball.indices.end(), {a, a + cSectors, b, b, a + cSectors, b + cSectors});
            }
        TriangleIndex index;
        ASSERT_TRUE(index.setTriangles(ball.vertices, ball.indices));
        for (int i = 0; i < (test::cIsThorough ? 100000 : 10000); ++i)
        {
            const std::size_t at = random() % ball.indices.size();
            const glm::dvec3 from = ball.vertices[ball.indices[at]];
            const glm::dvec3 to = ball.vertices[ball.indices[at / 3 * 3 + (at + 1) % 3]];
            const glm::dvec3 middle = place + randomIn(random, glm::dvec3(-0.4), glm::dvec3(0.4));
            const double share = random() % 4 == 0 ? 0 : double(random() % 64) / 64;
            const glm::dvec3 goal = from + share * (to - from);
            ASSERT_TRUE(index.getNearest({middle, glm::normalize(goal - middle)}).has_value()) << i;
        }
    }
    const SpaceMesh knot = test::makeKnot(100, 12);
    TriangleIndex index;
    ASSERT_TRUE(index.setTriangles(knot.vertices, knot.indices));
    for (int i = 0; i < (test::cIsThorough ? 20000 : 2000); ++i)
    {
        const glm::dvec3 from = 9.0 * glm::normalize(randomIn(random, glm::dvec3(-1), glm::dvec3(1)));
        const auto hits = index.getAll({from, glm::normalize(randomIn(random, glm::dvec3(-2), glm::dvec3(2)) - from)});
        int depth = 0;
        for (const Hit& hit : hits)
        {
            depth += hit.isFront ? 1 : -1;
            ASSERT_TRUE(depth == 0 || depth == 1 || depth == 2);
        }
        ASSERT_EQ(depth, 0);
    }
}

// Lines and points are hit as far beside them as their reach on the screen says, near by and far away.
TEST(TriangleIndexTest, ReachIsMeasuredOnTheScreen)
{
    Box3 box;
    box.add(glm::dvec3(-1));
    box.add(glm::dvec3(1));
    for (const bool isOrthographic : {false, true})
    {
        const Eye eye = eyeAt(box, {0, 0, 1}, 2, isOrthographic);
        for (const double z : {1.5, 0.0, -8.0})
        {
            const glm::dvec3 place(0.05, 0.05, z);
            const auto seen = eye.project(place);
            ASSERT_TRUE(seen);
            TriangleIndex points, lines;
            ASSERT_TRUE(points.setPoints(std::vector{place, place + glm::dvec3(0, 0, -0.1)}));
            // Towards the eye, where it goes past it, and across.
            const std::vector vertices{place, place + glm::dvec3(0.5, 0.5, 4), place - glm::dvec3(1, 0, 0)};
            ASSERT_TRUE(lines.setLines(vertices, std::vector<std::uint32_t>{0, 1, 0, 2}));
            const auto rayBeside = [&](double x, double y) { return eye.getRay({seen->x + x, seen->y + y}); };
            const auto isHit = [&](const TriangleIndex& index, const Ray& ray, double reach)
            { return index.getNearest(ray, Reach(eye, ray, reach)).has_value(); };
            EXPECT_TRUE(isHit(points, rayBeside(3, 0), 3.2));
            EXPECT_FALSE(isHit(points, rayBeside(3, 0), 2.8));
            EXPECT_TRUE(isHit(lines, rayBeside(-2, 3), 3.3));
            EXPECT_FALSE(isHit(lines, rayBeside(-2, 3), 2.6));
            const Ray ray = rayBeside(0, 0);
            const auto closest = points.getClosest(ray, Reach(eye, ray, 5));
            ASSERT_TRUE(closest);
            EXPECT_EQ(closest->index, 0U);
            EXPECT_LT(closest->aside, 1e-6);
            EXPECT_NEAR(glm::distance(closest->point, place), 0, 1e-9);
        }
    }
}

TEST(TriangleIndexTest, WhatCannotBeIsRefusedAndChangesNothing)
{
    test::CapturedLog log;
    TriangleIndex index;
    const SpaceMesh sheet = makeSheet(2);
    ASSERT_TRUE(index.setTriangles(sheet.vertices, sheet.indices));
    const std::vector<glm::vec3> two(2);
    EXPECT_FALSE(index.setTriangles(two, std::vector<std::uint32_t>{0, 1, 0, 0, 2, 1}));
    EXPECT_TRUE(log.said("Error! TriangleIndex: index 2, at 4, of 2 vertices"));
    EXPECT_FALSE(index.setLines(two, std::vector<std::uint32_t>{0, 1, 0}));
    EXPECT_TRUE(log.said("Error! TriangleIndex: 3 indices are no lines"));
    EXPECT_FALSE(index.move(two));
    EXPECT_TRUE(log.said("Error! TriangleIndex::move: 2 vertices, not 9"));
    const Ray down{{0.5, 0.25, 1}, {0, 0, -1}};
    EXPECT_EQ(index.getAll(down).size(), 1U);
    for (const Ray& ray : {Ray{{cNaN, 0, 0}, {0, 0, -1}}, Ray{{0, 0, 1}, {0, 0, 0}}, Ray{{0, 0, 1}, {0, cInfinity, 0}}})
        EXPECT_FALSE(index.getNearest(ray));
    EXPECT_FALSE(index.getNearest(down, {}, 0.5));
    EXPECT_FALSE(index.getNearest(down, {}, cNaN));
    EXPECT_TRUE(index.getWithin(Eye(), {0, 0, 9, 9}).empty());
    EXPECT_TRUE(index.getWithin(eyeAt(index.getBounds(), {0, 0, 1}, 2, false), std::vector{td::Point<double>(cNaN, 0)})
                    .empty());
}

} // namespace
