#include "EarClipper.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace gui::gl
{

namespace
{

constexpr unsigned int cNone = ManyEars::cNone;
constexpr unsigned int cFan = CornerTree::cFan;

// How many visits of boxes for each corner a new order has at first.
constexpr long long cVisitsOnTrial = 2;

template <typename T>
T* grown(std::vector<T>& list, std::size_t size)
{
    if (list.size() < size)
        list.resize(size);
    return list.data();
}

/// Sizes of the levels of a tree, from its leaves to its root, end to end.
template <unsigned int cMaxLevels>
struct Levels
{
    Levels(unsigned int n, unsigned int fan)
    {
        do
        {
            starts[nLevels++] = size;
            n = (n + fan - 1) / fan;
            size += n;
        } while (n > 1);
    }

    unsigned int starts[cMaxLevels] = {};
    unsigned int nLevels = 0;
    unsigned int size = 0;
};

} // namespace

void EarClipper::reserve(std::size_t nCorners)
{
    if (nCorners > FewEars::cMaxCorners)
        setSize(static_cast<unsigned int>(nCorners));
}

bool EarClipper::clip(const td::Point<float>* points, unsigned int n, bool isReversed, float epsilon,
                      cnt::PushBackVector<unsigned int, 0>& indices)
{
    indices.reset();
    _few.pIndices = _many.pIndices = indices.pushSlots(3 * (std::size_t(n) - 2));
    _few.epsilon = _many.epsilon = epsilon;
    bool isCut = true;
    if (n <= FewEars::cMaxCorners)
        _loops.fillFew(_few, &points->x, n, isReversed);
    else
    {
        fillMany(points, n, isReversed);
        isCut = cutMany();
        _few.pIndices = _many.pIndices;
        if (isCut)
            makeFew();
    }
    isCut = isCut && _loops.cutFew(_few);
    const auto nIndices = static_cast<std::size_t>(_few.pIndices - indices.begin());
    indices.reset();
    indices.pushSlots(nIndices);
    return isCut;
}

// Makes room for n corners, and has them take all of it.
void EarClipper::setSize(unsigned int n)
{
    _many.nPlaces = n;
    _many.nEnough = std::max(FewEars::cMaxCorners, n / 2);
    _many.pCorners = grown(_corners, n);
    _many.pNumbers = grown(_numbers, n);
    grown(_places, n);
    _slots.reserve(n);
    _slotCorners.reserve(n);
    _isKept.reserve(n);

    const Levels<CornerSet::cMaxLevels> words(n, 64);
    grown(_candidates, words.size);
    for (unsigned int level = 0; level < words.nLevels; ++level)
        _many.candidates.pWords[level] = _candidates.data() + words.starts[level];
    _many.candidates.nWords = (n + 63) / 64;
    _many.candidates.nLevels = words.nLevels;

    CornerTree& tree = _many.tree;
    const Levels<CornerTree::cMaxLevels> nodes(n, cFan);
    grown(_alive, nodes.size);
    grown(_boxes, nodes.size - nodes.starts[1]);
    for (unsigned int level = 0; level < nodes.nLevels; ++level)
    {
        tree.pAlive[level] = _alive.data() + nodes.starts[level];
        tree.pBoxes[level] = level > 0 ? _boxes.data() + nodes.starts[level] - nodes.starts[1] : nullptr;
    }
    tree.nLevels = nodes.nLevels;
    tree.pX = grown(_x, std::size_t(nodes.starts[1]) * cFan);
    tree.pY = grown(_y, std::size_t(nodes.starts[1]) * cFan);
    // Of corners that aren't there.
    constexpr float cNaN = std::numeric_limits<float>::quiet_NaN();
    for (unsigned int i = n; i % cFan != 0; ++i)
        _x[i] = _y[i] = cNaN;
}

void EarClipper::fillMany(const td::Point<float>* points, unsigned int n, bool isReversed)
{
    setSize(n);
    for (unsigned int i = 0; i < n; ++i)
    {
        const unsigned int number = isReversed ? n - 1 - i : i;
        const td::Point<float> p = points[number];
        _corners[i] = {p.x, p.y, i - 1, i + 1, cNone, cNone, cNone, cNone};
        _numbers[i] = number;
        _x[i] = p.x;
        _y[i] = p.y;
    }
    _corners[0].previous = n - 1;
    _corners[n - 1].next = 0;
    _many.nLeft = n;
    _many.from = 0;
    CornerTree& tree = _many.tree;
    tree.pSlots = tree.pCorners = nullptr;
    tree.random = 1;
    _nVisitsPerCorner = _nVisitsAtFirst;
    allow(_nVisitsPerCorner, cVisitsPerEar * _nVisitsAtFirst);
    _loops.buildTree(tree, n);
    _loops.findCandidates(_many);
    fillUpperWords(_many.candidates);
}

// Cuts ears until few corners are left. @return false when there is none
bool EarClipper::cutMany()
{
    for (;;)
    {
        const EarLoops::Result result = _loops.cutMany(_many);
        if (result == EarLoops::Result::NoEar)
            return false;
        if (result == EarLoops::Result::Crowded)
            changeOrder();
        else if (_many.nLeft > FewEars::cMaxCorners)
            pack();
        else
            return true;
    }
}

// Closes the gaps between the corners left, in what is known of them and in the candidates. @return how many these are
unsigned int EarClipper::closeGaps()
{
    const unsigned int nKept = _many.nLeft, from = _many.from;
    const bool isSorted = _many.tree.pSlots != nullptr;
    ManyEars::Corner* const corners = _corners.data();
    unsigned int *const numbers = _numbers.data(), *const places = _places.data();
    std::uint64_t* const words = _many.candidates.pWords[0];
    if (isSorted)
        _isKept.assign(_many.nPlaces, 0);
    unsigned char* const isKept = _isKept.data();
    unsigned int place = 0, nBefore = 0;
    while (corners[place].next == cNone)
        ++place;
    std::uint64_t word = 0;
    for (unsigned int i = 0; i < nKept; ++i)
    {
        const ManyEars::Corner corner = corners[place];
        nBefore += place < from ? 1 : 0;
        word |= (words[place / 64] >> place % 64 & 1) << i % 64;
        if (i % 64 == 63)
            words[i / 64] = std::exchange(word, 0);
        places[place] = i;
        numbers[i] = numbers[place];
        corners[i] = {corner.x, corner.y, i - 1, i + 1, corner.waitsFor, cNone, cNone, cNone};
        if (isSorted)
            isKept[place] = 1;
        place = corner.next;
    }
    if (nKept % 64 != 0)
        words[nKept / 64] = word;
    corners[0].previous = nKept - 1;
    corners[nKept - 1].next = 0;
    _many.from = nBefore;
    for (unsigned int i = 0; i < nKept; ++i)
    {
        if (corners[i].waitsFor == cNone)
            continue;
        ManyEars::Corner& blocker = corners[places[corners[i].waitsFor]];
        corners[i].waitsFor = places[corners[i].waitsFor];
        corners[i].nextWaiting = blocker.firstWaiting;
        if (blocker.firstWaiting != cNone)
            corners[blocker.firstWaiting].previousWaiting = i;
        blocker.firstWaiting = i;
    }
    return nKept;
}

// Closes the gaps, and makes the boxes as small as what is in them.
void EarClipper::pack()
{
    const unsigned int nBefore = _many.nPlaces, n = closeGaps();
    if (_many.tree.pSlots != nullptr)
        packSlots(nBefore, n);
    else
        for (unsigned int i = 0; i < n; ++i)
        {
            _x[i] = _corners[i].x;
            _y[i] = _corners[i].y;
        }
    setSize(n);
    fillUpperWords(_many.candidates);
    _loops.buildTree(_many.tree, n);
}

// The tree's order stays; _places tells the new places of corners.
void EarClipper::packSlots(unsigned int nBefore, unsigned int nKept)
{
    unsigned int packed = 0;
    for (unsigned int slot = 0; slot < nBefore; ++slot)
    {
        const unsigned int corner = _slotCorners[slot];
        _x[packed] = _x[slot];
        _y[packed] = _y[slot];
        _slotCorners[packed] = _places[corner];
        packed += _isKept[corner];
    }
    for (unsigned int slot = 0; slot < nKept; ++slot)
        _slots[_slotCorners[slot]] = slot;
}

// Searches go through many boxes. That may be since the outline is not near itself along itself, or since ears are
// needles, which are worse in any other order. So each order is on trial, the outline's for longer each time, and until
// ears take twice as many boxes as before.
void EarClipper::changeOrder()
{
    CornerTree& tree = _many.tree;
    const unsigned int nEars = _nBefore - _many.nLeft;
    const double earsPerVisit = nEars / std::max(1.0, static_cast<double>(tree.nVisits));
    if (tree.pSlots == nullptr)
    {
        _earsPerVisit = earsPerVisit;
        _nVisitsPerCorner *= 2;
        sort();
        allow(cVisitsOnTrial, cVisitsPerEar * _nVisitsAtFirst);
        return;
    }
    if (earsPerVisit < _earsPerVisit)
    {
        tree.pSlots = tree.pCorners = nullptr;
        pack();
        allow(_nVisitsPerCorner, static_cast<long long>(2 / _earsPerVisit) * _nVisitsAtFirst);
    }
    else
        _many.nVisitsAllowed = std::numeric_limits<long long>::max() / 2;
}

// Lets searches go through so many boxes for each corner left, for each ear that is cut, and fewer for failures.
void EarClipper::allow(long long nVisitsPerCorner, long long nVisitsPerEar)
{
    _many.nVisitsPerEar = nVisitsPerEar;
    // Where hardly anything is an ear, searches end soon in any order.
    _many.nVisitsPerFailure = nVisitsPerEar / 3;
    _nBefore = _many.nLeft;
    _many.tree.nVisits = 0;
    _many.nVisitsAllowed = nVisitsPerCorner * _nBefore;
}

void EarClipper::sort()
{
    const unsigned int n = closeGaps();
    setSize(n);
    fillUpperWords(_many.candidates);
    const std::span<CurveOrder::Item> items = _order.take(n);
    for (unsigned int i = 0; i < n; ++i)
        items[i] = {_corners[i].x, _corners[i].y, i, 0};
    _order.sort();
    _slots.resize(n);
    _slotCorners.resize(n);
    for (unsigned int slot = 0; slot < n; ++slot)
    {
        _x[slot] = items[slot].x;
        _y[slot] = items[slot].y;
        _slotCorners[slot] = items[slot].number;
        _slots[items[slot].number] = slot;
    }
    _many.tree.pSlots = _slots.data();
    _many.tree.pCorners = _slotCorners.data();
    _loops.buildTree(_many.tree, n);
}

// Few corners are left.
void EarClipper::makeFew()
{
    pack();
    const unsigned int n = _many.nPlaces;
    _few.candidates = _few.convex = *_many.candidates.pWords[0];
    for (unsigned int i = 0; i < n; ++i)
    {
        _few.x[i] = _corners[i].x;
        _few.y[i] = _corners[i].y;
        _few.numbers[i] = _numbers[i];
        _few.waiting[i] = 0;
    }
    for (unsigned int i = 0; i < n; ++i)
    {
        if (_corners[i].waitsFor == cNone)
            continue;
        _few.waiting[_corners[i].waitsFor] |= bit(i);
        _few.convex |= bit(i);
    }
    _few.nPlaces = n;
    _few.from = _many.from;
}

} // namespace gui::gl
