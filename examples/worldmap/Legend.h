#pragma once

#include "Outlook.h"
#include "Writing.h"

#include <gui/gl/Buffer.h>
#include <gui/gl/Flat2DProgram.h>

#include <optional>
#include <string>
#include <vector>

namespace worldmap
{

/// The longest of 1, 2, 5, 10, 20, 50 ... that is not above this length, which is 1 at least.
double roundLength(double length);

/// A scale bar, and below it a line that says where the pointer is. Laid out anew only when one of them changed.
class Legend
{
public:
    Legend();

    /// @return false, after a line in the log, when a font is missing
    [[nodiscard]] bool init();

    /// @param pointer  in the view, if it is there  @param country  the name of the country there, or nothing
    void draw(const Outlook& outlook, const std::optional<td::Point<double>>& pointer, const std::string& country);

    /// What it covers of a frame, in pixels.
    static std::vector<examples::Captions::Box> boxesIn(const Outlook& outlook);

    const std::string& getPlaceText() const { return _place; }
    const std::string& getScaleText() const { return _length; }

private:
    void layOut();
    void fillShapes(double barLength);

    gui::gl::Flat2DProgram _program;
    gui::gl::Buffer _shapes;
    examples::Captions _captions;
    Outlook _outlook;
    std::string _place;
    std::string _country;
    std::string _length;
};

} // namespace worldmap
