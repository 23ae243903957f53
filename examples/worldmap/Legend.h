#pragma once

#include "SheetView.h"

namespace worldmap
{

/// The longest of 1, 2, 5, 10, 20, 50 ... that is not above this length, which is 1 at least.
double roundLength(double length);

/// A scale bar, and below it a line that says where the pointer is, in points of the view.
class Legend
{
public:
    Legend();

    /// @param pointer  in the view, if it is there  @param country  the name of the country there, or nothing
    void draw(const SheetView& map, const std::optional<Point>& pointer, const std::string& country);

    const std::string& getPlaceText() const { return _placeText; }
    const std::string& getScaleText() const { return _scaleText; }

private:
    using ID = gui::draw::Drawing::ID;

    gui::draw::Drawing _drawing;
    ID _all, _band, _rim, _bar, _scale, _place, _country;
    std::string _placeText, _scaleText;
};

} // namespace worldmap
