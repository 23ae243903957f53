// Draws the map of the world or a scene of the gallery step by step, for tools/count-instructions:
//
//     frame_steps map|SCENE
//
// Each step begins with a call of beginStep, which does nothing: the start with all of the first frame, a frame at
// rest, one that moved, one that zoomed, and one a sixtieth of a second later. Twice each, since the first time may
// link programs.

#include <gui/Application.h>
#include <gui/InputDevice.h>
#include <gui/Window.h>
#include <gui/gl/OffscreenContext.h>

#include <epoxy/gl.h>
#include <gallery/PictureStage.h>
#include <gallery/Scenes.h>
#include <worldmap/MapView.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string_view>

extern "C" [[gnu::noinline]] void beginStep(const char* name) { asm volatile("" : : "r"(name) : "memory"); }

namespace
{

constexpr td::Point<double> cMove{7, 3}; // points
constexpr double cZoom = 1.02;
constexpr double cSixtieth = 1.0 / 60;

struct Steps
{
    std::function<void()> draw, move, zoom, goOn;
};

void walk(const Steps& steps)
{
    const auto take = [&steps](const char* name, const std::function<void()>& change)
    {
        for (int i = 0; i < 2; ++i)
        {
            beginStep(name);
            change();
            steps.draw();
            glFinish();
        }
    };
    steps.draw();
    glFinish();
    take("at rest", [] {});
    take("moved", steps.move);
    take("zoomed", steps.zoom);
    take("later", steps.goOn);
    beginStep("end");
}

int walkMap(gui::Application& app)
{
    worldmap::Countries countries;
    if (!countries.load())
        return EXIT_FAILURE;
    gui::Window window("World map", {1080, 580});
    worldmap::MapView view(window, countries);
    if (!window.show(view))
        return EXIT_FAILURE;
    walk({.draw =
              [&]
          {
              view.reDraw();
              app.step(0);
          },
          .move =
              [&]
          {
              const td::Point<double> center = view.getCenter();
              view.setCenter({center.x + cMove.x / view.getZoom(), center.y + cMove.y / view.getZoom()});
          },
          .zoom = [&] { view.zoomBy(cZoom); },
          .goOn = [] {}});
    return EXIT_SUCCESS;
}

int walkScene(std::string_view name)
{
    using namespace gui::gl;
    constexpr td::Size<double> cSize{960, 600};
    const auto scenes = gallery::scenes();
    const auto info =
        std::ranges::find_if(scenes, [name](const gallery::SceneInfo& scene) { return scene.name == name; });
    OffscreenContext context({960, 600},
                             Context(DepthBuffer::Size::Bits24, StencilBuffer::Size::Bits8, Context::Profile::Core41));
    if (info == scenes.end() || !context.isOk())
        return EXIT_FAILURE;
    const std::unique_ptr<gallery::Scene> pScene = info->make();
    if (!pScene->init())
        return EXIT_FAILURE;
    double seconds = 2;
    gallery::PictureStage stage(context, seconds);
    pScene->enter(stage);
    const auto send = [&](gallery::PointerEvent event, const td::Point<double>& point, double zoom)
    {
        gui::InputDevice device(point, point, point, 0, gui::InputDevice::Type::Mouse, gui::InputDevice::Button::Wheel);
        gui::InputDeviceHelper(&device).setScale(zoom);
        pScene->onPointer(event, device);
    };
    walk({.draw =
              [&] {
                  pScene->draw({cSize, 1, seconds});
              },
          .move = [&] { send(gallery::PointerEvent::Scrolled, cMove, 1); },
          .zoom =
              [&] {
                  send(gallery::PointerEvent::Zoomed, {400, 300}, cZoom);
              },
          .goOn = [&] { pScene->prepareNextFrame(seconds += cSixtieth); }});
    return EXIT_SUCCESS;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2)
    {
        std::fprintf(stderr, "Usage: frame_steps map|SCENE\n");
        return EXIT_FAILURE;
    }
    gui::Application app(argc, argv);
    return std::string_view(argv[1]) == "map" ? walkMap(app) : walkScene(argv[1]);
}
