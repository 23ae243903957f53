#pragma once

#include "Intervals.h"

#include <xcb/present.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

namespace bench
{

/// When the display of a window went on to its next frames, as the X server tells: against its clock, which is ours
/// where it is on this machine, moments are counted by frames.
class Beats
{
public:
    explicit Beats(std::uint32_t window)
        : _pConnection(xcb_connect(nullptr, nullptr))
        , _window(window)
    {
        xcb_present_select_input(_pConnection, xcb_generate_id(_pConnection), _window,
                                 XCB_PRESENT_EVENT_MASK_COMPLETE_NOTIFY);
        listen();
    }
    ~Beats() { xcb_disconnect(_pConnection); }
    Beats(const Beats&) = delete;
    Beats& operator=(const Beats&) = delete;

    /// A line: how long a beat was between the making of this and now, how many had none of these moments or one too
    /// many, and where in it they were.
    void print(const std::vector<Clock::time_point>& times)
    {
        listen();
        const Frame& first = _frames.front();
        const auto nFrames = static_cast<double>(_frames.back().count - first.count);
        if (times.empty() || nFrames < 1)
            return;
        const double beat = (_frames.back().time - first.time) / nFrames;
        // The server wakes up late now and then, and never early.
        double earliest = first.time;
        for (const Frame& frame : _frames)
            earliest = std::min(earliest, frame.time - beat * static_cast<double>(frame.count - first.count));
        std::vector<double> counts, places;
        for (const Clock::time_point& time : times)
        {
            const double since = std::chrono::duration<double, std::milli>(time.time_since_epoch()).count() - earliest;
            counts.push_back(std::floor(since / beat));
            places.push_back(since - counts.back() * beat);
        }
        double nEmpty = 0;
        double nMore = 0;
        for (std::size_t i = 1; i < counts.size(); ++i)
        {
            nEmpty += std::max(0.0, counts[i] - counts[i - 1] - 1);
            nMore += counts[i] == counts[i - 1] ? 1 : 0;
        }
        std::printf("beats: %.0f of %.3f ms, %.0f with none, %.0f with one too many; %.2f to %.2f ms behind, mostly "
                    "%.2f\n",
                    counts.back() - counts.front() + 1, beat, nEmpty, nMore, quantile(places, 0.01),
                    quantile(places, 0.99), quantile(places, 0.5));
        std::fflush(stdout);
    }

private:
    struct Frame
    {
        std::uint64_t count = 0;
        double time = 0; // in milliseconds
    };

    // To some in a row.
    void listen()
    {
        constexpr int cFrames = 32;
        for (int i = 0; i < cFrames; ++i)
        {
            xcb_present_notify_msc(_pConnection, _window, 0, 0, 1, 0);
            xcb_flush(_pConnection);
            Frame frame = await();
            if (frame.count == 0)
                return;
            _frames.push_back(frame);
        }
    }

    Frame await()
    {
        while (const std::unique_ptr<xcb_generic_event_t, void (*)(void*)> pEvent{xcb_wait_for_event(_pConnection),
                                                                                  std::free})
        {
            const auto& event = *reinterpret_cast<const xcb_present_complete_notify_event_t*>(pEvent.get());
            // Of what was asked for here, and by nobody else.
            if (pEvent->response_type == XCB_GE_GENERIC && event.event_type == XCB_PRESENT_COMPLETE_NOTIFY &&
                event.kind == XCB_PRESENT_COMPLETE_KIND_NOTIFY_MSC && event.serial == 0)
                return {event.msc, static_cast<double>(event.ust) / 1000};
        }
        return {};
    }

    xcb_connection_t* _pConnection;
    std::uint32_t _window;
    std::vector<Frame> _frames;
};

} // namespace bench
