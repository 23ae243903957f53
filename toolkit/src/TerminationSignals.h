#pragma once

#include <functional>
#include <thread>

namespace gui
{

/// Ends a program in order when the system or its terminal asks it to. While this lives, the first SIGINT and the first
/// SIGTERM call a function on the GUI thread, in its run loop; one more ends the process at once, for a loop that does
/// not turn any more. A signal that the program handles itself or ignores is left alone. One at a time.
class TerminationSignals
{
public:
    /// @param onSignal  is told the signal's number
    explicit TerminationSignals(std::function<void(int)> onSignal);
    ~TerminationSignals();
    TerminationSignals(const TerminationSignals&) = delete;
    TerminationSignals& operator=(const TerminationSignals&) = delete;

private:
    void listen() const;

    std::function<void(int)> _onSignal;
    int _readEnd = -1;
    std::thread _listener;
};

} // namespace gui
