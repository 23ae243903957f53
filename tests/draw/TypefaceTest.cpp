#include <gui/draw/TextLayout.h>
#include <gui/draw/Typeface.h>

#include "support/CapturedLog.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <numeric>
#include <string>
#include <utility>
#include <vector>

namespace
{

using gui::draw::GlyphImage;
using gui::draw::Path;
using gui::draw::Typeface;

const std::string cDejaVu = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf";
// Debian 12 has it under the first name, with one axis less.
const std::string cVariable = []
{
    const std::string folder = "/usr/share/fonts/truetype/inter-vf/", old = folder + "Inter-roman.var.ttf";
    return std::filesystem::exists(old) ? old : folder + "InterVariable.ttf";
}();
const std::string cLayers = "/usr/share/fonts/opentype/fonts-hosny-amiri/AmiriQuranColored.ttf";
const std::string cPictures = "/usr/share/fonts/truetype/noto/NotoColorEmoji.ttf";

double areaOf(const Path& path)
{
    const gui::draw::Polylines lines = path.flatten(0.1);
    double area = 0;
    for (const auto& line : lines.lines)
        for (std::size_t i = 0; i < line.count; ++i)
        {
            const auto p = lines.points[line.first + i], q = lines.points[line.first + (i + 1) % line.count];
            area += p.x * q.y - q.x * p.y;
        }
    return std::abs(area) / 2;
}

struct Coverage
{
    double sum = 0, x = 0, y = 0; // in pixels, from the pen, y downwards
};

Coverage coverageOf(const GlyphImage& image)
{
    Coverage coverage;
    for (unsigned int y = 0; y < image.height; ++y)
        for (unsigned int x = 0; x < image.width; ++x)
        {
            const double value = image.pixels[y * image.width + x] / 255.0;
            coverage.sum += value;
            coverage.x += value * (image.left + x + 0.5);
            coverage.y += value * (double(y) - image.top + 0.5);
        }
    coverage.x /= coverage.sum;
    coverage.y /= coverage.sum;
    return coverage;
}

// A picture that is upside down, beside its place, or of another size than the outline.
TEST(TypefaceTest, PicturesAreWhereTheOutlinesAre)
{
    for (const std::string& file : {cDejaVu, cVariable})
    {
        const Typeface face = Typeface::fromFile(file.c_str());
        ASSERT_TRUE(face) << file;
        for (const char32_t c : U"Lgo")
        {
            const std::uint32_t glyph = face.getGlyph(c);
            if (c == 0)
                continue;
            constexpr double cSize = 50.5;
            const double scale = cSize / face.getMetrics().unitsPerEm;
            const Path outline = face.getOutline(glyph);
            const auto image = face.getImage(glyph, {.pixelsPerEm = cSize, .isHinted = false});
            ASSERT_TRUE(image && !image->isColor);
            const Coverage coverage = coverageOf(*image);
            EXPECT_NEAR(coverage.sum, areaOf(outline) * scale * scale, 0.02 * coverage.sum) << glyph;
            const Typeface::Rect bounds = face.getBounds(glyph).value(), drawn = outline.getBounds().value();
            EXPECT_NEAR(bounds.top, drawn.top, 1);
            EXPECT_NEAR(bounds.right, drawn.right, 1);
            EXPECT_NEAR(-image->top, bounds.top * scale, 1);
            EXPECT_NEAR(image->left, bounds.left * scale, 1);
            const auto moved = face.getImage(glyph, {.pixelsPerEm = cSize, .quarter = 3, .isHinted = false});
            EXPECT_NEAR(coverageOf(*moved).x - coverage.x, 0.75, 0.02);
            EXPECT_NEAR(coverageOf(*moved).y, coverage.y, 0.02);
        }
    }
    // Hinted, the flat top of an x is at a row's edge: no row above it is half covered.
    const Typeface face = Typeface::fromFile(cDejaVu.c_str());
    const auto image = face.getImage(face.getGlyph('z'), {.pixelsPerEm = 15.3});
    EXPECT_EQ(*std::max_element(image->pixels.begin(), image->pixels.begin() + image->width), 255);
}

TEST(TypefaceTest, AxesMoveOutlinesAdvancesAndPictures)
{
    const Typeface face = Typeface::fromFile(cVariable.c_str());
    const auto axes = face.getAxes();
    const auto found = std::find_if(axes.begin(), axes.end(),
                                    [](const Typeface::Axis& axis) { return axis.tag == gui::draw::FontTag("wght"); });
    ASSERT_NE(found, axes.end());
    const Typeface::Axis axis = *found;
    const Typeface bold = face.withVariations({{"wght", 1e9}, {"none", 3}}), thin = face.withVariations({{"wght", 0}});
    const auto weightOf = [](const Typeface& of)
    {
        for (const auto& variation : of.getVariations())
            if (variation.axis == gui::draw::FontTag("wght"))
                return variation.value;
        return -1.0;
    };
    EXPECT_EQ(weightOf(bold), axis.maximum);
    EXPECT_EQ(weightOf(thin), axis.minimum);
    EXPECT_NE(bold.getID(), face.getID());
    const std::uint32_t glyph = face.getGlyph('n');
    EXPECT_GT(areaOf(bold.getOutline(glyph)), 1.5 * areaOf(thin.getOutline(glyph)));
    EXPECT_GT(bold.getAdvance(glyph), thin.getAdvance(glyph));
    EXPECT_GT(coverageOf(*bold.getImage(glyph, {.pixelsPerEm = 40})).sum,
              1.5 * coverageOf(*thin.getImage(glyph, {.pixelsPerEm = 40})).sum);
    EXPECT_EQ(Typeface::fromFile(cDejaVu.c_str()).withVariations({{"wght", 700}}).getAxes().size(), 0U);
}

TEST(TypefaceTest, CharactersComeFromTheFirstFaceThatHasThem)
{
    const Typeface plain = Typeface::fromFile(cDejaVu.c_str()), emoji = Typeface::fromFile(cPictures.c_str());
    const Typeface face = Typeface::fromFile(cVariable.c_str()).withFallbacks({emoji, plain}, false);
    EXPECT_EQ(face.forCharacter('a'), face);
    EXPECT_EQ(face.forCharacter(0x1F600), emoji) << "the first one in the list, though the second has it too";
    EXPECT_EQ(face.forCharacter(0x5D0), plain);
    EXPECT_FALSE(face.forCharacter(0x5B57)) << "the system was asked, or a face without it is given";
    EXPECT_EQ(face.getID(), face.withFallbacks({}).getID());
    for (const char32_t c : {0xE01, 0x915, 0x5B57, 0x1F600})
    {
        const Typeface other = Typeface::named("DejaVu Serif").forCharacter(c);
        ASSERT_TRUE(other) << std::hex << unsigned(c);
        EXPECT_NE(other.getGlyph(c), 0U);
        EXPECT_EQ(other, Typeface::named("DejaVu Serif").forCharacter(c));
    }
}

TEST(TypefaceTest, TheSystemKnowsFamiliesByWeightAndSlant)
{
    const Typeface bold = Typeface::named("DejaVu Sans", {.weight = 700, .slant = Typeface::Slant::Oblique});
    EXPECT_EQ(bold.getFamily(), "DejaVu Sans");
    const Typeface plain = Typeface::named("DejaVu Sans");
    EXPECT_EQ(plain, Typeface::named("DejaVu Sans"));
    EXPECT_NE(plain, bold);
    const auto& metrics = plain.getMetrics();
    EXPECT_EQ(metrics.unitsPerEm, 2048);
    EXPECT_GT(metrics.ascent, metrics.capHeight);
    EXPECT_GT(metrics.capHeight, metrics.xHeight);
    EXPECT_NEAR(metrics.xHeight, -plain.getBounds(plain.getGlyph('x'))->top, 1);
    EXPECT_NEAR(metrics.capHeight, -plain.getBounds(plain.getGlyph('H'))->top, 1);
    EXPECT_GT(metrics.descent, 0);
    EXPECT_GT(metrics.underlinePosition, 0);
    EXPECT_GT(metrics.strikeoutPosition, 0);
    const auto features = plain.getFeatures();
    EXPECT_NE(std::ranges::find(features, gui::draw::FontTag("kern")), features.end());
}

// A program's own faces under a name, the nearest of them to a look; and the system's again.
TEST(TypefaceTest, AProgramBringsItsOwnFaces)
{
    using Slant = Typeface::Slant;
    const Typeface regular = Typeface::fromFile(cDejaVu.c_str());
    const Typeface bold = Typeface::fromFile("/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf");
    const Typeface italic = Typeface::named("C059", {.slant = Slant::Italic});
    const Typeface narrow = Typeface::named("Nimbus Sans Narrow");
    ASSERT_TRUE(regular && bold);
    ASSERT_EQ(italic.getFamily(), "C059");
    ASSERT_EQ(narrow.getFamily(), "Nimbus Sans Narrow");
    Typeface::provide("Ours", {bold, Typeface(), narrow, italic, regular});
    const struct
    {
        Typeface::Look look;
        const Typeface& face;
    } cases[] = {{{}, regular},
                 {{.weight = 250}, regular},
                 {{.weight = 480}, regular},
                 {{.weight = 510}, bold},
                 {{.weight = 900}, bold},
                 {{.slant = Slant::Italic}, italic},
                 {{.weight = 900, .slant = Slant::Oblique}, italic},
                 {{.width = 60}, narrow},
                 {{.weight = 700, .slant = Slant::Italic, .width = 80}, narrow},
                 {{.weight = 700, .width = 150}, bold}};
    for (const auto& each : cases)
        EXPECT_EQ(Typeface::named("Ours", each.look), each.face)
            << each.look.weight << ' ' << int(each.look.slant) << ' ' << each.look.width;

    Typeface::provide("Ours", {Typeface::fromFile(cVariable.c_str())});
    for (const auto& [wish, weight] : {std::pair(637.0, 637.0), {5000.0, 900.0}, {400.0, 400.0}})
    {
        const Typeface face = Typeface::named("Ours", {.weight = wish});
        const auto places = face.getVariations();
        const auto found = std::ranges::find(places, gui::draw::FontTag("wght"), &gui::draw::FontVariation::axis);
        ASSERT_NE(found, places.end());
        EXPECT_EQ(found->value, weight);
        EXPECT_EQ(face, Typeface::named("Ours", {.weight = wish}));
    }

    const Typeface systems = Typeface::named("sans-serif");
    const auto width = [](const Typeface& face)
    { return gui::draw::TextLayout("Illimani", {.face = face, .size = 100}).getSize().width; };
    Typeface::provide("sans-serif", {italic});
    EXPECT_EQ(width({}), width(italic));
    Typeface::provide("sans-serif", {});
    EXPECT_EQ(Typeface::named("sans-serif"), systems);
    EXPECT_EQ(width({}), width(systems));
    EXPECT_NE(width({}), width(italic));
}

// Pictures that are scaled keep their place and colours; layers have the colours of the font and of the text.
TEST(TypefaceTest, GlyphsInColor)
{
    const Typeface emoji = Typeface::fromFile(cPictures.c_str());
    const std::uint32_t smile = emoji.getGlyph(0x1F600);
    ASSERT_TRUE(emoji.isColorGlyph(smile));
    EXPECT_TRUE(emoji.getOutline(smile).isEmpty());
    const auto large = emoji.getImage(smile, {.pixelsPerEm = 400}), small = emoji.getImage(smile, {.pixelsPerEm = 20});
    ASSERT_TRUE(large && small && large->isColor && small->isColor);
    EXPECT_LT(large->pixelsPerEm, 400);
    EXPECT_EQ(small->pixelsPerEm, 20);
    EXPECT_NEAR(small->width, large->width * 20 / large->pixelsPerEm, 2);
    EXPECT_NEAR(small->top, large->top * 20 / large->pixelsPerEm, 1);
    const auto centerOf = [](const GlyphImage& image)
    {
        const td::BYTE* const p = &image.pixels[4 * ((image.height * 2 / 5) * image.width + image.width / 2)];
        return std::array<int, 4>{p[0], p[1], p[2], p[3]};
    };
    const auto yellow = centerOf(*small);
    EXPECT_GT(yellow[0], 200);
    EXPECT_GT(yellow[1], 150);
    EXPECT_LT(yellow[2], 120);
    EXPECT_EQ(yellow[3], 255);

    const Typeface layers = Typeface::fromFile(cLayers.c_str());
    bool takesForeground = false;
    for (std::uint32_t glyph = 0; glyph < layers.getNumberOfGlyphs() && !takesForeground; ++glyph)
    {
        if (!layers.isColorGlyph(glyph))
            continue;
        const auto black = layers.getImage(glyph, {.pixelsPerEm = 20});
        const auto red = layers.getImage(glyph, {.pixelsPerEm = 20, .foreground = "#ff0000"});
        ASSERT_TRUE(black && red && black->isColor);
        takesForeground = black->pixels != red->pixels;
    }
    EXPECT_TRUE(takesForeground);
}

TEST(TypefaceTest, RefusesWhatIsNoFont)
{
    test::CapturedLog log;
    EXPECT_FALSE(Typeface::fromFile("/nowhere.ttf"));
    EXPECT_TRUE(log.said("ERROR! Typeface::fromFile cannot open font file: /nowhere.ttf"));
    EXPECT_FALSE(Typeface::fromFile(":nowhere.ttf"));
    EXPECT_TRUE(log.said("ERROR! Typeface::fromFile cannot open font file: :nowhere.ttf"));
    EXPECT_FALSE(Typeface::fromFile("/dev/zero"));
    EXPECT_TRUE(log.said("ERROR! Typeface::fromFile cannot open font file: /dev/zero"));
    EXPECT_FALSE(Typeface::fromFile("/etc/passwd"));
    EXPECT_TRUE(
        log.said("ERROR! Typeface::fromFile cannot use font file: /etc/passwd (not a TrueType or OpenType font)"));
    EXPECT_FALSE(Typeface::fromFile(cDejaVu.c_str(), 3));
    EXPECT_TRUE(log.said("ERROR! Typeface::fromFile cannot use font file: " + cDejaVu + " (no face of index 3)"));
    EXPECT_FALSE(Typeface::fromMemory({}));
    EXPECT_TRUE(log.said("ERROR! Typeface::fromMemory cannot use font of 0 bytes (not a TrueType or OpenType font)"));

    std::ifstream file(cDejaVu, std::ios::binary);
    std::vector<td::BYTE> bytes{std::istreambuf_iterator<char>(file), {}};
    const Typeface face = Typeface::fromMemory(bytes);
    ASSERT_TRUE(face);
    std::ranges::fill(bytes, 0); // it was copied
    EXPECT_FALSE(face.getOutline(face.getGlyph('a')).isEmpty());
    EXPECT_TRUE(face.getOutline(1u << 20).isEmpty());
    EXPECT_FALSE(face.getImage(1u << 20, {}));
    EXPECT_TRUE(
        log.said("ERROR! Typeface::getImage cannot draw glyph 1048576 of DejaVu Sans at 16 pixels (no such glyph)"));
    EXPECT_FALSE(face.getImage(face.getGlyph('a'), {.pixelsPerEm = 5000}));
    EXPECT_TRUE(
        log.said("ERROR! Typeface::getImage cannot draw glyph 68 of DejaVu Sans at 5000 pixels (no such size)"));
    EXPECT_FALSE(Typeface().getImage(0, {}));
    EXPECT_EQ(Typeface().forCharacter('a'), Typeface());
}

} // namespace
