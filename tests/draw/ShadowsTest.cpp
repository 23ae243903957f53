#include "Solids.h"
#include "support/OffscreenGL.h"

#include <gui/draw/DepthCanvas.h>
#include <gui/draw/Model.h>
#include <gui/draw/OrbitCamera.h>
#include <gui/draw/TriangleIndex.h>
#include <gui/gl/Framebuffer.h>

#include <epoxy/gl.h>

#include <glm/ext/matrix_transform.hpp>
#include <glm/geometric.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <random>
#include <vector>

namespace
{

using gui::draw::DepthCanvas;
using gui::draw::Eye;
using gui::draw::Mesh;
using gui::draw::Model;
using gui::draw::OrbitCamera;
using gui::draw::Shadows;

constexpr int cWidth = 120;

using Brightness = std::vector<double>; // of each pixel, from the top

class ShadowsTest : public test::OffscreenGL
{
protected:
    ShadowsTest()
        : OffscreenGL({cWidth, cWidth})
    {
    }

    static OrbitCamera cameraAt(const gui::draw::Box3& box, double azimuth, double elevation)
    {
        OrbitCamera camera(OrbitCamera::Up::Z);
        camera.setSize({cWidth, cWidth});
        camera.setDirection(azimuth, elevation);
        camera.setBounds(box);
        camera.fit(box, 0);
        return camera;
    }

    static Brightness drawn(DepthCanvas& canvas, Model& model, const Eye& eye)
    {
        gui::gl::Framebuffer framebuffer;
        EXPECT_TRUE(framebuffer.create({cWidth, cWidth}, {.depth = gui::gl::DepthBuffer::Size::Bits24}));
        {
            const gui::gl::Framebuffer::Drawing drawing(framebuffer);
            DepthCanvas::Frame frame(canvas, eye);
            glClearColor(0, 0, 0, 1);
            glClear(GL_COLOR_BUFFER_BIT);
            while (const Eye* const pEye = frame.next())
                EXPECT_TRUE(model.draw(*pEye));
        }
        std::vector<float> values;
        EXPECT_TRUE(framebuffer.readValues(values));
        Brightness brightness;
        for (std::size_t i = 0; i < values.size(); i += 4)
            brightness.push_back(static_cast<double>(values[i]));
        return brightness;
    }
};

// Each pixel is darker exactly where the sun's ray meets something, whatever quality, depth and place of the eye;
// within what a texel is at their borders nobody knows.
TEST_F(ShadowsTest, FallWhereTheSunDoesNotReach)
{
    std::mt19937 random(6);
    const auto uniform = [&](double low, double high) { return std::uniform_real_distribution<>(low, high)(random); };
    const glm::dvec3 toSun = glm::normalize(glm::dvec3(0.6, -0.5, 0.9));
    Mesh mesh = test::makeBox({-20, -20, -1}, {20, 20, 0});
    for (int i = 0; i < 14; ++i)
    {
        const Mesh solid = i % 2 == 0 ? test::makeSphere(uniform(1, 3), 32)
                                      : test::makeBox({-1.5, -1.5, 0}, {1.5, 1.5, uniform(2, 7)});
        mesh.add(solid, glm::translate(glm::dmat4(1), {uniform(-15, 15), uniform(-15, 15), i % 2 == 0 ? 4.0 : 0.0}));
    }
    gui::draw::TriangleIndex index;
    ASSERT_TRUE(index.setTriangles(mesh.positions, mesh.indices));
    Model model;
    ASSERT_TRUE(model.setMesh(mesh));
    model.setTolerance(0);
    model.setLight(gui::draw::Light::sun(toSun));
    int nDark = 0, nClear = 0;
    for (const Eye::Depth depth : {Eye::Depth::Usual, Eye::Depth::Reversed, Eye::Depth::Sliced})
        for (const Shadows::Quality quality : {Shadows::Quality::Low, Shadows::Quality::Medium, Shadows::Quality::High})
        {
            DepthCanvas canvas(depth);
            canvas.setSamples(1);
            OrbitCamera camera = cameraAt(mesh.getBounds(), uniform(0, 360), uniform(25, 70));
            if (quality == Shadows::Quality::Medium)
                camera.setProjection(OrbitCamera::Projection::Orthographic);
            if (quality == Shadows::Quality::High)
                camera.fit({{-4, -4, 0}, {4, 4, 4}}, 0);
            const Eye eye = canvas.getEye(camera, 1);
            const Brightness clear = drawn(canvas, model, eye);
            canvas.setShadows({.quality = quality, .direction = 3.0 * toSun, .occlusion = 0}, mesh.getBounds());
            const Brightness seen = drawn(canvas, model, eye);
            for (int y = 0; y < cWidth; y += 2)
                for (int x = 0; x < cWidth; x += 2)
                {
                    const auto hit = index.getNearest(eye.getRay({x + 0.5, y + 0.5}));
                    if (!hit)
                        continue;
                    const auto corner = [&](std::size_t k) { return mesh.positions[mesh.indices[3 * hit->index + k]]; };
                    const glm::dvec3 normal = glm::normalize(glm::cross(corner(1) - corner(0), corner(2) - corner(0)));
                    if (glm::dot(normal, toSun) < 0.3)
                        continue;
                    // As far about as filter and offset reach.
                    int nMet = 0, nRays = 0;
                    for (const double u : {-0.3, 0.0, 0.3})
                        for (const double v : {-0.3, 0.0, 0.3})
                        {
                            const glm::dvec3 across = glm::normalize(glm::cross(toSun, glm::dvec3(0, 0, 1)));
                            const glm::dvec3 from =
                                hit->point + 0.01 * normal + u * across + v * glm::cross(across, toSun) +
                                std::max(0.0, -glm::dot(u * across + v * glm::cross(across, toSun), normal)) /
                                    glm::dot(toSun, normal) * toSun;
                            ++nRays;
                            nMet += index.getNearest({from, toSun}) ? 1 : 0;
                        }
                    const std::size_t at = static_cast<std::size_t>(y * cWidth + x);
                    if (nMet == nRays)
                    {
                        ++nDark;
                        ASSERT_LT(seen[at], 0.9 * clear[at])
                            << x << ", " << y << " of " << static_cast<int>(depth) << static_cast<int>(quality);
                    }
                    else if (nMet == 0)
                    {
                        ++nClear;
                        ASSERT_NEAR(seen[at], clear[at], 0.005)
                            << x << ", " << y << " of " << static_cast<int>(depth) << static_cast<int>(quality);
                    }
                }
        }
    EXPECT_GT(nDark, 1000);
    EXPECT_GT(nClear, 5000);
}

// A plane and what is before nothing keep their light; where two walls meet there is less, by as much as is asked for.
TEST_F(ShadowsTest, CornersAreDark)
{
    Mesh mesh = test::makeBox({-10, -10, -1}, {10, 10, 0});
    mesh.add(test::makeBox({-10, 0, 0}, {10, 1, 8}));
    Model model;
    ASSERT_TRUE(model.setMesh(mesh));
    model.setLight({.kind = gui::draw::Light::Kind::Sun, .ambient = 1});
    for (const Eye::Depth depth : {Eye::Depth::Usual, Eye::Depth::Reversed})
    {
        DepthCanvas canvas(depth);
        const OrbitCamera camera = cameraAt(mesh.getBounds(), 0, 35);
        const Eye eye = canvas.getEye(camera, 1);
        const Brightness clear = drawn(canvas, model, eye);
        const auto shareAt = [&](const Brightness& seen, const glm::dvec3& place)
        {
            const auto pixel = eye.project(place);
            EXPECT_TRUE(pixel);
            const auto at = static_cast<std::size_t>(pixel->y) * cWidth + static_cast<std::size_t>(pixel->x);
            return seen[at] / clear[at];
        };
        for (const Shadows::Quality quality : {Shadows::Quality::Low, Shadows::Quality::High})
        {
            double before = 1;
            for (const double strength : {0.0, 0.4, 1.0})
            {
                canvas.setShadows({.quality = quality, .direction = {0, -1, 1}, .occlusion = strength, .reach = 2},
                                  mesh.getBounds());
                const Brightness seen = drawn(canvas, model, eye);
                EXPECT_NEAR(shareAt(seen, {0, -6, 0}), 1, 0.01);
                EXPECT_NEAR(shareAt(seen, {3, 0, 5}), 1, 0.01);
                const double corner = shareAt(seen, {1, -0.3, 0});
                EXPECT_TRUE(strength == 0 ? std::abs(corner - 1) < 0.005 : corner < before - 0.1) << corner;
                before = corner;
            }
        }
    }
}

} // namespace
