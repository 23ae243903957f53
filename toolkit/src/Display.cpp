#include <gui/Display.h>

#include <gui/port/DisplayScale.h>
#include <td/Assert.h>

namespace gui
{

namespace
{

float s_backingScaleFactor = 1;

} // namespace

float Display::getDefaultBackingScaleFactor() { return s_backingScaleFactor; }

void setDefaultBackingScaleFactor(float scale)
{
    TD_ASSERT(scale > 0);
    s_backingScaleFactor = scale;
}

} // namespace gui
