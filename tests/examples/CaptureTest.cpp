#include "SlowScenes.h"
#include "support/CapturedLog.h"
#include "support/Images.h"
#include "support/Thorough.h"

#include <gallery/PictureStage.h>
#include <gallery/Scenes.h>
#include <replay/Picture.h>
#include <replay/Player.h>
#include <replay/Walk.h>
#include <src/capture/Capture.h>

#include <gui/gl/CommandList.h>
#include <gui/gl/OffscreenContext.h>

#include <epoxy/gl.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

namespace
{

using gui::gl::Capture;

/// What no scene has: a uniform of each type, several samples and a depth of renderbuffers' own, pixels whose rows are
/// padded while the frame is drawn, a draw of a command list.
class OddFrame
{
public:
    OddFrame()
    {
        attach(GL_VERTEX_SHADER, "#version 150\n"
                                 "void main() { gl_Position = vec4(gl_VertexID == 1 ? 3 : -1,"
                                 " gl_VertexID == 2 ? 3 : -1, 0, 1); }");
        attach(GL_FRAGMENT_SHADER, cFragment);
        glLinkProgram(_program);
        glUseProgram(_program);
        const auto at = [this](const std::string& name) { return glGetUniformLocation(_program, name.c_str()); };
        std::array<GLfloat, 16> ones;
        ones.fill(1);
        constexpr std::array<GLint, 4> cInts{1, 1, 1, 1};
        constexpr std::array<GLuint, 4> cUnsigned{1, 1, 1, 1};
        constexpr std::array cFloatSetters{&glUniform1fv, &glUniform2fv, &glUniform3fv, &glUniform4fv};
        constexpr std::array cIntSetters{&glUniform1iv, &glUniform2iv, &glUniform3iv, &glUniform4iv};
        constexpr std::array cUnsignedSetters{&glUniform1uiv, &glUniform2uiv, &glUniform3uiv, &glUniform4uiv};
        for (std::size_t i = 0; i < 4; ++i)
        {
            const std::string n = std::to_string(i + 1);
            (*cFloatSetters[i])(at("f" + n), 1, ones.data());
            (*cIntSetters[i])(at("i" + n), 1, cInts.data());
            (*cIntSetters[i])(at("b" + n), 1, cInts.data());
            (*cUnsignedSetters[i])(at("u" + n), 1, cUnsigned.data());
        }
        glUniformMatrix2fv(at("m2"), 1, GL_FALSE, ones.data());
        glUniformMatrix3fv(at("m3"), 1, GL_FALSE, ones.data());
        glUniformMatrix4fv(at("m4"), 1, GL_FALSE, ones.data());
        glUniform1f(at("list[1]"), 1);

        GLint most = 1;
        glGetIntegerv(GL_MAX_SAMPLES, &most);
        glGenRenderbuffers(2, _renderbuffers.data());
        glGenFramebuffers(1, &_framebuffer);
        glBindFramebuffer(GL_FRAMEBUFFER, _framebuffer);
        for (const auto& [i, format, point] : {std::tuple(0U, GL_RGBA8, GL_COLOR_ATTACHMENT0),
                                               std::tuple(1U, GL_DEPTH_COMPONENT24, GL_DEPTH_ATTACHMENT)})
        {
            glBindRenderbuffer(GL_RENDERBUFFER, _renderbuffers[i]);
            glRenderbufferStorageMultisample(GL_RENDERBUFFER, std::min(most, 4), static_cast<GLenum>(format), 64, 48);
            glFramebufferRenderbuffer(GL_FRAMEBUFFER, static_cast<GLenum>(point), GL_RENDERBUFFER, _renderbuffers[i]);
        }
        glBindRenderbuffer(GL_RENDERBUFFER, 0);
        glGenTextures(1, &_texture);
        glGenVertexArrays(1, &_vertexArray);
        _commands.get()->createDrawArrays(gui::gl::Primitive::Triangles, 0, 3);
        _commands.encode();
    }
    ~OddFrame()
    {
        glDeleteProgram(_program);
        glDeleteVertexArrays(1, &_vertexArray);
        glDeleteTextures(1, &_texture);
        glDeleteFramebuffers(1, &_framebuffer);
        glDeleteRenderbuffers(2, _renderbuffers.data());
    }
    OddFrame(const OddFrame&) = delete;
    OddFrame& operator=(const OddFrame&) = delete;

    void draw(unsigned int screen)
    {
        constexpr unsigned char cPixels[2][12] = {{}, {0, 0, 0, 0, 0, 0, 0, 255, 0}};
        glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
        glBindTexture(GL_TEXTURE_2D, _texture);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGB8, 3, 2, 0, GL_RGB, GL_UNSIGNED_BYTE, cPixels);
        glBindFramebuffer(GL_FRAMEBUFFER, _framebuffer);
        glEnable(GL_DEPTH_TEST);
        glClearColor(0, 0, 1, 1);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        glUseProgram(_program);
        glBindVertexArray(_vertexArray);
        _commands.execute();
        glBindFramebuffer(GL_DRAW_FRAMEBUFFER, screen);
        glBlitFramebuffer(0, 0, 64, 48, 0, 0, 64, 48, GL_COLOR_BUFFER_BIT, GL_NEAREST);
        glBindFramebuffer(GL_FRAMEBUFFER, screen);
    }

private:
    void attach(GLenum stage, const char* text) const
    {
        const GLuint shader = glCreateShader(stage);
        glShaderSource(shader, 1, &text, nullptr);
        glCompileShader(shader);
        glAttachShader(_program, shader);
        glDeleteShader(shader);
    }

    // Each number is 1, but for that of the matrix that is not square: 21 numbers make red.
    static constexpr const char* cFragment = R"(#version 150
uniform float f1; uniform vec2 f2; uniform vec3 f3; uniform vec4 f4;
uniform int i1; uniform ivec2 i2; uniform ivec3 i3; uniform ivec4 i4;
uniform bool b1; uniform bvec2 b2; uniform bvec3 b3; uniform bvec4 b4;
uniform uint u1; uniform uvec2 u2; uniform uvec3 u3; uniform uvec4 u4;
uniform mat2 m2; uniform mat3 m3; uniform mat4 m4; uniform mat2x3 uneven; uniform float list[2];
uniform sampler2D picture;
out vec4 color;
void main()
{
    float all = f1 + f2.y + f3.z + f4.w + m2[1].y + m3[2].z + m4[3].w + uneven[1].z + list[1] +
                float(i1 + i2.y + i3.z + i4.w) + float(b1) + float(b2.y) + float(b3.z) + float(b4.w) +
                float(u1 + u2.y + u3.z + u4.w);
    color = vec4(all / 20.0, texelFetch(picture, ivec2(2, 1), 0).g, 0.0, 1.0);
}
)";
    const GLuint _program = glCreateProgram();
    gui::gl::CommandList _commands{1};
    std::array<GLuint, 2> _renderbuffers{};
    GLuint _framebuffer = 0, _texture = 0, _vertexArray = 0;
};

// Whatever there is in the libraries, and what scenes call of GL themselves. Half of the scenes are captured in their
// first frame, which makes all that it draws with, half in their second, which finds it there.
TEST(CaptureTest, EveryScenesFrameIsReplayedPixelForPixel)
{
    const test::ImageFolder folder;
    const std::string path = folder.path("scene.guiglframe");
    constexpr std::size_t cStep = test::cIsThorough ? 1 : 4;
    int nReplayed = 0;
    for (std::size_t i = 0; i < gallery::scenes().size(); i += cStep)
    {
        const gallery::SceneInfo& info = gallery::scenes()[i];
        // One reads its own picture while it draws, which ends a frame.
        if ((!test::cIsThorough && test::isSlow(info)) || std::strcmp(info.name, "grab") == 0)
            continue;
        SCOPED_TRACE(info.name);
        test::CapturedLog log;
        const int frame = 1 + static_cast<int>(i / cStep % 2);
        Capture::want(path, frame);
        gui::Texture picture;
        {
            gui::gl::OffscreenContext context({480, 320},
                                              {gui::gl::DepthBuffer::Size::Bits24, gui::gl::StencilBuffer::Size::Bits8,
                                               gui::gl::Context::Profile::Core41});
            gallery::PictureStage stage(context, 2.5);
            const std::unique_ptr<gallery::Scene> pScene = info.make();
            ASSERT_TRUE(pScene->init());
            pScene->enter(stage);
            gallery::PictureStage::play(*pScene, {480, 320});
            for (int n = 0; n < frame; ++n)
            {
                do
                    pScene->draw({{480, 320}, 1, 2.5});
                while (stage.finishFrame());
                ASSERT_TRUE(context.readPixels(picture));
            }
        }
        const std::vector<std::string> lines = log.take();
        ASSERT_EQ(lines.size(), 1U) << lines.back(); // nothing is left out
        ASSERT_TRUE(lines.back().find("is captured in") != std::string::npos) << lines.back();

        gui::gl::FrameFile file;
        ASSERT_EQ(file.load(path), "");
        replay::Player player(file);
        player.play();
        const gui::Texture replayed = replay::Picture::read(player.screen(), player.screenSize()).toTexture();
        EXPECT_EQ(std::memcmp(replayed.getBytes(), picture.getBytes(), std::size_t(480 * 320 * 3)), 0);
        ++nReplayed;
    }
    EXPECT_GT(nReplayed, 40 / static_cast<int>(cStep) / 2);
}

// Also who drew it, as far as the file says.
TEST(CaptureTest, WhatNoSceneHasIsReplayedAndWhatIsLeftOutIsSaid)
{
    const test::ImageFolder folder;
    const std::string path = folder.path("odd.guiglframe");
    test::CapturedLog log;
    Capture::want(path, 2);
    gui::Texture picture;
    {
        gui::gl::OffscreenContext context({64, 48},
                                          {gui::gl::DepthBuffer::Size::Bits24, gui::gl::StencilBuffer::Size::Bits8,
                                           gui::gl::Context::Profile::Core41});
        OddFrame frame;
        for (int n = 0; n < 2; ++n)
        {
            frame.draw(context.getDefaultFramebuffer());
            ASSERT_TRUE(context.readPixels(picture));
        }
    }
    const std::vector<std::string> lines = log.take();
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_NE(lines.back().find("a uniform that is a matrix of unequal sides"), std::string::npos) << lines.back();
    EXPECT_EQ(std::vector<unsigned>(picture.getBytes(), picture.getBytes() + 3), (std::vector<unsigned>{255, 255, 0}));

    gui::gl::FrameFile file;
    ASSERT_EQ(file.load(path), "");
    replay::Player player(file);
    player.play();
    const gui::Texture replayed = replay::Picture::read(player.screen(), player.screenSize()).toTexture();
    EXPECT_EQ(std::memcmp(replayed.getBytes(), picture.getBytes(), std::size_t(64 * 48 * 3)), 0);

    replay::FrameModel model;
    std::string callers;
    unsigned int nCommands = 0;
    replay::walk(file, model,
                 [&](const replay::Step& step)
                 {
                     callers += step.place.callers;
                     nCommands = std::max(nCommands, step.place.list);
                     return true;
                 });
    EXPECT_NE(callers.find("capture_test"), std::string::npos) << callers;
    EXPECT_EQ(nCommands, 1U);
}

} // namespace
