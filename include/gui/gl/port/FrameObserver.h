#pragma once

#include <td/Export.h>
#include <td/Size.h>

namespace gui
{
class Key;
}

namespace gui::gl
{

class View;

/// Looks on while views draw, in any program: a panel that tells what frames cost, a tool that takes them apart. There
/// is one at most; gui::draw::Inspector is one. GUI thread only.
class GUIGL_API FrameObserver
{
public:
    /// A frame of a view.
    struct Frame
    {
        View& view;
        unsigned int framebuffer; ///< GL's name of what the view presents
        td::Size<int> size;       ///< of that, in device pixels
        double scale;             ///< device pixels per point
    };

    FrameObserver() = default;
    virtual ~FrameObserver() = default; ///< who is observing still is so no more: see set
    FrameObserver(const FrameObserver&) = delete;
    FrameObserver& operator=(const FrameObserver&) = delete;

    /// Called before a view's onDraw, with its context current.
    virtual void frameBegins(const Frame& frame) = 0;
    /// Called after it, before the frame is read or presented, with the context current. What it draws is in the frame,
    /// also in those that are read and written to files. GL's state has to be afterwards what it was.
    virtual void frameEnds(const Frame& frame) = 0;
    /// Called when a key goes down in a view's window, whatever events the view asked for, with the context current.
    /// @return whether it was for the observer; the view does not get it then
    virtual bool keyPressed(View& view, const Key& key) = 0;
    /// Asked at each beat of a view's animation, and before its other frames. @return whether the animation is held:
    /// the beat draws nothing, and other frames show the view without asking it to go on (View::prepareNextFrame)
    virtual bool isHeld(const View& view) = 0;

    /// @param pObserver  not owned; null for none. Who goes takes itself back before
    static void set(FrameObserver* pObserver);
    static FrameObserver* get(); ///< null for none
};

} // namespace gui::gl
