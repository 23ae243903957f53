// What a program of Qt's does with its widgets.

#include "DesktopTest.h"
#include "KeptView.h"

#include <gui/Clipboard.h>
#include <gui/ZavObject.h>
#include <gui/qt/ViewWidget.h>
#include <gui/qt/ViewWindow.h>

#include <QAbstractEventDispatcher>
#include <QClipboard>
#include <QFocusEvent>
#include <QGuiApplication>
#include <QInputMethodEvent>
#include <QMainWindow>
#include <QShortcut>
#include <QTabWidget>
#include <QTimer>

#include <algorithm>
#include <functional>
#include <memory>
#include <span>
#include <thread>

namespace test
{

namespace
{

using gui::qt::ViewWidget;

INSTANTIATE_TEST_SUITE_P(Qt, DesktopTest, testing::Values(0));

class ViewWidgetTest : public DesktopFixture
{
protected:
    std::function<gui::gl::View*()> make(gui::gl::Context::Animation animation = gui::gl::Context::Animation::Off)
    {
        return [this, animation]
        {
            view.create(animation);
            return &view;
        };
    }
    // Shows a widget that waits to be in a window of its own.
    // Of a size that is whole in pixels at each scale: where it isn't, Qt 6.8 stretches.
    testing::AssertionResult isSeen(QWidget& window)
    {
        window.resize(200, 160);
        window.show();
        return showsItsFrame(view);
    }

    RecordingView view;
};

// The view, its context and its objects stay the same.
TEST_F(ViewWidgetTest, AWidgetMovesFromWindowToWindow)
{
    auto* const pWidget = new ViewWidget(make());
    QMainWindow first, second;
    first.setCentralWidget(pWidget);
    ASSERT_TRUE(isSeen(first));
    second.resize(260, 170);
    second.show();
    QTabWidget tabs;
    tabs.resize(300, 200);
    tabs.show();
    for (int i = 0; i < 33; ++i)
    {
        second.setCentralWidget(first.takeCentralWidget());
        waitInLoop([&] { return view.sizes.back().width == 260; });
        tabs.addTab(second.takeCentralWidget(), "Map");
        tabs.setCurrentIndex(0);
        waitInLoop([&] { return view.sizes.back().width != 260; });
        tabs.removeTab(0);
        first.setCentralWidget(pWidget);
        pWidget->show();
        waitInLoop([&] { return view.sizes.back().width == 200; });
    }
    second.hide();
    tabs.hide();
    EXPECT_TRUE(showsItsFrame(view));
    EXPECT_FALSE(view.isWrong);
    EXPECT_EQ(view.nCleanUps, 0);
    EXPECT_FALSE(log.said("Error"));
}

// Without sharing Qt gives a widget that moves another context.
TEST_F(ViewWidgetTest, AWidgetWhoseContextIsReplacedShowsTheSame)
{
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts, false);
    KeptView kept;
    auto* const pWidget = new ViewWidget(
        [&kept]
        {
            kept.create();
            return &kept;
        });
    QMainWindow windows[2];
    for (QMainWindow& window : windows)
        window.resize(200, 150);
    windows[0].setCentralWidget(pWidget);
    windows[0].show();
    windows[1].show();
    ASSERT_TRUE(waitInLoop([&] { return kept.nFrames > 0; }));
    const std::vector<td::BYTE> before = kept.picture();
    for (int i = 1; i <= 6; ++i)
    {
        const int nFrames = kept.nFrames;
        windows[i % 2].setCentralWidget(windows[(i + 1) % 2].takeCentralWidget());
        pWidget->show();
        EXPECT_TRUE(waitInLoop([&] { return kept.nFrames > nFrames && kept.nContexts > i; })) << i;
        EXPECT_TRUE(kept.picture() == before) << i;
    }
    kept.loseContext(); // in the context that the widget has
    EXPECT_TRUE(kept.picture() == before);
    EXPECT_EQ(kept.nContexts, 8);
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    EXPECT_FALSE(log.said("Error"));
}

TEST_F(ViewWidgetTest, ViewAndWidgetGoInAnyOrder)
{
    {
        ViewWidget widget(make());
        ASSERT_TRUE(isSeen(widget));
        EXPECT_EQ(widget.getView(), &view);
    }
    EXPECT_EQ(view.nCleanUps, 1);
    view.reRender();

    auto pOther = std::make_unique<RecordingView>();
    ViewWidget widget(
        [&]
        {
            pOther->create();
            return pOther.get();
        });
    widget.show();
    ASSERT_TRUE(waitInLoop([&] { return pOther->nFrames > 0; }));
    pOther.reset();
    EXPECT_EQ(widget.getView(), nullptr);
    widget.resize(90, 80);
    widget.update();
    app.step(0.1);

    // A click may end all of it, and so may a pointer that leaves, which Qt has to know of as well.
    for (const auto& [heard, done] : {std::pair("press", " click 1"), {"exit", " sleep 0.3 mousemove 500 400"}})
    {
        RecordingView last;
        auto* const pWidget = new ViewWidget(
            [&last]
            {
                last.create();
                return &last;
            });
        pWidget->setWindowTitle("Last");
        pWidget->show();
        ASSERT_TRUE(waitInLoop([] { return desktop().bring("Last", 0); }));
        ASSERT_TRUE(showsItsFrame(last));
        bool isGone = false;
        last.in[heard] = [&]
        {
            delete pWidget;
            isGone = true;
        };
        xdo(at(20, 20) + done);
        EXPECT_TRUE(waitInLoop([&] { return isGone; })) << heard;
        app.step(0.1);
    }
}

TEST_F(ViewWidgetTest, AtRestNothingWakesTheLoop)
{
    ViewWidget widget(make());
    ASSERT_TRUE(isSeen(widget));
    view.startAnimation();
    const int before = view.nFrames;
    ASSERT_TRUE(waitInLoop([&] { return view.nFrames > before + 10; }));
    // Nobody sees it: no ticks.
    widget.hide();
    waitInLoop([] { return false; }, 0.2);
    int nTurns = 0;
    const auto connection = QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::awake,
                                             [&nTurns] { ++nTurns; });
    const int hidden = view.nFrames;
    app.step(0.4);
    EXPECT_EQ(view.nFrames, hidden);
    widget.show();
    ASSERT_TRUE(waitInLoop([&] { return view.nFrames > hidden + 3; }));
    view.stopAnimation();
    waitInLoop([] { return false; }, 0.2);
    nTurns = 0;
    const int frames = view.nFrames;
    app.step(0.4);
    EXPECT_LE(nTurns, 3);
    EXPECT_EQ(view.nFrames, frames);
    QObject::disconnect(connection);
}

TEST_F(ViewWidgetTest, CallsTextsAndSamplesArePassedOn)
{
    bool isCalled = false;
    std::thread([&isCalled]
                { gui::ZavObject::asyncCall(new std::function<void()>([&isCalled] { isCalled = true; }), true); })
        .join();
    // By Qt's own loop alone.
    while (!isCalled)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);

    EXPECT_TRUE(gui::Clipboard::setText("Straße"));
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QString::fromUtf8("Straße"));
    QGuiApplication::clipboard()->setText("from Qt");
    EXPECT_EQ(gui::Clipboard::getText(), "from Qt");

    gui::gl::Context context = ViewWidget::getDefaultContext();
    context.setSamples(4);
    gui::gl::View sampled;
    ViewWidget widget(sampled, context);
    widget.show();
    ASSERT_TRUE(waitInLoop([&] { return sampled.getSamples() > 0; }));
    EXPECT_EQ(sampled.getSamples(), 4);
}

// Of a call of the library's, by Qt's own loop, and of an event of Qt's in a turn of the application's.
TEST_F(ViewWidgetTest, ViewsGoOnInTheLoopOfADialog)
{
    ViewWidget widget(make());
    ASSERT_TRUE(isSeen(widget));
    view.startAnimation();
    bool isAnswered = false;
    const auto ask = [&]
    {
        const int before = view.nFrames;
        QEventLoop dialog;
        QTimer look;
        int nLooks = 0;
        QObject::connect(&look, &QTimer::timeout,
                         [&]
                         {
                             if (view.nFrames > before + 5 || ++nLooks > 500)
                                 dialog.quit();
                         });
        look.start(10);
        dialog.exec();
        EXPECT_GT(view.nFrames, before + 5);
        isAnswered = true;
    };
    gui::ZavObject::asyncCall(new std::function<void()>(ask), true);
    while (!isAnswered)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    isAnswered = false;
    QTimer::singleShot(0, ask);
    EXPECT_TRUE(waitInLoop([&] { return isAnswered; }));
}

TEST_F(ViewWidgetTest, AWindowWithoutWidgetsShowsTheSame)
{
    gui::qt::ViewWindow window(make());
    window.resize(200, 150);
    window.show();
    EXPECT_TRUE(showsItsFrame(view));
    window.resize(230, 160);
    EXPECT_TRUE(waitInLoop([&] { return !view.sizes.empty() && view.sizes.back().width == 230; }));
    EXPECT_TRUE(showsItsFrame(view));
    EXPECT_FALSE(view.isWrong);
}

// The keyboard and the input method, as Qt tells of them.
TEST_F(ViewWidgetTest, FocusAndCompositionArePassedOn)
{
    ViewWidget widget(make());
    ASSERT_TRUE(isSeen(widget));
    view.registerForFocusEvents();
    view.startTextInput();
    view.lines.clear();
    QFocusEvent out(QEvent::FocusOut), in(QEvent::FocusIn);
    QCoreApplication::sendEvent(&widget, &out);
    EXPECT_TRUE(view.hasHeard({"no focus"}));
    QCoreApplication::sendEvent(&widget, &in);
    EXPECT_TRUE(view.hasHeard({"focus"}));

    const auto compose = [&](const char* preedit, int caret, const char* committed)
    {
        QInputMethodEvent event(QString::fromUtf8(preedit), {{QInputMethodEvent::Cursor, caret, 1, QVariant()}});
        event.setCommitString(QString::fromUtf8(committed));
        QCoreApplication::sendEvent(&widget, &event);
    };
    compose("né", 1, "");
    EXPECT_TRUE(view.hasHeard({"composes n[]é"}));
    compose("", 0, "née");
    EXPECT_TRUE(view.hasHeard({"composes []", "text née"}));
    compose("", 0, "!");
    EXPECT_TRUE(view.hasHeard({"text !"}));
    compose("a", 1, "");
    compose("", 0, "");
    EXPECT_TRUE(view.hasHeard({"composes a[]", "composes []"}));
}

TEST_F(ViewWidgetTest, AFieldHasItsKeysBeforeShortcuts)
{
    ViewWidget widget(make());
    ASSERT_TRUE(isSeen(widget));
    std::vector<std::string> taken;
    for (const char* const keys : {"A", "Del", "Ctrl+A"})
    {
        auto* const pShortcut = new QShortcut(QKeySequence(keys), &widget);
        QObject::connect(pShortcut, &QShortcut::activated, [&taken, keys] { taken.emplace_back(keys); });
    }
    view.lines.clear();
    xdo("key a key Delete");
    EXPECT_TRUE(waitInLoop([&] { return taken.size() == 2; }));
    view.startTextInput();
    view.lines.clear();
    xdo("key a key Delete key ctrl+a");
    EXPECT_TRUE(waitInLoop([&] { return taken.size() == 3; }));
    EXPECT_EQ(taken.back(), "Ctrl+A");
    const std::vector<std::string> expected{"key 'a'", "text a", "up key 'a'"};
    EXPECT_TRUE(view.lines.size() > expected.size() && std::ranges::equal(expected, std::span(view.lines).first(3)));
}

// Run at several scales: the screen shows what was drawn, pixel for pixel.
TEST_F(ViewWidgetTest, FramesAreSharp)
{
    ViewWidget widget(make());
    ASSERT_TRUE(isSeen(widget));
    EXPECT_EQ(double(view.getPixelHiDPIScale()), widget.devicePixelRatioF());
    EXPECT_EQ(corner.width, qRound(200 * widget.devicePixelRatioF()));
    EXPECT_TRUE(view.grab() == view.readPixels());
}

} // namespace

} // namespace test
