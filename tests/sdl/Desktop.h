#pragma once

#include "RecordingView.h"
#include "XServer.h"

#include <gui/Display.h>
#include <gui/Window.h>

#include <memory>
#include <string>
#include <vector>

namespace test
{

/// What shows a view on a desktop: a window of the library's, or of a host's.
class ShownWindow
{
public:
    virtual ~ShownWindow() = default;

    /// Makes the view's context, if it has none, and shows it. @return whether it does
    virtual bool show(RecordingView& view, gui::gl::Context::Animation animation) = 0;
    virtual void setSize(const td::Size<double>& size) = 0;
};

/// One of the library's.
class OwnWindow : public ShownWindow
{
public:
    OwnWindow(const char* title, const td::Size<double>& size)
        : window(title, size)
    {
    }
    bool show(RecordingView& view, gui::gl::Context::Animation animation) override
    {
        view.create(animation);
        return window.show(view);
    }
    void setSize(const td::Size<double>& size) override { window.setSize(size); }

    gui::Window window;
};

/// What runs windows on the screen of an X server of the test's own. The user of it is xdotool.
class Desktop
{
public:
    virtual ~Desktop() = default;

    virtual bool isOk() const = 0;
    virtual const XServer& server() const = 0;

    /// Two places for windows, 0 and 1, of at least 300 by 250 points: where they are on the server's screen.
    virtual XServer::Place area(int place) const = 0;
    /// The device pixels per point there.
    virtual int scale(int place) const = 0;
    /// What gui::Display is to know of it: bounds and scales.
    virtual std::vector<gui::DisplayInfo> displays() const
    {
        return {{"", {{0, 0}, {1280, 1024}}, 1, 0}};
    }
    /// Puts the pointer and the keyboard there, out of the way of windows.
    virtual void goTo(int place) const = 0;
    /// Brings a window there if it appears elsewhere. @return whether it is there, with the keyboard
    virtual bool bring(const std::string& title, int place) const = 0;
    /// @return false for other layouts than the ones it started with, if they cannot be changed any more
    virtual bool setLayouts(const std::string& layouts) const = 0;
    /// What a view that takes text hears of a dead acute, an e and the text of both, where an input method takes keys.
    /// @param ofKeys  what it hears where none does
    virtual std::vector<std::string> hearsComposed(const std::vector<std::string>& ofKeys) const { return ofKeys; }
    /// A window that isn't shown yet: one of the library's unless a host has another.
    virtual std::unique_ptr<ShownWindow> makeWindow(const char* title, const td::Size<double>& size) const;
};

/// That of the program's tests.
Desktop& desktop();

} // namespace test
