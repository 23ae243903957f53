#pragma once

#include "../native/NativeSurface.h"

#include <memory>

namespace gui
{
class NativeView;
}

namespace gui::gl
{

class Context;

/// A surface in a window of SDL, hidden until a gui::Window adopts it. @return null, after a log line, when there is no
/// such context
std::unique_ptr<NativeSurface> createSDLSurface(NativeSurfaceClient& client, gui::NativeView& nativeView,
                                                const Context& context, const td::Size<double>& size);

} // namespace gui::gl
