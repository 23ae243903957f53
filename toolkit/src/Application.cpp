#include <gui/Application.h>

#include "RunLoop.h"
#include "WindowSystem.h"

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

bool Application::step(double seconds) { return WindowSystem::instance().getRunLoop().step(seconds); }

void Application::quit(int code) { WindowSystem::instance().getRunLoop().quit(code); }

const char* Application::getWindowSystem() { return WindowSystem::instance().getName(); }

} // namespace gui
