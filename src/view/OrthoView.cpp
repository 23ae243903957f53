#include <gui/gl/OrthoView.h>

#include <gui/Key.h>
#include <gui/gl/InputTuning.h>
#include <vo/Log.h>

#include <glm/ext/matrix_clip_space.hpp>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

namespace gui::gl
{

namespace
{

constexpr double cKeyStep = 60; // points that an arrow key moves the plane

// Of the last press with Shift, whichever view it was in: there is one pointer.
td::Point<double> s_startDragPoint; // where it was in the view
td::Point<double> s_startTL;        // the origin then

bool isFinite(const td::Point<double>& point) { return std::isfinite(point.x) && std::isfinite(point.y); }

bool isFinite(const td::RectNormalized<double>& rect)
{
    return isFinite({rect.left, rect.top}) && isFinite({rect.right, rect.bottom});
}

// The lower edge of a length that lies between two limits, in their middle when it is longer than they are apart; or
// that has at least a part of what is between them in it.
double within(double edge, double length, double low, double high, double part)
{
    // Not std::clamp: of lengths that are nearly the same, rounding may bring the ends into the other order.
    const auto between = [edge](double first, double last) { return std::max(first, std::min(edge, last)); };
    if (part >= 0)
    {
        part = std::min({part, length, high - low});
        return between(low + part - length, high - part);
    }
    return length < high - low ? between(low, high - length) : low / 2 + high / 2 - length / 2;
}

bool isFiniteMatrix(const glm::mat4& matrix)
{
    const float* const pFirst = &matrix[0][0];
    return std::all_of(pFirst, pFirst + 16, [](float value) { return std::isfinite(value); });
}

} // namespace

void OrthoView::createContext(bool yDown)
{
    using Event = InputDevice::Event;
    _isYDown = yDown;
    View::createContext(Context(DepthBuffer::Size::None, StencilBuffer::Size::None, Context::Profile::Core41),
                        {Event::Keyboard, Event::CursorEnterLeave, Event::PrimaryClicks, Event::SecondaryClicks,
                         Event::CursorMove, Event::CursorDrag, Event::ScrollAndZoom, Event::OtherClicks,
                         Event::OtherDrag});
}

void OrthoView::setBindings(Bindings bindings)
{
    endPanning();
    _bindings = bindings;
}

double OrthoView::getZoom() const { return _zoom; }

void OrthoView::setZoom(double zoom)
{
    const double newZoom = clampedZoom(zoom);
    if (newZoom == _zoom)
        return;
    _zoom = newZoom;
    _origin = withinLimits(_origin);
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

td::Point<double> OrthoView::getViewPoint(const td::Point<double>& modelPoint) const
{
    const double y = (modelPoint.y - _origin.y) * _zoom;
    return {(modelPoint.x - _origin.x) * _zoom, _isYDown ? y : static_cast<double>(_height) - y};
}

td::RectNormalized<double> OrthoView::getVisible() const
{
    return {_origin.x, _origin.y, _origin.x + static_cast<double>(_width) / _zoom,
            _origin.y + static_cast<double>(_height) / _zoom};
}

td::Point<double> OrthoView::getCenter() const
{
    return {_origin.x + static_cast<double>(_width) / 2 / _zoom, _origin.y + static_cast<double>(_height) / 2 / _zoom};
}

void OrthoView::setCenter(const td::Point<double>& modelPoint)
{
    setModelRefPoint({modelPoint.x - static_cast<double>(_width) / 2 / _zoom,
                      modelPoint.y - static_cast<double>(_height) / 2 / _zoom});
}

void OrthoView::setCenter(const td::Point<double>& modelPoint, double zoom)
{
    setZoom(zoom);
    setCenter(modelPoint);
}

bool OrthoView::zoomBy(double factor) { return zoomBy(factor, 0); }

bool OrthoView::zoomBy(double factor, unsigned int modifiers)
{
    const td::Point<double> middle(static_cast<double>(_width) / 2, static_cast<double>(_height) / 2);
    InputDevice device(middle, middle, middle, modifiers, InputDevice::Type::Keyboard, InputDevice::Button::None);
    InputDeviceHelper(&device).setScale(factor);
    return onZoom(device);
}

glm::mat4 OrthoView::getProjection(const td::Point<double>& base) const
{
    if (!(_width > 0 && _height > 0))
        return glm::ortho(-1.0F, 1.0F, -1.0F, 1.0F, -1.0F, 1.0F);
    const double left = _origin.x - base.x;
    const double right = left + static_cast<double>(_width) / _zoom;
    const double near = _origin.y - base.y;
    const double far = near + static_cast<double>(_height) / _zoom;
    return _isYDown ? glm::mat4(glm::ortho(left, right, far, near, -1.0, 1.0))
                    : glm::mat4(glm::ortho(left, right, near, far, -1.0, 1.0));
}

// Where a fit leads to. The view has a size.
std::optional<OrthoView::Place> OrthoView::placeOf(const Fit& fit) const
{
    const td::RectNormalized<double>& model = fit.model;
    if (!isFinite(model) || !std::isfinite(fit.margin))
        return std::nullopt;
    const double width = static_cast<double>(_width) - 2 * fit.margin;
    const double height = static_cast<double>(_height) - 2 * fit.margin;
    if (!(width > 0 && height > 0))
        return std::nullopt;
    // A side of no length gives infinity, and leaves it to the other one.
    const double zoom =
        std::min(width / std::abs(model.right - model.left), height / std::abs(model.bottom - model.top));
    const double newZoom = std::isfinite(zoom) ? clampedZoom(zoom) : _zoom;
    const td::Point<double> origin(std::midpoint(model.left, model.right) - static_cast<double>(_width) / 2 / newZoom,
                                   std::midpoint(model.top, model.bottom) - static_cast<double>(_height) / 2 / newZoom);
    if (!isFinite(origin))
        return std::nullopt;
    return Place{origin, newZoom};
}

bool OrthoView::fit(const td::RectNormalized<double>& model, double margin)
{
    if (!isFinite(model) || !std::isfinite(margin))
        return false;
    if (!(_width > 0 && _height > 0))
    {
        _fit = {model, margin};
        return true;
    }
    const std::optional<Place> place = placeOf({model, margin});
    if (!place)
        return false;
    _fit.reset();
    const bool isZoomNew = place->zoom != _zoom;
    _zoom = place->zoom;
    setOrigin(place->origin);
    if (_home && _home->fit == Fit{model, margin})
        *_home = {_home->fit, _origin, _zoom};
    if (isZoomNew)
        onZoomChanged();
    onOriginChanged();
    reDraw();
    return true;
}

bool OrthoView::setHome(const td::RectNormalized<double>& model, double margin)
{
    const std::optional<Home> old = std::exchange(_home, Home{{model, margin}, _origin, _zoom});
    if (fit(model, margin))
        return true;
    _home = old;
    return false;
}

bool OrthoView::goHome()
{
    if (!_home)
        return false;
    const Fit home = _home->fit;
    if (!(_width > 0 && _height > 0))
        _home = {home, _origin, _zoom};
    return fit(home.model, home.margin);
}

bool OrthoView::isAtHome() const { return _home && _home->origin == _origin && _home->zoom == _zoom; }

bool OrthoView::moveByKey(const Key& key)
{
    using Virtual = Key::Virtual;
    const Virtual code = key.getVirtual();
    const char character = key.isASCII() ? key.getChar() : '\0';
    const double factor = 1 + InputDevice::getDefaultZoomIncrement();
    const double step = cKeyStep / _zoom, up = _isYDown ? -step : step;
    if (character == '+' || character == '=' || code == Virtual::KeypadPlus)
        zoomBy(factor);
    else if (character == '-' || code == Virtual::KeypadMinus)
        zoomBy(1 / factor);
    else if (code == Virtual::Left || code == Virtual::Right)
        setModelRefPoint({_origin.x + (code == Virtual::Left ? -step : step), _origin.y});
    else if (code == Virtual::Up || code == Virtual::Down)
        setModelRefPoint({_origin.x, _origin.y + (code == Virtual::Up ? up : -up)});
    else if ((character == '0' || code == Virtual::Home) && _home)
        goHome();
    else
        return false;
    return true;
}

void OrthoView::setPlaneLimits(const td::RectNormalized<double>& limits, double inSight)
{
    if (!isFinite(limits) || !std::isfinite(inSight))
        return;
    _limits = limits;
    _inSight = inSight;
    if (keepWithinLimits())
        reDraw();
}

void OrthoView::removePlaneLimits() { _limits.reset(); }

td::Point<double> OrthoView::withinLimits(const td::Point<double>& origin) const
{
    if (!_limits || !(_width > 0 && _height > 0))
        return origin;
    const double part = _inSight / _zoom;
    const td::Point<double> kept(
        within(origin.x, static_cast<double>(_width) / _zoom, _limits->left, _limits->right, part),
        within(origin.y, static_cast<double>(_height) / _zoom, _limits->top, _limits->bottom, part));
    return isFinite(kept) ? kept : origin; // where more is seen than numbers go
}

// @return whether the plane moved
bool OrthoView::keepWithinLimits()
{
    const td::Point<double> origin = withinLimits(_origin);
    if (origin == _origin)
        return false;
    setOrigin(origin);
    onOriginChanged();
    return true;
}

void OrthoView::onResize(const td::Size<double>& size)
{
    const bool isAtHome = OrthoView::isAtHome();
    _width = static_cast<float>(size.width);
    _height = static_cast<float>(size.height);
    adjustOrthoProjectionMatrix();
    if (_fit && _width > 0 && _height > 0)
    {
        const Fit waiting = *_fit;
        fit(waiting.model, waiting.margin);
    }
    else if (isAtHome && _width > 0 && _height > 0)
        goHome();
    keepWithinLimits();
}

void OrthoView::beginPanning(const InputDevice& device)
{
    s_startTL = _origin;
    s_startDragPoint = device.getFramePoint();
}

void OrthoView::panTo(const InputDevice& device)
{
    const double dx = device.getFramePoint().x - s_startDragPoint.x;
    const double dy = device.getFramePoint().y - s_startDragPoint.y;
    if (!setOrigin({s_startTL.x - dx / _zoom, _isYDown ? s_startTL.y - dy / _zoom : s_startTL.y + dy / _zoom}))
        return;
    onOriginChanged();
    reDraw();
}

void OrthoView::onPrimaryButtonPressed(const InputDevice& device)
{
    if (_bindings == Bindings::Plain)
    {
        beginPanning(device);
        _pressed = InputDevice::Button::Primary;
        return;
    }
    if (!device.getKey().isShiftPressed())
        return;
    beginPanning(device);
    if (_isPanning)
        return;
    _isPanning = true;
    setCursor(Cursor::Type::Pan, true);
}

void OrthoView::onPrimaryButtonReleased(const InputDevice&)
{
    if (_pressed != InputDevice::Button::Middle)
        endPanning();
}

void OrthoView::onPrimaryButtonDblClick(const InputDevice& device)
{
    endPanning();
    if (_bindings == Bindings::Plain)
        onPrimaryButtonPressed(device);
}

void OrthoView::onCursorDragged(const InputDevice& device)
{
    if (_bindings == Bindings::Plain)
    {
        dragPlane(device, InputDevice::Button::Primary);
        return;
    }
    if (!device.getKey().isShiftPressed())
    {
        endPanning();
        return;
    }
    _isPanning = true;
    panTo(device);
}

// With plain bindings: a click that moves nothing leaves the cursor as it is.
void OrthoView::dragPlane(const InputDevice& device, InputDevice::Button button)
{
    if (_pressed != button || !isFinite(device.getFramePoint()))
        return;
    if (!std::exchange(_isPanning, true))
        setCursor(Cursor::Type::Pan, true);
    // From where it is: the wheel may have zoomed in the midst of the drag.
    s_startTL = _origin;
    panTo(device);
    s_startDragPoint = device.getFramePoint();
}

// What no button is down for any more: its release went to somebody else.
void OrthoView::onCursorMoved(const InputDevice&) { endPanning(); }

void OrthoView::onCursorExited(const InputDevice&)
{
    // A drag with the middle button goes on outside.
    if (_pressed != InputDevice::Button::Middle)
        endPanning();
}

void OrthoView::onOtherButtonPressed(const InputDevice& device)
{
    if (_bindings != Bindings::Plain || device.getButton() != InputDevice::Button::Middle)
        return;
    endPanning();
    beginPanning(device);
    _pressed = InputDevice::Button::Middle;
}

void OrthoView::onOtherButtonReleased(const InputDevice& device)
{
    if (device.getButton() == _pressed)
        endPanning();
}

void OrthoView::onOtherDragged(const InputDevice& device)
{
    if (device.getButton() == InputDevice::Button::Middle)
        dragPlane(device, InputDevice::Button::Middle);
}

bool OrthoView::onScroll(const InputDevice& device)
{
    const td::Point<double>& distance = device.getFramePoint();
    if (!isFinite(distance))
        return true;
    if (_bindings == Bindings::Plain && !device.getKey().isShiftPressed() && distance.y != 0)
    {
        // The wheel's own units, of which a zoom goes by, are in there times this.
        const double units = distance.y / zav::s_scrollAccelleration;
        constexpr double cMin = 0.05;
        const td::Point<double>& place = device.getPlace();
        InputDevice zoom(place, place, place, device.getKeyboardModifiers(), device.getType(), device.getButton());
        InputDeviceHelper(&zoom).setScale(std::max(cMin, 1 + zav::s_zoomIncrement * units / 100));
        return onZoom(zoom);
    }
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
    setZoom(newZoom); // which keeps the limits of the plane
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
    return zoomBy(character == '+' ? step : 1 / step, key.getModifiers());
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
    if (isFiniteMatrix(projection))
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
    _origin = withinLimits(origin);
    adjustOrthoProjectionMatrix();
    return true;
}

void OrthoView::endPanning()
{
    _pressed = InputDevice::Button::None;
    if (!_isPanning)
        return;
    _isPanning = false;
    setCursor(Cursor::Type::Default, true);
}

} // namespace gui::gl
