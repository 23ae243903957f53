#pragma once

#include <gui/draw/Stroke.h>

#include <vector>

namespace gui::draw
{

/// A stroke's dashes as they are drawn, in the unit that they are in.
struct DashPattern
{
    explicit DashPattern(const Stroke& stroke);

    std::vector<double> lengths; ///< an even number, dashes and gaps in turn; none for a solid stroke
    double sum = 0;
    double offset = 0; ///< of a subpath's beginning, from 0 to the sum
};

} // namespace gui::draw
