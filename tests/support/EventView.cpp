#include "EventView.h"

#include <gui/gl/port/Zav.h>

#include <gtest/gtest.h>

#include <sstream>
#include <utility>

namespace test
{

namespace
{

std::string modifierText(unsigned int modifiers)
{
    constexpr std::pair<gui::KeyModifier, const char*> cNames[] = {
        {gui::KeyModifier::Shift, "+Shift"}, {gui::KeyModifier::CapsLock, "+Caps"}, {gui::KeyModifier::Ctrl, "+Ctrl"},
        {gui::KeyModifier::Alt, "+Alt"},     {gui::KeyModifier::Cmd, "+Cmd"},       {gui::KeyModifier::Fn, "+Fn"}};
    std::string text;
    for (const auto& [modifier, name] : cNames)
        if (gui::isKeyModifierPressed(modifiers, modifier))
            text += name;
    return text;
}

} // namespace

void EventView::note(const std::string& name, const std::string& details)
{
    hear(name + details);
    act(name);
}

void EventView::act(const std::string& name)
{
    const auto found = in.find(name);
    const std::function<void()> act = found != in.end() ? found->second : nullptr;
    if (act)
        act();
}

bool EventView::note(const std::string& name, const gui::Key& key)
{
    const bool isUsedUp = handles;
    std::ostringstream text;
    constexpr char cLastControl = 31;
    if (key.isVirtual())
        text << " virtual " << static_cast<int>(key.getVirtual()) << " code " << key.getCode();
    else if (key.isASCII() && key.getChar() > cLastControl)
        text << " '" << key.getChar() << "'";
    else
        text << ' ' << key.getCode();
    note(name, text.str() + modifierText(key.getModifiers()));
    return isUsedUp;
}

void EventView::onTextComposition(const gui::TextComposition& composition)
{
    std::string text = composition.text;
    text.insert(composition.end, "]");
    text.insert(composition.begin, "[");
    note("composes", ' ' + text);
}

void EventView::onDropped(const gui::Drop& drop)
{
    std::ostringstream text;
    for (const std::string& file : drop.files)
        text << ' ' << file;
    if (!drop.text.empty())
        text << " '" << drop.text << "'";
    text << " at " << drop.place.x << ',' << drop.place.y;
    note("drops", text.str() + modifierText(drop.modifiers));
}

bool EventView::onZoom(const gui::InputDevice& device)
{
    if (device.getType() == gui::InputDevice::Type::Gesture)
        return note("pinch", device, gui::InputDevice::Button::None);
    return note("zoom", device, gui::InputDevice::Button::Wheel);
}

bool EventView::note(const std::string& name, const gui::InputDevice& device, gui::InputDevice::Button button)
{
    const bool isUsedUp = handles;
    const td::Point<double>& point = device.getFramePoint();
    place = device.getPlace();
    EXPECT_EQ(device.getContentPoint(), point);
    const double scale = zav::getScale(this);
    EXPECT_EQ(device.getWindowPoint(), td::Point<double>(point.x * scale, point.y * scale));
    EXPECT_EQ(device.getButton(), button) << name;
    EXPECT_EQ(device.getType() == gui::InputDevice::Type::Gesture, name == "pinch");
    std::ostringstream text;
    text << ' ' << point.x << ',' << point.y;
    const bool isClick = !name.starts_with("drag") && (button == cPrimary || button == cSecondary);
    const bool isZoom = name == "zoom" || name == "pinch";
    EXPECT_TRUE(isClick || name.starts_with("press") || device.getNoOfEvents() == 1) << name;
    EXPECT_TRUE(isZoom || device.getScale() == 1) << name;
    if (isClick)
        text << " x" << device.getNoOfEvents();
    if (isZoom)
        text << " by " << device.getScale();
    note(name, text.str() + modifierText(device.getKeyboardModifiers()));
    return isUsedUp;
}

} // namespace test
