#pragma once

#include "Desktop.h"

namespace test
{

/// An X server with a window manager.
class X11Desktop : public Desktop
{
public:
    X11Desktop();

    bool isOk() const override { return _isOk; }
    const XServer& server() const override { return _server; }
    XServer::Place area(int place) const override { return {640 * place, 0, 640, 1024}; }
    int scale(int) const override { return 1; }
    void goTo(int place) const override;
    bool bring(const std::string& title, int place) const override;
    bool setLayouts(const std::string& layouts) const override;

private:
    XServer _server;
    bool _isOk = false;
};

} // namespace test
