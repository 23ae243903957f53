// Look for: caps, joins and dashes as SVG has them, each line as wide as its number says, and no darker spot where the
// translucent ones cross themselves.

#include "Board.h"
#include "Scenes.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <numbers>

namespace gallery
{

namespace
{

using gui::draw::Affine;
using gui::draw::Cap;
using gui::draw::Join;
using gui::draw::Path;
using gui::gl::Font;

constexpr double cFullTurn = 2 * std::numbers::pi;

struct CapName
{
    Cap cap;
    const char* name;
    const char* color;
};
constexpr CapName cCaps[] = {{Cap::Butt, "Butt caps", "#5ab3f0"},
                             {Cap::Round, "Round caps", "#f2b84b"},
                             {Cap::Square, "Square caps", "#ef7d6b"}};

struct JoinName
{
    Join join;
    const char* name;
};
constexpr JoinName cJoins[] = {{Join::Miter, "Mitre"}, {Join::Round, "Round"}, {Join::Bevel, "Bevel"}};

// Above 0 a dash, below it a gap.
struct Pattern
{
    const char* name;
    std::array<double, 2> dashes;
};
constexpr Pattern cPatterns[] = {{"solid", {0, 0}}, {"dashes {16, 20}", {16, 20}}, {"dashes {1, 17}", {1, 17}}};

constexpr double cWidths[] = {0.25, 0.5, 1, 1.5, 2, 3, 4, 6, 10, 16, 24, 40};

/// All caps, joins and kinds of dashes, a row of widths, and lines that one can see through.
class Strokes : public Scene
{
public:
    bool init() override
    {
        addMatrix({24, 24, 912, 332});
        addWidths({24, 372, 560, 204});
        addKnots({600, 372, 336, 204});
        return _board.init();
    }

    void draw(const Frame& frame) override { _board.draw(frame); }

private:
    void addMatrix(const Cell& panel)
    {
        constexpr double cLeft = 62, cTop = 46, cWidth = 93, cHeight = 92;
        _board.addPanel(panel);
        double x = panel.left + cLeft;
        for (const CapName& cap : cCaps)
        {
            for (const Pattern& pattern : cPatterns)
            {
                double y = panel.top + cTop;
                for (const JoinName& join : cJoins)
                {
                    addSample({.width = 12,
                               .cap = cap.cap,
                               .join = join.join,
                               .miterLimit = 10,
                               .dashes = {pattern.dashes.begin(), pattern.dashes.end()}},
                              Affine::translation(x, y), cap.color);
                    y += cHeight;
                }
                x += cWidth;
            }
            _board.addCaption({x - 1.5 * cWidth, panel.top + 26}, cap.name);
        }
        for (std::size_t i = 0; i < std::size(cJoins); ++i)
            _board.addCaption({panel.left + 16, panel.top + cTop + (static_cast<double>(i) + 0.5) * cHeight + 4},
                              cJoins[i].name, Font::cLeft);
    }

    void addSample(const gui::draw::Stroke& stroke, const Affine& place, td::Color color)
    {
        const Path line = Path::fromSVG("M14 76L31 22L55 76L79 36").transform(place);
        _board.drawing.stroke(line, stroke, color);
        _board.drawing.stroke(line, {.width = 1}, "#0b1020a0");
    }

    void addWidths(const Cell& panel)
    {
        _board.addPanel(panel);
        double x = panel.left + 20;
        for (const double width : cWidths)
        {
            const double middle = x + std::max(width, 22.0) / 2;
            Path line;
            line.moveTo({middle + 5, panel.top + 24})
                .cubicTo({middle + 5, panel.top + 70}, {middle - 5, panel.top + 104}, {middle - 5, panel.top + 150});
            _board.drawing.stroke(line, {.width = width, .cap = Cap::Butt}, "#dfe8f7");
            char text[16];
            std::snprintf(text, sizeof text, "%g", width);
            _board.addCaption({middle, panel.top + 184}, text);
            x += std::max(width, 22.0) + 21;
        }
    }

    void addKnots(const Cell& panel)
    {
        constexpr const char* cColors[] = {"#7ddc9a99", "#c78bf099"};
        _board.addPanel(panel);
        for (int i = 0; i < 2; ++i)
        {
            // Around twice with five loops, and around three times with seven.
            const int nTurns = 2 + i, nLoops = 5 + 2 * i;
            std::vector<Path::Point> points;
            for (int k = 0; k < 360; ++k)
            {
                const double angle = cFullTurn * nTurns * k / 360.0;
                const double radius = 47 + 23 * std::cos(angle * nLoops / nTurns);
                points.push_back({static_cast<double>(panel.left) + 90.0 + 156.0 * i + radius * std::sin(angle),
                                  static_cast<double>(panel.top + panel.height / 2) - radius * std::cos(angle)});
            }
            _board.drawing.stroke(Path().addPolygon(points), {.width = 10, .join = Join::Round}, cColors[i]);
        }
    }

    Board _board;
};

} // namespace

std::unique_ptr<Scene> makeStrokes() { return std::make_unique<Strokes>(); }

} // namespace gallery
