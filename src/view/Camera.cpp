#include <gui/gl/Camera.h>

#include <gui/gl/ICameraLimiter.h>
#include <gui/gl/KeyCodes.h>
#include <td/Assert.h>
#include <td/ToLower.h>

#include <glm/ext/matrix_transform.hpp>
#include <glm/geometric.hpp>
#include <glm/trigonometric.hpp>

#include <algorithm>
#include <cmath>

namespace gui::gl
{

namespace
{

constexpr float cDegreesPerStep = 1;
constexpr float cFast = 3;
constexpr unsigned char cNoMovement = 255;

enum Movement : unsigned char
{
    Forward,
    Backward,
    Left,
    Right
};

bool isFinite(const glm::vec3& v) { return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z); }

bool isFinite(const glm::mat4& m)
{
    return isFinite(glm::vec3(m[0])) && isFinite(glm::vec3(m[1])) && isFinite(glm::vec3(m[2])) &&
           isFinite(glm::vec3(m[3]));
}

// Across a view direction and the world's up, towards the right. @return false where there is no such direction
bool findRight(const glm::vec3& front, const glm::vec3& worldUp, glm::vec3& right)
{
    // Straight up or down, what is left is rounding, and points to the one side or the other.
    constexpr float cStraight = 1e-6F;
    const glm::vec3 across = glm::cross(front, worldUp);
    if (!(glm::length(across) > cStraight * glm::length(worldUp)))
        return false;
    right = glm::normalize(across);
    return true;
}

} // namespace

Camera::Camera(const glm::vec3& position, float yaw, float pitch, const glm::vec3& worldUp)
    : _position(position)
    , _worldUp(worldUp)
    , _yaw(yaw)
    , _pitch(pitch)
{
    updateCameraVectors();
    getViewMatrix();
}

Camera::Camera(float posX, float posY, float posZ, float upX, float upY, float upZ, float yaw, float pitch)
    : Camera(glm::vec3(posX, posY, posZ), yaw, pitch, glm::vec3(upX, upY, upZ))
{
}

Camera::Camera(const glm::vec3& position, const glm::vec3& target, const glm::vec3& worldUp)
    : _position(position)
    , _worldUp(worldUp)
{
    const glm::vec3 d = glm::normalize(target - position);
    if (isFinite(d))
    {
        _yaw = glm::degrees(std::atan2(d.z, d.x));
        _pitch = glm::degrees(std::asin(d.y));
    }
    updateCameraVectors();
    getViewMatrix();
}

const glm::mat4& Camera::getViewMatrix()
{
    if (!_updateViewMatrix)
        return _viewMatrix;
    glm::mat4 matrix = glm::lookAt(_position, _position + _front, _up);
    // So far out that a step of one unit is lost in the position's last digit.
    if (!isFinite(matrix))
        matrix = glm::translate(glm::lookAt(glm::vec3(0), _front, _up), -_position);
    if (isFinite(matrix))
        _viewMatrix = matrix;
    _updateViewMatrix = false;
    return _viewMatrix;
}

void Camera::place(const glm::vec3& position, float yaw, float pitch)
{
    if (!isFinite(position) || !std::isfinite(yaw) || !std::isfinite(pitch))
        return;
    _position = position;
    _yaw = yaw;
    _pitch = pitch;
    updateCameraVectors();
    _updateViewMatrix = true;
}

void Camera::updateCameraVectors()
{
    const float y = glm::radians(_yaw);
    const float p = glm::radians(_pitch);
    const glm::vec3 front =
        glm::normalize(glm::vec3(std::cos(y) * std::cos(p), std::sin(p), std::sin(y) * std::cos(p)));
    glm::vec3 right = _right;
    if (!findRight(front, _worldUp, right))
        findRight(glm::vec3(std::cos(y), 0, std::sin(y)), _worldUp, right);
    const glm::vec3 up = glm::normalize(glm::cross(right, front));
    if (!isFinite(front) || !isFinite(right) || !isFinite(up))
        return;
    _front = front;
    _right = right;
    _up = up;
}

// @return 0 to 3 as getMovementPos does, for a key of the camera
unsigned char Camera::movementOf(const gui::Key& key, bool isReleased) const
{
    const unsigned int modifiers =
        gui::removeKeyModifier(gui::removeKeyModifier(key.getModifiers(), gui::KeyModifier::Alt), gui::KeyModifier::Fn);
    const unsigned char movement = movementOfAny(key, isReleased);
    // What went down alone and goes up with another is held no more.
    const bool isHeld = isReleased && movement != cNoMovement && _keyPressed[movement];
    return modifiers == 0 || isHeld ? movement : cNoMovement;
}

// The same whatever is held with it.
unsigned char Camera::movementOfAny(const gui::Key& key, bool isReleased) const
{
    if (key.isASCII())
        return getMovementPos(td::toLower(key.getChar()));
    switch (isReleased && !key.isVirtual() ? zav::getVirtualKeyCode(key.getCode(), 0) : key.getVirtual())
    {
    case gui::Key::Virtual::Left:
        return Left;
    case gui::Key::Virtual::Right:
        return Right;
    case gui::Key::Virtual::Up:
        return Forward;
    case gui::Key::Virtual::Down:
        return Backward;
    default:
        return cNoMovement;
    }
}

bool Camera::onKeyPressed(const gui::Key& key)
{
    const unsigned char movement = _fixed ? cNoMovement : movementOf(key, false);
    if (movement == cNoMovement)
        return false;
    _keyPressed[movement] = true;
    updatePosition(key.isAltPressed());
    return true;
}

bool Camera::onKeyReleased(const gui::Key& key)
{
    const unsigned char movement = _fixed ? cNoMovement : movementOf(key, true);
    if (movement == cNoMovement)
        return false;
    updatePosition(key.isAltPressed());
    _keyPressed[movement] = false;
    return true;
}

void Camera::releaseKeys() { _keyPressed = {}; }

void Camera::updatePosition(bool rotate)
{
    if (_fixed || std::none_of(_keyPressed.begin(), _keyPressed.end(), [](bool isHeld) { return isHeld; }))
        return;
    if (rotate)
    {
        if (_keyPressed[Forward])
            _pitch = std::min(_pitch + cDegreesPerStep, _maxPitch);
        if (_keyPressed[Backward])
            _pitch = std::max(_pitch - cDegreesPerStep, _minPitch);
        if (_keyPressed[Left])
            _yaw = std::max(_yaw - cDegreesPerStep, _minYaw);
        if (_keyPressed[Right])
            _yaw = std::min(_yaw + cDegreesPerStep, _maxYaw);
        updateCameraVectors();
    }
    else
    {
        glm::vec3 position = _position;
        if (_keyPressed[Forward])
            position += _front * _speed;
        if (_keyPressed[Backward])
            position -= _front * _speed;
        if (_keyPressed[Left])
            position -= _right * _speed;
        if (_keyPressed[Right])
            position += _right * _speed;
        moveTo(position);
    }
    _updateViewMatrix = true;
}

void Camera::processMouseMove(const td::Point<float>& pos, unsigned int modifiers)
{
    if (_fixed || !std::isfinite(pos.x) || !std::isfinite(pos.y))
        return;
    if (!gui::isShiftPressed(modifiers))
    {
        _shiftPressed = false;
        return;
    }
    if (_shiftPressed)
    {
        float dx = (pos.x - _lastCursorPos.x) * _moveSensitivity;
        float dy = (pos.y - _lastCursorPos.y) * _moveSensitivity;
        if (gui::isAltPressed(modifiers))
        {
            dx *= cFast;
            dy *= cFast;
        }
        glm::vec3 position = _position;
        position += _up * dy;
        position -= _right * dx;
        moveTo(position);
        _updateViewMatrix = true;
    }
    _lastCursorPos = pos;
    _shiftPressed = true;
}

void Camera::processScroll(const td::Point<float>& delta, bool fast)
{
    if (_fixed || !std::isfinite(delta.x) || !std::isfinite(delta.y))
        return;
    const float s = fast ? _mouseSensitivity * cFast : _mouseSensitivity;
    const float pitch = std::clamp(_pitch + delta.y * s, _minPitch, _maxPitch);
    const float yaw = std::clamp(_yaw + delta.x * s, _minYaw, _maxYaw);
    if (!std::isfinite(pitch) || !std::isfinite(yaw))
        return;
    _pitch = pitch;
    _yaw = yaw;
    updateCameraVectors();
    _updateViewMatrix = true;
}

void Camera::processZoom(float factor)
{
    const float zoomFactor = _zoomFactor * factor;
    if (std::isnan(zoomFactor))
        return;
    _zoomFactor = zoomFactor < _minZoomFactor ? _minZoomFactor : std::min(zoomFactor, _maxZoomFactor);
}

void Camera::setDirectionChars(const char* chars)
{
    TD_ASSERT(chars != nullptr);
    std::copy_n(chars, _directionChars.size(), _directionChars.begin());
}

unsigned char Camera::getMovementPos(char c) const
{
    const auto it = std::find(_directionChars.begin(), _directionChars.end(), c);
    return it != _directionChars.end() ? static_cast<unsigned char>(it - _directionChars.begin()) : cNoMovement;
}

void Camera::setYawLimits(float min, float max)
{
    TD_ASSERT(min <= max);
    _minYaw = min;
    _maxYaw = max;
}

void Camera::setPitchLimits(float min, float max)
{
    TD_ASSERT(min <= max);
    _minPitch = min;
    _maxPitch = max;
}

void Camera::setZoomFactorLimits(float min, float max)
{
    _minZoomFactor = min;
    _maxZoomFactor = max;
}

void Camera::moveTo(const glm::vec3& position)
{
    if (!isFinite(position))
        return;
    const glm::vec3 limited = _limiter != nullptr ? _limiter->limit(_position, position) : position;
    if (isFinite(limited))
        _position = limited;
}

} // namespace gui::gl
