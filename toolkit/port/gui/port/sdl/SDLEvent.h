#pragma once

#include <td/Export.h>
#include <td/Point.h>
#include <td/Size.h>
#include <td/Types.h>

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

struct SDL_Window;

namespace gui
{

/// An event of SDL, whatever version it is of, with what SDL leaves out of it, all of it as it was when the event
/// arrived.
struct SDLEvent
{
    /// What happened.
    enum class Type : td::BYTE
    {
        Other,
        DisplayLost,
        ColorScheme, ///< of the desktop

        SizeChanged, ///< in points, pixels, or both; of a window, as all that follow
        DisplayChanged,
        Exposed,
        Moved,
        StateChanged, ///< shown, hidden, minimised, maximised, restored, full screen
        CloseRequested,

        Entered,
        Left,
        FocusGained,
        FocusLost,
        KeyDown,
        KeyUp,
        Text,
        Composition,
        Motion,
        ButtonDown,
        ButtonUp,
        Wheel,
        Pinch, ///< by a touchpad
        FingerDown,
        FingerMotion,
        FingerUp,
        Dropped ///< all of it, at the end
    };

    /// A finger on a touch device.
    struct Finger
    {
        std::int64_t touch = 0;
        std::int64_t id = 0;
        td::Point<double> place; ///< from 0 to 1 over the window
    };

    Type type = Type::Other;
    std::uint32_t windowID = 0;
    unsigned int modifiers = 0;    ///< of SDL_Keymod
    unsigned int mouseButtons = 0; ///< as SDL_GetMouseState answers; of a motion its own
    td::Point<double> mouse;       ///< in points of the window's content; where it was dropped, of a drop
    int scancode = 0;              ///< of a key
    unsigned int xKeyCode = 0;     ///< of the X11 event that a key came from; 0 when it came from none that is known
    unsigned int xState = 0;       ///< its state, which holds the layout's group
    int button = 0;                ///< its number
    unsigned short nClicks = 0;    ///< in a row
    bool isOfTouch = false;        ///< of a motion or a button: SDL made it of the first finger
    bool isOfKey = false;          ///< of a text: whether a key that went down made it, and no input method
    td::Point<double> wheel;       ///< notches, to the right and away from the user
    double magnification = 0;      ///< of a pinch since it began, less 1
    Finger finger;
    std::chrono::milliseconds time{}; ///< of a button: of the window system's clock, or of SDL's, in 32 bits
    bool isServerTime = false;        ///< which of them
    std::string text; ///< typed, composed, or dropped
    int start = 0;    ///< of a composition: in characters; -1 for no caret
    int nSelected = 0;
    std::vector<std::string> files; ///< of a drop
};

/// Who takes the input for a window: whatever SDL tells of it but what the window itself sees to, such as its size. The
/// sink may be gone when it returns.
class SDLEventSink
{
public:
    virtual void onEvent(const SDLEvent& event) = 0;
    /// The window, which is hidden, is about to be shown at this size, in points. Another one may take its place: the
    /// native view has it then.
    virtual void onShow(const td::Size<int>& size) = 0;

protected:
    ~SDLEventSink() = default;
};

/// The input for this window goes to this sink from now on, while a gui::Window shows it; null for nobody.
GUIGL_API void setEventSink(SDL_Window* pWindow, SDLEventSink* pSink);

} // namespace gui
