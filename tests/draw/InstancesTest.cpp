#include "Solids.h"
#include "SpacePicture.h"
#include "support/CapturedLog.h"

#include <gui/draw/DepthCanvas.h>
#include <gui/draw/Instances.h>
#include <gui/draw/Model.h>
#include <gui/draw/Points3.h>
#include <gui/draw/Polylines3.h>

#include <glm/ext/matrix_transform.hpp>
#include <glm/gtc/quaternion.hpp>

#include <cmath>
#include <functional>
#include <string>
#include <vector>

namespace
{

using gui::draw::Eye;
using gui::draw::Instances;
using gui::draw::Mesh;
using gui::draw::Model;
using test::Pixel;

class InstancesTest : public test::SpacePicture
{
protected:
    glm::dquat turn() { return {uniform(-1, 1), uniform(-1, 1), uniform(-1, 1), uniform(-1, 1)}; }

    std::vector<Instances::Placement> scattered(int n, const glm::dvec3& far, double size, bool isStretched)
    {
        std::vector<Instances::Placement> placements;
        for (int i = 0; i < n; ++i)
        {
            const glm::dvec3 scale(uniform(0.2, 0.5), isStretched ? uniform(0.1, 1.2) : 0.4, isStretched ? -0.3 : 0.4);
            placements.push_back({far + somewhere(size), 3.0 * turn(), scale});
        }
        return placements;
    }
    static glm::dmat4 matrixOf(const Instances::Placement& p)
    {
        return glm::scale(glm::translate(glm::dmat4(1), p.position) * glm::mat4_cast(glm::normalize(p.rotation)),
                          p.scale);
    }
};

/// A part that is seen from both sides and one that is not, away from the origin of both.
Mesh makeThing()
{
    Mesh thing;
    thing.add(test::makeBox({3, 0, 0}, {4, 0.6, 1}), {.color = "#e0a020", .isTwoSided = false});
    thing.add(test::makeSphere(0.7, 40), {.color = "#4080e0", .shininess = 0.8}, 0,
              glm::translate(glm::dmat4(1), {3.5, 0, 1}));
    return thing;
}

// Turned, stretched, mirrored, far away and cut: the picture of one mesh that has all of them.
TEST_F(InstancesTest, TheyAreThePictureOfOneMesh)
{
    for (int i = 0; i < 12; ++i)
    {
        const glm::dvec3 far = i % 2 == 0 ? glm::dvec3(0) : glm::dvec3(6378137.3, -4194304.7, 3e6 + 0.1);
        Mesh thing = makeThing();
        for (const glm::dvec3& p : thing.positions)
            if (i % 4 == 3) // of their own
                thing.normals.push_back(glm::normalize(p - glm::dvec3(3.5, 0.3, 0.5)));
        const std::vector<Instances::Placement> placements = scattered(40, far, 5, i % 4 < 2);
        std::vector<td::Color> colors;
        Mesh all;
        for (std::size_t k = 0; k < placements.size(); ++k)
        {
            colors.push_back(k % 3 == 0 ? "#ffffff" : "#000000");
            Mesh one = thing;
            for (Mesh::Part& part : one.parts)
                if (k % 3 != 0)
                    part.material.color = "#000000";
            all.add(one, matrixOf(placements[k]));
        }
        Instances instances;
        Model model;
        ASSERT_TRUE(instances.setMesh(thing) && instances.set(placements, colors) && model.setMesh(all));
        model.setTolerance(0);
        model.setSection({.isClosed = false, .outline = {.width = 0}});
        instances.setTolerance(0);
        if (i > 5)
        {
            instances.setLight(gui::draw::Light::sun({1, 2, 3}));
            model.setLight(gui::draw::Light::sun({1, 2, 3}));
        }
        Eye eye = test::eyeAt(far + glm::dvec3(8, -5, 3), far);
        if (i % 3 == 1)
            eye.setClipping(gui::draw::Clipping(far, {1, 0.3, 0}));
        if (i % 3 == 2)
        {
            gui::draw::Clipping notch(gui::draw::Clipping::Kind::Notch);
            notch.add(far, {-1, 0, 0});
            notch.add(far, {0, 0, -1});
            eye.setClipping(notch);
        }
        const Picture expected = drawn([&] { return model.draw(eye); });
        EXPECT_GT(nOther(expected, drawn([] { return true; })), 300);
        // At edges, a rounding decides now and then.
        const int nMost = isDriver("softpipe") ? 200 : 25; // see docs/drivers.md
        EXPECT_LE(nOther(expected, drawn([&] { return instances.draw(eye); }), 6), nMost) << i;
        EXPECT_LE(glm::length(instances.getBounds().getCenter() - model.getBounds().getCenter()), 3.0);
    }
}

// Instances and spheres cast shadows, and get them, as models do; lines cast none.
TEST_F(InstancesTest, ShadowsAreThoseOfModels)
{
    Model ground, whole;
    Instances boxes;
    gui::draw::Points3 balls;
    gui::draw::Polylines3 lines;
    Mesh all = test::makeBox({-9, -9, -1}, {9, 9, 0});
    ASSERT_TRUE(ground.setMesh(all) && boxes.setMesh(test::makeBox({-0.5, -0.5, 0}, {0.5, 0.5, 3})));
    std::vector<glm::dvec3> places;
    for (int i = 0; i < 5; ++i)
    {
        const Instances::Placement placement{{-4 + 2 * i, -3 + i % 2, 0}};
        ASSERT_TRUE(boxes.add(placement));
        all.add(test::makeBox({-0.5, -0.5, 0}, {0.5, 0.5, 3}), matrixOf(placement));
        places.emplace_back(-4 + 2 * i, 1 + i % 2, 1 + 0.5 * i);
        all.add(test::makeSphere(0.8, 100), glm::translate(glm::dmat4(1), places.back()));
    }
    const td::Color color = gui::draw::Material().color;
    ASSERT_TRUE(whole.setMesh(all) && balls.set(places, {{color}}) && lines.add(places, {.width = 1e-9}));
    balls.setLook({.shape = gui::draw::Points3::Shape::Sphere, .size = 1.6, .unit = gui::draw::Unit::Model});
    const gui::draw::Light sun = gui::draw::Light::sun({0.8, -3, 1.3});
    for (Model* pModel : {&ground, &whole})
        pModel->setLight(sun);
    boxes.setLight(sun);
    balls.setLight(sun);
    gui::draw::DepthCanvas canvas;
    const auto draw = [&](const std::function<void(const Eye&)>& drawScene)
    {
        {
            gui::draw::DepthCanvas::Frame frame(canvas, test::eyeAt({9, -4, 6}, {0, 0, 1}));
            gui::gl::Context::clear(gui::gl::Context::Clear::Color, "#000000");
            while (const Eye* pEye = frame.next())
                drawScene(*pEye);
        }
        return read();
    };
    const auto drawWhole = [&](const Eye& eye) { whole.draw(eye); };
    const auto drawThem = [&](const Eye& eye)
    { EXPECT_TRUE(ground.draw(eye) && boxes.draw(eye) && balls.draw(eye) && lines.draw(eye)); };
    const Picture clear = draw(drawWhole);
    canvas.setShadows({.quality = gui::draw::Shadows::Quality::High, .direction = {0.8, -3, 1.3}, .occlusion = 0},
                      all.getBounds());
    const Picture shaded = draw(drawWhole);
    EXPECT_GT(nOther(clear, shaded, 30), 400);
    // At outlines, and where a shadow ends on a mesh's sphere.
    EXPECT_LT(nOther(shaded, draw(drawThem), 30), 50);
}

// What an eye of a part of the view draws is that part of what the whole eye draws, with blocks left out and coarser
// meshes for those far away.
TEST_F(InstancesTest, NothingIsMissingInPartsOfTheView)
{
    Instances instances;
    ASSERT_TRUE(instances.setMesh(test::makeSphere(0.5, 60)));
    ASSERT_TRUE(instances.set(scattered(5000, {}, 40, false)));
    const Eye eye = test::eyeAt({30, 5, 3}, {0, 0, 0});
    const Picture whole = drawn([&] { return instances.draw(eye); });
    for (int i = 0; i < 6; ++i)
    {
        const int left = static_cast<int>(uniform(0, 120)), bottom = static_cast<int>(uniform(0, 120));
        const double top = test::cPictureSize - bottom - 40;
        glViewport(left, bottom, 40, 40);
        glEnable(GL_SCISSOR_TEST);
        glScissor(left, bottom, 40, 40);
        glClear(GL_DEPTH_BUFFER_BIT);
        EXPECT_TRUE(instances.draw(eye.getPart({double(left), top, left + 40.0, top + 40})));
        glDisable(GL_SCISSOR_TEST);
        glViewport(0, 0, test::cPictureSize, test::cPictureSize);
        EXPECT_LE(nOther(whole, read(), 24), 12) << i;
    }
    instances.setTolerance(0);
    EXPECT_LE(nOther(whole, drawn([&] { return instances.draw(eye); }), 60), 800);
}

TEST_F(InstancesTest, OneChangesByItself)
{
    Instances instances;
    Mesh box = test::makeBox({-4, -4, -4}, {4, 4, 4});
    box.material.shininess = 0;
    ASSERT_TRUE(instances.setMesh(box));
    std::vector<Instances::Placement> placements;
    for (int i = 0; i < 100; ++i)
        placements.push_back({{-60 + 12 * (i * 37 % 100 % 10), -60 + 12 * (i * 37 % 100 / 10), 0}});
    ASSERT_TRUE(instances.set(placements));
    const auto placeOf = [&](std::size_t i) { return glm::ivec2(placements[i].position); };
    const Eye eye = test::eyeAbove();
    const auto draw = [&] { return instances.draw(eye); };
    Picture picture = drawn([&] { return instances.drawIds(eye, 0xfe000000U); });
    for (std::size_t i = 0; i < 100; ++i)
        EXPECT_EQ(at(picture, placeOf(i).x, placeOf(i).y), (Pixel{static_cast<int>(i), 0, 0, 0xfe}));
    drawn(draw);
    EXPECT_EQ(nUploaded(draw), 0U);
    EXPECT_TRUE(instances.setColor(42, "#ff0000") && instances.setVisible(17, false));
    EXPECT_EQ(nUploaded(draw), 32U);
    EXPECT_TRUE(instances.setPosition(5, {70, 70, 0}) &&
                instances.setPlacement(6, {{-70, 70, 0}, {2, 0, 0, 0}, {2, 2, 2}}));
    EXPECT_EQ(nUploaded(draw), 32U + 64U);
    picture = drawn(draw);
    EXPECT_GT(at(picture, placeOf(42).x, placeOf(42).y).red, 100);
    EXPECT_EQ(at(picture, placeOf(42).x, placeOf(42).y).green, 0);
    for (const std::size_t gone : {17U, 5U, 6U})
        EXPECT_EQ(at(picture, placeOf(gone).x, placeOf(gone).y), (Pixel{0, 0, 0}));
    EXPECT_GT(at(picture, 70, 70).red, 0);
    EXPECT_GT(at(picture, -64, 70).red, 0) << "it is larger";
    EXPECT_EQ(instances.add({{0, 70, 0}}, "#00ff00"), 100U);
    EXPECT_GT(at(drawn(draw), 0, 70).green, 100);
    // What is given may be one of its own.
    Instances copies;
    ASSERT_TRUE(copies.setMesh(box) && copies.add({{1, 2, 3}}));
    for (int i = 0; i < 40; ++i)
        copies.add(copies.getPlacement(0));
    EXPECT_EQ(copies.getPlacement(40).position, glm::dvec3(1, 2, 3));
    EXPECT_TRUE(copies.setPosition(7, {4, 5, 6}) && copies.set(std::span(&copies.getPlacement(7), 1)));
    EXPECT_TRUE(copies.size() == 1 && copies.getPlacement(0).position == glm::dvec3(4, 5, 6));
    // Another mesh, another context.
    ASSERT_TRUE(instances.setMesh(test::makeBox({6, -1, -1}, {8, 1, 1})));
    picture = drawn(draw);
    EXPECT_GT(at(picture, 7, 70).green, 100);
    EXPECT_EQ(at(picture, 0, 70), (Pixel{0, 0, 0}));
    ASSERT_TRUE(context().replace());
    EXPECT_EQ(drawn(draw), picture);
    EXPECT_EQ(at(drawn([&] { return instances.drawColor(eye, "#12345678"); }), 7, 70), (Pixel{0x12, 0x34, 0x56, 0x78}));
    // Many at once, and the others stay.
    Instances many, moved;
    placements = scattered(1500, {}, 60, false);
    ASSERT_TRUE(many.setMesh(box) && moved.setMesh(box) && many.set(placements));
    std::vector<Instances::Placement> others = placements;
    for (std::size_t i = 200; i < 1400; ++i)
        others[i].position = -others[i].position;
    ASSERT_TRUE(moved.set(others));
    drawn([&] { return many.draw(eye); });
    EXPECT_TRUE(many.setPlacements(200, std::span(others).subspan(200, 1200)));
    EXPECT_EQ(drawn([&] { return many.drawIds(eye); }), drawn([&] { return moved.drawIds(eye); }));
    for (const std::size_t i : {1400U, 700U, 3U})
    {
        const double far = 2000 - double(i);
        EXPECT_TRUE(many.setPosition(i, {far, 0, 0}));
        EXPECT_GE(many.getBounds().max.x, far) << i;
    }
}

TEST_F(InstancesTest, BadInputIsRefusedAndChangesNothing)
{
    Instances instances;
    EXPECT_TRUE(instances.draw(test::eyeAbove())) << "without a mesh there is nothing";
    ASSERT_TRUE(instances.add({}) && instances.setMesh(test::makeBox({-9, -9, -9}, {9, 9, 9})));
    const Picture before = drawn([&] { return instances.draw(test::eyeAbove()); });
    test::CapturedLog log;
    Mesh bad = test::makeBox({0, 0, 0}, {1, 1, 1});
    bad.indices.pop_back();
    const std::vector<Instances::Placement> placements{{}, {{0, 0, 0}, {0, 0, 0, 0}}};
    const auto first = std::span(placements).first(1), second = std::span(placements).last(1);
    EXPECT_FALSE(instances.setMesh(bad) || instances.set(placements) || instances.add({{1e31, 0, 0}}));
    EXPECT_FALSE(instances.setScale(0, {1, std::nan(""), 1}) || instances.setPlacements(0, second));
    EXPECT_FALSE(instances.setRotation(0, {0, 0, 0, INFINITY}) || instances.setPosition(0, {0, 0, -INFINITY}));
    EXPECT_FALSE(instances.set(first, std::vector<td::Color>(2)));
    const std::string reason = " has no turn, or a number that is not finite or beyond 1e30!";
    EXPECT_EQ(log.take(),
              (std::vector<std::string>{"Error! Instances::setMesh: 35 indices are not three for each triangle!",
                                        "Error! Instances::set: placement 1" + reason,
                                        "Error! Instances::add: placement 1" + reason,
                                        "Error! Instances::setPlacement: placement 0" + reason,
                                        "Error! Instances::setPlacements: placement 0" + reason,
                                        "Error! Instances::setPlacement: placement 0" + reason,
                                        "Error! Instances::setPosition: placement 0" + reason,
                                        "Error! Instances::set: 2 colours for 1 placements!"}));
    EXPECT_FALSE(instances.setPlacements(1, first) || instances.setColor(1, "#ffffff"));
    EXPECT_FALSE(instances.setPosition(1, {}) || instances.setScale(1, {}) || instances.setVisible(1, true));
    EXPECT_EQ(drawn([&] { return instances.draw(test::eyeAbove()); }), before);
    EXPECT_TRUE(instances.setScale(0, {0, 0, 0}) && instances.draw(test::eyeAbove()) && instances.draw(Eye()));
    instances.clear();
    EXPECT_TRUE(instances.size() == 0 && instances.getBounds().isEmpty() && instances.draw(test::eyeAbove()));
}

} // namespace
