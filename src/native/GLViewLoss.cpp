// What a native view does when its context is lost, and another takes its place.

#include "GLView.h"
#include "GLViewBusy.h"

#include "../context/ResetStatus.h"
#include "../view/ViewHelper.h"

#include <gui/gl/CurrentContext.h>
#include <vo/Log.h>

#include <charconv>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace gui::gl
{

namespace
{

// What GUIGL_LOSE_CONTEXT says; 0 for nothing.
int framesToLoss()
{
    static const int nFrames = []
    {
        const char* const text = std::getenv("GUIGL_LOSE_CONTEXT");
        if (text == nullptr || *text == '\0')
            return 0;
        const char* const pEnd = text + std::strlen(text);
        int n = 0;
        const auto result = std::from_chars(text, pEnd, n);
        if (result.ec == std::errc() && result.ptr == pEnd && n > 0)
            return n;
        vo::dbgLog("Warning! GUIGL_LOSE_CONTEXT=%s is no number above 0 and will be ignored", text);
        return 0;
    }();
    return nFrames;
}

} // namespace

// Of a GL that answers, what only GL has: for a loss without notice.
void GLView::keepState()
{
    if (_majorVersion > 0)
        _state.read();
}

void GLView::loseContext()
{
    _isLossWanted = true;
    reDraw();
}

// @return whether there is a context to draw the frame in: the view's, or another in its place
bool GLView::hasFrameContext()
{
    if (_isContextLost)
        return replaceContext(false);
    if (!makeCurrentContext())
        return _pSurface != nullptr && _pSurface->isContextLost() && replaceContext(false);
    if (_tellsResets && isReset())
        return replaceContext(false);
    const int nFrames = framesToLoss();
    if (nFrames > 0 && ++_nFramesToLoss > nFrames)
    {
        _nFramesToLoss = 1;
        _isLossWanted = true;
    }
    return !std::exchange(_isLossWanted, false) || replaceContext(true);
}

bool GLView::replaceContext(bool works)
{
    contextLost(works);
    if (_pSurface == nullptr || _pCppView == nullptr)
        return false;
    // A host's surface has one context; all in it is made anew then.
    if (!_pSurface->replaceContext() && !(works && makeCurrentContext()))
    {
        if (!std::exchange(_isFailureSaid, true))
            vo::dbgLog("ERROR! GLView has no other GL context for the lost one, and draws nothing until it has");
        return false;
    }
    contextReplaced();
    return _pCppView != nullptr && makeCurrentContext();
}

void GLView::contextLost(bool works)
{
    if (_pCppView == nullptr || std::exchange(_isContextLost, true))
        return;
    const Busy busy(*this);
    _lossTime = std::chrono::steady_clock::now();
    if (works)
    {
        keepState();
        CurrentContext::retire();
    }
    else
    {
        vo::dbgLog("Warning! GLView lost its GL context without notice, as after a reset of the GPU");
        ContextState::keepProgram();
        CurrentContext::set(nullptr);
    }
    ViewHelper(_pCppView).onContextLost();
}

void GLView::contextReplaced()
{
    if (_pCppView == nullptr || !std::exchange(_isContextLost, false))
        return;
    const Busy busy(*this);
    const CurrentContext::ID lost = _contextID;
    lookAtContext();
    CurrentContext::restoreFrom(lost);
    _state.apply();
    _viewport = {};
    updateViewport();
    updateScreenFramebuffer();
    ViewHelper(_pCppView).activateScreenFB();
    _isFailureSaid = false;
    ViewHelper(_pCppView).onContextRestored();
    const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - _lossTime;
    vo::dbgLog("GLView has another GL context, and what was in the lost one is there again (%.0f ms)", time.count());
}

} // namespace gui::gl
