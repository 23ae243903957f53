#pragma once

#include "Drawing.h"
#include "Paint.h"
#include "ParagraphStyle.h"
#include "TextEditor.h"
#include "TextFrame.h"
#include "TextPlacement.h"
#include "TextStyle.h"

#include <td/Export.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace gui::gl
{
class OrthoView;
class View;
} // namespace gui::gl

namespace gui::draw
{

/// What a text field takes, and what it looks like beside its text.
struct TextFieldStyle
{
    bool isSingleLine = true;  ///< ends of lines become spaces, Return commits, and nothing is wrapped
    std::size_t maxLength = 0; ///< in characters (code points); 0 for no limit
    // Not by {}, of which GCC 12 warns in programs.
    ParagraphStyle paragraph = ParagraphStyle(); ///< of several lines: where they are wrapped, and stand
    bool selectsAll = true;        ///< whether all of the text is selected at first; else the caret stands at its end
    Paint selection = "#3d8bfd80"; ///< behind what is selected
    /// Of the caret, and of the lines under what an input method composes; without one as the text is.
    std::optional<Paint> caret{};
    std::optional<TextFrame> frame{}; ///< behind the text; without one what the text's placement has, if anything
};

/// A field in a picture, in which a text is edited where it stands: the name of a node, a label, a number on a plan.
///
///     #include <gui/Application.h>
///     #include <gui/draw/DrawingView.h>
///     #include <gui/draw/TextField.h>
///
///     class Sign : public gui::draw::DrawingView
///     {
///         void onShapeDoubleClicked(gui::draw::Drawing::ID) override
///         {
///             _field.edit(drawing(), _text, _title,
///                         [this](const std::string& title) { drawing().setText(_text, _title = title); });
///         }
///
///         std::string _title = "Double click to rename";
///         gui::draw::Drawing::ID _text = drawing().text({0, 0}, _title, {.size = 24});
///         gui::draw::TextField _field{*this};
///     };
///
///     int main(int argc, char** argv)
///     {
///         gui::Application app(argc, argv);
///         Sign sign;
///         return app.run(sign, "A sign", {640, 400});
///     }
///
/// That is all: keys, text and what input methods compose, clipboard and pointer come to the field before the view's
/// handlers while it is edited, and it is drawn over the view (it is a gl::ViewLayer). The view must have been made for
/// keys and primary clicks, as an OrthoView is by `createContext(yDown)`, a DrawingView by itself.
///
/// | input | what it does |
/// |---|---|
/// | Return, Ctrl-Return | commits; in a field of several lines only the latter does |
/// | Tab | commits, and is then the view's: it may go on to the next field |
/// | Escape | cancels, or takes back only what is composed |
/// | click beside it | commits, and is then the view's |
/// | the window loses the keyboard | commits |
/// | Ctrl-X, C, V, A, Z, Y, arrows, Home, End, with Shift, Ctrl | as everywhere, see TextEditor::onKey |
/// | press, drag, double and third click in it | the caret, and what is selected: letters, a word, all of the line |
/// | middle button in it | what is selected elsewhere comes there, as on X11 and Wayland |
/// | wheel, gestures, middle button beside it | the view's: the field keeps its place while one pans and zooms |
/// | other keys with Ctrl or Alt, function keys | the view's |
///
/// Letters are where the drawn text has them, to the pixel; where what is typed leaves the view, the plane comes along.
/// The caret blinks by a gui::Timer, twice a second, and asks for no other frames; while something is selected there is
/// none, and no frame at all. Whatever is composed when it is committed becomes text.
///
/// A commit or a cancel ends the field, then calls its handler, once; the handler may begin another edit, or delete the
/// field. When field or view go while it is edited, it ends without one. Not copyable. GUI thread only; needs no
/// context but the view's.
class GUIGL_API TextField
{
public:
    using Point = td::Point<double>;                                    ///< in model units, or points of a plain view
    using CommitHandler = std::function<void(const std::string& text)>; ///< gets the text as it is then
    using CancelHandler = std::function<void()>;                        ///< nothing is to change

    /// In a view of a plane, which may go before it: places are in model units.
    explicit TextField(gl::OrthoView& view, const TextFieldStyle& style = {});
    /// In any other view: places are in points from its top left corner, y downwards.
    explicit TextField(gl::View& view, const TextFieldStyle& style = {});
    /// What was hidden is shown again.
    ~TextField();
    TextField(const TextField&) = delete;
    TextField& operator=(const TextField&) = delete;

    /// For what is edited from now on.
    void setStyle(const TextFieldStyle& style);

    /// Edits a text of a drawing where it stands: in its face, size and colour (those of its beginning), at its place
    /// with its anchor, angle and frame, and moved as its groups are. The text itself is hidden meanwhile, in pictures
    /// that are saved too. What was edited before is committed.
    ///
    /// It is cancelled when the text is removed, or the drawing gone: at the next input or frame.
    /// @param drawing   that the view shows, with the map of its plane
    /// @param text      a text at a point
    /// @param string    what it begins with, since drawings don't keep their texts
    /// @param onCommit  may be empty, as onCancel may
    /// @return false, with nothing changed, after "Error! TextField::edit: no text at a point has this ID!" for an ID
    ///         that names nothing (any more), a symbol, a group or a text along a path; and after "Error!
    ///         TextField::edit: its view has gone, or has no context yet!"
    bool edit(Drawing& drawing, Drawing::ID text, std::string_view string, CommitHandler onCommit,
              CancelHandler onCancel = {});
    /// Edits a text that is nowhere yet, as one that Drawing::text would add there.
    /// @param at  where the placement's anchor stands
    /// @return false, with nothing changed, after "Error! TextField::edit: the place is not finite!", and without a
    ///         view as edit says
    bool editAt(Point at, std::string_view string, const TextStyle& style, const TextPlacement& placement,
                CommitHandler onCommit, CancelHandler onCancel = {});

    /// Whether there is a field to be seen.
    bool isEditing() const;
    /// Ends it, with what is composed as text, and calls onCommit. Nothing when nothing is edited.
    void commit();
    /// Ends it, and calls onCancel. Nothing when nothing is edited.
    void cancel();

    /// The text that is edited, to be read, and changed: to select a file's name without its end, say. Ask the view for
    /// a frame then (reDraw). Style and paragraphs are up to edit.
    TextEditor& editor();
    const TextEditor& editor() const; ///< the same

private:
    struct Impl;
    std::unique_ptr<Impl> _pImpl;
};

} // namespace gui::draw
