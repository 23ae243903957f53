#include "VariationDeltas.h"

#include <algorithm>

namespace gui::draw
{

VariationDeltas::VariationDeltas(const TableBytes& table, std::size_t map, std::size_t store,
                                 std::span<const float> coordinates)
    : _table(table)
    , _map(map)
    , _store(coordinates.empty() ? 0 : store)
    , _regions(store + table.unsigned32(store + 2))
    , _coordinates(coordinates)
{
    if (_store != 0)
        _shares.resize(table.unsigned16(_regions + 2));
}

// To the number of a set in the low half, and of the data that has it in the high one.
std::uint32_t VariationDeltas::mapped(std::uint32_t index) const
{
    if (_map == 0)
        return index;
    const bool isLong = _table.unsigned8(_map) != 0;
    const std::uint32_t format = _table.unsigned8(_map + 1);
    const std::uint32_t n = isLong ? _table.unsigned32(_map + 2) : _table.unsigned16(_map + 2);
    if (n == 0)
        return cNone;
    const std::size_t size = (format >> 4 & 3U) + 1;
    const std::uint32_t entry = _table.unsignedOf(_map + (isLong ? 6 : 4) + size * std::min(index, n - 1), size);
    const std::uint32_t nInner = (format & 15U) + 1;
    return entry >> nInner << 16 | (entry & ((1U << nInner) - 1));
}

// From 0 to 1: how near the place is to the region's peak, for all axes.
double VariationDeltas::shareOf(std::size_t region)
{
    if (region >= _shares.size())
        return 0;
    std::optional<double>& share = _shares[region];
    if (share)
        return *share;
    share = 1;
    const std::size_t nAxes = _table.unsigned16(_regions);
    for (std::size_t axis = 0; axis<nAxes&& * share> 0; ++axis)
    {
        const std::size_t at = _regions + 4 + (region * nAxes + axis) * 6;
        const double from = _table.signed16(at) / 16384.0, peak = _table.signed16(at + 2) / 16384.0,
                     to = _table.signed16(at + 4) / 16384.0;
        const double place = axis < _coordinates.size() ? double(_coordinates[axis]) : 0;
        if (peak == 0 || from > peak || peak > to || (from < 0 && to > 0) || place == peak)
            continue;
        if (place <= from || place >= to)
            *share = 0;
        else
            *share *= place < peak ? (place - from) / (peak - from) : (to - place) / (to - peak);
        ++_cost;
    }
    return *share;
}

double VariationDeltas::of(std::uint32_t index)
{
    if (_store == 0 || index == cNone)
        return 0;
    const std::uint32_t set = mapped(index);
    const std::size_t outer = set >> 16, inner = set & 0xffffU;
    if (set == cNone || outer >= _table.unsigned16(_store + 6))
        return 0;
    const std::size_t data = _store + _table.unsigned32(_store + 8 + 4 * outer);
    const std::uint32_t words = _table.unsigned16(data + 2);
    const std::size_t nRegions = _table.unsigned16(data + 4);
    // The first numbers of a set are twice as long as the others.
    const bool isLong = (words & 0x8000U) != 0;
    const std::size_t nWide = std::min<std::size_t>(words & 0x7fffU, nRegions), unit = isLong ? 2 : 1;
    const std::size_t sets = data + 6 + 2 * nRegions, size = unit * (nRegions + nWide);
    if (inner >= _table.unsigned16(data) || !_table.has(sets, size * (inner + 1)))
        return 0;
    double sum = 0;
    for (std::size_t i = 0; i < nRegions; ++i, ++_cost)
    {
        const std::size_t at = sets + size * inner + unit * (i + std::min(i, nWide));
        const bool isWide = i < nWide;
        const int delta = isLong && isWide   ? _table.signed32(at)
                          : isLong || isWide ? _table.signed16(at)
                                             : _table.signed8(at);
        sum += delta * shareOf(_table.unsigned16(data + 6 + 2 * i));
    }
    return sum;
}

} // namespace gui::draw
