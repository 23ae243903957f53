#include "AsyncQueue.h"

#include <utility>

namespace gui
{

AsyncQueue& AsyncQueue::instance()
{
    static AsyncQueue* const pQueue = new AsyncQueue;
    return *pQueue;
}

void AsyncQueue::push(std::unique_ptr<std::function<void()>> fn, bool wake)
{
    const std::lock_guard lock(_mutex);
    _entries.push_back({_nextNumber++, std::move(fn)});
    if (wake && _wakeUp)
        _wakeUp();
}

void AsyncQueue::setWakeUp(std::function<void()> wakeUp)
{
    const std::lock_guard lock(_mutex);
    _wakeUp.swap(wakeUp);
    if (_wakeUp && !_entries.empty())
        _wakeUp();
}

std::unique_ptr<std::function<void()>> AsyncQueue::takeOlderThan(std::uint64_t number)
{
    const std::lock_guard lock(_mutex);
    if (_entries.empty() || _entries.front().number >= number)
        return nullptr;
    auto fn = std::move(_entries.front().fn);
    _entries.pop_front();
    return fn;
}

void AsyncQueue::runPending()
{
    std::uint64_t end = 0;
    {
        const std::lock_guard lock(_mutex);
        end = _nextNumber;
    }
    while (const auto fn = takeOlderThan(end))
        (*fn)();
}

bool AsyncQueue::isEmpty() const
{
    const std::lock_guard lock(_mutex);
    return _entries.empty();
}

} // namespace gui
