#include "SDLEventQueue.h"

#include <gui/port/sdl/SDL.h>
#include <gui/port/sdl/SDLPort.h>

#include <iterator>
#include <optional>
#include <utility>

namespace gui
{

SDLEventQueue::SDLEventQueue() { sdl::listen(*this); }

SDLEventQueue::~SDLEventQueue() { sdl::stopListening(); }

void SDLEventQueue::pump()
{
    SDL_PumpEvents();
    if (_pWaylandButtons != nullptr)
        _pWaylandButtons->dispatch();
    // SDL's own queue only serves to end its wait. It has a limit, this one has none.
    constexpr Uint32 cFirst = 0, cLast = 0xFFFF;
    SDL_FlushEvents(cFirst, cLast);
}

bool SDLEventQueue::take(SDLEvent& event)
{
    if (_events.empty())
        return false;
    event = std::move(_events.front());
    _events.pop_front();
    return true;
}

void SDLEventQueue::append(SDLEvent event)
{
    using Type = SDLEvent::Type;
    const bool isKey = event.type == Type::KeyDown || event.type == Type::KeyUp;
    // Keys that the input method takes, a letter behind a dead key say, come without the X11 event.
    event.xKeyCode = isKey ? std::exchange(_xKeyCode, 0) : 0;
    event.xState = isKey ? _xState : 0;
    if (_pWaylandButtons == nullptr)
        listenToWayland(event.windowID);
    if (event.type == Type::ButtonDown || event.type == Type::ButtonUp)
        countClick(event);
    SDLEvent* const pPrevious = _events.empty() ? nullptr : &_events.back();
    // SDL tells the text of a key right behind the key, in several pieces where it is long.
    if (event.type == Type::Text)
        event.isOfKey = pPrevious != nullptr &&
                        (pPrevious->type == Type::KeyDown || (pPrevious->type == Type::Text && pPrevious->isOfKey));
    // Where the pointer entered is only told by the motion that follows.
    if (event.type == Type::Motion && pPrevious != nullptr && pPrevious->type == Type::Entered &&
        pPrevious->windowID == event.windowID)
        pPrevious->mouse = event.mouse;
    _events.push_back(std::move(event));
    if (_events.size() >= 2 && _events.back().type == Type::Motion)
        mergeLastMotions();
}

void SDLEventQueue::listenToWayland(std::uint32_t windowID)
{
    SDL_Window* const pWindow = SDL_GetWindowFromID(windowID);
    if (wl_display* const pDisplay = pWindow != nullptr ? sdl::getWayland(pWindow) : nullptr)
        _pWaylandButtons = std::make_unique<sdl::WaylandButtons>(pDisplay);
}

// SDL's time is when the program came to look. SDL makes buttons of fingers, too, which have no such event.
void SDLEventQueue::takeServerTime(SDLEvent& event)
{
    const std::uint32_t xTime = std::exchange(_xTime, 0);
    if (event.isOfTouch)
        return;
    std::optional<std::chrono::milliseconds> time;
    if (xTime != 0)
        time = std::chrono::milliseconds(xTime);
    else if (SDL_Window* const pWindow = SDL_GetWindowFromID(event.windowID); pWindow != nullptr && _pWaylandButtons)
        time = _pWaylandButtons->take(sdl::getWaylandSurface(pWindow), event.button,
                                      event.type == SDLEvent::Type::ButtonDown);
    event.isServerTime = time.has_value();
    event.time = time.value_or(event.time);
}

void SDLEventQueue::countClick(SDLEvent& event)
{
    takeServerTime(event);
    event.nClicks = _clicks.count(event);
}

void SDLEventQueue::mergeLastMotions()
{
    const SDLEvent& last = _events.back();
    SDLEvent& previous = _events[_events.size() - 2];
    if (previous.type != last.type || previous.windowID != last.windowID || previous.isOfTouch != last.isOfTouch ||
        previous.modifiers != last.modifiers || previous.mouseButtons != last.mouseButtons)
        return;
    previous = last;
    _events.pop_back();
}

void SDLEventQueue::beginDrop()
{
    _droppedFiles.clear();
    _droppedText.clear();
}

void SDLEventQueue::collectFile(const char* path) { _droppedFiles.emplace_back(path != nullptr ? path : ""); }

// It may come in lines.
void SDLEventQueue::collectText(const char* text)
{
    _droppedText += _droppedText.empty() ? "" : "\n";
    _droppedText += text != nullptr ? text : "";
}

void SDLEventQueue::endDrop(SDLEvent event)
{
    event.files = std::exchange(_droppedFiles, {});
    event.text = std::exchange(_droppedText, {});
    append(std::move(event));
}

void SDLEventQueue::rememberXKey(unsigned int keyCode, unsigned int state)
{
    _xKeyCode = keyCode;
    _xState = state;
}

} // namespace gui
