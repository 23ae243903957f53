#include <gui/Application.h>

#include "TerminationSignals.h"

#include <gui/Window.h>
#include <gui/port/RunLoop.h>
#include <gui/port/WindowSystem.h>
#include <td/GUIThread.h>
#include <vo/Log.h>

#include <cstdlib>
#include <string_view>
#include <utility>

namespace gui
{

namespace
{

int s_nApplications = 0;

// As a shell has it for a program that a signal ended.
constexpr int cExitOfSignal = 128;

RunLoop& runLoop() { return WindowSystem::instance().getRunLoop(); }

} // namespace

Application::Application(int, char**)
{
    td::GUIThread::claim();
    if (s_nApplications++ > 0)
        vo::dbgLog("Warning! Application made while there is one: SIGINT and SIGTERM stay with the first");
    runLoop().restart();
    _pSignals =
        std::make_unique<TerminationSignals>([](int number) { runLoop().closeWindows(cExitOfSignal + number); });
    vo::dbgLog("Application runs on window system: %s", getWindowSystem());
}

Application::~Application() { --s_nApplications; }

int Application::run()
{
    TD_ASSERT_GUI_THREAD(1);
    return runLoop().run();
}

int Application::run(ZavObject& view, const char* title, const td::Size<double>& size)
{
    Window window(title, size);
    return window.show(view) ? run() : 1;
}

bool Application::step(double seconds)
{
    TD_ASSERT_GUI_THREAD(false);
    return runLoop().step(seconds);
}

void Application::quit(int code)
{
    TD_ASSERT_GUI_THREAD();
    runLoop().quit(code);
}

ColorScheme Application::getColorScheme()
{
    const char* const wanted = std::getenv("GUIGL_COLOR_SCHEME");
    const std::string_view name = wanted != nullptr ? wanted : "";
    if (name == "light")
        return ColorScheme::Light;
    return name == "dark" ? ColorScheme::Dark : WindowSystem::instance().getColorScheme();
}

void Application::setColorSchemeHandler(std::function<void(ColorScheme)> handler)
{
    WindowSystem::instance().setColorSchemeHandler(std::move(handler));
}

const char* Application::getWindowSystem() { return WindowSystem::instance().getName(); }

} // namespace gui
