#pragma once

#include "Countries.h"

#include <gui/Window.h>
#include <gui/draw/GlobeSurface.h>
#include <gui/draw/GlobeView.h>

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

/// The stars and the Milky Way around the earth: what is seen in a direction, a unit vector.
glm::vec3 starsIn(const glm::vec3& direction);

/// The first one is where the view begins.
extern const Outlook cOutlooks[3];

/// The earth in space, to turn and to go nearer to: see gui::draw::GlobeView for what the pointer does. The country
/// under it is outlined and told. Digits fly to an outlook, Space starts and stops time, B and L hide borders and
/// names, Escape ends the program.
class EarthView : public gui::draw::GlobeView
{
public:
    /// @param pWindow  gets a title that says where the eye is, and must outlive the view; null for none
    explicit EarthView(gui::Window* pWindow);

    /// Whether all that it draws is there.
    bool isOk() const { return _isOk; }

    /// @param seconds  of a flight there; 0 for none
    void show(const Outlook& outlook, double seconds = 0);

protected:
    void onInit() override;
    void drawScene(const gui::draw::Eye& eye) override;
    void drawOver(const gui::draw::Eye& eye) override;
    void onPlacePointed(const std::optional<Place>& place) override;
    void onCameraMoved() override;
    bool onAnimate(double seconds) override;
    bool onKeyPressed(const gui::Key& key) override;

private:
    void showTitle();

    gui::Window* _pWindow;
    gui::draw::GlobeSurface _earth;
    Countries _countries;
    bool _hasTime = false;
    bool _hasBorders = true;
    bool _hasNames = true;
    bool _isOk = false;
};

} // namespace globe
