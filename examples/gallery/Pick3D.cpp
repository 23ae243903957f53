// Look for: the triangle under the pointer and its neighbours, as in the loupe; a ray through the shell, with a dot
// where it goes in or out; what a lasso has caught. Alt and a drag draw one; a drag turns the shell.

#include "Board.h"
#include "Scenes.h"
#include "Shell.h"
#include "Stage.h"

#include <gui/InputDevice.h>
#include <gui/Key.h>
#include <gui/draw/OrbitControl.h>
#include <gui/gl/gl.h>

#include <epoxy/gl.h>

#include <glm/common.hpp>
#include <glm/geometric.hpp>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numbers>

namespace gallery
{

namespace
{

using gui::draw::Affine;
using gui::draw::Drawing;
using gui::draw::Eye;
using gui::draw::OrbitCamera;
using gui::draw::Path;
using gui::draw::Ray;
using gui::draw::TriangleIndex;
using gui::gl::Buffer;
using gui::gl::Context;
using Point = Drawing::Point;
using Rect = Drawing::Rect;

constexpr td::Color cPicked = "#ffd166", cCaught = "#4cc9f0", cProbe = "#ff6b6b";

/// A shell that answers to a pointer, a lasso and a ray.
class Pick3D : public Scene
{
public:
    bool init() override
    {
        const std::vector<Shell::Vertex>& vertices = _shell.getVertices();
        const std::vector<std::uint32_t>& indices = _shell.getIndices();
        _surface.appendRecords(vertices.data(), vertices.size());
        _surface.appendIndices(indices.data(), indices.size());
        gui::gl::Command* const pCommand = _surface.createCommand();
        pCommand->createDrawElements(gui::gl::Primitive::Triangles, 0, static_cast<unsigned int>(indices.size()));
        _surface.encode(pCommand);
        _program.setBuffer(&_surface);
        _caughtProgram.setBuffer(&_caughtSurface);
        _lettering.init();
        _camera.setInertia(0); // time stands still here
        reset();
        _control.setGizmo(gui::draw::OrbitControl::Corner::None);
        _control.setPick([this](const Point& point) { return placeAt(point); });
        return _backdrop.init() && _program.link() && _caughtProgram.link() && _surface.commit();
    }

    void enter(Stage& stage) override
    {
        _pStage = &stage;
        _control.setOnChange([this] { _pStage->redraw(); });
    }

    void draw(const Frame& frame) override
    {
        layOut(frame);
        _backdrop.draw(frame, {{_view, _loupe, _list}});
        _notes.clear();
        _inLoupe.clear();
        if (!_lettering.begin(frame))
            return;
        const double height = cLoupe * _loupe.height / _loupe.width;
        const Rect seen(_pointer.x - cLoupe, _pointer.y - height, _pointer.x + cLoupe, _pointer.y + height);
        const Affine toView = Affine::translation(_view.left, _view.top);
        const Affine toLoupe =
            Affine::scaling(_loupe.width / (2 * cLoupe)) * Affine::translation(-seen.left, -seen.top);
        addLasso(toView);
        addProbe(toView);
        addPicked(toView, toLoupe);
        addFrames(toView.map({seen.left, seen.top}), toView.map({seen.right, seen.bottom}));
        drawIn(_view, frame, [&] { drawShell(_eye); });
        drawIn(_loupe, frame,
               [&]
               {
                   drawShell(_eye.getPart(seen));
                   Context::disable(Context::Flag::DepthTest);
                   _inLoupe.draw(Affine(), frame.scale);
               });
        _notes.draw(Affine(), frame.scale);
        _lettering.draw();
    }

    void onPointer(PointerEvent event, const gui::InputDevice& device) override
    {
        const Point& framePoint = device.getFramePoint();
        const Point point(framePoint.x - _view.left, framePoint.y - _view.top);
        const gui::InputDevice inView = movedTo(event == PointerEvent::Scrolled ? framePoint : point, device);
        if (event == PointerEvent::Pressed && gui::isAltPressed(device.getKeyboardModifiers()))
        {
            _lasso = {point};
            _isDrawing = true;
        }
        else if (_isDrawing && event == PointerEvent::Dragged)
            _lasso.push_back(point);
        else if (_isDrawing && event == PointerEvent::Released)
        {
            _isDrawing = false;
            takeLasso();
        }
        else if (event == PointerEvent::Pressed)
            _control.onPressed(inView);
        else if (event == PointerEvent::Dragged)
            _control.onDragged(inView);
        else if (event == PointerEvent::Released)
            _control.onReleased(inView);
        else if (event == PointerEvent::Scrolled)
            _control.onScroll(inView);
        else if (event == PointerEvent::Zoomed)
            _control.onZoom(inView);
        if (event == PointerEvent::Moved || event == PointerEvent::Dragged)
            _pointer = point;
        _pStage->redraw();
    }

    bool onKey(const gui::Key& key, bool isDown) override
    {
        if (isDown && (key.getChar() == '0' || key.getChar() == 'l'))
            reset();
        else if (!isDown || key.isVirtual() || !_control.onKey(key))
            return false;
        _camera.advance(10); // to where it would fly
        _pStage->redraw();
        return true;
    }

private:
    static constexpr double cLoupe = 26; // points of the view to either side

    void reset()
    {
        _camera.setProjection(OrbitCamera::Projection::Perspective);
        _camera.setDirection(24, 14);
        _camera.fit(_shell.getIndex().getBounds(), 0);
        _isPlaced = false;
    }

    // As if the view were all there is.
    gui::InputDevice movedTo(const Point& point, const gui::InputDevice& device) const
    {
        gui::InputDevice moved(point, point, point, device.getKeyboardModifiers(), device.getType(),
                               device.getButton());
        gui::InputDeviceHelper helper(&moved);
        helper.setScale(device.getScale());
        helper.setPlace({device.getPlace().x - _view.left, device.getPlace().y - _view.top});
        return moved;
    }

    void layOut(const Frame& frame)
    {
        constexpr float cMargin = 24, cGap = 16;
        const auto width = static_cast<float>(frame.size.width), height = static_cast<float>(frame.size.height);
        const float side = std::min(272.0F, 0.3F * width); // of the panels at the right
        const float left = width - cMargin - side, inner = height - 2 * cMargin;
        _view = {cMargin, cMargin, left - cGap - cMargin, inner};
        _loupe = {left, cMargin, side, std::min(1.25F * side, 0.65F * inner)};
        _list = {left, cMargin + _loupe.height + cGap, side, inner - cGap - _loupe.height};
        _camera.setSize({_view.width, _view.height});
        _eye = _camera.getEye(frame.scale);
        if (!_isPlaced)
        {
            _camera.zoom(_camera.getTarget(), 1.3);
            _eye = _camera.getEye(frame.scale);
            _lasso.clear();
            _pointer = {_view.width * 0.60, _view.height * 0.56};
            for (int i = 0; i < 60; ++i)
            {
                const double a = 2 * std::numbers::pi * i / 60,
                             radius = 62 + 10 * std::sin(3 * a) + 5 * std::cos(5 * a);
                _lasso.emplace_back(_view.width * 0.36 + radius * 1.15 * std::cos(a),
                                    _view.height * 0.66 + radius * std::sin(a));
            }
            takeLasso();
            _isPlaced = true;
        }
    }

    std::optional<glm::dvec3> placeAt(const Point& point) const
    {
        const auto hit = _shell.getIndex().getNearest(_eye.getRay(point));
        return hit ? std::optional(hit->point) : std::nullopt;
    }

    /// Those triangles once more, in another colour: of what the lasso has, what faces the eye.
    void takeLasso()
    {
        _caught = _shell.getIndex().getWithin(_eye, _lasso);
        _caughtSurface.reset();
        const glm::vec3 color = glm::vec3(cCaught.red(), cCaught.green(), cCaught.blue()) / 255.0F;
        for (const std::uint32_t triangle : _caught)
            for (std::size_t k = 0; k < 3; ++k)
            {
                Shell::Vertex vertex = _shell.getVertices()[_shell.getIndices()[3 * triangle + k]];
                const float light = std::min(glm::dot(vertex.color, glm::vec3(0.33F)), 0.75F);
                vertex.color = glm::mix(vertex.color, color * (0.25F + light), 0.72F);
                _caughtSurface.appendRecords(&vertex, 1);
            }
        if (!_caught.empty())
        {
            gui::gl::Command* const pCommand = _caughtSurface.createCommand();
            pCommand->createDrawArrays(gui::gl::Primitive::Triangles, 0, static_cast<unsigned int>(3 * _caught.size()));
            _caughtSurface.encode(pCommand);
        }
        _isCaughtShown = !_caught.empty() && _caughtSurface.commit();
    }

    template <typename Draw>
    static void drawIn(const Cell& cell, const Frame& frame, const Draw& draw)
    {
        const gui::gl::StateGuard guard; // of the viewport, among others
        const auto pixels = [&](float points)
        { return static_cast<int>(std::lround(static_cast<double>(points) * frame.scale)); };
        const auto height = static_cast<float>(frame.size.height);
        glViewport(pixels(cell.left), pixels(height - cell.top - cell.height), pixels(cell.width), pixels(cell.height));
        Context::enable(Context::Flag::DepthTest);
        Context::setDepthBufferFunction(gui::gl::DepthBuffer::Function::LessOrEqual);
        Context::clear(Context::Clear::Depth);
        draw();
    }

    void drawShell(const Eye& eye)
    {
        const auto drawWith = [&](gui::gl::Color3DProgram& program)
        {
            program.activate();
            program.setMVP(eye.getMatrix());
            program.execute();
            program.deActivate();
        };
        drawWith(_program);
        if (_isCaughtShown)
            drawWith(_caughtProgram);
    }

    Path pathOf(std::uint32_t triangle, const Affine& map) const
    {
        Path path;
        for (std::size_t k = 0; k < 3; ++k)
        {
            const auto at = _eye.project(_shell.getCorner(triangle, k));
            if (!at)
                return {};
            const Point corner = map.map({at->x, at->y});
            k == 0 ? path.moveTo(corner) : path.lineTo(corner);
        }
        return path.close();
    }

    void addPicked(const Affine& toView, const Affine& toLoupe)
    {
        const auto hit = _shell.getIndex().getNearest(_eye.getRay(_pointer));
        char text[200] = "nothing under the pointer";
        if (hit)
        {
            std::vector<std::uint32_t> around{hit->index};
            for (int ring = 0; ring < 7; ++ring)
            {
                td::Color color = cPicked;
                color.setAlpha(static_cast<unsigned int>(200 * std::pow(0.72, ring)));
                Path large, small;
                for (const std::uint32_t triangle : around)
                    if (isFacing(triangle))
                    {
                        large.addPath(pathOf(triangle, toLoupe));
                        small.addPath(pathOf(triangle, toView));
                    }
                _inLoupe.stroke(large, {.width = 1, .join = gui::draw::Join::Round}, color);
                if (ring > 0 && ring < 4)
                    _notes.stroke(small, {.width = 0.6, .join = gui::draw::Join::Round}, color);
                around = _shell.getAround(around);
            }
            _notes.fill(pathOf(hit->index, toView), cPicked);
            const Path triangle = pathOf(hit->index, toLoupe);
            _inLoupe.fill(triangle, "#ffd166a0");
            _inLoupe.stroke(triangle, {.width = 2.5, .join = gui::draw::Join::Round}, cPicked);
            const Path dot = Path().addCircle(toLoupe.map(_pointer), 4.5);
            _inLoupe.fill(dot, "#20140a");
            _inLoupe.stroke(dot, {.width = 1.5}, "#ffffff");
            for (std::size_t k = 0; k < 3; ++k)
                addWeight(*hit, k, toLoupe);
            std::snprintf(text, sizeof text, "triangle %u of %zu\nx %.4f   y %.4f   z %.4f", hit->index,
                          _shell.getIndex().size(), hit->point.x, hit->point.y, hit->point.z);
        }
        const float bottom = _loupe.top + _loupe.height;
        _notes.fill(Path().addRect({_loupe.left, bottom - 48, _loupe.left + _loupe.width, bottom}), "#0d1220d8");
        _lettering.add({_loupe.left + 14, bottom - 29}, text, {0, td::ColorID::AliceBlue, gui::gl::Font::cLeft, 18});
    }

    // How much of the point a corner is.
    void addWeight(const TriangleIndex::Hit& hit, std::size_t corner, const Affine& toLoupe)
    {
        const auto at = _eye.project(_shell.getCorner(hit.index, corner));
        if (!at)
            return;
        const Point place = toLoupe.map({at->x, at->y}), from = toLoupe.map(_pointer);
        _inLoupe.fill(Path().addCircle(place, 3.5), "#ffffff");
        const double length = std::hypot(place.x - from.x, place.y - from.y) + 1e-9;
        const Point label(
            std::clamp(place.x + (place.x - from.x) / length * 26, 20.0, std::max(20.0, _loupe.width - 20.0)),
            std::clamp(place.y + (place.y - from.y) / length * 20, 14.0, std::max(14.0, _loupe.height - 62.0)));
        char text[16];
        std::snprintf(text, sizeof text, "%.2f", hit.weights[static_cast<int>(corner)]);
        Path plate;
        plate.addRoundedRect({label.x - 17, label.y - 9, label.x + 17, label.y + 9}, {5, 5});
        _inLoupe.fill(plate, "#0d1220d0");
        _lettering.add({_loupe.left + label.x, _loupe.top + label.y + 4.5}, text,
                       {0, td::ColorID::White, gui::gl::Font::cCentre});
    }

    bool isFacing(std::uint32_t triangle) const
    {
        const glm::dvec3 a = _shell.getCorner(triangle, 0), b = _shell.getCorner(triangle, 1),
                         c = _shell.getCorner(triangle, 2);
        return glm::dot(glm::cross(b - a, c - a), _eye.getPosition() - a) > 0;
    }

    void addLasso(const Affine& toView)
    {
        if (_lasso.size() < 2)
            return;
        Path path;
        for (std::size_t i = 0; i < _lasso.size(); ++i)
            i == 0 ? path.moveTo(toView.map(_lasso[i])) : path.lineTo(toView.map(_lasso[i]));
        if (!_isDrawing)
            path.close();
        _notes.stroke(path, {.width = 2, .join = gui::draw::Join::Round, .dashes = {7, 5}}, cCaught);
    }

    // A ray of the model's, seen from outside: where it meets the shell, and in which order.
    void addProbe(const Affine& toView)
    {
        const Ray ray{{-1.9, 0.42, 0.75}, glm::normalize(glm::dvec3(3.5, -0.78, -0.85))};
        const std::vector<TriangleIndex::Hit> hits = _shell.getIndex().getAll(ray);
        const auto isSeen = [&](const glm::dvec3& place)
        {
            const auto at = _eye.project(place);
            const auto hit = at ? _shell.getIndex().getNearest(_eye.getRay({at->x, at->y})) : std::nullopt;
            return !hit || _eye.getDistance(hit->point) > at->z - 0.01;
        };
        const auto addLine = [&](double from, double to)
        {
            // Faint where something is before it.
            constexpr int cParts = 12;
            for (int i = 0; i < cParts; ++i)
            {
                const glm::dvec3 a = ray.at(from + (to - from) * i / cParts),
                                 b = ray.at(from + (to - from) * (i + 1) / cParts);
                const auto start = _eye.project(a), end = _eye.project(b);
                if (start && end)
                    _notes.stroke(Path().moveTo(toView.map({start->x, start->y})).lineTo(toView.map({end->x, end->y})),
                                  {.width = 2}, isSeen((a + b) * 0.5) ? "#ff6b6bff" : "#ff6b6b48");
            }
        };
        double before = 0.5;
        std::string list = "A ray meets the shell";
        int n = 0;
        for (const TriangleIndex::Hit& hit : hits)
        {
            addLine(before, hit.distance);
            before = hit.distance;
            char text[96];
            std::snprintf(text, sizeof text, "\n%2d   %.3f   %s   triangle %u", ++n, hit.distance,
                          hit.isFront ? "in " : "out", hit.index);
            if (n <= 10)
                list += text;
        }
        addLine(before, 3.5);
        for (const TriangleIndex::Hit& hit : hits)
            if (const auto at = _eye.project(hit.point))
            {
                const Path dot = Path().addCircle(toView.map({at->x, at->y}), 4.5);
                _notes.fill(dot, isSeen(hit.point) ? cProbe : td::Color("#ff6b6b30"));
                _notes.stroke(dot, {.width = 1.2}, isSeen(hit.point) ? "#ffffff" : "#ffffff70");
            }
        _lettering.add({_list.left + 14, _list.top + 28}, list, {0, td::ColorID::LightPink, gui::gl::Font::cLeft, 19});
        char caught[64];
        std::snprintf(caught, sizeof caught, "%zu triangles are within the lasso", _caught.size());
        _lettering.add({_list.left + 14, _list.top + _list.height - 18}, caught, {0, td::ColorID::SkyBlue});
    }

    // What the loupe shows, and where from.
    void addFrames(const Point& from, const Point& to)
    {
        _notes.stroke(Path().addRect({from.x, from.y, to.x, to.y}), {.width = 1}, cPicked);
        _notes.stroke(Path().moveTo({to.x, from.y}).lineTo({_loupe.left, _loupe.top + _loupe.height}), {.width = 1},
                      "#ffd16680");
        _notes.stroke(Path().addRect({_loupe.left, _loupe.top, _loupe.left + _loupe.width, _loupe.top + _loupe.height}),
                      {.width = 1.5}, cPicked);
    }

    Stage* _pStage = nullptr;
    Backdrop _backdrop;
    Lettering _lettering{{{"sans", 12}}};
    Shell _shell;
    Buffer _surface{gui::gl::DataType::Vec3, gui::gl::DataType::Vec4};
    Buffer _caughtSurface{gui::gl::DataType::Vec3, gui::gl::DataType::Vec4};
    gui::gl::Color3DProgram _program;
    gui::gl::Color3DProgram _caughtProgram;
    OrbitCamera _camera;
    gui::draw::OrbitControl _control{_camera};
    Drawing _notes;   // over it, in points of the frame
    Drawing _inLoupe; // in the loupe's
    Cell _view{}, _loupe{}, _list{};
    Eye _eye;
    Point _pointer;
    std::vector<Point> _lasso;
    std::vector<std::uint32_t> _caught;
    bool _isCaughtShown = false;
    bool _isDrawing = false;
    bool _isPlaced = false;
};

} // namespace

std::unique_ptr<Scene> makePick3D() { return std::make_unique<Pick3D>(); }

} // namespace gallery
