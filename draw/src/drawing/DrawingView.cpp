#include <gui/draw/DrawingView.h>

#include "../path/FinitePoint.h"

#include <gui/InputDevice.h>
#include <gui/Key.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace gui::draw
{

namespace
{

// In points.
constexpr double cClick = 4;       // that it may move in a click
constexpr double cFlyMargin = 60;  // around what a double click flies to
constexpr double cClosest = 1e6;   // from all of the drawing
constexpr double cFarthest = 1e-2; // likewise

constexpr td::Color cBoxColor = "#3465d9", cBoxFill = "#3465d920";

} // namespace

/// What a drag with Shift draws, in a drawing of its own as long as it lasts.
struct DrawingView::Box
{
    td::Point<double> from, to; // in model units
    Drawing drawing{};

    void draw(const DrawingView& view)
    {
        const Drawing::Rect box(view.getViewPoint(from), view.getViewPoint(to));
        const Path path = Path().addRect(box);
        drawing.clear();
        drawing.fill(path, cBoxFill);
        drawing.stroke(path, {}, cBoxColor);
        drawing.draw(Affine(), static_cast<double>(view.getPixelHiDPIScale()));
    }
};

/// What another view sees.
struct DrawingView::Overview
{
    gl::OrthoView& of;
    td::Color color;
    Drawing drawing{};

    void draw(const DrawingView& view)
    {
        drawing.clear();
        drawing.stroke(Path().addRect(of.getVisible()), {.width = 2}, color);
        drawing.draw(view);
    }
};

DrawingView::DrawingView(bool yDown)
{
    setBindings(Bindings::Plain);
    createContext(yDown);
}

DrawingView::~DrawingView() = default;

void DrawingView::setBackground(td::Color color)
{
    _background = color;
    reRender();
}

void DrawingView::setReach(double points) { _reach = std::max(0.0, points); }

void DrawingView::setOverviewOf(gl::OrthoView* pView, td::Color color)
{
    _pOverview.reset(pView != nullptr ? new Overview{*pView, color} : nullptr);
    reRender();
}

bool DrawingView::showAll(double margin)
{
    _isShown = true;
    const std::optional<Drawing::Rect> all = _drawing.getBounds();
    if (!all)
        return false;
    // Around one point the zoom's limits stay what they are.
    const double size = std::max(all->right - all->left, all->bottom - all->top);
    if (const double whole = 1000 / size; size > 0 && whole * cFarthest > 0 && std::isfinite(whole * cClosest))
        setZoomLimits(whole * cFarthest, whole * cClosest);
    return setHome(*all, margin);
}

void DrawingView::showWhole()
{
    // What somebody else has shown stays.
    if (hasHome() && !(_shownZoom == getZoom() && _shownOrigin == getOrigin()))
        return;
    showAll();
    _isShown = false;
    _shownOrigin = getOrigin();
    _shownZoom = getZoom();
}

bool DrawingView::saveAll(const char* path, double size, double margin, double pixelsPerPoint)
{
    const std::optional<Drawing::Rect> all = _drawing.getBounds();
    if (!all || !(size > 0))
        return false;
    const double width = all->right - all->left, height = all->bottom - all->top, longer = std::max(width, height);
    const double zoom = longer > 0 ? size / longer : 1, up = isYDown() ? 1 : -1;
    const Affine toPoints{
        zoom, 0, 0, up * zoom, margin - zoom * all->left, margin - up * zoom * (isYDown() ? all->top : all->bottom)};
    makeCurrentContext();
    return _drawing.savePicture(path,
                                {std::max(zoom * width + 2 * margin, 1.0), std::max(zoom * height + 2 * margin, 1.0)},
                                toPoints, pixelsPerPoint, _background);
}

void DrawingView::onPointed() {}

void DrawingView::onShapeEntered(Drawing::ID) {}

void DrawingView::onShapeClicked(Drawing::ID) {}

void DrawingView::onShapeDoubleClicked(Drawing::ID shape)
{
    if (shape == 0)
        flyHome();
    else if (const std::optional<Drawing::Rect> bounds = _drawing.getBounds(shape))
        flyTo(*bounds, cFlyMargin);
}

void DrawingView::onBoxDrawn(const Drawing::Rect& box) { flyTo(box); }

// Before a derived class's onDraw, which may place labels by what is seen.
void DrawingView::onResize(const td::Size<double>& size)
{
    OrthoView::onResize(size);
    if (!_isShown)
        showWhole();
}

void DrawingView::onDraw(const td::RectNormalized<double>&)
{
    if (!_isShown)
        showWhole();
    _isShown = true;
    if (_pointer && getModelPoint(*_pointer) != _pointed)
        point();
    gl::Context::clear(gl::Context::Clear::Color, _background);
    _drawing.draw(*this);
    _overlay.draw(*this);
    if (_pOverview)
        _pOverview->draw(*this);
    if (_pBox)
        _pBox->draw(*this);
}

Drawing::ID DrawingView::shapeAt(const td::Point<double>& viewPoint) const
{
    return _drawing.pick(getModelPoint(viewPoint), _reach / getZoom());
}

void DrawingView::setPointer(const InputDevice& device)
{
    _pointer = device.getFramePoint();
    _modifiers = device.getKeyboardModifiers();
}

void DrawingView::point()
{
    if (_pointer)
        _pointed = getModelPoint(*_pointer);
    onPointed();
    const Drawing::ID shape = _pointer ? shapeAt(*_pointer) : 0;
    if (std::exchange(_entered, shape) == shape)
        return;
    onShapeEntered(shape);
    reRender();
}

void DrawingView::onCursorMoved(const InputDevice& device)
{
    if (!isFinitePoint(device.getFramePoint()))
        return;
    OrthoView::onCursorMoved(device);
    _isClick = false;
    // Its end went to somebody else.
    if (std::exchange(_pBox, nullptr))
        reRender();
    setPointer(device);
    point();
}

void DrawingView::onCursorExited(const InputDevice& device)
{
    OrthoView::onCursorExited(device);
    _pointer.reset();
    point();
}

void DrawingView::onCursorDragged(const InputDevice& device)
{
    if (!isFinitePoint(device.getFramePoint()))
        return;
    if (_pOverview)
        return onPrimaryButtonPressed(device);
    // Before the plane moves along: the same shape stays under it.
    setPointer(device);
    _isClick = _isClick && std::hypot(_pointer->x - _pressed.x, _pointer->y - _pressed.y) < cClick;
    if (_pBox)
    {
        _pBox->to = getModelPoint(*_pointer);
        reRender();
    }
    else
        OrthoView::onCursorDragged(device);
    point();
}

void DrawingView::onPrimaryButtonPressed(const InputDevice& device)
{
    if (!isFinitePoint(device.getFramePoint()))
        return;
    if (_pOverview)
        return _pOverview->of.setCenter(getModelPoint(device.getFramePoint()));
    setPointer(device);
    _pressed = *_pointer;
    _isClick = true;
    if (!isShiftPressed(device.getKeyboardModifiers()))
        return OrthoView::onPrimaryButtonPressed(device);
    _pBox = std::make_unique<Box>();
    _pBox->from = _pBox->to = getModelPoint(_pressed);
}

void DrawingView::onPrimaryButtonReleased(const InputDevice& device)
{
    OrthoView::onPrimaryButtonReleased(device);
    const std::unique_ptr<Box> pBox = std::move(_pBox);
    if (!isFinitePoint(device.getFramePoint()))
    {
        _isClick = false;
        return reRender();
    }
    setPointer(device);
    if (!std::exchange(_isClick, false))
    {
        if (pBox && !(pBox->from == pBox->to))
            onBoxDrawn({pBox->from, pBox->to});
        if (pBox)
            reRender();
        return;
    }
    onShapeClicked(shapeAt(*_pointer));
    reRender();
}

void DrawingView::onPrimaryButtonDblClick(const InputDevice& device)
{
    if (!isFinitePoint(device.getFramePoint()))
        return;
    OrthoView::onPrimaryButtonDblClick(device);
    setPointer(device);
    _isClick = false;
    if (!_pOverview)
        onShapeDoubleClicked(shapeAt(*_pointer));
}

void DrawingView::onOtherDragged(const InputDevice& device)
{
    if (!_pOverview)
        OrthoView::onOtherDragged(device);
}

bool DrawingView::onScroll(const InputDevice& device) { return _pOverview || OrthoView::onScroll(device); }

bool DrawingView::onZoom(const InputDevice& device)
{
    // The first of two fingers has pressed, too.
    _isClick = _isClick && device.getType() != InputDevice::Type::Gesture;
    return _pOverview || OrthoView::onZoom(device);
}

bool DrawingView::onKeyPressed(const Key& key)
{
    if (key.getVirtual() == Key::Virtual::Escape && _pBox)
    {
        _pBox.reset();
        reRender();
        return true;
    }
    return moveByKey(key) || OrthoView::onKeyPressed(key);
}

} // namespace gui::draw
