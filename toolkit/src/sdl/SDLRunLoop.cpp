#include "SDLRunLoop.h"

#include "SDLWindow.h"

#include <gui/NativeView.h>
#include <gui/Window.h>
#include <vo/Log.h>

#include <SDL_keyboard.h>

#include <algorithm>
#include <thread>

namespace gui
{

namespace
{

constexpr char cViewKey[] = "gui::NativeView";
constexpr char cSinkKey[] = "gui::SDLEventSink";

// @return 0 for an event that belongs to no window
Uint32 windowOf(const SDL_Event& event)
{
    switch (event.type)
    {
    case SDL_WINDOWEVENT:
        return event.window.windowID;
    case SDL_KEYDOWN:
    case SDL_KEYUP:
        return event.key.windowID;
    case SDL_TEXTINPUT:
        return event.text.windowID;
    case SDL_TEXTEDITING:
        return event.edit.windowID;
    case SDL_TEXTEDITING_EXT:
        return event.editExt.windowID;
    case SDL_MOUSEMOTION:
        return event.motion.windowID;
    case SDL_MOUSEBUTTONDOWN:
    case SDL_MOUSEBUTTONUP:
        return event.button.windowID;
    case SDL_MOUSEWHEEL:
        return event.wheel.windowID;
    case SDL_FINGERDOWN:
    case SDL_FINGERMOTION:
    case SDL_FINGERUP:
        return event.tfinger.windowID;
    case SDL_DROPCOMPLETE:
        return event.drop.windowID;
    default:
        return 0;
    }
}

NativeView* viewOf(SDL_Window* pWindow) { return static_cast<NativeView*>(SDL_GetWindowData(pWindow, cViewKey)); }

// @return 0 when SDL does not know
int displayRateOf(SDL_Window* pWindow)
{
    const int display = pWindow != nullptr ? SDL_GetWindowDisplayIndex(pWindow) : 0;
    SDL_DisplayMode mode{};
    return display >= 0 && SDL_GetCurrentDisplayMode(display, &mode) == 0 ? mode.refresh_rate : 0;
}

SDLEventSink* sinkOf(SDL_Window* pWindow) { return static_cast<SDLEventSink*>(SDL_GetWindowData(pWindow, cSinkKey)); }

} // namespace

SDLRunLoop::SDLRunLoop()
    : _wakeUpType(SDL_RegisterEvents(1))
{
    connect();
}

SDLRunLoop::~SDLRunLoop() { disconnect(); }

void SDLRunLoop::setView(SDL_Window* pWindow, NativeView* pView) { SDL_SetWindowData(pWindow, cViewKey, pView); }

void SDLRunLoop::tellShow(SDL_Window* pWindow, const td::Size<int>& size)
{
    if (SDLEventSink* const pSink = sinkOf(pWindow))
        pSink->onShow(size);
}

void setEventSink(SDL_Window* pWindow, SDLEventSink* pSink) { SDL_SetWindowData(pWindow, cSinkKey, pSink); }

void SDLRunLoop::wait(const std::optional<Time>& until)
{
    using std::chrono::milliseconds;
    // What an input method sends by way of D-Bus doesn't end SDL's wait.
    const milliseconds longest = SDL_IsTextInputActive() == SDL_TRUE ? milliseconds(50) : std::chrono::hours(1);
    // SDL ends its wait for more than what is an event here, so the events themselves say whether it is over.
    for (_events.pump(); !isEventDue() && !_isWakeUpPosted; _events.pump())
    {
        std::optional<Time> end = until;
        if (!_events.isEmpty())
            end = until ? std::min(*until, _nextMotion) : _nextMotion;
        const Clock::duration rest = end ? *end - Clock::now() : longest;
        if (rest <= Clock::duration::zero())
            return;
        const auto wholeMilliseconds = std::min(std::chrono::floor<milliseconds>(rest), longest);
        if (wholeMilliseconds.count() == 0)
        {
            std::this_thread::sleep_until(*end);
            return;
        }
        SDL_WaitEventTimeout(nullptr, static_cast<int>(wholeMilliseconds.count()));
    }
}

void SDLRunLoop::wakeUp()
{
    if (_isWakeUpPosted.exchange(true))
        return;
    SDL_Event event{};
    event.type = _wakeUpType;
    SDL_PushEvent(&event);
}

void SDLRunLoop::dispatchEvents()
{
    _isWakeUpPosted = false;
    _events.pump();
    SDLEvent event;
    while (!hasQuit() && isEventDue() && _events.take(event))
        dispatch(event);
}

bool SDLRunLoop::isEventDue() const
{
    return !_events.isEmpty() && !(_events.hasOnlyMotion() && Clock::now() < _nextMotion);
}

// On multiples of the frames' period, so that the rate does not drift.
void SDLRunLoop::putOffMotions(SDL_Window* pWindow)
{
    const Time now = Clock::now();
    if (now < _nextMotion)
        return;
    constexpr int cDefaultRate = 60;
    const int rate = displayRateOf(pWindow);
    const Clock::duration period = Clock::duration(std::chrono::seconds(1)) / (rate > 0 ? rate : cDefaultRate);
    _nextMotion = now - _nextMotion < period ? _nextMotion + period : now + period;
}

double SDLRunLoop::getDisplayRate(const NativeView* pView) const
{
    return displayRateOf(static_cast<SDL_Window*>(pView->getNativeWindow()));
}

void SDLRunLoop::dispatch(const SDLEvent& event)
{
    if (event.event.type == SDL_QUIT)
    {
        // Nothing else makes SDL say so.
        vo::dbgLog("ERROR! Application lost its display and ends");
        closeWindows(1);
        return;
    }
    SDL_Window* const pWindow = SDL_GetWindowFromID(windowOf(event.event));
    NativeView* const pView = pWindow != nullptr ? viewOf(pWindow) : nullptr;
    if (pView == nullptr)
        return;
    if (event.event.type == SDL_MOUSEMOTION)
        putOffMotions(pWindow);
    if (event.event.type == SDL_WINDOWEVENT)
    {
        const bool isSeenTo = onWindowEvent(pWindow, pView, event.event.window);
        // It may be gone, or another's.
        if (SDL_GetWindowFromID(event.event.window.windowID) != pWindow || viewOf(pWindow) != pView)
            return;
        SDLWindow::follow(pWindow, event.event.window);
        if (isSeenTo || SDL_GetWindowFromID(event.event.window.windowID) != pWindow)
            return;
    }
    if (SDLEventSink* const pSink = sinkOf(pWindow))
        pSink->onEvent(event);
}

bool SDLRunLoop::onWindowEvent(SDL_Window* pWindow, NativeView* pView, const SDL_WindowEvent& event)
{
    switch (event.event)
    {
    case SDL_WINDOWEVENT_SIZE_CHANGED:
        // On Wayland this is also how a change of the scale is told, with the size in points unchanged.
        pView->sizeChanged();
        if (SDL_GetWindowFromID(event.windowID) == pWindow && viewOf(pWindow) == pView)
            pView->scaleChanged();
        return true;
    case SDL_WINDOWEVENT_DISPLAY_CHANGED:
        updateFrameClock(pView);
        pView->scaleChanged();
        return true;
    case SDL_WINDOWEVENT_EXPOSED:
        setNeedsDisplay(pView);
        return true;
    case SDL_WINDOWEVENT_SHOWN:
    case SDL_WINDOWEVENT_HIDDEN:
    case SDL_WINDOWEVENT_MINIMIZED:
    case SDL_WINDOWEVENT_MAXIMIZED:
    case SDL_WINDOWEVENT_RESTORED:
        setVisible(pView, (SDL_GetWindowFlags(pWindow) & (SDL_WINDOW_HIDDEN | SDL_WINDOW_MINIMIZED)) == 0);
        return true;
    case SDL_WINDOWEVENT_CLOSE:
        if (Window* const pShownIn = pView->getWindow())
            pShownIn->close();
        return true;
    default:
        return false;
    }
}

} // namespace gui
