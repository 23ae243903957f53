#pragma once

#include <gui/gl/Triang2D.h>

namespace gui::gl
{

// What the exported functions of the same meaning do, for loops: an exported one is never inlined.

inline float turnArea(const td::Point<float>& a, const td::Point<float>& b, const td::Point<float>& c)
{
    return (b.x - a.x) * (c.y - a.y) - (c.x - a.x) * (b.y - a.y);
}

inline int turnSign(const td::Point<float>& a, const td::Point<float>& b, const td::Point<float>& c)
{
    return sgn((b.x - a.x) * (c.y - b.y) - (b.y - a.y) * (c.x - b.x));
}

inline bool isInTriangle(const td::Point<float>& a, const td::Point<float>& b, const td::Point<float>& c,
                         const td::Point<float>& p)
{
    return (c.x - b.x) * (p.y - b.y) - (c.y - b.y) * (p.x - b.x) >= 0 &&
           (a.x - c.x) * (p.y - c.y) - (a.y - c.y) * (p.x - c.x) >= 0 &&
           (b.x - a.x) * (p.y - a.y) - (b.y - a.y) * (p.x - a.x) >= 0;
}

} // namespace gui::gl
