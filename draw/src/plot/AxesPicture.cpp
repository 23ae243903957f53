#include "AxesImpl.h"

#include <algorithm>
#include <cmath>

namespace gui::draw
{

namespace
{

// In points.
constexpr double cTick = 5, cMinorTick = 2.5, cLabelGap = 4, cPad = 12, cTitleGap = 6, cFarPad = 18;
constexpr double cGridPeriod = 5;
constexpr double cBold = 0.045; // em, for titles in a face that somebody chose
constexpr double cBarWidth = 14, cBarGap = 16;
constexpr double cLegendPad = 8, cSampleWidth = 22, cSampleGap = 7, cLegendMargin = 8;

TextStyle labelStyle(const PlotStyle& style)
{
    return {.face = style.face, .size = style.labelSize, .paint = style.labels};
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

void Axes::Impl::layOut(const Rect& newFrame, const PlotPaper& paper)
{
    const PlotStyle& style = paper.style;
    const double line = style.labelSize * 1.25, titleLine = style.axisTitleSize * 1.35;
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
    double bottom = cPad / 2 + cTick + cLabelGap + line * (isTime ? 2 : 1);
    bottom += !x.axis.getTitle().empty() ? cTitleGap + titleLine : cPad / 2;
    const double top = cPad + (title.empty() ? line / 2 : style.titleSize * 1.35 + cTitleGap);
    area.top = snap(frame.top + top);
    area.bottom = std::max(snap(frame.bottom - bottom), area.top + 1);
    const TextStyle labels = labelStyle(style);
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
        const double titleWidth = side.axis.getTitle().empty() ? 0 : titleLine + cTitleGap;
        return cPad + kept + cTick + cLabelGap + titleWidth;
    };
    const double left = widthOf(y, leftWidth);
    double end = hasRight() ? widthOf(right, rightWidth) : cPad + cFarPad;
    if (!maps.empty())
    {
        colors.axis.setTitle(maps.front()->getTitle());
        colors.axis.setTickDistance(48);
        colors.axis.setRange(maps.front()->getLow(), maps.front()->getHigh());
        end = (hasRight() ? end : 0) + cBarGap + cBarWidth + widthOf(colors, colorsWidth);
    }
    area.left = snap(frame.left + left);
    area.right = std::max(snap(frame.right - end), area.left + 1);
    makeTicks(x, true, area.right - area.left, paper);
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
        if (hasMinorGrid)
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
        if (map.getColumns() == 0)
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
                            std::move(look));
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
    PlotScene::GridLook look{~map.getID(),
                             map.getVersion(),
                             &map.getColorMap(),
                             s_shares,
                             1,
                             s_shares.size(),
                             0,
                             static_cast<double>(ColorMap::cSize - 1)};
    look.toPlace = {1, -static_cast<double>(ColorMap::cSize) / (bottom - top), -left + 0.25,
                    bottom * static_cast<double>(ColorMap::cSize) / (bottom - top)};
    look.toCell = {0, 1, 0.5, 0};
    paper.scene.addRect({left - pixel, top - pixel, barRight + pixel, bottom + pixel}, paper.style.ink);
    paper.scene.addGrid({left, top, barRight, bottom}, std::move(look));
    const TextStyle style = labelStyle(paper.style);
    const AxisMap heights(colors.axis, area.bottom, area.top);
    const double at = barRight / scale;
    for (const Ticks::Tick& label : colors.ticks.getTicks())
    {
        const Hairline line = hairline(heights.toPixel(label.value) * scale, pixel);
        paper.scene.addRect({barRight + pixel, line.from, barRight + pixel + tick, line.to}, paper.style.ink);
        paper.texts.add(label.label, style, {at + cTick + cLabelGap, heights.toPixel(label.value)}, Anchor::Left);
    }
    paper.texts.add(colors.ticks.getNote(), style, {at, area.top - style.size}, Anchor::BottomRight);
    paper.texts.add(map.getTitle(), axisTitleStyle(paper.style),
                    {at + cTick + cLabelGap + colorsWidth + cTitleGap, (area.top + area.bottom) / 2}, Anchor::Bottom,
                    -90);
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

void Axes::Impl::drawTickTexts(const PlotPaper& paper)
{
    const TextStyle style = labelStyle(paper.style);
    const double line = paper.style.labelSize * 1.25, below = area.bottom + cTick + cLabelGap;
    const AxisMap mapOfX = mapX(1);
    for (const Ticks::Tick& tick : x.ticks.getTicks())
    {
        const double at = mapOfX.toPixel(tick.value);
        paper.texts.add(tick.label, style, {at, below}, Anchor::Top);
        paper.texts.add(tick.context, style, {at, below + line}, Anchor::Top);
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
    paper.texts.add(y.ticks.getNote(), style, {area.left - cTick - cLabelGap, area.top - line * 0.7},
                    Anchor::BottomLeft);
    if (hasRight())
        paper.texts.add(right.ticks.getNote(), style, {area.right, area.top - line * 0.7}, Anchor::BottomRight);
    paper.texts.add(x.ticks.getNote(), style, {frame.right - cPad / 2, below + line}, Anchor::TopRight);
}

void Axes::Impl::drawTitles(const PlotPaper& paper)
{
    const PlotStyle& style = paper.style;
    const TextStyle axisTitle = axisTitleStyle(style);
    const double middle = (area.left + area.right) / 2, height = (area.top + area.bottom) / 2;
    if (!title.empty())
    {
        const Typeface face = style.face ? style.face : Typeface::named("sans-serif", {.weight = 600});
        paper.texts.add(title,
                        {.face = face, .size = style.titleSize, .paint = style.ink, .embolden = style.face ? cBold : 0},
                        {middle, frame.top + cPad}, Anchor::Top);
    }
    paper.texts.add(x.axis.getTitle(), axisTitle, {middle, frame.bottom - cPad / 2}, Anchor::Bottom);
    // Upwards along the axis, wherever labels end.
    paper.texts.add(y.axis.getTitle(), axisTitle, {area.left - cTick - cLabelGap - leftWidth - cTitleGap, height},
                    Anchor::Bottom, 90);
    if (hasRight())
        paper.texts.add(right.axis.getTitle(), axisTitle,
                        {area.right + cTick + cLabelGap + rightWidth + cTitleGap, height}, Anchor::Bottom, -90);
}

// How much of a rectangle samples are seen in, from 0 to 1.
double Axes::Impl::coveredBy(const Rect& rect) const
{
    constexpr int cSlices = 8;
    const AxisMap map = mapX(1);
    double covered = 0;
    for (const std::unique_ptr<Series>& pSeries : series)
    {
        const Series& s = *pSeries;
        if (!s.isVisible() || s.size() == 0)
            continue;
        const AxisMap heights = mapY(s, 1);
        if (!s.isSorted())
        {
            const std::size_t step = std::max<std::size_t>(1, s.size() / 2000);
            std::size_t n = 0;
            for (std::size_t i = s.getFirst(); i < s.size(); i += step)
            {
                const double px = map.toPixel(s.getX(i)), py = heights.toPixel(s.getY(i));
                n += px > rect.left && px < rect.right && py > rect.top && py < rect.bottom ? 1 : 0;
            }
            covered += std::min(1.0, static_cast<double>(n * step) / static_cast<double>(s.size()) * 8);
            continue;
        }
        for (int i = 0; i < cSlices; ++i)
        {
            const double width = (rect.right - rect.left) / cSlices, left = rect.left + i * width;
            const auto [first, end] = SeriesGeometry::extentOf(s, map.toValue(left), map.toValue(left + width));
            const Samples::Range range = s.getYRange(first, end);
            if (range.isEmpty())
                continue;
            const double top = std::max(rect.top, heights.toPixel(range.high) - 3);
            const double bottom = std::min(rect.bottom, heights.toPixel(range.low) + 3);
            if (bottom > top)
                covered += (0.3 + (bottom - top) / (rect.bottom - rect.top)) / cSlices;
        }
    }
    return covered;
}

// What a series looks like, in the legend.
void Axes::Impl::drawSample(const Series& s, const Rect& box, const PlotPaper& paper)
{
    const SeriesStyle& style = s.getStyle();
    const double scale = paper.scale, middle = std::round((box.top + box.bottom) / 2 * scale);
    const td::Color color = colorOf(s, paper.style);
    const PlotScene::Rect rect = scaled(box, scale);
    using Kind = Series::Kind;
    const Kind kind = s.getKind();
    const PlotScene::Rect swatch{rect.left, middle - 5 * scale, rect.right, middle + 5 * scale};
    if (kind == Kind::Bars || kind == Kind::Candles)
        paper.scene.addRect({swatch.left + 5 * scale, swatch.top, swatch.right - 5 * scale, swatch.bottom},
                            kind == Kind::Bars ? style.fill.value_or(color) : color);
    if (kind == Kind::Area || kind == Kind::Band)
        paper.scene.addRect({swatch.left, kind == Kind::Area ? middle : swatch.top, swatch.right, swatch.bottom},
                            style.fill.value_or(SeriesGeometry::faint(color, 0.28)));
    if (kind == Kind::Line || kind == Kind::Area || kind == Kind::Steps || kind == Kind::Stems)
    {
        paper.scene.addLine({{rect.left + scale, middle, rect.right - scale, middle}}, style.width / 2 * scale, color,
                            SeriesGeometry::dashesOf(style, scale));
    }
    if (style.marker != Marker::None)
    {
        const td::Color fill = s.getColorMap() ? s.getColorMap()->getColor(0.5) : color;
        paper.scene.addMark(style.marker, (rect.left + rect.right) / 2, middle,
                            std::clamp(style.markerSize, 5.0, 11.0) * scale, fill, style.edgeWidth * scale,
                            style.edgeColor);
    }
}

// Where the least is covered, once there is something to cover, and anew when there is twice as much: it stays where it
// is unless that is much worse.
void Axes::Impl::chooseLegend(const std::function<double(Legend)>& coveredAt)
{
    std::size_t n = 0;
    for (const std::unique_ptr<Series>& pSeries : series)
        n += pSeries->isVisible() ? pSeries->size() : 0;
    const bool isOther = shownLegend == Legend::None || legendVersion != ownVersion || legendSize == 0;
    if (!isOther && n < 2 * legendSize)
        return;
    constexpr double cClear = 0.02, cMuchClearer = 0.15;
    Legend best = isOther ? Legend::TopRight : shownLegend;
    double least = coveredAt(best) - (isOther ? 0 : cMuchClearer);
    for (const Legend corner : {Legend::TopRight, Legend::TopLeft, Legend::BottomRight, Legend::BottomLeft})
    {
        const double covered = coveredAt(corner);
        if (covered < least - cClear)
        {
            least = covered;
            best = corner;
        }
    }
    shownLegend = best;
    legendVersion = ownVersion;
    legendSize = n;
}

void Axes::Impl::drawLegend(const PlotPaper& paper)
{
    std::vector<const Series*> shown;
    const TextStyle style{.face = paper.style.face, .size = paper.style.labelSize, .paint = paper.style.ink};
    double width = 0;
    for (const std::unique_ptr<Series>& pSeries : series)
    {
        if (!pSeries->isVisible() || pSeries->getStyle().label.empty())
            continue;
        shown.push_back(pSeries.get());
        width = std::max(width, paper.texts.widthOf(pSeries->getStyle().label, style));
    }
    if (legend == Legend::None || shown.empty())
        return;
    const double line = paper.style.labelSize * 1.55;
    const td::Size<double> size{std::ceil(width + 2 * cLegendPad + cSampleWidth + cSampleGap),
                                std::ceil(line * static_cast<double>(shown.size()) + cLegendPad)};
    const auto placeOf = [&](Legend corner)
    {
        const bool isLeft = corner == Legend::TopLeft || corner == Legend::BottomLeft;
        const bool isTop = corner == Legend::TopLeft || corner == Legend::TopRight;
        const double left = isLeft ? area.left + cLegendMargin : area.right - cLegendMargin - size.width;
        const double top = isTop ? area.top + cLegendMargin : area.bottom - cLegendMargin - size.height;
        return Rect{left, top, left + size.width, top + size.height};
    };
    if (legend != Legend::Auto)
        shownLegend = legend;
    else
        chooseLegend([&](Legend corner) { return coveredBy(placeOf(corner)); });
    const Rect box = placeOf(shownLegend);
    if (box.left < area.left || box.top < area.top || box.bottom > area.bottom)
        return;
    const double scale = paper.scale, pixel = std::max(1.0, std::round(scale * 0.75));
    const PlotScene::Rect pixels{std::round(box.left * scale), std::round(box.top * scale),
                                 std::round(box.right * scale), std::round(box.bottom * scale)};
    paper.scene.addRoundRect({pixels.left - pixel, pixels.top - pixel, pixels.right + pixel, pixels.bottom + pixel},
                             5 * scale, paper.style.grid);
    paper.scene.addRoundRect(pixels, 4.5 * scale, paper.style.panel);
    double top = box.top + cLegendPad / 2;
    for (const Series* pSeries : shown)
    {
        const double left = box.left + cLegendPad;
        drawSample(*pSeries, {left, top, left + cSampleWidth, top + line}, paper);
        paper.texts.add(pSeries->getStyle().label, style, {left + cSampleWidth + cSampleGap, top + line / 2},
                        Anchor::Left);
        top += line;
    }
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
