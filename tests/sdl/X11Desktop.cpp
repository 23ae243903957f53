#include "X11Desktop.h"

namespace test
{

X11Desktop::X11Desktop() { _isOk = _server.isOk() && _server.startWindowManager(); }

void X11Desktop::goTo(int) const { xdo("mousemove 1279 1023"); }

bool X11Desktop::bring(const std::string& title, int place) const
{
    const XServer::Window window = _server.findWindow(title);
    if (window == 0)
        return false;
    constexpr int cMargin = 100;
    if (const int x = _server.placeOf(window).x - area(place).x; x < cMargin || x > 2 * cMargin)
    {
        xdo("windowmove " + std::to_string(window) + " " + std::to_string(area(place).x + cMargin) + " 100");
        return false;
    }
    return _server.hasFocus(window);
}

bool X11Desktop::setLayouts(const std::string& layouts) const
{
    _server.setLayouts(layouts);
    return true;
}

} // namespace test
