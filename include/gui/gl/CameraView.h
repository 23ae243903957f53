#pragma once

#include "View.h"

#include <td/Export.h>
#include <td/Size.h>

#include <glm/mat4x4.hpp>

namespace gui::gl
{

class Camera;

/// A view of a 3D scene in perspective, seen through a camera that the user flies.
///
/// Derive from it, give it a camera, and draw with _perspective * getCameraMatrix() * model. Keys, wheel, pinches and
/// movement of the pointer with Shift held and no button down go to the camera; when one of them changed what is seen,
/// the view asks for a redraw. The camera's zoom factor narrows the field of view.
class GUIGL_API CameraView : public View
{
public:
    CameraView() = default;
    ~CameraView() override;

    /// Makes the context, with keys, buttons, movement, wheel and gestures as input. Movement with the primary
    /// button down is a drag, which is not asked for and does nothing to the camera: see View's form for a list of
    /// one's own, and onCursorDragged.
    void createContext(const Context& context);
    using View::createContext;

    /// @param pCamera  not owned, must live as long as it is set; null for none
    void setCamera(Camera* pCamera);
    Camera* getCamera() const { return _camera; }

    /// The camera's zoom factor; 1 without a camera.
    float getFieldOfViewScale() const;

    /// From the world to the eye, as the camera is now; the identity without a camera.
    glm::mat4 getCameraMatrix() const;
    /// From the eye to clip space: what scaleFieldOfView computed last; the identity before the view had a size.
    const glm::mat4& getPerspective() const { return _perspective; }

    /// Sets the vertical field of view at zoom factor 1, above 0 and below 180 degrees (an assertion); 45 at first.
    void setFieldOfView(float degrees);
    /// Sets the distances of what is seen, 0 < nearest < farthest (an assertion); 0.01 and 100 at first.
    void setDepthRange(float nearest, float farthest);

    /// Computes _perspective anew. Nothing before the view has a size, and when the result would not be finite.
    /// @param scale  what divides the field of view
    virtual void scaleFieldOfView(float scale);

protected:
    bool onKeyPressed(const gui::Key& key) override;
    bool onKeyReleased(const gui::Key& key) override;
    bool onZoom(const gui::InputDevice& device) override;
    /// Fn makes it three times as fast.
    bool onScroll(const gui::InputDevice& device) override;
    void onCursorMoved(const gui::InputDevice& device) override;
    /// Nothing: panning ends with the first movement without Shift.
    void onCursorExited(const gui::InputDevice& device) override;
    /// An empty size changes nothing.
    void onResize(const td::Size<double>& size) override;

    glm::mat4 _perspective{1}; ///< from the eye to clip space, depth from -1 to 1

private:
    td::Size<float> _size;
    Camera* _camera = nullptr;
    float _fieldOfView = 45;
    float _near = 0.01F;
    float _far = 100;
};

} // namespace gui::gl
