#include <gui/gl/Buffer.h>

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

// Appending to a buffer with room, beside memcpy into memory of the same size; and growing from nothing, beside
// std::vector.

namespace
{

using gui::gl::Buffer;
using enum gui::gl::DataType;

constexpr std::size_t cFloats = 8; // of a vertex: position, normal, texture coordinate
// Floats, of which the first stay in the cache and the others don't.
constexpr std::size_t cNear = 1 << 16, cFar = 8'000'000;
constexpr std::size_t cGrown = 50'000'000 / sizeof(float);

const std::vector<float>& source()
{
    static const std::vector<float> s_source(1000, 1.5f);
    return s_source;
}

void setBytes(benchmark::State& state, std::size_t nFloats)
{
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(nFloats * sizeof(float)));
}

std::size_t argument(const benchmark::State& state, std::size_t i) { return static_cast<std::size_t>(state.range(i)); }

// Room is filled by pieces of so many floats, again and again.
void copyPieces(benchmark::State& state)
{
    const std::size_t piece = argument(state, 0), room = argument(state, 1);
    const float* const pSource = source().data();
    std::vector<float> target(room);
    for (auto _ : state)
    {
        float* pEnd = target.data();
        for (std::size_t i = 0; i + piece <= room; i += piece)
        {
            std::memcpy(pEnd, pSource, piece * sizeof(float));
            pEnd += piece;
            benchmark::ClobberMemory();
        }
    }
    setBytes(state, room / piece * piece);
}

/// The same with a buffer, by an operation that appends a piece.
template <typename Append>
void appendPieces(benchmark::State& state, Append append)
{
    const std::size_t piece = argument(state, 0), room = argument(state, 1);
    Buffer buffer;
    if (!buffer.init(0, room / cFloats, room, {Vec3, Vec3, Vec2}))
    {
        state.SkipWithError("cannot set up");
        return;
    }
    for (auto _ : state)
    {
        buffer.reset();
        for (std::size_t i = 0; i + piece <= room; i += piece)
        {
            append(buffer, piece);
            benchmark::ClobberMemory();
        }
    }
    setBytes(state, room / piece * piece);
}

void appendVertices(benchmark::State& state)
{
    const float* const pSource = source().data();
    appendPieces(state,
                 [pSource](Buffer& buffer, std::size_t piece) { buffer.appendVertices(pSource, piece / cFloats); });
}

/// After one reservation.
void appendByAppender(benchmark::State& state)
{
    const std::size_t piece = argument(state, 0), room = argument(state, 1);
    const float* const pSource = source().data();
    Buffer buffer{Vec3, Vec3, Vec2};
    for (auto _ : state)
    {
        buffer.reset();
        Buffer::Appender appender(buffer, room / cFloats);
        for (std::size_t i = 0; i + piece <= room; i += piece)
        {
            appender.append(pSource, piece / cFloats);
            benchmark::ClobberMemory();
        }
    }
    setBytes(state, room / piece * piece);
}

struct Vertex
{
    float position[3], normal[3], texture[2];
};

/// By structures, three at a time.
void appendRecords(benchmark::State& state)
{
    const std::size_t room = argument(state, 1);
    Vertex corners[3] = {};
    Buffer buffer{Vec3, Vec3, Vec2};
    for (auto _ : state)
    {
        buffer.reset();
        Buffer::Appender appender(buffer, room / cFloats);
        for (std::size_t i = 0; i + 24 <= room; i += 24)
        {
            appender.append(corners);
            benchmark::ClobberMemory();
        }
    }
    setBytes(state, room / 24 * 24);
}

void appendIndices(benchmark::State& state)
{
    static const std::vector<unsigned int> s_indices(1000, 7);
    const unsigned int* const pSource = s_indices.data();
    appendPieces(state, [pSource](Buffer& buffer, std::size_t piece) { buffer.appendIndices(pSource, piece); });
}

void appendIndexByIndex(benchmark::State& state)
{
    appendPieces(state, [](Buffer& buffer, std::size_t) { buffer.appendIndex(7); });
}

void growBuffer(benchmark::State& state)
{
    const std::size_t piece = argument(state, 0);
    const float* const pSource = source().data();
    for (auto _ : state)
    {
        Buffer buffer{Vec3, Vec3, Vec2};
        for (std::size_t n = 0; n < cGrown; n += piece)
            buffer.appendVertices(pSource, piece / cFloats);
        benchmark::ClobberMemory();
    }
    setBytes(state, cGrown);
}

void growVector(benchmark::State& state)
{
    const std::size_t piece = argument(state, 0);
    const float* const pSource = source().data();
    for (auto _ : state)
    {
        std::vector<float> vector;
        for (std::size_t n = 0; n < cGrown; n += piece)
            vector.insert(vector.end(), pSource, pSource + piece);
        benchmark::DoNotOptimize(vector.data());
        benchmark::ClobberMemory();
    }
    setBytes(state, cGrown);
}

/// One by one, as code that computes them does.
template <typename Vector>
void growOneByOne(benchmark::State& state)
{
    for (auto _ : state)
    {
        Vector vector;
        for (std::size_t i = 0; i < cGrown; ++i)
            vector.push_back(static_cast<float>(i));
        benchmark::DoNotOptimize(vector.begin());
        benchmark::ClobberMemory();
    }
    setBytes(state, cGrown);
}

BENCHMARK(copyPieces)->Name("Append/memcpy")->ArgsProduct({{24, 384}, {cNear, cFar}});
BENCHMARK(appendVertices)->Name("Append/vertices")->ArgsProduct({{24, 384}, {cNear, cFar}});
BENCHMARK(appendByAppender)->Name("Append/appender")->ArgsProduct({{24, 384}, {cNear, cFar}});
BENCHMARK(appendRecords)->Name("Append/appender/records")->Args({24, cNear})->Args({24, cFar});
BENCHMARK(appendIndices)->Name("Append/indices")->ArgsProduct({{24, 384}, {cNear, cFar}});
BENCHMARK(appendIndexByIndex)->Name("Append/indexByIndex")->Args({1, cNear});
BENCHMARK(growBuffer)->Name("Grow/buffer")->Arg(24)->Arg(384)->Unit(benchmark::kMillisecond);
BENCHMARK(growVector)->Name("Grow/vector")->Arg(24)->Arg(384)->Unit(benchmark::kMillisecond);
BENCHMARK(growOneByOne<cnt::PushBackVector<float>>)->Name("Grow/oneByOne")->Unit(benchmark::kMillisecond);
BENCHMARK(growOneByOne<std::vector<float>>)->Name("Grow/oneByOne/vector")->Unit(benchmark::kMillisecond);

} // namespace
