#include "SDLWindowSystem.h"

#include "SDLRunLoop.h"
#include "SDLWindow.h"
#include "WaylandProbe.h"

#include <vo/Log.h>

// A library must not take main away from its programs.
#define SDL_MAIN_HANDLED
#include <SDL.h>

#include <algorithm>
#include <cstring>
#include <optional>

namespace gui
{

namespace
{

void giveHints(const char* driver)
{
    SDL_SetHintWithPriority(SDL_HINT_VIDEODRIVER, driver, SDL_HINT_OVERRIDE);
    SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
    // SDL's choices are those of a game; these are a desktop program's.
    SDL_SetHint(SDL_HINT_VIDEO_ALLOW_SCREENSAVER, "1");
    SDL_SetHint(SDL_HINT_VIDEO_X11_NET_WM_BYPASS_COMPOSITOR, "0");
    SDL_SetHint(SDL_HINT_VIDEO_MINIMIZE_ON_FOCUS_LOSS, "0");
    SDL_SetHint(SDL_HINT_MOUSE_FOCUS_CLICKTHROUGH, "1");
    SDL_SetHint(SDL_HINT_QUIT_ON_LAST_WINDOW_CLOSE, "0");
    // Compositions come whole, and candidates are the input method's to show.
    SDL_SetHint(SDL_HINT_IME_SUPPORT_EXTENDED_TEXT, "1");
    SDL_SetHint(SDL_HINT_IME_SHOW_UI, "1");
}

/// SDL's video, on while this lives.
class Video
{
public:
    explicit Video(const char* driver)
    {
        SDL_SetMainReady();
        giveHints(driver);
        if (SDL_InitSubSystem(SDL_INIT_VIDEO) != 0)
            return;
        _isOn = true;
        SDL_StopTextInput();
        // Loaded once and for all: SDL would unload it with the last window, under contexts that are still alive.
        if (SDL_GL_LoadLibrary(nullptr) != 0)
            return;
        // With no window at all SDL does not sleep, it polls.
        _pWindow = SDL_CreateWindow("", 0, 0, 1, 1, SDL_WINDOW_HIDDEN);
    }
    Video(const Video&) = delete;
    Video& operator=(const Video&) = delete;
    ~Video()
    {
        if (_pWindow != nullptr)
            SDL_DestroyWindow(_pWindow);
        if (_isOn)
            SDL_QuitSubSystem(SDL_INIT_VIDEO);
    }

    bool isOk() const { return _pWindow != nullptr; }

private:
    bool _isOn = false;
    SDL_Window* _pWindow = nullptr;
};

class SDLWindowSystem : public WindowSystem
{
public:
    SDLWindowSystem(std::unique_ptr<Video> pVideo, const char* name, float scale)
        : _pVideo(std::move(pVideo))
        , _name(name)
        , _scale(scale)
    {
    }

    const char* getName() const override { return _name; }
    RunLoop& getRunLoop() override { return _runLoop; }
    std::unique_ptr<WindowPeer> createWindow(const char* title, const td::Size<double>& size) override
    {
        return std::make_unique<SDLWindow>(title, size);
    }
    float getMainDisplayScale() const override { return _scale; }
    std::vector<DisplayInfo> getDisplays() const override;

    bool setClipboardText(Clipboard::Kind kind, const std::string& text) override
    {
        if (kind == Clipboard::Kind::Copied)
            return SDL_SetClipboardText(text.c_str()) == 0;
#if SDL_VERSION_ATLEAST(2, 26, 0)
        return SDL_SetPrimarySelectionText(text.c_str()) == 0;
#else
        return false;
#endif
    }
    std::string getClipboardText(Clipboard::Kind kind) override
    {
        char* pText = nullptr;
        if (kind == Clipboard::Kind::Copied)
            pText = SDL_GetClipboardText();
#if SDL_VERSION_ATLEAST(2, 26, 0)
        else
            pText = SDL_GetPrimarySelectionText();
#endif
        const std::string text = pText != nullptr ? pText : "";
        SDL_free(pText);
        return text;
    }
    bool hasClipboardText(Clipboard::Kind kind) override
    {
        if (kind == Clipboard::Kind::Copied)
            return SDL_HasClipboardText() == SDL_TRUE;
#if SDL_VERSION_ATLEAST(2, 26, 0)
        return SDL_HasPrimarySelectionText() == SDL_TRUE;
#else
        return false;
#endif
    }

private:
    std::unique_ptr<Video> _pVideo;
    SDLRunLoop _runLoop;
    const char* _name;
    float _scale;
};

std::vector<DisplayInfo> SDLWindowSystem::getDisplays() const
{
    // SDL keeps the outputs in the order in which the compositor names them, and their scales to itself.
    std::vector<float> scales;
    if (std::strcmp(_name, "wayland") == 0)
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

// @param name  of the window system, and of SDL's driver
std::unique_ptr<WindowSystem> create(const char* name, float scale)
{
    auto pVideo = std::make_unique<Video>(name);
    if (!pVideo->isOk())
    {
        vo::dbgLog("Warning! WindowSystem %s does not start: %s", name, SDL_GetError());
        return nullptr;
    }
    return std::make_unique<SDLWindowSystem>(std::move(pVideo), name, scale);
}

} // namespace

std::unique_ptr<WindowSystem> createX11WindowSystem() { return create("x11", 1); }

std::unique_ptr<WindowSystem> createWaylandWindowSystem()
{
    const std::optional<WaylandProbe> probe = WaylandProbe::ask();
    if (!probe || !probe->hasCompositor || !probe->hasSeat || !probe->hasShell)
    {
        vo::dbgLog("Warning! WindowSystem wayland does not start: %s", !probe ? "no compositor answers"
                                                                       : !probe->hasSeat
                                                                           ? "the compositor has no seat"
                                                                           : "the compositor has no windows");
        return nullptr;
    }
    return create("wayland", probe->outputScales.empty() ? 1 : probe->outputScales.front());
}

} // namespace gui
