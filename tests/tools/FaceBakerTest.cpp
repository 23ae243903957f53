#include <fontbake/FaceBaker.h>

#include <support/CapturedLog.h>
#include <support/OffscreenGL.h>

#include <gui/draw/Drawing.h>
#include <gui/draw/TextLayout.h>

#include <epoxy/gl.h>

#include <dlfcn.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <ios>
#include <span>
#include <string>
#include <tuple>
#include <vector>

namespace
{

std::atomic<int> s_nFreeTypes{0};

} // namespace

// The library's calls come here first: every face that FreeType opens has a library of its own.
extern "C" [[gnu::visibility("default")]] int FT_New_Library(void* pMemory, void** pLibrary)
{
    using Function = int (*)(void*, void**);
    static const auto s_real = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "FT_New_Library"));
    ++s_nFreeTypes;
    return s_real(pMemory, pLibrary);
}

namespace
{

using namespace gui::draw;
using fontbake::FaceBaker;

const std::string cFonts = "/usr/share/fonts/";
const std::string cSans = cFonts + "truetype/dejavu/DejaVuSans.ttf";

std::string baked(const std::string& file, const fontbake::CharacterSet& characters)
{
    return FaceBaker(file, 0).bake(characters);
}

fontbake::CharacterSet charactersOf(std::string_view text) { return fontbake::charactersOfText(text, "text"); }

Typeface faceOf(std::string_view file)
{
    return Typeface::fromMemory({reinterpret_cast<const td::BYTE*>(file.data()), file.size()});
}

// Debian 12 has it under the first name, with one axis less.
const std::string cVariable = std::filesystem::exists(cFonts + "truetype/inter-vf/Inter-roman.var.ttf")
                                  ? "truetype/inter-vf/Inter-roman.var.ttf"
                                  : "truetype/inter-vf/InterVariable.ttf";

/// A text that both faces of a font draw, the one of its file and the baked one.
struct FaceCase
{
    const char* file;
    const char* text;
    std::vector<FontVariation> variations{};
    std::vector<FontFeature> features{};
};

const FaceCase cFaceCases[] = {
    {"truetype/dejavu/DejaVuSans.ttf",
     "Sphinx of black quartz, AVATAR office fjord (12\u00D73\u00B2) \u00C5ngstr\u00F6m"},
    {"truetype/dejavu/DejaVuSans.ttf",
     "(\u0645\u0631\u062D\u0628\u0627 \u0644\u0627) \u05E9\u05B8\u05DC\u05D5\u05B9\u05DD e\u0323\u0302 "
     "\u03BA\u03CC\u03C3\u03BC\u03BF\u03C2 \u041C\u0438\u0440"},
    {"opentype/urw-base35/NimbusSans-Regular.otf", "Cubic curves @ office: RAGE & Sorrow 0.38%"},
    {cVariable.c_str(), "Variable 0123 fi -> a/b", {{"wght", 730}, {"slnt", -7}}, {{"tnum"}, {"zero"}, {"ss01"}}},
    {"opentype/fonts-hosny-amiri/AmiriQuranColored.ttf", "\u0628\u0650\u0633\u0652\u0645\u0650"},
};

class BakedFaceTest : public test::OffscreenGL
{
protected:
    static constexpr int cPicture = 512;

    BakedFaceTest()
        : OffscreenGL({cPicture, cPicture})
    {
    }

    /// Red, green, blue and alpha of all pixels after so many draws that all pictures of glyphs are there.
    static std::vector<td::BYTE> drawn(const FaceCase& each, const Typeface& face, double pixelsPerPoint)
    {
        Drawing drawing;
        double y = 2;
        for (const double size : {7.0, 9.0, 10.3, 12.0, 14.0, 18.0, 24.0, 40.0, 90.0})
        {
            TextStyle style{.face = face, .size = size, .features = each.features};
            drawing.text({10.3, y += 1.5 * size}, each.text, style);
            if (size == 14)
            {
                style.embolden = 0.03;
                style.halo = {2, "#80c0ff"};
                drawing.text({10.6, y += 1.8 * size}, each.text, style);
            }
        }
        for (int i = 0; i < 20; ++i)
        {
            clear({255, 255, 255});
            EXPECT_TRUE(drawing.draw(Affine(), pixelsPerPoint));
        }
        std::vector<td::BYTE> pixels(4 * cPicture * cPicture);
        glReadPixels(0, 0, cPicture, cPicture, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
        return pixels;
    }
};

// Tables that were left out, glyphs that are others, a way that goes by FreeType still: what is measured is the same,
// and what is drawn to the pixel, at sizes that have pictures and that have none, with halos and heavier letters.
TEST_F(BakedFaceTest, TextsAreThoseOfTheFontItself)
{
    for (const FaceCase& each : cFaceCases)
    {
        // One comes with other programs.
        if (!std::filesystem::exists(cFonts + each.file))
            continue;
        SCOPED_TRACE(each.file);
        Typeface live = Typeface::fromFile((cFonts + each.file).c_str()).withFallbacks({}, false);
        const std::string file = baked(cFonts + each.file, charactersOf(each.text));
        Typeface face = faceOf(file);
        ASSERT_TRUE(live && face);
        EXPECT_LT(file.size(), std::filesystem::file_size(cFonts + each.file) / 4);
        const int nFreeTypes = s_nFreeTypes;
        live = live.withVariations(each.variations);
        EXPECT_EQ(s_nFreeTypes - nFreeTypes, each.variations.empty() ? 0 : 1) << "or nothing is counted";
        face = face.withVariations(each.variations);

        EXPECT_EQ(face.getFamily(), live.getFamily());
        EXPECT_EQ(face.getStyleName(), live.getStyleName());
        const Typeface::Metrics &is = face.getMetrics(), &wanted = live.getMetrics();
        EXPECT_EQ(std::memcmp(&is, &wanted, sizeof is), 0);
        const TextLayout layout(each.text, {.face = face, .features = each.features}),
            other(each.text, {.face = live, .features = each.features});
        ASSERT_EQ(layout.getRuns().size(), other.getRuns().size());
        for (std::size_t i = 0; i < layout.getRuns().size(); ++i)
        {
            const auto glyphs = layout.getRuns()[i].glyphs, wantedGlyphs = other.getRuns()[i].glyphs;
            ASSERT_EQ(glyphs.size(), wantedGlyphs.size());
            for (std::size_t k = 0; k < glyphs.size(); ++k)
            {
                EXPECT_EQ(glyphs[k].x, wantedGlyphs[k].x);
                EXPECT_EQ(glyphs[k].y, wantedGlyphs[k].y);
            }
        }

        for (const double pixelsPerPoint : {1.0, 1.5})
        {
            const int nBefore = s_nFreeTypes;
            const std::vector<td::BYTE> pixels = drawn(each, face, pixelsPerPoint);
            EXPECT_EQ(s_nFreeTypes, nBefore) << "FreeType was called";
            EXPECT_GT(std::ranges::count_if(pixels, [](td::BYTE value) { return value != 255; }), 9000);
            EXPECT_EQ(pixels, drawn(each, live, pixelsPerPoint));
        }
    }
}

// A face must not fetch from elsewhere what a program has left out, and must have what the library itself writes.
TEST(BakedFace, HasItsCharactersAndNoOthers)
{
    const Typeface face = faceOf(baked(cSans, charactersOf("\u0414(")));
    ASSERT_TRUE(face);
    for (const char32_t c : {U'\u0414', U'(', U')', U' ', U'~', U'\u2212', U'\u2010', U'\u2074', U'\u2300'})
        EXPECT_NE(face.getGlyph(c), 0U) << std::hex << unsigned(c);
    EXPECT_EQ(face.getGlyph(U'\u0416'), 0U);
    EXPECT_FALSE(face.forCharacter(U'\u0416')) << "the system was asked";
    EXPECT_FALSE(face.getOutline(0).isEmpty()) << "the sign for what is missing";
    const TextLayout layout("\u0414\u0416\U0001F600", {.face = face});
    ASSERT_EQ(layout.getRuns().size(), 1U);
    EXPECT_EQ(layout.getRuns()[0].face, face);
    const Typeface other = Typeface::fromFile(cSans.c_str());
    EXPECT_EQ(face.withFallbacks({other}, false).forCharacter(U'\u0416'), other);

    const std::uint32_t glyph = face.getGlyph('R');
    const GlyphRequest request{.pixelsPerEm = 30.5, .quarter = 3, .isHinted = false};
    const auto image = face.getImage(glyph, request), wanted = other.getImage(other.getGlyph('R'), request);
    ASSERT_TRUE(image && wanted);
    EXPECT_EQ(std::tie(image->left, image->top, image->width, image->height),
              std::tie(wanted->left, wanted->top, wanted->width, wanted->height));
    // FreeType's curves are coarser.
    for (std::size_t i = 0; i < image->pixels.size(); ++i)
        EXPECT_NEAR(image->pixels[i], wanted->pixels[i], 20);
}

TEST(BakedFace, RefusesWhatIsDamagedOrOfAnotherVersion)
{
    test::CapturedLog log;
    const std::string file = baked(cSans, charactersOf("a"));
    const auto refuses = [&log](const std::string& bytes, const std::string& cause)
    {
        EXPECT_FALSE(faceOf(bytes));
        EXPECT_TRUE(log.said("ERROR! Typeface::fromMemory cannot use font of " + std::to_string(bytes.size()) +
                             " bytes (" + cause + ")"));
    };
    for (const std::size_t n : {std::size_t(8), std::size_t(11), std::size_t(23), std::size_t(24), file.size() - 1})
        refuses(file.substr(0, n), "baked face is cut off");
    refuses(file + '\0', "baked face is damaged");
    for (std::size_t i = 16; i < file.size(); i += 97)
    {
        std::string damaged = file;
        damaged[i] = static_cast<char>(damaged[i] ^ (1 << i % 8));
        refuses(damaged, "baked face is damaged");
    }
    std::string newer = file;
    newer[8] = 2;
    refuses(newer, "baked face of version 2, not 1");
    // As it has to be on any machine.
    EXPECT_EQ(file.substr(0, 12), std::string("GuiGLFac\1\0\0\0", 12));
    EXPECT_EQ(file.size(), 24 + (static_cast<unsigned char>(file[12]) | static_cast<unsigned char>(file[13]) << 8));
    EXPECT_TRUE(faceOf(file));
    EXPECT_FALSE(Typeface::fromMemory({reinterpret_cast<const td::BYTE*>(file.data()), file.size()}, 1));
    EXPECT_TRUE(log.said("ERROR! Typeface::fromMemory cannot use font of " + std::to_string(file.size()) +
                         " bytes (no face of index 1)"));
}

} // namespace
