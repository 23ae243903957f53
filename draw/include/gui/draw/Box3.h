#pragma once

#include <td/Export.h>

#include <glm/vec3.hpp>

#include <limits>

namespace gui::draw
{

/// A box in space with its edges along the axes: the bounds of what is in a model, in model units. A value, empty at
/// first.
///
///     draw::Box3 box;
///     for (const glm::dvec3& corner : corners)
///         box.add(corner);
struct GUIGL_API Box3
{
    glm::dvec3 min{std::numeric_limits<double>::infinity()};  ///< the least of each coordinate
    glm::dvec3 max{-std::numeric_limits<double>::infinity()}; ///< and the greatest

    /// Whether nothing is in it: some minimum above its maximum, or not a number. A box of one point isn't empty.
    bool isEmpty() const { return !(min.x <= max.x && min.y <= max.y && min.z <= max.z); }
    /// Whether it is not empty and its six numbers are finite.
    bool isFinite() const;

    /// Grows it by a point. One with a coordinate that is not finite is left out.
    void add(const glm::dvec3& point);
    /// Grows it by another box; nothing for an empty one.
    void add(const Box3& box);

    /// Its middle, and its extent along each axis; both 0 for an empty box.
    glm::dvec3 getCenter() const;
    glm::dvec3 getSize() const;
    /// Of the sphere about it: from its middle to each corner.
    double getRadius() const;
    /// Corner 0 to 7: bit 0 of the number takes x of the maximum, bit 1 its y, bit 2 its z.
    glm::dvec3 getCorner(unsigned int i) const;

    /// Whether a point is inside or on a face.
    bool contains(const glm::dvec3& point) const;

    /// Whether all six numbers are equal.
    bool operator==(const Box3&) const = default;
};

} // namespace gui::draw
