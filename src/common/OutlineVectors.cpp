#include "OutlineVectors.h"

#include <gui/gl/Triang2D.h>

namespace gui::gl
{

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
