#pragma once

#include "Process.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

struct _XDisplay; // NOLINT(bugprone-reserved-identifier): Xlib's name

namespace test
{

/// A picture of a part of the screen: 0xRRGGBB, the first row the top one.
struct Screenshot
{
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> pixels;

    std::uint32_t at(int x, int y) const { return pixels[std::size_t(y) * std::size_t(width) + std::size_t(x)]; }
    bool operator==(const Screenshot&) const = default;
};

/// An X server of the test's own, without a screen that anybody sees. DISPLAY names it from then on.
class XServer
{
public:
    using Window = unsigned long;

    /// Frames per second, which it does not tell.
    static constexpr int cRate = 40;

    XServer();
    ~XServer();
    XServer(const XServer&) = delete;
    XServer& operator=(const XServer&) = delete;

    bool isOk() const { return _pDisplay != nullptr; }
    /// A window manager without any key or button bindings of its own. @return false when it does not start
    bool startWindowManager();

    /// A window by its title, wherever it is in the tree; 0 when there is none that is mapped.
    Window findWindow(const std::string& title) const;
    /// Where its content is on the screen.
    struct Place
    {
        int x;
        int y;
        int width;
        int height;
    };
    Place placeOf(Window window) const;
    /// Asks the window manager to turn states of a window, as a key of its own would: "_NET_WM_STATE_FULLSCREEN", say.
    void toggle(Window window, const char* state, const char* secondState = nullptr) const;
    /// As the close button of its frame does.
    void askToClose(Window window) const;
    bool hasFocus(Window window) const;
    /// A property of numbers of 32 bits; empty when there is none.
    std::vector<unsigned long> numbersOf(Window window, const char* property) const;

    /// What the screen shows there.
    Screenshot shoot(const Place& place) const;
    /// The first corner of what is seen of a colour in a part of the screen; where that ends when there is none.
    Place find(std::uint32_t color, const Place& part) const;
    /// The pointer's shape: a number that is the same for the same picture.
    std::uint64_t cursor() const;

    /// Layouts as setxkbmap takes them ("us,de").
    void setLayouts(const std::string& layouts) const;

private:
    Window findBelow(Window parent, const std::string& title) const;

    std::unique_ptr<Process> _pServer;
    std::unique_ptr<Process> _pWindowManager;
    std::string _configuration;
    _XDisplay* _pDisplay = nullptr;
    Window _root = 0;
};

/// xdotool with these arguments; they are split at spaces. It moves, resizes, minimises, maps and focuses windows too.
void xdo(const std::string& arguments);

} // namespace test
