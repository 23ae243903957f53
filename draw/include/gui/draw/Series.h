#pragma once

#include "ColorMap.h"
#include "Samples.h"
#include "SeriesStyle.h"

#include <td/Export.h>
#include <td/Types.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>

namespace gui::draw
{

/// Samples, and how they are to be seen: what a plot consists of.
///
///     plot.add(Series::line(values));                                   // at x = 0, 1, 2, …
///     plot.add(Series::area(values, {.label = "Load"}).setX(begin, 0.01)); // from begin on, 0.01 apart
///     Series& live = plot.add(Series::line(Samples::ofFloats()));
///     live.append(21.5);                                                // a frame follows by itself
///
/// A frame costs by the width of the view, not by the number of samples. In each column of pixels where samples are
/// denser than that, exactly what is there is seen: from the lowest to the highest, and joined to the next column from
/// the last to the first. Values that are NaN or infinite are gaps.
///
/// Lines, areas, bands, steps, stems, bars and candles have their samples in the order of x, each no less than the one
/// before; where x falls they are not drawn, but for lines, which may go anywhere. Those of more than 100,000 samples
/// leave out what is smaller than half a pixel, have no dashes, and show every second sample, every fourth and so on
/// where more than 100,000 pieces are seen. Scatter may be in any order.
///
/// Moves, and can't be copied. GUI thread only; needs no context.
class GUIGL_API Series
{
public:
    /// How samples are seen.
    enum class Kind : td::BYTE
    {
        Line,
        Area,    ///< a line, and what is between it and the base line
        Band,    ///< what is between two values of each x
        Steps,   ///< each value from its x to the next one
        Stems,   ///< upright lines from the base line, with markers
        Bars,    ///< upright rectangles from the base line
        Scatter, ///< markers alone
        Candles  ///< what a price was at first, at most, at least and at last
    };

    /// A line through all samples, at x = 0, 1, 2 and so on, or as setX says; or at an x of each.
    static Series line(Samples y, SeriesStyle style = {});
    static Series line(Samples x, Samples y, SeriesStyle style = {});                 ///< likewise
    static Series area(Samples y, SeriesStyle style = {});                            ///< Kind::Area
    static Series area(Samples x, Samples y, SeriesStyle style = {});                 ///< likewise
    static Series band(Samples low, Samples high, SeriesStyle style = {});            ///< Kind::Band
    static Series band(Samples x, Samples low, Samples high, SeriesStyle style = {}); ///< likewise
    static Series steps(Samples y, SeriesStyle style = {});                           ///< Kind::Steps
    static Series steps(Samples x, Samples y, SeriesStyle style = {});                ///< likewise
    static Series stems(Samples y, SeriesStyle style = {}); ///< Kind::Stems, with circles if no marker is said
    static Series stems(Samples x, Samples y, SeriesStyle style = {}); ///< likewise
    static Series bars(Samples y, SeriesStyle style = {});             ///< Kind::Bars
    static Series bars(Samples x, Samples y, SeriesStyle style = {});  ///< likewise
    static Series scatter(Samples x, Samples y,
                          SeriesStyle style = {}); ///< Kind::Scatter, of circles if no marker is said
    /// Kind::Candles. Rising ones have the style's color, falling ones its fill (red without one).
    static Series candles(Samples x, Samples open, Samples high, Samples low, Samples close, SeriesStyle style = {});

    ~Series();
    Series(Series&& other) noexcept; ///< what it was moved from has no samples, and takes none
    /// Likewise. In a plot it may be this way that a series becomes another one: a frame follows.
    Series& operator=(Series&& other) noexcept;

    /// Where samples without an x of their own are: the first one, and the distance of each from the one before.
    /// @param step  above 0 (an assertion; nothing changes otherwise)
    Series&& setX(double first, double step) &&;
    Series& setX(double first, double step) &; ///< the same
    /// Error bars, but for bands and candles: from each value so far down and up, for the samples that there are by
    /// now. Where samples are denser than pixels, a band from the lowest end of a bar in each column to the highest.
    Series&& withErrors(Samples below, Samples above) &&;
    Series&& withErrors(Samples both) &&; ///< as far both ways
    /// Markers coloured by a third value of each sample.
    /// @param low, high  of the map's ends, which may fall; without them, or where they are not finite, the values'
    Series&& colorBy(Samples values, const ColorMap& map = ColorMap::viridis(), std::optional<double> low = {},
                     std::optional<double> high = {}) &&;

    /// Adds samples at the end, and asks for a frame of the plot that it is in.
    void append(double y);
    /// For a series with an x of its own.
    void append(double x, double y);
    void append(std::span<const float> y);                             ///< all of one call take one frame
    void append(std::span<const double> y);                            ///< likewise
    void append(std::span<const double> x, std::span<const double> y); ///< as many of both (an assertion)
    /// Keeps about so many of the last samples; see Samples::setLimit.
    void setLimit(std::size_t n);
    /// Removes all samples.
    void clear();
    /// Another look.
    void setStyle(SeriesStyle style);
    /// Shows or hides it, in the legend too.
    void setVisible(bool isVisible);

    Kind getKind() const { return _kind; }                 ///< how samples are seen
    const SeriesStyle& getStyle() const { return _style; } ///< as given
    bool isVisible() const { return _isVisible; }          ///< see setVisible
    std::size_t size() const;             ///< the index behind the last sample that has all of its numbers
    std::size_t getFirst() const;         ///< the first that is still there
    double getX(std::size_t index) const; ///< NaN where there is none
    double getY(std::size_t index) const; ///< of a band and of candles, the last column's

    /// Columns as given, of y alone: y; low and high; or open, high, low, close.
    const Samples& getColumn(std::size_t i) const { return _columns.at(i); }
    std::size_t getNumberOfColumns() const { return _columns.size(); } ///< of y: 1, 2 or 4
    /// Whether samples have an x each.
    bool hasX() const { return _hasX; }
    const Samples& getXs() const { return _x; } ///< empty where they have none
    /// Whether samples are in the order of x.
    bool isSorted() const { return !_hasX || _x.isRising(); }
    const std::optional<ColorMap>& getColorMap() const { return _map; } ///< that colorBy gave
    const Samples& getColorValues() const { return _colorValues; }      ///< that colorBy gave
    Samples::Range getColorRange() const;                               ///< of the map's ends, which are never the same
    bool hasErrors() const { return _hasErrors; }                       ///< see withErrors
    const Samples& getErrorsBelow() const { return _below; }            ///< downwards
    const Samples& getErrorsAbove() const { return _above; }            ///< upwards

    /// The first index whose x is not less; of samples in order.
    std::size_t findX(double x, std::size_t from = 0) const;
    /// Of all x that there are; empty without any.
    Samples::Range getXRange() const;
    /// Of all that is seen of samples first to end - 1, with base lines and error bars.
    Samples::Range getYRange(std::size_t first, std::size_t end) const;
    const Samples& getErrorEnds(bool isUpper) const { return isUpper ? _errorHigh : _errorLow; } ///< of error bars

    /// Another number, larger than all before, after each change of what is seen.
    std::size_t getVersion() const { return _version; }
    /// A number of its own, which it keeps when it is moved, and which is never given twice.
    std::uint64_t getID() const { return _id; }

private:
    friend class Axes;

    Series(Kind kind, SeriesStyle style);
    static Series make(Kind kind, Samples y, SeriesStyle style);
    static Series make(Kind kind, Samples x, Samples y, SeriesStyle style);
    Series&& putX(Samples x) &&;
    void changed();
    void findErrorEnds();

    Kind _kind;
    bool _hasX = false;
    bool _isVisible = true;
    bool _hasErrors = false;
    SeriesStyle _style;
    double _start = 0;
    double _step = 1;
    Samples _x;
    std::vector<Samples> _columns;
    Samples _below, _above;
    Samples _errorLow, _errorHigh; // where bars end
    std::optional<ColorMap> _map;
    Samples _colorValues;
    std::optional<double> _colorLow, _colorHigh;
    std::size_t _version;
    std::uint64_t _id;
    std::function<void()> _onChange;
};

} // namespace gui::draw
