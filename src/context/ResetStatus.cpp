#include "ResetStatus.h"

#include "GLNumber.h"

#include <gui/gl/Context.h>

#include <epoxy/gl.h>

namespace gui::gl
{

namespace
{

// Of OpenGL, and of OpenGL ES.
constexpr int cVersionWithStatus = 45, cESVersionWithStatus = 32;

// What has the function, of its several origins; its name is the same.
bool hasStatus()
{
    const int version = 10 * glNumber(GL_MAJOR_VERSION) + glNumber(GL_MINOR_VERSION);
    return version >= (Context::isES() ? cESVersionWithStatus : cVersionWithStatus) ||
           (version > 0 && epoxy_has_gl_extension("GL_KHR_robustness"));
}

} // namespace

bool tellsResets() { return hasStatus() && glNumber(GL_RESET_NOTIFICATION_STRATEGY) == GL_LOSE_CONTEXT_ON_RESET; }

bool isReset() { return glGetGraphicsResetStatus() != GL_NO_ERROR; }

} // namespace gui::gl
