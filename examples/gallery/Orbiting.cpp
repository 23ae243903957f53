#include "Orbiting.h"

#include "Stage.h"

#include <gui/InputDevice.h>
#include <gui/Key.h>

namespace gallery
{

void Orbiting::enter(Stage& stage)
{
    _pStage = &stage;
    _probe.setWaiting(true); // each picture is one of its own
    _control.setOnChange([&stage] { stage.redraw(); });
    _control.setPick([this](const td::Point<double>& point) { return pick(_eye.getRay(point)); });
}

void Orbiting::redraw()
{
    if (_pStage != nullptr)
        _pStage->redraw();
}

bool Orbiting::isForGallery(const gui::InputDevice& device)
{
    constexpr unsigned int cBoth = 1 | 16; // Shift and Ctrl together
    return (device.getKeyboardModifiers() & cBoth) == cBoth;
}

void Orbiting::onPointer(PointerEvent event, const gui::InputDevice& device)
{
    if (isForGallery(device))
        return;
    switch (event)
    {
    case PointerEvent::Pressed:
    case PointerEvent::SecondaryPressed:
        _control.onPressed(device);
        break;
    case PointerEvent::Released:
    case PointerEvent::SecondaryReleased:
        _control.onReleased(device);
        break;
    case PointerEvent::Dragged:
        _control.onDragged(device);
        break;
    case PointerEvent::DoubleClicked:
        _control.onDoubleClick(device);
        break;
    case PointerEvent::Moved:
        _control.onMoved(device);
        break;
    case PointerEvent::Exited:
        _control.onExited();
        break;
    case PointerEvent::Scrolled:
        _control.onScroll(device);
        break;
    case PointerEvent::Zoomed:
        _control.onZoom(device);
        break;
    default:
        break;
    }
}

bool Orbiting::onKey(const gui::Key& key, bool isDown) { return isDown && key.isASCII() && _control.onKey(key); }

bool Orbiting::setMesh(const gui::draw::Mesh& mesh)
{
    return _model.setMesh(mesh) && _index.setTriangles(mesh.positions, mesh.indices);
}

std::optional<glm::dvec3> Orbiting::pick(const gui::draw::Ray& ray) const
{
    for (const auto& hit : _index.getAll(ray))
        if (_clipping.isSeen(hit.point))
            return hit.point;
    return std::nullopt;
}

void Orbiting::draw(const Frame& frame)
{
    // A flight goes on by itself, from frame to frame; at rest there is none.
    if (_control.advance())
        _pStage->redraw();
    _camera.setSize(frame.size);
    _eye = _canvas.getEye(_camera, frame.scale);
    _eye.setClipping(_clipping);
    {
        gui::draw::DepthCanvas::Frame picture(_canvas, _eye);
        drawBackground(_eye);
        _probe.begin(_eye);
        while (const gui::draw::Eye* const pEye = picture.next())
        {
            drawModel(*pEye);
            _probe.ask(*pEye);
        }
    }
    drawOver(frame, _eye);
    _control.drawGizmo(_eye);
}

void Orbiting::turn(double seconds, double degreesPerSecond)
{
    if (_seconds != 0)
        _camera.turn(_camera.getTarget(), degreesPerSecond * (seconds - _seconds), 0);
    _seconds = seconds;
}

} // namespace gallery
