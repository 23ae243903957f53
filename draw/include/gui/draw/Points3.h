#pragma once

#include "Box3.h"
#include "Eye.h"
#include "Light.h"
#include "Unit.h"

#include <td/Color.h>
#include <td/Export.h>
#include <td/Types.h>

#include <glm/vec3.hpp>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

namespace gui::draw
{

/// Points in space, a million or more in one draw: discs that face the viewer, or spheres in the light. Scans, stars,
/// atoms, marks.
///
///     _atoms.setLook({.shape = draw::Points3::Shape::Sphere, .size = 2.4, .unit = draw::Unit::Model});
///     _atoms.set(places, colors);
///     ...
///     void drawScene(const draw::Eye& eye) override { _atoms.draw(eye); }
///
/// They are smooth in contexts with and without samples, and hidden by what is before them; draw surfaces first, since
/// their rims are mixed with what is there. A sphere is one to the pixel, at every size and with perspective, and where
/// it goes through something else, both are seen to where they meet. What is smaller than a pixel gets fainter. A point
/// whose middle is nearer than the eye sees is left out.
///
/// Points have numbers, from 0 on. Operations on one that there is not change nothing and return false. Coordinates are
/// double, and drawn as exactly far from the origin as near it: see Eye. 32 bytes for each, here and in GL.
///
/// What changes is uploaded with the next draw, and nothing else: turning the camera uploads nothing. It has GL objects
/// of its own, which are made anew in another context. Not copyable. Only what draws needs a context. GUI thread only.
class GUIGL_API Points3
{
public:
    /// What a point is seen as.
    enum class Shape : td::BYTE
    {
        Disc,  ///< flat, in its colour
        Sphere ///< lit
    };

    /// What all points look like.
    struct Look
    {
        Shape shape = Shape::Disc;
        double size = 4;          ///< the diameter; what is not above 0 is not seen
        Unit unit = Unit::Points; ///< of size
        /// Of spheres: see Material::shininess.
        double shininess = 0.3;

        bool operator==(const Look&) const = default;
    };

    Points3();
    ~Points3();
    Points3(const Points3&) = delete;
    Points3& operator=(const Points3&) = delete;

    /// Replaces all. @param places  in model units; all are read during the call only
    /// @param colors  one for each, or one for all; none for a dark grey
    /// @param sizes   for each how large it is, in sizes of the look; none for 1. What is not above 0 is not seen
    /// @return false, with nothing changed, after a log line: "Error! Points3::set: point %zu is not finite, or beyond
    ///         1e30!", "Error! Points3::set: %zu colours and %zu sizes for %zu points!", or "Error! Points3::set: more
    ///         than 2^28 points!"
    bool set(std::span<const glm::dvec3> places, std::span<const td::Color> colors = {},
             std::span<const float> sizes = {});
    /// The same from floats. @param origin  is added to each, in double
    bool set(std::span<const glm::vec3> places, std::span<const td::Color> colors = {},
             std::span<const float> sizes = {}, const glm::dvec3& origin = glm::dvec3(0));
    /// Removes all.
    void clear();

    /// @return false too, after "Error! Points3::setPlace: point %zu is not finite, or beyond 1e30!"
    bool setPlace(std::size_t point, const glm::dvec3& place);
    bool setColor(std::size_t point, td::Color color);
    bool setSize(std::size_t point, double size); ///< in sizes of the look

    void setLook(const Look& look); ///< uploads nothing
    /// Of spheres: the camera's own at first.
    void setLight(const Light& light);
    /// How much nearer all points count than they are, in points: see Polylines3::setBias.
    void setBias(double points);

    std::size_t size() const;
    const Look& getLook() const;
    /// Around all places; empty when there are none. A little larger than that, by the rounding of floats.
    const Box3& getBounds() const;

    /// Draws into the framebuffer and viewport that are bound, which need a depth buffer of the eye's kind. GL's state
    /// is afterwards what it was, but for texture unit 0.
    /// @return false, with a log line for each kind of reason once, when it could not: no context ("Error! %s without a
    ///         current GL context!"), "Error! Points3::draw: %s!" for a program that does not link and memory that
    ///         there is not. An eye that sees nothing is none
    bool draw(const Eye& eye);
    /// All points in one colour, with its alpha, without light and smooth rims: for masks.
    bool drawColor(const Eye& eye, td::Color color);
    /// Each point in the colour that its number is: point 0 in first, red being the lowest byte. At least a pixel
    /// large. See IdPicker.
    bool drawIds(const Eye& eye, std::uint32_t first = 1);

private:
    struct Impl;
    std::unique_ptr<Impl> _pImpl;
};

} // namespace gui::draw
