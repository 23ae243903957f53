#include <gui/draw/Drawing.h>
#include <gui/draw/PlotView.h>

#include <support/CapturedLog.h>
#include <support/CaughtAsserts.h>
#include <support/OffscreenGL.h>
#include <support/Pictures.h>

#include <gui/InputDevice.h>
#include <gui/Key.h>
#include <gui/Texture.h>
#include <gui/gl/FrameLedger.h>

#include <epoxy/gl.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <random>
#include <span>
#include <string>
#include <vector>

namespace
{

using namespace gui::draw;
using gui::InputDevice;

constexpr td::Size<double> cSize{640, 400};
constexpr double cNaN = std::numeric_limits<double>::quiet_NaN();

class PlotTest : public test::OffscreenGL
{
protected:
    PlotTest()
        : OffscreenGL({640, 400})
    {
    }

    void draw(Plot& plot)
    {
        EXPECT_TRUE(plot.draw(cSize));
        ASSERT_TRUE(context().readPixels(picture));
    }

    // How dark a pixel is, 0 for white.
    int darkness(int x, int y) const
    {
        const td::BYTE* p = picture.getBytes() + 3 * (y * picture.getWidth() + x);
        return 255 - (p[0] + p[1] + p[2]) / 3;
    }

    std::vector<td::BYTE> bytes() const
    {
        return {picture.getBytes(), picture.getBytes() + 3 * picture.getWidth() * picture.getHeight()};
    }

    // The smallest box that holds all pixels which are other ones than these.
    Axes::Rect differs(const std::vector<td::BYTE>& before) const
    {
        double left = 640, top = 400, right = 0, bottom = 0;
        for (std::size_t i = 0; i < before.size(); ++i)
            if (before[i] != picture.getBytes()[i])
            {
                const double x = double(i / 3 % 640), y = double(i / 3 / 640);
                left = std::min(left, x), top = std::min(top, y);
                right = std::max(right, x + 1), bottom = std::max(bottom, y + 1);
            }
        return {left, top, right, bottom};
    }

    gui::Texture picture;
};

// What its view hands on.
struct Chart : PlotView
{
    using PlotView::onCursorDragged, PlotView::onCursorExited, PlotView::onCursorMoved, PlotView::onKeyPressed;
    using PlotView::onPrimaryButtonDblClick, PlotView::onPrimaryButtonPressed, PlotView::onPrimaryButtonReleased;
    using PlotView::onScroll, PlotView::PlotView;
};

InputDevice at(double x, double y, unsigned int modifiers = 0)
{
    const td::Point<double> point(x, y);
    return {point, point, point, modifiers, InputDevice::Type::Mouse, InputDevice::Button::Primary};
}

void makeBare(Plot& plot)
{
    PlotStyle style;
    style.colors = {"#000000"};
    plot.setStyle(style);
    plot.setCrosshair(false);
    plot.axes().setBare(true);
}

// A sheet without axes, whose first ones are taken all the same; a picture without a size that is left out in silence,
// and one whose size in pixels is no int.
TEST_F(PlotTest, SizesThatAreNoneAreHarmless)
{
    test::CaughtAsserts asserts;
    test::CapturedLog log;
    Plot plot(0, 2);
    EXPECT_TRUE(asserts.caught("rows > 0 && columns > 0"));
    plot.add(Series::line({3, 1, 4}));
    EXPECT_EQ(plot.axes(0, 1).getNumberOfSeries(), 0U);
    Drawing drawing;
    for (const td::Size<double> size : {td::Size<double>(0, 10), {10, cNaN}, {1e300, 10}})
    {
        EXPECT_FALSE(plot.savePicture("none.png", size));
        EXPECT_FALSE(drawing.savePicture("none.png", size, Affine()));
        const std::vector<std::string> said = log.take();
        ASSERT_EQ(said.size(), 2U);
        EXPECT_TRUE(said[0].starts_with("Error! Framebuffer::create with a size of ")) << said[0];
        EXPECT_EQ(said[0], said[1]);
    }
}

// A column that shows less than its samples, or more; columns that move against their samples when the view does; gaps.
TEST_F(PlotTest, EachColumnShowsItsLowestAndHighestAtAnyZoom)
{
    std::mt19937 random(5);
    std::vector<double> values(400'000);
    for (std::size_t i = 0; i < values.size(); ++i)
        values[i] = i % 50'000 < 3000 ? cNaN
                                      : 0.3 * std::sin(1e-3 * static_cast<double>(i)) +
                                            0.1 * static_cast<double>(random() % 1000) / 1000;
    values[200'777] = 0.9; // one peak alone
    Plot plot;
    makeBare(plot);
    Series& series = plot.add(Series::line(values, {.width = 1}));
    plot.axes().y().setRange(-1, 1);
    for (const auto& [low, high] :
         {std::pair(0.0, 400'000.0), std::pair(123'456.7, 321'000.3), std::pair(190'000.5, 200'810.25)})
    {
        plot.axes().x().setRange(low, high);
        draw(plot);
        const double perPixel = (high - low) / cSize.width;
        for (int x = 1; x < 639; ++x)
        {
            const std::size_t first = series.findX(low + x * perPixel), end = series.findX(low + (x + 1) * perPixel);
            const Samples::Range range = series.getColumn(0).getRange(first, end);
            const auto rowOf = [](double value) { return (1 - value) / 2 * cSize.height; };
            int top = 0, bottom = 399;
            // Half covered, however the driver rounds.
            const int rounding = isDriver("llvmpipe") ? 0 : 2, dark = 128 + (range.isEmpty() ? rounding : -rounding);
            while (top < 400 && darkness(x, top) < dark)
                ++top;
            while (bottom >= 0 && darkness(x, bottom) < dark)
                --bottom;
            if (range.isEmpty())
            {
                // Lines of neighbours come half a pixel near.
                EXPECT_GT(top, bottom) << x << " of " << low;
                continue;
            }
            ASSERT_LE(top, bottom) << x << " of " << low;
            // A line of one pixel covers the pixels at its ends by half of them or more, and goes on to its neighbours'
            // ends.
            EXPECT_LE(top, rowOf(range.high) + 1.5) << x << " of " << low;
            EXPECT_GE(bottom + 1, rowOf(range.low) - 1.5) << x << " of " << low;
        }
    }
    draw(plot);
    int top = 399;
    for (int x = 0; x < 640; ++x)
        for (int y = 0; y < top; ++y)
            if (darkness(x, y) > 100)
                top = y;
    EXPECT_NEAR(top, 20, 1.5) << "the peak";
}

// Sums of coverings where pieces meet, which make joins darker, and lines that are thicker where they are steep.
TEST_F(PlotTest, LinesAndAreasCoverAsMuchAsTheyShould)
{
    Plot plot;
    makeBare(plot);
    plot.axes().x().setRange(0, 64);
    plot.axes().y().setRange(0, 40);
    td::Color grey("#00000080");
    plot.add(Series::line({10, 30, 10, 30, 10}, {.color = grey, .width = 6}).setX(2, 10));
    const std::vector<double> hookX{50, 60, 60, 50}, hookY{5, 5, 35, 35};
    plot.add(Series::line(hookX, hookY, {.color = grey, .width = 6})); // back and forth: in no order
    draw(plot);
    double sum = 0;
    for (int y = 0; y < 400; ++y)
        for (int x = 0; x < 640; ++x)
        {
            EXPECT_LE(darkness(x, y), 129) << x << ' ' << y;
            sum += darkness(x, y) / 128.0;
        }
    // Lengths times the width, round ends and joins apart.
    const double zigzag = 4 * std::hypot(100, 200), hook = 2 * 100 + 300;
    EXPECT_NEAR(sum, 6 * (zigzag + hook), 0.01 * 6 * (zigzag + hook));

    plot.axes().clear();
    plot.add(Series::area({10, 30, -5, 20}, {.width = 0, .fill = "#000000"}).setX(10.3, 10));
    plot.axes().y().setRange(-20, 40);
    draw(plot);
    sum = 0;
    for (int y = 0; y < 400; ++y)
        for (int x = 0; x < 640; ++x)
            sum += darkness(x, y) / 255.0;
    // The trapezoids above and below the base line, in pixels.
    const double unit = 10.0 * 400 / 60; // pixels of a unit square
    const double down = 30 * (10 * 30.0 / 35) / 2 + 5 * (10 * 5.0 / 35) / 2, up = 5 * 2.0 / 2 + 20 * 8.0 / 2;
    EXPECT_NEAR(sum, (10 * 20 + down + up) * unit, 0.003 * (10 * 20 + down + up) * unit);
}

// Dashes that crawl along a line while it moves, by where it comes into sight; whole numbers of pixels here.
TEST_F(PlotTest, DashesStayWhereTheyAreOnALine)
{
    std::vector<double> x, y;
    for (int i = 0; i < 30'000; ++i)
    {
        x.push_back(i + (i % 3) * 0.2);
        y.push_back(std::sin(0.02 * i));
    }
    Plot plot;
    makeBare(plot);
    plot.add(Series::line(x, y, {.width = 2, .dashes = {7, 5}}));
    plot.add(Series::steps(x, y, {.width = 2, .dashes = {4, 3}}));
    plot.axes().y().setRange(-1.2, 1.2);
    plot.axes().x().setRange(20'000, 20'320);
    draw(plot);
    const gui::Texture before = std::move(picture);
    picture = gui::Texture();
    plot.axes().x().setRange(20'018.5, 20'338.5); // 37 pixels on
    draw(plot);
    int nDark = 0, most = 0;
    for (int py = 0; py < 400; ++py)
        for (int px = 2; px < 600; ++px)
        {
            const td::BYTE* p = before.getBytes() + 3 * (py * before.getWidth() + px + 37);
            most = std::max(most, std::abs(255 - p[0] - darkness(px, py)));
            nDark += darkness(px, py) > 128 ? 1 : 0;
        }
    EXPECT_LT(most, 12);
    EXPECT_GT(nDark, 500);
}

// Error bars that vanish where samples are dense, or of which the longest does.
TEST_F(PlotTest, DenseErrorBarsShowTheirEnds)
{
    std::vector<double> values(50'000, 0.0), errors(50'000, 0.25);
    errors[20'010] = 0.75;
    Plot plot;
    makeBare(plot);
    plot.add(Series::line(values, {.width = 1}).withErrors(errors));
    plot.axes().y().setRange(-1, 1);
    plot.axes().x().setRange(0, 50'000);
    draw(plot);
    EXPECT_NEAR(darkness(300, 155), 89, 3);
    EXPECT_EQ(darkness(300, 145), 0);
    EXPECT_NEAR(darkness(static_cast<int>(20'010 * 640 / 50'000), 55), 89, 3);
    EXPECT_NEAR(darkness(static_cast<int>(20'010 * 640 / 50'000), 345), 89, 3);
}

// Long lines in no order that are not drawn, or whose parts out of sight and small parts are missed.
TEST_F(PlotTest, LongLinesMayGoAnywhere)
{
    GLint most = 0;
    glGetIntegerv(GL_MAX_TEXTURE_BUFFER_SIZE, &most);
    if (most < 300'000)
        GTEST_SKIP() << "these lines need larger texture buffers than the driver's " << most << " texels";
    std::vector<double> x, y;
    for (int i = 0; i < 700'000; ++i)
    {
        const double angle = 1e-4 * i, radius = 1 + 1e-6 * i; // 11 turns outwards
        x.push_back(radius * std::cos(angle));
        y.push_back(radius * std::sin(angle));
    }
    Plot plot;
    makeBare(plot);
    plot.add(Series::line(x, y, {.width = 2}));
    for (const double size : {2.0, 0.5})
    {
        plot.axes().x().setRange(0.9, 0.9 + 1.6 * size);
        plot.axes().y().setRange(-0.1, -0.1 + size);
        draw(plot);
        for (int turn = 1; turn < 11; ++turn)
        {
            const double radius = 1 + 1e-2 * 2 * 3.14159265358979 * turn;
            const int px = static_cast<int>((radius - 0.9) / size * 400), py = static_cast<int>((1 - 0.1 / size) * 400);
            if (px < 638)
            {
                EXPECT_GT(darkness(px, py), 100) << turn << " of " << size;
            }
        }
        EXPECT_EQ(darkness(20, 390), 0);
    }
}

// Pieces that lean otherwise where their ends are out of sight, samples that are thinned where others are beyond their
// end, paths that get coarser as soon as more of them is seen.
TEST_F(PlotTest, WhatMovesByWholePixelsStaysAsItIs)
{
    std::mt19937 random(3);
    std::vector<double> noise(20'000), pathX, pathY;
    for (double& value : noise)
        value = 1e-3 * static_cast<double>(random() % 2001) - 1;
    // Rows of zigzags, four times as narrow in the left half.
    for (int row = 0; row < 100; ++row)
        for (int i = 0; i < 3200; ++i)
        {
            pathX.push_back(i < 2560 ? 0.25 * i : i - 1920.0);
            pathY.push_back(4 * row + i % 2 * 2);
        }
    struct Move
    {
        std::function<Series()> make;
        double left, perPixelX, bottom, perPixelY;
        int x, y; // pixels
    };
    const SeriesStyle style{.width = 1};
    const std::vector<Move> moves{
        {[&] { return Series::line(noise, style); }, 3000, 20, -0.2, 1e-3, 30, 70},
        {[&] { return Series::line(noise, style); }, 19'000 - 640 * 4.5, 4.5, -1, 5e-3, -500, 0},
        {[&] { return Series::line(pathX, pathY, style); }, 640, 1, 0, 1, 320, 0},
    };
    for (std::size_t i = 0; i < moves.size(); ++i)
    {
        const Move& move = moves[i];
        Plot plot;
        makeBare(plot);
        plot.axes().x().setGrid(false);
        plot.axes().y().setGrid(false);
        plot.add(move.make());
        const auto drawAt = [&](int x, int y)
        {
            const double left = move.left - x * move.perPixelX, bottom = move.bottom + y * move.perPixelY;
            plot.axes().x().setRange(left, left + cSize.width * move.perPixelX);
            plot.axes().y().setRange(bottom, bottom + cSize.height * move.perPixelY);
            draw(plot);
        };
        drawAt(0, 0);
        std::vector<int> before;
        for (int y = 0; y < 400; ++y)
            for (int x = 0; x < 640; ++x)
                before.push_back(darkness(x, y));
        drawAt(move.x, move.y);
        int nOthers = 0, nDark = 0;
        for (int y = std::max(3, 3 - move.y); y < std::min(397, 397 - move.y); ++y)
            for (int x = std::max(3, 3 - move.x); x < std::min(637, 637 - move.x); ++x)
            {
                const int here = before[static_cast<std::size_t>(640 * y + x)];
                nDark += here > 100 ? 1 : 0;
                nOthers += std::abs(here - darkness(x + move.x, y + move.y)) > 3 ? 1 : 0;
            }
        EXPECT_GT(nDark, 1000) << i;
        EXPECT_LT(nOthers, nDark / 100) << i;
    }
}

// A plot that does not follow when an axis is moved in another one, or two that move each other for ever.
TEST_F(PlotTest, PlotsWithALinkedAxisFollowEachOther)
{
    int nAsked = 0;
    Plot plot, other;
    other.add(Series::line({1, 2, 3}));
    Series& series = plot.add(Series::line({1, 2, 3, 4, 5}));
    other.axes().x().link(plot.axes().x());
    draw(other);
    EXPECT_EQ(other.axes().x().getRange(), (Ticks::Range{0, 4})) << "both";
    draw(plot);
    other.setOnChange([&nAsked] { ++nAsked; });
    plot.axes().x().pan(0.1);
    EXPECT_EQ(nAsked, 1);
    draw(other);
    plot.axes().fit();
    draw(plot);
    draw(other);
    nAsked = 0;
    series.append(6);
    EXPECT_EQ(nAsked, 0);
    draw(plot);
    EXPECT_EQ(nAsked, 1);
    draw(other);
    draw(plot);
    EXPECT_EQ(nAsked, 1);
    EXPECT_EQ(other.axes().x().getRange(), (Ticks::Range{0, 5}));
}

// Axes that jump under the pointer, boxes that show something else, ranges that never come back.
TEST_F(PlotTest, PointerAndKeysMoveWhatIsSeen)
{
    Chart chart(2, 1);
    context().makeCurrent();
    Plot& plot = chart.getPlot();
    plot.linkX();
    plot.add(Series::line(std::vector<float>(1001, 1.0F)));
    plot.axes(1).add(Series::line({1, 5, 2}).setX(0, 500));
    draw(plot);
    Axes& axes = plot.axes(1);
    const Axes::Rect area = axes.getArea();
    const Axes::Point from{area.left + 100, area.top + 50};
    const Axes::Point value = axes.toValues(from);
    chart.onPrimaryButtonPressed(at(from.x, from.y));
    chart.onCursorDragged(at(from.x + 60, from.y + 20));
    chart.onPrimaryButtonReleased(at(from.x + 60, from.y + 20));
    draw(plot);
    EXPECT_NEAR(axes.toPoint(value.x, value.y).x, from.x + 60, 0.01);
    EXPECT_NEAR(axes.toPoint(value.x, value.y).y, from.y + 20, 0.01);
    EXPECT_EQ(plot.axes(0).x().getRange(), axes.x().getRange()) << "linked";

    InputDevice wheel({0, 15}, {0, 0}, {0, 0}, 0, InputDevice::Type::Mouse, InputDevice::Button::Wheel);
    gui::InputDeviceHelper(&wheel).setPlace(from);
    const Axes::Point kept = axes.toValues(from);
    ASSERT_TRUE(chart.onScroll(wheel));
    draw(plot);
    EXPECT_NEAR(axes.toPoint(kept.x, kept.y).x, from.x, 0.01);
    // On the numbers of y, y alone.
    const Ticks::Range x = axes.x().getRange(), y = axes.y().getRange();
    gui::InputDeviceHelper(&wheel).setPlace({area.left - 20, from.y});
    ASSERT_TRUE(chart.onScroll(wheel));
    EXPECT_EQ(axes.x().getRange(), x);
    EXPECT_FALSE(axes.y().getRange() == y);
    gui::InputDeviceHelper(&wheel).setPlace({-50, 500});
    EXPECT_FALSE(chart.onScroll(wheel)) << "where there is no plot";

    draw(plot);
    const Axes::Point a = axes.toValues({area.left + 50, area.bottom - 20});
    const Axes::Point b = axes.toValues({area.left + 250, area.top + 10});
    const auto shift = static_cast<unsigned int>(gui::KeyModifier::Shift);
    chart.onPrimaryButtonPressed(at(area.left + 50, area.bottom - 20, shift));
    chart.onCursorDragged(at(area.left + 250, area.top + 10, shift));
    const std::vector<td::BYTE> without = bytes();
    draw(plot); // with the box
    EXPECT_EQ(differs(without), Axes::Rect(area.left + 50, area.top + 10, area.left + 250, area.bottom - 20));
    chart.onPrimaryButtonReleased(at(area.left + 250, area.top + 10, shift));
    EXPECT_NEAR(axes.x().getRange().low, a.x, 1e-6);
    EXPECT_NEAR(axes.x().getRange().high, b.x, 1e-6);
    EXPECT_NEAR(axes.y().getRange().low, a.y, 1e-9);
    EXPECT_NEAR(axes.y().getRange().high, b.y, 1e-9);

    chart.onPrimaryButtonDblClick(at(from.x, from.y));
    // The pointer shows what is under it, and takes that along.
    chart.onCursorExited(at(from.x, from.y));
    draw(plot);
    const std::vector<td::BYTE> before = bytes();
    const Axes::Point peak = axes.toPoint(500, 5);
    chart.onCursorMoved(at(peak.x + 2, peak.y));
    draw(plot);
    const Axes::Rect readout = differs(before); // with its ring, below, as there is no room above
    EXPECT_GE(readout.top, area.top);
    chart.onCursorExited(at(from.x, from.y));
    draw(plot);
    EXPECT_TRUE(bytes() == before);
    EXPECT_EQ(axes.x().getRange(), (Ticks::Range{0, 1000}));
    EXPECT_NEAR(axes.y().getRange().low, 0.8, 1e-9);
    EXPECT_TRUE(axes.x().pan(0.5));
    EXPECT_EQ(axes.x().getRange(), (Ticks::Range{500, 1500}));
    axes.fit();
    draw(plot);
    const std::optional<Axes::Hit> hit = axes.findNearest(axes.toPoint(501, 4.9), 20);
    ASSERT_TRUE(hit);
    EXPECT_EQ(hit->index, 1U);
    EXPECT_EQ(hit->y, 5);
    // Another size on the way to a file is not where the pointer is.
    const Axes::Rect seen = axes.getArea();
    ASSERT_TRUE(plot.savePicture((testing::TempDir() + "smallplot.png").c_str(), {200, 120}, 1));
    EXPECT_EQ(axes.getArea(), seen);
    const std::vector<td::BYTE> whole = bytes();
    draw(plot);
    EXPECT_TRUE(bytes() == whole);
}

// A year of samples by the second, at which floats no longer tell one from the next.
TEST_F(PlotTest, FarCoordinatesStayExact)
{
    const double start = 1.7e9;
    Plot plot;
    makeBare(plot);
    plot.axes().x().setScale(Scale::time());
    plot.add(Series::steps(Samples::computed(31'536'000,
                                             [](std::size_t first, std::span<double> values)
                                             {
                                                 for (std::size_t i = 0; i < values.size(); ++i)
                                                     values[i] = static_cast<double>((first + i) % 2);
                                             }),
                           {.width = 2})
                 .setX(start, 1));
    plot.axes().x().setRange(start + 30'000'000 - 0.25, start + 30'000'000 + 3.75);
    plot.axes().y().setRange(-0.5, 1.5);
    draw(plot);
    // Rises at 30,000,001, a quarter of the width from the sample before, and so on.
    for (const int x : {200, 360, 520})
    {
        EXPECT_GT(darkness(x, 200), 250) << x;
        EXPECT_EQ(darkness(x - 3, 200), 0) << x;
        EXPECT_EQ(darkness(x + 3, 200), 0) << x;
    }
    EXPECT_GT(darkness(280, 100), 250);
    EXPECT_GT(darkness(120, 300), 250);
}

// Where a marker, one of very many and a line are seen, against exact arithmetic, at places and zooms of all sizes.
TEST_F(PlotTest, NothingIsSeenAnywhereElse)
{
    constexpr int nPlaces = 60;
    std::mt19937_64 random(21);
    const auto uniform = [&random](double low, double high)
    { return low + (high - low) * 0x1p-53 * static_cast<double>(random() >> 11); };
    for (int i = 0; i < nPlaces; ++i)
    {
        enum class Kind
        {
            Marker,
            Cloud,
            Line
        };
        const auto kind = static_cast<Kind>(i % 3);
        double seen[2]{}, low[2]{}, high[2]{};
        for (int axis = 0; axis < 2; ++axis)
        {
            const double size = std::pow(10, uniform(-6, 12));
            const double width = size * std::pow(10, kind == Kind::Cloud ? uniform(-4, 2) : uniform(-8, 4));
            seen[axis] = uniform(-1, 1) < 0 ? -size : size;
            low[axis] = seen[axis] - width * uniform(0.2, 0.8);
            high[axis] = low[axis] + width;
        }
        std::vector<double> xs, ys;
        const int nOthers = kind == Kind::Marker ? 0 : kind == Kind::Cloud ? 5000 : 2;
        for (int k = 0; k < nOthers; ++k)
        {
            // A line goes through what is seen; the others are out of sight, about the place and as far from 0.
            const double far = kind == Kind::Line ? 3 * (high[0] - low[0]) : std::abs(seen[0]) + 9 * (high[0] - low[0]);
            xs.push_back(seen[0] + (k % 2 == 0 ? -far : far));
            ys.push_back(kind == Kind::Line ? seen[1] + (k % 2 == 0 ? 1 : -1) * (high[1] - low[1]) : seen[1]);
        }
        if (kind != Kind::Line)
        {
            xs.insert(xs.begin() + nOthers / 2, seen[0]);
            ys.insert(ys.begin() + nOthers / 2, seen[1]);
        }
        Plot plot;
        makeBare(plot);
        const SeriesStyle style{
            .width = 3, .marker = kind == Kind::Line ? Marker::None : Marker::Square, .markerSize = 9};
        if (kind == Kind::Line)
            plot.add(Series::line(xs, ys, style));
        else
            plot.add(Series::scatter(xs, ys, style));
        plot.axes().x().setRange(low[0], high[0]);
        plot.axes().y().setRange(low[1], high[1]);
        draw(plot);

        using Exact = long double;
        const auto share = [&](int axis, Exact at)
        { return (at - Exact(low[axis])) / (Exact(high[axis]) - Exact(low[axis])); };
        double exact[2] = {640 * double(share(0, seen[0])), 400 * double(1 - share(1, seen[1]))};
        double sum = 0, sums[2]{};
        if (kind == Kind::Line)
        {
            // In the column of pixels that is in the middle.
            const Exact x0 = 640 * share(0, xs[0]), x1 = 640 * share(0, xs[1]);
            const Exact y0 = 400 * (1 - share(1, ys[0])), y1 = 400 * (1 - share(1, ys[1]));
            exact[0] = 320.5;
            exact[1] = double(y0 + (y1 - y0) * (320.5L - x0) / (x1 - x0));
        }
        for (int y = 0; y < 400; ++y)
            for (int x = kind == Kind::Line ? 320 : 0; x < (kind == Kind::Line ? 321 : 640); ++x)
            {
                sum += darkness(x, y);
                sums[0] += darkness(x, y) * (x + 0.5);
                sums[1] += darkness(x, y) * (y + 0.5);
            }
        ASSERT_GT(sum, 0) << i;
        for (int axis = 0; axis < 2; ++axis)
            EXPECT_NEAR(sums[axis] / sum, exact[axis], 0.1) << i << ", axis " << axis << ", kind " << int(kind);
    }
}

// Uploads at rest; frames that are missed, or drawn for nothing; old samples that stay.
TEST_F(PlotTest, LiveSeriesAskForFramesAndRestCostsNone)
{
    int nAsked = 0;
    Plot plot;
    plot.setOnChange([&nAsked] { ++nAsked; });
    plot.setCrosshair(false);
    Series& series = plot.add(Series::line(Samples::ofFloats()));
    series.setX(0, 0.01);
    series.setLimit(70'000);
    plot.axes().x().follow(10);
    draw(plot);
    nAsked = 0;
    for (int i = 0; i < 200; ++i)
        series.append(std::vector<float>(1000, static_cast<float>(i % 2)));
    EXPECT_EQ(nAsked, 200);
    plot.axes().y().setRange(-1, 2);
    EXPECT_EQ(nAsked, 201);
    EXPECT_TRUE(plot.isChanged());
    draw(plot);
    EXPECT_FALSE(plot.isChanged());
    // A series that goes takes its own count of changes with it.
    const Series& passing = plot.add(Series::line({1, 2}));
    draw(plot);
    EXPECT_TRUE(plot.axes().remove(passing));
    EXPECT_TRUE(plot.isChanged());
    draw(plot);
    EXPECT_NEAR(plot.axes().x().getRange().high, 1999.99, 1e-6);
    EXPECT_NEAR(plot.axes().x().getRange().low, 1989.99, 1e-6);
    EXPECT_GE(series.getFirst(), 200'000U - 70'000 - 65'536);
    gui::gl::FrameLedger::start(gui::gl::FrameLedger::Times::CPU);
    draw(plot);
    gui::gl::FrameLedger::begin();
    ASSERT_TRUE(plot.draw(cSize));
    gui::gl::FrameLedger::end();
    EXPECT_EQ(gui::gl::FrameLedger::getLast().nUploads, 0U);
    gui::gl::FrameLedger::stop();
}

// What is set and not seen before something else changes.
TEST_F(PlotTest, WhatIsSetIsDrawnWithTheNextFrame)
{
    int nAsked = 0;
    Plot plot(2, 2);
    plot.setOnChange([&nAsked] { ++nAsked; });
    plot.add(Series::line({1, 500, 20}, {.label = "five"}));
    PlotStyle style;
    style.minorGrid = "#ff8080";
    plot.setStyle(style);
    style.background = "#e0e0ff";
    Axes& axes = plot.axes();
    const std::function<void()> changes[] = {
        [&] {
            plot.setRowShares(std::array{2.0, 3.0});
        },
        [&] {
            plot.setColumnShares(std::array{3.0, 1.0});
        },
        [&] { axes.setLegend(Axes::Legend::None); },
        [&] { axes.setLegend(Axes::Legend::BottomLeft); },
        [&] { axes.setTitle("a title"); },
        [&] { axes.setMinorGrid(true); },
        [&] { axes.x().setTitle("metres"); },
        [&] { axes.x().setGrid(false); },
        [&] { axes.x().setTickDistance(20); },
        [&] { axes.y().setScale(Scale::logarithmic()); },
        [&] { axes.setBare(true); },
        [&] { plot.setStyle(style); },
    };
    draw(plot);
    for (const auto& change : changes)
    {
        const std::vector<td::BYTE> before = bytes();
        nAsked = 0;
        change();
        EXPECT_GE(nAsked, 1) << &change - changes;
        EXPECT_TRUE(plot.isChanged()) << &change - changes;
        draw(plot);
        EXPECT_FALSE(before == bytes()) << &change - changes;
        // Said again, as by a timer, it changes nothing.
        nAsked = 0;
        change();
        EXPECT_EQ(nAsked, &change == &std::end(changes)[-1] ? 1 : 0) << &change - changes;
        draw(plot);
    }
    EXPECT_TRUE(axes.x().setRange(1, 2));
    nAsked = 0;
    EXPECT_TRUE(axes.x().setRange(1, 2));
    plot.setCrosshair(true);
    plot.onExited();
    axes.getSeries(0).append(std::span<const double>());
    EXPECT_EQ(nAsked, 0);
    axes.fit();
    nAsked = 0;
    axes.fit();
    EXPECT_EQ(nAsked, 0);
    EXPECT_EQ(axes.getArea(), Axes::Rect(0, 0, 480, 160));
    // Numbers are as exact as the screen.
    const auto told = [&](double low, double high, double value)
    {
        EXPECT_TRUE(axes.x().setRange(low, high));
        return axes.format(axes.x(), value);
    };
    EXPECT_EQ(told(0, 48000, 12345.678), "12\u2009346");
    EXPECT_EQ(told(0, 6, 1.23456), "1.23");
    axes.x().setScale(Scale::time());
    EXPECT_EQ(told(0, 20000, 4000), "1 Jan 1970 01:06:40");
    EXPECT_EQ(told(0, 80, 65.25), "1 Jan 1970 00:01:05.3");
    // Where a logarithm has none, what is above zero is shown.
    plot.axes(1, 1).y().setScale(Scale::logarithmic());
    plot.axes(1, 1).add(Series::line({0, 0.5, 20, 300}));
    draw(plot);
    EXPECT_NEAR(plot.axes(1, 1).y().getRange().low, 0.5, 0.3);
}

// Series of all kinds under edits and moves of every kind, against a plain model of what they hold; GL errors, numbers
// that are none, and whatever sanitizers find.
TEST_F(PlotTest, ARandomWalkKeepsSeriesAsAPlainModelHasThem)
{
    std::mt19937 random(9);
    const auto below = [&random](unsigned int n) { return static_cast<unsigned int>(random() % n); };
    const auto value = [&]() -> double
    {
        switch (below(12))
        {
        case 0:
            return cNaN;
        case 1:
            return std::numeric_limits<double>::infinity();
        case 2:
            return 1e300 * (below(2) == 0 ? -1 : 1);
        case 3:
            return 0;
        default:
            return static_cast<double>(below(2000)) / 100 - 10;
        }
    };
    struct Model
    {
        Series* pSeries;
        std::vector<double> x, y;
    };
    std::vector<Model> models;
    Plot plot(1, 2);
    for (int step = 0; step < 300; ++step)
    {
        Axes& axes = plot.axes(0, below(2));
        const unsigned int action = below(10);
        if (action == 0 && models.size() < 8)
        {
            std::vector<double> x, y, z;
            double place = value();
            for (unsigned int i = below(3000); i > 0; --i)
            {
                place += below(9) == 0 ? value() : 0.1 * below(10);
                x.push_back(place);
                y.push_back(value());
                z.push_back(value());
            }
            const SeriesStyle style{.label = below(2) == 0 ? "some" : "", .marker = static_cast<Marker>(below(15))};
            Series made = Series::line(x, y, style);
            switch (below(8))
            {
            case 0:
                made = Series::area(x, y, style);
                break;
            case 1:
                made = Series::steps(x, y, style);
                break;
            case 2:
                made = Series::stems(x, y, style);
                break;
            case 3:
                made = Series::bars(x, y, style);
                break;
            case 4:
                made = Series::scatter(x, y, style).colorBy(z);
                break;
            case 5:
                made = Series::scatter(x, y, style).withErrors(z);
                break;
            default:
                break;
            }
            models.push_back({&axes.add(std::move(made)), x, y});
        }
        else if (action < 4 && !models.empty())
        {
            Model& model = models[below(static_cast<unsigned int>(models.size()))];
            const double x = value(), y = value();
            model.pSeries->append(x, y);
            model.x.push_back(x);
            model.y.push_back(y);
        }
        else if (action == 4)
            axes.x().setScale(below(3) == 0   ? Scale::logarithmic()
                              : below(2) == 0 ? Scale::time("local")
                                              : Scale::linear());
        else if (action == 5)
            axes.y().zoom(std::exp(value()), value());
        else if (action == 6)
            axes.x().setRange(value(), value());
        else if (action == 7)
            axes.fit();
        else if (action == 8)
            plot.onMoved(at(640.0 * below(100) / 100, 400.0 * below(100) / 100));
        else
            axes.y().setFit(below(2) == 0 ? Axis::Fit::Visible : Axis::Fit::All);
        ASSERT_TRUE(plot.draw(cSize, 1 + below(2))) << step;
        ASSERT_TRUE(takeErrors().empty()) << step;
        for (const std::size_t side : {0, 1})
        {
            const Ticks::Range& range = plot.axes(0, side).x().getRange();
            ASSERT_TRUE(range.low < range.high && std::isfinite(range.low) && std::isfinite(range.high)) << step;
        }
        if (models.empty())
            continue;
        const Model& model = models[below(static_cast<unsigned int>(models.size()))];
        ASSERT_EQ(model.pSeries->size(), model.x.size());
        ASSERT_EQ(model.pSeries->isSorted(),
                  std::is_sorted(model.x.begin(), model.x.end()) &&
                      std::none_of(model.x.begin(), model.x.end(), [](double x) { return std::isnan(x); }));
    }
}

// Bars that stand on something else, stems the wrong way, candles whose wicks are beside them.
TEST_F(PlotTest, BarsStemsAndCandlesReachTheirNumbers)
{
    const std::vector<double> xs{0, 1, 2, 3};
    const SeriesStyle style{.color = "#000000", .fill = td::Color("#000000")};
    SeriesStyle marked = style;
    marked.marker = Marker::Square;
    marked.markerSize = 20;
    struct Place
    {
        int x, y;
        bool isDark;
    };
    // A sample is 160 pixels, a unit 40, and zero in the middle.
    const auto look = [&](Series series, const std::vector<Place>& places)
    {
        Plot plot;
        makeBare(plot);
        plot.add(std::move(series));
        plot.axes().x().setRange(-0.5, 3.5);
        plot.axes().y().setRange(-5, 5);
        draw(plot);
        for (const auto& [x, y, isDark] : places)
            EXPECT_EQ(darkness(x, y) > 60, isDark) << x << ' ' << y;
    };
    look(Series::bars(xs, {2, -3, cNaN, 4}, marked), {{40, 122, true},
                                                      {40, 117, false},
                                                      {80, 112, true},
                                                      {80, 205, false},
                                                      {240, 195, false},
                                                      {290, 317, true},
                                                      {290, 323, false},
                                                      {400, 195, false},
                                                      {560 - 62, 100, true},
                                                      {560 - 66, 100, false},
                                                      {560 + 62, 195, true}});
    look(Series::stems(xs, {2, -3, cNaN, 4}, style),
         {{80, 160, true}, {80, 230, false}, {240, 260, true}, {240, 190, false}, {560, 42, true}, {120, 160, false}});
    look(Series::stems(xs, {2, -3, cNaN, 4}, style).withErrors(std::vector<double>{1, 1, 1, 1}),
         {{80, 90, true}, {240, 350, true}});
    SeriesStyle falling = style;
    falling.fill = td::Color("#ffffff");
    look(Series::candles(xs, {1, 3, 0, 0}, {4, 4, 0, 0}, {-1, -2, 0, 0}, {3, 1, 0, 0}, falling), {{130, 120, true},
                                                                                                  {130, 76, false},
                                                                                                  {130, 164, false},
                                                                                                  {80, 60, true},
                                                                                                  {80, 220, true},
                                                                                                  {60, 60, false},
                                                                                                  {290, 120, false}});
}

// Cells of other numbers, upside down or none at all; numbers that are set and not sent; lines that are not drawn.
TEST_F(PlotTest, HeatMapsShowTheirNumbers)
{
    Plot plot;
    makeBare(plot);
    const auto colorAt = [&](int x, int y)
    {
        const td::BYTE* p = picture.getBytes() + 3 * (y * picture.getWidth() + x);
        return std::array<int, 3>{p[0], p[1], p[2]};
    };
    std::vector<float> values{0, 1, 2, 3, 4, 5, static_cast<float>(cNaN), 7};
    HeatMap& map = plot.axes().add(HeatMap(4, 2, values, {0, 0, 8, 2}));
    plot.axes().x().setRange(0, 8);
    plot.axes().y().setRange(0, 2);
    for (const bool isOther : {false, true})
    {
        if (isOther)
        {
            std::ranges::reverse(values);
            map.setValues(values);
            EXPECT_TRUE(plot.isChanged());
        }
        draw(plot);
        EXPECT_EQ(map.getLow(), 0);
        EXPECT_EQ(map.getHigh(), 7);
        for (int i = 0; i < 8; ++i)
            for (const int aside : {-70, 0, 70}) // to the cell's edges
            {
                const float value = values[std::size_t(i)];
                const td::Color wanted =
                    value >= 0 ? map.getColorMap().getColor(double(value) / 7) : td::Color("#ffffff");
                const std::array<int, 3> color = colorAt(i % 4 * 160 + 80 + aside, 300 - i / 4 * 200 + aside);
                EXPECT_NEAR(color[0], wanted.red(), 2) << i;
                EXPECT_NEAR(color[1], wanted.green(), 2) << i;
                EXPECT_NEAR(color[2], wanted.blue(), 2) << i;
            }
    }
    // A line in the middle, as wide as it should be; none at other levels after others are set.
    Plot other;
    makeBare(other);
    HeatMap& lined = other.axes().add(
        HeatMap(4, 2, {0, 1, 2, 3, 0, 1, 2, 3}, {0, 0, 8, 2}).setContours(std::vector{1.5}, "#ff0000", 6));
    other.axes().x().setRange(0, 8);
    other.axes().y().setRange(0, 2);
    draw(other);
    for (const int x : {315, 318, 321, 324})
        EXPECT_EQ(colorAt(x, 200) == (std::array<int, 3>{255, 0, 0}), x == 318 || x == 321) << x;
    lined.setValues({0, 0, 0, 3, 0, 0, 0, 3});
    draw(other);
    EXPECT_NE(colorAt(321, 200)[0], 255);
    EXPECT_EQ(colorAt(480, 200)[0], 255);
    // Another map beside it; levels by their number are round ones.
    HeatMap& ramp = other.axes().add(HeatMap(2, 2, {0, 10, 0, 10}, {0, 0, 8, 2}).setContours(4U));
    EXPECT_NE(&ramp, &lined);
    ASSERT_GE(ramp.getContours().size(), 4U);
    for (const HeatMap::Contour& contour : ramp.getContours())
        EXPECT_EQ(contour.level / 2.5, std::round(contour.level / 2.5));
    // Ends that are one number, none, beyond the values, or fall: the shares of the first and the last value.
    const double infinity = std::numeric_limits<double>::infinity();
    const struct
    {
        std::vector<float> values;
        std::optional<double> low, high;
        double first, last;
    } ends[] = {{{5, 5, 5}, {}, {}, 0, 0},  {{1e20F, 1e20F, 1e20F}, {}, {}, 0, 0},
                {{1, 2, 3}, 2, 2, 0, 1},    {{1, 2, 3}, cNaN, infinity, 0, 1},
                {{1, 2, 3}, 3, 1, 1, 0},    {{1, 2, 3}, 9, {}, 0, 0},
                {{1, 2, 3}, {}, 0.5, 1, 1}, {{-INFINITY, 2, 3}, {}, {}, 0, 1}};
    for (const auto& test : ends)
    {
        const HeatMap one = HeatMap(3, 1, test.values, {0, 0, 1, 1}).setColors(ColorMap::grey(), test.low, test.high);
        const Series marks =
            Series::scatter({1, 2, 3}, {1, 2, 3}).colorBy(test.values, ColorMap::grey(), test.low, test.high);
        const Samples::Range range = marks.getColorRange();
        EXPECT_TRUE(range.low == one.getLow() && range.high == one.getHigh()) << &test - ends;
        const auto shareOf = [&](double value)
        { return std::clamp((value - range.low) / (range.high - range.low), 0.0, 1.0); };
        EXPECT_EQ(shareOf(test.values.front()), test.first) << &test - ends;
        EXPECT_EQ(shareOf(test.values.back()), test.last) << &test - ends;
    }
}

// Lines that break off at cells of which two corners are higher, or that join two hills which have a pass between them.
TEST_F(PlotTest, ContoursGoRoundWhatIsHigher)
{
    // Two hills, and a saddle between them.
    std::vector<float> heights;
    for (int row = 0; row < 40; ++row)
        for (int column = 0; column < 80; ++column)
        {
            const double y = (row - 19.5) / 10, left = (column - 24.5) / 10.0, right = (column - 54.5) / 10.0;
            heights.push_back(static_cast<float>(std::exp(-left * left - y * y) + std::exp(-right * right - y * y)));
        }
    heights[20 * 80 + 79] = std::nanf("");
    const HeatMap map = HeatMap(80, 40, heights, {0, 0, 8, 4}).setContours({0.1, 0.5}, "#000000");
    double areas[2] = {};
    int n[2] = {};
    for (const HeatMap::Contour& contour : map.getContours())
    {
        const int i = contour.level == 0.5 ? 1 : 0;
        ++n[i];
        EXPECT_TRUE(contour.isClosed);
        double area = 0;
        for (std::size_t k = 1; k < contour.points.size(); ++k)
            area += contour.points[k - 1].x * contour.points[k].y - contour.points[k].x * contour.points[k - 1].y;
        areas[i] += std::abs(area) / 2;
        for (const td::Point<double>& point : contour.points)
        {
            const double y = point.y - 2, left = point.x - 2.5, right = point.x - 5.5;
            EXPECT_NEAR(std::exp(-left * left - y * y) + std::exp(-right * right - y * y), contour.level, 0.004);
        }
    }
    EXPECT_EQ(n[0], 1) << "both hills";
    EXPECT_EQ(n[1], 2);
    // Around each, where exp(-r^2) is a half: pi ln 2, and a little for the other one.
    EXPECT_NEAR(areas[1], 2 * 3.14159 * std::log(2), 0.03);
    EXPECT_TRUE(std::isnan(map.getValue(7.95, 2.05)));
    EXPECT_EQ(map.getValue(0.05, 0.05), heights[0]);
}

// Parts that are drawn after they were moved elsewhere, or tell a plot that has gone; others that nobody asks to draw.
TEST_F(PlotTest, PartsMoveBetweenPlots)
{
    int nAsked = 0;
    auto pPlot = std::make_unique<Plot>();
    Plot other;
    Series& series = pPlot->add(Series::line({1, 2, 3}));
    HeatMap& map = pPlot->axes().add(HeatMap(2, 2, {1, 2, 3, 4}, {0, 0, 2, 2}).setContours(3U));
    draw(*pPlot);
    pPlot->setOnChange([&nAsked] { ++nAsked; });
    series = Series::line({4, 5, 6, 7});
    map = HeatMap(2, 2, {1, 1, 9, 1}, {0, 0, 4, 7});
    EXPECT_EQ(nAsked, 2);
    EXPECT_TRUE(pPlot->isChanged());
    draw(*pPlot);
    EXPECT_GT(pPlot->axes().y().getRange().high, 6.9);
    series.append(8);
    EXPECT_EQ(nAsked, 3);
    map = std::move(map).setContours(2U);
    EXPECT_EQ(nAsked, 4);

    Series taken = std::move(series);
    other.axes().add(std::move(map));
    EXPECT_TRUE(series.size() == 0 && map.getContours().empty() && std::isnan(map.getValue(1, 1)));
    draw(*pPlot);
    draw(other);
    pPlot.reset();
    taken.append(9);
    EXPECT_EQ(taken.size(), 6U);
    EXPECT_EQ(nAsked, 4);
}

// Plots that stay empty where numbers are too large or too fine for an axis, or one map's extent is none; a sample
// alone that nobody sees.
TEST_F(PlotTest, WhatThereIsIsShownWhateverItsSize)
{
    const double cMost = std::numeric_limits<double>::max();
    const struct
    {
        std::vector<double> values;
        bool isLogarithmic;
        double seen[2];
    } cases[] = {{{1e15, 1e15 + 1, 1e15 + 50}, false, {1e15, 1e15 + 50}},
                 {{cMost, -cMost, 1, cMost}, false, {-9e299, 9e299}},
                 {{1e-307, 1, 1e308}, true, {1e-300, 1e300}},
                 {{7, 7, 7}, false, {7, 7}},
                 {{1e-320, 1e-310}, false, {1e-320, 1e-310}},
                 {{5}, true, {5, 5}}};
    for (const auto& test : cases)
    {
        Plot plot;
        makeBare(plot);
        if (test.isLogarithmic)
            plot.axes().y().setScale(Scale::logarithmic());
        plot.axes().add(HeatMap(1, 1, {1}, {0, cNaN, 1, 2}));
        plot.axes().add(HeatMap(1, 1, {1}, {-std::numeric_limits<double>::infinity(), 0, 1, 2}));
        plot.axes().add(HeatMap(1, 1, {1}, {1e9, 1e9, 1e9, 1e9}));
        plot.add(Series::line(test.values, {.width = 1.5}));
        draw(plot);
        const Ticks::Range range = plot.axes().y().getRange();
        EXPECT_TRUE(range.low <= test.seen[0] && range.high >= test.seen[1]) << range.low << " to " << range.high;
        EXPECT_LT(plot.axes().x().getRange().high, 10);
        int nDark = 0;
        for (int y = 0; y < 400; ++y)
            for (int x = 0; x < 640; ++x)
                nDark += darkness(x, y) > 128 ? 1 : 0;
        EXPECT_GT(nDark, 8) << test.values[0];
    }
}

// What is half out of sight, or on the last number that is seen; a cloud that has forgotten its beginning.
TEST_F(PlotTest, WhatIsAtTheEdgesIsSeen)
{
    Plot plot;
    makeBare(plot);
    plot.axes().x().setRange(0, 1);
    plot.axes().y().setRange(0, 1);
    const SeriesStyle square{.color = "#000000", .marker = Marker::Square, .markerSize = 20};
    plot.add(Series::scatter({0, 1, 0.5, 0.5}, {0.5, 0.5, 0, 1}, square));
    draw(plot);
    for (const auto& [x, y] : {std::pair(5, 200), {634, 200}, {320, 5}, {320, 394}})
        EXPECT_GT(darkness(x, y), 100) << x << ' ' << y;

    // Upwards at the end, where several samples are.
    plot.axes().clear();
    plot.add(Series::line({0, 1, 1, 1, 2}, {0.25, 0.25, 0.75, 0.5, 0.5}, {.color = "#000000", .width = 6}));
    draw(plot);
    EXPECT_GT(darkness(320, 300), 250);
    EXPECT_GT(darkness(638, 150), 250);

    plot.axes().clear();
    Series& cloud = plot.add(Series::scatter(std::vector<double>(), std::vector<double>(),
                                             {.color = "#000000", .marker = Marker::Square, .markerSize = 4}));
    cloud.setLimit(70'000);
    for (int i = 0; i < 200; ++i)
        cloud.append(std::vector<double>(1000, i), std::vector<double>(1000, 0.5));
    const int first = static_cast<int>(cloud.getFirst() / 1000);
    ASSERT_GT(first, 60);
    plot.axes().x().setRange(0, 200);
    draw(plot);
    for (const int i : {first - 5, first + 5, 199})
        EXPECT_EQ(darkness(static_cast<int>(3.2 * i), 200) > 200, i > first) << i;
}

// Numbers beside no tick, ticks beside no number; a box that hides what it explains, or has three sides; bars cut off.
TEST_F(PlotTest, AFrameHasAllThatItShould)
{
    Plot plot;
    PlotStyle style;
    style.minorGrid = "#ff8080";
    plot.setStyle(style);
    Axes& axes = plot.axes();
    plot.add(Series::line({1, 1, 1, 1, 0}, {.label = "high", .color = "#0000ff", .width = 4}));
    plot.add(Series::line({1, 1, 1, 1, 1}, {.label = "flat", .color = "#0000ff", .width = 4}));
    const auto count = [&](const Axes::Rect& rect, const std::function<bool(int, int, int)>& isWanted)
    {
        int n = 0;
        for (int y = int(std::ceil(rect.top)); y < int(rect.bottom); ++y)
            for (int x = int(std::ceil(rect.left)); x < int(rect.right); ++x)
            {
                const td::BYTE* p = picture.getBytes() + 3 * (y * picture.getWidth() + x);
                n += isWanted(p[0], p[1], p[2]) ? 1 : 0;
            }
        return n;
    };
    const auto isDark = [](int r, int g, int b) { return r + g + b < 300; };
    const auto isPink = [](int r, int g, int b) { return r == 255 && g == 128 && b == 128; };
    const auto isBlue = [](int r, int g, int b) { return r < 80 && g < 80 && b > 200; };
    const Axes::Rect all{0, 0, 640, 400};
    axes.setLegend(Axes::Legend::None);
    draw(plot);
    const Axes::Rect area = axes.getArea();
    EXPECT_GE(count({area.left, area.bottom + 2, area.right, area.bottom + 3}, isDark), 4);
    EXPECT_GE(count({area.left - 3, area.top, area.left - 2, area.bottom}, isDark), 4);
    EXPECT_EQ(count(all, isPink), 0);
    axes.setMinorGrid(true);
    draw(plot);
    EXPECT_GT(count(all, isPink), 500);
    axes.setMinorGrid(false);
    draw(plot);

    // In each corner as far from both edges, with a sample of each line; by itself where the lines are not.
    const std::vector<td::BYTE> without = bytes();
    using Legend = Axes::Legend;
    std::vector<Axes::Rect> boxes;
    for (const Legend legend : {Legend::BottomLeft, Legend::TopLeft, Legend::TopRight, Legend::BottomRight})
    {
        axes.setLegend(legend);
        draw(plot);
        const Axes::Rect box = boxes.emplace_back(differs(without));
        const bool isLeft = legend == Legend::TopLeft || legend == Legend::BottomLeft;
        const bool isTop = legend == Legend::TopLeft || legend == Legend::TopRight;
        EXPECT_EQ(isLeft ? box.left - area.left : area.right - box.right, boxes[0].left - area.left) << int(legend);
        EXPECT_NEAR(isTop ? box.top - area.top : area.bottom - box.bottom, area.bottom - boxes[0].bottom, 1);
        if (!isTop)
        {
            EXPECT_GT(count(box, isBlue), 2 * 15 * 3) << int(legend);
        }
    }
    axes.setLegend(Legend::Auto);
    draw(plot);
    EXPECT_EQ(differs(without), boxes[0]) << "where no line is";
    // More than have room below each other stand in columns; a label longer than the plot ends before it does.
    for (int i = 0; i < 28; ++i)
        plot.add(Series::line({1, 1, 1, 1, 1}, {.label = "flat", .color = "#0000ff", .width = 4}));
    const auto legendBox = [&](Legend legend)
    {
        axes.setLegend(Legend::None);
        draw(plot);
        const std::vector<td::BYTE> plain = bytes();
        axes.setLegend(legend);
        draw(plot);
        return differs(plain);
    };
    Axes::Rect box = legendBox(Legend::Auto);
    EXPECT_TRUE(box.right > box.left + 100 && box.left > area.left && box.right < area.right &&
                box.bottom < area.bottom);
    EXPECT_GT(count({box.left, box.top, box.right, box.bottom}, isBlue), 30 * 15 * 3);
    axes.clear();
    plot.add(Series::line({1, 1, 1, 1, 1}, {.label = std::string(10'000, 'W'), .color = "#0000ff", .width = 4}));
    box = legendBox(Legend::BottomLeft);
    EXPECT_TRUE(box.bottom > area.bottom - 20 && box.right < area.right) << box.right;
    // Nothing is cut off at the paper's edges: notes, days below times, titles.
    Plot far;
    Axes& farAxes = far.axes();
    farAxes.x().setScale(Scale::time());
    far.add(Series::line({1e-9, 2e-9, 3e-9}).setX(1.7e9, 1e-3));
    const auto countAtEdges = [&]
    {
        draw(far);
        return count({0, 0, 640, 1}, isDark) + count({0, 399, 640, 400}, isDark) + count({0, 0, 1, 400}, isDark) +
               count({639, 0, 640, 400}, isDark);
    };
    EXPECT_EQ(countAtEdges(), 0);
    EXPECT_GT(count({farAxes.getArea().left, 0, 640, farAxes.getArea().top}, isDark), 10) << "a power of ten";
    for (Axis* const pAxis : {&farAxes.x(), &farAxes.y(), &farAxes.right()})
        pAxis->setTitle(std::string(10'000, 'W'));
    farAxes.setTitle(std::string(10'000, 'W'));
    EXPECT_EQ(countAtEdges(), 0);

    // Another style has all its numbers.
    style.area = "#fffff0";
    plot.setStyle(style);
    draw(plot);
    EXPECT_GT(count({area.left, area.bottom + 6, area.right, 400}, [](int r, int, int) { return r < 200; }), 50);
    // The first bar and the last are whole.
    Plot same;
    same.add(Series::bars({0, 1, 2, 3}, {1, 2, 3, 4}));
    draw(same);
    const Ticks::Range range = same.axes().x().getRange();
    EXPECT_NEAR(range.low + range.high, 3, 1e-9);
    EXPECT_LE(range.low, -0.4);
    EXPECT_TRUE(same.axes().x().setRange(10, 30));
    EXPECT_EQ(same.axes().x().toShare(15), 0.25);
    same.axes().x().setScale(Scale::logarithmic());
    EXPECT_TRUE(same.axes().x().setRange(10, 1000));
    EXPECT_NEAR(same.axes().x().toShare(100), 0.5, 1e-12);
}

// Dashes of half the length on a screen of twice the density.
TEST_F(PlotTest, DashesAreInPoints)
{
    for (const int scale : {1, 2})
    {
        Plot plot;
        makeBare(plot);
        plot.add(Series::line({0, 0}, {.color = "#000000", .width = 4, .dashes = {9, 7}}));
        plot.axes().y().setRange(-1, 1);
        ASSERT_TRUE(plot.draw({640.0 / scale, 400.0 / scale}, scale));
        ASSERT_TRUE(context().readPixels(picture));
        int nDashes = 0;
        for (int x = 1; x < 640; ++x)
            nDashes += darkness(x - 1, 200) < 128 && darkness(x, 200) >= 128 ? 1 : 0;
        EXPECT_NEAR(nDashes, 40 / scale, 1) << scale;
    }
}

// Rows of what is left behind when a series is emptied.
TEST_F(PlotTest, AClearedSeriesShowsNothing)
{
    Plot plot;
    makeBare(plot);
    const std::vector<double> values{1, 2, 3, 4}, errors{0.5, 0.5, 0.5, 0.5};
    Series& series = plot.add(Series::line(values, {.width = 4}).withErrors(errors));
    plot.axes().x().setRange(0, 3);
    plot.axes().y().setRange(0, 5);
    draw(plot);
    const std::vector<td::BYTE> before = bytes();
    series.clear();
    EXPECT_EQ(series.size() + series.getErrorsBelow().size() + series.getErrorsAbove().size(), 0U);
    EXPECT_TRUE(plot.isChanged());
    draw(plot);
    EXPECT_FALSE(bytes() == before);
    EXPECT_EQ(std::ranges::count_if(bytes(), [](td::BYTE b) { return b < 128; }), 0);
}

// Steps in colour that are none in the numbers.
TEST(ColorMapTest, NeighboursAreAlike)
{
    for (const ColorMap* const pMap :
         {&ColorMap::viridis(), &ColorMap::cividis(), &ColorMap::turbo(), &ColorMap::coolWarm(), &ColorMap::grey()})
        for (std::size_t i = 1; i < ColorMap::cSize; ++i)
        {
            const td::Color a = pMap->getColors()[i - 1], b = pMap->getColors()[i];
            EXPECT_LE(std::abs(a.red() - b.red()) + std::abs(a.green() - b.green()) + std::abs(a.blue() - b.blue()), 24)
                << i;
        }
    const td::Color middle = ColorMap::coolWarm().getColor(0.5), end = ColorMap::coolWarm().getColor(1);
    EXPECT_NEAR(middle.red(), middle.blue(), 3);
    EXPECT_EQ(end.red(), 180);
    EXPECT_EQ(end.blue(), 38);
}

} // namespace
