#include "SharedEdges.h"

#include <mem/LargePages.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>

namespace gui::draw
{

namespace
{

// Edges whose places are fetched into the cache when a shape is begun, and how far ahead those of the others are.
constexpr std::size_t cFetched = 128, cAhead = 16;

// The same for places of the old table, of which a third or so are taken.
constexpr std::size_t cMovedAhead = 32;

std::uint64_t mixed(std::uint64_t n)
{
    n = (n ^ n >> 32) * 0xd6e8feb86659fd93U;
    n = (n ^ n >> 32) * 0xd6e8feb86659fd93U;
    return n ^ n >> 32;
}

// The power of two that a number lies below, of which it is half at least.
int exponentOf(double number) { return static_cast<int>(std::bit_cast<std::uint64_t>(number) >> 52 & 0x7ffU) - 1022; }

// The same for both directions but for the lowest bit.
std::uint32_t keyOf(td::Point<double> a, td::Point<double> b)
{
    const double size = std::max(std::abs(a.x - b.x), std::abs(a.y - b.y));
    const double largest = std::max(std::max(std::abs(a.x), std::abs(a.y)), std::max(std::abs(b.x), std::abs(b.y)));
    // As far as 64 bits go.
    const int exponent = std::max({exponentOf(size), exponentOf(largest) - 45, -900});
    const auto inverse = std::bit_cast<double>(static_cast<std::uint64_t>(1023 + 16 - exponent) << 52);
    // Round numbers are to lie within a cell, not where two of them meet.
    const auto cell = [inverse](double n)
    {
        // Rounded down, without a call.
        const double place = n * inverse + 0.382;
        const auto whole = static_cast<std::int64_t>(place);
        return static_cast<std::uint64_t>(whole - (static_cast<double>(whole) > place ? 1 : 0));
    };
    const bool isBackward = b.x < a.x || (b.x == a.x && b.y < a.y);
    if (isBackward)
        std::swap(a, b);
    const std::uint64_t key =
        mixed(cell(a.x) * 0x9e3779b97f4a7c15U + cell(a.y) * 0xc2b2ae3d27d4eb4fU + cell(b.x) * 0x165667b19e3779f9U +
              cell(b.y) * 0x27d4eb2f165667c5U + static_cast<unsigned int>(exponent));
    return ((static_cast<std::uint32_t>(key) | 2U) & ~1U) | (isBackward ? 1U : 0U);
}

} // namespace

void SharedEdges::begin(const ShapeGeometry& geometry)
{
    _keys.clear();
    const auto toModel = [&geometry](std::uint32_t i)
    {
        const GridPoint p = geometry.points[i];
        return td::Point<double>(geometry.origin.x + geometry.step * p.x, geometry.origin.y + geometry.step * p.y);
    };
    for (const Element& element : geometry.elements)
        if (element.shapeAndKind >> 28 == static_cast<std::uint32_t>(ElementKind::Edge))
            _keys.push_back(keyOf(toModel(element.points[0]), toModel(element.points[0] + 1)));
    if ((_nUsed + _keys.size()) * 2 > _entries.size())
        grow(_keys.size());
    // Twice as fast as those come that would fill the table.
    moveSome(4 * _keys.size() + 256);
    // Not in functions of their own: the compiler takes those that only fetch for ones that do nothing.
    for (std::size_t i = 0; i < std::min(_keys.size(), cFetched); ++i)
    {
        __builtin_prefetch(&_entries[placeIn(_entries, _keys[i])]);
        if (!_old.empty())
            __builtin_prefetch(&_old[placeIn(_old, _keys[i])]);
    }
}

SharedEdges::Version SharedEdges::finish(std::uint32_t shape, std::vector<std::uint32_t>& neighbours)
{
    neighbours.clear();
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
    _shapes[version] = shape;
    _counts[version] = static_cast<std::uint32_t>(_keys.size());
    const std::size_t mask = _entries.size() - 1;
    const auto look = [&](const Entry& entry, std::uint32_t key)
    {
        if (entry.key != (key ^ 1U))
            return;
        if (const std::uint32_t other = _shapes[entry.version];
            other != UINT32_MAX && other != shape &&
            std::find(neighbours.begin(), neighbours.end(), other) == neighbours.end())
            neighbours.push_back(other);
    };
    for (std::size_t i = 0; i < _keys.size(); ++i)
    {
        if (i + cAhead < _keys.size() && i + cAhead >= cFetched)
        {
            __builtin_prefetch(&_entries[placeIn(_entries, _keys[i + cAhead])]);
            if (!_old.empty())
                __builtin_prefetch(&_old[placeIn(_old, _keys[i + cAhead])]);
        }
        const std::uint32_t key = _keys[i];
        std::size_t place = placeIn(_entries, key);
        for (; _entries[place].key != 0; place = (place + 1) & mask)
            look(_entries[place], key);
        _entries[place] = {key, version};
        ++_nUsed;
        if (!_old.empty())
            for (place = placeIn(_old, key); _old[place].key != 0; place = (place + 1) & (_old.size() - 1))
                look(_old[place], key);
    }
    return version;
}

// Both directions of an edge begin at the same place.
std::size_t SharedEdges::placeIn(const std::vector<Entry>& entries, std::uint32_t key)
{
    return ((key >> 1) * 0x9e3779b97f4a7c15U >> 32) & (entries.size() - 1);
}

void SharedEdges::remove(Version version)
{
    _shapes[version] = UINT32_MAX;
    _nRemoved += _counts[version];
    _removed.push_back(version);
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
    _entries = {};
    _entries.reserve(n);
    if (n * sizeof(Entry) >= mem::cLargePagesFrom)
        mem::adviseLargePages(_entries.data(), n * sizeof(Entry));
    _entries.resize(n);
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
                insert(entry);
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

void SharedEdges::insert(Entry entry)
{
    const std::size_t mask = _entries.size() - 1;
    std::size_t place = placeIn(_entries, entry.key);
    while (_entries[place].key != 0)
        place = (place + 1) & mask;
    _entries[place] = entry;
}

void SharedEdges::clear() { *this = SharedEdges(); }

} // namespace gui::draw
