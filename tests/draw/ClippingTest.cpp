#include "Solids.h"
#include "support/OffscreenGL.h"

#include <gui/draw/DepthCanvas.h>
#include <gui/draw/Model.h>
#include <gui/draw/OrbitCamera.h>
#include <gui/draw/TriangleIndex.h>
#include <gui/gl/FrameLedger.h>

#include <epoxy/gl.h>

#include <glm/ext/matrix_transform.hpp>
#include <glm/geometric.hpp>
#include <glm/trigonometric.hpp>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace
{

using gui::draw::Clipping;
using gui::draw::Eye;
using gui::draw::Mesh;
using gui::draw::Model;
using gui::draw::Ray;

constexpr int cSide = 72;

double uniform(std::mt19937& random, double low, double high)
{
    return std::uniform_real_distribution<>(low, high)(random);
}

glm::dvec3 anyPoint(std::mt19937& random, double size)
{
    return {uniform(random, -size, size), uniform(random, -size, size), uniform(random, -size, size)};
}

Mesh turnedInsideOut(Mesh mesh)
{
    for (std::size_t i = 0; i < mesh.indices.size(); i += 3)
        std::swap(mesh.indices[i], mesh.indices[i + 1]);
    return mesh;
}

// Solids of one part each: boxes and balls, a hollow one, and two that overlap.
Mesh makeSolids(std::mt19937& random)
{
    Mesh solids;
    for (int i = 0; i < 10; ++i)
    {
        Mesh solid = i % 2 == 0 ? test::makeSphere(uniform(random, 1, 3), 24)
                                : test::makeBox(glm::dvec3(-uniform(random, 1, 2)), glm::dvec3(1.5));
        if (i < 2)
            solid.add(turnedInsideOut(test::makeSphere(0.7, 16)));
        else if (i < 5)
            solid.add(test::makeBox({0, -1, -1}, {3, 0.5, 0.5}));
        solid.parts.clear();
        glm::dmat4 placement = glm::translate(glm::dmat4(1), anyPoint(random, 5));
        placement = glm::rotate(placement, uniform(random, 0, 6), glm::normalize(anyPoint(random, 1) + 0.1));
        solids.add(solid, gui::draw::Material{}, 0, placement);
    }
    return solids;
}

/// What rays meet of solids that are cut, found by counting what they go into and out of.
class CutSolids
{
public:
    explicit CutSolids(const Mesh& mesh)
        : _mesh(mesh)
    {
        EXPECT_TRUE(_index.setTriangles(mesh.positions, mesh.indices));
        for (std::size_t part = 0; part < mesh.parts.size(); ++part)
            _parts.insert(_parts.end(), mesh.parts[part].nTriangles, part);
    }

    struct Seen
    {
        std::vector<std::size_t> parts; // one of these, on a face; none for nothing
        double distance = std::numeric_limits<double>::infinity();
        bool isFace = false;
        bool operator==(const Seen& other) const { return parts == other.parts && isFace == other.isFace; }
    };

    Seen find(const Ray& ray, const Clipping& clipping) const
    {
        const auto hits = _index.getAll(ray);
        Seen seen;
        for (const auto& hit : hits)
            if (clipping.isSeen(hit.point))
            {
                seen = {{_parts[hit.index]}, hit.distance, false};
                break;
            }
        for (std::size_t i = 0; i < clipping.getNumberOfPlanes(); ++i)
        {
            const Clipping::Plane& plane = clipping.getPlane(i);
            const double distance = -plane.getDistance(ray.origin) / glm::dot(ray.direction, plane.normal);
            if (!(distance > 0 && distance < seen.distance) || !clipping.isOnFace(i, ray.at(distance)))
                continue;
            std::vector<int> depths(_mesh.parts.size());
            for (const auto& hit : hits)
                if (hit.distance < distance)
                    depths[_parts[hit.index]] += glm::dot(normalOf(hit.index), ray.direction) < 0 ? 1 : -1;
            Seen face{{}, distance, true};
            for (std::size_t part = 0; part < depths.size(); ++part)
                if (depths[part] != 0)
                    face.parts.push_back(part);
            if (!face.parts.empty())
                seen = face;
        }
        return seen;
    }

private:
    glm::dvec3 normalOf(std::uint32_t triangle) const
    {
        const auto corner = [&](std::size_t k)
        { return _mesh.positions[_mesh.indices[3 * std::size_t(triangle) + k]]; };
        return glm::cross(corner(1) - corner(0), corner(2) - corner(0));
    }

    const Mesh& _mesh;
    gui::draw::TriangleIndex _index;
    std::vector<std::size_t> _parts;
};

class ClippingTest : public test::OffscreenGL
{
protected:
    ClippingTest()
        : OffscreenGL({cSide, cSide})
    {
    }

    // The number of each pixel's part, from the bottom; -1 for none.
    static std::vector<int> drawIds(Model& model, const Eye& eye)
    {
        clear({0, 0, 0, 0});
        EXPECT_TRUE(model.drawIds(eye));
        std::vector<unsigned char> bytes(std::size_t(4) * cSide * cSide);
        glReadPixels(0, 0, cSide, cSide, GL_RGBA, GL_UNSIGNED_BYTE, bytes.data());
        std::vector<int> ids;
        for (std::size_t i = 0; i < bytes.size(); i += 4)
            ids.push_back(bytes[i] - 1);
        return ids;
    }

    static Eye eyeFrom(const glm::dvec3& from, bool isOrthographic)
    {
        gui::draw::OrbitCamera camera;
        camera.setSize({cSide, cSide});
        camera.setDirection(glm::degrees(std::atan2(from.x, from.z)),
                            glm::degrees(std::asin(from.y / glm::length(from))));
        if (isOrthographic)
            camera.setProjection(gui::draw::OrbitCamera::Projection::Orthographic);
        camera.fit({{-8, -8, -8}, {8, 8, 8}}, 0);
        return camera.getEye();
    }
};

// All pixels whose neighbours show the same, and how deep they are: surfaces, faces, hollows, what overlaps, planes in
// any number and place.
TEST_F(ClippingTest, EachPixelShowsWhatItsRayMeets)
{
    std::mt19937 random(11);
    int nFaces = 0;
    for (int round = 0; round < 24; ++round)
    {
        const Mesh mesh = makeSolids(random);
        const CutSolids solids(mesh);
        Model model;
        ASSERT_TRUE(model.setMesh(mesh));
        model.setTolerance(0);
        Clipping clipping(round % 2 == 0 ? Clipping::Kind::Cut : Clipping::Kind::Notch);
        // The middle stays, or a corner goes that the eye looks into.
        const glm::dvec3 from = anyPoint(random, 1);
        for (int i = 0; i <= round % 6; ++i)
        {
            const glm::dvec3 at = anyPoint(random, 3);
            ASSERT_TRUE(clipping.add(at, (round % 2 == 0 ? -at : -from) + 0.6 * anyPoint(random, 1)));
        }
        Eye eye = eyeFrom(from, round % 3 == 0);
        eye.setClipping(clipping);
        const std::vector<int> ids = drawIds(model, eye);
        std::vector<float> depths(ids.size());
        readDepths(cSide, cSide, depths.data());
        std::vector<CutSolids::Seen> seen;
        for (int y = 0; y < cSide; ++y)
            for (int x = 0; x < cSide; ++x)
                seen.push_back(solids.find(eye.getRay({x + 0.5, cSide - y - 0.5}), clipping));
        for (std::size_t y = 1; y + 1 < cSide; ++y)
            for (std::size_t x = 1; x + 1 < cSide; ++x)
            {
                const std::size_t at = y * cSide + x;
                if (!(seen[at] == seen[at - 1] && seen[at] == seen[at + 1] && seen[at] == seen[at - cSide] &&
                      seen[at] == seen[at + cSide]))
                    continue;
                const auto& parts = seen[at].parts;
                nFaces += seen[at].isFace ? 1 : 0;
                if (parts.empty())
                {
                    ASSERT_EQ(ids[at], -1) << round << ": " << x << ", " << y;
                    continue;
                }
                ASSERT_GE(ids[at], 0) << round << ": " << x << ", " << y;
                ASSERT_TRUE(std::count(parts.begin(), parts.end(), static_cast<std::size_t>(ids[at])) > 0)
                    << round << ": " << x << ", " << y << " shows " << ids[at];
                const glm::dvec3 place =
                    eye.getRay({static_cast<double>(x) + 0.5, cSide - static_cast<double>(y) - 0.5})
                        .at(seen[at].distance);
                ASSERT_NEAR(eye.getDistanceOfDepth(static_cast<double>(depths[at])), eye.getDistance(place), 1e-3);
            }
    }
    EXPECT_GT(nFaces, 1000);
}

// Faces of the model that lie in a plane, however it is turned, are not seen through, nor do they stay behind.
TEST_F(ClippingTest, FacesInThePlaneAreCutOffAndClosed)
{
    std::mt19937 random(5);
    for (int round = 0; round < 12; ++round)
    {
        const glm::dmat4 turn = glm::rotate(glm::translate(glm::dmat4(1), anyPoint(random, 2)), 0.7 * round,
                                            glm::normalize(anyPoint(random, 1) + 0.1));
        Mesh mesh;
        mesh.add(test::makeBox({-3, -3, -3}, {3, 3, 3.1}), turn);
        Model model;
        ASSERT_TRUE(model.setMesh(mesh));
        const glm::dvec3 top(turn * glm::dvec4(0, 0, 3.1, 1)), up(turn[2]);
        for (const double side : {1.0, -1.0})
        {
            const Eye whole = eyeFrom(up + 0.3 * anyPoint(random, 1), round % 2 == 0);
            Eye eye = whole;
            eye.setClipping({top, side * up});
            const std::vector<int> all = drawIds(model, whole), cut = drawIds(model, eye);
            if (side > 0)
                EXPECT_TRUE(std::all_of(cut.begin(), cut.end(), [](int id) { return id < 0; })) << round;
            else
                EXPECT_EQ(cut, all) << round;
        }
    }
}

// A surface with a border has no face, gaps and turned triangles are closed, and a hidden part's face goes with it.
TEST_F(ClippingTest, WhatIsNotClosedOrNotTurnedAlike)
{
    const Mesh box = test::makeBox({-5, -5, -5}, {5, 5, 5});
    Mesh open = box, gap = box, turned = box;
    open.indices.resize(box.indices.size() - 18);
    for (glm::dvec3& p : gap.positions)
        p += 0.01; // of the corners that the first six triangles have for themselves
    gap.positions.insert(gap.positions.end(), box.positions.begin(), box.positions.end());
    for (std::size_t i = 18; i < gap.indices.size(); ++i)
        gap.indices[i] += static_cast<std::uint32_t>(box.positions.size());
    for (std::size_t i = 0; i < turned.indices.size(); i += 6)
        std::swap(turned.indices[i], turned.indices[i + 1]);
    // From above one sees into it, or onto the face. The same through its own inside, which is not drawn.
    Eye eye = eyeFrom({0.01, 0.01, 1}, true);
    eye.setClipping({{0.1, 0.2, 1}, {0.1, 0.05, -1}});
    const auto depthOf = [&](const Mesh& mesh)
    {
        Model model;
        EXPECT_TRUE(model.setMesh(mesh));
        drawIds(model, eye);
        return eye.getDistanceOfDepth(static_cast<double>(depthAt(cSide / 2, cSide / 2)));
    };
    const double face = depthOf(box);
    EXPECT_NEAR(depthOf(turned), face, 1e-3);
    EXPECT_NEAR(depthOf(gap), face, 1e-3);
    EXPECT_GT(depthOf(open), face + 1);
    Model model;
    Mesh two = box;
    two.add(test::makeBox({-1, -1, -1}, {1, 1, 4}));
    ASSERT_TRUE(model.setMesh(two));
    model.setVisible(0, false);
    const std::vector<int> ids = drawIds(model, eye);
    EXPECT_EQ(ids[cSide / 2 * cSide + cSide / 2], 1);
    EXPECT_EQ(ids[cSide / 2 * cSide + cSide / 4], -1);
    EXPECT_EQ(std::count(ids.begin(), ids.end(), 0), 0);
}

// What is cut stays as it is while the camera turns; only another plane is uploaded.
TEST_F(ClippingTest, TurningUploadsNothing)
{
    std::mt19937 random(2);
    Model model;
    ASSERT_TRUE(model.setMesh(makeSolids(random)));
    model.setEdges({.width = 1});
    Clipping clipping({0, 0, 0}, {1, 0.2, 0});
    const auto bytesOf = [&](const glm::dvec3& from)
    {
        Eye eye = eyeFrom(from, false);
        eye.setClipping(clipping);
        gui::gl::FrameLedger::start();
        gui::gl::FrameLedger::begin();
        EXPECT_TRUE(model.draw(eye));
        gui::gl::FrameLedger::end();
        gui::gl::FrameLedger::stop();
        return gui::gl::FrameLedger::getLast().nBytesUploaded;
    };
    EXPECT_GT(bytesOf({1, 1, 1}), 0U);
    EXPECT_EQ(bytesOf({1, 0.5, 1}), 0U);
    EXPECT_FALSE(clipping.move(1, 1));
    EXPECT_TRUE(clipping.move(0, 0.5));
    const std::size_t once = bytesOf({1, 0.5, 1});
    EXPECT_GT(once, 0U);
    for (int i = 0; i < 20; ++i)
    {
        EXPECT_TRUE(clipping.move(0, i % 2 == 0 ? -0.5 : 0.5));
        EXPECT_LT(bytesOf({1, 0.5, 1}), 3 * once) << "of those cuts that were before";
    }
}

// What cannot be a plane changes nothing, and bounds keep to the planes that there are.
TEST(ClippingValueTest, TakesSixPlanesThatAre)
{
    constexpr double cNaN = std::numeric_limits<double>::quiet_NaN(), cInf = std::numeric_limits<double>::infinity();
    Clipping clipping;
    EXPECT_TRUE(clipping.isSeen(glm::dvec3(1e300)));
    EXPECT_FALSE(clipping.add({cNaN, 0, 0}, {1, 0, 0}) || clipping.add({0, 0, 0}, {0, 0, 0}) ||
                 clipping.add({0, 0, 0}, {0, cInf, 0}));
    EXPECT_TRUE(clipping.add({0, 0, 0}, {0, 1e-300, 0}) && clipping.add({0, 5, 0}, {0, -1e300, 0}));
    EXPECT_TRUE(clipping.isSeen(glm::dvec3(0)) && clipping.isSeen(glm::dvec3(7, 5, 0)));
    EXPECT_FALSE(clipping.isSeen(glm::dvec3(0, 5.1, 0)) || clipping.isSeen(gui::draw::Box3{{0, 6, 0}, {1, 7, 1}}) ||
                 clipping.move(0, cNaN) || clipping.move(2, 1));
    EXPECT_TRUE(clipping.isSeen(gui::draw::Box3{{0, 4, 0}, {1, 7, 1}}));
    clipping.setKind(Clipping::Kind::Notch);
    EXPECT_TRUE(clipping.isSeen(glm::dvec3(0, 5.1, 0)) && clipping.isSeen(gui::draw::Box3{{0, 6, 0}, {1, 7, 1}}));
    Clipping notch(gui::draw::Box3{{-1, -1, -1}, {1, 1, 1}}, Clipping::Kind::Notch);
    EXPECT_FALSE(notch.isSeen(glm::dvec3(0)) || notch.isSeen(gui::draw::Box3{{-0.5, -0.5, -0.5}, {0.5, 0.5, 0.5}}) ||
                 notch.add({0, 0, 0}, {1, 0, 0}));
    EXPECT_TRUE(notch.isSeen(glm::dvec3(1.1, 0, 0)) &&
                notch.isSeen(gui::draw::Box3{{-0.5, -0.5, -0.5}, {0.5, 0.5, 1.5}}));
    EXPECT_TRUE(Clipping(gui::draw::Box3{{0, 0, 0}, {1, 1, cInf}}).isEmpty());
}

} // namespace
