#pragma once

#include <td/Export.h>

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>

namespace gui
{

/// The functions that ZavObject::asyncCall queued for the GUI thread. A run loop drains it. All operations but
/// runPending() may be called from any thread.
class GUIGL_API AsyncQueue
{
public:
    /// The process's queue. It is never destroyed: threads may still post while the program ends.
    static AsyncQueue& instance();

    /// Appends a function. @param wake  whether to call the wake-up hook
    void push(std::unique_ptr<std::function<void()>> fn, bool wake);

    /// Sets what push() does to wake a sleeping run loop; an empty one takes it away. Functions that are queued already
    /// make it called at once. The hook runs on the posting thread under the queue's lock: it must only signal. Once
    /// this returns, the hook that was set before is not running any more and is never called again.
    void setWakeUp(std::function<void()> wakeUp);

    /// Runs what is queued now, in order, each function once; what they post is left for the next call. GUI thread. A
    /// function may call this again: the inner call runs what is left, in order. An exception of a function leaves this
    /// operation; that function is gone, and those behind it stay queued.
    void runPending();

    bool isEmpty() const;

private:
    struct Entry
    {
        std::uint64_t number;
        std::unique_ptr<std::function<void()>> fn;
    };

    /// The first function that was queued before the entry of that number; null when there is none.
    std::unique_ptr<std::function<void()>> takeOlderThan(std::uint64_t number);

    mutable std::mutex _mutex;
    std::deque<Entry> _entries;
    std::uint64_t _nextNumber = 0;
    std::function<void()> _wakeUp;
};

} // namespace gui
