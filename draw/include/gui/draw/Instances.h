#pragma once

#include "Box3.h"
#include "Eye.h"
#include "Light.h"
#include "Mesh.h"

#include <td/Color.h>
#include <td/Export.h>

#include <glm/ext/quaternion_double.hpp>
#include <glm/vec3.hpp>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>

namespace gui::draw
{

/// One Mesh many times, each with a place, a turn, a size and a colour of its own: a hundred thousand and more in a few
/// draws. Trees, rocks, bolts, arrows of a field, bars.
///
///     _rocks.setMesh(makeRock());
///     _rocks.set(placements, colors);
///     ...
///     _rocks.setColor(hovered, "#ffb020"); // uploads 16 bytes
///     ...
///     void drawScene(const draw::Eye& eye) override { _rocks.draw(eye); }
///
/// They are lit as a Model is, with the mesh's normals, smooth and flat, and the materials of its parts; a material's
/// texture does not count, nor does its alpha. What is out of view is left out, by some hundreds that lie near each
/// other, and where a mesh of many triangles is seen from afar, a coarser one stands for it: see setTolerance.
///
/// Instances have numbers, from 0 on. Operations on one that there is not change nothing and return false. Places are
/// double, and drawn as exactly far from the origin as near it (see Eye); the mesh about them is one of floats.
///
/// What changes is uploaded with the next draw, and nothing else: turning the camera uploads nothing. It has GL objects
/// of its own, which are made anew in another context. Not copyable. Only what draws needs a context. GUI thread only.
class GUIGL_API Instances
{
public:
    /// From the mesh's coordinates to the model's: first its size changes, then it turns, then it moves.
    struct Placement
    {
        glm::dvec3 position{0};          ///< where the mesh's origin comes to
        glm::dquat rotation{1, 0, 0, 0}; ///< of any length but 0
        glm::dvec3 scale{1};             ///< along each of the mesh's axes; below 0 it is mirrored
    };

    Instances();
    ~Instances();
    Instances(const Instances&) = delete;
    Instances& operator=(const Instances&) = delete;

    /// What all of them are; those that there are go on with another mesh.
    /// @return false, with nothing changed, when the mesh has a fault: the log has "Error! Instances::setMesh: %s!" and
    ///         Mesh::findFault
    bool setMesh(const Mesh& mesh);

    /// Replaces all instances. @param placements  read during the call only, as colors are
    /// @param colors  one for each, times the colour of the mesh's material, in linear colours; none for white. Alpha
    ///                does not count
    /// @return false, with nothing changed, after a log line: "Error! Instances::set: placement %zu has no turn, or a
    ///         number that is not finite or beyond 1e30!", "Error! Instances::set: %zu colours for %zu placements!", or
    ///         "Error! Instances::set: more than 2^26 instances!"
    bool set(std::span<const Placement> placements, std::span<const td::Color> colors = {});
    /// Appends one. Many are quicker to draw, and quicker here, when they are set together.
    /// @return its number; empty after a log line, as set with "add" has it
    std::optional<std::size_t> add(const Placement& placement, td::Color color = td::ColorID::White);
    /// Removes all instances; the mesh stays.
    void clear();

    /// Moves one. @return false too, after a log line, as set with "setPlacement" has it
    bool setPlacement(std::size_t instance, const Placement& placement);
    /// The same of several that follow each other, all of them or none.
    bool setPlacements(std::size_t first, std::span<const Placement> placements);
    bool setPosition(std::size_t instance, const glm::dvec3& position);
    bool setRotation(std::size_t instance, const glm::dquat& rotation);
    bool setScale(std::size_t instance, const glm::dvec3& scale);
    bool setColor(std::size_t instance, td::Color color);
    bool setVisible(std::size_t instance, bool isVisible);

    /// The camera's own at first.
    void setLight(const Light& light);
    /// How large, in points, triangles of a coarser mesh may be that stand for smaller ones: see Model::setTolerance.
    /// 0.5 at first; 0 draws the mesh itself always.
    void setTolerance(double points);

    std::size_t size() const;
    /// As it was set; of none that there is: what one has at first.
    const Placement& getPlacement(std::size_t instance) const;
    td::Color getColor(std::size_t instance) const;
    bool isVisible(std::size_t instance) const;
    /// Around spheres about all instances, those that are not visible too; empty when there are none, or no mesh.
    const Box3& getBounds() const;

    /// Draws into the framebuffer and viewport that are bound, which need a depth buffer of the eye's kind. GL's state
    /// is afterwards what it was, but for texture unit 0.
    /// @return false, with a log line for each kind of reason once, when it could not: no context ("Error! %s without a
    ///         current GL context!"), "Error! Instances::draw: %s!" for a program that does not link and memory that
    ///         there is not. An eye that sees nothing is none
    bool draw(const Eye& eye);
    /// All surfaces in one colour, with its alpha, without light: for masks.
    bool drawColor(const Eye& eye, td::Color color);
    /// Each instance in the colour that its number is: instance 0 in first, red being the lowest byte. See IdPicker.
    bool drawIds(const Eye& eye, std::uint32_t first = 1);

private:
    struct Impl;
    std::unique_ptr<Impl> _pImpl;
};

} // namespace gui::draw
