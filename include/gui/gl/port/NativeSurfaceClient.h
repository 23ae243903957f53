#pragma once

#include "SurfaceEvents.h"

#include <gui/NativeView.h>
#include <td/Export.h>

#include <cstdint>

namespace gui::gl
{

/// The native side of a GL view, as its surface and its host see it: a gui::NativeView that takes input, with one
/// operation for each kind of event. Which kinds reach the view, and as what, is decided behind it. The library
/// implements it.
///
/// What the view's code does in there may end the view and its surface with it: nothing of the surface is to be touched
/// behind such a call without a look whether it is still there. GUI thread only.
class GUIGL_API NativeSurfaceClient : public gui::NativeView
{
public:
    /// Both buttons; see ButtonEvent.
    virtual void onButton(const ButtonEvent& event) = 0;
    /// Enter, then moves and drags, then exit.
    virtual void onMotion(const MotionEvent& event) = 0;
    /// @return whether the event is used up; if it is not, a host may handle it in its own way
    virtual bool onWheel(const WheelEvent& event) = 0;
    /// It zooms about the middle of the view.
    virtual void onMagnification(const MagnificationEvent& event) = 0;
    /// @return as onWheel
    virtual bool onKey(const KeyEvent& event) = 0;
    /// Text came, by keys or through an input method; also when it was not asked for.
    virtual void onText(const TextEvent& event) = 0;
    /// An input method composes; no text when that is over.
    virtual void onComposition(const CompositionEvent& event) = 0;
    /// Files or text were dropped; also when the view doesn't accept them.
    virtual void onDrop(const DropEvent& event) = 0;
    /// The window, or the widget, got or lost the keyboard. Keys that were down then are told to the view as let go.
    virtual void onFocus(bool hasFocus) = 0;

    /// The surface's context is about to be destroyed, or is gone, and another one will take its place: what is in it
    /// is forgotten, and no frame is drawn until contextReplaced. A second call is nothing.
    /// @param works  whether it is current and works; it counts as dead then when this returns. Otherwise the caller
    ///               tells CurrentContext::died
    virtual void contextLost(bool works) = 0;
    /// Another context is there, and current: all that was in the lost one is made anew. Nothing when none was lost.
    virtual void contextReplaced() = 0;

    /// Whether the view takes keys.
    virtual bool acceptsFirstResponder() const = 0;
    /// Whether the view wants what is dropped on it; known when the surface is made, and the same ever after.
    virtual bool acceptsDrops() const = 0;
    /// Which pointer events the view wants, as bits: 0x04 cursor updates, 0x80 always active and 0x200 over what is
    /// visible, these always; 0x02 motion; 0x01 entering and leaving. A surface that gets them all anyway need not
    /// care.
    virtual std::uint64_t getTrackingOptions() const = 0;

protected:
    ~NativeSurfaceClient() override = default;
};

} // namespace gui::gl
