#include "Overdraw.h"

#include "Error.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace replay
{

namespace
{

constexpr int cFirstVersion = 42; // of GL that has images that are counted in
constexpr GLint cUnit = 7;        // of images: frames have none
constexpr const char* cImage = "guiglCounts";

// Behind what has to stand first: the version and the extensions.
std::size_t beginOf(const std::string& text)
{
    std::size_t begin = 0;
    for (const char* word : {"#version", "#extension"})
        if (const std::size_t at = text.rfind(word); at != std::string::npos)
        {
            const std::size_t end = text.find('\n', at);
            begin = std::max(begin, end == std::string::npos ? text.size() : end + 1);
        }
    return begin;
}

} // namespace

Overdraw::Overdraw(const Player& player)
    : _player(player)
{
    if (epoxy_gl_version() < cFirstVersion)
        throw Error("--overdraw needs OpenGL 4.2, and here is none");
}

Overdraw::~Overdraw()
{
    glDeleteTextures(1, &_counts);
    glDeleteTextures(1, &_none);
}

std::string Overdraw::changed(GLenum type, const std::string& text)
{
    if (type != GL_FRAGMENT_SHADER || text.find("main") == std::string::npos)
        return text;
    const bool isLate = text.find("discard") != std::string::npos || text.find("gl_FragDepth") != std::string::npos;
    std::string counting = text;
    counting.insert(beginOf(text), std::string("#extension GL_ARB_shader_image_load_store : require\n") +
                                       (isLate ? "" : "layout(early_fragment_tests) in;\n") +
                                       "#define main guiglMain\n");
    return counting + "\n#undef main\nlayout(r32ui) coherent uniform uimage2D " + cImage +
           ";\nvoid main() { imageAtomicAdd(" + cImage + ", ivec2(gl_FragCoord.xy), 1u); guiglMain(); }\n";
}

void Overdraw::onProgram(GLuint program)
{
    const GLint location = glGetUniformLocation(program, cImage);
    if (location < 0)
        return;
    GLint before = 0;
    glGetIntegerv(GL_CURRENT_PROGRAM, &before);
    glUseProgram(program);
    glUniform1i(location, cUnit);
    glUseProgram(static_cast<GLuint>(before));
}

void Overdraw::makeImages()
{
    GLint before = 0;
    glGetIntegerv(GL_TEXTURE_BINDING_2D, &before);
    const auto make = [](GLuint& name, int width, int height)
    {
        const std::vector<GLuint> zeros(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
        glGenTextures(1, &name);
        glBindTexture(GL_TEXTURE_2D, name);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAX_LEVEL, 0);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_R32UI, width, height, 0, GL_RED_INTEGER, GL_UNSIGNED_INT, zeros.data());
    };
    make(_counts, _player.screenSize().width, _player.screenSize().height);
    make(_none, 1, 1);
    glBindTexture(GL_TEXTURE_2D, static_cast<GLuint>(before));
}

void Overdraw::beforeDraw(const Step&)
{
    if (_counts == 0)
        makeImages();
    const GLuint framebuffer = _player.drawFramebuffer();
    const td::Size<int> size = Picture::sizeOf(framebuffer, _player.screenSize());
    glBindImageTexture(cUnit, size == _player.screenSize() ? _counts : _none, 0, GL_FALSE, 0, GL_READ_WRITE, GL_R32UI);
}

Picture Overdraw::picture(double& mean, unsigned int& most) const
{
    Picture picture;
    picture.size = _player.screenSize();
    std::vector<GLuint> counts(static_cast<std::size_t>(picture.size.width) *
                               static_cast<std::size_t>(picture.size.height));
    glMemoryBarrier(GL_ALL_BARRIER_BITS);
    if (_counts != 0)
    {
        glBindTexture(GL_TEXTURE_2D, _counts);
        glGetTexImage(GL_TEXTURE_2D, 0, GL_RED_INTEGER, GL_UNSIGNED_INT, counts.data());
    }
    using Color = std::array<double, 3>;
    // For 0, 1, 2, 4, 8, 16 times.
    constexpr std::array<Color, 6> cColors{Color{0, 0, 0}, {30, 60, 160}, {30, 150, 140},
                                           {240, 210, 60}, {220, 50, 40}, {255, 255, 255}};
    mean = 0;
    most = 0;
    picture.pixels.resize(4 * counts.size());
    for (std::size_t i = 0; i < counts.size(); ++i)
    {
        mean += counts[i];
        most = std::max(most, counts[i]);
        const double place = counts[i] == 0 ? 0 : std::min(1 + std::log2(double(counts[i])), 5.0);
        const auto below = std::min(static_cast<std::size_t>(place), cColors.size() - 2);
        const double part = place - static_cast<double>(below);
        for (std::size_t k = 0; k < 3; ++k)
            picture.pixels[4 * i + k] =
                static_cast<unsigned char>(cColors[below][k] * (1 - part) + cColors[below + 1][k] * part);
        picture.pixels[4 * i + 3] = 255;
    }
    mean /= static_cast<double>(counts.size());
    return picture;
}

} // namespace replay
