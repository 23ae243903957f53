#pragma once

#include "Behind.h"
#include "DepthProbe.h"
#include "Drawing.h"
#include "Eye.h"
#include "TextFrame.h"

#include <td/Export.h>
#include <td/Point.h>

#include <glm/vec3.hpp>

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace gui::draw
{

/// A line from a point of the model to the text that stands beside it.
struct Leader
{
    /// What is at the point.
    enum class End : td::BYTE
    {
        Dot,   ///< a disc
        Arrow, ///< the head of one, which points to it
        None   ///< the line alone
    };

    double width = 1;        ///< in points; where it is not above 0 there is no line, but its end
    Paint paint = "#303840"; ///< of the line and its end
    End end = End::Dot;      ///< see End
    double endSize = 5;      ///< a dot's diameter, or an arrow's length is twice that, in points
};

/// How a label stands at its point.
struct Label3
{
    /// Of the text from its point, in points: to the right and downwards on the screen. A leader goes as far.
    td::Point<double> offset{};
    /// Which point of the text, or its frame, the offset leads to. Without one it is its nearest side: a text to the
    /// right begins there, one to the left ends there, one above or below has its middle there, as has one without an
    /// offset.
    std::optional<Anchor> anchor{};
    double priority = 0; ///< the higher one is shown; of equal ones the one that was added first
    /// Of what it names, in model units: where the whole text is longer than that is seen, it is not shown. 0 for
    /// everywhere.
    double extent = 0;
    std::optional<Leader> leader{};   ///< `Leader()` for a thin line with a dot, `Leader{.width = 0}` for the dot alone
    std::optional<TextFrame> frame{}; ///< behind the text; none for none
    Behind behind = Behind::Hide;     ///< what becomes of it when something is before its point
    /// What is that near before the point, in model units, does not hide it: for points inside of a thing.
    double tolerance = 0;
};

/// Texts at points of a model, that face the viewer, have their size in points, and don't cover each other: where there
/// is no room for all, the more important ones are shown. What hides a point hides its text.
///
///     class PartView : public gui::draw::OrbitView
///     {
///         gui::draw::Model _model;
///         gui::draw::Labels3 _labels{depthProbe()};
///         void onInit() override
///         {
///             ...
///             _labels.add({0, 1, 0}, "Nozzle", {.size = 13}, {.offset = {24, -18}, .leader = Leader()});
///         }
///         void drawScene(const gui::draw::Eye& eye) override { _model.draw(eye); }
///         void drawOver(const gui::draw::Eye& eye) override { _labels.draw(eye); }
///     };
///
/// While the camera turns, a label that is shown stays as long as it has room, and one that had none needs some more to
/// come: two that touch do not flicker. Texts stand on whole pixels. A thousand labels take half a millisecond in a
/// frame that moves them, and nothing is uploaded in one that does not. Labels whose point is out of view, behind the
/// eye or cut away (Eye::getClipping) are not shown.
///
/// What is before a point, a DepthProbe finds out from the scene that was drawn; setIsHidden asks a function of yours.
/// Not copyable. GUI thread only; only draw needs a context.
class GUIGL_API Labels3
{
public:
    using ID = std::uint64_t; ///< names a label, and is not given twice; 0 is none

    /// Labels that nothing hides, but for what setIsHidden says.
    Labels3();
    /// @param probe  must outlive the labels; OrbitView::depthProbe() for one
    explicit Labels3(DepthProbe& probe);
    ~Labels3();
    Labels3(const Labels3&) = delete;
    Labels3& operator=(const Labels3&) = delete;

    /// Adds a text at a point.
    /// @param at      in model units
    /// @param layout  in points; see TextStyle::unit
    /// @return 0, with nothing added, for a point or an offset that is not finite
    ID add(const glm::dvec3& at, const TextLayout& layout, const Label3& look = {});
    /// The same with a text of one style.
    ID add(const glm::dvec3& at, std::string_view text, const TextStyle& style = {}, const Label3& look = {});
    /// Changes of a label. @return false, with nothing changed, for an id that names nothing or a point that is not
    /// finite
    bool move(ID id, const glm::dvec3& at);
    bool setText(ID id, const TextLayout& layout); ///< see move
    /// Whether it may be shown at all, as it may at first.
    bool setWanted(ID id, bool isWanted);
    bool remove(ID id); ///< see move
    void clear();       ///< removes all

    /// How far labels keep from each other, in points; 2 at first. Below 0 they may overlap.
    void setMargin(double points);
    /// How much of a label with Behind::Fade is seen when something is before it; 0.3 at first.
    void setFaintness(double opacity);
    /// Says exactly which points are hidden, in place of the probe: a TriangleIndex may know. It is called for points
    /// in view, with the eye that draw got. @param isHidden  empty for the probe again
    void setIsHidden(std::function<bool(const glm::dvec3& point, const Eye& eye)> isHidden);

    /// Places the labels and draws them: in OrbitView::drawOver, or else where the depth test is off.
    /// @param eye  the whole view's
    /// @return false, with a log line, when Drawing::draw could not
    bool draw(const Eye& eye);

    std::size_t getNumberOfLabels() const { return _labels.size(); } ///< shown or not
    /// As drawn last, faint ones included.
    std::size_t getNumberOfShown() const { return _nShown; }
    bool isShown(ID id) const; ///< as drawn last; false for an id that names nothing
    /// Whether it shines through what is before it.
    bool isFaint(ID id) const;
    /// What it says; empty for an id that names nothing.
    std::string getText(ID id) const;
    /// Where a label's text, with its frame, was drawn last, in points; empty when it was not.
    std::optional<td::RectNormalized<double>> getRect(ID id) const;
    /// The label whose text was drawn at a point of the view, in points; 0 when there is none.
    ID pick(const td::Point<double>& point) const;

private:
    enum class State : td::BYTE
    {
        Away,
        Clear,
        Faint
    };

    /// A label's shapes in one of the drawings.
    struct Shapes
    {
        Drawing::ID box = 0; // a group: frame and text
        Drawing::ID text = 0;
        Drawing::ID leader = 0;
        Drawing::ID end = 0;
    };

    struct Label
    {
        ID id;
        glm::dvec3 at;
        std::string words;
        Label3 look;
        td::RectNormalized<double> box; // text and frame, or halo, in points from the label's point
        double width = 0;               // of the text alone, in points
        std::array<Shapes, 2> shapes;   // clear, faint
        DepthProbe::ID probe = 0;
        bool isWanted = true;
        State state = State::Away;
        bool isInView = false;
        td::Point<double> place; // of the point on the screen, when it was last in view
    };

    /// A label in view.
    struct Candidate
    {
        std::uint32_t label;
        td::Point<double> place;
        State state;
    };

    Label* find(ID id);
    const Label* find(ID id) const;
    void addShapes(Label& label, const TextLayout& layout);
    void removeShapes(Label& label);
    void show(Label& label, State state, const td::Point<double>& place, double scale);
    bool isHidden(const Label& label, const Eye& eye) const;
    void sort();

    std::array<Drawing, 2> _drawings; // clear, faint
    DepthProbe* _pProbe = nullptr;
    std::function<bool(const glm::dvec3&, const Eye&)> _isHidden;
    std::vector<Label> _labels;
    std::unordered_map<ID, std::size_t> _indices; // of labels
    std::vector<std::uint32_t> _order;            // of labels by priority
    std::vector<Candidate> _candidates;           // of the frame
    ID _lastID = 0;
    double _margin = 2;
    double _faintness = 0.3;
    std::size_t _nShown = 0;
    std::size_t _nFaint = 0;
    bool _isSorted = true;
};

} // namespace gui::draw
