#include "OffscreenRunLoop.h"

namespace gui
{

void OffscreenRunLoop::wait(const std::optional<Time>& until)
{
    std::unique_lock lock(_mutex);
    const auto isWoken = [this] { return _isWoken; };
    if (until)
        _wakeUp.wait_until(lock, *until, isWoken);
    else
        _wakeUp.wait(lock, isWoken);
}

// What the loop was woken for so far is done in the rest of this turn.
void OffscreenRunLoop::dispatchEvents()
{
    const std::lock_guard lock(_mutex);
    _isWoken = false;
}

void OffscreenRunLoop::wakeUp()
{
    const std::lock_guard lock(_mutex);
    _isWoken = true;
    _wakeUp.notify_one();
}

} // namespace gui
