#include "support/OffscreenGL.h"

#include <gui/Application.h>
#include <gui/Clipboard.h>
#include <gui/draw/Drawing.h>
#include <gui/draw/Instances.h>
#include <gui/draw/Labels3.h>
#include <gui/draw/Plot.h>
#include <gui/gl/View.h>
#include <td/GUIThread.h>

#include <functional>
#include <string>
#include <thread>

#include <pthread.h>

namespace
{

using namespace gui::draw;

class GUIThreadTest : public test::OffscreenGL
{
};

// A call that is let through races with what the GUI thread does; one that says nothing is looked for for days.
TEST_F(GUIThreadTest, CallsFromOtherThreadsAreToldWithBothNames)
{
    Drawing drawing;
    const Path square = Path().addRect({0, 0, 9, 9});
    const Drawing::ID id = drawing.fill(square, "#ff0000");
    gui::gl::View view;
    Plot plot;
    Series& series = plot.add(Series::line({1, 2}));
    Instances instances;
    Labels3 labels;
    const std::function<bool()> calls[] = {
        [&] { return drawing.fill(square, "#00ff00") == 0; },
        [&] { return !drawing.setColor(id, "#00ff00") && !drawing.remove(id); },
        [&] { return !drawing.draw(Affine(), 1); },
        [&] { return series.append(3), series.size() == 2; },
        [&] { return plot.axes().setTitle("words"), !plot.axes().x().setRange(0, 1); },
        [&] {
            return !plot.draw({16, 16});
        },
        [&] { return !instances.add({}) && !instances.draw(Eye()); },
        [&] {
            return labels.add({0, 0, 0}, "words") == 0 && labels.getNumberOfLabels() == 0;
        },
        [&] { return view.reRender(), view.reDraw(), true; },
        [&] { return gui::Application::quit(3), true; },
        [&] { return !gui::Clipboard::setText("words"); },
    };
    std::vector<std::string> told;
    const td::AssertHandler before =
        td::setAssertHandler([&told](const td::AssertReport& report) { told.emplace_back(report.condition); });
    pthread_setname_np(pthread_self(), "viewer");
    td::GUIThread::claim();
    for (std::size_t i = 0; td::cAssertReports && i < std::size(calls); ++i)
    {
        told.clear();
        std::thread(
            [&]
            {
                pthread_setname_np(pthread_self(), "loader");
                EXPECT_FALSE(td::GUIThread::isCurrent());
                EXPECT_TRUE(calls[i]()) << i;
            })
            .join();
        ASSERT_FALSE(told.empty()) << i;
        EXPECT_TRUE(told[0].starts_with("GUI thread only: called on 'loader' (")) << told[0];
        EXPECT_NE(told[0].find("), the GUI thread is 'viewer' ("), std::string::npos) << told[0];
    }
    told.clear();
    EXPECT_EQ(drawing.getNumberOfShapes(), 1u);
    EXPECT_TRUE(drawing.setColor(id, "#0000ff") && drawing.draw(Affine(), 1));
    EXPECT_TRUE(told.empty()) << told[0];
    td::setAssertHandler(before);
}

// Programs that only draw pictures may do so on any thread, one after the other.
TEST(GUIThread, GoesOnWithTheThreadThatMakesTheOnlyContext)
{
    for (int i = 0; i < 2; ++i)
        std::thread(
            []
            {
                const gui::gl::OffscreenContext context({16, 16}, {gui::gl::DepthBuffer::Size::Bits24,
                                                                   gui::gl::StencilBuffer::Size::Bits8,
                                                                   gui::gl::Context::Profile::Core41});
                EXPECT_TRUE(context.isOk());
                EXPECT_TRUE(td::GUIThread::isCurrent());
                EXPECT_NE(Drawing().fill(Path().addRect({0, 0, 9, 9}), "#ff0000"), 0u);
            })
            .join();
    td::GUIThread::claim();
}

} // namespace
