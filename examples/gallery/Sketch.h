#pragma once

#include "Drawing.h"

namespace gallery
{

/// Flat shapes that are new in every frame: add them, then draw. Points of the frame, y downwards; later ones cover
/// earlier ones, or let them through by their alpha.
class Sketch
{
public:
    [[nodiscard]] bool init();

    void addCell(const Cell& cell, const glm::vec4& color);
    void addLine(const glm::vec2& from, const glm::vec2& to, float width, const glm::vec4& color);
    /// @param width  inwards from the radius; the radius for a disc
    void addRing(const glm::vec2& middle, float radius, float width, const glm::vec4& color);
    void addDisc(const glm::vec2& middle, float radius, const glm::vec4& color)
    {
        addRing(middle, radius, radius, color);
    }

    /// Draws what was added and begins anew.
    void draw(const Frame& frame);

private:
    void addQuad(const glm::vec2& a, const glm::vec2& b, const glm::vec2& c, const glm::vec2& d,
                 const glm::vec4& color);

    gui::gl::Color2DProgram _program;
    gui::gl::Buffer _buffer;
};

} // namespace gallery
