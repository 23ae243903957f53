#pragma once

#include "Drawing.h"
#include "TextStyle.h"

#include <td/Export.h>
#include <td/Size.h>

#include <string>
#include <string_view>
#include <vector>

namespace gui::draw
{

/// A unit that a scale bar tells lengths in.
struct ScaleUnit
{
    double size = 1;    ///< in model units
    std::string name{}; ///< after the number: " km"
};

/// What a scale bar looks like, and where in the view it is. Lengths are in points.
struct ScaleBarStyle
{
    /// The largest one that the bar may be as long as, or else the smallest one.
    std::vector<ScaleUnit> units{{}};
    double length = 140;                ///< of the bar, at most
    Anchor corner = Anchor::BottomLeft; ///< where in the view it stands, and which point of it does
    td::Point<double> offset{20, -20};  ///< from there, to the right and downwards
    Paint paint = "#202830";            ///< of the bar
    double width = 2;                   ///< of its line
    double height = 7;                  ///< of the strokes at its ends
    TextStyle text{.halo = {2}};        ///< in points, whatever its unit says
    Halo rim{1.5};                      ///< around the bar, for any ground
};

/// A bar of a round length over a map or a plan, which says how long that is: 1, 2 or 5, or these times a power of ten.
///
///     class WorldView : public gui::draw::DrawingView
///     {
///         gui::draw::ScaleBar _bar{{.units = {{1, " m"}, {1000, " km"}}}}; // of a plane in metres
///         void onDraw(const td::RectNormalized<double>& rect) override
///         {
///             DrawingView::onDraw(rect);
///             _bar.draw(*this);
///         }
///     };
///
/// Its ends stand on whole pixels. Not copyable. GUI thread only; only draw needs a context.
class GUIGL_API ScaleBar
{
public:
    /// Units that are not above 0, or not finite, are left out; without any one is a model unit.
    explicit ScaleBar(const ScaleBarStyle& style = {});
    ScaleBar(const ScaleBar&) = delete;
    ScaleBar& operator=(const ScaleBar&) = delete;

    /// Draws it over a view, in its onDraw.
    /// @param stretch  how many times as large as its units say things are shown in the view's middle: 1 /
    ///                 cos(latitude) on a map in Mercator's projection
    /// @return as Drawing::draw; false too, without a line in the log, for a zoom or a stretch that is not above 0
    bool draw(const gl::OrthoView& view, double stretch = 1);
    /// The same over any viewport. @param size  of it, in points
    bool draw(const td::Size<double>& size, double pointsPerUnit, double pixelsPerPoint = 1);

    /// What it said last; empty before.
    const std::string& getText() const { return _words; }
    /// How long it was, in points: what that length is, to half a pixel.
    double getLength() const { return _length; }

private:
    ScaleBarStyle _style;
    Drawing _drawing;
    Drawing::ID _all = 0, _rim = 0, _bar = 0, _text = 0;
    std::string _words;
    double _length = 0;
};

} // namespace gui::draw
