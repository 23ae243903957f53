// A camera, lines, points, instances, names and dimensions in space in the hands of somebody who does not care: any
// numbers, any order. The camera stays one that sees, what is refused changes nothing, and all of it is drawn.

#include "Fuzz.h"

#include <gui/draw/DepthCanvas.h>
#include <gui/draw/DepthProbe.h>
#include <gui/draw/Dimensions3.h>
#include <gui/draw/Globe.h>
#include <gui/draw/Instances.h>
#include <gui/draw/Labels3.h>
#include <gui/draw/OrbitCamera.h>
#include <gui/draw/Path.h>
#include <gui/draw/Points3.h>
#include <gui/draw/Polylines3.h>
#include <gui/gl/OffscreenContext.h>

#include <epoxy/gl.h>

#include <glm/geometric.hpp>
#include <glm/matrix.hpp>

#include <cmath>
#include <optional>
#include <string>
#include <vector>

namespace fuzz::space
{

namespace
{

using namespace gui::draw;

constexpr int cSize = 32;
bool isFinite(const glm::dvec3& v) { return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z); }

class SpaceWorld : Careless
{
public:
    explicit SpaceWorld(Input& input)
        : Careless(input, 1024, 16)
    {
        _camera.setSize({cSize, cSize});
    }

    void live()
    {
        while (_input.left() > 0)
        {
            doNext();
            checkCamera();
            if (_input.below(8) == 0)
                draw();
        }
        draw();
    }

private:
    td::Color takeColor()
    {
        const auto bits = _input.take<std::uint32_t>();
        return {bits & 255U, (bits >> 8) & 255U, (bits >> 16) & 255U, bits >> 24};
    }
    glm::dvec3 takeVector()
    {
        if (_input.below(4) == 0) // much is the same, flat or in a plane
            return {_input.below(3) - 1.0, _input.below(3) - 1.0, _input.below(3) - 1.0};
        const double x = takeNumber(), y = takeNumber();
        return {x, y, takeNumber()};
    }
    std::vector<glm::dvec3> takeVectors()
    {
        std::vector<glm::dvec3> vectors(_input.below(9));
        for (glm::dvec3& vector : vectors)
            vector = takeVector();
        return vectors;
    }
    // One too many now and then.
    template <typename Value, typename Take>
    std::vector<Value> takeForEach(std::size_t n, const Take& take)
    {
        std::vector<Value> values(takeBool() ? 0 : n + (_input.below(16) == 0 ? 1 : 0));
        for (Value& value : values)
            value = take();
        return values;
    }
    Box3 takeBox()
    {
        Box3 box;
        box.add(takeVector());
        box.add(takeVector());
        if (_input.below(8) == 0)
            box.max = takeVector();
        return box;
    }
    td::Point<double> takePlace()
    {
        if (_input.below(8) == 0)
            return {takeNumber(), takeNumber()};
        return {_input.below(cSize) + 0.5, _input.below(cSize) + 0.5};
    }

    void moveCamera()
    {
        switch (_input.below(20))
        {
        case 0:
            return _camera.setSize({takeNumber(), takeNumber()});
        case 1:
            return _camera.setProjection(takeBool() ? OrbitCamera::Projection::Perspective
                                                    : OrbitCamera::Projection::Orthographic);
        case 2:
            return _camera.setTurning(takeBool() ? OrbitCamera::Turning::Upright : OrbitCamera::Turning::Free);
        case 3:
            return _camera.setFieldOfView(1 + _input.below(178));
        case 4:
            return _camera.setBounds(takeBox());
        case 5:
            _camera.fit(takeBox(), takeNumber());
            return;
        case 6:
            _camera.flyTo(takeBox(), takeNumber(), takeNumber());
            return;
        case 7:
            return _camera.flyTo(static_cast<OrbitCamera::Side>(_input.below(7)), takeNumber());
        case 8:
        {
            OrbitCamera::Pose pose = _camera.getPose();
            pose.target = takeVector();
            if (takeBool())
                pose.rotation = {takeVector(), takeVector(), takeVector()};
            pose.distance = takeNumber();
            if (takeBool())
                _camera.flyTo(pose, takeNumber());
            else
                _camera.setPose(pose);
            return;
        }
        case 9:
            _camera.look(takeVector(), takeVector());
            return;
        case 10:
            return _camera.setDirection(takeNumber(), takeNumber());
        case 11:
            return takeBool() ? _camera.setTarget(takeVector()) : _camera.focus(takeVector());
        case 12:
            return _camera.setDistance(takeNumber());
        case 13:
            return _camera.turn(takeVector(), takeNumber(), takeNumber());
        case 14:
            return _camera.zoom(takeBool() ? takeVector() : _camera.getPlace(takePlace()), takeNumber());
        case 15:
            return _camera.pan(takeVector(), takePlace());
        case 16:
            return takeBool() ? _camera.glide(takeVector(), takeNumber(), takeNumber()) : _camera.glide(takeVector());
        case 17:
            return limitCamera();
        default:
            _camera.advance(takeNumber());
        }
    }

    void limitCamera()
    {
        const double min = std::ldexp(1 + _input.below(8), static_cast<int>(_input.below(60)) - 30);
        const double max = min * (1 + _input.below(100));
        switch (_input.below(5))
        {
        case 0:
            return _camera.setDistanceLimits(min, max);
        case 1:
            return _camera.setElevationLimits(-static_cast<double>(_input.below(91)), _input.below(91));
        case 2:
            return _camera.setTargetLimits(takeBox());
        case 3:
            return _camera.setInertia(takeNumber());
        default:
        {
            const glm::dvec3 center = takeVector();
            if (isFinite(center))
                _camera.setEyeLimits(center, min, max);
        }
        }
    }

    void checkCamera()
    {
        const OrbitCamera::Pose& pose = _camera.getPose();
        require(isFinite(pose.target) && std::isfinite(pose.distance) && pose.distance > 0, "a camera is somewhere");
        const glm::dmat3 one = pose.rotation * glm::transpose(pose.rotation);
        for (int i = 0; i < 3; ++i)
            for (int k = 0; k < 3; ++k)
                require(std::abs(one[i][k] - (i == k ? 1 : 0)) < 1e-9, "a camera is turned, and nothing else");
        require(glm::determinant(pose.rotation) > 0, "a camera does not mirror");
        const Eye eye = _camera.getEye();
        if (!eye.isValid())
            return;
        const Ray ray = eye.getRay(takePlace());
        require(!isFinite(ray.direction) || std::abs(glm::length(ray.direction) - 1) < 1e-9, "rays have a length of 1");
        const glm::dvec3 point = takeVector();
        if (const std::optional<glm::dvec3> place = eye.project(point))
            require(isFinite(*place), "a place on the screen is one");
        eye.sees(takeBox());
    }

    void changeLines()
    {
        Polylines3::Look look{.width = takeNumber(), .color = takeColor()};
        if (takeBool())
        {
            look.dash = takeNumber();
            look.gap = takeNumber();
            look.dashOffset = takeNumber();
        }
        look.cap = static_cast<Cap>(_input.below(3));
        const std::size_t line = _input.below(8), n = _lines.getNumberOfLines();
        switch (_input.below(8))
        {
        case 0:
            _lines.setPoints(line, takeVectors());
            break;
        case 1:
            _lines.setColors(line, takeForEach<td::Color>(_input.below(9), [this] { return takeColor(); }));
            break;
        case 2:
            require(_lines.setLook(line, look) == (line < n), "a line that there is takes a look");
            break;
        case 3:
            require(_lines.setVisible(line, takeBool()) == (line < n), "a line that there is can be hidden");
            break;
        case 4:
            _lines.setBias(takeNumber());
            break;
        case 5:
            if (_input.below(8) == 0)
                _lines.clear();
            break;
        default:
            _lines.add(takeVectors(), look, takeBool() ? Polylines3::Ends::Joined : Polylines3::Ends::Open);
        }
        require(_lines.getBounds().isEmpty() || _lines.getBounds().isFinite(), "the bounds of lines are finite");
    }

    void changePoints()
    {
        const std::size_t point = _input.below(10), n = _points.size();
        switch (_input.below(8))
        {
        case 0:
            require(_points.setColor(point, takeColor()) == (point < n), "a point that there is takes a colour");
            break;
        case 1:
            require(_points.setSize(point, takeNumber()) == (point < n), "a point that there is takes a size");
            break;
        case 2:
            _points.setPlace(point, takeVector());
            break;
        case 3:
            _points.setLook({.shape = takeBool() ? Points3::Shape::Disc : Points3::Shape::Sphere,
                             .size = takeNumber(),
                             .unit = takeBool() ? Unit::Points : Unit::Model,
                             .shininess = takeNumber()});
            break;
        case 4:
            _points.setLight({.kind = takeBool() ? Light::Kind::Camera : Light::Kind::Sun,
                              .direction = takeVector(),
                              .color = takeColor(),
                              .ambient = takeNumber()});
            break;
        default:
        {
            const std::vector<glm::dvec3> places = takeVectors();
            const auto colors = takeForEach<td::Color>(places.size(), [this] { return takeColor(); });
            const auto sizes =
                takeForEach<float>(places.size(), [this] { return static_cast<float>(_input.take<std::int8_t>()); });
            require(_points.set(places, colors, sizes) || _points.size() == n, "what is refused changes nothing");
        }
        }
        require(_points.getBounds().isEmpty() || _points.getBounds().isFinite(), "the bounds of points are finite");
    }

    Instances::Placement takePlacement()
    {
        Instances::Placement placement{.position = takeVector()};
        if (takeBool())
            placement.rotation = {takeNumber(), takeNumber(), takeNumber(), takeNumber()};
        if (takeBool())
            placement.scale = takeVector();
        return placement;
    }

    void changeInstances()
    {
        const std::size_t instance = _input.below(10), n = _instances.size();
        switch (_input.below(8))
        {
        case 0:
        {
            Mesh mesh;
            mesh.positions = takeVectors();
            for (std::uint32_t i = 0; mesh.positions.size() >= 3 && i + 2 < mesh.positions.size(); ++i)
                mesh.indices.insert(mesh.indices.end(), {0, i + 1, i + 2});
            require(_instances.setMesh(mesh) == mesh.findFault().empty(), "what has no fault is taken");
            break;
        }
        case 1:
            _instances.setPlacement(instance, takePlacement());
            break;
        case 2:
            _instances.setScale(instance, takeVector());
            break;
        case 3:
            require(_instances.setVisible(instance, takeBool()) == (instance < n), "an instance can be hidden");
            break;
        case 4:
            _instances.setTolerance(takeNumber());
            break;
        case 5:
            _instances.add(takePlacement(), takeColor());
            break;
        default:
        {
            std::vector<Instances::Placement> placements(_input.below(6));
            for (Instances::Placement& placement : placements)
                placement = takePlacement();
            const auto colors = takeForEach<td::Color>(placements.size(), [this] { return takeColor(); });
            require(_instances.set(placements, colors) || _instances.size() == n, "what is refused changes nothing");
        }
        }
        require(_instances.getBounds().isEmpty() || _instances.getBounds().isFinite(),
                "the bounds of instances are finite");
    }

    TextStyle takeTextStyle() { return {.size = takeBool() ? 10 : takeNumber(), .paint = takeColor()}; }

    void changeLabels()
    {
        const Labels3::ID id = _input.below(8);
        switch (_input.below(8))
        {
        case 0:
            _labels.move(id, takeVector());
            break;
        case 1:
            _labels.remove(id);
            break;
        case 2:
            _labels.setWanted(id, takeBool());
            break;
        case 3:
            _labels.setMargin(takeNumber());
            break;
        case 4:
            _labels.setFaintness(takeNumber());
            break;
        default:
        {
            Label3 look{.offset = takePlace(),
                        .priority = takeNumber(),
                        .extent = takeNumber(),
                        .behind = static_cast<Behind>(_input.below(3)),
                        .tolerance = takeNumber()};
            if (takeBool())
                look.leader = Leader{
                    .width = takeNumber(), .end = static_cast<Leader::End>(_input.below(3)), .endSize = takeNumber()};
            if (takeBool())
                look.frame = TextFrame{.width = takeNumber(), .padding = takeNumber(), .radius = takeNumber()};
            const glm::dvec3 at = takeVector();
            const Labels3::ID added = _labels.add(at, _input.text(_input.below(6)), takeTextStyle(), look);
            const bool isOffset = std::isfinite(look.offset.x) && std::isfinite(look.offset.y);
            require((added != 0) == (isFinite(at) && isOffset), "a label stands at a point");
        }
        }
    }

    void changeDimensions()
    {
        const DimensionStyle style{.text = takeTextStyle(),
                                   .width = takeNumber(),
                                   .arrow = takeNumber(),
                                   .gap = takeNumber(),
                                   .overshoot = takeNumber(),
                                   .hasExtensions = takeBool(),
                                   .place = takeBool() ? DimensionStyle::Text::InLine : DimensionStyle::Text::AboveLine,
                                   .factor = takeNumber(),
                                   .decimals = _input.take<std::int8_t>(),
                                   .keepsZeros = takeBool(),
                                   .behind = static_cast<Behind>(_input.below(3)),
                                   .tolerance = takeNumber()};
        const glm::dvec3 a = takeVector(), b = takeVector(), c = takeVector();
        Dimensions3::ID id = 0;
        switch (_input.below(8))
        {
        case 0:
            id = _dimensions.addLinear(a, b, c, style);
            break;
        case 1:
            id = _dimensions.addLinearAlong(a, b, c, takeVector(), style);
            break;
        case 2:
            id = _dimensions.addRadius(a, b, takeNumber(), c, style);
            break;
        case 3:
            id = _dimensions.addDiameter(a, b, takeNumber(), c, style);
            break;
        case 4:
            id = _dimensions.addAngle(a, b, c, takeNumber(), style);
            break;
        case 5:
            _dimensions.remove(_input.below(8));
            break;
        case 6:
            _dimensions.setFaintness(takeNumber());
            break;
        default:
            _dimensions.setWanted(_input.below(8), takeBool());
        }
        require(id == 0 || _dimensions.getValue(id) > 0, "what is measured is some length");
    }

    void askGlobe()
    {
        const Globe globe{std::ldexp(1 + _input.below(255), static_cast<int>(_input.below(64)) - 32)};
        std::vector<Globe::Place> places(_input.below(6));
        for (Globe::Place& place : places)
            place = {takeNumber(), takeNumber()};
        for (const glm::dvec3& point : globe.getLine(places))
            require(std::abs(glm::length(point) / globe.radius - 1) < 0.001, "a line lies on the ground");
        const Globe::Place place = globe.getPlace(takeVector());
        require(!(std::abs(place.x) > 180) && !(std::abs(place.y) > 90), "a place is on the globe");
        globe.meet({takeVector(), takeVector()});
        Path area;
        for (const Globe::Place& corner : places)
            area.lineTo(corner);
        globe.findRoom(area.close());
        Globe::getText(place, _input.take<std::int8_t>());
    }

    void doNext()
    {
        switch (_input.below(12))
        {
        case 0:
        case 1:
            return changeLines();
        case 2:
            return changePoints();
        case 3:
            return changeInstances();
        case 4:
            return changeLabels();
        case 5:
            return changeDimensions();
        case 6:
            return askGlobe();
        case 7:
            _clipping = Clipping(takeBool() ? Clipping::Kind::Cut : Clipping::Kind::Notch);
            for (unsigned int n = _input.below(4); n > 0; --n)
                _clipping.add(takeVector(), takeVector());
            return;
        default:
            return moveCamera();
        }
    }

    void draw()
    {
        DepthCanvas canvas(static_cast<Eye::Depth>(_input.below(3)));
        Eye eye = canvas.getEye(_camera, takeBool() ? 1 : takeNumber());
        eye.setClipping(_clipping);
        _probe.begin(eye);
        {
            DepthCanvas::Frame frame(canvas, eye);
            while (const Eye* const pEye = frame.next())
            {
                _instances.draw(*pEye);
                _lines.draw(*pEye);
                _points.draw(*pEye);
            }
        }
        _probe.ask(eye);
        _labels.draw(eye);
        _dimensions.draw(eye);
        _labels.pick(takePlace());
        glClearColor(0, 0, 0, 0);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        Eye plain = _camera.getEye();
        plain.setClipping(_clipping);
        _points.drawIds(plain);
        _instances.drawIds(plain, 1000);
        _lines.drawIds(plain, 2000);
        require(glGetError() == GL_NO_ERROR, "GL has no error");
    }

    OrbitCamera _camera{takeBool() ? OrbitCamera::Up::Y : OrbitCamera::Up::Z};
    DepthProbe _probe;
    Polylines3 _lines;
    Points3 _points;
    Instances _instances;
    Labels3 _labels{_probe};
    Dimensions3 _dimensions{_probe};
    Clipping _clipping;
};

void run(const std::uint8_t* bytes, std::size_t nBytes)
{
    static gui::gl::OffscreenContext s_context({cSize, cSize}, gui::gl::Context(gui::gl::DepthBuffer::Size::Bits24,
                                                                                gui::gl::StencilBuffer::Size::None,
                                                                                gui::gl::Context::Profile::Core41));
    Input input(bytes, nBytes);
    const Quiet quiet;
    SpaceWorld(input).live();
    require(quiet.nAsserts == 0, "nothing of that is an assertion");
}

const Target cTarget("space", run);

} // namespace

} // namespace fuzz::space
