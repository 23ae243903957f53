#pragma once

#include "Typeface.h"

#include <td/Color.h>
#include <td/Export.h>

#include <vector>

namespace gui::draw
{

/// The colours and sizes of a plot's paper. A value; sizes are in points, 0 to 1000, to which a plot holds them.
struct GUIGL_API PlotStyle
{
    td::Color background{255, 255, 255, 255}; ///< around the axes
    td::Color area{255, 255, 255, 255};       ///< behind the samples
    td::Color ink{38, 38, 44, 255};           ///< of titles and the axes' lines
    td::Color labels{84, 86, 96, 255};        ///< of numbers
    td::Color grid{30, 34, 48, 30};           ///< of lines at the ticks
    td::Color minorGrid{0, 0, 0, 0};          ///< and between them; none at first
    bool isGridDashed = true;
    td::Color panel{255, 255, 255, 225}; ///< behind the legend and the crosshair's values
    /// Of series without a colour, one after the other.
    std::vector<td::Color> colors = {"#3465d9", "#e6631e", "#2a9d63", "#c9374a", "#8b5cc8",
                                     "#d19a00", "#12a0b8", "#d4579c", "#7a5c3e", "#6b7785"};
    Typeface face{}; ///< none stands for the system's sans serif
    double labelSize = 11.5;
    double axisTitleSize = 12.5;
    double titleSize = 15;
    double lineWidth = 1; ///< of the axes and the grid

    static PlotStyle light() { return {}; } ///< for paper and pages
    static PlotStyle dark();                ///< for screens at night
};

} // namespace gui::draw
