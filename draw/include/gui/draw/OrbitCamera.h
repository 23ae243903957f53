#pragma once

#include "Box3.h"
#include "Eye.h"

#include <td/Export.h>
#include <td/Point.h>
#include <td/Size.h>
#include <td/Types.h>

#include <glm/mat3x3.hpp>
#include <glm/vec2.hpp>
#include <glm/vec3.hpp>

#include <optional>

namespace gui::draw
{

/// A camera that goes about what it looks at: it turns, comes nearer, moves along and flies. A value without GL, input
/// and clock; see OrbitView for a view that has one, OrbitControl for what pointer and keys do to it.
///
///     draw::OrbitCamera camera;
///     camera.setSize({800, 600});
///     camera.fit(model.getBounds());
///     model.draw(camera.getEye());
///
/// It has a target in the middle of the view, at a distance before the eye, and looks there from an azimuth (0 in
/// front, 90 from the right) and an elevation (90 from above), in degrees. Without perspective the distance says how
/// much is seen: as much as with perspective at the target. Lengths are model units, places on the screen points from
/// the view's top left corner, y downwards.
///
/// What has a pivot keeps that point of the model where it is on the screen, to the last digits of double: turning,
/// zooming, and panning, which brings it where the pointer is. All three end a flight or a glide.
///
/// Flights and glides go on by advance, which is told how much time has passed: a frame more or less does not change
/// where they lead to. Input that is not finite changes nothing.
class GUIGL_API OrbitCamera
{
public:
    /// Which of the model's axes points upwards; x points to the right in front.
    enum class Up : td::BYTE
    {
        Y, ///< z points to who looks from the front, as in GL
        Z  ///< y points away, as on maps and in buildings
    };

    /// Whether what is farther looks smaller.
    enum class Projection : td::BYTE
    {
        Perspective,
        Orthographic
    };

    /// How it turns.
    enum class Turning : td::BYTE
    {
        Upright, ///< up stays up, from straight above to straight below
        Free     ///< any way, over the top and askew
    };

    /// Where to look from.
    enum class Side : td::BYTE
    {
        Front,
        Back,
        Left,
        Right,
        Top,
        Bottom,
        Corner ///< from the right, in front and above, along a cube's diagonal
    };

    /// All that it is seen from: to keep and to come back to.
    struct Pose
    {
        glm::dvec3 target{0};   ///< in the middle of the view
        glm::dmat3 rotation{1}; ///< as Eye has it: its rows are the eye's right, up and back
        double distance = 10;   ///< of the eye from the target

        /// Whether all numbers are equal.
        bool operator==(const Pose&) const = default;
    };

    /// Looks at the origin from the corner, from 10 away, with perspective.
    explicit OrbitCamera(Up up = Up::Y);

    /// @param size  of the view, in points. What was fitted last is fitted again, unless the camera was moved since. An
    ///              empty size changes nothing
    void setSize(const td::Size<double>& size);
    const td::Size<double>& getSize() const { return _size; } ///< in points; none at first

    /// How it sees now; before it has a size, an eye that sees nothing (Eye::isValid).
    /// @param scale  device pixels per point
    Eye getEye(double scale = 1, Eye::Depth depth = Eye::Depth::Usual) const;

    Up getUp() const { return _up; }
    /// Perspective at first. The target keeps its size.
    void setProjection(Projection projection);
    Projection getProjection() const { return _projection; }
    /// Upright at first. Upright from free, it is put upright.
    void setTurning(Turning turning);
    Turning getTurning() const { return _turning; }
    /// From the view's top to its bottom, above 0 and below 180 degrees (an assertion); 35 at first. The distance
    /// stays.
    void setFieldOfView(double degrees);
    double getFieldOfView() const { return _fieldOfView; } ///< in degrees

    /// What there is to see: nearest and farthest distance follow from the part of it that is in view, so that nothing
    /// of it is cut away, and as much of the depth buffer's precision as can be is used for it. Without bounds (an
    /// empty box, at first) it is seen from a hundredth of the target's distance to a hundred times that, without
    /// perspective as far before the target as behind it. Unless there
    /// are limits of the distance, the bounds set some: from 10^-7 of their radius to where they are four points large.
    /// @param box  ignored when it has numbers that are not finite
    void setBounds(const Box3& box);
    const Box3& getBounds() const { return _bounds; }

    /// Shows a box whole, its middle in the view's middle, as large as it can be from where it is looked at. Bounds
    /// grow to have it in them. Before there is a size it is done with the first one.
    /// @param margin  in points, left free on each side
    /// @return false, with nothing changed, for an empty box or one with numbers that are not finite, and when the
    ///         margin leaves no room
    bool fit(const Box3& box, double margin = 30);
    /// The same in a flight. @param seconds  not above 0, or before there is a size, it is fitted at once
    bool flyTo(const Box3& box, double margin = 30, double seconds = 0.6);
    /// Whether nobody has moved it since the last fit.
    bool isFitted() const { return _fit.has_value(); }

    /// Looks from a side, at the same target from the same distance; while it is fitted, it is fitted from there.
    void show(Side side);
    /// The same in a flight: it ends with the very numbers of show.
    void flyTo(Side side, double seconds = 0.5);
    /// Whether it looks from there now, to 10^-6 of a degree.
    bool isAt(Side side) const;

    /// Where it is now; in a flight, there.
    const Pose& getPose() const { return _pose; }
    /// Takes a pose over, within the limits. @return false, with nothing changed, when a number is not finite, the
    /// distance is not above 0 or the rotation none
    bool setPose(const Pose& pose);
    /// The same in a flight that looks short: out, along and in again. @return as setPose
    bool flyTo(const Pose& pose, double seconds = 0.6);

    /// Looks from a point at another. @return false, with nothing changed, when they are one or not finite
    bool look(const glm::dvec3& from, const glm::dvec3& at);
    /// Turns to an azimuth and an elevation, in degrees, about the target, within the limits; while it is fitted, it is
    /// fitted from there.
    void setDirection(double azimuth, double elevation);
    double getAzimuth() const;                                   ///< -180 to 180 degrees
    double getElevation() const;                                 ///< -90 to 90 degrees
    void setTarget(const glm::dvec3& target);                    ///< keeps direction and distance
    const glm::dvec3& getTarget() const { return _pose.target; } ///< in the middle of the view
    void setDistance(double distance);                    ///< of the eye from the target, above 0; within the limits
    double getDistance() const { return _pose.distance; } ///< of the eye from the target

    /// Turns about a point of the model. @param right, up  degrees that the eye goes to the right and up
    void turn(const glm::dvec3& pivot, double right, double up);
    /// Goes nearer to a point of the model, or away from it. @param factor  above 1 nearer, as InputDevice::getScale
    void zoom(const glm::dvec3& pivot, double factor);
    /// Goes along, parallel to the screen, until a point of the model is seen at a point of the view.
    void pan(const glm::dvec3& pivot, const td::Point<double>& to);
    /// Takes a point's distance for the target's, so that limits and speeds go by what is looked at. What is seen stays
    /// as it is. Nothing for a point behind the eye, and where the limits of the distance, or of the target, are
    /// against it.
    void focus(const glm::dvec3& point);
    /// What is seen at a point of the view, at the target's distance: the pivot where nothing is.
    glm::dvec3 getPlace(const td::Point<double>& point) const;

    /// Goes on turning, the more slowly the longer, until it rests. @param right, up  degrees a second at first
    void glide(const glm::dvec3& pivot, double right, double up);
    /// Goes on moving along. @param velocity  of the target, in model units a second at first
    void glide(const glm::dvec3& velocity);
    /// How long a glide takes to lose 63 % of its speed, in seconds; 0.16 at first, 0 for no glides.
    void setInertia(double seconds);
    double getInertia() const { return _inertia; } ///< in seconds; see setInertia

    /// Goes on with a flight or a glide. @param seconds  since the last call; nothing when it is not above 0
    /// @return whether there is more to come: without, no frame is needed until somebody moves it
    bool advance(double seconds);
    bool isMoving() const { return _flight || _glide; } ///< in a flight or a glide
    /// Stays where it is.
    void stop();

    /// How near and how far from the target it may be, 0 < min <= max (an assertion). They take effect at once, but for
    /// a flight under way.
    void setDistanceLimits(double min, double max);
    /// How far down and up it may look from, -90 <= min <= max <= 90 degrees (an assertion), and all of it at first. Of
    /// upright turning.
    void setElevationLimits(double min, double max);
    /// Where the target may be; anywhere with an empty box, as at first. Sides may be infinite; a box that has no
    /// finite point in it changes nothing.
    void setTargetLimits(const Box3& box);
    /// How near to a point of the model and how far from it the eye may be, 0 <= min <= max (an assertion);
    /// anywhere at first. Outside of a globe, say, or inside a room. A flight goes around what is too near. Where other
    /// limits are against it, it has the last word.
    void setEyeLimits(const glm::dvec3& center, double min, double max);

private:
    struct Fit
    {
        Box3 box;
        double margin;
    };
    struct Angles // of upright turning, in degrees
    {
        double azimuth;
        double elevation;
    };
    struct Flight
    {
        Pose from;
        Pose to;
        Angles anglesFrom;
        Angles anglesTo; // on the short way round
        std::optional<Fit> fit;
        double seconds;
        double elapsed;
    };
    struct Glide
    {
        bool isTurn;
        glm::dvec3 pivot;
        glm::dvec3 velocity; // degrees to the right and up, or model units, a second
    };
    struct Range
    {
        double min;
        double max;
    };
    struct EyeLimits
    {
        glm::dvec3 center;
        Range distance;
    };

    glm::dmat3 rotationOf(const Angles& angles) const;
    Angles anglesOf(const glm::dmat3& rotation) const;
    std::optional<Pose> poseOf(const Fit& fit, const glm::dmat3& rotation) const;
    Pose poseOf(Side side) const;
    static bool isPose(const Pose& pose);
    Pose taken(const Pose& pose) const;
    Pose within(Pose pose) const;
    Pose withEyeWithin(Pose pose) const;
    void fitAgain();
    Range distanceLimits() const;
    Range seenDistances(const glm::dvec3& position, Eye::Depth depth) const;
    void fly(const Pose& to, double seconds);
    Pose poseInFlight(double part) const;
    void turnBy(const glm::dvec3& pivot, double right, double up);
    void moved();
    double tangent() const; // of half the field of view

    Pose _pose;
    td::Size<double> _size;
    Box3 _bounds;
    Box3 _targetLimits;
    Range _elevationLimits{-90, 90};
    std::optional<Range> _distanceLimits;
    std::optional<EyeLimits> _eyeLimits;
    std::optional<Fit> _fit; // also one that waits for a size
    std::optional<Flight> _flight;
    std::optional<Glide> _glide;
    double _fieldOfView = 35;
    double _inertia = 0.16;
    Up _up;
    Projection _projection = Projection::Perspective;
    Turning _turning = Turning::Upright;
};

} // namespace gui::draw
