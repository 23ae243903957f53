#include "FontFixture.h"
#include "PlainLayout.h"
#include "support/CountedAllocations.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <random>

namespace
{

using test::FontFile;
using test::PlainLayout;

constexpr std::u32string_view cCharacters = U"zeb\u00E9\u0416a\u2019\u3042\uFFFD\U0001F600\U0010FFFF\u2027.";

/// Text of all kinds: known and unknown code points of every plane, spaces and breaks, and bytes that are no text.
std::string randomText(std::mt19937& random)
{
    const auto below = [&](std::size_t n) { return random() % n; };
    static constexpr std::u32string_view cKnown =
        U"zeba.?\u00E9\u0416\u3042\U0001F600\U0010FFFF \t\n\r\u2028\u2029\u00A0\u3000";
    static constexpr const char* cNoText[] = {"\xE2\x80", "\xF0\x9F\x98", "\xC0\xAF", "\xED\xA0\x80"};
    std::string text;
    for (std::size_t n = below(24); n > 0; --n)
    {
        const std::size_t kind = below(8);
        if (kind == 0)
            text += static_cast<char>(below(256)); // a zero too
        else if (kind == 1)                        // of any plane
            text += {char(0xF0 + below(5)), char(0x80 + below(64)), char(0x80 + below(64)), char(0x80 + below(64))};
        else if (kind == 2)
            text += cNoText[below(4)];
        else
            text += test::encoded(cKnown[below(cKnown.size())]);
    }
    return text;
}

/// What is no number is one and the same.
std::vector<unsigned int> bits(const std::vector<float>& values)
{
    std::vector<unsigned int> result(values.size());
    std::transform(values.begin(), values.end(), result.begin(),
                   [](float value) { return std::isnan(value) ? ~0u : std::bit_cast<unsigned int>(value); });
    return result;
}

std::vector<unsigned int> bits(const td::Size<float>& size)
{
    return bits(std::vector<float>{size.width, size.height});
}

/// Most often a number of the range.
float randomNumber(std::mt19937& random, float from, float to)
{
    static constexpr float cOthers[] = {0.0f, -0.0f, 1e-44f, -1.0f, -2.5f, 3e38f, 1.0f, INFINITY, -INFINITY, NAN};
    return random() % 16 == 0 ? cOthers[random() % std::size(cOthers)]
                              : std::uniform_real_distribution<float>(from, to)(random);
}

class FontLayoutTest : public test::FontFixture
{
protected:
    void SetUp() override { ASSERT_TRUE(readInto(font(), file)); }

    static FontFile irregularFont()
    {
        FontFile result(cCharacters);
        std::shuffle(result.glyphs.begin(), result.glyphs.end(), std::mt19937(3));
        for (std::size_t i = 0; i < result.glyphs.size(); ++i)
            result.glyphs[i].tx = static_cast<float>(i) / static_cast<float>(result.glyphs.size());
        return result;
    }

    /// The same in both.
    void setSpaces(PlainLayout& plain, float additional, float ofLines)
    {
        font().setAdditionalSpaceBetweenGlyphs(plain.additionalSpace = additional);
        font().setSpaceBetweenLines(plain.lineSpacing = ofLines);
    }

    const FontFile file = irregularFont();
};

TEST_F(FontLayoutTest, EqualsThePlainLayoutBitForBit)
{
    std::mt19937 random(7);
    const auto number = [&](float from, float to) { return randomNumber(random, from, to); };
    PlainLayout plain{.file = file, .vertices = {}};
    for (int round = 0; round < 4000; ++round)
    {
        setSpaces(plain, random() % 2 == 0 ? 0.0f : number(-1, 3), random() % 2 == 0 ? 1.0f : number(-2, 9));
        const Format format{.scale = random() % 4 == 0 ? 1.0f : number(0.1f, 3),
                            .hAlignment = static_cast<td::BYTE>(random() % 4)};
        const td::Point<float> pos(number(-300, 300), number(-300, 300));
        if (random() % 4 == 0) // until there is no room
            font().reserve(random() % 24);
        const std::string text = randomText(random);
        // In memory of its size, without a zero behind it. An empty text is one up to its zero.
        const std::vector<char> exact(text.empty() ? std::vector<char>{'\0'}
                                                   : std::vector<char>(text.begin(), text.end()));
        const auto len = static_cast<unsigned int>(text.size());

        plain.vertices.clear();
        const td::Size<float> expected = plain.addString(pos, text, format);
        const td::Size<float> size = font().addString(pos, exact.data(), len, format);
        EXPECT_EQ(bits(size), bits(expected)) << round;
        ASSERT_EQ(bits(takeVertices(font())), bits(plain.vertices)) << round;

        const unsigned int start = static_cast<unsigned int>(random()) % (len + 2);
        const unsigned int count = random() % 3 == 0 ? 0 : static_cast<unsigned int>(random()) % (len + 3 - start);
        td::Size<float> expectedPart;
        if (start + count <= len)
            expectedPart =
                plain.measure(PlainLayout::decoded(text.substr(start, count == 0 ? std::string::npos : count)));
        const td::Size<float> part = font().measure(exact.data(), len, {start, count});
        EXPECT_EQ(bits(part), bits(expectedPart)) << round;
    }
}

// The vertices of a string that is taken for the one before would be those of that one, or of what was written over them.
TEST_F(FontLayoutTest, StringsAddedAgainAreLaidOutAsTheFirstTime)
{
    struct String
    {
        std::string text;
        td::Point<float> pos;
        Format format;
    };
    std::mt19937 random(11);
    const auto below = [&](std::size_t n) { return random() % n; };
    const auto number = [&] { return static_cast<float>(below(4)); };
    const auto randomString = [&] {
        return String{
            randomText(random), {number(), number()}, {.scale = 1 + number(), .hAlignment = td::BYTE(below(3))}};
    };
    FontFile files[] = {file, file};
    for (FontFile::Glyph& glyph : files[1].glyphs)
        glyph.advance += 1;
    PlainLayout plain{.file = file, .vertices = {}};
    std::vector<String> strings(4, randomString());
    const auto reload = [&]
    {
        plain.file = files[below(2)];
        EXPECT_TRUE(readInto(font(), plain.file));
    };
    const auto change = [&](String& string)
    {
        switch (below(8))
        {
        case 0:
            string = randomString();
            return;
        case 1:
            string.text += " \t"[below(2)];
            return;
        case 2:
            string.text.assign(string.text.size(), "za "[below(3)]);
            return;
        case 3:
            string.pos.x = -string.pos.x;
            return;
        case 4:
            string.pos.y = number();
            return;
        case 5:
            string.format.scale = number();
            return;
        case 6:
            string.format.hAlignment = td::BYTE(below(3));
            return;
        default:
            string.text = string.text.substr(0, below(string.text.size() + 1));
        }
    };
    for (int frame = 0; frame < 3000; ++frame)
    {
        const std::size_t place = below(strings.size());
        switch (below(16))
        {
        case 0:
            strings.insert(strings.begin() + std::ptrdiff_t(place), randomString());
            break;
        case 1:
            if (strings.size() > 4)
                strings.resize(place + 1);
            break;
        case 2:
            setSpaces(plain, number() / 4, number());
            break;
        case 3:
            font().reserve(below(200));
            break;
        case 4:
            font().release();
            break;
        case 5:
            reload();
            break;
        default:
            change(strings[place]);
        }
        plain.vertices.clear();
        const std::size_t disturbed = below(40); // in the middle of the strings
        for (std::size_t i = 0; i < strings.size(); ++i)
        {
            const auto& [text, pos, format] = strings[i];
            if (i == disturbed && below(2) == 0)
                reload();
            else if (i == disturbed)
            {
                const unsigned char z[] = {'z', ' '};
                EXPECT_EQ(bits(font().addGlyphs(pos, z, z + 2, 2)), bits(plain.addGlyphs(pos, {'z', ' '}, 2)));
            }
            const td::Size<float> expected = plain.addString(pos, text, format);
            EXPECT_EQ(bits(font().addString(pos, text.c_str(), text.size(), format)), bits(expected)) << frame;
        }
        ASSERT_EQ(bits(takeVertices(font())), bits(plain.vertices)) << frame;
    }
}

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
        EXPECT_EQ(bits(font().addString({1, 2}, text.c_str(), 0, Format{})), bits(expected)) << n;
        EXPECT_EQ(bits(takeVertices(font())), bits(plain.vertices)) << n;
    }
}

TEST_F(FontLayoutTest, EveryCodePointHasItsGlyphOrTheLast)
{
    const PlainLayout plain{.file = file, .vertices = {}};
    std::vector<char32_t> wrong;
    for (char32_t c = 1; c <= 0x10FFFF; ++c)
    {
        const std::string utf8 = test::encoded(c);
        if ((c < 0xD800 || c >= 0xE000) && font().measure(utf8.data(), utf8.size(), {}) != plain.measure({c}))
            wrong.push_back(c);
    }
    EXPECT_TRUE(wrong.empty()) << wrong.size() << ", the first " << std::hex << unsigned(wrong.front());
}

// The text hello, two glyphs of the same metrics, and lines: figures worked out by hand.
TEST_F(FontLayoutTest, WorkedExamples)
{
    FontFile two(U"ABhelo");
    two.lineHeight = 20;
    for (FontFile::Glyph& glyph : two.glyphs)
        glyph = {glyph.codePoint, 0, 8, 10, glyph.tx};
    ASSERT_TRUE(readInto(font(), two));
    const float sixth = two.glyphs[1].tx, third = two.glyphs[2].tx;
    const auto add = [&](const char* str, float x, td::BYTE alignment) {
        return font().addString({x, 50}, str, 0, Format{.scale = 1, .hAlignment = alignment});
    };
    EXPECT_EQ(add("AB", 0, Font::cLeft), td::Size<float>(18, 21));
    EXPECT_EQ(takeVertices(font()),
              (std::vector<float>{-1, 70, 0,     1, 9, 50, sixth, 0, -1, 50, 0,     0, -1, 70, 0,     1,
                                  9,  70, sixth, 1, 9, 50, sixth, 0, 8,  70, sixth, 1, 18, 50, third, 0,
                                  8,  50, sixth, 0, 8, 70, sixth, 1, 18, 70, third, 1, 18, 50, third, 0}));
    // {the first x, the second quad's x, its top}
    const auto corners = [&]
    {
        const std::vector<float> v = takeVertices(font());
        return v.size() == 48 ? std::vector<float>{v[0], v[24], v[29]} : std::vector<float>{};
    };
    EXPECT_EQ(add("A\nB", 0, Font::cLeft), td::Size<float>(9, 42));
    EXPECT_EQ(corners(), (std::vector<float>{-1, -1, 71}));
    EXPECT_EQ(add("AB", 100, Font::cCentre), td::Size<float>(18, 21));
    EXPECT_EQ(corners(), (std::vector<float>{90, 99, 50}));
    EXPECT_EQ(add("A\n\nB", 100, Font::cRight), td::Size<float>(9, 42));
    EXPECT_EQ(corners(), (std::vector<float>{90, 90, 71}));
    EXPECT_EQ(add("\nAB", 100, Font::cRight), td::Size<float>(18, 21));
    EXPECT_EQ(corners(), (std::vector<float>{81, 90, 50}));
    EXPECT_EQ(add("", 0, Font::cLeft), td::Size<float>());

    const td::String hello("hello");
    EXPECT_EQ(font().measure(hello, {2, 0}), td::Size<float>(27, 21));
    EXPECT_EQ(font().measure(hello, {4, 3}), td::Size<float>());
    EXPECT_EQ(font().measure(hello, {5, 0}), td::Size<float>());
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
