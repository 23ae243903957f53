#pragma once

#include "Scene.h"

#include <gui/draw/DepthCanvas.h>
#include <gui/draw/Model.h>
#include <gui/draw/OrbitCamera.h>
#include <gui/draw/OrbitControl.h>
#include <gui/draw/TriangleIndex.h>

namespace gallery
{

/// A scene to turn about what is under the pointer, in depth that tells apart near and far.
class Orbiting : public Scene
{
public:
    void enter(Stage& stage) override;
    void draw(const Frame& frame) final;
    /// Drags with both Shift and Ctrl are the gallery's.
    void onPointer(PointerEvent event, const gui::InputDevice& device) override;
    /// The arrows go from scene to scene.
    bool onKey(const gui::Key& key, bool isDown) override;
    void onTime(bool /*runs*/) override { _seconds = 0; }

protected:
    /// What is drawn, and what the pointer meets. @return whether it has no fault
    bool setMesh(const gui::draw::Mesh& mesh);
    /// What the model is before.
    virtual void drawBackground(const gui::draw::Eye& eye) = 0;
    /// While time runs: goes round the target.
    void turn(double seconds, double degreesPerSecond);

    gui::draw::OrbitCamera _camera;
    gui::draw::Model _model;

private:
    gui::draw::OrbitControl _control{_camera};
    gui::draw::DepthCanvas _canvas{gui::draw::Eye::Depth::Reversed}; // and smooth edges
    gui::draw::TriangleIndex _index;
    gui::draw::Eye _eye; // of the last frame
    Stage* _pStage = nullptr;
    double _seconds = 0;
};

} // namespace gallery
