#include "OffscreenWindowSystem.h"

#include "OffscreenRunLoop.h"

#include <gui/NativeView.h>
#include <vo/Log.h>

#include <cstdlib>

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

class OffscreenWindow : public WindowPeer
{
public:
    OffscreenWindow(const td::Size<double>& size, float scale)
        : _size(size)
        , _scale(scale)
    {
    }

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
        _isFullScreen = isFullScreen;
        resizeView();
    }

private:
    void apply() const
    {
        if (auto* const pDrawable = static_cast<OffscreenDrawable*>(_pView->getNativeWindow()))
            *pDrawable = {getSize(), _scale};
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
    float _scale;
    bool _isFullScreen = false;
};

class OffscreenWindowSystem : public WindowSystem
{
public:
    const char* getName() const override { return "offscreen"; }
    RunLoop& getRunLoop() override { return _runLoop; }
    std::unique_ptr<WindowPeer> createWindow(const char*, const td::Size<double>& size) override
    {
        return std::make_unique<OffscreenWindow>(size, _scale);
    }
    float getMainDisplayScale() const override { return _scale; }

private:
    OffscreenRunLoop _runLoop;
    float _scale = scaleFromEnvironment();
};

} // namespace

std::unique_ptr<WindowSystem> createOffscreenWindowSystem() { return std::make_unique<OffscreenWindowSystem>(); }

} // namespace gui
