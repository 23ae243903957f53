#include "support/CapturedLog.h"
#include "support/FontFiles.h"
#include "support/Images.h"
#include "support/OffscreenGL.h"

#include <gui/gl/Text.h>

#include <epoxy/gl.h>
#include <glm/ext/matrix_clip_space.hpp>

#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace
{

using gui::gl::Font;
using gui::gl::Text;
using gui::gl::Textures;
using test::Pixel;

constexpr Pixel cBack{0, 0, 255};
constexpr Pixel cRed{255, 0, 0};

/// A frame of 64 x 64 pixels and a font with lines of 16: F is full, T has its upper half full and its lower one empty.
class TextGLTest : public test::OffscreenGL
{
protected:
    void SetUp() override
    {
        OffscreenGL::SetUp();
        test::FontFile file(U"FT");
        file.lineHeight = 16;
        file.glyphPadding = 0;
        file.spaceWidth = 16;
        for (test::FontFile::Glyph& glyph : file.glyphs)
            glyph = {glyph.codePoint, 0, 16, 16, glyph.tx};
        file.width = 32;
        file.height = 16;
        file.pixels.assign(32 * 16, '\xFF');
        for (std::size_t i = 32 * 8; i < 32 * 16; ++i)
            file.pixels[i] = i % 32 < 16 ? '\xFF' : '\0';
        text.init({64, 64}, Textures::Unit::T5);
        text.allocFonts(1);
        ASSERT_NE(text.loadFont(0, test::writeFile(folder.path("a.font"), file.bytes()).c_str()), nullptr);
        text.getFont(0)->setSpaceBetweenLines(0);
        clear(cBack);
    }

    void TearDown() override
    {
        text.release();
        OffscreenGL::TearDown();
    }

    /// As text coordinates have it: from the top.
    static Pixel at(int x, int y) { return pixel(x, 63 - y); }

    void add(const char* str, float x, float y, const Font::_format& format)
    {
        text.getFont(0)->addString({x, y}, str, 0, format);
    }

    test::ImageFolder folder;
    Text text;
};

TEST_F(TextGLTest, GlyphsStandWhereTheyWereLaidOut)
{
    add("F T\nT", 8, 4, {.color = "#ff0000"}); // red, and the table's where the text does not say another
    add("F", 64, 48, {.colorID = td::ColorID::Lime, .hAlignment = Font::cRight});
    text.render(Text::Ctrl::BlendNoDepthTest);
    const struct
    {
        int x;
        int y;
        Pixel color;
    } cases[] = {{8, 4, cRed},    {23, 19, cRed},        {7, 10, cBack},        {10, 3, cBack},  {24, 10, cBack},
                 {39, 10, cBack}, {42, 5, cRed},         {53, 10, cRed},        {45, 17, cBack}, {10, 21, cRed},
                 {10, 33, cBack}, {48, 48, {0, 255, 0}}, {63, 63, {0, 255, 0}}, {47, 50, cBack}};
    for (const auto& c : cases)
        EXPECT_EQ(at(c.x, c.y), c.color) << c.x << ' ' << c.y;
}

// Text in a plane must stay where the plane is, and a font that is missing must not end the program.
TEST_F(TextGLTest, TextIsDrawnThroughAnotherProjection)
{
    add("F", 8, 4, {.colorID = td::ColorID::Red});
    text.render(Text::Ctrl::BlendNoDepthTest, glm::ortho(0.0f, 32.0f, 32.0f, 0.0f));
    for (const auto& [x, y, color] : {std::tuple(18, 10, cRed), {45, 37, cRed}, {15, 20, cBack}, {48, 39, cBack}})
        EXPECT_EQ(at(x, y), color) << x << ' ' << y;

    test::CapturedLog log;
    Text other;
    other.init(":nowhere.font").addString({0, 0}, "F", td::ColorID::Red, 1);
    EXPECT_TRUE(log.said("Error! Text::init cannot load font: :nowhere.font"));
    const std::string path = folder.path("a.font");
    other.init(path.c_str()).addString({0, 0}, "F", td::ColorID::Lime, 1);
    other.setFrameSize({64, 64});
    other.render(Text::Ctrl::BlendNoDepthTest);
    EXPECT_EQ(at(8, 8), (Pixel{0, 255, 0}));
    other.release();
}

TEST_F(TextGLTest, DepthDecidesUnlessItsTestIsOff)
{
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_LESS);
    add("F", 0, 0, {.z = 0.5f, .colorID = td::ColorID::Red}); // nearer, though it comes first
    add("F", 8, 0, {.z = -0.5f, .colorID = td::ColorID::Lime});
    text.render(Text::Ctrl::None);
    EXPECT_EQ(at(12, 8), cRed);
    EXPECT_EQ(at(20, 8), (Pixel{0, 255, 0}));
    text.render(Text::Ctrl::NoDepthTest);
    EXPECT_EQ(at(12, 8), (Pixel{0, 255, 0}));
    EXPECT_EQ(glIsEnabled(GL_DEPTH_TEST), GL_FALSE);
}

// A string that was replaced must look as if it had been added so, and leave its neighbours alone, after a reset too.
TEST_F(TextGLTest, ReplacedStringsAreDrawnInTheirPlace)
{
    const auto render = [&]
    {
        clear(cBack);
        text.render(Text::Ctrl::BlendNoDepthTest);
        std::vector<unsigned char> pixels(64 * 64 * 4);
        glReadPixels(0, 0, 64, 64, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
        return pixels;
    };
    const auto addAll = [&](const char* second, float x)
    {
        add("F", 0, 0, {.colorID = td::ColorID::Red});
        add(second, x, 16, {.colorID = td::ColorID::Lime});
        add("T", 0, 24, {.colorID = td::ColorID::White}); // over the second one
    };
    Font& font = *text.getFont(0);
    addAll("FT", 0);
    const auto before = render();
    for (const auto& [second, x] : {std::pair("T ", 16.0f), {"TFT", 8.0f}, {"", 0.0f}, {"T TF", 0.0f}})
    {
        font.replaceString(1, {x, 16}, second, 0, {.colorID = td::ColorID::Blue});
        font.setColor(1, td::ColorID::Lime);
        const auto replaced = render();
        font.reset();
        addAll(second, x);
        EXPECT_TRUE(replaced == render()) << second;
        font.reset();
        addAll("FT", 0);
        EXPECT_TRUE(render() == before) << second;
    }
}

} // namespace
