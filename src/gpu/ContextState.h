#pragma once

#include <array>
#include <utility>
#include <vector>

namespace gui::gl
{

/// What a program has told GL once and for all, in the start of a view say: what is on and off, the values to clear
/// with, functions and masks, what is bound to units, the program in use and the vertex array. A context that takes
/// another's place is told the same.
class ContextState
{
public:
    /// Of the current context, which works.
    void read();
    /// To the current context, after CurrentContext::restoreFrom. Names are of what took the old ones' places; the
    /// framebuffers are left alone. Nothing when nothing was read.
    void apply() const;

    /// The context is lost without notice: what is known here of the program in use is kept for apply.
    static void keepProgram();

private:
    struct Unit
    {
        unsigned int name2D = 0, nameCube = 0, nameBuffer = 0;
    };
    struct Face
    {
        int function = 0, reference = 0, valueMask = 0, writeMask = 0, fail = 0, depthFail = 0, depthPass = 0;
    };

    void readUnits();
    void applyUnits() const;

    bool _isRead = false;
    std::vector<std::pair<unsigned int, bool>> _flags;
    std::vector<std::pair<unsigned int, int>> _pixelStore;
    std::vector<Unit> _units;
    std::array<Face, 2> _faces{}; // of the stencil: front, back
    std::array<float, 4> _clearColor{}, _blendColor{};
    std::array<float, 2> _depthRange{}, _polygonOffset{};
    std::array<int, 4> _viewport{}, _scissor{}, _blendFunctions{};
    std::array<int, 2> _blendEquations{};
    std::array<unsigned char, 4> _colorMask{};
    float _clearDepth = 1, _lineWidth = 1, _pointSize = 1;
    unsigned int _polygonMode = 0;
    int _clearStencil = 0, _depthFunction = 0, _cullFace = 0, _frontFace = 0, _restartIndex = 0, _provokingVertex = 0,
        _patchVertices = 0, _logicOp = 0, _activeTexture = 0, _vertexArray = 0, _program = 0;
    unsigned char _depthMask = 1;
};

} // namespace gui::gl
