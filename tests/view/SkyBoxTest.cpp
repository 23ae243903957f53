#include "support/CapturedLog.h"
#include "support/CaughtAsserts.h"
#include "support/GLTrace.h"
#include "support/OffscreenGL.h"

#include <gui/gl/Camera.h>
#include <gui/gl/Context.h>
#include <gui/gl/Program.h>
#include <gui/gl/SkyBox.h>

#include <epoxy/gl.h>
#include <glm/ext/matrix_clip_space.hpp>
#include <glm/geometric.hpp>
#include <glm/mat3x3.hpp>
#include <glm/matrix.hpp>
#include <glm/trigonometric.hpp>

#include <cmath>
#include <utility>

namespace
{

using gui::gl::Camera;
using gui::gl::SkyBox;
using gui::gl::Textures;
using test::GLTrace;
using test::Pixel;

constexpr Pixel cFaces[] = {{255, 0, 0}, {0, 255, 0}, {0, 0, 255}, {255, 255, 0}, {255, 0, 255}, {0, 255, 255}};

class SkyBoxTest : public test::OffscreenGL
{
protected:
    void SetUp() override
    {
        OffscreenGL::SetUp();
        glGenTextures(1, &cubeMap);
        glBindTexture(GL_TEXTURE_CUBE_MAP, cubeMap);
        for (GLenum i = 0; i < 6; ++i)
        {
            const unsigned char bytes[] = {static_cast<unsigned char>(cFaces[i].red),
                                           static_cast<unsigned char>(cFaces[i].green),
                                           static_cast<unsigned char>(cFaces[i].blue), 255};
            glTexImage2D(GL_TEXTURE_CUBE_MAP_POSITIVE_X + i, 0, GL_RGBA, 1, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE, bytes);
        }
        for (const GLenum filter : std::initializer_list<GLenum>{GL_TEXTURE_MIN_FILTER, GL_TEXTURE_MAG_FILTER})
            glTexParameteri(GL_TEXTURE_CUBE_MAP, filter, GL_NEAREST);
        glBindTexture(GL_TEXTURE_CUBE_MAP, 0);
    }
    void TearDown() override
    {
        glDeleteTextures(1, &cubeMap);
        OffscreenGL::TearDown();
    }

    const glm::mat4 projection = glm::perspective(glm::radians(60.0F), 1.0F, 0.1F, 50.0F);
    GLuint cubeMap = 0;
};

/// In the middle of the picture, nearly as far as the far plane.
struct Triangle final : gui::gl::Program
{
    void onLinked() override {}

    static constexpr const char* cVertex = R"(#version 330 core
void main() { gl_Position = vec4((vec2(gl_VertexID & 1, gl_VertexID >> 1) * 4.0 - 1.0) * 0.3, 0.9999, 1.0); })";
};

// A sky that is nearer than the far plane covers the scene; one beyond it is not there at all.
TEST_F(SkyBoxTest, LiesBehindEverythingThatIsDrawn)
{
    using namespace gui::gl;
    const Camera camera({0, 0, 0}, 0, 0);
    SkyBox sky;
    ASSERT_TRUE(sky.init(&projection, cubeMap, Textures::Unit::T0));
    sky.commit(3);
    sky.setCamera(&camera);
    Triangle scene;
    ASSERT_TRUE(
        scene.link(Triangle::cVertex, "#version 330 core\nout vec4 color;\nvoid main() { color = vec4(1.0); }"));
    GLuint vertexArray = 0;
    glGenVertexArrays(1, &vertexArray);
    using Function = DepthBuffer::Function;
    for (const Function function : {Function::LessOrEqual, Function::Less, Function::Always})
    {
        clear({10, 20, 30});
        Context::enable(Context::Flag::DepthTest);
        Context::setDepthBufferFunction(function);
        scene.activate();
        glBindVertexArray(vertexArray);
        glDrawArrays(GL_TRIANGLES, 0, 3);
        sky.render(false);
        const Pixel background = function == Function::Less ? Pixel{10, 20, 30} : cFaces[0];
        EXPECT_EQ(pixel(32, 32), function == Function::Always ? cFaces[0] : (Pixel{255, 255, 255}));
        EXPECT_EQ(pixel(2, 2), background);
        EXPECT_EQ(pixel(62, 62), background);
        EXPECT_TRUE(glIsEnabled(GL_DEPTH_TEST));
    }
    sky.render(true);
    EXPECT_FALSE(glIsEnabled(GL_DEPTH_TEST));
    glDeleteVertexArrays(1, &vertexArray);
}

// A face that is mirrored, turned or in another one's place shows in the corners of the view.
TEST_F(SkyBoxTest, ComputedSkyShowsEachDirectionsColour)
{
    test::CaughtAsserts asserts;
    const auto colorOf = [](const glm::vec3& direction) { return 0.5F + 0.5F * direction; };
    SkyBox sky;
    EXPECT_FALSE(sky.init(&projection, nullptr, 0, colorOf));
    EXPECT_TRUE(asserts.caught("size > 0 && size <= cMaxFaceSize"));
    EXPECT_FALSE(sky.init(&projection, nullptr, 1, nullptr));
    EXPECT_TRUE(asserts.caught("color"));
    for (const auto& [yaw, pitch] : {std::pair(0, 0), {90, 0}, {180, 0}, {-90, 0}, {30, 89}, {30, -89}, {-40, 35}})
    {
        const Camera camera({0, 0, 0}, static_cast<float>(yaw), static_cast<float>(pitch));
        ASSERT_TRUE(sky.init(&projection, &camera, 256, colorOf));
        sky.render(true);
        EXPECT_EQ(sky.getTransformation(), projection * glm::mat4(glm::mat3(camera.getViewMatrix())));
        const glm::mat4 toWorld = glm::inverse(sky.getTransformation());
        for (const auto& [x, y] : {std::pair(32, 32), {2, 3}, {60, 2}, {1, 61}, {62, 50}})
        {
            const glm::vec4 place(static_cast<float>(x) / 32 - 63.0F / 64, static_cast<float>(y) / 32 - 63.0F / 64, 1,
                                  1);
            const glm::vec4 seen = toWorld * place;
            const glm::vec3 color = 255.0F * colorOf(glm::normalize(glm::vec3(seen) / seen.w));
            const Pixel actual = pixel(x, y);
            const glm::vec3 difference = glm::vec3(actual.red, actual.green, actual.blue) - color;
            EXPECT_LT(glm::length(difference), 2.5F) << yaw << ' ' << pitch << ' ' << x << ' ' << y; // a pixel's size
        }
    }
}

TEST_F(SkyBoxTest, MatrixDependsOnWhatIsSet)
{
    Camera camera({1, 2, 3}, -70, 20);
    const glm::mat4 view = camera.getViewMatrix();
    const glm::mat4 none(1), turned = projection * glm::mat4(glm::mat3(view));
    for (const bool hasProjection : {false, true})
    {
        SkyBox sky;
        ASSERT_TRUE(sky.init(hasProjection ? &projection : nullptr, cubeMap, Textures::Unit::T0));
        sky.commit(1);
        sky.updateTransformation();
        EXPECT_EQ(sky.getTransformation(), hasProjection ? projection : none);
        sky.setCamera(&camera);
        EXPECT_EQ(sky.getTransformation(), hasProjection ? turned : view);
        GLTrace trace(GLTrace::Forward);
        sky.render(false);
        EXPECT_EQ(trace.count("glUniformMatrix4fv"), hasProjection ? 1U : 0U);
    }
}

TEST_F(SkyBoxTest, BoxIsMadeOnceAndAgainAfterRelease)
{
    test::CaughtAsserts asserts;
    test::CapturedLog log;
    GLTrace trace(GLTrace::Forward);
    SkyBox sky;
    sky.render(false);
    EXPECT_TRUE(asserts.caught("_prog.isOK()"));
    ASSERT_TRUE(sky.init(&projection, cubeMap, Textures::Unit::T5));
    sky.render(false);
    EXPECT_TRUE(asserts.caught("_vao > 0"));
    sky.commit(0);
    EXPECT_TRUE(asserts.caught("std::isfinite(size) && size != 0"));
    trace.failNext("glGenBuffers");
    sky.commit(1);
    EXPECT_TRUE(log.said("ERROR! SkyBox::commit cannot create VBO!"));
    EXPECT_TRUE(trace.aliveNames(GLTrace::Kind::VertexArray).empty());
    for (int i = 0; i < 2; ++i)
    {
        trace.clear();
        sky.commit(0.5F);
        sky.commit(0.5F);
        EXPECT_EQ(trace.count("glGenVertexArrays"), 1U);
        sky.render(true);
        EXPECT_TRUE(trace.inOrder({"glActiveTexture(0x84c5)", "glDrawArrays(4, 0, 36)"}));
        sky.release();
        EXPECT_TRUE(trace.aliveNames(GLTrace::Kind::VertexArray).empty());
    }
    ASSERT_TRUE(sky.init(nullptr, cubeMap, Textures::Unit::T0));
    EXPECT_EQ(trace.aliveNames(GLTrace::Kind::Program).size(), 1U) << "a second init leaves no program behind";
}

} // namespace
