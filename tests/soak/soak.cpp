// Windows that come and go, with the gallery's scenes and the map of the world in them, and a user without a plan. What
// the user does is told to the views: how events of a window system come to them is seen where real users are played.
// Fails when memory or the number of open files grows after the first round, or when anything is in the log.

#include "examples/SlowScenes.h"
#include "sdl/Weston.h"
#include "sdl/XServer.h"
#include "src/native/GLView.h"
#include "support/OpenFiles.h"
#include "support/Pinning.h"
#include "toolkit/src/offscreen/OffscreenWindowSystem.h"

#include <gallery/GalleryView.h>
#include <worldmap/MapView.h>

#include <gui/Application.h>
#include <gui/Key.h>
#include <gui/gl/CurrentContext.h>
#include <vo/Log.h>

#include <dlfcn.h>
#include <epoxy/egl.h>
#include <malloc.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <optional>
#include <random>
#include <string>
#include <utility>

namespace soak
{

namespace
{

using Clock = std::chrono::steady_clock;
using Random = std::mt19937;

int below(Random& random, std::size_t n) { return static_cast<int>(random() % n); }

double secondsSince(Clock::time_point begin) { return std::chrono::duration<double>(Clock::now() - begin).count(); }

// The sanitizers have a heap of their own. @return what counts what is in use there, if they are at work
std::size_t (*countOfSanitizers())()
{
    using Count = std::size_t (*)();
    static const auto count = reinterpret_cast<Count>(dlsym(RTLD_DEFAULT, "__sanitizer_get_current_allocated_bytes"));
    return count;
}

std::size_t bytesInUse()
{
    if (const auto count = countOfSanitizers())
        return count();
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

EGLBoolean refuseCurrent(EGLDisplay, EGLSurface, EGLSurface, EGLContext) { return EGL_FALSE; }

/// Somebody who moves, clicks, turns the wheel and types without a plan: a few things, as a surface tells of them.
void act(gui::gl::View& view, Random& random)
{
    using namespace gui::gl;
    // What programs have uses for, but Escape, which ends them, F11, and S, which saves pictures.
    constexpr char cCharacters[] = "123456789 fwad+-0mloenpt";
    constexpr gui::KeyModifier cModifiers[] = {gui::KeyModifier::Shift, gui::KeyModifier::Cmd, gui::KeyModifier::Alt};
    auto& native = dynamic_cast<GLView&>(*view.getHandle());
    td::Size<double> size;
    native.getSize(size);
    for (int i = 0; i < 12; ++i)
    {
        const td::Point<double> point{size.width * below(random, 100) / 90.0, size.height * below(random, 100) / 90.0};
        const unsigned int modifiers =
            below(random, 3) == 0 ? static_cast<unsigned int>(cModifiers[below(random, 3)]) : 0;
        const bool isDown = below(random, 2) == 0;
        const auto button = below(random, 3) == 0 ? ButtonEvent::Button::Right : ButtonEvent::Button::Left;
        const auto nClicks = static_cast<unsigned short>(1 + below(random, 2));
        const auto character = static_cast<unsigned char>(cCharacters[below(random, std::size(cCharacters) - 1)]);
        const int what = below(random, 7);
        if (what == 0)
            native.onKey({isDown, static_cast<unsigned short>(123 + below(random, 4)), 0, modifiers});
        else if (what == 1)
            native.onKey({isDown, 128, character, modifiers});
        else if (what == 2)
            native.onButton({button, isDown, isDown, nClicks, modifiers, point});
        else if (what == 3)
            native.onWheel({below(random, 40) - 20.0, below(random, 40) - 20.0, modifiers, point});
        else if (what == 4)
            native.onMagnification({below(random, 10) / 10.0 - 0.4, modifiers});
        else
            native.onMotion({static_cast<MotionEvent::Kind>(below(random, 4)), modifiers, point});
    }
}

/// The windows of a program that is used.
class Desk
{
public:
    /// @param isPatient  also shows what takes long to make
    Desk(bool isOffscreen, bool isPatient, const worldmap::Countries& countries, Random& random)
        : _isOffscreen(isOffscreen)
        , _countries(countries)
        , _random(random)
    {
        for (std::size_t scene = 0; scene < gallery::scenes().size(); ++scene)
            if (isPatient || !test::isSlow(gallery::scenes()[scene]))
                _scenes.push_back(scene);
    }

    void turn() { _app->step(0.005); }

    /// Shows every scene and the map once.
    void showAll()
    {
        for (std::size_t i = 0; i <= _scenes.size(); ++i)
        {
            open(_places[0], i);
            turn();
        }
        closeAll();
    }

    /// Opens, closes or changes a window now and then, and uses one that is there.
    void use()
    {
        Place& place = _places[_random() % _places.size()];
        const int what = below(_random, 20);
        if (place.pView == nullptr)
            open(place, randomContent());
        else if (what == 0)
            close(place);
        else if (what == 1 && _isOffscreen)
            gui::setOffscreenScale(std::array{1.0F, 1.25F, 2.0F}[_random() % 3]);
        else if (what == 2 && _isOffscreen)
            endContext(place);
        else if (what < 4)
            place.pWindow->setSize(randomSize());
        else if (what < 6)
            place.pView->loseContext();
        else if (place.pView->getHandle() != nullptr)
            act(*place.pView, _random);
        turn();
    }

    void closeAll()
    {
        for (Place& place : _places)
            close(place);
        if (_isOffscreen)
            gui::setOffscreenScale(1);
        turn();
        // With the last window the program ended.
        _app.reset();
        _app.emplace(0, nullptr);
    }

private:
    struct Place
    {
        std::unique_ptr<gui::Window> pWindow;
        std::unique_ptr<gui::gl::View> pView;
    };

    td::Size<double> randomSize() { return {150.0 + below(_random, 300), 100.0 + below(_random, 200)}; }

    // The map is as frequent as all scenes together.
    std::size_t randomContent() { return _random() % (2 * _scenes.size()); }

    // @param content  a scene, or the map when there are not so many
    void open(Place& place, std::size_t content)
    {
        close(place);
        place.pWindow = std::make_unique<gui::Window>("Window", randomSize());
        if (content < _scenes.size())
            place.pView = std::make_unique<gallery::GalleryView>(*place.pWindow, _scenes[content], 0);
        else
            place.pView = std::make_unique<worldmap::MapView>(*place.pWindow, _countries);
        place.pWindow->show(*place.pView);
    }

    void close(Place& place)
    {
        if (below(_random, 2) == 0)
            place.pWindow.reset(); // before its view
        place.pView.reset();
        place.pWindow.reset();
    }

    // It cannot be made current: the view finds out when it draws next, and is made anew.
    void endContext(Place& place)
    {
        eglMakeCurrent(eglGetCurrentDisplay(), EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
        gui::gl::CurrentContext::set(nullptr);
        const auto loaded = std::exchange(epoxy_eglMakeCurrent, &refuseCurrent);
        place.pView->reRender();
        turn();
        close(place);
        epoxy_eglMakeCurrent = loaded;
        open(place, randomContent());
    }

    std::optional<gui::Application> _app{std::in_place, 0, nullptr};
    bool _isOffscreen;
    const worldmap::Countries& _countries;
    Random& _random;
    std::vector<std::size_t> _scenes;
    std::array<Place, 3> _places;
};

int run(double seconds, unsigned int seed)
{
    // Rounds of a minute, but always some. All windows are closed at the end of each.
    const int nRounds = std::max(3, static_cast<int>(seconds / 60));

    int nLines = 0;
    vo::setLogSink(
        [&nLines](const char* line)
        {
            for (const char* const expected :
                 {"Application runs on window system", "ERROR! OffscreenContext cannot be made current",
                  "GLView has another GL context"})
                if (std::string_view(line).starts_with(expected))
                    return;
            ++nLines;
            std::printf("the log says: %s\n", line);
        });
    const char* const windowSystem = std::getenv("GUIGL_WINDOW_SYSTEM");
    const std::string_view wanted = windowSystem != nullptr ? windowSystem : "offscreen";
    const bool isOffscreen = wanted == "offscreen";
    // What the heap may have more after a round than after the first one: the loader keeps some sixty bytes of each
    // context, on X11 a window leaves 150, as it does in a program of SDL alone, and libX11 keeps the memory of as many
    // events as ever waited at once.
    const std::size_t allowedGrowth = isOffscreen ? 200'000 : 2'000'000;
    const auto pServer = wanted == "x11" ? std::make_unique<test::XServer>() : nullptr;
    const auto pCompositor = wanted == "wayland" ? std::make_unique<test::Weston>("us") : nullptr;
    worldmap::Countries countries;
    if ((pServer != nullptr && !pServer->isOk()) || (pCompositor != nullptr && !pCompositor->isOk()) ||
        !countries.load())
        return 2;

    Random random(seed);
    Desk desk(isOffscreen, seconds >= 60, countries, random);
    // To show all takes sanitizers longer than a short run, in which they see what leaks by themselves.
    const bool isMeasured = countOfSanitizers() == nullptr || seconds >= 60;
    if (isMeasured)
        desk.showAll();
    test::pinLoadedLibraries();
    std::size_t allowed = 0;
    std::ptrdiff_t nFilesAllowed = 0;
    bool hasGrown = false;
    // What is loaded at first need and kept, such as a face of a font, may come late, and but once: where memory has
    // grown, all is done once more, from what there is then. What leaks grows again.
    for (int n = 0, end = nRounds; n < end; ++n)
    {
        const int round = n % nRounds;
        hasGrown = hasGrown && n != nRounds;
        const Clock::time_point begin = Clock::now();
        int nActs = 0;
        for (; secondsSince(begin) < seconds / nRounds; ++nActs)
            desk.use();
        desk.closeAll();
        // What is free and has not been given back would look like growth.
        malloc_trim(0);
        const std::size_t inUse = bytesInUse();
        std::printf("round %d: %d acts, %.3f MB in use\n", round + 1, nActs, static_cast<double>(inUse) / 1e6);
        std::fflush(stdout);
        if (round == 0)
        {
            allowed = inUse + allowedGrowth;
            nFilesAllowed = test::nOpenFiles();
        }
        hasGrown = hasGrown || (isMeasured && (inUse > allowed || test::nOpenFiles() > nFilesAllowed));
        if (n == nRounds - 1 && hasGrown)
            end = 2 * nRounds;
    }
    if (hasGrown)
        std::printf("memory, or the number of open files, has grown\n");
    return nLines > 0 || hasGrown ? 1 : 0;
}

} // namespace

} // namespace soak

int main(int argc, char** argv)
{
    const double seconds = argc > 1 ? std::atof(argv[1]) : 0;
    if (seconds <= 0)
    {
        std::fputs("usage: soak SECONDS [SEED]\n", stderr);
        return 2;
    }
    return soak::run(seconds, argc > 2 ? static_cast<unsigned int>(std::atoi(argv[2])) : 1);
}
