#include "Coverage.h"
#include "support/OffscreenGL.h"

#include <gui/draw/Drawing.h>
#include <gui/gl/FrameLedger.h>

#include <epoxy/gl.h>

#include <array>
#include <cmath>
#include <functional>
#include <numbers>
#include <random>

namespace
{

using gui::draw::Affine;
using gui::draw::Cap;
using gui::draw::Drawing;
using gui::draw::FillRule;
using gui::draw::Join;
using gui::draw::Path;
using gui::draw::Stroke;
using gui::draw::Unit;
using test::Coverage;
using Point = Path::Point;

constexpr int cSize = 1024;
const td::Color cBlack(0, 0, 0, 255);

/// What stands between a model and the pixels.
struct Setting
{
    const char* name;
    Affine view;
    double pixelsPerPoint = 1;
    std::array<Affine, 2> groups{}; // the second within the first
    unsigned int alpha = 255;
    int samples = 0;

    Affine toPixels() const { return Affine::scaling(pixelsPerPoint) * view * groups[0] * groups[1]; }
};

const std::array<Setting, 5> cSettings{
    {{"as it is", {}},
     {"turned, mirrored, two pixels per point", Affine{1.5, 2, 2, -1.5, 700, -3000}, 2},
     {"in groups",
      {},
      1,
      {Affine{.1, 0, .05, -.12, 30, 90}, Affine::translation(-1e4, 777) * Affine::rotation(1) * Affine::scaling(7)}},
     {"translucent", {}, 1, {}, 128},
     {"with samples", {}, 1, {}, 255, 4}}};

class DrawingTest : public test::OffscreenGL
{
protected:
    DrawingTest()
        : OffscreenGL({cSize, cSize})
    {
    }

    double uniform(double low, double high) { return std::uniform_real_distribution<>(low, high)(_random); }
    int below(int n) { return static_cast<int>(uniform(0, n)); }
    Point around(Point center, double half)
    {
        const double x = uniform(-half, half);
        return {center.x + x, center.y + uniform(-half, half)};
    }

    /// Within 28 pixels of a centre: 0 regular, 1 a star with a hole, 2 a sliver, 3 a ring that crosses itself.
    Path makeShape(int family, Point center)
    {
        Path path;
        const int n = family == 0 ? 3 + below(9) : family == 1 ? 2 * (3 + below(7)) : 5 + below(8);
        const double radius = uniform(family == 1 ? 8 : 3, 28), start = uniform(0, 7), inner = uniform(.3, .8);
        const auto corner = [&](double size, double turn)
        {
            return Point(center.x + size * std::cos(start + turn * 2 * std::numbers::pi),
                         center.y + size * std::sin(start + turn * 2 * std::numbers::pi));
        };
        std::vector<Point> ring;
        for (int i = 0; i < n; ++i)
            ring.push_back(family == 3 ? around(center, 28)
                                       : corner(family == 1 && i % 2 == 1 ? radius * inner : radius, double(i) / n));
        if (family == 2)
        {
            const double angle = uniform(.1, 2) / radius / 8;
            ring = {corner(radius, -angle), corner(radius, angle), corner(radius, .5 - angle)};
            if (below(2) == 0)
                ring.push_back(corner(radius, .5 + angle));
        }
        path.addPolygon(ring);
        for (Point& p : ring)
            p = {center.x + .4 * (p.x - center.x), center.y + .4 * (p.y - center.y)};
        return family == 1 ? path.addPolygon(ring) : path;
    }

    /// Draws with a setting, on white.
    Coverage drawn(Drawing& drawing, const Setting& setting = cSettings[0])
    {
        std::array<GLuint, 2> names{};
        if (setting.samples > 0)
        {
            glGenFramebuffers(1, &names[0]);
            glGenRenderbuffers(1, &names[1]);
            glBindFramebuffer(GL_FRAMEBUFFER, names[0]);
            glBindRenderbuffer(GL_RENDERBUFFER, names[1]);
            glRenderbufferStorageMultisample(GL_RENDERBUFFER, setting.samples, GL_RGBA8, cSize, cSize);
            glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, names[1]);
        }
        clear({255, 255, 255});
        EXPECT_TRUE(drawing.draw(setting.view, setting.pixelsPerPoint));
        if (setting.samples > 0)
        {
            glBindFramebuffer(GL_DRAW_FRAMEBUFFER, 0);
            glBlitFramebuffer(0, 0, cSize, cSize, 0, 0, cSize, cSize, GL_COLOR_BUFFER_BIT, GL_NEAREST);
            glBindFramebuffer(GL_FRAMEBUFFER, 0);
            glDeleteFramebuffers(1, &names[0]);
            glDeleteRenderbuffers(1, &names[1]);
        }
        return test::readCoverage();
    }

    std::mt19937 _random{7};
};

TEST_F(DrawingTest, FillsCoverTheirArea)
{
    for (const Setting& setting : cSettings)
    {
        SCOPED_TRACE(setting.name);
        Drawing drawing;
        Coverage exact(cSize, cSize);
        const Affine toModel = *setting.toPixels().inverse();
        for (const Affine& group : setting.groups)
            drawing.beginGroup(group);
        for (int cell = 0; cell < 256; ++cell)
        {
            const Point center(cell % 16 * 64 + uniform(31, 33), cell / 16 * 64 + uniform(31, 33));
            const Path path = makeShape(cell / 64, center);
            const auto rule = below(2) == 0 ? FillRule::EvenOdd : FillRule::NonZero;
            drawing.fill(path.transformed(toModel), td::Color(0, 0, 0, setting.alpha), rule);
            exact.add(test::fillRings(path), rule, setting.alpha / 255.0);
        }
        const Coverage picture = drawn(drawing, setting);
        for (int family = 0; family < 4; ++family)
            EXPECT_TRUE(isClose(picture, exact, {0, family * 256, cSize, family * 256 + 256}, {1, 4, 64})) << family;
    }
}

// Where a translucent stroke crosses itself, or its own joins and caps, it is no darker either.
TEST_F(DrawingTest, StrokesCoverWhatTheirBrushGoesOver)
{
    for (const Setting& setting : cSettings)
    {
        SCOPED_TRACE(setting.name);
        Drawing drawing;
        Coverage exact(cSize, cSize);
        const Affine toPixels = setting.toPixels(), toModel = *toPixels.inverse();
        const double scale = std::sqrt(std::abs(toPixels.a * toPixels.d - toPixels.b * toPixels.c));
        const bool isSkewed = std::abs(toPixels.a * toPixels.c + toPixels.b * toPixels.d) > 1e-9 * scale * scale;
        for (const Affine& group : setting.groups)
            drawing.beginGroup(group);
        for (int cell = 0; cell < 64; ++cell)
        {
            // Thin, wide, and dashed ones, with all caps and joins. In pixels at first.
            Stroke stroke{.width = cell % 4 == 0   ? uniform(.25, 3)
                                   : cell % 4 == 1 ? uniform(3, 40)
                                                   : uniform(.5, 20),
                          .unit = isSkewed || below(2) == 0 ? Unit::Model : Unit::Points,
                          .cap = isSkewed ? Cap::Butt : Cap(cell % 3),
                          .join = Join(cell / 3 % 3),
                          .miterLimit = uniform(1, 10),
                          .dashes = {},
                          .dashUnit = isSkewed || below(2) == 0 ? Unit::Model : Unit::Points};
            for (int n = cell % 4 > 1 ? 2 + below(4) : 0; n > 0; --n)
                stroke.dashes.push_back(n == 1 ? uniform(2, 20) : below(6) == 0 ? 0 : uniform(1, 30));
            stroke.dashOffset = uniform(-30, 30);
            std::vector<Point> points;
            for (int n = 2 + below(6); n > 0; --n)
                points.push_back(around({cell % 8 * 128 + 64.0, cell / 8 * 128 + 64.0}, 34));
            Path path;
            points.size() > 2 && below(5) < 2 ? path.addPolygon(points) : path.addPolyline(points);
            const Path modelPath = path.transformed(toModel);

            const auto scaled = [](Stroke s, double width, double dashes)
            {
                s.width *= width;
                s.dashOffset *= dashes;
                for (double& dash : s.dashes)
                    dash *= dashes;
                return s;
            };
            const Stroke modelStroke = scaled(stroke, 1 / scale, 1 / scale);
            drawing.stroke(modelPath,
                           scaled(stroke, 1 / (stroke.unit == Unit::Model ? scale : setting.pixelsPerPoint),
                                  1 / (stroke.dashUnit == Unit::Model ? scale : setting.pixelsPerPoint)),
                           td::Color(0, 0, 0, setting.alpha));
            exact.add(test::mapped(test::strokeRings(modelPath, modelStroke), toPixels), FillRule::NonZero,
                      setting.alpha / 255.0);
        }
        EXPECT_TRUE(isClose(drawn(drawing, setting), exact, {0, 0, cSize, cSize}, {3.5, 24, 64}));
    }
}

} // namespace
