// Shows a window, draws two frames of it and ends; given an argument it stays, and says when its view is cleaned up.
// Writes the window system to standard output.

#include <gui/Application.h>
#include <gui/Window.h>
#include <gui/gl/View.h>
#include <td/Assert.h>
#include <vo/Log.h>

#include <cstdio>

namespace
{

class View : public gui::gl::View
{
public:
    explicit View(bool isStaying)
        : _isStaying(isStaying)
    {
    }

protected:
    void cleanResources() override { vo::dbgLog("cleaned up"); }
    void onDraw(const td::RectNormalized<double>&) override
    {
        gui::gl::Context::clear(gui::gl::Context::Clear::Color);
        if (_isStaying)
            return;
        reRender();
        if (++_nFrames == 2)
            gui::Application::quit(0);
    }

private:
    bool _isStaying;
    int _nFrames = 0;
};

} // namespace

int main(int argc, char** argv)
{
    td::setAssertHandler([](const td::AssertReport&) {});
    gui::Application application(argc, argv);
    View view(argc > 1);
    view.createContext(gui::gl::Context(gui::gl::DepthBuffer::Size::Bits32, gui::gl::StencilBuffer::Size::Bits16,
                                        gui::gl::Context::Profile::Core41));
    if (view.getHandle() == nullptr)
        return 2;
    gui::Window window("Program", {200, 150});
    window.show(view);
    std::printf("%s", gui::Application::getWindowSystem());
    std::fflush(stdout);
    return application.run();
}
