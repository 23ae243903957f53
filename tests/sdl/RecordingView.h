#pragma once

#include "XServer.h"

#include <gui/InputDevice.h>
#include <gui/Key.h>
#include <gui/Texture.h>
#include <gui/gl/CurrentContext.h>
#include <gui/gl/View.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace test
{

/// Waits in the run loop for a view's next frame and reads it.
Screenshot grabFrame(gui::gl::View& view);

/// A view that writes down what reaches it, one line each, and draws four fields of different colours.
/// Lines read like "press 10,20 x1" with "+Shift" and the like behind it for the modifiers, and keys like "key 'a'",
/// "key virtual 3 code 123" or "key code 6528"; releases begin with "up".
class RecordingView : public gui::gl::View
{
public:
    RecordingView() = default;
    ~RecordingView() override;

    /// Makes the context, with every kind of event but motion where nothing is pressed.
    void create(gui::gl::Context::Animation animation = gui::gl::Context::Animation::Off,
                const td::Size<double>& size = {300, 200});

    std::vector<std::string> lines;
    std::vector<td::Size<double>> sizes; ///< that onResize was told
    int nFrames = 0;
    int nFramesLeft = 1'000'000; ///< until an animation ends
    int nCleanUps = 0;
    bool isContextWrong = false;      ///< somebody else's context was current in a callback
    bool isPictureWrong = false;      ///< a frame's corner was not what had been drawn there
    std::uint32_t topLeft = 0xE02020; ///< the colour of the first field
    std::function<void()> onFrame;
    std::function<void()> onRelease; ///< what a click ends in
    std::function<void()> onCleanUp;

    /// Waits in the run loop. @return whether the lines came to be these; they are forgotten
    testing::AssertionResult hasHeard(const std::vector<std::string>& expected);
    Screenshot grab() { return grabFrame(*this); }
    /// The same without the toolkit's help, in the device pixels of wherever the view is.
    Screenshot readPixels();

    void forgetLines() { lines.clear(); }

protected:
    void onInit() override;
    void onDraw(const td::RectNormalized<double>& rect) override;
    void onResize(const td::Size<double>& size) override;
    void cleanResources() override;
    bool prepareNextFrame() override { return --nFramesLeft > 0; }

    void onPrimaryButtonPressed(const gui::InputDevice& device) override { add("press", device); }
    void onPrimaryButtonReleased(const gui::InputDevice& device) override;
    void onPrimaryButtonDblClick(const gui::InputDevice& device) override { add("double", device); }
    void onSecondaryButtonPressed(const gui::InputDevice& device) override { add("press2", device); }
    void onSecondaryButtonReleased(const gui::InputDevice& device) override { add("release2", device); }
    void onCursorDragged(const gui::InputDevice& device) override { add("drag", device); }
    void onCursorEntered(const gui::InputDevice& device) override { add("enter", device); }
    void onCursorExited(const gui::InputDevice& device) override { add("exit", device); }
    void onOtherButtonPressed(const gui::InputDevice& device) override { addOther("press", device); }
    void onOtherButtonReleased(const gui::InputDevice& device) override { addOther("release", device); }
    void onOtherDragged(const gui::InputDevice& device) override { addOther("drag", device); }
    bool onScroll(const gui::InputDevice& device) override;
    bool onZoom(const gui::InputDevice& device) override;
    bool onKeyPressed(const gui::Key& key) override;
    bool onKeyReleased(const gui::Key& key) override;
    void onFocusIn() override { lines.emplace_back("focus"); }
    void onFocusOut() override { lines.emplace_back("no focus"); }

private:
    void add(const std::string& what, const gui::InputDevice& device);
    void addOther(const std::string& what, const gui::InputDevice& device)
    {
        add(what + std::to_string(static_cast<int>(device.getButton())), device);
    }
    void checkContext();

    gui::gl::CurrentContext::ID _context = 0;
};

} // namespace test
