#pragma once

#include <gui/draw/DimensionStyle.h>
#include <gui/draw/Drawing.h>

#include <glm/vec3.hpp>

#include <cmath>
#include <cstdint>
#include <numbers>

namespace gui::draw
{

/// Lines and arrows in a drawing whose plane is the screen: shapes that are made once, and moved where they are seen.
/// Nothing of them is made anew or uploaded but that.
struct ScreenSigns
{
    /// From the line between (0, 0) and (1, 0) to that between two points.
    static Affine between(const td::Point<double>& from, const td::Point<double>& to)
    {
        const double x = to.x - from.x, y = to.y - from.y;
        return {x, y, -y, x, from.x, from.y};
    }

    /// Where shapes are made, each beside the others: fills that share edges would be looked at as neighbours.
    static Affine aside(std::uint64_t number)
    {
        constexpr double cApart = 1e5;
        constexpr std::uint64_t cPlaces = 100'000;
        return Affine::translation(cApart * static_cast<double>(number % cPlaces), 0);
    }

    /// An arrow whose tip is at the origin, and whose back to the right.
    static Path arrow(double length)
    {
        constexpr double cWidth = 0.34; // of the length
        const double half = cWidth / 2 * length;
        return Path().moveTo({0, 0}).lineTo({length, -half}).lineTo({length, half}).close();
    }

    /// What is at a dimension's end, placed as an arrow is.
    static Path endOf(const DimensionStyle& style)
    {
        if (style.end == DimensionStyle::End::Arrow)
            return arrow(style.arrow);
        // Upwards to the right through the origin, twice as heavy as a line.
        const double half = style.arrow / 2 * std::numbers::sqrt2 / 2, thick = style.width * std::numbers::sqrt2 / 2;
        return Path()
            .moveTo({-half - thick, half - thick})
            .lineTo({half - thick, -half - thick})
            .lineTo({half + thick, -half + thick})
            .lineTo({-half + thick, half + thick})
            .close();
    }

    /// A hidden group with what stands at the origin until it is placed.
    static Drawing::ID add(Drawing& drawing, const Path& path, const Paint& paint, const Affine& aside)
    {
        const Drawing::ID id = drawing.beginGroup(aside);
        drawing.fill(path, paint);
        drawing.endGroup();
        drawing.setVisible(id, false);
        return id;
    }

    /// Brings an arrow to a place. @param back  of length 1: where its back is, seen from its tip
    static Affine arrowAt(const td::Point<double>& tip, const td::Point<double>& back)
    {
        return {back.x, back.y, -back.y, back.x, tip.x, tip.y};
    }

    static bool isFinite(const glm::dvec3& point)
    {
        return std::isfinite(point.x) && std::isfinite(point.y) && std::isfinite(point.z);
    }
};

} // namespace gui::draw
