#include "support/CaughtAsserts.h"
#include "support/Images.h"
#include "support/OffscreenGL.h"

#include <gui/gl/gl.h>

#include <epoxy/gl.h>
#include <glm/ext/matrix_clip_space.hpp>
#include <glm/ext/matrix_transform.hpp>
#include <glm/geometric.hpp>
#include <glm/matrix.hpp>
#include <glm/trigonometric.hpp>

#include <algorithm>
#include <cmath>
#include <string>

namespace
{

using namespace gui::gl;
using glm::mat4;
using glm::vec3;
using test::Pixel;

class Programs3DGLTest : public test::OffscreenGL
{
protected:
    /// Looks at the origin from that side.
    static mat4 lookFrom(const vec3& side, const vec3& up)
    {
        return glm::ortho(-1.5F, 1.5F, -1.5F, 1.5F, 0.0F, 10.0F) * glm::lookAt(5.0F * side, vec3(0), up);
    }

    static testing::AssertionResult isNear(const Pixel& actual, const Pixel& expected)
    {
        const int difference = std::max({std::abs(actual.red - expected.red), std::abs(actual.green - expected.green),
                                         std::abs(actual.blue - expected.blue)});
        if (difference <= 2) // rounding of the light's arithmetic
            return testing::AssertionSuccess();
        return testing::AssertionFailure() << actual << " instead of " << expected;
    }
};

TEST_F(Programs3DGLTest, LightFollowsTheNormalThatTheModelTurns)
{
    Lit3DProgram program;
    ASSERT_TRUE(program.link());
    const mat4 one(1);
    const struct
    {
        const char* name;
        mat4 model;
        vec3 normal;
        vec3 sun;
        float ambient;
        float brightness;
    } cases[] = {
        {"sun in front", one, {0, 0, 1}, {0, 0, 5}, 0.25F, 1},
        {"sun behind", one, {0, 0, 1}, {0, 0, -1}, 0.25F, 0.25F},
        {"at an angle, and a normal of any length", one, {0, 0, 9}, {0, 3, 4}, 0, 0.8F},
        {"ambient light between", one, {0, 0, 1}, {0, 3, 4}, 0.5F, 0.9F},
        {"turned", glm::rotate(one, glm::radians(90.0F), {0, 1, 0}), {0, 0, 1}, {1, 0, 0}, 0, 1},
        {"moved", glm::translate(one, {5, 6, 7}), {0, 0, 1}, {0, 0, 1}, 0, 1},
        {"stretched", glm::scale(one, {2, 1, 1}), {1, 0, 1}, {0, 0, 1}, 0, 0.8944F},
        {"mirrored", glm::scale(one, {1, 1, -1}), {0, 0, 1}, {0, 0, -1}, 0, 1},
        {"flattened", glm::scale(one, {1, 1, 0}), {0, 0, 1}, {0, 0, 1}, 0, 1},
    };
    for (const auto& c : cases)
    {
        // A triangle over the whole picture, wherever the model puts it.
        Buffer buffer{DataType::Vec3, DataType::Vec3};
        for (const vec3& corner : {vec3(-1, -1, 0), vec3(3, -1, 0), vec3(-1, 3, 0)})
        {
            const vec3 vertex[] = {corner, c.normal};
            buffer.appendVertices(&vertex[0].x, 1);
        }
        Command* const pCommand = buffer.createCommand();
        pCommand->createDrawArrays(Primitive::Triangles, 0, 3);
        pCommand->setColor(td::ColorID::White);
        ASSERT_TRUE(pCommand->encode() && buffer.commit());
        program.setBuffer(&buffer);
        program.activate();
        program.setSun(c.sun);
        program.setAmbient(c.ambient);
        program.setMatrices(c.model, c.model[2][2] == 0 ? one : glm::inverse(c.model));
        clear();
        program.execute();
        const int level = static_cast<int>(std::lround(255 * c.brightness));
        EXPECT_TRUE(isNear(pixel(32, 32), {level, level, level})) << c.name;
    }
    test::CaughtAsserts asserts;
    program.setSun({0, 0, 0});
    EXPECT_TRUE(asserts.caught("std::isnormal(length)"));
    Lit3DProgram unlinked;
    unlinked.setMatrices(one, one);
    EXPECT_TRUE(asserts.caught("isOK()"));
}

// What is lit stands in the tour's picture of the earth.
TEST_F(Programs3DGLTest, TexturesStandUpright)
{
    gui::Texture picture = test::image(1, 2, 3); // the first row is the lower one
    Textures textures;
    ASSERT_TRUE(textures.append({&picture}, gui::gl::Texture::Type::Tex2D));
    textures.setActive(Textures::Unit::T0, 0);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    Texture3DProgram program;
    Buffer cube{DataType::Vec3, DataType::Vec2};
    Command* const pCommand = cube.addCube(2, gui::gl::Texture::Type::CubeStrip);
    pCommand->setTexture(Textures::Unit::T0, 0);
    ASSERT_TRUE(program.link() && pCommand->encode());
    program.setTextures(&textures);
    clear();
    program.draw(cube, lookFrom({0, 0, 1}, {0, 1, 0}));
    EXPECT_EQ(pixel(32, 24), (Pixel{1, 2, 3}));
    EXPECT_EQ(pixel(32, 40), (Pixel{4, 5, 6}));
}

TEST_F(Programs3DGLTest, CubeMapsAreSeenFromOutside)
{
    GLuint cubeMap = 0;
    glGenTextures(1, &cubeMap);
    glBindTexture(GL_TEXTURE_CUBE_MAP, cubeMap);
    for (GLenum i = 0; i < 6; ++i)
    {
        const unsigned char bytes[] = {static_cast<unsigned char>(40 * i), 0, 99, 255};
        glTexImage2D(GL_TEXTURE_CUBE_MAP_POSITIVE_X + i, 0, GL_RGBA, 1, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE, bytes);
    }
    for (const GLenum filter : {GL_TEXTURE_MIN_FILTER, GL_TEXTURE_MAG_FILTER})
        glTexParameteri(GL_TEXTURE_CUBE_MAP, filter, GL_NEAREST);
    CubeMap3DProgram program;
    Buffer cube{DataType::Vec3};
    Command* const pCommand = cube.addCube(2, gui::gl::Texture::Type::CubeMap);
    ASSERT_TRUE(program.link() && pCommand->encode() && cube.commit());
    Context::enable(Context::Flag::CullFace);
    Context::enable(Context::Flag::DepthTest);
    int red = 0;
    for (const vec3& side :
         {vec3(1, 0, 0), vec3(-1, 0, 0), vec3(0, 1, 0), vec3(0, -1, 0), vec3(0, 0, 1), vec3(0, 0, -1)})
    {
        clear();
        program.setBuffer(&cube);
        program.activate();
        program.setMVP(lookFrom(side, {side.y, side.z, side.x}));
        program.execute();
        EXPECT_EQ(pixel(32, 32), (Pixel{red, 0, 99}));
        red += 40;
    }
    Context::disable(Context::Flag::CullFace);
    Context::disable(Context::Flag::DepthTest);
    glDeleteTextures(1, &cubeMap);
}

} // namespace
