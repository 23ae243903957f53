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

TEST(UTFConverter, NoBytesAreNoCharacters)
{
    const unsigned char bytes[] = {'a'};
    const UTFConverter::Flags flags = UTFConverter::Flags::None;
    EXPECT_EQ(UTFConverter::measureUTF8toUTF32(nullptr, nullptr, flags), 0);
    EXPECT_EQ(UTFConverter::measureUTF8toUTF32(bytes + 1, bytes, flags), 0);
    EXPECT_TRUE(UTFConverter::convertUTF8toUTF32(bytes + 1, bytes, nullptr, nullptr, flags));
}

} // namespace
