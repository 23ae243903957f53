#pragma once

#include "XServer.h"
#include "support/EventView.h"

#include <gui/gl/CurrentContext.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace test
{

/// Waits in the run loop for a view's next frame and reads it.
Screenshot grabFrame(gui::gl::View& view);

/// A view that writes down what it hears, and draws four fields of different colours.
class RecordingView : public EventView
{
public:
    /// Makes the context, with every kind of event but motion where nothing is pressed.
    void create(gui::gl::Context::Animation animation = gui::gl::Context::Animation::Off,
                const td::Size<double>& size = {300, 200});

    std::vector<std::string> lines;
    std::vector<td::Size<double>> sizes; ///< that onResize was told
    int nFrames = 0;
    int nFramesLeft = 1'000'000; ///< until an animation ends
    int nCleanUps = 0;
    bool isWrong = false;  ///< in a callback, somebody else's context; or a frame's corner, not as it had been drawn
    bool mayBeCut = false; ///< a window manager may take the window's size away under a frame: corners don't count
    std::uint32_t topLeft = 0xE02020; ///< the colour of the first field

    /// Waits in the run loop. @return whether the lines came to be these; they are forgotten
    testing::AssertionResult hasHeard(const std::vector<std::string>& expected);
    Screenshot grab() { return grabFrame(*this); }
    /// The same without the toolkit's help, in the device pixels of wherever the view is.
    Screenshot readPixels();
    /// In onDraw: what is drawn by now.
    static Screenshot readDrawn();

protected:
    void hear(const std::string& line) override;
    void onInit() override;
    void onDraw(const td::RectNormalized<double>& rect) override;
    void onResize(const td::Size<double>& size) override;
    void cleanResources() override;
    bool prepareNextFrame() override { return --nFramesLeft > 0; }

private:
    void checkContext() { isWrong = isWrong || gui::gl::CurrentContext::getID() != _context; }

    gui::gl::CurrentContext::ID _context = 0;
};

} // namespace test
