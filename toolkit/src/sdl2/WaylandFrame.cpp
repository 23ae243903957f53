#include "WaylandFrame.h"

#include <SDL_syswm.h>
#include <SDL_version.h>
#include <dlfcn.h>
#include <wayland-client.h>

namespace gui::sdl
{

void destroyWaylandFrame([[maybe_unused]] SDL_Window* pWindow)
{
#ifdef SDL_VIDEO_DRIVER_WAYLAND
    // SDL 2.26 destroys a window without the frame that libdecor drew around it. The compositor goes on telling it of
    // its state, which ends up in the memory that the window had; and a surface that goes before what made a window of
    // it is an error to some compositors and the end of others.
    SDL_version version{};
    SDL_GetVersion(&version);
    if (version.major != 2 || version.minor != 26)
        return;
    SDL_SysWMinfo info{};
    SDL_VERSION(&info.version)
    if (SDL_GetWindowWMInfo(pWindow, &info) == SDL_FALSE || info.subsystem != SDL_SYSWM_WAYLAND ||
        info.info.wl.xdg_toplevel == nullptr)
        return;
    // A hidden window that still has one is one of libdecor's, which hands the frame to those who listen.
    using Unref = void (*)(void*);
    if (auto* const unref = reinterpret_cast<Unref>(dlsym(RTLD_DEFAULT, "libdecor_frame_unref")))
        unref(wl_proxy_get_user_data(reinterpret_cast<wl_proxy*>(info.info.wl.xdg_toplevel)));
#endif
}

} // namespace gui::sdl
