// A map of the world's countries to pan and zoom, or pictures of it.

#include "MapView.h"

#include <common/SavePicture.h>
#include <gui/Application.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>

namespace
{

using worldmap::Projection;

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

bool drawPicture(worldmap::MapView& view, const std::filesystem::path& file, Projection projection, double zoom = 0,
                 const td::Point<double>& middle = {})
{
    view.setProjection(projection);
    view.fit();
    if (zoom > 0)
    {
        view.setZoom(zoom);
        view.setCenter(project(projection, middle));
    }
    return examples::savePicture(view, file);
}

} // namespace

int main(int argc, char** argv)
{
    constexpr int cExitFailed = 1, cExitUsage = 2;
    std::filesystem::path folder;
    td::Size<double> size{1080, 580};
    for (int i = 1; i < argc; i += 2)
    {
        const std::string option = argv[i], value = i + 1 < argc ? argv[i + 1] : "";
        char rest = 0;
        if (option == "--help")
            return std::fputs(cHelp, stdout) < 0 ? cExitFailed : 0;
        if (option == "--out" && !value.empty())
            folder = value;
        else if (option != "--size" || std::sscanf(value.c_str(), "%lfx%lf%c", &size.width, &size.height, &rest) != 2 ||
                 std::min(size.width, size.height) < 100 || std::max(size.width, size.height) > 8000)
        {
            std::fprintf(stderr, "worldmap: cannot make sense of: %s %s (see worldmap --help)\n", argv[i],
                         value.c_str());
            return cExitUsage;
        }
    }
    // Pictures need no display, even where there is one.
    if (!folder.empty())
        setenv("GUIGL_WINDOW_SYSTEM", "offscreen", 1);

    gui::Application app(argc, argv);
    worldmap::Countries countries;
    if (!countries.load())
        return cExitFailed;
    gui::Window window("World map", size);
    worldmap::MapView view(window, countries);
    if (!window.show(view))
        return cExitFailed;
    if (folder.empty())
        return app.run();
    const bool isDrawn = drawPicture(view, folder / "world.png", Projection::Equirectangular) &&
                         drawPicture(view, folder / "europe.png", Projection::Mercator, 14, {14, 51}) &&
                         drawPicture(view, folder / "italy.png", Projection::Mercator, 60, {12.2, 42.9});
    return isDrawn ? 0 : cExitFailed;
}
