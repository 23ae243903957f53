#include "support/CaughtAsserts.h"
#include "support/OffscreenGL.h"

#include <gui/Texture.h>
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

constexpr Pixel cStrip[] = {{255, 0, 0}, {0, 255, 0}, {0, 0, 255}, {255, 255, 0}, {255, 0, 255}, {0, 255, 255}};
constexpr int cRowBytes = 12 * 3;

class Programs3DGLTest : public test::OffscreenGL
{
protected:
    /// Looks at the origin from that side.
    static mat4 lookFrom(const vec3& side, const vec3& up)
    {
        return glm::ortho(-1.5F, 1.5F, -1.5F, 1.5F, 0.0F, 10.0F) * glm::lookAt(5.0F * side, vec3(0), up);
    }

    /// The same colour, darker.
    static Pixel dark(const Pixel& color) { return {color.red / 5, color.green / 5, color.blue / 5}; }

    /// Six colours from left to right, two pixels each; the first row dark, the last one bright.
    static gui::Texture strip()
    {
        gui::Texture picture;
        gui::TextureHelper helper(&picture);
        helper.reserve(2 * cRowBytes);
        helper.updateInfo(12, 2, 3);
        for (int i = 0; i < 2 * cRowBytes; ++i)
        {
            const Pixel& color = cStrip[i % cRowBytes / 6];
            const int channels[] = {color.red, color.green, color.blue};
            picture.getBytes()[i] = static_cast<td::BYTE>(channels[i % 3] / (i < cRowBytes ? 5 : 1));
        }
        return picture;
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
    struct Case
    {
        const char* name;
        mat4 model;
        vec3 normal;
        vec3 sun;
        float ambient;
        float brightness;
    };
    const Case cases[] = {
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
    for (const Case& c : cases)
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

TEST_F(Programs3DGLTest, TexturedMeshesStandUpright)
{
    gui::Texture picture = strip();
    Textures textures;
    ASSERT_TRUE(textures.append({&picture}, gui::gl::Texture::Type::Tex2D));
    for (const GLenum filter : std::initializer_list<GLenum>{GL_TEXTURE_MIN_FILTER, GL_TEXTURE_MAG_FILTER})
    {
        textures.setActive(Textures::Unit::T0, 0);
        glTexParameteri(GL_TEXTURE_2D, filter, GL_NEAREST);
    }
    LitTexture3DProgram lit;
    Texture3DProgram unlit;
    ASSERT_TRUE(lit.link() && unlit.link());
    lit.setTextures(&textures);
    unlit.setTextures(&textures);

    Buffer sphere{DataType::Vec3, DataType::Vec3, DataType::Vec2};
    Command* pCommand = sphere.addSphere(1, 48, 24, gui::gl::Texture::Type::Tex2D);
    pCommand->setTexture(Textures::Unit::T0, 0);
    ASSERT_TRUE(pCommand->encode() && sphere.commit());
    Buffer cube{DataType::Vec3, DataType::Vec2};
    pCommand = cube.addCube(2, gui::gl::Texture::Type::CubeStrip);
    pCommand->setTexture(Textures::Unit::T0, 0);
    ASSERT_TRUE(pCommand->encode() && cube.commit());

    Context::enable(Context::Flag::DepthTest);
    struct Side
    {
        vec3 from;
        vec3 up;         // of the cube; the sphere's is z
        int left, right; // of the sphere's six colours, seen from there
        int face;        // of the cube
    };
    const Side cSides[] = {{{1, 0, 0}, {0, 1, 0}, 5, 0, 1},   {{-1, 0, 0}, {0, 1, 0}, 2, 3, 3},
                           {{0, 1, 0}, {0, 0, -1}, 1, 1, 4},  {{0, -1, 0}, {0, 0, 1}, 4, 4, 5},
                           {{0, 0, 1}, {0, 1, 0}, -1, -1, 0}, {{0, 0, -1}, {0, 1, 0}, -1, -1, 2}};
    for (const Side& side : cSides)
    {
        if (side.left >= 0)
        {
            clear();
            lit.setBuffer(&sphere);
            lit.activate();
            lit.setMatrices(mat4(1), lookFrom(side.from, {0, 0, 1}));
            lit.setAmbient(1);
            lit.execute();
            EXPECT_TRUE(isNear(pixel(28, 24), cStrip[side.left])) << side.face;
            EXPECT_TRUE(isNear(pixel(36, 24), cStrip[side.right])) << side.face;
            EXPECT_TRUE(isNear(pixel(36, 40), dark(cStrip[side.right]))) << side.face;
        }
        clear();
        unlit.setBuffer(&cube);
        unlit.activate();
        unlit.setMVP(lookFrom(side.from, side.up));
        unlit.execute();
        EXPECT_TRUE(isNear(pixel(32, 40), cStrip[side.face])) << side.face;
        EXPECT_TRUE(isNear(pixel(32, 24), dark(cStrip[side.face]))) << side.face;
    }
    Context::disable(Context::Flag::DepthTest);
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
    glTexParameteri(GL_TEXTURE_CUBE_MAP, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
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
