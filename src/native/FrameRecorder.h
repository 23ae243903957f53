#pragma once

#include <td/Size.h>

#include <string>

namespace gui::gl
{

/// Writes the first frames of a program to files and ends it, which is how pictures are taken of programs that know
/// nothing of it. Two environment variables turn it on: GUIGL_FRAMES_TO names the folder, GUIGL_FRAMES the number of
/// frames, 1 unless said otherwise. Files are named frame-0001.png and so on, those of a second view
/// view2-frame-0001.png; the program is told to quit with code 0 when a view has drawn all of its frames, with 1 when a
/// file could not be written.
class FrameRecorder
{
public:
    static FrameRecorder& instance();

    bool isOn() const { return _nFrames > 0; }

    /// What was written of one view. It belongs to that view, as another one may come to stand at its address.
    struct Recording
    {
        int nthView = 0; ///< 0 before its first frame
        int nFrames = 0;
    };

    /// A view has drawn a frame and not presented it yet; its context is current.
    /// @param framebuffer  what the view presents through  @param size  in device pixels
    /// @return whether it wants more of this view's frames
    bool onFrame(Recording& recording, unsigned int framebuffer, const td::Size<int>& size);

private:
    FrameRecorder();
    bool write(const std::string& path, unsigned int framebuffer, const td::Size<int>& size) const;

    std::string _folder;
    int _nFrames = 0;
    int _nViews = 0;
};

} // namespace gui::gl
