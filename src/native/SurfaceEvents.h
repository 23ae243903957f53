#pragma once

#include <td/Point.h>
#include <td/Types.h>

namespace gui::gl
{

/// What a surface reports to the view that draws into it. Points are in points of the window's content: the origin at
/// the top left, y downwards. Modifiers are masks of gui::KeyModifier bits, taken when the event arrived.

struct ButtonEvent
{
    enum class Button : td::BYTE
    {
        Left,
        Right
    };

    Button button;
    bool isDown;
    bool isLeftDown; ///< whether the left button is down now, the event counted in
    unsigned short nClicks;
    unsigned int modifiers;
    td::Point<double> point;
};

struct MotionEvent
{
    enum class Kind : td::BYTE
    {
        Moved,   ///< no button is down
        Dragged, ///< the left button is down, whichever else is; also outside the window
        Entered,
        Exited
    };

    Kind kind;
    unsigned int modifiers;
    td::Point<double> point;
};

struct WheelEvent
{
    double dx; ///< wheel units; content follows the fingers: to the right, and down, is positive
    double dy;
    unsigned int modifiers;
    td::Point<double> point;
};

struct MagnificationEvent
{
    double magnification; ///< 0 for none; of the whole gesture's step
    unsigned int modifiers;
};

struct KeyEvent
{
    bool isDown;
    unsigned short keyCode;   ///< of the table in gui/gl/KeyCodes.h
    unsigned short character; ///< the UTF-16 unit that the key stands for with Shift applied; 0 for none
    unsigned int modifiers;
};

} // namespace gui::gl
