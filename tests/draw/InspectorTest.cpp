#include "support/OffscreenGL.h"

#include <gui/Key.h>
#include <gui/draw/Drawing.h>
#include <gui/draw/Inspector.h>
#include <gui/gl/Buffer.h>
#include <gui/gl/Flat2DProgram.h>
#include <gui/gl/FrameLedger.h>
#include <gui/gl/View.h>

#include <epoxy/gl.h>

#include <glm/mat4x4.hpp>

#include <array>
#include <vector>

namespace
{

using namespace gui::draw;
using test::Pixel;

constexpr int cWidth = 500, cHeight = 320;

// A frame of a program: its left three quarters are drawn, and its right half, over it.
class InspectorTest : public test::OffscreenGL
{
protected:
    InspectorTest()
        : OffscreenGL({cWidth, cHeight})
    {
    }

    void SetUp() override
    {
        OffscreenGL::SetUp();
        const float left[] = {-1, -1, 0.5F, -1, -1, 1, 0.5F, 1}, right[] = {0, -1, 1, -1, 0, 1, 1, 1};
        buffer.appendShape(gui::gl::Primitive::TriangleStrip, left, 4)->setColor("#c04020");
        buffer.appendShape(gui::gl::Primitive::TriangleStrip, right, 4)->setColor("#2040c0");
        ASSERT_TRUE(program.link());
    }

    void drawFrame(Inspector& inspector)
    {
        const gui::gl::FrameObserver::Frame frame{view, 0, {cWidth, cHeight}, 1};
        inspector.frameBegins(frame);
        gui::gl::FrameLedger::begin();
        clear({10, 20, 30, 255});
        program.draw(buffer, glm::mat4(1));
        gui::gl::FrameLedger::end();
        inspector.frameEnds(frame);
    }

    std::vector<td::BYTE> picture()
    {
        gui::Texture texture;
        EXPECT_TRUE(context().readPixels(texture));
        return {texture.getBytes(),
                texture.getBytes() + static_cast<std::size_t>(cWidth) * cHeight * texture.getBytesPerPixel()};
    }

    bool press(Inspector& inspector, gui::Key::Virtual key)
    {
        return inspector.keyPressed(view, gui::Key(0, 0, 1, static_cast<unsigned char>(key)));
    }

    gui::gl::View view;
    gui::gl::Buffer buffer{gui::gl::DataType::Vec2};
    gui::gl::Flat2DProgram program;
};

// What the panel leaves behind shows in the program's next frame, and what it counts of its own misleads.
TEST_F(InspectorTest, ShowsTheFrameAndLeavesItsStateAlone)
{
    using Virtual = gui::Key::Virtual;
    Inspector inspector;
    drawFrame(inspector);
    const std::vector<td::BYTE> before = picture();
    EXPECT_FALSE(gui::gl::FrameLedger::isOn());
    EXPECT_FALSE(press(inspector, Virtual::F10)) << "the view's, while it is hidden";
    EXPECT_TRUE(press(inspector, Virtual::F12) && inspector.isShown());

    const std::array<GLenum, 14> states{GL_STENCIL_FUNC,       GL_STENCIL_REF,        GL_STENCIL_PASS_DEPTH_PASS,
                                        GL_STENCIL_WRITEMASK,  GL_STENCIL_TEST,       GL_BLEND,
                                        GL_DEPTH_TEST,         GL_SCISSOR_TEST,       GL_CURRENT_PROGRAM,
                                        GL_TEXTURE_BINDING_2D, GL_SAMPLER_BINDING,    GL_ACTIVE_TEXTURE,
                                        GL_POLYGON_MODE,       GL_FRAMEBUFFER_BINDING};
    const auto stateNow = [&states]
    {
        std::array<std::array<GLint, 4>, states.size()> values{};
        for (std::size_t i = 0; i < states.size(); ++i)
            glGetIntegerv(states[i], values[i].data());
        return values;
    };
    glEnable(GL_STENCIL_TEST);
    glStencilFunc(GL_GEQUAL, 3, 7);
    const auto state = stateNow();
    inspector.setTexturesShown(true);
    inspector.setOverdraw(true);
    for (int i = 0; i < 3; ++i)
    {
        drawFrame(inspector);
        EXPECT_EQ(stateNow(), state) << i;
        const gui::gl::FrameLedger::Frame& cost = gui::gl::FrameLedger::getLast();
        EXPECT_EQ(cost.nDraws, 2u);
        EXPECT_EQ(cost.nUploads, 0u);
    }
    // Right of the panel: once, twice, once.
    EXPECT_EQ(pixel(450, 310), (Pixel{0x14, 0x36, 0x7a}));
    EXPECT_EQ(pixel(240, 8), (Pixel{0x14, 0x36, 0x7a}));
    EXPECT_EQ(pixel(300, 8), (Pixel{0x1e, 0x8a, 0x3c}));

    EXPECT_TRUE(press(inspector, Virtual::F9) && inspector.isHeld(view));
    EXPECT_TRUE(press(inspector, Virtual::F8));
    EXPECT_FALSE(inspector.isHeld(view)) << "for a frame";
    drawFrame(inspector);
    EXPECT_TRUE(inspector.isHeld(view));
    EXPECT_TRUE(press(inspector, Virtual::F12));
    EXPECT_FALSE(inspector.isHeld(view) || gui::gl::FrameLedger::isOn());
    glDisable(GL_STENCIL_TEST);
    drawFrame(inspector);
    EXPECT_EQ(picture(), before);
}

} // namespace
