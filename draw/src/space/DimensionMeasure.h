#pragma once

#include "DimensionPicture.h"

#include <glm/vec3.hpp>

#include <optional>
#include <string>

namespace gui::draw
{

/// What a dimension measures: where it is, how much, and how it says so. Empty where a number is not finite, or there
/// is nothing to measure.
struct DimensionMeasure
{
    DimensionShape shape;
    double value = 0; ///< in model units or degrees
    std::string words{};

    /// The part that lies along a direction.
    static std::optional<DimensionMeasure> linear(const glm::dvec3& from, const glm::dvec3& to, const glm::dvec3& along,
                                                  const glm::dvec3& offset, const DimensionStyle& style);
    static std::optional<DimensionMeasure> circle(const glm::dvec3& center, const glm::dvec3& axis, double radius,
                                                  const glm::dvec3& towards, const DimensionStyle& style,
                                                  bool isDiameter);
    static std::optional<DimensionMeasure> angle(const glm::dvec3& apex, const glm::dvec3& from, const glm::dvec3& to,
                                                 double radius, const DimensionStyle& style);
};

} // namespace gui::draw
