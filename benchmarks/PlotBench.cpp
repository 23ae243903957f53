// A hundred million samples: what they take to be taken over, and frames of theirs, by the processor's time of this
// thread without a driver and by the clock with Mesa's; sixteen live series.

#include <gui/draw/Plot.h>
#include <gui/gl/FrameLedger.h>
#include <gui/gl/OffscreenContext.h>

#include <benchmark/benchmark.h>
#include <epoxy/gl.h>

#include <cmath>
#include <ctime>
#include <memory>
#include <random>

namespace
{

using namespace gui::draw;

constexpr std::size_t cSamples = 100'000'000;
constexpr td::Size<double> cSize{1280, 720};

double threadSeconds()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

const std::vector<float>& noise()
{
    static const std::vector<float> values = []
    {
        std::vector<float> numbers(cSamples);
        std::minstd_rand random(1);
        float at = 0;
        for (float& value : numbers)
            value = at += static_cast<float>(random() % 2001) / 1000.0F - 1;
        return numbers;
    }();
    return values;
}

// The pyramid over all of them.
void TakeOver(benchmark::State& state)
{
    const std::span<const float> values(noise());
    for (auto _ : state)
        benchmark::DoNotOptimize(Samples(values));
    state.counters["memory"] = static_cast<double>(Samples(values).getMemory()) / (4.0 * cSamples);
}
BENCHMARK(TakeOver)->Unit(benchmark::kMillisecond);

enum class Motion
{
    Rest,
    Pan,
    Zoom
};

// Without a context nothing is given to GL: what is left is the library's.
void Build(benchmark::State& state, Motion motion, double part)
{
    Plot plot;
    plot.add(Series::line(std::span<const float>(noise())));
    plot.draw(cSize);
    Axis& x = plot.axes().x();
    x.zoom(1 / part, 0.37);
    int n = 0;
    for (auto _ : state)
    {
        if (motion == Motion::Pan)
            x.pan(n++ % 100 < 50 ? 0.007 : -0.007);
        else if (motion == Motion::Zoom)
            x.zoom(n++ % 40 < 20 ? 1.02 : 1 / 1.02, 0.4);
        plot.draw(cSize);
    }
}
BENCHMARK_CAPTURE(Build, Rest, Motion::Rest, 1)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Build, PanHalf, Motion::Pan, 0.5)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Build, PanThousandth, Motion::Pan, 1e-3)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Build, PanSingle, Motion::Pan, 1e-6)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Build, ZoomHalf, Motion::Zoom, 0.5)->Unit(benchmark::kMicrosecond);

void Frame(benchmark::State& state, Motion motion, double part)
{
    gui::gl::OffscreenContext context(
        {1280, 720},
        {gui::gl::DepthBuffer::Size::None, gui::gl::StencilBuffer::Size::None, gui::gl::Context::Profile::Core41});
    Plot plot;
    plot.add(Series::line(std::span<const float>(noise())));
    plot.draw(cSize);
    Axis& x = plot.axes().x();
    x.zoom(1 / part, 0.37);
    for (int i = 0; i < 5; ++i)
    {
        plot.draw(cSize);
        glFinish();
    }
    int n = 0;
    double seconds = 0, bytes = 0, draws = 0;
    gui::gl::FrameLedger::start(gui::gl::FrameLedger::Times::CPU);
    for (auto _ : state)
    {
        if (motion == Motion::Pan)
            x.pan(n % 100 < 50 ? 0.007 : -0.007);
        ++n;
        gui::gl::FrameLedger::begin();
        const double start = threadSeconds();
        plot.draw(cSize);
        seconds += threadSeconds() - start;
        gui::gl::FrameLedger::end();
        bytes += static_cast<double>(gui::gl::FrameLedger::getLast().nBytesUploaded);
        draws += gui::gl::FrameLedger::getLast().nDraws;
        glFinish();
    }
    gui::gl::FrameLedger::stop();
    state.counters["thread_us"] = seconds / n * 1e6;
    state.counters["bytes"] = bytes / n;
    state.counters["draws"] = draws / n;
}
BENCHMARK_CAPTURE(Frame, Rest, Motion::Rest, 1)->Unit(benchmark::kMicrosecond)->UseRealTime();
BENCHMARK_CAPTURE(Frame, PanHalf, Motion::Pan, 0.5)->Unit(benchmark::kMicrosecond)->UseRealTime();
BENCHMARK_CAPTURE(Frame, PanSingle, Motion::Pan, 1e-6)->Unit(benchmark::kMicrosecond)->UseRealTime();

// A second of 60 frames, in each of which 16 series get a sixtieth of 100,000 samples; one axis of time. Without GL.
void Stream(benchmark::State& state)
{
    constexpr std::size_t cChannels = 16, cFrames = 60, cPerFrame = 100'000 / cChannels / cFrames;
    Plot plot(4, 4);
    std::vector<Series*> channels;
    for (std::size_t i = 0; i < cChannels; ++i)
    {
        Axes& axes = plot.axes(i / 4, i % 4);
        if (i > 0)
            axes.x().link(plot.axes().x());
        axes.y().setFit(Axis::Fit::Visible);
        channels.push_back(&axes.add(Series::line(Samples::ofFloats())));
        channels.back()->setX(0, 1.0 / (cPerFrame * cFrames));
    }
    plot.axes().x().follow(4);
    std::size_t at = 0;
    for (auto _ : state)
        for (std::size_t frame = 0; frame < cFrames; ++frame)
        {
            for (std::size_t i = 0; i < cChannels; ++i)
                channels[i]->append(std::span(noise()).subspan((at + i * 100'000) % (cSamples - cPerFrame), cPerFrame));
            at += cPerFrame;
            plot.draw(cSize);
        }
}
BENCHMARK(Stream)->Unit(benchmark::kMillisecond);

} // namespace
