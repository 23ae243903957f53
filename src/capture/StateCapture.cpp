#include "StateCapture.h"

#include "../context/GLNumber.h"
#include "StateFlags.h"

#include <epoxy/gl.h>

#include <algorithm>
#include <array>

namespace gui::gl
{

namespace
{

GLuint name(GLenum binding) { return static_cast<GLuint>(glNumber(binding)); }

void writeFlags(CallWriter& writer)
{
    for (const StateFlag& flag : cStateFlagNames)
        glIsEnabled(flag.name) == GL_TRUE ? writer.call(&glEnable, flag.name) : writer.call(&glDisable, flag.name);
}

void writePixelStore(CallWriter& writer)
{
    for (const GLenum parameter :
         {GL_UNPACK_ALIGNMENT, GL_UNPACK_ROW_LENGTH, GL_UNPACK_SKIP_ROWS, GL_UNPACK_SKIP_PIXELS})
        writer.call(&glPixelStorei, parameter, glNumber(parameter));
}

void writeStencil(CallWriter& writer)
{
    writer.call(&glStencilFuncSeparate, GL_FRONT, glNumber(GL_STENCIL_FUNC), glNumber(GL_STENCIL_REF),
                glNumber(GL_STENCIL_VALUE_MASK));
    writer.call(&glStencilFuncSeparate, GL_BACK, glNumber(GL_STENCIL_BACK_FUNC), glNumber(GL_STENCIL_BACK_REF),
                glNumber(GL_STENCIL_BACK_VALUE_MASK));
    writer.call(&glStencilOpSeparate, GL_FRONT, glNumber(GL_STENCIL_FAIL), glNumber(GL_STENCIL_PASS_DEPTH_FAIL),
                glNumber(GL_STENCIL_PASS_DEPTH_PASS));
    writer.call(&glStencilOpSeparate, GL_BACK, glNumber(GL_STENCIL_BACK_FAIL),
                glNumber(GL_STENCIL_BACK_PASS_DEPTH_FAIL), glNumber(GL_STENCIL_BACK_PASS_DEPTH_PASS));
    writer.call(&glStencilMaskSeparate, GL_FRONT, glNumber(GL_STENCIL_WRITEMASK));
    writer.call(&glStencilMaskSeparate, GL_BACK, glNumber(GL_STENCIL_BACK_WRITEMASK));
    writer.call(&glClearStencil, glNumber(GL_STENCIL_CLEAR_VALUE));
}

void writeBlending(CallWriter& writer)
{
    std::array<GLfloat, 4> color{};
    glGetFloatv(GL_BLEND_COLOR, color.data());
    writer.call(&glBlendColor, color[0], color[1], color[2], color[3]);
    writer.call(&glBlendFuncSeparate, glNumber(GL_BLEND_SRC_RGB), glNumber(GL_BLEND_DST_RGB),
                glNumber(GL_BLEND_SRC_ALPHA), glNumber(GL_BLEND_DST_ALPHA));
    writer.call(&glBlendEquationSeparate, glNumber(GL_BLEND_EQUATION_RGB), glNumber(GL_BLEND_EQUATION_ALPHA));
    writer.call(&glLogicOp, glNumber(GL_LOGIC_OP_MODE));
}

void writeColorsAndDepth(CallWriter& writer)
{
    std::array<GLfloat, 4> color{};
    glGetFloatv(GL_COLOR_CLEAR_VALUE, color.data());
    writer.call(&glClearColor, color[0], color[1], color[2], color[3]);
    std::array<GLboolean, 4> mask{};
    glGetBooleanv(GL_COLOR_WRITEMASK, mask.data());
    writer.call(&glColorMask, mask[0], mask[1], mask[2], mask[3]);
    GLboolean writesDepth = GL_TRUE;
    glGetBooleanv(GL_DEPTH_WRITEMASK, &writesDepth);
    writer.call(&glDepthMask, writesDepth);
    writer.call(&glDepthFunc, glNumber(GL_DEPTH_FUNC));
    std::array<GLdouble, 2> range{};
    glGetDoublev(GL_DEPTH_RANGE, range.data());
    writer.call(&glDepthRange, range[0], range[1]);
    GLdouble clearDepth = 1;
    glGetDoublev(GL_DEPTH_CLEAR_VALUE, &clearDepth);
    writer.call(&glClearDepth, clearDepth);
    if (epoxy_gl_version() >= 45)
        writer.call(&glClipControl, glNumber(GL_CLIP_ORIGIN), glNumber(GL_CLIP_DEPTH_MODE));
}

void writeShapes(CallWriter& writer)
{
    writer.call(&glCullFace, glNumber(GL_CULL_FACE_MODE));
    writer.call(&glFrontFace, glNumber(GL_FRONT_FACE));
    writer.call(&glPolygonMode, GL_FRONT_AND_BACK, glNumber(GL_POLYGON_MODE));
    GLfloat factor = 0, units = 0, width = 1, size = 1;
    glGetFloatv(GL_POLYGON_OFFSET_FACTOR, &factor);
    glGetFloatv(GL_POLYGON_OFFSET_UNITS, &units);
    writer.call(&glPolygonOffset, factor, units);
    glGetFloatv(GL_LINE_WIDTH, &width);
    writer.call(&glLineWidth, width);
    glGetFloatv(GL_POINT_SIZE, &size);
    writer.call(&glPointSize, size);
    writer.call(&glPrimitiveRestartIndex, glNumber(GL_PRIMITIVE_RESTART_INDEX));
    writer.call(&glProvokingVertex, glNumber(GL_PROVOKING_VERTEX));
    if (epoxy_gl_version() >= 40)
        writer.call(&glPatchParameteri, GL_PATCH_VERTICES, glNumber(GL_PATCH_VERTICES));
    GLfloat coverage = 1;
    GLboolean isInverted = GL_FALSE;
    glGetFloatv(GL_SAMPLE_COVERAGE_VALUE, &coverage);
    glGetBooleanv(GL_SAMPLE_COVERAGE_INVERT, &isInverted);
    writer.call(&glSampleCoverage, coverage, isInverted);
    std::array<GLint, 4> box{};
    glGetIntegerv(GL_VIEWPORT, box.data());
    writer.call(&glViewport, box[0], box[1], box[2], box[3]);
    glGetIntegerv(GL_SCISSOR_BOX, box.data());
    writer.call(&glScissor, box[0], box[1], box[2], box[3]);
}

void writeUnits(CallWriter& writer, ObjectCapture& objects)
{
    struct Target
    {
        GLenum target, binding;
    };
    constexpr std::array cTargets{Target{GL_TEXTURE_2D, GL_TEXTURE_BINDING_2D},
                                  Target{GL_TEXTURE_CUBE_MAP, GL_TEXTURE_BINDING_CUBE_MAP},
                                  Target{GL_TEXTURE_BUFFER, GL_TEXTURE_BINDING_BUFFER},
                                  Target{GL_TEXTURE_2D_MULTISAMPLE, GL_TEXTURE_BINDING_2D_MULTISAMPLE}};
    const GLenum active = name(GL_ACTIVE_TEXTURE);
    constexpr int cMostUnits = 32; // that the library has names for
    const auto n = static_cast<GLenum>(std::min(glNumber(GL_MAX_COMBINED_TEXTURE_IMAGE_UNITS), cMostUnits));
    for (GLenum unit = GL_TEXTURE0; unit < GL_TEXTURE0 + n; ++unit)
    {
        glActiveTexture(unit);
        for (const Target& target : cTargets)
        {
            const GLuint texture = name(target.binding);
            objects.need(GLCall::Kind::Texture, texture, target.target);
            writer.call(&glActiveTexture, unit);
            writer.call(&glBindTexture, target.target, texture);
        }
    }
    glActiveTexture(active);
    writer.call(&glActiveTexture, active);
}

void writeBindings(CallWriter& writer, ObjectCapture& objects)
{
    const GLuint vertexArray = name(GL_VERTEX_ARRAY_BINDING), program = name(GL_CURRENT_PROGRAM);
    const GLuint draw = name(GL_DRAW_FRAMEBUFFER_BINDING), read = name(GL_READ_FRAMEBUFFER_BINDING);
    const GLuint renderbuffer = name(GL_RENDERBUFFER_BINDING);
    objects.need(GLCall::Kind::VertexArray, vertexArray);
    objects.need(GLCall::Kind::Program, program);
    objects.need(GLCall::Kind::Framebuffer, draw);
    objects.need(GLCall::Kind::Framebuffer, read);
    objects.need(GLCall::Kind::Renderbuffer, renderbuffer);
    writer.call(&glBindVertexArray, vertexArray);
    struct Target
    {
        GLenum target, binding;
    };
    for (const Target& target :
         {Target{GL_ARRAY_BUFFER, GL_ARRAY_BUFFER_BINDING}, Target{GL_COPY_READ_BUFFER, GL_COPY_READ_BUFFER_BINDING},
          Target{GL_COPY_WRITE_BUFFER, GL_COPY_WRITE_BUFFER_BINDING}})
    {
        const GLuint buffer = name(target.binding);
        objects.need(GLCall::Kind::Buffer, buffer);
        writer.call(&glBindBuffer, target.target, buffer);
    }
    writer.call(&glBindRenderbuffer, GL_RENDERBUFFER, renderbuffer);
    writer.call(&glBindFramebuffer, GL_DRAW_FRAMEBUFFER, draw);
    writer.call(&glBindFramebuffer, GL_READ_FRAMEBUFFER, read);
    writer.call(&glUseProgram, program);
}

} // namespace

void writeState(CallWriter& writer, ObjectCapture& objects)
{
    writeFlags(writer);
    writePixelStore(writer);
    writeStencil(writer);
    writeBlending(writer);
    writeColorsAndDepth(writer);
    writeShapes(writer);
    writeUnits(writer, objects);
    writeBindings(writer, objects);
}

} // namespace gui::gl
