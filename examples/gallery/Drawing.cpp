#include "Drawing.h"

#include <gui/gl/Color.h>
#include <gui/gl/Context.h>

#include <glm/common.hpp>
#include <glm/ext/matrix_clip_space.hpp>
#include <glm/ext/matrix_transform.hpp>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace gallery
{

namespace
{

constexpr float cMargin = 24;
constexpr float cGap = 16;

// The vertices of a unit square from (0, 0) to (1, 1), shaded from its top to its bottom.
std::size_t appendSquare(gui::gl::Buffer& buffer, const glm::vec4& top, const glm::vec4& bottom)
{
    const ColorVertex vertices[] = {{{0, 0}, top}, {{1, 0}, top}, {{0, 1}, bottom}, {{1, 1}, bottom}};
    const std::size_t first = append(buffer, vertices);
    gui::gl::Command* pCommand = buffer.createCommand();
    pCommand->createDrawArrays(gui::gl::Primitive::TriangleStrip, first, 4);
    buffer.encode(pCommand);
    return first;
}

// Dark blues that every colour of a scene stands out from.
constexpr glm::vec4 cBackground[] = {{0.055F, 0.075F, 0.14F, 1}, {0.03F, 0.04F, 0.085F, 1}};
constexpr glm::vec4 cPanel[] = {{0.10F, 0.13F, 0.22F, 1}, {0.075F, 0.095F, 0.17F, 1}};

} // namespace

glm::vec4 colorOf(td::ColorID id, float alpha)
{
    glm::vec4 color;
    gui::gl::Color::get(id, color);
    color.a = alpha;
    return color;
}

glm::vec4 gradient(std::span<const td::ColorID> colors, float way)
{
    const float place = std::clamp(way, 0.0F, 1.0F) * static_cast<float>(colors.size() - 1);
    const auto from = static_cast<std::size_t>(place);
    const std::size_t to = std::min(from + 1, colors.size() - 1);
    return glm::mix(colorOf(colors[from]), colorOf(colors[to]), place - static_cast<float>(from));
}

glm::vec2 onCircle(float turns, float radius)
{
    const float angle = 2 * std::numbers::pi_v<float> * turns;
    return {radius * std::cos(angle), radius * std::sin(angle)};
}

std::size_t append(gui::gl::Buffer& buffer, std::span<const ColorVertex> vertices)
{
    static_assert(sizeof(ColorVertex) == 6 * sizeof(float));
    const std::size_t first = buffer.getNoOfVertices();
    buffer.appendVertices(&vertices.front().position.x, vertices.size());
    return first;
}

std::vector<Cell> makeGrid(const Frame& frame, int nColumns, int nRows)
{
    const auto columns = static_cast<float>(nColumns);
    const auto rows = static_cast<float>(nRows);
    const float width = (static_cast<float>(frame.size.width) - 2 * cMargin - (columns - 1) * cGap) / columns;
    const float height = (static_cast<float>(frame.size.height) - 2 * cMargin - (rows - 1) * cGap) / rows;
    std::vector<Cell> cells;
    for (int row = 0; row < nRows; ++row)
        for (int column = 0; column < nColumns; ++column)
            cells.push_back({cMargin + static_cast<float>(column) * (width + cGap),
                             cMargin + static_cast<float>(row) * (height + cGap), width, height});
    return cells;
}

glm::mat4 pointsToClip(const Frame& frame)
{
    return glm::ortho(0.0F, static_cast<float>(frame.size.width), static_cast<float>(frame.size.height), 0.0F);
}

glm::mat4 unitsToClip(const Frame& frame, const Cell& cell)
{
    const float half = std::min(cell.width, cell.height) / 2;
    const glm::vec3 middle(cell.left + cell.width / 2, cell.top + cell.height / 2, 0);
    // Depth stays as it is, so that perspective projections can be put into a cell as well.
    glm::mat4 toClip = pointsToClip(frame);
    toClip[2][2] = 1;
    return glm::scale(glm::translate(toClip, middle), {half, -half, 1});
}

bool Backdrop::init()
{
    using gui::gl::DataType;
    _buffer.init(2, 8, 0, {DataType::Vec2, DataType::Vec4});
    appendSquare(_buffer, cBackground[0], cBackground[1]);
    appendSquare(_buffer, cPanel[0], cPanel[1]);
    _program.setBuffer(&_buffer);
    return _program.link() && _buffer.commit();
}

void Backdrop::draw(const Frame& frame, std::span<const Cell> cells)
{
    const auto place = [&frame](const Cell& cell) {
        return glm::scale(glm::translate(pointsToClip(frame), {cell.left, cell.top, 0}), {cell.width, cell.height, 1});
    };
    gui::gl::Context::clear(
        {gui::gl::Context::Clear::Color, gui::gl::Context::Clear::Depth, gui::gl::Context::Clear::Stencil});
    _program.activate();
    _program.setMVP(place({0, 0, static_cast<float>(frame.size.width), static_cast<float>(frame.size.height)}));
    _program.execute(0, 1);
    for (const Cell& cell : cells)
    {
        _program.setMVP(place(cell));
        _program.execute(1, 1);
    }
    _program.deActivate();
}

} // namespace gallery
