#pragma once

#include <gui/gl/port/NativeSurface.h>
#include <gui/gl/port/PixelFormat.h>

#include <memory>

namespace gui::gl
{

/// A surface in a window of SDL, hidden until a gui::Window adopts it. @return null, after a log line, when there is no
/// such context
std::unique_ptr<NativeSurface> createSDLSurface(NativeSurfaceClient& client, const PixelFormat& format,
                                                const td::Size<double>& size);

/// SDL's cursor of a shape, an SDL_Cursor that is kept to the end of the process, as SDL is.
void* getSDLCursor(gui::Cursor::Type type);

} // namespace gui::gl
