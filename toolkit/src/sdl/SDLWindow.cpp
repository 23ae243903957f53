#include "SDLWindow.h"

#include "CompositorWatch.h"
#include "SDLRunLoop.h"
#include "X11Hints.h"

#include <gui/NativeView.h>
#include <gui/Texture.h>
#include <gui/port/sdl/SDL.h>
#include <gui/port/sdl/SDLPort.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace gui
{

namespace
{

using State = Window::State;

constexpr char cWindowKey[] = "gui::SDLWindow";

int toLength(double points)
{
    constexpr double cLongest = 16384; // SDL's own limit
    return static_cast<int>(std::lround(std::clamp(points, 1.0, cLongest)));
}

int toPlace(double points)
{
    constexpr double cFarthest = 32767; // X11's
    return static_cast<int>(std::lround(std::clamp(points, -cFarthest, cFarthest)));
}

} // namespace

SDLWindow::~SDLWindow()
{
    if (_pWindow != nullptr)
        hide();
}

void SDLWindow::show(NativeView* pView)
{
    const auto windowOf = [pView] { return static_cast<SDL_Window*>(pView->getNativeWindow()); };
    if (SDL_Window* const pHidden = windowOf())
        SDLRunLoop::tellShow(pHidden, {toLength(_size.width), toLength(_size.height)});
    _pWindow = windowOf();
    if (_pWindow != nullptr)
    {
        _pView = pView;
        SDLRunLoop::setView(_pWindow, pView);
        sdl::setData(_pWindow, cWindowKey, this);
        SDL_SetWindowTitle(_pWindow, _title.c_str());
        applyIcon();
        applyMinSize();
        applySize();
        if (!_position)
            X11Hints::letSystemPlace(_pWindow);
        else
            setPosition(*_position);
        const State state = std::exchange(_state, State::Normal);
        if (state == State::FullScreen)
            SDLWindow::setState(state);
        {
            const CompositorWatch watch(_pWindow);
            SDL_ShowWindow(_pWindow);
        }
        _isPlacePending = _position.has_value();
        if (state != State::FullScreen)
            SDLWindow::setState(state);
    }
    pView->enteredWindow();
}

void SDLWindow::hide()
{
    if (_pWindow == nullptr)
        return;
    SDLRunLoop::setView(_pWindow, nullptr);
    sdl::setData(_pWindow, cWindowKey, nullptr);
    // What the next view finds.
    const State state = getState();
    if (state == State::FullScreen)
        sdl::setFullScreen(_pWindow, false);
    else if (state == State::Normal)
        _size = getSize();
    _state = state == State::Minimized ? State::Normal : state;
    _toldState = State::Normal;
    SDL_HideWindow(_pWindow);
    _pWindow = nullptr;
    _pView = nullptr;
}

void SDLWindow::setTitle(const char* title)
{
    _title = title;
    if (_pWindow != nullptr)
        SDL_SetWindowTitle(_pWindow, title);
}

// Size and place.

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
        return {std::max(_size.width, _minSize.width), std::max(_size.height, _minSize.height)};
    int width = 0;
    int height = 0;
    SDL_GetWindowSize(_pWindow, &width, &height);
    return {static_cast<double>(width), static_cast<double>(height)};
}

void SDLWindow::applySize() const { SDL_SetWindowSize(_pWindow, toLength(_size.width), toLength(_size.height)); }

void SDLWindow::setMinSize(const td::Size<double>& size)
{
    _minSize = size;
    if (_pWindow != nullptr)
        applyMinSize();
}

void SDLWindow::applyMinSize() const
{
    SDL_SetWindowMinimumSize(_pWindow, toLength(_minSize.width), toLength(_minSize.height));
}

void SDLWindow::setPosition(const td::Point<double>& position)
{
    _position = position;
    if (_pWindow != nullptr && !isFullScreen())
        SDL_SetWindowPosition(_pWindow, toPlace(position.x), toPlace(position.y));
}

std::optional<td::Point<double>> SDLWindow::getPosition() const
{
    if (sdl::isOnWayland())
        return std::nullopt;
    if (_pWindow == nullptr)
        return _position;
    int x = 0;
    int y = 0;
    SDL_GetWindowPosition(_pWindow, &x, &y);
    return td::Point<double>{static_cast<double>(x), static_cast<double>(y)};
}

// The icon.

void SDLWindow::setIcon(const Texture& picture)
{
    const auto nPixels = static_cast<std::size_t>(picture.getWidth()) * static_cast<std::size_t>(picture.getHeight());
    const std::size_t nBytes = picture.getBytesPerPixel();
    constexpr std::size_t cBytes = 4;
    _icon = {picture.getWidth(), picture.getHeight(), std::vector<unsigned char>(nPixels * cBytes, 0xFF)};
    for (std::size_t i = 0; i < nPixels; ++i)
        std::copy_n(picture.getBytes() + i * nBytes, nBytes, _icon.bytes.begin() + static_cast<long>(i * cBytes));
    if (_pWindow != nullptr)
        applyIcon();
}

void SDLWindow::applyIcon()
{
    if (!_icon.bytes.empty())
        sdl::setIcon(_pWindow, {_icon.width, _icon.height}, _icon.bytes.data());
}

// States.

bool SDLWindow::isFullScreen() const
{
    if (_pWindow == nullptr)
        return _state == State::FullScreen;
    return X11Hints::isFullScreen(_pWindow).value_or(sdl::isFullScreen(_pWindow));
}

State SDLWindow::getState() const
{
    if (_pWindow == nullptr)
        return _state;
    const auto flags = SDL_GetWindowFlags(_pWindow);
    if ((flags & SDL_WINDOW_MINIMIZED) != 0)
        return State::Minimized;
    if (isFullScreen())
        return State::FullScreen;
    return (flags & SDL_WINDOW_MAXIMIZED) != 0 ? State::Maximized : State::Normal;
}

void SDLWindow::setState(State state)
{
    if (_pWindow == nullptr)
    {
        _state = state;
        return;
    }
    const State before = getState();
    if (state == before)
        return;
    if (state == State::Minimized)
    {
        SDL_MinimizeWindow(_pWindow);
        return;
    }
    // A window comes back as what it was before it was minimised; SDL3 counts it as hidden on X11.
    if (before == State::Minimized)
    {
        SDL_ShowWindow(_pWindow);
        SDL_RestoreWindow(_pWindow);
    }
    if (state == State::FullScreen || isFullScreen())
    {
        _wasMaximized = state == State::Maximized;
        setFullScreen(state == State::FullScreen);
    }
    else if (state == State::Maximized)
        SDL_MaximizeWindow(_pWindow);
    if (state == State::Normal && (SDL_GetWindowFlags(_pWindow) & SDL_WINDOW_MAXIMIZED) != 0)
        SDL_RestoreWindow(_pWindow);
}

void SDLWindow::setFullScreen(bool isFullScreen)
{
    if (_pWindow == nullptr)
    {
        _state = isFullScreen ? State::FullScreen : _state == State::FullScreen ? State::Normal : _state;
        return;
    }
    // SDL does nothing when it believes that the window is that already; the user may have asked somebody else.
    const auto flags = SDL_GetWindowFlags(_pWindow);
    const bool isForSDL = sdl::isFullScreen(_pWindow);
    if (isFullScreen && !isForSDL)
    {
        _wasMaximized = (flags & SDL_WINDOW_MAXIMIZED) != 0;
        _size = getSize();
    }
    if (isForSDL == isFullScreen && SDLWindow::isFullScreen() != isFullScreen)
        sdl::setFullScreen(_pWindow, !isFullScreen);
    sdl::setFullScreen(_pWindow, isFullScreen);
    if (isFullScreen)
        return;
    // SDL forgets it.
    const bool wasMaximized = std::exchange(_wasMaximized, false);
    if (std::exchange(_isSizePending, false))
        applySize();
    else if (wasMaximized)
        SDL_MaximizeWindow(_pWindow);
}

void SDLWindow::follow(SDL_Window* pWindow, SDLEvent::Type type)
{
    auto* const pShown = static_cast<SDLWindow*>(sdl::getData(pWindow, cWindowKey));
    if (pShown == nullptr)
        return;
    // The window manager puts the frame where the content was to be, which is seen when it draws the frame.
    if (type == SDLEvent::Type::Moved && std::exchange(pShown->_isPlacePending, false))
        pShown->setPosition(*pShown->_position);
    if (type == SDLEvent::Type::Exposed)
        pShown->_isPlacePending = false;
    const State state = pShown->getState();
    if (std::exchange(pShown->_toldState, state) != state)
        tellState(*pShown->_pView, state);
}

} // namespace gui
