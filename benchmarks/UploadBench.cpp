#include <worldmap/SheetView.h>

#include <gui/Application.h>
#include <gui/draw/Upload.h>
#include <gui/gl/OffscreenContext.h>

#include <benchmark/benchmark.h>
#include <epoxy/gl.h>

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <utility>
#include <vector>

// A map of half a million corners is opened while frames go on: all countries of the world with their borders, three
// times side by side. A frame is what is handed over before it and its drawing, without what the driver does for the
// shapes: its call for them goes nowhere meanwhile. What it takes to copy what is uploaded is told apart from what is
// the library's. Beside it, the same in one frame.

namespace
{

using namespace gui::draw;
using examples::TopoJSON;
using worldmap::Projection;

const worldmap::Countries& countries()
{
    static const worldmap::Countries s_countries = []
    {
        worldmap::Countries all;
        if (!all.load())
            std::abort();
        return all;
    }();
    return s_countries;
}

std::size_t fillWith(auto& to)
{
    std::size_t nCorners = 0;
    const auto addLines = [&](const std::vector<TopoJSON::Line>& lines, const auto& toPlane, double shift)
    {
        for (const TopoJSON::Line& line : lines)
        {
            nCorners += line.size();
            const Path path = examples::pathOf(line, toPlane).transform(Affine::translation(shift, 0));
            to.stroke(path, {.width = 0.8, .join = Join::Round}, "#6b5f58");
        }
    };
    for (const double shift : {0, 400, 800})
    {
        const Projection projection = shift == 400 ? Projection::Mercator : Projection::Equirectangular;
        const auto toPlane = [projection](const worldmap::Point& degrees) { return project(projection, degrees); };
        for (const std::vector<TopoJSON::Line>& rings : countries().fine.areas)
        {
            for (const TopoJSON::Line& ring : rings)
                nCorners += ring.size();
            const Path area = examples::areaOf(rings, toPlane).transform(Affine::translation(shift, 0));
            to.fill(area, "#e9dc9a", FillRule::EvenOdd);
        }
        addLines(countries().fine.borders, toPlane, shift);
        addLines(countries().fine.coasts, toPlane, shift);
    }
    return nCorners;
}

// Of this thread: what the other one takes, and sleep, are none of the frame's.
double milliseconds()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

void drawNothing(GLenum, const GLsizei*, GLenum, const void* const*, GLsizei, const GLint*) {}

double s_inDriver = 0;
PFNGLBUFFERDATAPROC s_bufferData;
PFNGLBUFFERSUBDATAPROC s_bufferSubData;
PFNGLCOPYBUFFERSUBDATAPROC s_copyBufferSubData;

void bufferData(GLenum target, GLsizeiptr size, const void* data, GLenum usage)
{
    const double begin = milliseconds();
    s_bufferData(target, size, data, usage);
    s_inDriver += milliseconds() - begin;
}

void bufferSubData(GLenum target, GLintptr offset, GLsizeiptr size, const void* data)
{
    const double begin = milliseconds();
    s_bufferSubData(target, offset, size, data);
    s_inDriver += milliseconds() - begin;
}

void copyBufferSubData(GLenum from, GLenum to, GLintptr fromOffset, GLintptr offset, GLsizeiptr size)
{
    const double begin = milliseconds();
    s_copyBufferSubData(from, to, fromOffset, offset, size);
    s_inDriver += milliseconds() - begin;
}

struct Stage
{
    Stage()
        : context({1000, 600}, {gui::gl::DepthBuffer::Size::None, gui::gl::StencilBuffer::Size::None,
                                gui::gl::Context::Profile::Core41})
        , call(std::exchange(epoxy_glMultiDrawElementsBaseVertex, drawNothing))
    {
        // The first call of each puts the driver's in its place.
        glBufferData(GL_ARRAY_BUFFER, 0, nullptr, GL_STATIC_DRAW);
        glBufferSubData(GL_ARRAY_BUFFER, 0, 0, nullptr);
        glCopyBufferSubData(GL_ARRAY_BUFFER, GL_ARRAY_BUFFER, 0, 0, 0);
        s_bufferData = std::exchange(epoxy_glBufferData, bufferData);
        s_bufferSubData = std::exchange(epoxy_glBufferSubData, bufferSubData);
        s_copyBufferSubData = std::exchange(epoxy_glCopyBufferSubData, copyBufferSubData);
    }
    ~Stage()
    {
        epoxy_glMultiDrawElementsBaseVertex = call;
        epoxy_glBufferData = s_bufferData;
        epoxy_glBufferSubData = s_bufferSubData;
        epoxy_glCopyBufferSubData = s_copyBufferSubData;
    }

    gui::gl::OffscreenContext context;
    PFNGLMULTIDRAWELEMENTSBASEVERTEXPROC call;
    const Affine view = Affine::translation(200, 300) * Affine::scaling(0.7, -0.7);
};

void OpenAtOnce(benchmark::State& state)
{
    Stage stage;
    std::size_t nCorners = 0;
    for (auto _ : state)
    {
        Drawing drawing;
        nCorners = fillWith(drawing);
        drawing.draw(stage.view);
    }
    state.counters["corners"] = static_cast<double>(nCorners);
}
BENCHMARK(OpenAtOnce)->Unit(benchmark::kMillisecond);

void OpenByUpload(benchmark::State& state)
{
    setenv("GUIGL_WINDOW_SYSTEM", "offscreen", 1);
    char name[] = "bench";
    char* arguments[] = {name, nullptr};
    gui::Application app(1, arguments);
    Stage stage;
    const gui::gl::View view;
    std::vector<double> frames, ours;
    countries();
    for (auto _ : state)
    {
        Drawing drawing;
        drawing.draw(stage.view); // the shaders
        Upload upload(view);
        upload.add(drawing, [](Upload::Shapes& shapes) { fillWith(shapes); });
        double angle = 0;
        while (upload.isBusy())
        {
            s_inDriver = 0;
            const double begin = milliseconds();
            app.step(0.016);
            drawing.draw(stage.view * Affine::rotation(angle += 0.001));
            frames.push_back(milliseconds() - begin);
            ours.push_back(frames.back() - s_inDriver);
        }
    }
    std::ranges::sort(frames);
    std::ranges::sort(ours);
    state.counters["frames"] = static_cast<double>(frames.size()) / static_cast<double>(state.iterations());
    state.counters["longest_ms"] = frames.back();
    state.counters["longest_ours_ms"] = ours.back();
    state.counters["median_ms"] = frames[frames.size() / 2];
}
BENCHMARK(OpenByUpload)->Unit(benchmark::kMillisecond);

} // namespace
