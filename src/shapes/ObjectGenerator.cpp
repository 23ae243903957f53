#include <gui/gl/ObjectGenerator.h>

#include <td/Assert.h>

#include <cmath>

namespace gui::gl
{

void generateSymPolygon(const td::Circle<float>& circle, std::size_t nNodes,
                        cnt::PushBackVector<td::Point<float>, 0>& points, float startAngle,
                        cnt::PushBackVector<td::Point<float>, 0>* pTexCoords)
{
    TD_ASSERT(nNodes >= 3);
    constexpr float c2Pi = 6.283185F;
    points.reserve(nNodes);
    if (pTexCoords != nullptr)
        pTexCoords->reserve(nNodes);

    const float step = c2Pi / static_cast<float>(nNodes);
    float angle = startAngle;
    for (std::size_t i = 0; i < nNodes; ++i)
    {
        const float c = std::cos(angle);
        const float s = std::sin(angle);
        points.push_back({circle.center.x + c * circle.radius, circle.center.y + s * circle.radius});
        if (pTexCoords != nullptr)
            pTexCoords->push_back({(c + 1) / 2, (s + 1) / 2});
        angle += step;
    }
}

} // namespace gui::gl
