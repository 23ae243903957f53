// What a user does and sees, on each desktop and at each of its places.

#include "DesktopTest.h"

#include <gui/Display.h>

namespace test
{

namespace
{

using gui::gl::Context;

TEST_P(DesktopTest, ClicksCount)
{
    xdo("click 1");
    EXPECT_TRUE(view.hasHeard({"press 40,30 x1", "release 40,30 x1"}));
    xdo(at(140, 100));
    xdo("click --repeat 3 --delay 20 1");
    EXPECT_TRUE(view.hasHeard({"press 140,100 x1", "release 140,100 x1", "double 140,100 x1", "release 140,100 x2",
                               "press 140,100 x3", "release 140,100 x3"}));
    xdo(at(180, 30));
    xdo("click 3");
    EXPECT_TRUE(view.hasHeard({"press2 180,30 x1", "release2 180,30 x1"}));
    // The middle button, and the first of those at the side.
    xdo("click 2 click 8");
    EXPECT_TRUE(view.hasHeard({"press3 180,30", "release3 180,30", "press4 180,30", "release4 180,30"}));
    xdo(at(40, 100));
    xdo("keydown ctrl click 1 keyup ctrl");
    EXPECT_TRUE(view.hasHeard({"press 40,100 x1+Cmd", "release 40,100 x1+Cmd"}));
}

TEST_P(DesktopTest, DragGoesOnOutside)
{
    xdo(at(120, 100));
    xdo("mousedown 1");
    EXPECT_TRUE(view.hasHeard({"press 120,100 x1"}));
    xdo(at(130, 90));
    EXPECT_TRUE(view.hasHeard({"drag 130,90"}));
    // To where there is more of the desktop.
    const int outside = corner.x - desktop().area(GetParam()).x > 25 * scale ? -20 : 220;
    xdo("keydown shift");
    xdo(at(outside, 70));
    const std::string there = std::to_string(outside) + ",70";
    EXPECT_TRUE(view.hasHeard({"drag " + there + "+Shift"}));
    xdo("mouseup 1 keyup shift");
    ASSERT_TRUE(waitInLoop([&] { return view.lines.size() >= 2; }));
    EXPECT_EQ(view.lines.front(), "release " + there + " x1+Shift");
    EXPECT_EQ(view.lines.back().substr(0, 4), "exit");
    view.lines.clear();

    // Any other button drags in its own name, and the left one before it.
    xdo(at(40, 30));
    EXPECT_TRUE(view.hasHeard({"enter 40,30"}));
    xdo("mousedown 3");
    xdo(at(60, 40));
    EXPECT_TRUE(view.hasHeard({"press2 40,30 x1", "drag2 60,40"}));
    xdo("mouseup 3 mousedown 2");
    EXPECT_TRUE(view.hasHeard({"release2 60,40 x1", "press3 60,40"}));
    xdo(at(70, 50));
    EXPECT_TRUE(view.hasHeard({"drag3 70,50"}));
    xdo("mousedown 1");
    EXPECT_TRUE(view.hasHeard({"press 70,50 x1"}));
    xdo(at(50, 60));
    EXPECT_TRUE(view.hasHeard({"drag 50,60"}));
    xdo("mouseup 1 mouseup 2");
    EXPECT_TRUE(view.hasHeard({"release 50,60 x1", "release3 50,60"}));
}

TEST_P(DesktopTest, WheelScrollsAndZooms)
{
    const std::pair<const char*, const char*> cases[] = {
        {"click 4", "scroll 0,15"},
        {"click 5", "scroll 0,-15"},
        {"click 6", "scroll 15,0"},
        {"click 7", "scroll -15,0"},
        {"keydown alt click 4 keyup alt", "scroll 0,75+Alt"},
        {"keydown ctrl click 4 keyup ctrl", "zoom 40,30 by 1.12+Cmd"},
        {"keydown ctrl click 5 keyup ctrl", "zoom 40,30 by 0.88+Cmd"},
    };
    for (const auto& [keys, line] : cases)
    {
        xdo(keys);
        EXPECT_TRUE(view.hasHeard({line})) << keys;
    }
}

TEST_P(DesktopTest, KeysFollowTheLayout)
{
    // Key codes of the server, that is positions: 24 'q', 29 'y', 38 'a', 20 '-', 21 '=', 34 '[', 35 ']', 47 ';', 83
    // the keypad's 4, 108 AltGr.
    const struct
    {
        const char* layout;
        std::string keys;
        std::vector<std::string> lines;
        const char* text = ""; // that they type, where somebody asks
    } cases[] = {
        {"us,de", "keydown 38 keyup 38", {"key 'a'", "up key 'a'"}, "a"},
        {"us,de", "keydown shift keydown 38 keyup 38 keyup shift", {"key 'A'+Shift", "up key 'A'+Shift"}, "A"},
        {"us,de", "keydown alt keydown 38 keyup 38 keyup alt", {"key 'a'+Alt", "up key 'a'+Alt"}},
        {"us,de",
         "keydown ctrl keydown shift keydown 21 keyup 21 keyup shift keyup ctrl",
         {"key '+'+Shift+Cmd", "up key '+'+Shift+Cmd"}},
        // xdotool goes to the layout that has the character and back.
        {"us,de", "keydown odiaeresis keyup odiaeresis", {"key 246", "up key 43776"}, "ö"},
        {"us,de", "keydown semicolon keyup semicolon", {"key ';'", "up key ';'"}, ";"},
        {"us,de", "keydown Left keyup Left", {"key virtual 3 code 123", "up key 31488"}},
        {"us,de", "keydown Tab keyup Tab", {"key virtual 1 code 48", "up key 9"}},
        {"us", "keydown 108 keydown 38 keyup 38 keyup 108", {"key 'a'+Alt", "up key 'a'+Alt"}},
        {"us", "key Caps_Lock keydown 38 keyup 38 key Caps_Lock", {"key 'a'+Caps", "up key 'a'+Caps"}, "A"},
        {"us", "keydown 83 keyup 83", {"key virtual 3 code 123", "up key 31488"}},
        {"us", "key Num_Lock keydown 83 keyup 83 key Num_Lock", {"key virtual 38 code 86", "up key '4'"}, "4"},
        {"us", "keydown Insert keyup Insert", {"key 32512", "up key 32512"}},
        {"de", "keydown 29 keyup 29", {"key 'z'", "up key 'z'"}, "z"},
        {"de", "keydown ctrl keydown 35 keyup 35 keyup ctrl", {"key '+'+Cmd", "up key '+'+Cmd"}},
        {"de", "keydown ctrl keydown 20 keyup 20 keyup ctrl", {"key 223+Cmd", "up key 42240+Cmd"}},
        {"de", "keydown 108 keydown 24 keyup 24 keyup 108", {"key 'q'+Fn", "up key 'q'+Fn"}, "@"},
        {"de,us", "keydown 108 keydown 29 keyup 29 keyup 108", {"key 'z'+Fn", "up key 'z'+Fn"}, "←"},
        // A dead key and what it is for.
        {"de", "keydown 21 keyup 21 keydown 26 keyup 26", {"key 180", "up key 42496", "key 'e'", "up key 'e'"}, "é"},
        {"de", "keydown shift keydown 47 keyup 47 keyup shift", {"key 214+Shift", "up key 43776+Shift"}, "Ö"},
    };
    xdo("click 2");
    ASSERT_TRUE(view.hasHeard({"press3 40,30", "release3 40,30"}));
    for (const auto& c : cases)
        if (desktop().setLayouts(c.layout))
        {
            xdo(c.keys);
            EXPECT_TRUE(view.hasHeard(c.lines)) << c.layout << ": " << c.keys;
        }
    view.startTextInput();
    for (const auto& c : cases)
        if (desktop().setLayouts(c.layout))
        {
            std::vector<std::string> lines = c.lines;
            if (*c.text != 0)
                lines.insert(lines.end() - 1, std::string("text ") + c.text);
            if (std::string(c.text) == "é")
                lines = desktop().hearsComposed(lines);
            xdo(c.keys);
            EXPECT_TRUE(view.hasHeard(lines)) << c.layout << ": " << c.keys;
        }
}

TEST_P(DesktopTest, FirstFrameOfANewSizeIsWhole)
{
    EXPECT_EQ(view.sizes.back(), (td::Size<double>{200, 150}));
    EXPECT_EQ(view.getPixelHiDPIScale(), static_cast<float>(scale));
    EXPECT_EQ(corner.width, 200 * scale);
    for (const td::Size<double> size : {td::Size<double>{140, 120}, td::Size<double>{160, 130}})
    {
        shown->setSize(size);
        EXPECT_TRUE(waitInLoop([&] { return view.sizes.back() == size; }));
        desktop().goTo(GetParam());
        EXPECT_TRUE(showsItsFrame(view));
    }
    EXPECT_EQ(gui::Display::getDefaultBackingScaleFactor(), 1);
    std::vector<gui::DisplayInfo> displays = gui::Display::getAll();
    for (gui::DisplayInfo& display : displays)
    {
        EXPECT_GE(display.refreshRate, 0);
        display.name.clear();
        display.refreshRate = 0;
    }
    EXPECT_EQ(displays, desktop().displays());
    EXPECT_TRUE(scale != 1 || view.grab() == view.readPixels());
}

TEST_P(DesktopTest, TwoWindowsTwoContexts)
{
    RecordingView second;
    // Not a grey: the decorations have those.
    second.topLeft = 0xC020C0;
    const std::unique_ptr<ShownWindow> secondWindow = desktop().makeWindow("Second", {160, 100});
    ASSERT_NO_FATAL_FAILURE(show(*secondWindow, second, "Second", 1 - GetParam(), Context::Animation::On));
    xdo(at(30, 40));
    EXPECT_TRUE(second.hasHeard({"enter 30,40"}));
    view.startAnimation();
    desktop().goTo(GetParam());
    EXPECT_TRUE(showsItsFrame(view));
    EXPECT_TRUE(showsItsFrame(second));
    EXPECT_FALSE(second.isWrong);
}

} // namespace

} // namespace test
