#include "XServer.h"

#include "Waiting.h"

// Before Xlib, which defines words of everybody's as macros.
#include <gtest/gtest.h>

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/Xfixes.h>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <fstream>
#include <sstream>

namespace test
{

namespace
{

// A window that goes away while it is asked about is no reason to end the program.
int ignoreError(Display*, XErrorEvent*) { return 0; }

// The number that the server writes when it is ready.
std::string readNumber(int fd)
{
    std::string text;
    char c = 0;
    pollfd descriptor{fd, POLLIN, 0};
    while (poll(&descriptor, 1, static_cast<int>(cPatience * 1000)) > 0 && read(fd, &c, 1) == 1 && c != '\n')
        text += c;
    return text;
}

std::string nameOf(Display* pDisplay, Window window)
{
    XTextProperty text{};
    std::string name;
    const Atom property = XInternAtom(pDisplay, "_NET_WM_NAME", False);
    if (XGetTextProperty(pDisplay, window, &text, property) != 0 && text.value != nullptr)
        name = reinterpret_cast<const char*>(text.value);
    if (text.value != nullptr)
        XFree(text.value);
    return name;
}

} // namespace

XServer::XServer()
{
    std::array<int, 2> pipe{};
    if (pipe2(pipe.data(), 0) != 0)
        return;
    fcntl(pipe[0], F_SETFD, FD_CLOEXEC);
    _pServer = std::make_unique<Process>(Arguments{"Xvfb", "-displayfd", std::to_string(pipe[1]), "-screen", "0",
                                                   "1280x1024x24", "-noreset", "-nolisten", "tcp", "-fakescreenfps",
                                                   std::to_string(cRate)});
    close(pipe[1]);
    const std::string number = readNumber(pipe[0]);
    close(pipe[0]);
    if (number.empty())
        return;
    const std::string name = ":" + number;
    setenv("DISPLAY", name.c_str(), 1);
    unsetenv("WAYLAND_DISPLAY");
    XSetErrorHandler(ignoreError);
    _pDisplay = XOpenDisplay(name.c_str());
    if (_pDisplay != nullptr)
        _root = DefaultRootWindow(_pDisplay);
}

XServer::~XServer()
{
    if (_pDisplay != nullptr)
        XCloseDisplay(_pDisplay);
    unlink(_configuration.c_str());
}

bool XServer::startWindowManager()
{
    _configuration = testing::TempDir() + "guigl-openbox-" + std::to_string(getpid()) + ".xml";
    std::ofstream(_configuration) << "<openbox_config xmlns=\"http://openbox.org/3.4/rc\">"
                                     "<keyboard/><mouse/><focus><focusNew>yes</focusNew></focus></openbox_config>\n";
    _pWindowManager = std::make_unique<Process>(Arguments{"openbox", "--sm-disable", "--config-file", _configuration});
    return waitFor([&] { return numbersOf(_root, "_NET_SUPPORTING_WM_CHECK").size() == 1; });
}

std::vector<unsigned long> XServer::numbersOf(Window window, const char* property) const
{
    constexpr long cMost = 1024;
    constexpr int cNumberBits = 32;
    Atom type = 0;
    int format = 0;
    unsigned long n = 0;
    unsigned long rest = 0;
    unsigned char* pData = nullptr;
    XGetWindowProperty(_pDisplay, window, XInternAtom(_pDisplay, property, False), 0, cMost, False, AnyPropertyType,
                       &type, &format, &n, &rest, &pData);
    std::vector<unsigned long> numbers;
    // Xlib has them as longs, and the sign with them.
    constexpr unsigned long cNumberMask = 0xFFFFFFFF;
    for (unsigned long i = 0; pData != nullptr && format == cNumberBits && i < n; ++i)
        numbers.push_back(reinterpret_cast<unsigned long*>(pData)[i] & cNumberMask);
    if (pData != nullptr)
        XFree(pData);
    return numbers;
}

XServer::Window XServer::findWindow(const std::string& title) const { return findBelow(_root, title); }

XServer::Window XServer::findBelow(Window parent, const std::string& title) const
{
    XWindowAttributes attributes{};
    const bool isMapped = XGetWindowAttributes(_pDisplay, parent, &attributes) && attributes.map_state == IsViewable;
    if (isMapped && nameOf(_pDisplay, parent) == title)
        return parent;
    Window root = 0;
    Window grandParent = 0;
    Window* pChildren = nullptr;
    unsigned int nChildren = 0;
    Window found = 0;
    if (XQueryTree(_pDisplay, parent, &root, &grandParent, &pChildren, &nChildren) != 0)
        for (unsigned int i = 0; i < nChildren && found == 0; ++i)
            found = findBelow(pChildren[i], title);
    if (pChildren != nullptr)
        XFree(pChildren);
    return found;
}

XServer::Place XServer::placeOf(Window window) const
{
    XWindowAttributes attributes{};
    XGetWindowAttributes(_pDisplay, window, &attributes);
    int x = 0;
    int y = 0;
    Window child = 0;
    XTranslateCoordinates(_pDisplay, window, _root, 0, 0, &x, &y, &child);
    return {x, y, attributes.width, attributes.height};
}

void XServer::toggle(Window window, const char* state, const char* secondState) const
{
    constexpr long cToggle = 2;
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = window;
    event.xclient.message_type = XInternAtom(_pDisplay, "_NET_WM_STATE", False);
    event.xclient.format = 32;
    event.xclient.data.l[0] = cToggle;
    event.xclient.data.l[1] = static_cast<long>(XInternAtom(_pDisplay, state, False));
    if (secondState != nullptr)
        event.xclient.data.l[2] = static_cast<long>(XInternAtom(_pDisplay, secondState, False));
    XSendEvent(_pDisplay, _root, False, SubstructureNotifyMask | SubstructureRedirectMask, &event);
    XSync(_pDisplay, False);
}

void XServer::askToClose(Window window) const
{
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = window;
    event.xclient.message_type = XInternAtom(_pDisplay, "WM_PROTOCOLS", False);
    event.xclient.format = 32;
    event.xclient.data.l[0] = static_cast<long>(XInternAtom(_pDisplay, "WM_DELETE_WINDOW", False));
    event.xclient.data.l[1] = CurrentTime;
    XSendEvent(_pDisplay, window, False, NoEventMask, &event);
    XSync(_pDisplay, False);
}

bool XServer::hasFocus(Window window) const
{
    Window focus = 0;
    int revertTo = 0;
    XGetInputFocus(_pDisplay, &focus, &revertTo);
    // Some toolkits give it to a window of theirs within.
    while (focus > PointerRoot && focus != window)
    {
        Window root = 0;
        Window* pChildren = nullptr;
        unsigned int nChildren = 0;
        if (XQueryTree(_pDisplay, focus, &root, &focus, &pChildren, &nChildren) == 0)
            return false;
        if (pChildren != nullptr)
            XFree(pChildren);
    }
    return focus == window;
}

Screenshot XServer::shoot(const Place& place) const
{
    XImage* const pImage = XGetImage(_pDisplay, _root, place.x, place.y, static_cast<unsigned int>(place.width),
                                     static_cast<unsigned int>(place.height), AllPlanes, ZPixmap);
    if (pImage == nullptr)
        return {};
    Screenshot screenshot{place.width, place.height, {}};
    for (int y = 0; y < place.height; ++y)
        for (int x = 0; x < place.width; ++x)
            screenshot.pixels.push_back(static_cast<std::uint32_t>(XGetPixel(pImage, x, y)) & 0xFFFFFF);
    XDestroyImage(pImage);
    return screenshot;
}

XServer::Place XServer::find(std::uint32_t color, const Place& part) const
{
    const Screenshot screen = shoot(part);
    for (int y = 0; y < screen.height; ++y)
        for (int x = 0; x < screen.width; ++x)
            if (screen.at(x, y) == color)
                return {part.x + x, part.y + y, 0, 0};
    return {part.x + part.width, part.y + part.height, 0, 0};
}

std::uint64_t XServer::cursor() const
{
    XFixesCursorImage* const pImage = XFixesGetCursorImage(_pDisplay);
    if (pImage == nullptr)
        return 0;
    std::uint64_t number = pImage->width;
    for (int i = 0; i < pImage->width * pImage->height; ++i)
        number = number * 31 + pImage->pixels[i];
    XFree(pImage);
    return number;
}

void XServer::setLayouts(const std::string& layouts) const
{
    EXPECT_EQ(runProgram({"setxkbmap", "-layout", layouts}), 0) << layouts;
}

void xdo(const std::string& arguments)
{
    Arguments words{"xdotool"};
    std::istringstream stream(arguments);
    for (std::string word; stream >> word;)
        words.push_back(word);
    EXPECT_EQ(runProgram(words), 0) << arguments;
}

} // namespace test
