// Look for: corners and bevels on either side, square ends where a line turns back, rings without a seam, even edges.

#include "Diagrams.h"
#include "Scenes.h"

#include <iterator>

namespace gallery
{

namespace
{

using td::ColorID;
using Outline = Diagrams::Outline;

constexpr ColorID cLineColors[] = {ColorID::DodgerBlue, ColorID::MediumSlateBlue, ColorID::MediumOrchid,
                                   ColorID::DeepPink,   ColorID::Tomato,          ColorID::SandyBrown,
                                   ColorID::Gold,       ColorID::YellowGreen,     ColorID::LightSeaGreen,
                                   ColorID::DeepSkyBlue};

Outline makeStarLine(float inner)
{
    Outline star;
    for (int i = 0; i < 10; ++i)
        star.push_back(gui::gl::toPt2(onCircle(0.25F + static_cast<float>(i) / 10, i % 2 == 0 ? 0.8F : inner)));
    return star;
}

Outline makeSpiralLine()
{
    Outline spiral;
    for (int i = 0; i <= 120; ++i)
    {
        const float way = static_cast<float>(i) / 120;
        spiral.push_back(gui::gl::toPt2(onCircle(3 * way, 0.1F + 0.78F * way)));
    }
    return spiral;
}

// Turns that grow sharper from one to the next.
Outline makeZigzag()
{
    Outline zigzag;
    float x = -0.9F;
    for (int i = 0; i < 9; ++i)
    {
        zigzag.push_back({x, i % 2 == 0 ? -0.6F : 0.6F});
        x += 0.39F - 0.047F * static_cast<float>(i);
    }
    return zigzag;
}

Outline makeWave()
{
    Outline wave;
    for (int i = 0; i <= 48; ++i)
    {
        const float way = static_cast<float>(i) / 48;
        wave.push_back({1.9F * way - 0.95F, onCircle(2 * way, 0.45F).y});
    }
    return wave;
}

class Lines : public Scene
{
public:
    bool init() override
    {
        add({{-0.75F, -0.5F}, {0.6F, -0.5F}, {0.6F, 0.7F}}, 0.16F, false);
        add({{-0.85F, -0.4F}, {0.75F, -0.4F}, {-0.65F, 0.45F}}, 0.16F, false);
        add({{-0.85F, 0.4F}, {0.75F, 0.4F}, {-0.65F, -0.45F}}, 0.16F, false);
        add({{-0.95F, 0}, {-0.5F, 0}, {-0.1F, 0}, {0.4F, 0}, {0.95F, 0}}, 0.16F, false);
        add({{-0.85F, -0.5F}, {0.75F, -0.5F}, {-0.1F, -0.5F}, {-0.1F, 0.7F}}, 0.16F, false);
        add({{-0.75F, 0}, {0.75F, 0}}, 0.16F, true);
        add({{-0.78F, -0.58F}, {0.78F, -0.58F}, {0, 0.56F}}, 0.12F, true);
        add(makeStarLine(0.36F), 0.07F, true);
        add({{-0.55F, -0.35F}, {0.1F, -0.35F}, {0.4F, 0.45F}}, 0.4F, false);
        add(makeZigzag(), 0.05F, false);
        add(makeWave(), 0.1F, false);
        add(makeSpiralLine(), 0.07F, false);
        return _backdrop.init() && _diagrams.finish();
    }

    void draw(const Frame& frame) override
    {
        const std::vector<Cell> cells = makeGrid(frame, 4, 3);
        _backdrop.draw(frame, cells);
        _diagrams.draw(frame, cells);
    }

private:
    // The band, the edges of its triangles, and the line it was made from.
    void add(const Outline& points, float width, bool closed)
    {
        _diagrams.beginCell();
        _diagrams.addLine(points, width, closed, {cLineColors[_nAdded++ % std::size(cLineColors)]});
        _diagrams.addEdges(_diagrams.trianglesOf(points, width, closed), 0.006F, {ColorID::MidnightBlue, 150});
        _diagrams.addLine(points, 0.01F, closed, {ColorID::White});
        for (const td::Point<float>& point : points)
            _diagrams.addDot(point, points.size() > 20 ? 0.016F : 0.035F, {ColorID::White});
    }

    Backdrop _backdrop;
    Diagrams _diagrams;
    std::size_t _nAdded = 0;
};

} // namespace

std::unique_ptr<Scene> makeLines() { return std::make_unique<Lines>(); }

} // namespace gallery
