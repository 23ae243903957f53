#include "SeriesGeometry.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <utility>

namespace gui::draw
{

namespace
{

// So many samples in a column of pixels are drawn one by one; of more there are four numbers.
constexpr double cFewPerColumn = 4;
constexpr std::size_t cFew = 16;
constexpr std::size_t cManyMarkers = 4000;

} // namespace

td::Color SeriesGeometry::faint(td::Color color, double share)
{
    color.setAlpha(static_cast<unsigned int>(std::lround(color.alpha() * share)));
    return color;
}

std::vector<double> SeriesGeometry::dashesOf(const SeriesStyle& style, double scale)
{
    std::vector<double> dashes;
    const std::size_t n = style.dashes.size();
    for (std::size_t i = 0; i < n * (1 + n % 2); ++i)
        dashes.push_back(style.dashes[i % n] * scale);
    return dashes;
}

SeriesGeometry::Extent SeriesGeometry::extentOf(const Series& series, double low, double high)
{
    const std::size_t first = series.getFirst(), end = series.size();
    if (first >= end || !series.isSorted())
        return {first, std::max(first, end)};
    std::size_t from = series.findX(low);
    std::size_t to = series.findX(high, from);
    while (to < end && series.getX(to) == high)
        ++to;
    from = from > first ? from - 1 : first;
    to = to < end ? to + 1 : end;
    return {from, to};
}

double SeriesGeometry::clampY(double y) const
{
    return std::clamp(y, _pView->area.top - cSeriesBeyond, _pView->area.bottom + cSeriesBeyond);
}

// Of samples at even distances this goes by the distance, and not by what is seen: where a part of that is beyond their
// end, the rest looks as it did.
bool SeriesGeometry::areDense(const Extent& extent) const
{
    const std::size_t n = extent.end - extent.first;
    if (n <= cFew)
        return false;
    if (!_pSeries->hasX() && !_pView->x.isLogarithmic)
    {
        const std::size_t first = _pSeries->getFirst(), last = _pSeries->size() - 1;
        const double length = (_pSeries->getX(last) - _pSeries->getX(first)) * _pView->x.perPlace;
        return cFewPerColumn * length < static_cast<double>(last - first);
    }
    const double width = _pView->area.right - _pView->area.left;
    return _pSeries->isSorted() && static_cast<double>(n) > cFewPerColumn * width + cFew;
}

void SeriesGeometry::readColumn(const Samples& samples, const Extent& extent, bool isX,
                                std::vector<double>& pixels) const
{
    pixels.resize(extent.end - extent.first);
    samples.read(extent.first, pixels);
    const AxisMap& map = isX ? _pView->x : _pView->y;
    for (double& value : pixels)
        value = map.toPixel(value);
}

void SeriesGeometry::findPlaces(const Extent& extent)
{
    if (_pSeries->hasX())
        return readColumn(_pSeries->getXs(), extent, true, _xs);
    _xs.resize(extent.end - extent.first);
    for (std::size_t i = 0; i < _xs.size(); ++i)
        _xs[i] = _pView->x.toPixel(_pSeries->getX(extent.first + i));
}

// The samples of each column, from the one left of the area to the one right of it.
void SeriesGeometry::findColumns(double width)
{
    _columnWidth = width;
    _columnLeft = std::floor(_pView->area.left / width) * width - width;
    const auto n = static_cast<std::size_t>(std::ceil((_pView->area.right - _columnLeft) / width)) + 1;
    _edges.resize(n + 1);
    std::size_t index = _pSeries->getFirst();
    for (std::size_t i = 0; i <= n; ++i)
    {
        index = _pSeries->findX(_pView->x.toValue(_columnLeft + static_cast<double>(i) * width), index);
        _edges[i] = index;
    }
}

void SeriesGeometry::findRanges(const Samples& samples, std::vector<Range>& ranges) const
{
    ranges.resize(_edges.size() - 1);
    samples.getRanges(_edges, ranges);
}

void SeriesGeometry::addArea(const Extent& extent, const Samples* pOther, PlotScene& scene)
{
    const SeriesStyle& style = _pSeries->getStyle();
    const double base = clampY(std::isfinite(_pView->y.toPixel(style.baseline)) ? _pView->y.toPixel(style.baseline)
                                                                                : _pView->area.bottom);
    _slabs.clear();
    if (areDense(extent))
    {
        findColumns(1);
        findRanges(_pSeries->getColumn(0), _ranges);
        if (pOther != nullptr)
            findRanges(*pOther, _otherRanges);
        for (std::size_t i = 0; i < _ranges.size(); ++i)
        {
            if (_ranges[i].isEmpty() || (pOther != nullptr && _otherRanges[i].isEmpty()))
                continue;
            const double x = _columnLeft + static_cast<double>(i);
            double top = clampY(_pView->y.toPixel(_ranges[i].high)), bottom = clampY(_pView->y.toPixel(_ranges[i].low));
            top = std::min(top, pOther != nullptr ? clampY(_pView->y.toPixel(_otherRanges[i].high)) : base);
            bottom = std::max(bottom, pOther != nullptr ? clampY(_pView->y.toPixel(_otherRanges[i].low)) : base);
            _slabs.push_back({x, bottom, top, x + 1, bottom, top});
        }
    }
    else
    {
        findPlaces(extent);
        readColumn(_pSeries->getColumn(0), extent, false, _ys);
        if (pOther != nullptr)
            readColumn(*pOther, extent, false, _others);
        else
            _others.assign(_ys.size(), base);
        const double left = _pView->area.left - cSeriesBeyond, right = _pView->area.right + cSeriesBeyond;
        for (std::size_t i = 1; i < _xs.size(); ++i)
        {
            const double x0 = _xs[i - 1], x1 = _xs[i];
            if (!(x1 > x0) || x1 < left || x0 > right ||
                !std::isfinite(_ys[i] + _ys[i - 1] + _others[i] + _others[i - 1]))
                continue;
            const auto at = [x0, x1](double a, double b, double x) { return a + (b - a) * (x - x0) / (x1 - x0); };
            const double from = std::max(x0, left), to = std::min(x1, right);
            _slabs.push_back({from, at(_others[i - 1], _others[i], from), at(_ys[i - 1], _ys[i], from), to,
                              at(_others[i - 1], _others[i], to), at(_ys[i - 1], _ys[i], to)});
        }
    }
    const td::Color fill = style.fill.value_or(faint(_color, 0.28));
    PlotScene::Shade shade{fill, fill, _pView->area.top, _pView->area.bottom};
    if (!style.fill && pOther == nullptr)
        shade = {faint(_color, 0.42), faint(_color, 0.08), _pView->area.top, std::max(base, _pView->area.top + 1)};
    scene.addArea(_slabs, shade);
}

double SeriesGeometry::barWidthOf(const Extent& extent) const
{
    const std::size_t n = extent.end - extent.first;
    if (n < 2)
        return 40 * _pView->pixelsPerPoint * _pSeries->getStyle().barWidth;
    const double span =
        _pView->x.toPixel(_pSeries->getX(extent.end - 1)) - _pView->x.toPixel(_pSeries->getX(extent.first));
    return span / static_cast<double>(n - 1) * _pSeries->getStyle().barWidth;
}

// Stems and bars.
void SeriesGeometry::addUprights(const Extent& extent, PlotScene& scene)
{
    const SeriesStyle& style = _pSeries->getStyle();
    const bool areBars = _pSeries->getKind() == Series::Kind::Bars;
    const double baseline = _pView->y.toPixel(style.baseline);
    const double base = clampY(std::isfinite(baseline) ? baseline : _pView->area.bottom);
    if (areDense(extent))
        return addArea(extent, nullptr, scene);
    findPlaces(extent);
    readColumn(_pSeries->getColumn(0), extent, false, _ys);
    const td::Color fill = areBars ? style.fill.value_or(_color) : _color;
    const double half = (areBars ? std::max(barWidthOf(extent), 1.0) : style.width * _pView->pixelsPerPoint) / 2;
    for (std::size_t i = 0; i < _xs.size(); ++i)
    {
        if (!std::isfinite(_xs[i]) || !std::isfinite(_ys[i]))
            continue;
        // On whole pixels where bars have some width.
        double left = _xs[i] - half, right = _xs[i] + half;
        if (areBars && half > 2)
        {
            left = std::round(left);
            right = std::round(right);
        }
        scene.addRect({left, std::min(clampY(_ys[i]), base), right, std::max(clampY(_ys[i]), base)}, fill);
    }
    if (style.marker != Marker::None)
        addMarkers(extent, scene);
}

void SeriesGeometry::addMarkers(const Extent& extent, PlotScene& scene)
{
    const SeriesStyle& style = _pSeries->getStyle();
    const double scale = _pView->pixelsPerPoint, size = style.markerSize * scale;
    findPlaces(extent);
    readColumn(_pSeries->getColumn(0), extent, false, _ys);
    const ColorMap* pMap = _pSeries->getColorMap() ? &*_pSeries->getColorMap() : nullptr;
    Range range;
    if (pMap != nullptr)
    {
        range = _pSeries->getColorRange();
        _others.resize(_xs.size());
        _pSeries->getColorValues().read(extent.first, _others);
    }
    const PlotScene::Rect& area = _pView->area;
    for (std::size_t i = 0; i < _xs.size(); ++i)
    {
        const double x = _xs[i], y = _ys[i];
        if (!(x > area.left - size && x < area.right + size && y > area.top - size && y < area.bottom + size))
            continue;
        const td::Color color =
            pMap != nullptr ? pMap->getColor((_others[i] - range.low) / (range.high - range.low)) : _color;
        scene.addMark(style.marker, x, y, size, color, style.edgeWidth * scale, style.edgeColor);
    }
}

// Many markers: the GPU keeps them, and a frame costs no time here. Floats are too coarse for small parts of them.
bool SeriesGeometry::addCloud(PlotScene& scene)
{
    const Series& series = *_pSeries;
    const SeriesStyle& style = series.getStyle();
    const std::size_t first = series.getFirst(), n = series.size() - first;
    std::unique_ptr<KeptCloud>& pKept = _clouds[series.getID()];
    if (!pKept)
        pKept = std::make_unique<KeptCloud>();
    pKept->isUsed = true;
    PlotScene::Cloud& cloud = pKept->cloud;
    const AxisMap &x = _pView->x, &y = _pView->y;
    if (cloud.version != series.getVersion() || cloud.isLogarithmicX != x.isLogarithmic ||
        cloud.isLogarithmicY != y.isLogarithmic || cloud.color != _color)
    {
        const auto toPlace = [](const AxisMap& map, double value)
        { return map.isLogarithmic ? std::log10(value) : value; };
        std::vector<double> xs(n), ys(n), values;
        series.getXs().read(first, xs);
        series.getColumn(0).read(first, ys);
        Range colors;
        if (series.getColorMap())
        {
            colors = series.getColorRange();
            values.resize(n);
            series.getColorValues().read(first, values);
        }
        double low[2] = {1e300, 1e300}, high[2] = {-1e300, -1e300};
        for (std::size_t i = 0; i < n; ++i)
        {
            xs[i] = toPlace(x, xs[i]);
            ys[i] = toPlace(y, ys[i]);
            if (!std::isfinite(xs[i]) || !std::isfinite(ys[i]))
                continue;
            low[0] = std::min(low[0], xs[i]);
            high[0] = std::max(high[0], xs[i]);
            low[1] = std::min(low[1], ys[i]);
            high[1] = std::max(high[1], ys[i]);
        }
        if (!(low[0] <= high[0]))
            return true;
        cloud = {series.getID(),
                 series.getVersion(),
                 x.isLogarithmic,
                 y.isLogarithmic,
                 low[0],
                 low[1],
                 std::max(high[0] - low[0], 1e-300),
                 std::max(high[1] - low[1], 1e-300),
                 _color,
                 {}};
        cloud.texels.reserve(n);
        for (std::size_t i = 0; i < n; ++i)
        {
            if (!std::isfinite(xs[i]) || !std::isfinite(ys[i]))
                continue;
            const td::Color color =
                values.empty() ? _color
                               : series.getColorMap()->getColor((values[i] - colors.low) / (colors.high - colors.low));
            cloud.texels.push_back({PlotScene::bits((xs[i] - cloud.lowX) / cloud.lengthX),
                                    PlotScene::bits((ys[i] - cloud.lowY) / cloud.lengthY), color.rgba(), 0});
        }
    }
    // A thousandth of a pixel at the far end of the floats' 24 bits.
    constexpr double cMostPixels = 1 << 20;
    const double width = cloud.lengthX * x.perPlace, height = cloud.lengthY * y.perPlace;
    if (std::abs(width) > cMostPixels || std::abs(height) > cMostPixels)
        return false;
    const double scale = _pView->pixelsPerPoint;
    scene.addCloud(
        cloud,
        {width, height, x.origin + (cloud.lowX - x.low) * x.perPlace, y.origin + (cloud.lowY - y.low) * y.perPlace},
        style.marker, style.markerSize * scale, style.edgeWidth * scale, style.edgeColor);
    return true;
}

void SeriesGeometry::finish()
{
    std::erase_if(_clouds, [](auto& entry) { return !std::exchange(entry.second->isUsed, false); });
    for (auto i = _thinnings.begin(); i != _thinnings.end();)
        i = std::exchange(i->second.isUsed, false) ? std::next(i) : _thinnings.erase(i);
}

// Closer than three pixels they have no caps, and the closer the fainter they are; closer than one, each column of
// pixels has what all of its bars reach.
void SeriesGeometry::addErrors(const Extent& extent, PlotScene& scene)
{
    constexpr double cNoCaps = 1.0 / 3, cDense = 1, cFaintest = 0.35;
    const double scale = _pView->pixelsPerPoint;
    const double half = std::max(std::round(scale), 1.0) / 2, cap = 3.5 * scale;
    const double perPixel =
        static_cast<double>(extent.end - extent.first) / std::max(_pView->area.right - _pView->area.left, 1.0);
    const bool areMany = perPixel > cNoCaps;
    const double share = std::clamp((perPixel - cNoCaps) / (cDense - cNoCaps), 0.0, 1.0);
    const td::Color color = faint(_color, 1 - share * (1 - cFaintest));
    if (perPixel > cDense && _pSeries->isSorted())
    {
        findColumns(1);
        findRanges(_pSeries->getErrorEnds(false), _ranges);
        findRanges(_pSeries->getErrorEnds(true), _otherRanges);
        for (std::size_t i = 0; i < _ranges.size(); ++i)
        {
            const double left = _columnLeft + static_cast<double>(i);
            const double top = _pView->y.toPixel(_otherRanges[i].high), bottom = _pView->y.toPixel(_ranges[i].low);
            const double low = std::isnan(bottom) ? _pView->area.bottom + cSeriesBeyond : bottom;
            if (!_ranges[i].isEmpty() && !_otherRanges[i].isEmpty() && !std::isnan(top))
                scene.addRect({left, clampY(top), left + 1, clampY(low)}, color);
        }
        return;
    }
    findPlaces(extent);
    std::vector<double> highs;
    readColumn(_pSeries->getErrorEnds(false), extent, false, _ys);
    readColumn(_pSeries->getErrorEnds(true), extent, false, highs);
    for (std::size_t i = 0; i < _ys.size(); ++i)
    {
        const double top = highs[i], x = _xs[i];
        double bottom = _ys[i];
        // What is below 0 on a logarithmic axis is below all that is seen.
        if (std::isnan(bottom) && std::isfinite(_pSeries->getErrorEnds(false)[extent.first + i]))
            bottom = _pView->area.bottom + cSeriesBeyond;
        if (!std::isfinite(top) || !std::isfinite(x) || std::isnan(bottom))
            continue;
        const double low = clampY(bottom), high = clampY(top);
        scene.addRect({x - half, high, x + half, low}, color);
        if (areMany)
            continue;
        scene.addRect({x - cap, high - half, x + cap, high + half}, color);
        scene.addRect({x - cap, low - half, x + cap, low + half}, color);
    }
}

// Where there are many, each stands for some in a row: the first of the first, the highest of the highest, and so on.
void SeriesGeometry::addCandles(const Extent& extent, PlotScene& scene)
{
    if (!_pSeries->isSorted())
        return;
    constexpr double cNarrowest = 4; // points
    const double scale = _pView->pixelsPerPoint;
    const td::Color rising = _color, falling = _pSeries->getStyle().fill.value_or("#c9374a");
    const double wick = std::max(std::round(scale), 1.0) / 2;
    const auto add = [&](double x, double width, double open, double high, double low, double close)
    {
        if (!std::isfinite(x + open + high + low + close))
            return;
        const td::Color color = close >= open ? rising : falling;
        const double left = std::round(x - width / 2), right = std::max(std::round(x + width / 2), left + 1);
        const double middle = (left + right) / 2;
        double top = clampY(_pView->y.toPixel(std::max(open, close)));
        double bottom = clampY(_pView->y.toPixel(std::min(open, close)));
        scene.addRect({middle - wick, clampY(_pView->y.toPixel(high)), middle + wick, clampY(_pView->y.toPixel(low))},
                      color);
        if (bottom - top < 1)
        {
            top -= (1 - (bottom - top)) / 2;
            bottom = top + 1;
        }
        scene.addRect({left, top, right, bottom}, color);
    };
    const double width = barWidthOf(extent);
    if (width >= cNarrowest * scale * _pSeries->getStyle().barWidth)
    {
        for (std::size_t i = extent.first; i < extent.end; ++i)
            add(_pView->x.toPixel(_pSeries->getX(i)), width, _pSeries->getColumn(0)[i], _pSeries->getColumn(1)[i],
                _pSeries->getColumn(2)[i], _pSeries->getColumn(3)[i]);
        return;
    }
    findColumns(std::ceil(cNarrowest * scale));
    std::vector<Range> columns[4];
    for (std::size_t i = 0; i < 4; ++i)
        findRanges(_pSeries->getColumn(i), columns[i]);
    for (std::size_t i = 0; i < columns[0].size(); ++i)
        if (_edges[i] < _edges[i + 1])
            add(_columnLeft + (static_cast<double>(i) + 0.5) * _columnWidth,
                _columnWidth * _pSeries->getStyle().barWidth, columns[0][i].first, columns[1][i].high,
                columns[2][i].low, columns[3][i].last);
}

void SeriesGeometry::add(const Series& series, const View& view, PlotScene& scene)
{
    _pSeries = &series;
    _pView = &view;
    _color = series.getStyle().color.value_or(view.color);
    const double margin = series.getStyle().markerSize * view.pixelsPerPoint;
    const Extent extent =
        extentOf(series, view.x.toValue(view.area.left - margin), view.x.toValue(view.area.right + margin));
    if (extent.first >= extent.end || !series.isVisible())
        return;
    using Kind = Series::Kind;
    const Kind kind = series.getKind();
    const bool isLine = kind == Kind::Line || kind == Kind::Area || kind == Kind::Steps;
    if (!isLine && kind != Kind::Scatter && !series.isSorted())
        return;
    if (kind == Kind::Area && series.isSorted())
        addArea(extent, nullptr, scene);
    if (kind == Kind::Band)
        addArea(extent, &series.getColumn(1), scene);
    if (series.hasErrors())
        addErrors(extent, scene);
    if (isLine)
        addLineAndMarkers(extent, scene);
    else if (kind == Kind::Stems || kind == Kind::Bars)
        addUprights(extent, scene);
    else if (kind == Kind::Scatter)
    {
        if (extent.end - extent.first < cManyMarkers || !addCloud(scene))
            addMarkers(extent, scene);
    }
    else if (kind == Kind::Candles)
        addCandles(extent, scene);
}

} // namespace gui::draw
