#pragma once

#include "Pinch.h"

#include <gui/port/sdl/SDLEvent.h>

#include <SDL_video.h>
#include <td/Point.h>

#include <memory>

namespace gui::gl
{

class NativeSurfaceClient;

/// Turns SDL's events for one window into what a surface reports. It takes them from the run loop while it lives.
class SDLEvents : public gui::SDLEventSink
{
public:
    SDLEvents(NativeSurfaceClient& client, SDL_Window* pWindow);
    ~SDLEvents();
    SDLEvents(const SDLEvents&) = delete;
    SDLEvents& operator=(const SDLEvents&) = delete;

    void onEvent(const gui::SDLEvent& event) override;

    bool isPointerInside() const { return _isPointerInside; }

private:
    void onWindow(const gui::SDLEvent& event);
    void onButton(const gui::SDLEvent& event);
    void onMotion(const gui::SDLEvent& event);
    void onWheel(const gui::SDLEvent& event);
    void onFinger(const gui::SDLEvent& event);
    void onKey(const gui::SDLEvent& event);
    void leave(const gui::SDLEvent& event, const td::Point<double>& point);

    NativeSurfaceClient& _client;
    SDL_Window* _pWindow;
    Pinch _pinch;
    bool _isPointerInside = false;
    bool _isDragging = false;
    bool _isLeavePending = false;      // until the drag is over
    std::shared_ptr<SDLEvents*> _self; // what outlives the client's answer to an event holds weakly
};

} // namespace gui::gl
