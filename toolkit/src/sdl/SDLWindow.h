#pragma once

#include <gui/port/WindowSystem.h>

#include <SDL_video.h>

#include <string>

namespace gui
{

/// A top-level window of SDL. It has one while it shows a view: the view's own.
class SDLWindow : public WindowPeer
{
public:
    SDLWindow(const char* title, const td::Size<double>& size)
        : _title(title)
        , _size(size)
    {
    }

    void show(NativeView* pView) override;
    void hide() override;
    void setTitle(const char* title) override;
    void setSize(const td::Size<double>& size) override;
    td::Size<double> getSize() const override;
    void setFullScreen(bool isFullScreen) override;
    bool isFullScreen() const override;

private:
    void applySize() const;

    SDL_Window* _pWindow = nullptr;
    std::string _title;
    td::Size<double> _size;
    bool _isFullScreen = false;  // what was asked for
    bool _wasMaximized = false;  // before it
    bool _isSizePending = false; // one that was set in full screen
};

} // namespace gui
