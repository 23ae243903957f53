#include <gui/draw/OrbitView.h>

#include "DepthReader.h"

#include "../path/FinitePoint.h"

#include <gui/InputDevice.h>
#include <gui/Key.h>
#include <gui/gl/Buffer.h>
#include <gui/gl/Color2DProgram.h>
#include <gui/gl/SkyBox.h>
#include <gui/gl/StateGuard.h>

#include <glm/mat4x4.hpp>
#include <glm/trigonometric.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <utility>

namespace gui::draw
{

namespace
{

constexpr double cLongestFrame = 0.1; // seconds, after one that came late
constexpr int cPickPixels = 9;        // a side of what is drawn to see what is under the pointer; odd

std::array<float, 4> componentsOf(td::Color color)
{
    const auto part = [](unsigned int value) { return static_cast<float>(value) / 255; };
    return {part(color.red()), part(color.green()), part(color.blue()), 1};
}

struct PickedDepth
{
    double depth;
    int dx; // pixels from the middle
    int dy;
};

// What is in the middle of what was drawn, or nearest to it.
std::optional<PickedDepth> readDepth(DepthReader& reader, const Eye& eye)
{
    constexpr int cMiddle = cPickPixels / 2;
    std::array<float, std::size_t{cPickPixels} * cPickPixels> depths{};
    if (!reader.read(cPickPixels, cPickPixels, depths.data()))
        return std::nullopt;
    const float nothing = eye.getDepth() == Eye::Depth::Reversed ? 0 : 1;
    std::optional<PickedDepth> found;
    int nearest = cPickPixels * cPickPixels;
    for (int y = 0; y < cPickPixels; ++y)
    {
        for (int x = 0; x < cPickPixels; ++x)
        {
            const int dx = x - cMiddle, dy = cMiddle - y; // rows count from below
            const float depth = depths[static_cast<std::size_t>(y * cPickPixels + x)];
            if (dx * dx + dy * dy >= nearest || depth == nothing)
                continue;
            nearest = dx * dx + dy * dy;
            found = {static_cast<double>(depth), dx, dy};
        }
    }
    return found;
}

} // namespace

// A colour at the top that goes over into another, or a sky.
class OrbitView::Background
{
public:
    using Sky = std::function<glm::vec3(const glm::vec3&)>;

    Background(td::Color top, td::Color bottom)
        : _top(top)
        , _bottom(bottom)
    {
    }

    Background(int faceSize, Sky sky)
        : _top(td::ColorID::Black)
        , _bottom(td::ColorID::Black)
        , _sky(std::move(sky))
        , _faceSize(faceSize)
    {
    }

    void draw(const OrbitCamera& camera)
    {
        gl::Context::clear(gl::Context::Clear::Color, _top);
        drawSky(camera);
        if (_top == _bottom)
            return;
        if (_pBuffer == nullptr)
        {
            const std::array<float, 4> t = componentsOf(_top), b = componentsOf(_bottom);
            const float corners[] = {-1, 1, t[0], t[1], t[2], 1, -1, -1, b[0], b[1], b[2], 1,
                                     1,  1, t[0], t[1], t[2], 1, 1,  -1, b[0], b[1], b[2], 1};
            _pBuffer = std::make_unique<gl::Buffer>(
                std::initializer_list<gl::DataType>{gl::DataType::Vec2, gl::DataType::Vec4});
            _pBuffer->appendVertices(corners, 4);
            _pBuffer->createCommand()->createDrawAll(gl::Primitive::TriangleStrip);
        }
        if (!_program.isOK() && (_isRefused || !_program.link()))
        {
            _isRefused = true;
            return;
        }
        _program.draw(*_pBuffer);
    }

private:
    // Where things are deep does not matter: the box sets its own depth.
    void drawSky(const OrbitCamera& camera)
    {
        if (_sky && !_isRefused)
        {
            _pSkyBox = std::make_unique<gl::SkyBox>();
            _isRefused = !_pSkyBox->init(&_toSky, nullptr, _faceSize, std::exchange(_sky, nullptr));
        }
        if (_pSkyBox == nullptr || _isRefused || !(camera.getSize().width > 0))
            return;
        glm::dmat4 projection(0);
        projection[1][1] = 1 / std::tan(glm::radians(camera.getFieldOfView()) / 2);
        projection[0][0] = projection[1][1] * camera.getSize().height / camera.getSize().width;
        projection[2][3] = -1;
        _toSky = glm::mat4(projection * glm::dmat4(camera.getPose().rotation));
        _pSkyBox->render(true);
    }

    td::Color _top;
    td::Color _bottom;
    Sky _sky; // until it is painted
    int _faceSize = 0;
    glm::mat4 _toSky{1};
    std::unique_ptr<gl::SkyBox> _pSkyBox;
    gl::Color2DProgram _program;
    std::unique_ptr<gl::Buffer> _pBuffer;
    bool _isRefused = false; // by the driver, which said so
};

OrbitView::OrbitView(OrbitCamera::Up up)
    : _camera(up)
    , _control(_camera)
    , _pBackground(std::make_shared<Background>("#f4f6f8", "#c8d0d8"))
{
    _control.setPick([this](const td::Point<double>& point) { return pick(getEye().getRay(point)); });
    _control.setOnChange([this] { reRender(); });
    _control.setOnMotion([this] { startAnimation(); });
}

OrbitView::~OrbitView() = default;

void OrbitView::createContext()
{
    gl::Context context(gl::DepthBuffer::Size::Bits24, gl::StencilBuffer::Size::Bits8, gl::Context::Profile::Core41);
    if (_canvas.getDepth() != Eye::Depth::Reversed)
        context.setSamples(4);
    createContext(context);
}

void OrbitView::createContext(const gl::Context& context)
{
    using Event = InputDevice::Event;
    View::createContext(context, {Event::Keyboard, Event::CursorEnterLeave, Event::PrimaryClicks,
                                  Event::SecondaryClicks, Event::CursorMove, Event::CursorDrag, Event::ScrollAndZoom,
                                  Event::OtherClicks, Event::OtherDrag});
}

bool OrbitView::fit(const Box3& box, double margin)
{
    if (!_camera.fit(box, margin))
        return false;
    reRender();
    return true;
}

bool OrbitView::flyTo(const Box3& box, double margin, double seconds)
{
    if (!_camera.flyTo(box, margin, seconds))
        return false;
    _control.begin();
    return true;
}

void OrbitView::flyTo(OrbitCamera::Side side, double seconds)
{
    _camera.flyTo(side, seconds);
    _control.begin();
}

Eye OrbitView::getEye() const
{
    Eye eye = _canvas.getEye(_camera, static_cast<double>(getPixelHiDPIScale()));
    eye.setClipping(_clipping);
    return eye;
}

void OrbitView::setDepth(Eye::Depth depth)
{
    _canvas.setDepth(depth);
    reRender();
}

void OrbitView::setClipping(const Clipping& clipping)
{
    _clipping = clipping;
    reRender();
}

void OrbitView::setShadows(const Shadows& shadows)
{
    _canvas.setShadows(shadows, _camera.getBounds());
    reRender();
}

void OrbitView::setBackground(td::Color color) { setBackground(color, color); }

void OrbitView::setBackground(td::Color top, td::Color bottom)
{
    makeCurrentContext();
    _pBackground = std::make_shared<Background>(top, bottom);
    reRender();
}

void OrbitView::setSky(int faceSize, std::function<glm::vec3(const glm::vec3& direction)> color)
{
    makeCurrentContext();
    _pBackground = std::make_shared<Background>(faceSize, std::move(color));
    reRender();
}

void OrbitView::drawOver(const Eye&) {}

void OrbitView::onPointed(const std::optional<Ray>&) {}

void OrbitView::onClicked(const Ray&) {}

void OrbitView::onCameraMoved() {}

void OrbitView::onDraw(const td::RectNormalized<double>&)
{
    if (_camera.isMoving() && !isAnimated())
        _control.begin();
    if (std::exchange(_drawn, _camera.getPose()) != _camera.getPose())
        onCameraMoved();
    const Eye eye = getEye();
    _canvas.setShadows(_canvas.getShadows(), _camera.getBounds()); // which may be others since
    {
        DepthCanvas::Frame frame(_canvas, eye);
        // It may call for the colours of a sky, and who gives them may set another one.
        const std::shared_ptr<Background> pBackground = _pBackground;
        pBackground->draw(_camera);
        _probe.begin(eye);
        while (const Eye* const pEye = eye.isValid() ? frame.next() : nullptr)
        {
            drawScene(*pEye);
            _probe.ask(*pEye);
        }
    }
    if (!eye.isValid())
        return;
    drawOver(eye);
    _control.drawGizmo(eye);
}

std::optional<glm::dvec3> OrbitView::pick(const Ray& ray)
{
    makeCurrentContext();
    const Eye eye = getEye();
    const std::optional<glm::dvec3> place = eye.project(ray.at(_camera.getDistance()));
    if (!place || gl::CurrentContext::getID() == 0)
        return std::nullopt;
    const td::Point<double> point(place->x, place->y);
    const double pixel = 1 / eye.getScale(), half = cPickPixels * pixel / 2;
    const Eye part = eye.getPart({point.x - half, point.y - half, point.x + half, point.y + half});
    const gl::StateGuard guard;
    if (!_pickBuffer.isOk() &&
        !_pickBuffer.create({cPickPixels, cPickPixels}, {.depth = gl::DepthBuffer::Size::Bits32}))
        return std::nullopt;
    const gl::Framebuffer::Drawing drawing(_pickBuffer);
    if (!drawing)
        return std::nullopt;
    for (const gl::Context::Flag flag :
         {gl::Context::Flag::CullFace, gl::Context::Flag::StencilTest, gl::Context::Flag::Blend,
          gl::Context::Flag::ScissorTest, gl::Context::Flag::PolygonOffset})
        gl::Context::disable(flag);
    if (_pDepthReader == nullptr)
        _pDepthReader = std::make_unique<DepthReader>();
    std::optional<glm::dvec3> found;
    int nearest = cPickPixels * cPickPixels;
    DepthCanvas::Frame frame(_canvas, part, true);
    gl::Context::clear(gl::Context::Clear::Color, td::Color(0, 0, 0, 0));
    // Of slices the nearest one comes last, and has the word where both are as near to the pointer.
    while (const Eye* const pEye = frame.next())
    {
        drawScene(*pEye);
        const std::optional<PickedDepth> depth = readDepth(*_pDepthReader, *pEye);
        if (!depth || depth->dx * depth->dx + depth->dy * depth->dy > nearest)
            continue;
        nearest = depth->dx * depth->dx + depth->dy * depth->dy;
        found = eye.unproject({point.x + depth->dx * pixel, point.y + depth->dy * pixel},
                              pEye->getDistanceOfDepth(depth->depth));
    }
    return found;
}

void OrbitView::onResize(const td::Size<double>& size) { _camera.setSize(size); }

bool OrbitView::onAnimate(double) { return false; }

bool OrbitView::prepareNextFrame()
{
    const auto now = std::chrono::steady_clock::now();
    const std::chrono::duration<double> since = now - std::exchange(_lastFrame, now);
    const bool isMoving = _control.advance();
    return onAnimate(std::min(since.count(), cLongestFrame)) || isMoving;
}

void OrbitView::showDrag()
{
    const bool isDragging = _control.isDragging();
    if (std::exchange(_isDragShown, isDragging) != isDragging)
        setCursor(isDragging ? Cursor::Type::Pan : Cursor::Type::Default, true);
}

void OrbitView::press(const InputDevice& device)
{
    _modifiers = device.getKeyboardModifiers();
    _control.onPressed(device);
    showDrag();
}

void OrbitView::drag(const InputDevice& device)
{
    if (!isFinitePoint(device.getFramePoint()))
        return;
    _pointer = device.getFramePoint();
    _modifiers = device.getKeyboardModifiers();
    _control.onDragged(device);
    showDrag();
}

void OrbitView::release(const InputDevice& device)
{
    _modifiers = device.getKeyboardModifiers();
    const bool isClick = _control.onReleased(device);
    showDrag();
    if (isClick)
        onClicked(getEye().getRay(device.getFramePoint()));
}

void OrbitView::onPrimaryButtonPressed(const InputDevice& device) { press(device); }

void OrbitView::onPrimaryButtonReleased(const InputDevice& device) { release(device); }

void OrbitView::onPrimaryButtonDblClick(const InputDevice& device)
{
    _modifiers = device.getKeyboardModifiers();
    _control.onDoubleClick(device);
}

void OrbitView::onSecondaryButtonPressed(const InputDevice& device) { press(device); }

void OrbitView::onSecondaryButtonReleased(const InputDevice& device) { release(device); }

void OrbitView::onOtherButtonPressed(const InputDevice& device) { press(device); }

void OrbitView::onOtherButtonReleased(const InputDevice& device) { release(device); }

void OrbitView::onCursorMoved(const InputDevice& device)
{
    if (!isFinitePoint(device.getFramePoint()))
        return;
    _pointer = device.getFramePoint();
    _modifiers = device.getKeyboardModifiers();
    _control.onMoved(device);
    showDrag();
    if (const Eye eye = getEye(); eye.isValid())
        onPointed(eye.getRay(*_pointer));
}

void OrbitView::onCursorDragged(const InputDevice& device) { drag(device); }

void OrbitView::onOtherDragged(const InputDevice& device) { drag(device); }

void OrbitView::onCursorExited(const InputDevice&)
{
    _pointer.reset();
    _control.onExited();
    onPointed(std::nullopt);
}

bool OrbitView::onScroll(const InputDevice& device) { return _control.onScroll(device); }

bool OrbitView::onZoom(const InputDevice& device) { return _control.onZoom(device); }

bool OrbitView::onKeyPressed(const Key& key) { return _control.onKey(key); }

} // namespace gui::draw
