#include "Picture.h"

#include "Error.h"

#include <context/GLNumber.h>

#include <epoxy/gl.h>

#include <algorithm>
#include <array>
#include <cstring>

namespace replay
{

namespace
{

using gui::gl::glNumber;

// Puts back what reading changes.
class Before
{
public:
    Before()
        : _draw(glNumber(GL_DRAW_FRAMEBUFFER_BINDING))
        , _read(glNumber(GL_READ_FRAMEBUFFER_BINDING))
        , _renderbuffer(glNumber(GL_RENDERBUFFER_BINDING))
        , _texture(glNumber(GL_TEXTURE_BINDING_2D))
        , _isClipped(glIsEnabled(GL_SCISSOR_TEST) == GL_TRUE)
    {
        glDisable(GL_SCISSOR_TEST);
    }
    Before(const Before&) = delete;
    Before& operator=(const Before&) = delete;
    ~Before()
    {
        glBindFramebuffer(GL_DRAW_FRAMEBUFFER, static_cast<GLuint>(_draw));
        glBindFramebuffer(GL_READ_FRAMEBUFFER, static_cast<GLuint>(_read));
        glBindRenderbuffer(GL_RENDERBUFFER, static_cast<GLuint>(_renderbuffer));
        glBindTexture(GL_TEXTURE_2D, static_cast<GLuint>(_texture));
        if (_isClipped)
            glEnable(GL_SCISSOR_TEST);
    }

private:
    GLint _draw, _read, _renderbuffer, _texture;
    bool _isClipped;
};

GLint attachment(GLenum point, GLenum name)
{
    GLint value = 0;
    glGetFramebufferAttachmentParameteriv(GL_READ_FRAMEBUFFER, point, name, &value);
    return value;
}

// Of an attachment; 0 by 0 where there is none.
td::Size<int> sizeOfAttachment(GLenum point)
{
    const GLint type = attachment(point, GL_FRAMEBUFFER_ATTACHMENT_OBJECT_TYPE);
    const auto name =
        static_cast<GLuint>(type == GL_NONE ? 0 : attachment(point, GL_FRAMEBUFFER_ATTACHMENT_OBJECT_NAME));
    td::Size<int> size(0, 0);
    if (type == GL_RENDERBUFFER)
    {
        glBindRenderbuffer(GL_RENDERBUFFER, name);
        glGetRenderbufferParameteriv(GL_RENDERBUFFER, GL_RENDERBUFFER_WIDTH, &size.width);
        glGetRenderbufferParameteriv(GL_RENDERBUFFER, GL_RENDERBUFFER_HEIGHT, &size.height);
    }
    else if (type == GL_TEXTURE && glNumber(GL_SAMPLES) == 0 &&
             attachment(point, GL_FRAMEBUFFER_ATTACHMENT_TEXTURE_CUBE_MAP_FACE) == 0)
    {
        glBindTexture(GL_TEXTURE_2D, name);
        const GLint level = attachment(point, GL_FRAMEBUFFER_ATTACHMENT_TEXTURE_LEVEL);
        glGetTexLevelParameteriv(GL_TEXTURE_2D, level, GL_TEXTURE_WIDTH, &size.width);
        glGetTexLevelParameteriv(GL_TEXTURE_2D, level, GL_TEXTURE_HEIGHT, &size.height);
    }
    else if (type == GL_TEXTURE)
    {
        // A texture of samples, whose size tells its own target.
        const GLint before = glNumber(GL_TEXTURE_BINDING_2D_MULTISAMPLE);
        glBindTexture(GL_TEXTURE_2D_MULTISAMPLE, name);
        glGetTexLevelParameteriv(GL_TEXTURE_2D_MULTISAMPLE, 0, GL_TEXTURE_WIDTH, &size.width);
        glGetTexLevelParameteriv(GL_TEXTURE_2D_MULTISAMPLE, 0, GL_TEXTURE_HEIGHT, &size.height);
        glBindTexture(GL_TEXTURE_2D_MULTISAMPLE, static_cast<GLuint>(before));
    }
    return size;
}

void readColors(Picture& picture, GLenum point, bool isScreen)
{
    const GLint kind = isScreen ? GL_UNSIGNED_NORMALIZED : attachment(point, GL_FRAMEBUFFER_ATTACHMENT_COMPONENT_TYPE);
    const auto [width, height] = picture.size;
    if (kind != GL_INT && kind != GL_UNSIGNED_INT)
    {
        glReadPixels(0, 0, width, height, GL_RGBA, GL_UNSIGNED_BYTE, picture.pixels.data());
        return;
    }
    // Numbers, such as those of parts: neighbours are to look different.
    std::vector<GLuint> numbers(picture.pixels.size());
    glReadPixels(0, 0, width, height, GL_RGBA_INTEGER, kind == GL_INT ? GL_INT : GL_UNSIGNED_INT, numbers.data());
    for (std::size_t i = 0; i < numbers.size(); i += 4)
    {
        const GLuint mixed = (numbers[i] + 31U * numbers[i + 1]) * 2654435761U;
        for (std::size_t k = 0; k < 3; ++k)
            picture.pixels[i + k] = static_cast<unsigned char>(mixed >> (8 * k + 8));
        picture.pixels[i + 3] = 255;
    }
}

void readDepth(Picture& picture)
{
    std::vector<float> depths(picture.pixels.size() / 4);
    glReadPixels(0, 0, picture.size.width, picture.size.height, GL_DEPTH_COMPONENT, GL_FLOAT, depths.data());
    const auto [pMin, pMax] = std::ranges::minmax_element(depths);
    const float min = *pMin, range = std::max(*pMax - min, 1e-12f);
    for (std::size_t i = 0; i < depths.size(); ++i)
    {
        const float grey = std::clamp((depths[i] - min) / range, 0.0f, 1.0f);
        std::memset(&picture.pixels[4 * i], static_cast<int>(grey * 255), 3);
        picture.pixels[4 * i + 3] = 255;
    }
}

// Of several samples their mean, in another framebuffer while this lives.
class Resolved
{
public:
    Resolved(GLuint framebuffer, const td::Size<int>& size)
    {
        glGenRenderbuffers(1, &_renderbuffer);
        glBindRenderbuffer(GL_RENDERBUFFER, _renderbuffer);
        glRenderbufferStorage(GL_RENDERBUFFER, GL_RGBA8, size.width, size.height);
        glGenFramebuffers(1, &_framebuffer);
        glBindFramebuffer(GL_DRAW_FRAMEBUFFER, _framebuffer);
        glFramebufferRenderbuffer(GL_DRAW_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, _renderbuffer);
        glBindFramebuffer(GL_READ_FRAMEBUFFER, framebuffer);
        glBlitFramebuffer(0, 0, size.width, size.height, 0, 0, size.width, size.height, GL_COLOR_BUFFER_BIT,
                          GL_NEAREST);
        glBindFramebuffer(GL_READ_FRAMEBUFFER, _framebuffer);
    }
    Resolved(const Resolved&) = delete;
    Resolved& operator=(const Resolved&) = delete;
    ~Resolved()
    {
        glDeleteFramebuffers(1, &_framebuffer);
        glDeleteRenderbuffers(1, &_renderbuffer);
    }

private:
    GLuint _framebuffer = 0, _renderbuffer = 0;
};

} // namespace

td::Size<int> Picture::sizeOf(unsigned int framebuffer, const td::Size<int>& screenSize)
{
    if (framebuffer == 0)
        return screenSize;
    const Before before;
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    for (const GLenum point : {GL_COLOR_ATTACHMENT0, GL_DEPTH_ATTACHMENT})
        if (attachment(point, GL_FRAMEBUFFER_ATTACHMENT_OBJECT_TYPE) != GL_NONE)
            return sizeOfAttachment(point);
    return {0, 0};
}

Picture Picture::read(unsigned int framebuffer, const td::Size<int>& screenSize)
{
    const Before before;
    Picture picture;
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    const bool hasSamples = glNumber(GL_SAMPLES) > 0;
    const auto point = framebuffer == 0 ? GLenum(GL_BACK_LEFT) : static_cast<GLenum>(glNumber(GL_READ_BUFFER));
    const bool isScreen = framebuffer == 0;
    const bool hasColors =
        isScreen || (point != GL_NONE && attachment(point, GL_FRAMEBUFFER_ATTACHMENT_OBJECT_TYPE) != GL_NONE);
    picture.size = isScreen ? screenSize : sizeOfAttachment(hasColors ? point : GLenum(GL_DEPTH_ATTACHMENT));
    if (picture.size.width <= 0 || picture.size.height <= 0 || (!hasColors && hasSamples) ||
        glCheckFramebufferStatus(GL_READ_FRAMEBUFFER) != GL_FRAMEBUFFER_COMPLETE)
        return {};
    picture.pixels.resize(4 * static_cast<std::size_t>(picture.size.width) *
                          static_cast<std::size_t>(picture.size.height));
    if (!hasColors)
        readDepth(picture);
    else if (hasSamples)
    {
        const Resolved resolved(framebuffer, picture.size);
        readColors(picture, GL_COLOR_ATTACHMENT0, false);
    }
    else
        readColors(picture, point, isScreen);
    return picture;
}

std::size_t Picture::nDifferent(const Picture& other) const
{
    if (size != other.size)
        return pixels.size() / 4;
    std::size_t n = 0;
    for (std::size_t i = 0; i < pixels.size(); i += 4)
        n += std::memcmp(&pixels[i], &other.pixels[i], 4) != 0 ? 1 : 0;
    return n;
}

gui::Texture Picture::toTexture() const
{
    gui::Texture texture;
    gui::TextureHelper helper(&texture);
    const auto width = static_cast<std::size_t>(size.width), height = static_cast<std::size_t>(size.height);
    helper.reserve(static_cast<unsigned int>(3 * width * height));
    helper.updateInfo(size.width, size.height, 3);
    unsigned char* pTo = texture.getBytes();
    for (std::size_t row = height; row-- > 0;)
        for (std::size_t x = 0; x < width; ++x, pTo += 3)
            std::memcpy(pTo, &pixels[4 * (row * width + x)], 3);
    return texture;
}

void Picture::save(const std::string& path) const
{
    if (pixels.empty())
        throw Error("there is no picture to write: nothing was drawn");
    if (!toTexture().saveToFile(path.c_str()))
        throw Error("cannot write " + path);
}

} // namespace replay
