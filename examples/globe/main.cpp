// The earth in space, to fly around, or pictures of it.

#include "GlobeView.h"

#include <common/SavePicture.h>
#include <gui/Application.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

namespace
{

using namespace globe;

constexpr int cExitFailed = 1;
constexpr int cExitUsage = 2;
constexpr td::Size<double> cSize{1080, 720};

constexpr const char* cHelp = R"(Usage: globe [--out FOLDER] | --help

Shows the earth in space. The window's title tells where the eye is.

  W, S, A, D, arrow keys     fly
  the same with Alt, wheel   turn
  pointer with Shift         move across
  wheel with Ctrl, pinch     zoom
  1, 2, 3                    outlooks
  Space                      time goes on, or stops
  B, L                       borders, labels
  Escape                     end

  --out FOLDER   draw the three outlooks into a folder instead, without a window;
                 GUIGL_SCALE=2 draws two pixels per point
)";

// @return the program's exit status
int drawPictures(GlobeView& view, const std::filesystem::path& folder)
{
    for (const Outlook& outlook : cOutlooks)
    {
        view.show(outlook);
        if (!examples::savePicture(view, folder / (std::string(outlook.name) + ".png")))
            return cExitFailed;
    }
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    const std::string option = argc > 1 ? argv[1] : "";
    const bool isOut = option == "--out" && argc == 3 && *argv[2] != '\0';
    if (option == "--help")
    {
        std::fputs(cHelp, stdout);
        return 0;
    }
    if (argc > 1 && !isOut)
    {
        std::fprintf(stderr, "globe: cannot make sense of: %s (see globe --help)\n", argv[1]);
        return cExitUsage;
    }
    // Pictures need no display, even where there is one.
    if (isOut)
        setenv("GUIGL_WINDOW_SYSTEM", "offscreen", 1);

    gui::Application app(argc, argv);
    gui::Window window("Globe", cSize);
    GlobeView view(window);
    if (!view.isOk() || !window.show(view))
        return cExitFailed;
    return isOut ? drawPictures(view, argv[2]) : app.run();
}
