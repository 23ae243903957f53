// Look for: outlines on the edges of what is filled; open ones from corner to corner in the gold order, whatever the
// white.

#include "Diagrams.h"
#include "Scenes.h"

#include <common/TopoJSON.h>

#include <glm/geometric.hpp>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace gallery
{

namespace
{

using examples::TopoJSON;
using gui::gl::Primitive;
using td::ColorID;
using Outline = Diagrams::Outline;

Outline makeGear()
{
    Outline gear;
    for (int i = 0; i < 36; ++i)
        gear.push_back(gui::gl::toPt2(onCircle(static_cast<float>(i) / 36, i / 2 % 2 == 0 ? 0.78F : 0.58F)));
    return gear;
}

// The outlines of a country, without what lies in it, on a plane that touches the globe near one of its corners.
std::vector<Outline> flattened(const TopoJSON::Area& country)
{
    const double shrink = std::cos(country.polygons.front().front().front().y * std::numbers::pi / 180);
    std::vector<Outline> outlines;
    for (const TopoJSON::Polygon& polygon : country.polygons)
    {
        Outline& outline = outlines.emplace_back();
        for (const td::Point<double>& p : polygon.front())
            outline.push_back({static_cast<float>(p.x * shrink), static_cast<float>(p.y)});
    }
    return outlines;
}

class Recycled : public Scene
{
public:
    bool init() override
    {
        TopoJSON world;
        if (!world.loadCompiled(":gallery/countries-50m.json", "countries"))
            return false;

        const Outline arrow{{0, 0}, {4, 0}, {4, 4}, {2, 2}, {0, 4}};
        const Outline cup{{0, 0}, {3, 0}, {3, 3}, {2, 3}, {2, 1}, {1, 1}, {1, 3}, {0, 3}};
        add(Primitive::LineStrip, {arrow}, ColorID::DodgerBlue);
        add(Primitive::LineStrip, {cup}, ColorID::Tomato);
        add(Primitive::Lines, {makeGear()}, ColorID::MediumOrchid);
        for (const auto& [name, color] :
             {std::pair("Iceland", ColorID::LightSeaGreen), {"Italy", ColorID::YellowGreen}, {"Japan", ColorID::Coral}})
            for (const TopoJSON::Area& area : world.getAreas())
                if (area.name == name)
                    add(Primitive::LineLoop, flattened(area), color);
        return _backdrop.init() && _diagrams.finish();
    }

    void draw(const Frame& frame) override
    {
        const std::vector<Cell> cells = makeGrid(frame, 3, 2);
        _backdrop.draw(frame, cells);
        _diagrams.draw(frame, cells);
    }

private:
    // A strip ends where it would close, so its first corner shows in which order it goes, whatever the vertices' is.
    void add(Primitive primitive, const std::vector<Outline>& outlines, ColorID color)
    {
        _diagrams.beginCell();
        for (const Outline& outline : fitted(outlines, primitive == Primitive::LineStrip ? 0.68F : 0.78F))
        {
            _diagrams.addPolygonWith(primitive, outline, {color, 190}, {ColorID::White});
            if (primitive == Primitive::LineStrip)
                addNumbers(outline);
        }
    }

    // The places of corners in the outline, outside, and those of the vertices that they are stored as, inside.
    void addNumbers(const Outline& outline)
    {
        gui::gl::Triang2D::Points vertices;
        gui::gl::Triang2D::Indices indices;
        const auto n = static_cast<unsigned int>(outline.size());
        gui::gl::Triang2D(n).triangulate(outline.data(), n, vertices, indices);
        for (std::size_t i = 0; i < n; ++i)
        {
            const glm::vec2 corner = gui::gl::toGlm2(outline[i]);
            const glm::vec2 inwards = gui::gl::getMiddlePointOutlineVector(
                gui::gl::toGlm2(outline[(i + n - 1) % n]), corner, gui::gl::toGlm2(outline[(i + 1) % n]), 0.09F);
            const auto place = std::find(vertices.begin(), vertices.end(), outline[i]) - vertices.begin();
            _diagrams.addNumber(i, gui::gl::toPt2(corner - 0.13F * glm::normalize(inwards)), 0.1F, {ColorID::Gold});
            _diagrams.addNumber(static_cast<std::size_t>(place), gui::gl::toPt2(corner + inwards), 0.1F,
                                {ColorID::White});
        }
    }

    Backdrop _backdrop;
    Diagrams _diagrams;
};

} // namespace

std::unique_ptr<Scene> makeRecycled() { return std::make_unique<Recycled>(); }

} // namespace gallery
