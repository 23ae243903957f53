#include "FontFixture.h"

#include <gui/Res.h>
#include <gui/Texture.h>

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <utility>

namespace
{

using test::FontFile;
using test::GLTrace;

class FontTest : public test::FontFixture
{
protected:
    /// Loads a file into the Text's font, through GL.
    bool load(const FontFile& file) { return font().load(write(file.bytes()).c_str()) == &font(); }

    std::size_t nTextures() { return trace.aliveNames(GLTrace::Kind::Texture).size(); }
};

TEST_F(FontTest, AtlasPixelsAreWidenedToFourBytes)
{
    const struct
    {
        unsigned short bitsPerPixel;
        std::vector<unsigned char> pixels;
        std::vector<unsigned char> uploaded;
    } cases[] = {
        {8, {7, 200}, {7, 7, 7, 7, 200, 200, 200, 200}},
        {16, {7, 8, 200, 0}, {7, 7, 7, 8, 200, 200, 200, 0}},
        {24, {1, 2, 3, 4, 5, 6}, {1, 2, 3, 255, 4, 5, 6, 255}},
        {32, {1, 2, 3, 4, 5, 6, 7, 8}, {1, 2, 3, 4, 5, 6, 7, 8}},
    };
    for (const auto& c : cases)
    {
        FontFile file(U"ab");
        file.bitsPerPixel = c.bitsPerPixel;
        file.pixels.assign(c.pixels.begin(), c.pixels.end());
        ASSERT_TRUE(load(file));
        EXPECT_EQ(trace.lastImage(), c.uploaded) << c.bitsPerPixel;
        EXPECT_EQ(nTextures(), 1u); // that of the load before is gone
    }
    trace.clear();
    ASSERT_TRUE(load(FontFile(U"abc")));
    EXPECT_TRUE(trace.inOrder({"glTexImage2D(0xde1, 0, 0x1908, 3, 1, 0, 0x1908, 0x1401, ptr)",
                               "glTexParameteri(0xde1, 0x2802, 0x2901)", "glTexParameteri(0xde1, 0x2803, 0x2901)",
                               "glTexParameteri(0xde1, 0x2801, 0x2601)", "glTexParameteri(0xde1, 0x2800, 0x2601)",
                               "glGenerateMipmap(0xde1)", "glBindTexture(0xde1, 0)"}));
    font().addString({}, "abc", 0, td::ColorID::Red, 1);
    EXPECT_EQ(takeVertices(font())[18], FontFile(U"abc").glyphs[1].tx); // the glyphs are the new ones
}

TEST_F(FontTest, FailedLoadsSayWhyAndLeaveNoTexture)
{
    const std::string path = folder.path("a.font");
    const std::string cannotLoad = "ERROR! Font::load cannot load file: ";
    FontFile wide(U"abc");
    wide.width = 2049;
    wide.pixels.resize(2049);
    const struct
    {
        const char* name;
        std::string bytes;
        std::vector<std::string> lines;
        bool hasTexture;
    } cases[] = {
        {nullptr, "", {}, true},
        {":no/such.font", "", {}, true},
        {"no/such.font", "", {cannotLoad + "no/such.font"}, true},
        {"/", "", {cannotLoad + "/"}, true},
        {path.c_str(),
         wide.bytes(),
         {"ERROR! Font::load atlas of 2049 x 1 pixels exceeds GL's limit of 2048 in file: " + path},
         false},
    };
    trace.setLimit(GL_MAX_TEXTURE_SIZE, 2048);
    for (const auto& c : cases)
    {
        ASSERT_TRUE(load(FontFile(U"xy")));
        if (!c.bytes.empty())
            write(c.bytes);
        EXPECT_EQ(font().load(c.name), nullptr);
        EXPECT_EQ(log.take(), c.lines);
        EXPECT_EQ(nTextures(), c.hasTexture ? 1u : 0u);
        EXPECT_GT(font().measure("xy", 0, {}).width, 0);
    }
    write(FontFile(U"xy").bytes().substr(0, 77));
    EXPECT_THROW(font().load(td::String(path.c_str())), std::ios_base::failure);
    EXPECT_EQ(nTextures(), 0u);
    trace.failNext("glGenTextures");
    EXPECT_FALSE(load(FontFile(U"xy")));
    gui::gl::CurrentContext::set(nullptr);
    trace.clear();
    EXPECT_FALSE(load(FontFile(U"xy")));
    EXPECT_TRUE(log.said("Error! Font::load without a current GL context!"));
    EXPECT_FALSE(font().setTexture({}));
    EXPECT_TRUE(log.said("Error! Font::setTexture without a current GL context!"));
    EXPECT_FALSE(font().commit());
    EXPECT_TRUE(log.said("Error! Font::commit without a current GL context!"));
    EXPECT_TRUE(trace.only({}));
}

TEST_F(FontTest, SetTextureTakesImagesWithColors)
{
    gui::Texture rgba = test::image(1, 1, 4);
    gui::Texture rgb = test::image(1, 1, 3);
    gui::Texture grey = test::image(1, 1, 1);
    const gui::Texture none;
    for (const gui::Texture* pBad : {&std::as_const(grey), &none})
    {
        EXPECT_FALSE(font().setTexture(*pBad));
        EXPECT_TRUE(log.said("Error! Font::setTexture using invalid texture"));
        EXPECT_TRUE(trace.only({"glBindTexture(0xde1, 0)"}));
    }
    trace.failNext("glGenTextures");
    EXPECT_FALSE(font().setTexture(rgb));
    trace.clear();
    EXPECT_TRUE(font().setTexture(rgb));
    EXPECT_TRUE(trace.inOrder({"glTexImage2D(0xde1, 0, 0x1908, 1, 1, 0, 0x1908, 0x1401, ptr)",
                               "glTexParameteri(0xde1, 0x2801, 0x2703)", "glTexParameteri(0xde1, 0x2800, 0x2601)",
                               "glGenerateMipmap(0xde1)", "glBindTexture(0xde1, 0)"}));
    EXPECT_EQ(trace.lastImage(), (std::vector<unsigned char>{1, 2, 3, 255}));
    EXPECT_FALSE(font().setTexture(rgba));
    EXPECT_TRUE(asserts.caught("_textureID == 0"));
    EXPECT_EQ(nTextures(), 1u);
}

TEST_F(FontTest, CommitUploadsOnceUntilReset)
{
    ASSERT_TRUE(load(FontFile(U"ab")));
    font().addString({1, 2}, "ab", 0, td::ColorID::Red, 2);
    EXPECT_TRUE(font().commit());
    EXPECT_TRUE(
        trace.inOrder({"glBufferData(0x8892, 192, ptr, 0x88e4)", "glBindVertexArray(0)", "glBindBuffer(0x8892, 0)"}));
    trace.clear();
    EXPECT_TRUE(font().commit());
    EXPECT_TRUE(trace.only({}));
    EXPECT_EQ(font().addString({1, 2}, "ab", 0, td::ColorID::Red, 2), td::Size<float>());
    EXPECT_TRUE(log.said("ERROR! Font::addString called on committed font content! Call reset before addString!"));
    EXPECT_TRUE(asserts.caught("!_committed"));

    font().reset();
    EXPECT_TRUE(trace.only({}));
    font().addString({1, 2}, "a", 0, td::ColorID::Red, 2);
    EXPECT_TRUE(font().commit());
    EXPECT_TRUE(trace.inOrder({"glBufferData(0x8892, 96, ptr, 0x88e4)"}));
    EXPECT_EQ(trace.aliveNames(GLTrace::Kind::Buffer), std::vector<unsigned int>{2});
    trace.clear();
    font().release();
    EXPECT_TRUE(trace.only({"glDeleteBuffers(1, [2])", "glDeleteVertexArrays(1, [2])"}));
    EXPECT_TRUE(font().commit()); // it still counts as committed
    EXPECT_TRUE(trace.only({}));

    for (const auto& [function, what] : {std::pair("glGenVertexArrays", "VAO"), std::pair("glGenBuffers", "VBO")})
    {
        font().reset();
        trace.failNext(function);
        EXPECT_FALSE(font().commit());
        EXPECT_TRUE(log.said(std::string("ERROR! Font::commit cannot create ") + what + "!"));
    }
}

// Where no file can be written, there would be no text.
TEST_F(FontTest, ACompiledInFontIsReadWhereItLies)
{
    const std::string bytes = FontFile(U"ab").bytes();
    const auto* const begin = reinterpret_cast<const td::BYTE*>(bytes.data());
    const gui::CompiledResource fonts[] = {{"test/whole.font", begin, begin + bytes.size()},
                                           {"test/short.font", begin, begin + 77}};
    gui::Res::addCompiled(fonts);
    ::setenv("TMPDIR", "/nowhere", 1);
    EXPECT_EQ(font().load(":test/whole.font"), &font());
    EXPECT_GT(font().measure("ab", 0, {}).width, 0);
    EXPECT_THROW(font().load(":test/short.font"), std::ios_base::failure);
    ::unsetenv("TMPDIR");
    gui::Res::removeCompiled(fonts);
}

// A name that two fonts own is deleted under the one that still draws with it.
TEST_F(FontTest, MovesWithAllItHas)
{
    ASSERT_TRUE(load(FontFile(U"ab")));
    font().addString({1, 2}, "ab", 0, td::ColorID::Red, 2);
    ASSERT_TRUE(font().commit());
    std::optional<Font> moved(std::move(font()));
    trace.clear();
    EXPECT_EQ(font().addString({}, "ab", 0, td::ColorID::Red, 1), td::Size<float>()); // it is empty, and open
    renderer.reset();
    EXPECT_TRUE(trace.only({}));
    moved->reset();
    EXPECT_GT(moved->addString({}, "ab", 0, td::ColorID::Red, 1).width, 0); // without the Text it came from
    ASSERT_TRUE(moved->commit());

    // What it has belongs to the context that is not current now.
    int other = 0;
    gui::gl::CurrentContext::set(&other);
    trace.clear();
    moved.reset();
    EXPECT_TRUE(trace.only({}));
    gui::gl::CurrentContext::set(static_cast<test::NullGL*>(this));
    EXPECT_TRUE(trace.only({"glDeleteTextures(1, [1])", "glDeleteBuffers(1, [2])", "glDeleteVertexArrays(1, [2])"}));
    gui::gl::CurrentContext::died(&other);
}

// All strings of a font are megabytes. What was laid out is FontLayoutTest's, how it looks TextGLTest's.
TEST_F(FontTest, ReplacedStringsAreUploadedAlone)
{
    ASSERT_TRUE(load(FontFile(U"ab")));
    for (const char* const text : {"aaaa", "b", "aaaa"})
        font().addString({}, text, 0, td::ColorID::Red, 1);
    ASSERT_TRUE(font().commit());
    const auto commit = [&]
    {
        trace.clear();
        return font().commit();
    };
    const Format black;
    font().replaceString(0, {}, "bb ", 0, black);
    font().setColor(1, td::ColorID::Blue);
    font().setColor(2, td::Color("#204060"));
    ASSERT_TRUE(commit());
    EXPECT_TRUE(trace.only({"glBindBuffer(0x8f37, 1)", "glBufferSubData(0x8f37, 0, 192, ptr)"}));
    // Two glyphs where there was one: behind all others, in a larger buffer, into which GL copies the rest.
    font().replaceString(1, {}, "aa", 0, black);
    ASSERT_TRUE(commit());
    EXPECT_EQ(trace.count("glBufferSubData"), 1u);
    EXPECT_TRUE(trace.inOrder({"glCopyBufferSubData(0x8f36, 0x8f37, 0, 0, 864)",
                               "glBufferSubData(0x8f37, 864, 288, ptr)", "glBindVertexArray(1)",
                               "glBindBuffer(0x8892, 2)", "glVertexAttribPointer(0, 2, 0x1406, 0, 16, 0)"}));
    font().replaceString(1, {}, "aba", 0, black); // has room now
    ASSERT_TRUE(commit());
    EXPECT_TRUE(trace.only({"glBindBuffer(0x8f37, 2)", "glBufferSubData(0x8f37, 864, 288, ptr)"}));
    ASSERT_TRUE(commit());
    EXPECT_TRUE(trace.only({}));
    font().replaceString(3, {}, "a", 0, black);
    EXPECT_TRUE(asserts.caught("index < _commands.size()"));
    font().setColor(3, td::ColorID::Blue);
    EXPECT_TRUE(asserts.caught("index < _commands.size()"));
    EXPECT_EQ(font().getNoOfStrings(), 3u);
    EXPECT_TRUE(trace.only({}));
}

} // namespace
