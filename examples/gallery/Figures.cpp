#include "Figures.h"

#include <glm/geometric.hpp>
#include <glm/trigonometric.hpp>

#include <cmath>
#include <numbers>

namespace gallery::figures
{

namespace
{

using td::ColorID;

constexpr ColorID cSunset[] = {ColorID::Gold, ColorID::Coral, ColorID::MediumVioletRed};
constexpr ColorID cOcean[] = {ColorID::Aquamarine, ColorID::DeepSkyBlue, ColorID::RoyalBlue};
constexpr ColorID cWheel[] = {ColorID::Tomato,     ColorID::Gold,   ColorID::LimeGreen, ColorID::Turquoise,
                              ColorID::DodgerBlue, ColorID::Orchid, ColorID::Tomato};
constexpr ColorID cBall[] = {ColorID::DarkSlateBlue, ColorID::MediumVioletRed, ColorID::Coral, ColorID::Gold};

} // namespace

Vertices makeGridRing(std::size_t ring)
{
    Vertices points;
    for (int y = -4; y <= 4; ++y)
        for (int x = -4; x <= 4; ++x)
            if (static_cast<std::size_t>(std::lround(std::hypot(x, y))) == ring)
                points.push_back({glm::vec2(x, y) * 0.22F, gradient(cSunset, static_cast<float>(ring) / 5)});
    return points;
}

Vertices makeEnvelope()
{
    Vertices lines;
    for (int quarter = 0; quarter < 4; ++quarter)
    {
        for (int i = 0; i <= 15; ++i)
        {
            const float t = static_cast<float>(i) / 15;
            const float turn = static_cast<float>(quarter) / 4;
            lines.push_back({onCircle(turn, t), gradient(cOcean, t)});
            lines.push_back({onCircle(turn + 0.25F, 1 - t), gradient(cOcean, 1 - t)});
        }
    }
    return lines;
}

Vertices makeSpiral(float turn)
{
    Vertices spiral;
    for (int i = 0; i <= 100; ++i)
    {
        const float t = static_cast<float>(i) / 100;
        spiral.push_back({onCircle(turn + t, t), gradient(cSunset, t)});
    }
    return spiral;
}

Vertices makeWhirlHexagon(int index, float place)
{
    constexpr float cDegrees = 6;
    const auto number = static_cast<float>(index);
    const float shrink = std::cos(glm::radians(30.0F)) / std::cos(glm::radians(30.0F - cDegrees));
    Vertices loop;
    for (int corner = 0; corner < 6; ++corner)
        loop.push_back({onCircle(number * cDegrees / 360 + static_cast<float>(corner) / 6, std::pow(shrink, number)),
                        gradient(cOcean, place)});
    return loop;
}

Vertices makeTriangles(int depth)
{
    Vertices corners = {{{-1, -0.8F}, {}}, {{1, -0.8F}, {}}, {{0, 0.93F}, {}}};
    for (int i = 0; i < depth; ++i)
    {
        // Each corner gets the triangle that lies half way towards it.
        Vertices finer;
        for (std::size_t corner = 0; corner < corners.size(); ++corner)
            for (std::size_t other = corner / 3 * 3; other < corner / 3 * 3 + 3; ++other)
                finer.push_back({(corners[corner].position + corners[other].position) / 2.0F, {}});
        corners = std::move(finer);
    }
    for (ColorVertex& corner : corners)
        corner.color = gradient(cOcean, (0.93F - corner.position.y) / 1.73F);
    return corners;
}

Vertices makeColorWheel()
{
    Vertices fan = {{{0, 0}, colorOf(ColorID::White)}};
    for (int i = 0; i <= 120; ++i)
        fan.push_back({onCircle(static_cast<float>(i) / 120, 1), gradient(cWheel, static_cast<float>(i) / 120)});
    return fan;
}

Vertices makeRibbon()
{
    Vertices strip;
    for (int i = 0; i <= 240; ++i)
    {
        const float t = static_cast<float>(i) / 240;
        const float half = 0.25F * std::cos(glm::radians(360.0F * 4 * t));
        const glm::vec4 color = gradient(cWheel, t);
        strip.push_back({onCircle(t, 0.75F + half), color});
        strip.push_back({onCircle(t, 0.75F - half), color * glm::vec4(0.4F, 0.4F, 0.5F, 1)});
    }
    return strip;
}

std::array<glm::vec3, 16> makePatch()
{
    constexpr float cHeights[16] = {-0.2F, 0.3F, -0.6F, 0.2F,  0.2F, 2.6F,  -2.2F, -0.3F,
                                    -0.4F, 2.2F, -2.6F, -0.2F, 0.3F, -0.2F, 0.4F,  0.0F};
    std::array<glm::vec3, 16> points;
    for (std::size_t i = 0; i < points.size(); ++i)
    {
        const std::size_t row = i / 4, column = i % 4;
        points[i] = {static_cast<float>(column) / 1.5F - 1, static_cast<float>(row) / 1.5F - 1, cHeights[i]};
    }
    return points;
}

Vertices makeDisc(const glm::vec4& color)
{
    Vertices fan = {{{0, 0}, color}};
    for (int i = 0; i <= 120; ++i)
        fan.push_back({onCircle(static_cast<float>(i) / 120, 1), color});
    return fan;
}

Vertices makeStar(const glm::vec4& color)
{
    Vertices fan = {{{0, 0}, color}};
    for (int i = 0; i <= 10; ++i)
        fan.push_back({onCircle(0.25F + static_cast<float>(i) / 10, i % 2 == 0 ? 1.0F : 0.45F), color});
    return fan;
}

SolidVertices makeRectangles()
{
    constexpr ColorID cColors[][2] = {{ColorID::Gold, ColorID::Coral},
                                      {ColorID::Aquamarine, ColorID::DodgerBlue},
                                      {ColorID::Plum, ColorID::MediumSlateBlue}};
    constexpr float cGolden = std::numbers::phi_v<float>;
    const float size = 1 / std::hypot(1.0F, cGolden);
    SolidVertices vertices;
    for (int axis = 0; axis < 3; ++axis)
    {
        for (const glm::vec2& corner : {glm::vec2(-1, -1), {1, -1}, {1, 1}, {1, 1}, {-1, 1}, {-1, -1}})
        {
            glm::vec3 position(0);
            position[axis] = corner.x * cGolden * size;
            position[(axis + 1) % 3] = corner.y * size;
            vertices.push_back({position, gradient(cColors[axis], corner.x / 2 + 0.5F)});
        }
    }
    return vertices;
}

SolidVertices makeBall()
{
    // The eight sides of an octahedron, divided again and again, and bulged.
    std::vector<glm::vec3> corners;
    for (const float x : {-1.0F, 1.0F})
        for (const float y : {-1.0F, 1.0F})
            for (const float z : {-1.0F, 1.0F})
                for (const glm::vec3& corner :
                     {glm::vec3(x, 0, 0), x * y * z > 0 ? glm::vec3(0, y, 0) : glm::vec3(0, 0, z),
                      x * y * z > 0 ? glm::vec3(0, 0, z) : glm::vec3(0, y, 0)})
                    corners.push_back(corner);
    for (int depth = 0; depth < 3; ++depth)
    {
        std::vector<glm::vec3> finer;
        for (std::size_t i = 0; i < corners.size(); i += 3)
        {
            const glm::vec3 a = corners[i], b = corners[i + 1], c = corners[i + 2];
            const glm::vec3 ab = glm::normalize(a + b), bc = glm::normalize(b + c), ca = glm::normalize(c + a);
            finer.insert(finer.end(), {a, ab, ca, ab, b, bc, ca, bc, c, ab, bc, ca});
        }
        corners = std::move(finer);
    }
    const glm::vec3 light = glm::normalize(glm::vec3(-0.5F, 0.8F, 0.6F));
    SolidVertices vertices;
    for (const glm::vec3& corner : corners)
        vertices.push_back({corner, gradient(cBall, 0.5F + 0.5F * glm::dot(corner, light))});
    return vertices;
}

} // namespace gallery::figures
