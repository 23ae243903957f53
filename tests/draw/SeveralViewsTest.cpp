#include "support/OffscreenGL.h"

#include <gui/draw/Drawing.h>
#include <gui/gl/Context.h>
#include <gui/gl/FrameLedger.h>

#include <epoxy/gl.h>

#include <functional>
#include <vector>

namespace
{

using gui::draw::Affine;
using gui::draw::Drawing;
using gui::draw::Path;

constexpr int cViewsWidth = 400, cViewsHeight = 300;

/// A drawing that is drawn more than once in a frame.
class SeveralViewsTest : public test::OffscreenGL
{
protected:
    struct Place
    {
        int x, y, width, height; // a viewport
        Affine view;
    };

    SeveralViewsTest()
        : OffscreenGL({cViewsWidth, cViewsHeight})
    {
    }

    static void draw(Drawing& drawing, const Place& place)
    {
        glViewport(place.x, place.y, place.width, place.height);
        EXPECT_TRUE(drawing.draw(place.view));
    }

    static std::vector<unsigned char> pixels()
    {
        std::vector<unsigned char> bytes(std::size_t(4) * cViewsWidth * cViewsHeight);
        glReadPixels(0, 0, cViewsWidth, cViewsHeight, GL_RGBA, GL_UNSIGNED_BYTE, bytes.data());
        return bytes;
    }

    std::vector<unsigned char> frame(Drawing& drawing, const std::vector<Place>& seen)
    {
        gui::gl::FrameLedger::start();
        gui::gl::FrameLedger::begin();
        clear({255, 255, 255});
        for (const Place& place : seen)
            draw(drawing, place);
        gui::gl::FrameLedger::end();
        nDraws = gui::gl::FrameLedger::getLast().nDraws;
        nUploads = gui::gl::FrameLedger::getLast().nUploads;
        gui::gl::FrameLedger::stop();
        return pixels();
    }

    // Each has one for its depth.
    static int countLayers()
    {
        int n = 0;
        for (GLuint name = 1; name < 2000; ++name)
            n += glIsRenderbuffer(name) == GL_TRUE ? 1 : 0;
        return n;
    }

    std::size_t nDraws = 0, nUploads = 0; // of the last frame
    // The last one looks through what the first one shows.
    std::vector<Place> places{{0, 0, cViewsWidth, cViewsHeight, {}},
                              {10, 10, 120, 100, Affine::translation(-200, -100) * Affine::scaling(3)},
                              {200, 10, 120, 100, Affine::translation(-10, -20) * Affine::scaling(.5)},
                              {90, 90, 300, 200, Affine::rotation(.2)}};
};

// A change that one of the views has not; letters that stay where another view wants them, or without their pictures;
// a view that is drawn anew in each frame, or takes another one's place when something moves.
TEST_F(SeveralViewsTest, AllShowWhatTheDrawingIsAndRestWithIt)
{
    std::vector<Drawing::ID> ids;
    const auto add = [&ids](Drawing& drawing)
    {
        ids = {drawing.fill(Path().addCircle({150, 120}, 90), "#e6be3c80"),
               drawing.stroke(Path().addRect({60, 40, 160, 120}), {.width = 5}, "#5a2814"),
               drawing.fill(Path().addRect({90, 60, 230, 150}), "#304080")};
        drawing.textOn(Path().moveTo({40, 200}).lineTo({200, 140}).lineTo({380, 220}), "along",
                       {.size = 30, .isUnderlined = true});
        // So many that their pictures come with several frames.
        for (int i = 0; i < 60; ++i)
            drawing.text({5.0 + i % 6 * 60, 20.0 + i / 6 * 28}, "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz",
                         {.size = 9 + i * .2});
    };
    const auto setView = [this](std::size_t i, const Affine& view) { places[i].view = view * places[i].view; };
    struct Step
    {
        const char* name;
        std::function<void(Drawing&)> change;
        std::function<void()> look = [] {};
    };
    const std::vector<Step> steps{
        {"as it is", [](Drawing&) {}},
        {"coloured", [&](Drawing& drawing) { drawing.setColor(ids[0], "#ff0000c0"); }},
        {"hidden", [&](Drawing& drawing) { drawing.setVisible(ids[2], false); }},
        {"shown", [&](Drawing& drawing) { drawing.setVisible(ids[2], true); }},
        {"moved", [&](Drawing& drawing) { drawing.setTransform(ids[1], Affine::translation(30, 9)); }},
        {"from nearby alone", [&](Drawing& drawing) { drawing.setZoomRange(ids[2], 2, 9); }},
        {"through glass", [&](Drawing& drawing) { drawing.setOpacity(.5); }},
        {"one view panned", [](Drawing&) {}, [&] { setView(0, Affine::translation(20, -7)); }},
        {"coloured and panned at once", [&](Drawing& drawing) { drawing.setColor(ids[1], "#208020"); },
         [&] { setView(0, Affine::translation(9, 4)); }},
        {"another one panned", [](Drawing&) {}, [&] { setView(2, Affine::translation(-5, 11)); }},
        {"all zoomed", [](Drawing&) {},
         [&]
         {
             for (std::size_t i = 0; i < places.size(); ++i)
                 setView(i, Affine::scaling(1.25));
         }},
        {"less", [&](Drawing& drawing) { drawing.remove(ids[0]); }}};
    Drawing drawing;
    add(drawing);
    for (std::size_t k = 0; k < steps.size(); ++k)
    {
        SCOPED_TRACE(steps[k].name);
        steps[k].change(drawing);
        steps[k].look();
        // One for each of them, drawn again and again until all letters are there.
        std::vector<unsigned char> expected;
        for (int i = 0; i < 30; ++i)
            frame(drawing, places);
        std::vector<Drawing> others(places.size());
        for (Drawing& other : others)
        {
            add(other);
            for (std::size_t i = 0; i <= k; ++i)
                steps[i].change(other);
        }
        for (int i = 0; i < 30; ++i)
        {
            clear({255, 255, 255});
            for (std::size_t place = 0; place < places.size(); ++place)
                draw(others[place], places[place]);
        }
        expected = pixels();
        const std::vector<unsigned char> drawn = frame(drawing, places);
        int most = 0;
        for (std::size_t i = 0; i < drawn.size(); ++i)
            most = std::max(most, std::abs(drawn[i] - expected[i]));
        EXPECT_LE(most, 1); // moved by whole pixels, edges are rounded as they were
        EXPECT_EQ(nDraws, places.size());
        EXPECT_EQ(nUploads, 0U);
    }
    // What is drawn while there is nothing to see it in is seen afterwards.
    drawing.setOpacity(1);
    frame(drawing, places);
    drawing.fill(Path().addRect({0, 0, 1000, 1000}), "#102030");
    draw(drawing, {0, 0, 0, 0, {}});
    frame(drawing, {places[0]});
    EXPECT_EQ(pixel(300, 250), (test::Pixel{16, 32, 48}));
}

// Pictures of all places that were ever seen, or of one that has gone; one that is drawn again since another one is
// moved.
TEST_F(SeveralViewsTest, AFewPicturesAreKeptAsLongAsTheyAreNeeded)
{
    Drawing drawing;
    drawing.fill(Path().addCircle({150, 120}, 90), "#e6be3c80");
    const auto at = [this](int i) {
        return Place{i, i, 50 + i, 50, Affine::translation(i % 7, 0) * Affine::scaling(1 + .1 * i)};
    };
    const std::vector<Place> one{places[0]};
    frame(drawing, one);
    EXPECT_EQ(countLayers(), 1);
    for (int i = 0; i < 100; ++i)
        frame(drawing, {at(i % 50)});
    EXPECT_EQ(countLayers(), 1) << "a zoom";
    for (int i = 0; i < 5; ++i)
        frame(drawing, places);
    EXPECT_EQ(countLayers(), int(places.size()));
    for (int i = 0; i < 40; ++i)
    {
        places[2].view = Affine::scaling(1.01) * places[2].view;
        frame(drawing, places);
        EXPECT_LE(nDraws, places.size() + 2) << "frame " << i;
    }
    EXPECT_EQ(countLayers(), int(places.size()));
    for (int i = 0; i < 5; ++i)
        for (int k = 0; k < 20; ++k)
            frame(drawing, {at(k)});
    EXPECT_LE(countLayers(), 8) << "twenty views";
    for (int i = 0; i < 130; ++i)
        frame(drawing, one);
    EXPECT_EQ(countLayers(), 1);
    // As many pixels as twice the largest.
    std::vector<Place> large;
    for (int i = 0; i < 3; ++i)
        large.push_back({0, 0, 2100, 2100 - i, Affine::translation(i, 0)});
    for (int i = 0; i < 3; ++i)
        frame(drawing, large);
    EXPECT_LE(countLayers(), 2);
    // In another context each is there again.
    frame(drawing, places);
    const std::vector<unsigned char> before = frame(drawing, places);
    ASSERT_TRUE(context().replace());
    EXPECT_EQ(frame(drawing, places), before);
    frame(drawing, places);
    EXPECT_EQ(nDraws, places.size());
}

} // namespace
