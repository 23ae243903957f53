#include "FontFixture.h"
#include "support/CountedAllocations.h"

#include <gtest/gtest.h>

#include <functional>
#include <ios>
#include <limits>
#include <random>

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

// Whatever a file says: it is loaded or refused, a font that draws has all it needs, and text can be laid out.
TEST_F(FontFileTest, DamagedFilesAreRefusedOrHarmless)
{
#if defined(__SANITIZE_ADDRESS__) || !defined(NDEBUG)
    constexpr int cRounds = 5'000;
#else
    constexpr int cRounds = 100'000;
#endif
    const FontFile fonts[] = {FontFile(U"zebra"), FontFile(U"a"), FontFile(U"\U0010FFFFx\u3042\u00E9 a")};
    std::mt19937 random(1);
    const auto below = [&](std::size_t n) { return random() % n; };
    int nLoaded = 0;
    int nThrown = 0;
    for (int round = 0; round < cRounds; ++round)
    {
        std::string bytes = fonts[below(3)].bytes();
        if (below(4) == 0)
            bytes.resize(below(bytes.size()));
        for (std::size_t n = below(4); n > 0 && !bytes.empty(); --n)
        {
            const std::size_t pos =
                below(2) == 0 ? below(bytes.size()) : below(std::min<std::size_t>(bytes.size(), 56));
            bytes[pos] = below(3) == 0 ? "\0\xFF\x7F\x80"[below(4)] : static_cast<char>(below(256));
        }
        const std::string path = write(bytes);
        bool isLoaded = false;
        test::largestAllocation();
        try
        {
            isLoaded = font().load(path.c_str()) != nullptr;
            EXPECT_EQ(log.take().empty(), isLoaded);
        }
        catch (const std::ios_base::failure&)
        {
            ++nThrown;
        }
        ASSERT_TRUE(isLoaded || test::largestAllocation() < 20'000);
        nLoaded += isLoaded ? 1 : 0;
        ASSERT_EQ(trace.aliveNames(test::GLTrace::Kind::Texture).size(), isLoaded ? 1u : 0u);
        for (const td::BYTE alignment : {Font::cLeft, Font::cCentre, Font::cRight})
            font().addString({1, 2}, "z\n\na\xFF \u3042", 0, Format{.hAlignment = alignment});
        font().reset();
        trace.clear();
        std::ignore = asserts.caught("nextTx > tx");
    }
    EXPECT_GT(nLoaded, cRounds / 10);
    EXPECT_GT(nThrown, cRounds / 10);
}

} // namespace
