#include "TerminationSignals.h"

#include <gui/ZavObject.h>

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <utility>

namespace gui
{

namespace
{

constexpr std::array cSignals{SIGINT, SIGTERM};

// What the handler needs, which can do next to nothing: where to write to, and the process that this belongs to.
std::atomic<int> s_writeEnd = -1;
std::atomic<pid_t> s_process = 0;

void write(int number)
{
    const char byte = static_cast<char>(number);
    [[maybe_unused]] const ssize_t nWritten = ::write(s_writeEnd, &byte, 1);
}

extern "C" void onTerminationSignal(int number)
{
    // A child that was forked and is not yet another program must not end its parent.
    if (getpid() != s_process)
    {
        std::signal(number, SIG_DFL);
        std::raise(number);
        return;
    }
    const int error = errno;
    write(number);
    errno = error;
}

} // namespace

TerminationSignals::TerminationSignals(std::function<void(int)> onSignal)
    : _onSignal(std::move(onSignal))
{
    std::array<int, 2> pipe{};
    // There is one pipe for the handler to write to: another one's listener would wait for ever.
    if (s_writeEnd >= 0 || pipe2(pipe.data(), O_CLOEXEC) != 0)
        return;
    _readEnd = pipe[0];
    s_writeEnd = pipe[1];
    s_process = getpid();
    // A thread, since there is no telling what a window system's own wait ends for.
    _listener = std::thread([this] { listen(); });
    for (const int number : cSignals)
    {
        struct sigaction action
        {
        };
        if (sigaction(number, nullptr, &action) != 0 || action.sa_handler != SIG_DFL)
            continue;
        action.sa_handler = onTerminationSignal;
        // Reset: the next one ends the process.
        action.sa_flags = SA_RESTART | static_cast<int>(SA_RESETHAND);
        sigaction(number, &action, nullptr);
    }
}

TerminationSignals::~TerminationSignals()
{
    if (!_listener.joinable())
        return;
    for (const int number : cSignals)
    {
        struct sigaction action
        {
        };
        if (sigaction(number, nullptr, &action) == 0 && action.sa_handler == onTerminationSignal)
            std::signal(number, SIG_DFL);
    }
    write(0);
    _listener.join();
    close(s_writeEnd.exchange(-1));
    close(_readEnd);
}

void TerminationSignals::listen() const
{
    char number = 0;
    while (true)
    {
        const ssize_t nRead = read(_readEnd, &number, 1);
        if (nRead < 0 && errno == EINTR)
            continue;
        if (nRead != 1 || number == 0)
            return;
        ZavObject::asyncCall(new std::function<void()>([onSignal = _onSignal, number] { onSignal(number); }), true);
    }
}

} // namespace gui
