#include "support/CapturedLog.h"
#include "support/OffscreenGL.h"

#include <gui/Application.h>
#include <gui/Window.h>
#include <gui/draw/DepthCanvas.h>
#include <gui/draw/Dimensions3.h>
#include <gui/draw/Labels3.h>
#include <gui/draw/OrbitView.h>
#include <gui/gl/Buffer.h>
#include <gui/gl/Color3DProgram.h>
#include <gui/gl/FrameLedger.h>
#include <gui/gl/Framebuffer.h>

#include <glm/geometric.hpp>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace
{

using namespace gui::draw;
using gui::gl::DataType;

constexpr double cNoNumber = std::numeric_limits<double>::quiet_NaN();
constexpr int cSide = 200;

/// A square across the z axis, from -1 to 1.
class Wall
{
public:
    void draw(const Eye& eye, double z)
    {
        if (!_program.isOK())
        {
            ASSERT_TRUE(_program.link());
            const float corners[] = {-1, -1, 0, 1, 0, 0, 1, 1, -1, 0, 1, 0, 0, 1,
                                     -1, 1,  0, 1, 0, 0, 1, 1, 1,  0, 1, 0, 0, 1};
            _square.appendVertices(corners, 4);
            _square.createCommand()->createDrawAll(gui::gl::Primitive::TriangleStrip);
        }
        _program.draw(_square, eye.getMatrix({0, 0, z}));
    }

private:
    gui::gl::Color3DProgram _program;
    gui::gl::Buffer _square{DataType::Vec3, DataType::Vec4};
};

class SignsInSpaceTest : public test::OffscreenGL
{
protected:
    SignsInSpaceTest()
        : OffscreenGL({cSide, cSide})
    {
        camera.setSize({cSide, cSide});
        camera.setFieldOfView(60);
        camera.setBounds({glm::dvec3(-2), glm::dvec3(2)});
        camera.look({0, 0, 6}, {0, 0, 0});
    }

    /// Draws the wall, and has the probe asked.
    void drawScene(double z = 0)
    {
        const Eye eye = canvas.getEye(camera, 1);
        DepthCanvas::Frame frame(canvas, eye);
        probe.begin(eye);
        while (const Eye* const pEye = frame.next())
        {
            wall.draw(*pEye, z);
            probe.ask(*pEye);
        }
    }

    OrbitCamera camera;
    DepthCanvas canvas;
    DepthProbe probe;
    Wall wall;
};

// Whatever the depth buffer is: what is there, on it, before it, beside it and behind it, nearer than the eye's nearest
// distance and farther than its farthest. The first frame is right; the next ones follow without waiting.
TEST_F(SignsInSpaceTest, WhatIsBehindSomethingIsHiddenWithEveryKindOfDepth)
{
    const struct
    {
        glm::dvec3 at;
        double tolerance;
        bool isHidden;
    } points[] = {{{0.5, 0.5, 1}, 0, false},   {{0.2, -0.7, 0}, 0, false}, {{0, 0, -0.5}, 0, true},
                  {{0.1, 0.1, -40}, 0, true},  {{0.9, 1.3, -1}, 0, false}, {{0, 0, 5.99}, 0, false},
                  {{-0.3, 0, -0.5}, 1, false}, {{1.6, 0, -1.5}, 0, false}, {{0, 0, -1}, 0, true}};
    for (const Eye::Depth depth : {Eye::Depth::Usual, Eye::Depth::Reversed, Eye::Depth::Sliced})
        for (const int nSamples : {1, 4})
        {
            SCOPED_TRACE(testing::Message() << int(depth) << ", samples " << nSamples);
            canvas.setDepth(depth);
            if (depth == Eye::Depth::Reversed)
                canvas.setSamples(nSamples);
            canvas.setShadows({.quality = nSamples == 4 ? Shadows::Quality::Low : Shadows::Quality::None},
                              {glm::dvec3(-2), glm::dvec3(2)});
            gui::gl::Framebuffer framebuffer;
            ASSERT_TRUE(
                framebuffer.create({cSide, cSide}, {.depth = gui::gl::DepthBuffer::Size::Bits24, .samples = nSamples}));
            const gui::gl::Framebuffer::Drawing drawing(framebuffer);
            std::vector<DepthProbe::ID> ids;
            for (const auto& point : points)
                ids.push_back(probe.add(point.at, point.tolerance));
            drawScene();
            probe.settle();
            ASSERT_TRUE(probe.isSettled());
            for (std::size_t i = 0; i < ids.size(); ++i)
                EXPECT_EQ(probe.isHidden(ids[i]), points[i].isHidden) << i;
            // The wall goes; nobody waits for that, and it is known at last.
            const std::uint64_t version = probe.getVersion();
            for (int i = 0; i < 1000 && probe.getVersion() == version; ++i)
            {
                drawScene(-1.9);
                probe.settle();
            }
            EXPECT_FALSE(probe.isHidden(ids[2]));
            EXPECT_TRUE(probe.isHidden(ids[3])) << "behind it still";
            for (const DepthProbe::ID id : ids)
                EXPECT_TRUE(probe.remove(id));
        }
    EXPECT_FALSE(probe.remove(1) || probe.move(1, {}) || probe.setAsked(1, true) || probe.isHidden(1));
}

// Names that cover each other, that come and go while the camera trembles, or that are where nothing is.
TEST_F(SignsInSpaceTest, LabelsKeepApartAndAreSteady)
{
    Labels3 labels(probe);
    std::mt19937 engine(3);
    std::uniform_real_distribution<double> in(-1.5, 1.5);
    std::vector<Labels3::ID> ids;
    for (int i = 0; i < 300; ++i)
        ids.push_back(labels.add({in(engine), in(engine), in(engine)}, "name " + std::to_string(i), {.size = 9},
                                 {.priority = double(i), .leader = Leader{0}}));
    std::vector<int> changes(ids.size());
    std::vector<bool> was(ids.size());
    for (int frame = 0; frame < 40; ++frame)
    {
        // A turn to here, then a tremor of some hundredths of a point.
        camera.setDirection(frame < 20 ? 3 * frame : 60 + 0.01 * (frame % 2), 10);
        drawScene(-1.95);
        ASSERT_TRUE(labels.draw(canvas.getEye(camera, 1)));
        std::vector<td::RectNormalized<double>> rects;
        for (std::size_t i = 0; i < ids.size(); ++i)
        {
            changes[i] += frame > 21 && was[i] != labels.isShown(ids[i]) ? 1 : 0;
            was[i] = labels.isShown(ids[i]);
            const auto rect = labels.getRect(ids[i]);
            ASSERT_EQ(rect.has_value(), was[i]);
            if (!rect)
                continue;
            for (const auto& other : rects)
                ASSERT_FALSE(rect->left < other.right && rect->right > other.left && rect->top < other.bottom &&
                             rect->bottom > other.top)
                    << frame << ' ' << i;
            rects.push_back(*rect);
            EXPECT_EQ(labels.pick({rect->left + 1, rect->top + 1}), ids[i]);
        }
        EXPECT_EQ(labels.getNumberOfShown(), rects.size());
        EXPECT_GT(rects.size(), 6U);
        EXPECT_TRUE(was.back()) << "the first one by priority";
    }
    for (std::size_t i = 0; i < ids.size(); ++i)
        EXPECT_LE(changes[i], 1) << i;
}

TEST_F(SignsInSpaceTest, LabelsAreWhereTheirPointsAreSeen)
{
    Labels3 labels(probe);
    labels.setMargin(-1);
    const auto add = [&](const glm::dvec3& at, const Label3& look) { return labels.add(at, "Nozzle", {}, look); };
    const Labels3::ID before = add({0, 0, 1}, {}), faint = add({0, 0.3, -1}, {.behind = Behind::Fade}),
                      hidden = add({0, 0, -1}, {}), shown = add({0, 0, -1}, {.behind = Behind::Show}),
                      behindEye = add({0, 0, 7}, {.behind = Behind::Show}),
                      outside = add({9, 0, 0}, {.behind = Behind::Show}), cut = add({1, 1, 1}, {}),
                      small = add({0.4, 0, 1}, {.extent = 0.2}), large = add({0.4, 0, 1}, {.extent = 4});
    EXPECT_EQ(add({cNoNumber, 0, 0}, {}) + labels.add({0, 0, 0}, "x", {}, {.offset = {cNoNumber, 0}}), 0U);
    EXPECT_FALSE(labels.move(before, {0, cNoNumber, 0}) || labels.move(99, {}) || labels.remove(0) ||
                 labels.setText(99, TextLayout()) || labels.setWanted(99, true) || labels.isShown(99));
    Eye eye = canvas.getEye(camera, 1);
    eye.setClipping(Clipping({0.9, 0, 0}, {-1, 0, 0}));
    const auto draw = [&]
    {
        drawScene();
        EXPECT_TRUE(labels.draw(eye));
    };
    draw();
    for (const Labels3::ID id : {before, faint, shown, large})
        EXPECT_TRUE(labels.isShown(id)) << id;
    for (const Labels3::ID id : {hidden, behindEye, outside, cut, small})
        EXPECT_FALSE(labels.isShown(id)) << id;
    EXPECT_TRUE(labels.isFaint(faint) && !labels.isFaint(shown));
    EXPECT_EQ(labels.getText(before), "Nozzle");
    // A function of one's own knows better, at once; and what is done to one is not done to another.
    labels.setIsHidden([](const glm::dvec3& point, const Eye&) { return point.z > 0; });
    EXPECT_TRUE(labels.setWanted(faint, false) && labels.remove(shown));
    draw();
    EXPECT_FALSE(labels.isShown(before) || labels.isShown(faint) || labels.isShown(shown) || labels.isShown(large));
    EXPECT_TRUE(labels.isShown(hidden));
    EXPECT_FALSE(labels.remove(shown) || labels.setWanted(shown, true)) << "it is gone";
    EXPECT_TRUE(labels.move(hidden, {0.5, 0.5, -1}) && labels.setText(hidden, TextLayout("A longer one", {})));
    draw();
    const auto rect = labels.getRect(hidden);
    const auto place = eye.project({0.5, 0.5, -1});
    ASSERT_TRUE(rect && place);
    EXPECT_NEAR((rect->left + rect->right) / 2, place->x, 1);
    // Of equal ones the first one is shown, whatever has gone before it; where they overlap, the last one is above.
    labels.clear();
    labels.setIsHidden({});
    Labels3::ID ids[4];
    for (Labels3::ID& id : ids)
        id = add({0, 0, 1}, {});
    EXPECT_TRUE(labels.remove(ids[0]));
    draw();
    EXPECT_EQ(labels.pick({cSide / 2.0, cSide / 2.0}), ids[3]);
    labels.setMargin(2);
    draw();
    EXPECT_TRUE(labels.isShown(ids[1]) && !labels.isShown(ids[2]) && !labels.isShown(ids[3]));
    labels.clear();
    EXPECT_EQ(labels.getNumberOfLabels(), 0U);
    EXPECT_TRUE(labels.draw(eye));
}

// Beside its point, on the side that the offset goes to; its leader from there to here.
TEST_F(SignsInSpaceTest, LeadersJoinTextsToTheirPoints)
{
    for (const td::Point<double> offset : {td::Point<double>(30, -20), {-30, 10}, {0, 24}, {0, -24}})
    {
        const double width = offset.x < 0 ? 1 : 3;
        Labels3 labels;
        const Labels3::ID id =
            labels.add({0, 0, 0}, "A", {.paint = "#ffffff"},
                       {.offset = offset,
                        .leader = Leader{.width = width, .paint = "#00ff00", .end = Leader::End::Arrow},
                        .frame = TextFrame{.fill = "#0000ff", .padding = 8}});
        clear();
        ASSERT_TRUE(labels.draw(canvas.getEye(camera, 1)));
        const auto rect = labels.getRect(id);
        ASSERT_TRUE(rect);
        const double x = cSide / 2 + offset.x, y = cSide / 2 + offset.y;
        EXPECT_NEAR(offset.x > 0 ? rect->left : offset.x < 0 ? rect->right : (rect->left + rect->right) / 2, x, 1);
        EXPECT_NEAR(offset.x != 0 ? (rect->top + rect->bottom) / 2 : offset.y > 0 ? rect->top : rect->bottom, y, 1);
        for (const double part : {0.3, 0.6, 0.9})
        {
            int most = 0;
            for (const int beside : {-1, 0, 1})
                most = std::max<int>(
                    most, pixel(int(cSide / 2 + part * offset.x), int(cSide / 2 - part * offset.y) + beside).green);
            EXPECT_GT(most, 120) << part;
        }
        EXPECT_GT(pixel(int(rect->left + 4), int(cSide - rect->top - 5)).blue, 250);
    }
}

TEST_F(SignsInSpaceTest, DimensionsTellWhatTheyMeasure)
{
    Dimensions3 dimensions;
    const glm::dvec3 o(0), x(1, 0, 0), y(0, 1, 0), z(0, 0, 1);
    const DimensionStyle plain, millimetres{.factor = 1000, .decimals = 1, .unit = " mm"};
    const struct
    {
        Dimensions3::ID id;
        double value;
        const char* text;
    } cases[] = {
        {dimensions.addLinear(o, {3, 4, 0}, y), 5, "5"},
        {dimensions.addLinear(o, {0.1234, 0, 0}, y, millimetres), 0.1234, "123.4 mm"},
        {dimensions.addLinear(o, {0.1, 0, 0}, y, millimetres), 0.1, "100 mm"},
        {dimensions.addLinear(o, {0, 0, 12.999}, y, {.keepsZeros = true}), 12.999, "13.00"},
        {dimensions.addLinear(o, {1, 0, 0}, y, {.decimals = 0, .prefix = "2 x "}), 1, "2 x 1"},
        {dimensions.addLinear(o, {1, 0, 0}, y, {.unit = " m", .label = "as drawn"}), 1, "as drawn"},
        {dimensions.addLinearAlong(o, {3, -4, 0}, 2.0 * y, x), 4, "4"},
        {dimensions.addRadius(o, 3.0 * z, 2.5, {1, 1, 9}, plain), 2.5, "R 2.5"},
        {dimensions.addDiameter(o, z, 2.5, x, millimetres), 5, "\u2300 5000 mm"},
        {dimensions.addAngle(o, 7.0 * x, x + y, 1, millimetres), 45, "45\u00b0"},
        {dimensions.addAngle(o, x, -x + 1e-3 * y, 1), 179.942704, "179.94\u00b0"},
        {dimensions.addLinear(o, {1e150, 0, 0}, y, {.decimals = 999}), 1e150, nullptr},
    };
    for (const auto& c : cases)
    {
        EXPECT_NE(c.id, 0U);
        EXPECT_NEAR(dimensions.getValue(c.id), c.value, 1e-6);
        if (c.text != nullptr)
        {
            EXPECT_EQ(dimensions.getText(c.id), c.text);
        }
    }
    for (const Dimensions3::ID none :
         {dimensions.addLinear(o, o, y), dimensions.addLinear(o, {cNoNumber, 0, 0}, y),
          dimensions.addLinear(o, x, {0, cNoNumber, 0}), dimensions.addLinearAlong(o, x, y, y),
          dimensions.addLinearAlong(o, x, o, y), dimensions.addRadius(o, o, 1, x), dimensions.addRadius(o, z, 0, x),
          dimensions.addDiameter(o, z, cNoNumber, x), dimensions.addRadius(o, z, 1, -5.0 * z),
          dimensions.addAngle(o, x, x, 1), dimensions.addAngle(o, x, -2.0 * x, 1), dimensions.addAngle(o, x, o, 1),
          dimensions.addAngle(o, x, y, -1)})
        EXPECT_EQ(none, 0U);
    EXPECT_EQ(dimensions.getNumberOfDimensions(), std::size(cases));
    EXPECT_TRUE(dimensions.draw(canvas.getEye(camera, 1)));
    EXPECT_TRUE(dimensions.remove(cases[0].id) && !dimensions.remove(cases[0].id));
    EXPECT_EQ(dimensions.getText(cases[1].id), "123.4 mm");
    EXPECT_EQ(dimensions.getText(cases[0].id), "");
}

// Lines are where they are measured; arrows turn round where there is no room; what is behind, end-on, cut away or
// behind the eye goes.
TEST_F(SignsInSpaceTest, DimensionsAreDrawnWhereTheyAre)
{
    const double point = canvas.getEye(camera, 1).getSizeAt({0, 0, 0}); // in model units
    const auto isInk = [](double x, double y)
    {
        int most = 0;
        for (int dx = -1; dx <= 1; ++dx)
            for (int dy = -1; dy <= 1; ++dy)
                most = std::max(most, pixel(int(cSide / 2 + x) + dx, int(cSide / 2 + y) + dy).green);
        return most > 90;
    };
    // Whether letters, which are white, are in a rectangle from the middle.
    const auto isWritten = [](const td::RectNormalized<double>& rect)
    {
        int most = 0;
        for (int y = int(rect.top); y < int(rect.bottom); ++y)
            for (int x = int(rect.left); x < int(rect.right); ++x)
                most = std::max<int>(most, pixel(int(cSide / 2) + x, int(cSide / 2) + y).red);
        return most > 150;
    };
    DimensionStyle style{.text = {.paint = "#ffffff"}, .paint = "#00ff00", .width = 2, .label = "12"};
    for (const auto text : {DimensionStyle::Text::InLine, DimensionStyle::Text::AboveLine})
        for (const double length : {140.0, 12.0})
        {
            style.place = text;
            Dimensions3 dimensions;
            const double half = length / 2 * point;
            dimensions.addLinear({-half, 0, 0}, {half, 0, 0}, {0, 40 * point, 0}, style);
            clear();
            ASSERT_TRUE(dimensions.draw(canvas.getEye(camera, 1)));
            EXPECT_TRUE(isInk(-length / 2, 20) && isInk(length / 2, 20)) << "extension lines";
            EXPECT_FALSE(isInk(-length / 2, -3)) << "before the gap";
            EXPECT_EQ(isInk(-length / 2 - 12, 40), length < 20) << "an arrow outside";
            if (length > 20)
            {
                for (const double side : {-1, 1})
                {
                    EXPECT_TRUE(isInk(side * length / 3, 40));
                    EXPECT_EQ(isInk(side * 7, 40), text == DimensionStyle::Text::AboveLine) << "the gap for the text";
                }
                EXPECT_TRUE(isWritten({-12, 30, 12, 60}));
            }
            // Around a corner, and from the middle of a circle whose axis has some length.
            Dimensions3 round;
            round.addAngle({0, 0, 0}, {1, 0, 0}, {0, 1, 0}, 60 * point, style);
            round.addRadius({0, 0, 0}, {0, 0, 3}, 60 * point, {-1, 0, 5}, style);
            clear();
            ASSERT_TRUE(round.draw(canvas.getEye(camera, 1)));
            for (const double angle : {0.25, 1.3})
                EXPECT_TRUE(isInk(60 * std::cos(angle), 60 * std::sin(angle))) << angle;
            const double middle = 60 * std::sqrt(0.5);
            EXPECT_EQ(isInk(middle, middle), text == DimensionStyle::Text::AboveLine) << "the gap for the text";
            EXPECT_TRUE(isInk(-8, 0) && isInk(-50, 0));
        }
    // A long text above its line, where there is just room.
    Dimensions3 wide;
    style.label = "123456789";
    wide.addLinear({-70 * point, 0, 0}, {70 * point, 0, 0}, {0, 40 * point, 0}, style);
    clear();
    ASSERT_TRUE(wide.draw(canvas.getEye(camera, 1)));
    EXPECT_TRUE(isWritten({-6, 42, 6, 60}) && !isWritten({70, 0, 85, 85}));
    Dimensions3 dimensions(probe);
    const DimensionStyle faintStyle{.behind = Behind::Fade};
    const auto hidden = dimensions.addLinear({-1, 0, -1}, {1, 0, -1}, {0, 0.1, 0}),
               faint = dimensions.addLinear({-1, 0, -1}, {1, 0, -1}, {0, 0.1, 0}, faintStyle),
               endOn = dimensions.addLinear({0, 0, 1}, {0, 0, 2}, {0, 0, 0}),
               behind = dimensions.addLinear({-1, 0, 7}, {1, 0, 7}, {0, 0.1, 0}),
               through = dimensions.addLinear({0.5, 0, 1}, {0.5, 0, 9}, {0, 0, 0}, {.behind = Behind::Show}),
               angle = dimensions.addAngle({0, 0, 1}, {1, 0, 0}, {0, 1, 0}, 0.5),
               cut = dimensions.addLinear({-1, 0.2, 1}, {1.5, 0.2, 1}, {0, 0.1, 0});
    Eye eye = canvas.getEye(camera, 1);
    eye.setClipping(Clipping({1.2, 0, 0}, {-1, 0, 0}));
    drawScene();
    ASSERT_TRUE(dimensions.draw(eye));
    EXPECT_TRUE(dimensions.isShown(faint) && dimensions.isFaint(faint) && dimensions.isShown(through) &&
                dimensions.isShown(angle) && !dimensions.isFaint(angle));
    EXPECT_FALSE(dimensions.isShown(hidden) || dimensions.isShown(endOn) || dimensions.isShown(behind) ||
                 dimensions.isShown(cut));
    EXPECT_TRUE(dimensions.setWanted(angle, false) && !dimensions.setWanted(99, false));
    ASSERT_TRUE(dimensions.draw(eye));
    EXPECT_FALSE(dimensions.isShown(angle));
}

// What was in a context that is gone is there again, and nothing of it is used.
TEST_F(SignsInSpaceTest, SignsLookTheSameInAnotherContext)
{
    Labels3 labels(probe);
    Dimensions3 dimensions(probe);
    labels.add({0, 0.5, 1}, "Front", {.paint = "#ffffff"}, {.offset = {20, 10}, .leader = Leader()});
    labels.add({0, 0, -1}, "Back", {.paint = "#ffffff"}, {.behind = Behind::Fade});
    dimensions.addLinear({-1, -1, 0}, {1, -1, 0}, {0, -0.2, 0}, {.paint = "#ffffff"});
    const auto draw = [&]
    {
        clear();
        drawScene();
        EXPECT_TRUE(labels.draw(canvas.getEye(camera, 1)) && dimensions.draw(canvas.getEye(camera, 1)));
        std::vector<int> sums;
        for (int x = 0; x < cSide; x += 2)
            for (int y = 0; y < cSide; y += 2)
                sums.push_back(pixel(x, y).green + pixel(x, y).red);
        return sums;
    };
    draw();
    const std::vector<int> before = draw();
    for (int i = 0; i < 3; ++i)
    {
        drawScene(); // with answers under way
        ASSERT_TRUE(context().replace());
        EXPECT_TRUE(draw() == before) << i;
    }
}

class WallView : public OrbitView
{
public:
    WallView()
    {
        control().setGizmo(OrbitControl::Corner::None);
        labels.add({0, 0, -1}, "Behind", {}, {});
        dimensions.addLinear({-1, 0, 1}, {1, 0, 1}, {0, 0.2, 0});
        fit({{-1, -1, -1}, {1, 1, 1}});
        camera().show(OrbitCamera::Side::Front);
        createContext();
    }
    void drawScene(const Eye& eye) override
    {
        if (hasWall)
            wall.draw(eye, 0);
    }
    void drawOver(const Eye& eye) override
    {
        ++nFrames;
        labels.draw(eye);
        dimensions.draw(eye);
    }

    Labels3 labels{depthProbe()};
    Dimensions3 dimensions{depthProbe()};
    Wall wall;
    int nFrames = 0;
    bool hasWall = true;
};

// A frame more where an answer has changed, and then none; nothing is uploaded in one that changes nothing.
TEST(SignsInViewTest, ComesToRest)
{
    gui::Application app{0, nullptr};
    gui::Window window("Signs", {300, 200});
    WallView view;
    ASSERT_TRUE(window.show(view));
    const auto rest = [&]
    {
        view.nFrames = 0;
        int nTurns = 0;
        for (; (nTurns < 10 || !view.depthProbe().isSettled()) && nTurns < 1000; ++nTurns)
            app.step(0.005);
        EXPECT_LT(nTurns, 1000);
        return view.nFrames;
    };
    EXPECT_LE(rest(), 2);
    const Labels3::ID label = 1;
    EXPECT_FALSE(view.labels.isShown(label));
    EXPECT_TRUE(view.dimensions.isShown(1));
    EXPECT_EQ(rest(), 0);
    gui::gl::FrameLedger::start(gui::gl::FrameLedger::Times::CPU);
    for (int i = 0; i < 3; ++i)
    {
        view.reDraw();
        EXPECT_EQ(rest(), 1);
    }
    EXPECT_EQ(gui::gl::FrameLedger::getLast().nUploads, 0U);
    gui::gl::FrameLedger::stop();
    view.hasWall = false;
    view.reDraw();
    const int nFrames = rest(); // one that finds it out, one that shows it; a driver may be as quick as the first
    EXPECT_TRUE(nFrames == 2 || (nFrames == 1 && !test::OffscreenGL::isDriver("llvmpipe"))) << nFrames;
    EXPECT_TRUE(view.labels.isShown(label));
    view.camera().turn({0, 0, 0}, 1, 0);
    view.reDraw();
    EXPECT_EQ(rest(), 1);
}

} // namespace
