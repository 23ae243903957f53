#pragma once

#include "Drawing.h"

#include <td/Color.h>
#include <td/Export.h>

#include <string>

namespace gui::draw
{

/// How a scale bar looks. Lengths are in points.
struct ScaleBarStyle
{
    std::string unit = "m";                  ///< UTF-8; after the number
    double longest = 120;                    ///< what the bar may be
    double ends = 6;                         ///< how far they stand up
    double width = 1;                        ///< of the line
    td::Color color = "#202020";             ///< of the line
    double rim = 1;                          ///< around the line; none when it is not above 0
    td::Color rimColor = td::ColorID::White; ///< of the rim
    TextStyle text{};                        ///< in points, too
};

/// A bar that says how long something is in the plane: 1, 2, 5, 10, 20 ... units, the longest one that has room, with
/// the length beside it.
///
///     Drawing _notes;
///     ScaleBar _scaleBar{_notes, {12, -12}, {.unit = "km"}};
///
///     void onDraw(const td::RectNormalized<double>& rect) override
///     {
///         DrawingView::onDraw(rect);
///         _scaleBar.place(getZoom() / kilometresPerModelUnit);
///         _notes.draw(Affine::translation(0, viewHeight), getPixelHiDPIScale());
///     }
///
/// Its shapes belong to the drawing, which must outlive this. To place it as it is already changes nothing there. Not
/// copyable. GUI thread only; needs no context.
class GUIGL_API ScaleBar
{
public:
    /// @param drawing  whose units are points of the view, y downwards
    /// @param at       of the bar's lower left corner; on middles of pixels a thin line is sharp
    explicit ScaleBar(Drawing& drawing, const Drawing::Point& at, const ScaleBarStyle& style = {});
    ScaleBar(const ScaleBar&) = delete;
    ScaleBar& operator=(const ScaleBar&) = delete;

    /// Makes it as long as it is at a zoom.
    /// @param pointsPerUnit  what one of its units is seen as: the view's zoom, if that is a unit of the model
    /// @return false, with the bar hidden, for what is not above 0 and for what no number tells
    bool place(double pointsPerUnit);

    /// What is written beside it, as placed last: "200 km".
    const std::string& getText() const { return _string; }
    /// How long it is, as placed last, in points.
    double getLength() const { return _length; }

private:
    Drawing& _drawing;
    Drawing::Point _at;
    ScaleBarStyle _style;
    Drawing::ID _rim, _bar, _text;
    std::string _string;
    double _length = 0;
};

} // namespace gui::draw
