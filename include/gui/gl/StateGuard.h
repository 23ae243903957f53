#pragma once

#include <td/Export.h>

#include <array>

namespace gui::gl
{

/// Remembers the GL state that drawing changes and puts it back when it goes: framebuffers (drawing and reading),
/// viewport, values to clear with, depth (test, function, writing), stencil test, blending (on or off, functions,
/// equations), culling, scissor test, polygon offset (on or off), colour mask, polygon mode, vertex array, program,
/// active texture unit. For code that draws between the calls of others, who are to notice nothing:
///
///     {
///         gui::gl::StateGuard guard;
///         ... // change and draw
///     }
///
/// Textures bound to units are not among it. The program that commands send to (see setCurrentProgram) is none
/// afterwards: activate one again before executing commands. Needs a context, the same at both ends.
class GUIGL_API StateGuard
{
public:
    StateGuard();
    ~StateGuard();
    StateGuard(const StateGuard&) = delete;
    StateGuard& operator=(const StateGuard&) = delete;

private:
    std::array<int, 4> _viewport{};
    std::array<float, 4> _clearColor{};
    float _clearDepth = 1;
    std::array<int, 4> _blendFunctions{};
    std::array<int, 2> _blendEquations{};
    std::array<unsigned char, 4> _colorMask{};
    std::array<bool, 6> _isEnabled{};
    int _drawFramebuffer = 0;
    int _readFramebuffer = 0;
    int _depthFunction = 0;
    unsigned int _polygonMode = 0;
    int _vertexArray = 0;
    int _program = 0;
    int _activeTexture = 0;
    std::array<unsigned int, 6> _activeBuffer{}; // what commands know of the vertex array's buffer
    unsigned char _depthMask = 0;
};

} // namespace gui::gl
