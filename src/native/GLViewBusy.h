#pragma once

#include "GLView.h"

namespace gui::gl
{

/// Held during every call up into the view. What the view's code asks for in there, that the native view or its surface
/// go away, is done when the last of these calls is over.
class GLView::Busy
{
public:
    explicit Busy(GLView& view)
        : _view(view)
    {
        // The outermost call has it at 1; who reads this file alone cannot know that.
        if (++_view._nBusy < 1)
            __builtin_unreachable();
    }
    Busy(const Busy&) = delete;
    Busy& operator=(const Busy&) = delete;
    // Not inlined, or GCC takes the deletion at the end of an inner call for one that the outer call would run into.
    [[gnu::noinline]] ~Busy()
    {
        // Deleted is it by the outermost one alone, whose count the others only lower.
        if (--_view._nBusy > 0)
            return;
        if (_view._isReleased)
            delete &_view;
        else if (_view._isClosed)
            _view._pSurface.reset();
    }

private:
    GLView& _view;
};

} // namespace gui::gl
