#pragma once

#include "Borders.h"
#include "Earth.h"
#include "Geography.h"
#include "Labels.h"
#include "Orbit.h"
#include "StarrySky.h"

#include <gui/Window.h>
#include <gui/gl/Camera.h>
#include <gui/gl/CameraView.h>

#include <chrono>
#include <memory>
#include <set>

namespace globe
{

/// Where to look from, and the hour.
struct Outlook
{
    const char* name; ///< in file names
    Place over;       ///< below the eye
    double height;    ///< of the eye, in radii of the earth
    Place towards;    ///< on the surface
    Place sun;        ///< where the sun is at the zenith
};

/// The first one is where the view begins.
extern const Outlook cOutlooks[3];

/// The earth in space, to fly around. Keys, wheel, pinch and Shift-drags: see gui::gl::Camera; the nearer the earth the
/// slower. Digits choose an outlook, Space starts and stops time, B and L hide borders and labels, Escape ends the
/// program.
class GlobeView : public gui::gl::CameraView
{
public:
    /// @param pWindow  gets a title that says where the eye is, and must outlive the view; null for none
    explicit GlobeView(gui::Window* pWindow);
    ~GlobeView() override;

    /// Whether all that it draws is there.
    bool isOk() const { return _isOk; }

    void show(const Outlook& outlook);

    const gui::gl::Camera& getEye() const { return _eye; }

protected:
    void onInit() override;
    void onDraw(const td::RectNormalized<double>& rect) override;
    bool prepareNextFrame() override;
    bool onKeyPressed(const gui::Key& key) override;
    bool onKeyReleased(const gui::Key& key) override;
    bool onScroll(const gui::InputDevice& device) override;

private:
    using Clock = std::chrono::steady_clock;

    float getHeight() const;
    void move();
    void showTitle();

    gui::Window* _pWindow; // whose title says where it is; null for none
    Orbit _orbit;
    gui::gl::Camera _eye;
    Earth _earth;
    Borders _borders;
    StarrySky _sky;
    std::unique_ptr<Labels> _pLabels;
    Place _sun;
    std::set<unsigned int> _heldKeys;
    Clock::time_point _lastFrame;
    bool _turns = false; // keys turn the eye instead of moving it
    bool _hasTime = false;
    bool _hasBorders = true;
    bool _hasLabels = true;
    bool _isOk = false;
};

} // namespace globe
