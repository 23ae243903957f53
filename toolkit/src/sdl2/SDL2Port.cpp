// What SDL2 does in its own way.

#include <gui/port/sdl/SDLPort.h>

#include "../sdl/SDLHints.h"
#include "../sdl/WaylandProbe.h"
#include "WaylandFrame.h"

#include <gui/port/sdl/SDL.h>

#include <SDL_syswm.h>

#include <algorithm>
#include <optional>

namespace gui::sdl
{

namespace
{

// Nothing on another window system.
std::optional<SDL_SysWMinfo> infoOf(SDL_Window* pWindow, SDL_SYSWM_TYPE system)
{
    SDL_SysWMinfo info;
    SDL_VERSION(&info.version);
    return SDL_GetWindowWMInfo(pWindow, &info) && info.subsystem == system ? std::optional(info) : std::nullopt;
}

} // namespace

bool start(const char* driver)
{
    SDL_SetMainReady();
    SDL_SetHintWithPriority(SDL_HINT_VIDEODRIVER, driver, SDL_HINT_OVERRIDE);
    giveHints();
    // Compositions come whole, and candidates are the input method's to show.
    SDL_SetHint(SDL_HINT_IME_SUPPORT_EXTENDED_TEXT, "1");
    SDL_SetHint(SDL_HINT_IME_SHOW_UI, "1");
    if (SDL_InitSubSystem(SDL_INIT_VIDEO) != 0)
        return false;
    SDL_StopTextInput(); // it is on at the start
    return true;
}

bool loadOpenGL() { return SDL_GL_LoadLibrary(nullptr) == 0; }

// The clipboard.

bool setClipboardText(Clipboard::Kind kind, const std::string& text)
{
    if (kind == Clipboard::Kind::Copied)
        return SDL_SetClipboardText(text.c_str()) == 0;
#if SDL_VERSION_ATLEAST(2, 26, 0)
    return SDL_SetPrimarySelectionText(text.c_str()) == 0;
#else
    return false;
#endif
}

std::string getClipboardText(Clipboard::Kind kind)
{
    char* pText = nullptr;
    if (kind == Clipboard::Kind::Copied)
        pText = SDL_GetClipboardText();
#if SDL_VERSION_ATLEAST(2, 26, 0)
    else
        pText = SDL_GetPrimarySelectionText();
#endif
    std::string text = pText != nullptr ? pText : "";
    SDL_free(pText);
    return text;
}

bool hasClipboardText(Clipboard::Kind kind)
{
    if (kind == Clipboard::Kind::Copied)
        return SDL_HasClipboardText() == SDL_TRUE;
#if SDL_VERSION_ATLEAST(2, 26, 0)
    return SDL_HasPrimarySelectionText() == SDL_TRUE;
#else
    return false;
#endif
}

// Displays.

std::vector<DisplayInfo> getDisplays(const std::vector<float>* pScales)
{
    // SDL keeps the outputs in the order in which the compositor names them, and their scales to itself.
    std::vector<float> scales;
    if (pScales != nullptr)
        scales = *pScales;
    else if (isOnWayland())
        if (const std::optional<WaylandProbe> probe = WaylandProbe::ask())
            scales = probe->outputScales;
    std::vector<DisplayInfo> displays;
    const int nDisplays = SDL_GetNumVideoDisplays();
    scales.resize(static_cast<std::size_t>(std::max(nDisplays, 0)), 1);
    for (int i = 0; i < nDisplays; ++i)
    {
        SDL_Rect bounds{};
        SDL_DisplayMode mode{};
        const char* const name = SDL_GetDisplayName(i);
        if (SDL_GetDisplayBounds(i, &bounds) != 0 || SDL_GetDesktopDisplayMode(i, &mode) != 0)
            continue;
        const td::PointAndSize<double> place{
            {static_cast<double>(bounds.x), static_cast<double>(bounds.y)},
            {static_cast<double>(bounds.w), static_cast<double>(bounds.h)},
        };
        displays.push_back({name != nullptr ? name : "", place, scales[static_cast<std::size_t>(i)],
                            static_cast<double>(mode.refresh_rate)});
    }
    return displays;
}

double getDisplayRate(SDL_Window* pWindow)
{
    const int display = pWindow != nullptr ? SDL_GetWindowDisplayIndex(pWindow) : 0;
    SDL_DisplayMode mode{};
    return display >= 0 && SDL_GetCurrentDisplayMode(display, &mode) == 0 ? mode.refresh_rate : 0;
}

ColorScheme getColorScheme() { return ColorScheme::Unknown; }

SDL_Cursor* createCursor(Cursor::Type type)
{
    switch (type)
    {
    case Cursor::Type::Pan:
        return SDL_CreateSystemCursor(SDL_SYSTEM_CURSOR_SIZEALL);
    case Cursor::Type::Text:
        return SDL_CreateSystemCursor(SDL_SYSTEM_CURSOR_IBEAM);
    default:
        return SDL_CreateSystemCursor(SDL_SYSTEM_CURSOR_ARROW);
    }
}

// Windows.

SDL_Window* createWindow(const td::Size<int>& size, bool isTransparent)
{
    constexpr Uint32 cFlags = SDL_WINDOW_OPENGL | SDL_WINDOW_HIDDEN | SDL_WINDOW_RESIZABLE | SDL_WINDOW_ALLOW_HIGHDPI;
    SDL_SetHint(SDL_HINT_VIDEO_EGL_ALLOW_TRANSPARENCY, isTransparent ? "1" : "0");
    return SDL_CreateWindow("", SDL_WINDOWPOS_UNDEFINED, SDL_WINDOWPOS_UNDEFINED, size.width, size.height, cFlags);
}

void destroyWindow(SDL_Window* pWindow)
{
    SDL_HideWindow(pWindow);
    destroyWaylandFrame(pWindow);
    SDL_DestroyWindow(pWindow);
}

bool hasTransparentWindows() { return isOnWayland(); }

void* getData(SDL_Window* pWindow, const char* key) { return SDL_GetWindowData(pWindow, key); }

void setData(SDL_Window* pWindow, const char* key, void* pData) { SDL_SetWindowData(pWindow, key, pData); }

td::Size<int> getPixelSize(SDL_Window* pWindow)
{
    td::Size<int> size;
    SDL_GL_GetDrawableSize(pWindow, &size.width, &size.height);
    return size;
}

void setFullScreen(SDL_Window* pWindow, bool isFullScreen)
{
    SDL_SetWindowFullscreen(pWindow, isFullScreen ? SDL_WINDOW_FULLSCREEN_DESKTOP : 0);
}

bool isVisible(SDL_Window* pWindow)
{
    return (SDL_GetWindowFlags(pWindow) & (SDL_WINDOW_HIDDEN | SDL_WINDOW_MINIMIZED)) == 0;
}

void setIcon(SDL_Window* pWindow, const td::Size<int>& size, unsigned char* bytes)
{
    constexpr int cBits = 32, cBytes = 4;
    SDL_Surface* const pSurface = SDL_CreateRGBSurfaceWithFormatFrom(bytes, size.width, size.height, cBits,
                                                                     size.width * cBytes, SDL_PIXELFORMAT_RGBA32);
    SDL_SetWindowIcon(pWindow, pSurface);
    SDL_FreeSurface(pSurface);
}

std::optional<X11Window> getX11(SDL_Window* pWindow)
{
    const std::optional<SDL_SysWMinfo> info = infoOf(pWindow, SDL_SYSWM_X11);
    return info ? std::optional(X11Window{info->info.x11.display, info->info.x11.window}) : std::nullopt;
}

wl_display* getWayland(SDL_Window* pWindow)
{
    const std::optional<SDL_SysWMinfo> info = infoOf(pWindow, SDL_SYSWM_WAYLAND);
    return info ? info->info.wl.display : nullptr;
}

wl_surface* getWaylandSurface(SDL_Window* pWindow)
{
    const std::optional<SDL_SysWMinfo> info = infoOf(pWindow, SDL_SYSWM_WAYLAND);
    return info ? info->info.wl.surface : nullptr;
}

bool makeCurrent(SDL_Window* pWindow, void* context) { return SDL_GL_MakeCurrent(pWindow, context) == 0; }

void deleteContext(void* context) { SDL_GL_DeleteContext(context); }

// Text: for all windows or none.

void startTextInput(SDL_Window*, const SDL_Rect& caret)
{
    SDL_StartTextInput();
    SDL_SetTextInputRect(&caret);
}

void stopTextInput(SDL_Window*) { SDL_StopTextInput(); }

bool isTextInputActive() { return SDL_IsTextInputActive() == SDL_TRUE; }

} // namespace gui::sdl
