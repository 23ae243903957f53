#pragma once

#include <td/Export.h>

struct SDL_Window;

namespace gui
{

/// A frame of this window is about to be swapped. Where the window system tells when that frame is seen, the frame
/// clock of the view in there follows.
GUIGL_API void awaitPresentation(SDL_Window* pWindow);

} // namespace gui
