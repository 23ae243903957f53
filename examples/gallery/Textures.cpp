// Look for: see-through bubbles, the earth, a pattern that repeats without seams, and all six faces on two turning
// dice.

#include "CubeProgram.h"
#include "Drawing.h"
#include "Scenes.h"

#include <gui/Texture.h>
#include <gui/gl/gl.h>

#include <glm/ext/matrix_clip_space.hpp>
#include <glm/ext/matrix_transform.hpp>
#include <glm/trigonometric.hpp>

#include <array>

namespace gallery
{

namespace
{

using namespace gui::gl;

/// A rectangle in units of its cell, with the texture coordinates of its corners.
struct Picture
{
    glm::vec2 middle;
    glm::vec2 half;
    glm::vec2 bottomLeft;
    glm::vec2 topRight;
};

// The bubbles' texture was appended as an image, so its first row is t = 0; those named by file are the other way
// round.
constexpr Picture cBubbles[] = {{{-0.68F, -0.04F}, {0.78F, 0.78F}, {0, 1}, {1, 0}},
                                {{0.32F, 0.30F}, {0.52F, 0.52F}, {0, 1}, {1, 0}},
                                {{0.94F, -0.20F}, {0.44F, 0.44F}, {0, 1}, {1, 0}},
                                {{0.16F, -0.46F}, {0.38F, 0.38F}, {0, 1}, {1, 0}},
                                {{1.16F, 0.56F}, {0.22F, 0.22F}, {0, 1}, {1, 0}}};
constexpr Picture cEarth = {{0, 0}, {1.55F, 0.775F}, {0, 0}, {1, 1}};
constexpr Picture cScales = {{0, 0}, {1.55F, 0.88F}, {0, -0.06F}, {3.1F, 3.46F}};

class TexturesScene : public Scene
{
public:
    bool init() override
    {
        gui::Texture bubble;
        if (!bubble.loadFromFile(":gallery/bubble.png") || !_textures.append({&bubble}, Texture::Type::Tex2D) ||
            !_textures.append({":gallery/earth.jpg", ":gallery/scales.png"}, Texture::Type::Tex2D) ||
            !_faces.appendCubeMap({":gallery/face2.png", ":gallery/face1.png", ":gallery/face5.png",
                                   ":gallery/face6.png", ":gallery/face3.png", ":gallery/face4.png"}))
            return false;

        _buffer.init(8, 40, 0, {DataType::Vec2, DataType::Vec2});
        for (const Picture& bubblePicture : cBubbles)
            record(bubblePicture, 0);
        record(cEarth, 1);
        record(cScales, 2);
        _program.setBuffer(&_buffer);
        _program.setTextures(&_textures);
        recordCube();
        _cubeProgram.setBuffer(&_cube);
        _cubeProgram.setTextures(&_faces);
        return _backdrop.init() && _program.link() && _cubeProgram.link() && _buffer.commit() && _cube.commit();
    }

    void draw(const Frame& frame) override
    {
        const std::vector<Cell> cells = makeGrid(frame, 2, 2);
        _backdrop.draw(frame, cells);
        _program.activate();
        Context::setBlendFunction(Blend::Factor::SrcAlpha, Blend::Factor::OneMinusSrcAlpha);
        Context::enable(Context::Flag::Blend);
        _program.setMVP(unitsToClip(frame, cells[0]));
        _program.execute(0, std::size(cBubbles));
        Context::disable(Context::Flag::Blend);
        _program.setMVP(unitsToClip(frame, cells[1]));
        _program.execute(std::size(cBubbles), 1);
        _program.setMVP(unitsToClip(frame, cells[2]));
        _program.execute(std::size(cBubbles) + 1, 1);

        _cubeProgram.activate();
        Context::enable(Context::Flag::DepthTest);
        const auto turn = static_cast<float>(20 * frame.seconds);
        drawCube(unitsToClip(frame, cells[3]), -0.78F, glm::vec2(32, turn));
        drawCube(unitsToClip(frame, cells[3]), 0.78F, glm::vec2(-148, turn));
        Context::disable(Context::Flag::DepthTest);
        _cubeProgram.deActivate();
    }

private:
    void record(const Picture& picture, char texture)
    {
        const auto [middle, half, low, high] = picture;
        const std::size_t first = _buffer.getNoOfVertices();
        const float vertices[] = {
            middle.x - half.x, middle.y - half.y, low.x, low.y,  middle.x + half.x, middle.y - half.y, high.x, low.y,
            middle.x - half.x, middle.y + half.y, low.x, high.y, middle.x + half.x, middle.y + half.y, high.x, high.y};
        _buffer.appendVertices(vertices, 4);
        Command* pCommand = _buffer.createCommand();
        pCommand->createDrawArrays(Primitive::TriangleStrip, first, 4);
        pCommand->setTexture(Textures::Unit::T0, texture);
        _buffer.encode(pCommand);
    }

    // Corner i has the signs of i's bits.
    void recordCube()
    {
        _cube.init(1, 8, 36, {DataType::Vec3});
        for (int i = 0; i < 8; ++i)
        {
            const float corner[] = {(i & 1) != 0 ? 1.0F : -1.0F, (i & 2) != 0 ? 1.0F : -1.0F,
                                    (i & 4) != 0 ? 1.0F : -1.0F};
            _cube.appendVertices(corner, 1);
        }
        constexpr unsigned int cSides[6][4] = {{0, 1, 2, 3}, {4, 5, 6, 7}, {0, 1, 4, 5},
                                               {2, 3, 6, 7}, {0, 2, 4, 6}, {1, 3, 5, 7}};
        for (const auto& [a, b, c, d] : cSides)
        {
            const unsigned int triangles[] = {a, b, c, b, c, d};
            _cube.appendIndices(triangles, 6);
        }
        Command* pCommand = _cube.createCommand();
        pCommand->createDrawElements(Primitive::Triangles, 0, 36);
        pCommand->setTexture(Textures::Unit::T0, 0);
        _cube.encode(pCommand);
    }

    void drawCube(const glm::mat4& toClip, float x, const glm::vec2& degrees)
    {
        glm::mat4 model = glm::rotate(glm::mat4(1), glm::radians(degrees.x), {1, 0, 0});
        model = glm::scale(glm::rotate(model, glm::radians(degrees.y), {0, 1, 0}), glm::vec3(0.43F));
        const glm::mat4 perspective = glm::perspective(glm::radians(28.0F), 1.0F, 1.0F, 10.0F);
        const glm::mat4 place = glm::translate(toClip, {x, 0, 0}) * perspective;
        _cubeProgram.setMatrices(model, glm::translate(place, {0, 0, -4}));
        _cubeProgram.execute();
    }

    Backdrop _backdrop;
    Texture2DProgram _program;
    CubeProgram _cubeProgram;
    Buffer _buffer;
    Buffer _cube;
    Textures _textures;
    Textures _faces;
};

} // namespace

std::unique_ptr<Scene> makeTextures() { return std::make_unique<TexturesScene>(); }

} // namespace gallery
