// Look for: blue fans around their gold corner, red ears in the order they are cut, no gap and no overlap between
// numbers.

#include "Diagrams.h"
#include "Scenes.h"

#include <glm/geometric.hpp>

#include <algorithm>
#include <cmath>

namespace gallery
{

namespace
{

using td::ColorID;
using Outline = Diagrams::Outline;

const Outline cCup{{0, 0}, {3, 0}, {3, 3}, {2, 3}, {2, 1}, {1, 1}, {1, 3}, {0, 3}};
const Outline cCross{{1, 0}, {2, 0}, {2, 1}, {3, 1}, {3, 2}, {2, 2}, {2, 3}, {1, 3}, {1, 2}, {0, 2}, {0, 1}, {1, 1}};

Outline makeStarPolygon(int nPoints)
{
    Outline star;
    for (int i = 0; i < 2 * nPoints; ++i)
    {
        const glm::vec2 corner = onCircle(0.25F + 0.5F * static_cast<float>(i) / static_cast<float>(nPoints), 1);
        star.push_back(gui::gl::toPt2(corner * (i % 2 == 0 ? 1.0F : 0.5F)));
    }
    return star;
}

Outline makeSpiralPolygon()
{
    constexpr int cCorners = 9;
    Outline spiral;
    for (int i = 0; i < 2 * cCorners; ++i)
    {
        const auto step = static_cast<float>(i < cCorners ? i : 2 * cCorners - 1 - i) / (cCorners - 1);
        const float radius = (i < cCorners ? 0.35F : 0.85F) + 0.65F * step;
        spiral.push_back(gui::gl::toPt2(onCircle(0.62F + 0.98F * step, radius)));
    }
    return spiral;
}

// Where a number has the most room in a triangle, and how far it is to the edges.
struct Room
{
    glm::vec2 middle;
    float radius;
};

Room roomIn(const Diagrams::Triangle& triangle)
{
    const glm::vec2 a = gui::gl::toGlm2(triangle[0]), b = gui::gl::toGlm2(triangle[1]),
                    c = gui::gl::toGlm2(triangle[2]);
    const float toA = glm::distance(b, c), toB = glm::distance(c, a), toC = glm::distance(a, b);
    const float around = toA + toB + toC;
    const float area = std::abs(gui::gl::crossProduct(triangle[0], triangle[1], triangle[2]));
    return {(toA * a + toB * b + toC * c) / around, area / around};
}

class Polygons : public Scene
{
public:
    bool init() override
    {
        addFan({{-2, 1}, {-1, -1}, {1, -1.4F}, {2.2F, 0.2F}, {1.2F, 1.8F}, {-0.6F, 2}}, 0);
        addFan({{-0.5F, 0}, {-2, -1.8F}, {2.2F, 0}, {-2, 1.8F}}, 0);
        addFan({{0, 0}, {4, 0}, {4, 4}, {2, 2}, {0, 4}}, 3);
        addFan({{0, 0}, {3, 0}, {3, 1.2F}, {1.2F, 1.2F}, {1.2F, 3}, {0, 3}}, 3);
        addEars(cCup);
        addEars(cCross);
        addEars(makeStarPolygon(7));
        addEars(makeSpiralPolygon());
        return _backdrop.init() && _diagrams.finish();
    }

    void draw(const Frame& frame) override
    {
        const std::vector<Cell> cells = makeGrid(frame, 4, 2);
        _backdrop.draw(frame, cells);
        _diagrams.draw(frame, cells);
    }

private:
    void addFan(const Outline& outline, std::size_t start)
    {
        const Outline fan = add(outline, ColorID::DodgerBlue);
        _diagrams.addDot(fan[start], 0.06F, {ColorID::Gold});
    }

    void addEars(const Outline& outline) { add(outline, ColorID::Tomato); }

    // In shades that grow lighter from the first triangle to the last.
    Outline add(const Outline& outline, ColorID color)
    {
        Outline place = fitted({outline}, 0.74F).front();
        const std::vector<Diagrams::Triangle> triangles = _diagrams.trianglesOf(place);
        _diagrams.beginCell();
        _diagrams.addPolygon(place, {color});
        for (std::size_t i = 0; i < triangles.size(); ++i)
            _diagrams.addTriangle(triangles[i], {ColorID::White, static_cast<int>(110 * i / triangles.size())});
        _diagrams.addEdges(triangles, 0.007F, {ColorID::MidnightBlue});
        _diagrams.addLine(place, 0.014F, true, {ColorID::White});
        for (std::size_t i = 0; i < triangles.size(); ++i)
        {
            const Room room = roomIn(triangles[i]);
            const float height = std::min(0.15F, room.radius);
            if (height > 0.05F)
                _diagrams.addNumber(i + 1, gui::gl::toPt2(room.middle), height, {ColorID::White});
        }
        return place;
    }

    Backdrop _backdrop;
    Diagrams _diagrams;
};

} // namespace

std::unique_ptr<Scene> makePolygons() { return std::make_unique<Polygons>(); }

} // namespace gallery
