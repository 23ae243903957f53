#pragma once

#include "Scene.h"

#include <gui/draw/Drawing.h>
#include <gui/draw/TextEditor.h>

namespace gallery
{

/// A text in a rectangle of the frame, which a user selects and edits there.
class TextBox
{
public:
    using Point = td::Point<double>;         ///< in points of the frame
    using Rect = td::RectNormalized<double>; ///< likewise

    TextBox(const gui::draw::TextStyle& style, const gui::draw::ParagraphStyle& paragraph,
            const gui::draw::TextEditor::Limits& limits = {})
        : editor(style, paragraph, limits)
    {
    }

    void setRect(const Rect& rect);
    const Rect& getRect() const { return _rect; }

    /// With some room around it.
    bool contains(Point point) const;
    /// The primary button went down, a second time in a row or not, or the pointer moved with it.
    void press(const gui::InputDevice& device, unsigned int nClicks);
    void drag(const gui::InputDevice& device);
    /// As the editor's, with the clipboard.
    bool onKey(const gui::Key& key);

    /// Where the caret is.
    Rect getCaret() const;
    /// Scrolls to the caret, and draws what is within the rectangle.
    void draw(const Frame& frame, bool hasCaret);

    gui::draw::TextEditor editor;

private:
    Point corner() const { return {_rect.left - _scroll.x, _rect.top - _scroll.y}; }
    Point toText(const gui::InputDevice& device) const;

    Rect _rect;
    Point _scroll;
    gui::draw::Drawing _drawing;
};

} // namespace gallery
