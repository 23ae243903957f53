#pragma once

#include "Drawing.h"

#include <td/Export.h>

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace gui::draw
{

/// Texts of a drawing that don't cover each other: where there is no room for all, the more important ones are shown.
///
///     for (const City& city : cities)
///         _labels.add(city.place, city.name, {.size = 12, .halo = {2}}, {.anchor = Anchor::Left, .offset = {5, 0}},
///                     city.population);
///
///     void onDraw(const td::RectNormalized<double>&) override
///     {
///         _labels.place(getZoom());
///         _drawing.draw(*this);
///     }
///
/// What is shown depends on the zoom alone, so panning changes nothing, and it changes only at zooms that are a quarter
/// of an octave apart: in between, labels keep clear of each other as they are. Ten thousand labels take some
/// milliseconds then, and nothing otherwise; what is uploaded is some bytes for each that comes or goes.
///
/// Labels are texts in points; each stands where its anchor is. They belong to the drawing, which must outlive this and
/// in which they may be coloured, reordered and removed (and are no longer placed then); what is shown is decided here.
/// Not copyable. GUI thread only; needs no context.
class GUIGL_API Labels
{
public:
    /// @param drawing  must outlive the labels
    explicit Labels(Drawing& drawing);
    Labels(const Labels&) = delete;
    Labels& operator=(const Labels&) = delete;

    /// Adds a text to the drawing, hidden until it is placed.
    /// @param layout    in points; see TextStyle::unit
    /// @param priority  the higher one is shown; of equal ones the one that was added first. Not a number counts as the
    ///                  lowest
    /// @return its id in the drawing
    Drawing::ID add(Drawing::Point at, const TextLayout& layout, const TextPlacement& placement = {},
                    double priority = 0);
    Drawing::ID add(Drawing::Point at, std::string_view text, const TextStyle& style = {},
                    const TextPlacement& placement = {}, double priority = 0);
    /// Removes all of them, from the drawing too.
    void clear();

    /// How far labels keep from each other, in points; 2 at first. Below 0 they may overlap. Holds from the next zoom
    /// that changes something on.
    void setMargin(double points);

    /// Shows and hides labels for a zoom. @param pointsPerUnit  of the model, 1 or more or less; what is not above 0,
    /// or not finite, changes nothing
    void place(double pointsPerUnit);

    std::size_t getNumberOfLabels() const { return _labels.size(); }
    /// Of those, as placed last.
    std::size_t getNumberOfHidden() const { return _nHidden; }

private:
    struct Label
    {
        Drawing::ID id;
        Drawing::Point at;
        Drawing::Rect box; // around it, in points from there
        double priority;
        bool isShown;
    };

    /// The boxes that are taken, in squares of the plane.
    class Room;

    Drawing& _drawing;
    std::vector<Label> _labels;
    std::vector<std::uint32_t> _order; // by priority
    double _margin = 2;
    int _step = 0; // of the zoom that they are placed for
    bool _isPlaced = false;
    std::size_t _nHidden = 0;
};

} // namespace gui::draw
