#include "TimerQueue.h"

#include <algorithm>
#include <iterator>

namespace gui
{

TimerQueue& TimerQueue::instance()
{
    static TimerQueue* const pQueue = new TimerQueue;
    return *pQueue;
}

void TimerQueue::add(Timer* pTimer) { _timers.push_back(pTimer); }

void TimerQueue::remove(Timer* pTimer) { std::erase(_timers, pTimer); }

std::optional<Timer::Clock::time_point> TimerQueue::getNextDue() const
{
    const auto first = std::ranges::min_element(_timers, {}, &Timer::_due);
    return first != _timers.end() ? std::optional((*first)->_due) : std::nullopt;
}

void TimerQueue::runDue()
{
    const auto now = Timer::Clock::now();
    const auto isDue = [now](const Timer* pTimer) { return pTimer->_due <= now; };
    std::vector<Timer*> due;
    std::ranges::copy_if(_timers, std::back_inserter(due), isDue);
    std::ranges::stable_sort(due, {}, &Timer::_due);
    for (Timer* const pTimer : due)
    {
        // An earlier call may have stopped it, started it anew, or deleted it.
        if (std::ranges::find(_timers, pTimer) == _timers.end() || !isDue(pTimer))
            continue;
        if (pTimer->_interval > Timer::Clock::duration::zero())
            pTimer->_due += pTimer->_interval * ((now - pTimer->_due) / pTimer->_interval + 1);
        else
            pTimer->stop();
        const auto pFn = pTimer->_pFn;
        (*pFn)();
    }
}

} // namespace gui
