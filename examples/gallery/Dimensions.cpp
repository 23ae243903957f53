// Look for: arrows whose tips end on the extension lines, gaps before what is measured, numbers in the middle of their
// lines; all of it as large and as thin at every zoom, and a scale bar that says how large that is.

#include "Board.h"
#include "Scenes.h"
#include "Stage.h"

#include <gui/InputDevice.h>
#include <gui/Key.h>
#include <gui/draw/draw.h>
#include <gui/gl/gl.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <string>

namespace gallery
{

namespace
{

using gui::draw::Affine;
using gui::draw::Anchor;
using gui::draw::Dimensions;
using gui::draw::DimensionStyle;
using gui::draw::Drawing;
using gui::draw::FillRule;
using gui::draw::Join;
using gui::draw::Path;
using gui::draw::ScaleBar;
using gui::draw::Stroke;
using gui::draw::TextFrame;
using Point = Drawing::Point;

/// A plate and the plan of a room, with what they measure.
class Dimensioned : public Scene
{
public:
    bool init() override
    {
        addPlate();
        addRoom();
        return true;
    }

    void enter(Stage& stage) override { _pStage = &stage; }

    void draw(const Frame& frame) override
    {
        gui::gl::Context::clear(gui::gl::Context::Clear::Color, cPaper);
        if (!(frame.size == _size))
        {
            _size = frame.size;
            showAll();
        }
        _drawing.draw(look(), frame.scale);
        _bar.draw(_size, _zoom, frame.scale);
    }

    void onPointer(PointerEvent event, const gui::InputDevice& device) override
    {
        const Point& point = device.getFramePoint();
        if (event == PointerEvent::Dragged)
            _center = {_center.x - (point.x - _pointer.x) / _zoom, _center.y + (point.y - _pointer.y) / _zoom};
        else if (event == PointerEvent::Zoomed)
            zoomBy(device.getScale(), point);
        else if (event == PointerEvent::Moved)
            point_(point);
        else
            return;
        _pointer = point;
        _pStage->redraw();
    }

    bool onKey(const gui::Key& key, bool isDown) override
    {
        const char character = key.getChar();
        if (!isDown)
            return false;
        if (character == '+' || character == '=')
            zoomBy(1.5, {_size.width / 2, _size.height / 2});
        else if (character == '-')
            zoomBy(1 / 1.5, {_size.width / 2, _size.height / 2});
        else if (character == '0')
            showAll();
        else
            return false;
        _pStage->redraw();
        return true;
    }

private:
    // In millimetres, at survey coordinates of a state.
    static constexpr Drawing::Rect cSheet{10'000'000 - 36, 5'000'000 - 52, 10'000'000 + 356, 5'000'000 + 120};
    static constexpr Point cCorner{10'000'000, 5'000'000};  // of the part, at its lower left
    static constexpr double cMinZoom = 0.5, cMaxZoom = 2e4; // points per millimetre
    static constexpr td::Color cInk = "#1c3f6e", cMeasure = "#a03c28", cHatch = "#8a9bb0", cPaper = "#fbfaf4";

    Affine look() const
    {
        return Affine::translation(_size.width / 2, _size.height / 2) * Affine::scaling(_zoom, -_zoom) *
               Affine::translation(-_center.x, -_center.y);
    }

    void showAll()
    {
        _center = {(cSheet.left + cSheet.right) / 2, (cSheet.top + cSheet.bottom) / 2};
        _zoom =
            std::max(std::min(_size.width / (cSheet.right - cSheet.left), _size.height / (cSheet.bottom - cSheet.top)),
                     cMinZoom);
    }

    // What is under the point stays there.
    void zoomBy(double factor, Point point)
    {
        const double x = point.x - _size.width / 2, y = point.y - _size.height / 2;
        const double zoom = std::clamp(_zoom * factor, cMinZoom, cMaxZoom);
        _center.x += x / _zoom - x / zoom;
        _center.y -= y / _zoom - y / zoom;
        _zoom = zoom;
    }

    // A dimension under the pointer is lit as a whole.
    void point_(Point point)
    {
        const Drawing::ID shape = _drawing.pick(look().inverse().value_or(Affine()).map(point), 3 / _zoom);
        const Drawing::ID group = _dimensions.getValue(_drawing.getGroup(shape)) > 0 ? _drawing.getGroup(shape) : 0;
        if (group == _lit)
            return;
        _drawing.setColor(_lit, cMeasure);
        _drawing.setColor(group, "#e8842c");
        _lit = group;
    }

    static Point at(double x, double y) { return {cCorner.x + x, cCorner.y + y}; }

    static DimensionStyle inLine()
    {
        DimensionStyle style;
        style.paint = style.text.paint = cMeasure;
        return style;
    }

    static DimensionStyle aboveLine()
    {
        DimensionStyle style = inLine();
        style.place = DimensionStyle::Text::AboveLine;
        return style;
    }

    void addPlate()
    {
        constexpr double cQuarter = std::numbers::pi / 2;
        const Path plate = Path()
                               .arc(at(12, 12), {12, 12}, 2 * cQuarter, cQuarter)
                               .lineTo(at(135, 0))
                               .lineTo(at(160, 25))
                               .arc(at(148, 88), {12, 12}, 0, cQuarter)
                               .arc(at(12, 88), {12, 12}, cQuarter, cQuarter)
                               .close();
        Path holes = Path().addCircle(at(64, 50), 25);
        for (const double angle : {0.5, 1.5, 2.5, 3.5})
            holes.addCircle(hole(angle * cQuarter), 5);
        holes.addRoundedRect({at(124, 36), at(136, 72)}, {6, 6});
        _drawing.fill(Path(plate).addPath(holes), "#e4ebf3", FillRule::EvenOdd);
        _drawing.stroke(Path(plate).addPath(holes), {.width = 1.8, .join = Join::Round}, cInk);
        const Stroke axis{.width = 0.8, .dashes = {12, 3, 2, 3}};
        _drawing.stroke(Path().moveTo(at(32, 50)).lineTo(at(96, 50)).moveTo(at(64, 4)).lineTo(at(64, 92)), axis, cInk);
        _drawing.stroke(Path().addCircle(at(64, 50), 38), axis, cInk);
        _drawing.stroke(Path().moveTo(at(130, 30)).lineTo(at(130, 78)), axis, cInk);

        const DimensionStyle usual = inLine(), above = aboveLine();
        _dimensions.addLinearAlong(at(0, 12), at(160, 25), {1, 0}, {0, -48}, usual);
        _dimensions.addLinearAlong(at(0, 12), at(64, 12), {1, 0}, {0, -36}, usual);
        _dimensions.addLinearAlong(at(135, 0), at(160, 25), {1, 0}, {0, -12}, usual);
        _dimensions.addLinearAlong(at(12, 0), at(12, 100), {0, 1}, {-26, 0}, above);
        _dimensions.addLinearAlong(at(160, 25), at(160, 88), {0, 1}, {14, 0}, above);
        _dimensions.addLinear(at(124, 66), at(136, 66), {0, 44}, usual);
        _dimensions.addRadius(at(148, 88), 12, {1, 1}, usual);
        _dimensions.addAngle(at(135, 0), {1, 0}, {1, 1}, 42, usual);
        DimensionStyle bore = usual;
        bore.frame = TextFrame{.fill = cPaper};
        _dimensions.addDiameter(at(64, 50), 25, {1, 0.45}, bore);
        DimensionStyle holes4 = usual;
        holes4.prefix = "4 \u00d7 ";
        _dimensions.addDiameter(hole(1.5 * cQuarter), 5, {-1, 0.8}, holes4);
        _dimensions.addLinear(at(135, 0), at(160, 25), {-8, 8}, above);
    }

    static Point hole(double angle) { return at(64 + 38 * std::cos(angle), 50 + 38 * std::sin(angle)); }

    // Six metres by four, fifty times smaller.
    void addRoom()
    {
        const double left = 218, bottom = 6, right = left + 120, top = bottom + 80, wall = 6;
        const Path walls = Path()
                               .addRect({at(left, bottom), at(right, top)})
                               .addRect({at(left + wall, bottom + wall), at(right - wall, top - wall)});
        const Path door = Path().addRect({at(left + 30, bottom - 1), at(left + 50, bottom + wall + 1)});
        _drawing.stroke(walls.hatched({.spacing = 2.2, .rule = FillRule::EvenOdd}), {.width = 0.8}, cHatch);
        _drawing.stroke(walls, {.width = 1.8}, cInk);
        _drawing.fill(door, cPaper);
        for (const double side : {left + 30, left + 50})
            _drawing.stroke(Path().moveTo(at(side, bottom)).lineTo(at(side, bottom + wall)), {.width = 1.8}, cInk);
        _drawing.stroke(Path()
                            .moveTo(at(left + 30, bottom + wall))
                            .lineTo(at(left + 30, bottom + wall + 20))
                            .arc(at(left + 30, bottom + wall), {20, 20}, std::numbers::pi / 2, -std::numbers::pi / 2),
                        {.width = 1}, cInk);
        _drawing.text(at((left + right) / 2 + 8, (bottom + top) / 2), "Office\n18.36 m\u00b2",
                      {.size = 13, .paint = cInk},
                      {.anchor = Anchor::Center, .frame = TextFrame{.fill = "#ffffff", .line = cInk, .width = 1}});

        DimensionStyle plan = aboveLine();
        plan.factor = 0.05;
        plan.keepsZeros = true;
        plan.end = DimensionStyle::End::Tick;
        const auto across = [&](double from, double to, double y) {
            _dimensions.addLinear(at(from, bottom), at(to, bottom), {0, y}, plan);
        };
        across(left, left + 30, -12);
        across(left + 30, left + 50, -12);
        across(left + 50, right, -12);
        across(left, right, -24);
        _dimensions.addLinear(at(left, bottom), at(left, top), {-12, 0}, plan);
        _dimensions.addLinear(at(right - wall, top), at(right, top), {0, 12}, plan);
        _dimensions.addLinear(at(left + wall, top), at(right - wall, top), {0, 12}, plan);
    }

    Stage* _pStage = nullptr;
    Drawing _drawing;
    Dimensions _dimensions{_drawing};
    ScaleBar _bar{{.units = {{1, " mm"}, {0.001, " \u00b5m"}, {10, " cm"}},
                   .corner = Anchor::BottomRight,
                   .offset = {-20, -20},
                   .paint = cInk,
                   .text = {.paint = cInk, .halo = {2, cPaper}}}};
    td::Size<double> _size;
    Point _center{}, _pointer;
    double _zoom = 1;
    Drawing::ID _lit = 0;
};

} // namespace

std::unique_ptr<Scene> makeDimensions() { return std::make_unique<Dimensioned>(); }

} // namespace gallery
