#include "OffscreenWindowSystem.h"

#include "OffscreenRunLoop.h"

#include <gui/NativeView.h>
#include <gui/port/DisplayScale.h>
#include <gui/port/RunLoop.h>
#include <gui/port/offscreen/OffscreenDrawable.h>
#include <vo/Log.h>

#include <algorithm>
#include <cstdlib>
#include <utility>
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
    using State = Window::State;

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
        WindowSystem::instance().getRunLoop().setVisible(_pView, _state != State::Minimized);
        NativeView* const pShown = _pView;
        pShown->enteredWindow();
        if (_state != State::Normal && std::ranges::find(s_windows, this) != s_windows.end() && _pView == pShown)
            tellState(*pShown, _state);
    }

    void hide() override { WindowSystem::instance().getRunLoop().setVisible(std::exchange(_pView, nullptr), true); }

    void setTitle(const char*) override {}

    void setSize(const td::Size<double>& size) override
    {
        _size = size;
        resizeView();
    }

    td::Size<double> getSize() const override
    {
        return _state == State::Maximized || _state == State::FullScreen
                   ? cScreenSize
                   : td::Size<double>{std::max(_size.width, _minSize.width), std::max(_size.height, _minSize.height)};
    }

    void setFullScreen(bool isFullScreen) override
    {
        if (isFullScreen)
            setState(State::FullScreen);
        else if (_state == State::FullScreen)
            setState(_stateBefore);
    }
    bool isFullScreen() const override { return _state == State::FullScreen; }

    void setState(State state) override
    {
        if (_state == state)
            return;
        _stateBefore = std::exchange(_state, state) == State::Maximized ? State::Maximized : State::Normal;
        if (_pView == nullptr)
            return;
        WindowSystem::instance().getRunLoop().setVisible(_pView, state != State::Minimized);
        NativeView* const pView = _pView;
        resizeView();
        if (std::ranges::find(s_windows, this) != s_windows.end() && pView == _pView)
            tellState(*pView, state);
    }
    State getState() const override { return _state; }

    void setMinSize(const td::Size<double>& size) override
    {
        _minSize = size;
        resizeView();
    }
    void setPosition(const td::Point<double>& position) override { _position = position; }
    std::optional<td::Point<double>> getPosition() const override { return _position; }

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
    td::Size<double> _minSize;
    std::optional<td::Point<double>> _position;
    State _state = State::Normal;
    State _stateBefore = State::Normal;
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
    std::vector<DisplayInfo> getDisplays() const override
    {
        constexpr double cRate = 60;
        return {{getName(), {{0, 0}, cScreenSize}, s_scale, cRate}};
    }

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
