#include "ReplayView.h"

#include "CallText.h"
#include "Walk.h"

#include <gui/Application.h>
#include <gui/Key.h>
#include <gui/draw/Image.h>
#include <gui/gl/Context.h>

#include <algorithm>
#include <cstdint>
#include <utility>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace replay
{

namespace
{

// This program again, without a window. @return whether it wrote the picture
bool drawInto(const std::string& picture, const Options& options, std::size_t to)
{
    const std::string number = std::to_string(to), timeout = std::to_string(options.timeout);
    std::vector<const char*> arguments{"guigl-replay", "--out",         picture.c_str(),
                                       "--timeout",    timeout.c_str(), options.file.c_str()};
    if (to != SIZE_MAX)
        arguments.insert(arguments.end(), {"--to", number.c_str()});
    arguments.push_back(nullptr);
    pid_t process = 0;
    int status = 0;
    return posix_spawn(&process, "/proc/self/exe", nullptr, nullptr, const_cast<char* const*>(arguments.data()),
                       environ) == 0 &&
           waitpid(process, &status, 0) == process && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

} // namespace

ReplayView::ReplayView(gui::Window& window, const Options& options, const gui::gl::FrameFile& file)
    : _window(window)
    , _options(options)
{
    FrameModel model;
    walk(file, model,
         [this, &model, &file](const Step& step)
         {
             if (step.isDraw())
                 _draws.push_back(textOf(step.call, step.arguments) +
                                  (model.drawFramebuffer() == file.info().framebuffer
                                       ? ""
                                       : " to framebuffer " + std::to_string(model.drawFramebuffer())));
             return true;
         });
    _draw = std::clamp<std::size_t>(options.to, 1, std::max<std::size_t>(_draws.size(), 1));
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
    _drawing.clear();
    char path[] = "/tmp/guigl-replay-XXXXXX.png";
    constexpr int cEnding = 4;
    const int file = mkstemps(path, cEnding);
    bool isDrawn = false;
    if (file >= 0)
    {
        close(file);
        isDrawn = drawInto(path, _options, _draw < _draws.size() ? _draw : SIZE_MAX);
        const auto image = isDrawn ? gui::draw::Image::fromFile(path) : gui::draw::Image();
        unlink(path);
        _drawing.image({0, 0, static_cast<double>(image.getWidth()), static_cast<double>(image.getHeight())}, image);
    }
    std::string title = std::to_string(_draw) + " of " + std::to_string(_draws.size());
    if (_draw <= _draws.size())
        title += "  " + _draws[_draw - 1];
    if (!isDrawn)
        title += " (nothing to see)";
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
