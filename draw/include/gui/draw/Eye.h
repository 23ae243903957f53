#pragma once

#include "Box3.h"
#include "Clipping.h"
#include "Ray.h"

#include <gui/gl/Context.h>

#include <td/Export.h>
#include <td/Point.h>
#include <td/RectNormalized.h>
#include <td/Size.h>
#include <td/Types.h>

#include <glm/mat3x3.hpp>
#include <glm/mat4x4.hpp>
#include <glm/vec3.hpp>

#include <memory>
#include <optional>

namespace gui::gl
{
class CameraView;
}

namespace gui::draw
{

class SpaceLayers;

/// How a camera sees at one moment: what is drawn, hidden, picked and left out follows from it. A value without GL.
///
/// An OrbitView hands one to drawScene, an OrbitCamera makes one, and so does any gl::CameraView:
///
///     void drawScene(const draw::Eye& eye) override
///     {
///         _program.setMVP(eye.getMatrix(_origin));   // for vertices stored as float distances from _origin
///         ...
///     }
///     void onPrimaryButtonPressed(const InputDevice& device) override
///     {
///         const draw::Ray ray = draw::Eye(*this).getRay(device.getFramePoint());
///         ...
///     }
///
/// Coordinates are double, and right to a fraction of a pixel however far from the model's origin the eye is: positions
/// are taken from the eye before anything else is done to them. Points of the screen are in points from the view's top
/// left corner, y downwards, as event records have them. Distances are model units straight before the eye (along the
/// direction it looks in, not along a ray): the same for all that is parallel to the screen.
///
/// The eye itself looks along -z with y up, as usual in GL. An eye whose size is empty, or which has a number that is
/// not finite, sees nothing (isValid): it projects nothing, and its rays start at its position and look straight ahead.
class GUIGL_API Eye
{
public:
    /// What the depth buffer holds.
    enum class Depth : td::BYTE
    {
        Usual,    ///< clip space z from -w to w, 0 in front and 1 behind; Less is nearer
        Reversed, ///< clip space z from w in front to 0 behind, and so in the buffer, of floats; Greater is nearer
        Sliced    ///< as Usual, from very near to very far: to be drawn in slices, see DepthCanvas
    };

    /// Straight ahead from the origin, with no size: sees nothing.
    Eye() = default;

    /// @param position    where it is, in model units
    /// @param rotation    from the model's axes to the eye's, orthonormal: its rows are the eye's right, up and back
    /// @param projection  from the eye's axes to clip space, as glm::perspective or glm::ortho make it for Depth::Usual
    /// @param size        of the view, in points
    /// @param scale       device pixels per point
    Eye(const glm::dvec3& position, const glm::dmat3& rotation, const glm::dmat4& projection,
        const td::Size<double>& size, double scale = 1, Depth depth = Depth::Usual);

    /// How a view sees through its flying camera now; without a camera, from the origin along -z.
    explicit Eye(const gl::CameraView& view);

    /// Whether it can see: its numbers are finite, its size is not empty.
    bool isValid() const { return _isValid; }

    /// In model units.
    const glm::dvec3& getPosition() const { return _position; }
    /// From the model's axes to the eye's.
    const glm::dmat3& getRotation() const { return _rotation; }
    /// Of length 1, in the model: where the eye's right, its up, and what it looks at are.
    glm::dvec3 getRight() const;
    glm::dvec3 getUp() const;
    glm::dvec3 getDirection() const;
    /// From the eye's axes to clip space.
    const glm::dmat4& getProjection() const { return _projection; }
    /// From the model to the eye's axes. For shaders see getMatrix.
    glm::dmat4 getView() const;
    /// Of the view, in points; and device pixels per point.
    const td::Size<double>& getSize() const { return _size; }
    double getScale() const { return _scale; }
    Depth getDepth() const { return _depth; } ///< see Depth
    /// What is cut away of all that it sees; nothing at first. It is the model's: for pictures that show the model as
    /// the eye does, and for its parts too (getPart, getBetween).
    const Clipping& getClipping() const { return _clipping; }
    void setClipping(const Clipping& clipping) { _clipping = clipping; } ///< see getClipping
    /// What a fragment passes the depth test with that is nearer than what is there: Less, or Greater where the depth
    /// is reversed; and with one as near.
    gl::DepthBuffer::Function getNearer() const;
    gl::DepthBuffer::Function getNearerOrEqual() const; ///< see getNearer
    /// Whether all of it is seen at the same size, however far it is.
    bool isOrthographic() const;

    /// For shaders: from distances from an origin to clip space, multiplied in double. What is left is the rounding of
    /// the vertices themselves: at some 10^6 pixels from the origin, floats are right to a tenth of a pixel. Take an
    /// origin in their midst.
    /// @param origin  in model units
    glm::mat4 getMatrix(const glm::dvec3& origin = glm::dvec3(0)) const;
    /// The same to the eye's axes, for shaders that compute light or fog there.
    glm::mat4 getViewMatrix(const glm::dvec3& origin = glm::dvec3(0)) const;

    /// What lies under a point of the view: from the nearest distance that is seen, straight away from the eye.
    Ray getRay(const td::Point<double>& point) const;

    /// Where a point of the model is on the screen: x and y in points, z its distance. Points out of the view have a
    /// place beyond its size. Empty behind the eye in perspective, and where a number is not finite.
    std::optional<glm::dvec3> project(const glm::dvec3& point) const;

    /// The other way. @param point  in points  @param distance  as project's z
    glm::dvec3 unproject(const td::Point<double>& point, double distance) const;

    /// How far before the eye a point of the model is; below 0 behind it.
    double getDistance(const glm::dvec3& point) const;
    /// The same of what the depth buffer has. @param depth  0 to 1, as the buffer has it
    double getDistanceOfDepth(double depth) const;
    /// Nearest and farthest distance that is seen; the farthest may be infinite, the nearest below 0 without a
    /// perspective.
    double getNearest() const;
    double getFarthest() const;

    /// Model units per point of the screen, at a point of the model's distance: what makes a symbol there as large as
    /// its size in points. 0 behind the eye in perspective.
    double getSizeAt(const glm::dvec3& point) const;

    /// Whether some of a box may be seen: true whenever it is, and now and then when it is just beside the view. False
    /// for an empty box, and one that is cut away.
    bool sees(const Box3& box) const;

    /// The eye that sees a rectangle of this one's view, and nothing else: for a lasso's frustum, the picture of a few
    /// pixels about the pointer, or a large picture in tiles. Its size is the rectangle's.
    /// @param rect  in points; may reach beyond the view
    Eye getPart(const td::RectNormalized<double>& rect) const;
    /// The eye that sees what is between two distances, and nothing else: with a depth buffer that is used for these
    /// alone. Its depth is Usual instead of Sliced.
    /// @param nearest, farthest  one above the other; with a perspective above 0, and the farthest may be infinite
    Eye getBetween(double nearest, double farthest) const;

private:
    friend class DepthCanvas;
    friend class Model;
    friend class SpacePainter;

    glm::dvec3 toEye(const glm::dvec3& point) const { return _rotation * (point - _position); }

    glm::dvec3 _position{0};
    glm::dmat3 _rotation{1};
    glm::dmat4 _projection{1};
    td::Size<double> _size;
    Clipping _clipping;
    std::weak_ptr<SpaceLayers> _pLayers; // what waits until all else is drawn, in a DepthCanvas::Frame
    double _scale = 1;
    Depth _depth = Depth::Usual;
    bool _isValid = false;
};

} // namespace gui::draw
