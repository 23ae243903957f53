#include <gui/draw/Typeface.h>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <map>
#include <string>
#include <utility>

namespace
{

using gui::draw::GlyphImage;
using gui::draw::Typeface;
using Rgba = std::array<int, 4>;

const Rgba cRed{255, 0, 0, 255}, cGreen{0, 255, 0, 255}, cBlue{0, 0, 255, 255}, cClear{};

// The font's glyphs are at most 800 units of 1000 wide and high: a pixel is a unit, and pictures are of many bands.
struct ColorGlyphTest : testing::Test
{
    const Typeface face = Typeface::fromFile(":type/paints.ttf");

    const GlyphImage& drawn(char32_t character, double pixelsPerEm = 1000)
    {
        const auto [found, isNew] = images.try_emplace({character, pixelsPerEm});
        if (!isNew)
            return found->second;
        const std::uint32_t glyph = face.getGlyph(character);
        EXPECT_TRUE(face.isColorGlyph(glyph));
        const auto image = face.getImage(glyph, {.pixelsPerEm = pixelsPerEm, .foreground = "#ff8000"});
        EXPECT_TRUE(image && image->isColor);
        return found->second = image.value_or(GlyphImage());
    }

    std::map<std::pair<char32_t, double>, GlyphImage> images;

    /// What is to the right of a place, and above it; y upwards.
    static Rgba colorAt(const GlyphImage& image, int x, int y)
    {
        const int column = x - image.left, row = image.top - 1 - y;
        if (column < 0 || row < 0 || column >= int(image.width) || row >= int(image.height))
            return cClear;
        const td::BYTE* const p = &image.pixels[4 * (std::size_t(row) * image.width + std::size_t(column))];
        return {p[0], p[1], p[2], p[3]};
    }

    static void expectColor(const GlyphImage& image, int x, int y, const Rgba& color)
    {
        const Rgba found = colorAt(image, x, y);
        for (std::size_t i = 0; i < 4; ++i)
            EXPECT_NEAR(found[i], color[i], 1) << x << ' ' << y << " component " << i;
    }
};

// A source of #cc9966 and 3/4 alpha on a backdrop of #3366cc and 1/2, by the formulas of "Compositing and Blending
// Level 1" and, up to 2, by cairo.
constexpr std::array<Rgba, 28> cComposites{
    {{0, 0, 0, 0},         {153, 115, 77, 191},  {26, 51, 102, 128},   {159, 127, 102, 223}, {102, 108, 140, 223},
     {77, 57, 38, 96},     {19, 38, 77, 96},     {77, 57, 38, 96},     {6, 13, 26, 32},      {83, 70, 64, 128},
     {96, 96, 115, 191},   {83, 70, 64, 128},    {179, 166, 179, 255}, {163, 143, 148, 223}, {113, 116, 136, 223},
     {102, 108, 102, 223}, {159, 127, 140, 223}, {179, 166, 159, 223}, {83, 70, 112, 223},   {148, 120, 125, 223},
     {116, 113, 137, 223}, {140, 89, 102, 223},  {148, 120, 117, 223}, {98, 93, 94, 223},    {143, 101, 66, 223},
     {108, 108, 127, 223}, {135, 103, 78, 223},  {129, 132, 159, 223}}};

TEST_F(ColorGlyphTest, CompositesAreThoseOfTheFormulas)
{
    const Rgba source{153, 115, 77, 191}, backdrop{26, 51, 102, 128};
    // Where one of both is alone it is there or not; in the order of the modes.
    const std::string showsSource = "0101100100111111111111111111", showsBackdrop = "0011100011011111111111111111";
    for (std::size_t mode = 0; mode < cComposites.size(); ++mode)
    {
        SCOPED_TRACE(mode);
        const GlyphImage& image = drawn(0xE000 + char32_t(mode));
        expectColor(image, 150, 400, showsBackdrop[mode] == '1' ? backdrop : cClear);
        expectColor(image, 400, 400, cComposites[mode]);
        expectColor(image, 650, 400, showsSource[mode] == '1' ? source : cClear);
    }
}

TEST_F(ColorGlyphTest, GradientsAreWhereTheFontHasThem)
{
    struct
    {
        char32_t glyph;
        int x, y;
        double t; // from red to blue
    } const cases[] = {
        // From 200 to 600; every 200, along a line that leans; and what is there at the ends.
        {'L', 300, 100, .25},
        {'L', 100, 700, 0},
        {'L', 700, 700, 1},
        {'M', 250, 20, .25},
        {'M', 450, 700, .25},
        {'M', 50, 300, .25},
        // Around the middle from 100 to 300; every 200; a cone.
        {'R', 600, 400, .5},
        {'R', 400, 420, 0},
        {'R', 400, 750, 1},
        {'S', 500, 400, .5},
        {'S', 400, 90, .55},
        {'T', 200, 400, .2},
        {'T', 20, 400, 0},
        // Counterclockwise from 90 degrees to 270; from 45 to 135, again and again; from 0 to 90 and back again.
        {'U', 300, 500, .25},
        {'U', 600, 600, 0},
        {'U', 600, 200, 1},
        {'V', 400, 700, .5},
        {'V', 100, 400, .5},
        {'W', 641, 500, .25},
        {'W', 158, 500, .25}};
    for (const auto& each : cases)
    {
        SCOPED_TRACE(char(each.glyph));
        expectColor(drawn(each.glyph), each.x, each.y,
                    {int(std::lround(255 * (1 - each.t))), 0, int(std::lround(255 * each.t)), 255});
    }
    // Off the cone there is none; from clear red to blue, mirrored below 200 and above 400.
    expectColor(drawn('T'), 400, 600, cClear);
    const GlyphImage& mirrored = drawn('N');
    for (const int y : {300, 500, 100})
        expectColor(mirrored, 400, y, {64, 0, 64, 128});
    expectColor(mirrored, 400, 250, {48, 0, 16, 64});
    // An end that is abrupt has no steps.
    expectColor(drawn('S', 100), 59, 44, {128, 0, 128, 255});
}

TEST_F(ColorGlyphTest, PartsAreMovedAndCutOff)
{
    struct
    {
        int x, y;
        Rgba color;
    } const cells[] = {{50, 50, cRed},     {350, 50, cRed},    {610, 10, cRed},   {740, 140, cRed},
                       {50, 310, cRed},    {50, 440, cRed},    {50, 460, cClear}, {350, 350, cRed},
                       {650, 350, cRed},   {50, 650, cRed},    {425, 605, cRed},  {275, 695, cRed},
                       {275, 605, cClear}, {425, 695, cClear}, {610, 605, cRed},  {790, 695, cRed},
                       {610, 695, cClear}, {970, 120, cGreen}, {980, 130, cBlue}, {970, 60, cClear},
                       {200, 200, cClear}, {500, 500, cClear}};
    const GlyphImage& image = drawn('X');
    for (const auto& each : cells)
        expectColor(image, each.x, each.y, each.color);

    // A clip box, the same one of another glyph that is turned, and an outline within another one.
    const GlyphImage &boxed = drawn('A'), &turned = drawn('C'), &disc = drawn('D');
    EXPECT_EQ(boxed.top, 450);
    EXPECT_EQ(boxed.height, 450U);
    EXPECT_EQ(turned.left, 350);
    EXPECT_EQ(turned.width, 450U);
    expectColor(turned, 400, 700, cRed);
    expectColor(disc, 400, 790, cRed);
    expectColor(disc, 30, 30, cClear);
    // Faint layers, of which one has the text's colour.
    expectColor(drawn('B'), 600, 400, cGreen);
    expectColor(drawn('B'), 200, 400, {128, 128, 64, 255});
}

TEST_F(ColorGlyphTest, NumbersVary)
{
    const Typeface moved = face.withVariations({{"GROW", 0.5}});
    const std::uint32_t cell = face.getGlyph('v'), line = face.getGlyph('w');
    const auto colors = [](const Typeface& from, std::uint32_t glyph)
    { return from.getImage(glyph, {.pixelsPerEm = 1000}).value_or(GlyphImage()); };
    EXPECT_EQ(colors(face, cell).left, 0);
    expectColor(colors(face, cell), 50, 50, cRed);
    EXPECT_EQ(colors(moved, cell).left, 150);
    EXPECT_EQ(colors(moved, cell).top, 150);
    expectColor(colors(moved, cell), 200, 100, {191, 0, 0, 191});
    // The last stop is at 1/4 with alpha 1/2, and comes to 1/2 with 5/8.
    expectColor(colors(face, line), 300, 400, {0, 0, 128, 128});
    expectColor(colors(moved, line), 200, 400, {104, 0, 104, 207});
    expectColor(colors(moved, line), 500, 400, {0, 0, 159, 159});
}

// Paints without an end, without bounds, of millions of layers or of a thousand over each other are none: their glyphs
// are outlines. A large one takes a while, and no memory to speak of.
TEST_F(ColorGlyphTest, HostilePaintsEnd)
{
    for (const char32_t character : {U'a', U'b', U'c', U'd', U'e'})
    {
        const std::uint32_t glyph = face.getGlyph(character);
        EXPECT_FALSE(face.isColorGlyph(glyph));
        const auto image = face.getImage(glyph, {.pixelsPerEm = 100});
        EXPECT_TRUE(image && !image->isColor && image->width == 80);
    }
    const GlyphImage& large = drawn('D', 4096);
    for (const int y : {10, 1638, 3266})
        expectColor(large, 1638, y, cRed);
    expectColor(large, 10, 10, cClear);
    expectColor(large, 3266, 3266, cClear);
}

} // namespace
