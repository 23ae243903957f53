#pragma once

#include "Desktop.h"
#include "RecordingView.h"
#include "WaitInLoop.h"

#include "support/CapturedLog.h"

#include <gui/Application.h>

#include <functional>
#include <string>

namespace test
{

/// A program in real windows, and a user of it in another process.
class DesktopFixture : public testing::Test
{
protected:
    DesktopFixture();
    ~DesktopFixture() override;

    /// Shows a view in the window at a place of the desktop, and waits until the user sees it.
    void show(ShownWindow& window, RecordingView& view, const char* title, int place = 0,
              gui::gl::Context::Animation animation = gui::gl::Context::Animation::Off);
    void show(gui::Window& window, RecordingView& view, const char* title, int place = 0);
    /// Waits until the screen shows the frame that the view draws, wherever that is.
    testing::AssertionResult showsItsFrame(RecordingView& view);
    /// The same with the frame that somebody else reads.
    testing::AssertionResult shows(const RecordingView& view, const std::function<Screenshot()>& readFrame);
    /// A point of the window that was seen last, as xdotool's mousemove takes it.
    std::string at(int x, int y) const;

    CapturedLog log;
    gui::Application app{0, nullptr};
    XServer::Place corner{}; ///< of the frame that was seen last
    int scale = 1;

private:
    void waitUntilSeen(RecordingView& view, const char* title, int place);
};

} // namespace test
