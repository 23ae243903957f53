#include "SDLWindowSystem.h"

#include "SDLRunLoop.h"
#include "SDLWindow.h"
#include "WaylandProbe.h"

#include <gui/port/sdl/SDL.h>
#include <gui/port/sdl/SDLPort.h>
#include <vo/Log.h>

#include <optional>
#include <utility>

namespace gui
{

namespace
{

/// SDL's video, on while this lives.
class Video
{
public:
    explicit Video(const char* driver)
    {
        _isOn = sdl::start(driver);
        // Loaded once and for all: SDL would unload it with the last window, under contexts that are still alive.
        if (!_isOn || !sdl::loadOpenGL())
            return;
        // With no window at all SDL does not sleep, it polls.
        _pWindow = sdl::createWindow({1, 1}, false);
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
    SDLWindowSystem(std::unique_ptr<Video> pVideo, const char* name, const std::vector<float>* pScales)
        : _pVideo(std::move(pVideo))
        , _name(name)
    {
        const std::vector<DisplayInfo> displays = sdl::getDisplays(pScales);
        _scale = displays.empty() ? 1 : displays.front().scale;
    }

    const char* getName() const override { return _name; }
    RunLoop& getRunLoop() override { return _runLoop; }
    std::unique_ptr<WindowPeer> createWindow(const char* title, const td::Size<double>& size) override
    {
        return std::make_unique<SDLWindow>(title, size);
    }
    float getMainDisplayScale() const override { return _scale; }
    std::vector<DisplayInfo> getDisplays() const override { return sdl::getDisplays(); }
    ColorScheme getColorScheme() const override { return sdl::getColorScheme(); }

    bool setClipboardText(Clipboard::Kind kind, const std::string& text) override
    {
        return sdl::setClipboardText(kind, text);
    }
    std::string getClipboardText(Clipboard::Kind kind) override { return sdl::getClipboardText(kind); }
    bool hasClipboardText(Clipboard::Kind kind) override { return sdl::hasClipboardText(kind); }

private:
    std::unique_ptr<Video> _pVideo;
    SDLRunLoop _runLoop;
    const char* _name;
    float _scale = 1;
};

// @param name  of the window system, and of SDL's driver  @param pScales  see getDisplays
std::unique_ptr<WindowSystem> create(const char* name, const std::vector<float>* pScales = nullptr)
{
    auto pVideo = std::make_unique<Video>(name);
    if (!pVideo->isOk())
    {
        vo::dbgLog("Warning! WindowSystem %s does not start: %s", name, SDL_GetError());
        return nullptr;
    }
    return std::make_unique<SDLWindowSystem>(std::move(pVideo), name, pScales);
}

} // namespace

std::unique_ptr<WindowSystem> createX11WindowSystem() { return create("x11"); }

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
    return create("wayland", &probe->outputScales);
}

} // namespace gui
