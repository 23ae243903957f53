#include "Desktop.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>

namespace test
{

namespace
{

class X11Desktop : public Desktop
{
public:
    X11Desktop() { _isOk = _server.isOk() && _server.startWindowManager(); }

    bool isOk() const override { return _isOk; }
    const XServer& server() const override { return _server; }
    XServer::Place area(int place) const override { return {640 * place, 0, 640, 1024}; }
    int scale(int) const override { return 1; }
    void goTo(int) const override { xdo("mousemove 1279 1023"); }
    bool bring(const std::string& title, int place) const override
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
        return _server.focus() == window;
    }
    bool setLayouts(const std::string& layouts) const override
    {
        _server.setLayouts(layouts);
        return true;
    }

private:
    XServer _server;
    bool _isOk = false;
};

std::unique_ptr<X11Desktop> s_pDesktop;

class Environment : public testing::Environment
{
public:
    void SetUp() override
    {
        setenv("GUIGL_WINDOW_SYSTEM", "x11", 1);
        s_pDesktop = std::make_unique<X11Desktop>();
        ASSERT_TRUE(s_pDesktop->isOk());
    }
    // The server stays until the program has ended: it would take the program with it.
};

testing::Environment* const s_pEnvironment = testing::AddGlobalTestEnvironment(new Environment);

} // namespace

Desktop& desktop() { return *s_pDesktop; }

} // namespace test
