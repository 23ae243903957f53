#include "TreeBuilder.h"

#include <glm/common.hpp>

#include <bit>
#include <cmath>
#include <numeric>

namespace gui::draw
{

namespace
{

// How many places to either side a cluster looks for the one to merge with: in the first rounds, which take most of the
// time, half as many.
constexpr std::size_t cMargin = 8;
// Primitives of a step.
constexpr std::size_t cStep = 4096;
constexpr std::uint32_t cNone = 0xFFFFFFFF;

// Keys: 11 bits of each coordinate, then the primitive.
constexpr unsigned int cNumberBits = 31;
constexpr std::uint64_t cNumberMask = (std::uint64_t(1) << cNumberBits) - 1;
constexpr unsigned int cDigitBits = 11;
constexpr std::uint64_t cDigitMask = (1 << cDigitBits) - 1;
// So many that have the same place on the curve are sorted once more, by themselves.
constexpr std::size_t cLongRun = 16;

// A bit that no primitive's number has.
constexpr std::uint32_t cIsPair = 0x80000000;

// 11 bits with two between each.
std::uint64_t spread(std::uint64_t bits)
{
    bits = (bits | bits << 16) & 0xFF0000FF;
    bits = (bits | bits << 8) & 0x0F00F00F;
    bits = (bits | bits << 4) & 0xC30C30C3;
    return (bits | bits << 2) & 0x249249249;
}

// Some measure of a box's surface, above 0 for a line or a point too.
template <typename T>
T areaOf(T x, T y, T z)
{
    return x * y + (x + y) * z + (x + y + z) * 1e-6F + 1e-20F;
}

// How far away each is that has been compared: the code of a place, the smaller the better if boxes are the same. Those
// that are called even and odd find each other then.
struct Places
{
    int codes[2][2 * cMargin];
    int offsets[2][2 * cMargin + 2];

    constexpr Places()
        : codes()
        , offsets()
    {
        for (int isOdd = 0; isOdd < 2; ++isOdd)
            for (int i = 0; i < 2 * int(cMargin); ++i)
            {
                const int offset = i < int(cMargin) ? i - int(cMargin) : i - int(cMargin) + 1;
                const int distance = offset < 0 ? -offset : offset;
                const int code = offset == (isOdd != 0 ? -1 : 1) ? 0 : 2 * distance - (offset < 0 ? 1 : 0);
                codes[isOdd][i] = code;
                offsets[isOdd][code] = offset;
            }
    }
};

constexpr int cCodeMask = 31;
constexpr Places cPlaces;

} // namespace

TreeBuilder::TreeBuilder(const Primitives& primitives, const Box3& bounds)
    : _given(primitives)
{
    _tree.setFrame(bounds);
    const glm::dvec3 size = bounds.getSize() * (0.5 * _tree.toTree);
    _half = static_cast<float>(std::max({size.x, size.y, size.z}));
    _toPlace = _half > 0 ? 1023 / _half : 0;
    _boxes.reserve(primitives.size());
    _firsts.reserve(primitives.size());
    _keys.reserve(primitives.size());
    for (std::vector<std::uint32_t>& counts : _counts)
        counts.assign(std::size_t(1) << cDigitBits, 0);
}

bool TreeBuilder::step()
{
    const std::size_t n = _given.size(), end = _at + cStep;
    switch (_stage)
    {
    case Stage::Boxes:
        findBoxes(std::min(end, n));
        if (_at >= n)
            startSort();
        break;
    case Stage::Sort:
        if (sortSome())
        {
            refineRuns();
            _n = _nClusters = _keys.size();
            for (std::size_t i = 0; i < 6; ++i)
                _sides[i].assign(_n + 2 * cMargin, i < 3 ? -1e12F : 1e12F);
            _ids.resize(_n);
            _partners.resize(_n);
            _merged.reserve(_n);
            go(Stage::Gather);
        }
        break;
    case Stage::Gather:
        gather(std::min(end, _n));
        if (_at == _n)
        {
            _boxes = {};
            _sorted = {};
            go(_n > 1 ? Stage::Pair : Stage::Collapse);
        }
        break;
    case Stage::Pair:
        pair(std::min(end, _nClusters));
        if (_at == _nClusters)
            go(Stage::Merge);
        break;
    case Stage::Merge:
        merge(std::min(end, _nClusters));
        if (_at == _nClusters)
            endMerge();
        break;
    case Stage::Collapse:
        collapseSome();
        if (_pending.empty())
        {
            _keys = {};
            _firsts = {};
            _ids = {};
            _merged = {};
            _order.insert(_order.end(), _unusable.begin(), _unusable.end());
            _ordered.nCorners = _given.nCorners;
            _ordered.corners.reserve(_given.corners.size());
            _ordered.numbers.reserve(n);
            _ordered.originals.reserve(std::min(_given.vertices.size(), _given.corners.size()));
            _names.assign(_given.vertices.size(), cNone);
            go(Stage::Order);
        }
        break;
    case Stage::Order:
        order(std::min(end, n));
        if (_at == n)
        {
            _ordered.vertices.resize(_ordered.originals.size());
            go(Stage::Vertices);
        }
        break;
    case Stage::Vertices:
        copyVertices(std::min(end, _ordered.vertices.size()));
        if (_at == _ordered.vertices.size())
            go(Stage::Fit);
        break;
    case Stage::Fit:
        // From the last one on.
        for (const std::size_t nNodes = _tree.nodes.size(); _at < std::min(end, nNodes); ++_at)
            _tree.fitNode(_ordered, nNodes - 1 - _at);
        if (_at == _tree.nodes.size())
            go(Stage::Done);
        break;
    case Stage::Done:
        break;
    }
    return _stage == Stage::Done;
}

double TreeBuilder::getProgress() const
{
    // Clusters become half as many in some two rounds.
    const auto share = [](std::size_t at, std::size_t of) { return of == 0 ? 1 : double(at) / double(of); };
    switch (_stage)
    {
    case Stage::Boxes:
        return 0.2 * share(_at, _given.size());
    case Stage::Sort:
    case Stage::Gather:
        return 0.3;
    case Stage::Pair:
    case Stage::Merge:
        return 0.35 + 0.35 * (1 - share(_nClusters, _n));
    case Stage::Collapse:
        return 0.7 + 0.1 * share(_order.size(), _tree.nInTree);
    case Stage::Order:
        return 0.8 + 0.1 * share(_at, _given.size());
    case Stage::Vertices:
    case Stage::Fit:
        return 0.95;
    case Stage::Done:
        break;
    }
    return 1;
}

void TreeBuilder::take(PrimitiveTree& tree, Primitives& primitives)
{
    tree = std::move(_tree);
    primitives = std::move(_ordered);
}

void TreeBuilder::go(Stage stage)
{
    _stage = stage;
    _at = 0;
    _nNext = 0;
}

// @return false when a corner can't be used
bool TreeBuilder::findBox(std::size_t i, Box& box) const
{
    const glm::dvec3 center = _tree.center;
    const double toTree = _tree.toTree;
    glm::dvec3 least = _given.corner(i, 0), greatest = least;
    double sum = least.x;
    for (std::size_t k = 1; k < _given.nCorners; ++k)
    {
        const glm::dvec3& corner = _given.corner(i, k);
        least = glm::min(least, corner);
        greatest = glm::max(greatest, corner);
        sum += corner.x;
    }
    least = (least - center) * toTree;
    greatest = (greatest - center) * toTree;
    for (int axis = 0; axis < 3; ++axis)
    {
        box.least[axis] = static_cast<float>(least[axis]);
        box.greatest[axis] = static_cast<float>(greatest[axis]);
    }
    return !std::isnan(sum);
}

// Whether two triangles share an edge, and fit into one box well.
bool TreeBuilder::isPair(std::size_t i, const Box& box, const Box& next) const
{
    if (_given.nCorners != 3)
        return false;
    const std::uint32_t *const a = &_given.corners[3 * i], *const b = a + 3;
    const auto isIn = [b](std::uint32_t corner) { return corner == b[0] || corner == b[1] || corner == b[2]; };
    if (int(isIn(a[0])) + int(isIn(a[1])) + int(isIn(a[2])) < 2)
        return false;
    const auto extent = [](const Box& from, const Box& to, std::size_t axis)
    { return std::max(from.greatest[axis], to.greatest[axis]) - std::min(from.least[axis], to.least[axis]); };
    const auto area = [&](const Box& from, const Box& to)
    { return areaOf(extent(from, to, 0), extent(from, to, 1), extent(from, to, 2)); };
    return area(box, next) <= 0.75F * (area(box, box) + area(next, next));
}

void TreeBuilder::addKey(const Box& box)
{
    std::uint64_t code = 0;
    for (std::size_t axis = 0; axis < 3; ++axis)
    {
        const float place = (box.least[axis] + box.greatest[axis]) * 0.5F;
        code |= spread(static_cast<std::uint64_t>((place + _half) * _toPlace)) << axis;
    }
    _keys.push_back(code << cNumberBits | _boxes.size());
    _boxes.push_back(box);
    for (std::size_t k = 0; k < 3; ++k)
        ++_counts[k][code >> (k * cDigitBits) & cDigitMask];
}

void TreeBuilder::findBoxes(std::size_t end)
{
    while (_at < end)
    {
        const std::size_t i = _at++;
        Box box, next;
        if (!findBox(i, box))
        {
            _unusable.push_back(static_cast<std::uint32_t>(i));
            continue;
        }
        ++_tree.nInTree;
        std::uint32_t first = static_cast<std::uint32_t>(i);
        if (_at < _given.size() && findBox(_at, next) && isPair(i, box, next))
        {
            for (std::size_t axis = 0; axis < 3; ++axis)
            {
                box.least[axis] = std::min(box.least[axis], next.least[axis]);
                box.greatest[axis] = std::max(box.greatest[axis], next.greatest[axis]);
            }
            first |= cIsPair;
            ++_tree.nInTree;
            ++_at;
        }
        _firsts.push_back(first);
        addKey(box);
    }
}

void TreeBuilder::startSort()
{
    for (std::vector<std::uint32_t>& counts : _counts)
        std::exclusive_scan(counts.begin(), counts.end(), counts.begin(), 0U);
    _sorted.resize(_keys.size());
    _pass = 0;
    go(Stage::Sort);
}

bool TreeBuilder::sortSome()
{
    const unsigned int shift = cNumberBits + static_cast<unsigned int>(_pass) * cDigitBits;
    std::vector<std::uint32_t>& places = _counts[_pass];
    for (const std::size_t end = std::min(_at + 4 * cStep, _keys.size()); _at < end; ++_at)
        _sorted[places[_keys[_at] >> shift & cDigitMask]++] = _keys[_at];
    if (_at < _keys.size())
        return false;
    std::swap(_keys, _sorted);
    _at = 0;
    return ++_pass == 3;
}

// Where many are within a small part of the whole: by their places in that part.
void TreeBuilder::refineRuns()
{
    struct Run
    {
        std::size_t first;
        std::size_t end;
    };
    std::vector<Run> runs;
    const auto findRuns = [&](std::size_t first, std::size_t end)
    {
        for (std::size_t i = first; i < end;)
        {
            std::size_t next = i + 1;
            while (next < end && _keys[next] >> cNumberBits == _keys[i] >> cNumberBits)
                ++next;
            if (next - i > cLongRun)
                runs.push_back({i, next});
            i = next;
        }
    };
    findRuns(0, _keys.size());
    while (!runs.empty())
    {
        const Run run = runs.back();
        runs.pop_back();
        const auto placeOf = [this](std::size_t i, std::size_t axis)
        {
            const Box& box = _boxes[_keys[i] & cNumberMask];
            return box.least[axis] + box.greatest[axis];
        };
        float least[3], size = 0;
        for (std::size_t axis = 0; axis < 3; ++axis)
        {
            float greatest = least[axis] = placeOf(run.first, axis);
            for (std::size_t i = run.first; i < run.end; ++i)
            {
                least[axis] = std::min(least[axis], placeOf(i, axis));
                greatest = std::max(greatest, placeOf(i, axis));
            }
            size = std::max(size, greatest - least[axis]);
        }
        if (size == 0)
            continue;
        for (std::size_t i = run.first; i < run.end; ++i)
        {
            std::uint64_t code = 0;
            for (std::size_t axis = 0; axis < 3; ++axis)
                code |= spread(static_cast<std::uint64_t>((placeOf(i, axis) - least[axis]) / size * 2047)) << axis;
            _keys[i] = code << cNumberBits | (_keys[i] & cNumberMask);
        }
        const auto from = _keys.begin();
        std::sort(from + static_cast<std::ptrdiff_t>(run.first), from + static_cast<std::ptrdiff_t>(run.end));
        findRuns(run.first, run.end);
    }
}

void TreeBuilder::gather(std::size_t end)
{
    for (; _at < end; ++_at)
    {
        const Box& box = _boxes[_keys[_at] & cNumberMask];
        for (std::size_t axis = 0; axis < 3; ++axis)
        {
            _sides[axis][_at + cMargin] = box.least[axis];
            _sides[axis + 3][_at + cMargin] = box.greatest[axis];
        }
        _ids[_at] = static_cast<std::uint32_t>(_at);
    }
}

void TreeBuilder::pair(std::size_t end)
{
    constexpr std::size_t cBlocks[] = {0, 4, cMargin + 1, cMargin + 5};
    const bool isEarly = _nClusters > _n / 2;
    const float* sides[6];
    for (std::size_t i = 0; i < 6; ++i)
        sides[i] = _sides[i].data();
    for (; _at < end; ++_at)
    {
        FourFloats own[6];
        for (std::size_t i = 0; i < 6; ++i)
            own[i] = allFour(sides[i][_at + cMargin]);
        const std::size_t isOdd = _at % 2;
        FourFloats best = allFour(std::numeric_limits<float>::max());
        for (std::size_t block = isEarly ? 1 : 0; block < (isEarly ? 3U : 4U); ++block)
        {
            const std::size_t from = _at + cBlocks[block];
            FourFloats size[3];
            for (std::size_t axis = 0; axis < 3; ++axis)
                size[axis] = largerOf(own[axis + 3], loadFour(sides[axis + 3] + from)) -
                             smallerOf(own[axis], loadFour(sides[axis] + from));
            FourMasks codes;
            std::memcpy(&codes, cPlaces.codes[isOdd] + 4 * block, sizeof codes);
            const auto area = reinterpret_cast<FourMasks>(areaOf(size[0], size[1], size[2]));
            best = smallerOf(best, reinterpret_cast<FourFloats>((area & ~cCodeMask) | codes));
        }
        const float least = std::min(std::min(best[0], best[1]), std::min(best[2], best[3]));
        const int offset = cPlaces.offsets[isOdd][std::bit_cast<int>(least) & cCodeMask];
        _partners[_at] = static_cast<std::uint32_t>(static_cast<std::ptrdiff_t>(_at) + offset);
    }
}

void TreeBuilder::merge(std::size_t end)
{
    float* sides[6];
    for (std::size_t i = 0; i < 6; ++i)
        sides[i] = _sides[i].data() + cMargin;
    std::uint32_t* const ids = _ids.data();
    const std::uint32_t* const partners = _partners.data();
    for (; _at < end; ++_at)
    {
        const std::size_t at = _at;
        std::size_t partner = _isForced ? at ^ 1 : partners[at];
        if (partner >= _nClusters || (!_isForced && partners[partner] != at))
            partner = at;
        if (partner < at)
            continue;
        const std::size_t to = _nNext++;
        for (std::size_t axis = 0; axis < 3; ++axis)
        {
            sides[axis][to] = std::min(sides[axis][at], sides[axis][partner]);
            sides[axis + 3][to] = std::max(sides[axis + 3][at], sides[axis + 3][partner]);
        }
        if (partner == at)
        {
            ids[to] = ids[at];
            continue;
        }
        const float area =
            areaOf(sides[3][to] - sides[0][to], sides[4][to] - sides[1][to], sides[5][to] - sides[2][to]);
        _merged.push_back({ids[at], ids[partner], area});
        ids[to] = static_cast<std::uint32_t>(_n + _merged.size() - 1);
    }
}

void TreeBuilder::endMerge()
{
    // Where each one is nearer to the next than that is to the one after it, next to nothing merges: never so twice.
    _isForced = _nClusters - _nNext < _nClusters / 8;
    _nClusters = _nNext;
    for (std::size_t i = 0; i < 6; ++i)
        std::fill_n(_sides[i].begin() + static_cast<std::ptrdiff_t>(_nClusters + cMargin), cMargin,
                    i < 3 ? -1e12F : 1e12F);
    if (_nClusters > 1)
        return go(_isForced ? Stage::Merge : Stage::Pair);
    _sides = {};
    _partners = {};
    go(Stage::Collapse);
}

void TreeBuilder::collapseSome()
{
    if (_order.empty() && _n > 0)
    {
        _order.reserve(_given.size());
        // Some more than what most trees take.
        _tree.nodes.reserve(_n / 16 * 9);
        _tree.nodes.emplace_back();
        _pending.push_back({_ids[0], 0, 1});
    }
    const auto isLeaf = [this](std::uint32_t id) { return id < _n; };
    for (std::size_t i = 0; i < cStep / 4 && !_pending.empty(); ++i)
    {
        const Pending pending = _pending.back();
        _pending.pop_back();
        _tree.height = std::max(_tree.height, pending.level);
        std::array<std::uint32_t, 4> below{pending.merged};
        // The largest is opened until there are four.
        std::size_t n = 1;
        while (n < 4)
        {
            std::size_t largest = 4;
            for (std::size_t k = 0; k < n; ++k)
                if (!isLeaf(below[k]) &&
                    (largest == 4 || _merged[below[k] - _n].area > _merged[below[largest] - _n].area))
                    largest = k;
            if (largest == 4)
                break;
            const Merged& merged = _merged[below[largest] - _n];
            below[largest] = merged.left;
            below[n++] = merged.right;
        }
        for (std::size_t k = 0; k < 4; ++k)
        {
            std::uint32_t first = 0, count = 0;
            if (k < n && isLeaf(below[k]))
            {
                first = static_cast<std::uint32_t>(_order.size());
                addLeaf(below[k]);
                count = static_cast<std::uint32_t>(_order.size()) - first;
            }
            else if (k < n)
            {
                first = static_cast<std::uint32_t>(_tree.nodes.size());
                _tree.nodes.emplace_back();
                _pending.push_back({below[k], first, pending.level + 1});
            }
            _tree.nodes[pending.node].first[k] = first;
            _tree.nodes[pending.node].count[k] = count;
        }
    }
}

void TreeBuilder::addLeaf(std::uint32_t id)
{
    const std::uint32_t first = _firsts[_keys[id] & cNumberMask], i = first & ~cIsPair;
    _order.push_back(i);
    if (first != i)
        _order.push_back(i + 1);
}

void TreeBuilder::order(std::size_t end)
{
    for (; _at < end; ++_at)
    {
        const std::size_t i = _order[_at];
        _ordered.numbers.push_back(_given.number(i));
        for (std::size_t k = 0; k < _given.nCorners; ++k)
        {
            const std::uint32_t vertex = _given.corners[i * _given.nCorners + k];
            if (_names[vertex] == cNone)
            {
                _names[vertex] = static_cast<std::uint32_t>(_ordered.originals.size());
                _ordered.originals.push_back(vertex);
            }
            _ordered.corners.push_back(_names[vertex]);
        }
    }
}

void TreeBuilder::copyVertices(std::size_t end)
{
    for (; _at < end; ++_at)
    {
        std::uint32_t& original = _ordered.originals[_at];
        _ordered.vertices[_at] = _given.vertices[original];
        if (!_given.originals.empty())
            original = _given.originals[original];
    }
}

} // namespace gui::draw
