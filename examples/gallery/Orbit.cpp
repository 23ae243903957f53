// Look for: turning about the point that was pressed, axes that take clicks, motion that goes on and comes to rest.

#include "Impeller.h"
#include "Scenes.h"
#include "Stage.h"

#include <gui/InputDevice.h>
#include <gui/Key.h>
#include <gui/draw/DepthCanvas.h>
#include <gui/draw/Model.h>
#include <gui/draw/OrbitCamera.h>
#include <gui/draw/OrbitControl.h>
#include <gui/gl/Context.h>

namespace gallery
{

namespace
{

using gui::gl::Context;

class OrbitScene : public Scene
{
public:
    bool init() override
    {
        _model.setEdges({.width = 1, .color = "#202830"});
        _camera.setDirection(32, 42);
        if (!_model.setMesh(makeImpeller()))
            return false;
        _camera.setBounds(_model.getBounds());
        // It is round: the corners of its bounds may be out of sight.
        return _camera.fit({{-0.7, -0.25, -0.7}, {0.7, 1.2, 0.7}}, 20);
    }

    void enter(Stage& stage) override
    {
        _pStage = &stage;
        _control.setOnChange([&stage] { stage.redraw(); });
    }

    void draw(const Frame& frame) override
    {
        // A flight goes on by itself, from frame to frame; at rest there is none.
        if (_control.advance())
            _pStage->redraw();
        _camera.setSize(frame.size);
        const gui::draw::Eye eye = _canvas.getEye(_camera, frame.scale);
        {
            gui::draw::DepthCanvas::Frame picture(_canvas, eye);
            Context::clear(Context::Clear::Color, "#202a36");
            while (const gui::draw::Eye* const pEye = picture.next())
                _model.draw(*pEye);
        }
        _control.drawGizmo(eye);
    }

    // While time runs it goes round.
    bool prepareNextFrame(double seconds) override
    {
        const double degrees = _seconds == 0 ? 0 : 12 * (seconds - _seconds);
        _seconds = seconds;
        _camera.turn(_camera.getTarget(), degrees, 0);
        return true;
    }
    void onTime(bool) override { _seconds = 0; }

    void onPointer(PointerEvent event, const gui::InputDevice& device) override
    {
        constexpr unsigned int cNotForTheCamera = 1 | 16; // Shift and Ctrl together
        if ((device.getKeyboardModifiers() & cNotForTheCamera) == cNotForTheCamera)
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

    // The arrows go from scene to scene.
    bool onKey(const gui::Key& key, bool isDown) override { return isDown && key.isASCII() && _control.onKey(key); }

private:
    gui::draw::Model _model;
    gui::draw::DepthCanvas _canvas{gui::draw::Eye::Depth::Reversed}; // and smooth edges
    gui::draw::OrbitCamera _camera;
    gui::draw::OrbitControl _control{_camera};
    Stage* _pStage = nullptr;
    double _seconds = 0;
};

} // namespace

std::unique_ptr<Scene> makeOrbitScene() { return std::make_unique<OrbitScene>(); }

} // namespace gallery
