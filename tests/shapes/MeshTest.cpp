#include "src/shapes/SphereLoops.h"
#include "support/NullGL.h"

#include <gui/gl/Buffer.h>
#include <gui/gl/ObjectGenerator.h>

#include <epoxy/gl.h>
#include <glm/geometric.hpp>
#include <glm/vec3.hpp>

#include <cmath>
#include <limits>
#include <vector>

namespace gui::gl
{

extern const SphereLoops cSphereLoopsPlain;

} // namespace gui::gl

namespace
{

using glm::vec3;
using gui::gl::Buffer;
using gui::gl::Command;
using gui::gl::Texture;
using enum gui::gl::DataType;

constexpr auto Tex2D = Texture::Type::Tex2D, CubeStrip = Texture::Type::CubeStrip, CubeMap = Texture::Type::CubeMap;

constexpr vec3 cFaces[] = {{0, 0, 1}, {1, 0, 0}, {0, 0, -1}, {-1, 0, 0}, {0, 1, 0}, {0, -1, 0}}; // of a strip, in order

class MeshTest : public test::NullGL
{
protected:
    /// Uploads, and takes what was uploaded.
    void commit(Buffer& buffer)
    {
        ASSERT_TRUE(buffer.commit());
        vertices = trace.lastBuffer<float>(GL_ARRAY_BUFFER);
        indices = trace.lastBuffer<unsigned int>(GL_ELEMENT_ARRAY_BUFFER);
        nFloats = buffer.getVertexStride() / sizeof(float);
        trace.clear();
    }

    const float* vertex(std::size_t i) const { return &vertices.at(i * nFloats); }
    vec3 point(std::size_t i) const { return {vertex(i)[0], vertex(i)[1], vertex(i)[2]}; }

    std::vector<float> vertices;
    std::vector<unsigned int> indices;
    std::size_t nFloats = 0;
};

// A wrong sign or index leaves a hole, turns a triangle inwards or takes a piece of another face's texture.
TEST_F(MeshTest, CubesAreClosedAndLookOutwards)
{
    for (const Texture::Type type : {CubeStrip, CubeMap})
    {
        Buffer buffer{Vec3};
        ASSERT_TRUE(type == CubeMap || buffer.init(1, 24, 36, {Vec3, Vec2}));
        const std::size_t nVertices = type == CubeMap ? 8 : 24;
        const float others[10] = {}; // vertices without indices
        buffer.appendVertices(others, 2);
        for (const unsigned int nBefore : {0U, 1U, 2U})
        {
            Command* const pCommand = buffer.addCube(2, type);
            ASSERT_NE(pCommand, nullptr);
            EXPECT_EQ(buffer.getNoOfVertices(), 2 + nVertices * (nBefore + 1));
            trace.clear();
            ASSERT_TRUE(pCommand->encode() && pCommand->execute());
            const std::string offset = std::to_string(nBefore * 36 * 4);
            EXPECT_TRUE(trace.only({"glDrawElements(4, 36, 0x1405, " + offset + ")"}));
        }
        ASSERT_NO_FATAL_FAILURE(commit(buffer));
        ASSERT_EQ(indices.size(), 3 * 36U);

        std::vector<float> areas(6, 0);
        for (std::size_t i = 0; i < indices.size(); i += 3)
        {
            const vec3 a = point(indices[i]), b = point(indices[i + 1]), c = point(indices[i + 2]);
            const vec3 normal = glm::cross(b - a, c - a);
            std::size_t face = 0;
            while (face < 6 && glm::dot(cFaces[face], a + b + c) != 3)
                ++face;
            ASSERT_LT(face, 6U) << i;
            EXPECT_GT(glm::dot(normal, cFaces[face]), 0) << i;
            areas[face] += glm::length(normal) / 2;
            EXPECT_GE(indices[i], 2 + nVertices * (i / 36));
            EXPECT_LT(indices[i], 2 + nVertices * (i / 36 + 1));
            for (std::size_t k = i; type == CubeStrip && k < i + 3; ++k)
            {
                const float* const uv = vertex(indices[k]) + 3;
                EXPECT_EQ(uv[0], static_cast<float>(face + (uv[0] * 6 > static_cast<float>(face) + 0.5F)) / 6) << k;
                EXPECT_TRUE(uv[1] == 0 || uv[1] == 1) << k;
            }
        }
        EXPECT_EQ(areas, std::vector<float>(6, 3 * 4));
    }
}

TEST_F(MeshTest, CubeTexturesStandUpright)
{
    Buffer buffer{Vec3, Vec2};
    ASSERT_NE(buffer.addCube(3, CubeStrip), nullptr);
    ASSERT_NO_FATAL_FAILURE(commit(buffer));
    // Records as they are listed: one of each face, and both ends of the strip.
    const std::pair<std::size_t, std::vector<float>> cRecords[] = {
        {0, {1.5F, 1.5F, 1.5F, 1.0F / 6, 1}},    {1, {-1.5F, 1.5F, 1.5F, 0, 1}},
        {6, {1.5F, 1.5F, -1.5F, 1.0F / 3, 1}},   {9, {-1.5F, -1.5F, -1.5F, 0.5F, 0}},
        {13, {-1.5F, -1.5F, 1.5F, 2.0F / 3, 0}}, {17, {1.5F, 1.5F, 1.5F, 5.0F / 6, 0}},
        {22, {1.5F, -1.5F, 1.5F, 1, 1}},
    };
    for (const auto& [i, record] : cRecords)
        EXPECT_EQ(std::vector<float>(vertex(i), vertex(i) + 5), record) << i;
}

// By the formulas, vertex by vertex: what the generator computes once per row and column must give the same floats.
TEST_F(MeshTest, SpheresAreTheFormulasFloats)
{
    const struct
    {
        float radius;
        unsigned int sectors, stacks;
        Texture::Type type;
        bool hasNormals;
        float xyScale;
        unsigned int nBefore;
    } cases[] = {{1, 4, 2, Tex2D, true, 1, 0},       {2.5F, 7, 5, CubeMap, true, 1.5F, 3},
                 {0.1F, 36, 18, Tex2D, false, 1, 0}, {9, 3, 3, CubeStrip, false, 1, 5},
                 {1, 1, 1, Tex2D, true, 1, 2},       {-3, 64, 33, Tex2D, true, 0.25F, 1}};
    for (const auto& c : cases)
    {
        std::vector<float> expected;
        std::vector<unsigned int> expectedIndices;
        const auto nSectors = static_cast<float>(c.sectors), nStacks = static_cast<float>(c.stacks);
        const float sectorStep = 6.283185F / nSectors, stackStep = 3.1415925F / nStacks;
        const unsigned int base = c.nBefore;
        for (unsigned int i = 0; i <= c.stacks; ++i)
        {
            for (unsigned int j = 0; j <= c.sectors; ++j)
            {
                const auto row = static_cast<float>(i), column = static_cast<float>(j);
                const float xy = c.xyScale * c.radius * std::cos(1.5707963F - row * stackStep);
                const vec3 p(xy * std::cos(column * sectorStep), xy * std::sin(column * sectorStep),
                             c.radius * std::sin(1.5707963F - row * stackStep));
                const vec3 n = glm::normalize(p);
                expected.insert(expected.end(), {p.x, p.y, p.z});
                if (c.hasNormals)
                    expected.insert(expected.end(), {n.x, n.y, n.z});
                if (c.type == Tex2D)
                    expected.insert(expected.end(), {column / nSectors, row / nStacks});
                const unsigned int k1 = base + i * (c.sectors + 1) + j, k2 = k1 + c.sectors + 1;
                if (i == c.stacks || j == c.sectors)
                    continue;
                if (i != 0)
                    expectedIndices.insert(expectedIndices.end(), {k1, k2, k1 + 1});
                if (i != c.stacks - 1)
                    expectedIndices.insert(expectedIndices.end(), {k1 + 1, k2, k2 + 1});
            }
        }

        const std::size_t length = expected.size() / ((c.sectors + 1) * (c.stacks + 1));
        Buffer buffer;
        ASSERT_TRUE(length == 3   ? buffer.init(1, 0, 0, {Vec3})
                    : length == 5 ? buffer.init(1, 0, 0, {Vec3, Vec2})
                    : length == 6 ? buffer.init(1, 0, 0, {Vec3, Vec3})
                                  : buffer.init(1, 0, 0, {Vec3, Vec3, Vec2}));
        const std::vector<float> before(length * c.nBefore, 7);
        const std::vector<unsigned int> indicesBefore(2 * c.nBefore, 0);
        buffer.appendVertices(before.data(), c.nBefore);
        buffer.appendIndices(indicesBefore.data(), indicesBefore.size());
        Command* const pCommand = buffer.addSphere(c.radius, c.sectors, c.stacks, c.type, c.hasNormals, c.xyScale);
        ASSERT_NE(pCommand, nullptr);
        trace.clear();
        ASSERT_TRUE(pCommand->encode() && pCommand->execute());
        EXPECT_TRUE(trace.only({"glDrawElements(4, " + std::to_string(expectedIndices.size()) + ", 0x1405, " +
                                std::to_string(8 * c.nBefore) + ")"}));
        ASSERT_NO_FATAL_FAILURE(commit(buffer));
        expected.insert(expected.begin(), before.begin(), before.end());
        expectedIndices.insert(expectedIndices.begin(), indicesBefore.begin(), indicesBefore.end());
        EXPECT_EQ(vertices, expected) << c.sectors << " x " << c.stacks;
        EXPECT_EQ(indices, expectedIndices) << c.sectors << " x " << c.stacks;
    }
}

// All kinds of vectors, of which a sphere takes one, beside the plain loop; the floats behind a row are not the row's.
TEST(SphereLoopsTest, RowsOfAllLengths)
{
    std::vector<const gui::gl::SphereLoops*> allLoops{&gui::gl::cSphereLoops};
#ifdef GUIGL_AVX2
    if (__builtin_cpu_supports("avx2"))
        allLoops.push_back(&gui::gl::cSphereLoopsAVX2);
#endif
    constexpr float cInfinity = std::numeric_limits<float>::infinity();
    constexpr std::pair<float, float> cSizes[] = {{2, -0.7F}, {0, 0}, {-0.0F, 1e-30F}, {cInfinity, 1}, {1e30F, 1e30F}};
    std::vector<float> lists;
    for (std::size_t j = 0; j < 3 * (25 + gui::gl::SphereRow::cSlack); ++j)
        lists.push_back(std::sin(static_cast<float>(j * j)));
    for (std::size_t i = 0; i < 4 * 25 * std::size(cSizes); ++i)
    {
        const bool hasNormals = i % 2 != 0, hasTexture = i % 4 >= 2;
        const std::size_t nFloats = (hasNormals ? 6 : 3) + (hasTexture ? 2 : 0), n = i / 4 % 25 + 1;
        const auto [xy, z] = cSizes[i / 100];
        const float* const pCos = lists.data();
        const float* const pSin = pCos + n + gui::gl::SphereRow::cSlack;
        const float* const pU = pSin + n + gui::gl::SphereRow::cSlack;
        const gui::gl::SphereRow described{pCos, pSin, pU, n, hasNormals, nFloats, xy, z, 0.3F};
        std::vector<float> expected(n * nFloats + 70, 77);
        gui::gl::cSphereLoopsPlain.addRow(described, expected.data(), expected.data() + n * nFloats);
        for (const gui::gl::SphereLoops* pLoops : allLoops)
        {
            std::vector<float> row(expected.size(), 77);
            // Short of its own end, then with room behind that is overwritten here as by the next row.
            for (const std::size_t nBehind : {0U, 70U})
            {
                pLoops->addRow(described, row.data(), row.data() + n * nFloats + nBehind);
                std::fill(row.end() - 70, row.end() - 70 + std::ptrdiff_t(nBehind), 77.0F);
            }
            for (std::size_t j = 0; j < row.size(); ++j)
                ASSERT_TRUE((row[j] == expected[j] && std::signbit(row[j]) == std::signbit(expected[j])) ||
                            (std::isnan(row[j]) && std::isnan(expected[j])))
                    << i << " " << j << ": " << row[j] << " instead of " << expected[j];
        }
        EXPECT_EQ(expected.back(), 77);
    }
}

TEST_F(MeshTest, MisuseAppendsNothing)
{
    constexpr unsigned int cMany = std::numeric_limits<unsigned int>::max();
    Buffer noLayout, wrong, solid;
    ASSERT_TRUE(wrong.init(1, 1, 1, {Vec4}) && solid.init(1, 1, 1, {Vec3}));
    const auto isRefused = [&](Buffer& buffer, const Command* pCommand, const char* condition)
    {
        return pCommand == nullptr && buffer.getNoOfIndices() == 0 && buffer.getVertices().size() == 0 &&
               buffer.getCommandList().size() == 0 && asserts.caught(condition);
    };
    EXPECT_TRUE(isRefused(solid, solid.addCube(1, Tex2D), "false"));
    EXPECT_TRUE(isRefused(noLayout, noLayout.addCube(1, CubeMap), "nRecLen > 0"));
    EXPECT_TRUE(isRefused(noLayout, noLayout.addSphere(1, 4, 4, Tex2D), "nRecLen > 0"));
    EXPECT_TRUE(isRefused(wrong, wrong.addCube(1, CubeStrip), "_nVertexFloats == nFloats"));
    EXPECT_TRUE(isRefused(wrong, wrong.addSphere(1, 4, 4, Tex2D), "_nVertexFloats == nFloats"));
    // Sizes that wrap in 32 bits, and in 64.
    const std::pair<unsigned int, unsigned int> cSizes[] = {{0, 4},     {4, 0},     {65535, 65536}, {cMany, cMany},
                                                            {cMany, 1}, {1, cMany}, {30000, 30000}, {65535, 65535}};
    for (const auto& [sectors, stacks] : cSizes)
        EXPECT_TRUE(isRefused(solid, solid.addSphere(1, sectors, stacks, CubeMap, false),
                              "isSphereInRange(sectors, stacks, base, first)"))
            << sectors << " x " << stacks;

    ASSERT_NE(solid.addCube(1, CubeMap), nullptr);
    ASSERT_TRUE(solid.commit());
    EXPECT_EQ(solid.addCube(1, CubeMap), nullptr);
    EXPECT_TRUE(asserts.caught("false"));
    EXPECT_TRUE(log.said("ERROR! Buffer::append vertices on committed buffer! Call reset first!"));
    EXPECT_EQ(solid.getNoOfIndices(), 36U);
    EXPECT_NE(solid.addSphere(1, 4, 4, CubeMap, false), nullptr); // not checked, and not uploaded
    EXPECT_EQ(solid.getNoOfVertices(), 8 + 25U);
}

TEST(SymPolygonTest, CornersLieOnTheCircle)
{
    using Points = cnt::PushBackVector<td::Point<float>>;
    const td::Circle<float> circle({3, -2}, 5);
    Points points, coordinates;
    for (const std::size_t n : {3U, 17U, 1000U})
    {
        gui::gl::generateSymPolygon(circle, n, points, 0.7F, &coordinates);
        ASSERT_EQ(points.size(), n);
        ASSERT_EQ(coordinates.size(), n);
        float angle = 0.7F;
        for (std::size_t i = 0; i < n; ++i, angle += 6.283185F / static_cast<float>(n))
        {
            const float c = std::cos(angle), s = std::sin(angle);
            EXPECT_EQ(points[i], td::Point<float>(3 + c * 5, -2 + s * 5)) << n << " " << i;
            EXPECT_EQ(coordinates[i], td::Point<float>((c + 1) / 2, (s + 1) / 2)) << n << " " << i;
        }
    }
    gui::gl::generateSymPolygon({{0, 0}, 1}, 4, points);
    EXPECT_NEAR(points[1].y, 1, 1e-6F);
    test::CaughtAsserts asserts;
    gui::gl::generateSymPolygon(circle, 2, points);
    EXPECT_TRUE(asserts.caught("nNodes >= 3"));
    EXPECT_EQ(points.size(), 4U);
}

} // namespace
