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
        ++_view._nBusy;
    }
    Busy(const Busy&) = delete;
    Busy& operator=(const Busy&) = delete;
    ~Busy();

private:
    GLView& _view;
};

} // namespace gui::gl
