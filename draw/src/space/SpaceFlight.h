#pragma once

#include <glm/vec3.hpp>

namespace gui::draw
{

/// The way of a camera from one target and distance to another that looks shortest: out, along and in again, as fast
/// everywhere as it is seen. J. J. van Wijk and W. A. A. Nuij, "Smooth and efficient zooming and panning", 2003, with
/// their rho = sqrt(2), along the straight line between the targets.
class SpaceFlight
{
public:
    /// What is looked at.
    struct Sight
    {
        glm::dvec3 target;
        double distance; ///< above 0
    };

    SpaceFlight(const Sight& from, const Sight& to);

    /// @param part  of the way, 0 to 1
    Sight at(double part) const;

private:
    Sight _from;
    Sight _to;
    double _length; // between the targets, in model units
    double _begin = 0;
    double _way = 0; // in the paper's measure of what is seen to change
};

} // namespace gui::draw
