#pragma once

#include "SheetView.h"

#include <gui/draw/Labels.h>

namespace worldmap
{

/// How everything is written on the map. @param halo  the width of a light rim, in points
gui::draw::TextStyle writing(double halo);

/// The names of the countries, the largest first, as far as there is room: in the country once it is seen so large that
/// its name fits, in two lines if need be, or beside an island. Where a country is too large for one name, each half
/// of it has one, and so on.
class Names
{
public:
    void draw(const SheetView& map);

    /// Whether its name was on the map when that was drawn last, in sight or not.
    bool isShown(std::size_t country) const
    {
        return std::ranges::any_of(_ids[country], [this](auto id) { return _labels.isShown(id); });
    }

private:
    void make(const SheetView& map);

    gui::draw::Drawing _drawing;
    gui::draw::Labels _labels{_drawing};
    std::vector<std::vector<gui::draw::Drawing::ID>> _ids; // of each country's names
    std::optional<Projection> _projection;                 // of the names
};

} // namespace worldmap
