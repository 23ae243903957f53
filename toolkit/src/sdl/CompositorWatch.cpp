#include "CompositorWatch.h"

#include <gui/port/sdl/SDLPort.h>
#include <vo/Log.h>

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>
#include <wayland-client.h>

#include <array>
#include <cstdlib>

namespace gui
{

namespace
{

void watch(int connection, int end)
{
    // Without events: what is told is that the other end has gone.
    std::array<pollfd, 2> both{{{end, POLLIN, 0}, {connection, 0, 0}}};
    while (poll(both.data(), both.size(), -1) < 0)
        ;
    constexpr int cGraceInMilliseconds = 1000; // for a wait that does end
    if (both[0].revents != 0 || poll(both.data(), 1, cGraceInMilliseconds) > 0)
        return;
    vo::dbgLog("ERROR! Application lost its display while it showed a window and ends at once");
    std::_Exit(1);
}

} // namespace

CompositorWatch::CompositorWatch(SDL_Window* pWindow)
{
    wl_display* const pDisplay = sdl::getWayland(pWindow);
    if (pDisplay == nullptr)
        return;
    _end = eventfd(0, EFD_CLOEXEC);
    if (_end >= 0)
        _thread = std::thread(watch, wl_display_get_fd(pDisplay), _end);
}

CompositorWatch::~CompositorWatch()
{
    if (_end < 0)
        return;
    eventfd_write(_end, 1);
    _thread.join();
    close(_end);
}

} // namespace gui
