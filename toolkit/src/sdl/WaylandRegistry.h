#pragma once

struct wl_display;
struct wl_event_queue;
struct wl_registry;
struct wl_registry_listener;

namespace gui::sdl
{

/// What the compositor of SDL's connection has, for one who listens beside SDL, on a queue of its own, which what is
/// bound in it has as well. It goes after all of that.
class WaylandRegistry
{
public:
    /// @param pData  for the listener, which is told of what there is by the next dispatch
    WaylandRegistry(wl_display* pDisplay, const wl_registry_listener& listener, void* pData);
    ~WaylandRegistry();
    WaylandRegistry(const WaylandRegistry&) = delete;
    WaylandRegistry& operator=(const WaylandRegistry&) = delete;

    /// Hands out what has arrived. Does not wait, nor read from the compositor: SDL does.
    void dispatch();
    /// Waits until the compositor has answered all that was asked for.
    void waitForAnswers();
    /// Reads what the compositor has sent by now, and hands it out.
    void readWithoutWaiting();

private:
    wl_display* _pDisplay;
    wl_event_queue* _pQueue;
    wl_registry* _pRegistry;
};

} // namespace gui::sdl
