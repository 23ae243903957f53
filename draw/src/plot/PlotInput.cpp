#include "PlotImpl.h"

#include "../path/FinitePoint.h"

#include <gui/InputDevice.h>
#include <gui/Key.h>
#include <gui/gl/InputTuning.h>

#include <algorithm>
#include <cmath>

namespace gui::draw
{

namespace
{

constexpr double cKeyStep = 60; // points that an arrow key moves

} // namespace

Axes::Impl* Plot::Impl::find(Point point, unsigned int& part)
{
    for (const std::unique_ptr<Axes>& pAxes : axes)
    {
        part = pAxes->_pImpl->partAt(point);
        if (part != 0)
            return pAxes->_pImpl.get();
    }
    return nullptr;
}

void Plot::onPressed(const InputDevice& device)
{
    Impl& impl = *_pImpl;
    const Point point = device.getFramePoint();
    impl.pDragged = isFinitePoint(point) ? impl.find(point, impl.dragPart) : nullptr;
    impl.drag = Impl::Drag::None;
    if (impl.pDragged == nullptr)
        return;
    const bool isInside = impl.dragPart == (Axes::Impl::cX | Axes::Impl::cY | Axes::Impl::cRight);
    impl.drag = device.getKey().isShiftPressed() && isInside ? Impl::Drag::Box : Impl::Drag::Pan;
    impl.dragFrom = impl.dragTo = point;
}

void Plot::onDragged(const InputDevice& device)
{
    Impl& impl = *_pImpl;
    const Point point = device.getFramePoint();
    if (impl.drag == Impl::Drag::None || !isFinitePoint(point))
        return;
    impl.pointer.reset();
    const Point before = std::exchange(impl.dragTo, point);
    if (impl.drag == Impl::Drag::Pan)
        impl.pDragged->pan(impl.dragPart, point.x - before.x, point.y - before.y);
    impl.isOverlayChanged = true;
    impl.changed();
}

void Plot::onReleased(const InputDevice&)
{
    Impl& impl = *_pImpl;
    if (impl.drag == Impl::Drag::None)
        return;
    if (impl.drag == Impl::Drag::Box)
    {
        const Axes::Rect& area = impl.pDragged->area;
        const auto within = [&area](Point p)
        { return Point(std::clamp(p.x, area.left, area.right), std::clamp(p.y, area.top, area.bottom)); };
        const Point a = within(impl.dragFrom), b = within(impl.dragTo);
        impl.pDragged->showBox({a.x, a.y, b.x, b.y});
    }
    impl.drag = Impl::Drag::None;
    impl.pointer = impl.dragTo;
    impl.isOverlayChanged = true;
    impl.changed();
}

void Plot::onDoubleClick(const InputDevice& device)
{
    unsigned int part = 0;
    Axes::Impl* const pAxes =
        isFinitePoint(device.getFramePoint()) ? _pImpl->find(device.getFramePoint(), part) : nullptr;
    _pImpl->drag = Impl::Drag::None;
    if (pAxes == nullptr)
        return;
    if (pAxes->release(part))
        _pImpl->changed();
}

void Plot::onMoved(const InputDevice& device)
{
    if (!isFinitePoint(device.getFramePoint()))
        return;
    _pImpl->pointer = device.getFramePoint();
    // A drag whose release went to somebody else.
    if (std::exchange(_pImpl->drag, Impl::Drag::None) != Impl::Drag::None)
    {
        _pImpl->isOverlayChanged = true;
        _pImpl->changed();
    }
    if (!_pImpl->hasCrosshair)
        return;
    unsigned int part = 0;
    const bool isOver = _pImpl->find(*_pImpl->pointer, part) != nullptr;
    if (!isOver && _pImpl->isOverlayEmpty)
        return;
    _pImpl->isOverlayChanged = true;
    _pImpl->changed();
}

void Plot::onExited()
{
    if (!_pImpl->pointer)
        return;
    _pImpl->pointer.reset();
    if (_pImpl->isOverlayEmpty)
        return;
    _pImpl->isOverlayChanged = true;
    _pImpl->changed();
}

bool Plot::onScroll(const InputDevice& device)
{
    const Point distance = device.getFramePoint(), place = device.getPlace();
    unsigned int part = 0;
    if (!isFinitePoint(distance) || !isFinitePoint(place))
        return false;
    Axes::Impl* const pAxes = _pImpl->find(place, part);
    if (pAxes == nullptr)
        return false;
    if (device.getKey().isShiftPressed() || distance.y == 0)
        pAxes->pan(part & ~(Axes::Impl::cY | Axes::Impl::cRight), distance.x + distance.y, 0);
    else
    {
        constexpr double cLeast = 0.05;
        const double units = distance.y / zav::s_scrollAccelleration;
        pAxes->zoom(part, std::max(cLeast, 1 + zav::s_zoomIncrement * units / 100), place);
    }
    _pImpl->changed();
    return true;
}

bool Plot::onZoom(const InputDevice& device)
{
    const Point place = device.getFramePoint();
    unsigned int part = 0;
    Axes::Impl* const pAxes = isFinitePoint(place) ? _pImpl->find(place, part) : nullptr;
    if (pAxes == nullptr)
        return false;
    pAxes->zoom(part, device.getScale(), place);
    _pImpl->changed();
    return true;
}

bool Plot::onKey(const Key& key)
{
    using Virtual = Key::Virtual;
    Impl& impl = *_pImpl;
    const Virtual code = key.getVirtual();
    const char character = key.isASCII() ? key.getChar() : '\0';
    unsigned int part = 0;
    Axes::Impl* pAxes = impl.pointer ? impl.find(*impl.pointer, part) : nullptr;
    if (pAxes == nullptr)
    {
        pAxes = &impl.axesOf(0);
        part = Axes::Impl::cX | Axes::Impl::cY | Axes::Impl::cRight;
    }
    const Axes::Rect& area = pAxes->area;
    const Point about = impl.pointer.value_or(Point((area.left + area.right) / 2, (area.top + area.bottom) / 2));
    const double step = 1 + InputDevice::getDefaultZoomIncrement();
    if (code == Virtual::Escape && impl.drag == Impl::Drag::Box)
    {
        impl.drag = Impl::Drag::None;
        impl.isOverlayChanged = true;
    }
    else if (character == '+' || character == '=' || code == Virtual::KeypadPlus)
        pAxes->zoom(part, step, about);
    else if (character == '-' || code == Virtual::KeypadMinus)
        pAxes->zoom(part, 1 / step, about);
    else if (code == Virtual::Left || code == Virtual::Right)
        pAxes->pan(part, code == Virtual::Left ? cKeyStep : -cKeyStep, 0);
    else if (code == Virtual::Up || code == Virtual::Down)
        pAxes->pan(part, 0, code == Virtual::Up ? cKeyStep : -cKeyStep);
    else if (character == '0' || code == Virtual::Home)
        pAxes->release(Axes::Impl::cX | Axes::Impl::cY | Axes::Impl::cRight);
    else
        return false;
    impl.changed();
    return true;
}

} // namespace gui::draw
