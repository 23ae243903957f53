#include "src/native/EventTranslation.h"

#include <gtest/gtest.h>

namespace
{

using Event = gui::InputDevice::Event;

constexpr unsigned int cOption = 8;
constexpr unsigned int cCommand = 16;

TEST(EventTranslation, MasksAndWhatTheyTrack)
{
    EXPECT_EQ(gui::gl::buildEventMask({Event::CursorDrag, Event::CursorDrag, Event::PrimaryClicks}), 0x44);
    const std::pair<unsigned short, std::uint64_t> cases[] = {{0, 0x284},    {0x100, 0x284}, {0x20, 0x286},
                                                              {0x01, 0x285}, {0xA1, 0x287},  {0x8001, 0x285}};
    for (const auto& [mask, tracking] : cases)
        EXPECT_EQ(gui::gl::getTrackingOptions(mask), tracking) << mask;
}

// A value that is read once, or copied into a constant, would ignore what the application sets.
TEST(EventTranslation, TunablesAreReadAtEachEvent)
{
    const double before[] = {zav::s_zoomIncrement, zav::s_scrollAccelleration, zav::s_zoomGestureReduction};
    zav::s_zoomIncrement = 50;
    zav::s_scrollAccelleration = 2;
    zav::s_zoomGestureReduction = 4;
    EXPECT_EQ(gui::gl::getWheelZoomFactor({0, 1, cCommand, {}}), 1.5);
    EXPECT_EQ(gui::gl::getWheelScroll({1, 3, cOption, {}}), (td::Point<double>(10, 30)));
    EXPECT_EQ(gui::gl::getGestureZoomFactor(0.5), 1.125);
    zav::s_zoomIncrement = before[0];
    zav::s_scrollAccelleration = before[1];
    zav::s_zoomGestureReduction = before[2];
}

TEST(EventTranslation, KeysDownAndUp)
{
    constexpr unsigned int cShift = 1;
    const struct
    {
        const char* name;
        unsigned short keyCode, character;
        unsigned int downCode, downVirtual, upCode;
    } cases[] = {
        {"a", 0, 'a', 97, 0, 97},
        {"Return", 36, 13, 36, 2, 13},
        {"Backspace", 51, 8, 51, 12, 8},
        {"A with Control, of some systems", 0, 1, 1, 0, 1},
        {"Escape", 53, 27, 53, 13, 53 << 8},
        {"left arrow", 123, 0, 123, 3, 31488},
        {"keypad 5", 87, '5', 87, 39, '5'},
        {"key 8", 8, 'c', 'c', 0, 8 << 8},
        {"the first beyond ASCII", 200, 128, 128, 0, 200 << 8},
        {"one whose low byte is a letter's", 14, 0x161, 0x161, 0, 14 << 8},
        {"Home, whose code is that of a letter", 115, 0, 115, 7, 115 << 8},
        {"euro sign", 14, 0x20AC, 0x20AC, 0, 14 << 8},
        {"no character", 127, 0, 127 << 8, 0, 127 << 8},
        {"no character, printable", 255, 0, 255 << 8, 0, 255 << 8},
        {"largest code", 0xFFFF, 0, 0xFFFF00, 0, 0xFFFF00},
    };
    for (const auto& c : cases)
    {
        const gui::Key down = gui::gl::createKey({true, c.keyCode, c.character, cShift | cCommand});
        EXPECT_EQ(down.getCode(), c.downCode) << c.name;
        EXPECT_EQ(static_cast<unsigned int>(down.getVirtual()), c.downVirtual) << c.name;
        const gui::Key up = gui::gl::createReleasedKey({false, c.keyCode, c.character, cShift | cCommand});
        EXPECT_EQ(up.getCode(), c.upCode) << c.name;
        EXPECT_EQ(up.getVirtual(), gui::Key::Virtual::None) << c.name;
        for (const gui::Key& key : {down, up})
        {
            EXPECT_EQ(key.getModifiers(), cShift | cCommand) << c.name;
            const bool isASCII = !key.isVirtual() && key.getCode() > 0 && key.getCode() < 128;
            EXPECT_EQ(key.getChar(), isASCII ? static_cast<char>(key.getCode()) : 0) << c.name;
        }
    }
}

} // namespace
