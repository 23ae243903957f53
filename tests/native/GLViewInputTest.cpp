#include "GLViewFixture.h"

#include <gui/gl/ViewLayer.h>
#include <gui/gl/port/Fingers.h>
#include <gui/gl/port/Zav.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <memory>
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

// One event of each kind that a mask's bit lets through.
struct Kind
{
    unsigned short bit;
    const char* callback;
    std::function<void(GLView&)> send;
    const char* details = "";
};

Kind motion(unsigned short bit, const char* callback, MotionEvent::Kind kind)
{
    return {bit, callback, [=](GLView& v) { v.onMotion({kind, 2, {-3.5, 20}}); }, " -3.5,20+Caps"};
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
        motion(0x01, "enter", MotionEvent::Kind::Entered),
        motion(0x01, "exit", MotionEvent::Kind::Exited),
        motion(0x20, "move", MotionEvent::Kind::Moved),
        motion(0x40, "drag", MotionEvent::Kind::Dragged),
        button(0x04, "press", {cLeft, true, true, 1, 0, {1, 2}}),
        button(0x04, "double", {cLeft, true, true, 2, 0, {1, 2}}),
        button(0x04, "release", {cLeft, false, false, 1, 0, {1, 2}}),
        button(0x10, "press2", {cRight, true, false, 1, 0, {1, 2}}),
        button(0x10, "release2", {cRight, false, false, 1, 0, {1, 2}}),
        button(0x10, "press2", {cLeft, true, false, 1, 4, {1, 2}}),
        button(0x10, "release2", {cLeft, false, false, 1, 4, {1, 2}}),
        button(0x200, "press3", {ButtonEvent::Button::Middle, true, false, 1, 0, {1, 2}}),
        button(0x200, "release5", {ButtonEvent::Button::Forward, false, true, 1, 4, {1, 2}}),
        motion(0x400, "drag1", MotionEvent::Kind::OtherDragged),
        wheel("zoom", 16),
        wheel("scroll", 0),
        {0x80, "pinch",
         [](GLView& v) {
             v.onMagnification({1, 0});
         }},
        {0x800, "drops",
         [](GLView& v) {
             v.onDrop({{"/a", "", "/b"}, "not this", 1, {8, 6}});
         },
         " /a /b at 8,6+Shift"},
        {0x800, "drops",
         [](GLView& v) {
             v.onDrop({{""}, "a\xFF", 0, {8, 6}});
         },
         " 'a\xEF\xBF\xBD' at 8,6"},
        key("key", true),
        key("up key", false),
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
        const Lines lines = journal.take();
        ASSERT_FALSE(lines.empty()) << kind.callback;
        EXPECT_TRUE(lines.back().starts_with(std::string(kind.callback) + kind.details)) << lines.back();
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
        {"onResize", [](GLView& v) { v.scaleChanged(); }},          {"focus", [](GLView& v) { v.onFocus(true); }},
        {"no focus", [](GLView& v) { v.onFocus(false); }},          {"text", [](GLView& v) { v.onText({"a"}); }},
        {"composes", [](GLView& v) {
             v.onComposition({"a"}); }},
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
            pView->startTextInput();
            // Whatever the callback before it did.
            for (const char* const before : {"prepareNextFrame", "onGeometryChange"})
                pView->in[before] = [this] { neighbour->makeCurrentContext(); };
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
    constexpr unsigned short cPrimary = 0x04, cSecondary = 0x10, cBoth = cPrimary | cSecondary;
    const struct
    {
        unsigned short wanted;
        ButtonEvent event;
        const char* line;
    } cases[] = {
        {cPrimary, {cLeft, true, true, 1, 0, {10, 20}}, "press 10,20 x1"},
        {cPrimary, {cLeft, false, false, 1, 8, {-5, 320}}, "release -5,320 x1+Alt"},
        {cPrimary, {cLeft, true, true, 2, 1, {10, 20}}, "double 10,20 x1+Shift"},
        {cPrimary, {cLeft, false, false, 2, 0, {10, 20}}, "release 10,20 x2"},
        {cPrimary, {cLeft, true, true, 3, 0, {10, 20}}, "press 10,20 x3"},
        // With Control it is the secondary button's, but for a press that is seen down.
        {cBoth, {cLeft, true, true, 1, 4, {10, 20}}, "press 10,20 x1+Ctrl"},
        {cBoth, {cLeft, true, false, 2, 4, {10, 20}}, "press2 10,20 x2+Ctrl"},
        {cBoth, {cLeft, false, false, 2, 4, {10, 20}}, "release2 10,20 x2+Ctrl"},
        {cPrimary, {cLeft, true, false, 1, 4, {10, 20}}, ""},
        {cPrimary, {cLeft, false, false, 1, 4, {10, 20}}, ""},
        // A press that is over already.
        {cBoth, {cLeft, true, false, 1, 0, {10, 20}}, ""},
        {cSecondary, {cRight, true, true, 2, 0, {10, 20}}, "press2 10,20 x2"},
        {cSecondary, {cRight, false, false, 1, 20, {10, 20}}, "release2 10,20 x1+Ctrl+Cmd"},
    };
    for (const auto& [wanted, event, line] : cases)
    {
        RecordingView view(window);
        show(view, wanted)->onButton(event);
        EXPECT_EQ(told(), line);
    }
}

TEST_F(GLViewInputTest, OtherButtonsDragInTheirOwnNames)
{
    RecordingView view(window);
    GLView* const pNative = show(view, 0x661);
    const std::pair<ButtonEvent::Button, const char*> others[] = {{cRight, "2"},
                                                                  {ButtonEvent::Button::Middle, "3"},
                                                                  {ButtonEvent::Button::Back, "4"},
                                                                  {ButtonEvent::Button::Forward, "5"},
                                                                  {ButtonEvent::Button(9), "0"}};
    for (const auto& [button, number] : others)
    {
        pNative->onMotion({MotionEvent::Kind::OtherDragged, 2, {-3.5, 20}, button});
        EXPECT_EQ(told(), std::string("drag") + number + " -3.5,20+Caps");
        pNative->onButton({button, true, true, 3, 2, {-3.5, 20}});
        EXPECT_EQ(told(), button == cRight ? "" : std::string("press") + number + " -3.5,20+Caps");
    }
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
        journal.said({"needs display", "press 5,10 x1", "onDraw 0 0 100 50", "flush", "onDraw 0 0 200 100", "flush"}));
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
    EXPECT_EQ(wheel(0, 2, 16), Result("zoom 10,20 by 1.024+Cmd", false));
    view.handles = true;
    EXPECT_EQ(wheel(5, -1, 24), Result("zoom 10,20 by 0.988+Alt+Cmd", true));
    view.handles = false; // a scroll is used up whatever the view says
    EXPECT_EQ(wheel(3, 0, 16), Result("scroll 4.5,0+Cmd", true));
    EXPECT_EQ(view.place, td::Point<double>(10, 20));
    EXPECT_EQ(wheel(0, -2, 8), Result("scroll 0,-15+Alt", true));
    EXPECT_EQ(wheel(0, 0, 16), Result("", false));
    // However far it is turned, and whatever a device tells.
    for (const double dy : {-80.0, -1e300, std::nan("")})
        EXPECT_EQ(wheel(0, dy, 16), Result("zoom 10,20 by 0.05+Cmd", false));

    const std::pair<double, const char*> gestures[] = {{20, "1.2"}, {-20, "0.8"}, {5, "1.1"}, {-1e300, "0.8"}};
    for (const auto& [magnification, scale] : gestures)
    {
        pNative->onMagnification({magnification, 9});
        EXPECT_TRUE(journal.said({std::string("pinch 100,50 by ") + scale + "+Shift+Alt"}));
    }
}

// What toolkits tell of fingers on a screen.
TEST_F(GLViewInputTest, FingersAreAButtonOrAPinch)
{
    RecordingView view(window);
    const auto pClient = std::make_shared<gui::gl::NativeSurfaceClient*>(show(view));
    gui::gl::Fingers fingers;
    const std::pair<std::vector<td::Point<double>>, const char*> steps[] = {
        {{{10, 20}}, "press 10,20 x1"},
        {{{30, 20}}, "drag 30,20"},
        {{{30, 20}, {70, 20}}, "release 30,20 x1"}, // and a pinch begins
        {{{30, 20}, {110, 20}}, "pinch 100,50 by 1.02"},
        {{{110, 20}}, ""},
        {{{50, 20}}, ""},
        {{}, ""},
        {{{5, 6}}, "press 5,6 x1"},
        {{}, "release 5,6 x1"},
    };
    for (const auto& [down, line] : steps)
    {
        fingers.change(down, 0, pClient);
        EXPECT_EQ(told(), line);
    }
}

TEST_F(GLViewInputTest, KeysAreUsedUpByTheViewAlone)
{
    RecordingView view(window);
    GLView* const pNative = show(view, 0x100);
    const auto key = [&](bool isDown, unsigned short keyCode, unsigned short character) {
        return result(pNative->onKey({isDown, keyCode, character, 16}));
    };
    EXPECT_EQ(key(true, 0, 'a'), Result("key 'a'+Cmd", false));
    EXPECT_EQ(key(false, 0, 'a'), Result("up key 'a'+Cmd", false));
    view.handles = true;
    EXPECT_EQ(key(true, 123, 0), Result("key virtual 3 code 123+Cmd", true));
    EXPECT_EQ(key(false, 123, 0), Result("up key 31488+Cmd", true));

    // Those that are held are let go with the keyboard: a camera would go on and on.
    for (const unsigned short character : {'b', 'a', 'c', 'a'})
        key(true, character, character);
    key(false, 'b', 'b');
    pNative->onFocus(false);
    pNative->onFocus(false);
    EXPECT_TRUE(journal.said({"up key 'c'+Cmd", "up key 'a'+Cmd"}));
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
    EXPECT_TRUE(journal.said({"no focus", "focus"}));
    view.release();
    journal.take();

    // A view that takes no keys is no first responder.
    RecordingView deaf(window);
    pNative = show(deaf, cAllEvents & ~0x100);
    deaf.registerForFocusEvents();
    pNative->onFocus(true);
    EXPECT_TRUE(journal.said({}));
}

TEST_F(GLViewInputTest, TextComesToViewsThatAskForIt)
{
    RecordingView view(window);
    GLView* const pNative = show(view);
    const auto text = [&](std::string_view typed, unsigned int modifiers = 0)
    {
        pNative->onText({typed, modifiers});
        return told();
    };
    const auto composed = [&](std::string_view typed, std::size_t start, std::size_t nSelected)
    {
        pNative->onComposition({typed, start, nSelected});
        return told();
    };
    EXPECT_EQ(text("a") + composed("a", 0, 0), "");
    view.startTextInput();
    view.startTextInput();
    zav::setScale(&view, 2);
    view.setTextInputRect({1, 2, 3, 4});
    view.setTextInputRect({std::nan(""), 2, 3, 4});
    zav::resetScaling(&view);
    EXPECT_TRUE(journal.said({"text input on", "needs display", "caret 2,4 6,8"}));
    EXPECT_EQ(text("é日"), "text é日");
    EXPECT_EQ(text("a\xFF\x1B\n"), "text a\uFFFD");
    EXPECT_EQ(text("\b"), "");
    // Commands are none, but for what AltGr makes.
    for (const unsigned int modifiers : {4U, 8U, 16U, 17U})
        EXPECT_EQ(text("+", modifiers), "");
    EXPECT_EQ(text("@", 32 | 8), "text @");
    EXPECT_EQ(text("A", 3), "text A");
    // Counted in characters, told in bytes.
    EXPECT_EQ(composed("aé日b", 1, 2), "composes a[é日]b");
    EXPECT_EQ(composed("aé", 9, SIZE_MAX), "composes aé[]");
    EXPECT_EQ(composed("", 0, 0), "composes []");
    EXPECT_EQ(composed("", 0, 0), "") << "it is over already";
    // Text ends it, and so does the loss of the keyboard.
    composed("a", 0, 0);
    EXPECT_EQ(text("b"), "text b");
    EXPECT_EQ(composed("", 0, 0), "");
    composed("a", 0, 0);
    pNative->onFocus(false);
    EXPECT_EQ(told(), "composes []");
    view.stopTextInput();
    EXPECT_TRUE(journal.said({"text input off"}));
    EXPECT_EQ(text("a"), "");
}

// Something over a view that is asked too late, or of whom nothing is left for the view; that takes what is none of its
// business; one, or a view, that goes in the midst of an event; focus that the view did not ask for.
TEST_F(GLViewInputTest, LayersAreAskedBeforeTheView)
{
    struct Layer : gui::gl::ViewLayer
    {
        Layer(gui::gl::View& view, std::string& told_, char name_)
            : ViewLayer(view)
            , told(told_)
            , name(name_)
        {
        }
        void onDraw(gui::gl::View&) override { act(); }
        bool onPointer(Pointer, const gui::InputDevice&) override { return act(); }
        bool onKeyPressed(const gui::Key&) override { return act(); }
        bool onTextInput(std::string_view) override { return act(); }
        bool onTextComposition(const gui::TextComposition&) override { return act(); }
        void onFocusOut() override { act(); }
        bool act()
        {
            told += name;
            return in();
        }

        std::string& told;
        char name;
        std::function<bool()> in = [] { return false; };
    };
    std::vector<Kind> all = kinds();
    all.push_back({0, "text", [](GLView& v) { v.onText({"a"}); }});
    all.push_back({0, "composes", [](GLView& v) { v.onComposition({"a"}); }});
    all.push_back({0, "no focus", [](GLView& v) { v.onFocus(false); }});
    all.push_back({0, "onDraw", [](GLView& v) { v.drawNow(); }});
    for (const Kind& kind : all)
    {
        const std::string callback = kind.callback;
        auto pView = std::make_unique<RecordingView>(window);
        GLView* pNative = show(*pView);
        pView->startTextInput();
        const bool isDraw = callback == "onDraw", isFocus = callback == "no focus";
        const bool isOurs = callback != "up key" && callback != "drops";
        std::string told;
        auto pLower = std::make_unique<Layer>(*pView, told, 'l'), pUpper = std::make_unique<Layer>(*pView, told, 'u');
        const auto hears = [&]
        {
            journal.take();
            told.clear();
            kind.send(*pNative);
            const Lines lines = journal.take();
            return std::ranges::any_of(lines, [&](const std::string& line) { return line.starts_with(callback); });
        };
        EXPECT_EQ(hears(), !isFocus) << callback;
        EXPECT_EQ(told, isDraw ? "lu" : isOurs ? "ul" : "") << callback;
        pUpper->in = [] { return true; };
        EXPECT_EQ(hears(), isDraw || !isOurs) << callback;
        EXPECT_EQ(told, isDraw ? "lu" : isFocus ? "ul" : isOurs ? "u" : "") << callback;
        if (!isOurs)
            continue;
        (isDraw ? pLower : pUpper)->in = [&]
        {
            (isDraw ? pUpper : pLower).reset();
            return false;
        };
        EXPECT_EQ(hears(), !isFocus) << callback;
        EXPECT_EQ(told, isDraw ? "l" : "u") << callback;
        Layer& left = isDraw ? *pLower : *pUpper;
        left.in = [&]
        {
            pView.reset();
            return false;
        };
        EXPECT_EQ(hears(), isDraw) << callback;
        EXPECT_EQ(left.getView(), nullptr);
    }
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
