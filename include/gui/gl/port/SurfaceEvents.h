#pragma once

#include <td/Point.h>
#include <td/Types.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace gui::gl
{

// What a surface reports to the view that draws into it. Points are in points of the window's content: the origin at
// the top left, y downwards. Modifiers are masks of gui::KeyModifier bits, taken when the event arrived and not when it
// is handled.

/// A button of the pointer went down or up.
struct ButtonEvent
{
    /// Which one.
    enum class Button : td::BYTE
    {
        Left, ///< the primary one, on a mouse for the left hand as well
        Right,
        Middle, ///< the wheel, pressed
        Back,   ///< one of those at the side
        Forward ///< the other one
    };

    Button button;           ///< which one
    bool isDown;             ///< whether it went down
    bool isLeftDown;         ///< whether the left button is down now, the event counted in
    unsigned short nClicks;  ///< 1 for the first of a row of quick clicks, 2 for the second and so on; also on release
    unsigned int modifiers;  ///< those that were held
    td::Point<double> point; ///< where it was
};

/// The pointer moved, or came or went.
struct MotionEvent
{
    /// What of these.
    enum class Kind : td::BYTE
    {
        Moved,   ///< no button is down
        Dragged, ///< the left button is down, whichever else is; also outside the window
        Entered,
        Exited,      ///< after a drag that ended outside, when that is over
        OtherDragged ///< a button is down, and the left one is not; also outside the window, where it may have exited
    };

    Kind kind;               ///< what it did
    unsigned int modifiers;  ///< those that were held
    td::Point<double> point; ///< where it is
    /// Of OtherDragged: the button that is down, of several the first in the order of their names.
    ButtonEvent::Button button = ButtonEvent::Button::Left;
};

/// The wheel turned, or two fingers moved on a touchpad.
struct WheelEvent
{
    /// Wheel units, ten to a notch; content follows the fingers: to the right, and down, is positive.
    double dx;
    double dy;               ///< see dx
    unsigned int modifiers;  ///< those that were held
    td::Point<double> point; ///< where the pointer is
};

/// Two fingers moved apart or together on a touch device.
struct MagnificationEvent
{
    double magnification;   ///< 0 for none; of the whole gesture's step
    unsigned int modifiers; ///< those that were held
};

/// A key went down, which it does again while it repeats, or up. Modifier keys alone make no event.
struct KeyEvent
{
    bool isDown;            ///< whether it went down
    unsigned short keyCode; ///< of the table in gui/gl/KeyCodes.h; 128 to 255 for what is not in it and has a character
    unsigned short character; ///< the UTF-16 unit that the key stands for with Shift applied; 0 for none
    unsigned int modifiers;   ///< those that were held
};

/// Text came: of a key, whose own event came before, or of an input method.
struct TextEvent
{
    std::string_view text; ///< UTF-8; any bytes will do
    /// Of a key: those that were held. What a key with Ctrl, Alt or Super types is a command, and no text.
    unsigned int modifiers = 0;
};

/// Something was dropped; see gui::Drop.
struct DropEvent
{
    std::vector<std::string> files; ///< paths; empty ones are left out
    std::string text;               ///< UTF-8; any bytes will do
    unsigned int modifiers;         ///< those that were held
    td::Point<double> point;        ///< where it was let go
};

/// What an input method has composed so far.
struct CompositionEvent
{
    std::string_view text;     ///< UTF-8; any bytes will do
    std::size_t start = 0;     ///< in characters (code points): where the caret, or what is selected, begins
    std::size_t nSelected = 0; ///< how many are selected
};

} // namespace gui::gl
