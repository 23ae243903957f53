#include <gui/gl/Buffer.h>

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

// Appends vertices to a buffer with room for them, beside memcpy into memory of the same size.

namespace
{

using gui::gl::Buffer;

constexpr std::size_t cFloats = 8; // of a vertex: position, normal, texture coordinate
constexpr std::size_t cMaxVertices = 1'000'000;

const std::vector<float>& vertices()
{
    static const std::vector<float> s_vertices(cMaxVertices * cFloats, 1.5f);
    return s_vertices;
}

bool setUp(Buffer& buffer, std::size_t n)
{
    using enum gui::gl::DataType;
    return buffer.init(0, n, n, {Vec3, Vec3, Vec2});
}

void setBytes(benchmark::State& state, std::size_t nBytes)
{
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(nBytes));
}

void appendVertices(benchmark::State& state)
{
    const auto n = static_cast<std::size_t>(state.range(0));
    Buffer buffer;
    if (!setUp(buffer, n))
    {
        state.SkipWithError("cannot set up");
        return;
    }
    for (auto _ : state)
    {
        buffer.reset();
        buffer.appendVertices(vertices().data(), n);
        benchmark::ClobberMemory();
    }
    setBytes(state, n * cFloats * sizeof(float));
}

void copyVertices(benchmark::State& state)
{
    const std::size_t nBytes = static_cast<std::size_t>(state.range(0)) * cFloats * sizeof(float);
    std::vector<float> target;
    target.reserve(nBytes / sizeof(float));
    benchmark::DoNotOptimize(target.data());
    for (auto _ : state)
    {
        std::memcpy(target.data(), vertices().data(), nBytes);
        benchmark::ClobberMemory();
    }
    setBytes(state, nBytes);
}

// One call for each vertex, as code that computes them does.
void appendOneByOne(benchmark::State& state)
{
    const auto n = static_cast<std::size_t>(state.range(0));
    Buffer buffer;
    if (!setUp(buffer, n))
    {
        state.SkipWithError("cannot set up");
        return;
    }
    for (auto _ : state)
    {
        buffer.reset();
        for (std::size_t i = 0; i < n; ++i)
            buffer.appendVertices(vertices().data() + i * cFloats, 1);
        benchmark::ClobberMemory();
    }
    setBytes(state, n * cFloats * sizeof(float));
}

void appendIndexByIndex(benchmark::State& state)
{
    const auto n = static_cast<unsigned int>(state.range(0));
    Buffer buffer;
    if (!setUp(buffer, n))
    {
        state.SkipWithError("cannot set up");
        return;
    }
    for (auto _ : state)
    {
        buffer.reset();
        for (unsigned int i = 0; i < n; ++i)
            buffer.appendIndex(i);
        benchmark::ClobberMemory();
    }
    setBytes(state, n * sizeof(unsigned int));
}

BENCHMARK(appendVertices)->Name("Vertices/appendVertices")->Arg(1'000)->Arg(cMaxVertices);
BENCHMARK(copyVertices)->Name("Vertices/memcpy")->Arg(1'000)->Arg(cMaxVertices);
BENCHMARK(appendOneByOne)->Name("Vertices/appendOneByOne")->Arg(1'000)->Arg(cMaxVertices);
BENCHMARK(appendIndexByIndex)->Name("Indices/appendIndex")->Arg(1'000)->Arg(cMaxVertices);

} // namespace
