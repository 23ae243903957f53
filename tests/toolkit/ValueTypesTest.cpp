#include <td/Color.h>
#include <td/RectNormalized.h>

#include <gtest/gtest.h>

namespace
{

TEST(ValueTypes, RectanglesAreNormalisedPerAxis)
{
    using Rect = td::RectNormalized<double>;
    const Rect expected(0, 5, 10, 20);
    for (const Rect& rect : {Rect(10, 20, 0, 5), Rect(10, 5, 0, 20), Rect(0, 20, 10, 5)})
        EXPECT_EQ(rect, expected);
    EXPECT_EQ(expected.left, 0);
    EXPECT_EQ(expected.top, 5);
    EXPECT_EQ(expected.right, 10);
    EXPECT_EQ(expected.bottom, 20);
}

TEST(ValueTypes, ColoursArePackedWithRedLowest)
{
    EXPECT_EQ(td::GLRGBA(1, 2, 3, 4), 0x04030201u);
    EXPECT_EQ(td::GLRGBA(0x1FF, 0, 0, 0), 0x1FFu) << "arguments are not masked";
    td::Color color(250, 251, 252, 253);
    EXPECT_EQ(color.rgba(), 0xFDFCFBFAu);
    color.setAlpha(255);
    EXPECT_EQ(color, td::Color(0xFFFCFBFAu));
    EXPECT_EQ(color.red(), 250);
    EXPECT_EQ(color.green(), 251);
    EXPECT_EQ(color.blue(), 252);
    EXPECT_EQ(color.alpha(), 255);
    EXPECT_FALSE(color == td::Color(250, 251, 252, 254));
}

} // namespace
