#include "support/OffscreenGL.h"

#include <gui/Application.h>
#include <gui/InputDevice.h>
#include <gui/draw/DrawingView.h>

#include <epoxy/gl.h>

#include <gtest/gtest.h>

#include <string>

namespace
{

using namespace gui::draw;
using gui::InputDevice;

InputDevice at(double x, double y, unsigned int modifiers = 0)
{
    const td::Point<double> point(x, y);
    return {point, point, point, modifiers, InputDevice::Type::Mouse, InputDevice::Button::Primary};
}

class PlanView : public DrawingView
{
public:
    PlanView()
        : DrawingView(false)
    {
        drawing().setTag(drawing().fill(Path().addRect({0, 0, 10, 10}), "#204060"), 1);
        drawing().setTag(drawing().fill(Path().addRect({30, 0, 40, 10}), "#204060"), 2);
        onResize({400, 200});
    }
    using DrawingView::onBoxDrawn;
    using DrawingView::onCursorDragged;
    using DrawingView::onCursorExited;
    using DrawingView::onCursorMoved;
    using DrawingView::onDraw;
    using DrawingView::onKeyPressed;
    using DrawingView::onPrimaryButtonDblClick;
    using DrawingView::onPrimaryButtonPressed;
    using DrawingView::onPrimaryButtonReleased;
    using DrawingView::onScroll;
    using DrawingView::onZoom;
    using DrawingView::prepareNextFrame;

    std::string told;

private:
    void onShapeEntered(Drawing::ID shape) override { told += "e" + std::to_string(drawing().getTag(shape)); }
    void onShapeClicked(Drawing::ID shape) override
    {
        told += (gui::isControlKeyPressed(getModifiers()) ? "+c" : "c") + std::to_string(drawing().getTag(shape));
        EXPECT_EQ(getPointer(), clickedAt);
    }

public:
    std::optional<td::Point<double>> clickedAt;
};

// A click that was a drag, one after a double click, the same shape told twice, a shape that stays entered; a click of
// a pointer that has not moved there, keys that were held before.
TEST(DrawingViewTest, TellsWhatIsPointedAtAndClicked)
{
    PlanView view;
    ASSERT_TRUE(view.showAll(0)); // ten points a unit; the rectangles stand in the middle, from 50 to 150
    view.onCursorMoved(at(50, 100));
    view.onCursorMoved(at(60, 100));
    view.onCursorMoved(at(200, 100));
    view.onCursorMoved(at(350, 100));
    view.onCursorExited(at(450, 100));
    EXPECT_EQ(view.told, "e1e0e2e0");

    view.told.clear();
    view.onPrimaryButtonPressed(at(50, 100));
    view.onCursorDragged(at(52, 101));
    view.clickedAt = td::Point<double>(52, 101);
    view.onPrimaryButtonReleased(at(52, 101));
    view.onPrimaryButtonPressed(at(350, 100));
    const double before = view.getCenter().x;
    view.onCursorDragged(at(370, 100));
    EXPECT_EQ(view.getCenter().x, before - 2) << "the plane comes along";
    view.onCursorDragged(at(350, 100));
    view.onPrimaryButtonReleased(at(350, 100));
    view.onPrimaryButtonDblClick(at(52, 100));
    EXPECT_TRUE(view.isFlying());
    view.onPrimaryButtonReleased(at(52, 100));
    EXPECT_EQ(view.told, "e1c1e2");
    EXPECT_EQ(view.getPointer(), td::Point<double>(52, 100));

    view.told.clear();
    const auto control = static_cast<unsigned int>(gui::KeyModifier::Cmd);
    view.clickedAt = td::Point<double>(350, 90);
    view.onPrimaryButtonPressed(at(350, 91));
    view.onPrimaryButtonReleased(at(350, 90, control));
    view.onPrimaryButtonPressed(at(350, 90, control));
    view.onPrimaryButtonReleased(at(350, 90));
    EXPECT_EQ(view.told, "+c2c2");

    // Two fingers, the first of which has pressed.
    view.onPrimaryButtonPressed(at(350, 90));
    view.onZoom({{350, 90}, {350, 90}, {350, 90}, 0, InputDevice::Type::Gesture, InputDevice::Button::None});
    view.onPrimaryButtonReleased(at(350, 90));
    EXPECT_EQ(view.told, "+c2c2");
}

// A box that pans, ends in a click, goes on after its end or Escape, or is where the plane was when it began.
TEST(DrawingViewTest, FliesToABoxThatIsDrawnWithShift)
{
    PlanView view;
    ASSERT_TRUE(view.showAll(0));
    const auto shift = static_cast<unsigned int>(gui::KeyModifier::Shift);
    const auto press = [&] { view.onPrimaryButtonPressed(at(50, 60, shift)); };
    press();
    view.onCursorDragged(at(150, 160, shift));
    EXPECT_TRUE(view.isAtHome());
    view.onKeyPressed(gui::Key(0, 0, 1, static_cast<unsigned char>(gui::Key::Virtual::Escape)));
    view.onPrimaryButtonReleased(at(150, 160, shift));
    press();
    view.clickedAt = td::Point<double>(51, 60);
    view.onPrimaryButtonReleased(at(51, 60, shift));
    EXPECT_EQ(view.told.back(), '1') << "a click";
    EXPECT_FALSE(view.isFlying());
    press();
    view.setCenter(view.getCenter() + td::Point<double>(2, 0));
    view.onCursorDragged(at(150, 160, shift));
    view.onPrimaryButtonReleased(at(150, 160, shift));
    EXPECT_TRUE(view.isFlying());
    while (view.prepareNextFrame())
        continue;
    EXPECT_NEAR(view.getCenter().x, (5 + 17) / 2., 1e-9);
    EXPECT_NEAR(view.getZoom(), 200 / 10., 1e-9);
}

using DrawingViewGLTest = test::OffscreenGL;

// A home that the first frame takes away; a view that moves under a pointer at rest; what is over it or beside it found
// instead; a double click beside all shapes that goes nowhere.
TEST_F(DrawingViewGLTest, TellsWhatComesUnderThePointer)
{
    PlanView view;
    view.overlay().fill(Path().addRect({0, 0, 40, 10}), "#ff000080");
    EXPECT_EQ(view.getZoom(), (400 - 60) / 40.) << "all of it, before the first frame";
    ASSERT_TRUE(context().resize({400, 200}));
    glViewport(0, 0, 400, 200);
    ASSERT_TRUE(view.setHome({0, 0, 40, 20}));
    view.onDraw({});
    EXPECT_EQ(view.getZoom(), 10);
    EXPECT_NE(pixel(50, 50), pixel(200, 50));
    EXPECT_EQ(pixel(50, 50), pixel(350, 50));
    EXPECT_EQ(pixel(50, 150), pixel(200, 150));
    EXPECT_NE(pixel(50, 50), pixel(50, 150));
    view.onCursorMoved(at(102, 150));
    EXPECT_EQ(view.told, "e1") << "two points beside it";
    view.setReach(0);
    view.setCenter({45, 10}, 10);
    EXPECT_EQ(view.told, "e1");
    view.onDraw({});
    EXPECT_EQ(view.told, "e1e2") << "and not the other one on the way";
    view.setCenter({50, 10});
    view.onDraw({});
    EXPECT_EQ(view.told, "e1e2e0");
    view.onPrimaryButtonDblClick(at(102, 150));
    EXPECT_TRUE(view.isFlying());
}

// What moves the wrong one of two views.
TEST_F(DrawingViewGLTest, AnOverviewShowsAndMovesAnotherView)
{
    PlanView plan, overview;
    overview.setOverviewOf(&plan);
    ASSERT_TRUE(overview.setHome({0, 0, 40, 20}));
    plan.setCenter({20, 10}, 40); // sees 10 by 5 units
    ASSERT_TRUE(context().resize({400, 200}));
    glViewport(0, 0, 400, 200);
    overview.onDraw({});
    EXPECT_EQ(pixel(150, 100), pixel(250, 100)) << "both edges";
    EXPECT_NE(pixel(150, 100), pixel(160, 100));
    overview.onPrimaryButtonPressed(at(100, 100));
    EXPECT_TRUE(plan.getCenter().x == 10 && plan.getCenter().y == 10);
    overview.onCursorDragged(at(300, 50));
    EXPECT_TRUE(plan.getCenter().x == 30 && plan.getCenter().y == 15);
    overview.onPrimaryButtonReleased(at(300, 50));
    overview.onPrimaryButtonDblClick(at(50, 150));
    InputDevice wheel = at(100, 100);
    gui::InputDeviceHelper(&wheel).setScale(2);
    EXPECT_TRUE(overview.onScroll(wheel) && overview.onZoom(wheel));
    EXPECT_TRUE(overview.isAtHome() && !overview.isFlying());
    overview.setOverviewOf(nullptr);
    EXPECT_TRUE(overview.onZoom(wheel) && !overview.isAtHome());
    EXPECT_EQ(plan.getCenter().x, 5) << "where the last press was";
}

} // namespace
