#include <gui/gl/CameraView.h>

#include <gui/gl/Camera.h>
#include <td/Assert.h>

#include <glm/ext/matrix_clip_space.hpp>
#include <glm/trigonometric.hpp>

#include <cmath>

namespace gui::gl
{

namespace
{

td::Point<float> toFloat(const td::Point<double>& point)
{
    return {static_cast<float>(point.x), static_cast<float>(point.y)};
}

} // namespace

CameraView::~CameraView() = default;

void CameraView::createContext(const Context& context)
{
    using Event = gui::InputDevice::Event;
    View::createContext(context,
                        {Event::Keyboard, Event::PrimaryClicks, Event::SecondaryClicks, Event::CursorMove,
                         Event::CursorEnterLeave, Event::ScrollAndZoom},
                        nullptr);
}

void CameraView::setCamera(Camera* pCamera)
{
    if (_camera != nullptr && _camera != pCamera)
        _camera->releaseKeys(); // where they go up is not told to it
    _camera = pCamera;
    scaleFieldOfView(getFieldOfViewScale());
}

float CameraView::getFieldOfViewScale() const { return _camera != nullptr ? _camera->getZoomFactor() : 1.0F; }

glm::mat4 CameraView::getCameraMatrix() const { return _camera != nullptr ? _camera->getViewMatrix() : glm::mat4(1); }

void CameraView::setFieldOfView(float degrees)
{
    TD_ASSERT(degrees > 0 && degrees < 180);
    _fieldOfView = degrees;
    scaleFieldOfView(getFieldOfViewScale());
}

void CameraView::setDepthRange(float nearest, float farthest)
{
    TD_ASSERT(nearest > 0 && nearest < farthest && std::isfinite(farthest));
    _near = nearest;
    _far = farthest;
    scaleFieldOfView(getFieldOfViewScale());
}

void CameraView::scaleFieldOfView(float scale)
{
    if (_size.width == 0 || _size.height == 0)
        return;
    const float fov = _fieldOfView / scale;
    const float aspect = _size.width / _size.height;
    if (!std::isnormal(aspect))
        return;
    const glm::mat4 perspective = glm::perspective(glm::radians(fov), aspect, _near, _far);
    if (std::isfinite(perspective[0][0]) && std::isfinite(perspective[1][1])) // what fields of view can spoil
        _perspective = perspective;
}

bool CameraView::onKeyPressed(const gui::Key& key)
{
    const bool isUsed = _camera != nullptr && _camera->onKeyPressed(key);
    if (isUsed)
        reRender();
    return isUsed;
}

bool CameraView::onKeyReleased(const gui::Key& key)
{
    const bool isUsed = _camera != nullptr && _camera->onKeyReleased(key);
    if (isUsed)
        reRender();
    return isUsed;
}

bool CameraView::onZoom(const gui::InputDevice& device)
{
    if (_camera == nullptr)
        return false;
    const float before = _camera->getZoomFactor();
    _camera->processZoom(static_cast<float>(device.getScale()));
    const float after = _camera->getZoomFactor();
    if (after != before)
    {
        scaleFieldOfView(after);
        reRender();
    }
    return true;
}

bool CameraView::onScroll(const gui::InputDevice& device)
{
    if (_camera == nullptr)
        return false;
    const bool fast = device.isAnyModifierPressed() && gui::isFnPressed(device.getKeyboardModifiers());
    _camera->processScroll(toFloat(device.getFramePoint()), fast);
    reRender();
    return true;
}

void CameraView::onCursorMoved(const gui::InputDevice& device)
{
    if (_camera == nullptr)
        return;
    const glm::vec3 before = _camera->getPosition();
    _camera->processMouseMove(toFloat(device.getFramePoint()), device.getKeyboardModifiers());
    if (_camera->getPosition() != before)
        reRender();
}

void CameraView::onCursorExited(const gui::InputDevice&) {}

void CameraView::onResize(const td::Size<double>& size)
{
    if (size.width == 0 || size.height == 0)
        return;
    _size = {static_cast<float>(size.width), static_cast<float>(size.height)};
    scaleFieldOfView(getFieldOfViewScale());
}

} // namespace gui::gl
