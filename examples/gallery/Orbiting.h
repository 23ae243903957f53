#pragma once

#include "Scene.h"

#include <gui/draw/DepthCanvas.h>
#include <gui/draw/Mesh.h>
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
    /// Drags with both Shift and Ctrl are the gallery's.
    void onPointer(PointerEvent event, const gui::InputDevice& device) override;
    /// The arrows go from scene to scene.
    bool onKey(const gui::Key& key, bool isDown) override;
    void onTime(bool /*runs*/) override { _seconds = 0; }

protected:
    /// What the pointer meets. @return whether it has no fault
    bool setPickable(const gui::draw::Mesh& mesh);
    /// Goes on with flights, before anything is drawn. @return how it sees
    gui::draw::Eye prepare(const Frame& frame);
    /// While time runs: goes round the target.
    void turn(double seconds, double degreesPerSecond);

    gui::draw::DepthCanvas _canvas{gui::draw::Eye::Depth::Reversed}; // and smooth edges
    gui::draw::OrbitCamera _camera;
    gui::draw::OrbitControl _control{_camera};

private:
    gui::draw::TriangleIndex _index;
    gui::draw::Eye _eye; // of the last frame
    Stage* _pStage = nullptr;
    double _seconds = 0;
};

} // namespace gallery
