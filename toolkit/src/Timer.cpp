#include <gui/Timer.h>

#include "TimerQueue.h"

#include <td/Assert.h>
#include <td/GUIThread.h>

#include <algorithm>
#include <utility>

namespace gui
{

namespace
{

Timer::Clock::duration toDuration(double seconds)
{
    constexpr double cLongest = 1e9; // thirty years: the clock's own range is not much longer
    return std::chrono::duration_cast<Timer::Clock::duration>(
        std::chrono::duration<double>(std::min(seconds, cLongest)));
}

} // namespace

Timer::Timer(std::function<void()> fn)
{
    TD_ASSERT(fn != nullptr);
    _pFn = std::make_shared<const std::function<void()>>(std::move(fn));
}

Timer::~Timer() { stop(); }

void Timer::start(double interval)
{
    TD_ASSERT(interval > 0);
    constexpr double cShortest = 1e-3;
    const Clock::duration duration = toDuration(std::max(interval, cShortest));
    start(duration, duration);
}

void Timer::startOnce(double delay)
{
    TD_ASSERT(delay >= 0);
    start(toDuration(delay), Clock::duration::zero());
}

void Timer::start(Clock::duration delay, Clock::duration interval)
{
    TD_ASSERT_GUI_THREAD();
    stop();
    if (!_pFn)
        return;
    _due = Clock::now() + delay;
    _interval = interval;
    _isRunning = true;
    TimerQueue::instance().add(this);
}

void Timer::stop()
{
    if (!_isRunning)
        return;
    TD_ASSERT_GUI_THREAD();
    _isRunning = false;
    TimerQueue::instance().remove(this);
}

} // namespace gui
