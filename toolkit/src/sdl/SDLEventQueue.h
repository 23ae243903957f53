#pragma once

#include "SDLClicks.h"
#include "WaylandButtons.h"

#include <gui/port/sdl/SDLEvent.h>

#include <deque>
#include <memory>

namespace gui
{

/// SDL's events, each with the keyboard's and the mouse's state of its own moment. Motions of the pointer that follow
/// each other, in one window and with the same buttons and modifiers held, are one: the last. It listens to SDL while
/// it lives. GUI thread only; events that other threads push, such as a wake-up, don't get here.
class SDLEventQueue
{
public:
    SDLEventQueue();
    ~SDLEventQueue();
    SDLEventQueue(const SDLEventQueue&) = delete;
    SDLEventQueue& operator=(const SDLEventQueue&) = delete;

    /// Takes in what the window system has sent.
    void pump();
    /// @return false when there is none
    bool take(SDLEvent& event);
    bool isEmpty() const { return _events.empty(); }
    /// Whether there is a motion and nothing behind it: it may wait for more of its kind.
    bool hasOnlyMotion() const { return _events.size() == 1 && _events.front().type == SDLEvent::Type::Motion; }

    /// For who translates SDL's events: one more. What was dropped is collected, by its parts, until the end.
    void append(SDLEvent event);
    void beginDrop();
    void collectFile(const char* path);
    void collectText(const char* text);
    /// Of a drop: with what was collected.
    void endDrop(SDLEvent event);
    /// The X11 event that comes right before what SDL makes of it.
    void rememberXKey(unsigned int keyCode, unsigned int state);
    /// The same of a button. @param time  of the server, in milliseconds
    void rememberXButton(unsigned long time) { _xTime = static_cast<std::uint32_t>(time); }
    /// Any other.
    void forgetXEvent() { _xKeyCode = _xTime = 0; }

private:
    void listenToWayland(std::uint32_t windowID);
    void takeServerTime(SDLEvent& event);
    void countClick(SDLEvent& event);
    void mergeLastMotions();

    std::deque<SDLEvent> _events;
    std::vector<std::string> _droppedFiles; // so far
    std::string _droppedText;
    unsigned int _xKeyCode = 0;
    unsigned int _xState = 0;
    std::uint32_t _xTime = 0;
    SDLClicks _clicks;
    std::unique_ptr<sdl::WaylandButtons> _pWaylandButtons; // from the first event of a window there on
};

namespace sdl
{

/// The other side, which SDL2 and SDL3 do each in its own way: SDL's events go to this queue from now on.
void listen(SDLEventQueue& queue);
void stopListening();

} // namespace sdl

} // namespace gui
