#pragma once

#include "AxisMap.h"
#include "PlotScene.h"

#include <gui/draw/Series.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

namespace gui::draw
{

// Lines go on so far beyond what is seen, in pixels, before they are cut off.
constexpr double cSeriesBeyond = 64;

/// Turns what is seen of a series into a scene's lines, areas and marks. Where there are more samples than a few in
/// each column of pixels, it asks for the columns' ranges instead.
class SeriesGeometry
{
public:
    /// Where and how large it is seen.
    struct View
    {
        AxisMap x, y;
        PlotScene::Rect area; ///< in pixels
        double pixelsPerPoint = 1;
        td::Color color; ///< of the series, if it has none
    };

    /// Samples from first on and before end, and those beside them that lines go to.
    struct Extent
    {
        std::size_t first, end;
    };

    void add(const Series& series, const View& view, PlotScene& scene);
    /// Forgets what it keeps of series that were not added since the last call.
    void finish();

    /// Which samples a part of the x axis has. Of samples in no order: all.
    static Extent extentOf(const Series& series, double low, double high);
    /// A colour with a part of its opacity.
    static td::Color faint(td::Color color, double share);
    /// A style's dashes in pixels; an odd number of them twice, as dashes and gaps take turns.
    static std::vector<double> dashesOf(const SeriesStyle& style, double scale);

private:
    using Segment = PlotScene::Segment;
    using Slab = PlotScene::Slab;
    using Range = Samples::Range;
    class Walk;

    struct Point
    {
        double x, y;
    };

    bool areDense(const Extent& extent) const;
    void readColumn(const Samples& samples, const Extent& extent, bool isX, std::vector<double>& pixels) const;
    void findPlaces(const Extent& extent);
    void findColumns(double width);
    void findRanges(const Samples& samples, std::vector<Range>& ranges) const;
    std::size_t findStretch() const;
    void joinPoints(std::size_t first, std::size_t stretch);
    void joinColumns();
    void joinParts(const Extent& extent);
    bool joinPart(const Extent& part, std::size_t size, std::size_t nMost, Walk& walk);
    void addSegment(Point a, Point b, double along = 0);
    void addLineAndMarkers(const Extent& extent, PlotScene& scene);
    void addArea(const Extent& extent, const Samples* pOther, PlotScene& scene);
    void addUprights(const Extent& extent, PlotScene& scene);
    void addMarkers(const Extent& extent, PlotScene& scene);
    bool addCloud(PlotScene& scene);
    void addErrors(const Extent& extent, PlotScene& scene);
    void addCandles(const Extent& extent, PlotScene& scene);
    double barWidthOf(const Extent& extent) const;
    double clampY(double y) const;

    const Series* _pSeries = nullptr;
    const View* _pView = nullptr;
    td::Color _color;
    std::vector<double> _xs, _ys, _others; // pixels
    std::vector<std::size_t> _edges;       // of columns: indices of samples
    double _columnLeft = 0, _columnWidth = 1;
    std::vector<Range> _ranges, _otherRanges;
    std::vector<Segment> _segments;
    std::vector<Point> _dots; // of a line: samples with gaps on both sides
    double _dashPeriod = 0;   // of the line that is joined now; 0 without dashes
    std::vector<Slab> _slabs;
    struct KeptCloud
    {
        PlotScene::Cloud cloud;
        bool isUsed = true;
    };
    std::unordered_map<std::uint64_t, std::unique_ptr<KeptCloud>> _clouds;
    /// Of a line that goes anywhere: every so manieth sample, as long as it is only moved.
    struct Thinning
    {
        double perPlaceX = 0, perPlaceY = 0;
        std::size_t step = 1;
        bool isUsed = true;
    };
    std::unordered_map<std::uint64_t, Thinning> _thinnings;
};

} // namespace gui::draw
