// Look for: steps that end at the walls, a floor that mirrors what stands on it, a zoom that narrows the view.

#include "Hall.h"
#include "Lettering.h"
#include "Scenes.h"
#include "Sketch.h"
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
        _lettering.init();
        return _hall.init(_perspective, _camera) && _sketch.init();
    }

    void enter(Stage& stage) override { _pStage = &stage; }

    void draw(const Frame& frame) override
    {
        const auto aspect = static_cast<float>(frame.size.width / frame.size.height);
        const float fieldOfView = glm::radians(58 / _camera.getZoomFactor());
        _perspective = glm::perspective(fieldOfView, aspect, 0.1F, 100.0F);
        _camera.getViewMatrix(); // as it is now, for the hall's const camera
        _hall.draw();
        drawPlace(frame);
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
        _pStage->redraw();
    }

    // Arrow keys turn the camera; without Alt they choose another scene, as everywhere.
    bool onKey(const gui::Key& key, bool isDown) override
    {
        if (key.isVirtual() && !key.isAltPressed())
            return false;
        if (!(isDown ? _camera.onKeyPressed(key) : _camera.onKeyReleased(key)))
            return false;
        _pStage->redraw();
        return true;
    }

private:
    // Where the camera is, on a dark plate that keeps it readable.
    void drawPlace(const Frame& frame)
    {
        if (!_lettering.begin(frame))
            return;
        const glm::vec3& place = _camera.getPosition();
        char text[96];
        std::snprintf(text, sizeof text,
                      "x %5.1f   y %5.1f   z %5.1f      yaw %4.0f\u00b0   pitch %4.0f\u00b0   zoom %3.1f",
                      static_cast<double>(place.x), static_cast<double>(place.y), static_cast<double>(place.z),
                      static_cast<double>(_camera.getYaw()), static_cast<double>(_camera.getPitch()),
                      static_cast<double>(_camera.getZoomFactor()));
        const float left = 20, bottom = static_cast<float>(frame.size.height) - 20;
        constexpr float cPadding = 12, cHeight = 32, cBaseline = 11;
        const float width = _lettering.widthOf(text, 0) + 2 * cPadding;
        _sketch.addCell({left, bottom - cHeight, width, cHeight}, {0.03F, 0.04F, 0.08F, 0.66F});
        _sketch.draw(frame);
        _lettering.add({left + cPadding, bottom - cBaseline}, text, {.face = 0, .color = td::ColorID::White});
        _lettering.draw();
    }

    Hall _hall;
    Sketch _sketch;
    Lettering _lettering{{{"mono", 14}}};
    Camera _camera{{-0.45F, 1.95F, 6.4F}, -86.5F, -5};
    InsideHall _limiter;
    glm::mat4 _perspective{1};
    Stage* _pStage = nullptr;
};

} // namespace

std::unique_ptr<Scene> makeCamera() { return std::make_unique<CameraScene>(); }

} // namespace gallery
