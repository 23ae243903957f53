#include "PlotImpl.h"

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

bool isFinitePoint(const td::Point<double>& point) { return std::isfinite(point.x) && std::isfinite(point.y); }

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
    if ((part & Axes::Impl::cX) != 0)
        pAxes->x.axis.release();
    if ((part & Axes::Impl::cY) != 0)
        pAxes->y.axis.release();
    if ((part & Axes::Impl::cRight) != 0)
        pAxes->right.axis.release();
    ++pAxes->ownVersion;
    _pImpl->changed();
}

void Plot::onMoved(const InputDevice& device)
{
    if (!isFinitePoint(device.getFramePoint()))
        return;
    _pImpl->pointer = device.getFramePoint();
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
    {
        for (Axis* pAxis : {&pAxes->x.axis, &pAxes->y.axis, &pAxes->right.axis})
            pAxis->release();
        ++pAxes->ownVersion;
    }
    else
        return false;
    impl.changed();
    return true;
}

// What the pointer shows: a box that is drawn, or the nearest sample's values.
void Plot::Impl::buildOverlay()
{
    isOverlayChanged = false;
    overlay.clear();
    const double pixel = std::max(1.0, std::round(style.lineWidth * scale));
    overlay.setClip({0, 0, size.width * scale, size.height * scale});
    const PlotPaper paper{style, overlay, overlayTexts, geometry, scale};
    if (drag == Drag::Box)
    {
        const Axes::Rect& area = pDragged->area;
        const auto x = [&](double value) { return std::round(std::clamp(value, area.left, area.right) * scale); };
        const auto y = [&](double value) { return std::round(std::clamp(value, area.top, area.bottom) * scale); };
        const PlotScene::Rect box(x(dragFrom.x), y(dragFrom.y), x(dragTo.x), y(dragTo.y));
        const td::Color color = style.colors.empty() ? style.ink : style.colors.front();
        overlay.addRect(box, SeriesGeometry::faint(color, 0.12));
        overlay.addRect({box.left, box.top, box.right, box.top + pixel}, color);
        overlay.addRect({box.left, box.bottom - pixel, box.right, box.bottom}, color);
        overlay.addRect({box.left, box.top, box.left + pixel, box.bottom}, color);
        overlay.addRect({box.right - pixel, box.top, box.right, box.bottom}, color);
    }
    else if (pointer && hasCrosshair && drag == Drag::None)
    {
        for (const std::unique_ptr<Axes>& pAxes : axes)
            if (pAxes->_pImpl->partAt(*pointer) == (Axes::Impl::cX | Axes::Impl::cY | Axes::Impl::cRight))
                pAxes->_pImpl->drawOverlay(paper, *pointer, *pAxes);
    }
    overlayTexts.finish();
    isOverlayEmpty = overlay.isEmpty();
}

void Axes::Impl::drawOverlay(const PlotPaper& paper, Point pointer, const Axes& axes)
{
    constexpr double cReach = 40, cPad = 7, cGap = 14, cDash = 6;
    const std::optional<Hit> hit = findNearest(pointer, cReach);
    if (!hit || isBare)
        return;
    const double scale = paper.scale, pixel = std::max(1.0, std::round(paper.style.lineWidth * scale));
    const PlotScene::Rect pixels{area.left * scale, area.top * scale, area.right * scale, area.bottom * scale};
    const double px = hit->point.x * scale, py = hit->point.y * scale;
    if (px < pixels.left || px > pixels.right || py < pixels.top - 1 || py > pixels.bottom + 1)
        return;
    const td::Color faint = SeriesGeometry::faint(paper.style.ink, 0.45);
    const double left = std::round(px - pixel / 2), top = std::round(py - pixel / 2);
    paper.scene.addDashedRect({left, pixels.top, left + pixel, pixels.bottom}, cDash * scale, faint);
    paper.scene.addDashedRect({pixels.left, top, pixels.right, top + pixel}, cDash * scale, faint);
    const Series& s = *hit->pSeries;
    const td::Color color = colorOf(s, paper.style);
    paper.scene.addMark(Marker::Circle, px, py, 9 * scale, color, 1.75 * scale, paper.style.area);

    // The values, in a panel where there is room.
    const TextStyle plain{.face = paper.style.face, .size = paper.style.labelSize, .paint = paper.style.ink};
    const TextStyle named{.face = paper.style.face, .size = paper.style.labelSize, .paint = color};
    const std::string xText = axes.format(axes.x(), hit->x), yText = axes.format(yOf(s), hit->y);
    const std::string& label = s.getStyle().label;
    const double line = paper.style.labelSize * 1.4;
    double width = std::max(paper.texts.widthOf(xText, plain), paper.texts.widthOf(yText, plain));
    width = std::ceil(std::max(width, paper.texts.widthOf(label, plain)) + 2 * cPad);
    const double height = std::ceil(line * (label.empty() ? 2 : 3) + cPad);
    double boxLeft = hit->point.x + cGap, boxTop = hit->point.y - cGap - height;
    if (boxLeft + width > area.right)
        boxLeft = hit->point.x - cGap - width;
    if (boxTop < area.top)
        boxTop = hit->point.y + cGap;
    const PlotScene::Rect box{std::round(boxLeft * scale), std::round(boxTop * scale),
                              std::round((boxLeft + width) * scale), std::round((boxTop + height) * scale)};
    paper.scene.addRoundRect({box.left - pixel, box.top - pixel, box.right + pixel, box.bottom + pixel}, 5 * scale,
                             SeriesGeometry::faint(paper.style.ink, 0.25));
    td::Color panel = paper.style.panel;
    panel.setAlpha(245);
    paper.scene.addRoundRect(box, 4.5 * scale, panel);
    double at = boxTop + cPad / 2 + line / 2;
    if (!label.empty())
    {
        paper.texts.add(label, named, {boxLeft + cPad, at}, Anchor::Left);
        at += line;
    }
    paper.texts.add(yText, plain, {boxLeft + cPad, at}, Anchor::Left);
    paper.texts.add(xText, {.face = paper.style.face, .size = paper.style.labelSize, .paint = paper.style.labels},
                    {boxLeft + cPad, at + line}, Anchor::Left);
}

} // namespace gui::draw
