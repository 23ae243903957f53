#pragma once

namespace gui::gl
{

/// Whether the environment variable GUIGL_GL_DEBUG is set and not empty: surfaces then ask for debug contexts.
bool isGLDebugWanted();

/// Lets the current context's debug messages go to the log, when they are wanted and the context has them. The driver's
/// notifications, which say that all is well, are left out.
void logGLDebugMessages();

/// Asks the current context for the errors since it was asked last, and tells each kind once in the log: "ERROR! GLView
/// %s left OpenGL error %x%s". A driver that is out of memory says so nowhere else. One question at a frame's end,
/// where the driver is waited for anyway; between draws it would cost far more.
/// @param during  the view's callback that is over  @param said  the kinds that were told already, a bit for each
void logGLErrors(const char* during, unsigned int& said);

} // namespace gui::gl
