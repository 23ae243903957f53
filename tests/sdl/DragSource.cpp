#include "DragSource.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>

#include <chrono>
#include <utility>

namespace test
{

struct DragSource::Display
{
    ::Display* p = XOpenDisplay(nullptr);
    Window window = XCreateSimpleWindow(p, DefaultRootWindow(p), 0, 0, 1, 1, 0, 0, 0);

    Atom atom(const std::string& name) const { return XInternAtom(p, name.c_str(), False); }
};

namespace
{

constexpr unsigned long cVersion = 5;
constexpr int cBits = 32;

} // namespace

DragSource::DragSource(unsigned long window, int x, int y, Content content)
    : _pDisplay(std::make_unique<Display>())
    , _target(window)
    , _content(std::move(content))
{
    constexpr unsigned int cXShift = 16, cVersionShift = 24;
    XSetSelectionOwner(_pDisplay->p, _pDisplay->atom("XdndSelection"), _pDisplay->window, CurrentTime);
    std::vector<unsigned long> words{cVersion << cVersionShift};
    for (const std::string& type : _content.types)
        words.push_back(_pDisplay->atom(type));
    send("XdndEnter", words);
    const unsigned long place = static_cast<unsigned long>(x) << cXShift | static_cast<unsigned long>(y);
    send("XdndPosition", {0, place, CurrentTime, _pDisplay->atom("XdndActionCopy")});
    _thread = std::thread([this] { serve(); });
}

DragSource::~DragSource()
{
    _isOver = true;
    _thread.join();
    XCloseDisplay(_pDisplay->p);
}

void DragSource::send(const char* type, std::vector<unsigned long> words) const
{
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = _target;
    event.xclient.message_type = _pDisplay->atom(type);
    event.xclient.format = cBits;
    event.xclient.data.l[0] = static_cast<long>(_pDisplay->window);
    for (std::size_t i = 0; i < words.size() && i < 4; ++i)
        event.xclient.data.l[i + 1] = static_cast<long>(words[i]);
    XSendEvent(_pDisplay->p, _target, False, NoEventMask, &event);
    XSync(_pDisplay->p, False);
}

void DragSource::serve()
{
    constexpr std::chrono::milliseconds cPause(5);
    for (; !_isOver; std::this_thread::sleep_for(cPause))
        while (XPending(_pDisplay->p) > 0)
            answer();
}

void DragSource::answer()
{
    XEvent event{};
    XNextEvent(_pDisplay->p, &event);
    if (event.type == ClientMessage && event.xclient.message_type == _pDisplay->atom("XdndStatus"))
    {
        _isWelcome = (event.xclient.data.l[1] & 1) != 0;
        if (_isWelcome && !std::exchange(_isDropped, true))
            send("XdndDrop", {0, CurrentTime});
    }
    if (event.type == ClientMessage && event.xclient.message_type == _pDisplay->atom("XdndFinished"))
        _isTaken = true;
    if (event.type != SelectionRequest)
        return;
    const XSelectionRequestEvent& request = event.xselectionrequest;
    XChangeProperty(_pDisplay->p, request.requestor, request.property, request.target, 8, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(_content.data.data()),
                    static_cast<int>(_content.data.size()));
    XEvent reply{};
    reply.xselection.type = SelectionNotify;
    reply.xselection.requestor = request.requestor;
    reply.xselection.selection = request.selection;
    reply.xselection.target = request.target;
    reply.xselection.property = request.property;
    reply.xselection.time = request.time;
    XSendEvent(_pDisplay->p, request.requestor, False, NoEventMask, &reply);
    XSync(_pDisplay->p, False);
}

} // namespace test
