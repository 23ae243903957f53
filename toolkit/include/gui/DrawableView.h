#pragma once

#include "BaseView.h"

#include <td/Export.h>
#include <td/RectNormalized.h>
#include <td/Size.h>

#include <string_view>

namespace gui
{

struct Drop;
class InputDevice;
struct TextComposition;

/// A view that draws its own content and takes pointer, wheel and gesture events. Applications override its handlers;
/// each is called on the GUI thread. The defaults do nothing and report nothing as handled.
class GUIGL_API DrawableView : public BaseView
{
protected:
    friend class DrawableViewHelper;

    /// Draws a frame. @param rect  what has to be drawn, in points
    virtual void onDraw(const td::RectNormalized<double>& rect);

    /// A click, with the number of clicks in a row in the record.
    virtual void onPrimaryButtonPressed(const InputDevice& device);
    virtual void onPrimaryButtonReleased(const InputDevice& device);
    virtual void onSecondaryButtonPressed(const InputDevice& device);
    virtual void onSecondaryButtonReleased(const InputDevice& device);

    /// The second press of a double click; it takes the place of onPrimaryButtonPressed.
    virtual void onPrimaryButtonDblClick(const InputDevice& device);

    /// The pointer over the view. In windows it moves at most once between two frames of the display: what it does
    /// meanwhile, with the same buttons and modifiers held, is one motion, to where it ends.
    virtual void onCursorEntered(const InputDevice& device);
    virtual void onCursorMoved(const InputDevice& device);   ///< with no button down
    virtual void onCursorDragged(const InputDevice& device); ///< with the primary button down
    virtual void onCursorExited(const InputDevice& device);

    /// A zoom step, by device.getScale() about device.getFramePoint().
    /// @return true when it is used up; false passes it on
    virtual bool onZoom(const InputDevice& device);

    /// The wheel was turned; device.getFramePoint() carries the distance in points, device.getPlace() where the pointer
    /// is.
    /// @return true when it is used up; false passes it on
    virtual bool onScroll(const InputDevice& device);

    /// The view has a new size. @param size  in points
    virtual void onResize(const td::Size<double>& size);

    /// Keys come to this view from now on, or do so no more.
    virtual void onFocusIn();
    virtual void onFocusOut();

    /// A click of a button that is neither the primary nor the secondary one: device.getButton() says which.
    virtual void onOtherButtonPressed(const InputDevice& device);
    virtual void onOtherButtonReleased(const InputDevice& device);
    /// The pointer moved with the button down that device.getButton() says, which is not the primary one; it may be
    /// the secondary. Outside of the view too, where onCursorExited has come before.
    virtual void onOtherDragged(const InputDevice& device);

    /// Text was typed, by keys or through an input method, in a view that takes text (see gui::gl::View's
    /// startTextInput): insert it at the caret, where it takes the place of the selection. It ends a composition, of
    /// which it is what came out. Keys make key events as ever; those that have a character make text behind that,
    /// unless Ctrl, Alt or Super is held, and those that an input method uses up make none. Return, Tab, Backspace and
    /// their like are keys alone.
    /// @param text  UTF-8, well-formed, not empty, without control characters; long ones come in several pieces
    virtual void onTextInput(std::string_view text);
    /// What an input method composes, each time that it changes; an empty one at the end, also when the keyboard goes
    /// to another window.
    virtual void onTextComposition(const TextComposition& composition);

    /// Files or a text of another program were dropped on the view, all of them in one call.
    virtual void onDropped(const Drop& drop);
};

/// The way in for the window system: forwards to the view's protected handlers.
class DrawableViewHelper
{
public:
    explicit DrawableViewHelper(DrawableView* pView)
        : _pView(pView)
    {
    }

    void onFocusIn() { _pView->onFocusIn(); }
    void onFocusOut() { _pView->onFocusOut(); }

private:
    DrawableView* _pView;
};

} // namespace gui
