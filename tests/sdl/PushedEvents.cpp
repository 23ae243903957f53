#include "PushedEvents.h"

#include <gui/port/sdl/SDL.h>

namespace test::pushed
{

namespace
{

constexpr int cY = 40;

void push(SDL_Event event) { SDL_PushEvent(&event); }

} // namespace

std::uint32_t focused() { return SDL_GetWindowID(SDL_GetKeyboardFocus()); }

void setDoubleClickTime(int milliseconds)
{
    SDL_SetHint(SDL_HINT_MOUSE_DOUBLE_CLICK_TIME, milliseconds != 0 ? std::to_string(milliseconds).c_str() : nullptr);
}

#if GUIGL_SDL == 3

bool isTextInputActive()
{
    SDL_Window* const pWindow = SDL_GetKeyboardFocus();
    return pWindow != nullptr && SDL_TextInputActive(pWindow);
}

void finger(Finger kind, int id, float x)
{
    SDL_Event event{};
    event.tfinger.type = kind == Finger::Down     ? SDL_EVENT_FINGER_DOWN
                         : kind == Finger::Motion ? SDL_EVENT_FINGER_MOTION
                                                  : SDL_EVENT_FINGER_UP;
    event.tfinger.touchID = 1;
    event.tfinger.fingerID = static_cast<SDL_FingerID>(id);
    event.tfinger.x = x;
    event.tfinger.y = 0.5F;
    event.tfinger.windowID = focused();
    push(event);
}

static void move(std::uint32_t window, int x, std::uint32_t buttons, std::uint32_t mouse)
{
    SDL_Event event{};
    event.motion.type = SDL_EVENT_MOUSE_MOTION;
    event.motion.windowID = window;
    event.motion.which = mouse;
    event.motion.state = buttons;
    event.motion.x = static_cast<float>(x);
    event.motion.y = cY;
    push(event);
}

void releaseLeft(std::uint32_t window, int x)
{
    SDL_Event event{};
    event.button.type = SDL_EVENT_MOUSE_BUTTON_UP;
    event.button.windowID = window;
    event.button.button = SDL_BUTTON_LEFT;
    event.button.clicks = 1;
    event.button.x = static_cast<float>(x);
    event.button.y = cY;
    push(event);
}

void compose(const std::string& text, int start, int length)
{
    SDL_Event event{};
    event.edit.type = SDL_EVENT_TEXT_EDITING;
    event.edit.windowID = focused();
    event.edit.text = text.c_str();
    event.edit.start = start;
    event.edit.length = length;
    push(event);
}

#else

bool isTextInputActive() { return SDL_IsTextInputActive() == SDL_TRUE; }

void finger(Finger kind, int id, float x)
{
    SDL_Event event{};
    const Uint32 type = kind == Finger::Down     ? SDL_FINGERDOWN
                        : kind == Finger::Motion ? SDL_FINGERMOTION
                                                 : SDL_FINGERUP;
    event.tfinger = {type, 0, 1, id, x, 0.5F, 0, 0, 1, focused()};
    push(event);
}

static void move(std::uint32_t window, int x, std::uint32_t buttons, std::uint32_t mouse)
{
    SDL_Event event{};
    event.motion = {SDL_MOUSEMOTION, 0, window, mouse, buttons, x, cY, 1, 0};
    push(event);
}

void releaseLeft(std::uint32_t window, int x)
{
    SDL_Event event{};
    event.button = {SDL_MOUSEBUTTONUP, 0, window, 0, SDL_BUTTON_LEFT, SDL_RELEASED, 1, 0, x, cY};
    push(event);
}

void compose(const std::string& text, int start, int length)
{
    SDL_Event event{};
    // As SDL does.
    const bool isLong = text.size() >= sizeof(event.edit.text);
    if (!isLong)
    {
        event.edit = {SDL_TEXTEDITING, 0, focused(), {}, start, length};
        text.copy(event.edit.text, text.size());
    }
    else
        event.editExt = {SDL_TEXTEDITING_EXT, 0, focused(), SDL_strdup(text.c_str()), start, length};
    push(event);
}

#endif

void move(std::uint32_t window, int x, std::uint32_t buttons) { move(window, x, buttons, 0); }

void moveByTouch(std::uint32_t window, int x) { move(window, x, SDL_BUTTON_LMASK, SDL_TOUCH_MOUSEID); }

} // namespace test::pushed
