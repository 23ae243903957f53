#include "support/OffscreenGL.h"

#include <gui/gl/Context.h>
#include <gui/gl/CurrentContext.h>
#include <gui/gl/Program.h>

#include <epoxy/gl.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <vector>

// Every value of every enumeration is judged by what the driver then does.

namespace
{

using gui::gl::Blend;
using gui::gl::Context;
using gui::gl::DepthBuffer;
using gui::gl::StencilBuffer;
using test::Pixel;

constexpr const char* cWhite = R"(#version 330 core
out vec4 color;
void main() { color = vec4(1.0); })";

/// Covers the picture with one triangle whose pixels a fragment shader colours.
class FullScreen : public gui::gl::Program
{
public:
    explicit FullScreen(const char* fragmentShader)
    {
        EXPECT_TRUE(link(R"(#version 330 core
uniform float depth;
uniform float scale;
void main()
{
    vec2 corner = vec2(gl_VertexID & 1, gl_VertexID >> 1) * 4.0 - 1.0;
    gl_Position = vec4(corner * scale, depth, 1.0);
})",
                         fragmentShader));
        glGenVertexArrays(1, &_vertexArray);
    }
    ~FullScreen() { glDeleteVertexArrays(1, &_vertexArray); }

    void onLinked() override {}

    /// @param depth  of all pixels, -1 to 1
    /// @param scale  1 covers the picture; 0.3 puts the corners at (-0.3, -0.3), (0.9, -0.3) and (-0.3, 0.9)
    void draw(float depth = 0, float scale = 1)
    {
        activate();
        setUniformValue(static_cast<unsigned int>(getUniformLocation("depth")), depth);
        setUniformValue(static_cast<unsigned int>(getUniformLocation("scale")), scale);
        glBindVertexArray(_vertexArray);
        glDrawArrays(GL_TRIANGLES, 0, 3);
    }

private:
    GLuint _vertexArray = 0;
};

class ContextGLTest : public test::OffscreenGL
{
protected:
    ContextGLTest()
        : OffscreenGL({16, 16})
    {
    }

    static bool isLit() { return pixel(8, 8) == Pixel{255, 255, 255}; }

    static int stencil()
    {
        unsigned char value = 0;
        glReadPixels(8, 8, 1, 1, GL_STENCIL_INDEX, GL_UNSIGNED_BYTE, &value);
        return value;
    }

    static float depth()
    {
        float value = 0;
        glReadPixels(8, 8, 1, 1, GL_DEPTH_COMPONENT, GL_FLOAT, &value);
        return value;
    }
};

TEST_F(ContextGLTest, DepthFunctionsPassWhatTheirNamesSay)
{
    FullScreen white(cWhite);
    Context::enable(Context::Flag::DepthTest);
    // nearer than, as far as, farther than what is there
    const std::string cPasses[] = {"111", "000", "100", "010", "110", "001", "101", "011"};
    for (unsigned char value = 0; value < 8; ++value)
    {
        std::string passes;
        for (const float z : {-0.5f, 0.0f, 0.5f})
        {
            glDepthFunc(GL_ALWAYS);
            white.draw();
            glClear(GL_COLOR_BUFFER_BIT);
            Context::setDepthBufferFunction(DepthBuffer::Function(value));
            white.draw(z);
            passes += isLit() ? '1' : '0';
        }
        EXPECT_EQ(passes, cPasses[value]) << int(value);
    }
    Context::maskDepthBuffer(false);
    Context::setDepthBufferFunction(DepthBuffer::Function::Always);
    white.draw(-1);
    EXPECT_GT(depth(), 0.1f); // of the draw before
    Context::maskDepthBuffer(true);
    white.draw(-1);
    EXPECT_EQ(depth(), 0);
}

TEST_F(ContextGLTest, StencilFunctionsPassWhatTheirNamesSay)
{
    FullScreen white(cWhite);
    Context::enable(Context::Flag::StencilTest);
    glClearStencil(5);
    // reference 4, 5 and 6 compared with 5
    const std::string cPasses[] = {"000", "100", "110", "001", "011", "010", "101", "111"};
    for (unsigned char value = 0; value < 8; ++value)
    {
        std::string passes;
        for (const int ref : {0x24, 0x25, 0x26}) // the bits above the mask don't count
        {
            glClear(GL_COLOR_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
            Context::setStencilBufferFunction(StencilBuffer::Function(value), ref, 0x1F);
            white.draw();
            passes += isLit() ? '1' : '0';
        }
        EXPECT_EQ(passes, cPasses[value]) << int(value);
    }
}

TEST_F(ContextGLTest, StencilOperationsDoWhatTheirNamesSayInEachPlace)
{
    FullScreen white(cWhite);
    Context::enable(Context::Flag::StencilTest);
    Context::enable(Context::Flag::DepthTest);
    struct Case
    {
        int before;
        int after[8];
    };
    const Case cases[] = {
        {5, {5, 0, 9, 6, 6, 4, 4, 250}}, {255, {255, 0, 9, 255, 0, 254, 254, 0}}, {0, {0, 0, 9, 1, 1, 0, 255, 255}}};
    const auto keep = StencilBuffer::Operation::Keep;
    for (const Case& c : cases)
    {
        glClearStencil(c.before);
        for (unsigned char value = 0; value < 8; ++value)
        {
            for (int place = 0; place < 3; ++place)
            {
                const auto operation = StencilBuffer::Operation(value);
                Context::setStencilBufferOperation(place == 0 ? operation : keep, place == 1 ? operation : keep,
                                                   place == 2 ? operation : keep);
                for (int outcome = 0; outcome < 3; ++outcome)
                {
                    glClear(GL_STENCIL_BUFFER_BIT);
                    Context::setStencilBufferFunction(
                        outcome == 0 ? StencilBuffer::Function::Never : StencilBuffer::Function::Always, 9, 0xFF);
                    Context::setDepthBufferFunction(outcome == 1 ? DepthBuffer::Function::Never
                                                                 : DepthBuffer::Function::Always);
                    white.draw();
                    EXPECT_EQ(stencil(), outcome == place ? c.after[value] : c.before)
                        << value << ' ' << place << ' ' << outcome;
                }
            }
        }
    }
    glClearStencil(0);
    glClear(GL_STENCIL_BUFFER_BIT);
    Context::setStencilBufferMask(0x0F);
    Context::setStencilBufferOperation(StencilBuffer::Operation::Invert, StencilBuffer::Operation::Invert,
                                       StencilBuffer::Operation::Invert);
    white.draw();
    EXPECT_EQ(stencil(), 0x0F);
}

using Color = std::array<double, 4>;

Color oneMinus(const Color& c) { return {1 - c[0], 1 - c[1], 1 - c[2], 1 - c[3]}; }

Color alphaOf(const Color& c) { return {c[3], c[3], c[3], c[3]}; }

TEST_F(ContextGLTest, BlendFactorsMultiplyByWhatTheirNamesSay)
{
    FullScreen source(R"(#version 330 core
layout(location = 0, index = 0) out vec4 color;
layout(location = 0, index = 1) out vec4 color1;
void main()
{
    color = vec4(51.0, 102.0, 153.0, 204.0) / 255.0;
    color1 = vec4(229.0, 178.0, 127.0, 76.0) / 255.0;
})");
    const Color src{0.2, 0.4, 0.6, 0.8};
    const Color src1{229 / 255., 178 / 255., 127 / 255., 76 / 255.};
    const Color dst{204 / 255., 153 / 255., 51 / 255., 102 / 255.};
    const Color constant{0.25, 0.5, 0.75, 0.4};
    const double saturated = std::min(src[3], 1 - dst[3]);
    const Color zero{}, one{1, 1, 1, 1}, saturate{saturated, saturated, saturated, 1};
    std::vector<Color> factors{zero, one};
    for (const Color& color : {src, dst, alphaOf(src), alphaOf(dst), constant, alphaOf(constant)})
        factors.insert(factors.end(), {color, oneMinus(color)});
    factors.push_back(saturate);
    for (const Color& color : {src1, alphaOf(src1)})
        factors.insert(factors.end(), {color, oneMinus(color)});
    Context::enable(Context::Flag::Blend);
    glBlendColor(0.25f, 0.5f, 0.75f, 0.4f);
    for (std::size_t value = 0; value < factors.size(); ++value)
    {
        for (const bool isSource : {true, false})
        {
            clear({204, 153, 51, 102});
            const auto factor = Blend::Factor(value);
            Context::setBlendFunction(isSource ? factor : Blend::Factor::Zero, isSource ? Blend::Factor::Zero : factor);
            source.draw();
            const Color& base = isSource ? src : dst;
            const Pixel actual = pixel(8, 8);
            const int channels[] = {actual.red, actual.green, actual.blue, actual.alpha};
            for (std::size_t i = 0; i < 4; ++i)
            {
                // 1: the driver may round products of bytes its own way
                EXPECT_NEAR(channels[i], base[i] * factors[value][i] * 255, 1) << value << ' ' << isSource;
            }
        }
    }
}

TEST_F(ContextGLTest, PolygonModesFillOutlineAndDot)
{
    FullScreen white(cWhite);
    int nLit[3] = {};
    bool isInsideLit[3] = {};
    for (unsigned char value = 0; value < 3; ++value)
    {
        clear();
        Context::setPolygonMode(Context::PolygonMode(value));
        white.draw(0, 0.3f);
        isInsideLit[value] = isLit();
        for (int y = 0; y < 16; ++y)
        {
            for (int x = 0; x < 16; ++x)
                nLit[value] += pixel(x, y) == Pixel{255, 255, 255} ? 1 : 0;
        }
    }
    EXPECT_EQ((std::vector<bool>(isInsideLit, isInsideLit + 3)), (std::vector<bool>{true, false, false}));
    EXPECT_GT(nLit[0], nLit[1]);
    EXPECT_GT(nLit[1], nLit[2]);
    EXPECT_EQ(nLit[2], 3); // the corners
}

TEST_F(ContextGLTest, FlagsAndPointSizeReachTheirState)
{
    const GLenum capabilities[] = {GL_DEPTH_TEST, GL_CULL_FACE, GL_STENCIL_TEST, GL_BLEND};
    for (unsigned char value = 0; value < 4; ++value)
    {
        Context::enable(Context::Flag(value));
        for (unsigned char other = 0; other < 4; ++other)
            EXPECT_EQ(glIsEnabled(capabilities[other]), other == value) << value << ' ' << int(other);
        Context::disable(Context::Flag(value));
        EXPECT_FALSE(glIsEnabled(capabilities[value]));
    }
    Context::setPointSize(3);
    float size = 0;
    glGetFloatv(GL_POINT_SIZE, &size);
    EXPECT_EQ(size, 3);
}

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
             glBeginQuery(GL_SAMPLES_PASSED, name);
             glEndQuery(GL_SAMPLES_PASSED);
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
        glClearDepth(0);
        glClearStencil(3);
        clear({0, 0, 255, 10});
        glClearDepth(1);
        glClearStencil(7);
        Context::clear(td::ColorID::Red);
        if (what.size() == 1)
            Context::clear(*what.begin());
        else
            Context::clear(what);
        const auto has = [&](Context::Clear one) { return std::find(what.begin(), what.end(), one) != what.end(); };
        EXPECT_EQ(pixel(8, 8), has(Color) ? (Pixel{255, 0, 0, 255}) : (Pixel{0, 0, 255, 10}));
        EXPECT_EQ(depth(), has(Depth) ? 1 : 0);
        EXPECT_EQ(stencil(), has(Stencil) ? 7 : 3);
    }
    Context::clear(td::ColorID::NoColor); // whose alpha is 0 in the table
    Context::clear(Color);
    EXPECT_EQ(pixel(8, 8), (Pixel{0, 0, 0, 255}));
}

} // namespace
