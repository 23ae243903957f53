#pragma once

#include "Globe.h"
#include "OrbitView.h"

#include <td/Export.h>

#include <optional>

namespace gui::draw
{

/// A view of a Globe to turn and to come near to, from space down to the ground. A whole program, whose model is as
/// large as the globe:
///
///     #include <gui/Application.h>
///     #include <gui/draw/GlobeView.h>
///     #include <gui/gl/gl.h>
///     using namespace gui::gl;
///
///     class MoonView : public gui::draw::GlobeView
///     {
///         Lit3DProgram _program;
///         Buffer _ball{DataType::Vec3, DataType::Vec3}; // position, normal
///         void onInit() override
///         {
///             _program.link();
///             _ball.addSphere(1, 128, 64, Texture::Type::CubeMap)->setColor("#a0a0a8");
///             look({0, 20}, 2, {0, 10});
///         }
///         void drawScene(const gui::draw::Eye& eye) override { _program.draw(_ball, eye.getMatrix()); }
///     };
///
///     int main(int argc, char** argv)
///     {
///         gui::Application app(argc, argv);
///         MoonView view;
///         view.createContext();
///         return app.run(view, "The moon", {640, 640});
///     }
///
/// OrbitControl says what pointer, wheel and keys do, with this that is a globe's: from higher than 0.6 radii above the
/// ground drags turn about the middle, and below that about what is under the pointer; the wheel and a pinch go to what
/// is there from everywhere, and a double click flies to above it. The eye stays within limits of its height, in
/// flights too. There are no axes in the corner, unless control().setGizmo says otherwise.
class GUIGL_API GlobeView : public OrbitView
{
public:
    /// The camera's bounds are the globe's; give it larger ones where the model has air, or mountains.
    explicit GlobeView(const Globe& globe = {});
    ~GlobeView() override;

    const Globe& getGlobe() const { return _globe; } ///< as it was given

    /// How high the eye may be, 0 < lowest <= highest (an assertion), in model units: a hundredth of the radius and
    /// eight radii at first.
    void setHeightLimits(double lowest, double highest);

    /// Where the eye is.
    Globe::Place getPlace() const { return _globe.getPlace(getEye().getPosition()); }
    double getHeight() const { return _globe.getHeight(getEye().getPosition()); } ///< above the ground, in model units

    /// Looks from above a place at another, within the limits.
    /// @param towards  on the ground, in the middle of the view
    /// @param seconds  of a flight there; 0 for none
    /// @return false, with nothing changed, when a number is not finite, or both are one point
    bool look(const Globe::Place& over, double height, const Globe::Place& towards, double seconds = 0);

protected:
    /// Called with what is under the pointer, when that has moved, or the globe has moved under it: then with the next
    /// frame, before that is drawn. Empty in the sky, and when the pointer has left. A click calls it too, since
    /// fingers have no other way to point.
    virtual void onPlacePointed(const std::optional<Globe::Place>& place);

    /// Knows the ground; override it where there are mountains.
    std::optional<glm::dvec3> pick(const Ray& ray) override;
    void onPointed(const std::optional<Ray>& ray) override;
    void onClicked(const Ray& ray) override;
    void onCameraMoved() override;
    void onPrimaryButtonDblClick(const InputDevice& device) override;
    bool onScroll(const InputDevice& device) override;
    bool onZoom(const InputDevice& device) override;

private:
    Globe _globe;
    double _lowest = 0;
    bool _isGoingNearer = false; // to what is under the pointer
};

} // namespace gui::draw
