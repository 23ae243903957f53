#include <gui/gl/KeyCodes.h>

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <utility>

namespace
{

using Virtual = gui::Key::Virtual;

Virtual first(unsigned int code) { return zav::getVirtualKeyCode(code, 0); }
Virtual second(unsigned int code) { return zav::getVirtualKeyCode2(code, 0); }

// That each code is its key's is seen from the keyboard's side, in the tests of SDL's keys. Only the first table takes
// codes that are shifted.
TEST(KeyCodes, TheTwoTablesDifferInFourKeys)
{
    using Keys = std::pair<int, int>;
    const std::map<unsigned int, Keys> differing{{48, {0, 1}}, {51, {12, 30}}, {71, {51, 0}}, {117, {30, 0}}};
    std::set<Virtual> seen;
    for (unsigned int code = 0; code < 128; ++code)
    {
        const Virtual key = first(code);
        const auto found = differing.find(code);
        EXPECT_EQ(Keys(int(key), int(second(code))),
                  found != differing.end() ? found->second : Keys(int(key), int(key)));
        EXPECT_TRUE(key == Virtual::None || seen.insert(key).second) << code;
        EXPECT_EQ(first((code << 8) + 255), code == 0 ? Virtual::None : key) << "what lies below does not matter";
        EXPECT_EQ(second((code << 8) + 128), Virtual::None) << code;
    }
    EXPECT_EQ(seen.size(), 44U);
    for (const unsigned int code : {128u, 129u, 255u, 256u, 128u << 8, 0xFFFFu, 36u << 16, 0xFFFFFFFFu})
    {
        EXPECT_EQ(first(code), Virtual::None) << code;
        EXPECT_EQ(second(code), Virtual::None) << code;
    }
}

} // namespace
