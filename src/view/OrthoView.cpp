#include <gui/gl/OrthoView.h>

#include <gui/Key.h>
#include <vo/Log.h>

#include <glm/ext/matrix_clip_space.hpp>

#include <algorithm>
#include <cmath>

namespace gui::gl
{

namespace
{

// Of the last press with Shift, whichever view it was in: there is one pointer.
td::Point<double> s_startDragPoint; // where it was in the view
td::Point<double> s_startTL;        // the origin then

bool isFinite(const td::Point<double>& point) { return std::isfinite(point.x) && std::isfinite(point.y); }

bool isFinite(const glm::mat4& matrix)
{
    const float* const pFirst = &matrix[0][0];
    return std::all_of(pFirst, pFirst + 16, [](float value) { return std::isfinite(value); });
}

} // namespace

OrthoView::OrthoView()
    : _projection(glm::ortho(-1.0F, 1.0F, -1.0F, 1.0F, -1.0F, 1.0F))
{
}

void OrthoView::createContext(bool yDown)
{
    using Event = InputDevice::Event;
    _isYDown = yDown;
    View::createContext(Context(DepthBuffer::Size::None, StencilBuffer::Size::None, Context::Profile::Core41),
                        {Event::Keyboard, Event::CursorEnterLeave, Event::PrimaryClicks, Event::SecondaryClicks,
                         Event::CursorMove, Event::CursorDrag, Event::ScrollAndZoom});
}

double OrthoView::getZoom() const { return _zoom; }

void OrthoView::setZoom(double zoom)
{
    const double newZoom = clampedZoom(zoom);
    if (newZoom == _zoom)
        return;
    _zoom = newZoom;
    adjustOrthoProjectionMatrix();
    onZoomChanged();
    onOriginChanged();
}

void OrthoView::setZoomLimits(double min, double max)
{
    if (max < min)
        return;
    // Written so that NaN is refused too.
    if (!(min > 0 && std::isfinite(max)))
    {
        vo::dbgLog("Warning! OrthoView::setZoomLimits ignores limits from %g to %g", min, max);
        return;
    }
    _minZoom = min;
    _maxZoom = max;
}

void OrthoView::setModelRefPoint(const td::Point<double>& point)
{
    if (!setOrigin(point))
        return;
    onOriginChanged();
    reDraw();
}

td::Point<double> OrthoView::getModelPoint(const td::Point<double>& viewPoint) const
{
    const double y = _isYDown ? viewPoint.y : static_cast<double>(_height) - viewPoint.y;
    return {viewPoint.x / _zoom + _origin.x, y / _zoom + _origin.y};
}

void OrthoView::onResize(const td::Size<double>& size)
{
    _width = static_cast<float>(size.width);
    _height = static_cast<float>(size.height);
    adjustOrthoProjectionMatrix();
}

void OrthoView::onPrimaryButtonPressed(const InputDevice& device)
{
    if (!device.getKey().isShiftPressed())
        return;
    s_startTL = _origin;
    s_startDragPoint = device.getFramePoint();
    if (_isPanning)
        return;
    _isPanning = true;
    setCursor(Cursor::Type::Pan, true);
}

void OrthoView::onPrimaryButtonReleased(const InputDevice&) { endPanning(); }

void OrthoView::onPrimaryButtonDblClick(const InputDevice&) { endPanning(); }

void OrthoView::onCursorDragged(const InputDevice& device)
{
    if (!device.getKey().isShiftPressed())
    {
        endPanning();
        return;
    }
    _isPanning = true;
    const double dx = device.getFramePoint().x - s_startDragPoint.x;
    const double dy = device.getFramePoint().y - s_startDragPoint.y;
    if (!setOrigin({s_startTL.x - dx / _zoom, _isYDown ? s_startTL.y - dy / _zoom : s_startTL.y + dy / _zoom}))
        return;
    onOriginChanged();
    reDraw();
}

void OrthoView::onCursorExited(const InputDevice&) { endPanning(); }

bool OrthoView::onScroll(const InputDevice& device)
{
    const td::Point<double>& distance = device.getFramePoint();
    const double dy = distance.y / _zoom;
    if (setOrigin({_origin.x - distance.x / _zoom, _isYDown ? _origin.y - dy : _origin.y + dy}))
    {
        reDraw();
        onOriginChanged();
    }
    return true;
}

bool OrthoView::onZoom(const InputDevice& device)
{
    const double newZoom = clampedZoom(_zoom * device.getScale());
    if (newZoom == _zoom)
        return true;
    const td::Point<double>& point = device.getFramePoint();
    const td::Point<double> modelPoint = getModelPoint(point);
    const double y = _isYDown ? point.y : static_cast<double>(_height) - point.y;
    const td::Point<double> origin(modelPoint.x - point.x / newZoom, modelPoint.y - y / newZoom);
    if (!isFinite(origin))
        return true;
    _origin = origin;
    setZoom(newZoom);
    reDraw();
    onZoomChanged();
    onOriginChanged();
    return true;
}

bool OrthoView::onKeyPressed(const Key& key)
{
    if (!key.isCmdPressed() || !key.isASCII())
        return false;
    const char character = key.getChar();
    if (character != '+' && character != '-')
        return false;
    const double step = 1 + InputDevice::getDefaultZoomIncrement();
    const td::Point<double> middle(static_cast<double>(_width) / 2, static_cast<double>(_height) / 2);
    InputDevice device(middle, middle, middle, key.getModifiers(), InputDevice::Type::Keyboard,
                       InputDevice::Button::None);
    InputDeviceHelper(&device).setScale(character == '+' ? step : 1 / step);
    return onZoom(device);
}

void OrthoView::adjustOrthoProjectionMatrix()
{
    if (!(_width > 0 && _height > 0))
        return;
    const auto left = static_cast<float>(_origin.x);
    const auto right = static_cast<float>(_origin.x + static_cast<double>(_width) / _zoom);
    const auto near = static_cast<float>(_origin.y);
    const auto far = static_cast<float>(_origin.y + static_cast<double>(_height) / _zoom);
    const glm::mat4 projection =
        _isYDown ? glm::ortho(left, right, far, near, -1.0F, 1.0F) : glm::ortho(left, right, near, far, -1.0F, 1.0F);
    // Far from the model's origin the edges may be the same float.
    if (isFinite(projection))
        _projection = projection;
}

double OrthoView::clampedZoom(double zoom) const
{
    return std::isnan(zoom) ? _zoom : std::clamp(zoom, _minZoom, _maxZoom);
}

bool OrthoView::setOrigin(const td::Point<double>& origin)
{
    if (!isFinite(origin))
        return false;
    _origin = origin;
    adjustOrthoProjectionMatrix();
    return true;
}

void OrthoView::endPanning()
{
    if (!_isPanning)
        return;
    _isPanning = false;
    setCursor(Cursor::Type::Default, true);
}

} // namespace gui::gl
