#include "SharedEdges.h"

#include "../fill/TwoDoubles.h"

#include <mem/LargePages.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <memory>
#include <utility>

namespace gui::draw
{

namespace
{

// How far ahead places are fetched into the cache: tables are larger than that.
constexpr std::size_t cAhead = 16;

// So many that one in sixteen edges with nothing beside them is looked at nevertheless.
constexpr std::size_t cBitsPerEdge = 8;

// The same for places of the old table, of which a third or so are taken.
constexpr std::size_t cMovedAhead = 32;

std::uint64_t mixed(std::uint64_t n)
{
    n = (n ^ n >> 32) * 0xd6e8feb86659fd93U;
    n = (n ^ n >> 32) * 0xd6e8feb86659fd93U;
    return n ^ n >> 32;
}

template <typename Record>
std::vector<Record> makeTable(std::size_t n)
{
    std::vector<Record> table;
    table.reserve(n);
    if (n * sizeof(Record) >= mem::cLargePagesFrom)
        mem::adviseLargePages(table.data(), n * sizeof(Record));
    table.resize(n);
    return table;
}

// The power of two that a number lies below, of which it is half at least.
int exponentOf(double number) { return static_cast<int>(std::bit_cast<std::uint64_t>(number) >> 52 & 0x7ffU) - 1022; }

// Of what edges are smaller than is no more than this.
constexpr int cLeastExponent = -900;

// Sums with it have no digits behind the point, as long as numbers have so many bits.
constexpr double cNoFraction = 0x1.8p52;
constexpr int cBits = 50;

constexpr int cCellBits = 16; // of an edge's length

// By what to multiply for an edge that is below a power of two to have as many cells.
double cellsPerUnit(int exponent)
{
    return std::bit_cast<double>(static_cast<std::uint64_t>(1023 + cCellBits - exponent) << 52);
}

// The same for both directions but for the lowest bit, with the earlier end first.
std::uint32_t keyOf(const std::array<std::uint64_t, 4>& cells, int exponent, bool isBackward)
{
    const std::uint64_t key =
        mixed(cells[0] * 0x9e3779b97f4a7c15U + cells[1] * 0xc2b2ae3d27d4eb4fU + cells[2] * 0x165667b19e3779f9U +
              cells[3] * 0x27d4eb2f165667c5U + static_cast<unsigned int>(exponent));
    return ((static_cast<std::uint32_t>(key) | 2U) & ~1U) | (isBackward ? 1U : 0U);
}

// Round numbers are to lie within a cell, not where two of them meet: 0.382 are added, and it is rounded down. That is
// 0.118 less, rounded to the nearest, which takes no call.
using Cells = std::array<std::uint64_t, 2>;
Cells cellsOf(TwoDoubles p, double perUnit) { return std::bit_cast<Cells>(p * perUnit - 0.118 + cNoFraction); }

// Grows with x, then with y.
std::int64_t placeOf(GridPoint p)
{
    return static_cast<std::int64_t>(std::uint64_t(std::uint32_t(p.x)) << 32 | (std::uint32_t(p.y) ^ 0x80000000U));
}

// For edges that are short beside their distance from the origin.
std::uint32_t keyFarAway(TwoDoubles a, TwoDoubles b, bool isBackward)
{
    const double size = std::max(std::abs(a[0] - b[0]), std::abs(a[1] - b[1]));
    const double largest = std::max({std::abs(a[0]), std::abs(a[1]), std::abs(b[0]), std::abs(b[1])});
    // As far as 64 bits go.
    const int exponent = std::max({exponentOf(size), exponentOf(largest) - 45, cLeastExponent});
    const double perUnit = cellsPerUnit(exponent);
    if (isBackward)
        std::swap(a, b);
    if (largest * perUnit < std::ldexp(1, cBits))
    {
        const Cells first = cellsOf(a, perUnit), second = cellsOf(b, perUnit);
        return keyOf({first[0], first[1], second[0], second[1]}, exponent, isBackward);
    }
    const auto cell = [perUnit](double n)
    { return static_cast<std::uint64_t>(static_cast<std::int64_t>(std::floor(n * perUnit + 0.382))); };
    return keyOf({cell(a[0]), cell(a[1]), cell(b[0]), cell(b[1])}, exponent, isBackward);
}

std::uint32_t keyOf(TwoDoubles from, TwoDoubles to, int exponent, bool isBackward)
{
    const double perUnit = cellsPerUnit(exponent);
    const Cells a = cellsOf(from, perUnit), b = cellsOf(to, perUnit);
    const Cells &one = isBackward ? b : a, &two = isBackward ? a : b;
    return keyOf({one[0], one[1], two[0], two[1]}, exponent, isBackward);
}

// Of all edges of a shape. @return behind the last one
std::uint32_t* addKeys(const ShapeGeometry& geometry, std::uint32_t* pKey)
{
    if (geometry.nodes.empty())
        return pKey;
    const TwoDoubles origin{geometry.origin.x, geometry.origin.y};
    const auto toModel = [&](GridPoint p) {
        return origin + geometry.step * TwoDoubles{static_cast<double>(p.x), static_cast<double>(p.y)};
    };
    const auto& box = geometry.nodes[0].box;
    const TwoDoubles low = absOf(toModel({box[0], box[1]})), high = absOf(toModel({box[2], box[3]}));
    const TwoDoubles most = largerOf(low, high);
    const int leastExponent = std::max(exponentOf(std::max(most[0], most[1])) - (cBits - cCellBits), cLeastExponent);
    for (const EdgeNode& node : geometry.nodes)
    {
        if (!node.isLeaf())
            continue;
        const GridPoint* pPoint = geometry.points.data() + node.first;
        TwoDoubles from = toModel(*pPoint);
        for (std::int32_t i = node.first; i < node.last; ++i, ++pPoint)
        {
            const TwoDoubles to = toModel(pPoint[1]), way = absOf(to - from);
            const bool isBackward = placeOf(pPoint[1]) < placeOf(pPoint[0]);
            const int exponent = exponentOf(std::max(way[0], way[1]));
            *pKey++ =
                exponent < leastExponent ? keyFarAway(from, to, isBackward) : keyOf(from, to, exponent, isBackward);
            from = to;
        }
    }
    return pKey;
}

} // namespace

SharedEdges::Version SharedEdges::add(std::uint32_t shape, const ShapeGeometry& geometry)
{
    auto version = static_cast<Version>(_shapes.size());
    if (_free.empty())
    {
        _shapes.emplace_back();
        _counts.emplace_back();
    }
    else
    {
        version = _free.back();
        _free.pop_back();
    }
    const std::size_t first = _keys.size();
    _keys.grow(geometry.points.size());
    const auto n = static_cast<std::size_t>(addKeys(geometry, _keys.data() + first) - _keys.data()) - first;
    _keys.shrink(first + n);
    _shapes[version] = shape;
    _counts[version] = static_cast<std::uint32_t>(n);
    _listed.push_back(version);
    return version;
}

void SharedEdges::remove(Version version)
{
    _shapes[version] = UINT32_MAX;
    _nRemoved += _counts[version];
    _removed.push_back(version);
}

const std::vector<SharedEdges::Pair>& SharedEdges::find()
{
    _pairs.clear();
    if (_listed.size() == _nKnown)
        return _pairs;
    dropRemoved();
    if (_entries.empty() && _keys.size() - _nKnownKeys > _nKnownKeys)
        findAtOnce();
    else
    {
        if (_entries.empty())
            fillTable();
        findInTable();
    }
    return _pairs;
}

void SharedEdges::look(const Entry& entry, std::uint32_t key, std::uint32_t shape, std::size_t firstPair)
{
    if (entry.key != (key ^ 1U))
        return;
    const std::uint32_t other = _shapes[entry.version];
    const auto isIt = [other](const Pair& pair) { return pair.other == other; };
    if (other != UINT32_MAX && other != shape &&
        std::none_of(_pairs.begin() + static_cast<std::ptrdiff_t>(firstPair), _pairs.end(), isIt))
        _pairs.push_back({shape, other});
}

// Without a table of all: a bit for each edge, by direction, says of most of the others that nothing is beside them.
void SharedEdges::findAtOnce()
{
    const std::size_t n = _keys.size(), nBits = std::bit_ceil(std::max<std::size_t>(cBitsPerEdge * n, 64));
    // The lowest two bits are the direction and one that is always set.
    const std::size_t mask = nBits - 1;
    auto bits = makeTable<std::uint64_t>(nBits / 64 * 2);
    std::uint64_t* const pBits[] = {bits.data(), bits.data() + nBits / 64};
    for (std::size_t i = 0; i < n; ++i)
    {
        const std::size_t bit = _keys[i] >> 2 & mask;
        pBits[_keys[i] & 1U][bit / 64] |= std::uint64_t(1) << bit % 64;
    }
    const auto left = std::make_unique_for_overwrite<std::uint32_t[]>(n);
    std::size_t nLeft = 0;
    for (std::size_t i = 0; i < n; ++i)
    {
        const std::size_t bit = _keys[i] >> 2 & mask;
        left[nLeft] = static_cast<std::uint32_t>(i);
        nLeft += pBits[~_keys[i] & 1U][bit / 64] >> bit % 64 & 1U;
    }

    auto entries = makeTable<Entry>(std::bit_ceil(std::max<std::size_t>(2 * nLeft, 16)));
    std::size_t number = 0, end = _listed.empty() ? 0 : _counts[_listed[0]], firstPair = 0;
    for (std::size_t i = 0; i < nLeft; ++i)
    {
        if (i + cAhead < nLeft)
            __builtin_prefetch(&entries[placeIn(entries, _keys[left[i + cAhead]])]);
        while (left[i] >= end)
        {
            end += _counts[_listed[++number]];
            firstPair = _pairs.size();
        }
        const std::uint32_t key = _keys[left[i]], shape = _shapes[_listed[number]];
        std::size_t place = placeIn(entries, key);
        for (; entries[place].key != 0; place = (place + 1) & (entries.size() - 1))
            if (number >= _nKnown)
                look(entries[place], key, shape, firstPair);
        entries[place] = {key, _listed[number]};
    }
    _nKnown = _listed.size();
    _nKnownKeys = n;
}

// From the list.
void SharedEdges::dropRemoved()
{
    const auto isRemoved = [this](Version version) { return _shapes[version] == UINT32_MAX; };
    if (_removed.empty() || std::none_of(_listed.begin(), _listed.end(), isRemoved))
        return;
    std::size_t from = 0, to = 0, nVersions = 0;
    const std::size_t nKnown = std::exchange(_nKnown, 0);
    _nKnownKeys = 0;
    for (std::size_t i = 0; i < _listed.size(); ++i)
    {
        const Version version = _listed[i];
        const std::size_t n = _counts[version];
        if (isRemoved(version))
        {
            _nRemoved -= n;
            _counts[version] = 0;
        }
        else
        {
            std::copy_n(_keys.data() + from, n, _keys.data() + to);
            to += n;
            _listed[nVersions++] = version;
            _nKnown += i < nKnown ? 1 : 0;
            _nKnownKeys += i < nKnown ? n : 0;
        }
        from += n;
    }
    _keys.shrink(to);
    _listed.resize(nVersions);
    // What has no keys left is nowhere.
    const auto end = std::partition(_removed.begin(), _removed.end(), [this](Version v) { return _counts[v] != 0; });
    _free.insert(_free.end(), end, _removed.end());
    _removed.erase(end, _removed.end());
}

// With what is known of the list.
void SharedEdges::fillTable()
{
    grow(_keys.size());
    std::size_t i = 0;
    for (std::size_t number = 0; number < _nKnown; ++number)
        for (const std::size_t end = i + _counts[_listed[number]]; i < end; ++i)
        {
            __builtin_prefetch(&_entries[placeIn(_entries, _keys[std::min(i + cAhead, _keys.size() - 1)])]);
            insert(_entries, {_keys[i], _listed[number]});
        }
    _nUsed = i;
}

// Adds the rest of the list to the table.
void SharedEdges::findInTable()
{
    const std::size_t n = _keys.size();
    if ((_nUsed + n - _nKnownKeys) * 2 > _entries.size())
        grow(n - _nKnownKeys);
    std::size_t i = _nKnownKeys;
    for (std::size_t number = _nKnown; number < _listed.size(); ++number)
    {
        const Version version = _listed[number];
        const std::uint32_t shape = _shapes[version];
        const std::size_t end = i + _counts[version], firstPair = _pairs.size();
        // Twice as fast as those come that would fill the table.
        moveSome(4 * (end - i) + 256);
        for (; i < end; ++i)
        {
            const std::uint32_t key = _keys[i], ahead = _keys[std::min(i + cAhead, n - 1)];
            __builtin_prefetch(&_entries[placeIn(_entries, ahead)]);
            if (!_old.empty())
                __builtin_prefetch(&_old[placeIn(_old, ahead)]);
            std::size_t at = placeIn(_entries, key);
            for (; _entries[at].key != 0; at = (at + 1) & (_entries.size() - 1))
                look(_entries[at], key, shape, firstPair);
            _entries[at] = {key, version};
            ++_nUsed;
            if (!_old.empty())
                for (at = placeIn(_old, key); _old[at].key != 0; at = (at + 1) & (_old.size() - 1))
                    look(_old[at], key, shape, firstPair);
        }
    }
    // That of what was there at first is not needed again.
    if (_nKnown != 0)
        _keys = {};
    _keys.clear();
    _listed.clear();
    _nKnown = _nKnownKeys = 0;
}

// Both directions of an edge begin at the same place.
std::size_t SharedEdges::placeIn(const std::vector<Entry>& entries, std::uint32_t key)
{
    return ((key >> 1) * 0x9e3779b97f4a7c15U >> 32) & (entries.size() - 1);
}

// Leaves out the edges of shapes that were removed, as moveSome does.
void SharedEdges::grow(std::size_t nMore)
{
    moveSome(SIZE_MAX);
    const std::size_t nLeft = _nUsed - _nRemoved + nMore;
    std::size_t n = std::max<std::size_t>(_entries.size(), 1024);
    while (nLeft * 3 > n)
        n *= 2;
    _old = std::move(_entries);
    _leaving = std::move(_removed);
    _removed.clear();
    _nMoved = 0;
    _entries = makeTable<Entry>(n);
}

void SharedEdges::moveSome(std::size_t nPlaces)
{
    if (_old.empty())
        return;
    const std::size_t end = std::min(nPlaces, _old.size() - _nMoved) + _nMoved;
    for (; _nMoved < end; ++_nMoved)
    {
        if (const std::size_t ahead = _nMoved + cMovedAhead; ahead < _old.size() && _old[ahead].key != 0)
            __builtin_prefetch(&_entries[placeIn(_entries, _old[ahead].key)]);
        if (const Entry& entry = _old[_nMoved]; entry.key != 0)
        {
            if (_shapes[entry.version] != UINT32_MAX)
                insert(_entries, entry);
            else
            {
                --_nUsed;
                --_nRemoved;
            }
        }
    }
    if (_nMoved < _old.size())
        return;
    _old = {};
    _free.insert(_free.end(), _leaving.begin(), _leaving.end());
    _leaving.clear();
}

void SharedEdges::insert(std::vector<Entry>& entries, Entry entry)
{
    const std::size_t mask = entries.size() - 1;
    std::size_t place = placeIn(entries, entry.key);
    while (entries[place].key != 0)
        place = (place + 1) & mask;
    entries[place] = entry;
}

void SharedEdges::clear() { *this = SharedEdges(); }

} // namespace gui::draw
