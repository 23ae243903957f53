#pragma once

#include "Box3.h"

#include <td/Export.h>
#include <td/Types.h>

#include <glm/vec3.hpp>
#include <glm/vec4.hpp>

#include <array>
#include <cstddef>

namespace gui::draw
{

/// What of a model is cut away to see what is inside: up to six planes. A value.
///
///     view.setClipping(Clipping({0, 0, 0}, {1, 0, 0}));    // what has an x above 0 stays
///
///     Clipping quarter(Clipping::Kind::Notch);             // a quarter is cut out
///     quarter.add({0, 0, 0}, {-1, 0, 0});
///     quarter.add({0, 0, 0}, {0, 0, -1});
///     view.setClipping(quarter);
///
/// An Eye has one, and what the library draws in space keeps to it, as do picking and ids. Models close their cuts (see
/// Model::setSection).
class GUIGL_API Clipping
{
public:
    /// What planes are to each other.
    enum class Kind : td::BYTE
    {
        Cut,  ///< what is before all of them stays: each cuts something off
        Notch ///< what is behind all of them goes: together they cut a corner out
    };

    /// A plane, and what is before it: where its normal points to.
    struct Plane
    {
        glm::dvec3 point{0};        ///< on the plane, in model units
        glm::dvec3 normal{0, 0, 1}; ///< of length 1

        /// From the plane, in model units; below 0 behind it.
        double getDistance(const glm::dvec3& place) const;
        bool operator==(const Plane&) const = default; ///< whether all their numbers are equal
    };

    static constexpr std::size_t cMostPlanes = 6; ///< that it takes

    /// Without a plane nothing is cut away, whatever the kind.
    explicit Clipping(Kind kind = Kind::Cut)
        : _kind(kind)
    {
    }
    /// One plane: see add.
    Clipping(const glm::dvec3& point, const glm::dvec3& normal) { add(point, normal); }
    /// What is in a box stays, or goes with Kind::Notch. An empty box, and one with an infinite side, is no clipping.
    explicit Clipping(const Box3& box, Kind kind = Kind::Cut);

    /// Adds a plane. @param normal  of any length but 0
    /// @return false, with nothing added, when there are six, a number is not finite, or the normal is 0
    bool add(const glm::dvec3& point, const glm::dvec3& normal);
    /// Moves one along its normal. @param by  in model units
    /// @return false, with nothing changed, when there is no such plane or the number is not finite
    bool move(std::size_t plane, double by);
    void clear() { _nPlanes = 0; } ///< removes all planes

    Kind getKind() const { return _kind; }
    void setKind(Kind kind) { _kind = kind; } ///< see Kind
    std::size_t getNumberOfPlanes() const { return _nPlanes; }
    bool isEmpty() const { return _nPlanes == 0; }                    ///< whether there is no plane
    const Plane& getPlane(std::size_t i) const { return _planes[i]; } ///< below getNumberOfPlanes()
    /// Whether the cut face that lies in a plane is there at a point of it, as the other planes have it.
    bool isOnFace(std::size_t plane, const glm::dvec3& point) const;

    /// Whether a point stays; one on a plane does.
    bool isSeen(const glm::dvec3& point) const;
    /// Whether some of a box stays: true whenever it does, and now and then when it does not.
    bool isSeen(const Box3& box) const;

    /// For shaders: what a plane's distance is at a distance from an origin: dot(xyz, distance) + w.
    glm::vec4 getEquation(std::size_t plane, const glm::dvec3& origin) const;

    /// Whether they are of one kind and have the same planes.
    bool operator==(const Clipping& other) const;

private:
    std::array<Plane, cMostPlanes> _planes;
    std::size_t _nPlanes = 0;
    Kind _kind = Kind::Cut;
};

} // namespace gui::draw
