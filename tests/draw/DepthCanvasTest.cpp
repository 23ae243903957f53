#include "support/CapturedLog.h"
#include "support/OffscreenGL.h"

#include <gui/draw/DepthCanvas.h>
#include <gui/gl/Buffer.h>
#include <gui/gl/Color3DProgram.h>
#include <gui/gl/GLSL.h>

#include <glm/geometric.hpp>
#include <glm/matrix.hpp>

#include <epoxy/gl.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>
#include <random>
#include <utility>
#include <vector>

namespace
{

using gui::draw::DepthCanvas;
using gui::draw::Eye;
using gui::draw::OrbitCamera;
using gui::gl::Context;
using gui::gl::DataType;
using Rational = __float128;

constexpr int cSize = 16;

class DepthCanvasTest : public test::OffscreenGL
{
protected:
    DepthCanvasTest()
        : OffscreenGL({cSize, cSize})
    {
    }
    double in(double min, double max) { return std::uniform_real_distribution<double>(min, max)(_engine); }

private:
    std::mt19937 _engine{11};
};

// A camera on an earth's surface, which sees from a tenth of a metre to beyond the earth.
OrbitCamera farOut()
{
    OrbitCamera camera;
    camera.setSize({cSize, cSize});
    camera.setTarget({3.1e6, 4.2e6, -3.6e6});
    camera.setDistance(1);
    gui::draw::Box3 all;
    all.add(glm::dvec3(-3e7));
    all.add(glm::dvec3(3e7));
    camera.setBounds(all);
    return camera;
}

// Two squares one behind the other, from a metre to the moon: the nearer one has to be seen, whichever comes first. The
// usual depth buffer takes most of them for one.
TEST_F(DepthCanvasTest, ShowsTheNearerOfTwoAtAllDistances)
{
    gui::gl::Color3DProgram program;
    ASSERT_TRUE(program.link());
    gui::gl::Buffer square{DataType::Vec3, DataType::Vec4};
    square.setDynamic();
    square.createCommand()->createDrawAll(gui::gl::Primitive::Triangles);
    const auto draw = [&](const Eye& eye, double distance, float red)
    {
        // Twice as wide as what is seen there.
        const glm::dvec3 middle = eye.getPosition() + distance * eye.getDirection();
        const auto half = static_cast<float>(eye.getSizeAt(middle) * cSize);
        const glm::vec3 x = glm::vec3(eye.getRight()) * half, y = glm::vec3(eye.getUp()) * half;
        std::vector<float> data;
        for (const glm::vec3& corner : {-x - y, x - y, x + y, x + y, y - x, -x - y})
            data.insert(data.end(), {corner.x, corner.y, corner.z, red, 1 - red, 0, 1});
        square.removeVertices(0, square.getNoOfVertices());
        square.appendVertices(data.data(), 6);
        program.draw(square, eye.getMatrix(middle));
    };
    const struct
    {
        Eye::Depth depth;
        double difference; // as a part of the distance
        bool isRight;
    } cases[] = {
        {Eye::Depth::Reversed, 1e-6, true}, {Eye::Depth::Sliced, 1e-3, true}, {Eye::Depth::Usual, 1e-3, false}};
    OrbitCamera camera = farOut();
    for (const auto& c : cases)
    {
        DepthCanvas canvas(c.depth);
        canvas.setSamples(1);
        constexpr int cScenes = 3000;
        int nRight = 0;
        for (int i = 0; i < cScenes; ++i)
        {
            camera.setDirection(in(-180, 180), in(-90, 90));
            const Eye eye = canvas.getEye(camera, 1);
            ASSERT_EQ(eye.getDepth(), c.depth);
            const double distance = std::pow(10, in(0, 7)), other = distance * (1 + c.difference);
            const bool isFirst = i % 2 == 0;
            {
                DepthCanvas::Frame frame(canvas, eye);
                Context::clear(Context::Clear::Color, td::ColorID::Black);
                while (const Eye* const pEye = frame.next())
                {
                    draw(*pEye, isFirst ? distance : other, isFirst ? 1 : 0);
                    draw(*pEye, isFirst ? other : distance, isFirst ? 0 : 1);
                }
            }
            const test::Pixel seen = pixel(cSize / 2, cSize / 2);
            nRight += seen == test::Pixel{255, 0, 0, 255} ? 1 : 0;
        }
        EXPECT_EQ(nRight == cScenes, c.isRight) << nRight << " by depth " << static_cast<int>(c.depth);
    }
    GLint mode = 0;
    glGetIntegerv(GL_CLIP_DEPTH_MODE, &mode);
    EXPECT_EQ(mode, GL_NEGATIVE_ONE_TO_ONE);
    EXPECT_EQ(glIsEnabled(GL_DEPTH_TEST), GL_FALSE);
}

// A vertex shader's places, and what they would be without any rounding: right to a tenth of a pixel, wherever it is.
TEST_F(DepthCanvasTest, VerticesAreWhereTheyShouldBeFarOut)
{
    constexpr int cVertices = 500;
    constexpr double cPixels = 2000; // of a side of the view
    const GLuint program = glCreateProgram();
    const char* const captured = "place";
    const char* const version = Context::isES() ? "#version 310 es\n" : "#version 330 core\n";
    // OpenGL ES links no vertex shader alone.
    for (const auto& [stage, text] :
         {std::pair{GL_VERTEX_SHADER, "uniform mat4 mvp;\nin vec3 position;\nout vec4 place;\n"
                                      "void main() { gl_Position = place = mvp * "
                                      "vec4(position, 1.0); }"},
          std::pair{GL_FRAGMENT_SHADER, "void main() {}"}})
    {
        const GLuint shader = glCreateShader(static_cast<GLenum>(stage));
        const char* const texts[] = {version, text};
        glShaderSource(shader, 2, texts, nullptr);
        glCompileShader(shader);
        glAttachShader(program, shader);
        glDeleteShader(shader);
    }
    glTransformFeedbackVaryings(program, 1, &captured, GL_INTERLEAVED_ATTRIBS);
    glLinkProgram(program);
    GLint isLinked = GL_FALSE;
    glGetProgramiv(program, GL_LINK_STATUS, &isLinked);
    ASSERT_EQ(isLinked, GL_TRUE);
    glUseProgram(program);
    GLuint array = 0, buffers[2] = {};
    glGenVertexArrays(1, &array);
    glBindVertexArray(array);
    glGenBuffers(2, buffers);
    glBindBuffer(GL_ARRAY_BUFFER, buffers[0]);
    glEnableVertexAttribArray(0);
    glVertexAttribPointer(0, 3, GL_FLOAT, GL_FALSE, 0, nullptr);
    glBindBufferBase(GL_TRANSFORM_FEEDBACK_BUFFER, 0, buffers[1]);
    glBufferData(GL_TRANSFORM_FEEDBACK_BUFFER, cVertices * sizeof(glm::vec4), nullptr, GL_STATIC_READ);
    glEnable(GL_RASTERIZER_DISCARD);

    OrbitCamera camera = farOut();
    camera.setSize({cPixels, cPixels});
    double most = 0;
    for (int i = 0; i < 40; ++i)
    {
        camera.setDirection(in(-180, 180), in(-90, 90));
        camera.setDistance(std::pow(10, in(0, 6)));
        const Eye eye = camera.getEye(1, i % 2 == 0 ? Eye::Depth::Reversed : Eye::Depth::Usual);
        const glm::dvec3 origin = camera.getTarget() + glm::dvec3(0.3, 0.1, -0.2) * camera.getDistance();
        std::vector<glm::vec3> vertices;
        for (int k = 0; k < cVertices; ++k)
            vertices.push_back(glm::vec3(
                eye.unproject({in(0, cPixels), in(0, cPixels)}, camera.getDistance() * in(0.7, 1.5)) - origin));
        glBufferData(GL_ARRAY_BUFFER, cVertices * sizeof(glm::vec3), vertices.data(), GL_STREAM_DRAW);
        const glm::mat4 matrix = eye.getMatrix(origin);
        glUniformMatrix4fv(glGetUniformLocation(program, "mvp"), 1, GL_FALSE, &matrix[0][0]);
        glBeginTransformFeedback(GL_POINTS);
        glDrawArrays(GL_POINTS, 0, cVertices);
        glEndTransformFeedback();
        std::array<glm::vec4, cVertices> places{};
        const void* const pPlaces = glMapBufferRange(GL_TRANSFORM_FEEDBACK_BUFFER, 0, sizeof places, GL_MAP_READ_BIT);
        ASSERT_NE(pPlaces, nullptr);
        std::memcpy(places.data(), pPlaces, sizeof places);
        glUnmapBuffer(GL_TRANSFORM_FEEDBACK_BUFFER);
        for (std::size_t k = 0; k < cVertices; ++k)
        {
            Rational seen[3] = {};
            for (int row = 0; row < 3; ++row)
                for (int axis = 0; axis < 3; ++axis)
                    seen[row] +=
                        Rational(eye.getRotation()[axis][row]) *
                        (Rational(origin[axis]) + Rational(vertices[k][axis]) - Rational(eye.getPosition()[axis]));
            const auto x = static_cast<double>(seen[0] / -seen[2] * Rational(eye.getProjection()[0][0]));
            const auto y = static_cast<double>(seen[1] / -seen[2] * Rational(eye.getProjection()[1][1]));
            const glm::dvec4 place(places[k]);
            most = std::max({most, std::abs(place.x / place.w - x), std::abs(place.y / place.w - y)});
        }
    }
    EXPECT_LT(most * cPixels / 2, 0.1);
    glDisable(GL_RASTERIZER_DISCARD);
    glBindVertexArray(0);
    glUseProgram(0);
    glDeleteBuffers(2, buffers);
    glDeleteVertexArrays(1, &array);
    glDeleteProgram(program);
}

} // namespace
