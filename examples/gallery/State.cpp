// Look for: depth test off and on; a star-shaped stencil, inside and out; two ways to blend; fill, line and point mode.

#include "Figures.h"
#include "Scenes.h"

#include <gui/gl/gl.h>

#include <glm/ext/matrix_clip_space.hpp>
#include <glm/ext/matrix_transform.hpp>
#include <glm/trigonometric.hpp>

namespace gallery
{

namespace
{

using namespace gui::gl;
using td::ColorID;

// The commands of the flat figures, and those of the solid ones.
constexpr std::size_t cStar = 0, cWheel = 1, cGlasses = 2, cLights = 5;
constexpr std::size_t cRectangles = 0, cBall = 1;

class State : public Scene
{
public:
    bool init() override
    {
        using namespace figures;
        _flat.init(8, 1000, 0, {DataType::Vec2, DataType::Vec4});
        record(makeStar(colorOf(ColorID::White)));
        record(makeColorWheel());
        for (const ColorID color : {ColorID::Tomato, ColorID::Gold, ColorID::DeepSkyBlue})
            record(makeDisc(colorOf(color, 0.65F)));
        for (const ColorID color : {ColorID::Red, ColorID::Lime, ColorID::Blue})
            record(makeDisc(colorOf(color)));
        _solid.init(2, 1600, 0, {DataType::Vec3, DataType::Vec4});
        record(makeRectangles());
        record(makeBall());
        _flatProgram.setBuffer(&_flat);
        _solidProgram.setBuffer(&_solid);
        return _backdrop.init() && _flatProgram.link() && _solidProgram.link() && _flat.commit() && _solid.commit();
    }

    void draw(const Frame& frame) override
    {
        const std::vector<Cell> cells = makeGrid(frame, 2, 2);
        _backdrop.draw(frame, cells);
        _solidProgram.activate();
        drawDepth(unitsToClip(frame, cells[0]), static_cast<float>(20 * frame.seconds));
        drawModes(unitsToClip(frame, cells[3]), static_cast<float>(frame.scale));
        _flatProgram.activate();
        drawStencil(unitsToClip(frame, cells[1]));
        drawBlending(unitsToClip(frame, cells[2]));
        _flatProgram.deActivate();
    }

private:
    void record(const figures::Vertices& fan)
    {
        Command* pCommand = _flat.createCommand();
        pCommand->createDrawArrays(Primitive::TriangleFan, append(_flat, fan), static_cast<unsigned int>(fan.size()));
        _flat.encode(pCommand);
    }

    void record(const figures::SolidVertices& triangles)
    {
        const std::size_t first = _solid.getNoOfVertices();
        _solid.appendVertices(&triangles.front().position.x, triangles.size());
        Command* pCommand = _solid.createCommand();
        pCommand->createDrawArrays(Primitive::Triangles, first, static_cast<unsigned int>(triangles.size()));
        _solid.encode(pCommand);
    }

    void drawFlat(const glm::mat4& toClip, const glm::vec2& place, float size, std::size_t command)
    {
        _flatProgram.setMVP(glm::scale(glm::translate(toClip, {place.x, place.y, 0}), {size, size, 1}));
        _flatProgram.execute(command, 1);
    }

    void drawSolid(const glm::mat4& toClip, float x, float size, float degrees, std::size_t command)
    {
        glm::mat4 matrix = glm::scale(glm::translate(toClip, {x, 0, 0}), {size, size, 1});
        matrix *= glm::perspective(glm::radians(30.0F), 1.0F, 1.0F, 10.0F);
        matrix = glm::rotate(glm::translate(matrix, {0, 0, -4}), glm::radians(25.0F), {1, 0, 0});
        _solidProgram.setMVP(glm::rotate(matrix, glm::radians(degrees), {0, 1, 0}));
        _solidProgram.execute(command, 1);
    }

    // Without the test, what is drawn last covers the rest; with it, the rectangles pass through each other.
    void drawDepth(const glm::mat4& toClip, float degrees)
    {
        drawSolid(toClip, -0.75F, 0.78F, degrees, cRectangles);
        Context::enable(Context::Flag::DepthTest);
        drawSolid(toClip, 0.75F, 0.78F, degrees, cRectangles);
        Context::disable(Context::Flag::DepthTest);
    }

    // The ball's back would show through its lines and points: it is culled.
    void drawModes(const glm::mat4& toClip, float scale)
    {
        Context::enable(Context::Flag::CullFace);
        drawSolid(toClip, -1.02F, 0.46F, 0, cBall);
        Context::setPolygonMode(Context::PolygonMode::Line);
        drawSolid(toClip, 0, 0.46F, 0, cBall);
        Context::setPolygonMode(Context::PolygonMode::Point);
        Context::setPointSize(2.5F * scale);
        drawSolid(toClip, 1.02F, 0.46F, 0, cBall);
        Context::setPolygonMode(Context::PolygonMode::Fill);
        Context::disable(Context::Flag::CullFace);
    }

    // The stars go into the stencil buffer alone; then one wheel is drawn inside of its star, the other one outside.
    void drawStencil(const glm::mat4& toClip)
    {
        using Function = StencilBuffer::Function;
        using Operation = StencilBuffer::Operation;
        Context::enable(Context::Flag::StencilTest);
        Context::setStencilBufferFunction(Function::Never, 1, 255);
        Context::setStencilBufferOperation(Operation::Replace, Operation::Keep, Operation::Keep);
        drawFlat(toClip, {-0.75F, 0}, 0.7F, cStar);
        drawFlat(toClip, {0.75F, 0}, 0.6F, cStar);
        Context::setStencilBufferOperation(Operation::Keep, Operation::Keep, Operation::Keep);
        Context::setStencilBufferFunction(Function::Equal, 1, 255);
        drawFlat(toClip, {-0.75F, 0}, 0.7F, cWheel);
        Context::setStencilBufferFunction(Function::NotEqual, 1, 255);
        drawFlat(toClip, {0.75F, 0}, 0.7F, cWheel);
        Context::disable(Context::Flag::StencilTest);
    }

    // Glass over glass by its alpha, light onto light by addition.
    void drawBlending(const glm::mat4& toClip)
    {
        Context::enable(Context::Flag::Blend);
        for (std::size_t i = 0; i < 3; ++i)
        {
            const glm::vec2 place = onCircle(0.25F + static_cast<float>(i) / 3, 0.3F) - glm::vec2(0, 0.05F);
            Context::setBlendFunction(Blend::Factor::SrcAlpha, Blend::Factor::OneMinusSrcAlpha);
            drawFlat(toClip, place - glm::vec2(0.75F, 0), 0.45F, cGlasses + i);
            Context::setBlendFunction(Blend::Factor::One, Blend::Factor::One);
            drawFlat(toClip, place + glm::vec2(0.75F, 0), 0.45F, cLights + i);
        }
        Context::disable(Context::Flag::Blend);
    }

    Backdrop _backdrop;
    Color2DProgram _flatProgram;
    Color3DProgram _solidProgram;
    Buffer _flat;
    Buffer _solid;
};

} // namespace

std::unique_ptr<Scene> makeState() { return std::make_unique<State>(); }

} // namespace gallery
