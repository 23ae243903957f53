#include <gui/draw/OrbitControl.h>

#include "AxesGizmo.h"

#include "../path/FinitePoint.h"

#include <gui/InputDevice.h>
#include <gui/Key.h>
#include <gui/gl/InputTuning.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <deque>
#include <utility>

namespace gui::draw
{

namespace
{

using Point = td::Point<double>;
using Side = OrbitCamera::Side;

constexpr double cClickReach = 4;                     // in points, that the pointer may move in a click
constexpr double cTurnSpeed = 0.4;                    // degrees per point
constexpr double cZoomSpeed = 0.01;                   // of a drag: e to the power of it, per point
constexpr double cKeyTurn = 15;                       // degrees
constexpr double cKeyMove = 60;                       // points
constexpr double cLeastView = 4 * AxesGizmo::cRadius; // points
constexpr double cGizmoMargin = 12;                   // points
constexpr double cDoubleClickNearer = 2.5;
constexpr double cRecent = 0.1;    // seconds back that a throw's speed is taken from
constexpr double cRest = 0.06;     // seconds without motion, after which nothing is thrown
constexpr double cLeastThrow = 40; // points a second

Side opposite(Side side)
{
    switch (side)
    {
    case Side::Front:
        return Side::Back;
    case Side::Back:
        return Side::Front;
    case Side::Left:
        return Side::Right;
    case Side::Right:
        return Side::Left;
    case Side::Top:
        return Side::Bottom;
    case Side::Bottom:
        return Side::Top;
    default:
        return side;
    }
}

} // namespace

struct OrbitControl::Impl
{
    enum class Drag : td::BYTE
    {
        None,
        Pressed, // and not moved far enough to be one
        Turn,
        Pan,
        Zoom
    };
    struct Moment
    {
        double seconds;
        Point point;
    };

    explicit Impl(OrbitCamera& orbit)
        : camera(orbit)
        , gizmo(orbit.getUp())
    {
    }

    double now() const
    {
        if (clock)
            return clock();
        return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
    }
    // These call copies: what is called may set others.
    void changed() const
    {
        if (const std::function<void()> tell = onChange)
            tell();
    }
    void begin()
    {
        lastFrame = now();
        if (const std::function<void()> tell = onMotion)
            tell();
        changed();
    }
    std::optional<glm::dvec3> find(const Point& point) const
    {
        const auto ask = pick;
        return ask ? ask(point) : std::nullopt;
    }
    // In a small view they would be in the way.
    bool hasGizmo() const
    {
        return corner != Corner::None && std::min(camera.getSize().width, camera.getSize().height) >= cLeastView;
    }
    void placeGizmo();
    bool isOverGizmo(const Point& point);
    void point(const std::optional<Point>& at);
    void beginDrag(const InputDevice& device);
    void throwOn();
    void flyAround(Side side)
    {
        camera.flyTo(camera.isAt(side) ? opposite(side) : side);
        begin();
    }
    void showAll();
    void zoomAt(const Point& place, double factor);
    void zoomInMiddle(double factor)
    {
        camera.zoom(camera.getTarget(), factor);
        changed();
    }
    void move(double x, double y)
    {
        const Point middle(camera.getSize().width / 2, camera.getSize().height / 2);
        camera.pan(camera.getTarget(), {middle.x + x, middle.y + y});
        changed();
    }

    OrbitCamera& camera;
    AxesGizmo gizmo;
    Corner corner = Corner::TopRight;
    std::function<std::optional<glm::dvec3>(const Point&)> pick;
    std::function<void()> onChange;
    std::function<void()> onMotion;
    std::function<double()> clock;
    double lastFrame = 0;

    Drag drag = Drag::None;
    InputDevice::Button button = InputDevice::Button::None;
    bool isOnGizmo = false; // the press was
    Point pressed;
    Point last;
    glm::dvec3 pivot{0};
    std::deque<Moment> moments; // of the pointer, in a drag

    // What the wheel goes about, as long as neither the pointer nor anybody else moves.
    glm::dvec3 wheelPivot{0};
    std::optional<Point> wheelPlace;
    OrbitCamera::Pose wheelPose;
};

void OrbitControl::Impl::placeGizmo()
{
    const td::Size<double>& size = camera.getSize();
    const double inset = cGizmoMargin + AxesGizmo::cRadius;
    const bool isLeft = corner == Corner::TopLeft || corner == Corner::BottomLeft;
    const bool isTop = corner == Corner::TopLeft || corner == Corner::TopRight;
    gizmo.setCenter({isLeft ? inset : size.width - inset, isTop ? inset : size.height - inset});
}

bool OrbitControl::Impl::isOverGizmo(const Point& point)
{
    if (!hasGizmo())
        return false;
    placeGizmo();
    return gizmo.contains(point);
}

void OrbitControl::Impl::point(const std::optional<Point>& at)
{
    const bool isOver = at && isOverGizmo(*at);
    const std::optional<Side> side = isOver ? gizmo.getSideAt(*at, camera.getPose().rotation) : std::optional<Side>();
    if (gizmo.setPointed(isOver, side))
        changed();
}

// From where it was pressed.
void OrbitControl::Impl::beginDrag(const InputDevice& device)
{
    const unsigned int modifiers = device.getKeyboardModifiers();
    const bool isPrimary = button == InputDevice::Button::Primary;
    drag = !isPrimary || isShiftPressed(modifiers) ? Drag::Pan : isCmdPressed(modifiers) ? Drag::Zoom : Drag::Turn;
    if (isOnGizmo)
    {
        drag = Drag::Turn;
        pivot = camera.getTarget();
        return;
    }
    if (const std::optional<glm::dvec3> found = find(pressed))
    {
        pivot = *found;
        camera.focus(pivot);
    }
    else
        pivot = drag == Drag::Turn ? camera.getTarget() : camera.getPlace(pressed);
}

// What was let go in motion goes on.
void OrbitControl::Impl::throwOn()
{
    const double time = now();
    while (!moments.empty() && time - moments.front().seconds > cRecent)
        moments.pop_front();
    if (moments.size() < 2 || time - moments.back().seconds > cRest)
        return;
    const double duration = moments.back().seconds - moments.front().seconds;
    const double x = (moments.back().point.x - moments.front().point.x) / duration;
    const double y = (moments.back().point.y - moments.front().point.y) / duration;
    const double speed = std::hypot(x, y);
    if (!std::isfinite(speed) || speed < cLeastThrow)
        return;
    const Eye eye = camera.getEye();
    if (drag == Drag::Turn)
        camera.glide(pivot, -cTurnSpeed * x, cTurnSpeed * y);
    else if (drag == Drag::Pan)
        camera.glide((eye.getUp() * y - eye.getRight() * x) * eye.getSizeAt(pivot));
    if (camera.isMoving())
        begin();
}

void OrbitControl::Impl::showAll()
{
    if (!camera.flyTo(camera.getBounds()))
        return;
    begin();
}

void OrbitControl::Impl::zoomAt(const Point& place, double factor)
{
    // A wheel that goes on at the same place goes on about the same point.
    const bool goesOn =
        wheelPlace && std::hypot(place.x - wheelPlace->x, place.y - wheelPlace->y) < 1 && wheelPose == camera.getPose();
    if (!goesOn)
    {
        camera.stop();
        const std::optional<glm::dvec3> found = find(place);
        if (found)
            camera.focus(*found);
        wheelPivot = found ? *found : camera.getPlace(place);
    }
    camera.zoom(wheelPivot, factor);
    wheelPlace = place;
    wheelPose = camera.getPose();
    changed();
}

OrbitControl::OrbitControl(OrbitCamera& camera)
    : _pImpl(std::make_unique<Impl>(camera))
{
}

OrbitControl::~OrbitControl() = default;

void OrbitControl::setPick(std::function<std::optional<glm::dvec3>(const td::Point<double>&)> pick)
{
    _pImpl->pick = std::move(pick);
}

void OrbitControl::setOnChange(std::function<void()> onChange) { _pImpl->onChange = std::move(onChange); }

void OrbitControl::setOnMotion(std::function<void()> onMotion) { _pImpl->onMotion = std::move(onMotion); }

void OrbitControl::setClock(std::function<double()> clock) { _pImpl->clock = std::move(clock); }

void OrbitControl::setGizmo(Corner corner)
{
    _pImpl->corner = corner;
    _pImpl->changed();
}

OrbitControl::Corner OrbitControl::getGizmo() const { return _pImpl->corner; }

void OrbitControl::onPressed(const InputDevice& device)
{
    Impl& impl = *_pImpl;
    const Point& point = device.getFramePoint();
    // The same button once more: its release went to somebody else.
    const bool isTaken = impl.drag != Impl::Drag::None && impl.button != device.getButton();
    if (isTaken || !isFinitePoint(point))
        return;
    impl.camera.stop();
    impl.drag = Impl::Drag::Pressed;
    impl.button = device.getButton();
    impl.isOnGizmo = impl.button == InputDevice::Button::Primary && impl.isOverGizmo(point);
    impl.pressed = impl.last = point;
    impl.moments.assign(1, {impl.now(), point});
}

void OrbitControl::onDragged(const InputDevice& device)
{
    Impl& impl = *_pImpl;
    const Point& point = device.getFramePoint();
    if (impl.drag == Impl::Drag::None || !isFinitePoint(point))
        return;
    if (impl.drag == Impl::Drag::Pressed)
    {
        if (std::hypot(point.x - impl.pressed.x, point.y - impl.pressed.y) < cClickReach)
            return;
        impl.beginDrag(device);
    }
    const Point before = std::exchange(impl.last, point);
    const double time = impl.now();
    impl.moments.push_back({time, point});
    while (time - impl.moments.front().seconds > cRecent)
        impl.moments.pop_front();
    if (impl.drag == Impl::Drag::Turn)
        impl.camera.turn(impl.pivot, -cTurnSpeed * (point.x - before.x), cTurnSpeed * (point.y - before.y));
    else if (impl.drag == Impl::Drag::Pan)
        impl.camera.pan(impl.pivot, point);
    else
        impl.camera.zoom(impl.pivot, std::exp(-cZoomSpeed * (point.y - before.y)));
    impl.changed();
}

bool OrbitControl::onReleased(const InputDevice& device)
{
    Impl& impl = *_pImpl;
    if (impl.drag == Impl::Drag::None || device.getButton() != impl.button)
        return false;
    const bool wasDrag = impl.drag != Impl::Drag::Pressed;
    if (wasDrag)
        impl.throwOn();
    impl.drag = Impl::Drag::None;
    if (wasDrag || impl.button != InputDevice::Button::Primary || !isFinitePoint(device.getFramePoint()))
        return false;
    if (!impl.isOnGizmo)
        return true;
    if (const std::optional<Side> side = impl.gizmo.getSideAt(impl.pressed, impl.camera.getPose().rotation))
        impl.flyAround(*side);
    return false;
}

void OrbitControl::onDoubleClick(const InputDevice& device)
{
    Impl& impl = *_pImpl;
    const Point& point = device.getFramePoint();
    if (!isFinitePoint(point))
        return;
    if (impl.isOverGizmo(point))
    {
        onPressed(device);
        return;
    }
    const std::optional<glm::dvec3> found = impl.find(point);
    if (!found)
    {
        impl.showAll();
        return;
    }
    impl.camera.stop();
    impl.camera.focus(*found);
    OrbitCamera::Pose pose = impl.camera.getPose();
    pose.target = *found;
    pose.distance /= cDoubleClickNearer;
    if (impl.camera.flyTo(pose))
        impl.begin();
}

void OrbitControl::onMoved(const InputDevice& device)
{
    if (!isFinitePoint(device.getFramePoint()))
        return;
    _pImpl->drag = Impl::Drag::None; // whose release went to somebody else
    _pImpl->point(device.getFramePoint());
}

void OrbitControl::onExited() { _pImpl->point(std::nullopt); }

bool OrbitControl::onScroll(const InputDevice& device)
{
    Impl& impl = *_pImpl;
    const Point &distance = device.getFramePoint(), &place = device.getPlace();
    if (!isFinitePoint(distance) || !isFinitePoint(place))
        return false;
    if (device.getKey().isShiftPressed() || distance.y == 0)
        impl.move(distance.x, distance.y);
    else
    {
        // The wheel's own units, of which a zoom goes by, are in there times this.
        constexpr double cLeast = 0.05;
        const double units = distance.y / zav::s_scrollAccelleration;
        impl.zoomAt(place, std::max(cLeast, 1 + zav::s_zoomIncrement * units / 100));
    }
    return true;
}

bool OrbitControl::onZoom(const InputDevice& device)
{
    if (!isFinitePoint(device.getFramePoint()))
        return false;
    // The first of two fingers has pressed, too: it neither clicks nor drags then.
    if (device.getType() == InputDevice::Type::Gesture && _pImpl->drag == Impl::Drag::Pressed)
        _pImpl->drag = Impl::Drag::None;
    _pImpl->zoomAt(device.getFramePoint(), device.getScale());
    return true;
}

bool OrbitControl::onKey(const Key& key)
{
    using Virtual = Key::Virtual;
    Impl& impl = *_pImpl;
    constexpr unsigned int cOthers =
        ~(static_cast<unsigned int>(KeyModifier::Shift) | static_cast<unsigned int>(KeyModifier::CapsLock) |
          static_cast<unsigned int>(KeyModifier::Fn));
    if ((key.getModifiers() & cOthers) != 0)
        return false;
    const Virtual code = key.getVirtual();
    const char character = key.getChar();
    const double factor = 1 + InputDevice::getDefaultZoomIncrement();
    if (code == Virtual::Left || code == Virtual::Right || code == Virtual::Up || code == Virtual::Down)
    {
        const int x = code == Virtual::Right ? 1 : code == Virtual::Left ? -1 : 0;
        const int y = code == Virtual::Up ? 1 : code == Virtual::Down ? -1 : 0;
        if (key.isShiftPressed())
            impl.move(-cKeyMove * x, cKeyMove * y);
        else
        {
            impl.camera.turn(impl.camera.getTarget(), cKeyTurn * x, cKeyTurn * y);
            impl.changed();
        }
    }
    else if (character == '+' || character == '=' || code == Virtual::KeypadPlus)
        impl.zoomInMiddle(factor);
    else if (character == '-' || code == Virtual::KeypadMinus)
        impl.zoomInMiddle(1 / factor);
    else if (character == '0' || code == Virtual::Home)
        impl.showAll();
    else if (character >= '1' && character <= '7')
    {
        constexpr Side cSides[] = {Side::Front, Side::Right,  Side::Back,  Side::Left,
                                   Side::Top,   Side::Bottom, Side::Corner};
        impl.camera.flyTo(cSides[character - '1']);
        impl.begin();
    }
    else if (character == 'p' || character == 'P')
    {
        using Projection = OrbitCamera::Projection;
        impl.camera.setProjection(impl.camera.getProjection() == Projection::Perspective ? Projection::Orthographic
                                                                                         : Projection::Perspective);
        impl.changed();
    }
    else
        return false;
    return true;
}

bool OrbitControl::isDragging() const
{
    return _pImpl->drag != Impl::Drag::None && _pImpl->drag != Impl::Drag::Pressed;
}

bool OrbitControl::advance()
{
    Impl& impl = *_pImpl;
    const double time = impl.now();
    return impl.camera.advance(time - std::exchange(impl.lastFrame, time));
}

void OrbitControl::begin() { _pImpl->begin(); }

bool OrbitControl::drawGizmo(const Eye& eye)
{
    if (!_pImpl->hasGizmo() || !eye.isValid())
        return true;
    _pImpl->placeGizmo();
    return _pImpl->gizmo.draw(eye);
}

} // namespace gui::draw
