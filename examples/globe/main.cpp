// The earth in space, to turn and to go nearer to, or pictures of it.

#include "EarthView.h"

#include <common/CommandLine.h>
#include <common/SavePicture.h>
#include <gui/Application.h>
#include <gui/draw/Inspector.h>

#include <cstdlib>
#include <string>

namespace
{

constexpr td::Size<double> cSize{1080, 720};

constexpr const char* cHelp = R"(Usage: globe [--out FOLDER] | --help

Shows the earth in space. The window's title tells where the eye is.

  drag, arrow keys           turn
  wheel, pinch, plus, minus  nearer and away
  drag with Shift            move along
  double click               fly there; beside the earth, to where all is seen
  pointer                    tells the country
  1, 2, 3                    fly to an outlook
  Space                      time goes on, or stops
  B, L                       borders, names
  Escape                     end

  --out FOLDER   draw the three outlooks into a folder instead, without a window;
                 GUIGL_SCALE=2 draws two pixels per point
)";

} // namespace

int main(int argc, char** argv)
{
    const examples::CommandLine asked = examples::readCommandLine(argc, argv, cHelp);
    if (asked.exitStatus)
        return *asked.exitStatus;
    gui::Application app(argc, argv);
    const gui::draw::Inspector inspector; // F12 shows it
    gui::Window window("Globe", cSize);
    globe::EarthView view(&window);
    if (!view.isOk() || !window.show(view))
        return EXIT_FAILURE;
    if (asked.folder.empty())
        return app.run();
    for (const globe::Outlook& outlook : globe::cOutlooks)
    {
        view.show(outlook);
        if (!examples::savePicture(view, asked.folder / (std::string(outlook.name) + ".png")))
            return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
