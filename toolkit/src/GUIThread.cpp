#include <td/GUIThread.h>

#include <array>
#include <cstdio>
#include <mutex>

#include <pthread.h>
#include <unistd.h>

namespace td
{

namespace
{

using Name = std::array<char, 16>; // as long as the system's may be

struct Claimed
{
    std::mutex mutex;
    pid_t number = 0; // 0 for none
    Name name{};
};

Claimed& claimed()
{
    // Never destroyed: static objects may ask.
    static Claimed* const pClaimed = new Claimed;
    return *pClaimed;
}

pid_t numberOfThread()
{
    thread_local const pid_t number = gettid();
    return number;
}

Name nameOfThread()
{
    Name name{};
    pthread_getname_np(pthread_self(), name.data(), name.size());
    return name;
}

} // namespace

void GUIThread::claim()
{
    Claimed& c = claimed();
    const std::scoped_lock lock(c.mutex);
    c.number = numberOfThread();
    c.name = nameOfThread();
}

bool GUIThread::isCurrent()
{
    Claimed& c = claimed();
    const std::scoped_lock lock(c.mutex);
    return c.number == 0 || c.number == numberOfThread();
}

const char* GUIThread::describe()
{
    thread_local std::array<char, 160> text;
    Claimed& c = claimed();
    const std::scoped_lock lock(c.mutex);
    std::snprintf(text.data(), text.size(), "GUI thread only: called on '%s' (%d), the GUI thread is '%s' (%d)",
                  nameOfThread().data(), numberOfThread(), c.name.data(), c.number);
    return text.data();
}

} // namespace td
