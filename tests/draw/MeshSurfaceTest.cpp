#include "Solids.h"

#include <draw/src/space/ModelGeometry.h>

#include <glm/ext/matrix_transform.hpp>
#include <glm/geometric.hpp>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <numbers>
#include <random>

namespace
{

using gui::draw::Box3;
using gui::draw::Material;
using gui::draw::Mesh;
using gui::draw::MeshSurface;
using gui::draw::ModelCell;
using gui::draw::ModelGeometry;

// The same triangles with three corners each.
Mesh soupOf(const Mesh& mesh)
{
    Mesh soup = mesh;
    soup.positions.clear();
    for (std::uint32_t& index : soup.indices)
    {
        soup.positions.push_back(mesh.positions[index]);
        index = static_cast<std::uint32_t>(soup.positions.size() - 1);
    }
    return soup;
}

TEST(MeshSurface, KnownSolidsHaveTheirNormalsAndEdges)
{
    using Vertex = MeshSurface::Vertex;
    const auto alongAxis = [](const Vertex& v) {
        return std::max({std::abs(v.normal.x), std::abs(v.normal.y), std::abs(v.normal.z)}) > 1 - 1e-6F;
    };
    const auto outOfBox = [&](const Vertex& v) { return alongAxis(v) && glm::dot(v.normal, v.position) > 0; };
    // Whichever way its faces are cut into triangles: that is what weights are for.
    const auto fromCorner = [](const Vertex& v) { return glm::distance(v.normal, glm::normalize(v.position)) < 1e-6F; };
    const auto outwards = [](const Vertex& v) { return glm::distance(v.normal, glm::normalize(v.position)) < 0.01F; };
    const auto ofCylinder = [&](const Vertex& v)
    {
        const glm::vec3 around = glm::normalize(glm::vec3(v.position.x, v.position.y, 0));
        return std::abs(v.normal.z) > 1 - 1e-6F || glm::distance(v.normal, around) < 1e-5F;
    };
    const auto with = [](Mesh mesh, double smoothAngle, double edgeAngle)
    {
        mesh.smoothAngle = smoothAngle;
        mesh.edgeAngle = edgeAngle;
        return mesh;
    };
    Mesh twoColors = test::makeBox({-1, -1, -1}, {1, 1, 1});
    twoColors.parts = {{2, {.color = "#ff0000"}}, {10, {.color = "#0000ff"}}};
    Mesh given = test::makeBox({-1, -1, -1}, {1, 1, 1});
    for (const glm::dvec3& p : given.positions)
        given.normals.emplace_back(-3.0 * p); // inwards, which is turned
    Mesh flipped = test::makeBox({-1, -1, -1}, {1, 1, 1});
    std::swap(flipped.indices[0], flipped.indices[1]); // one triangle looks inwards: no edge, but its own corners
    Mesh mirrored;
    mirrored.add(test::makeBox({-1, -1, -1}, {1, 1, 1}), glm::scale(glm::dmat4(1), {1, -2, 3}));
    struct Case
    {
        const char* name;
        Mesh mesh;
        std::size_t nVertices, nEdges;
        std::function<bool(const Vertex&)> isRight;
    };
    const Mesh box = test::makeBox({-1, -1, -1}, {1, 1, 1}), cylinder = test::makeCylinder(1, 2, 48);
    const Case cases[] = {{"box", box, 24, 12, outOfBox},
                          {"mirrored", mirrored, 24, 12, outOfBox},
                          {"soup", soupOf(box), 24, 12, alongAxis},
                          {"smooth box", with(box, 180, 89), 8, 12, fromCorner},
                          {"box without edges", with(box, 0, 91), 24, 0, alongAxis},
                          {"two materials", with(twoColors, 180, 180), 12, 4, fromCorner},
                          {"given normals", given, 8, 12, fromCorner},
                          {"one flipped", flipped, 26, 12, alongAxis},
                          {"cylinder", cylinder, 194, 96, ofCylinder},
                          {"soup of a cylinder", soupOf(cylinder), 194, 96, ofCylinder},
                          {"flat cylinder", with(cylinder, 0, 30), 290, 96, [](const Vertex&) { return true; }},
                          {"sphere", test::makeSphere(1, 64), 1986, 0, outwards}};
    for (const Case& solid : cases)
    {
        SCOPED_TRACE(solid.name);
        ASSERT_EQ(solid.mesh.findFault(), "");
        const MeshSurface surface = MeshSurface::make(solid.mesh);
        EXPECT_EQ(surface.vertices.size(), solid.nVertices);
        EXPECT_EQ(surface.edges.size(), solid.nEdges);
        EXPECT_EQ(surface.indices.size(), solid.mesh.indices.size());
        EXPECT_TRUE(std::all_of(surface.vertices.begin(), surface.vertices.end(), solid.isRight));
    }
}

// Whatever triangles there are: those with an area, with their corners where they were to 48 bits; in cells without a
// gap, whose boxes have what is drawn of them; and ever fewer that stand for them, near where they were.
TEST(MeshSurface, NothingIsLostOfAnyTriangles)
{
    std::mt19937 random(5);
    const auto uniform = [&](double low, double high) { return std::uniform_real_distribution<>(low, high)(random); };
    const auto below = [&](std::uint32_t n) { return static_cast<std::uint32_t>(random() % n); };
    for (int round = 0; round < 12; ++round)
    {
        Mesh mesh;
        const double size = std::pow(10, uniform(-6, 6)), far = round % 3 == 0 ? 0 : size * std::pow(10, uniform(0, 6));
        const std::uint32_t n = round % 2 == 0 ? 30 : 9000;
        for (std::uint32_t i = 0; i < n; ++i)
        {
            const glm::dvec3 at(far + uniform(0, size), uniform(0, size), -far + uniform(0, size / 100));
            mesh.positions.push_back(i % 7 == 0 && i > 0 ? mesh.positions.back() : at);
        }
        for (int i = 0; i < 20000; ++i)
            for (std::uint32_t k = 0, first = below(n); k < 3; ++k)
                mesh.indices.push_back((first + k * (1 + below(3))) % n);
        mesh.parts = {{7000, {}, 1}, {0, {}, 2}, {13000, {.color = "#ff0000"}, 3}};
        ASSERT_EQ(mesh.findFault(), "");
        const std::vector<std::uint32_t> ranks{2, 0, 1};
        const ModelGeometry geometry = ModelGeometry::make(mesh, ranks);

        std::vector<std::uint32_t> corners; // of triangles with an area
        for (std::size_t t = 0; t < mesh.indices.size(); t += 3)
        {
            const auto& p = mesh.positions;
            const auto* i = &mesh.indices[t];
            if (glm::cross(p[i[1]] - p[i[0]], p[i[2]] - p[i[1]]) != glm::dvec3(0))
                corners.insert(corners.end(), i, i + 3);
        }
        ASSERT_EQ(geometry.levels[0].nTriangles, corners.size() / 3);
        std::uint32_t end = 0, endOfEdges = 0;
        for (const ModelGeometry::Level& level : geometry.levels)
        {
            std::uint32_t rank = 0;
            for (const ModelCell& cell : level.cells)
            {
                ASSERT_EQ(cell.first, end);
                end += cell.count;
                ASSERT_NE(cell.part, 1U);
                ASSERT_LE(rank, ranks[cell.part]);
                rank = ranks[cell.part];
                for (std::uint32_t i = cell.first; i < end; ++i)
                {
                    const MeshSurface::Vertex& vertex = geometry.vertices[geometry.indices[i]];
                    ASSERT_EQ(vertex.part, cell.part);
                    const glm::vec3 away = glm::abs(vertex.position + vertex.rest - cell.center);
                    ASSERT_TRUE(away.x <= cell.halfSize.x && away.y <= cell.halfSize.y && away.z <= cell.halfSize.z);
                    const float length = glm::length(vertex.normal);
                    ASSERT_TRUE(length == 0 || std::abs(length - 1) < 1e-5F);
                }
            }
            for (const ModelCell& cell : level.edgeCells)
            {
                ASSERT_EQ(cell.first, endOfEdges);
                endOfEdges += cell.count;
                for (std::uint32_t i = cell.first; i < endOfEdges; ++i)
                    for (const glm::vec3& p : geometry.edges[i].positions)
                    {
                        const glm::vec3 away = glm::abs(p - cell.center);
                        ASSERT_TRUE(away.x <= cell.halfSize.x && away.y <= cell.halfSize.y &&
                                    away.z <= cell.halfSize.z);
                    }
            }
        }
        ASSERT_EQ(end, geometry.indices.size());
        ASSERT_EQ(endOfEdges, geometry.edges.size());
        std::vector<glm::dvec3> places;
        for (const MeshSurface::Vertex& vertex : geometry.vertices)
            places.push_back(geometry.origin + glm::dvec3(vertex.position) + glm::dvec3(vertex.rest));
        const auto isLess = [](const glm::dvec3& a, const glm::dvec3& b) { return a.x < b.x; };
        std::sort(places.begin(), places.end(), isLess);
        const double step = std::ldexp(size + far, -47);
        for (const std::uint32_t index : corners)
        {
            const glm::dvec3& p = mesh.positions[index];
            const auto nearest = std::lower_bound(places.begin(), places.end(), p - step, isLess);
            bool isThere = false;
            for (auto place = nearest; place != places.end() && place->x <= p.x + step && !isThere; ++place)
                isThere = glm::distance(*place, p) <= 2 * step;
            ASSERT_TRUE(isThere);
        }
    }
}

TEST(MeshSurface, CoarserOnesStandNearTheMesh)
{
    const Mesh sphere = test::makeSphere(1, 300);
    const std::vector<std::uint32_t> ranks{0};
    const ModelGeometry geometry = ModelGeometry::make(sphere, ranks);
    ASSERT_GE(geometry.levels.size(), 4U);
    for (std::size_t i = 1; i < geometry.levels.size(); ++i)
    {
        const ModelGeometry::Level &level = geometry.levels[i], &finer = geometry.levels[i - 1];
        EXPECT_LT(level.nTriangles, 0.6 * finer.nTriangles);
        EXPECT_GE(level.step, 2 * finer.step);
        double area = 0;
        for (const ModelCell& cell : level.cells)
            for (std::uint32_t k = cell.first; k < cell.first + cell.count; k += 3)
            {
                const auto at = [&](std::uint32_t c) { return geometry.vertices[geometry.indices[k + c]].position; };
                area += glm::length(glm::cross(at(1) - at(0), at(2) - at(0))) / 2;
                for (std::uint32_t c = 0; c < 3; ++c)
                    EXPECT_NEAR(glm::length(at(c)), 1, level.step);
            }
        EXPECT_NEAR(area, 4 * std::numbers::pi, 8 * level.step);
    }
}

} // namespace
