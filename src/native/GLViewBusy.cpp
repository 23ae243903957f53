#include "GLViewBusy.h"

namespace gui::gl
{

// Not inlined, or compilers take the deletion at the end of an inner call for one that the outer call would run into.
[[gnu::noinline]] GLView::Busy::~Busy()
{
    // Deleted is it by the outermost one alone, whose count the others only lower.
    if (--_view._nBusy > 0)
        return;
    if (_view._isReleased)
        delete &_view;
    else if (_view._isClosed)
        _view._pSurface.reset();
}

} // namespace gui::gl
