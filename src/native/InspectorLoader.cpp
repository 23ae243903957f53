#include "InspectorLoader.h"

#include <vo/Log.h>

#include <cstdlib>
#include <string_view>

#include <dlfcn.h>

namespace gui::gl
{

namespace
{

bool isWanted()
{
    const char* const wanted = std::getenv("GUIGL_INSPECT");
    return wanted != nullptr && *wanted != '\0' && std::string_view(wanted) != "0";
}

} // namespace

void loadWantedInspector()
{
    static bool s_isAsked = false;
    if (s_isAsked)
        return;
    s_isAsked = true;
    if (!isWanted())
        return;
    constexpr const char* cLibrary = GUIGL_INSPECTOR_LIBRARY;
    // It stays loaded: what it has to draw with lives as long as the contexts.
    void* const pLibrary = dlopen(cLibrary, RTLD_NOW | RTLD_NODELETE);
    using Start = void (*)();
    const auto start =
        pLibrary != nullptr ? reinterpret_cast<Start>(dlsym(pLibrary, "guigl_startInspector")) : Start(nullptr);
    if (start != nullptr)
        start();
    else
        vo::dbgLog("Warning! GUIGL_INSPECT is set, but there is no inspector: %s", dlerror());
}

} // namespace gui::gl
