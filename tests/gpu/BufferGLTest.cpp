#include "support/OffscreenGL.h"

#include <gui/gl/Buffer.h>
#include <gui/gl/Program.h>

#include <cstdint>
#include <cstring>
#include <utility>

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

constexpr const char* cMixedFragment = R"(#version 330 core
in vec4 mixed;
out vec4 color;
void main() { color = mixed; })";

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
                             cMixedFragment));
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

// A type that GL reads in another way than it was packed: one value each, in a triangle over everything.
TEST_F(BufferGLTest, PackedAttributesReachTheShader)
{
    SquareProgram program;
    ASSERT_TRUE(program.link(R"(#version 330 core
layout(location = 0) in vec2 position;
layout(location = 1) in vec4 value;
layout(location = 2) in float scale;
out vec4 mixed;
void main()
{
    gl_Position = vec4(position, 0.0, 1.0);
    mixed = vec4((value * scale).xyz, 1.0);
})",
                             cMixedFragment));
    struct Case
    {
        gui::gl::DataType type;
        std::uint32_t words[2];
        float scale;
        Pixel pixel;
    };
    const Case cases[] = {
        {Half2, {0x3C003800, 0}, 1, {128, 255, 0}},             // 0.5, 1
        {Half4, {0x00003800, 0x00003C00}, 1, {128, 0, 255}},    // 0.5, 0, 1
        {Short2, {0xFFC0FFFF, 0}, -1.0F / 64, {4, 255, 0}},     // -1, -64
        {Short4, {0x0020FFFF, 0x40}, 1.0F / 64, {0, 128, 255}}, // -1, 32, 64
        {UShort2, {0xFFFF8000, 0}, 1.0F / 65535, {128, 255, 0}},
        {UShort4, {0x00008000, 0xFFFF}, 1.0F / 65535, {128, 0, 255}},
        {NormShort2, {0x8001C000, 0}, -1, {128, 255, 0}},
        {NormShort4, {0x00004000, 0x7FFF}, 1, {128, 0, 255}},
        {NormUShort2, {0xFFFF8000, 0}, 1, {128, 255, 0}},
        {NormUShort4, {0x00008000, 0xFFFF}, 1, {128, 0, 255}},
        {NormByte4, {0x007F0040, 0}, 1, {129, 0, 255}},
        {NormUByte4, {0x00FF0040, 0}, 1, {64, 0, 255}},
    };
    for (const Case& c : cases)
    {
        gui::gl::Buffer buffer{Vec2, c.type, Float};
        const std::size_t nFloats = buffer.getVertexStride() / sizeof(float);
        for (const auto& [x, y] : {std::pair(-1.0F, -1.0F), std::pair(3.0F, -1.0F), std::pair(-1.0F, 3.0F)})
        {
            float vertex[5] = {x, y, 0, 0, 0};
            std::memcpy(vertex + 2, c.words, (nFloats - 3) * sizeof(float));
            vertex[nFloats - 1] = c.scale;
            buffer.appendVertices(vertex, 1);
        }
        buffer.createCommand()->createDrawAll(gui::gl::Primitive::Triangles);
        clear();
        program.draw(buffer);
        EXPECT_EQ(pixel(32, 32), c.pixel) << "type " << static_cast<int>(c.type);
    }
}

} // namespace
