#pragma once

#include "SDLEventQueue.h"

#include <gui/port/RunLoop.h>

#include <SDL_video.h>

#include <atomic>

namespace gui
{

/// A run loop on SDL's events. It hands the input to the sink of the event's window, and tells the native view in there
/// itself what becomes of the window.
class SDLRunLoop : public RunLoop
{
public:
    SDLRunLoop();
    ~SDLRunLoop() override;

    /// This window shows this view from now on; null for none.
    static void setView(SDL_Window* pWindow, NativeView* pView);
    /// Tells the window's sink, see SDLEventSink::onShow.
    static void tellShow(SDL_Window* pWindow, const td::Size<int>& size);

protected:
    void wait(const std::optional<Time>& until) override;
    void dispatchEvents() override;
    void wakeUp() override;
    double getDisplayRate(const NativeView* pView) const override;

private:
    void dispatch(const SDLEvent& event);
    /// @return whether the event is one of those that the window itself sees to
    bool onWindowEvent(SDL_Window* pWindow, NativeView* pView, const SDL_WindowEvent& event);

    SDLEventQueue _events;
    Uint32 _wakeUpType;
    std::atomic<bool> _isWakeUpPosted = false;
};

} // namespace gui
