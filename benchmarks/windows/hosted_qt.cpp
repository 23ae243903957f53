// The same GL in a window of Qt's, in a view that is hosted there or in Qt's own widget, without the library, one frame
// after the other:
//
//     hosted_qt FRAMES
//     bare_qt FRAMES
//
// Tells the first frame's time, from that in the environment's BEGUN on, which is what `date +%s%N` says; and the time
// and the processors' time of the others.

// Before Qt's, which have another loader's header.
#include <epoxy/gl.h>

#include "Intervals.h"

#ifdef BENCH_HOSTED
#include <gui/gl/View.h>
#include <gui/qt/ViewWidget.h>
#endif

#include <QApplication>
#include <QOpenGLWidget>

#include <cstdlib>
#include <ctime>

namespace
{

// What costs as much wherever it is drawn, and needs no objects: fields in many colours.
void drawFields(int n)
{
    constexpr int cColumns = 32, cSide = 20, cSteps = 16;
    glClearColor(1, 1, 1, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    glEnable(GL_SCISSOR_TEST);
    for (int i = 0; i < cColumns * cColumns / 2; ++i)
    {
        glScissor(i % cColumns * cSide, i / cColumns * cSide, cSide, cSide);
        glClearColor(static_cast<float>((i + n) % cSteps) / cSteps, 0.5F, 0, 1);
        glClear(GL_COLOR_BUFFER_BIT);
    }
    glDisable(GL_SCISSOR_TEST);
}

#ifdef BENCH_HOSTED

struct View : gui::gl::View
{
protected:
    void onDraw(const td::RectNormalized<double>&) override { drawFields(++_n); }

private:
    int _n = 0;
};

struct Widget : private View, public gui::qt::ViewWidget
{
    Widget()
        : ViewWidget(static_cast<View&>(*this))
    {
    }
};

#else

struct Widget : QOpenGLWidget
{
protected:
    void paintGL() override { drawFields(++_n); }

private:
    int _n = 0;
};

#endif

double millisecondsSince(const char* begun)
{
    using std::chrono::duration_cast, std::chrono::nanoseconds;
    const auto now = duration_cast<nanoseconds>(std::chrono::system_clock::now().time_since_epoch()).count();
    return static_cast<double>(now - std::atoll(begun)) / 1e6;
}

} // namespace

int main(int argc, char** argv)
{
    const char* const begun = std::getenv("BEGUN");
    if (argc != 2 || begun == nullptr)
        return EXIT_FAILURE;
    const int nFrames = std::atoi(argv[1]);
    QSurfaceFormat format;
    format.setVersion(4, 1);
    format.setProfile(QSurfaceFormat::CoreProfile);
    format.setDepthBufferSize(24);
    format.setStencilBufferSize(8);
    format.setSwapInterval(0);
    QSurfaceFormat::setDefaultFormat(format);
    QApplication app(argc, argv);
    Widget widget;
    bench::Intervals frames;
    int n = 0;
    std::clock_t first = 0;
    QObject::connect(&widget, &QOpenGLWidget::frameSwapped,
                     [&]
                     {
                         if (n == 0)
                             std::printf("first: %.1f ms\n", millisecondsSince(begun));
                         // What is made once is made by then.
                         constexpr int cWarm = 10;
                         if (++n == cWarm)
                             first = std::clock();
                         if (n >= cWarm)
                             frames.add(bench::Clock::now());
                         if (n == nFrames)
                         {
                             const double used = 1000.0 * static_cast<double>(std::clock() - first) / CLOCKS_PER_SEC;
                             std::printf("processors: %.4f ms a frame\n", used / (nFrames - cWarm));
                             QApplication::quit();
                         }
                         widget.update();
                     });
    widget.resize(640, 320);
    widget.show();
    QApplication::exec();
    frames.print("frames");
    return EXIT_SUCCESS;
}
