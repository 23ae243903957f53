#include "support/FontFiles.h"

#include <vo/UTFConverter.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace
{

using vo::UTFConverter;

constexpr unsigned int R = 0xFFFD;

// Decodes a copy in memory of exactly its size, into memory of exactly the measured size, so that the sanitizer sees a
// read or a write beyond either.
std::vector<unsigned int> decoded(const std::string& bytes)
{
    const std::unique_ptr<unsigned char[]> in(new unsigned char[bytes.size()]);
    std::copy(bytes.begin(), bytes.end(), in.get());
    const unsigned char* const end = in.get() + bytes.size();
    const std::ptrdiff_t nBytes = UTFConverter::measureUTF8toUTF32(in.get(), end, UTFConverter::Flags(0));
    EXPECT_EQ(nBytes % 4, 0);
    const auto n = std::size_t(nBytes / 4);
    const std::unique_ptr<unsigned int[]> out(new unsigned int[n]);
    EXPECT_TRUE(UTFConverter::convertUTF8toUTF32(in.get(), end, out.get(), out.get() + n, UTFConverter::Flags(0)));
    return {out.get(), out.get() + n};
}

TEST(UTFConverter, EveryCodePointComesBackAndEverySurrogateDoesNot)
{
    std::string bytes;
    std::vector<unsigned int> expected;
    for (unsigned int c = 0; c <= 0x10FFFF; ++c)
    {
        bytes += test::encoded(c);
        if (c >= 0xD800 && c <= 0xDFFF)
            expected.insert(expected.end(), 3, R);
        else
            expected.push_back(c);
    }
    EXPECT_TRUE(decoded(bytes) == expected);
}

TEST(UTFConverter, EachMaximalSubpartBecomesOneReplacement)
{
    const struct
    {
        std::string bytes;
        std::vector<unsigned int> expected;
    } cases[] = {
        {"", {}},
        // The three tables of the Unicode standard's recommendation, and its example of truncated sequences.
        {"\xC0\xAF\xE0\x80\xBF\xF0\x81\x82\x41", {R, R, R, R, R, R, R, R, 'A'}},
        {"\xED\xA0\x80\xED\xBF\xBF\xED\xAF\x41", {R, R, R, R, R, R, R, R, 'A'}},
        {"\xF4\x91\x92\x93\xFF\x41\x80\xBF\x42", {R, R, R, R, R, 'A', R, R, 'B'}},
        {"\xE1\x80\xE2\xF0\x91\x92\xF1\xBF\x41", {R, R, R, R, 'A'}},
        // Leads that lead nothing, continuation bytes that follow nothing, a continuation too many.
        {"\xC1\x81\xF5\x80\xFE\xFF", {R, R, R, R, R, R}},
        {"\x80\xBF", {R, R}},
        {"\xC3\xA9\xA9z", {0xE9, R, 'z'}},
        // A character that breaks off before a well-formed one.
        {"\xC3\xC3\xA9", {R, 0xE9}},
        {"\xE2\x82\xE2\x82\xAC", {R, 0x20AC}},
        {"\xF0\x9F\x98\xF0\x9F\x98\x80", {R, 0x1F600}},
        {"a\xF0\x90\x80", {'a', R}},
        // A zero is a character like any other; a byte order mark too.
        {std::string("\0b", 2), {0, 'b'}},
        {"\xEF\xBB\xBFz", {0xFEFF, 'z'}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(decoded(c.bytes), c.expected) << testing::PrintToString(c.bytes);
}

TEST(UTFConverter, NoBytesAreNoCharacters)
{
    const unsigned char bytes[] = {'a'};
    const UTFConverter::Flags flags = UTFConverter::Flags::None;
    EXPECT_EQ(UTFConverter::measureUTF8toUTF32(nullptr, nullptr, flags), 0);
    EXPECT_EQ(UTFConverter::measureUTF8toUTF32(bytes + 1, bytes, flags), 0);
    EXPECT_TRUE(UTFConverter::convertUTF8toUTF32(bytes + 1, bytes, nullptr, nullptr, flags));
}

} // namespace
