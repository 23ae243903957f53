#pragma once

#include <td/Size.h>

namespace gui
{
class Texture;
}

namespace gui::gl
{

/// Has a framebuffer read from while this lives, and what was read from before afterwards.
class BoundForReading
{
public:
    explicit BoundForReading(unsigned int framebuffer);
    BoundForReading(const BoundForReading&) = delete;
    BoundForReading& operator=(const BoundForReading&) = delete;
    ~BoundForReading();

private:
    unsigned int _framebuffer;
    int _boundBefore = 0;
};

/// Reads a framebuffer upright (the first row is the top), 3 bytes per pixel. What is bound stays bound.
/// @param size  in device pixels  @return false, after a log line and with the picture unchanged, when it would be too
///              large
bool readFrame(unsigned int framebuffer, const td::Size<int>& size, gui::Texture& picture);

} // namespace gui::gl
