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
    static constexpr double cHeight = 42; ///< that it takes from the view's lower edge on

    Legend();

    /// @param pointer  in the view, if it is there  @param country  the name of the country there, or nothing
    void layOut(const SheetView& map, const std::optional<Point>& pointer, const std::string& country);
    void draw(double pixelsPerPoint) { _drawing.draw(gui::draw::Affine(), pixelsPerPoint); }

    const std::string& getPlaceText() const { return _texts[1]; }
    const std::string& getScaleText() const { return _texts[0]; }

private:
    gui::draw::Drawing _drawing;
    gui::draw::Drawing::ID _ground;
    gui::draw::Drawing::ID _bar;
    gui::draw::Drawing::ID _ids[4]; // of the texts: scale, place, country, zoom
    std::string _texts[4];
};

} // namespace worldmap
