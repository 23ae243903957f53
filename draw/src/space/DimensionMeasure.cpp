#include "DimensionMeasure.h"

#include "ScreenSigns.h"

#include <glm/geometric.hpp>
#include <glm/trigonometric.hpp>

#include <algorithm>
#include <charconv>
#include <cmath>

namespace gui::draw
{

namespace
{

constexpr double cSmallest = 1e-9; // of a direction's sine, to tell it from another one

bool areFinite(std::initializer_list<glm::dvec3> points)
{
    return std::all_of(points.begin(), points.end(), ScreenSigns::isFinite);
}

// As short as the style has it, with a point whatever the locale.
std::string numberOf(double value, const DimensionStyle& style)
{
    char text[400];
    const auto [pEnd, error] =
        std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, std::clamp(style.decimals, 0, 12));
    std::string number(text, error == std::errc() ? pEnd : text);
    if (!style.keepsZeros && number.find('.') != std::string::npos)
    {
        number.erase(number.find_last_not_of('0') + 1);
        if (number.back() == '.')
            number.pop_back();
    }
    return number;
}

std::string wordsOf(const DimensionStyle& style, const char* sign, double value, const std::string& unit)
{
    return style.label.empty() ? style.prefix + sign + numberOf(value, style) + unit : style.label;
}

} // namespace

std::optional<DimensionMeasure> DimensionMeasure::linear(const glm::dvec3& from, const glm::dvec3& to,
                                                         const glm::dvec3& along, const glm::dvec3& offset,
                                                         const DimensionStyle& style)
{
    const double length = glm::length(along);
    if (!areFinite({from, to, along, offset}) || !(length > 0) || !std::isfinite(length))
        return std::nullopt;
    const glm::dvec3 way = along / length;
    const double measured = glm::dot(to - from, way);
    if (measured == 0)
        return std::nullopt;
    DimensionMeasure measure;
    measure.value = std::abs(measured);
    measure.words = wordsOf(style, "", measure.value * style.factor, style.unit);
    measure.shape.measured = {from, to};
    measure.shape.ends = {from + offset, from + offset + measured * way};
    measure.shape.hasExtensions = style.hasExtensions;
    return measure;
}

std::optional<DimensionMeasure> DimensionMeasure::circle(const glm::dvec3& center, const glm::dvec3& axis,
                                                         double radius, const glm::dvec3& towards,
                                                         const DimensionStyle& style, bool isDiameter)
{
    if (!areFinite({center, axis, towards}) || !(radius > 0) || !std::isfinite(radius))
        return std::nullopt;
    const double length = glm::length(axis);
    const glm::dvec3 up = length > 0 ? axis / length : glm::dvec3(0);
    const glm::dvec3 across = towards - glm::dot(towards, up) * up;
    if (!(glm::length(across) > cSmallest * glm::length(towards)) || !(length > 0))
        return std::nullopt;
    const glm::dvec3 way = radius * glm::normalize(across);
    DimensionMeasure measure;
    measure.value = isDiameter ? 2 * radius : radius;
    measure.words = wordsOf(style, isDiameter ? "\u2300 " : "R ", measure.value * style.factor, style.unit);
    measure.shape.measured = {isDiameter ? center - way : center + way, center + way};
    measure.shape.ends = {isDiameter ? center - way : center, center + way};
    measure.shape.hasArrow = {isDiameter, true};
    return measure;
}

std::optional<DimensionMeasure> DimensionMeasure::angle(const glm::dvec3& apex, const glm::dvec3& from,
                                                        const glm::dvec3& to, double radius,
                                                        const DimensionStyle& style)
{
    const double fromLength = glm::length(from), toLength = glm::length(to);
    if (!areFinite({apex, from, to}) || !(fromLength > 0) || !(toLength > 0) || !(radius > 0) || !std::isfinite(radius))
        return std::nullopt;
    const glm::dvec3 first = from / fromLength, last = to / toLength;
    const glm::dvec3 across = last - glm::dot(last, first) * first;
    const double sine = glm::length(across);
    if (!(sine > cSmallest))
        return std::nullopt;
    DimensionMeasure measure;
    DimensionShape& shape = measure.shape;
    shape.isAngle = true;
    shape.hasExtensions = style.hasExtensions;
    shape.angle = std::atan2(sine, glm::dot(last, first));
    shape.apex = apex;
    shape.first = radius * first;
    shape.second = radius * across / sine;
    shape.ends = shape.measured = {shape.onArc(0), shape.onArc(1)};
    measure.value = glm::degrees(shape.angle);
    measure.words = wordsOf(style, "", measure.value, "\u00b0");
    return measure;
}

} // namespace gui::draw
