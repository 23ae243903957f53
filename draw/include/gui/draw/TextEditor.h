#pragma once

#include "TextLayout.h"

#include <td/Export.h>
#include <td/Point.h>
#include <td/RectNormalized.h>
#include <td/Size.h>
#include <td/Types.h>

#include <cstddef>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace gui
{
class Key;
struct TextComposition;
} // namespace gui

namespace gui::draw
{

/// What of a text field has nothing to do with its looks: a text that is edited, with its caret and selection, keys,
/// pointer, undo and compositions of input methods, in any script and direction.
///
///     #include <gui/draw/TextEditor.h>
///     #include <cstdio>
///
///     int main()
///     {
///         using namespace gui::draw;
///         TextEditor field({.size = 16}, {.width = 200});
///         field.insert("Dear wrold");
///         field.move(TextEditor::Motion::PreviousWord, true); // selects it
///         field.insert("world");
///         std::printf("%s, with a caret at %g\n", field.getText().c_str(), field.getCaretRect().left);
///         field.undo();
///         return 0;
///     }
///
/// A view hands on what it is told, and draws what there is:
///
///     onTextInput           insert(text)
///     onTextComposition     compose(composition)
///     onKeyPressed          onKey(key); and Ctrl-X, C and V with cut, getSelectedText, paste and a clipboard
///     onPrimaryButton...    press(point, device.getNoOfEvents(), device.getKey().isShiftPressed()), drag(point)
///     onDraw                getSelectionRects, getLayout, getCompositionRects, getCaretRect
///
/// Texts are UTF-8; what comes in is made well-formed, with one U+000A for each of CR, LF and CR LF, and without
/// control characters other than tabs. Places are bytes of the text. The caret, and the selection's other end, never
/// stand within a letter as readers see it (a grapheme cluster), and what is deleted are whole ones. Points are in the
/// layout's coordinates, as are the rectangles.
///
/// What changes the text or the caret gives up a composition under way, which is no part of the text; compose and
/// insert alone replace it. A text is laid out when it is looked at, and of its paragraphs only those that are new. A
/// value; no GL; for any thread, one at a time.
class GUIGL_API TextEditor
{
public:
    using Point = TextLayout::Point;       ///< in the layout
    using Rect = TextLayout::Rect;         ///< likewise
    using Range = TextLayout::Range;       ///< of the text, in bytes
    using Position = TextLayout::Position; ///< in the text

    /// What it holds at most. What is beyond is left out.
    struct Limits
    {
        bool isSingleLine = false; ///< ends of lines become spaces, and Return is left to others; nothing is wrapped
        std::size_t maxLength =
            0; ///< in characters (code points); of what is too long whole letters go. 0 for no limit
    };

    /// Where a caret goes from where it is.
    enum class Motion : td::BYTE
    {
        Left,         ///< by a letter, as it is seen, whichever way the text runs
        Right,        ///< likewise
        WordLeft,     ///< as PreviousWord, or as NextWord in a paragraph from right to left
        WordRight,    ///< the other one
        Previous,     ///< by a letter, as it is read
        Next,         ///< likewise
        PreviousWord, ///< to the beginning of the word, or of the one before; spaces and signs are passed over
        NextWord,     ///< to the end of it, or of the next one
        LineStart,    ///< of the line as wrapped
        LineEnd,
        Up, ///< by a line, to the x that the first of several such motions began at; from the first line to the text's
        ///< beginning
        Down,           ///< likewise, from the last line to its end
        PageUp,         ///< as Up, by as much as setPage says; nowhere while that is 0
        PageDown,       ///< likewise
        ParagraphStart, ///< or, there, that of the one before
        ParagraphEnd,   ///< or, there, that of the next one
        TextStart,
        TextEnd
    };

    /// An empty text. Of the paragraph style, maxLines and ellipsis count as not set.
    explicit TextEditor(const TextStyle& style = {}, const ParagraphStyle& paragraph = {})
        : TextEditor(style, paragraph, Limits{})
    {
    }
    TextEditor(const TextStyle& style, const ParagraphStyle& paragraph, const Limits& limits);

    const std::string& getText() const { return _text; }
    /// Another text, with the caret at its end; there is nothing to undo then.
    void setText(std::string_view text);
    const Limits& getLimits() const { return _limits; }

    const TextStyle& getStyle() const { return _style; }
    /// Of all of the text.
    void setStyle(const TextStyle& style);
    const ParagraphStyle& getParagraphStyle() const { return _paragraph; }
    /// Of all paragraphs; see the constructor for what it goes without.
    void setParagraphStyle(const ParagraphStyle& paragraph);
    /// That of the paragraph style.
    void setWidth(double width);
    /// How far PageUp and PageDown go: the height of what is seen of the text, say. 0, at first, leaves them to others.
    void setPage(double height) { _page = height; }

    Position getCaret() const { return _caret; }
    /// What is selected; begin equals end, at the caret, when nothing is.
    Range getSelection() const;
    bool hasSelection() const { return _caret.offset != _anchor; }
    std::string getSelectedText() const;
    /// Selects, with the caret at the end. Places within letters count as their beginning, those beyond the text as its
    /// end.
    void select(Range range);
    void selectAll() { select({0, _text.size()}); }

    /// Typed text takes the place of the selection, and of a composition. @return whether the text is another now
    bool insert(std::string_view text);
    /// The same with text from elsewhere, which is undone by itself.
    bool paste(std::string_view text);
    /// Deletes the selection, which it returns. To copy, there is getSelectedText.
    std::string cut();
    /// Deletes the selection or, without one, what is between the caret and where the motion leads: Previous is
    /// Backspace. @return whether the text is another now
    bool erase(Motion motion);

    /// Shows what an input method composes in the place of the selection, which is there again when it is given up: by
    /// an empty one.
    void compose(const gui::TextComposition& composition);
    bool isComposing() const { return !_composition.empty(); }

    /// Steps back and forth. Letters that were typed one after the other, up to a word with the spaces behind it, are
    /// one step, as are those that were deleted one after the other. What is more than 16 MiB of steps is forgotten,
    /// the oldest first, but for the last. @return false when there is none
    bool undo();
    bool redo();
    bool canUndo() const { return _nDone > 0; }
    bool canRedo() const { return _nDone < _steps.size(); }

    /// @param selects  whether the selection's other end stays where it is; else nothing is selected afterwards, and
    ///                 Left and Right go to a selection's side
    /// @return whether caret or selection changed
    bool move(Motion motion, bool selects = false);
    /// What desktops on Linux do on a key: arrows, Home, End and pages with Shift and Ctrl, Backspace and Delete,
    /// Return, Ctrl-A and Ctrl-Z, Ctrl-Shift-Z and Ctrl-Y.
    /// @return whether it is used up, as is a key that makes text, for which insert comes next. Tab, Escape and keys
    ///         with Alt are not
    bool onKey(const gui::Key& key);

    /// The pointer's button went down: the caret goes there. Two clicks select the word there, three its paragraph, and
    /// a drag goes on by the same.
    /// @param extends  with Shift: the selection's other end stays
    void press(Point point, unsigned int nClicks = 1, bool extends = false);
    /// It moved while it was down.
    void drag(Point point);

    /// The text with the composition in it, to be drawn.
    const TextLayout& getLayout() const;
    /// The caret, in a composition too. @param width  of it; it stands to the right of its place
    Rect getCaretRect(double width = 1) const;
    /// To be painted behind the text: what is selected, of the text or of a composition. Ends of lines are a quarter of
    /// an em wide.
    std::vector<Rect> getSelectionRects() const;
    /// Lines under a composition. @param thickness  of them
    std::vector<Rect> getCompositionRects(double thickness = 1) const;
    /// Where a window on the text goes so that the caret is in it, and nothing but text as far as there is enough.
    /// @param scroll  the window's corner in the layout as it is  @return the new one
    Point scrollToCaret(Point scroll, const td::Size<double>& window) const;

private:
    enum class Kind : td::BYTE
    {
        Typing,
        DeletingBack,
        DeletingOn,
        Other
    };
    struct Place
    {
        Position caret;
        std::size_t anchor;
    };
    struct Step
    {
        std::size_t at;
        std::string removed;
        std::string inserted;
        Place before;
        Place after;
        Kind kind;
    };
    enum class Unit : td::BYTE
    {
        Letter,
        Word,
        Paragraph
    };

    std::string makeFit(std::string_view text, std::size_t nRoom) const;
    std::string take(std::string_view text, Range replaced) const;
    bool replace(Range range, std::string_view text, Kind kind);
    bool join(const Step& step);
    static std::size_t sizeOf(const Step& step);
    void forgetOldSteps();
    bool goTo(const Place& place, bool keepsX = false);
    void giveUpComposition();
    void setDirty() { _isDirty = true; }

    // With the layout of the text alone.
    std::size_t toBoundary(std::size_t offset) const;
    Position hit(Point point) const;
    Position find(Motion motion, double x) const;
    Position besideSelection(bool isRight) const;
    Position inLine(std::size_t line, bool isDown, double x) const;
    Position pageFrom(std::size_t line, bool isDown, double x) const;
    bool endsHard(std::size_t line) const;
    Position endOfLine(std::size_t line) const;
    Range paragraphAt(std::size_t offset) const;
    Range unitAt(Position hit) const;
    Position caretInLayout() const;

    TextStyle _style;
    ParagraphStyle _paragraph;
    Limits _limits;
    std::string _text;
    Position _caret;
    std::size_t _anchor = 0;
    std::optional<double> _x; // of motions up and down
    double _page = 0;
    std::string _composition;
    Range _inComposition;
    std::deque<Step> _steps; // those undone stand behind the others
    std::size_t _nDone = 0;
    std::size_t _historySize = 0; // of all of them, in bytes
    bool _canJoin = false;
    Unit _unit = Unit::Letter; // of a drag
    Range _pressed;            // what the drag began with
    mutable TextLayout _layout;
    mutable bool _isDirty = true;
};

} // namespace gui::draw
