#pragma once

#include "Axis.h"
#include "HeatMap.h"
#include "PlotStyle.h"
#include "Series.h"

#include <td/Export.h>
#include <td/Point.h>
#include <td/RectNormalized.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace gui::draw
{

/// Series over two axes, or three, with all that stands around them: what others call a plot or a chart. A Plot has one
/// or several of them, draws them and lets people move them.
///
///     Axes& axes = plot.axes();
///     axes.setTitle("Tank 4");
///     axes.x().setTitle("Time in s");
///     axes.y().setTitle("Pressure in bar");
///     axes.right().setTitle("Temperature in °C");
///     axes.add(Series::line(pressure, {.label = "Pressure"}).setX(0, 0.001));
///     axes.add(Series::line(temperature, {.label = "Temperature", .isOnRight = true}).setX(0, 1));
///
/// Later series are drawn over earlier ones. Not copyable. GUI thread only; needs no context.
class GUIGL_API Axes
{
public:
    using Point = td::Point<double>;         ///< in points from the picture's top left corner, y downwards
    using Rect = td::RectNormalized<double>; ///< likewise

    /// Where the legend stands.
    enum class Legend : td::BYTE
    {
        Auto, ///< in the corner where it covers the least, as far as series have labels; none where it takes a half
        TopLeft,
        TopRight,
        BottomLeft,
        BottomRight,
        None
    };

    /// A sample that is near a point.
    struct Hit
    {
        const Series* pSeries = nullptr;
        std::size_t index = 0;
        double x = 0;
        double y = 0;
        Point point; ///< where it is seen
    };

    ~Axes();
    Axes(const Axes&) = delete;
    Axes& operator=(const Axes&) = delete;

    /// @return the series, which lives until it is removed
    Series& add(Series series);
    /// Below all series. @return the map, which lives until clear
    HeatMap& add(HeatMap map);
    /// @return false for one that is not here
    bool remove(const Series& series);
    /// Removes all series and maps.
    void clear();
    std::size_t getNumberOfSeries() const;
    /// In the order in which they were added.
    /// @param i  below their number (an assertion, and one that isn't shown)
    Series& getSeries(std::size_t i);

    Axis& x();                 ///< below
    Axis& y();                 ///< at the left
    Axis& right();             ///< the y axis at the right, there as soon as a series goes by it
    const Axis& x() const;     ///< likewise
    const Axis& y() const;     ///< likewise
    const Axis& right() const; ///< likewise

    /// Above; empty for none. As axes' titles it may have lines, ends in three dots where there is no room for all of
    /// it, and is left out of a plot in which next to nothing would be left.
    void setTitle(std::string title);
    void setLegend(Legend legend); ///< Legend::Auto at first
    /// Fewer lines: nothing but the samples, for what is a few lines high.
    void setBare(bool isBare);
    /// Lines between the ticks as well, where PlotStyle::minorGrid is a colour.
    void setMinorGrid(bool hasMinorGrid);

    /// Shows all again: releases all three axes.
    void fit();

    /// Where samples are drawn, as of the last frame; of no size before.
    const Rect& getArea() const;
    /// Where a value is seen, by the axes at the left and below, as of the last frame.
    Point toPoint(double x, double y) const;
    /// What is seen there: x and y.
    Point toValues(Point point) const;
    /// The sample that is nearest to a point, within a distance. Of series in no order, up to 1,000,000 samples are
    /// looked at.
    std::optional<Hit> findNearest(Point point, double distance = 32) const;
    /// A value as text, as exactly as a pixel tells: "12.31", "4 Mar 2024 07:15".
    std::string format(const Axis& axis, double value) const;

private:
    friend class Plot;
    struct Places;
    struct Impl;

    explicit Axes(std::function<void()> onChange);

    std::unique_ptr<Impl> _pImpl;
};

} // namespace gui::draw
