#include "AxesImpl.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace gui::draw
{

namespace
{

constexpr double cPadding = 0.05;                // of a range, on either side
constexpr double cMostUnused = 0.5;              // of a range that follows what is seen, before it is made smaller
constexpr std::size_t cMostLookedAt = 4'000'000; // samples of which the lowest above 0 is looked for one by one
constexpr double cDecadesGuessed = 6;            // where there are more

double lowestAbove0(const Samples& samples, std::size_t first, std::size_t end)
{
    std::array<double, 1024> values;
    double lowest = std::numeric_limits<double>::infinity();
    for (; first < end; first += values.size())
    {
        const std::size_t n = std::min(values.size(), end - first);
        samples.read(first, std::span(values).first(n));
        for (std::size_t i = 0; i < n; ++i)
            if (values[i] > 0 && values[i] < lowest)
                lowest = values[i];
    }
    return lowest;
}

// On a logarithmic axis, what is not above 0 does not count.
void raiseAbove0(Samples::Range& range, const Samples& samples, std::size_t first, std::size_t end)
{
    if (range.low > 0 || !(range.high > 0))
        return;
    range.low =
        end - first <= cMostLookedAt ? lowestAbove0(samples, first, end) : range.high * std::pow(10, -cDecadesGuessed);
}

} // namespace

void Axes::Impl::collectOwn(unsigned int which)
{
    Axis& axis = axisOf(which);
    Axis::State& state = *axis._pState;
    if (state.isMoved)
        return;
    const bool isLogarithmic = state.scale.kind == Scale::Kind::Logarithmic;
    const Ticks::Range& seen = x.axis.getRange();
    if (which != cRight)
    {
        for (const std::unique_ptr<HeatMap>& pMap : maps)
        {
            const HeatMap::Rect& extent = pMap->getExtent();
            if (!isThere(*pMap))
                continue;
            double low = which == cX ? extent.left : extent.top, high = which == cX ? extent.right : extent.bottom;
            if (isLogarithmic && !(high > 0))
                continue;
            low = state.scale.toPlace(isLogarithmic && low <= 0 ? high * 1e-3 : low);
            high = state.scale.toPlace(high);
            state.low = state.hasData ? std::min(state.low, low) : low;
            state.high = state.hasData ? std::max(state.high, high) : high;
            state.lowest = state.low;
            state.highest = state.high;
            state.hasData = true;
        }
    }
    for (const std::unique_ptr<Series>& pSeries : series)
    {
        const Series& s = *pSeries;
        const std::size_t first = s.getFirst(), end = s.size();
        if (!s.isVisible() || first >= end || (which != cX && (which == cRight) != s.getStyle().isOnRight))
            continue;
        Samples::Range range;
        const Series::Kind kind = s.getKind();
        bool isPadded = true;
        if (which == cX)
        {
            range = s.getXRange();
            if (isLogarithmic && s.hasX())
                raiseAbove0(range, s.getXs(), first, end);
            const bool areWide = kind == Series::Kind::Bars || kind == Series::Kind::Candles;
            if (areWide && end - first > 1 && !range.isEmpty())
            {
                const double half = (range.high - range.low) / static_cast<double>(end - first - 1) / 2;
                range.low -= isLogarithmic ? 0 : half;
                range.high += half;
            }
            isPadded = kind == Series::Kind::Scatter || kind == Series::Kind::Stems || !s.isSorted();
        }
        else
        {
            SeriesGeometry::Extent extent{first, end};
            if (state.fit == Axis::Fit::Visible)
                extent = SeriesGeometry::extentOf(s, seen.low, seen.high);
            range = s.getYRange(extent.first, extent.end);
            if (isLogarithmic)
                raiseAbove0(range, s.getColumn(0), extent.first, extent.end);
            if (!isLogarithmic && (kind == Series::Kind::Bars || kind == Series::Kind::Area))
                state.line = s.getStyle().baseline;
        }
        if (range.isEmpty() || (isLogarithmic && !(range.low > 0)))
            continue;
        double low = state.scale.toPlace(range.low), high = state.scale.toPlace(range.high);
        state.lowest = state.hasData ? std::min(state.lowest, low) : low;
        state.highest = state.hasData ? std::max(state.highest, high) : high;
        if (isPadded)
        {
            const double padding = (high - low) * cPadding;
            low -= padding;
            high += padding;
        }
        state.low = state.hasData ? std::min(state.low, low) : low;
        state.high = state.hasData ? std::max(state.high, high) : high;
        state.hasData = true;
    }
}

void Axes::Impl::apply(unsigned int which)
{
    Axis& axis = axisOf(which);
    Axis::State& state = *axis._pState;
    state.isCollected = false;
    if (!state.hasData)
        return;
    state.hasData = false;
    double low = state.low, high = state.high;
    // What stands on a line has no room below it.
    if (const std::optional<double> line = std::exchange(state.line, std::nullopt))
    {
        low = state.lowest == *line ? *line : low;
        high = state.highest == *line ? *line : high;
    }
    if (state.fit == Axis::Fit::Follow && state.followed > 0)
        low = high - state.followed;
    if (!(high > low))
    {
        // One value alone has some room around it.
        const double room = state.scale.kind == Scale::Kind::Logarithmic ? 0.5 : std::max(std::abs(low) * 0.1, 1e-12);
        low -= low == 0 ? 1 : room;
        high += high == 0 ? 1 : room;
    }
    if (state.fit == Axis::Fit::Visible)
    {
        // What is seen may change in every frame; the range does not.
        const double shownLow = state.scale.toPlace(state.range.low), shownHigh = state.scale.toPlace(state.range.high);
        const double padding = (high - low) * cPadding / (1 + 2 * cPadding);
        if (shownLow <= low + padding && shownHigh >= high - padding &&
            high - low > cMostUnused * (shownHigh - shownLow))
            return;
    }
    const std::size_t before = state.version;
    axis.fitPlaces(low, high);
    if (state.version != before)
        axis.notify(); // other plots that show it
}

} // namespace gui::draw
