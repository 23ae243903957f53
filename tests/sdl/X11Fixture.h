#pragma once

#include "RecordingView.h"
#include "WaitInLoop.h"
#include "XServer.h"

#include "support/CapturedLog.h"

#include <gui/Application.h>
#include <gui/Window.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace test
{

/// The server that the tests of this program share.
XServer& xServer();

/// A program in a real window, and a user of it: xdotool, from another process. A window manager without bindings runs.
class X11Fixture : public testing::Test
{
protected:
    X11Fixture();
    ~X11Fixture() override;

    /// Shows a view in the window and waits until the user sees it.
    void show(gui::Window& window, RecordingView& view, const char* title);
    /// A point of the window, as xdotool's mousemove takes it.
    static std::string at(const char* title, int x, int y);
    static void movePointerAway() { xdo("mousemove 1279 1023"); }
    /// Waits until the window shows the frame that the view draws.
    static testing::AssertionResult showsItsFrame(const char* title, RecordingView& view);

    CapturedLog log;
    gui::Application app{0, nullptr};
};

} // namespace test
