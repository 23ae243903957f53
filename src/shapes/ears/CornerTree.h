#pragma once

#include <cstdint>

namespace gui::gl
{

/// The corners left of a polygon, in boxes: sixteen corners have a box around them, sixteen boxes have one, and so on.
/// A triangle asks only those boxes that may hold one of its corners.
///
/// Corners stand in slots. Their order is the outline's, since an outline is near itself along itself; or that of a
/// curve that fills the plane, where it isn't.
struct CornerTree
{
    static constexpr unsigned int cFan = 16;
    static constexpr unsigned int cMaxLevels = 8; ///< enough for 2^32 corners

    /// Around the children of one node, side by side.
    struct Boxes
    {
        float minX[cFan], maxX[cFan], minY[cFan], maxY[cFan];
        /// An outline crosses a box in a strip most of the time. The strip's corners are where
        /// (x - minX) * scaleX + (y - minY) * scaleY is from low to high, on a scale of 1 over the box's size.
        float scaleX[cFan], scaleY[cFan], low[cFan], high[cFan];
    };

    float *pX, *pY; ///< by slot, NaN behind the last
    std::uint16_t*
        pAlive[cMaxLevels];    ///< by node: a bit for each child that holds corners, which on level 0 are corners
    Boxes* pBoxes[cMaxLevels]; ///< by node, from level 1 on
    unsigned int nLevels;
    const unsigned int* pSlots;   ///< by corner; null when both are the same
    const unsigned int* pCorners; ///< by slot
    bool isBounded;               ///< whether all differences of coordinates are finite
    bool isModest;                ///< whether their products are, too
    unsigned int random;
    long long nVisits; ///< of boxes, that searches have made
};

} // namespace gui::gl
