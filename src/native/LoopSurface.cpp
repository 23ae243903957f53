#include "LoopSurface.h"

#include <gui/port/RunLoop.h>
#include <gui/port/WindowSystem.h>

namespace gui::gl
{

namespace
{

gui::RunLoop& runLoop() { return gui::WindowSystem::instance().getRunLoop(); }

} // namespace

LoopSurface::~LoopSurface() { runLoop().forget(&_client); }

void LoopSurface::setNeedsDisplay() { runLoop().setNeedsDisplay(&_client); }

void LoopSurface::startFrameClock(float minFPS, float maxFPS) { runLoop().startFrameClock(&_client, minFPS, maxFPS); }

void LoopSurface::stopFrameClock() { runLoop().stopFrameClock(&_client); }

} // namespace gui::gl
