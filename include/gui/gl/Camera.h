#pragma once

#include <gui/Key.h>
#include <td/Export.h>
#include <td/Point.h>

#include <glm/mat4x4.hpp>
#include <glm/vec3.hpp>

#include <array>

namespace gui::gl
{

class ICameraLimiter;
class SkyBox;

/// An eye that flies: a position and two angles, moved and turned by keys, the wheel and the pointer, and the view
/// matrix that follows from them.
///
/// Keys w, s, a, d and the arrows move by a step of the camera's speed along its view direction or sideways; with Alt
/// they turn it by a degree. The wheel turns it. Moving the pointer with Shift held pans it, three times as far with
/// Alt. A CameraView forwards all of these; for smooth flight, call updatePosition in each frame of an animation.
///
/// Angles are in degrees. Yaw -90 looks along -z, yaw 0 along x; a pitch above 0 looks up. Input that is not a number,
/// and steps that would lead to infinity, change nothing. It draws nothing and owns no GL object. GUI thread only.
class GUIGL_API Camera
{
public:
    /// @param yaw, pitch  stored as they are; limits apply when input turns the camera
    /// @param worldUp     where up is in the world, of any length but 0
    explicit Camera(const glm::vec3& position = glm::vec3(0), float yaw = -90, float pitch = 0,
                    const glm::vec3& worldUp = glm::vec3(0, 1, 0));
    /// The same as numbers: position, worldUp, yaw, pitch.
    Camera(float posX, float posY, float posZ, float upX, float upY, float upZ, float yaw = -90, float pitch = 0);
    /// Looks at a target. Where the target is the position, it looks along -z.
    Camera(const glm::vec3& position, const glm::vec3& target, const glm::vec3& worldUp = glm::vec3(0, 1, 0));

    /// From the world to the eye (right-handed, looking along -z), computed anew if the camera has moved or turned.
    const glm::mat4& getViewMatrix();
    /// As it was last computed, by the operation above or by the constructor.
    const glm::mat4& getViewMatrix() const { return _viewMatrix; }

    /// The eye, and unit vectors of where it looks and where its up and right are.
    const glm::vec3& getPosition() const { return _position; }
    const glm::vec3& getFront() const { return _front; }
    const glm::vec3& getUp() const { return _up; }
    const glm::vec3& getRight() const { return _right; }

    /// Puts the camera somewhere else, with its limits left aside. Values that are not finite leave it where it is.
    void place(const glm::vec3& position, float yaw, float pitch);

    /// Computes the three vectors from yaw and pitch. The view matrix is not computed anew on account of this alone.
    void updateCameraVectors();

    /// A key of the camera goes down: it is held from now on, and the camera makes a step. Keys with a modifier other
    /// than Alt and Fn are not the camera's.
    /// @return whether it is a key of the camera; false while the camera is fixed
    bool onKeyPressed(const gui::Key& key);
    /// A key of the camera goes up: the camera makes a last step with it. Arrow keys are known by their key code too,
    /// which is all that a release tells of them.
    bool onKeyReleased(const gui::Key& key);

    /// No key is held any more, and none makes a step. A CameraView calls it when another camera takes this one's
    /// place.
    void releaseKeys();

    /// One step for each key that is held. @param rotate  turn by a degree instead of moving
    void updatePosition(bool rotate);

    /// Pans while Shift is held: the first call takes note of the pointer, each further one moves the camera.
    /// @param pos        of the pointer, in points  @param modifiers  mask of gui::KeyModifier bits
    void processMouseMove(const td::Point<float>& pos, unsigned int modifiers);

    /// Looks around. @param delta  distance scrolled, in points  @param fast  three times as far
    void processScroll(const td::Point<float>& delta, bool fast);

    /// Multiplies the zoom factor, within its limits. A fixed camera zooms too.
    void processZoom(float factor);

    /// The keys for forward, backward, left and right, "wsad" at first. Lower case: keys are compared in lower case.
    /// @param chars  the four of them, copied
    void setDirectionChars(const char* chars);
    /// Four characters without a terminating zero.
    const char* getDirectionChars() const { return _directionChars.data(); }
    /// 0 forward, 1 backward, 2 left, 3 right; 255 for a character that is none of the four.
    unsigned char getMovementPos(char c) const;

    /// World units per step; 0.25 at first.
    float getSpeed() const { return _speed; }
    void setSpeed(float speed) { _speed = speed; }

    /// Degrees of turn per point scrolled; 0.1 at first. The form with a parameter sets it.
    float getMouseSensitivity() const { return _mouseSensitivity; }
    void getMouseSensitivity(float sensitivity) { _mouseSensitivity = sensitivity; }

    float getYaw() const { return _yaw; }
    float getPitch() const { return _pitch; }
    /// Stored as they are. They take effect with the next updateCameraVectors; see place for both at once.
    void setYaw(float yaw) { _yaw = yaw; }
    void setPitch(float pitch) { _pitch = pitch; }

    /// What input can turn the camera to, min <= max (an assertion); -180 to 0 and -90 to 90 at first. They take effect
    /// when it is next turned.
    void setYawLimits(float min, float max);
    void setPitchLimits(float min, float max);

    /// 0.5 to 450 at first. They take effect with the next processZoom.
    void setZoomFactorLimits(float min, float max);
    float getZoomFactor() const { return _zoomFactor; }

    /// Keys, pointer and wheel do nothing from now on, for good.
    void setFixed() { _fixed = true; }
    bool isFixed() const { return _fixed; }

    /// Asked after each step where the camera may be. Not owned; null for none.
    void setLimiter(ICameraLimiter* pLimiter) { _limiter = pLimiter; }
    ICameraLimiter* getLimiter() const { return _limiter; }

    /// Kept for the application and not used: a sky box is told its camera with SkyBox::setCamera. Not owned.
    void setSkyBox(SkyBox* pSkyBox) { _skyBox = pSkyBox; }
    SkyBox* getSkyBox() const { return _skyBox; }

private:
    unsigned char movementOf(const gui::Key& key, bool isReleased) const;
    unsigned char movementOfAny(const gui::Key& key, bool isReleased) const;
    void moveTo(const glm::vec3& position);

    ICameraLimiter* _limiter = nullptr;
    SkyBox* _skyBox = nullptr;
    glm::mat4 _viewMatrix{1};
    glm::vec3 _position;
    glm::vec3 _front{0, 0, -1};
    glm::vec3 _up{0, 1, 0};
    glm::vec3 _right{1, 0, 0};
    glm::vec3 _worldUp;
    td::Point<float> _lastCursorPos;
    std::array<bool, 4> _keyPressed{}; // forward, backward, left, right
    std::array<char, 4> _directionChars{'w', 's', 'a', 'd'};
    float _minYaw = -180;
    float _yaw = -90;
    float _maxYaw = 0;
    float _minPitch = -90;
    float _pitch = 0;
    float _maxPitch = 90;
    float _minZoomFactor = 0.5F;
    float _zoomFactor = 1;
    float _maxZoomFactor = 450;
    float _speed = 0.25F;
    float _mouseSensitivity = 0.1F;
    float _moveSensitivity = 0.01F;
    bool _updateViewMatrix = true;
    bool _shiftPressed = false; // the pointer pans
    bool _fixed = false;
};

} // namespace gui::gl
