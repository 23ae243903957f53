#include "support/OffscreenGL.h"

#include <gui/Color.h>
#include <gui/gl/Command.h>
#include <gui/gl/Program.h>

#include <epoxy/gl.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace
{

using CommandGLTest = test::OffscreenGL;

struct ColorProgram final : gui::gl::Program
{
    void onLinked() override
    {
        _color3Location = getUniformLocation("color3");
        _color4Location = getUniformLocation("color4");
    }

    using Program::_color3Location;
    using Program::_color4Location;
};

// A channel times 1/255 is often not the channel over 255.
TEST_F(CommandGLTest, ColorsAreExactQuotients)
{
    ColorProgram program;
    ASSERT_TRUE(program.link("#version 330 core\nvoid main() { gl_Position = vec4(0.0, 0.0, 0.0, 1.0); }",
                             "#version 330 core\nuniform vec3 color3;\nuniform vec4 color4;\nout vec4 color;\n"
                             "void main() { color = vec4(color3, 1.0) + color4; }"));
    GLuint vertexArray = 0;
    glGenVertexArrays(1, &vertexArray);
    glBindVertexArray(vertexArray);
    gui::gl::Command rgb, rgba;
    rgb.createDrawArrays(gui::gl::Primitive::Points, 0, 1);
    rgba.createDrawArrays(gui::gl::Primitive::Points, 0, 1);
    rgb.setColor(td::ColorID::White);
    rgba.setColor(td::ColorID::White, 1);
    ASSERT_TRUE(rgb.encode() && rgba.encode());
    for (int i = 0; i < 256; ++i)
    {
        const auto id = static_cast<td::ColorID>(i % 183);
        const td::Color color = gui::Color::toTDColor(id);
        program.activate();
        rgba.setColor(id, i);
        rgba.execute();
        program.activate();
        rgb.setColor(id);
        rgb.execute();
        const float expected[] = {color.red() / 255.0f, color.green() / 255.0f, color.blue() / 255.0f,
                                  static_cast<float>(i) / 255.0f};
        float opaque[3] = {};
        float withAlpha[4] = {};
        glGetUniformfv(program.getID(), program._color3Location, opaque);
        glGetUniformfv(program.getID(), program._color4Location, withAlpha);
        EXPECT_TRUE(std::equal(opaque, opaque + 3, expected)) << i;
        EXPECT_TRUE(std::equal(withAlpha, withAlpha + 4, expected)) << i;
    }
    glDeleteVertexArrays(1, &vertexArray);
}

} // namespace
