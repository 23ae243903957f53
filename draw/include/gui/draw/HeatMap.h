#pragma once

#include "ColorMap.h"

#include <td/Color.h>
#include <td/Export.h>
#include <td/Point.h>
#include <td/RectNormalized.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace gui::draw
{

/// Numbers over a grid of cells, as colours and lines of equal height: a map of heat, of heights, a spectrogram.
///
///     axes.add(HeatMap(200, 100, heights, {0, 0, 20, 10}).setContours(12));
///
/// Beside the axes stands a bar that tells which colour is which number. Cells are seen as they are when they are
/// larger than pixels, unless they are to be smooth, and as the mean of 16 places in each pixel when they are smaller.
/// NaN is transparent, and a map whose extent has no width, no height or no end is not seen. Moves, and can't be
/// copied. GUI thread only; needs no context.
class GUIGL_API HeatMap
{
public:
    using Rect = td::RectNormalized<double>; ///< of x, and of y upwards

    /// Numbers that become lines: a level, and the points of one of its lines, in x and y.
    struct Contour
    {
        double level = 0;
        bool isClosed = false;
        std::vector<td::Point<double>> points;
    };

    /// @param columns, rows  1 at least  @param values  row by row from the lowest y, from the left; as many as there
    /// are
    ///                       cells (else it is an assertion, and there are none)
    /// @param extent         of all cells together
    HeatMap(std::size_t columns, std::size_t rows, std::vector<float> values, const Rect& extent);
    ~HeatMap();
    HeatMap(HeatMap&& other) noexcept; ///< what it was moved from has no cells
    /// Likewise. In axes it may be this way that a map becomes another one: a frame follows.
    HeatMap& operator=(HeatMap&& other) noexcept;

    /// @param low, high  of the map's ends, which may fall; without them, or where they are not finite, the values'
    HeatMap&& setColors(const ColorMap& map, std::optional<double> low = {}, std::optional<double> high = {}) &&;
    /// Lines between the centres of cells, at about so many levels that people would choose, 400 at most.
    HeatMap&& setContours(unsigned int nLevels, td::Color color = {0, 0, 0, 150}, double width = 1) &&;
    /// The same at levels of one's own.
    HeatMap&& setContours(std::vector<double> levels, td::Color color = {0, 0, 0, 150}, double width = 1) &&;
    /// Colours between the centres of cells are mixed.
    HeatMap&& setSmooth(bool isSmooth) &&;
    /// Beside the bar, turned.
    HeatMap&& setTitle(std::string title) &&;

    /// Other numbers for the same cells (else it is an assertion, and nothing changes); a frame follows.
    void setValues(std::vector<float> values);

    std::size_t getColumns() const { return _values.empty() ? 0 : _columns; }
    std::size_t getRows() const { return _values.empty() ? 0 : _rows; }
    std::span<const float> getValues() const { return _values; }
    const Rect& getExtent() const { return _extent; }
    const ColorMap& getColorMap() const { return _map; }
    bool isSmooth() const { return _isSmooth; }
    const std::string& getTitle() const { return _title; }
    double getLow() const;  ///< the number of the map's first colour
    double getHigh() const; ///< the number of its last one, which is another one
    /// At the cell that a point is in; NaN outside.
    float getValue(double x, double y) const;

    /// The lines, as they are drawn: each level's, of marching squares with a cell's saddle decided by its mean.
    const std::vector<Contour>& getContours() const;
    td::Color getContourColor() const { return _contourColor; }
    double getContourWidth() const { return _contourWidth; } ///< in points

    std::size_t getVersion() const { return _version; } ///< larger than all before after each change
    std::uint64_t getID() const { return _id; }         ///< as Series::getID

private:
    friend class Axes;

    void changed();
    void findContours() const;
    void traceLevel(double level) const;

    std::size_t _columns, _rows;
    std::vector<float> _values;
    Rect _extent;
    ColorMap _map = ColorMap::viridis();
    std::optional<double> _low, _high;
    double _lowest = 0, _highest = 0;
    unsigned int _nLevels = 0;
    std::vector<double> _levels;
    td::Color _contourColor;
    double _contourWidth = 1;
    bool _isSmooth = false;
    std::string _title;
    std::size_t _version = 0;
    std::uint64_t _id;
    std::function<void()> _onChange;
    mutable std::vector<Contour> _contours;
    mutable std::size_t _contourVersion = 0;
};

} // namespace gui::draw
