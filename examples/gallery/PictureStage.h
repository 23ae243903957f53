#pragma once

#include "Scene.h"
#include "Stage.h"

#include <gui/gl/OffscreenContext.h>

namespace gallery
{

/// The stage of a scene that is drawn as a picture, and somebody who plays with it before.
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
    void setCursor(gui::Cursor::Type) override {}
    void setNote(const std::string&) override {}

    /// Sends the scene what a user could do in a moment: pointer, wheel and keys.
    /// @param size  of the scene, in points
    static void play(Scene& scene, const td::Size<double>& size);

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
