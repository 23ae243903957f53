#pragma once

#include <random>
#include <string>
#include <unordered_set>

namespace gallery
{

/// Makes up names of towns that sound as if they belonged to a part of the world, the same ones each time and hardly
/// any of them twice.
class TownNames
{
public:
    /// @param longitude, latitude  in degrees, of the country's middle
    std::string make(double longitude, double latitude);

private:
    std::mt19937 _random{17};
    std::unordered_set<std::string> _made;
};

} // namespace gallery
