#include "Surfaces.h"

#include "../offscreen/OffscreenSurface.h"
#ifdef GUIGL_SDL
#include "../sdl/SDLSurface.h"
#endif

#include <gui/port/WindowSystem.h>

#include <array>
#include <cstring>

namespace gui::gl
{

namespace
{

struct Entry
{
    const char* windowSystem;
    std::unique_ptr<NativeSurface> (*create)(NativeSurfaceClient& client, const PixelFormat& format,
                                             const td::Size<double>& size);
    void* (*getCursor)(gui::Cursor::Type type); // null: none
};

// By the names of the window systems. The last serves where no other does.
constexpr std::array cSurfaces{
#ifdef GUIGL_SDL
    Entry{"wayland", createSDLSurface, getSDLCursor},
    Entry{"x11", createSDLSurface, getSDLCursor},
#endif
    Entry{"offscreen", createOffscreenSurface, nullptr},
};

const Entry& entryInUse()
{
    const char* const name = gui::WindowSystem::instance().getName();
    for (const Entry& entry : cSurfaces)
        if (std::strcmp(entry.windowSystem, name) == 0)
            return entry;
    return cSurfaces.back();
}

} // namespace

SurfaceFactory getSurfaceFactory() { return entryInUse().create; }

void* getNativeCursor(gui::Cursor::Type type)
{
    const Entry& entry = entryInUse();
    return entry.getCursor != nullptr ? entry.getCursor(type) : nullptr;
}

} // namespace gui::gl
