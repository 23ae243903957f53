#include "support/CapturedLog.h"
#include "support/CaughtAsserts.h"
#include "support/OffscreenGL.h"

#include <gui/Texture.h>
#include <gui/gl/gl.h>

#include <epoxy/gl.h>

#include <algorithm>
#include <memory>
#include <set>

namespace
{

using namespace gui::gl;
using test::Pixel;
using Format = Framebuffer::Format;

/// A flat triangle under the diagonal of what is drawn into, from its bottom left to its top right corner.
class Half
{
public:
    Half()
    {
        constexpr float cCorners[] = {-1, -1, 1, -1, 1, 1};
        Command* const pCommand = _buffer.appendShape(Primitive::Triangles, cCorners, 3);
        pCommand->setColor("#ff8000");
        _program.link();
    }
    void draw() { _program.draw(_buffer, glm::mat4(1)); }

private:
    Flat2DProgram _program;
    Buffer _buffer{DataType::Vec2};
};

class FramebufferGLTest : public test::OffscreenGL
{
};

std::vector<int> bindings()
{
    std::vector<int> values(7);
    glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &values[0]);
    glGetIntegerv(GL_READ_FRAMEBUFFER_BINDING, &values[1]);
    glGetIntegerv(GL_RENDERBUFFER_BINDING, &values[2]);
    glGetIntegerv(GL_VIEWPORT, &values[3]);
    return values;
}

TEST_F(FramebufferGLTest, EachFormatHoldsItsNumbersAndItsDepth)
{
    Half half;
    for (const int nSamples : {1, std::min(4, mostSamples())})
    {
        for (const Framebuffer::Color color :
             {Framebuffer::Color::RGBA8, Framebuffer::Color::R8, Framebuffer::Color::R16F, Framebuffer::Color::RGBA16F})
        {
            for (unsigned char bits = 0; bits <= 8; bits += 4)
            {
                const Format format{.color = color,
                                    .depth = DepthBuffer::Size(bits),
                                    .stencil = StencilBuffer::Size(bits % 8 / 2),
                                    .samples = nSamples};
                const std::vector<int> before = bindings();
                Framebuffer aside;
                ASSERT_TRUE(aside.create({16, 8}, format));
                EXPECT_EQ(bindings(), before);
                EXPECT_EQ(aside.getSamples(), nSamples);
                std::vector<float> values;
                {
                    const Framebuffer::Drawing drawing(aside);
                    glClearColor(2, -0.5f, 0.25f, 0.5f);
                    gui::gl::Context::setClearDepth(0.25F);
                    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
                    glEnable(GL_DEPTH_TEST);
                    half.draw(); // at 0.5: behind, where there is a depth
                    glDisable(GL_DEPTH_TEST);
                    gui::gl::Context::setClearDepth(1);
                }
                ASSERT_TRUE(aside.readValues(values));
                const bool isFloat = color == Framebuffer::Color::R16F || color == Framebuffer::Color::RGBA16F;
                const bool isRed = color == Framebuffer::Color::R8 || color == Framebuffer::Color::R16F;
                const std::size_t n = isRed ? 1 : 4;
                ASSERT_EQ(values.size(), 16 * 8 * n);
                EXPECT_EQ(values[0], isFloat ? 2 : 1) << "above";
                EXPECT_EQ(values[values.size() - n], bits == 0 || !isFloat ? 1 : 2) << "below";
                if (n > 1)
                {
                    EXPECT_EQ(values[1], isFloat ? -0.5f : 0) << "above";
                }
                EXPECT_TRUE(takeErrors().empty()) << int(color) << ' ' << nSamples << ' ' << int(bits);
            }
        }
    }
}

// The diagonal of several samples is in between, that of one is not; upright, with what was there where it was.
TEST_F(FramebufferGLTest, SamplesSmoothEdgesAndTheTextureHasThem)
{
    Half half;
    for (const int nSamples : {1, std::min(4, mostSamples())})
    {
        Framebuffer aside;
        ASSERT_TRUE(aside.create({32, 32}, {.samples = nSamples}));
        clear({0, 0, 255});
        Context::setScissor(0, 0, 4, 4);
        const std::vector<int> before = bindings();
        {
            const Framebuffer::Drawing drawing(aside);
            ASSERT_TRUE(drawing);
            Context::clear(Context::Clear::Color, td::Color(0, 0, 0, 0));
            half.draw();
            Context::enable(Context::Flag::ScissorTest); // which limits no resolve
        }
        Context::disable(Context::Flag::ScissorTest);
        EXPECT_EQ(bindings(), before);
        EXPECT_EQ(pixel(1, 1), (Pixel{0, 0, 255}));

        gui::Texture picture;
        ASSERT_TRUE(aside.readPixels(picture, true));
        std::set<int> reds;
        for (int i = 0; i < 32 * 32; ++i)
            reds.insert(picture.getBytes()[4 * i]);
        EXPECT_EQ(reds.size() > 2, nSamples > 1) << nSamples;
        EXPECT_EQ(reds.count(0) + reds.count(255), 2u);
        const td::BYTE* const pBottomRight = picture.getBytes() + 4 * (32 * 32 - 1);
        EXPECT_EQ(td::Color(pBottomRight[0], pBottomRight[1], pBottomRight[2], pBottomRight[3]), "#ff8000");
        EXPECT_EQ(picture.getBytes()[3], 0);

        // Shown in the frame, the whole of it.
        Texture2DProgram textured;
        textured.link();
        Buffer quad{DataType::Vec2, DataType::Vec2};
        constexpr float cCorners[] = {-1, -1, 0, 0, 1, -1, 1, 0, 1, 1, 1, 1, -1, 1, 0, 1};
        quad.appendShape(Primitive::TriangleFan, cCorners, 4);
        Context::setActiveTextureUnit(Texture::Unit::T0);
        Context::bindTextureToCurrentlyActiveTextureUnit(aside.getTextureID(), Texture::Type::Tex2D);
        textured.draw(quad, glm::mat4(1));
        EXPECT_EQ(pixel(60, 2), (Pixel{255, 128, 0}));
        EXPECT_EQ(pixel(2, 60), (Pixel{0, 0, 0, 0}));
    }
}

TEST_F(FramebufferGLTest, OthersMayBeBegunInBetweenAndGone)
{
    Framebuffer outer;
    auto pInner = std::make_unique<Framebuffer>();
    ASSERT_TRUE(outer.create({8, 8}) && pInner->create({4, 4}) && pInner->begin() && outer.begin());
    Context::clear(Context::Clear::Color, "#123456");
    pInner.reset(); // which was to be restored
    EXPECT_TRUE(outer.end());
    EXPECT_EQ(bindings()[0], 0);
    std::vector<float> values;
    ASSERT_TRUE(outer.resize({8, 8}) && outer.readValues(values));
    EXPECT_EQ(values[2], 0x56 / 255.0f) << "the same size loses nothing";
    ASSERT_TRUE(outer.resize({20, 3}) && outer.readValues(values));
    EXPECT_EQ(values.size(), 240u);
    // One that ends in the middle of a drawing leaves what was before it.
    ASSERT_TRUE(outer.begin());
    const std::vector<int> before = bindings();
    {
        Framebuffer passing;
        ASSERT_TRUE(passing.create({4, 4}) && passing.begin());
    }
    EXPECT_EQ(bindings(), before);
    EXPECT_TRUE(outer.end());
    // Whoever reads at its edges gets nothing from the other side.
    glBindTexture(GL_TEXTURE_2D, outer.getTextureID());
    for (const GLenum direction : {GL_TEXTURE_WRAP_S, GL_TEXTURE_WRAP_T})
    {
        GLint wrap = 0;
        glGetTexParameteriv(GL_TEXTURE_2D, direction, &wrap);
        EXPECT_EQ(wrap, GL_CLAMP_TO_EDGE);
    }
    glBindTexture(GL_TEXTURE_2D, 0);
}

// A name of another context, or of none, must never reach GL; and a frame must not fill the log.
TEST_F(FramebufferGLTest, RefusalsAreSaidOnceAndChangeNothing)
{
    test::CapturedLog log;
    test::CaughtAsserts asserts;
    Framebuffer aside;
    gui::Texture picture;
    std::vector<float> values{7};
    const std::string here = " without a framebuffer in the current context";
    const auto refusesAll = [&]
    {
        const std::pair<const char*, std::function<bool()>> cases[] = {
            {"begin", [&] { return aside.begin(); }},
            {"resolve", [&] { return aside.resolve(); }},
            {"resize",
             [&] {
                 return aside.resize({3, 3});
             }},
            {"readPixels", [&] { return aside.readPixels(picture); }},
            {"readValues", [&] { return aside.readValues(values); }},
        };
        for (const auto& [name, act] : cases)
        {
            EXPECT_FALSE(act());
            EXPECT_TRUE(log.said("Error! Framebuffer::" + std::string(name) + here));
        }
        EXPECT_FALSE(aside.begin() || aside.resolve());
        EXPECT_TRUE(log.take().empty());
        EXPECT_FALSE(picture.isOk());
        EXPECT_EQ(values, std::vector<float>{7});
    };
    refusesAll();
    EXPECT_FALSE(aside.end());
    EXPECT_TRUE(log.said("Error! Framebuffer::end without a begin"));

    EXPECT_FALSE(aside.create({0, 4}) || aside.create({4, -1}) || aside.create({4, 1 << 30}));
    const std::vector<std::string> lines = log.take();
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_TRUE(
        lines[1].starts_with("Error! Framebuffer::create with a size of 4 x -1 pixels; the driver takes 1 to "));
    ASSERT_TRUE(aside.create({8, 8}, {.depth = DepthBuffer::Size::Bits24, .samples = 16}));
    EXPECT_TRUE(log.said("Warning! Framebuffer asked for 16 samples, got " + std::to_string(aside.getSamples())));
    const unsigned int name = aside.getID();
    EXPECT_FALSE(aside.create({8, 8}, {.samples = 3}));
    EXPECT_TRUE(asserts.caught("isSampleCount(format.samples)"));
    EXPECT_FALSE(aside.create({8, 8}, {.color = Framebuffer::Color(4)}));
    EXPECT_TRUE(asserts.caught("std::size_t(format.color) < cColorFormats.size()"));
    ASSERT_TRUE(aside.begin());
    EXPECT_FALSE(aside.begin() || aside.begin());
    EXPECT_EQ(log.take(), std::vector<std::string>{"Error! Framebuffer::begin twice without an end"});
    EXPECT_FALSE(aside.create({4, 4}));
    EXPECT_TRUE(asserts.caught("!_isDrawing || !isOk()"));
    EXPECT_EQ(aside.getID(), name);
    {
        // Its numbers mean something else here.
        OffscreenContext other({8, 8}, Context(DepthBuffer::Size::None, {}, Context::Profile::Core41));
        EXPECT_FALSE(aside.end());
        EXPECT_TRUE(log.said("Error! Framebuffer::end" + here));
        context().makeCurrent();
        EXPECT_TRUE(aside.end());
        other.makeCurrent();
        refusesAll();
        ASSERT_TRUE(aside.create({8, 8}));
        EXPECT_TRUE(aside.begin());
    }
    EXPECT_FALSE(aside.isOk());
    EXPECT_EQ(aside.getID() + aside.getTextureID(), 0u);
    EXPECT_FALSE(aside.create({8, 8}));
    EXPECT_TRUE(log.said("Error! Framebuffer::create without a current GL context!"));
    context().makeCurrent();
    EXPECT_TRUE(aside.create({8, 8}));
}

} // namespace
