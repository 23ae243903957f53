// A map of the world's countries to pan and zoom, or pictures of it.

#include "MapView.h"

#include <common/CommandLine.h>
#include <common/SavePicture.h>
#include <gui/Application.h>
#include <gui/draw/Inspector.h>

namespace
{

constexpr const char* cHelp = R"(Usage: worldmap [--out FOLDER] | --help

Shows the countries of the world. The line below says where the pointer is.

  wheel, arrow keys                    move
  drag with Shift                      fly to what the box is around
  wheel with Ctrl, pinch, + and -      zoom; 0 shows all of the map again
  double click                         fly to a country
  M                                    equirectangular or Mercator projection
  L                                    names of countries, scale bar and the line below
  O                                    an overview in a second window
  Escape                               end

  --out FOLDER   draw pictures at three zooms into a folder instead, without a window;
                 GUIGL_SCALE=2 draws two pixels per point
)";

} // namespace

int main(int argc, char** argv)
{
    using worldmap::Projection;
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
    const auto save = [&](const char* name) { return examples::savePicture(view, asked.folder / name); };
    bool areSaved = save("world.png");
    view.setProjection(Projection::Mercator);
    view.setCenter(project(Projection::Mercator, {14, 51}), 14);
    areSaved = areSaved && save("europe.png");
    view.setCenter(project(Projection::Mercator, {12.2, 42.9}), 60);
    return areSaved && save("italy.png") ? 0 : 1;
}
