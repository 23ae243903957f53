#pragma once

#include <td/Export.h>

struct SDL_Window;

namespace gui
{

/// A frame of this window is about to be swapped. Where the window system tells when that frame is seen, or when the
/// display goes on to the next, the frame clock of the view in there follows, and so do motions of the pointer.
GUIGL_API void awaitPresentation(SDL_Window* pWindow);

} // namespace gui
