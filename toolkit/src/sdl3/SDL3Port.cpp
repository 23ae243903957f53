// What SDL3 does in its own way.

#include <gui/port/sdl/SDLPort.h>

#include "../sdl/SDLHints.h"

#include <gui/port/sdl/SDL.h>

#include <SDL3/SDL_main.h>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace gui::sdl
{

namespace
{

// SDL hands out memory of its own.
std::string takeText(char* pText)
{
    const std::string text = pText != nullptr ? pText : "";
    SDL_free(pText);
    return text;
}

} // namespace

bool start(const char* driver)
{
    SDL_SetMainReady();
    SDL_SetHintWithPriority(SDL_HINT_VIDEO_DRIVER, driver, SDL_HINT_OVERRIDE);
    giveHints();
    // A pen is a pointer, and not a finger as well.
    SDL_SetHint(SDL_HINT_PEN_TOUCH_EVENTS, "0");
    // SDL tells a size on X11 before the window has it, and the driver looks at the window.
    SDL_SetHint(SDL_HINT_VIDEO_SYNC_WINDOW_OPERATIONS, std::strcmp(driver, "x11") == 0 ? "1" : "0");
    return SDL_InitSubSystem(SDL_INIT_VIDEO);
}

bool loadOpenGL() { return SDL_GL_LoadLibrary(nullptr); }

// The clipboard.

bool setClipboardText(Clipboard::Kind kind, const std::string& text)
{
    return kind == Clipboard::Kind::Copied ? SDL_SetClipboardText(text.c_str())
                                           : SDL_SetPrimarySelectionText(text.c_str());
}

std::string getClipboardText(Clipboard::Kind kind)
{
    return takeText(kind == Clipboard::Kind::Copied ? SDL_GetClipboardText() : SDL_GetPrimarySelectionText());
}

bool hasClipboardText(Clipboard::Kind kind)
{
    return kind == Clipboard::Kind::Copied ? SDL_HasClipboardText() : SDL_HasPrimarySelectionText();
}

// Displays.

std::vector<DisplayInfo> getDisplays(const std::vector<float>*)
{
    std::vector<DisplayInfo> displays;
    SDL_DisplayID* const pIDs = SDL_GetDisplays(nullptr);
    for (const SDL_DisplayID* pID = pIDs; pID != nullptr && *pID != 0; ++pID)
    {
        SDL_Rect bounds{};
        const SDL_DisplayMode* const pMode = SDL_GetDesktopDisplayMode(*pID);
        const char* const name = SDL_GetDisplayName(*pID);
        if (!SDL_GetDisplayBounds(*pID, &bounds) || pMode == nullptr)
            continue;
        const td::PointAndSize<double> place{
            {static_cast<double>(bounds.x), static_cast<double>(bounds.y)},
            {static_cast<double>(bounds.w), static_cast<double>(bounds.h)},
        };
        // Of 1280 pixels at a scale of 1.5 there are 853 points: the density is what SDL makes of these. Wayland's
        // scales are 120ths.
        constexpr float cSteps = 120;
        const float scale = std::round(pMode->pixel_density * cSteps) / cSteps;
        displays.push_back(
            {name != nullptr ? name : "", place, scale > 0 ? scale : 1, static_cast<double>(pMode->refresh_rate)});
    }
    SDL_free(pIDs);
    // On Wayland none is the main one; the desktop begins at this.
    std::ranges::stable_partition(displays, [](const DisplayInfo& display)
                                  { return display.bounds.point == td::Point(0.0, 0.0); });
    return displays;
}

double getDisplayRate(SDL_Window* pWindow)
{
    const SDL_DisplayID display = pWindow != nullptr ? SDL_GetDisplayForWindow(pWindow) : SDL_GetPrimaryDisplay();
    const SDL_DisplayMode* const pMode = display != 0 ? SDL_GetCurrentDisplayMode(display) : nullptr;
    return pMode != nullptr ? static_cast<double>(pMode->refresh_rate) : 0;
}

ColorScheme getColorScheme()
{
    switch (SDL_GetSystemTheme())
    {
    case SDL_SYSTEM_THEME_LIGHT:
        return ColorScheme::Light;
    case SDL_SYSTEM_THEME_DARK:
        return ColorScheme::Dark;
    default:
        return ColorScheme::Unknown;
    }
}

SDL_Cursor* createCursor(Cursor::Type type)
{
    switch (type)
    {
    case Cursor::Type::Pan:
        return SDL_CreateSystemCursor(SDL_SYSTEM_CURSOR_MOVE);
    case Cursor::Type::Text:
        return SDL_CreateSystemCursor(SDL_SYSTEM_CURSOR_TEXT);
    default:
        return SDL_CreateSystemCursor(SDL_SYSTEM_CURSOR_DEFAULT);
    }
}

// Windows.

SDL_Window* createWindow(const td::Size<int>& size, bool isTransparent)
{
    constexpr SDL_WindowFlags cFlags =
        SDL_WINDOW_OPENGL | SDL_WINDOW_HIDDEN | SDL_WINDOW_RESIZABLE | SDL_WINDOW_HIGH_PIXEL_DENSITY;
    return SDL_CreateWindow("", size.width, size.height, cFlags | (isTransparent ? SDL_WINDOW_TRANSPARENT : 0));
}

void destroyWindow(SDL_Window* pWindow)
{
    SDL_HideWindow(pWindow);
    SDL_DestroyWindow(pWindow);
}

bool hasTransparentWindows() { return true; }

void* getData(SDL_Window* pWindow, const char* key)
{
    return SDL_GetPointerProperty(SDL_GetWindowProperties(pWindow), key, nullptr);
}

void setData(SDL_Window* pWindow, const char* key, void* pData)
{
    SDL_SetPointerProperty(SDL_GetWindowProperties(pWindow), key, pData);
}

td::Size<int> getPixelSize(SDL_Window* pWindow)
{
    td::Size<int> size;
    SDL_GetWindowSizeInPixels(pWindow, &size.width, &size.height);
    return size;
}

void setFullScreen(SDL_Window* pWindow, bool isFullScreen)
{
    // When it comes back maximised, SDL 3.2 gives it a size on Wayland that compositors end the program for.
    if (isFullScreen && isOnWayland() && (SDL_GetWindowFlags(pWindow) & SDL_WINDOW_MAXIMIZED) != 0)
        SDL_RestoreWindow(pWindow);
    SDL_SetWindowFullscreen(pWindow, isFullScreen);
    // What is asked for behind it, a size say, would be lost.
    if (!isFullScreen)
        SDL_SyncWindow(pWindow);
}

bool isVisible(SDL_Window* pWindow)
{
    constexpr SDL_WindowFlags cUnseen = SDL_WINDOW_HIDDEN | SDL_WINDOW_MINIMIZED | SDL_WINDOW_OCCLUDED;
    return (SDL_GetWindowFlags(pWindow) & cUnseen) == 0;
}

void setIcon(SDL_Window* pWindow, const td::Size<int>& size, unsigned char* bytes)
{
    constexpr int cBytes = 4;
    SDL_Surface* const pSurface =
        SDL_CreateSurfaceFrom(size.width, size.height, SDL_PIXELFORMAT_RGBA32, bytes, size.width * cBytes);
    SDL_SetWindowIcon(pWindow, pSurface);
    SDL_DestroySurface(pSurface);
}

std::optional<X11Window> getX11(SDL_Window* pWindow)
{
    const SDL_PropertiesID properties = SDL_GetWindowProperties(pWindow);
    void* const pDisplay = SDL_GetPointerProperty(properties, SDL_PROP_WINDOW_X11_DISPLAY_POINTER, nullptr);
    if (pDisplay == nullptr)
        return std::nullopt;
    const Sint64 window = SDL_GetNumberProperty(properties, SDL_PROP_WINDOW_X11_WINDOW_NUMBER, 0);
    return X11Window{static_cast<_XDisplay*>(pDisplay), static_cast<unsigned long>(window)};
}

wl_display* getWayland(SDL_Window* pWindow)
{
    return static_cast<wl_display*>(
        SDL_GetPointerProperty(SDL_GetWindowProperties(pWindow), SDL_PROP_WINDOW_WAYLAND_DISPLAY_POINTER, nullptr));
}

wl_surface* getWaylandSurface(SDL_Window* pWindow)
{
    return static_cast<wl_surface*>(
        SDL_GetPointerProperty(SDL_GetWindowProperties(pWindow), SDL_PROP_WINDOW_WAYLAND_SURFACE_POINTER, nullptr));
}

bool makeCurrent(SDL_Window* pWindow, void* context)
{
    return SDL_GL_MakeCurrent(pWindow, static_cast<SDL_GLContext>(context));
}

void deleteContext(void* context) { SDL_GL_DestroyContext(static_cast<SDL_GLContext>(context)); }

// Text: for each window.

void startTextInput(SDL_Window* pWindow, const SDL_Rect& caret)
{
    SDL_SetTextInputArea(pWindow, &caret, 0);
    if (!SDL_TextInputActive(pWindow))
        SDL_StartTextInput(pWindow);
}

void stopTextInput(SDL_Window* pWindow)
{
    if (SDL_TextInputActive(pWindow))
        SDL_StopTextInput(pWindow);
}

bool isTextInputActive()
{
    SDL_Window* const pWindow = SDL_GetKeyboardFocus();
    return pWindow != nullptr && SDL_TextInputActive(pWindow);
}

} // namespace gui::sdl
