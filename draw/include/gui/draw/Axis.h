#pragma once

#include "Scale.h"
#include "Ticks.h"

#include <td/Export.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace gui::draw
{

/// One direction of a plot: what part of the numbers it shows, how, and what stands beside it. Axes have three of them.
///
///     plot.axes().x().setScale(Scale::time("local"));
///     plot.axes().x().setTitle("Berlin time");
///     plot.axes().x().follow(60);              // the last minute of live data
///     plot.axes().y().setFit(Axis::Fit::Visible);
///     lower.x().link(upper.x());               // one range for both
///
/// At first it shows all that there is, and goes on to as samples come, until its range is set or somebody moves it;
/// Axes::fit, which a double click calls, is the way back. Whatever changes it here asks for a frame of
/// its own plot, and of those whose axes are linked with it. Not copyable. GUI thread only; needs no context.
class GUIGL_API Axis
{
public:
    /// What it shows as long as nobody moves it.
    enum class Fit : td::BYTE
    {
        All,     ///< all samples
        Visible, ///< of a y axis: those in the part of x that is seen, also while that moves
        Follow   ///< of an x axis: the end of the samples; see follow
    };

    Axis();
    ~Axis();
    Axis(const Axis&) = delete;
    Axis& operator=(const Axis&) = delete;

    /// Linear at first. A range that a logarithmic one cannot show becomes 1 to 10.
    void setScale(Scale scale);
    const Scale& getScale() const; ///< see setScale
    /// Beside the axis: turned at y axes. Empty for none.
    void setTitle(std::string title);
    const std::string& getTitle() const { return _title; }

    /// Shows this from now on.
    /// @return false, with nothing changed, when a number is not finite (or beyond 10^300), when low is not below high
    ///         by 10^-13 of the larger one, and 10^-300, or not above 0 on a logarithmic axis
    bool setRange(double low, double high);
    /// As drawn last, or set since.
    const Ticks::Range& getRange() const;
    void setFit(Fit fit);
    Fit getFit() const;
    /// Shows the last samples, so far back.
    /// @param length  in the axis' units (decades on a logarithmic one), above 0 and finite (an assertion)
    void follow(double length);
    double getFollowed() const; ///< see follow; 0 when nothing was set
    /// Whether its range was set, or somebody moved it.
    bool isMoved() const;
    /// Back to what its fit says.
    void release();

    /// Shares scale, range and fit with another axis, of this plot or another one, for as long as either lives: moving
    /// one moves the other, and at first both show all that there is on either.
    void link(Axis& other);
    bool isLinked(const Axis& other) const { return _pState == other._pState; }

    /// Lines across the plot at the ticks; there are at first, but for the y axis at the right.
    void setGrid(bool hasGrid);
    bool hasGrid() const { return _hasGrid; }
    /// From label to label that looks good, in points: 90 along x and 48 along y at first, 12 at
    /// least.
    void setTickDistance(double points);
    double getTickDistance() const { return _tickDistance; }

    /// The share of the axis' length at which a value stands: 0 at its beginning.
    double toShare(double value) const;
    /// The value there.
    double toValue(double share) const;

    /// Moves what is seen by a share of the axis' length. @return whether anything changed
    bool pan(double share);
    /// Shows 1 / factor of it; what is at a share stays there. @return whether anything changed
    bool zoom(double factor, double share);

    /// Counts changes.
    std::size_t getVersion() const;

private:
    friend class Axes;
    struct State
    {
        Scale scale;
        Ticks::Range range;
        Fit fit = Fit::All;
        double followed = 0;
        bool isMoved = false;
        std::size_t version = 1;
        std::vector<Axis*> axes; // that share it
        // Of all axes that share it, while ranges are fitted.
        double low = 0, high = 0;
        double lowest = 0, highest = 0; // without padding
        std::optional<double> line;     // that bars and areas stand on
        bool hasData = false;
        bool isCollected = false;
    };

    bool setPlaces(double low, double high);
    void fitPlaces(double low, double high); // as much of it as can be shown
    void fitTo(Fit fit, double followed);
    void touch();
    void notify() const;
    void share(std::shared_ptr<State> pState);
    void collect();

    std::shared_ptr<State> _pState;
    std::string _title;
    bool _hasGrid = true;
    double _tickDistance = 90;
    std::size_t _ownVersion = 0;
    std::function<void()> _onChange;
    std::function<void()> _onCollect; // puts the range of what is there to the state
};

} // namespace gui::draw
