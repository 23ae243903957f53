#include <gui/Application.h>

#include <gui/Window.h>
#include <gui/port/RunLoop.h>
#include <gui/port/WindowSystem.h>
#include <vo/Log.h>

namespace gui
{

Application::Application(int, char**)
{
    RunLoop& runLoop = WindowSystem::instance().getRunLoop();
    runLoop.restart();
    vo::dbgLog("Application runs on window system: %s", getWindowSystem());
}

Application::~Application() = default;

int Application::run() { return WindowSystem::instance().getRunLoop().run(); }

int Application::run(ZavObject& view, const char* title, const td::Size<double>& size)
{
    Window window(title, size);
    return window.show(view) ? run() : 1;
}

bool Application::step(double seconds) { return WindowSystem::instance().getRunLoop().step(seconds); }

void Application::quit(int code) { WindowSystem::instance().getRunLoop().quit(code); }

const char* Application::getWindowSystem() { return WindowSystem::instance().getName(); }

} // namespace gui
