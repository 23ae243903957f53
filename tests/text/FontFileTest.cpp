#include "FontFixture.h"
#include "support/CountedAllocations.h"

#include <functional>
#include <ios>
#include <limits>

namespace
{

using test::FontFile;

class FontFileTest : public test::FontFixture
{
protected:
    /// The font's idea of its first file's text; (0, 0) when it has no glyphs.
    td::Size<float> measured() { return font().measure("zebra", 0, {}); }

    void expectGoodLoad()
    {
        const FontFile good(U"zebra");
        EXPECT_TRUE(readInto(font(), good));
        EXPECT_GT(measured().width, 30);
        EXPECT_EQ(measured().height, good.lineHeight + 1);
    }

    static constexpr std::size_t cPixelsAt = 36 + 5 * 20;
};

TEST_F(FontFileTest, BadValuesAreRefusedWithTheirCause)
{
    constexpr float cNaN = std::numeric_limits<float>::quiet_NaN();
    const std::string glyph2 = "texture coordinate of glyph 2 is not from 0 to 1 in file: ";
    const struct
    {
        std::function<void(FontFile&)> damage;
        std::string cause;
    } cases[] = {
        {[](FontFile& f) { f.glyphs.clear(); }, "detected zero glyphs in file: "},
        {[](FontFile& f) { f.glyphs[2].tx = cNaN; }, glyph2},
        {[](FontFile& f) { f.glyphs[2].tx = -0x1p-149f; }, glyph2},
        {[](FontFile& f) { f.glyphs[2].tx = 0x1.000002p0f; }, glyph2},
        {[](FontFile& f) { f.bitsPerPixel = 0; }, "cannot use 0 bits per pixel in file: "},
        {[](FontFile& f) { f.bitsPerPixel = 7; }, "cannot use 7 bits per pixel in file: "},
        {[](FontFile& f) { f.bitsPerPixel = 40; }, "cannot use 40 bits per pixel in file: "},
        {[](FontFile& f) { f.bitsPerPixel = 65535; }, "cannot use 65535 bits per pixel in file: "},
    };
    for (const auto& c : cases)
    {
        expectGoodLoad();
        FontFile file(U"zebra");
        c.damage(file);
        EXPECT_FALSE(readInto(font(), file));
        EXPECT_TRUE(log.said("ERROR! Font::load " + c.cause + folder.path("a.font")));
        EXPECT_EQ(measured(), td::Size<float>());
        EXPECT_EQ(metricC, 7);
    }
    expectGoodLoad();
    EXPECT_FALSE(font().loadBinaryData("no such file", image, metricC));
    EXPECT_GT(measured().width, 30); // as it was
    EXPECT_FALSE(font().loadBinaryData(nullptr, image, metricC));
    EXPECT_TRUE(asserts.caught("fileName != nullptr"));
}

TEST_F(FontFileTest, ShortFilesThrowBeforeMemoryIsTaken)
{
    const std::string bytes = FontFile(U"zebra").bytes();
    expectGoodLoad();
    const td::Size<float> whole = measured();
    for (std::size_t length = 0; length < bytes.size(); ++length)
    {
        const std::string path = write(bytes.substr(0, length));
        EXPECT_THROW(font().loadBinaryData(path.c_str(), image, metricC), std::ios_base::failure) << length;
        EXPECT_EQ(measured(), length < cPixelsAt ? td::Size<float>() : whole) << length;
    }

    const struct
    {
        unsigned int width;
        unsigned int height;
        unsigned short bitsPerPixel;
    } claims[] = {{0xFFFFFFFF, 0xFFFFFFFF, 32},
                  {0x80000000, 0x80000000, 32}, // the product of all wraps in 64 bits
                  {65536, 65536, 8},
                  {0x80000000, 2, 32}, // width times height wraps in 32 bits
                  {3, 2, 8},
                  {5, 1, 16}, // a byte too few, five
                  {0x40000000, 1, 32},
                  {1, 0x7FFFFFFF, 24},
                  {6000, 1, 32}}; // a byte of each is there
    for (const auto& claim : claims)
    {
        FontFile file(U"zebra");
        file.width = claim.width;
        file.height = claim.height;
        file.bitsPerPixel = claim.bitsPerPixel;
        file.pixels.resize(claim.width == 6000 ? 6000 : 5);
        test::largestAllocation();
        EXPECT_THROW(readInto(font(), file), std::ios_base::failure) << claim.width;
        EXPECT_LT(test::largestAllocation(), 20000u) << claim.width;
    }
    std::string manyGlyphs = bytes;
    manyGlyphs[34] = manyGlyphs[35] = '\xFF';
    test::largestAllocation();
    EXPECT_THROW(font().loadBinaryData(write(manyGlyphs).c_str(), image, metricC), std::ios_base::failure);
    EXPECT_LT(test::largestAllocation(), 20000u);
}

} // namespace
