// Input in a real window, from another process.

#include "X11Fixture.h"

namespace test
{

namespace
{

class X11InputTest : public X11Fixture
{
protected:
    void SetUp() override
    {
        view.create();
        ASSERT_NO_FATAL_FAILURE(show(window, view, "Input"));
        xdo(at("Input", 40, 30));
        ASSERT_TRUE(view.hasHeard({"enter 40,30"}));
    }
    void TearDown() override
    {
        EXPECT_FALSE(view.isContextWrong);
        EXPECT_FALSE(view.isPictureWrong);
    }

    RecordingView view;
    gui::Window window{"Input", {300, 200}};
};

TEST_F(X11InputTest, ClicksCount)
{
    xdo("click 1");
    EXPECT_TRUE(view.hasHeard({"press 40,30 x1", "release 40,30 x1"}));
    xdo(at("Input", 140, 130));
    xdo("click --repeat 3 --delay 20 1");
    EXPECT_TRUE(view.hasHeard({"press 140,130 x1", "release 140,130 x1", "double 140,130 x1", "release 140,130 x2",
                               "press 140,130 x3", "release 140,130 x3"}));
    xdo(at("Input", 240, 30));
    xdo("click 3");
    EXPECT_TRUE(view.hasHeard({"press2 240,30 x1", "release2 240,30 x1"}));
    // The middle button is nobody's.
    xdo("click 2 click 8");
    xdo(at("Input", 40, 130));
    xdo("keydown ctrl click 1 keyup ctrl");
    EXPECT_TRUE(view.hasHeard({"press 40,130 x1+Cmd", "release 40,130 x1+Cmd"}));
}

TEST_F(X11InputTest, ControlReleaseIsTheSecondaryButtons)
{
    xdo("keydown super click 1 keyup super");
    EXPECT_TRUE(view.hasHeard({"press 40,30 x1+Ctrl", "release2 40,30 x1+Ctrl"}));
}

TEST_F(X11InputTest, DragGoesOnOutside)
{
    // Away from where a click may have been a moment ago.
    xdo(at("Input", 220, 150));
    xdo("mousedown 1");
    EXPECT_TRUE(view.hasHeard({"press 220,150 x1"}));
    xdo(at("Input", 50, 60));
    EXPECT_TRUE(view.hasHeard({"drag 50,60"}));
    xdo(at("Input", 350, -20));
    EXPECT_TRUE(view.hasHeard({"drag 350,-20"}));
    xdo("keydown shift");
    xdo(at("Input", -7, 20));
    EXPECT_TRUE(view.hasHeard({"drag -7,20+Shift"}));
    xdo("mouseup 1 keyup shift");
    ASSERT_TRUE(waitInLoop([&] { return view.lines.size() >= 2; }));
    EXPECT_EQ(view.lines.front(), "release -7,20 x1+Shift");
    EXPECT_EQ(view.lines.back().substr(0, 4), "exit");
    view.forgetLines();

    // Any other button drags nothing.
    xdo(at("Input", 40, 30));
    EXPECT_TRUE(view.hasHeard({"enter 40,30"}));
    xdo("mousedown 3");
    xdo(at("Input", 60, 40));
    xdo("mouseup 3");
    EXPECT_TRUE(view.hasHeard({"press2 40,30 x1", "release2 60,40 x1"}));
}

// The release is not the last of its event: the pointer left on the way.
TEST_F(X11InputTest, ADragOutsideMayEndTheView)
{
    view.onRelease = [this] { window.close(); };
    xdo("mousedown 1");
    xdo(at("Input", 350, -20));
    xdo("mouseup 1");
    ASSERT_TRUE(waitInLoop([&] { return view.isCleaned; }));
    EXPECT_EQ(view.lines.back(), "release 350,-20 x1");
}

TEST_F(X11InputTest, WheelScrollsAndZooms)
{
    struct Case
    {
        const char* name;
        std::string keys;
        std::string line;
    };
    const Case cases[] = {
        {"away from the user", "click 4", "scroll 0,15"},
        {"towards the user", "click 5", "scroll 0,-15"},
        {"left", "click 6", "scroll 15,0"},
        {"right", "click 7", "scroll -15,0"},
        {"Alt is fast", "keydown alt click 4 keyup alt", "scroll 0,75+Alt"},
        {"Ctrl zooms in", "keydown ctrl click 4 keyup ctrl", "zoom 40,30 by 1.12+Cmd"},
        {"Ctrl zooms out", "keydown ctrl click 5 keyup ctrl", "zoom 40,30 by 0.88+Cmd"},
    };
    for (const Case& c : cases)
    {
        xdo(c.keys);
        EXPECT_TRUE(view.hasHeard({c.line})) << c.name;
    }
}

TEST_F(X11InputTest, KeysFollowTheLayout)
{
    // Key codes of the server, that is positions: 24 'q', 29 'y', 38 'a', 20 '-', 21 '=', 34 '[', 35 ']', 47 ';', 108
    // AltGr.
    struct Case
    {
        const char* layout;
        std::string keys;
        std::vector<std::string> lines;
    };
    const Case cases[] = {
        {"us", "keydown 38 keyup 38", {"key 'a'", "up key 'a'"}},
        {"us", "keydown shift keydown 38 keyup 38 keyup shift", {"key 'A'+Shift", "up key 'A'+Shift"}},
        {"us", "keydown ctrl keydown 38 keyup 38 keyup ctrl", {"key 'a'+Cmd", "up key 'a'+Cmd"}},
        {"us", "keydown alt keydown 38 keyup 38 keyup alt", {"key 'a'+Alt", "up key 'a'+Alt"}},
        {"us", "keydown 108 keydown 38 keyup 38 keyup 108", {"key 'a'+Alt", "up key 'a'+Alt"}},
        {"us",
         "keydown ctrl keydown shift keydown 21 keyup 21 keyup shift keyup ctrl",
         {"key '+'+Shift+Cmd", "up key '+'+Shift+Cmd"}},
        {"us", "key Caps_Lock keydown 38 keyup 38 key Caps_Lock", {"key 'a'+Caps", "up key 'a'+Caps"}},
        {"de", "keydown 29 keyup 29", {"key 'z'", "up key 'z'"}},
        {"de", "keydown ctrl keydown 35 keyup 35 keyup ctrl", {"key '+'+Cmd", "up key '+'+Cmd"}},
        {"de", "keydown ctrl keydown 20 keyup 20 keyup ctrl", {"key 223+Cmd", "up key 42240+Cmd"}},
        {"de", "keydown 108 keydown 24 keyup 24 keyup 108", {"key 'q'+Fn", "up key 'q'+Fn"}},
        {"de", "keydown 47 keyup 47", {"key 246", "up key 43776"}},
        {"de", "keydown shift keydown 47 keyup 47 keyup shift", {"key 214+Shift", "up key 43776+Shift"}},
        // xdotool goes to the layout that has the character and back.
        {"us,de", "keydown odiaeresis keyup odiaeresis", {"key 246", "up key 43776"}},
        {"us,de", "keydown semicolon keyup semicolon", {"key ';'", "up key ';'"}},
    };
    for (const Case& c : cases)
    {
        xServer().setLayouts(c.layout);
        xdo(c.keys);
        EXPECT_TRUE(view.hasHeard(c.lines)) << c.layout << ": " << c.keys;
    }
}

TEST_F(X11InputTest, KeysWithoutCharacters)
{
    struct Case
    {
        const char* key;
        std::vector<std::string> lines;
    };
    const Case cases[] = {
        {"Return", {"key virtual 2 code 36", "up key 13"}},
        {"Tab", {"key virtual 1 code 48", "up key 9"}},
        {"BackSpace", {"key virtual 12 code 51", "up key 8"}},
        {"Escape", {"key virtual 13 code 53", "up key 13568"}},
        {"Left", {"key virtual 3 code 123", "up key 31488"}},
        {"Delete", {"key virtual 30 code 117", "up key 29952"}},
        {"F1", {"key virtual 14 code 122", "up key 31232"}},
        {"F12", {"key virtual 25 code 111", "up key 28416"}},
        {"Insert", {"key 32512", "up key 32512"}},
        // The keypad's 4, without and with Num Lock.
        {"83", {"key virtual 3 code 123", "up key 31488"}},
    };
    for (const Case& c : cases)
    {
        xdo(std::string("keydown ") + c.key + " keyup " + c.key);
        EXPECT_TRUE(view.hasHeard(c.lines)) << c.key;
    }
    xdo("key Num_Lock keydown 83 keyup 83 key Num_Lock");
    EXPECT_TRUE(view.hasHeard({"key virtual 38 code 86", "up key '4'"})) << "with Num Lock";
}

TEST_F(X11InputTest, HeldKeyRepeatsAndIsReleasedOnce)
{
    xdo("keydown 38");
    ASSERT_TRUE(waitInLoop([&] { return view.lines.size() >= 4; }));
    xdo("keyup 38");
    ASSERT_TRUE(waitInLoop([&] { return view.lines.back() == "up key 'a'"; }));
    for (std::size_t i = 0; i + 1 < view.lines.size(); ++i)
        EXPECT_EQ(view.lines[i], "key 'a'");
}

TEST_F(X11InputTest, FocusGoesToTheOtherWindow)
{
    movePointerAway();
    ASSERT_TRUE(waitInLoop([&] { return !view.lines.empty(); }));
    view.forgetLines();
    view.registerForFocusEvents();
    RecordingView other;
    other.create();
    other.registerForFocusEvents();
    gui::Window otherWindow("Other", {200, 100});
    ASSERT_TRUE(otherWindow.show(other));
    EXPECT_TRUE(view.hasHeard({"no focus"}));
    EXPECT_TRUE(other.hasHeard({"focus"}));
    otherWindow.close();
    EXPECT_TRUE(view.hasHeard({"focus"}));
}

TEST_F(X11InputTest, CursorBelongsToItsWindow)
{
    movePointerAway();
    ASSERT_TRUE(waitInLoop([&] { return !view.lines.empty(); }));
    view.forgetLines();
    const std::uint64_t outside = xServer().cursor();
    view.setCursor(gui::Cursor::Type::Pan, true);
    xdo(at("Input", 40, 30));
    ASSERT_TRUE(view.hasHeard({"enter 40,30"}));
    std::uint64_t pan = 0;
    EXPECT_TRUE(waitInLoop([&] { return (pan = xServer().cursor()) != outside; }));
    view.setCursor(gui::Cursor::Type::Default, false);
    view.setCursor(gui::Cursor::Type::Pan, true);
    view.setCursor(gui::Cursor::Type::Default, true);
    EXPECT_TRUE(waitInLoop([&] { return xServer().cursor() != pan; }));

    // Another window keeps its arrow whatever this view wants.
    movePointerAway();
    RecordingView other;
    other.create();
    gui::Window otherWindow("Other", {200, 100});
    ASSERT_NO_FATAL_FAILURE(show(otherWindow, other, "Other"));
    xdo(at("Other", 10, 10));
    ASSERT_TRUE(waitInLoop([&] { return !other.lines.empty(); }));
    const std::uint64_t arrow = xServer().cursor();
    view.setCursor(gui::Cursor::Type::Pan, true);
    ASSERT_TRUE(showsItsFrame("Other", other));
    EXPECT_EQ(xServer().cursor(), arrow);
}

} // namespace

} // namespace test
