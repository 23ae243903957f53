#include "Rooms.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <set>
#include <utility>

namespace worldmap
{

namespace
{

constexpr int cNoOfRows = 19;
constexpr double cOffMiddle = 0.6; // how much less a strip at the part's upper or lower edge is worth

struct Span
{
    double west;
    double east;
};
using Row = std::vector<Span>;

// The land along lines from west to east, without what is outside of the part.
std::array<Row, cNoOfRows> rowsOf(const Land& land, const Box& part)
{
    const double step = part.height() / (cNoOfRows + 1);
    std::array<std::vector<double>, cNoOfRows> crossings;
    for (const Ring* pRing : land.rings)
    {
        const td::Point<double>* pLast = &pRing->line.points.back();
        for (const td::Point<double>& point : pRing->line.points)
        {
            const auto [low, high] = std::minmax({(pLast->y - part.min.y) / step, (point.y - part.min.y) / step});
            const int end = static_cast<int>(std::clamp(std::ceil(high), 1.0, cNoOfRows + 1.0));
            for (int row = static_cast<int>(std::clamp(std::ceil(low), 1.0, cNoOfRows + 1.0)); row < end; ++row)
            {
                const double t = (part.min.y + row * step - pLast->y) / (point.y - pLast->y);
                crossings[static_cast<std::size_t>(row - 1)].push_back(pLast->x + t * (point.x - pLast->x));
            }
            pLast = &point;
        }
    }
    std::array<Row, cNoOfRows> rows;
    for (std::size_t row = 0; row < cNoOfRows; ++row)
    {
        std::vector<double>& xs = crossings[row];
        std::sort(xs.begin(), xs.end());
        for (std::size_t i = 0; i + 1 < xs.size(); i += 2)
        {
            const Span span{std::max(xs[i], part.min.x), std::min(xs[i + 1], part.max.x)};
            if (span.west < span.east)
                rows[row].push_back(span);
        }
    }
    return rows;
}

Row common(const Row& a, const Row& b)
{
    Row result;
    for (const Span& first : a)
        for (const Span& second : b)
        {
            const Span span{std::max(first.west, second.west), std::min(first.east, second.east)};
            if (span.west < span.east)
                result.push_back(span);
        }
    return result;
}

// Points that are the same but for rounding.
using Key = std::pair<long long, long long>;
Key keyOf(const td::Point<double>& degrees)
{
    constexpr double cGrain = 1e5; // per degree
    return {std::llround(degrees.x * cGrain), std::llround(degrees.y * cGrain)};
}

double areaAtEquator(const Ring& ring) { return ring.area * std::cos(ring.box.middle().y * std::numbers::pi / 180); }

} // namespace

Room roomIn(const Land& land, const Box& part)
{
    const std::array<Row, cNoOfRows> rows = rowsOf(land, part);
    Room best;
    double bestValue = 0;
    for (std::size_t row = 1; row + 1 < cNoOfRows; ++row)
    {
        const double offMiddle = std::abs(2.0 * static_cast<double>(row) / (cNoOfRows - 1) - 1);
        for (const Span& span : common(common(rows[row - 1], rows[row]), rows[row + 1]))
        {
            const double width = span.east - span.west, value = width * (1 - cOffMiddle * offMiddle);
            if (value <= bestValue)
                continue;
            bestValue = value;
            best = {{(span.west + span.east) / 2,
                     part.min.y + static_cast<double>(row + 1) * part.height() / (cNoOfRows + 1)},
                    width};
        }
    }
    return best;
}

std::vector<Land> landsOf(const Countries& countries)
{
    std::vector<const Ring*> largest(countries.getCountries().size());
    for (const Ring& ring : countries.getRings())
        if (const Ring*& pLargest = largest[ring.country];
            !ring.isHole && std::abs(ring.box.middle().x - cMiddleLongitude) <= 180 &&
            (pLargest == nullptr || areaAtEquator(ring) > areaAtEquator(*pLargest)))
            pLargest = &ring;

    std::set<Key> borders;
    for (const Countries::Line& line : countries.getBorders())
        for (const td::Point<double>& point : line)
            borders.insert(keyOf(point));

    std::vector<Land> lands;
    for (const Ring* pOutline : largest)
        if (pOutline != nullptr)
            lands.push_back({pOutline->country, {pOutline}, areaAtEquator(*pOutline), {}, true});
    for (Land& land : lands)
    {
        for (const Ring& ring : countries.getRings())
            if (ring.isHole && ring.country == land.country && land.box().contains(ring.box.middle()))
                land.rings.push_back(&ring);
        land.room = roomIn(land, land.box());
        const auto& outline = land.rings.front()->line.points;
        land.isIsland =
            std::none_of(outline.begin(), outline.end(),
                         [&borders](const td::Point<double>& point) { return borders.contains(keyOf(point)); });
    }
    std::stable_sort(lands.begin(), lands.end(), [](const Land& a, const Land& b) { return a.area > b.area; });
    return lands;
}

} // namespace worldmap
