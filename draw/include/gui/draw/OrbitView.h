#pragma once

#include "Clipping.h"
#include "DepthCanvas.h"
#include "DepthProbe.h"
#include "Eye.h"
#include "OrbitCamera.h"
#include "OrbitControl.h"
#include "Shadows.h"

#include <gui/gl/Framebuffer.h>
#include <gui/gl/View.h>

#include <td/Color.h>
#include <td/Export.h>
#include <td/Point.h>

#include <glm/vec3.hpp>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

namespace gui::draw
{

class DepthReader;

/// A view of a model to turn, to go nearer to and to click: viewers of meshes, parts, buildings, globes. A whole
/// program:
///
///     #include <gui/Application.h>
///     #include <gui/draw/OrbitView.h>
///     #include <gui/gl/gl.h>
///     using namespace gui::gl;
///
///     class BallView : public gui::draw::OrbitView
///     {
///         Lit3DProgram _program;
///         Buffer _ball{DataType::Vec3, DataType::Vec3}; // position, normal
///         void onInit() override
///         {
///             _program.link();
///             _ball.addSphere(1, 64, 32, Texture::Type::CubeMap)->setColor("#d04020");
///             fit({{-1, -1, -1}, {1, 1, 1}});
///         }
///         void drawScene(const gui::draw::Eye& eye) override { _program.draw(_ball, eye.getMatrix()); }
///     };
///
///     int main(int argc, char** argv)
///     {
///         gui::Application app(argc, argv);
///         BallView view;
///         view.createContext();
///         return app.run(view, "A ball", {640, 400});
///     }
///
/// Derive from it, draw the model in drawScene, and say in onInit what there is to see, with fit. OrbitControl says
/// what pointer, wheel and keys do. It draws when something changed and while the camera flies or glides; at rest there
/// is no frame and no wake-up. After a change of the model, or of the camera by the program, call reDraw.
class GUIGL_API OrbitView : public gl::View
{
public:
    /// @param up  which of the model's axes points upwards
    explicit OrbitView(OrbitCamera::Up up = OrbitCamera::Up::Y);
    ~OrbitView() override;

    /// Makes an OpenGL 4.1 core context with 24 bits of depth, 8 of stencil and 4 samples per pixel, for all kinds of
    /// input; with reversed depth the samples are its canvas' own. See View::createContext for what happens when there
    /// is none.
    void createContext();
    /// With a context of your own, which needs a depth buffer, for all kinds of input.
    void createContext(const gl::Context& context);
    using View::createContext;

    /// Shows a box whole: see OrbitCamera::fit. @return as that
    bool fit(const Box3& box, double margin = 30);
    /// The same in a flight.
    bool flyTo(const Box3& box, double margin = 30, double seconds = 0.6);
    /// Flies to where it looks from a side: see OrbitCamera::flyTo.
    void flyTo(OrbitCamera::Side side, double seconds = 0.5);

    /// To be set up, moved and asked; a flight that begins here begins with the next frame, see reDraw.
    OrbitCamera& camera() { return _camera; }
    const OrbitCamera& camera() const { return _camera; }
    /// What input does, and the axes in the corner.
    OrbitControl& control() { return _control; }
    const OrbitControl& control() const { return _control; }
    /// Tells what is behind the scene, for Labels3 and Dimensions3: `draw::Labels3 _labels{depthProbe()};`
    DepthProbe& depthProbe() { return _probe; }
    /// How it sees now, for rays and places outside of drawScene.
    Eye getEye() const;

    /// Usual at first. Reversed tells apart what is near and what is far as no usual depth buffer can, for a car on a
    /// globe: see DepthCanvas, which says too what takes its place where GL hasn't got it. Best before createContext.
    void setDepth(Eye::Depth depth);

    /// What is cut away of the model; nothing at first. What is drawn with the eye that drawScene gets keeps to it.
    void setClipping(const Clipping& clipping);
    const Clipping& getClipping() const { return _clipping; } ///< see setClipping

    /// What the scene casts upon itself; nothing at first. Its bounds are the camera's (see OrbitCamera::setBounds).
    void setShadows(const Shadows& shadows);

    /// What the model is before: one colour, or one at the top that goes over into another. "#f4f6f8" and "#c8d0d8" at
    /// first.
    void setBackground(td::Color color);
    void setBackground(td::Color top, td::Color bottom); ///< see the form above
    /// A sky in place of them, all around the model: it turns with it and never comes nearer. Without perspective it is
    /// seen as with it.
    /// @param faceSize  pixels along a quarter of the horizon; see gl::Textures::appendCubeMap
    /// @param color     what is seen in a direction of the model, a unit vector: red, green and blue, 0 to 1. Called
    ///                  before the next frame, and not again; an empty one for black
    void setSky(int faceSize, std::function<glm::vec3(const glm::vec3& direction)> color);

    /// Where the pointer is, in points; empty when it is elsewhere, or has not moved yet.
    const std::optional<td::Point<double>>& getPointer() const { return _pointer; }
    /// The keys that were held when the pointer last moved or a button was pressed or released, for those who select:
    ///
    ///     void onClicked(const Ray& ray) override
    ///     {
    ///         if (!gui::isControlKeyPressed(getModifiers()))
    ///             _selection.clear();
    ///         _selection.insert(partAt(ray));
    ///     }
    ///
    /// @return a mask that gui::isShiftPressed, isControlKeyPressed and isAltPressed take
    unsigned int getModifiers() const { return _modifiers; }

protected:
    /// Draws the model: with the context current, the background drawn, the depth buffer clear and its test on (nearer
    /// passes), and every other flag of Context off; leave them so. Called with an eye that sees a few pixels about the
    /// pointer, too, for pick, and several times with a depth in slices.
    virtual void drawScene(const Eye& eye) = 0;
    /// Draws what is before the model whatever its depth, texts and signs; the depth test is off. Below the axes.
    virtual void drawOver(const Eye& eye);

    /// The point of the model that a ray of the view's eye meets first: what drags and the wheel go about. This one
    /// draws a few pixels of the scene aside and reads their depth, which waits for the GPU; it takes what is up to
    /// four pixels beside, too. Where there is an index of the model, asking that is quicker and more exact.
    /// @return empty where nothing is
    virtual std::optional<glm::dvec3> pick(const Ray& ray);

    /// Called when the pointer has moved over the view with no button down, and empty when it has left.
    virtual void onPointed(const std::optional<Ray>& ray);
    /// Called when the primary button is pressed and released without a drag; getModifiers says with which keys.
    virtual void onClicked(const Ray& ray);
    /// Called when the camera is elsewhere than in the last frame, before the scene is drawn.
    virtual void onCameraMoved();

    void onDraw(const td::RectNormalized<double>& rect) override;
    /// An empty size changes nothing.
    void onResize(const td::Size<double>& size) override;
    /// Called before each frame of an animation, such as a flight, or one that was begun with startAnimation for what
    /// moves in the model.
    /// @param seconds  since the last time; a tenth at most, for the first one and after one that came late
    /// @return whether there is more to come; flights and glides go on without it
    virtual bool onAnimate(double seconds);

    /// Goes on with flights and glides, and calls onAnimate.
    bool prepareNextFrame() override;
    void onPrimaryButtonPressed(const InputDevice& device) override;
    void onPrimaryButtonReleased(const InputDevice& device) override;
    void onPrimaryButtonDblClick(const InputDevice& device) override;
    void onSecondaryButtonPressed(const InputDevice& device) override;
    void onSecondaryButtonReleased(const InputDevice& device) override;
    void onOtherButtonPressed(const InputDevice& device) override;
    void onOtherButtonReleased(const InputDevice& device) override;
    void onCursorMoved(const InputDevice& device) override;
    void onCursorDragged(const InputDevice& device) override;
    void onOtherDragged(const InputDevice& device) override;
    void onCursorExited(const InputDevice& device) override;
    bool onScroll(const InputDevice& device) override;
    bool onZoom(const InputDevice& device) override;
    bool onKeyPressed(const Key& key) override;

private:
    class Background;

    void showDrag();
    void press(const InputDevice& device);
    void drag(const InputDevice& device);
    void release(const InputDevice& device);

    OrbitCamera _camera;
    OrbitControl _control;
    std::shared_ptr<Background> _pBackground;
    DepthCanvas _canvas;
    Clipping _clipping;
    DepthProbe _probe{this};
    gl::Framebuffer _pickBuffer;
    std::unique_ptr<DepthReader> _pDepthReader;
    std::optional<td::Point<double>> _pointer;
    unsigned int _modifiers = 0;
    bool _isDragShown = false; // by the pointer
    OrbitCamera::Pose _drawn;
    std::chrono::steady_clock::time_point _lastFrame; // of an animation
};

} // namespace gui::draw
