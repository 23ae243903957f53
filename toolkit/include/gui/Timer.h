#pragma once

#include <td/Export.h>

#include <chrono>
#include <functional>
#include <memory>

namespace gui
{

/// Calls a function again and again, or once after a while: a caret that blinks, a value that is read each second, a
/// search that begins when nobody has typed for a moment.
///
///     gui::Timer _blink{[this] { _isCaretOn = !_isCaretOn; reDraw(); }};
///     _blink.start(0.5);
///
/// The run loop calls it, between its events and the frames of that turn, and sleeps until then: a timer costs nothing
/// but its calls. For what moves from frame to frame there is View::startAnimation, which follows the display.
///
/// GUI thread only.
class GUIGL_API Timer
{
public:
    /// What times are read from.
    using Clock = std::chrono::steady_clock;

    /// It does not run yet. @param fn  what it calls. Any of its calls may start and stop timers, and delete this one.
    /// If one throws, the exception leaves the run loop's turn; the timer runs on. Empty is misuse ("fn != nullptr"),
    /// and such a timer never runs
    explicit Timer(std::function<void()> fn);
    /// It stops.
    ~Timer();
    Timer(const Timer&) = delete;
    Timer& operator=(const Timer&) = delete;

    /// Calls each `interval` seconds, for the first time when one went by, from now on also where the timer ran before.
    /// The calls lie on multiples of it, so that they do not drift; those that come too late are left out, not made up
    /// for. @param interval  one below a millisecond is taken as one of a millisecond. That it is not above 0 is misuse
    /// ("interval > 0"), and changes nothing
    void start(double interval);

    /// Calls once, `delay` seconds from now, and has stopped then; also where the timer ran before, so that what is to
    /// wait for a pause begins anew. @param delay  0 is the run loop's next turn. That it is not at least 0 is misuse
    /// ("delay >= 0"), and changes nothing
    void startOnce(double delay);

    /// There are no more calls until it is started again.
    void stop();

    /// Whether a call is to come.
    bool isRunning() const { return _isRunning; }

private:
    friend class TimerQueue;

    void start(Clock::duration delay, Clock::duration interval);

    std::shared_ptr<const std::function<void()>> _pFn; // shared with the call under way
    Clock::time_point _due;
    Clock::duration _interval{}; // 0 for one call
    bool _isRunning = false;
};

} // namespace gui
