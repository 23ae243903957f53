#include "OffscreenWindowSystem.h"

#include "OffscreenRunLoop.h"

#include <gui/NativeView.h>
#include <gui/port/DisplayScale.h>
#include <gui/port/offscreen/OffscreenDrawable.h>
#include <vo/Log.h>

#include <algorithm>
#include <cstdlib>
#include <vector>

namespace gui
{

namespace
{

// What a full-screen window covers where there is no screen.
constexpr td::Size<double> cScreenSize{1920, 1080};

float scaleFromEnvironment()
{
    constexpr double cLargestScale = 8;
    const char* const text = std::getenv("GUIGL_SCALE");
    if (text == nullptr)
        return 1;
    char* pEnd = nullptr;
    const double scale = std::strtod(text, &pEnd);
    if (pEnd != text && *pEnd == '\0' && scale >= 1 && scale <= cLargestScale)
        return static_cast<float>(scale);
    vo::dbgLog("Warning! OffscreenWindowSystem GUIGL_SCALE=%s is not from 1 to 8 and will be ignored", text);
    return 1;
}

class OffscreenWindow;

// What stands for the screen: its device pixels per point, and the windows on it.
float s_scale = 1;
std::vector<OffscreenWindow*> s_windows;

class OffscreenWindow : public WindowPeer
{
public:
    explicit OffscreenWindow(const td::Size<double>& size)
        : _size(size)
    {
        s_windows.push_back(this);
    }
    OffscreenWindow(const OffscreenWindow&) = delete;
    OffscreenWindow& operator=(const OffscreenWindow&) = delete;
    ~OffscreenWindow() override { std::erase(s_windows, this); }

    void show(NativeView* pView) override
    {
        _pView = pView;
        apply();
        _pView->enteredWindow();
    }

    void hide() override { _pView = nullptr; }

    void setTitle(const char*) override {}

    void setSize(const td::Size<double>& size) override
    {
        _size = size;
        resizeView();
    }

    td::Size<double> getSize() const override { return _isFullScreen ? cScreenSize : _size; }

    void setFullScreen(bool isFullScreen) override
    {
        if (_isFullScreen == isFullScreen)
            return;
        _isFullScreen = isFullScreen;
        resizeView();
    }
    bool isFullScreen() const override { return _isFullScreen; }

    void followScale() const
    {
        if (_pView == nullptr)
            return;
        apply();
        _pView->scaleChanged();
    }

private:
    void apply() const
    {
        if (auto* const pDrawable = static_cast<OffscreenDrawable*>(_pView->getNativeWindow()))
            *pDrawable = {getSize(), s_scale};
    }

    void resizeView() const
    {
        if (_pView == nullptr)
            return;
        apply();
        _pView->sizeChanged();
    }

    NativeView* _pView = nullptr;
    td::Size<double> _size;
    bool _isFullScreen = false;
};

class OffscreenWindowSystem : public WindowSystem
{
public:
    OffscreenWindowSystem() { s_scale = scaleFromEnvironment(); }

    const char* getName() const override { return "offscreen"; }
    RunLoop& getRunLoop() override { return _runLoop; }
    std::unique_ptr<WindowPeer> createWindow(const char*, const td::Size<double>& size) override
    {
        return createOffscreenWindow(size);
    }
    float getMainDisplayScale() const override { return s_scale; }

private:
    OffscreenRunLoop _runLoop;
};

} // namespace

void setOffscreenScale(float scale)
{
    s_scale = scale;
    setDefaultBackingScaleFactor(scale);
    // A copy: what a view does when it hears of it may open and close windows.
    const std::vector<OffscreenWindow*> windows = s_windows;
    for (const OffscreenWindow* const pWindow : windows)
        if (std::ranges::find(s_windows, pWindow) != s_windows.end())
            pWindow->followScale();
}

std::unique_ptr<WindowPeer> createOffscreenWindow(const td::Size<double>& size)
{
    return std::make_unique<OffscreenWindow>(size);
}

std::unique_ptr<WindowSystem> createOffscreenWindowSystem() { return std::make_unique<OffscreenWindowSystem>(); }

} // namespace gui
