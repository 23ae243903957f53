// Shows a window, draws two frames of it and ends; with the argument "stays" it stays, and says when its view is
// cleaned up; with "shows" it then waits until the compositor's socket is gone, and shows another. A second
// argument is what it copies, and selects; a first one that is "asks" makes it say what there is and what becomes of
// texts of its own. Writes the window system to standard output.

#include <gui/Application.h>
#include <gui/Clipboard.h>
#include <gui/Window.h>
#include <gui/gl/View.h>
#include <td/Assert.h>
#include <vo/Log.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>

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

void tellClipboard()
{
    using gui::Clipboard;
    constexpr auto cSelected = Clipboard::Kind::Selected;
    std::printf("%d %s, %d %s\n", Clipboard::hasText(), Clipboard::getText().c_str(), Clipboard::hasText(cSelected),
                Clipboard::getText(cSelected).c_str());
    const bool isRefused = !Clipboard::setText("a\xFF") && !Clipboard::setText({"a\0b", 3});
    const bool isSet = Clipboard::setText("own");
    std::printf("%d %d %s\n", isRefused, isSet, Clipboard::getText().c_str());
}

void waitForEndOfCompositor()
{
    const std::filesystem::path folder = std::getenv("XDG_RUNTIME_DIR");
    while (exists(folder / std::getenv("WAYLAND_DISPLAY")))
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
}

} // namespace

int main(int argc, char** argv)
{
    td::setAssertHandler([](const td::AssertReport&) {});
    gui::Application application(argc, argv);
    const std::string what = argc > 1 ? argv[1] : "";
    View view(what == "stays" || what == "shows");
    View other(true);
    const gui::gl::Context context(gui::gl::DepthBuffer::Size::Bits32, gui::gl::StencilBuffer::Size::Bits16,
                                   gui::gl::Context::Profile::Core41);
    view.createContext(context);
    if (view.getHandle() == nullptr)
        return 2;
    gui::Window window("Program", {200, 150});
    window.show(view);
    if (argc > 2 && !(gui::Clipboard::setText(argv[2]) &&
                      gui::Clipboard::setText(std::string(argv[2]) + "!", gui::Clipboard::Kind::Selected)))
        return 3;
    if (what == "asks")
        tellClipboard();
    std::printf("%s", gui::Application::getWindowSystem());
    std::fflush(stdout);
    gui::Window second("Other", {200, 150});
    if (what == "shows")
    {
        other.createContext(context);
        waitForEndOfCompositor();
        second.show(other);
    }
    return application.run();
}
