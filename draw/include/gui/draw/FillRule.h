#pragma once

#include <td/Types.h>

namespace gui::draw
{

/// Which points rings have inside of them, by the winding number: how often the rings go around a point, each turn in
/// one direction counting 1 and in the other -1.
enum class FillRule : td::BYTE
{
    NonZero, ///< where it is not 0: where rings overlap stays filled, and a hole goes the other way round
    EvenOdd  ///< where it is odd: each ring turns what is inside of it into the opposite, whichever way it goes
};

} // namespace gui::draw
