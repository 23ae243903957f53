#pragma once

/// Marks what the shared libraries guigl::util, guigl::gui and guigl::gl export; everything else in them is hidden.
#define GUIGL_API __attribute__((visibility("default")))
