#pragma once

#include <td/Export.h>

#include <cstdint>

namespace gui::gl
{

/// The UTF-16 unit of an XKB symbol: a dead key's is its accent standing alone. 0 for a symbol without one, and for
/// control characters. In builds of the library that have libxkbcommon.
GUIGL_API unsigned short toCharacter(std::uint32_t symbol);

} // namespace gui::gl
