#pragma once

#include "Drawing.h"

#include <td/Export.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <span>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace gui::draw
{

/// Which labels come first, and when.
struct LabelRule
{
    /// The higher one is shown; of equal ones the one that was added first. Not a number counts as the lowest.
    double priority = 0;
    /// In points per unit of the model: shown from minZoom on, and below maxZoom. Labels takes both in its steps of
    /// zoom: what has its limit within a step keeps to it from the next one on.
    double minZoom = 0;
    double maxZoom = std::numeric_limits<double>::infinity();
};

/// How Labels::addInside names an area.
struct AreaRule
{
    double priority = 0; ///< as LabelRule's
    /// In model units. An area, or a part of one, that is wider or higher than this has no name of its own where it is
    /// seen larger than `largestInView` points, but one for each half of it, and so on.
    double largest = std::numeric_limits<double>::infinity();
    double largestInView = 1100;
};

/// How Labels::addBeside names what is too small for a name within it. Lengths are in points.
struct BesideRule
{
    double gap = 3; ///< between it and the name
    /// The name is there while the longer side is seen this large, or larger, and smaller than `largestInView`.
    double smallestInView = 5;
    double largestInView = 1100; ///< see smallestInView
    bool isYDown = true;         ///< the plane's y, as OrthoView::isYDown has it
    /// Whether a name may lie over a point of the model, the sea, say; without it, over any. Asked at five points along
    /// the name, at its top, middle and bottom.
    std::function<bool(const Drawing::Point& point)> isFree{};
};

/// Texts of a drawing that don't cover each other: where there is no room for all, the more important ones are shown.
///
///     for (const City& city : cities)
///         _labels.add(city.place, city.name, {.size = 12, .halo = {2}}, {.anchor = Anchor::Left, .offset = {5, 0}},
///                     city.population);
///
///     void onDraw(const td::RectNormalized<double>&) override
///     {
///         _labels.place(*this);
///         _drawing.draw(*this);
///     }
///
/// What is shown depends on the zoom alone as long as none is moved and the plane isn't turned, so panning changes
/// nothing, and it changes only at zooms that are a quarter of an octave apart: in between, labels keep clear of each
/// other as they are. Ten thousand labels take some milliseconds then, and nothing otherwise; where few come or go,
/// some bytes are uploaded for each.
///
/// Labels are texts in points; each stands where its anchor is. A shape that is added later covers them: add labels
/// behind all shapes, or to a drawing over them, such as DrawingView::overlay. They belong to the drawing, which must
/// outlive this and in which they may be coloured, reordered and removed (and are no longer placed then); what is shown
/// is decided here. Not copyable. GUI thread only; needs no context.
class GUIGL_API Labels
{
public:
    /// @param drawing  must outlive the labels
    explicit Labels(Drawing& drawing);
    Labels(const Labels&) = delete;
    Labels& operator=(const Labels&) = delete;

    /// Adds a text to the drawing, hidden until it is placed.
    /// @param layout  in points; see TextStyle::unit
    /// @return its id in the drawing
    Drawing::ID add(Drawing::Point at, const TextLayout& layout, const TextPlacement& placement = {},
                    const LabelRule& rule = {});
    Drawing::ID add(Drawing::Point at, std::string_view text, const TextStyle& style = {},
                    const TextPlacement& placement = {}, const LabelRule& rule = {});
    /// Another place for the label that was added last, or another form of it: on the other side, in two lines. Of all
    /// that a label has got, the first one that may be shown at a zoom and has room is.
    /// @param rule  its zooms; the priority is the label's
    /// @return its own id in the drawing; 0, with nothing added, when there is no label yet
    Drawing::ID addAlternative(Drawing::Point at, const TextLayout& layout, const TextPlacement& placement = {},
                               const LabelRule& rule = {});
    /// Gives a label a symbol, such as a town's dot: a shape at its place that is shown while the label is, in
    /// whichever form, and that no other label covers.
    ///
    ///     labels.setSymbol(id, drawing.symbol(place, Path().addCircle({0, 0}, 2), "#203040"), 2);
    ///
    /// @param label   what add gave
    /// @param symbol  a shape or a group of the drawing, from now on shown, hidden, moved and, by clear, removed as the
    ///                label is; one that it had before is no longer
    /// @param radius  in points: what is that near to the label's place, left, right, above and below, is the symbol's
    /// @return false, with nothing changed, for another label or symbol and for a radius that is below 0 or no number
    bool setSymbol(Drawing::ID label, Drawing::ID symbol, double radius);
    /// Moves what add or addAlternative gave this id: names of things that move, or that are seen in space, whose
    /// places on the screen are the plane. @return false for another id, or a place that is not finite
    bool move(Drawing::ID id, Drawing::Point at);
    /// Whether it may be shown at all, as it may at first. @return false for another id
    bool setWanted(Drawing::ID id, bool isWanted);
    /// Removes all of them with their symbols, from the drawing too.
    void clear();

    /// How far labels keep from each other, in points; 2 at first. Below 0 they may overlap. Holds from the next zoom
    /// that changes something on.
    void setMargin(double points);

    /// Shows and hides labels for a view, as Drawing::draw shows it.
    void place(const gl::OrthoView& view);
    /// @param modelToView  what draw is called with; where it is moved to doesn't matter, nor does a map that has no
    /// inverse, which changes nothing. Where it turns or is mirrored otherwise than before, all are placed anew
    void place(const Affine& modelToView);
    /// For a plane that is neither turned nor mirrored: its y grows downwards. @param pointsPerUnit  of the model
    void place(double pointsPerUnit) { place(Affine::scaling(pointsPerUnit)); }

    /// Alternatives are not counted.
    std::size_t getNumberOfLabels() const { return _nLabels; }
    /// Of those, as placed last, for want of room or because of their zooms.
    std::size_t getNumberOfHidden() const { return _nHidden; }
    /// Whether what add or addAlternative gave this id was shown when they were last placed.
    bool isShown(Drawing::ID id) const;

    /// Adds the name of an area, such as a country, a lake or a room: where it has most room (see findRoom), from the
    /// zoom on at which it fits. It fits when it is hardly longer than that and lower than the area.
    ///
    ///     labels.addInside(lake, *lake.getBounds(), std::array{name, nameInTwoLines}, {.priority = size});
    ///
    /// @param area    filled by the even-odd rule
    /// @param within  the part of the area that the name is for; getBounds() of the area, or what findMain gives
    /// @param forms   of the name, in points; the first one that fits is shown
    /// @return their ids in the drawing. Those of the whole area come last: addAlternative goes on with its label
    std::vector<Drawing::ID> addInside(const Path& area, const Drawing::Rect& within, std::span<const TextLayout> forms,
                                       const AreaRule& rule = {});
    /// The same with a name in one line or, where that doesn't fit, in two of about the same length, centred.
    /// @param style  in points
    std::vector<Drawing::ID> addInside(const Path& area, const Drawing::Rect& within, std::string_view name,
                                       const TextStyle& style = {}, const AreaRule& rule = {});

    /// Gives the label that was added last places beside something small, such as an island, as alternatives: below it,
    /// to the right, above and to the left. Each is for the zooms that the rule names, but from the first one on at
    /// which the rule has the name free there, to a step of half as much again.
    ///
    ///     labels.addInside(island, box, name, style);
    ///     labels.addBeside(box, TextLayout(name, style), {.isFree = isSea});
    ///
    /// @param box   around it, in model units; without a size, or not finite, nothing is added
    /// @param name  in points
    /// @return their ids in the drawing; none before the first label, nor for places that are never free
    std::vector<Drawing::ID> addBeside(const Drawing::Rect& box, const TextLayout& name, const BesideRule& rule = {});

    /// Where in a shape, such as a country, a line of text has most room: a strip that is nearly as long as any other
    /// and rather in the middle of the height than near an end. The text fits if it is no wider than the strip; how
    /// high it is, is the tenth of what was looked at.
    /// @param shape   filled by the even-odd rule
    /// @param within  where to look, in the shape's units; getBounds() of the shape, or what is seen of it
    /// @return empty when nothing of the shape is there
    static std::optional<Drawing::Rect> findRoom(const Path& shape, const Drawing::Rect& within);
    /// Around the largest of an area's subpaths, by the rectangle around each, such as a country's main island: what
    /// addInside takes. @return empty for an area without any
    static std::optional<Drawing::Rect> findMain(const Path& area);

private:
    struct Label
    {
        Drawing::ID id;
        Drawing::Point at;
        Drawing::Rect box; // around it, in points from there
        LabelRule rule;
        bool isAlternative;  // of the one before
        Drawing::Point from; // where it was added
        bool isWanted = true;
        bool isShown = false;
        Drawing::ID symbol = 0;
        bool isSymbolShown = false;
        double radius = 0; // of the symbol, in points
        Drawing::Point symbolFrom{};
    };

    struct Inside;

    void add(Inside& inside, const Drawing::Rect& part, double minZoom, std::size_t depth);
    Drawing::ID append(Drawing::Point at, const TextLayout& layout, const TextPlacement& placement,
                       const LabelRule& rule, bool isAlternative);

    Drawing& _drawing;
    std::vector<Label> _labels;
    std::unordered_map<Drawing::ID, std::size_t> _indices; // of labels
    std::vector<std::uint32_t> _order;                     // of those that are no alternatives, by priority
    std::size_t _nLabels = 0;
    double _margin = 2;
    int _step = 0;     // of the zoom that they are placed for
    Affine _direction; // of the plane's axes then, of length 1 or so
    bool _isPlaced = false;
    std::size_t _nHidden = 0;
};

} // namespace gui::draw
