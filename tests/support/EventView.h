#pragma once

#include <gui/Drop.h>
#include <gui/InputDevice.h>
#include <gui/Key.h>
#include <gui/TextComposition.h>
#include <gui/gl/View.h>

#include <functional>
#include <map>
#include <string>

namespace test
{

/// A view that hears of what a user does, a line each: "press 10,20 x1" with "+Shift" and the like behind it for the
/// modifiers, "press2" for the secondary button, "drag3" and the like for others, "pinch" for the zoom of a gesture,
/// and keys like "key 'a'", "key virtual 3 code 123" or "key 6528"; releases begin with "up". Text is "text a", and
/// what is composed "composes a[b]c", what is dropped
/// "drops FILE FILE at 1,2" or "drops 'text' at 1,2". Then it does what the test wants to be done in there.
class EventView : public gui::gl::View
{
public:
    std::map<std::string, std::function<void()>> in; ///< by how the line begins; it may be the view's own end
    td::Point<double> place;                         ///< of the pointer, in the last event
    bool handles = false;                            ///< what the callbacks answer that say whether an event is used up

protected:
    virtual void hear(const std::string& line) = 0;

    void note(const std::string& name, const std::string& details = "");
    /// Does what is to be done in there. Nothing of the view may be touched afterwards.
    void act(const std::string& name);

    void onFocusIn() override { note("focus"); }
    void onFocusOut() override { note("no focus"); }
    bool onKeyPressed(const gui::Key& key) override { return note("key", key); }
    bool onKeyReleased(const gui::Key& key) override { return note("up key", key); }
    void onTextInput(std::string_view text) override { note("text", ' ' + std::string(text)); }
    void onTextComposition(const gui::TextComposition& composition) override;
    void onDropped(const gui::Drop& drop) override;
    bool onZoom(const gui::InputDevice& device) override;
    bool onScroll(const gui::InputDevice& d) override { return note("scroll", d, gui::InputDevice::Button::Wheel); }
    void onPrimaryButtonPressed(const gui::InputDevice& d) override { note("press", d, cPrimary); }
    void onPrimaryButtonReleased(const gui::InputDevice& d) override { note("release", d, cPrimary); }
    void onPrimaryButtonDblClick(const gui::InputDevice& d) override { note("double", d, cPrimary); }
    void onSecondaryButtonPressed(const gui::InputDevice& d) override { note("press2", d, cSecondary); }
    void onSecondaryButtonReleased(const gui::InputDevice& d) override { note("release2", d, cSecondary); }
    void onCursorEntered(const gui::InputDevice& d) override { note("enter", d, gui::InputDevice::Button::None); }
    void onCursorMoved(const gui::InputDevice& d) override { note("move", d, gui::InputDevice::Button::None); }
    void onCursorDragged(const gui::InputDevice& d) override { note("drag", d, cPrimary); }
    void onCursorExited(const gui::InputDevice& d) override { note("exit", d, gui::InputDevice::Button::None); }
    void onOtherButtonPressed(const gui::InputDevice& d) override { noteOther("press", d); }
    void onOtherButtonReleased(const gui::InputDevice& d) override { noteOther("release", d); }
    void onOtherDragged(const gui::InputDevice& d) override { noteOther("drag", d); }

private:
    static constexpr auto cPrimary = gui::InputDevice::Button::Primary;
    static constexpr auto cSecondary = gui::InputDevice::Button::Secondary;

    bool note(const std::string& name, const gui::Key& key);
    bool note(const std::string& name, const gui::InputDevice& device, gui::InputDevice::Button button);
    void noteOther(const std::string& name, const gui::InputDevice& device)
    {
        note(name + std::to_string(static_cast<int>(device.getButton())), device, device.getButton());
    }
};

} // namespace test
