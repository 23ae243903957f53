#pragma once

#include "Player.h"

#include <gui/Window.h>
#include <gui/draw/Drawing.h>
#include <gui/gl/OrthoView.h>

#include <string>
#include <vector>

namespace replay
{

/// Shows the picture after one of a frame's draws, and goes from draw to draw.
class ReplayView : public gui::gl::OrthoView
{
public:
    /// @param file, player  not owned  @param seconds  that a picture may take; 0 for as long as it likes
    ReplayView(gui::Window& window, const std::string& path, const gui::gl::FrameFile& file, Player& player,
               std::size_t to, unsigned int seconds);

private:
    void onDraw(const td::RectNormalized<double>& rect) override;
    bool onKeyPressed(const gui::Key& key) override;
    void goTo(std::size_t draw);
    void takePicture();

    gui::Window& _window;
    std::string _path;
    Player& _player;
    std::vector<std::string> _draws; // in words
    std::size_t _draw;
    unsigned int _seconds;
    bool _isNew = true;
    td::Size<int> _size;
    gui::draw::Drawing _drawing;
};

} // namespace replay
