#pragma once

#include <gui/Timer.h>

#include <optional>
#include <vector>

namespace gui
{

/// The timers that run. A run loop sleeps until the first is due, and calls those that are. GUI thread only.
class TimerQueue
{
public:
    /// The process's queue. It is never destroyed: timers may be objects that live as long.
    static TimerQueue& instance();

    void add(Timer* pTimer);
    void remove(Timer* pTimer);

    std::optional<Timer::Clock::time_point> getNextDue() const;

    /// Calls those that are due now, in the order in which they became it, each once.
    void runDue();

private:
    std::vector<Timer*> _timers; // in the order in which they were started
};

} // namespace gui
