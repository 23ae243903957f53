#pragma once

#include <gui/gl/Buffer.h>
#include <gui/gl/Color2DProgram.h>

#include <array>

namespace gui::draw
{

/// Counts in the stencil buffer how often each pixel is drawn, and shows it.
class Overdraw
{
public:
    /// Before a frame. @return false when the framebuffer that is bound has no stencil buffer
    bool begin();
    /// After it: paints each pixel by its count, and puts the stencil's state back.
    void end();
    bool isCounting() const { return _isCounting; }

private:
    void paint();

    gl::Color2DProgram _program;
    gl::Buffer _buffer{gl::DataType::Vec2, gl::DataType::Vec4};
    std::array<int, 8> _before{};
    bool _wasOn = false;
    bool _isCounting = false;
    bool _isReady = false;
};

} // namespace gui::draw
