#include "SDLWindow.h"

#include "SDLRunLoop.h"

#include <gui/NativeView.h>

#include <algorithm>
#include <cmath>

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
    _pWindow = static_cast<SDL_Window*>(pView->getNativeWindow());
    if (_pWindow != nullptr)
    {
        SDLRunLoop::setView(_pWindow, pView);
        SDL_SetWindowTitle(_pWindow, _title.c_str());
        applySize();
        // Where the surface made its window, that was the middle for another size.
        SDL_SetWindowPosition(_pWindow, SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED);
        if (_isFullScreen)
            applyFullScreen();
        SDL_ShowWindow(_pWindow);
    }
    pView->enteredWindow();
}

void SDLWindow::hide()
{
    if (_pWindow == nullptr)
        return;
    SDLRunLoop::setView(_pWindow, nullptr);
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
    if (_pWindow != nullptr && !_isFullScreen)
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

void SDLWindow::setFullScreen(bool isFullScreen)
{
    if (_pWindow != nullptr && isFullScreen)
        _size = getSize();
    _isFullScreen = isFullScreen;
    if (_pWindow == nullptr)
        return;
    applyFullScreen();
    // A size that was asked for meanwhile.
    if (!isFullScreen)
        applySize();
}

void SDLWindow::applySize() const { SDL_SetWindowSize(_pWindow, toLength(_size.width), toLength(_size.height)); }

void SDLWindow::applyFullScreen() const
{
    SDL_SetWindowFullscreen(_pWindow, _isFullScreen ? SDL_WINDOW_FULLSCREEN_DESKTOP : 0);
}

} // namespace gui
