// Draws what becomes of lines and polygons: every kind of corner, every way to fail. Writes lines.png and polygons.png.
#include "Sheet.h"

#include <glm/common.hpp>

#include <cmath>
#include <cstdio>
#include <numbers>
#include <string>
#include <vector>

using namespace gui::gl;

namespace
{

// Two pieces with a turn between them: above 0 to the left.
Sheet::Points turn(float degrees)
{
    const float angle = degrees * std::numbers::pi_v<float> / 180;
    return {{-100, 0}, {0, 0}, {66 * std::cos(angle), 66 * std::sin(angle)}};
}

// The same shape in the middle of what the captions leave free.
Sheet::Points centred(Sheet::Points points)
{
    constexpr td::Point<float> cMiddle{0, 18};
    glm::vec2 least = toGlm2(points.front()), greatest = least;
    for (const td::Point<float>& point : points)
    {
        least = glm::min(least, toGlm2(point));
        greatest = glm::max(greatest, toGlm2(point));
    }
    const glm::vec2 shift = toGlm2(cMiddle) - (least + greatest) / 2.0F;
    for (td::Point<float>& point : points)
        point = toPt2(toGlm2(point) + shift);
    return points;
}

void addLine(Sheet& sheet, const char* title, const Sheet::Points& points, float width, bool closed)
{
    Triang2D triang(16);
    Triang2D::Points vertices;
    Triang2D::Indices indices;
    const auto n = static_cast<unsigned int>(points.size());
    const auto [primitive, nVertices, nIndices] =
        triang.triangulateLine(points.data(), n, width, closed, vertices, indices);

    const bool isNothing = nIndices == 0;
    sheet.beginCell(title,
                    isNothing ? "nothing"
                              : std::to_string(nVertices) + " vertices, " + std::to_string(nIndices / 3) + " triangles",
                    isNothing);
    vertices.reset();
    indices.reset();
    const Sheet::Points placed = sheet.place(centred(points));
    triang.triangulateLine(placed.data(), n, width, closed, vertices, indices);
    sheet.addTriangles(vertices, indices);
    sheet.addPath(placed, closed);
}

bool drawLines(const char* fileName)
{
    Sheet sheet(4, 3);
    addLine(sheet, "a corner: 70 degrees", turn(70), 15, false);
    addLine(sheet, "a corner: 119 degrees", turn(119), 15, false);
    addLine(sheet, "cut off: 150 left", turn(150), 15, false);
    addLine(sheet, "cut off: 150 right", turn(-150), 15, false);
    addLine(sheet, "straight on", turn(0), 15, false);
    addLine(sheet, "straight back", {{-60, 0}, {55, 0}, {0, 0}}, 15, false);
    addLine(sheet, "closed", {{-58, -22}, {58, -22}, {0, 62}}, 9, true);
    addLine(sheet, "two points, closed", {{-50, 10}, {50, 10}}, 15, true);
    addLine(sheet, "wider than long", {{-22, -10}, {22, -10}, {4, 22}}, 26, false);
    addLine(sheet, "a point twice: left out", {{-60, -10}, {10, -10}, {10, -10}, {40, 50}}, 15, false);
    addLine(sheet, "the same point twice", {{0, 10}, {0, 10}}, 15, false);
    addLine(sheet, "width 0", {{-60, -10}, {0, 30}, {60, -10}}, 0, false);
    return sheet.isOk() && sheet.save(fileName);
}

void addPolygon(Sheet& sheet, const char* title, const Sheet::Points& points, bool isWrong = false)
{
    Triang2D triang(16);
    Triang2D::Points vertices;
    Triang2D::Indices indices;
    const auto n = static_cast<unsigned int>(points.size());
    const auto [primitive, count] = triang.triangulate(points.data(), n, vertices, indices);
    std::string result = std::to_string(n - 2) + " triangles";
    if (primitive == Triang2D::cNothing)
        result = "nothing";
    else if (primitive == Primitive::TriangleFan)
        result = "a fan";

    sheet.beginCell(title, result, isWrong || primitive == Triang2D::cNothing);
    vertices.reset();
    indices.reset();
    const Sheet::Points placed = sheet.place(centred(points));
    triang.triangulate(placed.data(), n, vertices, indices);
    std::vector<unsigned int> corners(indices.begin(), indices.end());
    if (primitive == Primitive::TriangleFan)
    {
        for (unsigned int i = 1; i + 1 < n; ++i)
            corners.insert(corners.end(), {0, i, i + 1});
    }
    sheet.addTriangles(vertices, corners);
    sheet.addPath(placed, true);
}

bool drawPolygons(const char* fileName)
{
    Sheet sheet(4, 2);
    addPolygon(sheet, "bends nowhere inwards", {{-60, 0}, {-20, -40}, {50, -25}, {60, 30}, {0, 62}});
    addPolygon(sheet, "one corner inwards", {{-55, -35}, {55, -35}, {55, 60}, {0, 5}, {-55, 60}});
    addPolygon(sheet, "several: by its ears",
               {{-60, -35}, {60, -35}, {60, 60}, {25, 60}, {25, 0}, {-25, 0}, {-25, 60}, {-60, 60}});
    addPolygon(sheet, "the same clockwise",
               {{-60, 60}, {-25, 60}, {-25, 0}, {25, 0}, {25, 60}, {60, 60}, {60, -35}, {-60, -35}});
    addPolygon(sheet, "4 corners, well begun", {{0, -8}, {60, -35}, {0, 60}, {-60, -35}});
    addPolygon(sheet, "4 corners, badly begun", {{60, -35}, {0, 60}, {-60, -35}, {0, -8}}, true);
    addPolygon(sheet, "crosses itself", {{-55, -35}, {55, 60}, {55, -35}, {0, 42}, {-55, 60}});
    addPolygon(
        sheet, "a hole by a slit",
        {{-60, -35}, {60, -35}, {60, 62}, {-60, 62}, {-25, 40}, {25, 40}, {25, -10}, {-25, -10}, {-25, 40}, {-60, 62}});
    return sheet.isOk() && sheet.save(fileName);
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 3)
    {
        std::fputs("tessellation LINES.png POLYGONS.png\n", stderr);
        return 1;
    }
    return drawLines(argv[1]) && drawPolygons(argv[2]) ? 0 : 1;
}
