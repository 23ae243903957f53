// Look for: steps that end at the walls, a floor that mirrors what stands on it, a zoom that narrows the view.

#include "Hall.h"
#include "Scenes.h"
#include "Stage.h"

#include <gui/InputDevice.h>
#include <gui/gl/Camera.h>
#include <gui/gl/ICameraLimiter.h>

#include <glm/common.hpp>
#include <glm/ext/matrix_clip_space.hpp>
#include <glm/trigonometric.hpp>

#include <cstdio>

namespace gallery
{

namespace
{

using gui::gl::Camera;

class InsideHall : public gui::gl::ICameraLimiter
{
public:
    glm::vec3 limit(const glm::vec3&, const glm::vec3& after) override
    {
        return glm::clamp(after, Hall::cLowest, Hall::cHighest);
    }
};

class CameraScene : public Scene
{
public:
    bool init() override
    {
        _camera.setYawLimits(-360, 180);
        _camera.setPitchLimits(-60, 60);
        _camera.setZoomFactorLimits(0.7F, 8);
        _camera.setLimiter(&_limiter);
        return _hall.init(_perspective, _camera);
    }

    void enter(Stage& stage) override
    {
        _pStage = &stage;
        tellPlace();
    }

    void draw(const Frame& frame) override
    {
        const auto aspect = static_cast<float>(frame.size.width / frame.size.height);
        const float fieldOfView = glm::radians(58 / _camera.getZoomFactor());
        _perspective = glm::perspective(fieldOfView, aspect, 0.1F, 100.0F);
        _camera.getViewMatrix(); // as it is now, for the hall's const camera
        _hall.draw();
    }

    void onPointer(PointerEvent event, const gui::InputDevice& device) override
    {
        constexpr unsigned int cNotForTheCamera = 1 | 16; // Shift and Ctrl together
        const unsigned int modifiers = device.getKeyboardModifiers();
        if ((modifiers & cNotForTheCamera) == cNotForTheCamera)
            return;
        const td::Point<float> point(static_cast<float>(device.getFramePoint().x),
                                     static_cast<float>(device.getFramePoint().y));
        if (event == PointerEvent::Moved)
            _camera.processMouseMove(point, modifiers);
        else if (event == PointerEvent::Scrolled)
            _camera.processScroll(point, gui::isFnPressed(modifiers));
        else if (event == PointerEvent::Zoomed)
            _camera.processZoom(static_cast<float>(device.getScale()));
        else
            return;
        tellPlace();
    }

    // Arrow keys turn the camera; without Alt they choose another scene, as everywhere.
    bool onKey(const gui::Key& key, bool isDown) override
    {
        if (key.isVirtual() && !key.isAltPressed())
            return false;
        if (!(isDown ? _camera.onKeyPressed(key) : _camera.onKeyReleased(key)))
            return false;
        tellPlace();
        return true;
    }

private:
    void tellPlace()
    {
        const glm::vec3& place = _camera.getPosition();
        char text[96];
        std::snprintf(text, sizeof(text), "at (%.1f, %.1f, %.1f), yaw %.0f, pitch %.0f, zoom %.1f",
                      static_cast<double>(place.x), static_cast<double>(place.y), static_cast<double>(place.z),
                      static_cast<double>(_camera.getYaw()), static_cast<double>(_camera.getPitch()),
                      static_cast<double>(_camera.getZoomFactor()));
        _pStage->setNote(text);
        _pStage->redraw();
    }

    Hall _hall;
    Camera _camera{{-0.45F, 1.95F, 6.4F}, -86.5F, -5};
    InsideHall _limiter;
    glm::mat4 _perspective{1};
    Stage* _pStage = nullptr;
};

} // namespace

std::unique_ptr<Scene> makeCamera() { return std::make_unique<CameraScene>(); }

} // namespace gallery
