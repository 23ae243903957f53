#include <gui/gl/Triang2D.h>

#include "BandLoops.h"

#include <glm/exponential.hpp>
#include <glm/geometric.hpp>
#include <glm/mat2x2.hpp>
#include <glm/matrix.hpp>

#include <cmath>

namespace gui::gl
{

// Operations and their order are those that the results are defined by: no other way to write a formula gives the same
// bits. BandLoops.cpp has them once more, for many points at a time.

namespace
{

// A quarter turn counter-clockwise.
glm::vec2 perp(const glm::vec2& v) { return {-v.y, v.x}; }

/// The unit vectors from a point of a line to the next, and from there back.
struct Segment
{
    glm::vec2 ahead;
    glm::vec2 back;
};

// Both are what glm::normalize gives, with one root: the squares of b - a and a - b are the same.
Segment segmentOf(const glm::vec2& a, const glm::vec2& b)
{
    const glm::vec2 along = b - a;
    const float inverse = glm::inversesqrt(glm::dot(along, along));
    return {along * inverse, (a - b) * inverse};
}

/// How two segments meet.
enum class Join : td::BYTE
{
    Corner,
    StraightOn,
    StraightBack
};

Join joinOf(const Segment& in, const Segment& out)
{
    const float sine = in.ahead.x * out.ahead.y - in.ahead.y * out.ahead.x;
    if (!(std::abs(sine) <= cParallelSine))
        return Join::Corner;
    return glm::dot(in.ahead, out.ahead) > 0 ? Join::StraightOn : Join::StraightBack;
}

/// How often u goes into the way from a point to where the lines along u and v cross: s in s * u + t * v = way.
float stepsToCrossing(const glm::vec2& u, const glm::vec2& v, const glm::vec2& way)
{
    return (glm::inverse(glm::mat2(u, v)) * way).x;
}

/// From b to where the left edges of a, b and b, c cross.
glm::vec2 miterVector(const glm::vec2& a, const glm::vec2& b, const glm::vec2& c, const Segment& in, const Segment& out,
                      float width)
{
    const glm::vec2 W1 = width * in.ahead;
    const glm::vec2 A1 = a + perp(W1);
    const glm::vec2 W2 = width * out.back;
    const glm::vec2 A2 = c - perp(W2);
    return A1 + stepsToCrossing(W1, -W2, A2 - A1) * W1 - b;
}

} // namespace

glm::vec2 getStartPointOutlineVector(const glm::vec2& a, const glm::vec2& b, float width)
{
    return width * perp(glm::normalize(b - a));
}

glm::vec2 getEndPointOutlineVector(const glm::vec2& a, const glm::vec2& b, float width)
{
    return -perp(width * glm::normalize(a - b));
}

glm::vec2 getMiddlePointOutlineVector(const glm::vec2& a, const glm::vec2& b, const glm::vec2& c, float width)
{
    const Segment in = segmentOf(a, b), out = segmentOf(b, c);
    return joinOf(in, out) == Join::Corner ? miterVector(a, b, c, in, out, width) : width * perp(in.ahead);
}

td::Point<float> getStartPointOutlineVector(const td::Point<float>& a, const td::Point<float>& b, float width)
{
    return toPt2(getStartPointOutlineVector(toGlm2(a), toGlm2(b), width));
}

td::Point<float> getEndPointOutlineVector(const td::Point<float>& a, const td::Point<float>& b, float width)
{
    return toPt2(getEndPointOutlineVector(toGlm2(a), toGlm2(b), width));
}

td::Point<float> getMiddlePointOutlineVector(const td::Point<float>& a, const td::Point<float>& b,
                                             const td::Point<float>& c, float width)
{
    return toPt2(getMiddlePointOutlineVector(toGlm2(a), toGlm2(b), toGlm2(c), width));
}

} // namespace gui::gl
