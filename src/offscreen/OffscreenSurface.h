#pragma once

#include <gui/gl/port/NativeSurface.h>
#include <gui/gl/port/PixelFormat.h>

#include <memory>

namespace gui::gl
{

/// A surface in memory, for views without a display. @return null, after a log line, when there is no such context
std::unique_ptr<NativeSurface> createOffscreenSurface(NativeSurfaceClient& client, const PixelFormat& format,
                                                      const td::Size<double>& size);

} // namespace gui::gl
