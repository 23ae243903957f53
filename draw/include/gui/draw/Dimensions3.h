#pragma once

#include "DepthProbe.h"
#include "DimensionStyle.h"
#include "Drawing.h"
#include "Eye.h"

#include <td/Export.h>

#include <glm/vec3.hpp>

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace gui::draw
{

struct DimensionMeasure;

/// Dimensions of a model, as drawings of parts have them: they lie in space, are as thin and as legible from near and
/// from afar, and tell what they measure.
///
///     class PartView : public gui::draw::OrbitView
///     {
///         gui::draw::Model _model;
///         gui::draw::Dimensions3 _dimensions{depthProbe()};
///         void onInit() override
///         {
///             ...
///             const gui::draw::DimensionStyle style{.decimals = 1, .unit = " mm"};
///             _dimensions.addLinear({0, 0, 0}, {40, 0, 0}, {0, -8, 0}, style);
///             _dimensions.addDiameter({20, 10, 5}, {0, 0, 1}, 6, {1, 1, 0}, style);
///         }
///         void drawScene(const gui::draw::Eye& eye) override { _model.draw(eye); }
///         void drawOver(const gui::draw::Eye& eye) override { _dimensions.draw(eye); }
///     };
///
/// Lines are drawn where they are in space; arrows and texts face the viewer and have their size in points. Where a
/// line is too short on the screen for its arrows, they stand outside and point inwards, and where it is too short for
/// its text, that stands beyond its second end. What is seen end-on is not drawn.
///
/// A dimension is behind something where the middle of its line, or the points of a circle that it points at, are: a
/// DepthProbe finds out. One of which a measured point is cut away (Eye::getClipping) is not drawn. Two hundred
/// dimensions take half a millisecond in a frame that moves them; nothing is uploaded in one that does not. Not
/// copyable. GUI thread only; only draw needs a context.
class GUIGL_API Dimensions3
{
public:
    using ID = std::uint64_t; ///< names a dimension, and is not given twice; 0 is none

    /// Dimensions that nothing hides.
    Dimensions3();
    /// @param probe  must outlive the dimensions; OrbitView::depthProbe() for one
    explicit Dimensions3(DepthProbe& probe);
    ~Dimensions3();
    Dimensions3(const Dimensions3&) = delete;
    Dimensions3& operator=(const Dimensions3&) = delete;

    /// All of these take points and directions in model units, and return 0, with nothing added, where a number is not
    /// finite, or there is nothing to measure.
    ///
    /// The distance between two points, on a line beside them. @param offset  from the points to the ends of the line
    ID addLinear(const glm::dvec3& from, const glm::dvec3& to, const glm::dvec3& offset,
                 const DimensionStyle& style = {});
    /// The part of it that lies along a direction, such as the height of something inclined.
    /// @param along   of any length but 0  @param offset  from `from` to that end of the line
    ID addLinearAlong(const glm::dvec3& from, const glm::dvec3& to, const glm::dvec3& along, const glm::dvec3& offset,
                      const DimensionStyle& style = {});
    /// A circle's radius, on a line from its middle: "R 12".
    /// @param axis     through its middle  @param towards  where the line goes; its part across the axis counts
    ID addRadius(const glm::dvec3& center, const glm::dvec3& axis, double radius, const glm::dvec3& towards,
                 const DimensionStyle& style = {});
    /// Its diameter, on a line through its middle: "⌀ 24". See addRadius.
    ID addDiameter(const glm::dvec3& center, const glm::dvec3& axis, double radius, const glm::dvec3& towards,
                   const DimensionStyle& style = {});
    /// The angle between two directions, on an arc about the point where they meet: "45°". More than 0 and less than
    /// 180 degrees.
    ID addAngle(const glm::dvec3& apex, const glm::dvec3& from, const glm::dvec3& to, double radius,
                const DimensionStyle& style = {});

    /// Whether it may be shown at all, as it may at first. @return false for an id that names nothing
    bool setWanted(ID id, bool isWanted);
    bool remove(ID id); ///< likewise
    void clear();       ///< removes all

    /// How much of a dimension with Behind::Fade is seen when something is before it; 0.3 at first.
    void setFaintness(double opacity);

    /// Draws them: in OrbitView::drawOver, or else where the depth test is off.
    /// @param eye  the whole view's
    /// @return false, with a log line, when Drawing::draw could not
    bool draw(const Eye& eye);

    std::size_t getNumberOfDimensions() const; ///< shown or not
    bool isShown(ID id) const;                 ///< whether it was drawn last, faint ones included
    bool isFaint(ID id) const;                 ///< whether it shone through something
    /// What is measured, in model units or degrees; 0 for an id that names nothing.
    double getValue(ID id) const;
    /// What it says; empty for an id that names nothing.
    std::string getText(ID id) const;

private:
    struct Dimension;
    struct Shapes;

    const Dimension* find(ID id) const;
    ID add(std::optional<DimensionMeasure>&& measure, const DimensionStyle& style,
           std::initializer_list<glm::dvec3> probed);
    ID addCircle(const glm::dvec3& center, const glm::dvec3& axis, double radius, const glm::dvec3& towards,
                 const DimensionStyle& style, bool isDiameter);
    void addShapes(Dimension& dimension);
    bool isHidden(const Dimension& dimension) const;

    std::array<Drawing, 2> _drawings; // clear, faint
    DepthProbe* _pProbe = nullptr;
    std::vector<Dimension> _dimensions;
    std::unordered_map<ID, std::size_t> _indices; // of dimensions
    ID _lastID = 0;
};

} // namespace gui::draw
