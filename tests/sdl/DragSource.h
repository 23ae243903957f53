#pragma once

#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace test
{

/// Another program on an X server, out of which something is dragged onto a window, by the XDND protocol. A thread of
/// its own: some toolkits wait for its answers. It lets go as soon as the window takes what it is shown.
class DragSource
{
public:
    /// What it has, and as what: all of these types are the same data.
    struct Content
    {
        std::vector<std::string> types; ///< MIME, or of X11; three at most
        std::string data;
    };

    /// Begins to drag over a window, at a point of the screen.
    /// @param window  the one that the desktop sees, as XServer::findWindow has it
    DragSource(unsigned long window, int x, int y, Content content);
    ~DragSource();
    DragSource(const DragSource&) = delete;
    DragSource& operator=(const DragSource&) = delete;

    /// Whether the window has it.
    bool isTaken() const { return _isTaken; }
    /// Whether it would take it, as it said last.
    bool isWelcome() const { return _isWelcome; }

private:
    struct Display;

    void send(const char* type, std::vector<unsigned long> words) const;
    void serve();
    void answer();

    std::unique_ptr<Display> _pDisplay;
    unsigned long _target;
    Content _content;
    std::atomic<bool> _isWelcome = false;
    std::atomic<bool> _isTaken = false;
    std::atomic<bool> _isOver = false;
    bool _isDropped = false;
    std::thread _thread;
};

} // namespace test
