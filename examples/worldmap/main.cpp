// A map of the world's countries to pan and zoom, or pictures of it.

#include "MapView.h"

#include <common/CommandLine.h>
#include <common/SavePicture.h>
#include <gui/Application.h>
#include <gui/draw/Inspector.h>

namespace
{

using worldmap::Projection;

constexpr const char* cHelp = R"(Usage: worldmap [--out FOLDER] | --help

Shows the countries of the world. The line below says where the pointer is.

  drag with Shift, wheel, arrow keys   move
  wheel with Ctrl, pinch, + and -      zoom; 0 shows all of the map again
  double click                         fly to a country
  M                                    equirectangular or Mercator projection
  L                                    names of countries, scale bar and the line below
  O                                    an overview in a second window
  Escape                               end

  --out FOLDER   draw pictures at three zooms into a folder instead, without a window;
                 GUIGL_SCALE=2 draws two pixels per point
)";

bool drawPicture(worldmap::MapView& view, const std::filesystem::path& file, Projection projection, double zoom = 0,
                 const td::Point<double>& middle = {})
{
    view.setProjection(projection);
    view.goHome();
    if (zoom > 0)
        view.setCenter(project(projection, middle), zoom);
    return examples::savePicture(view, file);
}

} // namespace

int main(int argc, char** argv)
{
    const examples::CommandLine asked = examples::readCommandLine(argc, argv, cHelp);
    if (asked.exitStatus)
        return *asked.exitStatus;
    gui::Application app(argc, argv);
    const gui::draw::Inspector inspector; // F12 shows it
    worldmap::Countries countries;
    if (!countries.load())
        return 1;
    gui::Window window("World map", {1080, 580});
    worldmap::MapView view(window, countries);
    if (!window.show(view))
        return 1;
    if (asked.folder.empty())
        return app.run();
    const bool isDrawn = drawPicture(view, asked.folder / "world.png", Projection::Equirectangular) &&
                         drawPicture(view, asked.folder / "europe.png", Projection::Mercator, 14, {14, 51}) &&
                         drawPicture(view, asked.folder / "italy.png", Projection::Mercator, 60, {12.2, 42.9});
    return isDrawn ? 0 : 1;
}
