#include "support/OffscreenGL.h"

#include <gui/gl/Context.h>
#include <gui/gl/CurrentContext.h>

#include <epoxy/gl.h>

#include <algorithm>
#include <iterator>

namespace
{

using gui::gl::Blend;
using gui::gl::Context;
using gui::gl::DepthBuffer;
using gui::gl::StencilBuffer;
using test::Pixel;

class ContextGLTest : public test::OffscreenGL
{
protected:
    /// What the driver answers: one or two numbers.
    static GLenum stateOf(GLenum name)
    {
        GLint values[2]{};
        glGetIntegerv(name, values);
        return static_cast<GLenum>(values[0]);
    }
};

// Every value of every enumeration is set and read back from the driver.
TEST_F(ContextGLTest, EveryValueReachesItsState)
{
    const GLenum depthFunctions[] = {GL_ALWAYS, GL_NEVER,   GL_LESS,     GL_EQUAL,
                                     GL_LEQUAL, GL_GREATER, GL_NOTEQUAL, GL_GEQUAL};
    const GLenum stencilFunctions[] = {GL_NEVER,  GL_LESS,  GL_LEQUAL,   GL_GREATER,
                                       GL_GEQUAL, GL_EQUAL, GL_NOTEQUAL, GL_ALWAYS};
    const GLenum operations[] = {GL_KEEP, GL_ZERO, GL_REPLACE, GL_INCR, GL_INCR_WRAP, GL_DECR, GL_DECR_WRAP, GL_INVERT};
    for (unsigned char i = 0; i < 8; ++i)
    {
        Context::setDepthBufferFunction(DepthBuffer::Function(i));
        EXPECT_EQ(stateOf(GL_DEPTH_FUNC), depthFunctions[i]);
        Context::setStencilBufferFunction(StencilBuffer::Function(i), i, 0x1F);
        EXPECT_EQ(stateOf(GL_STENCIL_FUNC), stencilFunctions[i]);
        EXPECT_EQ(stateOf(GL_STENCIL_REF), i);
        EXPECT_EQ(stateOf(GL_STENCIL_VALUE_MASK), 0x1FU);
        const auto operation = [i](unsigned int place) { return StencilBuffer::Operation((i + place) % 8); };
        Context::setStencilBufferOperation(operation(0), operation(1), operation(2));
        EXPECT_EQ(stateOf(GL_STENCIL_FAIL), operations[i]);
        EXPECT_EQ(stateOf(GL_STENCIL_PASS_DEPTH_FAIL), operations[(i + 1) % 8]);
        EXPECT_EQ(stateOf(GL_STENCIL_PASS_DEPTH_PASS), operations[(i + 2) % 8]);
    }
    const GLenum factors[] = {GL_ZERO,
                              GL_ONE,
                              GL_SRC_COLOR,
                              GL_ONE_MINUS_SRC_COLOR,
                              GL_DST_COLOR,
                              GL_ONE_MINUS_DST_COLOR,
                              GL_SRC_ALPHA,
                              GL_ONE_MINUS_SRC_ALPHA,
                              GL_DST_ALPHA,
                              GL_ONE_MINUS_DST_ALPHA,
                              GL_CONSTANT_COLOR,
                              GL_ONE_MINUS_CONSTANT_COLOR,
                              GL_CONSTANT_ALPHA,
                              GL_ONE_MINUS_CONSTANT_ALPHA,
                              GL_SRC_ALPHA_SATURATE,
                              GL_SRC1_COLOR,
                              GL_ONE_MINUS_SRC1_COLOR,
                              GL_SRC1_ALPHA,
                              GL_ONE_MINUS_SRC1_ALPHA};
    for (std::size_t i = 0; i < std::size(factors); ++i)
    {
        const std::size_t other = (i + 1) % std::size(factors);
        Context::setBlendFunction(Blend::Factor(i), Blend::Factor(other));
        EXPECT_EQ(stateOf(GL_BLEND_SRC_RGB), factors[i]);
        EXPECT_EQ(stateOf(GL_BLEND_DST_RGB), factors[other]);
    }
    const GLenum modes[] = {GL_FILL, GL_LINE, GL_POINT};
    for (unsigned char i = 0; i < 3; ++i)
    {
        Context::setPolygonMode(Context::PolygonMode(i));
        EXPECT_EQ(Context::isES() ? modes[i] : stateOf(GL_POLYGON_MODE), modes[i]); // ES has no such state
    }
    const GLenum flags[] = {GL_DEPTH_TEST, GL_CULL_FACE,    GL_STENCIL_TEST,
                            GL_BLEND,      GL_SCISSOR_TEST, GL_POLYGON_OFFSET_FILL};
    for (unsigned char i = 0; i < std::size(flags); ++i)
    {
        Context::enable(Context::Flag(i));
        for (const GLenum flag : flags)
            EXPECT_EQ(glIsEnabled(flag), flag == flags[i]) << int(i);
        Context::disable(Context::Flag(i));
    }
    Context::setStencilBufferMask(0x0F);
    EXPECT_EQ(stateOf(GL_STENCIL_WRITEMASK), 0x0FU);
    for (const bool writes : {false, true})
    {
        Context::maskDepthBuffer(writes);
        EXPECT_EQ(stateOf(GL_DEPTH_WRITEMASK), writes);
    }
    Context::setPointSize(3);
    EXPECT_EQ(Context::isES() ? 3U : stateOf(GL_POINT_SIZE), 3U);
    Context::setScissor(4, 2, 8, 3);
    GLint box[4]{};
    glGetIntegerv(GL_SCISSOR_BOX, box);
    EXPECT_TRUE(std::ranges::equal(box, std::initializer_list<GLint>{4, 2, 8, 3}));
    for (int channel = 0; channel < 4; ++channel)
    {
        Context::maskColorBuffer(channel == 0, channel == 1, channel == 2, channel == 3);
        GLboolean mask[4]{};
        glGetBooleanv(GL_COLOR_WRITEMASK, mask);
        for (int i = 0; i < 4; ++i)
            EXPECT_EQ(mask[i], i == channel);
    }
    Context::maskColorBuffer(true, true, true, true);
    Context::setPolygonOffset(2, -3);
    GLfloat offset[2]{};
    glGetFloatv(GL_POLYGON_OFFSET_FACTOR, &offset[0]);
    glGetFloatv(GL_POLYGON_OFFSET_UNITS, &offset[1]);
    EXPECT_EQ(offset[0], 2);
    EXPECT_EQ(offset[1], -3);
}

// A kind that is mixed up with another deletes a neighbour's object, or nothing.
TEST_F(ContextGLTest, NamesOfEveryKindAreDeleted)
{
    using gui::gl::CurrentContext;
    using Kind = CurrentContext::Kind;
    // Names are objects once they were bound.
    const struct
    {
        Kind kind;
        void (*generate)(GLsizei n, GLuint* names);
        void (*bind)(GLuint name);
        GLboolean (*isThere)(GLuint name);
    } kinds[] = {
        {Kind::Buffer, glGenBuffers, [](GLuint name) { glBindBuffer(GL_ARRAY_BUFFER, name); }, glIsBuffer},
        {Kind::Framebuffer, glGenFramebuffers, [](GLuint name) { glBindFramebuffer(GL_READ_FRAMEBUFFER, name); },
         glIsFramebuffer},
        {Kind::Program, [](GLsizei, GLuint* p) { *p = glCreateProgram(); }, [](GLuint) {}, glIsProgram},
        {Kind::ProgramPipeline, glGenProgramPipelines, glBindProgramPipeline, glIsProgramPipeline},
        {Kind::Query, glGenQueries,
         [](GLuint name)
         {
             glBeginQuery(GL_ANY_SAMPLES_PASSED, name);
             glEndQuery(GL_ANY_SAMPLES_PASSED);
         },
         glIsQuery},
        {Kind::Renderbuffer, glGenRenderbuffers, [](GLuint name) { glBindRenderbuffer(GL_RENDERBUFFER, name); },
         glIsRenderbuffer},
        {Kind::Sampler, glGenSamplers, [](GLuint name) { glBindSampler(0, name); }, glIsSampler},
        {Kind::Shader, [](GLsizei, GLuint* p) { *p = glCreateShader(GL_VERTEX_SHADER); }, [](GLuint) {}, glIsShader},
        {Kind::Texture, glGenTextures, [](GLuint name) { glBindTexture(GL_TEXTURE_2D, name); }, glIsTexture},
        {Kind::TransformFeedback, glGenTransformFeedbacks,
         [](GLuint name) { glBindTransformFeedback(GL_TRANSFORM_FEEDBACK, name); }, glIsTransformFeedback},
        {Kind::VertexArray, glGenVertexArrays, glBindVertexArray, glIsVertexArray},
    };
    for (const auto& [kind, generate, bind, isThere] : kinds)
    {
        GLuint name = 0;
        generate(1, &name);
        bind(name);
        EXPECT_TRUE(isThere(name)) << int(kind);
        glBindTransformFeedback(GL_TRANSFORM_FEEDBACK, 0); // one that is bound is not deleted
        CurrentContext::deleteName(CurrentContext::getID(), kind, name);
        EXPECT_FALSE(isThere(name)) << int(kind);
    }
}

TEST_F(ContextGLTest, ClearTouchesTheNamedBuffersOnly)
{
    using enum Context::Clear;
    const std::initializer_list<Context::Clear> cases[] = {{Color}, {Depth}, {Stencil}, {Color, Stencil}, {}};
    for (const std::initializer_list<Context::Clear>& what : cases)
    {
        Context::setClearDepth(0);
        glClearStencil(3);
        clear({0, 0, 255, 10});
        Context::setClearDepth(1);
        glClearStencil(7);
        Context::clear(td::ColorID::Red);
        if (what.size() == 1)
            Context::clear(*what.begin());
        else
            Context::clear(what);
        const auto has = [&](Context::Clear one) { return std::find(what.begin(), what.end(), one) != what.end(); };
        EXPECT_EQ(pixel(8, 8), has(Color) ? (Pixel{255, 0, 0, 255}) : (Pixel{0, 0, 255, 10}));
        unsigned char stencil = 0;
        glReadPixels(8, 8, 1, 1, GL_STENCIL_INDEX, GL_UNSIGNED_BYTE, &stencil);
        EXPECT_EQ(depthAt(8, 8), has(Depth) ? 1 : 0);
        EXPECT_EQ(stencil, has(Stencil) ? 7 : 3);
    }
    Context::clear(td::ColorID::NoColor); // whose alpha is 0 in the table
    Context::clear(Color);
    EXPECT_EQ(pixel(8, 8), (Pixel{0, 0, 0, 255}));
    Context::clear(Color, "#204060"); // a colour of one's own has an alpha of its own
    EXPECT_EQ(pixel(8, 8), (Pixel{32, 64, 96, 255}));
    Context::clear(Color, td::Color("#20406080"));
    EXPECT_EQ(pixel(8, 8), (Pixel{32, 64, 96, 128}));
}

} // namespace
