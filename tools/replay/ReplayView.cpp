#include "ReplayView.h"

#include "CallText.h"
#include "Picture.h"
#include "Watchdog.h"

#include <gui/Application.h>
#include <gui/Key.h>
#include <gui/draw/Image.h>
#include <gui/gl/Context.h>

#include <algorithm>

namespace replay
{

ReplayView::ReplayView(gui::Window& window, const std::string& path, const gui::gl::FrameFile& file, Player& player,
                       std::size_t to, unsigned int seconds)
    : _window(window)
    , _path(path)
    , _player(player)
    , _draw(to)
    , _seconds(seconds)
{
    FrameModel model;
    walk(file, model,
         [this](const Step& step)
         {
             if (step.isDraw())
                 _draws.push_back(textOf(step.call, step.arguments));
             return true;
         });
    _draw = std::clamp<std::size_t>(_draw, 1, std::max<std::size_t>(_draws.size(), 1));
    createContext(true);
}

void ReplayView::goTo(std::size_t draw)
{
    draw = std::clamp<std::size_t>(draw, 1, std::max<std::size_t>(_draws.size(), 1));
    _isNew |= draw != _draw;
    _draw = draw;
    reRender();
}

void ReplayView::takePicture()
{
    watch(_path, _seconds);
    _player.play(_draw);
    const GLuint framebuffer = _draw == _draws.size() ? _player.screen() : _player.drawFramebuffer();
    Picture picture = Picture::read(framebuffer, _player.screenSize());
    watch(_path, 0);
    makeCurrentContext();
    _drawing.clear();
    _size = picture.size;
    if (!picture.pixels.empty())
        _drawing.image({0, 0, static_cast<double>(_size.width), static_cast<double>(_size.height)},
                       gui::draw::Image(picture.toTexture()));
    std::string title = std::to_string(_draw) + " of " + std::to_string(_draws.size());
    if (_draw <= _draws.size())
        title += "  " + _draws[_draw - 1];
    if (picture.isDepth)
        title += " (depth)";
    else if (!_player.isScreen(framebuffer))
        title += " (not the screen)";
    _window.setTitle(title.c_str());
}

void ReplayView::onDraw(const td::RectNormalized<double>&)
{
    if (std::exchange(_isNew, false))
        takePicture();
    gui::gl::Context::clear(gui::gl::Context::Clear::Color, td::ColorID::Black);
    _drawing.draw(*this);
}

bool ReplayView::onKeyPressed(const gui::Key& key)
{
    switch (key.getVirtual())
    {
    case gui::Key::Virtual::Left:
        goTo(_draw - 1);
        return true;
    case gui::Key::Virtual::Right:
        goTo(_draw + 1);
        return true;
    case gui::Key::Virtual::Home:
        goTo(1);
        return true;
    case gui::Key::Virtual::End:
        goTo(_draws.size());
        return true;
    case gui::Key::Virtual::Escape:
        gui::Application::quit();
        return true;
    default:
        return OrthoView::onKeyPressed(key);
    }
}

} // namespace replay
