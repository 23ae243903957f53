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

} // namespace
