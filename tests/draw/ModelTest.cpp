#include "Solids.h"
#include "support/CapturedLog.h"
#include "support/GLTrace.h"
#include "support/OffscreenGL.h"

#include <gui/draw/DepthCanvas.h>
#include <gui/draw/Model.h>
#include <gui/draw/OrbitCamera.h>
#include <gui/gl/Buffer.h>
#include <gui/gl/FrameLedger.h>
#include <gui/gl/Framebuffer.h>

#include <epoxy/gl.h>

#include <glm/ext/matrix_clip_space.hpp>
#include <glm/ext/matrix_transform.hpp>
#include <glm/geometric.hpp>
#include <glm/matrix.hpp>
#include <glm/trigonometric.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <limits>
#include <optional>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace
{

using gui::draw::Eye;
using gui::draw::Image;
using gui::draw::Light;
using gui::draw::Mesh;
using gui::draw::Model;
using test::Pixel;

constexpr int cSize = 256;

/// In perspective, from a place to another one, with z upwards.
Eye eyeAt(const glm::dvec3& position, const glm::dvec3& target)
{
    const glm::dvec3 back = glm::normalize(position - target);
    const glm::dvec3 right = glm::normalize(glm::cross(glm::dvec3(0, 0, 1), back));
    return {position,
            glm::transpose(glm::dmat3(right, glm::cross(back, right), back)),
            glm::perspective(glm::radians(40.0), 1.0, 0.5, 1000.0),
            {cSize, cSize}};
}

/// From above, without a perspective: x and y are pixels, y upwards, from the middle.
Eye eyeAbove()
{
    return {{0, 0, 100},
            glm::dmat3(1),
            glm::ortho(-cSize / 2.0, cSize / 2.0, -cSize / 2.0, cSize / 2.0, 1.0, 200.0),
            {cSize, cSize}};
}

class ModelTest : public test::OffscreenGL
{
protected:
    ModelTest()
        : OffscreenGL({cSize, cSize})
    {
    }

    using Picture = std::vector<unsigned char>; // four bytes for each pixel, from the bottom

    static Picture read()
    {
        Picture picture(std::size_t(4) * cSize * cSize);
        glReadPixels(0, 0, cSize, cSize, GL_RGBA, GL_UNSIGNED_BYTE, picture.data());
        return picture;
    }
    static Picture drawn(const std::function<bool()>& draw)
    {
        clear({0, 0, 0, 255});
        EXPECT_TRUE(draw());
        return read();
    }
    static Picture drawn(Model& model, const Eye& eye)
    {
        return drawn([&] { return model.draw(eye); });
    }
    /// How many pixels have a channel that differs by more than so much.
    static std::ptrdiff_t nOther(const Picture& a, const Picture& b, int most = 0)
    {
        std::ptrdiff_t n = 0;
        for (std::size_t i = 0; i < a.size(); i += 4)
            n += std::abs(a[i] - b[i]) > most || std::abs(a[i + 1] - b[i + 1]) > most ||
                         std::abs(a[i + 2] - b[i + 2]) > most
                     ? 1
                     : 0;
        return n;
    }
};

/// Boxes about, half of them round, each a part.
Mesh makeHeap(std::mt19937& random, int n, double size)
{
    const auto uniform = [&](double low, double high) { return std::uniform_real_distribution<>(low, high)(random); };
    Mesh heap;
    for (int i = 0; i < n; ++i)
    {
        // Numbers of a few bits, which stay exact when they are moved far away.
        const auto round = [](double x) { return std::round(x * 4096) / 4096; };
        const glm::dvec3 at(round(uniform(-size, size)), round(uniform(-size, size)), round(uniform(-size, size)));
        const double half = round(size * uniform(0.05, 0.2));
        Mesh solid = i % 2 == 0 ? test::makeBox(-glm::dvec3(half), glm::dvec3(half)) : test::makeSphere(half, 32);
        for (glm::dvec3& p : solid.positions)
            p = at + glm::dvec3(round(p.x), round(p.y), round(p.z));
        heap.add(solid, {.color = td::Color::fromHSL(static_cast<float>(37 * i), 0.7F, 0.5F)},
                 static_cast<std::uint64_t>(i));
    }
    return heap;
}

// What an eye of a part of the view draws is that part of what the whole eye draws, for which no cell is left out.
TEST_F(ModelTest, CullingDropsNothingThatIsSeen)
{
    if (isDriver("zink"))
        GTEST_SKIP() << "lines that leave the view have another width, see docs/drivers.md";
    std::mt19937 random(3);
    const auto uniform = [&](double low, double high) { return std::uniform_real_distribution<>(low, high)(random); };
    Model model;
    ASSERT_TRUE(model.setMesh(makeHeap(random, 60, 10)));
    model.setTolerance(0);
    model.setEdges({.width = 6, .color = "#ffffff"});
    model.setWireLine({.width = 2});
    for (std::size_t part = 0; part < 60; part += 6)
        model.setWires(part, Model::Wires::Over);
    for (int i = 0; i < 8; ++i)
    {
        const glm::dvec3 from(uniform(-30, 30), uniform(-30, 30), uniform(-20, 20));
        const Eye eye = eyeAt(from, {uniform(-5, 5), uniform(-5, 5), 0});
        const Picture whole = drawn(model, eye);
        const int left = static_cast<int>(uniform(0, cSize - 40)), bottom = static_cast<int>(uniform(0, cSize - 40));
        const double top = cSize - bottom - 40;
        glViewport(left, bottom, 40, 40);
        glEnable(GL_SCISSOR_TEST);
        glScissor(left, bottom, 40, 40);
        clear({0, 0, 0, 255});
        EXPECT_TRUE(model.draw(eye.getPart({double(left), top, left + 40.0, top + 40})));
        glDisable(GL_SCISSOR_TEST);
        glViewport(0, 0, cSize, cSize);
        // Where triangles meet, a rounding decides now and then; a hole would have many more.
        EXPECT_LE(nOther(whole, read(), 4), 12) << i;
    }
}

TEST_F(ModelTest, FarAwayItIsThePictureOfNearTheOrigin)
{
    std::mt19937 random(9);
    const Mesh heap = makeHeap(random, 30, 4);
    Mesh floats = heap; // what floats far away would have of it
    const glm::dvec3 far(6378137, -4194304.5, 3000000.25);
    Mesh there = heap;
    for (glm::dvec3& p : there.positions)
        p += far;
    const std::vector<glm::vec3> rounded(there.positions.begin(), there.positions.end());
    floats.setPositions(rounded);
    Model near, away, coarse;
    ASSERT_TRUE(near.setMesh(heap) && away.setMesh(there) && coarse.setMesh(floats));
    for (Model* pModel : {&near, &away, &coarse})
        pModel->setEdges({.width = 1.5});
    for (const double distance : {2.0, 9.0, 300.0})
    {
        const glm::dvec3 from(distance, -distance / 2, distance / 4);
        const Picture picture = drawn(near, eyeAt(from, {0, 0, 0}));
        EXPECT_LE(nOther(picture, drawn(away, eyeAt(from + far, far)), 2), 4) << distance;
        if (distance < 100)
        {
            EXPECT_GT(nOther(picture, drawn(coarse, eyeAt(from + far, far)), 2), 500);
        }
    }
    // The size of a globe, seen from inside its bounds at a metre's distance, where floats are half a metre apart: a
    // step on it.
    constexpr double cHeight = 6.4e6 + 0.3;
    Mesh globe;
    globe.positions = {{cHeight, -1, -1}, {cHeight, 1, -1}, {cHeight, 1, 1}, {cHeight, -1, 1},
                       {-6.4e6, 9e6, 0},  {-6.4e6, 9e6, 1}, {6.5e6, 9e6, 0}};
    globe.positions[1].x += 0.01;
    globe.positions[2].x += 0.01;
    globe.indices = {0, 1, 2, 0, 2, 3, 4, 5, 6};
    Model patch;
    ASSERT_TRUE(patch.setMesh(globe));
    const Eye close = eyeAt({cHeight + 3, 0, 0}, {cHeight, 0, 0});
    const Picture picture = drawn(patch, close);
    for (const glm::dvec3& corner : {globe.positions[0], globe.positions[2]})
    {
        const glm::dvec3 place = *close.project(corner * 1.0);
        const auto at = [&](double inwards)
        {
            const auto x = static_cast<std::size_t>(place.x + inwards * (place.x < cSize / 2.0 ? 1 : -1));
            const auto y = static_cast<std::size_t>(cSize - place.y - inwards * (place.y > cSize / 2.0 ? -1 : 1));
            return picture[4 * (y * cSize + x)];
        };
        EXPECT_GT(at(1), 0);
        EXPECT_EQ(at(-1), 0);
    }
}

// A square of 100 pixels, of two rectangles, seen from above; and what lies before it.
TEST_F(ModelTest, LinesHaveTheirWidth)
{
    Mesh square;
    square.positions = {{-50, -50, 0}, {0, -50, 0}, {50, -50, 0}, {-50, 50, 0}, {0, 50, 0}, {50, 50, 0}};
    square.indices = {0, 1, 4, 0, 4, 3, 1, 2, 5, 1, 5, 4};
    square.add(test::makeBox({-20, 30, 5}, {20, 70, 25}), {.color = "#000000", .shininess = 0});
    Model model;
    ASSERT_TRUE(model.setMesh(square));
    ASSERT_TRUE(model.setMaterial(0, {.color = "#0000ff", .shininess = 0}));
    const auto redAlong = [](const Picture& picture, glm::ivec2 at, glm::ivec2 step)
    {
        double sum = 0;
        for (int i = -8; i <= 8; ++i)
        {
            const glm::ivec2 p = at + i * step + cSize / 2;
            sum += picture[4 * static_cast<std::size_t>(p.y * cSize + p.x)] / 255.0;
        }
        return sum;
    };
    const Eye eye = eyeAbove();
    EXPECT_LT(redAlong(drawn(model, eye), {-50, 0}, {1, 0}), 0.01);
    for (const double width : {0.5, 1.0, 3.0, 4.5})
    {
        model.setEdges({.width = width, .color = "#ff0000"});
        const Picture picture = drawn(model, eye);
        EXPECT_NEAR(redAlong(picture, {-50, 0}, {1, 0}), width, 0.02);
        EXPECT_NEAR(redAlong(picture, {35, 50}, {0, 1}), width, 0.02);
        EXPECT_LT(redAlong(picture, {0, 0}, {1, 0}), 0.01) << "it is flat there";
        EXPECT_LT(redAlong(picture, {0, 50}, {1, 0}), 0.01) << "the box is before it";
        model.setEdges({.width = 0});
        model.setWires(0, Model::Wires::Over);
        model.setWireLine({.width = width, .color = "#ff0000"});
        EXPECT_NEAR(redAlong(drawn(model, eye), {0, -20}, {1, 0}), width, 0.02);
        model.setWires(Model::Wires::None);
        model.setOutline({.width = width, .color = "#ff0000"});
        model.setSelected(0, true);
        const Picture outlined = drawn(model, eye);
        EXPECT_NEAR(redAlong(outlined, {-50, 0}, {1, 0}), width, 0.05);
        EXPECT_NEAR(redAlong(outlined, {0, -50}, {0, 1}), width, 0.05);
        EXPECT_NEAR(redAlong(outlined, {-30, 50}, {0, 1}), width, 0.05);
        model.clearSelection();
    }
    model.setWires(0, Model::Wires::Alone);
    const Picture wires = drawn(model, eye);
    EXPECT_EQ(wires[4 * (118 * cSize + 138) + 2], 0) << "one looks through it";
    // Both sides of an edge that is nearest to the eye are on it, however the faces fall away.
    Model box;
    ASSERT_TRUE(box.setMesh(test::makeBox({-1, -1, -1}, {1, 1, 1})));
    box.setMaterial(0, {.color = "#0000ff", .shininess = 0});
    box.setEdges({.width = 3, .color = "#ff0000"});
    for (const double side : {0.2, 1.0, 5.0})
    {
        const Picture picture = drawn(box, eyeAt({3 + side, -3 - side, 0.1}, {0, 0, 0.1}));
        EXPECT_NEAR(redAlong(picture, {0, 0}, {1, 0}), 3, 0.1) << side;
    }
}

TEST_F(ModelTest, IdsColorsTexturesAndVisibility)
{
    // Squares in a row, of which each shows a quarter of a picture of four colours; the last one has its back in front.
    const std::array<td::Color, 4> colors{td::Color("#ff0000"), td::Color("#00ff00"), td::Color("#0000ff"),
                                          td::Color("#ffffff")};
    const Image image(2, 2, colors);
    Mesh row;
    for (int i = 0; i < 5; ++i)
    {
        Mesh square;
        const double x = -100 + 40 * i;
        square.positions = {{x, 0, 0}, {x + 30, 0, 0}, {x + 30, 30, 0}, {x, 30, 0}};
        square.indices = {0, 1, 2, 0, 2, 3};
        const float u = i % 2 == 0 ? 0.25F : 0.75F, v = i < 2 ? 0.25F : 0.75F;
        square.textureCoordinates.assign(4, {u, v});
        if (i == 4)
            std::swap(square.indices[1], square.indices[2]), std::swap(square.indices[4], square.indices[5]);
        row.add(square, {.texture = i < 4 ? image : Image(), .isTwoSided = i < 4, .shininess = 0}, 70U + i);
        row.parts.back().material.color = i < 4 ? "#ffffff" : "#ff00ff";
    }
    Model model;
    ASSERT_TRUE(model.setMesh(row));
    model.setLight({.kind = Light::Kind::Sun, .direction = {0, 0, 1}, .ambient = 0});
    const Eye eye = eyeAbove();
    const auto at = [](const Picture& picture, std::size_t i)
    {
        const unsigned char* p = &picture[4 * (143 * cSize + 43 + 40 * i)];
        return Pixel{p[0], p[1], p[2], p[3]};
    };
    const Picture picture = drawn(model, eye);
    for (std::size_t i = 0; i < 4; ++i)
    {
        EXPECT_EQ(at(picture, i), (Pixel{colors[i].red(), colors[i].green(), colors[i].blue()})) << i;
        EXPECT_EQ(model.getTag(i), 70 + i);
    }
    EXPECT_EQ(at(picture, 4), (Pixel{0, 0, 0})) << "seen from behind";
    EXPECT_TRUE(model.setVisible(1, false));
    EXPECT_FALSE(model.setVisible(5, false) || model.setMaterial(5, {}) || model.setSelected(9, true));
    const Picture ids = drawn([&] { return model.drawIds(eye, 0xfe01fdfeU); });
    EXPECT_EQ(at(ids, 0), (Pixel{0xfe, 0xfd, 0x01, 0xfe}));
    EXPECT_EQ(at(ids, 1), (Pixel{0, 0, 0}));
    EXPECT_EQ(at(ids, 2), (Pixel{0x00, 0xfe, 0x01, 0xfe}));
    EXPECT_EQ(at(ids, 4), (Pixel{0, 0, 0}));
    const Picture plain = drawn([&] { return model.drawColor(eye, "#12345678"); });
    EXPECT_EQ(at(plain, 3), (Pixel{0x12, 0x34, 0x56, 0x78}));
    // Half of the light's power is 188 of 255 on the screen, as is that of light that comes at 60 degrees.
    model.setMaterial(4, {.color = "#ffffff", .shininess = 0});
    model.setLight({.kind = Light::Kind::Sun, .direction = {std::sqrt(3), 0, 1}, .ambient = 0});
    EXPECT_NEAR(at(drawn(model, eye), 4).green, 188, 1);
    EXPECT_TRUE(model.setMesh({})) << "nothing is a mesh too";
    EXPECT_EQ(drawn(model, eye), drawn([] { return true; }));
    EXPECT_TRUE(model.getBounds().isEmpty());
    // Made ready on another thread it is the same, with its images; what was handed over is nothing.
    Model other;
    ASSERT_TRUE(other.setMesh(row));
    other.setLight({.kind = Light::Kind::Sun, .direction = {std::sqrt(3), 0, 1}, .ambient = 0});
    std::optional<gui::draw::PreparedMesh> prepared;
    std::thread([&] { prepared.emplace(row); }).join();
    EXPECT_TRUE(model.setMesh(std::move(*prepared)));
    EXPECT_EQ(drawn(model, eye), drawn(other, eye));
    EXPECT_TRUE(model.setMesh(std::move(*prepared)));
    EXPECT_EQ(model.getNumberOfParts(), 0U);
}

// Where a surface leans half way from the eye to the light.
TEST_F(ModelTest, HighlightsAreBetweenLightAndEye)
{
    Model model;
    ASSERT_TRUE(model.setMesh(test::makeSphere(40, 100)));
    model.setMaterial(0, {.color = "#000000", .shininess = 0.9});
    const Eye eye = eyeAbove();
    for (const glm::dvec3& light : {glm::dvec3(1, 0, 1), {-1, 1, 0.5}})
    {
        model.setLight({.kind = Light::Kind::Sun, .direction = light, .ambient = 0});
        const Picture picture = drawn(model, eye);
        double sum = 0, x = 0, y = 0;
        for (std::size_t i = 0; i < picture.size(); i += 4)
        {
            const double bright = std::pow(picture[i], 4);
            sum += bright;
            x += bright * (double(i / 4 % cSize) + 0.5);
            y += bright * (cSize - double(i / 4 / cSize) - 0.5);
        }
        ASSERT_GT(sum, 0);
        const glm::dvec3 there = *eye.project(40.0 * glm::normalize(glm::normalize(light) + glm::dvec3(0, 0, 1)));
        EXPECT_NEAR(x / sum, there.x, 2);
        EXPECT_NEAR(y / sum, there.y, 2);
    }
}

// With its edges and wires; those of the part that is left are no other part's.
TEST_F(ModelTest, WithAHiddenPartItIsThePictureOfTheRest)
{
    Mesh both, rest;
    both.add(test::makeBox({-40, -10, 0}, {-10, 30, 20}), {.color = "#4080c0"});
    both.add(test::makeSphere(25, 20), {.color = "#c08040"}, 0, glm::translate(glm::dmat4(1), {30, 0, 0}));
    rest.add(test::makeSphere(25, 20), {.color = "#c08040"}, 0, glm::translate(glm::dmat4(1), {30, 0, 0}));
    for (const Model::Wires wires : {Model::Wires::None, Model::Wires::Over})
    {
        Model all, one;
        ASSERT_TRUE(all.setMesh(both) && one.setMesh(rest));
        for (Model* const pModel : {&all, &one})
        {
            pModel->setEdges({.width = 2, .color = "#ffffff"});
            pModel->setWires(wires);
        }
        EXPECT_TRUE(all.setVisible(0, false));
        const Picture expected = drawn(one, eyeAbove());
        EXPECT_NE(expected, drawn([] { return true; }));
        EXPECT_EQ(drawn(all, eyeAbove()), expected) << int(wires);
        EXPECT_TRUE(all.setVisible(0, true) && all.setVisible(1, false));
        EXPECT_NE(drawn(all, eyeAbove()), drawn([] { return true; }));
    }
}

TEST_F(ModelTest, BadMeshesAreRefusedAndChangeNothing)
{
    Mesh good = test::makeBox({-40, -40, -40}, {40, 40, 40});
    good.parts = {{12, {.color = "#40c080"}, 7}};
    Model model;
    ASSERT_TRUE(model.setMesh(good));
    const Picture before = drawn(model, eyeAbove());
    const double infinity = std::numeric_limits<double>::infinity();
    struct Case
    {
        std::function<void(Mesh&)> spoil;
        const char* line;
    };
    const Case cases[] = {
        {[](Mesh& m) { m.indices.pop_back(); }, "35 indices are not three for each triangle"},
        {[](Mesh& m) { m.indices[34] = 8; }, "index 8 of triangle 11 names no position: there are 8"},
        {[](Mesh& m) { m.indices[0] = ~0U; }, "index 4294967295 of triangle 0 names no position: there are 8"},
        {[&good](Mesh& m)
         {
             m.indices[4] = 8;
             Mesh both;
             both.add(m);
             both.add(good);
             m = both;
         },
         "index 4294967295 of triangle 1 names no position: there are 16"},
        {[](Mesh& m) { m.positions.clear(); }, "index 0 of triangle 0 names no position: there are 0"},
        {[](Mesh& m) { m.positions[3].y = std::nan(""); }, "position 3 is not finite, or beyond 1e30"},
        {[=](Mesh& m) { m.positions[7].z = -infinity; }, "position 7 is not finite, or beyond 1e30"},
        {[](Mesh& m) { m.positions[0].x = 2e30; }, "position 0 is not finite, or beyond 1e30"},
        {[](Mesh& m) { m.normals.resize(7); }, "7 normals for 8 positions"},
        {[](Mesh& m) { m.normals.assign(8, glm::vec3(std::nanf(""))); }, "normal 0 is not finite, or beyond 1e30"},
        {[](Mesh& m) { m.textureCoordinates.resize(9); }, "9 texture coordinates for 8 positions"},
        {[](Mesh& m) { m.textureCoordinates.assign(8, glm::vec2(0, INFINITY)); },
         "texture coordinate 0 is not finite, or beyond 1e30"},
        {[](Mesh& m) {
             m.parts.push_back({1, {}});
         },
         "part 1 has 1 triangles, and there are 0 left"},
        {[](Mesh& m) {
             m.parts = {{4}, {~std::size_t(0) - 3}, {12}};
         },
         "part 1 has 18446744073709551612 triangles, and there are 8 left"},
        {[](Mesh& m) { m.parts = {{4}}; }, "8 triangles are in no part"},
        {[](Mesh& m) { m.smoothAngle = std::nan(""); }, "an angle of nan degrees"},
        {[](Mesh& m) { m.edgeAngle = 181; }, "an angle of 181.000000 degrees"}};
    test::CapturedLog log;
    for (const Case& bad : cases)
    {
        Mesh mesh = good;
        bad.spoil(mesh);
        EXPECT_FALSE(model.setMesh(mesh));
        EXPECT_TRUE(log.said("Error! Model::setMesh: " + std::string(bad.line) + "!"));
    }
    EXPECT_EQ(model.getTag(0), 7U);
    EXPECT_EQ(drawn(model, eyeAbove()), before);
    // What is no fault: triangles without an area, twice the same, many at one corner, very large and very small ones.
    Mesh odd = good;
    odd.parts.clear();
    odd.indices = {0, 0, 1, 2, 1, 0, 0, 1, 2, 0, 1, 2, 3, 3, 3};
    for (std::uint32_t i = 0; i < 60000; ++i)
        odd.indices.insert(odd.indices.end(), {0, 1 + i % 6, 2 + i % 6});
    odd.positions[5] = {1e30, -1e30, 1e30};
    odd.positions[6] = {1e-30, 1e-300, 0};
    EXPECT_TRUE(model.setMesh(odd));
    model.setEdges({});
    model.setWires(Model::Wires::Over);
    EXPECT_TRUE(model.draw(eyeAbove()));
    EXPECT_TRUE(model.draw(Eye()));
    EXPECT_TRUE(model.draw(eyeAt({std::nan(""), 0, 0}, {0, 0, 0})));
}

TEST_F(ModelTest, NothingIsUploadedForTurningAndALostContextHeals)
{
    std::mt19937 random(1);
    Mesh heap = makeHeap(random, 20, 10);
    heap.textureCoordinates.assign(heap.positions.size(), {0.5F, 0.5F});
    const std::array<td::Color, 1> yellow{td::Color("#ffff00")};
    heap.parts[3].material.texture = Image(1, 1, yellow);
    Model model;
    ASSERT_TRUE(model.setMesh(heap));
    model.setEdges({});
    model.setWires(2, Model::Wires::Over);
    model.setSelected(4, true);
    const auto eye = [](double angle) { return eyeAt({30 * std::cos(angle), 30 * std::sin(angle), 9}, {0, 0, 0}); };
    const Picture picture = drawn(model, eye(0));
    gui::gl::FrameLedger::start();
    for (int i = 1; i < 5; ++i)
    {
        gui::gl::FrameLedger::begin();
        model.draw(eye(i));
        gui::gl::FrameLedger::end();
        EXPECT_EQ(gui::gl::FrameLedger::getLast().nBytesUploaded, 0U);
    }
    gui::gl::FrameLedger::begin();
    model.setMaterial(5, {.color = "#ffffff"});
    model.draw(eye(0));
    gui::gl::FrameLedger::end();
    EXPECT_EQ(gui::gl::FrameLedger::getLast().nBytesUploaded, 16U);
    gui::gl::FrameLedger::stop();
    model.setMaterial(5, heap.parts[5].material);

    EXPECT_EQ(drawn(model, eye(0)), picture);
    ASSERT_TRUE(context().replace());
    EXPECT_EQ(drawn(model, eye(0)), picture);
    {
        const gui::gl::Context settings(gui::gl::DepthBuffer::Size::Bits24, gui::gl::StencilBuffer::Size::None,
                                        gui::gl::Context::Profile::Core32);
        const gui::gl::OffscreenContext other({cSize, cSize}, settings);
        EXPECT_EQ(drawn(model, eye(0)), picture);
        context().makeCurrent();
        EXPECT_EQ(drawn(model, eye(0)), picture);
    }
    // GL's state is what it was, the program's own framebuffer too.
    gui::gl::Framebuffer aside;
    ASSERT_TRUE(aside.create({cSize, cSize}, {.depth = gui::gl::DepthBuffer::Size::Bits24}));
    const gui::gl::Framebuffer::Drawing drawing(aside);
    glDepthFunc(GL_NEVER);
    glEnable(GL_CULL_FACE);
    EXPECT_LE(nOther(drawn(model, eye(0)), picture), 20); // its depth is another one
    GLint function = 0, name = 0;
    glGetIntegerv(GL_DEPTH_FUNC, &function);
    glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &name);
    EXPECT_EQ(function, GL_NEVER);
    EXPECT_TRUE(glIsEnabled(GL_CULL_FACE) && !glIsEnabled(GL_DEPTH_TEST) && !glIsEnabled(GL_BLEND));
    // A program in the midst of drawing a buffer goes on with that.
    constexpr float cCorners[6] = {};
    gui::gl::Buffer buffer{gui::gl::DataType::Vec2};
    buffer.appendVertices(cCorners, 3);
    gui::gl::Command all;
    all.createDrawAll(gui::gl::Primitive::Points);
    ASSERT_TRUE(buffer.commit() && all.encode());
    {
        const test::GLTrace trace(test::GLTrace::Forward);
        buffer.activate();
        EXPECT_TRUE(model.draw(eyeAbove()) && all.execute());
        EXPECT_EQ(trace.calls().back(), "glDrawArrays(0, 0, 3)");
        buffer.deActivate();
    }
    EXPECT_EQ(static_cast<unsigned int>(name), aside.getID());
    glDepthFunc(GL_LESS);
    glDisable(GL_CULL_FACE);
    model.clear();
    EXPECT_TRUE(model.getBounds().isEmpty());
    Model empty;
    EXPECT_EQ(drawn(model, eye(0)), drawn(empty, eye(0)));
}

// Reversed depth and slices show what usual depth does, lines over faces too.
TEST_F(ModelTest, EveryDepthShowsTheSame)
{
    std::mt19937 random(2);
    Model model;
    ASSERT_TRUE(model.setMesh(makeHeap(random, 20, 4)));
    model.setEdges({.width = 2, .color = "#ffffff"});
    model.setOutline({});
    model.setSelected(3, true);
    gui::draw::OrbitCamera camera(gui::draw::OrbitCamera::Up::Z);
    camera.setSize({cSize, cSize});
    camera.fit(model.getBounds());
    const auto draw = [&](gui::draw::DepthCanvas& canvas)
    {
        clear({0, 0, 0, 255});
        {
            gui::draw::DepthCanvas::Frame frame(canvas, canvas.getEye(camera, 1));
            gui::gl::Context::clear(gui::gl::Context::Clear::Color, "#000000");
            while (const Eye* pEye = frame.next())
                EXPECT_TRUE(model.draw(*pEye));
        }
        return read();
    };
    const Picture usual = drawn(model, camera.getEye());
    // The canvas of reversed depth has samples, which smooth the outlines of surfaces.
    gui::draw::DepthCanvas reversed(Eye::Depth::Reversed), sliced(Eye::Depth::Sliced);
    EXPECT_LT(nOther(usual, draw(reversed), 60), 400);
    EXPECT_LT(nOther(usual, draw(sliced), 4), 20);
}

// A coarser mesh where triangles are smaller than pixels: far fewer of them, and nearly the same picture.
TEST_F(ModelTest, CoarserOnesLookLikeTheMesh)
{
    Mesh mesh = test::makeSphere(10, 700);
    mesh.add(test::makeBox({-15, -3, -3}, {15, 3, 3}), {.color = "#e0a020"});
    Model model;
    ASSERT_TRUE(model.setMesh(mesh));
    const auto draw = [&](const Eye& eye, double tolerance, std::uint64_t& nVertices)
    {
        model.setTolerance(tolerance);
        gui::gl::FrameLedger::start();
        gui::gl::FrameLedger::begin();
        const Picture picture = drawn(model, eye);
        gui::gl::FrameLedger::end();
        nVertices = gui::gl::FrameLedger::getLast().nVertices;
        gui::gl::FrameLedger::stop();
        return picture;
    };
    std::uint64_t nAll = 0, nFewer = 0;
    const Eye near = eyeAt({14, 30, 10}, {0, 0, 0}), far = eyeAt({60, 130, 40}, {0, 0, 0});
    EXPECT_EQ(draw(near, 0, nAll), draw(near, 0.1, nFewer));
    EXPECT_EQ(nAll, nFewer);
    const Picture whole = draw(far, 0, nAll), coarser = draw(far, 0.5, nFewer);
    EXPECT_LT(nFewer, nAll / 4);
    // Along its outline, and in the highlight.
    EXPECT_LT(nOther(whole, coarser, 12), 60);
}

} // namespace
