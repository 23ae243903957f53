#pragma once

#include "CornerSet.h"
#include "CornerTree.h"

#include <cstdint>

namespace gui::gl
{

/// A polygon of few corners, on its way to none. Places of corners are bits of words, in the polygon's order,
/// counter-clockwise.
struct FewEars
{
    static constexpr unsigned int cMaxCorners = 64;

    alignas(32) float x[cMaxCorners + 16], y[cMaxCorners + 16]; ///< more are read than count
    unsigned int numbers[cMaxCorners];                          ///< of the points
    std::uint64_t waiting[cMaxCorners]; ///< for the corner to be cut; one that waits no more may be among them
    std::uint64_t convex;               ///< turn left far enough to be an ear
    std::uint64_t candidates;           ///< those of them not known to have another corner in the way
    unsigned int nPlaces;
    unsigned int from;      ///< where the next candidate is looked for
    float epsilon;          ///< the doubled area that an ear has at least
    unsigned int* pIndices; ///< where the next triangle goes
};

/// The same for any number of corners. Places are numbers.
struct ManyEars
{
    static constexpr unsigned int cNone = ~0U, cAgain = cNone - 1;

    struct Corner
    {
        float x, y;
        unsigned int previous, next;               ///< of those left; next is cNone of one that is cut
        unsigned int waitsFor;                     ///< the one in its way
        unsigned int firstWaiting;                 ///< of those that wait for it
        unsigned int previousWaiting, nextWaiting; ///< of those that wait for the same
        /// previousWaiting is cAgain of one that waits no more, until its neighbours change.
    };

    Corner* pCorners;
    unsigned int* pNumbers; ///< of the points
    CornerSet candidates;
    CornerTree tree;
    unsigned int nPlaces, nLeft;
    unsigned int nEnough; ///< corners left with which cutting stops
    unsigned int from;
    long long nVisitsAllowed, nVisitsPerEar, nVisitsPerFailure; ///< by these it grows with ears and failed searches
    float epsilon;
    unsigned int* pIndices;
};

/// What the time of ear clipping goes into, for a machine's vectors.
struct EarLoops
{
    /// Takes a polygon's n corners, all of them left. Each is x and y in turn.
    void (*fillFew)(FewEars& ears, const float* pPoints, unsigned int n, bool isReversed);

    /// Cuts ears, each time the first from the place on that lies two behind the last one.
    /// @return false when there is no ear and more than two corners are left
    bool (*cutFew)(FewEars& ears);

    /// Puts boxes around the corners of n slots, all of them left.
    void (*buildTree)(CornerTree& tree, unsigned int n);

    /// Makes every corner a candidate that turns left far enough, in the first level of the set. None is cut yet, and
    /// the tree is in the outline's order.
    void (*findCandidates)(ManyEars& ears);

    enum class Result
    {
        Enough, ///< no more corners are left than wanted
        NoEar,
        Crowded ///< searches go through too many boxes of the tree
    };
    Result (*cutMany)(ManyEars& ears);
};

extern const EarLoops cEarLoops, cEarLoopsAVX2;

/// The best for this machine.
const EarLoops& earLoops();

} // namespace gui::gl
