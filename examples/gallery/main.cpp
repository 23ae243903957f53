// Shows the gallery's scenes in a window or, without a display or when asked to, draws them into PNG files and a web
// page.

#include "GLMessages.h"
#include "GalleryView.h"
#include "Page.h"
#include "PictureStage.h"
#include "Scenes.h"

#include <gui/Application.h>
#include <gui/Texture.h>
#include <gui/Window.h>
#include <gui/gl/OffscreenContext.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <span>
#include <string>

namespace
{

using namespace gallery;

constexpr td::Size<double> cSize{960, 600}; // in points

// The moment at which scenes that move are pictured.
constexpr double cSeconds = 2;

constexpr int cExitFailed = 1;
constexpr int cExitUsage = 2;

constexpr const char* cHelp = R"(Usage: gallery [--scene NAME] [--frames N]
       gallery --out FOLDER [--scene NAME]
       gallery --list | --help

Shows the gallery in a window. Digits and arrow keys choose a scene, Space starts and
stops time, F or F12 shows what a frame costs, F11 fills the screen, Escape ends.
Without a display, or with --out, it draws every scene into a folder instead: NAME.png,
NAME@2x.png for screens with two pixels per point (GUIGL_SCALE=1 or 2 leaves out the other),
and index.html, which shows them all.

  --out FOLDER   where to draw; made if need be (without a display: out)
  --scene NAME   begin with this scene; with --out, draw only this one and no index.html
  --frames N     end after N frames
  --list         print the names of the scenes
  --help         print this
)";

struct Options
{
    std::filesystem::path folder; // empty: not asked for
    int nFrames = 0;              // 0: no end
    const SceneInfo* pOnly = nullptr;
    bool isList = false;
    bool isHelp = false;
};

const SceneInfo* findScene(const char* name)
{
    for (const SceneInfo& scene : scenes())
        if (std::strcmp(scene.name, name) == 0)
            return &scene;
    return nullptr;
}

// Says what is wrong with the command line and returns false if anything is.
bool parse(int argc, char** argv, Options& options)
{
    for (int i = 1; i < argc; ++i)
    {
        const std::string option = argv[i];
        const char* value = i + 1 < argc ? argv[i + 1] : "";
        if (option == "--list")
            options.isList = true;
        else if (option == "--help")
            options.isHelp = true;
        else if (option != "--out" && option != "--scene" && option != "--frames")
        {
            std::fprintf(stderr, "gallery: unknown option: %s (see gallery --help)\n", argv[i]);
            return false;
        }
        else if (*value == '\0')
        {
            std::fprintf(stderr, "gallery: %s needs a value (see gallery --help)\n", argv[i]);
            return false;
        }
        else if (++i; option == "--out")
            options.folder = value;
        else if (option == "--frames")
        {
            options.nFrames = std::atoi(value);
            if (options.nFrames < 1)
            {
                std::fprintf(stderr, "gallery: --frames needs a number above 0, not %s\n", value);
                return false;
            }
        }
        else if (options.pOnly = findScene(value); options.pOnly == nullptr)
        {
            std::fprintf(stderr, "gallery: no scene is named %s (see gallery --list)\n", value);
            return false;
        }
    }
    return true;
}

// Device pixels per point of the pictures: 1 and 2, unless the environment wants one of them alone.
std::span<const int> scalesOfPictures()
{
    static constexpr std::array<int, 2> cScales = {1, 2};
    const char* wanted = std::getenv("GUIGL_SCALE");
    const auto found = std::find(cScales.begin(), cScales.end(), wanted != nullptr ? std::atoi(wanted) : 0);
    return found != cScales.end() ? std::span(&*found, 1) : std::span(cScales);
}

td::Size<int> pixels(int scale)
{
    return {static_cast<int>(cSize.width) * scale, static_cast<int>(cSize.height) * scale};
}

// Draws one scene at every scale. Failures are in the log.
bool drawPictures(const SceneInfo& info, const std::filesystem::path& folder, int& nDrawn, int nPictures)
{
    using namespace gui::gl;
    OffscreenContext context(
        pixels(1), Context(DepthBuffer::Size::Bits24, StencilBuffer::Size::Bits8, Context::Profile::Core41), true);
    if (!context.isOk())
        return false;
    GLMessages messages;
    std::unique_ptr<Scene> pScene = info.make();
    if (!pScene->init())
        return false;
    PictureStage stage(context, cSeconds);
    pScene->enter(stage);
    PictureStage::play(*pScene, cSize);
    for (const int scale : scalesOfPictures())
    {
        gui::Texture picture;
        const std::string name = pictureName(info, scale);
        if (!context.resize(pixels(scale)))
            return false;
        do
            pScene->draw({cSize, static_cast<double>(scale), cSeconds});
        while (stage.finishFrame());
        if (!context.readPixels(picture) || !picture.saveToFile((folder / name).c_str()))
            return false;
        std::printf("[%d/%d] %s\n", ++nDrawn, nPictures, name.c_str());
        std::fflush(stdout);
    }
    pScene.reset();
    return messages.areFaultless();
}

int show(gui::Application& app, const Options& options)
{
    gui::Window window("Gallery", cSize);
    GalleryView view(window, options.pOnly != nullptr ? static_cast<std::size_t>(options.pOnly - scenes().data()) : 0,
                     options.nFrames);
    return window.show(view) ? app.run() : cExitFailed;
}

int draw(const Options& options)
{
    const std::filesystem::path folder = options.folder.empty() ? "out" : options.folder;
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error)
    {
        std::fprintf(stderr, "gallery: cannot make folder %s: %s\n", folder.c_str(), error.message().c_str());
        return cExitFailed;
    }
    const std::span<const SceneInfo> chosen = options.pOnly != nullptr ? std::span(options.pOnly, 1) : scenes();
    const int nPictures = static_cast<int>(chosen.size() * scalesOfPictures().size());
    int nDrawn = 0;
    int code = 0;
    for (const SceneInfo& scene : chosen)
    {
        if (!drawPictures(scene, folder, nDrawn, nPictures))
        {
            std::fprintf(stderr, "gallery: scene %s failed\n", scene.name);
            code = cExitFailed;
        }
    }
    const std::filesystem::path page = folder / "index.html";
    if (options.pOnly == nullptr && !writePage(page, cSize))
    {
        std::fprintf(stderr, "gallery: cannot write %s\n", page.c_str());
        code = cExitFailed;
    }
    return code;
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
    if (options.isList)
    {
        for (const SceneInfo& scene : scenes())
            std::puts(scene.name);
        return 0;
    }
    if (!options.folder.empty())
        return draw(options);
    gui::Application app(argc, argv);
    const bool isShown = std::strcmp(gui::Application::getWindowSystem(), "offscreen") != 0 || options.nFrames > 0;
    return isShown ? show(app, options) : draw(options);
}
