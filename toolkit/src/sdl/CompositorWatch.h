#pragma once

#include <thread>

struct SDL_Window;

namespace gui
{

/// Ends the program when a Wayland compositor dies while SDL waits for it: SDL's own waits, in showing a window, go on
/// for ever then, at the whole speed of a processor. Nothing on other window systems.
class CompositorWatch
{
public:
    /// From now on. @param pWindow  of the connection to watch
    explicit CompositorWatch(SDL_Window* pWindow);
    /// Until now.
    ~CompositorWatch();
    CompositorWatch(const CompositorWatch&) = delete;
    CompositorWatch& operator=(const CompositorWatch&) = delete;

private:
    int _end = -1; // an eventfd
    std::thread _thread;
};

} // namespace gui
