// Draws captured frames.

#include "Error.h"
#include "Options.h"
#include "Overdraw.h"
#include "Picture.h"
#include "ReplayView.h"
#include "Reports.h"
#include "Watchdog.h"

#include <gui/Application.h>
#include <gui/Window.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <exception>

namespace
{

using namespace replay;

Picture pictureOf(Player& player, std::size_t to)
{
    const std::size_t n = player.play(to);
    if (to != SIZE_MAX && n < to)
        throw Error("the frame has " + std::to_string(n) + " draws");
    return Picture::read(to == SIZE_MAX ? player.screen() : player.drawFramebuffer(), player.screenSize());
}

void writeOverdraw(const gui::gl::FrameFile& file, const std::string& path)
{
    Player player(file);
    double mean = 0;
    unsigned int most = 0;
    Overdraw overdraw(player);
    player.play(SIZE_MAX, &overdraw);
    overdraw.picture(mean, most).save(path);
    std::printf("Each pixel is drawn %.2f times, one of them %u times\n", mean, most);
}

void report(const gui::gl::FrameFile& file, const Options& options)
{
    if (options.list)
        printDraws(file);
    if (options.buffer)
        printBuffer(file, *options.buffer);
    if (options.program)
        printProgram(file, *options.program);
    if (options.changes || options.times || !options.picture.empty())
    {
        Player player(file);
        if (options.changes)
            printChanges(player);
        if (options.times)
            printTimes(player);
        if (!options.picture.empty())
            pictureOf(player, options.to).save(options.picture);
    }
    if (!options.overdraw.empty())
        writeOverdraw(file, options.overdraw);
}

int show(gui::Application& app, const gui::gl::FrameFile& file, const Options& options)
{
    gui::Window window("guigl-replay",
                       {static_cast<double>(file.info().width), static_cast<double>(file.info().height)});
    ReplayView view(window, options, file);
    watch(options.file, 0);
    return window.show(view) ? app.run() : 1;
}

int run(int argc, char** argv, Options& options)
{
    gui::gl::FrameFile file;
    watch(options.file, options.timeout);
    if (const std::string error = file.load(options.file); !error.empty())
        throw Error(error);
    if (!options.isAnythingAsked())
    {
        gui::Application app(argc, argv);
        if (std::strcmp(gui::Application::getWindowSystem(), "offscreen") != 0)
            return show(app, file, options);
        options.picture = options.file + ".png";
    }
    report(file, options);
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    Options options;
    try
    {
        options = parseOptions({argv + 1, argv + argc});
        if (options.help)
        {
            std::fputs(cHelp, stdout);
            return 0;
        }
        return run(argc, argv, options);
    }
    catch (const std::exception& error)
    {
        std::fprintf(stderr, "guigl-replay: %s%s%s\n", options.file.c_str(), options.file.empty() ? "" : ": ",
                     error.what());
        return 1;
    }
}
