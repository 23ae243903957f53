#pragma once

#include <gui/gl/Context.h>
#include <td/Export.h>

#include <array>

namespace gui::gl
{

/// The pixel format that a context asks for, as a list of attributes that ends with 0: profile (99; 0x4100 or 0x3200
/// of OpenGL, 0xE310 for OpenGL ES 3.1), colour bits (8), alpha bits (11), depth bits (12), stencil bits (13), each
/// followed by its value, then double buffer (5), accelerated (73) and no recovery (72), which have none. For more
/// than one sample per pixel the number of sample buffers (55), which is 1, and of samples (56) stand behind the
/// stencil bits, and behind them, for a window that the desktop shows through, surface opacity (236), which is 0.
/// Zeros fill the rest.
using PixelFormat = std::array<unsigned int, 20>;

/// The list for these settings; always in the same order.
GUIGL_API PixelFormat buildPixelFormat(const Context& context);

/// The list that a surface is asked for: that of the settings, with as many samples as GUIGL_SAMPLES says when the
/// environment has it, and of OpenGL ES when GUIGL_ES is there and is neither empty nor 0. A number that is none of 1,
/// 2, 4, 8, 16 is ignored, after one log line: "Warning! GUIGL_SAMPLES=TEXT is none of 1, 2, 4, 8, 16 and will be
/// ignored".
GUIGL_API PixelFormat requestPixelFormat(const Context& context);

/// What a surface reads out of the list.
struct PixelFormatSizes
{
    bool is41; ///< OpenGL 4.1 core, else 3.2 core
    int colorBits;
    int alphaBits;
    int depthBits;
    int stencilBits;
    int nSamples = 1;           ///< per pixel
    bool isTransparent = false; ///< the desktop shows through
    bool isES = false;          ///< OpenGL ES 3.1; is41 means nothing then
};

/// What it asks for, as a person says it: "OpenGL 4.1 core", "OpenGL 3.2 core" or "OpenGL ES 3.1".
GUIGL_API const char* nameOfOpenGL(const PixelFormatSizes& sizes);

/// What the list says; an attribute that is unknown is passed over.
GUIGL_API PixelFormatSizes decodePixelFormat(const PixelFormat& format);

/// One step down to sizes that systems have, when these are not to be had: a stencil above 8 becomes 8; if it is not
/// above, a depth above 24 becomes 24. @return false when there is nothing left to give up; sizes is unchanged then
GUIGL_API bool fallBack(PixelFormatSizes& sizes);

/// One step down in samples: half of them. Try all that fallBack offers before. @return false when there is one left;
/// sizes is unchanged then
GUIGL_API bool fallBackSamples(PixelFormatSizes& sizes);

/// One step down in versions: OpenGL 3.2 instead of 4.1. Try the steps in sizes and samples before. @return false when
/// there is none; sizes is unchanged then
GUIGL_API bool fallBackVersion(PixelFormatSizes& sizes);

} // namespace gui::gl
