#include "SDLWindow.h"

#include "SDLRunLoop.h"
#include "X11Window.h"

#include <gui/NativeView.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace gui
{

namespace
{

int toLength(double points)
{
    constexpr double cLongest = 16384; // SDL's own limit
    return static_cast<int>(std::lround(std::clamp(points, 1.0, cLongest)));
}

} // namespace

void SDLWindow::show(NativeView* pView)
{
    const auto windowOf = [pView] { return static_cast<SDL_Window*>(pView->getNativeWindow()); };
    if (SDL_Window* const pHidden = windowOf())
        SDLRunLoop::tellShow(pHidden, {toLength(_size.width), toLength(_size.height)});
    _pWindow = windowOf();
    if (_pWindow != nullptr)
    {
        SDLRunLoop::setView(_pWindow, pView);
        SDL_SetWindowTitle(_pWindow, _title.c_str());
        applySize();
        X11Window::letSystemPlace(_pWindow);
        if (_isFullScreen)
            SDL_SetWindowFullscreen(_pWindow, SDL_WINDOW_FULLSCREEN_DESKTOP);
        SDL_ShowWindow(_pWindow);
    }
    pView->enteredWindow();
}

void SDLWindow::hide()
{
    if (_pWindow == nullptr)
        return;
    SDLRunLoop::setView(_pWindow, nullptr);
    // What the next view finds.
    _isFullScreen = isFullScreen();
    if (_isFullScreen)
        SDL_SetWindowFullscreen(_pWindow, 0);
    else
        _size = getSize();
    SDL_HideWindow(_pWindow);
    _pWindow = nullptr;
}

void SDLWindow::setTitle(const char* title)
{
    _title = title;
    if (_pWindow != nullptr)
        SDL_SetWindowTitle(_pWindow, title);
}

void SDLWindow::setSize(const td::Size<double>& size)
{
    _size = size;
    if (_pWindow == nullptr)
        return;
    _isSizePending = isFullScreen();
    if (!_isSizePending)
        applySize();
}

td::Size<double> SDLWindow::getSize() const
{
    if (_pWindow == nullptr)
        return _size;
    int width = 0;
    int height = 0;
    SDL_GetWindowSize(_pWindow, &width, &height);
    return {static_cast<double>(width), static_cast<double>(height)};
}

bool SDLWindow::isFullScreen() const
{
    if (_pWindow == nullptr)
        return _isFullScreen;
    const bool isForSDL = (SDL_GetWindowFlags(_pWindow) & SDL_WINDOW_FULLSCREEN) != 0;
    return X11Window::isFullScreen(_pWindow).value_or(isForSDL);
}

void SDLWindow::setFullScreen(bool isFullScreen)
{
    constexpr Uint32 cFullScreen = SDL_WINDOW_FULLSCREEN_DESKTOP;
    _isFullScreen = isFullScreen;
    if (_pWindow == nullptr)
        return;
    // SDL does nothing when it believes that the window is that already; the user may have asked somebody else.
    const Uint32 flags = SDL_GetWindowFlags(_pWindow);
    const bool isForSDL = (flags & SDL_WINDOW_FULLSCREEN) != 0;
    if (isFullScreen && !isForSDL)
    {
        _wasMaximized = (flags & SDL_WINDOW_MAXIMIZED) != 0;
        _size = getSize();
    }
    if (isForSDL == isFullScreen && SDLWindow::isFullScreen() != isFullScreen)
        SDL_SetWindowFullscreen(_pWindow, isFullScreen ? 0 : cFullScreen);
    SDL_SetWindowFullscreen(_pWindow, isFullScreen ? cFullScreen : 0);
    if (isFullScreen)
        return;
    // SDL forgets it.
    const bool wasMaximized = std::exchange(_wasMaximized, false);
    if (std::exchange(_isSizePending, false))
        applySize();
    else if (wasMaximized)
        SDL_MaximizeWindow(_pWindow);
}

void SDLWindow::applySize() const { SDL_SetWindowSize(_pWindow, toLength(_size.width), toLength(_size.height)); }

} // namespace gui
