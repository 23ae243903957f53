// What a program of GTK's does with its widgets.

#include "DesktopTest.h"
#include "KeptView.h"

#include <gui/Clipboard.h>
#include <gui/Cursor.h>
#include <gui/Texture.h>
#include <gui/ZavObject.h>
#include <gui/gl/OffscreenContext.h>
#include <gui/gl/port/Zav.h>
#include <gui/gtk/ViewArea.h>

#include <epoxy/gl.h>
#include <gtk/gtk.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <thread>

namespace test
{

namespace
{

INSTANTIATE_TEST_SUITE_P(Gtk, DesktopTest, testing::Values(0));

class ViewAreaTest : public DesktopFixture
{
protected:
    ViewAreaTest() { gtk_window_set_title(pWindow, "Window"); }
    ~ViewAreaTest() override { gtk_window_destroy(pWindow); }

    static gui::gtk::Maker make(RecordingView& view)
    {
        return [&view]
        {
            view.create();
            return &view;
        };
    }
    static void show(GtkWindow* pShown, GtkWidget* pWidget, int width = 200)
    {
        gtk_window_set_default_size(pShown, width, 150);
        gtk_window_set_child(pShown, pWidget);
        gtk_window_present(pShown);
    }

    GtkWindow* pWindow = GTK_WINDOW(gtk_window_new());
    RecordingView view;
};

// The view, its context and its objects stay the same, in no window as well.
TEST_F(ViewAreaTest, AWidgetMovesFromWindowToWindow)
{
    GtkWidget* const pArea = GTK_WIDGET(g_object_ref_sink(gui::gtk::newViewArea(make(view))));
    show(pWindow, pArea);
    ASSERT_TRUE(showsItsFrame(view));
    auto* const pSecond = GTK_WINDOW(gtk_window_new());
    GtkWindow* windows[] = {pSecond, pWindow};
    for (int i = 0; i < 100; ++i)
    {
        gtk_window_set_child(windows[(i + 1) % 2], nullptr);
        if (i % 10 == 0)
        {
            // Names can be made and deleted, and a frame needs a window.
            view.makeCurrentContext();
            EXPECT_NE(gui::gl::CurrentContext::getID(), 0u);
            gui::Texture picture;
            EXPECT_FALSE(zav::drawInto(&view, picture));
        }
        show(windows[i % 2], pArea, i % 2 == 0 ? 260 : 200);
        const double width = i % 2 == 0 ? 260 : 200;
        if (i % 10 < 2)
        {
            EXPECT_TRUE(waitInLoop([&] { return view.sizes.back().width == width; })) << i;
        }
    }
    EXPECT_TRUE(showsItsFrame(view));
    EXPECT_FALSE(view.isWrong);
    EXPECT_EQ(view.nCleanUps, 0);
    EXPECT_FALSE(log.said("Error"));
    gtk_window_destroy(pSecond);
    g_object_unref(pArea);
}

// A context is of a display: on another one there is another.
TEST_F(ViewAreaTest, AWidgetThatMovesToAnotherDisplayShowsTheSame)
{
    GdkDisplay* const pFirst = gdk_display_get_default();
    GdkDisplay* const pSecond = gdk_display_open(gdk_display_get_name(pFirst));
    ASSERT_NE(pSecond, nullptr);
    KeptView kept;
    show(pWindow, gui::gtk::newViewArea(
                      [&kept]
                      {
                          kept.create();
                          return &kept;
                      }));
    ASSERT_TRUE(waitInLoop([&] { return kept.nFrames > 0; }));
    const std::vector<td::BYTE> before = kept.picture();
    for (int i = 1; i <= 6; ++i)
    {
        const int nFrames = kept.nFrames;
        gtk_window_set_display(pWindow, i % 2 == 1 ? pSecond : pFirst);
        EXPECT_TRUE(waitInLoop([&] { return kept.nFrames > nFrames && kept.nContexts > i; })) << i;
        EXPECT_TRUE(kept.picture() == before) << i;
    }
    kept.loseContext(); // in the context that the widget has
    EXPECT_TRUE(kept.picture() == before);
    EXPECT_EQ(kept.nContexts, 8);
    EXPECT_FALSE(log.said("Error"));
    gtk_window_set_child(pWindow, nullptr);
}

TEST_F(ViewAreaTest, ViewAndWidgetGoInAnyOrder)
{
    GtkWidget* const pArea = gui::gtk::newViewArea(make(view));
    EXPECT_EQ(gui::gtk::getView(pArea), nullptr);
    show(pWindow, pArea);
    ASSERT_TRUE(showsItsFrame(view));
    EXPECT_EQ(gui::gtk::getView(pArea), &view);
    EXPECT_EQ(gui::gtk::getView(GTK_WIDGET(pWindow)), nullptr);
    gtk_window_set_child(pWindow, nullptr);
    EXPECT_TRUE(waitInLoop([&] { return view.nCleanUps == 1; }));
    view.reRender();

    auto pOther = std::make_unique<RecordingView>();
    GtkWidget* const pOthers = gui::gtk::newViewArea(make(*pOther));
    show(pWindow, pOthers);
    ASSERT_TRUE(waitInLoop([&] { return pOther->nFrames > 0; }));
    pOther.reset();
    EXPECT_EQ(gui::gtk::getView(pOthers), nullptr);
    gtk_widget_queue_draw(pOthers);
    app.step(0.1);

    // A click may end all of it, and a key after it finds nobody.
    RecordingView last;
    show(pWindow, gui::gtk::newViewArea(make(last)));
    ASSERT_TRUE(waitInLoop([] { return desktop().bring("Window", 0); }));
    ASSERT_TRUE(showsItsFrame(last));
    bool isGone = false;
    last.in["press"] = [&]
    {
        gtk_window_set_child(pWindow, nullptr);
        isGone = true;
    };
    xdo(at(20, 20) + " click 1 key a");
    EXPECT_TRUE(waitInLoop([&] { return isGone; }));
    EXPECT_TRUE(waitInLoop([&] { return last.nCleanUps == 1; }));

    // One that was never shown, and one that GTK has made by the name of its type, as builders do.
    g_object_unref(g_object_ref_sink(gui::gtk::newViewArea(make(last))));
    auto* const pByName = g_object_ref_sink(g_object_new(g_type_from_name("GuiglViewArea"), nullptr));
    EXPECT_EQ(gui::gtk::getView(GTK_WIDGET(pByName)), nullptr);
    g_object_unref(pByName);
}

TEST_F(ViewAreaTest, AtRestNothingWakesTheLoop)
{
    show(pWindow, gui::gtk::newViewArea(make(view)));
    ASSERT_TRUE(showsItsFrame(view));
    view.startAnimation();
    const int before = view.nFrames;
    ASSERT_TRUE(waitInLoop([&] { return view.nFrames > before + 10; }));
    // Nobody sees it: no ticks.
    gtk_widget_set_visible(GTK_WIDGET(pWindow), FALSE);
    waitInLoop([] { return false; }, 0.2);
    const int hidden = view.nFrames;
    app.step(0.4);
    EXPECT_EQ(view.nFrames, hidden);
    gtk_window_present(pWindow);
    ASSERT_TRUE(waitInLoop([&] { return view.nFrames > hidden + 3; }));
    view.stopAnimation();
    waitInLoop([] { return false; }, 0.5);

    // By GTK's own loop, which sleeps until the end.
    bool isOver = false;
    g_timeout_add(
        400, [](void* pIsOver) -> gboolean { return !(*static_cast<bool*>(pIsOver) = true); }, &isOver);
    const int frames = view.nFrames;
    int nTurns = 0;
    for (; !isOver; ++nTurns)
        g_main_context_iteration(nullptr, TRUE);
    EXPECT_LE(nTurns, 3);
    EXPECT_EQ(view.nFrames, frames);
}

TEST_F(ViewAreaTest, CallsTextsAndSamplesArePassedOn)
{
    bool isCalled = false;
    std::thread([&isCalled]
                { gui::ZavObject::asyncCall(new std::function<void()>([&isCalled] { isCalled = true; }), true); })
        .join();
    // By GTK's own loop alone.
    while (!isCalled)
        g_main_context_iteration(nullptr, TRUE);

    for (const auto kind : {gui::Clipboard::Kind::Copied, gui::Clipboard::Kind::Selected})
    {
        EXPECT_TRUE(gui::Clipboard::setText("Straße", kind));
        EXPECT_EQ(gui::Clipboard::getText(kind), "Straße");
        EXPECT_TRUE(gui::Clipboard::setText("", kind));
        EXPECT_FALSE(gui::Clipboard::hasText(kind));
    }
    gdk_clipboard_set_text(gdk_display_get_clipboard(gdk_display_get_default()), "from GTK");
    EXPECT_EQ(gui::Clipboard::getText(), "from GTK");

    gui::gl::Context context = gui::gtk::getDefaultContext();
    context.setSamples(4);
    gui::gl::View sampled;
    show(pWindow, gui::gtk::newViewArea(sampled, context));
    ASSERT_TRUE(waitInLoop([&] { return sampled.getSamples() > 0; }));
    EXPECT_TRUE(log.said("Warning! ViewArea asked for 4 samples, got 1"));
}

// Of a call of the library's, by GTK's own loop, and of a source of GTK's in a turn of the application's.
TEST_F(ViewAreaTest, ViewsGoOnInTheLoopOfADialog)
{
    show(pWindow, gui::gtk::newViewArea(make(view)));
    ASSERT_TRUE(showsItsFrame(view));
    view.startAnimation();
    bool isAnswered = false;
    std::function<void()> ask = [&]
    {
        const int before = view.nFrames;
        bool isOver = false;
        const guint look = g_timeout_add(
            5000, [](void* pIsOver) -> gboolean { return *static_cast<bool*>(pIsOver) = true; }, &isOver);
        while (!isOver && view.nFrames <= before + 5)
            g_main_context_iteration(nullptr, TRUE);
        g_source_remove(look);
        EXPECT_FALSE(isOver);
        isAnswered = true;
    };
    gui::ZavObject::asyncCall(new std::function<void()>(ask), true);
    while (!isAnswered)
        g_main_context_iteration(nullptr, TRUE);
    isAnswered = false;
    g_idle_add_once([](void* pAsk) { (*static_cast<std::function<void()>*>(pAsk))(); }, &ask);
    EXPECT_TRUE(waitInLoop([&] { return isAnswered; }));
}

// GTK blends a widget's frames, and switches the depth test on for each.
class TranslucentView : public gui::gl::View
{
public:
    std::uint32_t color = 0x3060C0;
    std::function<void()> inDraw;
    bool isStateKept = true;

protected:
    void onInit() override { isStateKept = glIsEnabled(GL_DEPTH_TEST) == GL_FALSE; }
    void onDraw(const td::RectNormalized<double>&) override
    {
        isStateKept = isStateKept && glIsEnabled(GL_DEPTH_TEST) == GL_FALSE &&
                      (_isFirst || (glIsEnabled(GL_SCISSOR_TEST) == GL_TRUE && isMasked()));
        _isFirst = false;
        glDisable(GL_SCISSOR_TEST);
        gui::gl::Context::maskColorBuffer(true, true, true, true);
        glClearColor(float(color >> 16) / 255, float(color >> 8 & 0xFF) / 255, float(color & 0xFF) / 255, 0.5f);
        gui::gl::Context::clear(gui::gl::Context::Clear::Color);
        // What it leaves is what it finds.
        glEnable(GL_SCISSOR_TEST);
        glScissor(1, 1, 2, 2);
        gui::gl::Context::maskColorBuffer(false, true, false, false);
    }

private:
    static bool isMasked()
    {
        GLboolean mask[4]{};
        glGetBooleanv(GL_COLOR_WRITEMASK, mask);
        return mask[0] == GL_FALSE && mask[1] == GL_TRUE && mask[3] == GL_FALSE;
    }

    bool _isFirst = true;
};

TEST_F(ViewAreaTest, FramesAreOpaqueAndStateStays)
{
    TranslucentView translucent;
    show(pWindow, gui::gtk::newViewArea(translucent));
    const auto isSeen = [&]
    {
        translucent.reRender();
        const XServer::Place place = desktop().server().find(translucent.color, {0, 0, 1080, 874});
        const Screenshot shot = desktop().server().shoot({place.x, place.y, 200, 150});
        return std::ranges::all_of(shot.pixels, [&](std::uint32_t p) { return p == translucent.color; });
    };
    EXPECT_TRUE(waitInLoop(isSeen));

    // At another time than GTK's, and beside contexts that are not GTK's.
    gui::Texture picture;
    EXPECT_TRUE(zav::drawInto(&translucent, picture));
    EXPECT_EQ(picture.getWidth(), 200);
    gui::gl::OffscreenContext offscreen({8, 8}, gui::gtk::getDefaultContext());
    EXPECT_TRUE(offscreen.isOk());
    for (const std::uint32_t color : {0x60C030u, 0xC03060u})
    {
        translucent.color = color;
        EXPECT_TRUE(waitInLoop(isSeen));
        EXPECT_TRUE(offscreen.makeCurrent());
        EXPECT_TRUE(zav::drawInto(&translucent, picture));
        EXPECT_TRUE(offscreen.makeCurrent());
    }
    EXPECT_TRUE(translucent.isStateKept);
}

// Run at several scales: the screen shows what was drawn, pixel for pixel, and what is clicked on is where it is seen.
TEST_F(ViewAreaTest, FramesAreSharp)
{
    GtkWidget* const pArea = gui::gtk::newViewArea(make(view));
    show(pWindow, pArea);
    ASSERT_TRUE(waitInLoop([] { return desktop().bring("Window", 0); }));
    ASSERT_TRUE(showsItsFrame(view));
    scale = gtk_widget_get_scale_factor(pArea);
    EXPECT_EQ(view.getPixelHiDPIScale(), static_cast<float>(scale));
    EXPECT_EQ(corner.width, 200 * scale);
    EXPECT_TRUE(view.grab() == view.readPixels());
    view.lines.clear();
    xdo(at(150, 100) + " click 1");
    EXPECT_TRUE(view.hasHeard({"enter 150,100", "press 150,100 x1", "release 150,100 x1"}));
}

TEST_F(ViewAreaTest, TheKeyboardComesAndGoes)
{
    RecordingView second;
    second.topLeft = 0xC020C0;
    auto* const pBox = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 0);
    for (RecordingView* const pView : {&view, &second})
    {
        GtkWidget* const pArea = gui::gtk::newViewArea(make(*pView));
        gtk_widget_set_hexpand(pArea, TRUE);
        gtk_box_append(GTK_BOX(pBox), pArea);
    }
    show(pWindow, pBox);
    ASSERT_TRUE(waitInLoop([] { return desktop().bring("Window", 0); }));
    ASSERT_TRUE(showsItsFrame(view));
    view.registerForFocusEvents();
    xdo(at(130, 20) + " click 3");
    ASSERT_TRUE(waitInLoop([&] { return !second.lines.empty() && second.lines.back().substr(0, 8) == "release2"; }));
    view.lines.clear();
    second.lines.clear();
    xdo(at(20, 20) + " click 3 keydown Super_L key b keyup Super_L");
    EXPECT_TRUE(view.hasHeard(
        {"enter 20,20", "focus", "press2 20,20 x1", "release2 20,20 x1", "key 'b'+Ctrl", "up key 'b'+Ctrl"}));
    auto* const pOther = GTK_WINDOW(gtk_window_new());
    gtk_window_present(pOther);
    EXPECT_TRUE(view.hasHeard({"no focus"}));
    gtk_window_destroy(pOther);
    EXPECT_TRUE(view.hasHeard({"focus"}));
}

TEST_F(ViewAreaTest, ShowsThePointerThatTheViewWants)
{
    GtkWidget* const pArea = gui::gtk::newViewArea(make(view));
    show(pWindow, pArea);
    ASSERT_TRUE(showsItsFrame(view));
    for (const auto& [type, name] : {std::pair(gui::Cursor::Type::Text, "text"), {gui::Cursor::Type::Pan, "move"}})
    {
        view.setCursor(type, true);
        GdkCursor* const pCursor = gtk_widget_get_cursor(pArea);
        ASSERT_NE(pCursor, nullptr) << name;
        EXPECT_STREQ(gdk_cursor_get_name(pCursor), name);
    }
    view.setCursor(gui::Cursor::Type::Default, true);
    EXPECT_EQ(gtk_widget_get_cursor(pArea), nullptr);
}

} // namespace

} // namespace test
