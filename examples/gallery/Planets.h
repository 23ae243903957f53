#pragma once

#include "Drawing.h"

#include <cstddef>

namespace gallery
{

/// A sun with planets and a moon, which move. It belongs to one context, like its programs and buffers.
class Planets
{
public:
    /// @return false, after a line in the log, when it can't be drawn
    [[nodiscard]] bool init();

    /// Fills the picture. Blending is off before and after.
    void draw(const Frame& frame);

private:
    void record(gui::gl::Primitive primitive, std::span<const ColorVertex> vertices);
    void drawBall(const glm::mat4& toClip, const glm::vec2& place, float size, std::size_t command);

    Backdrop _backdrop;
    gui::gl::Color2DProgram _program;
    gui::gl::Buffer _buffer; // stars, sun, moon, then each planet's orbit and ball
};

} // namespace gallery
