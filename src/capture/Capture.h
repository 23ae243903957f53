#pragma once

#include <td/Export.h>
#include <td/Size.h>

#include <string>

namespace gui::gl
{

/// Writes one frame of a program into a file, from which guigl-replay draws it without the program. Two environment
/// variables turn it on: GUIGL_CAPTURE names the file, GUIGL_CAPTURE_FRAME the frame, 1 unless said otherwise, counted
/// for each view and each OffscreenContext; the first of them that comes to it is captured, and the program goes on.
///
/// Without the first of them nothing is done, and no call of GL's takes another way.
class GUIGL_API Capture
{
public:
    /// As the environment says it, for tests.  @param path  empty ends it
    static void want(const std::string& path, int frame = 1);

    /// A view begins a frame, in the current context.
    static void beginFrame()
    {
        if (s_isWanted) [[unlikely]]
            begin();
    }
    /// It has drawn it.  @param framebuffer  into which  @param size  in device pixels
    static void endFrame(unsigned int framebuffer, const td::Size<int>& size)
    {
        if (s_isWanted) [[unlikely]]
            end(framebuffer, size);
    }

private:
    static void begin();
    static void end(unsigned int framebuffer, const td::Size<int>& size);

    static bool s_isWanted;
};

} // namespace gui::gl
