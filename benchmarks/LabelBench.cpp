// Ten thousand labels, each with a dot and three other places: adding them, finding out which have room, and frames of
// theirs, with what the driver does; beside a scene of Qt's with as many texts in view.

#include "QtArguments.h"

#include <gui/draw/Labels.h>
#include <gui/gl/FrameLedger.h>
#include <gui/gl/OffscreenContext.h>

#include <benchmark/benchmark.h>
#include <epoxy/gl.h>

#ifdef BENCH_QT
#include <QApplication>
#include <QGraphicsScene>
#include <QGraphicsSimpleTextItem>
#include <QImage>
#include <QPainter>
#endif

#include <cmath>
#include <memory>
#include <random>
#include <string>

namespace
{

using namespace gui::draw;

constexpr int cLabels = 10000;
constexpr double cSide = 6000;
constexpr int cFrame = 1000; // points
constexpr int cLoop = 20;    // frames, after which they are as before

/// With words of four to ten letters.
class Map
{
public:
    Map()
    {
        std::mt19937 random(7);
        const auto below = [&random](double n) { return std::uniform_real_distribution<>(0, n)(random); };
        for (int i = 0; i < cLabels; ++i)
        {
            std::string name(1, static_cast<char>('A' + int(below(26))));
            for (int k = 3 + int(below(7)); k > 0; --k)
                name += static_cast<char>('a' + int(below(26)));
            const double priority = below(1);
            const TextLayout layout(name, {.size = 10 + std::floor(priority * 5) * 1.5, .halo = {1.5}});
            const Drawing::Point at(below(cSide), below(cSide));
            const Drawing::ID id = labels.add(at, layout, {Anchor::Left, {5, 0}}, {priority});
            labels.addAlternative(at, layout, {Anchor::Right, {-5, 0}});
            labels.addAlternative(at, layout, {Anchor::Bottom, {0, -4}});
            labels.addAlternative(at, layout, {Anchor::Top, {0, 4}});
            labels.setSymbol(
                id, drawing.stroke(Path().moveTo(at).lineTo(at), {.width = 5, .cap = Cap::Round}, "#d07020"), 2.5);
        }
    }

    Drawing drawing;
    Labels labels{drawing};
};

void AddLabels(benchmark::State& state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(std::make_unique<Map>());
}
BENCHMARK(AddLabels)->Unit(benchmark::kMillisecond);

// From step to step of the zoom, without drawing.
void PlaceLabels(benchmark::State& state)
{
    Map map;
    int n = 0;
    for (auto _ : state)
        map.labels.place(n++ % 2 == 0 ? 0.4 : 0.5);
    state.counters["shown"] = double(map.labels.getNumberOfLabels() - map.labels.getNumberOfHidden());
}
BENCHMARK(PlaceLabels)->Unit(benchmark::kMillisecond);

enum class Motion
{
    Rest,
    Pan,    // by some pixels
    Zoom,   // within a step of labels'
    Replace // from step to step
};

void LabelFrame(benchmark::State& state, Motion motion)
{
    using gui::gl::FrameLedger;
    gui::gl::OffscreenContext context(
        {cFrame, cFrame},
        {gui::gl::DepthBuffer::Size::None, gui::gl::StencilBuffer::Size::None, gui::gl::Context::Profile::Core41});
    Map map;
    const auto frame = [&](int n)
    {
        const double zoom = 0.42 + (motion == Motion::Zoom      ? n % cLoop * 1e-3
                                    : motion == Motion::Replace ? n % 2 * 0.1
                                                                : 0);
        const Affine view =
            Affine::translation(-700 - (motion == Motion::Pan ? n % cLoop * 7 : 0), -600) * Affine::scaling(zoom);
        map.labels.place(view);
        map.drawing.draw(view);
    };
    FrameLedger::start(FrameLedger::Times::CPU);
    const auto bytesOf = [&](int n)
    {
        FrameLedger::begin();
        frame(n);
        glFinish();
        FrameLedger::end();
        return FrameLedger::getLast().nBytesUploaded;
    };
    // Until all letters that are seen have their pictures.
    for (int n = 0; n < cLoop; ++n)
        for (int i = 0; i < 300 && bytesOf(n) > 0; ++i)
            ;
    int n = 0;
    double nBytes = 0, nDraws = 0;
    for (auto _ : state)
    {
        nBytes += double(bytesOf(++n));
        nDraws += FrameLedger::getLast().nDraws;
    }
    FrameLedger::stop();
    state.counters["bytes"] = nBytes / n;
    state.counters["draws"] = nDraws / n;
}
BENCHMARK_CAPTURE(LabelFrame, Rest, Motion::Rest)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(LabelFrame, Pan, Motion::Pan)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(LabelFrame, Zoom, Motion::Zoom)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(LabelFrame, Replace, Motion::Replace)->Unit(benchmark::kMillisecond)->UseRealTime();

#ifdef BENCH_QT
// 10,000 texts of which some 500 are in view, without halos, dots or a search for room.
void LabelPanByQt(benchmark::State& state)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    bench::QtArguments arguments;
    const QApplication application(arguments.count, arguments.values.data());
    QGraphicsScene scene;
    std::mt19937 random(7);
    const auto below = [&random](double n) { return std::uniform_real_distribution<>(0, n)(random); };
    for (int i = 0; i < cLabels; ++i)
    {
        QString text(QChar('A' + int(below(26))));
        for (int k = 3 + int(below(7)); k > 0; --k)
            text += QChar('a' + int(below(26)));
        QGraphicsSimpleTextItem* const pItem = scene.addSimpleText(text);
        pItem->setPos(below(4500), below(4500));
        pItem->setFlag(QGraphicsItem::ItemIgnoresTransformations);
    }
    QImage image(cFrame, cFrame, QImage::Format_ARGB32_Premultiplied);
    const auto frame = [&](int n)
    {
        image.fill(Qt::white);
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        scene.render(&painter, QRectF(0, 0, cFrame, cFrame), QRectF(1000 + n % cLoop * 7, 1000, cFrame, cFrame));
    };
    int n = 0;
    frame(n);
    for (auto _ : state)
        frame(++n);
}
BENCHMARK(LabelPanByQt)->Unit(benchmark::kMillisecond)->UseRealTime();
#endif

} // namespace
