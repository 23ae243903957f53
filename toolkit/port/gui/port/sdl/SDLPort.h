#pragma once

#include <gui/Clipboard.h>
#include <gui/ColorScheme.h>
#include <gui/Cursor.h>
#include <gui/Display.h>
#include <td/Export.h>
#include <td/Size.h>

#include <optional>
#include <string>
#include <vector>

struct SDL_Cursor;
struct SDL_Rect;
struct SDL_Window;
struct _XDisplay; // NOLINT(bugprone-reserved-identifier): Xlib's name
struct wl_display;
struct wl_surface;

/// What SDL2 and SDL3 do each in its own way. The rest of SDL goes by the same names in both, and is called by them.
namespace gui::sdl
{

// Bits of SDL_Keymod.
constexpr unsigned int cShift = 0x0003, cCtrl = 0x00C0, cAlt = 0x0300, cRightAlt = 0x0200, cLogo = 0x0C00,
                       cNumLock = 0x1000, cCapsLock = 0x2000, cMode = 0x4000;

/// Starts SDL's video with this driver, with what a desktop program wants of it. @return whether it runs; SDL_GetError
/// says why not
bool start(const char* driver);
bool loadOpenGL();

bool setClipboardText(Clipboard::Kind kind, const std::string& text);
std::string getClipboardText(Clipboard::Kind kind);
bool hasClipboardText(Clipboard::Kind kind);

/// What is dropped is told from now on, by all windows.
GUIGL_API void acceptDrops();
/// @param pScales  those of Wayland's outputs, where they are known already: SDL2 has to ask the compositor itself
GUIGL_API std::vector<DisplayInfo> getDisplays(const std::vector<float>* pScales = nullptr);
/// Frames per second of the display that the window is on, of the main one for null; 0 when SDL doesn't know.
double getDisplayRate(SDL_Window* pWindow);
ColorScheme getColorScheme();
/// As the environment variable SDL_VIDEODRIVER would have it: "x11" or "wayland".
GUIGL_API bool isOnWayland();
/// SDL's own cursor of a shape, to be kept.
GUIGL_API SDL_Cursor* createCursor(Cursor::Type type);

/// A hidden window for OpenGL, with the attributes that were set; null when there is none.
/// @param isTransparent  whether the desktop shows through, where it can
GUIGL_API SDL_Window* createWindow(const td::Size<int>& size, bool isTransparent);
/// Also one that may have been shown.
GUIGL_API void destroyWindow(SDL_Window* pWindow);
/// Whether windows that the desktop shows through are to be had.
GUIGL_API bool hasTransparentWindows();

/// What is kept with a window, by a name that is a literal.
GUIGL_API void* getData(SDL_Window* pWindow, const char* key);
GUIGL_API void setData(SDL_Window* pWindow, const char* key, void* pData);

GUIGL_API td::Size<int> getPixelSize(SDL_Window* pWindow);
void setFullScreen(SDL_Window* pWindow, bool isFullScreen);
bool isFullScreen(SDL_Window* pWindow); ///< as SDL has it
bool isVisible(SDL_Window* pWindow);    ///< whether there may be somebody who sees it
/// @param bytes  red, green, blue and alpha of each pixel
void setIcon(SDL_Window* pWindow, const td::Size<int>& size, unsigned char* bytes);

/// What a window is on an X11 server.
struct X11Window
{
    _XDisplay* pDisplay;
    unsigned long window;
};
GUIGL_API std::optional<X11Window> getX11(SDL_Window* pWindow); ///< nothing on other window systems
GUIGL_API wl_display* getWayland(SDL_Window* pWindow);          ///< null on other window systems
wl_surface* getWaylandSurface(SDL_Window* pWindow);             ///< the same

/// The context, an SDL_GLContext, may be null. @return whether it is current
GUIGL_API bool makeCurrent(SDL_Window* pWindow, void* context);
GUIGL_API void deleteContext(void* context);

/// The window, which has the keyboard, takes text from now on. @param caret  in points of the window
GUIGL_API void startTextInput(SDL_Window* pWindow, const SDL_Rect& caret);
/// Where no window has the keyboard, for all of them.
GUIGL_API void stopTextInput(SDL_Window* pWindow);
GUIGL_API bool isTextInputActive();

} // namespace gui::sdl
