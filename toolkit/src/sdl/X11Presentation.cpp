#include "X11Presentation.h"

#include <X11/Xlib.h>
#include <xcb/present.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <utility>

namespace gui
{

namespace
{

struct Freeing
{
    void operator()(void* p) const { std::free(p); }
};

// Drivers ask the same of the same windows, and everybody hears all answers: theirs count from 0 on.
constexpr std::uint32_t cFirstSerial = 0x47000000;
// What there are nanoseconds for, in microseconds: 285 years.
constexpr std::uint64_t cLatest = std::uint64_t{1} << 53;

} // namespace

X11Presentation::X11Presentation(_XDisplay* pDisplay, Handler handler)
    : _pConnection(xcb_connect(XDisplayString(pDisplay), nullptr))
    , _handler(std::move(handler))
    , _nextSerial(cFirstSerial)
{
    const xcb_query_extension_reply_t* const pExtension =
        xcb_connection_has_error(_pConnection) == 0 ? xcb_get_extension_data(_pConnection, &xcb_present_id) : nullptr;
    if (pExtension == nullptr || pExtension->present == 0)
        return;
    // The server wants to be asked before anything else.
    const xcb_present_query_version_cookie_t cookie =
        xcb_present_query_version(_pConnection, XCB_PRESENT_MAJOR_VERSION, 0);
    const std::unique_ptr<xcb_present_query_version_reply_t, Freeing> pVersion(
        xcb_present_query_version_reply(_pConnection, cookie, nullptr));
    _isThere = pVersion != nullptr;
}

X11Presentation::~X11Presentation() { xcb_disconnect(_pConnection); }

void X11Presentation::await(const sdl::X11Window& window, std::uint32_t windowID)
{
    if (!_isThere)
        return;
    Watched& watched = watch(static_cast<std::uint32_t>(window.window), windowID);
    if (std::exchange(watched.isAsked, true))
        return;
    watched.serial = _nextSerial;
    _nextSerial += 2;
    watched.told.reset();
    const auto ask = [&](std::uint32_t i, std::uint64_t least, std::uint64_t divisor, std::uint64_t remainder)
    { xcb_present_notify_msc(_pConnection, watched.window, watched.serial + i, least, divisor, remainder); };
    constexpr std::uint64_t cSpan = DisplayBeat::cSpan;
    // The next one at which the count divides by one. Where the count isn't known, a pair is as far apart.
    if (watched.count != 0)
    {
        ask(0, 0, 1, 0);
        ask(1, watched.count + cSpan, 1, 0);
    }
    else
    {
        ask(0, 0, 2 * cSpan, 0);
        ask(1, 0, 2 * cSpan, cSpan);
    }
    xcb_flush(_pConnection);
}

double X11Presentation::getRate(std::uint32_t windowID) const
{
    const auto it = std::ranges::find(_windows, windowID, &Watched::windowID);
    const std::chrono::duration<double> interval =
        it != _windows.end() ? it->beat.getInterval() : RunLoop::Clock::duration::zero();
    return interval.count() > 0 ? 1 / interval.count() : 0;
}

X11Presentation::Watched& X11Presentation::watch(std::uint32_t window, std::uint32_t windowID)
{
    const auto it = std::ranges::find(_windows, windowID, &Watched::windowID);
    if (it != _windows.end() && it->window == window)
        return *it;
    if (it != _windows.end())
        _windows.erase(it);
    // Nobody tells when one goes away.
    constexpr std::size_t cMostWindows = 64;
    if (_windows.size() == cMostWindows)
        _windows.erase(_windows.begin());
    xcb_present_select_input(_pConnection, xcb_generate_id(_pConnection), window,
                             XCB_PRESENT_EVENT_MASK_COMPLETE_NOTIFY);
    Watched& watched = _windows.emplace_back();
    watched.windowID = windowID;
    watched.window = window;
    return watched;
}

void X11Presentation::dispatch()
{
    if (std::ranges::none_of(_windows, &Watched::isAsked))
        return;
    using Event = std::unique_ptr<xcb_generic_event_t, Freeing>;
    // Errors among them, of windows that are gone.
    while (const Event pEvent{xcb_poll_for_event(_pConnection)})
    {
        if (pEvent->response_type != XCB_GE_GENERIC)
            continue;
        const auto& event = *reinterpret_cast<const xcb_present_complete_notify_event_t*>(pEvent.get());
        if (event.event_type != XCB_PRESENT_COMPLETE_NOTIFY || event.kind != XCB_PRESENT_COMPLETE_KIND_NOTIFY_MSC)
            continue;
        // In microseconds of the clock that is ours, too, where the server is on this machine.
        const std::chrono::microseconds time(std::min(event.ust, cLatest));
        take(event.window, event.serial, {event.msc, RunLoop::Time(time)});
    }
}

void X11Presentation::take(std::uint32_t window, std::uint32_t serial, const DisplayBeat::Frame& frame)
{
    const auto it = std::ranges::find(_windows, window, &Watched::window);
    if (it == _windows.end() || !it->isAsked)
        return;
    if (serial != it->serial && serial != it->serial + 1)
        return;
    if (!it->told)
    {
        it->told = frame;
        return;
    }
    it->isAsked = false;
    it->count = frame.count;
    if (it->beat.add(*it->told, frame, RunLoop::Clock::now()))
        _handler(it->windowID, it->beat.getTime(), it->beat.getInterval());
}

} // namespace gui
