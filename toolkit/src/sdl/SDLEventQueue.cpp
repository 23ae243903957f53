#include "SDLEventQueue.h"

#include <SDL_keyboard.h>
#include <SDL_mouse.h>
#include <SDL_syswm.h>

#include <cstring>
#include <iterator>
#include <utility>

namespace gui
{

namespace
{

template <std::size_t n>
std::string textOf(const char (&text)[n])
{
    return {text, strnlen(text, n)};
}

bool isWindowEvent(const SDL_Event& event, SDL_WindowEventID id)
{
    return event.type == SDL_WINDOWEVENT && event.window.event == id;
}

} // namespace

SDLEventQueue::SDLEventQueue()
{
    SDL_EventState(SDL_SYSWMEVENT, SDL_ENABLE);
    // Until a view wants them.
    for (const Uint32 type : {SDL_DROPFILE, SDL_DROPTEXT, SDL_DROPBEGIN, SDL_DROPCOMPLETE})
        SDL_EventState(type, SDL_DISABLE);
    SDL_SetEventFilter(onEvent, this);
}

SDLEventQueue::~SDLEventQueue() { SDL_SetEventFilter(nullptr, nullptr); }

void SDLEventQueue::pump()
{
    SDL_PumpEvents();
    // SDL's own queue only serves to end its wait. It has a limit, this one has none.
    SDL_FlushEvents(SDL_FIRSTEVENT, SDL_LASTEVENT);
}

bool SDLEventQueue::take(SDLEvent& event)
{
    if (_events.empty())
        return false;
    event = std::move(_events.front());
    _events.pop_front();
    return true;
}

int SDLCALL SDLEventQueue::onEvent(void* pQueue, SDL_Event* pEvent)
{
    auto& queue = *static_cast<SDLEventQueue*>(pQueue);
    // A wake-up, or a mark of SDL's own.
    if (pEvent->type >= SDL_POLLSENTINEL)
        return 1;
    if (pEvent->type != SDL_SYSWMEVENT)
    {
        queue.append(*pEvent);
        return 1;
    }
    // The X11 event comes right before what SDL makes of it.
    queue._xKeyCode = 0;
#ifdef SDL_VIDEO_DRIVER_X11
    const SDL_SysWMmsg* const pMessage = pEvent->syswm.msg;
    if (pMessage->subsystem == SDL_SYSWM_X11)
    {
        const XEvent& xEvent = pMessage->msg.x11.event;
        if (xEvent.type == KeyPress || xEvent.type == KeyRelease)
        {
            queue._xKeyCode = xEvent.xkey.keycode;
            queue._xState = xEvent.xkey.state;
        }
    }
#endif
    return 0;
}

void SDLEventQueue::append(SDL_Event& event)
{
    if (collectDrop(event))
        return;
    SDLEvent& entry = _events.emplace_back();
    takeText(entry, event);
    entry.event = event;
    entry.modifiers = static_cast<unsigned int>(SDL_GetModState());
    entry.mouseButtons = SDL_GetMouseState(&entry.mouseX, &entry.mouseY);
    if (event.type == SDL_DROPCOMPLETE)
        placeDrop(entry);
    const bool isKey = event.type == SDL_KEYDOWN || event.type == SDL_KEYUP;
    // Keys that the input method takes, a letter behind a dead key say, come without the X11 event.
    entry.xKeyCode = isKey ? std::exchange(_xKeyCode, 0) : 0;
    entry.xState = isKey ? _xState : 0;

    // Where the pointer entered is only told by the motion that follows.
    if (event.type == SDL_MOUSEMOTION && _events.size() >= 2)
    {
        SDLEvent& previous = _events[_events.size() - 2];
        if (isWindowEvent(previous.event, SDL_WINDOWEVENT_ENTER) &&
            previous.event.window.windowID == event.motion.windowID)
        {
            previous.mouseX = event.motion.x;
            previous.mouseY = event.motion.y;
        }
        mergeLastMotions();
    }
}

void SDLEventQueue::takeText(SDLEvent& entry, SDL_Event& event) const
{
    if (event.type == SDL_TEXTINPUT)
    {
        entry.text = textOf(event.text.text);
        // SDL tells the text of a key right behind the key, in several pieces where it is long.
        const SDLEvent* const pBefore = _events.size() > 1 ? &*std::prev(_events.end(), 2) : nullptr;
        entry.isOfKey = pBefore != nullptr && (pBefore->event.type == SDL_KEYDOWN ||
                                               (pBefore->event.type == SDL_TEXTINPUT && pBefore->isOfKey));
    }
    else if (event.type == SDL_TEXTEDITING)
        entry.text = textOf(event.edit.text);
    else if (event.type == SDL_TEXTEDITING_EXT)
    {
        // Whoever gets it frees it: nobody else will.
        char* const text = std::exchange(event.editExt.text, nullptr);
        if (text != nullptr)
            entry.text = text;
        SDL_free(text);
    }
}

// @return whether it is a part of what is told at the end
bool SDLEventQueue::collectDrop(SDL_Event& event)
{
    if (event.type == SDL_DROPBEGIN)
    {
        _droppedFiles.clear();
        _droppedText.clear();
        return true;
    }
    if (event.type != SDL_DROPFILE && event.type != SDL_DROPTEXT)
        return false;
    // Whoever gets it frees it.
    char* const text = std::exchange(event.drop.file, nullptr);
    const std::string piece = text != nullptr ? text : "";
    SDL_free(text);
    if (event.type == SDL_DROPFILE)
        _droppedFiles.push_back(piece);
    else
        _droppedText += (_droppedText.empty() ? "" : "\n") + piece; // it comes in lines
    return true;
}

void SDLEventQueue::placeDrop(SDLEvent& entry)
{
    entry.files = std::exchange(_droppedFiles, {});
    entry.text = std::exchange(_droppedText, {});
    // On X11 nothing was told of the pointer on its way; on Wayland nobody knows it.
    SDL_Window* const pWindow = SDL_GetWindowFromID(entry.event.drop.windowID);
    const char* const driver = SDL_GetCurrentVideoDriver();
    if (pWindow == nullptr || driver == nullptr || std::strcmp(driver, "x11") != 0)
        return;
    int left = 0, top = 0;
    SDL_GetGlobalMouseState(&entry.mouseX, &entry.mouseY);
    SDL_GetWindowPosition(pWindow, &left, &top);
    entry.mouseX -= left;
    entry.mouseY -= top;
}

void acceptDrops()
{
    for (const Uint32 type : {SDL_DROPFILE, SDL_DROPTEXT, SDL_DROPBEGIN, SDL_DROPCOMPLETE})
        SDL_EventState(type, SDL_ENABLE);
}

void SDLEventQueue::mergeLastMotions()
{
    const SDLEvent& last = _events.back();
    SDLEvent& previous = _events[_events.size() - 2];
    const SDL_MouseMotionEvent& from = previous.event.motion;
    SDL_MouseMotionEvent motion = last.event.motion;
    if (from.type != motion.type || from.windowID != motion.windowID || from.which != motion.which ||
        from.state != motion.state || previous.modifiers != last.modifiers ||
        previous.mouseButtons != last.mouseButtons)
        return;
    motion.xrel += from.xrel;
    motion.yrel += from.yrel;
    previous = last;
    previous.event.motion = motion;
    _events.pop_back();
}

} // namespace gui
