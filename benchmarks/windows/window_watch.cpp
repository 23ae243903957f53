// Looks at a program's window on an X server from outside, as a user does; at a compositor's, weston-1, for what is
// shown in there.
//
//     window_watch PROGRAM frames SECONDS               when there are new pictures in it, and in which of its beats
//     window_watch PROGRAM pan MOVES_PER_SECOND SECONDS the same, while the pointer is dragged about with Shift
//     window_watch PROGRAM latency N LEAST MOST         from N motions until window_view's plain view shows them, so
//                                                       many seconds apart

#include "Beats.h"
#include "Intervals.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>
#include <X11/extensions/Xdamage.h>
#include <X11/keysym.h>

#include <poll.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>

namespace
{

using bench::Clock;
using Seconds = std::chrono::duration<double>;

// What comes within this time is one picture, which may come in pieces.
constexpr std::chrono::milliseconds cOnePicture(3);

Clock::duration inTime(double seconds) { return std::chrono::duration_cast<Clock::duration>(Seconds(seconds)); }

bool isOf(Display* pDisplay, Window window, const char* program)
{
    XClassHint hint{};
    if (XGetClassHint(pDisplay, window, &hint) == 0)
        return false;
    XWindowAttributes attributes{};
    const bool isIt = std::strcmp(hint.res_name, program) == 0 &&
                      XGetWindowAttributes(pDisplay, window, &attributes) != 0 && attributes.map_state == IsViewable;
    XFree(hint.res_name);
    XFree(hint.res_class);
    return isIt;
}

/// A window of a program that is shown, wherever it is in the tree; 0 for none.
Window find(Display* pDisplay, Window parent, const char* program)
{
    if (isOf(pDisplay, parent, program))
        return parent;
    Window root = 0, grandParent = 0, found = 0;
    Window* pChildren = nullptr;
    unsigned int n = 0;
    if (XQueryTree(pDisplay, parent, &root, &grandParent, &pChildren, &n) != 0 && pChildren != nullptr)
    {
        for (unsigned int i = 0; i < n && found == 0; ++i)
            found = find(pDisplay, pChildren[i], program);
        XFree(pChildren);
    }
    return found;
}

Window await(Display* pDisplay, const char* program)
{
    const auto end = Clock::now() + std::chrono::seconds(20);
    Window window = 0;
    while ((window = find(pDisplay, DefaultRootWindow(pDisplay), program)) == 0 && Clock::now() < end)
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    return window;
}

class Watch
{
public:
    Watch(Display* pDisplay, Window window)
        : _pDisplay(pDisplay)
        , _window(window)
    {
        int firstError = 0;
        XDamageQueryExtension(_pDisplay, &_firstEvent, &firstError);
        XDamageCreate(_pDisplay, _window, XDamageReportRawRectangles);
        XWindowAttributes attributes{};
        XGetWindowAttributes(_pDisplay, _window, &attributes);
        Window child = 0;
        XTranslateCoordinates(_pDisplay, _window, DefaultRootWindow(_pDisplay), attributes.width / 2,
                              attributes.height / 2, &_x, &_y, &child);
        _half = {attributes.width / 2, attributes.height / 2};
        // From outside: a compositor learns where the pointer is as it enters.
        XTestFakeMotionEvent(_pDisplay, -1, _x, DisplayHeight(_pDisplay, DefaultScreen(_pDisplay)) - 1, CurrentTime);
        XSync(_pDisplay, False);
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        move(0);
        waitForPicture(Clock::now() + std::chrono::milliseconds(300));
    }

    /// From the middle of the window.
    void move(int dx)
    {
        XTestFakeMotionEvent(_pDisplay, -1, _x + dx, _y, CurrentTime);
        XFlush(_pDisplay);
    }
    void drag(bool isDragged)
    {
        XTestFakeKeyEvent(_pDisplay, XKeysymToKeycode(_pDisplay, XK_Shift_L), isDragged, CurrentTime);
        XTestFakeButtonEvent(_pDisplay, 1, isDragged, CurrentTime);
        XFlush(_pDisplay);
    }

    /// @param apart  from the last one  @return whether there was a picture until then
    bool waitForPicture(Clock::time_point end, Clock::duration apart = cOnePicture)
    {
        while (true)
        {
            while (XPending(_pDisplay) > 0)
            {
                XEvent event{};
                XNextEvent(_pDisplay, &event);
                if (event.type == _firstEvent + XDamageNotify && isLarge(event) && Clock::now() - _last > apart)
                {
                    _last = Clock::now();
                    return true;
                }
            }
            const auto rest = std::chrono::duration_cast<std::chrono::microseconds>(end - Clock::now()).count();
            if (rest <= 0)
                return false;
            pollfd fd{ConnectionNumber(_pDisplay), POLLIN, 0};
            const timespec time{0, std::min<long>(rest, 500000) * 1000};
            ppoll(&fd, 1, &time, nullptr);
        }
    }

    /// The x that window_view's plain view shows.
    int getShown() const
    {
        XImage* const pImage = XGetImage(_pDisplay, _window, _half.first, _half.second, 1, 1, AllPlanes, ZPixmap);
        const unsigned long color = XGetPixel(pImage, 0, 0);
        XDestroyImage(pImage);
        return static_cast<int>((color >> 16 & 0xFF) + 256 * (color >> 8 & 0xFF));
    }

private:
    // A compositor draws its pointer, too.
    static bool isLarge(const XEvent& event)
    {
        const auto& damage = reinterpret_cast<const XDamageNotifyEvent&>(event);
        return damage.area.width > 100 && damage.area.height > 100;
    }

    Display* _pDisplay;
    Window _window;
    int _firstEvent = 0;
    int _x = 0, _y = 0;
    std::pair<int, int> _half;
    Clock::time_point _last{};
};

void watchFrames(Watch& watch, Window window, double seconds)
{
    bench::Intervals seen;
    bench::Beats beats(static_cast<std::uint32_t>(window));
    const auto end = Clock::now() + inTime(seconds);
    while (Clock::now() < end)
        if (watch.waitForPicture(end))
            seen.add(Clock::now());
    seen.print("seen");
    beats.print(seen.getTimes());
}

void watchPan(Watch& watch, double rate, double seconds)
{
    constexpr int cFarthest = 240;
    const int step = std::max(1, static_cast<int>(240 / rate));
    bench::Intervals seen, moved;
    watch.drag(true);
    const auto begin = Clock::now();
    for (int i = 0; i < seconds * rate; ++i)
    {
        // There and back, each time elsewhere: of a pointer that stays where it is the server tells nothing.
        const int phase = i * step % (2 * cFarthest);
        watch.move(std::min(phase, 2 * cFarthest - phase));
        moved.add(Clock::now());
        const auto next = begin + inTime((i + 1) / rate);
        while (Clock::now() < next)
            if (watch.waitForPicture(next))
                seen.add(Clock::now());
    }
    watch.drag(false);
    moved.print("moved");
    seen.print("seen");
}

void watchLatency(Watch& watch, int n, double least, double most)
{
    std::vector<double> latencies;
    std::srand(1);
    int x = 0;
    int nLost = 0;
    for (int i = 0; i < n; ++i)
    {
        // At any moment of the display's beat.
        const auto next = Clock::now() + inTime(least + (most - least) * std::rand() / RAND_MAX);
        while (Clock::now() < next)
            watch.waitForPicture(next);
        const int before = watch.getShown();
        watch.move(x = (x + 1) % 200 + 1);
        const auto begin = Clock::now();
        bool isSeen = false;
        while (!isSeen && Clock::now() - begin < std::chrono::milliseconds(500))
            isSeen = watch.waitForPicture(begin + std::chrono::milliseconds(500), {}) && watch.getShown() != before;
        if (isSeen)
            latencies.push_back(std::chrono::duration<double, std::milli>(Clock::now() - begin).count());
        else
            ++nLost;
    }
    std::printf("latency: median %.2f ms, 99th percentile %.2f ms, longest %.2f ms of %zu, %d never\n",
                bench::quantile(latencies, 0.5), bench::quantile(latencies, 0.99), bench::quantile(latencies, 1),
                latencies.size(), nLost);
}

} // namespace

int main(int argc, char** argv)
{
    Display* const pDisplay = XOpenDisplay(nullptr);
    const Window window = pDisplay != nullptr && argc > 3 ? await(pDisplay, argv[1]) : 0;
    if (window == 0)
    {
        std::fprintf(stderr, "There is no such window.\n");
        return EXIT_FAILURE;
    }
    Watch watch(pDisplay, window);
    const std::string what = argv[2];
    if (what == "frames")
        watchFrames(watch, window, std::atof(argv[3]));
    else if (what == "pan" && argc > 4)
        watchPan(watch, std::atof(argv[3]), std::atof(argv[4]));
    else if (what == "latency" && argc > 5)
        watchLatency(watch, std::atoi(argv[3]), std::atof(argv[4]), std::atof(argv[5]));
    else
        return EXIT_FAILURE;
    XCloseDisplay(pDisplay);
    return EXIT_SUCCESS;
}
