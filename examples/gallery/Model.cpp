// Look for: lines that keep their width at every distance and end where something is before them; the hood as
// wires; the outline about the pinion; on the right the same knob three times.

#include "Board.h"
#include "Scenes.h"
#include "Solids.h"

#include <gui/draw/Model.h>
#include <gui/gl/gl.h>

#include <glm/ext/matrix_clip_space.hpp>
#include <glm/ext/matrix_transform.hpp>
#include <glm/geometric.hpp>
#include <glm/matrix.hpp>
#include <glm/trigonometric.hpp>

#include <array>
#include <cmath>
#include <vector>

namespace gallery
{

namespace
{

using namespace gui::gl;
using gui::draw::Eye;
using gui::draw::Material;
using gui::draw::Mesh;
using gui::draw::Model;
using gui::draw::Path;

const Cell cLarge{24, 24, 624, 552};
const std::array<Cell, 3> cSmall{{{664, 24, 272, 173}, {664, 213.5F, 272, 173}, {664, 403, 272, 173}}};
constexpr double cFieldOfView = 26;
constexpr double cModule = 4, cDistance = 84; // of the wheels' axes
constexpr int cLargeTeeth = 28, cSmallTeeth = 14;

// The parts that are something special.
constexpr std::size_t cHood = 0, cPinion = 1;

// From z upwards to y away, as plates and wheels stand.
glm::dmat4 standing(double x, double y, double z)
{
    return glm::rotate(glm::translate(glm::dmat4(1), {x, y, z}), glm::radians(90.0), {1, 0, 0});
}

Path sidePlate()
{
    Path plate;
    plate.moveTo({-78, -64}).lineTo({122, -64}).lineTo({122, 12});
    plate.arcTo({38, 38}, 0, false, true, {84, 50}).lineTo({58, 56});
    plate.arcTo({60, 60}, 0, false, true, {-62, 50}).lineTo({-78, 20}).close();
    return plate.addCircle({0, 0}, 17).addCircle({cDistance, 0}, 13).addCircle({-58, -40}, 5).addCircle({102, -40}, 5);
}

Mesh makeShaft(double radius, double length)
{
    const double h = length / 2;
    const std::array<glm::dvec2, 9> profile{{{0, -h},
                                             {radius - 2, -h},
                                             {radius, -h + 2},
                                             {radius, -h + 26},
                                             {radius + 4, -h + 26},
                                             {radius + 4, h - 40},
                                             {radius - 1, h - 40},
                                             {radius - 3, h},
                                             {0, h}}};
    return revolve(profile, 64);
}

Mesh makeBolt()
{
    std::vector<Path::Point> hexagon;
    for (int i = 0; i < 6; ++i)
        hexagon.emplace_back(8 * std::cos(glm::radians(60.0 * i)), 8 * std::sin(glm::radians(60.0 * i)));
    Mesh bolt = extrude(Path().addPolygon(hexagon), 2, 8);
    bolt.add(extrude(Path().addCircle({0, 0}, 10), 0, 2));
    bolt.parts.clear();
    return bolt;
}

// A hood over the wheel: part of a cylinder about its axis.
Mesh makeHood()
{
    constexpr std::uint32_t cSteps = 30, cRows = 7;
    Mesh hood;
    for (std::uint32_t i = 0; i <= cSteps; ++i)
        for (std::uint32_t row = 0; row < cRows; ++row)
        {
            const double angle = glm::radians(30 + 5.0 * i);
            hood.positions.emplace_back(71 * std::cos(angle), 48.0 * row / (cRows - 1) - 20, 71 * std::sin(angle));
        }
    for (std::uint32_t i = 0; i < cSteps; ++i)
        for (std::uint32_t row = 0; row + 1 < cRows; ++row)
        {
            const std::uint32_t a = i * cRows + row, b = a + cRows;
            hood.indices.insert(hood.indices.end(), {a, a + 1, b, b, a + 1, b + 1});
        }
    return hood;
}

Mesh makeDrive()
{
    const Material paint{.color = "#6f93bd", .shininess = 0.25}, steel{.color = "#cfd5de", .shininess = 0.6};
    const Material brass{.color = "#dcab48", .shininess = 0.55}, dark{.color = "#4a5a76", .shininess = 0.3};
    Mesh drive;
    drive.add(makeHood(), paint);
    Path pinion = toothedWheel(cSmallTeeth, cModule);
    drive.add(extrude(pinion.addCircle({0, 0}, 9), -13, 13), steel, 0,
              glm::rotate(standing(cDistance, 0, 0), glm::radians(180.0 / cSmallTeeth), {0, 0, 1}));
    drive.add(extrude(sidePlate(), -6, 6), paint, 0, standing(0, 34, 0));
    Path wheel = toothedWheel(cLargeTeeth, cModule);
    for (int i = 0; i < 6; ++i)
    {
        const glm::vec2 p = onCircle(static_cast<float>(i) / 6 + 1.0F / 12, 35);
        wheel.addCircle({p.x, p.y}, 10);
    }
    drive.add(extrude(wheel.addCircle({0, 0}, 13), -10, 10), brass, 0, standing(0, 0, 0));
    Path hub;
    drive.add(extrude(hub.addCircle({0, 0}, 20).addCircle({0, 0}, 13), -16, 16), brass, 0, standing(0, 0, 0));
    drive.add(makeShaft(13, 96), steel, 0, standing(0, 4, 0));
    drive.add(makeShaft(9, 96), steel, 0, standing(cDistance, 4, 0));
    Path base;
    base.addRoundedRect({-98, -50, 142, 62}, {14, 14});
    for (const double x : {-82.0, 126.0})
        for (const double y : {-36.0, 48.0})
            drive.add(makeBolt(), steel, 0, glm::translate(glm::dmat4(1), {x, y, -64.0}));
    drive.add(extrude(base, -80, -64), dark);
    return drive;
}

// A knob with grooves.
Mesh makeKnob()
{
    std::vector<glm::dvec2> profile{{0, -1}, {0.55, -1}, {0.62, -0.93}, {0.62, -0.45}, {0.9, -0.4}};
    for (int i = 0; i <= 10; ++i)
    {
        const double angle = glm::radians(-60 + 15.0 * i);
        profile.emplace_back(0.75 + 0.35 * std::cos(angle), 0.1 + 0.45 * std::sin(angle));
    }
    profile.insert(profile.end(), {{0.5, 0.5}, {0.42, 0.62}, {0.2, 0.66}, {0, 0.66}});
    Mesh knob = revolve(profile, 28);
    knob.material = {.color = "#d8604c", .shininess = 0.5};
    return knob;
}

/// A gear drive in a large picture, and a knob in three small ones, all in one framebuffer of four samples.
class ModelScene : public Scene
{
public:
    bool init() override
    {
        _board.addPanel(cLarge);
        _board.addCaption({44, 556}, "12 parts: edges, a hood as wires, a pinion that is selected", Font::cLeft);
        const char* const captions[] = {"every face flat", "smooth up to 30 degrees", "with wires"};
        for (std::size_t i = 0; i < cSmall.size(); ++i)
        {
            _board.addPanel(cSmall[i]);
            _board.addCaption({cSmall[i].left + 20, cSmall[i].top + cSmall[i].height - 16}, captions[i], Font::cLeft);
            Mesh knob = makeKnob();
            knob.smoothAngle = i == 0 ? 0 : 30;
            _knobs[i].setMesh(knob);
        }
        _knobs[1].setEdges({.width = 1});
        _knobs[2].setWires(Model::Wires::Over);
        _drive.setMesh(makeDrive());
        _drive.setEdges({.width = 1.2});
        _drive.setWires(cHood, Model::Wires::Alone);
        _drive.setWireLine({.width = 1, .color = "#a8d0ff"});
        _drive.setSelected(cPinion, true);
        const float corners[] = {-1, -1, 0, 0, 1, -1, 1, 0, 1, 1, 1, 1, -1, 1, 0, 1};
        _quad.appendShape(Primitive::TriangleFan, corners, 4);
        return _board.init() && _quadProgram.link();
    }

    bool moves() const override { return true; }

    void draw(const Frame& frame) override
    {
        const td::Size<int> size(static_cast<int>(frame.size.width * frame.scale),
                                 static_cast<int>(frame.size.height * frame.scale));
        // Where there is no such framebuffer, which the log has said, it is not asked for again in every frame.
        if (!(_sizeTried == size) && !_aside.create(size, {.depth = DepthBuffer::Size::Bits24, .samples = 4}))
            _aside.release();
        _sizeTried = size;
        if (!_aside.isOk())
            return;
        if (const Framebuffer::Drawing drawing(_aside); drawing)
        {
            _board.draw(frame);
            const double turn = -35 + 6 * frame.seconds;
            _drive.draw(eyeOf(frame, cLarge, {25, 6, -10}, 280, turn));
            for (std::size_t i = 0; i < cSmall.size(); ++i)
                _knobs[i].draw(eyeOf(frame, cSmall[i], {0, 0, -0.35}, 2.6, turn));
        }
        Context::setActiveTextureUnit(Texture::Unit::T0);
        Context::bindTextureToCurrentlyActiveTextureUnit(_aside.getTextureID(), Texture::Type::Tex2D);
        _quadProgram.draw(_quad, glm::mat4(1));
        _quadProgram.deActivate();
    }

private:
    // Sees something of a height in a cell's middle, from above and from the side.
    static Eye eyeOf(const Frame& frame, const Cell& cell, const glm::dvec3& middle, double height, double turn)
    {
        const gui::draw::Affine toFrame = Board::toFrame(frame);
        const td::Point<double> corner = toFrame.map({cell.left, cell.top});
        const td::Size<double> size(cell.width * toFrame.a, cell.height * toFrame.a);
        const glm::dvec3 back(std::sin(glm::radians(turn)) * 0.9, -std::cos(glm::radians(turn)) * 0.9, 0.436);
        const glm::dvec3 right = glm::normalize(glm::cross(glm::dvec3(0, 0, 1), back));
        const glm::dmat3 axes(right, glm::cross(back, right), back);
        const double distance = height / 2 / std::tan(glm::radians(cFieldOfView / 2));
        const Eye eye(
            middle + distance * glm::normalize(back), glm::transpose(axes),
            glm::perspective(glm::radians(cFieldOfView), size.width / size.height, distance / 4, distance * 4), size,
            frame.scale);
        // The cell is a part of what the frame shows.
        return eye.getPart({-corner.x, -corner.y, frame.size.width - corner.x, frame.size.height - corner.y});
    }

    Board _board;
    Model _drive;
    std::array<Model, 3> _knobs;
    Framebuffer _aside;
    td::Size<int> _sizeTried;
    Texture2DProgram _quadProgram;
    Buffer _quad{DataType::Vec2, DataType::Vec2};
};

} // namespace

std::unique_ptr<Scene> makeModel() { return std::make_unique<ModelScene>(); }

} // namespace gallery
