// Look for: the same star and rings by both rules, with a hole only where the rule wants one; coasts without a step; no
// line between the tiles of the bloom.

#include "Board.h"
#include "Scenes.h"

#include <cmath>
#include <numbers>

namespace gallery
{

namespace
{

using gui::draw::Affine;
using gui::draw::FillRule;
using gui::draw::Join;
using gui::draw::Path;
using Point = gui::draw::Path::Point;

constexpr double cTurn = 2 * std::numbers::pi;

Point polar(double turns, double radius)
{
    return {radius * std::cos(cTurn * turns), radius * std::sin(cTurn * turns)};
}

// Seven points, each joined with the third one after it.
Path makeStarPath()
{
    std::vector<Point> points;
    for (int i = 0; i < 7; ++i)
        points.push_back(polar(i * 3 / 7.0 - 0.25, 94));
    return Path().addPolygon(points);
}

// From the outer one inwards; those that turn the other way are negative.
constexpr double cRings[] = {92, 74, -56, -38, 20};

Path makeRing(double radius)
{
    const double turn = radius < 0 ? -cTurn : cTurn;
    return Path().arc({0, 0}, {std::abs(radius), std::abs(radius)}, 0, turn).close();
}

// A head on a ring that tells which way it turns.
Path makeArrow(double radius)
{
    const Affine place = Affine::translation(0, -std::abs(radius)) * Affine::scaling(radius < 0 ? -1 : 1, 1);
    return Path::fromSVG("M-3.5-4.5L4.5 0L-3.5 4.5Z").transform(place);
}

// A smooth ring around a point, as uneven as wanted.
Path makeCoast(Point center, double radius, double unevenness, double phase)
{
    constexpr int cN = 120;
    std::vector<Point> points;
    for (int i = 0; i < cN; ++i)
    {
        const double way = i / double(cN), angle = cTurn * way;
        const double r =
            radius * (1 + unevenness * (0.5 * std::sin(2 * angle + phase) + 0.35 * std::sin(3 * angle + 2.3 * phase) +
                                        0.2 * std::sin(7 * angle + 4.1 * phase)));
        const Point p = polar(way, r);
        points.push_back({center.x + p.x, center.y + p.y});
    }
    Path coast;
    coast.moveTo({(points.back().x + points[0].x) / 2, (points.back().y + points[0].y) / 2});
    for (std::size_t i = 0; i < cN; ++i)
    {
        const Point& next = points[(i + 1) % cN];
        coast.quadTo(points[i], {(points[i].x + next.x) / 2, (points[i].y + next.y) / 2});
    }
    return coast.close();
}

/// Eight panels, each with a way to fill.
class Fills : public Scene
{
public:
    bool init() override
    {
        const std::vector<Cell> cells = Board::makeCells(4, 2);
        const auto panel = [&](std::size_t i, const char* caption)
        {
            const Cell& cell = cells[i];
            _board.addPanel(cell);
            const double x = cell.left + cell.width / 2;
            _board.addCaption({x, cell.top + cell.height - 18}, caption);
            drawing().beginGroup(Affine::translation(x, cell.top + cell.height / 2 - 14));
        };
        for (const FillRule rule : {FillRule::NonZero, FillRule::EvenOdd})
        {
            const bool isEvenOdd = rule == FillRule::EvenOdd;
            panel(isEvenOdd ? 1 : 0, isEvenOdd ? "A star, even-odd" : "A star, non-zero");
            addStar(rule);
            drawing().endGroup();
            panel(isEvenOdd ? 3 : 2, isEvenOdd ? "Rings, even-odd" : "Rings, non-zero");
            addRings(rule);
            drawing().endGroup();
        }
        panel(4, "Islands in lakes on islands");
        addAtoll();
        drawing().endGroup();
        panel(5, "Thirty-six rings, one path");
        addRosette();
        drawing().endGroup();
        panel(6, "Translucent, over each other");
        addFlower();
        drawing().endGroup();
        panel(7, "Tiles that share their edges");
        addBloom();
        drawing().endGroup();
        return _board.init();
    }

    void draw(const Frame& frame) override { _board.draw(frame); }

private:
    gui::draw::Drawing& drawing() { return _board.drawing; }

    void addStar(FillRule rule)
    {
        const Path star = makeStarPath();
        drawing().fill(star, "#f2b632", rule);
        drawing().stroke(star, {.width = 1.5, .join = Join::Round}, "#fff3d0");
    }

    void addRings(FillRule rule)
    {
        Path rings;
        for (const double radius : cRings)
            rings.addPath(makeRing(radius));
        drawing().fill(rings, "#2fa9a2", rule);
        drawing().stroke(rings, {.width = 1.5}, "#d3fbf3");
        for (const double radius : cRings)
            drawing().fill(makeArrow(radius), "#ffffff");
    }

    void addAtoll()
    {
        const Path coast = makeCoast({-2, 4}, 66, 0.26, 0.6);
        const Path lake = makeCoast({-6, 6}, 37, 0.3, 2.2);
        const Path island = makeCoast({-11, 9}, 17, 0.3, 4.4);
        const Path pond = makeCoast({-12, 8}, 6, 0.3, 1.2);
        // The sea grows lighter towards the coast, on both sides of it; the land covers the inner half.
        for (const double width : {36.0, 23.0, 12.0})
            drawing().stroke(coast, {.width = width, .unit = gui::draw::Unit::Model, .join = Join::Round}, "#4aa3df30");
        Path land;
        land.addPath(coast).addPath(lake).addPath(island).addPath(pond);
        drawing().fill(Path().addPath(lake), "#2a6ca3");
        drawing().fill(land, "#dcc486", FillRule::EvenOdd);
        drawing().stroke(land, {.width = 1.25}, "#fbf0cf");
    }

    void addRosette()
    {
        constexpr int cN = 36;
        Path rings;
        for (int i = 0; i < cN; ++i)
            rings.addCircle(polar(i / double(cN), 48), 45);
        drawing().fill(rings, "#e8617d", FillRule::EvenOdd);
    }

    void addFlower()
    {
        constexpr int cN = 9;
        for (int i = 0; i < cN; ++i)
        {
            Path petal = Path::fromSVG("M0 0C-46-26-40-88 0-94C40-88 46-26 0 0Z");
            petal.transform(Affine::rotation(cTurn * i / cN));
            drawing().fill(petal, td::Color::fromHSL(static_cast<float>(360.0 * i / cN + 190), 0.85F, 0.6F, 0.5F));
        }
        drawing().fill(Path().addCircle({0, 0}, 13), "#fff6da");
    }

    // Kites between rings that are half a tile further round than those inside of them.
    void addBloom()
    {
        constexpr int cTiles = 20, cRows = 13;
        const auto corner = [](int ring, int nth)
        { return polar((nth + ring / 2.0) / cTiles, 94 * std::pow(0.84, cRows + 1 - ring)); };
        for (int ring = 0; ring < cRows; ++ring)
        {
            const double way = ring / double(cRows);
            for (int i = 0; i < cTiles; ++i)
            {
                const double turn = (i + ring / 2.0) / cTiles;
                const auto hue = static_cast<float>(190 + 150 * way + 22 * std::sin(cTurn * turn));
                const double lightness = 0.34 + 0.3 * way + 0.09 * std::cos(cTurn * (2 * turn - 0.4));
                drawing().fill(Path().addPolygon(std::vector{corner(ring, i), corner(ring + 1, i),
                                                             corner(ring + 2, i - 1), corner(ring + 1, i - 1)}),
                               td::Color::fromHSL(hue, 0.66F, static_cast<float>(lightness)));
            }
        }
    }

    Board _board;
};

} // namespace

std::unique_ptr<Scene> makeFills() { return std::make_unique<Fills>(); }

} // namespace gallery
