#pragma once

#include "XServer.h"

#include <memory>
#include <optional>
#include <string>

namespace test
{

/// A Wayland compositor with two outputs, each a window on an X server of the test's own: one of 640 by 480 points with 1
/// device pixel per point, and to its right one of 300 by 250 points with 2. WAYLAND_DISPLAY names it from then on.
class Weston
{
public:
    /// @param layouts  of the keyboard
    explicit Weston(const std::string& layouts);
    ~Weston();
    Weston(const Weston&) = delete;
    Weston& operator=(const Weston&) = delete;

    bool isOk() const { return _isOk; }
    const XServer& server() const { return *_pServer; }

    static constexpr int cScale[] = {1, 2};
    /// Where an output is on the X server's screen.
    XServer::Place output(int number) const;
    /// Puts the pointer and the keyboard onto an output: windows appear there.
    void goTo(int number) const;

    /// A corner, on the X server's screen, of what is seen of this colour; nothing when none is.
    std::optional<XServer::Place> find(std::uint32_t color) const;

private:
    std::unique_ptr<XServer> _pServer;
    std::unique_ptr<Process> _pWeston;
    std::string _folder;
    bool _isOk = false;
};

} // namespace test
