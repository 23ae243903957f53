#include "EventTranslation.h"

#include <gui/gl/KeyCodes.h>
#include <vo/UTFConverter.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace zav
{

double s_zoomIncrement = 1.2;
double s_wheelUnitsPerNotch = 10;
double s_scrollAccelleration = 1.5;
double s_zoomGestureReduction = 50.0;

} // namespace zav

namespace gui::gl
{

namespace
{

constexpr unsigned short cEscapeKeyCode = 53;
constexpr unsigned short cTabKeyCode = 48;

bool has(unsigned short eventMask, gui::InputDevice::Event event)
{
    return (eventMask & static_cast<unsigned short>(event)) != 0;
}

unsigned int toCodeWithoutCharacter(unsigned short keyCode) { return static_cast<unsigned int>(keyCode) << 8; }

} // namespace

unsigned short buildEventMask(const std::initializer_list<gui::InputDevice::Event>& events)
{
    unsigned int mask = 0;
    for (const gui::InputDevice::Event event : events)
        mask |= static_cast<unsigned int>(event);
    return static_cast<unsigned short>(mask);
}

std::uint64_t getTrackingOptions(unsigned short eventMask)
{
    constexpr std::uint64_t cEnteredAndExited = 0x01;
    constexpr std::uint64_t cMoved = 0x02;
    constexpr std::uint64_t cCursorUpdate = 0x04;
    constexpr std::uint64_t cActiveAlways = 0x80;
    constexpr std::uint64_t cInVisibleRect = 0x200;

    std::uint64_t options = cCursorUpdate | cActiveAlways | cInVisibleRect;
    if (has(eventMask, gui::InputDevice::Event::CursorMove))
        options |= cMoved;
    if (has(eventMask, gui::InputDevice::Event::CursorEnterLeave))
        options |= cEnteredAndExited;
    return options;
}

gui::InputDevice::Button toRecordButton(ButtonEvent::Button button)
{
    using Button = gui::InputDevice::Button;
    constexpr std::array cButtons{Button::Primary, Button::Secondary, Button::Middle, Button::Back, Button::Forward};
    static_assert(cButtons.size() == std::size_t(ButtonEvent::Button::Forward) + 1);
    const auto index = static_cast<std::size_t>(button);
    return index < cButtons.size() ? cButtons[index] : Button::None;
}

bool isWheelZoom(const WheelEvent& event) { return event.dy != 0 && gui::isCmdPressed(event.modifiers); }

// std::max and std::min with the limit first: a surface's NaN becomes a limit, and no model's zoom is lost for good.
double getWheelZoomFactor(const WheelEvent& event)
{
    constexpr double cMin = 0.05;
    return std::max(cMin, 1 + zav::s_zoomIncrement * event.dy / 100);
}

td::Point<double> getWheelScroll(const WheelEvent& event)
{
    const double factor =
        gui::isAltPressed(event.modifiers) ? 5 * zav::s_scrollAccelleration : zav::s_scrollAccelleration;
    td::Point<double> distance(event.dx, event.dy);
    distance.scale(factor, factor);
    return distance;
}

double getGestureZoomFactor(double magnification)
{
    constexpr double cMin = 0.8;
    constexpr double cMax = 1.2;
    return std::min(cMax, std::max(cMin, 1 + magnification / zav::s_zoomGestureReduction));
}

gui::Key createKey(const KeyEvent& event)
{
    gui::Key key;
    gui::KeyHelper helper(key);
    gui::Key::Virtual virtualKey = zav::getVirtualKeyCode(event.keyCode, 0);
    if (virtualKey == gui::Key::Virtual::None && event.keyCode == cTabKeyCode)
        virtualKey = gui::Key::Virtual::Tab;
    if (virtualKey != gui::Key::Virtual::None)
        helper.setVirtual(event.keyCode, event.modifiers, 1, virtualKey);
    else
        helper.set(event.character != 0 ? event.character : toCodeWithoutCharacter(event.keyCode), event.modifiers, 1);
    return key;
}

gui::Key createReleasedKey(const KeyEvent& event)
{
    constexpr unsigned short cLastASCII = 127;
    constexpr unsigned short cLikeEscape = 8;
    const bool isCharacter = event.character >= 1 && event.character <= cLastASCII && event.keyCode != cEscapeKeyCode &&
                             event.keyCode != cLikeEscape;
    return gui::Key(isCharacter ? event.character : toCodeWithoutCharacter(event.keyCode), event.modifiers, 1, 0);
}

std::string toTypedText(const TextEvent& event)
{
    const bool isCommand =
        gui::isCmdPressed(event.modifiers) || gui::isCtrlPressed(event.modifiers) || gui::isAltPressed(event.modifiers);
    if (isCommand && !gui::isFnPressed(event.modifiers))
        return {};
    std::string text = vo::UTFConverter::toWellFormed(event.text);
    std::erase_if(text, [](char c) { return (static_cast<unsigned char>(c) < ' ') || c == '\x7F'; });
    return text;
}

gui::TextComposition toComposition(const CompositionEvent& event)
{
    gui::TextComposition composition{vo::UTFConverter::toWellFormed(event.text)};
    const auto placeOf = [&text = composition.text](std::size_t nCharacters)
    {
        std::size_t at = 0;
        for (; nCharacters > 0 && at < text.size(); --nCharacters)
            do
                ++at;
            while (at < text.size() && (static_cast<unsigned char>(text[at]) & 0xC0U) == 0x80);
        return at;
    };
    composition.begin = placeOf(event.start);
    composition.end =
        event.nSelected < SIZE_MAX - event.start ? placeOf(event.start + event.nSelected) : composition.text.size();
    return composition;
}

} // namespace gui::gl
