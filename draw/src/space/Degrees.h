#pragma once

namespace gui::draw
{

/// Of an angle in degrees, exact at multiples of 90: what looks straight along an axis has zeros and ones in its
/// matrix.
double sineOf(double degrees);
double cosineOf(double degrees); ///< as sineOf

} // namespace gui::draw
