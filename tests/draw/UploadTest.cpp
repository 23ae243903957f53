#include "support/CapturedLog.h"

#include <gui/Application.h>
#include <gui/draw/DrawingView.h>
#include <gui/draw/Upload.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <thread>

namespace
{

using namespace gui::draw;

class UploadTest : public testing::Test
{
protected:
    void wait(const auto& isDone)
    {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        while (!isDone() && std::chrono::steady_clock::now() < end)
            app.step(0.01);
        EXPECT_TRUE(isDone());
    }
    void finish(const Upload& upload)
    {
        wait([&upload] { return !upload.isBusy(); });
    }

    static std::string pictureOf(DrawingView& view)
    {
        const std::string file = testing::TempDir() + "upload.png";
        EXPECT_TRUE(view.saveAll(file.c_str(), 300, 10, 1));
        std::ifstream stream(file, std::ios::binary);
        std::string bytes(std::istreambuf_iterator<char>(stream), {});
        std::filesystem::remove(file);
        return bytes;
    }

    char name[5] = "test";
    char* arguments[2] = {name, nullptr};
    gui::Application app{1, arguments};
};

Path blob(int i)
{
    const td::Point<double> at(i % 20 * 8, i / 20 * 8);
    return Path().addCircle(at, 5).addRect({at.x - 2, at.y - 2, at.x + 3, at.y + 3});
}

// Shapes of many kinds one over the other, in the same order as in a drawing that is filled directly: also when the
// context is lost between, and with one shape a piece.
TEST_F(UploadTest, DrawsWhatADrawingDraws)
{
    const auto fillWith = [](auto& to)
    {
        for (int i = 0; i < 200; ++i)
        {
            const td::Color color = td::Color::fromHSL(static_cast<float>(i * 37), .6F, .5F, i % 3 == 0 ? .5F : 1);
            to.fill(blob(i), color, i % 2 == 0 ? FillRule::EvenOdd : FillRule::NonZero);
            to.stroke(blob(i), {.width = i % 7 * .5, .join = Join::Round, .dashes = {3, double(i % 2)}}, "#203040");
            to.fill(Path(), LinearGradient{{0, 0}, {9, 9}, {{0, "#fff"}, {1, "#000"}}});
            if (i % 10 == 0)
                to.text({double(i % 20 * 8), double(i / 20 * 8)}, "Aé" + std::to_string(i), {.size = 9, .halo = {1}});
        }
    };
    DrawingView direct, view;
    direct.drawing().setTolerance(.5);
    view.drawing().setTolerance(.5);
    const Drawing::ID group = direct.drawing().beginGroup(Affine::rotation(.1));
    fillWith(direct.drawing());
    direct.drawing().endGroup();
    direct.drawing().setZoomRange(group, 0, 1e9);

    Upload upload(view);
    upload.setBudget(0);
    const Drawing::ID loaded = upload.add(view.drawing(), [&](Upload::Shapes& shapes) { fillWith(shapes); });
    view.drawing().setTransform(loaded, Affine::rotation(.1));
    wait([&] { return view.drawing().getNumberOfShapes() > 3; });
    view.loseContext();
    upload.setBudget(1);
    finish(upload);
    EXPECT_EQ(view.drawing().getNumberOfShapes(), direct.drawing().getNumberOfShapes());
    EXPECT_TRUE(pictureOf(view) == pictureOf(direct));
}

// A piece of what was dropped comes after all; progress that goes back or does not end; a queue that stays blocked.
TEST_F(UploadTest, GoesOnBehindWhatWasCancelled)
{
    DrawingView view;
    Drawing& drawing = view.drawing();
    Upload upload(view);
    std::vector<double> progress;
    upload.setOnProgress([&](double done) { progress.push_back(done); });
    std::atomic<bool> hasEnded = false, hasBegun = false;
    const Drawing::ID first = upload.add(drawing,
                                         [&](Upload::Shapes& shapes)
                                         {
                                             while (shapes.fill(blob(0), "#204060"))
                                             {
                                             }
                                             hasEnded = true;
                                         });
    upload.add(drawing, [&](Upload::Shapes&) { hasBegun = true; });
    wait([&] { return drawing.getNumberOfShapes() > 0; });
    upload.cancel();
    EXPECT_FALSE(upload.isBusy());
    EXPECT_EQ(upload.getProgress(), 1);
    const std::size_t nWhole = drawing.getNumberOfShapes();
    progress.clear();

    const auto add = [](Upload::Shapes& shapes)
    {
        shapes.expect(30);
        for (int i = 0; i < 20; ++i)
            shapes.fill(blob(i), "#204060", FillRule::NonZero, 7);
    };
    const Drawing::ID second = upload.add(drawing, add);
    int nCalled = 0;
    upload.run([&] { return [&] { nCalled = static_cast<int>(drawing.getNumberOfShapes()); }; });
    finish(upload);
    EXPECT_TRUE(hasEnded);
    EXPECT_FALSE(hasBegun);
    EXPECT_EQ(drawing.getNumberOfShapes(), nWhole + 20);
    EXPECT_EQ(nCalled, static_cast<int>(nWhole) + 20);
    ASSERT_FALSE(progress.empty());
    EXPECT_EQ(progress.back(), 1);
    EXPECT_TRUE(std::is_sorted(progress.begin(), progress.end()));
    drawing.remove(first);
    EXPECT_EQ(drawing.getNumberOfShapes(), 20U);
    EXPECT_EQ(drawing.getTag(drawing.pick({8, 0})), 7U);
    drawing.remove(second);
    EXPECT_EQ(drawing.getNumberOfShapes(), 0U);
}

// Pieces for a group, a drawing, a view or an upload that is gone.
TEST_F(UploadTest, DropsWhatHasNoPlaceAnyMore)
{
    const auto endless = [](Upload::Shapes& shapes)
    {
        for (int i = 0; shapes.fill(blob(i % 50), "#204060"); ++i)
        {
        }
    };
    auto pView = std::make_unique<DrawingView>();
    Upload upload(*pView);
    const auto some = [](Upload::Shapes& shapes)
    {
        for (int i = 0; i < 2000; ++i)
            shapes.fill(blob(i % 50), "#204060");
    };
    Drawing& drawing = pView->drawing();
    const Drawing::ID gone = upload.add(drawing, some);
    wait([&] { return drawing.getNumberOfShapes() > 0; });
    drawing.remove(gone);
    drawing.fill(blob(3), "#d04020"); // perhaps in the group's slot
    finish(upload);
    EXPECT_EQ(drawing.getNumberOfShapes(), 1U);

    auto pOther = std::make_unique<Drawing>();
    upload.add(*pOther, some);
    upload.add(drawing, some);
    wait([&] { return pOther->getNumberOfShapes() > 0; });
    pOther.reset();
    wait([&] { return drawing.getNumberOfShapes() > 1; });
    pView.reset();
    finish(upload);

    // In its own handler, and with a thread that is in the midst of it.
    DrawingView view;
    auto pUpload = std::make_unique<Upload>(view);
    pUpload->setOnProgress([&](double) { pUpload.reset(); });
    pUpload->add(view.drawing(), endless);
    wait([&] { return pUpload == nullptr; });
    Upload(view).add(view.drawing(), endless);
    const std::size_t nShapes = view.drawing().getNumberOfShapes();
    for (int i = 0; i < 5; ++i)
        app.step(0.01);
    EXPECT_EQ(view.drawing().getNumberOfShapes(), nShapes);
}

// Errors of a function that end the thread, or all that comes behind it.
TEST_F(UploadTest, TellsErrorsAndGoesOn)
{
    test::CapturedLog log;
    DrawingView view;
    Upload upload(view);
    const auto half = [](Upload::Shapes& shapes)
    {
        shapes.fill(blob(1), "#204060");
        shapes.fill(Path().moveTo({NAN, 0}).lineTo({INFINITY, 1}).lineTo({0, 0}), "#204060");
        throw std::runtime_error("the file ends too early");
    };
    upload.add(view.drawing(), half);
    upload.add(view.drawing(), [](Upload::Shapes& shapes) { shapes.fill(blob(2), "#204060"); });
    finish(upload);
    EXPECT_EQ(view.drawing().getNumberOfShapes(), 3U);
    EXPECT_TRUE(log.said("Error! Upload: a function threw: the file ends too early"));

    int nErrors = 0;
    upload.setOnError([&nErrors](const std::exception_ptr&) { ++nErrors; });
    upload.run([]() -> std::function<void()> { throw 7; });
    upload.run([]() -> std::function<void()> { return {}; });
    // One on the GUI thread leaves the loop, and nothing else is lost.
    upload.run([] { return [] { throw std::runtime_error("handed over"); }; });
    upload.add(view.drawing(), [](Upload::Shapes& shapes) { shapes.fill(blob(2), "#204060"); });
    EXPECT_THROW(finish(upload), std::runtime_error);
    finish(upload);
    EXPECT_EQ(nErrors, 1);
    EXPECT_EQ(view.drawing().getNumberOfShapes(), 4U);
}

} // namespace
