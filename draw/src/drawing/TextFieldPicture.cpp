#include "TextFieldPicture.h"

#include "TextAnchor.h"

#include <gui/gl/OrthoView.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace gui::draw
{

namespace
{

constexpr double cThickness = 0.05; // of the caret and of lines under text, in heights of the caret
constexpr double cAroundField = 4;  // points around the text that belong to the field
constexpr double cEmptyWidth = 1;   // em that an empty one has for the pointer

constexpr std::size_t cSelected = 0, cComposed = 1, cCaret = 2;

double finiteOrZero(double number) { return std::isfinite(number) ? number : 0; }

std::array<td::Point<double>, 4> cornersOf(const Affine& map, const td::RectNormalized<double>& rect)
{
    return {map.map({rect.left, rect.top}), map.map({rect.right, rect.top}), map.map({rect.right, rect.bottom}),
            map.map({rect.left, rect.bottom})};
}

/// Rectangles of a layout as they are painted: of whole pixels where they are upright.
class FieldArea
{
public:
    FieldArea(const Affine& toPoints, double pixelsPerPoint)
        : _toPoints(toPoints)
        , _scale(pixelsPerPoint)
        , _isUpright(toPoints.b == 0 && toPoints.c == 0 && toPoints.a > 0 && toPoints.d > 0)
    {
    }

    void add(const td::RectNormalized<double>& rect)
    {
        const auto corners = cornersOf(_toPoints, rect);
        if (_isUpright)
            addPixels(toPixel(corners[0].x), toPixel(corners[0].y), toPixel(corners[2].x), toPixel(corners[2].y));
        else
            _path.addPolygon(corners);
    }

    /// One that is as thick wherever it stands, and a pixel at least. @param isUp  whether it is a caret
    void addLine(const td::RectNormalized<double>& rect, bool isUp)
    {
        if (!_isUpright)
            return add(rect);
        const auto corners = cornersOf(_toPoints, rect);
        const double left = toPixel(corners[0].x), top = toPixel(corners[0].y);
        const double width = std::max(toPixel(corners[2].x - corners[0].x), 1.0),
                     height = std::max(toPixel(corners[2].y - corners[0].y), 1.0);
        addPixels(left, top, isUp ? left + width : toPixel(corners[2].x), isUp ? toPixel(corners[2].y) : top + height);
    }

    const Path& getPath() const { return _path; }

private:
    double toPixel(double points) const { return std::round(points * _scale); }
    void addPixels(double left, double top, double right, double bottom)
    {
        _path.addRect({left / _scale, top / _scale, right / _scale, bottom / _scale});
    }

    Affine _toPoints;
    double _scale;
    bool _isUpright;
    Path _path;
};

} // namespace

void TextFieldPicture::begin(Point at, const TextPlacement& placement, const TextStyle& text,
                             const TextFieldStyle& style)
{
    _at = at;
    _whole = {};
    _placement = placement;
    _placement.frame.reset();
    _frame = style.frame ? style.frame : placement.frame;
    const Paint line = style.caret.value_or(text.paint);
    _drawing.clear();
    _inPlace = _drawing.beginGroup();
    _framed = _frame ? _drawing.text(at, "", text) : 0;
    _drawing.endGroup();
    _inPoints = _drawing.beginGroup();
    _areas[cSelected] = _drawing.fill({}, style.selection);
    _drawing.endGroup();
    _drawing.openGroup(_inPlace);
    _text = _drawing.text(at, "", text);
    _drawing.endGroup();
    _drawing.openGroup(_inPoints);
    _areas[cComposed] = _drawing.fill({}, line);
    _areas[cCaret] = _drawing.fill({}, line);
    _drawing.endGroup();
    _paths = {};
    _shown.reset();
}

Affine TextFieldPicture::planeToPoints() const
{
    if (_pPlane == nullptr)
        return {};
    const double zoom = _pPlane->getZoom();
    const Point origin = _pPlane->getViewPoint({0, 0});
    return {zoom, 0, 0, _pPlane->isYDown() ? zoom : -zoom, origin.x, origin.y};
}

// As letters are drawn: never mirrored, and those in points on whole pixels, or quarters of them, where they are not
// turned.
std::optional<Affine> TextFieldPicture::getMap(const TextEditor& editor, double pixelsPerPoint) const
{
    const bool isInPoints = editor.getStyle().unit == Unit::Points;
    const Point inPlane = _whole.map(_at);
    Point place = _pPlane != nullptr ? _pPlane->getViewPoint(inPlane) : inPlane;
    place = {place.x + finiteOrZero(_placement.offset.x), place.y + finiteOrZero(_placement.offset.y)};
    Affine linear;
    if (!isInPoints)
    {
        linear = planeToPoints() * _whole;
        linear = {linear.a, linear.b, linear.c, linear.d, 0, 0};
        if (linear.a * linear.d - linear.b * linear.c < 0)
            linear = linear * Affine::scaling(1, -1);
    }
    const double angle = std::remainder(finiteOrZero(_placement.angle), 360) * std::numbers::pi / 180;
    if (angle != 0)
        linear = linear * Affine::rotation(-angle);
    else if (isInPoints)
        place = {std::floor(place.x * pixelsPerPoint * 4 + 0.5) / pixelsPerPoint / 4,
                 std::ceil(place.y * pixelsPerPoint - 0.5) / pixelsPerPoint};
    const Point anchor = anchorIn(editor.getLayout(), _placement.anchor);
    const Affine map = Affine::translation(place.x, place.y) * linear * Affine::translation(-anchor.x, -anchor.y);
    return map.inverse() ? std::optional(map) : std::nullopt;
}

bool TextFieldPicture::isInside(const TextEditor& editor, Point point, double pixelsPerPoint) const
{
    const std::optional<Affine> map = getMap(editor, pixelsPerPoint);
    if (!map)
        return false;
    const TextLayout& layout = editor.getLayout();
    const Rect caret = editor.getCaretRect(cEmptyWidth * editor.getStyle().size);
    double left = caret.left, right = layout.getText().empty() ? caret.right : caret.left;
    for (const TextLayout::Line& line : layout.getLines())
    {
        left = std::min(left, line.left);
        right = std::max(right, line.left + line.width);
    }
    const double stretch = std::sqrt(std::abs(map->a * map->d - map->b * map->c));
    const double around = cAroundField / stretch + (_frame ? std::max(finiteOrZero(_frame->padding), 0.0) : 0);
    const Point p = map->inverse()->map(point);
    return p.x >= left - around && p.x < right + around && p.y >= -around && p.y < layout.getSize().height + around;
}

std::optional<TextFieldPicture::Rect> TextFieldPicture::getCaret(const TextEditor& editor, double pixelsPerPoint) const
{
    const std::optional<Affine> map = getMap(editor, pixelsPerPoint);
    if (!map)
        return std::nullopt;
    const auto corners = cornersOf(*map, editor.getCaretRect(0));
    const auto [left, right] = std::ranges::minmax(corners, {}, &Point::x);
    const auto [top, bottom] = std::ranges::minmax(corners, {}, &Point::y);
    return Rect(left.x, top.y, right.x, bottom.y);
}

void TextFieldPicture::setText(const TextLayout& layout)
{
    _shown = layout.getText();
    _drawing.setText(_text, layout, _placement);
    if (!_frame)
        return;
    // Letters that are not seen have the frame; without any there is none.
    TextStyle unseen = layout.getStyle(0);
    unseen.paint = Paint();
    unseen.halo = {};
    unseen.isUnderlined = unseen.isStruckThrough = false;
    TextPlacement placement = _placement;
    placement.frame = _frame;
    _drawing.setText(_framed, TextLayout(_shown->empty() ? "\u00a0" : *_shown, unseen, layout.getParagraphStyle()),
                     placement);
}

void TextFieldPicture::setArea(std::size_t area, const Path& path)
{
    if (path == _paths[area])
        return;
    _paths[area] = path;
    _drawing.setPath(_areas[area], path);
}

void TextFieldPicture::draw(const TextEditor& editor, bool hasCaret, double pixelsPerPoint)
{
    const std::optional<Affine> map = getMap(editor, pixelsPerPoint);
    if (!map)
        return;
    _drawing.setTransform(_inPlace, _whole);
    _drawing.setTransform(_inPoints, planeToPoints().inverse().value_or(Affine()));
    if (const TextLayout& layout = editor.getLayout(); _shown != layout.getText())
        setText(layout);
    FieldArea selected(*map, pixelsPerPoint), composed = selected, caret = selected;
    const Rect place = editor.getCaretRect(0);
    const double thickness = cThickness * (place.bottom - place.top);
    for (const Rect& rect : editor.getSelectionRects())
        selected.add(rect);
    for (const Rect& rect : editor.getCompositionRects(thickness))
        composed.addLine(rect, false);
    if (hasCaret)
        caret.addLine({place.left - thickness / 2, place.top, place.left + thickness / 2, place.bottom}, true);
    setArea(cSelected, selected.getPath());
    setArea(cComposed, composed.getPath());
    setArea(cCaret, caret.getPath());
    if (_pPlane != nullptr)
        _drawing.draw(*_pPlane);
    else
        _drawing.draw(Affine(), pixelsPerPoint);
}

} // namespace gui::draw
