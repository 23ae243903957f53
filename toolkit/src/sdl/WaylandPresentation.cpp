#include "WaylandPresentation.h"

#include <wayland-client.h>

#include "presentation-time-client.h"

#include <cstring>
#include <ctime>
#include <utility>

// Generated, as C; the header above gives its one name to other files.
#include "presentation-time-code.h"

namespace gui
{

// There is a function of that name, too.
using Feedback = struct wp_presentation_feedback;

struct WaylandPresentation::Frame
{
    WaylandPresentation* pOwner;
    Feedback* pFeedback;
    std::uint32_t windowID;
};

struct WaylandPresentation::Listeners
{
    static void onGlobal(void* pThis, wl_registry* pRegistry, uint32_t name, const char* interface, uint32_t)
    {
        auto& presentation = *static_cast<WaylandPresentation*>(pThis);
        if (presentation._pPresentation != nullptr || std::strcmp(interface, wp_presentation_interface.name) != 0)
            return;
        presentation._pPresentation =
            static_cast<wp_presentation*>(wl_registry_bind(pRegistry, name, &wp_presentation_interface, 1));
        wp_presentation_add_listener(presentation._pPresentation, &cPresentation, pThis);
    }
    static void onGlobalRemove(void*, wl_registry*, uint32_t) {}
    static void onClock(void* pThis, wp_presentation*, uint32_t id)
    {
        auto& presentation = *static_cast<WaylandPresentation*>(pThis);
        presentation._clock = static_cast<clockid_t>(id);
        timespec now{};
        presentation._hasClock = clock_gettime(presentation._clock, &now) == 0;
    }
    static void onOutput(void*, Feedback*, wl_output*) {}
    static void onPresented(void* pFrame, Feedback*, uint32_t secondsHigh, uint32_t secondsLow, uint32_t nanoseconds,
                            uint32_t refresh, uint32_t, uint32_t, uint32_t)
    {
        const Frame& frame = *static_cast<Frame*>(pFrame);
        WaylandPresentation& presentation = *frame.pOwner;
        const std::uint32_t windowID = frame.windowID;
        presentation.forget(&frame);
        const std::chrono::seconds seconds((static_cast<std::int64_t>(secondsHigh) << 32) | secondsLow);
        const RunLoop::Time shown = presentation.toTime(seconds + std::chrono::nanoseconds(nanoseconds));
        presentation._handler(windowID, shown, std::chrono::nanoseconds(refresh));
    }
    static void onDiscarded(void* pFrame, Feedback*)
    {
        const Frame& frame = *static_cast<Frame*>(pFrame);
        frame.pOwner->forget(&frame);
    }

    static constexpr wl_registry_listener cRegistry{onGlobal, onGlobalRemove};
    static constexpr wp_presentation_listener cPresentation{onClock};
    static constexpr wp_presentation_feedback_listener cFeedback{onOutput, onPresented, onDiscarded};
};

WaylandPresentation::WaylandPresentation(wl_display* pDisplay, Handler handler)
    : _handler(std::move(handler))
    , _registry(pDisplay, Listeners::cRegistry, this)
{
    // The first brings what there is, the second its clock.
    constexpr int cRoundtrips = 2;
    for (int i = 0; i < cRoundtrips; ++i)
        _registry.waitForAnswers();
}

WaylandPresentation::~WaylandPresentation()
{
    for (const std::unique_ptr<Frame>& pFrame : _frames)
        wp_presentation_feedback_destroy(pFrame->pFeedback);
    if (_pPresentation != nullptr)
        wp_presentation_destroy(_pPresentation);
}

void WaylandPresentation::await(wl_surface* pSurface, std::uint32_t windowID)
{
    // Of a frame that a hidden window got nothing is told until the next one is there, or never.
    constexpr std::size_t cMostFrames = 64;
    if (!_hasClock || pSurface == nullptr)
        return;
    if (_frames.size() == cMostFrames)
        forget(_frames.front().get());
    Feedback* const pFeedback = wp_presentation_feedback(_pPresentation, pSurface);
    _frames.push_back(std::make_unique<Frame>(Frame{this, pFeedback, windowID}));
    wp_presentation_feedback_add_listener(pFeedback, &Listeners::cFeedback, _frames.back().get());
}

void WaylandPresentation::dispatch() { _registry.dispatch(); }

// Compositors have other clocks than ours, some of which are not kept in step with the world's.
RunLoop::Time WaylandPresentation::toTime(std::chrono::nanoseconds shown) const
{
    timespec now{};
    clock_gettime(_clock, &now);
    return RunLoop::Clock::now() - (std::chrono::seconds(now.tv_sec) + std::chrono::nanoseconds(now.tv_nsec) - shown);
}

void WaylandPresentation::forget(const Frame* pFrame)
{
    wp_presentation_feedback_destroy(pFrame->pFeedback);
    std::erase_if(_frames, [pFrame](const std::unique_ptr<Frame>& pCandidate) { return pCandidate.get() == pFrame; });
}

} // namespace gui
