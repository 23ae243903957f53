#include "WaylandRegistry.h"

#include <poll.h>
#include <wayland-client.h>

namespace gui::sdl
{

WaylandRegistry::WaylandRegistry(wl_display* pDisplay, const wl_registry_listener& listener, void* pData)
    : _pDisplay(pDisplay)
    , _pQueue(wl_display_create_queue(pDisplay))
{
    auto* const pWrapper = static_cast<wl_display*>(wl_proxy_create_wrapper(pDisplay));
    wl_proxy_set_queue(reinterpret_cast<wl_proxy*>(pWrapper), _pQueue);
    _pRegistry = wl_display_get_registry(pWrapper);
    wl_proxy_wrapper_destroy(pWrapper);
    wl_registry_add_listener(_pRegistry, &listener, pData);
}

WaylandRegistry::~WaylandRegistry()
{
    wl_registry_destroy(_pRegistry);
    wl_event_queue_destroy(_pQueue);
}

void WaylandRegistry::dispatch() { wl_display_dispatch_queue_pending(_pDisplay, _pQueue); }

void WaylandRegistry::waitForAnswers() { wl_display_roundtrip_queue(_pDisplay, _pQueue); }

void WaylandRegistry::readWithoutWaiting()
{
    while (wl_display_prepare_read_queue(_pDisplay, _pQueue) != 0)
        dispatch();
    pollfd descriptor{wl_display_get_fd(_pDisplay), POLLIN, 0};
    if (poll(&descriptor, 1, 0) > 0)
        wl_display_read_events(_pDisplay);
    else
        wl_display_cancel_read(_pDisplay);
    dispatch();
}

} // namespace gui::sdl
