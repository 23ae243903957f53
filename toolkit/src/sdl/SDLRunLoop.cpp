#include "SDLRunLoop.h"

#include "SDLWindow.h"

#include <gui/NativeView.h>
#include <gui/Window.h>
#include <gui/port/WindowSystem.h>
#include <gui/port/sdl/Presentation.h>
#include <gui/port/sdl/SDL.h>
#include <gui/port/sdl/SDLPort.h>
#include <vo/Log.h>

#include <algorithm>
#include <thread>

namespace gui
{

namespace
{

constexpr char cViewKey[] = "gui::NativeView";
constexpr char cSinkKey[] = "gui::SDLEventSink";

using Type = SDLEvent::Type;

SDLRunLoop* s_pRunLoop = nullptr;

NativeView* viewOf(SDL_Window* pWindow) { return static_cast<NativeView*>(sdl::getData(pWindow, cViewKey)); }

SDLEventSink* sinkOf(SDL_Window* pWindow) { return static_cast<SDLEventSink*>(sdl::getData(pWindow, cSinkKey)); }

} // namespace

SDLRunLoop::SDLRunLoop()
    : _wakeUpType(SDL_RegisterEvents(1))
{
    s_pRunLoop = this;
    connect();
}

SDLRunLoop::~SDLRunLoop()
{
    disconnect();
    s_pRunLoop = nullptr;
}

void SDLRunLoop::setView(SDL_Window* pWindow, NativeView* pView) { sdl::setData(pWindow, cViewKey, pView); }

void SDLRunLoop::tellShow(SDL_Window* pWindow, const td::Size<int>& size)
{
    if (SDLEventSink* const pSink = sinkOf(pWindow))
        pSink->onShow(size);
}

void setEventSink(SDL_Window* pWindow, SDLEventSink* pSink) { sdl::setData(pWindow, cSinkKey, pSink); }

void awaitPresentation(SDL_Window* pWindow)
{
    if (s_pRunLoop != nullptr)
        s_pRunLoop->await(pWindow);
}

void SDLRunLoop::await(SDL_Window* pWindow)
{
    // For what goes on alone, clocks and motions: of other frames it makes no difference when they are seen. But where
    // nobody tells the display's rate the first ones are there to measure it.
    constexpr std::chrono::milliseconds cMotion(250);
    const NativeView* const pView = viewOf(pWindow);
    if (pView == nullptr)
        return;
    const bool isGoingOn = hasFrameClock(pView) || Clock::now() < _nextMotion + cMotion;
    const auto handler = [this](std::uint32_t windowID, Time shown, Clock::duration refresh)
    { onShown(windowID, shown, refresh); };
    if (wl_surface* const pSurface = isGoingOn ? sdl::getWaylandSurface(pWindow) : nullptr)
    {
        if (_pWaylandPresentation == nullptr)
            _pWaylandPresentation = std::make_unique<WaylandPresentation>(sdl::getWayland(pWindow), handler);
        _pWaylandPresentation->await(pSurface, SDL_GetWindowID(pWindow));
    }
    else if (const std::optional<sdl::X11Window> x11 = sdl::getX11(pWindow);
             x11 && (isGoingOn || getDisplayRate(pView) <= 0))
    {
        if (_pX11Presentation == nullptr)
            _pX11Presentation = std::make_unique<X11Presentation>(x11->pDisplay, handler);
        _pX11Presentation->await(*x11, SDL_GetWindowID(pWindow));
    }
}

void SDLRunLoop::onShown(std::uint32_t windowID, Time shown, Clock::duration refresh)
{
    SDL_Window* const pWindow = SDL_GetWindowFromID(windowID);
    if (NativeView* const pView = pWindow != nullptr ? viewOf(pWindow) : nullptr)
        alignFrameClock(pView, shown, refresh);
}

void SDLRunLoop::wait(const std::optional<Time>& until)
{
    using std::chrono::milliseconds;
    // What an input method sends by way of D-Bus doesn't end SDL's wait.
    const milliseconds longest = sdl::isTextInputActive() ? milliseconds(50) : std::chrono::hours(1);
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
    if (_pWaylandPresentation != nullptr)
        _pWaylandPresentation->dispatch();
    if (_pX11Presentation != nullptr)
        _pX11Presentation->dispatch();
    SDLEvent event;
    while (!hasQuit() && isEventDue() && _events.take(event))
        dispatch(event);
}

bool SDLRunLoop::isEventDue() const
{
    return !_events.isEmpty() && !(_events.hasOnlyMotion() && Clock::now() < _nextMotion);
}

// On the display's beat, or on multiples of the frames' period, so that the rate does not drift.
void SDLRunLoop::putOffMotions(const NativeView* pView)
{
    const Time now = Clock::now();
    if (now < _nextMotion)
        return;
    constexpr double cDefaultRate = 60;
    const double rate = getDisplayRate(pView);
    const std::chrono::duration<double> exactPeriod(1 / (rate > 0 ? rate : cDefaultRate));
    const auto period = std::chrono::duration_cast<Clock::duration>(exactPeriod);
    // Not one that is so near that it may be the same, which was told of anew.
    if (const std::optional<Time> beat = getNextBeat(pView, now + period / 8))
        _nextMotion = *beat;
    else
        _nextMotion = now - _nextMotion < period ? _nextMotion + period : now + period;
}

double SDLRunLoop::getDisplayRate(const NativeView* pView) const
{
    auto* const pWindow = static_cast<SDL_Window*>(pView->getNativeWindow());
    const double told = sdl::getDisplayRate(pWindow);
    if (told > 0 || _pX11Presentation == nullptr)
        return told;
    return _pX11Presentation->getRate(SDL_GetWindowID(pWindow));
}

void SDLRunLoop::dispatch(const SDLEvent& event)
{
    if (event.type == Type::DisplayLost)
    {
        // Nothing else makes SDL say so.
        vo::dbgLog("ERROR! Application lost its display and ends");
        closeWindows(1);
        return;
    }
    if (event.type == Type::ColorScheme)
    {
        WindowSystem::instance().tellColorScheme();
        return;
    }
    SDL_Window* const pWindow = SDL_GetWindowFromID(event.windowID);
    NativeView* const pView = pWindow != nullptr ? viewOf(pWindow) : nullptr;
    if (pView == nullptr)
        return;
    // It may be gone, or another's.
    const auto isStillThere = [&]
    { return SDL_GetWindowFromID(event.windowID) == pWindow && viewOf(pWindow) == pView; };
    if (event.type == Type::Motion)
        putOffMotions(pView);
    // The frame that Wayland's clients draw around their windows changes with the focus, and shows with what is in it.
    if ((event.type == Type::FocusGained || event.type == Type::FocusLost) && sdl::isOnWayland())
        setNeedsDisplay(pView);
    if (onWindowEvent(pWindow, pView, event.type))
    {
        if (isStillThere())
            SDLWindow::follow(pWindow, event.type);
        return;
    }
    if (SDLEventSink* const pSink = sinkOf(pWindow))
        pSink->onEvent(event);
}

bool SDLRunLoop::onWindowEvent(SDL_Window* pWindow, NativeView* pView, Type type)
{
    const auto windowID = SDL_GetWindowID(pWindow);
    switch (type)
    {
    case Type::SizeChanged:
        // On Wayland this is also how a change of the scale is told, with the size in points unchanged.
        pView->sizeChanged();
        if (SDL_GetWindowFromID(windowID) == pWindow && viewOf(pWindow) == pView)
            pView->scaleChanged();
        return true;
    case Type::DisplayChanged:
        updateFrameClock(pView);
        pView->scaleChanged();
        return true;
    case Type::Exposed:
        setVisible(pView, sdl::isVisible(pWindow));
        setNeedsDisplay(pView);
        return true;
    case Type::Moved:
        return true;
    case Type::StateChanged:
        setVisible(pView, sdl::isVisible(pWindow));
        return true;
    case Type::CloseRequested:
        if (Window* const pShownIn = pView->getWindow())
            pShownIn->close();
        return true;
    default:
        return false;
    }
}

} // namespace gui
