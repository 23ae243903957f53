#include "SeriesGeometry.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <limits>
#include <numeric>
#include <utility>

// Lines of series: in the order of x, or anywhere.

namespace gui::draw
{

namespace
{

// Dashes begin anew at samples so far apart, in pixels.
constexpr double cDashedStretch = 4096;
constexpr std::size_t cMostInStretch = 16'384;
constexpr double cFarAway = 1e9; // pixels
// Of lines that go anywhere.
constexpr std::size_t cMostOneByOne = 100'000; // samples
constexpr std::size_t cMostPieces = 100'000;
constexpr std::size_t cFanOut = 16; // parts of a part
constexpr std::size_t cLargestPart = 65'536;
constexpr double cSmallestPart = 0.5; // pixels

// Liang and Barsky: the part of a segment within a rectangle.
bool clipSegment(PlotScene::Segment& s, const PlotScene::Rect& rect)
{
    const double dx = s.x1 - s.x0, dy = s.y1 - s.y0;
    double begin = 0, end = 1;
    const auto cut = [&begin, &end](double direction, double distance)
    {
        if (direction == 0)
            return distance >= 0;
        const double share = distance / direction;
        direction < 0 ? begin = std::max(begin, share) : end = std::min(end, share);
        return begin <= end;
    };
    if (!cut(-dx, s.x0 - rect.left) || !cut(dx, rect.right - s.x0) || !cut(-dy, s.y0 - rect.top) ||
        !cut(dy, rect.bottom - s.y0))
        return false;
    const double along = s.along + (begin > 0 ? begin * std::hypot(dx, dy) : 0);
    s = {begin > 0 ? s.x0 + begin * dx : s.x0, begin > 0 ? s.y0 + begin * dy : s.y0, end < 1 ? s.x0 + end * dx : s.x1,
         end < 1 ? s.y0 + end * dy : s.y1, along};
    return true;
}

} // namespace

// @param along  the line's length before it, for dashes
void SeriesGeometry::addSegment(Point a, Point b, double along)
{
    const PlotScene::Rect& area = _pView->area;
    const double left = area.left - cSeriesBeyond, right = area.right + cSeriesBeyond;
    const double top = area.top - cSeriesBeyond, bottom = area.bottom + cSeriesBeyond;
    const auto isIn = [=](Point p) { return p.x >= left && p.x <= right && p.y >= top && p.y <= bottom; };
    Segment segment{a.x, a.y, b.x, b.y, along};
    if ((!isIn(a) || !isIn(b)) && !clipSegment(segment, {left, top, right, bottom}))
        return;
    // What floats are good for.
    if (_dashPeriod > 0)
        segment.along = std::fmod(segment.along, _dashPeriod);
    _segments.push_back(segment);
}

// The sample at which dashes begin, so that they stay where they are while the view moves: every so manieth of all,
// few pixels before what is seen.
std::size_t SeriesGeometry::findStretch() const
{
    const std::size_t first = _pSeries->getFirst(), n = _pSeries->size() - first;
    const double length =
        std::abs(_pView->x.toPixel(_pSeries->getX(first + n - 1)) - _pView->x.toPixel(_pSeries->getX(first)));
    const double stretch = cDashedStretch * static_cast<double>(n) / length;
    if (!(stretch > 1))
        return 1;
    return stretch < static_cast<double>(cMostInStretch) ? std::bit_ceil(static_cast<std::size_t>(stretch))
                                                         : cMostInStretch;
}

// @param first  the sample that the first of the points is
void SeriesGeometry::joinPoints(std::size_t first, std::size_t stretch)
{
    const bool areSteps = _pSeries->getKind() == Series::Kind::Steps;
    double along = 0;
    const auto isPoint = [this](std::size_t i)
    { return i < _xs.size() && std::isfinite(_xs[i]) && std::isfinite(_ys[i]); };
    const auto add = [&](Point a, Point b)
    {
        addSegment(a, b, along);
        if (_dashPeriod > 0)
            along = std::fmod(along + std::hypot(b.x - a.x, b.y - a.y), _dashPeriod);
    };
    for (std::size_t i = 0; i < _xs.size(); ++i)
    {
        if (!isPoint(i))
            continue;
        const Point here{_xs[i], _ys[i]};
        if (!(i > 0 && isPoint(i - 1)) || (first + i) % stretch == 0)
            along = 0;
        if (isPoint(i + 1))
        {
            const Point next{_xs[i + 1], _ys[i + 1]};
            if (areSteps)
            {
                add(here, {next.x, here.y});
                add({next.x, here.y}, next);
            }
            else
                add(here, next);
        }
        else if (i == 0 || !isPoint(i - 1))
            _dots.push_back(here);
    }
}

// From each column's first sample to its last one, by way of the lowest and the highest where these are others, and on
// to the next column's first. The two are somewhere between the ends: in the middle.
void SeriesGeometry::joinColumns()
{
    const auto toY = [this](double value)
    {
        const double y = _pView->y.toPixel(value);
        // So far that what is seen of a line to there is the same: pieces are cut where they leave what is seen.
        return std::isnan(y) || !std::isfinite(value) ? std::numeric_limits<double>::quiet_NaN()
                                                      : std::clamp(y, -cFarAway, cFarAway);
    };
    Point last{0, std::numeric_limits<double>::quiet_NaN()};
    for (std::size_t i = 0; i < _ranges.size(); ++i)
    {
        const Range& range = _ranges[i];
        if (_edges[i] == _edges[i + 1])
            continue;
        const double left = _columnLeft + static_cast<double>(i) * _columnWidth;
        const auto within = [this, left](double x) { return std::clamp(x, left, left + _columnWidth); };
        const Point first{within(_pView->x.toPixel(_pSeries->getX(_edges[i]))), toY(range.first)};
        const Point end{within(_pView->x.toPixel(_pSeries->getX(_edges[i + 1] - 1))), toY(range.last)};
        if (!std::isnan(last.y) && !std::isnan(first.y))
            addSegment(last, first);
        last = end;
        if (range.isEmpty())
            continue;
        const double middle = (first.x + end.x) / 2;
        Point one{middle, toY(range.low)}, other{middle, toY(range.high)};
        const bool hasFirst = !std::isnan(first.y), hasEnd = !std::isnan(end.y);
        const Point from = hasFirst ? first : one, to = hasEnd ? end : other;
        // In the order that is the shorter way.
        if (std::abs(from.y - other.y) + std::abs(one.y - to.y) < std::abs(from.y - one.y) + std::abs(other.y - to.y))
            std::swap(one, other);
        std::array<Point, 4> points;
        std::size_t n = 0;
        if (hasFirst)
            points[n++] = first;
        if (!hasFirst || one.y != first.y)
            points[n++] = one;
        if (!hasEnd || other.y != end.y)
            points[n++] = other;
        if (hasEnd)
            points[n++] = end;
        for (std::size_t k = 1; k < n; ++k)
            addSegment(points[k - 1], points[k]);
        if (n == 1)
            addSegment(points[0], points[0]);
    }
}

/// What a line has come to, on its way through samples in no order.
class SeriesGeometry::Walk
{
public:
    explicit Walk(SeriesGeometry& geometry)
        : _geometry(geometry)
        , _areSteps(geometry._pSeries->getKind() == Series::Kind::Steps)
    {
    }

    void add(Point p)
    {
        if (!std::isfinite(p.x) || !std::isfinite(p.y))
            return end();
        if (_hasLast && _areSteps)
        {
            _geometry.addSegment(_last, {p.x, _last.y});
            _geometry.addSegment({p.x, _last.y}, p);
        }
        else if (_hasLast)
            _geometry.addSegment(_last, p);
        _isAlone = !_hasLast;
        _hasLast = true;
        _last = p;
    }
    /// Without a line to it.
    void jump(Point p)
    {
        _last = p;
        _hasLast = std::isfinite(p.x) && std::isfinite(p.y);
        _isAlone = false;
    }
    void end()
    {
        if (_hasLast && _isAlone)
            _geometry.addSegment(_last, _last); // a dot
        _hasLast = false;
    }

    std::size_t step = 1; ///< every so manieth sample

private:
    SeriesGeometry& _geometry;
    bool _areSteps;
    Point _last{0, 0};
    bool _hasLast = false;
    bool _isAlone = false;
};

// Lines that go anywhere, of many samples: parts out of sight are left out, and parts that are smaller than half a
// pixel are drawn from end to end. Where that leaves too many pieces, every second sample or fourth, and so on, will
// do; a line that only moves stays as coarse as it is until they are twice as many or next to none.
void SeriesGeometry::joinParts(const Extent& extent)
{
    Thinning& thinning = _thinnings[_pSeries->getID()];
    thinning.isUsed = true;
    const auto isSame = [](double a, double b) { return std::abs(a - b) <= 1e-9 * std::abs(a); };
    const bool isOnlyMoved =
        isSame(_pView->x.perPlace, thinning.perPlaceX) && isSame(_pView->y.perPlace, thinning.perPlaceY);
    if (!isOnlyMoved)
        thinning = {_pView->x.perPlace, _pView->y.perPlace};
    const std::size_t kept = thinning.step;
    bool mayBeFiner = true;
    for (std::size_t step = kept;;)
    {
        _segments.clear();
        Walk walk(*this);
        walk.step = step;
        bool isDone = true;
        const std::size_t nMost = isOnlyMoved && step == kept ? 2 * cMostPieces : cMostPieces;
        for (std::size_t at = extent.first; at < extent.end && isDone; at += cLargestPart)
            isDone = joinPart({at, std::min(at + cLargestPart, extent.end)}, cLargestPart, nMost, walk);
        walk.end();
        thinning.step = step;
        mayBeFiner = mayBeFiner && isDone && step > 1 && _segments.size() < cMostPieces / 16;
        if (!mayBeFiner && (isDone || step >= cLargestPart))
            return;
        step = mayBeFiner ? step / 2 : step * 2;
    }
}

// @return whether there are few enough
bool SeriesGeometry::joinPart(const Extent& part, std::size_t size, std::size_t nMost, Walk& walk)
{
    if (_segments.size() > nMost)
        return false;
    if (size <= cFanOut * walk.step)
    {
        std::vector<double> xs, ys;
        readColumn(_pSeries->getXs(), part, true, xs);
        readColumn(_pSeries->getColumn(0), part, false, ys);
        for (std::size_t i = 0; i < xs.size(); i += walk.step)
            walk.add({xs[i], ys[i]});
        return true;
    }
    size /= cFanOut;
    std::array<std::size_t, cFanOut + 1> edges;
    std::array<Range, cFanOut> xRanges, yRanges;
    for (std::size_t i = 0; i <= cFanOut; ++i)
        edges[i] = std::min(part.first + i * size, part.end);
    _pSeries->getXs().getRanges(edges, xRanges);
    _pSeries->getColumn(0).getRanges(edges, yRanges);
    const PlotScene::Rect& area = _pView->area;
    for (std::size_t i = 0; i < cFanOut && edges[i] < edges[i + 1]; ++i)
    {
        const Range &x = xRanges[i], &y = yRanges[i];
        if (x.isEmpty() || y.isEmpty())
        {
            walk.end();
            continue;
        }
        const double left = _pView->x.toPixel(x.low), right = _pView->x.toPixel(x.high);
        const double bottom = _pView->y.toPixel(y.low), top = _pView->y.toPixel(y.high);
        const Point first{_pView->x.toPixel(x.first), _pView->y.toPixel(y.first)};
        const Point last{_pView->x.toPixel(x.last), _pView->y.toPixel(y.last)};
        if (right < area.left - cSeriesBeyond || left > area.right + cSeriesBeyond ||
            bottom < area.top - cSeriesBeyond || top > area.bottom + cSeriesBeyond)
        {
            walk.add(first);
            walk.jump(last);
        }
        else if (right - left < cSmallestPart && bottom - top < cSmallestPart)
        {
            walk.add(first);
            walk.add(last);
        }
        else if (!joinPart({edges[i], edges[i + 1]}, size, nMost, walk))
            return false;
    }
    return true;
}

void SeriesGeometry::addLineAndMarkers(const Extent& extent, PlotScene& scene)
{
    const SeriesStyle& style = _pSeries->getStyle();
    const bool isSorted = _pSeries->isSorted();
    std::vector<double> dashes;
    _segments.clear();
    _dots.clear();
    if (areDense(extent))
    {
        findColumns(1);
        findRanges(_pSeries->getColumn(0), _ranges);
        joinColumns();
    }
    else
    {
        dashes = dashesOf(style, _pView->pixelsPerPoint);
        if (!isSorted && extent.end - extent.first > cMostOneByOne)
        {
            dashes.clear();
            joinParts(extent);
        }
        else
        {
            _dashPeriod = std::accumulate(dashes.begin(), dashes.end(), 0.0);
            const std::size_t stretch = _dashPeriod > 0 ? findStretch() : 1;
            const std::size_t first =
                isSorted ? std::max(extent.first - extent.first % stretch, _pSeries->getFirst()) : extent.first;
            findPlaces({first, extent.end});
            readColumn(_pSeries->getColumn(0), {first, extent.end}, false, _ys);
            joinPoints(first, isSorted ? stretch : std::numeric_limits<std::size_t>::max());
            _dashPeriod = 0;
        }
    }
    scene.addLine(_segments, style.width / 2 * _pView->pixelsPerPoint, _color, dashes, isSorted);
    // Samples alone, which would be next to nothing as a piece of a line.
    constexpr double cLeastDot = 4, cDot = 2.5; // points, and widths of the line
    if (style.width > 0)
        for (const Point& dot : _dots)
            scene.addMark(Marker::Circle, dot.x, dot.y,
                          std::max(cLeastDot, cDot * style.width) * _pView->pixelsPerPoint, _color);
    // Where there is room for them.
    const double distance = (_pView->area.right - _pView->area.left) / static_cast<double>(extent.end - extent.first);
    if (style.marker != Marker::None && distance > 1.2 * style.markerSize * _pView->pixelsPerPoint)
        addMarkers(extent, scene);
}

} // namespace gui::draw
