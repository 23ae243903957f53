#pragma once

#include <SDL_events.h>
#include <SDL_video.h>
#include <td/Export.h>
#include <td/Size.h>

#include <string>
#include <vector>

namespace gui
{

/// An event of SDL with what SDL leaves out of it, all of it as it was when the event arrived.
struct SDLEvent
{
    SDL_Event event;
    unsigned int modifiers;    ///< of SDL_Keymod
    unsigned int mouseButtons; ///< as SDL_GetMouseState answers
    int mouseX;                ///< in points of the window's content; where it was dropped
    int mouseY;
    unsigned int xKeyCode; ///< of the X11 event that a key event came from; 0 when it came from none that is known
    unsigned int xState;   ///< its state, which holds the layout's group
    std::string text; ///< of SDL_TEXTINPUT, SDL_TEXTEDITING and SDL_TEXTEDITING_EXT, whose own pointer is null here
    bool isOfKey;     ///< of SDL_TEXTINPUT: whether a key that went down made it, and no input method
    /// Of SDL_DROPCOMPLETE, with the text: all that was dropped. There are no other events of drops.
    std::vector<std::string> files;
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

/// What is dropped is told from now on: windows are open to it, all of them, as SDL has it.
GUIGL_API void acceptDrops();

} // namespace gui
