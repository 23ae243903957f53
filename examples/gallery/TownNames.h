#pragma once

#include <random>
#include <string>

namespace gallery
{

/// Makes up names of towns that sound as if they belonged to a part of the world, the same ones each time.
class TownNames
{
public:
    /// @param longitude, latitude  in degrees, of the country's middle
    std::string make(double longitude, double latitude);

private:
    std::mt19937 _random{17};
};

} // namespace gallery
