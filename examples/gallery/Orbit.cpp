// Look for: turning about the point that was pressed, axes that take clicks, motion that goes on and comes to rest.

#include "Impeller.h"
#include "Scenes.h"
#include "Stage.h"

#include <gui/InputDevice.h>
#include <gui/Key.h>
#include <gui/draw/OrbitCamera.h>
#include <gui/draw/OrbitControl.h>
#include <gui/gl/Buffer.h>
#include <gui/gl/Context.h>
#include <gui/gl/Lit3DProgram.h>

#include <cstdint>
#include <vector>

namespace gallery
{

namespace
{

using namespace gui::gl;

class OrbitScene : public Scene
{
public:
    bool init() override
    {
        std::uint32_t nVertices = 0;
        std::size_t nIndices = 0;
        std::vector<Part> parts = makeImpeller();
        for (Part& part : parts)
        {
            for (std::uint32_t& index : part.indices)
                index += nVertices;
            _buffer.appendVertices(part.vertices.data(), part.vertices.size() / 6);
            _buffer.appendIndices(part.indices.data(), part.indices.size());
            Command* const pCommand = _buffer.createCommand();
            pCommand->createDrawElements(Primitive::Triangles, nIndices,
                                         static_cast<unsigned int>(part.indices.size()));
            pCommand->setColor(part.color);
            _buffer.encode(pCommand);
            nVertices += static_cast<std::uint32_t>(part.vertices.size() / 6);
            nIndices += part.indices.size();
        }
        _camera.setDirection(32, 38);
        return _program.link() && _camera.fit({{-1, -1, -1}, {1, 1.28, 1}}, 30);
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
        const gui::draw::Eye eye = _camera.getEye(frame.scale);
        Context::clear("#202a36");
        Context::clear({Context::Clear::Color, Context::Clear::Depth});
        Context::enable(Context::Flag::DepthTest);
        Context::setDepthBufferFunction(DepthBuffer::Function::Less);
        _program.draw(_buffer, eye.getMatrix());
        Context::disable(Context::Flag::DepthTest);
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
    Lit3DProgram _program;
    Buffer _buffer{DataType::Vec3, DataType::Vec3}; // position, normal
    gui::draw::OrbitCamera _camera;
    gui::draw::OrbitControl _control{_camera};
    Stage* _pStage = nullptr;
    double _seconds = 0;
};

} // namespace

std::unique_ptr<Scene> makeOrbitScene() { return std::make_unique<OrbitScene>(); }

} // namespace gallery
