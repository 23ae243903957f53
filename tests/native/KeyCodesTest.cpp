#include <gui/gl/KeyCodes.h>

#include <gtest/gtest.h>

#include <bitset>

namespace
{

using Virtual = gui::Key::Virtual;

Virtual first(unsigned int code) { return zav::getVirtualKeyCode(code, 0); }
Virtual second(unsigned int code) { return zav::getVirtualKeyCode2(code, 0); }

// That each code is its key's is seen from the keyboard's side, in the tests of SDL's keys.
TEST(KeyCodes, OnlyTheFirstTableShiftsItsCodes)
{
    EXPECT_EQ(first(36), Virtual::Return);
    EXPECT_EQ(first(36 << 8), Virtual::Return);
    EXPECT_EQ(second(36), Virtual::Return);
    EXPECT_EQ(second(36 << 8), Virtual::None);
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
