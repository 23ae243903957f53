#include "ContextState.h"

#include "../context/Features.h"
#include "../context/GLNumber.h"
#include "../context/Restoration.h"
#include "../context/StateOfES.h"
#include "ActiveBuffer.h"
#include "ProgHelper.h"

#include <gui/gl/Context.h>

#include <epoxy/gl.h>

#include <algorithm>

namespace gui::gl
{

namespace
{

constexpr std::array<GLenum, 10> cStateFlags{GL_BLEND,
                                             GL_CULL_FACE,
                                             GL_DEPTH_TEST,
                                             GL_DITHER,
                                             GL_POLYGON_OFFSET_FILL,
                                             GL_RASTERIZER_DISCARD,
                                             GL_SAMPLE_ALPHA_TO_COVERAGE,
                                             GL_SAMPLE_COVERAGE,
                                             GL_SCISSOR_TEST,
                                             GL_STENCIL_TEST};
// What OpenGL ES has not.
constexpr std::array<GLenum, 12> cDesktopFlags{
    GL_COLOR_LOGIC_OP,    GL_DEPTH_CLAMP,         GL_FRAMEBUFFER_SRGB,     GL_LINE_SMOOTH,
    GL_MULTISAMPLE,       GL_POLYGON_OFFSET_LINE, GL_POLYGON_OFFSET_POINT, GL_POLYGON_SMOOTH,
    GL_PRIMITIVE_RESTART, GL_PROGRAM_POINT_SIZE,  GL_SAMPLE_ALPHA_TO_ONE,  GL_TEXTURE_CUBE_MAP_SEAMLESS};
constexpr GLenum cClipDistances = 6; // that every driver has

constexpr std::array<GLenum, 10> cPixelStore{
    GL_PACK_ALIGNMENT,      GL_PACK_ROW_LENGTH,   GL_PACK_SKIP_PIXELS,   GL_PACK_SKIP_ROWS,     GL_UNPACK_ALIGNMENT,
    GL_UNPACK_IMAGE_HEIGHT, GL_UNPACK_ROW_LENGTH, GL_UNPACK_SKIP_IMAGES, GL_UNPACK_SKIP_PIXELS, GL_UNPACK_SKIP_ROWS};
constexpr std::array<GLenum, 2> cDesktopPixelStore{GL_PACK_IMAGE_HEIGHT, GL_PACK_SKIP_IMAGES};

constexpr int cVersionWithPatches = 40, cESVersionWithPatches = 32;
constexpr int cMostUnits = 32; // that the library has names for

GLuint renamed(CurrentContext::Kind kind, int name) { return Restoration::getNew(kind, static_cast<GLuint>(name)); }

GLuint renamed(CurrentContext::Kind kind, GLuint name) { return Restoration::getNew(kind, name); }

} // namespace

void ContextState::keepProgram()
{
    s_pProgramBefore = s_pCurrentProgram;
    s_activeBufferBefore = s_activeBuffer;
}

void ContextState::read()
{
    keepProgram();
    _flags.clear();
    for (const GLenum flag : cStateFlags)
        _flags.emplace_back(flag, glIsEnabled(flag) == GL_TRUE);
    const bool isES = Context::isES();
    for (std::size_t i = 0; i < cDesktopFlags.size() && !isES; ++i)
        _flags.emplace_back(cDesktopFlags[i], glIsEnabled(cDesktopFlags[i]) == GL_TRUE);
    for (GLenum i = 0; i < cClipDistances && (!isES || Features::get().hasClipDistances); ++i)
        _flags.emplace_back(GL_CLIP_DISTANCE0 + i, glIsEnabled(GL_CLIP_DISTANCE0 + i) == GL_TRUE);
    _pixelStore.clear();
    for (const GLenum name : cPixelStore)
        _pixelStore.emplace_back(name, glNumber(name));
    for (std::size_t i = 0; i < cDesktopPixelStore.size() && !isES; ++i)
        _pixelStore.emplace_back(cDesktopPixelStore[i], glNumber(cDesktopPixelStore[i]));
    for (std::size_t i = 0; i < _faces.size(); ++i)
    {
        const bool isBack = i == 1;
        _faces[i] = {glNumber(isBack ? GL_STENCIL_BACK_FUNC : GL_STENCIL_FUNC),
                     glNumber(isBack ? GL_STENCIL_BACK_REF : GL_STENCIL_REF),
                     glNumber(isBack ? GL_STENCIL_BACK_VALUE_MASK : GL_STENCIL_VALUE_MASK),
                     glNumber(isBack ? GL_STENCIL_BACK_WRITEMASK : GL_STENCIL_WRITEMASK),
                     glNumber(isBack ? GL_STENCIL_BACK_FAIL : GL_STENCIL_FAIL),
                     glNumber(isBack ? GL_STENCIL_BACK_PASS_DEPTH_FAIL : GL_STENCIL_PASS_DEPTH_FAIL),
                     glNumber(isBack ? GL_STENCIL_BACK_PASS_DEPTH_PASS : GL_STENCIL_PASS_DEPTH_PASS)};
    }
    glGetFloatv(GL_COLOR_CLEAR_VALUE, _clearColor.data());
    glGetFloatv(GL_BLEND_COLOR, _blendColor.data());
    glGetFloatv(GL_DEPTH_RANGE, _depthRange.data());
    glGetFloatv(GL_POLYGON_OFFSET_FACTOR, &_polygonOffset[0]);
    glGetFloatv(GL_POLYGON_OFFSET_UNITS, &_polygonOffset[1]);
    glGetIntegerv(GL_VIEWPORT, _viewport.data());
    glGetIntegerv(GL_SCISSOR_BOX, _scissor.data());
    _blendFunctions = {glNumber(GL_BLEND_SRC_RGB), glNumber(GL_BLEND_DST_RGB), glNumber(GL_BLEND_SRC_ALPHA),
                       glNumber(GL_BLEND_DST_ALPHA)};
    _blendEquations = {glNumber(GL_BLEND_EQUATION_RGB), glNumber(GL_BLEND_EQUATION_ALPHA)};
    glGetBooleanv(GL_COLOR_WRITEMASK, _colorMask.data());
    glGetBooleanv(GL_DEPTH_WRITEMASK, &_depthMask);
    glGetFloatv(GL_DEPTH_CLEAR_VALUE, &_clearDepth);
    glGetFloatv(GL_LINE_WIDTH, &_lineWidth);
    _pointSize = getPointSize();
    _polygonMode = getPolygonMode();
    _clearStencil = glNumber(GL_STENCIL_CLEAR_VALUE);
    _depthFunction = glNumber(GL_DEPTH_FUNC);
    _cullFace = glNumber(GL_CULL_FACE_MODE);
    _frontFace = glNumber(GL_FRONT_FACE);
    if (!isES)
    {
        _restartIndex = glNumber(GL_PRIMITIVE_RESTART_INDEX);
        _provokingVertex = glNumber(GL_PROVOKING_VERTEX);
        _logicOp = glNumber(GL_LOGIC_OP_MODE);
    }
    const bool hasPatches = Context::isAtLeast(cVersionWithPatches, cESVersionWithPatches);
    _patchVertices = hasPatches ? glNumber(GL_PATCH_VERTICES) : 0;
    _vertexArray = glNumber(GL_VERTEX_ARRAY_BINDING);
    _program = glNumber(GL_CURRENT_PROGRAM);
    readUnits();
    _isRead = true;
}

void ContextState::readUnits()
{
    _activeTexture = glNumber(GL_ACTIVE_TEXTURE);
    _units.assign(static_cast<std::size_t>(std::min(glNumber(GL_MAX_TEXTURE_IMAGE_UNITS), cMostUnits)), {});
    GLenum unit = GL_TEXTURE0;
    for (Unit& bound : _units)
    {
        glActiveTexture(unit++);
        bound = {static_cast<GLuint>(glNumber(GL_TEXTURE_BINDING_2D)),
                 static_cast<GLuint>(glNumber(GL_TEXTURE_BINDING_CUBE_MAP)),
                 Features::get().hasTextureBuffers ? static_cast<GLuint>(glNumber(GL_TEXTURE_BINDING_BUFFER)) : 0};
    }
    glActiveTexture(static_cast<GLenum>(_activeTexture));
}

void ContextState::applyUnits() const
{
    GLenum unit = GL_TEXTURE0;
    for (const Unit& bound : _units)
    {
        if (bound.name2D != 0 || bound.nameCube != 0 || bound.nameBuffer != 0)
        {
            glActiveTexture(unit);
            glBindTexture(GL_TEXTURE_2D, renamed(CurrentContext::Kind::Texture, bound.name2D));
            glBindTexture(GL_TEXTURE_CUBE_MAP, renamed(CurrentContext::Kind::Texture, bound.nameCube));
            if (bound.nameBuffer != 0)
                glBindTexture(GL_TEXTURE_BUFFER, renamed(CurrentContext::Kind::Texture, bound.nameBuffer));
        }
        ++unit;
    }
    glActiveTexture(static_cast<GLenum>(_activeTexture));
}

void ContextState::apply() const
{
    if (!_isRead)
        return;
    for (const auto& [flag, isOn] : _flags)
        isOn ? glEnable(flag) : glDisable(flag);
    for (const auto& [name, value] : _pixelStore)
        glPixelStorei(name, value);
    for (std::size_t i = 0; i < _faces.size(); ++i)
    {
        const Face& face = _faces[i];
        const GLenum side = i == 1 ? GL_BACK : GL_FRONT;
        glStencilFuncSeparate(side, static_cast<GLenum>(face.function), face.reference,
                              static_cast<GLuint>(face.valueMask));
        glStencilMaskSeparate(side, static_cast<GLuint>(face.writeMask));
        glStencilOpSeparate(side, static_cast<GLenum>(face.fail), static_cast<GLenum>(face.depthFail),
                            static_cast<GLenum>(face.depthPass));
    }
    glClearColor(_clearColor[0], _clearColor[1], _clearColor[2], _clearColor[3]);
    glBlendColor(_blendColor[0], _blendColor[1], _blendColor[2], _blendColor[3]);
    if (Context::isES())
        glDepthRangef(_depthRange[0], _depthRange[1]);
    else
        glDepthRange(static_cast<GLdouble>(_depthRange[0]), static_cast<GLdouble>(_depthRange[1]));
    glPolygonOffset(_polygonOffset[0], _polygonOffset[1]);
    glViewport(_viewport[0], _viewport[1], _viewport[2], _viewport[3]);
    glScissor(_scissor[0], _scissor[1], _scissor[2], _scissor[3]);
    glBlendFuncSeparate(static_cast<GLenum>(_blendFunctions[0]), static_cast<GLenum>(_blendFunctions[1]),
                        static_cast<GLenum>(_blendFunctions[2]), static_cast<GLenum>(_blendFunctions[3]));
    glBlendEquationSeparate(static_cast<GLenum>(_blendEquations[0]), static_cast<GLenum>(_blendEquations[1]));
    glColorMask(_colorMask[0], _colorMask[1], _colorMask[2], _colorMask[3]);
    glDepthMask(_depthMask);
    Context::setClearDepth(_clearDepth);
    glLineWidth(_lineWidth);
    setPointSize(_pointSize);
    setPolygonMode(_polygonMode);
    glClearStencil(_clearStencil);
    glDepthFunc(static_cast<GLenum>(_depthFunction));
    glCullFace(static_cast<GLenum>(_cullFace));
    glFrontFace(static_cast<GLenum>(_frontFace));
    if (!Context::isES())
    {
        glPrimitiveRestartIndex(static_cast<GLuint>(_restartIndex));
        glProvokingVertex(static_cast<GLenum>(_provokingVertex));
        glLogicOp(static_cast<GLenum>(_logicOp));
    }
    if (_patchVertices > 0)
        glPatchParameteri(GL_PATCH_VERTICES, _patchVertices);
    applyUnits();
    glBindVertexArray(renamed(CurrentContext::Kind::VertexArray, _vertexArray));
    s_activeBuffer = std::exchange(s_activeBufferBefore, {});
    setCurrentProgram(std::exchange(s_pProgramBefore, nullptr));
    glUseProgram(renamed(CurrentContext::Kind::Program, _program));
}

} // namespace gui::gl
