#include "EarLoops.h"

#include "../../simd/BestLoops.h"
#include "CornerSearch.h"
#include "CornerSet.h"
#include "EarTriangle.h"
#include "TreeBuilder.h"

// Compiled once for any machine and once for AVX2.

namespace gui::gl
{

namespace
{

using Corner = ManyEars::Corner;

// Few corners.

// The first bit from a place on, or from 0 on when there is none.
inline unsigned int nextBit(std::uint64_t bits, unsigned int place)
{
    place %= 64;
    return (place + firstBit(bits >> place | bits << (64 - place) % 64)) % 64;
}

// The last bit before a place, or before 64 when there is none.
inline unsigned int previousBit(std::uint64_t bits, unsigned int place)
{
    return (place + 63 - static_cast<unsigned int>(__builtin_clzll(bits << (64 - place) % 64 | bits >> place))) % 64;
}

inline EarPoint pointAt(const FewEars& ears, unsigned int place) { return {ears.x[place], ears.y[place]}; }

void fillFew(FewEars& ears, const float* pPoints, unsigned int n, bool isReversed)
{
    for (unsigned int i = 0; i < n; ++i)
    {
        const unsigned int number = isReversed ? n - 1 - i : i;
        ears.x[i] = pPoints[2 * number];
        ears.y[i] = pPoints[2 * number + 1];
        ears.numbers[i] = number;
        ears.waiting[i] = 0;
    }
    ears.convex = 0;
    for (unsigned int u = n - 2, v = n - 1, w = 0; w < n; u = v, v = w++)
    {
        const float area = turnArea(pointAt(ears, u), pointAt(ears, v), pointAt(ears, w));
        ears.convex |= std::uint64_t(isEarArea(area, ears.epsilon)) << v;
    }
    ears.candidates = ears.convex;
    ears.nPlaces = n;
    ears.from = 0;
}

/// Bits of the corners of a polygon of few.
struct FewSets
{
    std::uint64_t left;       ///< not cut yet
    std::uint64_t convex;     ///< turn left far enough to be an ear
    std::uint64_t candidates; ///< those of them not known to have another corner in the way
};

// Closes the gaps between the corners left; no corner stays in its place, but all stay in order.
void packFew(FewEars& ears, FewSets& sets)
{
    unsigned char places[FewEars::cMaxCorners];
    unsigned int n = 0;
    FewSets packed{};
    for (std::uint64_t rest = sets.left; rest != 0; rest &= rest - 1)
    {
        const unsigned int i = firstBit(rest);
        places[i] = static_cast<unsigned char>(n);
        packed.convex |= (sets.convex >> i & 1) << n;
        packed.candidates |= (sets.candidates >> i & 1) << n;
        ears.x[n] = ears.x[i];
        ears.y[n] = ears.y[i];
        ears.numbers[n] = ears.numbers[i];
        ++n;
    }
    for (std::uint64_t rest = sets.left; rest != 0; rest &= rest - 1)
    {
        const unsigned int i = firstBit(rest);
        std::uint64_t packedWaiting = 0;
        for (std::uint64_t waiting = ears.waiting[i] & sets.left; waiting != 0; waiting &= waiting - 1)
            packedWaiting |= bit(places[firstBit(waiting)]);
        ears.waiting[places[i]] = packedWaiting;
    }
    packed.left = firstBits(n);
    sets = packed;
    ears.nPlaces = n;
}

bool cutFew(FewEars& ears)
{
    const float epsilon = ears.epsilon;
    unsigned int nPlaces = ears.nPlaces, nLeft = nPlaces;
    FewSets sets{firstBits(nPlaces), ears.convex, ears.candidates};
    unsigned int* pIndices = ears.pIndices;
    unsigned int v = sets.candidates != 0 ? nextBit(sets.candidates, ears.from) : 0;
    while (nLeft > 2 && sets.candidates != 0)
    {
        const unsigned int u = previousBit(sets.left, v), w = nextBit(sets.left, v + 1);
        const EarPoint a = pointAt(ears, u), b = pointAt(ears, v), c = pointAt(ears, w);
        const EarTriangle triangle(a, b, c);
        const std::uint64_t others = sets.left & ~(bit(u) | bit(v) | bit(w));
        std::uint64_t inside = 0;
        for (unsigned int i = 0; i < nPlaces; i += 8)
            inside |= std::uint64_t(insideBits<8>(triangle, ears.x + i, ears.y + i)) << i;
        inside &= others;
        if (inside != 0)
        {
            ears.waiting[firstBit(inside)] |= bit(v);
            sets.candidates &= ~bit(v);
            v = sets.candidates != 0 ? nextBit(sets.candidates, v) : 0;
            continue;
        }
        pIndices[0] = ears.numbers[u];
        pIndices[1] = ears.numbers[v];
        pIndices[2] = ears.numbers[w];
        pIndices += 3;
        sets.left &= ~bit(v);
        --nLeft;
        const float areaOfA = turnArea(pointAt(ears, previousBit(sets.left, u)), a, c);
        const float areaOfC = turnArea(a, c, pointAt(ears, nextBit(sets.left, w + 1)));
        const std::uint64_t turned =
            std::uint64_t(isEarArea(areaOfA, epsilon)) << u | std::uint64_t(isEarArea(areaOfC, epsilon)) << w;
        const std::uint64_t rest = (sets.candidates | ears.waiting[v]) & sets.convex & others;
        sets.convex = (sets.convex & others) | turned;
        sets.candidates = rest | turned;
        // The corner behind w is tried next; u and w are the last, so that there is seldom need to wait for their
        // areas.
        if (rest != 0) [[likely]]
            v = nextBit(rest, w + 1);
        else if (turned != 0)
            v = nextBit(turned, w + 1);
        if (2 * nLeft <= nPlaces && nPlaces > 8)
        {
            const std::uint64_t before = sets.left & (bit(v) - 1);
            packFew(ears, sets);
            nPlaces = ears.nPlaces;
            v = static_cast<unsigned int>(__builtin_popcountll(before));
        }
    }
    ears.pIndices = pIndices;
    return nLeft == 2;
}

// Many corners.

inline Record pointOf(const Corner& corner) { return loadPair(&corner.x); }

void buildTree(CornerTree& tree, unsigned int n) { TreeBuilder(tree).build(n); }

// Bits of the corners from a place on that turn left far enough, as many as there are lanes, with one at each end.
inline unsigned int earAreaBits(const float* x, const float* y, float epsilon)
{
    const Floats ax = load(x - 1), ay = load(y - 1);
    const Floats area = (load(x) - ax) * (load(y + 1) - ay) - (load(y) - ay) * (load(x + 1) - ax);
    return bits(~(epsilon > area));
}

void findCandidates(ManyEars& ears)
{
    const unsigned int n = ears.nPlaces;
    const float *const x = ears.tree.pX, *const y = ears.tree.pY;
    const auto isCandidate = [&](unsigned int i)
    {
        const unsigned int u = i > 0 ? i - 1 : n - 1, w = i + 1 < n ? i + 1 : 0;
        return isEarArea(turnArea({x[u], y[u]}, {x[i], y[i]}, {x[w], y[w]}), ears.epsilon);
    };
    for (unsigned int first = 0; first < n; first += 64)
    {
        std::uint64_t word = 0;
        for (unsigned int i = first; i < n && i < first + 64;)
        {
            const bool isInside = i > 0 && i + cLanes < n;
            word |= std::uint64_t(isInside ? earAreaBits(x + i, y + i, ears.epsilon) : isCandidate(i)) << i % 64;
            i += isInside ? static_cast<unsigned int>(cLanes) : 1;
        }
        ears.candidates.pWords[0][first / 64] = word;
    }
}

inline void unhook(Corner* corners, unsigned int v)
{
    Corner& corner = corners[v];
    const unsigned int previous = corner.previousWaiting;
    corner.previousWaiting = ManyEars::cNone;
    if (corner.waitsFor == ManyEars::cNone)
        return;
    if (previous != ManyEars::cNone)
        corners[previous].nextWaiting = corner.nextWaiting;
    else
        corners[corner.waitsFor].firstWaiting = corner.nextWaiting;
    if (corner.nextWaiting != ManyEars::cNone)
        corners[corner.nextWaiting].previousWaiting = previous;
    corner.waitsFor = ManyEars::cNone;
}

inline void wait(Corner* corners, unsigned int v, unsigned int forCorner)
{
    Corner& corner = corners[v];
    corner.waitsFor = forCorner;
    corner.previousWaiting = ManyEars::cNone;
    corner.nextWaiting = corners[forCorner].firstWaiting;
    if (corner.nextWaiting != ManyEars::cNone)
        corners[corner.nextWaiting].previousWaiting = v;
    corners[forCorner].firstWaiting = v;
}

inline void removeFromTree(CornerTree& tree, unsigned int slot)
{
    for (unsigned int level = 0; level < tree.nLevels; ++level)
    {
        std::uint16_t& alive = tree.pAlive[level][slot / CornerTree::cFan];
        alive = static_cast<std::uint16_t>(alive & ~(1U << slot % CornerTree::cFan));
        if (alive != 0) [[likely]]
            return;
        slot /= CornerTree::cFan;
    }
}

EarLoops::Result cutMany(ManyEars& ears)
{
    Corner* const corners = ears.pCorners;
    const unsigned int* const numbers = ears.pNumbers;
    CornerTree& tree = ears.tree;
    const unsigned int* const slots = tree.pSlots;
    const float epsilon = ears.epsilon;
    const unsigned int nEnough = ears.nEnough;
    const unsigned int nFirst = ears.nLeft;
    unsigned int nLeft = nFirst, from = ears.from;
    unsigned int* pIndices = ears.pIndices;
    CornerTaker candidates(ears.candidates);
    EarLoops::Result result = EarLoops::Result::Enough;
    const auto nAllowed = [&ears, nFirst](unsigned int n, long long nFailed)
    { return ears.nVisitsAllowed + ears.nVisitsPerEar * (nFirst - n) + ears.nVisitsPerFailure * nFailed; };
    long long nFailed = 0;
    const auto slotOf = [slots](unsigned int place) { return slots != nullptr ? slots[place] : place; };

    while (nLeft > nEnough)
    {
        if (candidates.isAtEnd())
        {
            if (tree.nVisits > nAllowed(nLeft, nFailed))
            {
                result = EarLoops::Result::Crowded;
                break;
            }
            if (!candidates.goOn(from))
            {
                result = EarLoops::Result::NoEar;
                break;
            }
        }
        const unsigned int v = candidates.take();
        const unsigned int u = corners[v].previous, w = corners[v].next;
        const Record a = pointOf(corners[u]), b = pointOf(corners[v]), c = pointOf(corners[w]);
        const bool isAgain = corners[v].previousWaiting == ManyEars::cAgain;
        const unsigned int found = CornerSearch(tree, a, b, c, slotOf(u), slotOf(v), slotOf(w), isAgain).find();
        if (found != CornerSearch::cNone)
        {
            wait(corners, v, slots != nullptr ? tree.pCorners[found] : found);
            from = v + 1;
            ++nFailed;
            continue;
        }
        pIndices[0] = numbers[u];
        pIndices[1] = numbers[v];
        pIndices[2] = numbers[w];
        pIndices += 3;
        corners[u].next = w;
        corners[w].previous = u;
        corners[v].next = ManyEars::cNone;
        removeFromTree(tree, slotOf(v));
        --nLeft;
        // The corner behind w is tried next, and w last.
        from = w + 1;
        candidates.skipTo(w);
        for (unsigned int i = corners[v].firstWaiting; i != ManyEars::cNone; i = corners[i].nextWaiting)
        {
            corners[i].waitsFor = ManyEars::cNone;
            corners[i].previousWaiting = ManyEars::cAgain;
            candidates.insert(i);
        }
        unhook(corners, u);
        candidates.setBehind(u, isEarArea(turnArea(pointOf(corners[corners[u].previous]), a, c), epsilon));
        unhook(corners, w);
        candidates.setBehind(w, isEarArea(turnArea(a, c, pointOf(corners[corners[w].next])), epsilon));
    }
    candidates.putBack();
    ears.nVisitsAllowed = nAllowed(nLeft, nFailed);
    ears.nLeft = nLeft;
    ears.from = from;
    ears.pIndices = pIndices;
    return result;
}

} // namespace

#ifdef __AVX2__

const EarLoops cEarLoopsAVX2{fillFew, cutFew, buildTree, findCandidates, cutMany};

#else

const EarLoops cEarLoops{fillFew, cutFew, buildTree, findCandidates, cutMany};

const EarLoops& earLoops() { return bestLoops<EarLoops, cEarLoops, cEarLoopsAVX2>(); }

#endif

} // namespace gui::gl
