#include "PlotImpl.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <string>

namespace gui::draw
{

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
    constexpr double cReach = 40, cInset = 7, cGap = 14, cDash = 6;
    const std::optional<Hit> hit = findNearest(pointer, cReach);
    if (!hit || isBare)
        return;
    const double scale = paper.scale, pixel = std::max(1.0, std::round(paper.style.lineWidth * scale));
    const PlotScene::Rect pixels = scaled(area, scale);
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
    width = std::ceil(std::max(width, paper.texts.widthOf(label, plain)) + 2 * cInset);
    const double height = std::ceil(line * (label.empty() ? 2 : 3) + cInset);
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
    double at = boxTop + cInset / 2 + line / 2;
    if (!label.empty())
    {
        paper.texts.add(label, named, {boxLeft + cInset, at}, Anchor::Left);
        at += line;
    }
    paper.texts.add(yText, plain, {boxLeft + cInset, at}, Anchor::Left);
    paper.texts.add(xText, {.face = paper.style.face, .size = paper.style.labelSize, .paint = paper.style.labels},
                    {boxLeft + cInset, at + line}, Anchor::Left);
}

} // namespace gui::draw
