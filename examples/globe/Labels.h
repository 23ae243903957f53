#pragma once

#include "Sight.h"

#include <common/TopoJSON.h>

#include <gui/draw/Labels.h>
#include <td/Size.h>

#include <vector>

namespace globe
{

/// The names of countries that face the eye, as many as there is room for, the largest first.
class Labels
{
public:
    /// @param countries  read during the call only
    explicit Labels(const examples::TopoJSON& countries);

    /// @param size  of the frame, in points  @param scale  device pixels per point
    void draw(const Sight& sight, const td::Size<double>& size, double scale);

    /// Whether a country's name was drawn last. @param country  its index in what the constructor took
    bool isShown(std::size_t country) const { return _labels.isShown(_countries[country].id); }

private:
    struct Country
    {
        gui::draw::Drawing::ID id; // 0 without a name or a place
        double width;              // of its name, in points
        glm::vec3 direction;       // of the middle of its largest piece
        double extent;             // of that piece, in radians
    };

    gui::draw::Drawing _drawing; // in points of the frame
    gui::draw::Labels _labels{_drawing};
    std::vector<Country> _countries;
};

} // namespace globe
