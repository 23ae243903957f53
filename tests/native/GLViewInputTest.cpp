#include "GLViewFixture.h"

#include <gui/gl/port/Zav.h>

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <memory>
#include <sstream>
#include <utility>
#include <vector>

namespace
{

using gui::gl::ButtonEvent;
using gui::gl::GLView;
using gui::gl::MotionEvent;
using test::RecordingView;
using Lines = std::vector<std::string>;

class GLViewInputTest : public test::GLViewFixture
{
protected:
    GLViewInputTest() { GLView::createView(neighbour.get(), nullptr, 0, context(), other.factory()); }

    test::FakeWindow other{journal};
    std::unique_ptr<RecordingView> neighbour = std::make_unique<RecordingView>(other);

    /// What the view was told, "" for nothing.
    std::string told()
    {
        const Lines lines = journal.take();
        EXPECT_LE(lines.size(), 1u);
        return lines.empty() ? "" : lines.front();
    }
    /// That, and whether it used the event up.
    std::pair<std::string, bool> result(bool isUsedUp) { return {told(), isUsedUp}; }
};

using Result = std::pair<std::string, bool>;

constexpr auto cLeft = ButtonEvent::Button::Left;
constexpr auto cRight = ButtonEvent::Button::Right;
constexpr unsigned short cPrimary = 0x04;
constexpr unsigned short cSecondary = 0x10;

// One event of each kind that a mask's bit lets through.
struct Kind
{
    unsigned short bit;
    const char* callback;
    std::function<void(GLView&)> send;
};

Kind motion(unsigned short bit, const char* callback, MotionEvent::Kind kind)
{
    return {bit, callback, [=](GLView& v) { v.onMotion({kind, 0, {1, 2}}); }};
}

Kind button(unsigned short bit, const char* callback, const ButtonEvent& event)
{
    return {bit, callback, [=](GLView& v) { v.onButton(event); }};
}

Kind wheel(const char* callback, unsigned int modifiers)
{
    return {0x80, callback, [=](GLView& v) { v.onWheel({0, 1, modifiers, {1, 2}}); }};
}

Kind key(const char* callback, bool isDown)
{
    return {0x100, callback, [=](GLView& v) { v.onKey({isDown, 0, 'a', 0}); }};
}

const std::vector<Kind>& kinds()
{
    static const std::vector<Kind> list = {
        motion(0x01, "onCursorEntered", MotionEvent::Kind::Entered),
        motion(0x01, "onCursorExited", MotionEvent::Kind::Exited),
        motion(0x20, "onCursorMoved", MotionEvent::Kind::Moved),
        motion(0x40, "onCursorDragged", MotionEvent::Kind::Dragged),
        button(0x04, "onPrimaryButtonPressed", {cLeft, true, true, 1, 0, {1, 2}}),
        button(0x04, "onPrimaryButtonDblClick", {cLeft, true, true, 2, 0, {1, 2}}),
        button(0x04, "onPrimaryButtonReleased", {cLeft, false, false, 1, 0, {1, 2}}),
        button(0x10, "onSecondaryButtonPressed", {cRight, true, false, 1, 0, {1, 2}}),
        button(0x10, "onSecondaryButtonReleased", {cRight, false, false, 1, 0, {1, 2}}),
        button(0x10, "onSecondaryButtonPressed", {cLeft, true, false, 1, 4, {1, 2}}),
        button(0x10, "onSecondaryButtonReleased", {cLeft, false, false, 1, 4, {1, 2}}),
        button(0x200, "onOtherButtonPressed", {ButtonEvent::Button::Middle, true, false, 1, 0, {1, 2}}),
        button(0x200, "onOtherButtonReleased", {ButtonEvent::Button::Forward, false, true, 1, 4, {1, 2}}),
        motion(0x400, "onOtherDragged", MotionEvent::Kind::OtherDragged),
        wheel("onZoom", 16),
        wheel("onScroll", 0),
        {0x80, "onZoom",
         [](GLView& v) {
             v.onMagnification({1, 0});
         }},
        key("onKeyPressed", true),
        key("onKeyReleased", false),
    };
    return list;
}

TEST_F(GLViewInputTest, OnlyWhatTheMaskNamesArrives)
{
    for (const Kind& kind : kinds())
    {
        RecordingView with(window);
        GLView* pNative = show(with, kind.bit);
        kind.send(*pNative);
        ASSERT_FALSE(journal.take().empty()) << kind.callback;
        with.release();

        RecordingView without(window);
        pNative = show(without, static_cast<unsigned short>(cAllEvents & ~kind.bit));
        without.handles = true;
        kind.send(*pNative);
        for (const std::string& line : journal.take())
            EXPECT_TRUE(line.starts_with("cursor ")) << kind.callback << ": " << line;
        EXPECT_EQ(pNative->acceptsFirstResponder(), kind.bit != 0x100);
    }
}

TEST_F(GLViewInputTest, HandlersHaveTheirContextAndMayEndTheView)
{
    std::vector<std::pair<const char*, std::function<void(GLView&)>>> cases = {
        {"prepareNextFrame", [](GLView& v) { v.onFrameTick(); }},   {"onDraw", [](GLView& v) { v.drawNow(); }},
        {"onGeometryChange", [](GLView& v) { v.sizeChanged(); }},   {"onResize", [](GLView& v) { v.sizeChanged(); }},
        {"onGeometryChange", [](GLView& v) { v.enteredWindow(); }}, {"onResize", [](GLView& v) { v.enteredWindow(); }},
        {"onResize", [](GLView& v) { v.scaleChanged(); }},          {"onFocusIn", [](GLView& v) { v.onFocus(true); }},
        {"onFocusOut", [](GLView& v) { v.onFocus(false); }},
    };
    for (const Kind& kind : kinds())
        cases.emplace_back(kind.callback, kind.send);
    for (const bool byWindow : {false, true})
    {
        for (const auto& [callback, act] : cases)
        {
            SCOPED_TRACE(callback);
            auto pView = std::make_unique<RecordingView>(window);
            GLView* const pNative = show(*pView, cAllEvents, true);
            pView->registerForFocusEvents();
            pView->in[callback] = [&pView, pNative, byWindow]
            {
                if (byWindow)
                    pNative->windowClosed();
                else
                    pView.reset();
            };
            window.size = {30, 40};
            window.scale = window.scale > 1 ? 1.0f : 2.0f;
            neighbour->makeCurrentContext();
            act(*pNative);
            const Lines lines = journal.take();
            ASSERT_GE(lines.size(), 2u);
            EXPECT_EQ(lines.back(), "surface gone");
            for (const std::string& line : lines)
                EXPECT_FALSE(line.ends_with("in another context")) << line;
            if (!byWindow)
                continue;
            act(*pNative);
            EXPECT_TRUE(journal.said({}));
        }
    }
}

TEST_F(GLViewInputTest, Clicks)
{
    constexpr unsigned int cBoth = cPrimary | cSecondary;
    const struct
    {
        unsigned int wanted;
        ButtonEvent event;
        const char* callback; // null for none
        int nEvents;
    } cases[] = {
        {cPrimary, {cLeft, true, true, 1, 0, {10, 20}}, "onPrimaryButtonPressed", 1},
        {cPrimary, {cLeft, false, false, 1, 8, {-5, 320}}, "onPrimaryButtonReleased", 1},
        {cPrimary, {cLeft, true, true, 2, 1, {10, 20}}, "onPrimaryButtonDblClick", 1},
        {cPrimary, {cLeft, false, false, 2, 0, {10, 20}}, "onPrimaryButtonReleased", 2},
        {cPrimary, {cLeft, true, true, 3, 0, {10, 20}}, "onPrimaryButtonPressed", 3},
        // With Control it is the secondary button's, but for a press that is seen down.
        {cBoth, {cLeft, true, true, 1, 4, {10, 20}}, "onPrimaryButtonPressed", 1},
        {cBoth, {cLeft, true, false, 2, 4, {10, 20}}, "onSecondaryButtonPressed", 2},
        {cBoth, {cLeft, false, false, 2, 4, {10, 20}}, "onSecondaryButtonReleased", 2},
        {cPrimary, {cLeft, true, false, 1, 4, {10, 20}}, nullptr, 0},
        {cPrimary, {cLeft, false, false, 1, 4, {10, 20}}, nullptr, 0},
        // A press that is over already.
        {cBoth, {cLeft, true, false, 1, 0, {10, 20}}, nullptr, 0},
        {cSecondary, {cRight, true, true, 2, 0, {10, 20}}, "onSecondaryButtonPressed", 2},
        {cSecondary, {cRight, false, false, 1, 20, {10, 20}}, "onSecondaryButtonReleased", 1},
    };
    for (const auto& [wanted, event, callback, nEvents] : cases)
    {
        std::ostringstream expected;
        if (callback != nullptr)
            expected << callback << " (" << event.point.x << ", " << event.point.y << ") modifiers " << event.modifiers
                     << " type 1 button " << (callback[2] == 'P' ? 1 : 2) << " events " << nEvents << " scale 1";
        RecordingView view(window);
        GLView* const pNative = show(view, static_cast<unsigned short>(wanted));
        pNative->onButton(event);
        EXPECT_EQ(told(), expected.str());
    }
}

TEST_F(GLViewInputTest, Motion)
{
    RecordingView view(window);
    GLView* const pNative = show(view, 0x661);
    EXPECT_EQ(pNative->getTrackingOptions(), 0x287u);
    const auto move = [&](MotionEvent::Kind kind, ButtonEvent::Button button = cLeft)
    {
        pNative->onMotion({kind, 2, {-3.5, 20}, button});
        return told();
    };
    EXPECT_EQ(move(MotionEvent::Kind::Moved), "onCursorMoved (-3.5, 20) modifiers 2 type 1 button 0 events 1 scale 1");
    EXPECT_EQ(move(MotionEvent::Kind::Dragged),
              "onCursorDragged (-3.5, 20) modifiers 2 type 1 button 1 events 1 scale 1");
    const std::pair<ButtonEvent::Button, const char*> others[] = {{cRight, "2"},
                                                                  {ButtonEvent::Button::Middle, "3"},
                                                                  {ButtonEvent::Button::Back, "4"},
                                                                  {ButtonEvent::Button::Forward, "5"},
                                                                  {ButtonEvent::Button(9), "0"}};
    for (const auto& [button, number] : others)
    {
        const std::string rest = std::string(" (-3.5, 20) modifiers 2 type 1 button ") + number + " events ";
        EXPECT_EQ(move(MotionEvent::Kind::OtherDragged, button), "onOtherDragged" + rest + "1 scale 1");
        pNative->onButton({button, true, true, 3, 2, {-3.5, 20}});
        EXPECT_EQ(told(), button == cRight ? "" : "onOtherButtonPressed" + rest + "3 scale 1");
    }
    EXPECT_EQ(move(MotionEvent::Kind::Exited),
              "onCursorExited (-3.5, 20) modifiers 2 type 1 button 0 events 1 scale 1");
    pNative->onMotion({MotionEvent::Kind::Entered, 2, {-3.5, 20}});
    EXPECT_TRUE(journal.said({"cursor 1", "onCursorEntered (-3.5, 20) modifiers 2 type 1 button 0 events 1 scale 1"}));
}

TEST_F(GLViewInputTest, AScaleIsTheViewsAlone)
{
    RecordingView view(window);
    GLView* const pNative = show(view);
    zav::setScale(&view, 2);
    EXPECT_EQ(zav::getScale(&view), 2);
    pNative->onButton({cLeft, true, true, 1, 0, {10, 20}});
    pNative->drawNow();
    pNative->onFrameTick();
    EXPECT_TRUE(
        journal.said({"needs display", "onPrimaryButtonPressed (5, 10) modifiers 0 type 1 button 1 events 1 scale 1",
                      "onDraw 0 0 100 50", "flush", "onDraw 0 0 200 100", "flush"}));
    zav::setScale(&view, 0);
    zav::printMe(&view);
    zav::printMeToPDF(&view, "view.pdf");
    EXPECT_TRUE(asserts.caught({"scale > 0 && std::isfinite(scale)", "false", "false"}));
    EXPECT_EQ(zav::getScale(&view), 2);
    zav::resetScaling(&view);
    EXPECT_EQ(zav::getScale(&view), 1);
    EXPECT_TRUE(journal.said({}));
}

TEST_F(GLViewInputTest, WheelAndGesture)
{
    RecordingView view(window);
    GLView* const pNative = show(view, 0x80);
    const auto wheel = [&](double dx, double dy, unsigned int modifiers) {
        return result(pNative->onWheel({dx, dy, modifiers, {10, 20}}));
    };
    EXPECT_EQ(wheel(0, 2, 16), Result("onZoom (10, 20) modifiers 16 type 1 button 128 events 1 scale 1.024", false));
    view.handles = true;
    EXPECT_EQ(wheel(5, -1, 24), Result("onZoom (10, 20) modifiers 24 type 1 button 128 events 1 scale 0.988", true));
    view.handles = false; // a scroll is used up whatever the view says
    EXPECT_EQ(wheel(3, 0, 16),
              Result("onScroll at (10, 20) (4.5, 0) modifiers 16 type 1 button 128 events 1 scale 1", true));
    EXPECT_EQ(wheel(0, -2, 8),
              Result("onScroll at (10, 20) (0, -15) modifiers 8 type 1 button 128 events 1 scale 1", true));
    EXPECT_EQ(wheel(0, 0, 16), Result("", false));
    // However far it is turned, and whatever a device tells.
    for (const double dy : {-80.0, -1e300, std::nan("")})
        EXPECT_EQ(wheel(0, dy, 16),
                  Result("onZoom (10, 20) modifiers 16 type 1 button 128 events 1 scale 0.05", false));

    const std::pair<double, const char*> gestures[] = {{20, "1.2"}, {-20, "0.8"}, {5, "1.1"}, {-1e300, "0.8"}};
    for (const auto& [magnification, scale] : gestures)
    {
        pNative->onMagnification({magnification, 9});
        EXPECT_TRUE(
            journal.said({std::string("onZoom (100, 50) modifiers 9 type 2 button 0 events 1 scale ") + scale}));
    }
}

TEST_F(GLViewInputTest, KeysAreUsedUpByTheViewAlone)
{
    RecordingView view(window);
    GLView* const pNative = show(view, 0x100);
    const auto key = [&](bool isDown, unsigned short keyCode, unsigned short character) {
        return result(pNative->onKey({isDown, keyCode, character, 16}));
    };
    EXPECT_EQ(key(true, 0, 'a'), Result("onKeyPressed 97 virtual 0 modifiers 16", false));
    EXPECT_EQ(key(false, 0, 'a'), Result("onKeyReleased 97 virtual 0 modifiers 16", false));
    view.handles = true;
    EXPECT_EQ(key(true, 123, 0), Result("onKeyPressed 123 virtual 3 modifiers 16", true));
    EXPECT_EQ(key(false, 123, 0), Result("onKeyReleased 31488 virtual 0 modifiers 16", true));
}

TEST_F(GLViewInputTest, FocusArrivesOnceItIsAskedFor)
{
    RecordingView view(window);
    GLView* pNative = show(view, 0x100);
    pNative->onFocus(true);
    EXPECT_TRUE(journal.said({}));
    view.registerForFocusEvents();
    pNative->onFocus(false);
    pNative->onFocus(true);
    EXPECT_TRUE(journal.said({"onFocusOut", "onFocusIn"}));
    view.release();
    journal.take();

    // A view that takes no keys is no first responder.
    RecordingView deaf(window);
    pNative = show(deaf, cAllEvents & ~0x100);
    deaf.registerForFocusEvents();
    pNative->onFocus(true);
    EXPECT_TRUE(journal.said({}));
}

TEST_F(GLViewInputTest, ACursorShowsWhenItChangesOrOnEntry)
{
    using gui::Cursor;
    RecordingView view(window);
    GLView* const pNative = show(view, 0);
    const auto enter = [&] { pNative->onMotion({MotionEvent::Kind::Entered, 0, {}}); };
    enter();
    EXPECT_TRUE(journal.said({"cursor 1"}));
    view.setCursor(Cursor::Type::Default, true); // the one it has from the start
    view.setCursor(Cursor::Type::Pan, false);
    view.setCursor(Cursor::Type::Pan, true);
    EXPECT_TRUE(journal.said({}));
    enter();
    EXPECT_TRUE(journal.said({"cursor 3"}));
    view.setCursor(Cursor::Type::Default, true);
    view.setCursor(Cursor::Type::Default, true);
    EXPECT_TRUE(journal.said({"cursor 1"}));
}

} // namespace
