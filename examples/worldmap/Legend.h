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
    /// @param pointer  in the view, if it is there  @param country  the name of the country there, or nothing
    void draw(const SheetView& map, const std::optional<Point>& pointer, const std::string& country);

    const std::string& getPlaceText() const { return _content.place; }
    const std::string& getScaleText() const { return _content.scale; }

private:
    /// What it is made from, lengths in points.
    struct Content
    {
        double width, height, end; // of the view, and of the bar
        std::string scale, place, country;

        bool operator==(const Content&) const = default;
    };

    void make();

    gui::draw::Drawing _drawing;
    Content _content{};
};

} // namespace worldmap
