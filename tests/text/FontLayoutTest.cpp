#include "FontFixture.h"
#include "PlainLayout.h"
#include "support/CountedAllocations.h"

#include <cmath>
#include <string>
#include <vector>

namespace
{

using test::FontFile;
using test::PlainLayout;

class FontLayoutTest : public test::FontFixture
{
protected:
    void SetUp() override { ASSERT_TRUE(readInto(font(), file)); }

    const FontFile file{U"zeb\u00E9\u0416a\u2019\u3042\uFFFD\U0001F600\U0010FFFF\u2027."};
};

// Layout numbers what is no glyph too, and 16 bits are few.
TEST_F(FontLayoutTest, AsManyGlyphsAsCanBe)
{
    std::u32string characters(65535, U'\0');
    for (std::size_t i = 0; i < characters.size(); ++i)
        characters[i] = static_cast<char32_t>(0x20000 + i);
    const std::string text = test::encoded(characters[65531]) + " \n\t" + test::encoded(characters[65533]) + "a" +
                             test::encoded(characters[65534]);
    for (const std::size_t n : {65532u, 65533u, 65534u, 65535u})
    {
        PlainLayout plain{.file = FontFile(characters.substr(0, n)), .vertices = {}};
        ASSERT_TRUE(readInto(font(), plain.file));
        const td::Size<float> expected = plain.addString({1, 2}, text, {});
        EXPECT_EQ(font().addString({1, 2}, text.c_str(), 0, Format{}), expected) << n;
        EXPECT_EQ(takeVertices(font()), plain.vertices) << n;
    }
}

TEST_F(FontLayoutTest, EveryCodePointHasItsGlyphOrTheLast)
{
    // Whole numbers are added up otherwise.
    FontFile whole = file;
    whole.spaceWidth = 6;
    for (FontFile::Glyph& glyph : whole.glyphs)
        glyph = {glyph.codePoint, std::round(2 * glyph.bearing), glyph.width, std::round(glyph.advance), glyph.tx};
    for (const FontFile& one : {file, whole})
    {
        ASSERT_TRUE(readInto(font(), one));
        const PlainLayout plain{.file = one, .vertices = {}};
        std::vector<char32_t> wrong;
        for (char32_t c = 1; c <= 0x10FFFF; ++c)
        {
            const std::string utf8 = test::encoded(c) + " z" + test::encoded(c);
            if ((c < 0xD800 || c >= 0xE000) &&
                font().measure(utf8.data(), utf8.size(), {}) != plain.measure({c, ' ', 'z', c}))
                wrong.push_back(c);
        }
        EXPECT_TRUE(wrong.empty()) << wrong.size() << ", the first " << std::hex << unsigned(wrong.front());
    }
}

// The text hello and two glyphs of the same metrics: figures worked out by hand.
TEST_F(FontLayoutTest, WorkedExamples)
{
    FontFile two(U"ABhelo");
    two.lineHeight = 20;
    for (FontFile::Glyph& glyph : two.glyphs)
        glyph = {glyph.codePoint, 0, 8, 10, glyph.tx};
    ASSERT_TRUE(readInto(font(), two));
    const float sixth = two.glyphs[1].tx, third = two.glyphs[2].tx;
    EXPECT_EQ(font().addString({0, 50}, "AB", 0, Format{.scale = 1}), td::Size<float>(18, 21));
    EXPECT_EQ(takeVertices(font()),
              (std::vector<float>{-1, 70, 0,     1, 9, 50, sixth, 0, -1, 50, 0,     0, -1, 70, 0,     1,
                                  9,  70, sixth, 1, 9, 50, sixth, 0, 8,  70, sixth, 1, 18, 50, third, 0,
                                  8,  50, sixth, 0, 8, 70, sixth, 1, 18, 70, third, 1, 18, 50, third, 0}));
    EXPECT_EQ(font().addString({100, 50}, "A\n\nB", 0, Format{.scale = 1, .hAlignment = Font::cRight}),
              td::Size<float>(9, 42));
    const std::vector<float> v = takeVertices(font());
    EXPECT_EQ((std::vector<float>{v[0], v[24], v[29]}), (std::vector<float>{90, 90, 71})); // x, x and top of B

    const td::String hello("hello");
    EXPECT_EQ(font().measure(hello, {2, 0}), td::Size<float>(27, 21));
    EXPECT_EQ(font().measure(hello, {4, 3}), td::Size<float>());
    EXPECT_EQ(font().measure(hello, {0xFFFFFFFF, 2}), td::Size<float>()); // the sum wraps in 32 bits
}

TEST_F(FontLayoutTest, CostsNoAllocationOnceTheBuffersHaveGrown)
{
    const td::String text("\xC3\xA9 zeb\n\xE3\x81\x82 a longer line than before\nz");
    const auto layOut = [&]
    {
        for (const td::BYTE alignment : {Font::cLeft, Font::cCentre, Font::cRight})
            font().addString({1, 2}, text, Format{.hAlignment = alignment});
        font().measure(text, {});
    };
    font().reserve(500);
    layOut();
    font().reset();
    const unsigned long before = test::countedAllocations();
    layOut();
    EXPECT_EQ(test::countedAllocations(), before);
}

TEST_F(FontLayoutTest, RefusesWithoutATextAndWithoutGrowingEdges)
{
    const td::Size<float> nothing;
    const Format centred{.hAlignment = Font::cCentre};
    Font loose;
    EXPECT_EQ(loose.addString({}, "z", 0, centred), nothing); // no glyphs, no matter
    const unsigned char z[] = {'z'};
    EXPECT_EQ(loose.addGlyphs({}, z, z + 1, 1), nothing);
    ASSERT_TRUE(readInto(loose, file));
    EXPECT_EQ(loose.addString({}, "z\nz", 0, centred), nothing);
    EXPECT_TRUE(asserts.caught("_pUTF32"));
    EXPECT_EQ(loose.measure("z", 0, {}), nothing);
    EXPECT_TRUE(asserts.caught("_pUTF32"));
    EXPECT_EQ(loose.addString({}, "\n\n", 0, centred), nothing); // lines that are left out
    EXPECT_EQ(loose.getNoOfStrings(), 1U);
    EXPECT_EQ(loose.addString({}, nullptr, 0, centred), nothing);
    EXPECT_TRUE(asserts.caught("str != nullptr"));

    FontFile flat(U"zab");
    flat.glyphs[1].tx = flat.glyphs[2].tx;
    ASSERT_TRUE(readInto(font(), flat));
    font().addString({}, "z\nb", 0, centred);
    EXPECT_EQ(font().addString({}, "z\nza", 0, centred), nothing); // not half of it either
    EXPECT_TRUE(asserts.caught("nextTx > tx"));
    EXPECT_EQ(font().measure("az", 0, {1, 0}).height, flat.lineHeight + 1);
    EXPECT_EQ(takeVertices(font()).size(), 2u * 24);
}

} // namespace
