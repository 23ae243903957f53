// SDL2's events, as the library has them.

#include "../sdl/SDLEventQueue.h"

#include <gui/port/sdl/SDL.h>
#include <gui/port/sdl/SDLPort.h>

#include <SDL_syswm.h>

#include <cstring>
#include <utility>

namespace gui::sdl
{

namespace
{

using Type = SDLEvent::Type;

static_assert(cCtrl == KMOD_CTRL && cRightAlt == KMOD_RALT && cLogo == KMOD_GUI && cMode == KMOD_MODE);

template <std::size_t n>
std::string textOf(const char (&text)[n])
{
    return {text, strnlen(text, n)};
}

Type typeOf(const SDL_WindowEvent& event)
{
    switch (event.event)
    {
    case SDL_WINDOWEVENT_SIZE_CHANGED:
        return Type::SizeChanged;
    case SDL_WINDOWEVENT_DISPLAY_CHANGED:
        return Type::DisplayChanged;
    case SDL_WINDOWEVENT_EXPOSED:
        return Type::Exposed;
    case SDL_WINDOWEVENT_MOVED:
        return Type::Moved;
    case SDL_WINDOWEVENT_SHOWN:
    case SDL_WINDOWEVENT_HIDDEN:
    case SDL_WINDOWEVENT_MINIMIZED:
    case SDL_WINDOWEVENT_MAXIMIZED:
    case SDL_WINDOWEVENT_RESTORED:
        return Type::StateChanged;
    case SDL_WINDOWEVENT_CLOSE:
        return Type::CloseRequested;
    case SDL_WINDOWEVENT_ENTER:
        return Type::Entered;
    case SDL_WINDOWEVENT_LEAVE:
        return Type::Left;
    case SDL_WINDOWEVENT_FOCUS_GAINED:
        return Type::FocusGained;
    case SDL_WINDOWEVENT_FOCUS_LOST:
        return Type::FocusLost;
    default:
        return Type::Other;
    }
}

// On X11 nothing was told of the pointer on its way; on Wayland nobody knows it.
void placeDrop(SDLEvent& event)
{
    SDL_Window* const pWindow = SDL_GetWindowFromID(event.windowID);
    if (pWindow == nullptr || isOnWayland())
        return;
    int x = 0, y = 0, left = 0, top = 0;
    SDL_GetGlobalMouseState(&x, &y);
    SDL_GetWindowPosition(pWindow, &left, &top);
    event.mouse = {static_cast<double>(x - left), static_cast<double>(y - top)};
}

void takeFinger(SDLEvent& event, const SDL_TouchFingerEvent& finger)
{
    event.type = finger.type == SDL_FINGERDOWN ? Type::FingerDown
                 : finger.type == SDL_FINGERUP ? Type::FingerUp
                                               : Type::FingerMotion;
    event.windowID = finger.windowID;
    event.finger = {finger.touchId, finger.fingerId, {static_cast<double>(finger.x), static_cast<double>(finger.y)}};
}

void takeButton(SDLEvent& event, const SDL_MouseButtonEvent& button)
{
    event.type = button.type == SDL_MOUSEBUTTONDOWN ? Type::ButtonDown : Type::ButtonUp;
    event.windowID = button.windowID;
    event.mouse = {static_cast<double>(button.x), static_cast<double>(button.y)};
    event.button = button.button;
    event.time = std::chrono::milliseconds(button.timestamp);
    event.isOfTouch = button.which == SDL_TOUCH_MOUSEID;
}

void takePointer(SDLEvent& event, const SDL_Event& sdlEvent)
{
    const auto toPoint = [](int x, int y) { return td::Point<double>(static_cast<double>(x), static_cast<double>(y)); };
    if (sdlEvent.type == SDL_MOUSEMOTION)
    {
        event.type = Type::Motion;
        event.windowID = sdlEvent.motion.windowID;
        event.mouse = toPoint(sdlEvent.motion.x, sdlEvent.motion.y);
        event.mouseButtons = sdlEvent.motion.state;
        event.isOfTouch = sdlEvent.motion.which == SDL_TOUCH_MOUSEID;
    }
    else if (sdlEvent.type == SDL_MOUSEWHEEL)
    {
        event.type = Type::Wheel;
        event.windowID = sdlEvent.wheel.windowID;
        event.wheel = {static_cast<double>(sdlEvent.wheel.preciseX), static_cast<double>(sdlEvent.wheel.preciseY)};
    }
    else
        takeButton(event, sdlEvent.button);
}

void takeComposition(SDLEvent& event, SDL_Event& sdlEvent)
{
    event.type = Type::Composition;
    if (sdlEvent.type == SDL_TEXTEDITING)
    {
        event.windowID = sdlEvent.edit.windowID;
        event.text = textOf(sdlEvent.edit.text);
        event.start = sdlEvent.edit.start;
        event.nSelected = sdlEvent.edit.length;
        return;
    }
    event.windowID = sdlEvent.editExt.windowID;
    event.start = sdlEvent.editExt.start;
    event.nSelected = sdlEvent.editExt.length;
    // Whoever gets it frees it: nobody else will.
    char* const text = std::exchange(sdlEvent.editExt.text, nullptr);
    event.text = text != nullptr ? text : "";
    SDL_free(text);
}

void takeDrop(SDLEventQueue& queue, SDLEvent& event, SDL_DropEvent& drop)
{
    if (drop.type == SDL_DROPBEGIN)
        queue.beginDrop();
    else if (drop.type == SDL_DROPFILE)
        queue.collectFile(drop.file);
    else if (drop.type == SDL_DROPTEXT)
        queue.collectText(drop.file);
    else
    {
        event.type = Type::Dropped;
        event.windowID = drop.windowID;
        placeDrop(event);
        queue.endDrop(std::move(event));
    }
    SDL_free(std::exchange(drop.file, nullptr)); // as with a composition
}

void take(SDLEventQueue& queue, SDL_Event& sdlEvent)
{
    SDLEvent event;
    event.modifiers = static_cast<unsigned int>(SDL_GetModState());
    int x = 0, y = 0;
    event.mouseButtons = SDL_GetMouseState(&x, &y);
    event.mouse = {static_cast<double>(x), static_cast<double>(y)};
    switch (sdlEvent.type)
    {
    case SDL_QUIT:
        event.type = Type::DisplayLost;
        break;
    case SDL_WINDOWEVENT:
        event.type = typeOf(sdlEvent.window);
        event.windowID = sdlEvent.window.windowID;
        break;
    case SDL_KEYDOWN:
    case SDL_KEYUP:
        event.type = sdlEvent.type == SDL_KEYDOWN ? Type::KeyDown : Type::KeyUp;
        event.windowID = sdlEvent.key.windowID;
        event.scancode = sdlEvent.key.keysym.scancode;
        break;
    case SDL_TEXTINPUT:
        event.type = Type::Text;
        event.windowID = sdlEvent.text.windowID;
        event.text = textOf(sdlEvent.text.text);
        break;
    case SDL_TEXTEDITING:
    case SDL_TEXTEDITING_EXT:
        takeComposition(event, sdlEvent);
        break;
    case SDL_MOUSEMOTION:
    case SDL_MOUSEBUTTONDOWN:
    case SDL_MOUSEBUTTONUP:
    case SDL_MOUSEWHEEL:
        takePointer(event, sdlEvent);
        break;
    case SDL_FINGERDOWN:
    case SDL_FINGERMOTION:
    case SDL_FINGERUP:
        takeFinger(event, sdlEvent.tfinger);
        break;
    case SDL_DROPBEGIN:
    case SDL_DROPFILE:
    case SDL_DROPTEXT:
    case SDL_DROPCOMPLETE:
        takeDrop(queue, event, sdlEvent.drop);
        return;
    default:
        break;
    }
    if (event.type != Type::Other)
        queue.append(std::move(event));
}

int SDLCALL onEvent(void* pQueue, SDL_Event* pEvent)
{
    auto& queue = *static_cast<SDLEventQueue*>(pQueue);
    // A wake-up, or a mark of SDL's own.
    if (pEvent->type >= SDL_POLLSENTINEL)
        return 1;
    if (pEvent->type != SDL_SYSWMEVENT)
    {
        take(queue, *pEvent);
        return 1;
    }
    queue.forgetXEvent();
#ifdef SDL_VIDEO_DRIVER_X11
    const SDL_SysWMmsg* const pMessage = pEvent->syswm.msg;
    if (pMessage->subsystem == SDL_SYSWM_X11)
    {
        const XEvent& xEvent = pMessage->msg.x11.event;
        if (xEvent.type == KeyPress || xEvent.type == KeyRelease)
            queue.rememberXKey(xEvent.xkey.keycode, xEvent.xkey.state);
        else if (xEvent.type == ButtonPress || xEvent.type == ButtonRelease)
            queue.rememberXButton(xEvent.xbutton.time);
    }
#endif
    return 0;
}

void enableDrops(int state)
{
    for (const Uint32 type : {SDL_DROPFILE, SDL_DROPTEXT, SDL_DROPBEGIN, SDL_DROPCOMPLETE})
        SDL_EventState(type, state);
}

} // namespace

void listen(SDLEventQueue& queue)
{
    SDL_EventState(SDL_SYSWMEVENT, SDL_ENABLE);
    enableDrops(SDL_DISABLE); // until a view wants them
    SDL_SetEventFilter(onEvent, &queue);
}

void stopListening() { SDL_SetEventFilter(nullptr, nullptr); }

void acceptDrops() { enableDrops(SDL_ENABLE); }

} // namespace gui::sdl
