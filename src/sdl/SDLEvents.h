#pragma once

#include "Pinch.h"

#include <gui/port/sdl/SDL.h>
#include <gui/port/sdl/SDLEvent.h>

#include <td/Point.h>

#include <memory>
#include <string_view>

namespace gui::gl
{

class NativeSurfaceClient;
class SDLContext;

/// Turns SDL's events for a context's window into what a surface reports. It takes them from the run loop while it
/// lives.
class SDLEvents : public gui::SDLEventSink
{
public:
    SDLEvents(NativeSurfaceClient& client, SDLContext& context);
    ~SDLEvents();
    SDLEvents(const SDLEvents&) = delete;
    SDLEvents& operator=(const SDLEvents&) = delete;

    void onEvent(const gui::SDLEvent& event) override;
    void onShow(const td::Size<int>& size) override;

    bool isPointerInside() const { return _isPointerInside; }

    void setTextInput(bool isOn);
    /// @param rect  in points of the window
    void setTextInputRect(const SDL_Rect& rect);

private:
    void onPointer(const gui::SDLEvent& event);
    void onFocus(bool hasFocus);
    void onButton(const gui::SDLEvent& event);
    void onMotion(const gui::SDLEvent& event);
    void onWheel(const gui::SDLEvent& event);
    void onFinger(const gui::SDLEvent& event);
    void onKey(const gui::SDLEvent& event);
    void onText(const gui::SDLEvent& event);
    void onComposition(std::string_view text, int start, int nSelected);
    void switchTextInput() const;
    bool hasKeyboard() const;
    void leave(const gui::SDLEvent& event, const td::Point<double>& point);

    NativeSurfaceClient& _client;
    SDLContext& _context;
    Pinch _pinch;
    SDL_Rect _textInputRect{0, 0, 1, 1};
    bool _takesText = false;
    bool _isPointerInside = false;
    bool _isDragging = false;
    bool _isLeavePending = false;      // until the drag is over
    std::shared_ptr<SDLEvents*> _self; // what outlives the client's answer to an event holds weakly
};

} // namespace gui::gl
