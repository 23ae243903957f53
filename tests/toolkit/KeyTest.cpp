#include <gui/Key.h>

#include <gtest/gtest.h>

namespace
{

TEST(Key, ASCIIAndVirtualExcludeEachOther)
{
    using Virtual = gui::Key::Virtual;
    const struct
    {
        unsigned int code;
        Virtual virtualKey;
        bool isASCII;
        char character;
    } cases[] = {
        {'a', Virtual::None, true, 'a'}, {1, Virtual::None, true, 1},
        {127, Virtual::None, true, 127}, {0, Virtual::None, false, 0},
        {128, Virtual::None, false, 0},  {'a' + 256, Virtual::None, false, 0}, // must not be cut to a byte
        {115, Virtual::Home, false, 0},                                        // Home's platform code is that of 's'
    };
    for (const auto& c : cases)
    {
        gui::Key key(7, 0, 7, 13);
        if (c.virtualKey == Virtual::None)
            gui::KeyHelper(key).set(c.code, 9, 1);
        else
            gui::KeyHelper(key).setVirtual(c.code, 9, 1, c.virtualKey);
        EXPECT_EQ(key.getCode(), c.code);
        EXPECT_EQ(key.getCount(), 1);
        EXPECT_EQ(key.getModifiers(), 9u);
        EXPECT_EQ(key.getVirtual(), c.virtualKey) << c.code;
        EXPECT_EQ(key.isVirtual(), c.virtualKey != Virtual::None) << c.code;
        EXPECT_EQ(key.isASCII(), c.isASCII) << c.code;
        EXPECT_EQ(key.getChar(), c.character) << c.code;
    }
}

} // namespace
