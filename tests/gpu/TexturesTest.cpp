#include "support/Images.h"
#include "support/NullGL.h"

#include <gui/Texture.h>
#include <gui/gl/Textures.h>

#include <epoxy/gl.h>

#include <string>
#include <vector>

namespace
{

using gui::gl::Texture;
using gui::gl::Textures;
using test::GLTrace;
using Unit = Textures::Unit;

using TexturesTest = test::NullGL;

TEST_F(TexturesTest, ImagesAreUploadedInOrderAndBoundByPosition)
{
    gui::Texture rgb = test::image(2, 2, 3);
    gui::Texture rgba = test::image(1, 3, 4);
    Textures textures;
    ASSERT_TRUE(textures.append({&rgb, &rgba}, Texture::Type::CubeStrip));
    EXPECT_TRUE(
        trace.inOrder({"glBindTexture(0xde1, 1)", "glTexImage2D(0xde1, 0, 0x1907, 2, 2, 0, 0x1907, 0x1401, ptr)",
                       "glBindTexture(0xde1, 2)", "glTexImage2D(0xde1, 0, 0x1908, 1, 3, 0, 0x1908, 0x1401, ptr)",
                       "glGenerateMipmap(0xde1)", "glTexParameteri(0xde1, 0x2802, 0x2901)",
                       "glTexParameteri(0xde1, 0x2803, 0x2901)", "glTexParameteri(0xde1, 0x2801, 0x2703)",
                       "glTexParameteri(0xde1, 0x2800, 0x2601)", "glBindTexture(0xde1, 0)"}));
    trace.clear();
    EXPECT_EQ(textures.size(), 2);
    EXPECT_EQ(textures.capacity(), 2); // exactly what the list holds
    EXPECT_EQ(textures.getMaximumUnits(), 16);
    EXPECT_EQ(textures.getMaximumCombinedUnits(), 80);
    EXPECT_EQ(textures.getID(1), 2u);
    EXPECT_EQ(textures.getIDAndType(0), (std::tuple(1u, Texture::Type::CubeStrip)));

    textures.setUniform(5, Unit::T3, 1);
    textures.bindToActiveUnit(0);
    EXPECT_TRUE(trace.only(
        {"glActiveTexture(0x84c3)", "glBindTexture(0xde1, 2)", "glUniform1i(5, 3)", "glBindTexture(0xde1, 1)"}));
    textures.release();
    EXPECT_TRUE(trace.only({"glDeleteTextures(1, [1])", "glDeleteTextures(1, [2])"}));
    EXPECT_EQ(textures.size() + textures.capacity(), 0);
    textures.release();
    EXPECT_TRUE(trace.only({}));
}

TEST_F(TexturesTest, RefusedImagesLeaveThoseBeforeThemAndNoName)
{
    const test::ImageFolder folder;
    gui::Texture good = test::image(2, 1, 3);
    gui::Texture grey = test::image(4, 4, 1);
    gui::Texture noRows = test::image(4, 0, 4);
    const std::string rgb = folder.save("rgb.png", good);
    const std::string rgba = folder.save("rgba.png", test::image(2, 2, 4));
    const std::string odd = folder.path("50%d%s.png"); // no such file, and no format either
    const char* const pRGB = rgb.c_str();
    const auto images = [](gui::Texture* pFirst, gui::Texture* pSecond) {
        return [=](Textures& t) { return t.append({pFirst, pSecond}, Texture::Type::Tex2D); };
    };
    const auto files = [pRGB](const char* second) {
        return [=](Textures& t) { return t.append({pRGB, second}, Texture::Type::Tex2D); };
    };
    const struct
    {
        std::function<bool(Textures&)> append;
        std::vector<std::string> lines; // of Textures, the last ones; none where GL gives no second name
    } cases[] = {
        {images(&good, &grey), {"Error! Textures::append tries to use non RGB texture!"}},
        {images(&good, &noRows), {"Error! Textures::append empty texture at position: 1"}},
        {files(rgba.c_str()), {"Error! Textures::append tries to use non RGB texture! Texture name=" + rgba}},
        {files(nullptr), {"Error! Textures::append empty texture name at pos = 1"}},
        {files(odd.c_str()), {"Error! Textures::append cannot load texture with name = " + odd}},
        {images(&good, &good), {}},
        {files(pRGB), {}},
    };
    for (const auto& refused : cases)
    {
        Textures textures;
        if (refused.lines.empty())
            trace.failNext("glGenTextures", 2);
        EXPECT_FALSE(refused.append(textures));
        std::vector<std::string> lines = log.take();
        std::erase_if(lines, [](const std::string& line) { return !line.starts_with("Error! Textures"); });
        EXPECT_EQ(lines, refused.lines);
        ASSERT_EQ(textures.size(), 1);
        EXPECT_EQ(trace.aliveNames(GLTrace::Kind::Texture), std::vector<unsigned int>{textures.getID(0)});
    }
}

TEST_F(TexturesTest, CubeMapsAreRefusedWholeAndFacesNamedInGLOrder)
{
    const test::ImageFolder folder;
    const std::string good = folder.save("good.png", test::image(2, 2, 3));
    const std::string wide = folder.save("wide.png", test::image(3, 2, 3));
    const std::string high = folder.save("high.png", test::image(2, 3, 3));
    const std::string rgba = folder.save("rgba.png", test::image(2, 2, 4));
    const std::string missing = folder.path("missing.png");
    const struct
    {
        std::size_t name; // which of the six is another file
        const std::string& path;
        std::string line;
    } cases[] = {
        {0, missing, "Error! Textures::appendCubeMap cannot load texture with pos=1!"},
        {3, missing, "Error! Textures::appendCubeMap cannot load texture with pos=5!"},
        {4, wide, "Error! Textures::appendCubeMap ->All faces in cube map must have same size!"},
        {5, high, "Error! Textures::appendCubeMap ->All faces in cube map must have same size!"},
        {1, rgba, "Error! Textures::appendCubeMap tries to use non RGB texture with pos=4!"},
    };
    Textures textures;
    for (const auto& refused : cases)
    {
        cnt::Array<const char*, 6> names;
        std::fill(names.begin(), names.end(), good.c_str());
        names[refused.name] = refused.path.c_str();
        EXPECT_FALSE(textures.appendCubeMap(names));
        EXPECT_EQ(log.take().back(), refused.line);
        EXPECT_TRUE(trace.only({})); // before any GL texture is made
    }
    cnt::Array<const char*, 6> names;
    std::fill(names.begin(), names.end(), good.c_str());
    trace.failNext("glGenTextures");
    EXPECT_FALSE(textures.appendCubeMap(names));
    EXPECT_TRUE(log.said("Error! Textures::appendCubeMap cannot generate texture!"));
    trace.setErrors({GL_NO_ERROR, GL_OUT_OF_MEMORY});
    EXPECT_FALSE(textures.appendCubeMap(names));
    EXPECT_TRUE(log.said("ERROR! OpenGL error in setupVBO! Error code = 505"));
    EXPECT_EQ(trace.count("glTexImage2D"), 2u);
    EXPECT_TRUE(trace.inOrder({"glBindTexture(0x8513, 0)"}));
    EXPECT_TRUE(trace.nothingAlive());
    for (const std::size_t nameless : {0U, 5U})
    {
        std::fill(names.begin(), names.end(), good.c_str());
        names[nameless] = nullptr;
        EXPECT_FALSE(textures.appendCubeMap(names));
        EXPECT_TRUE(asserts.caught("img"));
    }
    EXPECT_EQ(textures.size(), 0);
    names[5] = good.c_str();
    trace.clear();
    EXPECT_TRUE(textures.appendCubeMap(names));
    EXPECT_TRUE(trace.inOrder({"glGenTextures(1, [2])", "glBindTexture(0x8513, 2)",
                               "glTexImage2D(0x851a, 0, 0x1907, 2, 2, 0, 0x1907, 0x1401, ptr)", "glGetError()",
                               "glTexParameteri(0x8513, 0x2801, 0x2601)", "glTexParameteri(0x8513, 0x2800, 0x2601)",
                               "glTexParameteri(0x8513, 0x2802, 0x812f)", "glTexParameteri(0x8513, 0x2803, 0x812f)",
                               "glTexParameteri(0x8513, 0x8072, 0x812f)", "glBindTexture(0x8513, 0)"}));
    EXPECT_EQ(trace.count("glGenerateMipmap"), 0u);
}

TEST_F(TexturesTest, UnitsOutsideTheTableAreRefused)
{
    EXPECT_EQ(Textures::getZavPosID(Unit::T0), 0x84C0u);
    EXPECT_EQ(Textures::getZavPosID(Unit::T31), 0x84DFu);
    Textures::bindToSamplerUnit(9, Unit::T2, Texture::Type::CubeMap);
    Textures::bindToSamplerUnit(0, Unit::T2, Texture::Type::CubeStrip);
    EXPECT_TRUE(trace.only(
        {"glActiveTexture(0x84c2)", "glBindTexture(0x8513, 9)", "glActiveTexture(0x84c2)", "glBindTexture(0xde1, 0)"}));
    const std::string condition = "static_cast<std::size_t>(unit) < cZavPos.size()";
    EXPECT_EQ(Textures::getZavPosID(Unit(32)), 0u);
    EXPECT_TRUE(asserts.caught(condition));
    Textures::bindToSamplerUnit(9, Unit(255), Texture::Type::Tex2D);
    EXPECT_TRUE(asserts.caught(condition));
    EXPECT_TRUE(trace.only({}));
}

TEST_F(TexturesTest, NeedAContextAndTheDriverSixteenUnits)
{
    gui::Texture dot = test::image(1, 1, 3);
    Textures textures;
    EXPECT_TRUE(textures.append(std::initializer_list<gui::Texture*>{}, Texture::Type::Tex2D));
    EXPECT_EQ(textures.getMaximumUnits(), 16);
    trace.setLimit(GL_MAX_TEXTURE_IMAGE_UNITS, 15);
    EXPECT_FALSE(textures.append({&dot}, Texture::Type::Tex2D));
    EXPECT_TRUE(asserts.caught("maxTextureUnits >= 16"));
    trace.clear();
    gui::gl::CurrentContext::set(nullptr);
    EXPECT_FALSE(textures.append({&dot}, Texture::Type::Tex2D));
    EXPECT_TRUE(log.said("Error! Textures::append without a current GL context!"));
    EXPECT_FALSE(textures.append({"x.png"}, Texture::Type::Tex2D));
    EXPECT_TRUE(log.said("Error! Textures::append without a current GL context!"));
    EXPECT_TRUE(trace.only({}));
}

} // namespace
