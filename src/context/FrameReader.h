#pragma once

#include <td/Size.h>

namespace gui
{
class Texture;
}

namespace gui::gl
{

/// Has a framebuffer drawn into, and read from, while this lives, and what was before afterwards.
class BoundFramebuffers
{
public:
    BoundFramebuffers();
    BoundFramebuffers(const BoundFramebuffers&) = delete;
    BoundFramebuffers& operator=(const BoundFramebuffers&) = delete;
    ~BoundFramebuffers();

private:
    int _drawBefore = 0;
    int _readBefore = 0;
};

/// Has a framebuffer read from while this lives, and what was read from before afterwards. One with several samples per
/// pixel is resolved first, into one of its own.
class BoundForReading
{
public:
    /// @param size  of the framebuffer, in device pixels
    BoundForReading(unsigned int framebuffer, const td::Size<int>& size);
    BoundForReading(const BoundForReading&) = delete;
    BoundForReading& operator=(const BoundForReading&) = delete;
    ~BoundForReading();

private:
    void resolve(const td::Size<int>& size);

    unsigned int _framebuffer;
    int _boundBefore = 0;
    unsigned int _resolved = 0;
    unsigned int _renderbuffer = 0;
};

/// Copies the colours of a framebuffer, of all samples of a pixel their mean, whatever the scissor test is set to. What
/// is bound stays bound.  @param size  of both, in device pixels
void resolveColors(unsigned int from, unsigned int to, const td::Size<int>& size);

/// Reads a framebuffer upright (the first row is the top). What is bound stays bound.
/// @param size           in device pixels  @param bytesPerPixel  3, or 4 for the alpha too
/// @return false, after a log line and with the picture unchanged, when it would be too large
bool readFrame(unsigned int framebuffer, const td::Size<int>& size, gui::Texture& picture,
               unsigned short bytesPerPixel = 3);

} // namespace gui::gl
