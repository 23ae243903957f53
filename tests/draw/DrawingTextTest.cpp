#include "Coverage.h"
#include "support/OffscreenGL.h"

#include <gui/Texture.h>
#include <gui/draw/Labels.h>
#include <gui/gl/FrameLedger.h>

#include <epoxy/gl.h>

#if defined __SANITIZE_ADDRESS__ || defined __SANITIZE_THREAD__
// What the sanitizers' allocator has given out; not all compilers bring their header.
extern "C" size_t __sanitizer_get_current_allocated_bytes();
#else
#include <malloc.h>
#endif

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>
#include <random>
#include <string>
#include <vector>

namespace
{

using namespace gui::draw;
using test::Coverage;
using Point = Path::Point;

constexpr int cTextPicture = 1024;

class DrawingTextTest : public test::OffscreenGL
{
protected:
    DrawingTextTest()
        : OffscreenGL({cTextPicture, cTextPicture})
    {
    }

    Coverage drawn(Drawing& drawing, const Affine& view = {}, double pixelsPerPoint = 1)
    {
        clear({255, 255, 255});
        EXPECT_TRUE(drawing.draw(view, pixelsPerPoint));
        return test::readCoverage();
    }

    /// What a draw with a view uploads.
    static std::size_t bytesFor(Drawing& drawing, const Affine& view)
    {
        gui::gl::FrameLedger::start();
        gui::gl::FrameLedger::begin();
        EXPECT_TRUE(drawing.draw(view));
        gui::gl::FrameLedger::end();
        const std::size_t n = gui::gl::FrameLedger::getLast().nBytesUploaded;
        EXPECT_LE(gui::gl::FrameLedger::getLast().nDraws, 8U);
        gui::gl::FrameLedger::stop();
        return n;
    }
};

/// A text at a size and angle, and what stands between its place and the pixels.
struct TextCase
{
    const char* text;
    double size, angle;
    Unit unit = Unit::Points;
    Affine view{};
    double pixelsPerPoint = 1;
    Affine group{};
    double halo = 0;
    bool isHaloAlone = false; // and half transparent
};

// Of glyph after glyph, what its outline covers.
TEST_F(DrawingTextTest, GlyphsCoverTheirOutlines)
{
    const Affine mirrored{1.5, 0, 0, -1.5, 100, 900};
    const std::array<TextCase, 15> cases{{{"Sphinx of black", 8, 0},
                                          {"quartz, judge", 11.3, 17},
                                          {"my vow @&%", 40, 45},
                                          {"Rag", 400, 17},
                                          {"Rag", 100, 0, Unit::Points, mirrored, 2},
                                          {"Rag", 100, 30, Unit::Model, mirrored},
                                          {"far away", 1e-3, 5, Unit::Model, {5e4, 0, 0, 5e4, -5e11, -5e11}},
                                          {"in groups", 30, 10, Unit::Model, {}, 2, Affine{1, .5, 0, 1.5, 3, 5}},
                                          {"in points", 30, 10, Unit::Points, {}, 2, Affine{1, .5, 0, 1.5, 3, 5}},
                                          {"lo", 80, 17, Unit::Points, {}, 1, {}, 6},
                                          {"Ha", 40, 0, Unit::Model, {2, 0, 0, 2, 0, 0}, 1, {}, 3},
                                          {"Rag", 11, 0, Unit::Points, {}, 2},
                                          {"H", 9, 0, Unit::Points, {}, 1, {}, 1},
                                          {"VAille", 40, 20, Unit::Points, {}, 1, {}, 5, true},
                                          {"VAille", 14, 0, Unit::Points, {}, 1, {}, 2, true}}};
    for (const TextCase& each : cases)
    {
        SCOPED_TRACE(std::string(each.text) + ' ' + std::to_string(each.size) + ' ' + std::to_string(each.angle));
        TextStyle style{.face = Typeface::named("DejaVu Serif"), .size = each.size, .unit = each.unit};
        if (each.halo > 0)
            style.halo = {each.halo, each.isHaloAlone ? "#00000080" : "#000"};
        style.paint = each.isHaloAlone ? Paint() : Paint("#000");
        const TextLayout layout(each.text, style);
        const Affine whole = each.view * each.group;
        const Point at = whole.inverse()->map({150.3, 300.4});
        Drawing drawing;
        drawing.beginGroup(each.group);
        drawing.text(at, layout, {.anchor = Anchor::TopLeft, .offset = {20, 10}, .angle = each.angle});

        // From the layout to the pixels.
        const double s = each.pixelsPerPoint, turn = -each.angle * std::numbers::pi / 180;
        Affine map{whole.a * s, whole.b * s, whole.c * s, whole.d * s, 0, 0};
        if (map.a * map.d < map.b * map.c)
            map = map * Affine::scaling(1, -1);
        if (each.unit == Unit::Points)
            map = Affine::scaling(s);
        map = map * Affine::rotation(turn);
        Point origin = whole.map(at);
        origin = {(origin.x + 20) * s, (origin.y + 10) * s};
        test::Rings rings;
        const auto add = [&rings](const test::Rings& more) { rings.insert(rings.end(), more.begin(), more.end()); };
        for (const TextLayout::Run& run : layout.getRuns())
            for (const TextLayout::Glyph& glyph : run.glyphs)
            {
                const double scale = run.size / run.face.getMetrics().unitsPerEm;
                Point pen = map.map({run.origin.x + double(glyph.x), run.origin.y + double(glyph.y)});
                const auto snap = [](double x, double n) { return std::floor(n * x + .5) / n; };
                const bool isOnRows = each.angle == 0 && each.unit == Unit::Points;
                // Of small letters, pictures for the quarters of a pixel.
                if (isOnRows && each.size * s <= 24)
                    pen = {snap(origin.x, 4) + snap(pen.x, 4), pen.y};
                else
                    pen.x += origin.x;
                pen.y = isOnRows ? snap(origin.y, 1) + snap(pen.y, 1) : origin.y + pen.y;
                const Affine place = Affine::translation(pen.x, pen.y) * map;
                const Path outline = run.face.getOutline(glyph.glyph).transformed(Affine::scaling(scale));
                if (!each.isHaloAlone)
                    add(test::mapped(test::fillRings(outline), place));
                if (each.halo > 0)
                    add(test::mapped(
                        test::strokeRings(outline, {.width = 2 * each.halo, .unit = Unit::Model, .join = Join::Round}),
                        place));
            }
        Coverage exact(cTextPicture, cTextPicture);
        exact.add(rings, FillRule::NonZero, each.isHaloAlone ? 128 / 255.0 : 1);
        const bool isStroked = each.halo > 0;
        EXPECT_TRUE(isClose(drawn(drawing, each.view, s), exact, {0, 0, cTextPicture, cTextPicture},
                            isStroked ? test::Closeness{5, 32, 64} : test::Closeness{2, 12, 24}));
    }
}

// More letters than there is room for, one line of them after the other; then the first again, whose pictures are gone.
TEST_F(DrawingTextTest, PicturesMakeRoomForOthers)
{
    glViewport(0, 0, 1000, 40);
    std::string letters;
    for (char c = '!'; c <= '~'; ++c)
        letters += c;
    const auto drawnOften = [this](Drawing& drawing, double pixelsPerPoint)
    {
        for (int i = 0; i < 5; ++i)
            EXPECT_TRUE(drawing.draw(Affine(), pixelsPerPoint));
        return drawn(drawing, {}, pixelsPerPoint);
    };
    Drawing drawing;
    Drawing::ID shown = 0;
    for (int i = 0; i <= 120; ++i)
    {
        SCOPED_TRACE(i);
        const TextStyle style{.size = 12 + i % 120 / 10.0};
        drawing.setVisible(shown, false);
        shown = drawing.text({5, 20}, letters, style);
        // What is shown meanwhile is not on the same quarters of a pixel.
        if (i % 40 == 0)
        {
            Drawing alone;
            alone.text({5, 20}, letters, style);
            const Coverage meanwhile = drawn(drawing), picture = drawnOften(drawing, 1);
            EXPECT_TRUE(isClose(meanwhile, picture, {0, 0, 1000, 40}, {16, 64, 80}));
            const double scale = i == 120 ? .9 : 1;
            EXPECT_TRUE(isClose(drawnOften(drawing, scale), drawnOften(alone, scale), {0, 0, 1000, 40}, {0, 0, 0}));
        }
        else
            drawnOften(drawing, 1);
        EXPECT_TRUE(i == 120 || bytesFor(drawing, Affine::translation(.3, 0)) == 0);
    }
}

// Glyphs in colour, from pictures and from layers, look as FreeType makes them.
// A view at rest that came to another display has one frame to change in.
TEST_F(DrawingTextTest, TheFirstFrameAtAnotherScaleHasItsPictures)
{
    Drawing moved, other;
    for (Drawing* const pDrawing : {&moved, &other})
        pDrawing->text({20.3, 100}, "Sphinx of black quartz, judge my vow", {.size = 12, .halo = {2, "#000"}});
    drawn(moved, {}, 1);
    EXPECT_TRUE(isClose(drawn(moved, {}, 1.75), drawn(other, {}, 1.75), {0, 0, cTextPicture, cTextPicture}, {}));
}

TEST_F(DrawingTextTest, GlyphsHaveTheirColors)
{
    struct
    {
        const char* file;
        char32_t character;
        const char* text;
        double size, mean;
    } const cases[] = {{"/usr/share/fonts/truetype/noto/NotoColorEmoji.ttf", 0x1f600, "😀", 109, .6},
                       // From a picture of 64 pixels, of which the half is between two smaller copies.
                       {"/usr/share/fonts/truetype/noto/NotoColorEmoji.ttf", 0x1f389, "🎉", 40, 8},
                       {"/usr/share/fonts/opentype/fonts-hosny-amiri/AmiriQuranColored.ttf", 0x6dd, "\u06dd", 60, 1.5},
                       // Painted in just this size, and as large as there is room.
                       {":type/paints.ttf", U'f', "f", 21.3, .01},
                       {":type/paints.ttf", U'f', "f", 200, .01},
                       {":type/paints.ttf", U'f', "f", 330, 1}};
    for (const auto& each : cases)
    {
        SCOPED_TRACE(each.file);
        const Typeface face = Typeface::fromFile(each.file);
        ASSERT_TRUE(face);
        const std::uint32_t glyph = face.getGlyph(each.character);
        ASSERT_TRUE(face.isColorGlyph(glyph));
        const auto image = face.getImage(glyph, {.pixelsPerEm = each.size, .isHinted = false});
        ASSERT_TRUE(image);
        Drawing drawing;
        drawing.text({300, 300}, each.text, {.face = face, .size = each.size});
        clear({255, 255, 255});
        ASSERT_TRUE(drawing.draw(Affine()));
        double difference = 0;
        for (unsigned int y = 0; y < image->height; ++y)
            for (unsigned int x = 0; x < image->width; ++x)
            {
                const td::BYTE* wanted = &image->pixels[4 * (std::size_t(y) * image->width + x)];
                const test::Pixel p = pixel(300 + image->left + static_cast<int>(x),
                                            cTextPicture - 1 - (300 - image->top + static_cast<int>(y)));
                difference += std::abs(p.red - (255 - wanted[3] + wanted[0])) +
                              std::abs(p.green - (255 - wanted[3] + wanted[1])) +
                              std::abs(p.blue - (255 - wanted[3] + wanted[2]));
            }
        EXPECT_LE(difference / (3.0 * image->width * image->height), each.mean);
    }
}

// A picture whose parts have the text's colour is another one when that changes, and the old one when it comes back; a
// text's transparency is all of its picture's.
TEST_F(DrawingTextTest, PicturesTakeTheColorOfTheirText)
{
    const Typeface face = Typeface::fromFile(":type/paints.ttf");
    Drawing drawing;
    const Drawing::ID text = drawing.text({100, 300}, "B", {.face = face, .size = 100, .paint = "#ff8000"});
    // To the left half of it on half blue on green, to the right green.
    const auto expectLeft = [&](const Paint& paint, int red, int green, int blue, int atRight)
    {
        drawing.setColor(text, paint);
        clear({255, 255, 255});
        ASSERT_TRUE(drawing.draw(Affine()));
        const test::Pixel left = pixel(120, cTextPicture - 270), right = pixel(170, cTextPicture - 270);
        EXPECT_NEAR(left.red, red, 1);
        EXPECT_NEAR(left.green, green, 1);
        EXPECT_NEAR(left.blue, blue, 1);
        EXPECT_NEAR(right.red, atRight, 1);
    };
    expectLeft("#ff8000", 128, 128, 64, 0);
    expectLeft("#0000ff", 0, 64, 191, 0);
    expectLeft(LinearGradient{{0, 0}, {0, 1}, {{0, "#ffffff"}, {1, "#000000"}}}, 128, 191, 191, 0);
    expectLeft(td::Color(255, 128, 0, 128), 191, 191, 159, 127);
}

// Texts and shapes that alternate often are drawn by one program, and each over the one before all the same.
// A style that comes first takes no other one's place, and none is drawn twice.
TEST_F(DrawingTextTest, EachStyleIsDrawnOnce)
{
    const TextStyle red{.size = 60, .paint = "#ff000080"}, blue{.size = 60, .paint = "#0000ff80"};
    Drawing drawing;
    drawing.text({100, 100}, TextLayout({{"MM", red}, {"MM", blue}, {"MM", red}}));
    clear({255, 255, 255});
    ASSERT_TRUE(drawing.draw(Affine()));
    int nRed = 0, nBlue = 0, least = 255;
    for (int y = cTextPicture - 200; y < cTextPicture - 20; ++y)
        for (int x = 90; x < 500; ++x)
        {
            const test::Pixel p = pixel(x, y);
            nRed += p.red == 255 && p.blue < 140 ? 1 : 0;
            nBlue += p.blue == 255 && p.red < 140 ? 1 : 0;
            least = std::min<int>(least, p.green);
        }
    EXPECT_GT(nBlue, 300);
    EXPECT_NEAR(nRed, 2 * nBlue, nBlue / 4);
    EXPECT_NEAR(least, 127, 1);
}

TEST_F(DrawingTextTest, TextsStandInTheirOrder)
{
    for (const int n : {2, 12})
    {
        Drawing drawing;
        std::vector<Drawing::ID> texts;
        Path page;
        for (int i = 0; i < n; ++i)
        {
            page = Path();
            page.addRect({10, 10 + 80.0 * i, 400, 80 + 80.0 * i});
            drawing.fill(page, "#fff");
            texts.push_back(drawing.text({20, 70 + 80.0 * i}, "HHHHHHHH", {.size = 60}));
            page = Path();
            page.addRect({200, 10 + 80.0 * i, 400, 80 + 80.0 * i});
            drawing.fill(page, "#fff");
        }
        Drawing alone;
        for (int i = 0; i < n; ++i)
            alone.text({20, 70 + 80.0 * i}, "HHHHHHHH", {.size = 60});
        const Coverage picture = drawn(drawing), expected = drawn(alone);
        double difference = 0, covered = 0;
        for (int y = 0; y < cTextPicture; ++y)
            for (int x = 0; x < cTextPicture; ++x)
            {
                covered += picture.at(x, y);
                difference = std::max(difference, std::abs(picture.at(x, y) - (x < 200 ? expected.at(x, y) : 0)));
            }
        EXPECT_GT(covered, 500 * n);
        EXPECT_LE(difference, .3) << n;

        // A text that becomes another one keeps its place among them, however many shapes it is made of.
        EXPECT_TRUE(drawing.setText(texts[0], TextLayout({{"HHH", {.size = 60}}, {"HHHHH", {.size = 50}}})));
        EXPECT_TRUE(drawing.setText(texts[0], "HHHHHHHH"));
        EXPECT_TRUE(isClose(drawn(drawing), picture, {0, 0, cTextPicture, cTextPicture}, {0, 0, 0}));
    }
}

// Letters stand with their middles on a circle and are turned as it is; in points also where it is seen larger. A line
// under them is an arc; here there are no letters above it, whose edges would be blended with its own.
TEST_F(DrawingTextTest, LettersFollowAPath)
{
    const TextStyle plain{.face = Typeface::named("DejaVu Serif"), .size = 40};
    TextStyle underlined = plain;
    underlined.isUnderlined = true;
    const TextLayout letters("Rag Äpfel", plain), nothing("\u00a0\u00a0\u00a0\u00a0\u00a0\u00a0\u00a0", underlined);
    for (const auto& [zoom, layout] : {std::pair(1.0, letters), {1.5, letters}, {1.0, nothing}, {1.5, nothing}})
    {
        Drawing drawing;
        drawing.textOn(Path().addCircle({300, 320}, 200), layout, {.along = .75});
        const double radius = 200 * zoom, middle = layout.getTextWidth() / 2;
        test::Rings rings;
        for (const TextLayout::Run& run : layout.getRuns())
            for (const TextLayout::Glyph& glyph : run.glyphs)
            {
                const double half = double(glyph.advance) / 2, turn = (double(glyph.x) + half - middle) / radius;
                const Affine place = Affine::translation(300 * zoom, 320 * zoom) * Affine::rotation(turn) *
                                     Affine::translation(-half, -radius) *
                                     Affine::scaling(run.size / run.face.getMetrics().unitsPerEm);
                const test::Rings letter = test::mapped(test::fillRings(run.face.getOutline(glyph.glyph)), place);
                rings.insert(rings.end(), letter.begin(), letter.end());
            }
        for (const TextLayout::Decoration& line : layout.getDecorations())
        {
            test::Rings ring(1);
            for (int i = 0; i <= 400; ++i)
            {
                const double part = i < 200 ? i / 199.0 : (400 - i) / 200.0,
                             turn = (std::lerp(line.rect.left, line.rect.right, part) - middle) / radius,
                             r = radius + layout.getLines()[0].baseline - (i < 200 ? line.rect.top : line.rect.bottom);
                ring[0].push_back({300 * zoom + r * std::sin(turn), 320 * zoom - r * std::cos(turn)});
            }
            rings.push_back(ring[0]);
        }
        Coverage exact(cTextPicture, cTextPicture);
        exact.add(rings, FillRule::NonZero);
        EXPECT_TRUE(isClose(drawn(drawing, Affine::scaling(zoom)), exact, {0, 0, cTextPicture, cTextPicture},
                            {4, 12, 15})); // the circle is lines, which are a sixtieth of a pixel off
    }
}

TEST_F(DrawingTextTest, TextsOnPathsStayLegible)
{
    const Path there = Path::fromSVG("M100 400Q400 200 800 400"), back = Path::fromSVG("M800 400Q400 200 100 400");
    const Affine mirrored{1, 0, 0, -1, 0, 600};
    for (const Unit unit : {Unit::Points, Unit::Model})
    {
        const TextStyle style{.size = 30, .unit = unit};
        Drawing drawing;
        const Drawing::ID id = drawing.textOn(there, "along the path", style, {.along = .4});
        const Coverage picture = drawn(drawing);
        const auto isSame = [&](const Affine& view) {
            return isClose(drawn(drawing, view), picture, {0, 0, cTextPicture, cTextPicture}, {1, 4, 8});
        };
        EXPECT_NE(drawing.pick({380, 295}), 0U);
        EXPECT_EQ(drawing.pick({380, 330}), 0U);
        EXPECT_TRUE(drawing.setPath(id, Path(back)));
        EXPECT_FALSE(isSame({})); // that is another part of the path
        EXPECT_TRUE(drawing.remove(id));
        const Drawing::ID other = drawing.textOn(back, "along the path", style, {.along = .6});
        EXPECT_TRUE(isSame({}));
        EXPECT_EQ(drawing.pick({380, 295}), other);
        // Upside down it is read the other way round.
        EXPECT_TRUE(drawing.setPath(other, Path(there).transform(mirrored)));
        EXPECT_FALSE(isSame(mirrored));
        EXPECT_TRUE(drawing.setPath(other, Path(back).transform(mirrored)));
        EXPECT_TRUE(isSame(mirrored));
        const std::optional<Drawing::Rect> bounds = drawing.getBounds();
        ASSERT_TRUE(bounds);
        EXPECT_LE(bounds->left, 374.7);
        EXPECT_GE(bounds->right, 374.5);

        // Where the path is seen shorter than the text, that is gone.
        for (const double zoom : {.1, .2})
        {
            ASSERT_TRUE(drawing.draw(mirrored * Affine::scaling(zoom)));
            EXPECT_EQ(drawing.pick({380, 305}) != 0, unit == Unit::Model) << zoom;
        }
        // Without a path there is nothing, though there was one.
        EXPECT_TRUE(drawing.setPath(other, Path()));
        const Coverage nothing = drawn(drawing, mirrored);
        for (int y = 0; y < cTextPicture; ++y)
            for (int x = 0; x < cTextPicture; ++x)
                ASSERT_EQ(nothing.at(x, y), 0) << x << ' ' << y;
    }
    Drawing cut;
    cut.textOn(there, "mmmmmmmm", {.size = 30}, {.along = 1, .anchor = {0.5}, .overflow = TextOnPath::Overflow::Cut});
    ASSERT_TRUE(cut.draw(Affine()));
    EXPECT_NE(cut.pick({760, 370}), 0U);
    EXPECT_EQ(cut.pick({820, 420}), 0U);
}

TEST_F(DrawingTextTest, OnlyWhatChangesIsUploaded)
{
    Drawing drawing;
    std::vector<Drawing::ID> ids;
    for (int i = 0; i < 1000; ++i)
        ids.push_back(drawing.text({i % 10 * 100.0, i / 10 * 10.0}, "Label " + std::to_string(i)));
    EXPECT_GT(bytesFor(drawing, {}), 10000U);
    EXPECT_EQ(bytesFor(drawing, {}), 0U);
    EXPECT_EQ(bytesFor(drawing, Affine::scaling(3)), 0U);
    EXPECT_EQ(bytesFor(drawing, Affine::translation(-500, 7)), 0U);
    drawing.setColor(ids[500], "#f00");
    EXPECT_LE(bytesFor(drawing, {}), 64U);
    drawing.setText(ids[500], "Label 5 0");
    EXPECT_LE(bytesFor(drawing, {}), 400U);
}

#ifdef __GLIBC__
// Another path and another part that is seen in each frame, letters of thousands of sizes: a day of it must not fill
// the memory.
TEST_F(DrawingTextTest, WhatIsReplacedIsGivenBack)
{
    ASSERT_TRUE(context().resize({16, 16}));
    Drawing drawing;
    std::vector<Drawing::ID> shapes;
    for (int i = 0; i < 100; ++i)
        shapes.push_back(drawing.fill(Path().addRect({i * 2.0, 0, i * 2.0 + 1, 16}), "#000"));
    const auto used = []
    {
#if defined __SANITIZE_ADDRESS__ || defined __SANITIZE_THREAD__
        return __sanitizer_get_current_allocated_bytes();
#else
        const struct mallinfo2 info = mallinfo2();
        return info.uordblks + info.hblkhd;
#endif
    };
    ASSERT_GT(used(), 0U);
    int nEdits = 0;
    const auto edit = [&](int n)
    {
        for (const int end = nEdits + n; nEdits < end; ++nEdits)
        {
            std::vector<Point> corners;
            for (int i = 0; i < 20 + nEdits % 60; ++i)
                corners.emplace_back(8 + 8 * std::cos(i * 0.1), 8 + (nEdits % 8) * std::sin(i * 0.1));
            drawing.setPath(shapes[std::size_t(nEdits) % shapes.size()], Path().addPolygon(corners));
            EXPECT_TRUE(drawing.draw(Affine::translation(-(nEdits % 50), 0)));
        }
        return used();
    };
    const std::size_t before = edit(600);
    EXPECT_LT(edit(600), before + 16'000);
    // What no text has any more goes when there are ten thousand of it; layouts are kept up to 32 MB.
    const auto write = [&](int n)
    {
        for (const int end = nEdits + n; nEdits < end; ++nEdits)
            drawing.remove(drawing.text({0, 0}, "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ",
                                        {.size = 10 + 0.001 * nEdits}));
        return used();
    };
    const std::size_t full = write(9000);
    EXPECT_LT(write(2000), full + 3'000'000);
}
#endif

TEST_F(DrawingTextTest, TextsAreFoundWhereTheyAreSeen)
{
    Drawing drawing;
    const Drawing::ID label =
        drawing.text({100, 100}, "mmmmmmmm", {.size = 20}, {.anchor = Anchor::Left, .offset = {10, 0}});
    const Drawing::ID plan =
        drawing.text({100, 300}, "mmmmmmmm", {.size = 20, .unit = Unit::Model}, {.anchor = Anchor::Left, .angle = 90});
    const double width = TextLayout("mmmmmmmm", {.size = 20}).getSize().width;
    ASSERT_GT(width, 100);
    struct
    {
        Affine view;
        Point point; // on the screen
        Drawing::ID id;
    } const cases[] = {{{}, {112, 100}, label},
                       {{}, {107, 100}, 0},
                       {{}, {100 + width, 100}, label},
                       {{}, {100, 300 - width + 5}, plan},
                       {{}, {100, 310}, 0},
                       {Affine::scaling(3), {300 + width, 300}, label},
                       {Affine::scaling(3), {330 + width, 300}, 0},
                       {Affine::scaling(3), {325, 900 - 3 * width + 5}, plan},
                       // With y upwards on the plane, up is up all the same.
                       {{1, 0, 0, -1, 0, 600}, {100, 300 - width + 5}, plan},
                       {{1, 0, 0, -1, 0, 600}, {100, 310}, 0}};
    for (const auto& each : cases)
    {
        ASSERT_TRUE(drawing.draw(each.view));
        const Point p = each.view.inverse()->map(each.point);
        EXPECT_EQ(drawing.pick(p), each.id) << each.point.x << ' ' << each.point.y;
        const std::vector<Drawing::ID> all = drawing.pickAll({p.x - .1, p.y - .1, p.x + .1, p.y + .1});
        EXPECT_EQ(all, each.id == 0 ? std::vector<Drawing::ID>() : std::vector{each.id});
    }
    EXPECT_EQ(drawing.getNumberOfShapes(), 2U);
    EXPECT_FALSE(drawing.setPath(label, Path()));
    EXPECT_TRUE(drawing.setVisible(label, false));
    EXPECT_TRUE(drawing.remove(plan));
    EXPECT_EQ(drawing.pickAll({-1e6, -1e6, 1e6, 1e6}).size(), 0U);
    EXPECT_EQ(drawing.getNumberOfShapes(), 1U);
}

// A frame that is blurred at its sides, keeps the size of an older text, takes its colour, covers it, or comes to lie
// over others; one that pick, bounds or labels know nothing of.
TEST_F(DrawingTextTest, FramesGoWithTheirTexts)
{
    constexpr test::Pixel cRed{255, 0, 0}, cGreen{0, 255, 0}, cBlue{0, 0, 255};
    const TextFrame frame{.fill = "#00ff00", .line = "#ff0000", .width = 2, .padding = 10, .radius = 0};
    Drawing drawing;
    const Drawing::ID text =
        drawing.text({100.3, 100.4}, "I", {.size = 20}, {.anchor = Anchor::TopLeft, .frame = frame});
    const Drawing::ID over = drawing.fill(Path().addRect({92, 100, 97, 103}), "#ff00ff");
    for (const char* const string : {"I", "A longer one", "", "I"})
    {
        SCOPED_TRACE(string);
        EXPECT_TRUE(drawing.setText(text, string) && drawing.setColor(text, "#0000ff"));
        const double width = TextLayout(string, {.size = 20}).getSize().width;
        drawn(drawing);
        const int right = 100 + int(std::lround(width + 10));
        std::string row;
        for (int x = 85; x < right + 5; ++x)
            row += pixel(x, 1023 - 98) == cRed ? 'r' : pixel(x, 1023 - 98) == cGreen ? 'g' : '.';
        const auto side = std::size_t(right - 94);
        EXPECT_EQ(row, width > 0 ? ".....rr" + std::string(side, 'g') + "rr....." : std::string(30, '.'));
        EXPECT_EQ(drawing.pick({91, 96}), width > 0 ? text : 0);
        EXPECT_EQ(drawing.pick({91, 94}), 0U);
        EXPECT_EQ(drawing.pick({94, 101}), over) << "where it was among others";
    }
    bool isBlue = false;
    for (int x = 100; x < 110; ++x)
        isBlue = isBlue || pixel(x, 1023 - 110) == cBlue;
    EXPECT_TRUE(isBlue) << "the letter over it";

    drawing.clear();
    drawing.text({0, 0}, "I", {.unit = Unit::Model}, {.anchor = Anchor::Baseline, .angle = 90, .frame = frame});
    EXPECT_LE(drawing.getBounds()->top, -10.0 - TextLayout("I", {}).getSize().width);

    Labels labels(drawing);
    const double width = TextLayout("Label", {}).getSize().width;
    for (const double x : {0.0, width + 15})
        labels.add({x, 0}, "Label", {}, {.frame = frame});
    labels.place(1);
    EXPECT_EQ(labels.getNumberOfHidden(), 1U);
}

// A symbol that a zoom or a group stretches or turns, that stands on whole pixels, or that takes what texts alone do.
TEST_F(DrawingTextTest, SymbolsStandAsTheyAre)
{
    const Path flag = Path().addPolygon(std::array<Point, 3>{{{0, 0}, {30, 10}, {0, 20}}});
    Coverage exact(cTextPicture, cTextPicture);
    exact.add(test::fillRings(Path(flag).transform(Affine::translation(100.3, 200.6))), FillRule::NonZero);
    Drawing drawing;
    drawing.beginGroup(Affine::rotation(1) * Affine::scaling(3, -2));
    const Drawing::ID symbol = drawing.symbol({0, 0}, {}, "#000");
    for (const double zoom : {1e-6, 1.0, 1e6})
    {
        EXPECT_TRUE(drawing.setPath(symbol, flag) && !drawing.setText(symbol, "none"));
        EXPECT_TRUE(isClose(drawn(drawing, {zoom, 0, 0, -zoom, 100.3, 200.6}), exact, {0, 0, 200, 300}, {1, 4, 4}));
        EXPECT_EQ(drawing.pick({20 / zoom, -10 / zoom}), symbol);
    }
    EXPECT_EQ(drawing.getBounds()->right, 0);
    EXPECT_TRUE(drawing.setPath(symbol, {}) && drawing.pick({0, 0}) == 0);
}

// At each zoom: no two that are shown overlap, each that is hidden would cover one that matters as much, and a small
// step of the zoom changes nothing.
TEST_F(DrawingTextTest, LabelsKeepClearOfEachOther)
{
    struct Label
    {
        Drawing::ID id;
        Point at;
        double priority;
    };
    Drawing drawing;
    Labels labels(drawing);
    std::vector<Label> all;
    std::mt19937 random(3);
    const auto below = [&random](int n) { return double(std::uniform_int_distribution<>(0, n - 1)(random)); };
    const TextLayout layout("Label", {.size = 10});
    const double width = layout.getSize().width, height = layout.getSize().height;
    for (int i = 0; i < 300; ++i)
    {
        const Point at(below(1000), below(1000));
        const double priority = below(9);
        all.push_back({labels.add(at, layout, {.anchor = Anchor::Center}, {priority}), at, priority});
    }
    EXPECT_EQ(labels.getNumberOfHidden(), 300U);
    for (const double zoom : {0.3, 1.0, 2.0})
    {
        labels.place(zoom);
        ASSERT_TRUE(drawing.draw(Affine::scaling(zoom)));
        std::vector<const Label*> shown;
        std::vector<const Label*> hidden;
        for (const Label& label : all)
            (drawing.pick(label.at) == label.id ? shown : hidden).push_back(&label);
        EXPECT_EQ(labels.getNumberOfHidden(), hidden.size());
        EXPECT_GT(shown.size(), 20U);
        const auto overlap = [&](const Label& a, const Label& b, double margin) {
            return std::abs(a.at.x - b.at.x) * zoom < width + margin &&
                   std::abs(a.at.y - b.at.y) * zoom < height + margin;
        };
        for (const Label* a : shown)
            for (const Label* b : shown)
                EXPECT_TRUE(a == b || !overlap(*a, *b, 1.9));
        for (const Label* a : hidden)
            // Up to a quarter of an octave nearer to each other.
            EXPECT_TRUE(std::any_of(shown.begin(), shown.end(),
                                    [&](const Label* b) { return b->priority >= a->priority && overlap(*a, *b, 12); }));
        labels.place(zoom * 1.1);
        EXPECT_EQ(bytesFor(drawing, Affine::scaling(zoom * 1.1)), 0U);
    }
    labels.clear();
    EXPECT_EQ(drawing.getNumberOfShapes(), 0U);
}

TEST_F(DrawingTextTest, LabelsHaveZoomsAndOtherPlaces)
{
    Drawing drawing;
    Labels labels(drawing);
    const TextLayout layout("Label", {.size = 10}), small("L", {.size = 10});
    EXPECT_EQ(labels.addAlternative({0, 0}, layout), 0U);
    const Drawing::ID first = labels.add({0, 0}, layout, {}, {.priority = 1, .maxZoom = 8});
    const Drawing::ID second = labels.add({1, 0}, layout, {}, {.minZoom = 0.9});
    const Drawing::ID below = labels.addAlternative({0, 40}, layout, {}, {.minZoom = 0.5});
    const Drawing::ID other = labels.addAlternative({0, 90}, small);
    const struct
    {
        double zoom;
        std::vector<Drawing::ID> shown;
    } cases[] = {
        {0.1, {first}}, {0.25, {first, other}}, {0.6, {first, below}}, {1, {first, below}}, {8.1, {second}},
    };
    for (const auto& c : cases)
    {
        labels.place(c.zoom);
        std::vector<Drawing::ID> shown;
        for (const Drawing::ID id : {first, second, below, other})
            if (labels.isShown(id))
                shown.push_back(id);
        EXPECT_EQ(shown, c.shown) << c.zoom;
        EXPECT_EQ(labels.getNumberOfHidden(), 2 - shown.size());
    }
    EXPECT_EQ(labels.getNumberOfLabels(), 2U);

    // Two change places, and the one that has gone leaves room.
    labels.place(1);
    EXPECT_TRUE(labels.move(below, {300, 300}) && labels.setWanted(first, false));
    EXPECT_FALSE(labels.move(0, {}) || labels.setWanted(0, true) ||
                 labels.move(below, {std::numeric_limits<double>::quiet_NaN(), 0}));
    labels.place(1);
    EXPECT_TRUE(labels.isShown(second) && !labels.isShown(first) && !labels.isShown(below));
    labels.setWanted(second, true);
    labels.move(second, {500, 500});
    labels.setWanted(first, true);
    labels.place(1);
    EXPECT_TRUE(labels.isShown(second) && labels.isShown(first));
    ASSERT_TRUE(drawing.draw(Affine()));
    EXPECT_EQ(drawing.pick({505, 497}), second);
}

// Below and above are not mixed up where y grows upwards, nor left and right in a plane that lies upside down.
TEST_F(DrawingTextTest, LabelsHaveSymbolsThatOthersKeepClearOf)
{
    const TextLayout layout("Label", {.size = 10});
    for (const Affine& view : {Affine::scaling(1), Affine::scaling(2, -2), Affine::rotation(std::numbers::pi)})
    {
        const auto toModel = [&view](double x, double y) { return view.inverse()->map({x, y}); };
        Drawing drawing;
        Labels labels(drawing);
        const auto addDot = [&](Point at)
        { return drawing.stroke(Path().moveTo(at).lineTo(at), {.width = 4, .cap = Cap::Round}, "#000"); };
        const Point place = toModel(0, 0), around = toModel(10, 18);
        const Drawing::ID town = labels.add(place, layout, {Anchor::Top, {0, 4}}, {2});
        const Drawing::ID atRight = labels.addAlternative(place, layout, {Anchor::Left, {4, 0}});
        const Drawing::ID dot = addDot(place);
        EXPECT_TRUE(labels.setSymbol(town, dot, 2));
        EXPECT_FALSE(labels.setSymbol(atRight, dot, 2) || labels.setSymbol(town, 0, 2) ||
                     labels.setSymbol(town, dot, -1));
        const Drawing::ID larger = labels.add(around, layout, {Anchor::Left, {4, 0}}, {3});
        labels.setSymbol(larger, addDot(around), 2);
        labels.place(view);
        EXPECT_TRUE(labels.isShown(larger) && labels.isShown(atRight) && !labels.isShown(town));
        // What is less important is not on a dot either.
        const Drawing::ID least = labels.add(place, layout, {Anchor::Right, {-1, 0}});
        ASSERT_TRUE(labels.setSymbol(least, addDot(place), 0));
        labels.place(view);
        EXPECT_FALSE(labels.isShown(least));
        EXPECT_TRUE(labels.move(town, toModel(-200, 0)) && labels.setWanted(atRight, false));
        labels.place(view);
        EXPECT_TRUE(labels.isShown(town) && labels.isShown(least));
        ASSERT_TRUE(drawing.draw(view));
        EXPECT_EQ(drawing.pick(toModel(-200, 0)), dot);
        labels.clear();
        EXPECT_EQ(drawing.getNumberOfShapes(), 0U);
    }
}

TEST(LabelsTest, RoomIsWhereTheShapeIsLongest)
{
    // A ring with a bay: below its hole and beside the bay there is most room.
    Path shape = Path().addRect({0, 0, 100, 60}).addRect({10, 8, 90, 40}).addRect({60, 40, 100, 60});
    std::optional<Drawing::Rect> room = Labels::findRoom(shape, {0, 0, 100, 60});
    ASSERT_TRUE(room);
    EXPECT_EQ(room->left, 0);
    EXPECT_EQ(room->right, 60);
    EXPECT_TRUE(room->top >= 40 && room->bottom <= 60 && room->bottom - room->top == 6);
    room = Labels::findRoom(shape, {85, 0, 100, 30});
    ASSERT_TRUE(room);
    EXPECT_TRUE(room->left == 90 && room->right == 100 && room->top >= 10);
    room = Labels::findRoom(Path().addCircle({50, 50}, 10), {0, 0, 100, 100});
    ASSERT_TRUE(room);
    EXPECT_NEAR(room->right - room->left, 17.3, 0.2) << "five units off the middle";
    EXPECT_FALSE(Labels::findRoom(shape, {20, 15, 80, 35}));
    EXPECT_FALSE(Labels::findRoom({}, {0, 0, 1, 1}) || Labels::findRoom(shape, {0, 0, 0, 60}) ||
                 Labels::findRoom(shape, {0, 0, std::numeric_limits<double>::infinity(), 60}));
}

// What is too large to be seen whole has a name in each of its parts.
TEST(LabelsTest, PartsHaveNamesOfTheirOwn)
{
    Drawing drawing;
    Labels labels(drawing);
    const std::array forms{TextLayout("name", {.size = 10})};
    const std::vector<Drawing::ID> ids = labels.addInside(Path().addRect({0, 0, 100, 20}), {0, 0, 100, 20}, forms,
                                                          {.largest = 60, .largestInView = 400});
    ASSERT_EQ(ids.size(), 3U);
    labels.place(2);
    EXPECT_TRUE(!labels.isShown(ids[0]) && !labels.isShown(ids[1]) && labels.isShown(ids[2]));
    labels.place(8);
    EXPECT_TRUE(labels.isShown(ids[0]) && labels.isShown(ids[1]) && !labels.isShown(ids[2]));
}

// Whichever way y grows; in a place that is never free, before it is free, and for what has no size.
TEST(LabelsTest, WhatIsSmallHasItsNameBesideItWhereThereIsRoom)
{
    const TextLayout name("name", {.size = 10});
    const Drawing::Rect island(0, 0, 10, 10);
    for (const bool isYDown : {true, false})
    {
        Drawing drawing;
        Labels labels(drawing);
        EXPECT_TRUE(labels.addBeside(island, name).empty()) << "no label";
        const std::vector<Drawing::ID> inside = labels.addInside(Path().addRect(island), island, "name", {.size = 10});
        EXPECT_TRUE(labels.addBeside({0, 0, 0, 0}, name).empty());
        // Land on the left, and more of it far down on the screen.
        const auto isSea = [isYDown](const Drawing::Point& p) { return p.x > -50 && (isYDown ? p.y < 15 : p.y > -5); };
        const std::vector<Drawing::ID> ids = labels.addBeside(
            island, name, {.smallestInView = 1, .largestInView = 60, .isYDown = isYDown, .isFree = isSea});
        ASSERT_EQ(ids.size(), 4U);
        for (const Drawing::ID id : inside)
            labels.setWanted(id, false);
        const auto shownAt = [&](double zoom)
        {
            labels.place(zoom);
            return std::ranges::find_if(ids, [&](Drawing::ID id) { return labels.isShown(id); }) - ids.begin();
        };
        EXPECT_EQ(shownAt(8), 4) << "the island is large";
        EXPECT_EQ(shownAt(1), 1) << "the sea below is too narrow";
        // Each in its turn, where the ones before are not wanted.
        const Point places[] = {{5, isYDown ? 10.0 : 0}, {10, 5}, {5, isYDown ? 0.0 : 10}, {0, 5}};
        for (std::size_t i = 0; i < 4; ++i)
        {
            EXPECT_EQ(shownAt(4.5), static_cast<std::ptrdiff_t>(i));
            const Drawing::Rect at = drawing.getBounds(ids[i]).value_or(Drawing::Rect());
            EXPECT_TRUE(at.left == places[i].x && at.top == places[i].y) << at.left << ' ' << at.top;
            labels.setWanted(ids[i], false);
        }
        EXPECT_EQ(labels.addBeside(island, name, {.isFree = [](const auto&) { return false; }}).size(), 0U);
    }
}

// A layer that has moved stands at fractions of pixels that a new one would not; its programs, tables, pictures of
// glyphs and images are to be there again.
TEST_F(DrawingTextTest, ADrawingIsThereAgainToThePixelAfterALoss)
{
    const auto fill = [](Drawing& drawing)
    {
        drawing.fill(Path().addCircle({300, 300}, 200),
                     LinearGradient{{0, 0}, {0, 600}, {{0, "#f0e0c0"}, {1, "#806040"}}});
        drawing.stroke(Path().moveTo({10, 10}).lineTo({900, 700}).lineTo({20, 800}), {.width = 9, .dashes = {30, 20}},
                       "#205080");
        drawing.text({100, 400}, "Sphinx of black quartz", {.size = 14});
        drawing.text({100, 500}, "judge my vow", {.size = 150, .halo = {.width = 4}});
        const std::array<td::Color, 4> pixels{td::Color(255, 0, 0, 255), td::Color(0, 255, 0, 90),
                                              td::Color(0, 0, 255, 255), td::Color(0, 0, 0, 0)};
        drawing.image({600, 100, 900, 333}, Image(2, 2, pixels));
    };
    const auto picture = [&](Drawing& drawing, double x)
    {
        clear({255, 255, 255});
        EXPECT_TRUE(drawing.draw(Affine::translation(x, -x)));
        gui::Texture pixelsOfFrame;
        EXPECT_TRUE(context().readPixels(pixelsOfFrame));
        return std::vector<td::BYTE>(pixelsOfFrame.getBytes(),
                                     pixelsOfFrame.getBytes() + std::size_t(cTextPicture) * cTextPicture * 3);
    };
    const auto mostBetween = [](const std::vector<td::BYTE>& a, const std::vector<td::BYTE>& b)
    {
        int most = 0;
        for (std::size_t k = 0; k < a.size(); ++k)
            most = std::max(most, std::abs(a[k] - b[k]));
        return most;
    };
    Drawing drawing, other;
    fill(drawing);
    fill(other);
    for (int i = 0; i < 2; ++i)
    {
        for (const double x : {0.0, 17.0, 17.0 + 1.0 / 4096})
            drawn(drawing, Affine::translation(x, -x));
        const std::vector<td::BYTE> before = picture(drawing, 40.0 + 1.0 / 4096);
        ASSERT_TRUE(context().replace());
        const std::vector<td::BYTE> after = picture(drawing, 40.0 + 1.0 / 4096);
        // That was moved there, by which floats of edges are rounded otherwise.
        EXPECT_LE(mostBetween(before, after), 1);
        // Where it is now, it is what another one is that was not drawn before.
        EXPECT_LE(mostBetween(picture(other, 40), after), isDriver("llvmpipe") ? 0 : 1);
        for (Drawing* const pDrawing : {&drawing, &other})
            pDrawing->fill(Path().addRect({700, 700, 800, 800}), "#c03020");
    }
}

} // namespace
