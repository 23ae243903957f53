#include "Diagrams.h"

#include <gui/gl/gl.h>

#include <glm/common.hpp>

#include <algorithm>

namespace gallery
{

namespace
{

using namespace gui::gl;

// A digit's strokes, on a grid two steps wide and four high: columns a, b, c from the left, rows 0 to 4 upwards.
constexpr const char* cDigits[10] = {"a0c0c4a4a0",   "b0b4",         "a4c4c2a2a0c0", "a4c4c0a0 a2c2",   "a4a2c2 c4c0",
                                     "c4a4a2c2c0a0", "c4a4a0c0c2a2", "a4c4b0",       "a0c0c4a4a0 a2c2", "c2a2a4c4c0a0"};

std::vector<Diagrams::Triangle> pick(const Triang2D::Points& vertices, const Triang2D::Indices& indices)
{
    std::vector<Diagrams::Triangle> triangles;
    for (std::size_t i = 0; i < indices.size(); i += 3)
        triangles.push_back({vertices[indices[i]], vertices[indices[i + 1]], vertices[indices[i + 2]]});
    return triangles;
}

} // namespace

Diagrams::Diagrams() { _buffer.init(1000, 10'000, 10'000, {DataType::Vec2}); }

void Diagrams::beginCell() { _firstCommands.push_back(_buffer.getCommandList().size()); }

void Diagrams::encode(Command* pCommand, const Paint& paint)
{
    if (pCommand == nullptr)
        return;
    pCommand->setColor(paint.color, paint.alpha);
    _buffer.encode(pCommand);
}

void Diagrams::addPolygon(const Outline& outline, const Paint& paint)
{
    encode(_triang.triangulate(&_buffer, outline.data(), static_cast<unsigned int>(outline.size())), paint);
}

void Diagrams::addLine(const Outline& points, float width, bool closed, const Paint& paint)
{
    const auto n = static_cast<unsigned int>(points.size());
    encode(_triang.triangulateLine(&_buffer, points.data(), n, width, closed), paint);
}

void Diagrams::addTriangle(const Triangle& triangle, const Paint& paint)
{
    encode(_triang.triangulate(&_buffer, triangle.data(), 3), paint);
}

// Edge by edge: the corners of slivers are so sharp that a line around them would not end at them.
void Diagrams::addEdges(const std::vector<Triangle>& triangles, float width, const Paint& paint)
{
    for (const Triangle& triangle : triangles)
        for (std::size_t i = 0; i < 3; ++i)
            addLine({triangle[i], triangle[(i + 1) % 3]}, width, false, paint);
}

void Diagrams::addDot(const td::Point<float>& middle, float radius, const Paint& paint)
{
    Outline circle;
    for (int i = 0; i < 24; ++i)
        circle.push_back(toPt2(toGlm2(middle) + onCircle(static_cast<float>(i) / 24, radius)));
    addPolygon(circle, paint);
}

void Diagrams::addNumber(std::size_t number, const td::Point<float>& middle, float height, const Paint& paint)
{
    const std::string digits = std::to_string(number);
    const float step = height / 4;
    float left = middle.x - step * (2 + 3 * static_cast<float>(digits.size() - 1)) / 2;
    for (const char digit : digits)
    {
        Outline stroke;
        for (const char* p = cDigits[digit - '0']; *p != 0; p += *p == ' ' ? 1 : 2)
        {
            if (*p == ' ')
            {
                addLine(stroke, 0.4F * step, false, paint);
                stroke.clear();
                continue;
            }
            stroke.push_back(
                {left + step * static_cast<float>(p[0] - 'a'), middle.y + step * static_cast<float>(p[1] - '0' - 2)});
        }
        addLine(stroke, 0.4F * step, stroke.front() == stroke.back(), paint);
        left += 3 * step;
    }
}

void Diagrams::addPolygonWith(Primitive primitive, const Outline& outline, const Paint& fill, const Paint& paint)
{
    const auto first = static_cast<unsigned int>(_buffer.getNoOfVertices());
    const auto n = static_cast<unsigned int>(outline.size());
    addPolygon(outline, fill);
    encode(_triang.createRecycledLine(&_buffer, primitive, outline.data(), first, n), paint);
}

std::vector<Diagrams::Triangle> Diagrams::trianglesOf(const Outline& outline)
{
    Triang2D::Points vertices;
    Triang2D::Indices indices;
    const auto n = static_cast<unsigned int>(outline.size());
    if (_triang.triangulate(outline.data(), n, vertices, indices).first == Primitive::TriangleFan)
    {
        for (unsigned int i = 2; i < n; ++i)
        {
            const unsigned int triangle[] = {0, i - 1, i};
            indices.push_back(triangle, 3);
        }
    }
    return pick(vertices, indices);
}

std::vector<Diagrams::Triangle> Diagrams::trianglesOf(const Outline& points, float width, bool closed)
{
    Triang2D::Points vertices;
    Triang2D::Indices indices;
    _triang.triangulateLine(points.data(), static_cast<unsigned int>(points.size()), width, closed, vertices, indices);
    return pick(vertices, indices);
}

bool Diagrams::finish()
{
    _program.setBuffer(&_buffer);
    return _program.link(Flat2DProgram::Colors::WithAlpha) && _buffer.commit();
}

void Diagrams::draw(const Frame& frame, std::span<const Cell> cells)
{
    _program.activate();
    Context::setBlendFunction(Blend::Factor::SrcAlpha, Blend::Factor::OneMinusSrcAlpha);
    Context::enable(Context::Flag::Blend);
    for (std::size_t i = 0; i < _firstCommands.size() && i < cells.size(); ++i)
    {
        const std::size_t first = _firstCommands[i];
        const std::size_t end = i + 1 < _firstCommands.size() ? _firstCommands[i + 1] : _buffer.getCommandList().size();
        _program.setMVP(unitsToClip(frame, cells[i]));
        _program.execute(first, end - first);
    }
    Context::disable(Context::Flag::Blend);
    _program.deActivate();
}

std::vector<Diagrams::Outline> fitted(std::vector<Diagrams::Outline> outlines, float size)
{
    glm::vec2 low = toGlm2(outlines.front().front()), high = low;
    for (const Diagrams::Outline& outline : outlines)
    {
        for (const td::Point<float>& p : outline)
        {
            low = glm::min(low, toGlm2(p));
            high = glm::max(high, toGlm2(p));
        }
    }
    const float scale = 2 * size / std::max(high.x - low.x, high.y - low.y);
    for (Diagrams::Outline& outline : outlines)
        for (td::Point<float>& p : outline)
            p = toPt2((toGlm2(p) - (low + high) / 2.0F) * scale);
    return outlines;
}

} // namespace gallery
