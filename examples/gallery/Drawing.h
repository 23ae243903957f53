#pragma once

#include "Scene.h"

#include <gui/gl/Buffer.h>
#include <gui/gl/Color2DProgram.h>
#include <td/ColorID.h>

#include <glm/mat4x4.hpp>
#include <glm/vec2.hpp>
#include <glm/vec4.hpp>

#include <span>
#include <vector>

namespace gallery
{

/// A vertex of Color2DProgram.
struct ColorVertex
{
    glm::vec2 position;
    glm::vec4 color;
};

/// A colour of the toolkit's table with an alpha from 0 to 1.
glm::vec4 colorOf(td::ColorID id, float alpha = 1);

/// The colour of the way from one to the other, 0 to 1. @param colors  at least one, evenly spaced along the way
glm::vec4 gradient(std::span<const td::ColorID> colors, float way);

/// @param turns  from the right, against the clock; 1 is all around
glm::vec2 onCircle(float turns, float radius);

/// Appends to a buffer of Color2DProgram's layout. @return the place of the first vertex
std::size_t append(gui::gl::Buffer& buffer, std::span<const ColorVertex> vertices);

/// A rectangle of a frame in points; y grows downwards from the frame's top.
struct Cell
{
    float left;
    float top;
    float width;
    float height;
};

/// Divides a frame into equal cells, row by row, with a margin around and a gap between them.
std::vector<Cell> makeGrid(const Frame& frame, int nColumns, int nRows);

/// From points, y downwards, to clip space.
glm::mat4 pointsToClip(const Frame& frame);

/// From units to clip space: the square from -1 to 1, y upwards, becomes the largest square in the middle of the cell.
glm::mat4 unitsToClip(const Frame& frame, const Cell& cell);

/// The gallery's background, with a panel behind each cell.
class Backdrop
{
public:
    bool init();
    void draw(const Frame& frame, std::span<const Cell> cells = {});

private:
    gui::gl::Color2DProgram _program;
    gui::gl::Buffer _buffer;
};

} // namespace gallery
