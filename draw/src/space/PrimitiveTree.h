#pragma once

#include "FourFloats.h"
#include "Primitives.h"

#include <gui/draw/Box3.h>
#include <gui/draw/Ray.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace gui::draw
{

/// Boxes in boxes over primitives, four to a node. They are floats from -1 to 1, rounded; whoever looks at them adds
/// cBoxSlack.
struct PrimitiveTree
{
    /// Two lines of the cache.
    struct alignas(64) Node
    {
        float bounds[6][4];     // least x, y, z and greatest x, y, z of what is below
        std::uint32_t first[4]; // primitive or node
        std::uint32_t count[4]; // of primitives; 0 for a node

        /// No node is above the first one.
        bool isNone(std::size_t i) const { return first[i] == 0 && count[i] == 0; }
    };

    LargeVector<Node> nodes;  // a node before what is below it
    std::size_t nInTree = 0;  // the first so many primitives
    glm::dvec3 center{0};     // of the boxes' coordinates
    double toTree = 1;        // from model units, a power of two
    std::uint32_t height = 0; // levels of nodes

    glm::dvec3 toModel(const glm::dvec3& p) const { return center + p / toTree; }

    /// Places the boxes' coordinates about bounds.
    void setFrame(const Box3& bounds);
    /// Makes the boxes of a node whose nodes below have theirs.
    void fitNode(const Primitives& primitives, std::size_t node);

    struct Search;
    /// Calls leaf(first, count, limit) for what the ray may meet, about in the order of distance. What begins farther
    /// than the limit, which leaf may lower, is left out.
    template <bool hasReach, typename Leaf>
    void search(const Search& s, float limit, const Leaf& leaf) const;
};

/// What a coordinate of a box may be wrong by.
inline constexpr float cBoxSlack = 0x1p-23F;

/// A ray in a tree's coordinates, in which its direction is of length 1.
struct PrimitiveTree::Search
{
    Search(const PrimitiveTree& tree, const Ray& ray, double radius, double perDistance);

    /// Of a distance in lengths of the ray's direction, and not below it.
    float limitOf(double distance) const;

    float nearOrigin[3]; // moved outwards by all that rounding may do, for faces that the ray enters through
    float farOrigin[3];
    float direction[3];
    float inverse[3];
    std::size_t nearRow[3]; // of Node::bounds
    std::size_t farRow[3];
    float radius;
    float perDistance;
    double start; // distance of the search's origin
    double toTree;
    double perLength;
};

template <bool hasReach, typename Leaf>
void PrimitiveTree::search(const Search& s, float limit, const Leaf& leaf) const
{
    struct Entry
    {
        float distance;
        std::uint32_t first;
        std::uint32_t count;
    };
    // At most three wait in each level, and there are some 200 at most.
    std::array<Entry, 1024> stack;
    std::size_t n = 0;
    if (nodes.empty())
        return;
    const FourFloats ox = allFour(s.nearOrigin[0]), oy = allFour(s.nearOrigin[1]), oz = allFour(s.nearOrigin[2]);
    const FourFloats px = allFour(s.farOrigin[0]), py = allFour(s.farOrigin[1]), pz = allFour(s.farOrigin[2]);
    const FourFloats ix = allFour(s.inverse[0]), iy = allFour(s.inverse[1]), iz = allFour(s.inverse[2]);
    const FourFloats dx = allFour(s.direction[0]), dy = allFour(s.direction[1]), dz = allFour(s.direction[2]);
    // Outwards along each axis.
    const FourFloats sx = allFour(std::copysign(1.0F, s.direction[0])),
                     sy = allFour(std::copysign(1.0F, s.direction[1])),
                     sz = allFour(std::copysign(1.0F, s.direction[2]));
    const FourFloats radius = allFour(s.radius), perDistance = allFour(s.perDistance);
    Entry entry{0, 0, 0};
    for (;;)
    {
        if (entry.count != 0)
            leaf(entry.first, entry.count, limit);
        else
        {
            const Node& node = nodes[entry.first];
            FourFloats nx = loadFour(node.bounds[s.nearRow[0]]), ny = loadFour(node.bounds[s.nearRow[1]]),
                       nz = loadFour(node.bounds[s.nearRow[2]]);
            FourFloats fx = loadFour(node.bounds[s.farRow[0]]), fy = loadFour(node.bounds[s.farRow[1]]),
                       fz = loadFour(node.bounds[s.farRow[2]]);
            if constexpr (hasReach)
            {
                // As wide as it is at the end.
                const FourFloats length = (fx - px) * dx + (fy - py) * dy + (fz - pz) * dz;
                const FourFloats reach = radius + perDistance * largerOf(length, FourFloats{});
                nx -= reach * sx, ny -= reach * sy, nz -= reach * sz;
                fx += reach * sx, fy += reach * sy, fz += reach * sz;
            }
            const FourFloats nearest =
                largerOf(largerOf((nx - ox) * ix, (ny - oy) * iy), largerOf((nz - oz) * iz, FourFloats{}));
            const FourFloats farthest =
                smallerOf(smallerOf((fx - px) * ix, (fy - py) * iy), smallerOf((fz - pz) * iz, allFour(limit)));
            unsigned int hit = bitsOf(nearest <= farthest);
            // The nearest goes to the top.
            const std::size_t bottom = n;
            while (hit != 0)
            {
                const auto i = static_cast<std::size_t>(std::countr_zero(hit));
                hit &= hit - 1;
                if (node.isNone(i))
                    continue;
                const Entry below{nearest[i], node.first[i], node.count[i]};
                std::size_t at = n++;
                for (; at > bottom && stack[at - 1].distance < below.distance; --at)
                    stack[at] = stack[at - 1];
                stack[at] = below;
            }
        }
        do
        {
            if (n == 0)
                return;
            entry = stack[--n];
        } while (entry.distance > limit);
    }
}

} // namespace gui::draw
