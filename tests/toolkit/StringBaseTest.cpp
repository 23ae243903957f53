#include <td/StringBase.h>

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace
{

using td::String;

TEST(StringBase, EmptyStringsHaveNoBufferAndAText)
{
    const String strings[] = {String(), String(nullptr), String(""), String(nullptr, 3), String("abc", 0)};
    for (const String& s : strings)
    {
        EXPECT_STREQ(s.c_str(), "");
        EXPECT_EQ(s.length(), 0u);
        EXPECT_TRUE(s.isEmpty());
        EXPECT_TRUE(s == String());
    }
    String s("abc");
    s = nullptr;
    EXPECT_TRUE(s.isEmpty());
}

TEST(StringBase, FifteenStringsShareABufferAndTheNextGetsItsOwn)
{
    const String first("shared text");
    std::vector<String> copies(14, first);
    for (const String& s : copies)
        EXPECT_EQ(s.c_str(), first.c_str());
    const String sixteenth(first);
    EXPECT_NE(sixteenth.c_str(), first.c_str());
    EXPECT_TRUE(sixteenth == first);
    const String ofSixteenth(sixteenth);
    EXPECT_EQ(ofSixteenth.c_str(), sixteenth.c_str());
    copies.pop_back();
    const String again(first);
    EXPECT_EQ(again.c_str(), first.c_str());
    String assigned("other");
    assigned = first;
    EXPECT_NE(assigned.c_str(), first.c_str());
    EXPECT_TRUE(assigned == "shared text");
}

TEST(StringBase, AssignmentFromItselfOrAPartOfItself)
{
    String s("only owner");
    const String& same = s;
    s = same;
    EXPECT_STREQ(s.c_str(), "only owner");
    s = s.c_str() + 5;
    EXPECT_STREQ(s.c_str(), "owner");
    String& moved = s;
    s = std::move(moved);
    EXPECT_STREQ(s.c_str(), "owner");
    String taken("dropped");
    taken = std::move(s);
    EXPECT_STREQ(taken.c_str(), "owner");
    EXPECT_TRUE(s.isEmpty());
    s = taken;
    EXPECT_EQ(s.c_str(), taken.c_str());
}

TEST(StringBase, ComparisonSeesEveryByte)
{
    EXPECT_FALSE(String("abc") == String("abd"));
    EXPECT_FALSE(String("abc") == String("ab"));
    EXPECT_FALSE(String("a\0b", 3) == String("a\0c", 3));
    EXPECT_TRUE(String("a\0b", 3) == String("a\0b", 3));
    EXPECT_EQ(String("a\0b", 3).length(), 3u);
}

TEST(StringBase, TrimTakesWhiteSpaceFromBothEnds)
{
    const struct
    {
        const char* text;
        const char* trimmed;
    } cases[] = {{"", ""},         {" \t\r\n\v\f", ""},  {"abc", "abc"}, {"  abc", "abc"},
                 {"abc\n", "abc"}, {"\ta b\r\n", "a b"}, {" x ", "x"},   {"\xC2\xA0", "\xC2\xA0"}};
    for (const auto& c : cases)
    {
        const String s(c.text);
        EXPECT_STREQ(s.trim().c_str(), c.trimmed);
        EXPECT_STREQ(s.c_str(), c.text);
    }
}

} // namespace
