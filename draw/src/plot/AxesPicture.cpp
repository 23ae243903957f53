#include "AxesImpl.h"

#include <algorithm>
#include <cmath>

namespace gui::draw
{

namespace
{

// In points.
constexpr double cTick = 5, cMinorTick = 2.5, cLabelGap = 4, cPad = 12, cTitleGap = 6, cFarPad = 18;
constexpr double cLeastArea = 24; // with titles
constexpr double cGridPeriod = 5;
constexpr double cBold = 0.045; // em, for titles in a face that somebody chose
constexpr double cBarWidth = 14, cBarGap = 16;

// So many that they are no ticks any more.
template <typename Side>
bool areCrowded(const Side& side)
{
    constexpr double cLeast = 3; // points from one to the next
    return static_cast<double>(side.ticks.getMinor().size()) * cLeast > side.length;
}

double linesOf(const std::string& text) { return 1 + static_cast<double>(std::count(text.begin(), text.end(), '\n')); }

TextStyle labelStyle(const PlotStyle& style)
{
    return {.face = style.face, .size = style.labelSize, .paint = style.labels};
}

TextStyle titleStyle(const PlotStyle& style)
{
    const Typeface face = style.face ? style.face : Typeface::named("sans-serif", {.weight = 600});
    return {.face = face, .size = style.titleSize, .paint = style.ink, .embolden = style.face ? cBold : 0};
}

TextStyle axisTitleStyle(const PlotStyle& style)
{
    return {.face = style.face, .size = style.axisTitleSize, .paint = style.ink};
}

// As wide as so many points, at least a pixel, on whole pixels about a place.
struct Hairline
{
    double from, to;
};

Hairline hairline(double place, double width)
{
    const double pixels = std::max(std::round(width), 1.0), from = std::round(place - pixels / 2);
    return {from, from + pixels};
}

} // namespace

bool Axes::Impl::isThere(const HeatMap& map)
{
    const double width = map.getExtent().right - map.getExtent().left;
    const double height = map.getExtent().bottom - map.getExtent().top;
    return map.getColumns() > 0 && width > 0 && height > 0 && std::isfinite(width) && std::isfinite(height);
}

bool Axes::Impl::hasRight() const
{
    return std::any_of(series.begin(), series.end(),
                       [](const auto& pSeries) { return pSeries->getStyle().isOnRight && pSeries->isVisible(); });
}

td::Color Axes::Impl::colorOf(std::size_t number, const PlotStyle& style) const
{
    return style.colors.empty() ? style.ink : style.colors[number % style.colors.size()];
}

td::Color Axes::Impl::colorOf(const Series& wanted, const PlotStyle& style) const
{
    if (wanted.getStyle().color)
        return *wanted.getStyle().color;
    std::size_t number = 0;
    for (const std::unique_ptr<Series>& pSeries : series)
    {
        if (pSeries.get() == &wanted)
            break;
        number += pSeries->getStyle().color ? 0 : 1;
    }
    return colorOf(number, style);
}

void Axes::Impl::makeTicks(Side& side, bool isX, double length, const PlotPaper& paper)
{
    const Axis& axis = side.axis;
    const Ticks::Range& range = axis.getRange();
    if (side.range == range && side.length == length && side.scale == axis.getScale() &&
        side.distance == axis.getTickDistance() && side.labelSize == paper.style.labelSize)
        return;
    // While it only moves, its step stays.
    const Scale& scale = axis.getScale();
    const double span = scale.toPlace(range.high) - scale.toPlace(range.low);
    const double before = scale.toPlace(side.range.high) - scale.toPlace(side.range.low);
    const bool isOnlyMoved = side.length == length && side.scale == scale && side.distance == axis.getTickDistance() &&
                             std::abs(span - before) < 1e-9 * span;
    const TextStyle style = labelStyle(paper.style);
    Ticks::Room room{.length = length, .distance = axis.getTickDistance(), .space = isX ? 14.0 : 4.0};
    if (isX)
        room.extentOf = [&](std::string_view label) { return paper.texts.widthOf(label, style); };
    else
        room.extentOf = [&](std::string_view) { return PlotTexts::heightOf(style); };
    side.ticks = Ticks(scale, range, room, isOnlyMoved ? side.ticks.getStep() : 0);
    side.range = range;
    side.length = length;
    side.scale = scale;
    side.distance = axis.getTickDistance();
    side.labelSize = paper.style.labelSize;
}

void Axes::Impl::layOut(const Rect& newFrame, const PlotPaper& paper, bool mayRepeat)
{
    const PlotStyle& style = paper.style;
    const double line = style.labelSize * 1.25;
    // How much of the paper a title takes.
    const auto depthOf = [](const std::string& text, double size)
    { return text.empty() ? 0 : size * 1.35 * linesOf(text) + cTitleGap; };
    const bool isResized = !(frame == newFrame);
    frame = newFrame;
    const auto snap = [&paper](double points) { return std::round(points * paper.scale) / paper.scale; };
    if (isBare)
    {
        area = {snap(frame.left), snap(frame.top), snap(frame.right), snap(frame.bottom)};
        makeTicks(x, true, area.right - area.left, paper);
        makeTicks(y, false, area.bottom - area.top, paper);
        return;
    }
    const bool isTime = x.axis.getScale().kind == Scale::Kind::Time;
    const double labelsBelow = cPad / 2 + cTick + cLabelGap + line * (isTime ? 2 : 1);
    const double xTitle = depthOf(x.axis.getTitle(), style.axisTitleSize), aboveAll = depthOf(title, style.titleSize);
    // Titles that would leave next to nothing of the area have no room, those of axes before that of all.
    const double height = frame.bottom - frame.top - cPad - labelsBelow - cLeastArea;
    hasXTitle = xTitle > 0 && xTitle + std::max(aboveAll, line / 2) <= height;
    hasTitle = aboveAll > 0 && aboveAll + (hasXTitle ? xTitle : cPad / 2) <= height;
    area.top = snap(frame.top + cPad + (hasTitle ? aboveAll + (hasNoteRow ? line : 0) : line / 2));
    area.bottom = std::max(snap(frame.bottom - labelsBelow - (hasXTitle ? xTitle : cPad / 2)), area.top + 1);
    const TextStyle labels = labelStyle(style);
    double sideTitles = 0;
    // As wide as its labels, in steps, so that the area stays where it is while they change.
    const auto widthOf = [&](Side& side, double& kept)
    {
        makeTicks(side, false, area.bottom - area.top, paper);
        double width = 0;
        for (const Ticks::Tick& tick : side.ticks.getTicks())
            width = std::max(width, paper.texts.widthOf(tick.label, labels));
        width = std::ceil(width / 4) * 4;
        if (isResized || width > kept || width < kept - 16)
            kept = width;
        sideTitles += depthOf(side.axis.getTitle(), style.axisTitleSize);
        return cPad + kept + cTick + cLabelGap;
    };
    double left = widthOf(y, leftWidth);
    const double yTitle = sideTitles;
    double end = hasRight() ? widthOf(right, rightWidth) : cPad + cFarPad;
    if (!maps.empty())
    {
        colors.axis.setTitle(maps.front()->getTitle());
        colors.axis.setTickDistance(48);
        const auto [low, high] = std::minmax({maps.front()->getLow(), maps.front()->getHigh()});
        colors.axis.setRange(low, high);
        end = (hasRight() ? end : 0) + cBarGap + cBarWidth + widthOf(colors, colorsWidth);
    }
    hasSideTitles = frame.right - frame.left - left - end - sideTitles >= cLeastArea;
    if (hasSideTitles)
    {
        left += yTitle;
        end += sideTitles - yTitle;
    }
    area.left = snap(frame.left + left);
    area.right = std::max(snap(frame.right - end), area.left + 1);
    makeTicks(x, true, area.right - area.left, paper);
    if (mayRepeat && isNoteInTitle(paper) != hasNoteRow)
    {
        hasNoteRow = !hasNoteRow;
        layOut(newFrame, paper, false);
    }
}

// Whether what labels leave out would be written over the title.
bool Axes::Impl::isNoteInTitle(const PlotPaper& paper)
{
    if (!hasTitle)
        return false;
    const auto widthOf = [&](const Side& side)
    { return side.ticks.getNote().empty() ? 0 : paper.texts.widthOf(side.ticks.getNote(), labelStyle(paper.style)); };
    const double left = widthOf(y), atRight = hasRight() ? widthOf(right) : 0, bar = maps.empty() ? 0 : widthOf(colors);
    const double barEnd = frame.right - cPad - colorsWidth - cTick - cLabelGap;
    if (left + atRight + bar == 0)
        return false;
    const auto [from, to] = placeTitle(title, titleStyle(paper.style), true, paper).extent;
    return (left > 0 && from < area.left - cTick - cLabelGap + left + cLabelGap) ||
           (atRight > 0 && to > area.right - atRight - cLabelGap) || (bar > 0 && to > barEnd - bar - cLabelGap);
}

void Axes::Impl::drawGrid(const PlotPaper& paper)
{
    const double scale = paper.scale, width = paper.style.lineWidth * scale;
    const PlotScene::Rect pixels = scaled(area, scale);
    const auto add = [&](bool isUpright, double place, td::Color color)
    {
        const Hairline at = hairline(place, width);
        const PlotScene::Rect rect = isUpright ? PlotScene::Rect{at.from, pixels.top, at.to, pixels.bottom}
                                               : PlotScene::Rect{pixels.left, at.from, pixels.right, at.to};
        if (paper.style.isGridDashed)
            paper.scene.addDashedRect(rect, cGridPeriod * scale, color);
        else
            paper.scene.addRect(rect, color);
    };
    const auto addAll = [&](const Side& side, bool isUpright)
    {
        if (!side.axis.hasGrid())
            return;
        const AxisMap map(side.axis, isUpright ? pixels.left : pixels.bottom, isUpright ? pixels.right : pixels.top);
        if (hasMinorGrid && !areCrowded(side))
            for (const double value : side.ticks.getMinor())
                add(isUpright, map.toPixel(value), paper.style.minorGrid);
        for (const Ticks::Tick& tick : side.ticks.getTicks())
            add(isUpright, map.toPixel(tick.value), paper.style.grid);
    };
    addAll(x, true);
    addAll(y, false);
    if (hasRight())
        addAll(right, false);
}

void Axes::Impl::drawMaps(const PlotPaper& paper)
{
    constexpr double cMostSamples = 4;
    const double scale = paper.scale;
    const AxisMap mapOfX = mapX(scale), mapOfY(y.axis, area.bottom * scale, area.top * scale);
    for (const std::unique_ptr<HeatMap>& pMap : maps)
    {
        const HeatMap& map = *pMap;
        if (!isThere(map))
            continue;
        const HeatMap::Rect& extent = map.getExtent();
        PlotScene::GridLook look{map.getID(),   map.getVersion(), &map.getColorMap(), map.getValues(), map.getColumns(),
                                 map.getRows(), map.getLow(),     map.getHigh(),      map.isSmooth()};
        look.areLogarithmic = {mapOfX.isLogarithmic, mapOfY.isLogarithmic};
        // Linear axes go to cells at once, which keeps digits.
        const double columns = static_cast<double>(map.getColumns()), rows = static_cast<double>(map.getRows());
        const double perX = columns / (extent.right - extent.left), perY = rows / (extent.bottom - extent.top);
        const auto join = [](const AxisMap& axis, double begin, double cellsPerUnit, double& factor, double& add,
                             double& cellFactor, double& cellAdd)
        {
            factor = 1 / axis.perPlace;
            add = axis.low - axis.origin / axis.perPlace;
            cellFactor = cellsPerUnit;
            cellAdd = -begin * cellsPerUnit;
            if (axis.isLogarithmic)
                return;
            factor *= cellsPerUnit;
            add = (axis.low - begin) * cellsPerUnit - axis.origin * factor;
            cellFactor = 1;
            cellAdd = 0;
        };
        join(mapOfX, extent.left, perX, look.toPlace[0], look.toPlace[2], look.toCell[0], look.toCell[2]);
        join(mapOfY, extent.top, perY, look.toPlace[1], look.toPlace[3], look.toCell[1], look.toCell[3]);
        const PlotScene::Rect box(mapOfX.toPixel(extent.left), mapOfY.toPixel(extent.top), mapOfX.toPixel(extent.right),
                                  mapOfY.toPixel(extent.bottom));
        const PlotScene::Rect pixels = scaled(area, scale);
        // An edge may be no number, on a logarithmic axis.
        const double left = box.left > pixels.left ? box.left : pixels.left;
        const double top = box.top > pixels.top ? box.top : pixels.top;
        const double inPixel = std::max(columns / (box.right - box.left), rows / (box.bottom - box.top));
        look.nSamples = inPixel > 0.75 ? static_cast<int>(std::min(std::ceil(inPixel * 2 - 0.5), cMostSamples)) : 1;
        paper.scene.addGrid({std::floor(left), std::floor(top), std::ceil(std::min(box.right, pixels.right)),
                             std::ceil(std::min(box.bottom, pixels.bottom))},
                            look);
        std::vector<PlotScene::Segment> segments;
        for (const HeatMap::Contour& contour : map.getContours())
        {
            for (std::size_t i = 1; i < contour.points.size(); ++i)
            {
                const auto &a = contour.points[i - 1], &b = contour.points[i];
                const PlotScene::Segment s{mapOfX.toPixel(a.x), mapOfY.toPixel(a.y), mapOfX.toPixel(b.x),
                                           mapOfY.toPixel(b.y)};
                if (std::max(s.x0, s.x1) > pixels.left && std::min(s.x0, s.x1) < pixels.right &&
                    std::max(s.y0, s.y1) > pixels.top && std::min(s.y0, s.y1) < pixels.bottom)
                    segments.push_back(s);
            }
        }
        paper.scene.addLine(segments, map.getContourWidth() / 2 * scale, map.getContourColor(), {}, false);
    }
}

// Which colour is which number: another grid, of one column.
void Axes::Impl::drawColorBar(const PlotPaper& paper)
{
    if (maps.empty() || maps.front()->getColumns() == 0)
        return;
    static const std::vector<float> s_shares = []
    {
        std::vector<float> shares(ColorMap::cSize);
        for (std::size_t i = 0; i < shares.size(); ++i)
            shares[i] = static_cast<float>(i);
        return shares;
    }();
    const HeatMap& map = *maps.front();
    const double scale = paper.scale, pixel = std::max(1.0, std::round(paper.style.lineWidth * scale));
    const double tick = cTick * scale, end = hasRight() ? cTick + cLabelGap + rightWidth + cPad : 0;
    const double left = std::round((area.right + end + cBarGap) * scale);
    const double barRight = left + std::round(cBarWidth * scale);
    const double top = std::round(area.top * scale), bottom = std::round(area.bottom * scale);
    constexpr double cLast = ColorMap::cSize - 1;
    const bool isFalling = map.getLow() > map.getHigh();
    PlotScene::GridLook look{~map.getID(),    map.getVersion(),      &map.getColorMap(),   s_shares, 1,
                             s_shares.size(), isFalling ? cLast : 0, isFalling ? 0 : cLast};
    look.toPlace = {1, -static_cast<double>(ColorMap::cSize) / (bottom - top), -left + 0.25,
                    bottom * static_cast<double>(ColorMap::cSize) / (bottom - top)};
    look.toCell = {0, 1, 0.5, 0};
    paper.scene.addRect({left - pixel, top - pixel, barRight + pixel, bottom + pixel}, paper.style.ink);
    paper.scene.addGrid({left, top, barRight, bottom}, look);
    const TextStyle style = labelStyle(paper.style);
    const AxisMap heights(colors.axis, area.bottom, area.top);
    const double at = barRight / scale;
    for (const Ticks::Tick& label : colors.ticks.getTicks())
    {
        const Hairline line = hairline(heights.toPixel(label.value) * scale, pixel);
        paper.scene.addRect({barRight + pixel, line.from, barRight + pixel + tick, line.to}, paper.style.ink);
        paper.texts.add(label.label, style, {at + cTick + cLabelGap, heights.toPixel(label.value)}, Anchor::Left);
    }
    paper.texts.add(colors.ticks.getNote(), style, {at, hasTitle ? area.top - style.size : getNotesBottom(paper)},
                    Anchor::BottomRight);
    if (hasSideTitles)
        addTitle(map.getTitle(), axisTitleStyle(paper.style), at + cTick + cLabelGap + colorsWidth + cTitleGap,
                 Anchor::Bottom, -90, paper);
}

void Axes::Impl::drawSeries(const PlotPaper& paper)
{
    const double scale = paper.scale;
    SeriesGeometry::View view;
    view.area = scaled(area, scale);
    view.pixelsPerPoint = scale;
    view.x = mapX(scale);
    for (const std::unique_ptr<Series>& pSeries : series)
    {
        view.y = mapY(*pSeries, scale);
        view.color = colorOf(*pSeries, paper.style);
        paper.geometry.add(*pSeries, view, paper.scene);
    }
}

// The axes' lines, and ticks outwards.
void Axes::Impl::drawFrame(const PlotPaper& paper)
{
    const double scale = paper.scale, width = paper.style.lineWidth * scale;
    const PlotScene::Rect pixels = scaled(area, scale);
    const Hairline level = hairline(pixels.bottom, width);
    const auto addTicks = [&](const Side& side, bool isUpright, double from, double outwards)
    {
        const AxisMap map(side.axis, isUpright ? pixels.left : pixels.bottom, isUpright ? pixels.right : pixels.top);
        const auto add = [&](double value, double length)
        {
            const Hairline at = hairline(map.toPixel(value), width);
            const double to = from + outwards * length * scale;
            if (isUpright)
                paper.scene.addRect({at.from, from, at.to, to}, paper.style.ink);
            else
                paper.scene.addRect({std::min(from, to), at.from, std::max(from, to), at.to}, paper.style.ink);
        };
        for (const Ticks::Tick& tick : side.ticks.getTicks())
            add(tick.value, cTick);
        for (const double value : side.ticks.getMinor())
            if (!areCrowded(side))
                add(value, cMinorTick);
    };
    const Hairline left = hairline(pixels.left, width);
    addTicks(x, true, level.to, 1);
    addTicks(y, false, left.from, -1);
    double end = pixels.right;
    if (hasRight())
    {
        const Hairline at = hairline(pixels.right, width);
        addTicks(right, false, at.to, 1);
        paper.scene.addRect({at.from, pixels.top, at.to, level.from}, paper.style.ink);
        end = at.to;
    }
    paper.scene.addRect({left.from, pixels.top, left.to, level.from}, paper.style.ink);
    paper.scene.addRect({left.from, level.from, end, level.to}, paper.style.ink);
}

// Without a title there is less room, right above the area.
double Axes::Impl::getNotesBottom(const PlotPaper& paper) const
{
    return area.top - (hasTitle ? paper.style.labelSize * 0.875 : 3);
}

// Where the middle of a text along x is, so that the frame does not cut it off.
double Axes::Impl::within(double at, double half) const
{
    constexpr double cEdge = 2; // points
    return std::max(std::min(at, frame.right - cEdge - half), frame.left + cEdge + half);
}

void Axes::Impl::drawTickTexts(const PlotPaper& paper)
{
    const TextStyle style = labelStyle(paper.style);
    const double line = paper.style.labelSize * 1.25, below = area.bottom + cTick + cLabelGap;
    const AxisMap mapOfX = mapX(1);
    double end = frame.left; // of what the second line says
    for (const Ticks::Tick& tick : x.ticks.getTicks())
    {
        const double at = mapOfX.toPixel(tick.value), half = paper.texts.widthOf(tick.context, style) / 2;
        paper.texts.add(tick.label, style, {within(at, paper.texts.widthOf(tick.label, style) / 2), below},
                        Anchor::Top);
        if (tick.context.empty() || within(at, half) - half < end)
            continue;
        paper.texts.add(tick.context, style, {within(at, half), below + line}, Anchor::Top);
        end = within(at, half) + half + cLabelGap;
    }
    const auto addBeside = [&](const Side& side, double at, Anchor anchor)
    {
        const AxisMap map(side.axis, area.bottom, area.top);
        for (const Ticks::Tick& tick : side.ticks.getTicks())
            paper.texts.add(tick.label, style, {at, map.toPixel(tick.value)}, anchor);
    };
    addBeside(y, area.left - cTick - cLabelGap, Anchor::Right);
    if (hasRight())
        addBeside(right, area.right + cTick + cLabelGap, Anchor::Left);
    // What labels leave out.
    paper.texts.add(y.ticks.getNote(), style,
                    {hasTitle ? area.left - cTick - cLabelGap : area.left, getNotesBottom(paper)}, Anchor::BottomLeft);
    if (hasRight())
        paper.texts.add(right.ticks.getNote(), style, {area.right, getNotesBottom(paper)}, Anchor::BottomRight);
    paper.texts.add(x.ticks.getNote(), style, {frame.right - cPad / 2, std::min(below + line, frame.bottom - line)},
                    Anchor::TopRight);
}

// In the middle of the area's side, as far as there is room for it: else in the frame's, and shorter.
Axes::Impl::TitlePlace Axes::Impl::placeTitle(const std::string& text, const TextStyle& style, bool isLevel,
                                              const PlotPaper& paper) const
{
    const double begin = isLevel ? frame.left + cPad / 2 : hasTitle ? area.top - cTitleGap : frame.top + cPad / 2;
    const double end = isLevel     ? frame.right - cPad / 2
                       : hasXTitle ? area.bottom + cTick + cLabelGap
                                   : frame.bottom - cPad / 2;
    TitlePlace place{paper.texts.shortened(text, style, end - begin), {}};
    const double half = paper.texts.widthOf(place.text, style) / 2;
    const double wanted = (isLevel ? area.left + area.right : area.top + area.bottom) / 2;
    const double middle = std::max(std::min(wanted, end - half), begin + half);
    place.extent = {middle - half, middle + half};
    return place;
}

// @param at  across it
void Axes::Impl::addTitle(const std::string& text, const TextStyle& style, double at, Anchor anchor, double angle,
                          const PlotPaper& paper)
{
    if (text.empty())
        return;
    const bool isLevel = angle == 0;
    const TitlePlace place = placeTitle(text, style, isLevel, paper);
    const double middle = (place.extent.first + place.extent.second) / 2;
    paper.texts.add(place.text, style, isLevel ? Axes::Point(middle, at) : Axes::Point(at, middle), anchor, angle);
}

void Axes::Impl::drawTitles(const PlotPaper& paper)
{
    const PlotStyle& style = paper.style;
    const TextStyle axisTitle = axisTitleStyle(style);
    if (hasTitle)
        addTitle(title, titleStyle(style), frame.top + cPad, Anchor::Top, 0, paper);
    if (hasXTitle)
        addTitle(x.axis.getTitle(), axisTitle, frame.bottom - cPad / 2, Anchor::Bottom, 0, paper);
    if (!hasSideTitles)
        return;
    // Upwards along the axis, wherever labels end.
    addTitle(y.axis.getTitle(), axisTitle, area.left - cTick - cLabelGap - leftWidth - cTitleGap, Anchor::Bottom, 90,
             paper);
    if (hasRight())
        addTitle(right.axis.getTitle(), axisTitle, area.right + cTick + cLabelGap + rightWidth + cTitleGap,
                 Anchor::Bottom, -90, paper);
}

void Axes::Impl::draw(const Rect& newFrame, const PlotPaper& paper)
{
    layOut(newFrame, paper);
    const double scale = paper.scale;
    const PlotScene::Rect pixels = scaled(area, scale);
    const PlotScene::Rect everywhere = scaled(frame, scale);
    paper.scene.setClip(pixels);
    if (paper.style.area != paper.style.background)
        paper.scene.addRect(pixels, paper.style.area);
    drawMaps(paper);
    if (!isBare)
        drawGrid(paper);
    drawSeries(paper);
    paper.scene.setClip(everywhere);
    if (isBare)
        return;
    drawFrame(paper);
    drawTickTexts(paper);
    drawTitles(paper);
    drawColorBar(paper);
    drawLegend(paper);
}

} // namespace gui::draw
