#include "support/Images.h"
#include "support/OffscreenGL.h"

#include <gui/Texture.h>
#include <gui/gl/Textures.h>

#include <epoxy/gl.h>

#include <array>
#include <string>
#include <vector>

namespace
{

using gui::gl::Texture;
using gui::gl::Textures;

class TexturesGLTest : public test::OffscreenGL
{
protected:
    /// The pixels of level 0 of what is bound, rows packed.
    static std::vector<unsigned char> readBack(GLenum target, int bytesPerPixel, std::size_t n)
    {
        const bool isFace = target != GL_TEXTURE_2D;
        GLint texture = 0, width = 0;
        glGetIntegerv(isFace ? GL_TEXTURE_BINDING_CUBE_MAP : GL_TEXTURE_BINDING_2D, &texture);
        glGetTexLevelParameteriv(target, 0, GL_TEXTURE_WIDTH, &width);
        GLuint framebuffer = 0;
        glGenFramebuffers(1, &framebuffer);
        glBindFramebuffer(GL_READ_FRAMEBUFFER, framebuffer);
        glFramebufferTexture2D(GL_READ_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, target, static_cast<GLuint>(texture), 0);
        const std::size_t nPixels = n / static_cast<std::size_t>(bytesPerPixel);
        std::vector<unsigned char> pixels(4 * nPixels), bytes;
        glReadPixels(0, 0, width, static_cast<GLsizei>(nPixels) / width, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
        glBindFramebuffer(GL_READ_FRAMEBUFFER, 0);
        glDeleteFramebuffers(1, &framebuffer);
        for (std::size_t i = 0; i < pixels.size(); ++i)
            if (i % 4 < static_cast<std::size_t>(bytesPerPixel))
                bytes.push_back(pixels[i]);
        return bytes;
    }

    static std::vector<unsigned char> bytesOf(const gui::Texture& picture)
    {
        const int n = picture.getWidth() * picture.getHeight() * static_cast<int>(picture.getBytesPerPixel());
        return {picture.getBytes(), picture.getBytes() + n};
    }
};

// Rows that are no multiple of 4 bytes came out skewed without padding.
TEST_F(TexturesGLTest, PixelsArriveExactlyWhateverTheRowLength)
{
    for (int width = 1; width <= 6; ++width)
    {
        for (const int bytesPerPixel : {3, 4})
        {
            gui::Texture picture = test::image(width, 5, static_cast<unsigned short>(bytesPerPixel));
            Textures textures;
            ASSERT_TRUE(textures.append({&picture}, Texture::Type::Tex2D));
            textures.bindToActiveUnit(0);
            const std::vector<unsigned char> expected = bytesOf(picture);
            EXPECT_EQ(readBack(GL_TEXTURE_2D, bytesPerPixel, expected.size()), expected)
                << width << " x " << bytesPerPixel;
        }
    }
}

TEST_F(TexturesGLTest, FilesAreMirroredAndImagesAreNot)
{
    const test::ImageFolder folder;
    gui::Texture picture = test::image(3, 2, 3);
    const std::string path = folder.save("a.png", picture);
    Textures textures;
    ASSERT_TRUE(textures.append({path.c_str()}, Texture::Type::Tex2D));
    ASSERT_TRUE(textures.append({&picture}, Texture::Type::Tex2D));
    const std::vector<unsigned char> upright = bytesOf(picture);
    textures.bindToActiveUnit(1);
    EXPECT_EQ(readBack(GL_TEXTURE_2D, 3, 18), upright);
    textures.bindToActiveUnit(0);
    picture.mirrorVertically();
    EXPECT_EQ(readBack(GL_TEXTURE_2D, 3, 18), bytesOf(picture));
    EXPECT_GE(textures.getMaximumUnits(), 16);
    EXPECT_GE(textures.getMaximumCombinedUnits(), 48);
}

TEST_F(TexturesGLTest, FacesOfCubeMapsGoWhereTheTableSays)
{
    const test::ImageFolder folder;
    cnt::Array<const char*, 6> names;
    cnt::Array<const gui::Texture*, 6> images;
    std::vector<std::string> paths;
    std::array<gui::Texture, 6> pictures;
    for (unsigned char i = 0; i < 6; ++i)
    {
        gui::Texture& face = pictures[i];
        images[i] = &face;
        face = test::image(3, 3, 3); // rows of 9 bytes
        face.getBytes()[0] = static_cast<unsigned char>(100 + i);
        paths.push_back(folder.save(std::to_string(i) + ".png", face));
    }
    for (std::size_t i = 0; i < 6; ++i)
        names[i] = paths[i].c_str();
    Textures textures;
    ASSERT_TRUE(textures.appendCubeMap(names) && textures.appendCubeMap(images));
    // Which file, or image, each face shows, in GL's order.
    for (unsigned short cubeMap = 0; cubeMap < 2; ++cubeMap)
    {
        textures.bindToActiveUnit(cubeMap);
        std::vector<int> faces;
        for (GLenum face = GL_TEXTURE_CUBE_MAP_POSITIVE_X; face <= GL_TEXTURE_CUBE_MAP_NEGATIVE_Z; ++face)
        {
            const std::vector<unsigned char> bytes = readBack(face, 3, 27);
            faces.push_back(bytes[0] - 100);
            EXPECT_EQ(bytes[26], 27); // the last byte: rows are where they belong
        }
        EXPECT_EQ(faces, (std::vector<int>{2, 0, 4, 5, 1, 3}));
    }
}

} // namespace
