// Shows a view for some seconds and tells when its frames were drawn:
//
//     window_view plain|map|globe moving|still SECONDS WIDTH HEIGHT
//
// The plain one is in a colour that says where the pointer is, see window_watch; it draws when that moves.

#include "Intervals.h"

#include <gui/Application.h>
#include <gui/Timer.h>
#include <gui/Window.h>
#include <gui/gl/View.h>

#include <epoxy/gl.h>
#include <globe/EarthView.h>
#include <worldmap/MapView.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <string>

namespace
{

bench::Intervals s_frames;
std::clock_t s_first = 0; // the processor's time at the first frame
int s_nFrames = 0;
gui::Window* s_pWindow = nullptr;

struct Plain : gui::gl::View
{
    Plain()
    {
        const gui::gl::Context context(gui::gl::DepthBuffer::Size::None, gui::gl::StencilBuffer::Size::None,
                                       gui::gl::Context::Profile::Core41);
        using Event = gui::InputDevice::Event;
        createContext(context, {Event::CursorMove, Event::CursorDrag, Event::PrimaryClicks});
    }

protected:
    void onCursorMoved(const gui::InputDevice& device) override
    {
        _x = static_cast<int>(device.getFramePoint().x);
        reRender();
    }
    void onDraw(const td::RectNormalized<double>&) override
    {
        constexpr int cMost = 256;
        constexpr float cOne = 255;
        glClearColor(static_cast<float>(_x % cMost) / cOne, static_cast<float>(_x / cMost) / cOne, 1, 1);
        glClear(GL_COLOR_BUFFER_BIT);
    }
    bool prepareNextFrame() override { return true; }

private:
    int _x = 0;
};

struct Map : worldmap::MapView
{
    explicit Map(const worldmap::Countries& countries)
        : MapView(*s_pWindow, countries)
    {
    }

protected:
    bool prepareNextFrame() override
    {
        MapView::prepareNextFrame();
        setCenter({60 * std::sin(++_n * 0.02), 20}, 4);
        return true;
    }

private:
    int _n = 0;
};

struct Globe : globe::EarthView
{
    Globe()
        : EarthView(s_pWindow)
    {
    }

protected:
    bool onAnimate(double seconds) override
    {
        EarthView::onAnimate(seconds);
        _place.x += cDegrees * seconds;
        look(_place, 3, _place);
        return true;
    }

private:
    static constexpr double cDegrees = 10; // a second

    gui::draw::Globe::Place _place{10, 40};
};

template <class Base>
struct Timed : Base
{
    using Base::Base;

protected:
    void onDraw(const td::RectNormalized<double>& rect) override
    {
        s_frames.add(bench::Clock::now());
        if (s_nFrames++ == 0)
            s_first = std::clock();
        Base::onDraw(rect);
    }
};

std::unique_ptr<gui::gl::View> make(const std::string& name, const worldmap::Countries& countries)
{
    if (name == "map")
        return std::make_unique<Timed<Map>>(countries);
    if (name == "globe")
        return std::make_unique<Timed<Globe>>();
    return std::make_unique<Timed<Plain>>();
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 6)
        return EXIT_FAILURE;
    gui::Application app(argc, argv);
    worldmap::Countries countries;
    if (!countries.load())
        return EXIT_FAILURE;
    gui::Window window("Measured", {std::atof(argv[4]), std::atof(argv[5])});
    s_pWindow = &window;
    const std::unique_ptr<gui::gl::View> pView = make(argv[1], countries);
    if (!window.show(*pView))
        return EXIT_FAILURE;
    if (std::string(argv[2]) == "moving")
        pView->startAnimation();
    gui::Timer end([] { gui::Application::quit(0); });
    end.startOnce(std::atof(argv[3]));
    const int status = app.run();
    s_frames.print("drawn");
    const double used = 1000.0 * static_cast<double>(std::clock() - s_first) / CLOCKS_PER_SEC;
    std::printf("processors: %.2f ms a frame\n", used / std::max(1, s_nFrames));
    return status;
}
