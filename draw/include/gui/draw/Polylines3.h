#pragma once

#include "Box3.h"
#include "Eye.h"
#include "Stroke.h"

#include <td/Color.h>
#include <td/Export.h>

#include <glm/vec3.hpp>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>

namespace gui::draw
{

/// Lines in space through points: orbits, routes, streamlines, axes, what was measured. Any number of them in one draw.
///
///     _lines.add(orbit, {.width = 2, .color = "#ffd166"}, draw::Polylines3::Ends::Joined);
///     ...
///     void drawScene(const draw::Eye& eye) override { _lines.draw(eye); }
///
/// A line is as wide on the screen wherever it is, with round joins, and smooth in contexts with and without samples.
/// What is before it hides it; draw surfaces first, since its rims are mixed with what is there. A line of one point is
/// a dot, a square with Cap::Square, and nothing with Cap::Butt. Parts that are behind the eye, or nearer than it sees,
/// are left out.
///
/// Lines have numbers, from 0 on, in the order in which they were added. Operations on a line that there is not change
/// nothing and return false. Coordinates are double, and drawn as exactly far from the origin as near it: see Eye.
///
/// What changes is uploaded with the next draw, and nothing else: turning the camera uploads nothing. It has GL objects
/// of its own, which are made anew in another context. Not copyable. Only what draws needs a context. GUI thread only.
class GUIGL_API Polylines3
{
public:
    /// What a line looks like.
    struct Look
    {
        double width = 1.5;               ///< in points; what is not above 0 is not seen
        td::Color color{28, 32, 40, 255}; ///< its alpha counts
        /// Lengths of dashes and of gaps, in model units along the line: they lie on it as it is turned. Solid unless
        /// both are above 0. Where they would be smaller than pixels, the line becomes fainter instead.
        double dash = 0;
        double gap = 0;        ///< see dash
        double dashOffset = 0; ///< where in the first dash, or gap, the line begins
        Cap cap = Cap::Round;  ///< of its ends, as they are seen; dashes are cut off

        bool operator==(const Look&) const = default;
    };

    /// Whether the last point is joined with the first, which is not repeated for that.
    enum class Ends : td::BYTE
    {
        Open,  ///< the line ends there
        Joined ///< from three points on
    };

    Polylines3();
    ~Polylines3();
    Polylines3(const Polylines3&) = delete;
    Polylines3& operator=(const Polylines3&) = delete;

    /// Appends a line. @param points  at least 1, in model units; read during the call only
    /// @return its number; empty, with nothing changed, after a log line: "Error! Polylines3::add: a line without
    ///         points!", "Error! Polylines3::add: point %zu is not finite, or beyond 1e30!", or "Error!
    ///         Polylines3::add: more than 2^28 points!"
    std::optional<std::size_t> add(std::span<const glm::dvec3> points, const Look& look, Ends ends = Ends::Open);
    /// In the look that lines have at first.
    std::optional<std::size_t> add(std::span<const glm::dvec3> points);
    /// Removes all.
    void clear();

    /// Gives a line's points other places.
    /// @param points  as many as it has
    /// @return false too, after "Error! Polylines3::setPoints: %zu points for a line of %zu!", or "Error!
    ///         Polylines3::setPoints: point %zu is not finite, or beyond 1e30!"
    bool setPoints(std::size_t line, std::span<const glm::dvec3> points);
    /// Gives a line a colour at each of its points, which go over into each other, in place of the look's.
    /// @param colors  one for each point; none for the look's again
    /// @return false too, after "Error! Polylines3::setColors: %zu colours for a line of %zu points!"
    bool setColors(std::size_t line, std::span<const td::Color> colors);
    bool setLook(std::size_t line, const Look& look);  ///< uploads 32 bytes
    bool setVisible(std::size_t line, bool isVisible); ///< uploads 16 bytes
    /// How much nearer all lines count than they are, in points: what lies on a surface is seen whole with some 2.
    /// 0 at first; what is not finite counts as 0.
    void setBias(double points);

    std::size_t getNumberOfLines() const;
    std::size_t getNumberOfPoints() const;       ///< of all lines
    const Look& getLook(std::size_t line) const; ///< of none that there is: what a line has at first
    bool isVisible(std::size_t line) const;      ///< false when there is no such line
    /// Around all points, of lines that are not visible too; empty when there are none. A little larger than that, by
    /// the rounding of floats.
    const Box3& getBounds() const;

    /// Draws into the framebuffer and viewport that are bound, which need a depth buffer of the eye's kind. GL's state
    /// is afterwards what it was, but for texture units 0 to 2.
    /// @return false, with a log line for each kind of reason once, when it could not: no context ("Error! %s without a
    ///         current GL context!"), "Error! Polylines3::draw: %s!" for a program that does not link and memory that
    ///         there is not. An eye that sees nothing is none
    bool draw(const Eye& eye);
    /// All lines in one colour, with its alpha, without smooth rims: for masks.
    bool drawColor(const Eye& eye, td::Color color);
    /// Each line in the colour that its number is: line 0 in first, red being the lowest byte. At least a pixel wide.
    /// See IdPicker.
    bool drawIds(const Eye& eye, std::uint32_t first = 1);

private:
    struct Impl;
    std::unique_ptr<Impl> _pImpl;
};

} // namespace gui::draw
