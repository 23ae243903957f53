#include "support/CaughtAsserts.h"

#include <cnt/StringBuilder.h>
#include <td/StringBase.h>

#include <string>

namespace
{

std::string text(const td::String& s) { return {s.c_str(), s.length()}; }

// Pieces that end before, at and behind the border of a chunk, and pieces that span several: a border taken for the
// inside of a chunk loses or repeats bytes.
TEST(StringBuilder, PiecesCrossChunkBorders)
{
    for (std::size_t nFirst = 0; nFirst < 20; ++nFirst)
    {
        for (std::size_t nSecond = 0; nSecond < 20; ++nSecond)
        {
            cnt::StringBuilder<td::String, 8> builder(nFirst % 2 == 0);
            const std::string first = std::string("abcdefghijklmnopqrst").substr(0, nFirst);
            const std::string second = std::string("ABCDEFGHIJKLMNOPQRST").substr(0, nSecond);
            builder << first.c_str() << second.c_str();
            builder.appendCString("-");
            EXPECT_EQ(text(builder.toString()), first + second + "-");
            builder.reset();
            EXPECT_EQ(text(builder.toString()), "");
            builder.appendString(second.data(), int(second.size())) << first.c_str();
            EXPECT_EQ(text(builder.toString()), second + first);
        }
    }
}

TEST(StringBuilder, TextsFromOutside)
{
    cnt::StringBuilder<td::String, 1024> builder(false);
    td::String s("old");
    EXPECT_TRUE(builder.getString(s, false));
    EXPECT_EQ(text(s), "");
    builder << nullptr << ""
            << " a";
    builder.appendString(nullptr, 4).appendString("\0b", 2).appendCString(" \n");
    EXPECT_TRUE(builder.getString(s, false));
    EXPECT_EQ(text(s), std::string(" a\0b \n", 6));
    EXPECT_TRUE(builder.getString(s, true));
    EXPECT_EQ(text(s), std::string("a\0b", 3));
    test::CaughtAsserts asserts;
    builder.appendString("abc", -1);
    EXPECT_TRUE(asserts.caught("n >= 0"));
    EXPECT_EQ(builder.toString().length(), 6u);

    const std::string longText(200000, 'x');
    cnt::StringBuilder<td::String, 65536> longBuilder(true);
    longBuilder << longText.c_str() << "y";
    EXPECT_EQ(text(longBuilder.toString()), longText + "y");
}

} // namespace
