#pragma once

#include <gui/port/WindowSystem.h>
#include <gui/port/sdl/SDLEvent.h>

#include <string>
#include <vector>

namespace gui
{

/// A top-level window of SDL. It has one while it shows a view: the view's own.
class SDLWindow final : public WindowPeer
{
public:
    SDLWindow(const char* title, const td::Size<double>& size)
        : _title(title)
        , _size(size)
    {
    }
    ~SDLWindow() override;

    void show(NativeView* pView) override;
    void hide() override;
    void setTitle(const char* title) override;
    void setSize(const td::Size<double>& size) override;
    td::Size<double> getSize() const override;
    void setFullScreen(bool isFullScreen) override;
    bool isFullScreen() const override;
    void setState(Window::State state) override;
    Window::State getState() const override;
    void setMinSize(const td::Size<double>& size) override;
    void setPosition(const td::Point<double>& position) override;
    std::optional<td::Point<double>> getPosition() const override;
    void setIcon(const Texture& picture) override;

    /// Something has happened to SDL's window: says so when its state is another. What shows it may be gone then.
    static void follow(SDL_Window* pWindow, SDLEvent::Type type);

private:
    struct Icon
    {
        int width = 0;
        int height = 0;
        std::vector<unsigned char> bytes; // red, green, blue, alpha
    };

    void applySize() const;
    void applyMinSize() const;
    void applyIcon();

    SDL_Window* _pWindow = nullptr;
    NativeView* _pView = nullptr;
    std::string _title;
    td::Size<double> _size;
    td::Size<double> _minSize{1, 1};
    std::optional<td::Point<double>> _position; // that was set
    Icon _icon;
    Window::State _state = Window::State::Normal;     // what was asked for
    Window::State _toldState = Window::State::Normal; // that the program knows
    bool _wasMaximized = false;                       // before full screen
    bool _isSizePending = false;                      // one that was set in full screen
    bool _isPlacePending = false;                     // until there is a frame, and its size is known
};

} // namespace gui
