#pragma once

namespace gui::gl
{

/// Starts the inspector when GUIGL_INSPECT asks for it, the first time that it is called. It is in the library above
/// this one, which the program may not be linked with.
void loadWantedInspector();

} // namespace gui::gl
