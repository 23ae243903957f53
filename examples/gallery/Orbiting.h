#pragma once

#include "Scene.h"

#include <gui/draw/DepthCanvas.h>
#include <gui/draw/DepthProbe.h>
#include <gui/draw/Model.h>
#include <gui/draw/OrbitCamera.h>
#include <gui/draw/OrbitControl.h>
#include <gui/draw/TriangleIndex.h>

#include <optional>

namespace gallery
{

/// A scene to turn about what is under the pointer, in depth that tells apart near and far.
class Orbiting : public Scene
{
public:
    explicit Orbiting(gui::draw::OrbitCamera::Up up = gui::draw::OrbitCamera::Up::Y)
        : _camera(up)
    {
    }

    void enter(Stage& stage) override;
    void draw(const Frame& frame) final;
    /// But what isForGallery.
    void onPointer(PointerEvent event, const gui::InputDevice& device) override;
    /// The arrows go from scene to scene.
    bool onKey(const gui::Key& key, bool isDown) override;
    void onTime(bool /*runs*/) override { _seconds = 0; }

protected:
    /// What is drawn, and what the pointer meets. @return whether it has no fault
    bool setMesh(const gui::draw::Mesh& mesh);
    /// What the model is before.
    virtual void drawBackground(const gui::draw::Eye& eye) = 0;
    /// What there is to see: the mesh's model.
    virtual void drawModel(const gui::draw::Eye& eye) { _model.draw(eye); }
    /// What is cut away of it, and not picked.
    void setClipping(const gui::draw::Clipping& clipping) { _clipping = clipping; }
    /// What it casts upon itself.
    void setShadows(const gui::draw::Shadows& shadows) { _canvas.setShadows(shadows, _camera.getBounds()); }
    /// What goes by the screen, when all of that is drawn.
    virtual void drawOver(const Frame& /*frame*/, const gui::draw::Eye& /*eye*/) {}
    /// What a drag turns about. This one asks the mesh.
    virtual std::optional<glm::dvec3> pick(const gui::draw::Ray& ray) const;
    /// What has both Shift and Ctrl is the gallery's.
    static bool isForGallery(const gui::InputDevice& device);
    void redraw(); ///< asks for another frame
    /// While time runs: goes round the target.
    void turn(double seconds, double degreesPerSecond);

    gui::draw::OrbitCamera _camera;
    gui::draw::Model _model;
    gui::draw::DepthProbe _probe;

private:
    gui::draw::Clipping _clipping;
    gui::draw::OrbitControl _control{_camera};
    gui::draw::DepthCanvas _canvas{gui::draw::Eye::Depth::Reversed}; // and smooth edges
    gui::draw::TriangleIndex _index;
    gui::draw::Eye _eye; // of the last frame
    Stage* _pStage = nullptr;
    double _seconds = 0;
};

} // namespace gallery
