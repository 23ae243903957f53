#pragma once

#include "Marker.h"

#include <td/Color.h>

#include <optional>
#include <string>
#include <vector>

namespace gui::draw
{

/// What a series looks like. A value:
///
///     plot.add(Series::line(values, {.label = "Pressure", .color = "#c04020", .width = 2}));
struct SeriesStyle
{
    std::string label{};              ///< in the legend; a series without one is not in it
    std::optional<td::Color> color{}; ///< of lines and markers; without one the next of PlotStyle::colors
    double width = 1.5;               ///< of lines, in points; 0 for none
    std::vector<double> dashes{};     ///< of lines, as Stroke has them, in points; solid where samples are dense
    /// What areas and bars are filled with; without one the colour, at a quarter of its opacity (bars: all of it).
    std::optional<td::Color> fill{};
    double baseline = 0;          ///< that areas, stems and bars stand on
    Marker marker = Marker::None; ///< of a line, shown where samples are far enough apart
    double markerSize = 7;        ///< from edge to edge, in points
    double edgeWidth = 0;         ///< of a line around markers, in points
    td::Color edgeColor{0, 0, 0, 255};
    double barWidth = 0.8;  ///< of bars and candles, as a part of the distance of samples
    bool isOnRight = false; ///< whether it goes by the y axis at the right
};

} // namespace gui::draw
