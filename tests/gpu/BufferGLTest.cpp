#include "support/OffscreenGL.h"

#include <gui/gl/Buffer.h>
#include <gui/gl/Program.h>

namespace
{

using gui::gl::Command;
using test::Pixel;
using enum gui::gl::DataType;

using BufferGLTest = test::OffscreenGL;

struct SquareProgram final : gui::gl::Program
{
    void onLinked() override {}
};

// A square of 16 pixels at the lower left corner: instance attributes shift and colour it.
TEST_F(BufferGLTest, VerticesIndicesAndInstancesMeetInTheShader)
{
    SquareProgram program;
    ASSERT_TRUE(program.link(R"(#version 330 core
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
void main() { color = mixed; })"));
    gui::gl::Buffer buffer;
    ASSERT_TRUE(buffer.init(1, 4, 8, 2, {Vec2, Float}, {Vec2, Vec4}, {1, 2}));
    const float vertices[] = {-1, -1, 1, -0.5f, -1, 1, -1, -0.5f, 1, -0.5f, -0.5f, 1};
    const unsigned int indices[] = {9, 9, 0, 1, 2, 1, 2, 3}; // the first two are no one's
    // Shifts advance with each instance, tints with every second one.
    const float instances[] = {0, 0, 1, 0, 0, 1, 0.5f, 0, 0, 1, 0, 1, 1, 1, 9, 9, 9, 9};
    buffer.appendVertices(vertices, 4);
    buffer.appendIndices(indices, 8);
    buffer.appendInstances(instances, 3);
    Command* pCommand = buffer.createCommand();
    pCommand->createDrawElements(gui::gl::Primitive::Triangles, 2, 6);
    pCommand->setNumberOfInstances(3);
    ASSERT_TRUE(buffer.encode(pCommand));
    ASSERT_TRUE(buffer.commit());
    clear();
    program.setBuffer(&buffer);
    program.activate();
    program.execute();
    EXPECT_EQ(pixel(8, 8), (Pixel{255, 0, 255}));   // the first shift and tint
    EXPECT_EQ(pixel(24, 8), (Pixel{255, 0, 255}));  // the second shift, still the first tint
    EXPECT_EQ(pixel(40, 40), (Pixel{0, 255, 255})); // the third shift, the second tint
    EXPECT_EQ(pixel(40, 8), (Pixel{0, 0, 0, 0}));
}

} // namespace
