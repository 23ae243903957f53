// A map of the world's countries to pan and zoom, or pictures of it.

#include "MapView.h"

#include <common/SavePicture.h>
#include <gui/Application.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

namespace
{

using namespace worldmap;

constexpr int cExitFailed = 1;
constexpr int cExitUsage = 2;

constexpr const char* cHelp = R"(Usage: worldmap [--size WIDTHxHEIGHT] [--out FOLDER] | --help

Shows the countries of the world. The line below says where the pointer is.

  drag with Shift, wheel, arrow keys   move
  wheel with Ctrl, pinch, + and -      zoom; 0 shows all of the map again
  M                                    equirectangular or Mercator projection
  L                                    names of countries, scale bar and the line below
  O                                    an overview in a second window
  Escape                               end

  --size WIDTHxHEIGHT  the window's size, or the pictures', in points
  --out FOLDER         draw pictures at three zooms into a folder instead, without a window;
                       GUIGL_SCALE=2 draws two pixels per point
)";

struct Options
{
    std::filesystem::path folder; // empty: not asked for
    td::Size<double> size{1080, 580};
    bool isHelp = false;
};

// Says what is wrong with the command line and returns false if anything is.
bool parse(int argc, char** argv, Options& options)
{
    for (int i = 1; i < argc; ++i)
    {
        const std::string option = argv[i];
        const char* value = i + 1 < argc ? argv[i + 1] : "";
        char rest = 0;
        if (option == "--help")
            options.isHelp = true;
        else if (option == "--out" && *value != '\0')
            options.folder = argv[++i];
        else if (option == "--size" &&
                 std::sscanf(value, "%lfx%lf%c", &options.size.width, &options.size.height, &rest) == 2 &&
                 options.size.width >= 100 && options.size.width <= 8000 && options.size.height >= 100 &&
                 options.size.height <= 8000)
            ++i;
        else
        {
            std::fprintf(stderr, "worldmap: cannot make sense of: %s %s (see worldmap --help)\n", argv[i], value);
            return false;
        }
    }
    return true;
}

/// A view of the map that is worth a picture.
struct Shot
{
    const char* name;
    Projection projection;
    double zoom;              // 0: all of it
    td::Point<double> middle; // longitude and latitude
};

constexpr Shot cShots[] = {
    {"world", Projection::Equirectangular, 0, {}},
    {"europe", Projection::Mercator, 14, {14, 51}},
    {"italy", Projection::Mercator, 60, {12.2, 42.9}},
};

int drawPictures(MapView& view, const std::filesystem::path& folder)
{
    for (const Shot& shot : cShots)
    {
        view.setProjection(shot.projection);
        view.fit();
        if (shot.zoom > 0)
        {
            view.setZoom(shot.zoom);
            view.center(project(shot.projection, shot.middle));
        }
        if (!examples::savePicture(view, folder / (std::string(shot.name) + ".png")))
            return cExitFailed;
    }
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    Options options;
    if (!parse(argc, argv, options))
        return cExitUsage;
    if (options.isHelp)
    {
        std::fputs(cHelp, stdout);
        return 0;
    }
    // Pictures need no display, even where there is one.
    if (!options.folder.empty())
        setenv("GUIGL_WINDOW_SYSTEM", "offscreen", 1);

    gui::Application app(argc, argv);
    Countries countries;
    if (!countries.load())
        return cExitFailed;
    gui::Window window("World map", options.size);
    MapView view(window, countries);
    if (!window.show(view))
        return cExitFailed;
    return options.folder.empty() ? app.run() : drawPictures(view, options.folder);
}
