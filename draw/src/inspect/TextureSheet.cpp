#include "TextureSheet.h"

#include <gui/gl/CurrentContext.h>
#include <gui/gl/StateGuard.h>

#include <epoxy/gl.h>

#include <glm/mat4x4.hpp>
#include <glm/vec2.hpp>

#include <algorithm>

namespace gui::draw
{

namespace
{

constexpr double cLargest = 128, cGap = 10, cLine = 16; // points; of a texture's longer side, and below it for a text

} // namespace

TextureSheet::~TextureSheet()
{
    gl::CurrentContext::deleteName(_contextID, gl::CurrentContext::Kind::Sampler, _sampler);
}

std::vector<TextureSheet::Place> TextureSheet::arrange(const GLMemory& memory, const td::Size<double>& view)
{
    std::vector<Place> places;
    double x = cGap, bottom = view.height - cGap;
    for (const GLMemory::Object& object : memory.objects)
    {
        if (object.kind != GLMemory::Kind::Texture || object.target != GL_TEXTURE_2D || object.nBytes == 0)
            continue;
        const double scale = cLargest / std::max(object.width, object.height);
        const td::Size<double> size{std::max(1.0, object.width * scale), std::max(1.0, object.height * scale)};
        if (x + cLargest + cGap > view.width)
        {
            x = cGap;
            bottom -= cLargest + cLine + cGap;
        }
        if (bottom - cLargest - cLine < 0)
            break;
        places.push_back({object, {x, bottom - cLine - size.height}, size});
        x += cLargest + cGap;
    }
    return places;
}

void TextureSheet::draw(const std::vector<Place>& places, const td::Size<double>& view)
{
    if (!_isReady)
    {
        const struct
        {
            glm::vec2 at, coordinate;
        } corners[] = {{{0, 0}, {0, 0}}, {{1, 0}, {1, 0}}, {{0, 1}, {0, 1}}, {{1, 1}, {1, 1}}};
        _buffer.appendShape(gl::Primitive::TriangleStrip, &corners[0].at.x, std::size(corners))->encode();
        _isReady = _program.link() && _buffer.commit();
        _program.setBuffer(&_buffer);
    }
    if (!_isReady || places.empty())
        return;
    if (_contextID != gl::CurrentContext::getID())
    {
        _contextID = gl::CurrentContext::getID();
        glGenSamplers(1, &_sampler);
        for (const GLenum filter : {GL_TEXTURE_MIN_FILTER, GL_TEXTURE_MAG_FILTER})
            glSamplerParameteri(_sampler, filter, GL_NEAREST);
        for (const GLenum wrap : {GL_TEXTURE_WRAP_S, GL_TEXTURE_WRAP_T})
            glSamplerParameteri(_sampler, wrap, GL_CLAMP_TO_EDGE);
    }
    const gl::StateGuard guard;
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_BLEND);
    glDisable(GL_CULL_FACE);
    glDisable(GL_SCISSOR_TEST);
    glActiveTexture(GL_TEXTURE0);
    GLint textureBefore = 0, samplerBefore = 0;
    glGetIntegerv(GL_TEXTURE_BINDING_2D, &textureBefore);
    glGetIntegerv(GL_SAMPLER_BINDING, &samplerBefore);
    glBindSampler(0, _sampler);
    _program.activate();
    for (const Place& place : places)
    {
        // What the context has is asked for now and then.
        if (glIsTexture(place.texture.name) == GL_FALSE)
            continue;
        glm::mat4 matrix(1);
        matrix[0].x = static_cast<float>(2 * place.size.width / view.width);
        matrix[1].y = static_cast<float>(-2 * place.size.height / view.height);
        matrix[3].x = static_cast<float>(2 * place.at.x / view.width - 1);
        matrix[3].y = static_cast<float>(1 - 2 * place.at.y / view.height);
        _program.setMVP(matrix);
        glBindTexture(GL_TEXTURE_2D, place.texture.name);
        _program.execute(0, 1);
    }
    _program.deActivate();
    glBindTexture(GL_TEXTURE_2D, static_cast<GLuint>(textureBefore));
    glBindSampler(0, static_cast<GLuint>(samplerBefore));
}

} // namespace gui::draw
