// Look for: the thread of a screw as sharp as the whole site, ten thousand kilometres from the origin; the shape under
// the pointer, and no other, in another colour.

#include "Board.h"
#include "Scenes.h"
#include "Site.h"
#include "Stage.h"

#include <gui/InputDevice.h>
#include <gui/Key.h>
#include <gui/gl/gl.h>

#include <epoxy/gl.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace gallery
{

namespace
{

using gui::draw::Affine;
using gui::draw::Drawing;
using gui::draw::Path;
using gui::gl::Font;
using ID = Drawing::ID;
using Point = Drawing::Point;

constexpr double cMinZoom = 0.5, cMaxZoom = 2e6; // points per metre
constexpr td::Color cHovered = "#ffd166", cSelected = "#ff8a5b";

/// What of the plane is shown: a point of it in the middle, and points per metre. North is up.
struct Look
{
    Point center;
    double zoom;

    Affine in(const td::Size<double>& size) const
    {
        return Affine::translation(size.width / 2, size.height / 2) * Affine::scaling(zoom, -zoom) *
               Affine::translation(-center.x, -center.y);
    }
};

/// A window of the sheet that always shows a detail.
struct Loupe
{
    const char* caption;
    Look look;
};

/// The plan of a site to pan and zoom, with details beside it.
class Blueprint : public Scene
{
public:
    bool init() override
    {
        lookAtAll();
        _lettering.init();
        return true;
    }

    void enter(Stage& stage) override { _pStage = &stage; }

    void draw(const Frame& frame) override
    {
        using namespace gui::gl;
        _size = frame.size;
        Context::clear(Context::Clear::Color, "#0d3560");
        const Affine toPoints = _look.in(_size);
        _site.draw(toPoints, frame.scale);
        _notes.clear();
        if (_lettering.begin(frame))
        {
            for (std::size_t i = 0; i < std::size(_loupes) && _size.width > 600; ++i)
                drawLoupe(_loupes[i], cellOf(i), toPoints, frame);
            addTitle();
        }
        _notes.draw(Affine(), frame.scale);
        _lettering.draw();
    }

    void onPointer(PointerEvent event, const gui::InputDevice& device) override
    {
        const Point& point = device.getFramePoint();
        if (event == PointerEvent::Dragged)
        {
            moveBy(point.x - _pointer.x, point.y - _pointer.y);
            _isClick = false;
        }
        else if (event == PointerEvent::Scrolled)
            moveBy(point.x, point.y);
        else if (event == PointerEvent::Zoomed)
            zoomBy(device.getScale(), point);
        else if (event == PointerEvent::Pressed)
            _isClick = true;
        else if (event == PointerEvent::Released && _isClick)
            select(pickAt(point));
        else if (event == PointerEvent::Moved)
            hover(pickAt(point));
        else if (event == PointerEvent::Exited)
            hover(0);
        if (event != PointerEvent::Scrolled)
            _pointer = point;
    }

    bool onKey(const gui::Key& key, bool isDown) override
    {
        const Point middle{_size.width / 2, _size.height / 2};
        const char character = key.getChar();
        if (!isDown)
            return false;
        if (character == '+' || character == '=')
            zoomBy(1.5, middle);
        else if (character == '-')
            zoomBy(1 / 1.5, middle);
        else if (character == '0' || character == 'l')
            lookAtAll();
        else if (character == 's')
            _look = _loupes[1].look;
        else
            return false;
        _pStage->redraw();
        return true;
    }

private:
    static constexpr double cMargin = 24, cLoupeWidth = 300;

    void lookAtAll()
    {
        const double width = _size.width - cLoupeWidth - 2 * cMargin, height = _size.height;
        _look.zoom = std::max(std::min(width / Site::cWidth, height / Site::cHeight) * 0.94, cMinZoom);
        // The site's middle is in the middle of what the loupes leave.
        _look.center = {Site::cEast + Site::cWidth / 2 + (cLoupeWidth + cMargin) / 2 / _look.zoom,
                        Site::cNorth + Site::cHeight / 2 + 6};
    }

    void moveBy(double x, double y)
    {
        _look.center = {_look.center.x - x / _look.zoom, _look.center.y + y / _look.zoom};
        _pStage->redraw();
    }

    // What is under the point stays there.
    void zoomBy(double factor, Point point)
    {
        const double x = point.x - _size.width / 2, y = point.y - _size.height / 2;
        const double zoom = std::clamp(_look.zoom * factor, cMinZoom, cMaxZoom);
        _look.center.x += x / _look.zoom - x / zoom;
        _look.center.y -= y / _look.zoom - y / zoom;
        _look.zoom = zoom;
        _pStage->redraw();
    }

    ID pickAt(Point point) const
    {
        const Affine toPoints = _look.in(_size);
        const auto toModel = toPoints.inverse();
        return toModel ? _site.pick(toPoints, toModel->map(point), 3 / _look.zoom) : 0;
    }

    void hover(ID id)
    {
        if (id == _hovered)
            return;
        const ID before = std::exchange(_hovered, id);
        color(before);
        color(id);
        _pStage->redraw();
    }

    void select(ID id)
    {
        const ID before = std::exchange(_selected, id);
        color(before);
        color(id);
        const Site::Shape* const pShape = _site.find(id);
        _pStage->setNote(pShape != nullptr ? pShape->name : "");
        _pStage->redraw();
    }

    void color(ID id)
    {
        const Site::Shape* const pShape = _site.find(id);
        if (pShape == nullptr)
            return;
        td::Color color = id == _selected ? cSelected : id == _hovered ? cHovered : pShape->color;
        if (pShape->color.alpha() < 255)
            color.setAlpha(id == _selected || id == _hovered ? 220U : pShape->color.alpha());
        _site.setColor(id, color);
    }

    Cell cellOf(std::size_t nth) const
    {
        const auto width = static_cast<float>(cLoupeWidth), margin = static_cast<float>(cMargin);
        const auto height = static_cast<float>((_size.height - 3 * cMargin - 96) / 2);
        return {static_cast<float>(_size.width) - margin - width, margin + static_cast<float>(nth) * (height + margin),
                width, height};
    }

    void drawLoupe(const Loupe& loupe, const Cell& cell, const Affine& toPoints, const Frame& frame)
    {
        using namespace gui::gl;
        {
            const StateGuard guard; // of the viewport, among others
            const auto pixels = [&](double points) { return static_cast<int>(std::lround(points * frame.scale)); };
            const int left = pixels(cell.left), bottom = pixels(_size.height - cell.top - cell.height);
            glViewport(left, bottom, pixels(cell.width), pixels(cell.height));
            glScissor(left, bottom, pixels(cell.width), pixels(cell.height));
            Context::enable(Context::Flag::ScissorTest);
            Context::clear(Context::Clear::Color, "#0d3560");
            _site.draw(loupe.look.in({cell.width, cell.height}), frame.scale);
        }
        // A line from the place in the plan to the loupe.
        const Point place = toPoints.map(loupe.look.center);
        const double y = std::clamp<double>(place.y, cell.top, cell.top + cell.height);
        _notes.stroke(Path().addCircle(place, 4).moveTo({place.x + 4, place.y}).lineTo({cell.left, y}), {.width = 1},
                      "#ffd166");
        const Drawing::Rect border{cell.left, cell.top, cell.left + cell.width, cell.top + cell.height};
        _notes.stroke(Path().addRect(border), {.width = 1.5}, "#ffd166");
        _notes.fill(Path().addRect({border.left, border.bottom - 24, border.right, border.bottom}), "#0a2747e0");
        _lettering.add({border.left + 10, border.bottom - 8}, loupe.caption, {0, td::ColorID::Moccasin});
    }

    void addTitle()
    {
        const double right = _size.width - cMargin, bottom = _size.height - cMargin, left = right - cLoupeWidth;
        const Drawing::Rect box{left, bottom - 72, right, bottom};
        _notes.fill(Path().addRect(box), "#0a2747");
        _notes.stroke(Path().addRect(box), {.width = 1.5}, "#bfe0ff");
        const Site::Shape* const pShape = _site.find(_selected);
        const Point place = _look.in(_size).inverse().value_or(Affine()).map(_pointer);
        char text[160];
        const double scale = cPointsPerMetre / _look.zoom;
        std::snprintf(text, sizeof text, "%zu shapes, %.4g : %.4g\nE %.4f   N %.4f\nSelected: %s",
                      _site.getNumberOfShapes(), std::max(1 / scale, 1.0), std::max(scale, 1.0), place.x, place.y,
                      pShape != nullptr ? pShape->name : "nothing");
        _lettering.add({box.left + 12, box.top + 22}, text, {0, td::ColorID::AliceBlue, Font::cLeft, 19});
    }

    static constexpr double cPointsPerMetre = 96 / 0.0254;

    Stage* _pStage = nullptr;
    Site _site;
    Drawing _notes; // over it, in points of the frame
    Lettering _lettering{{{"sans", 12}}};
    td::Size<double> _size = Board::cSize;
    Look _look{};
    const Loupe _loupes[2] = {
        {"An office, 1 : 125", {Site::getRoom(), cPointsPerMetre / 125}},
        {"A screw in a watch, 25 : 1", {{Site::getScrew().x, Site::getScrew().y - 0.00013}, cPointsPerMetre * 25}}};
    Point _pointer;
    bool _isClick = false;
    ID _hovered = 0;
    ID _selected = 0;
};

} // namespace

std::unique_ptr<Scene> makeBlueprint() { return std::make_unique<Blueprint>(); }

} // namespace gallery
