#include "Sketch.h"

#include <gui/gl/gl.h>

#include <glm/geometric.hpp>

namespace gallery
{

using namespace gui::gl;

bool Sketch::init()
{
    _buffer.init(1, 10'000, 0, {DataType::Vec2, DataType::Vec4});
    _program.setBuffer(&_buffer);
    return _program.link();
}

void Sketch::addQuad(const glm::vec2& a, const glm::vec2& b, const glm::vec2& c, const glm::vec2& d,
                     const glm::vec4& color)
{
    const ColorVertex vertices[] = {{a, color}, {b, color}, {c, color}, {b, color}, {c, color}, {d, color}};
    append(_buffer, vertices);
}

void Sketch::addCell(const Cell& cell, const glm::vec4& color)
{
    const glm::vec2 first(cell.left, cell.top), last(cell.left + cell.width, cell.top + cell.height);
    addQuad(first, {last.x, first.y}, {first.x, last.y}, last, color);
}

void Sketch::addLine(const glm::vec2& from, const glm::vec2& to, float width, const glm::vec4& color)
{
    if (from == to)
        return;
    const glm::vec2 along = glm::normalize(to - from) * (width / 2);
    const glm::vec2 across(-along.y, along.x);
    addQuad(from + across, from - across, to + across, to - across, color);
}

void Sketch::addRing(const glm::vec2& middle, float radius, float width, const glm::vec4& color)
{
    constexpr int cSides = 40;
    for (int i = 0; i < cSides; ++i)
    {
        const glm::vec2 from = onCircle(static_cast<float>(i) / cSides, 1);
        const glm::vec2 to = onCircle(static_cast<float>(i + 1) / cSides, 1);
        const float inner = radius - width;
        addQuad(middle + inner * from, middle + radius * from, middle + inner * to, middle + radius * to, color);
    }
}

void Sketch::draw(const Frame& frame)
{
    if (const std::size_t nVertices = _buffer.getNoOfVertices(); nVertices > 0 && _buffer.commit())
    {
        Command* pCommand = _buffer.createCommand();
        pCommand->createDrawArrays(Primitive::Triangles, 0, static_cast<unsigned int>(nVertices));
        _buffer.encode(pCommand);
        _program.activate();
        _program.setMVP(pointsToClip(frame));
        Context::setBlendFunction(Blend::Factor::SrcAlpha, Blend::Factor::OneMinusSrcAlpha);
        Context::enable(Context::Flag::Blend);
        _program.execute();
        Context::disable(Context::Flag::Blend);
        _program.deActivate();
    }
    _buffer.reset();
}

} // namespace gallery
