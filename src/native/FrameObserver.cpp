#include <gui/gl/port/FrameObserver.h>

#include "InspectorLoader.h"

namespace gui::gl
{

namespace
{

FrameObserver* s_pObserver = nullptr;

} // namespace

void FrameObserver::set(FrameObserver* pObserver) { s_pObserver = pObserver; }

FrameObserver* FrameObserver::get()
{
    loadWantedInspector();
    return s_pObserver;
}

} // namespace gui::gl
