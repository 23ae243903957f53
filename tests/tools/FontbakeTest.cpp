#include <fontbake/BakedFont.h>
#include <fontbake/Error.h>

#include <gui/Texture.h>
#include <sdl/Process.h>
#include <support/Images.h>
#include <text/PlainLayout.h>

#include <ft2build.h>
#include FT_FREETYPE_H

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <set>
#include <utility>

namespace
{

using namespace fontbake;

constexpr const char* cFonts[] = {GUIGL_SANS, GUIGL_SERIF, GUIGL_MONO};
constexpr const char* cLetters = "32-126,160-255,U+391-U+3A1,U+3B1-U+3C9,U+410-U+44F,U+1EA0-U+1EF9,U+300-U+303";

/// A font as it was written, and the pixels of its atlas.
struct Baked : test::FontFile
{
    explicit Baked(std::string_view bytes)
        : FontFile(parsed(bytes).value_or(FontFile(U"")))
    {
        EXPECT_FALSE(glyphs.empty()) << "no font";
        EXPECT_EQ(bitsPerPixel, 8);
        EXPECT_EQ(pixels.size(), std::size_t(width) * height);
    }

    int nRows() const { return static_cast<int>(height); }
    int at(int x, int y) const { return static_cast<unsigned char>(pixels[std::size_t(y) * width + std::size_t(x)]); }

    /// The first column of a glyph's cell; behind the last glyph, that behind the atlas.
    int leftOf(std::size_t glyph) const
    {
        const float edge = glyph < glyphs.size() ? glyphs[glyph].tx : 1;
        return static_cast<int>(std::lround(edge * static_cast<float>(width)));
    }

    bool isBlank(int left, int right, int top, int bottom) const
    {
        int sum = 0;
        for (int y = top; y < bottom; ++y)
            for (int x = left; x < right; ++x)
                sum += at(x, y);
        return sum == 0;
    }
};

Baked baked(const char* font, CharacterSet characters, const BakeSettings& settings, Hinting hinting = Hinting::Light)
{
    std::ranges::sort(characters);
    return Baked(fileOf(bake(Rasterizer(font, settings.size, hinting), characters, settings)));
}

std::string contentOf(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

struct Middle
{
    double x, y;
};

/// The middle of the ink, from the upper left corner.
template <typename CoverageAt>
Middle middleOfPixels(int width, int height, const CoverageAt& coverageAt)
{
    double sum = 0, x = 0, y = 0;
    for (int row = 0; row < height; ++row)
        for (int column = 0; column < width; ++column)
        {
            const double coverage = coverageAt(column, row);
            sum += coverage;
            x += coverage * (column + 0.5);
            y += coverage * (row + 0.5);
        }
    return {x / sum, y / sum};
}

/// Glyphs of a font as FreeType has them without any hinting.
class Reference
{
public:
    Reference(const char* font, int size)
    {
        EXPECT_EQ(FT_Init_FreeType(&_library), 0);
        EXPECT_EQ(FT_New_Face(_library, font, 0, &_face), 0);
        FT_Set_Pixel_Sizes(_face, 0, static_cast<FT_UInt>(size));
    }
    ~Reference() { FT_Done_FreeType(_library); }
    Reference(const Reference&) = delete;
    Reference& operator=(const Reference&) = delete;

    float advanceOf(char32_t codePoint)
    {
        EXPECT_EQ(FT_Load_Char(_face, codePoint, FT_LOAD_NO_HINTING), 0);
        return static_cast<float>(_face->glyph->linearHoriAdvance) / 65536;
    }

    /// Of the ink, to the right of the pen and above the baseline.
    Middle middleOf(char32_t codePoint)
    {
        EXPECT_EQ(FT_Load_Char(_face, codePoint, FT_LOAD_NO_HINTING | FT_LOAD_RENDER), 0);
        const FT_GlyphSlot slot = _face->glyph;
        const FT_Bitmap& bitmap = slot->bitmap;
        const Middle middle =
            middleOfPixels(int(bitmap.width), int(bitmap.rows),
                           [&](int column, int row) { return bitmap.buffer[row * bitmap.pitch + column]; });
        return {slot->bitmap_left + middle.x, slot->bitmap_top - middle.y};
    }

private:
    FT_Library _library = nullptr;
    FT_Face _face = nullptr;
};

TEST(Fontbake, CellsAreSideBySideWithBlankEdges)
{
    const CharacterSet characters = charactersOfRanges(cLetters);
    for (const char* font : cFonts)
        for (const BakeSettings& settings : {BakeSettings{4, 1}, {12, 1}, {17, 3}, {24, 1}, {35, 2}})
        {
            SCOPED_TRACE(font + (" at " + std::to_string(settings.size)));
            const Baked file = baked(font, characters, settings);
            EXPECT_LE(file.width, 16384U);
            EXPECT_EQ(file.lineHeight, float(file.height)) << "rows of the atlas are pixels of the line";
            std::set<std::uint32_t> codePoints;
            for (std::size_t i = 0; i < file.glyphs.size(); ++i)
            {
                SCOPED_TRACE(nameOf(file.glyphs[i].codePoint));
                codePoints.insert(file.glyphs[i].codePoint);
                const int left = file.leftOf(i);
                const int right = file.leftOf(i + 1);
                ASSERT_EQ(float(right - left), file.glyphs[i].width + file.glyphPadding)
                    << "columns are pixels of the quad";
                ASSERT_GE(file.glyphs[i].width, 0);
                EXPECT_TRUE(file.isBlank(left, left + settings.spread, 0, file.nRows()));
                EXPECT_TRUE(file.isBlank(right - settings.spread, right, 0, file.nRows()));
            }
            const int nColumns = file.leftOf(file.glyphs.size());
            EXPECT_TRUE(file.isBlank(0, nColumns, 0, settings.spread));
            EXPECT_TRUE(file.isBlank(0, nColumns, file.nRows() - settings.spread, file.nRows()));
            EXPECT_EQ(file.glyphs.front().tx, 0);
            EXPECT_EQ(codePoints.size(), characters.size() + 1);
            EXPECT_TRUE(std::ranges::includes(codePoints, characters));
        }
}

TEST(Fontbake, TheLastGlyphIsABox)
{
    for (const int size : {4, 12, 48})
    {
        // A character behind U+FFFD, and U+FFFD asked for.
        const Baked file = baked(GUIGL_SANS, charactersOfRanges("65,U+FFFD,U+1D538"), {size});
        ASSERT_EQ(file.glyphs.size(), 3U);
        EXPECT_EQ(file.glyphs[1].codePoint, 0x1D538U);
        EXPECT_EQ(file.glyphs[2].codePoint, 0xFFFDU);
        int edge = file.leftOf(2);
        while (file.isBlank(edge, edge + 1, 0, file.nRows()))
            ++edge;
        const int base = int(file.metricB) - 1;
        EXPECT_EQ(file.at(edge, base), 255) << "a corner on the baseline";
        EXPECT_EQ(file.at(edge, base + 1), 0);
        EXPECT_EQ(file.at(edge + size / 4, base - size / 3), 0) << "hollow";
    }
}

/// Lays out a line and compares with where an unhinted font has pen and ink.
void compareLine(const char* font, int size, Hinting hinting, std::u32string_view line)
{
    const Baked file = baked(font, {line.begin(), line.end()}, {size}, hinting);
    Reference reference(font, size);
    EXPECT_NEAR(file.spaceWidth, reference.advanceOf(U' '), 0.5);
    test::PlainLayout layout{.file = file, .vertices = {}};
    layout.addGlyphs({0, 0}, {line.begin(), line.end()}, 1);
    const auto penAt = [&](std::size_t i) {
        return layout.measure({line.begin(), line.begin() + std::ptrdiff_t(i)}).width;
    };
    for (std::size_t i = 0, nQuads = 0; i < line.size(); ++i)
    {
        const char32_t codePoint = line[i];
        if (codePoint == U' ')
            continue;
        const std::size_t glyph = layout.indexOf(codePoint);
        const float pen = penAt(i), left = layout.vertices[24 * nQuads++];
        SCOPED_TRACE(nameOf(codePoint));
        EXPECT_NEAR(penAt(i + 1) - pen, reference.advanceOf(codePoint), 0.5);
        EXPECT_EQ(left, std::floor(left)) << "sharp only on whole pixels";

        const Middle expected = reference.middleOf(codePoint);
        const int cell = file.leftOf(glyph);
        const Middle middle = middleOfPixels(file.leftOf(glyph + 1) - cell, file.nRows(),
                                             [&](int column, int row) { return file.at(cell + column, row); });
        // Half of what rounding adds to the advance, up to a quarter pixel, goes to each side. Light hinting fits
        // heights to whole pixels, at the base and the top, which gives some ink another weight; overlapping outlines
        // do so too.
        EXPECT_NEAR(left - pen + middle.x, expected.x, 0.25 + 0.15);
        EXPECT_NEAR(double(file.metricB) - middle.y, expected.y, hinting == Hinting::Light ? 1 : 0.1);
    }
}

TEST(Fontbake, LinesHaveTheFontsOwnSpacing)
{
    const std::u32string_view pangrams[] = {
        U"The quick brown fox jumps over the lazy dog, 0123456789 times!",
        U"jåfjord: [Åse] ÆØÅ {Jörg fährt Wölfe} (ßüß) ¿qué?",
        U"Ξεσκεπάζω την ψυχοφθόρα βδελυγμία",
        U"Съешь ещё этих мягких французских булок",
        U"Tiếng Việt: nước, Ẩ; e\u0301a\u0302o\u0323",
    };
    for (const char* font : cFonts)
        for (const int size : {9, 12, 16, 24, 48})
            for (const Hinting hinting : {Hinting::Light, Hinting::None})
                for (const std::u32string_view pangram : pangrams)
                {
                    SCOPED_TRACE(font + (" at " + std::to_string(size)));
                    compareLine(font, size, hinting, pangram);
                }
}

TEST(Fontbake, CharactersComeFromRangesAndTexts)
{
    const std::pair<const char*, CharacterSet> ranges[] = {
        {"66,65,65-67", {65, 66, 67}},
        {"9-10,32-33,8232,U+fffd", {33}},
        {"U+D7FF-U+E000", {0xD7FF, 0xE000}},
        {"u+10FFFF,1114110", {0x10FFFE, 0x10FFFF}},
    };
    for (const auto& [text, expected] : ranges)
        EXPECT_EQ(charactersOfRanges(text), expected) << text;
    for (const char* text : {"", "65,", ",65", "65-", "-65", "67-65", "65-66-67", "A", "U+", "U+110000", "55296",
                             "65 66", "0x41", "99999999999", "+65"})
        EXPECT_THROW(charactersOfRanges(text), Error) << text;

    EXPECT_EQ(charactersOfText("\xEF\xBB\xBF"
                               "b\ta\r\n b\x7F😀é",
                               "text"),
              (CharacterSet{U'a', U'b', U'é', U'😀'}));
    try
    {
        charactersOfText("one\ntwo\nthr\xC3", "some.txt");
        FAIL() << "half a character";
    }
    catch (const Error& error)
    {
        EXPECT_STREQ(error.what(), "some.txt is not UTF-8 in line 3");
    }
}

TEST(Fontbake, LightTextOnDarkGroundGetsTheRootOfTheCoverage)
{
    const Baked plain = baked(GUIGL_SANS, {U'g'}, {20});
    const Baked light = baked(GUIGL_SANS, {U'g'}, {20, 1, true});
    ASSERT_EQ(plain.pixels.size(), light.pixels.size());
    for (std::size_t i = 0; i < plain.pixels.size(); ++i)
    {
        const auto root = static_cast<unsigned char>(light.pixels[i]),
                   coverage = static_cast<unsigned char>(plain.pixels[i]);
        ASSERT_NEAR(root * root / 255.0, coverage, 1) << i; // the root's rounding
    }
}

/// The program, run in a folder of its own.
class FontbakeProgram : public testing::Test
{
protected:
    /// Its exit status and what it said on both channels.
    int run(const std::string& arguments)
    {
        int status = -1;
        const std::string command = "cd '" + _folder.path("") + "' && " GUIGL_FONTBAKE " " + arguments + " 2>&1";
        _output = test::outputOf({"sh", "-c", command}, status);
        return status;
    }

    std::set<std::string> files() const
    {
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(_folder.path("")))
            names.insert(entry.path().filename());
        return names;
    }

    void write(const char* name, const char* content) const { std::ofstream(_folder.path(name)) << content; }

    test::ImageFolder _folder;
    std::string _output;
};

TEST_F(FontbakeProgram, WritesFontAndPreview)
{
    write("text.txt", "Žluťoučký kůň\n");
    ASSERT_EQ(run(GUIGL_SANS " -o czech.font --size=20 --text text.txt --preview czech.png"), 0) << _output;
    EXPECT_EQ(_output, "");
    EXPECT_EQ(files(), (std::set<std::string>{"czech.font", "czech.png", "text.txt"}));
    EXPECT_EQ(Baked(contentOf(_folder.path("czech.font"))).glyphs.size(), 11U);
    gui::Texture preview;
    EXPECT_TRUE(preview.loadFromFile(_folder.path("czech.png").c_str()));
    std::set<int> greys(preview.getBytes(), preview.getBytes() + preview.getWidth() * preview.getHeight() * 3);
    EXPECT_EQ(*greys.begin(), 0) << "stems are black";
    EXPECT_EQ(*greys.rbegin(), 255);

    ASSERT_EQ(run(GUIGL_SANS " -o czech.font --size 20 --chars 65,U+378-U+37A,U+E000 --skip-missing"), 0) << _output;
    EXPECT_EQ(Baked(contentOf(_folder.path("czech.font"))).glyphs.size(), 3U) << "A, U+37A and the box";

    ASSERT_EQ(run(GUIGL_SANS " --face -o czech.face --text text.txt"), 0) << _output;
    EXPECT_TRUE(contentOf(_folder.path("czech.face")).starts_with("GuiGLFac"));

    ASSERT_EQ(run("--help"), 0);
    for (const char* option :
         {"--size", "--chars", "--text", "--spread", "--preview", "--hinting", "--skip-missing", "--face"})
        EXPECT_NE(_output.find(option), std::string::npos) << option;
}

TEST_F(FontbakeProgram, RefusesInOneLineAndLeavesNothing)
{
    write("bad.txt", "a\xFF");
    write("none.ttf", "no font");
    write("old.font", "old");
    ASSERT_EQ(mkfifo(_folder.path("pipe").c_str(), 0600), 0);
    const std::set<std::string> before = files();
    const std::pair<const char*, const char*> cases[] = {
        {"", "which font?"},
        {GUIGL_SANS, "-o is missing"},
        {GUIGL_SANS " -o x", "--size is missing"},
        {GUIGL_SANS " -o x --face --size 12", "--face has no --size"},
        {GUIGL_SANS " -o x --face --index 1", "one font, counted from 0"},
        {GUIGL_SANS " -o x --face --chars U+E000", "lacks U+E000"},
        {GUIGL_SANS " -o x --size 12 --index 1", "--index is for --face alone"},
        {"none.ttf -o x --face", "none.ttf is no TrueType or OpenType font"},
        {"/usr/share/fonts/truetype/noto/NotoColorEmoji.ttf -o x --face", "has no outlines"},
        {GUIGL_SANS " " GUIGL_SANS " -o x --size 9", "one font at a time"},
        {GUIGL_SANS " -o x --size", "--size wants a value"},
        {GUIGL_SANS " -o x --size 3", "--size wants a number from 4 to 500, not '3'"},
        {GUIGL_SANS " -o x --size 12pt", "not '12pt'"},
        {GUIGL_SANS " -o x --size 12 --size 13", "--size is given twice"},
        {GUIGL_SANS " -o x --size 12 --spread 0", "--spread wants a number from 1 to 64"},
        {GUIGL_SANS " -o x --size 12 --hinting full", "--hinting is light or none"},
        {GUIGL_SANS " -o x --size 12 --skip-missing=1", "--skip-missing takes no value"},
        {GUIGL_SANS " -o x --size 12 --bold", "no option --bold"},
        {GUIGL_SANS " -o x --size 12 --chars 65 --text old.font", "exclude each other"},
        {GUIGL_SANS " -o x --size 12 --preview x", "the same file"},
        {GUIGL_SANS " -o x --size 12 --chars 70-65", "ends before it begins"},
        {GUIGL_SANS " -o x --size 12 --text bad.txt", "not UTF-8 in line 1"},
        {GUIGL_SANS " -o x --size 12 --text absent.txt", "absent.txt: No such file"},
        {GUIGL_SANS " -o x --size 12 --chars 65,U+E000", "lacks U+E000; --skip-missing"},
        {GUIGL_SANS " -o x --size 12 --chars U+E000-U+E002", "lacks U+E000 and 2 other characters"},
        {GUIGL_SANS " -o x --size 240", "atlas of 16384 pixels"},
        {"absent.ttf -o x --size 12", "absent.ttf: No such file"},
        {"none.ttf -o old.font --size 12", "none.ttf is no font"},
        {GUIGL_SANS " -o absent/x --size 12", "absent/x: No such file"},
        {GUIGL_SANS " -o old.font --size 12 --preview absent/x.png", "absent/x.png: No such file"},
        {GUIGL_SANS " -o pipe --size 12", "something that is no file"},
    };
    for (const auto& [arguments, message] : cases)
    {
        SCOPED_TRACE(arguments);
        EXPECT_EQ(run(arguments), 1);
        EXPECT_TRUE(_output.starts_with("fontbake: ")) << _output;
        EXPECT_NE(_output.find(message), std::string::npos) << _output;
        EXPECT_EQ(_output.find('\n'), _output.size() - 1) << _output;
        EXPECT_EQ(files(), before);
    }
    EXPECT_EQ(contentOf(_folder.path("old.font")), "old");
}

} // namespace
