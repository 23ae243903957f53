#include "draw/src/inspect/GLMemory.h"
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

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>
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
    // Two textures, each red beside green: the larger one first.
    std::array<GLuint, 2> textures{};
    glGenTextures(2, textures.data());
    for (const auto& [name, width, height] : {std::array{textures[0], 16U, 32U}, std::array{textures[1], 64U, 32U}})
    {
        std::vector<std::array<td::BYTE, 4>> texels(std::size_t(width) * height);
        for (std::size_t i = 0; i < texels.size(); ++i)
            texels[i] = i % width < width / 2 ? std::array<td::BYTE, 4>{255, 0, 0, 255}
                                              : std::array<td::BYTE, 4>{0, 255, 0, 255};
        glBindTexture(GL_TEXTURE_2D, name);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, GLsizei(width), GLsizei(height), 0, GL_RGBA, GL_UNSIGNED_BYTE,
                     texels.data());
    }
    glBindTexture(GL_TEXTURE_2D, 0);
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
    // Below, from the left: 128 points the longer side, to the texel.
    const Pixel red{255, 0, 0}, green{0, 255, 0};
    EXPECT_EQ(pixel(10, 26), red);
    EXPECT_NE(pixel(11, 24), red);
    EXPECT_EQ(pixel(73, 27), red);
    EXPECT_EQ(pixel(74, 27), green);
    EXPECT_EQ(pixel(137, 27), green);
    EXPECT_EQ(pixel(149, 27), red);
    EXPECT_EQ(pixel(211, 27), green);
    EXPECT_NE(pixel(220, 60), green);
    // And in letters what they are.
    int nOfLetters = 0;
    for (int y = 6; y < 24; ++y)
        for (int x = 10; x < 138; ++x)
        {
            const Pixel p = pixel(x, y);
            nOfLetters += p.red > 150 && p.green > 150 && p.blue > 150 ? 1 : 0;
        }
    EXPECT_GT(nOfLetters, 20);
    int nSamplers = 0;
    for (GLuint name = 1; name < 50; ++name)
        nSamplers += glIsSampler(name);
    EXPECT_LE(nSamplers, 1) << "one for all frames";
    glDeleteTextures(2, textures.data());

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

// What is told too little or too much: levels, faces and samples that are forgotten, another's that is counted.
TEST_F(InspectorTest, MemoryIsWhatWasAskedFor)
{
    if (!GLMemory::isTold())
    {
        EXPECT_FALSE(isDriver("llvmpipe") && epoxy_is_desktop_gl() && epoxy_gl_version() >= 45);
        EXPECT_TRUE(GLMemory::getNames().empty() && GLMemory::ask({}).objects.empty());
        return;
    }
    const GLMemory::Names others = GLMemory::getNames();
    std::array<GLuint, 4> textures{};
    GLuint bytes = 0, multisampled = 0;
    glGenTextures(4, textures.data());
    glBindTexture(GL_TEXTURE_2D, textures[0]);
    for (int level = 0; level < 4; ++level)
        glTexImage2D(GL_TEXTURE_2D, level, GL_RGBA8, 8 >> level, std::max(4 >> level, 1), 0, GL_RGBA, GL_UNSIGNED_BYTE,
                     nullptr);
    glBindTexture(GL_TEXTURE_2D, textures[1]);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_R16, 10, 20, 0, GL_RED, GL_UNSIGNED_SHORT, nullptr);
    glBindTexture(GL_TEXTURE_2D, 0);
    glBindTexture(GL_TEXTURE_CUBE_MAP, textures[2]);
    for (GLenum face = 0; face < 6; ++face)
        glTexImage2D(GL_TEXTURE_CUBE_MAP_POSITIVE_X + face, 0, GL_RGBA8, 4, 4, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
    glBindTexture(GL_TEXTURE_CUBE_MAP, 0);
    glBindTexture(GL_TEXTURE_3D, textures[3]);
    glTexImage3D(GL_TEXTURE_3D, 0, GL_RGBA8, 1, 1, 3, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
    glBindTexture(GL_TEXTURE_3D, 0);
    glGenBuffers(1, &bytes);
    glBindBuffer(GL_ARRAY_BUFFER, bytes);
    glBufferData(GL_ARRAY_BUFFER, 1000, nullptr, GL_STATIC_DRAW);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    glGenRenderbuffers(1, &multisampled);
    glBindRenderbuffer(GL_RENDERBUFFER, multisampled);
    glRenderbufferStorageMultisample(GL_RENDERBUFFER, 4, GL_RGBA8, 10, 5);
    glBindRenderbuffer(GL_RENDERBUFFER, 0);

    const GLMemory memory = GLMemory::ask(others);
    std::vector<std::pair<GLuint, std::uint64_t>> told;
    for (const GLMemory::Object& object : memory.objects)
        told.emplace_back(object.name, object.nBytes);
    EXPECT_EQ(told, (std::vector<std::pair<GLuint, std::uint64_t>>{{bytes, 1000},
                                                                   {multisampled, 800},
                                                                   {textures[1], 400},
                                                                   {textures[2], 384},
                                                                   {textures[0], 4 * (32 + 8 + 2 + 1)},
                                                                   {textures[3], 12}}));
    EXPECT_EQ(memory.getBytes(GLMemory::Kind::Texture), 968U);
    EXPECT_EQ(memory.getCount(GLMemory::Kind::Texture), 4U);
    EXPECT_EQ(memory.nBytes, 2768U);
    EXPECT_EQ(toText(999) + toText(1000) + toText(123'456) + toText(5'600'000), "999 bytes1.0 kB123.5 kB5.6 MB");
    glDeleteTextures(4, textures.data());
    glDeleteBuffers(1, &bytes);
    glDeleteRenderbuffers(1, &multisampled);
}

} // namespace
