#pragma once

#include <gui/draw/Drawing.h>
#include <gui/draw/TextEditor.h>
#include <gui/draw/TextField.h>

#include <array>
#include <cstddef>
#include <optional>
#include <string>

namespace gui::gl
{
class OrthoView;
}

namespace gui::draw
{

/// Where a text field stands, and what is seen of it: letters as Drawing has them, and upright areas of whole pixels.
class TextFieldPicture
{
public:
    using Point = td::Point<double>;
    using Rect = td::RectNormalized<double>;

    /// @param pPlane  the view that it is in, if that has a plane; must outlive what is asked of this
    explicit TextFieldPicture(const gl::OrthoView* pPlane)
        : _pPlane(pPlane)
    {
    }

    /// @param at  in what `whole` leads to the plane from
    void begin(Point at, const TextPlacement& placement, const TextStyle& text, const TextFieldStyle& style);
    void setWhole(const Affine& whole) { _whole = whole; }
    void end() { _drawing.clear(); }

    /// From the layout to points of the view; empty where the plane is too small for a way back.
    std::optional<Affine> getMap(const TextEditor& editor, double pixelsPerPoint) const;
    /// With some room around it. @param point  of the view
    bool isInside(const TextEditor& editor, Point point, double pixelsPerPoint) const;
    /// Around the caret, in points of the view.
    std::optional<Rect> getCaret(const TextEditor& editor, double pixelsPerPoint) const;

    void draw(const TextEditor& editor, bool hasCaret, double pixelsPerPoint);

private:
    Affine planeToPoints() const;
    void setText(const TextLayout& layout);
    void setArea(std::size_t area, const Path& path);

    const gl::OrthoView* _pPlane;
    Point _at;
    Affine _whole;
    TextPlacement _placement; // without a frame
    std::optional<TextFrame> _frame;

    Drawing _drawing;
    // From below to above: the frame, what is selected, the text, lines under what is composed, the caret.
    Drawing::ID _inPlace = 0, _inPoints = 0, _framed = 0, _text = 0;
    std::array<Drawing::ID, 3> _areas{};
    std::array<Path, 3> _paths;        // of these
    std::optional<std::string> _shown; // of the text
};

} // namespace gui::draw
