#include <gui/Display.h>

#include <gui/port/DisplayScale.h>
#include <gui/port/WindowSystem.h>
#include <td/Assert.h>

namespace gui
{

namespace
{

float s_backingScaleFactor = 1;

} // namespace

float Display::getDefaultBackingScaleFactor() { return s_backingScaleFactor; }

std::vector<DisplayInfo> Display::getAll()
{
    WindowSystem& system = WindowSystem::instance();
    std::vector<DisplayInfo> displays = system.getDisplays();
    if (displays.empty())
        displays.emplace_back().scale = system.getMainDisplayScale();
    return displays;
}

void setDefaultBackingScaleFactor(float scale)
{
    TD_ASSERT(scale > 0);
    s_backingScaleFactor = scale;
}

} // namespace gui
