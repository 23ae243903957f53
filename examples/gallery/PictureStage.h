#pragma once

#include "Stage.h"

#include <gui/gl/OffscreenContext.h>

namespace gallery
{

/// The stage of a scene that is drawn as a picture.
class PictureStage : public Stage
{
public:
    /// @param context  what the picture is drawn in  @param seconds  its moment
    PictureStage(gui::gl::OffscreenContext& context, double seconds)
        : _context(context)
        , _seconds(seconds)
    {
    }

    void redraw() override { _isDrawWanted = true; }
    void grab(gui::Texture& image, const std::function<void()>& callback) override;
    double getSeconds() const override { return _seconds; }
    void toggleTime() override {}
    void setNote(const std::string&) override {}

    /// Ends a frame: reads it if a scene wants it. @return whether the picture must be drawn once more
    bool finishFrame();

private:
    gui::gl::OffscreenContext& _context;
    double _seconds;
    gui::Texture* _pImage = nullptr;
    std::function<void()> _callback;
    bool _isDrawWanted = false;
};

} // namespace gallery
