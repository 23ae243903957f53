#pragma once

#include "../RunLoop.h"
#include "SDLEventQueue.h"

#include <SDL_video.h>

#include <atomic>

namespace gui
{

/// A run loop on SDL's events. It finds the native view by the event's window, hands it the input as SDLEvent, and takes
/// care of the window's own events itself.
class SDLRunLoop : public RunLoop
{
public:
    SDLRunLoop();
    ~SDLRunLoop() override;

    /// Events of this window are for this view from now on; null for nobody.
    static void setView(SDL_Window* pWindow, NativeView* pView);

protected:
    void wait(const std::optional<Time>& until) override;
    void dispatchEvents() override;
    void wakeUp() override;
    double getDisplayRate(const NativeView* pView) const override;

private:
    void dispatch(const SDLEvent& event);
    void onWindowEvent(SDL_Window* pWindow, NativeView* pView, const SDLEvent& event);

    SDLEventQueue _events;
    Uint32 _wakeUpType;
    std::atomic<bool> _isWakeUpPosted = false;
};

} // namespace gui
