#include "support/GLTrace.h"
#include "support/OffscreenGL.h"

#include <gui/gl/Buffer.h>
#include <gui/gl/Program.h>

#include <epoxy/gl.h>
#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace
{

using gui::gl::Buffer;
using gui::gl::Command;
using gui::gl::Primitive;
using test::GLTrace;
using test::Pixel;
using enum gui::gl::DataType;

/// Draws squares of 16 pixels: instance attributes shift and colour them.
struct SquareProgram final : gui::gl::Program
{
    void onLinked() override {}

    bool linkAll()
    {
        return link(R"(#version 330 core
layout(location = 0) in vec2 position;
layout(location = 1) in float blue;
layout(location = 2) in vec2 shift;
layout(location = 3) in vec4 tint;
out vec4 mixed;
void main()
{
    gl_Position = vec4(position + shift, 0.0, 1.0);
    mixed = tint + vec4(0.0, 0.0, blue, 0.0);
})",
                    R"(#version 330 core
in vec4 mixed;
out vec4 color;
void main() { color = mixed; })");
    }
};

class BufferGLTest : public test::OffscreenGL
{
protected:
    void SetUp() override
    {
        OffscreenGL::SetUp();
        _program = std::make_unique<SquareProgram>();
        ASSERT_TRUE(_program->linkAll());
    }

    void TearDown() override
    {
        _program.reset();
        OffscreenGL::TearDown();
    }

    /// A square at the lower left corner, as two triangles over four vertices with a blue of 1.
    static void appendSquare(Buffer& buffer)
    {
        const float vertices[] = {-1, -1, 1, -0.5f, -1, 1, -1, -0.5f, 1, -0.5f, -0.5f, 1};
        const unsigned int indices[] = {9, 9, 0, 1, 2, 1, 2, 3}; // the first two are no one's
        buffer.appendVertices(vertices, 4);
        buffer.appendIndices(indices, 8);
    }

    std::unique_ptr<SquareProgram> _program;
};

TEST_F(BufferGLTest, VerticesIndicesAndInstancesMeetInTheShader)
{
    Buffer buffer;
    ASSERT_TRUE(buffer.init(1, 4, 8, 2, {Vec2, Float}, {Vec2, Vec4}, {1, 2}));
    appendSquare(buffer);
    // Shifts advance with each instance, tints with every second one.
    const float instances[] = {0, 0, 1, 0, 0, 1, 0.5f, 0, 0, 1, 0, 1, 1, 1, 9, 9, 9, 9};
    buffer.appendInstances(instances, 3);
    Command* pCommand = buffer.createCommand();
    pCommand->createDrawElements(Primitive::Triangles, 2, 6);
    pCommand->setNumberOfInstances(3);
    ASSERT_TRUE(buffer.encode(pCommand));
    ASSERT_TRUE(buffer.commit());
    clear();
    _program->setBuffer(&buffer);
    _program->activate();
    _program->execute();
    EXPECT_EQ(pixel(8, 8), (Pixel{255, 0, 255}));   // the first shift and tint
    EXPECT_EQ(pixel(24, 8), (Pixel{255, 0, 255}));  // the second shift, still the first tint
    EXPECT_EQ(pixel(40, 40), (Pixel{0, 255, 255})); // the third shift, the second tint
    EXPECT_EQ(pixel(40, 8), (Pixel{0, 0, 0, 0}));
}

TEST_F(BufferGLTest, ResetAndCommitReplaceTheObjects)
{
    Buffer buffer;
    ASSERT_TRUE(buffer.init(0, 4, 8, {Vec2, Float}));
    appendSquare(buffer);
    ASSERT_TRUE(buffer.commit());
    GLint old = 0;
    buffer.activate();
    glGetIntegerv(GL_VERTEX_ARRAY_BINDING, &old);
    {
        GLTrace trace(GLTrace::Forward);
        buffer.reset();
        appendSquare(buffer);
        ASSERT_TRUE(buffer.commit());
        EXPECT_EQ(trace.count("glDeleteBuffers"), trace.count("glGenBuffers"));
        EXPECT_EQ(trace.count("glDeleteVertexArrays"), trace.count("glGenVertexArrays"));
    }
    buffer.activate();
    glVertexAttrib4f(3, 1, 0, 0, 1);
    _program->activate();
    clear();
    glDrawElements(GL_TRIANGLES, 6, GL_UNSIGNED_INT, reinterpret_cast<const void*>(8));
    EXPECT_EQ(pixel(8, 8), (Pixel{255, 0, 255}));
    GLint current = 0;
    glGetIntegerv(GL_VERTEX_ARRAY_BINDING, &current);
    buffer.release();
    EXPECT_FALSE(glIsVertexArray(static_cast<GLuint>(current)));
    EXPECT_FALSE(glIsVertexArray(static_cast<GLuint>(old)));
}

} // namespace
