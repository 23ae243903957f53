#pragma once

#include "AxisMap.h"
#include "PlotScene.h"
#include "PlotTexts.h"
#include "SeriesGeometry.h"
#include "Version.h"

#include <gui/draw/Axes.h>

#include <td/GUIThread.h>

#include <utility>

namespace gui::draw
{

/// From points to pixels. @param scale  pixels per point
inline PlotScene::Rect scaled(const Axes::Rect& rect, double scale)
{
    return {rect.left * scale, rect.top * scale, rect.right * scale, rect.bottom * scale};
}

/// What axes draw on.
struct PlotPaper
{
    const PlotStyle& style;
    PlotScene& scene;
    PlotTexts& texts;
    SeriesGeometry& geometry;
    double scale = 1; ///< pixels per point
};

/// Where things are seen, as of the last frame.
struct Axes::Places
{
    Rect frame;
    Rect area;
    double leftWidth = 0, rightWidth = 0, colorsWidth = 0;           // of the labels there
    Legend shownLegend = Legend::None;                               // where Auto has put it
    bool hasTitle = false, hasXTitle = false, hasSideTitles = false; // and room for them
    bool hasNoteRow = false;                                         // between the title and the area
};

/// Axes, and what is kept of them between frames.
struct Axes::Impl : Axes::Places
{
    /// An axis with its ticks.
    struct Side
    {
        Axis axis;
        Ticks ticks;
        Ticks::Range range{0, 0}; // that these ticks are for
        double length = 0;
        Scale scale;
        double distance = 0;
        double labelSize = 0;
    };
    /// Which axes something is about, by bits.
    static constexpr unsigned int cX = 1, cY = 2, cRight = 4;

    /// Whether there is something to see of a map.
    static bool isThere(const HeatMap& map);
    bool hasRight() const;
    const Axis& yOf(const Series& shown) const { return shown.getStyle().isOnRight ? right.axis : y.axis; }

    Axis& axisOf(unsigned int which) { return which == cX ? x.axis : which == cY ? y.axis : right.axis; }

    /// Puts the ranges of what is there, here and on others that share the axis, to its state.
    void collect(unsigned int which) { axisOf(which).collect(); }
    /// The same for what is here alone.
    void collectOwn(unsigned int which);
    /// Takes over what was collected.
    void apply(unsigned int which);

    /// Draws all of it. @param frame  in points
    void draw(const Rect& frame, const PlotPaper& paper);
    /// Draws what the pointer shows. @param axes  that this is of
    void drawOverlay(const PlotPaper& paper, Point pointer, const Axes& axes);

    void layOut(const Rect& frame, const PlotPaper& paper, bool mayRepeat = true);
    bool isNoteInTitle(const PlotPaper& paper);
    void makeTicks(Side& side, bool isX, double length, const PlotPaper& paper);
    void drawGrid(const PlotPaper& paper);
    void drawMaps(const PlotPaper& paper);
    void drawColorBar(const PlotPaper& paper);
    void drawSeries(const PlotPaper& paper);
    void drawFrame(const PlotPaper& paper);
    double getNotesBottom(const PlotPaper& paper) const;
    double within(double at, double half) const;
    void drawTickTexts(const PlotPaper& paper);
    void drawTitles(const PlotPaper& paper);
    struct TitlePlace
    {
        std::string text;
        std::pair<double, double> extent; // along it
    };
    TitlePlace placeTitle(const std::string& text, const TextStyle& style, bool isLevel, const PlotPaper& paper) const;
    void addTitle(const std::string& text, const TextStyle& style, double at, Anchor anchor, double angle,
                  const PlotPaper& paper);
    void drawLegend(const PlotPaper& paper);
    void chooseLegend(const std::function<double(Legend)>& coveredAt);
    void drawSample(const Series& shown, const Rect& box, const PlotPaper& paper);
    double coveredBy(const Rect& rect) const;
    td::Color colorOf(std::size_t number, const PlotStyle& style) const;
    td::Color colorOf(const Series& shown, const PlotStyle& style) const;
    std::optional<Hit> findNearest(Point point, double distance) const;
    AxisMap mapX(double factor) const { return {x.axis, area.left * factor, area.right * factor}; }
    AxisMap mapY(const Series& shown, double factor) const
    {
        return {yOf(shown), area.bottom * factor, area.top * factor};
    }

    /// What a place in points is on: cX | cY in the area, one of them beside it, 0 elsewhere.
    unsigned int partAt(Point point) const;
    /// Has them fit what there is again. @return whether any did not
    bool release(unsigned int which);
    bool pan(unsigned int which, double dx, double dy);
    bool zoom(unsigned int which, double factor, Point about);
    bool showBox(const Rect& box);

    /// What a series or a map calls, which may be moved elsewhere and outlive this.
    std::function<void()> onChangeOfPart() const;
    std::size_t getVersion() const;
    /// Another frame, for another value.
    template <typename Value>
    void set(Value& kept, Value value)
    {
        TD_ASSERT_GUI_THREAD();
        if (kept == value)
            return;
        kept = std::move(value);
        ownVersion = nextVersion();
        onChange();
    }

    std::vector<std::unique_ptr<Series>> series;
    Series none = Series::line(Samples()); // for who asks for one that there isn't
    std::vector<std::unique_ptr<HeatMap>> maps;
    Side x, y, right;
    Side colors; // of the first map's bar
    std::string title;
    Legend legend = Legend::Auto;
    std::size_t legendVersion = 0;
    std::size_t legendSize = 0; // samples that there were when its place was chosen
    bool isBare = false;
    bool hasMinorGrid = false;
    std::size_t ownVersion = 0;
    std::function<void()> onChange;
    std::shared_ptr<std::function<void()>> pOnChange; // the same
};

} // namespace gui::draw
