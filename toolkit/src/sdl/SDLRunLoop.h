#pragma once

#include "SDLEventQueue.h"
#include "WaylandPresentation.h"
#include "X11Presentation.h"

#include <gui/port/RunLoop.h>

#include <atomic>
#include <cstdint>
#include <memory>

namespace gui
{

/// A run loop on SDL's events. It hands the input to the sink of the event's window, and tells the native view in there
/// itself what becomes of the window. What the pointer does between two frames of the display is one motion, at the
/// next: a view that draws what it hears of would draw what nobody sees, and be late for the frame that is seen.
class SDLRunLoop : public RunLoop
{
public:
    SDLRunLoop();
    ~SDLRunLoop() override;

    /// This window shows this view from now on; null for none.
    static void setView(SDL_Window* pWindow, NativeView* pView);
    /// Tells the window's sink, see SDLEventSink::onShow.
    static void tellShow(SDL_Window* pWindow, const td::Size<int>& size);
    /// See gui::awaitPresentation.
    void await(SDL_Window* pWindow);

protected:
    void wait(const std::optional<Time>& until) override;
    void dispatchEvents() override;
    void wakeUp() override;
    double getDisplayRate(const NativeView* pView) const override;

private:
    /// Whether there is an event that does not wait for the next frame.
    bool isEventDue() const;
    /// One is handed out: the next waits for another frame.
    void putOffMotions(const NativeView* pView);
    void onShown(std::uint32_t windowID, Time shown, Clock::duration refresh);
    void dispatch(const SDLEvent& event);
    /// @return whether the event is one of those that the window itself sees to
    bool onWindowEvent(SDL_Window* pWindow, NativeView* pView, SDLEvent::Type type);

    SDLEventQueue _events;
    std::unique_ptr<WaylandPresentation> _pWaylandPresentation; // from the first frame on that is awaited
    std::unique_ptr<X11Presentation> _pX11Presentation;         // the same
    Time _nextMotion{};
    std::uint32_t _wakeUpType;
    std::atomic<bool> _isWakeUpPosted = false;
};

} // namespace gui
