#include "SeenPart.h"

#include <glm/matrix.hpp>

#include <algorithm>
#include <array>
#include <limits>

namespace gui::draw
{

namespace
{

constexpr double cNoEnd = std::numeric_limits<double>::infinity();

// What is left of a stretch.
struct Stretch
{
    double begin;
    double end;

    // Keeps where first + t * slope >= 0.
    void cut(double first, double slope)
    {
        if (slope > 0)
            begin = std::max(begin, -first / slope);
        else if (slope < 0)
            end = std::min(end, -first / slope);
        else if (first < 0)
            end = -cNoEnd;
    }
};

} // namespace

// The part is a convex solid, whose corners are those of the box, where edges of the box go through the sides of what
// is seen, and where the edges of that go through the box.
std::optional<SeenPart> SeenPart::of(const Box3& box, const glm::dvec3& position, const glm::dmat3& rotation,
                                     const glm::dvec2& half, bool isPerspective)
{
    SeenPart part{cNoEnd, -cNoEnd};
    const auto add = [&part](double distance)
    {
        part.nearest = std::min(part.nearest, distance);
        part.farthest = std::max(part.farthest, distance);
    };

    const auto width = [isPerspective](double distance) { return isPerspective ? distance : 1; };
    for (unsigned int i = 0; i < 8; ++i)
    {
        for (const unsigned int bit : {1U, 2U, 4U})
        {
            if ((i & bit) != 0)
                continue;
            const glm::dvec3 a = rotation * (box.getCorner(i) - position);
            const glm::dvec3 b = rotation * (box.getCorner(i | bit) - position);
            Stretch edge{0, 1};
            for (int axis = 0; axis < 2; ++axis)
            {
                for (const double side : {1.0, -1.0})
                {
                    const double first = half[axis] * width(-a.z) - side * a[axis];
                    edge.cut(first, half[axis] * width(-b.z) - side * b[axis] - first);
                }
            }
            if (edge.begin > edge.end)
                continue;
            add(-a.z - edge.begin * (b.z - a.z));
            add(-a.z - edge.end * (b.z - a.z));
        }
    }

    const glm::dmat3 toModel = glm::transpose(rotation);
    for (const glm::dvec2& corner :
         {glm::dvec2(-half.x, -half.y), glm::dvec2(half.x, -half.y), glm::dvec2(-half.x, half.y), half})
    {
        const glm::dvec3 start = isPerspective ? position : position + toModel * glm::dvec3(corner, 0);
        const glm::dvec3 slope = toModel * glm::dvec3(isPerspective ? corner : glm::dvec2(0), -1);
        Stretch ray{isPerspective ? 0 : -cNoEnd, cNoEnd};
        for (int axis = 0; axis < 3; ++axis)
        {
            ray.cut(start[axis] - box.min[axis], slope[axis]);
            ray.cut(box.max[axis] - start[axis], -slope[axis]);
        }
        if (ray.begin > ray.end)
            continue;
        add(ray.begin);
        add(ray.end);
    }
    if (part.nearest > part.farthest)
        return std::nullopt;
    return part;
}

} // namespace gui::draw
