#pragma once

#include <td/Point.h>

namespace gui::gl
{

/// The way from one view of a plane to another that looks shortest: out, along and in again, as fast everywhere as it
/// is seen. J. J. van Wijk and W. A. A. Nuij, "Smooth and efficient zooming and panning", 2003, with their rho =
/// sqrt(2).
class PlaneFlight
{
public:
    /// What is seen: the model point in the view's middle, and how wide a part of the model.
    struct Sight
    {
        td::Point<double> center;
        double width; ///< in model units, above 0
    };

    PlaneFlight(const Sight& from, const Sight& to);

    /// @param part  of the way, 0 to 1
    Sight at(double part) const;

private:
    Sight _from;
    Sight _to;
    double _distance; // in model units
    double _begin = 0;
    double _length = 0; // in the paper's measure of what is seen to change
};

} // namespace gui::gl
