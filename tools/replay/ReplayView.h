#pragma once

#include "Options.h"

#include <capture/FrameFile.h>

#include <gui/Window.h>
#include <gui/draw/Drawing.h>
#include <gui/gl/OrthoView.h>

#include <string>
#include <vector>

namespace replay
{

/// Shows the picture after one of a frame's draws, and goes from draw to draw. Each picture is drawn by another
/// process, as --out has it: one window system's contexts and EGL's don't go together in one thread, and whatever a
/// file does to a driver leaves the window alone.
class ReplayView : public gui::gl::OrthoView
{
public:
    /// @param file  read during the call only
    ReplayView(gui::Window& window, const Options& options, const gui::gl::FrameFile& file);

private:
    void onDraw(const td::RectNormalized<double>& rect) override;
    bool onKeyPressed(const gui::Key& key) override;
    void goTo(std::size_t draw);
    void takePicture();

    gui::Window& _window;
    const Options _options;
    std::vector<std::string> _draws; // in words
    std::size_t _draw;
    bool _isNew = true;
    gui::draw::Drawing _drawing;
};

} // namespace replay
