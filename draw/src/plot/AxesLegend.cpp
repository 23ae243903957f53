#include "AxesImpl.h"

#include <algorithm>
#include <cmath>

namespace gui::draw
{

namespace
{

// In points.
constexpr double cLegendPad = 8, cSampleWidth = 22, cSampleGap = 7, cLegendMargin = 8, cColumnGap = 14;
constexpr double cLeastLabel = 3; // em, of labels in columns that are beside each other

struct LegendRow
{
    const Series* pSeries; // null for those that have no room
    std::string label;
};

/// The rows of a legend, column by column.
struct LegendTable
{
    std::vector<LegendRow> rows;
    std::size_t nRows = 0;      // of a column
    std::vector<double> widths; // of the columns, in points
    double width = 0;           // of all, with the gaps between them

    /// As many below each other as there is room for, and then beside each other, with labels as short as that takes.
    void layOut(const td::Size<double>& room, double line, const TextStyle& style, PlotTexts& texts)
    {
        const double aside = cSampleWidth + cSampleGap, least = aside + cLeastLabel * style.size;
        // Never more than there are, however large a careless view is.
        const auto nFitting = [n = rows.size()](double number)
        { return number < static_cast<double>(n) ? static_cast<std::size_t>(std::max(number, 1.0)) : n; };
        const std::size_t nMost = nFitting(room.height / line);
        const std::size_t nBeside = nFitting((room.width + cColumnGap) / (least + cColumnGap));
        const std::size_t nColumns = std::min((rows.size() + nMost - 1) / nMost, nBeside);
        nRows = std::min((rows.size() + nColumns - 1) / nColumns, nMost);
        if (rows.size() > nRows * nColumns)
        {
            rows.resize(nRows * nColumns);
            rows.back() = {nullptr, "\u2026"};
        }
        const double gaps = cColumnGap * static_cast<double>(nColumns - 1);
        const double share = (room.width - gaps) / static_cast<double>(nColumns);
        for (double most = room.width; widths.empty() || width > room.width; most = share)
        {
            widths.assign(nColumns, 0);
            width = gaps;
            for (std::size_t i = 0; i < rows.size(); ++i)
            {
                rows[i].label = texts.shortened(rows[i].label, style, most - aside);
                double& widest = widths[i / nRows];
                widest = std::max(widest, aside + texts.widthOf(rows[i].label, style));
            }
            for (const double widest : widths)
                width += widest;
            if (most == share)
                return;
        }
    }
};

} // namespace

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
    const TextStyle style{.face = paper.style.face, .size = paper.style.labelSize, .paint = paper.style.ink};
    const double line = paper.style.labelSize * 1.55;
    const td::Size<double> room{area.right - area.left - 2 * (cLegendMargin + cLegendPad),
                                area.bottom - area.top - 2 * cLegendMargin - cLegendPad};
    LegendTable table;
    for (const std::unique_ptr<Series>& pSeries : series)
    {
        if (!pSeries->isVisible() || pSeries->getStyle().label.empty())
            continue;
        LegendRow& row = table.rows.emplace_back(LegendRow{pSeries.get(), pSeries->getStyle().label});
        std::replace(row.label.begin(), row.label.end(), '\n', ' ');
    }
    if (legend == Legend::None || table.rows.empty() || room.height < line ||
        room.width < cSampleWidth + cSampleGap + cLeastLabel * style.size)
        return;
    table.layOut(room, line, style, paper.texts);
    const td::Size<double> size{std::ceil(table.width + 2 * cLegendPad),
                                std::ceil(line * static_cast<double>(table.nRows) + cLegendPad)};
    const auto placeOf = [&](Legend corner)
    {
        const bool isLeft = corner == Legend::TopLeft || corner == Legend::BottomLeft;
        const bool isTop = corner == Legend::TopLeft || corner == Legend::TopRight;
        const double left = isLeft ? area.left + cLegendMargin : area.right - cLegendMargin - size.width;
        const double top = isTop ? area.top + cLegendMargin : area.bottom - cLegendMargin - size.height;
        return Rect{left, top, left + size.width, top + size.height};
    };
    // By itself it does not stand before everything.
    constexpr double cMostCovered = 0.5;
    if (legend == Legend::Auto &&
        size.width * size.height > cMostCovered * (area.right - area.left) * (area.bottom - area.top))
        return;
    if (legend != Legend::Auto)
        shownLegend = legend;
    else
        chooseLegend([&](Legend corner) { return coveredBy(placeOf(corner)); });
    const Rect box = placeOf(shownLegend);
    const double scale = paper.scale, pixel = std::max(1.0, std::round(scale * 0.75));
    const PlotScene::Rect pixels{std::round(box.left * scale), std::round(box.top * scale),
                                 std::round(box.right * scale), std::round(box.bottom * scale)};
    paper.scene.addRoundRect({pixels.left - pixel, pixels.top - pixel, pixels.right + pixel, pixels.bottom + pixel},
                             5 * scale, paper.style.grid);
    paper.scene.addRoundRect(pixels, 4.5 * scale, paper.style.panel);
    double left = box.left + cLegendPad;
    for (std::size_t i = 0; i < table.rows.size(); ++i)
    {
        const auto& [pSeries, label] = table.rows[i];
        const double top = box.top + cLegendPad / 2 + static_cast<double>(i % table.nRows) * line;
        if (pSeries != nullptr)
            drawSample(*pSeries, {left, top, left + cSampleWidth, top + line}, paper);
        paper.texts.add(label, style, {left + cSampleWidth + cSampleGap, top + line / 2}, Anchor::Left);
        if ((i + 1) % table.nRows == 0)
            left += table.widths[i / table.nRows] + cColumnGap;
    }
}

} // namespace gui::draw
