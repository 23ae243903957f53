#pragma once

#include "Desktop.h"

#include <memory>
#include <string>

namespace test
{

/// A Wayland compositor with two outputs, each a window on an X server of the test's own: one of 640 by 480 points with
/// 1 device pixel per point, and to its right one of 300 by 250 points with 2. WAYLAND_DISPLAY names it from then on.
class Weston : public Desktop
{
public:
    /// @param layouts  of the keyboard
    explicit Weston(std::string layouts);
    ~Weston() override;
    Weston(const Weston&) = delete;
    Weston& operator=(const Weston&) = delete;

    bool isOk() const override { return _isOk; }
    const XServer& server() const override { return *_pServer; }
    XServer::Place area(int place) const override;
    int scale(int place) const override { return place + 1; }
    std::vector<gui::DisplayInfo> displays() const override
    {
        return {{"", {{0, 0}, {640, 480}}, 1, 0}, {"", {{640, 0}, {300, 250}}, 2, 0}};
    }
    void goTo(int place) const override;
    /// Windows appear where the pointer is.
    bool bring(const std::string&, int) const override { return true; }
    bool setLayouts(const std::string& layouts) const override { return layouts == _layouts; }

private:
    std::string _layouts;
    std::unique_ptr<XServer> _pServer;
    std::unique_ptr<Process> _pWeston;
    std::string _folder;
    bool _isOk = false;
};

} // namespace test
