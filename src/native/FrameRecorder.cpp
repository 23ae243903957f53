#include "FrameRecorder.h"

#include "../context/FrameReader.h"

#include <gui/Application.h>
#include <gui/Texture.h>
#include <vo/Log.h>

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace gui::gl
{

FrameRecorder& FrameRecorder::instance()
{
    static FrameRecorder recorder;
    return recorder;
}

FrameRecorder::FrameRecorder()
{
    const char* const folder = std::getenv("GUIGL_FRAMES_TO");
    if (folder == nullptr || *folder == '\0')
        return;
    _folder = folder;
    _nFrames = 1;
    if (const char* const text = std::getenv("GUIGL_FRAMES"))
    {
        const char* const pEnd = text + std::strlen(text);
        int nFrames = 0;
        const auto result = std::from_chars(text, pEnd, nFrames);
        if (result.ec == std::errc() && result.ptr == pEnd && nFrames > 0)
            _nFrames = nFrames;
        else
            vo::dbgLog("Warning! GUIGL_FRAMES=%s is no number above 0 and will be ignored", text);
    }
}

bool FrameRecorder::onFrame(Recording& recording, unsigned int framebuffer, const td::Size<int>& size)
{
    if (recording.nthView == 0)
        recording.nthView = ++_nViews;
    if (recording.nFrames == _nFrames)
        return false;
    ++recording.nFrames;

    char number[16];
    std::snprintf(number, sizeof(number), "%04d", recording.nFrames);
    const std::string prefix = recording.nthView > 1 ? "view" + std::to_string(recording.nthView) + "-" : "";
    const bool isWritten = write(_folder + "/" + prefix + "frame-" + number + ".png", framebuffer, size);
    if (!isWritten || recording.nFrames == _nFrames)
        gui::Application::quit(isWritten ? 0 : 1);
    return recording.nFrames < _nFrames;
}

bool FrameRecorder::write(const std::string& path, unsigned int framebuffer, const td::Size<int>& size) const
{
    gui::Texture picture;
    return readFrame(framebuffer, size, picture) && picture.saveToFile(path.c_str());
}

} // namespace gui::gl
