// SDL3's events, as the library has them.

#include "../sdl/SDLEventQueue.h"

#include <gui/port/sdl/SDL.h>
#include <gui/port/sdl/SDLPort.h>

#include <X11/Xlib.h>
#include <X11/extensions/XInput2.h>

#include <algorithm>
#include <utility>

namespace gui::sdl
{

namespace
{

using Type = SDLEvent::Type;

static_assert(cCtrl == SDL_KMOD_CTRL && cRightAlt == SDL_KMOD_RALT && cLogo == SDL_KMOD_GUI && cMode == SDL_KMOD_MODE);

td::Point<double> toPoint(float x, float y) { return {static_cast<double>(x), static_cast<double>(y)}; }

Type typeOf(const SDL_WindowEvent& event)
{
    switch (event.type)
    {
    case SDL_EVENT_WINDOW_RESIZED:
    case SDL_EVENT_WINDOW_PIXEL_SIZE_CHANGED:
        return Type::SizeChanged;
    case SDL_EVENT_WINDOW_DISPLAY_CHANGED:
    case SDL_EVENT_WINDOW_DISPLAY_SCALE_CHANGED:
        return Type::DisplayChanged;
    case SDL_EVENT_WINDOW_EXPOSED:
        return Type::Exposed;
    case SDL_EVENT_WINDOW_MOVED:
        return Type::Moved;
    case SDL_EVENT_WINDOW_SHOWN:
    case SDL_EVENT_WINDOW_HIDDEN:
    case SDL_EVENT_WINDOW_OCCLUDED:
    case SDL_EVENT_WINDOW_MINIMIZED:
    case SDL_EVENT_WINDOW_MAXIMIZED:
    case SDL_EVENT_WINDOW_RESTORED:
    case SDL_EVENT_WINDOW_ENTER_FULLSCREEN:
    case SDL_EVENT_WINDOW_LEAVE_FULLSCREEN:
        return Type::StateChanged;
    case SDL_EVENT_WINDOW_CLOSE_REQUESTED:
        return Type::CloseRequested;
    case SDL_EVENT_WINDOW_MOUSE_ENTER:
        return Type::Entered;
    case SDL_EVENT_WINDOW_MOUSE_LEAVE:
        return Type::Left;
    case SDL_EVENT_WINDOW_FOCUS_GAINED:
        return Type::FocusGained;
    case SDL_EVENT_WINDOW_FOCUS_LOST:
        return Type::FocusLost;
    default:
        return Type::Other;
    }
}

void takeFinger(SDLEvent& event, const SDL_TouchFingerEvent& finger)
{
    event.type = finger.type == SDL_EVENT_FINGER_DOWN     ? Type::FingerDown
                 : finger.type == SDL_EVENT_FINGER_MOTION ? Type::FingerMotion
                                                          : Type::FingerUp;
    event.windowID = finger.windowID;
    event.finger = {static_cast<std::int64_t>(finger.touchID), static_cast<std::int64_t>(finger.fingerID),
                    toPoint(finger.x, finger.y)};
}

void takeButton(SDLEvent& event, const SDL_MouseButtonEvent& button)
{
    event.type = button.type == SDL_EVENT_MOUSE_BUTTON_DOWN ? Type::ButtonDown : Type::ButtonUp;
    event.windowID = button.windowID;
    event.mouse = toPoint(button.x, button.y);
    event.button = button.button;
    event.time = std::chrono::milliseconds(static_cast<std::uint32_t>(SDL_NS_TO_MS(button.timestamp)));
    event.isOfTouch = button.which == SDL_TOUCH_MOUSEID;
}

void takeMotion(SDLEvent& event, const SDL_MouseMotionEvent& motion)
{
    event.type = Type::Motion;
    event.windowID = motion.windowID;
    event.mouse = toPoint(motion.x, motion.y);
    event.mouseButtons = motion.state;
    event.isOfTouch = motion.which == SDL_TOUCH_MOUSEID;
}

// In fractions of a notch, where the device has them.
void takeWheel(SDLEvent& event, const SDL_MouseWheelEvent& wheel)
{
    event.type = Type::Wheel;
    event.windowID = wheel.windowID;
    event.mouse = toPoint(wheel.mouse_x, wheel.mouse_y);
    event.wheel = toPoint(wheel.x, wheel.y);
}

void takeDrop(SDLEventQueue& queue, SDLEvent& event, const SDL_DropEvent& drop)
{
    switch (drop.type)
    {
    case SDL_EVENT_DROP_BEGIN:
        queue.beginDrop();
        break;
    case SDL_EVENT_DROP_FILE:
        queue.collectFile(drop.data);
        break;
    case SDL_EVENT_DROP_TEXT:
        queue.collectText(drop.data);
        break;
    case SDL_EVENT_DROP_COMPLETE:
        event.type = Type::Dropped;
        event.windowID = drop.windowID;
        event.mouse = toPoint(drop.x, drop.y);
        queue.endDrop(std::move(event));
        break;
    default:
        break;
    }
}

#if SDL_VERSION_ATLEAST(3, 4, 0)
// SDL tells by how much it has grown since the last time.
void takePinch(SDLEvent& event, const SDL_PinchFingerEvent& pinch)
{
    static double s_scale = 1;
    if (pinch.type == SDL_EVENT_PINCH_BEGIN)
        s_scale = 1;
    if (pinch.type != SDL_EVENT_PINCH_UPDATE)
        return;
    s_scale *= static_cast<double>(pinch.scale);
    event.type = Type::Pinch;
    event.windowID = pinch.windowID;
    event.magnification = s_scale - 1;
}
#endif

void take(SDLEventQueue& queue, const SDL_Event& sdlEvent)
{
    SDLEvent event;
    event.modifiers = SDL_GetModState();
    float x = 0, y = 0;
    event.mouseButtons = SDL_GetMouseState(&x, &y);
    event.mouse = toPoint(x, y);
    switch (sdlEvent.type)
    {
    case SDL_EVENT_QUIT:
        event.type = Type::DisplayLost;
        break;
    case SDL_EVENT_SYSTEM_THEME_CHANGED:
        event.type = Type::ColorScheme;
        break;
    case SDL_EVENT_KEY_DOWN:
    case SDL_EVENT_KEY_UP:
        event.type = sdlEvent.type == SDL_EVENT_KEY_DOWN ? Type::KeyDown : Type::KeyUp;
        event.windowID = sdlEvent.key.windowID;
        // From here on SDL3 counts media keys otherwise than SDL2; all of them are keys without a counterpart.
        event.scancode = std::min(sdlEvent.key.scancode, SDL_SCANCODE_SLEEP);
        break;
    case SDL_EVENT_TEXT_INPUT:
        event.type = Type::Text;
        event.windowID = sdlEvent.text.windowID;
        event.text = sdlEvent.text.text;
        break;
    case SDL_EVENT_TEXT_EDITING:
        event.type = Type::Composition;
        event.windowID = sdlEvent.edit.windowID;
        event.text = sdlEvent.edit.text;
        event.start = sdlEvent.edit.start;
        event.nSelected = sdlEvent.edit.length;
        break;
    case SDL_EVENT_MOUSE_MOTION:
        takeMotion(event, sdlEvent.motion);
        break;
    case SDL_EVENT_MOUSE_BUTTON_DOWN:
    case SDL_EVENT_MOUSE_BUTTON_UP:
        takeButton(event, sdlEvent.button);
        break;
    case SDL_EVENT_MOUSE_WHEEL:
        takeWheel(event, sdlEvent.wheel);
        break;
    case SDL_EVENT_FINGER_DOWN:
    case SDL_EVENT_FINGER_MOTION:
    case SDL_EVENT_FINGER_UP:
    case SDL_EVENT_FINGER_CANCELED:
        takeFinger(event, sdlEvent.tfinger);
        break;
#if SDL_VERSION_ATLEAST(3, 4, 0)
    case SDL_EVENT_PINCH_BEGIN:
    case SDL_EVENT_PINCH_UPDATE:
        takePinch(event, sdlEvent.pinch);
        break;
#endif
    default:
        if (sdlEvent.type >= SDL_EVENT_WINDOW_FIRST && sdlEvent.type <= SDL_EVENT_WINDOW_LAST)
        {
            event.type = typeOf(sdlEvent.window);
            event.windowID = sdlEvent.window.windowID;
        }
        else if (sdlEvent.type >= SDL_EVENT_DROP_FILE && sdlEvent.type <= SDL_EVENT_DROP_POSITION)
        {
            takeDrop(queue, event, sdlEvent.drop);
            return;
        }
        break;
    }
    if (event.type != Type::Other)
        queue.append(std::move(event));
}

bool SDLCALL onEvent(void* pQueue, SDL_Event* pEvent)
{
    // A wake-up, or a mark of SDL's own, is nothing of interest here.
    if (pEvent->type < SDL_EVENT_POLL_SENTINEL)
        take(*static_cast<SDLEventQueue*>(pQueue), *pEvent);
    return true;
}

// The input extension's event of a button, which SDL listens to where there is that extension; null when it is another.
const XIDeviceEvent* buttonEventOf(const XEvent& event)
{
    if (event.type != GenericEvent || event.xcookie.data == nullptr)
        return nullptr;
    int code = 0, firstEvent = 0, firstError = 0;
    const bool isButton = event.xcookie.evtype == XI_ButtonPress || event.xcookie.evtype == XI_ButtonRelease;
    if (!isButton || XQueryExtension(event.xcookie.display, "XInputExtension", &code, &firstEvent, &firstError) == 0 ||
        code != event.xcookie.extension)
        return nullptr;
    return static_cast<const XIDeviceEvent*>(event.xcookie.data);
}

bool SDLCALL onXEvent(void* pQueue, XEvent* pEvent)
{
    auto& queue = *static_cast<SDLEventQueue*>(pQueue);
    queue.forgetXEvent();
    if (pEvent->type == KeyPress || pEvent->type == KeyRelease)
        queue.rememberXKey(pEvent->xkey.keycode, pEvent->xkey.state);
    else if (pEvent->type == ButtonPress || pEvent->type == ButtonRelease)
        queue.rememberXButton(pEvent->xbutton.time);
    else if (const XIDeviceEvent* const pButton = buttonEventOf(*pEvent))
        queue.rememberXButton(pButton->time);
    return true;
}

void enableDrops(bool isEnabled)
{
    for (const Uint32 type : {SDL_EVENT_DROP_FILE, SDL_EVENT_DROP_TEXT, SDL_EVENT_DROP_BEGIN, SDL_EVENT_DROP_COMPLETE,
                              SDL_EVENT_DROP_POSITION})
        SDL_SetEventEnabled(type, isEnabled);
}

} // namespace

void listen(SDLEventQueue& queue)
{
    enableDrops(false); // until a view wants them
    SDL_SetEventFilter(onEvent, &queue);
    SDL_SetX11EventHook(onXEvent, &queue);
}

void stopListening()
{
    SDL_SetX11EventHook(nullptr, nullptr);
    SDL_SetEventFilter(nullptr, nullptr);
}

void acceptDrops() { enableDrops(true); }

} // namespace gui::sdl
