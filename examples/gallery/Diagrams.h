#pragma once

#include "Drawing.h"

#include <gui/gl/Flat2DProgram.h>
#include <gui/gl/Triang2D.h>

#include <array>
#include <vector>

namespace gallery
{

/// Flat figures in the cells of a grid, made once. Each is in units of its own cell, as unitsToClip has them; later
/// ones cover earlier ones, or let them through by their alpha.
class Diagrams
{
public:
    using Outline = std::vector<td::Point<float>>;
    using Triangle = std::array<td::Point<float>, 3>;

    struct Paint
    {
        td::ColorID color;
        int alpha = 255;
    };

    Diagrams();

    /// What is added from now on belongs to the next cell.
    void beginCell();

    void addPolygon(const Outline& outline, const Paint& paint);
    /// @param width  from the line to its edge
    void addLine(const Outline& points, float width, bool closed, const Paint& paint);
    void addTriangle(const Triangle& triangle, const Paint& paint);
    void addEdges(const std::vector<Triangle>& triangles, float width, const Paint& paint);
    void addDot(const td::Point<float>& middle, float radius, const Paint& paint);
    /// A number of one or two digits, as strokes.
    void addNumber(std::size_t number, const td::Point<float>& middle, float height, const Paint& paint);

    /// A polygon, and the primitive through its corners, over the vertices that fill it.
    void addPolygonWith(gui::gl::Primitive primitive, const Outline& outline, const Paint& fill, const Paint& paint);

    /// The triangles that fill an outline, or make a line, in the order in which they are found.
    std::vector<Triangle> trianglesOf(const Outline& outline);
    std::vector<Triangle> trianglesOf(const Outline& points, float width, bool closed);

    /// Called once, when all is added.
    bool finish();

    /// @param cells  as many as were begun
    void draw(const Frame& frame, std::span<const Cell> cells);

private:
    void encode(gui::gl::Command* pCommand, const Paint& paint);

    gui::gl::Triang2D _triang{100};
    gui::gl::Flat2DProgram _program;
    gui::gl::Buffer _buffer;
    std::vector<std::size_t> _firstCommands; // of each cell
};

/// Moves and scales outlines, together, into the square from -size to size.
std::vector<Diagrams::Outline> fitted(std::vector<Diagrams::Outline> outlines, float size);

} // namespace gallery
