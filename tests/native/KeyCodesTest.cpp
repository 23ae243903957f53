#include <gui/gl/KeyCodes.h>

#include <gtest/gtest.h>

#include <bitset>

namespace
{

using Virtual = gui::Key::Virtual;

Virtual first(unsigned int code) { return zav::getVirtualKeyCode(code, 0); }
Virtual second(unsigned int code) { return zav::getVirtualKeyCode2(code, 0); }

// Neighbours on the keyboard whose codes are not neighbours, and the ends of the runs that are.
TEST(KeyCodes, KeysAreWhatIsPrintedOnThem)
{
    const struct
    {
        unsigned int code;
        Virtual key;
    } cases[] = {
        {36, Virtual::Return},
        {53, Virtual::Escape},
        {115, Virtual::Home},
        {119, Virtual::End},
        {116, Virtual::PageUp},
        {121, Virtual::PageDown},
        {123, Virtual::Left},
        {124, Virtual::Right},
        {125, Virtual::Down},
        {126, Virtual::Up},
        {122, Virtual::F1},
        {120, Virtual::F2},
        {99, Virtual::F3},
        {118, Virtual::F4},
        {96, Virtual::F5},
        {98, Virtual::F7},
        {100, Virtual::F8},
        {101, Virtual::F9},
        {109, Virtual::F10},
        {103, Virtual::F11},
        {111, Virtual::F12},
        {82, Virtual::Keypad0},
        {89, Virtual::Keypad7},
        {91, Virtual::Keypad8},
        {92, Virtual::Keypad9},
        {65, Virtual::KeypadDecimal},
        {69, Virtual::KeypadPlus},
        {78, Virtual::KeypadMinus},
        {67, Virtual::KeypadMultiply},
        {75, Virtual::KeypadDivide},
        {76, Virtual::KeypadEnter},
        {72, Virtual::VolumeUp},
        {74, Virtual::Mute},
    };
    for (const auto& c : cases)
    {
        EXPECT_EQ(first(c.code), c.key) << c.code;
        EXPECT_EQ(first(c.code << 8), c.key) << c.code;
        EXPECT_EQ(second(c.code), c.key) << c.code;
        EXPECT_EQ(second(c.code << 8), Virtual::None) << c.code; // it shifts nothing
    }
}

TEST(KeyCodes, TheTwoTablesDifferInFourKeys)
{
    const struct
    {
        unsigned int code;
        int inFirst, inSecond;
    } cases[] = {{48, 0, 1}, {51, 12, 30}, {71, 51, 0}, {117, 30, 0}};
    std::bitset<128> differing;
    for (const auto& c : cases)
    {
        EXPECT_EQ(static_cast<int>(first(c.code)), c.inFirst) << c.code;
        EXPECT_EQ(static_cast<int>(second(c.code)), c.inSecond) << c.code;
        differing.set(c.code);
    }
    for (unsigned int code = 0; code < 128; ++code)
        EXPECT_EQ(first(code) != second(code), differing[code]) << code;
}

// Codes come from outside: each has an answer, and no two keys of the first table share one.
TEST(KeyCodes, EveryOtherCodeIsNone)
{
    std::bitset<256> seen;
    int nVirtual = 0;
    for (unsigned int code = 0; code < 128; ++code)
    {
        const auto value = static_cast<std::size_t>(first(code));
        if (value == 0)
            continue;
        ++nVirtual;
        EXPECT_FALSE(seen[value]) << code;
        seen.set(value);
    }
    EXPECT_EQ(nVirtual, 44);
    for (const unsigned int code : {0u, 48u, 66u, 79u, 90u, 93u, 127u})
        EXPECT_EQ(first(code), Virtual::None) << code;
    for (const unsigned int code : {128u, 129u, 255u, 256u, 127u << 8, 128u << 8, 0xFFFFu, 36u << 16, 0xFFFFFFFFu})
    {
        EXPECT_EQ(first(code), Virtual::None) << code;
        EXPECT_EQ(second(code), Virtual::None) << code;
    }
    EXPECT_EQ(first((36u << 8) + 255), Virtual::Return); // what lies below the shifted code does not matter
}

} // namespace
