#pragma once

#include "Context.h"
#include "port/PixelFormat.h"

#include <td/Export.h>
#include <td/Size.h>

#include <memory>

namespace gui
{
class Texture;
}

namespace gui::gl
{

/// A GL context that draws into memory: no window, no display, any machine with a GL driver. For pictures made by
/// servers, for tests, and for trying things out.
///
/// It is current when it has been constructed, with the viewport over its whole size. It may be used beside views and
/// other offscreen contexts: call makeCurrent before drawing. GUI thread only.
class GUIGL_API OffscreenContext
{
public:
    /// GL objects of the library may outlive the context; they forget their names when it dies.
    /// @param size      in device pixels, both at least 1
    /// @param settings  profile, buffer sizes and samples; its animation and frame rates mean nothing here. Depth or
    ///                  stencil bits that the system lacks fall back to 24 and 8, samples to the next number that it
    ///                  has, each with a log line of what was asked for and got
    /// @param debug     asks the driver for a debug context, whose messages glDebugMessageCallback delivers
    /// When there is no such context a log line says why, and isOk is false.
    OffscreenContext(const td::Size<int>& size, const Context& settings, bool debug = false);
    /// The same, for a surface that was asked for a format.
    OffscreenContext(const td::Size<int>& size, const PixelFormat& format, bool debug = false);
    ~OffscreenContext();
    OffscreenContext(const OffscreenContext&) = delete;
    OffscreenContext& operator=(const OffscreenContext&) = delete;

    bool isOk() const;

    /// In device pixels.
    td::Size<int> getSize() const;

    /// How many samples each pixel has; 1 for a plain one, 0 when the context is not ok.
    int getSamples() const;

    /// The GL name of what is drawn into at first: bind it after drawing into a framebuffer of your own. It is not 0
    /// with several samples, and may be another one after resize.
    unsigned int getDefaultFramebuffer() const;

    /// @return false when the driver refuses, with a log line the first time
    bool makeCurrent();

    /// Whether the GPU was reset, and all that was in the context is lost; false where the driver does not tell. A
    /// server that draws for days asks before it draws, and calls replace.
    bool isLost();

    /// Whether makeCurrent found out that it is lost.
    bool isGone() const;

    /// Makes another GL context in the place of this one, of the same format, and all that the library's objects had in
    /// it anew (see View for what that takes): after a loss, or to try out what one does. It is current afterwards,
    /// with the viewport over its whole size and GL's state as at first; the picture stays, unless the GPU was reset.
    /// @return false, with a log line, when there is none to be had; it may be tried again
    bool replace();

    /// Has none of these contexts current any more. For hosts, before their toolkit draws: see
    /// gui::Host::leaveContexts.
    static void leave();

    /// Replaces the drawing surface by one of another size and makes the context current, with the viewport over all of
    /// it. The picture is undefined afterwards. @return false, with a log line and nothing changed, when there is none
    bool resize(const td::Size<int>& size);

    /// Reads the picture drawn so far, upright (the first row is the top), 3 bytes per pixel. Of several samples it is
    /// their mean.
    /// @return false, with a log line and the texture unchanged, when the context is not ok or memory is short
    bool readPixels(gui::Texture& picture);

    /// Saves the picture drawn so far as a PNG file, upright and opaque.
    /// @return false, with a log line, when it could not be read or written
    [[nodiscard]] bool savePicture(const char* path);

private:
    struct Impl;
    std::unique_ptr<Impl> _pImpl;
};

} // namespace gui::gl
