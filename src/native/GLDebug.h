#pragma once

namespace gui::gl
{

/// Whether the environment variable GUIGL_GL_DEBUG is set and not empty: surfaces then ask for debug contexts.
bool isGLDebugWanted();

/// Lets the current context's debug messages go to the log, when they are wanted and the context has them. The driver's
/// notifications, which say that all is well, are left out.
void logGLDebugMessages();

} // namespace gui::gl
