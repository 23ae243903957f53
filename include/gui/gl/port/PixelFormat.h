#pragma once

#include <gui/gl/Context.h>
#include <td/Export.h>

#include <array>

namespace gui::gl
{

/// The pixel format that a context asks for, as a list of attributes that ends with 0: profile (99; 0x4100 or 0x3200),
/// colour bits (8), alpha bits (11), depth bits (12), stencil bits (13), each followed by its value, then double buffer
/// (5), accelerated (73) and no recovery (72), which have none.
using PixelFormat = std::array<unsigned int, 14>;

/// The list for these settings; always in the same order.
GUIGL_API PixelFormat buildPixelFormat(const Context& context);

/// What a surface reads out of the list.
struct PixelFormatSizes
{
    bool is41; ///< OpenGL 4.1 core, else 3.2 core
    int colorBits;
    int alphaBits;
    int depthBits;
    int stencilBits;
};

/// What the list says; an attribute that is unknown is passed over.
GUIGL_API PixelFormatSizes decodePixelFormat(const PixelFormat& format);

/// One step down to sizes that systems have, when these are not to be had: a stencil above 8 becomes 8; if it is not
/// above, a depth above 24 becomes 24. @return false when there is nothing left to give up; sizes is unchanged then
GUIGL_API bool fallBack(PixelFormatSizes& sizes);

} // namespace gui::gl
