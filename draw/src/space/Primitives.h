#pragma once

#include "LargeVector.h"

#include <glm/vec3.hpp>

#include <cmath>
#include <cstddef>
#include <cstdint>

namespace gui::draw
{

/// Triangles, lines or points, as a tree or a plain search goes through them.
struct Primitives
{
    std::size_t nCorners = 3;             // of each: 3, 2 or 1
    LargeVector<glm::dvec3> vertices;     // not a number in all three where they are of no use
    LargeVector<std::uint32_t> corners;   // nCorners for each, of vertices
    LargeVector<std::uint32_t> numbers;   // what each is called outside; empty while they are the same
    LargeVector<std::uint32_t> originals; // what each vertex is called outside; empty while they are the same

    std::size_t size() const { return corners.size() / nCorners; }
    std::uint32_t number(std::size_t i) const { return numbers.empty() ? static_cast<std::uint32_t>(i) : numbers[i]; }
    const glm::dvec3& corner(std::size_t i, std::size_t k) const { return vertices[corners[i * nCorners + k]]; }

    /// Whether all corners can be used.
    bool isUsable(std::size_t i) const
    {
        bool isUsable = true;
        for (std::size_t k = 0; k < nCorners; ++k)
            isUsable = isUsable && !std::isnan(corner(i, k).x);
        return isUsable;
    }
};

} // namespace gui::draw
