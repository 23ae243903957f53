// A second opinion on fills and strokes of curves, by a library that many programs draw with.

#include "Coverage.h"
#include "support/OffscreenGL.h"

#include <gui/draw/Drawing.h>

#include <cairo.h>

#include <memory>
#include <random>

namespace
{

using gui::draw::Cap;
using gui::draw::FillRule;
using gui::draw::Join;
using gui::draw::Path;
using gui::draw::Stroke;
using test::Coverage;
using Point = Path::Point;

constexpr int cPlot = 128;
constexpr int cPage = 1024;

class CairoTest : public test::OffscreenGL
{
protected:
    CairoTest()
        : OffscreenGL({cPage, cPage})
    {
        cairo_set_antialias(_pCairo.get(), CAIRO_ANTIALIAS_BEST);
        cairo_set_tolerance(_pCairo.get(), 0.01);
    }

    double uniform(double low, double high) { return std::uniform_real_distribution<>(low, high)(_random); }

    Path makePath(int cell, bool isCurved)
    {
        const auto point = [&]
        {
            const double x = cell % 8 * cPlot + uniform(30, cPlot - 30);
            return Point(x, cell / 8 * cPlot + uniform(30, cPlot - 30));
        };
        Path path;
        path.moveTo(point());
        for (int n = 1 + static_cast<int>(uniform(0, 4)); n > 0; --n)
        {
            const double kind = isCurved ? uniform(0, 3) : 0;
            const Point a = point(), b = point(), c = point();
            kind < 1 ? path.lineTo(c) : kind < 2 ? path.quadTo(a, c) : path.cubicTo(a, b, c);
        }
        return path;
    }

    void trace(const Path& path)
    {
        const auto between = [](Point a, Point b)
        { return Point(a.x + (b.x - a.x) * 2 / 3, a.y + (b.y - a.y) * 2 / 3); };
        for (const gui::draw::PathSegment& s : path)
            switch (s.verb)
            {
            case Path::Verb::MoveTo:
                cairo_move_to(_pCairo.get(), s.to.x, s.to.y);
                break;
            case Path::Verb::LineTo:
                cairo_line_to(_pCairo.get(), s.to.x, s.to.y);
                break;
            case Path::Verb::Close:
                cairo_close_path(_pCairo.get());
                break;
            default:
                const bool isCubic = s.verb == Path::Verb::CubicTo;
                const Point a = isCubic ? s.control1 : between(s.from, s.control1);
                const Point b = isCubic ? s.control2 : between(s.to, s.control1);
                cairo_curve_to(_pCairo.get(), a.x, a.y, b.x, b.y, s.to.x, s.to.y);
            }
    }

    void compare(const test::Closeness& limits)
    {
        clear({255, 255, 255});
        ASSERT_TRUE(_drawing.draw(gui::draw::Affine()));
        const Coverage picture = test::readCoverage();
        cairo_surface_flush(_pSurface.get());
        const unsigned char* bytes = cairo_image_surface_get_data(_pSurface.get());
        const int stride = cairo_image_surface_get_stride(_pSurface.get());
        Coverage other(cPage, cPage);
        for (int y = 0; y < cPage; ++y)
            for (int x = 0; x < cPage; ++x)
                other.at(x, y) = bytes[y * stride + x] / 255.0;
        EXPECT_TRUE(isClose(picture, other, {0, 0, cPage, cPage}, limits));
    }

    std::mt19937 _random{4};
    gui::draw::Drawing _drawing;
    std::unique_ptr<cairo_surface_t, void (*)(cairo_surface_t*)> _pSurface{
        cairo_image_surface_create(CAIRO_FORMAT_A8, cPage, cPage), cairo_surface_destroy};
    std::unique_ptr<cairo_t, void (*)(cairo_t*)> _pCairo{cairo_create(_pSurface.get()), cairo_destroy};
};

TEST_F(CairoTest, Fills)
{
    for (int cell = 0; cell < 64; ++cell)
    {
        const Path path = makePath(cell, true).close().addPath(makePath(cell, true));
        const bool isEvenOdd = cell % 2 == 1;
        _drawing.fill(path, td::Color(0, 0, 0, 255), isEvenOdd ? FillRule::EvenOdd : FillRule::NonZero);
        trace(path);
        cairo_set_fill_rule(_pCairo.get(), isEvenOdd ? CAIRO_FILL_RULE_EVEN_ODD : CAIRO_FILL_RULE_WINDING);
        cairo_fill(_pCairo.get());
    }
    compare({3, 20, 30}); // cairo has 15 heights in a pixel
}

// Without what SVG 2 decides otherwise: dashes on closed paths, of which cairo joins the last with the first, and those
// of length 0, which it leaves out; and where curves end in a mitre, a bevel or a dash, cairo takes them as rounded.
TEST_F(CairoTest, Strokes)
{
    for (int cell = 0; cell < 64; ++cell)
    {
        const bool isCurved = cell % 2 == 1;
        Stroke stroke{.width = uniform(1, 24),
                      .cap = Cap(cell % 3),
                      .join = isCurved ? Join::Round : Join(cell / 3 % 3),
                      .miterLimit = 5};
        Path path = makePath(cell, isCurved);
        if (cell % 4 < 2)
            path.close();
        else if (!isCurved)
            stroke.dashes = {uniform(1, 30), uniform(1, 30), uniform(1, 30)};
        _drawing.stroke(path, stroke, td::Color(0, 0, 0, 255));
        trace(path);
        cairo_set_line_width(_pCairo.get(), stroke.width);
        cairo_set_line_cap(_pCairo.get(), cairo_line_cap_t(stroke.cap));
        cairo_set_line_join(_pCairo.get(), cairo_line_join_t(stroke.join));
        cairo_set_miter_limit(_pCairo.get(), stroke.miterLimit);
        cairo_set_dash(_pCairo.get(), stroke.dashes.data(), static_cast<int>(stroke.dashes.size()), 0);
        cairo_stroke(_pCairo.get());
    }
    // Of the largest difference nothing can be said: cairo lacks a cap here and there.
    compare({4, 60, 255});
}

} // namespace
