#pragma once

#include "support/FakeSurface.h"

#include <gui/InputDevice.h>
#include <gui/Key.h>
#include <gui/gl/View.h>

#include <functional>
#include <map>
#include <string>

namespace test
{

/// A view that notes each of its callbacks in its window's journal, complains there when its context is not current,
/// and then does what the test wants to be done in there, which may be its own end.
class RecordingView : public gui::gl::View
{
public:
    explicit RecordingView(FakeWindow& window)
        : _window(window)
    {
    }

    std::map<std::string, std::function<void()>> in; ///< by the callback's name
    bool handles = false;                            ///< what the callbacks answer that say whether an event is used up
    bool hasNextFrame = true;                        ///< what prepareNextFrame answers

protected:
    void onInit() override { note("onInit"); }
    void cleanResources() override { note("cleanResources"); }
    bool prepareNextFrame() override;
    void onDraw(const td::RectNormalized<double>& rect) override;
    void onGeometryChange(const td::PointAndSize<double>& geometry) override;
    void onResize(const td::Size<double>& size) override;
    void onFocusIn() override { note("onFocusIn"); }
    void onFocusOut() override { note("onFocusOut"); }
    bool onKeyPressed(const gui::Key& key) override { return note("onKeyPressed", key); }
    bool onKeyReleased(const gui::Key& key) override { return note("onKeyReleased", key); }
    bool onZoom(const gui::InputDevice& device) override { return note("onZoom", device); }
    bool onScroll(const gui::InputDevice& device) override { return note("onScroll", device); }
    void onPrimaryButtonPressed(const gui::InputDevice& d) override { note("onPrimaryButtonPressed", d); }
    void onPrimaryButtonReleased(const gui::InputDevice& d) override { note("onPrimaryButtonReleased", d); }
    void onPrimaryButtonDblClick(const gui::InputDevice& d) override { note("onPrimaryButtonDblClick", d); }
    void onSecondaryButtonPressed(const gui::InputDevice& d) override { note("onSecondaryButtonPressed", d); }
    void onSecondaryButtonReleased(const gui::InputDevice& d) override { note("onSecondaryButtonReleased", d); }
    void onCursorEntered(const gui::InputDevice& d) override { note("onCursorEntered", d); }
    void onCursorMoved(const gui::InputDevice& d) override { note("onCursorMoved", d); }
    void onCursorDragged(const gui::InputDevice& d) override { note("onCursorDragged", d); }
    void onCursorExited(const gui::InputDevice& d) override { note("onCursorExited", d); }
    void onOtherButtonPressed(const gui::InputDevice& d) override { note("onOtherButtonPressed", d); }
    void onOtherButtonReleased(const gui::InputDevice& d) override { note("onOtherButtonReleased", d); }
    void onOtherDragged(const gui::InputDevice& d) override { note("onOtherDragged", d); }

private:
    void note(const std::string& name, const std::string& details = "");
    bool note(const std::string& name, const gui::Key& key);
    bool note(const std::string& name, const gui::InputDevice& device);

    FakeWindow& _window;
};

} // namespace test
