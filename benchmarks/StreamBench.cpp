// What arrives for a buffer that changes, beside the bare calls of GL's that send the same: 1,000 vertices to 3,000,000
// that are there, a ring of 1,000,000, and changes here and there.

#include <gui/gl/Buffer.h>
#include <gui/gl/OffscreenContext.h>

#include <benchmark/benchmark.h>
#include <epoxy/gl.h>

#include <cstring>
#include <vector>

namespace
{

using namespace gui::gl;

constexpr std::size_t cThere = 3'000'000, cArriving = 1000, cRing = 1'000'000;
constexpr std::size_t cRounds = 1000; // until the room is used up

OffscreenContext& context()
{
    static OffscreenContext s_context(
        {8, 8}, Context{DepthBuffer::Size::None, StencilBuffer::Size::None, Context::Profile::Core41});
    return s_context;
}

const std::vector<float>& sent()
{
    static const std::vector<float> s_data(8 * cThere, 0.5F);
    return s_data;
}

std::initializer_list<DataType> layoutOf(std::size_t nFloats)
{
    static const std::initializer_list<DataType> s_two{DataType::Vec2}, s_eight{DataType::Vec4, DataType::Vec4};
    return nFloats == 2 ? s_two : s_eight;
}

void setBytesSent(benchmark::State& state, std::size_t nBytes)
{
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(nBytes));
}

// @param isKept  in memory as well, as what comes back after the loss of a context is
template <bool isKept>
void appendBare(benchmark::State& state)
{
    context().makeCurrent();
    const auto nFloats = static_cast<std::size_t>(state.range(0));
    const std::size_t nBytes = cArriving * nFloats * sizeof(float);
    const std::size_t nThere = cThere * nFloats * sizeof(float);
    GLuint name = 0;
    glGenBuffers(1, &name);
    glBindBuffer(GL_ARRAY_BUFFER, name);
    glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(nThere + cRounds * nBytes), nullptr, GL_DYNAMIC_DRAW);
    glBufferSubData(GL_ARRAY_BUFFER, 0, static_cast<GLsizeiptr>(nThere), sent().data());
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    std::vector<float> kept(isKept ? sent().begin() : sent().end(), sent().end());
    kept.resize((cThere + cRounds * cArriving) * nFloats);
    std::size_t round = 0;
    for (auto _ : state)
    {
        const float* from = sent().data();
        if (isKept)
        {
            float* const to = kept.data() + (cThere + round * cArriving) * nFloats;
            std::memcpy(to, from, nBytes);
            from = to;
        }
        glBindBuffer(GL_ARRAY_BUFFER, name);
        glBufferSubData(GL_ARRAY_BUFFER, static_cast<GLintptr>(nThere + round * nBytes),
                        static_cast<GLsizeiptr>(nBytes), from);
        round = (round + 1) % cRounds;
    }
    glDeleteBuffers(1, &name);
    setBytesSent(state, nBytes);
}

template <bool isKept>
void appendDynamic(benchmark::State& state)
{
    context().makeCurrent();
    const auto nFloats = static_cast<std::size_t>(state.range(0));
    Buffer buffer;
    buffer.setKeptForRestore(isKept);
    buffer.setDynamic();
    buffer.init(0, cThere + cRounds * cArriving, 0, layoutOf(nFloats));
    buffer.appendVertices(sent().data(), cThere);
    buffer.commit();
    std::size_t round = 0;
    for (auto _ : state)
    {
        buffer.appendVertices(sent().data(), cArriving);
        buffer.commit();
        if (++round == cRounds)
            buffer.removeVertices(cThere, cRounds * cArriving), round = 0;
    }
    setBytesSent(state, cArriving * nFloats * sizeof(float));
}

// The oldest go when others come; now and then GL moves all of them.
void appendToRing(benchmark::State& state)
{
    context().makeCurrent();
    const auto nFloats = static_cast<std::size_t>(state.range(0));
    Buffer buffer;
    buffer.setRing(cRing);
    buffer.init(0, 0, 0, layoutOf(nFloats));
    buffer.appendVertices(sent().data(), cRing);
    buffer.commit();
    for (auto _ : state)
    {
        buffer.appendVertices(sent().data(), cArriving);
        buffer.commit();
    }
    setBytesSent(state, cArriving * nFloats * sizeof(float));
}

// A hundred pieces of ten vertices.
void changeBare(benchmark::State& state)
{
    context().makeCurrent();
    GLuint name = 0;
    glGenBuffers(1, &name);
    glBindBuffer(GL_ARRAY_BUFFER, name);
    glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(8 * cThere), sent().data(), GL_DYNAMIC_DRAW);
    for (auto _ : state)
        for (std::size_t i = 0; i < 100; ++i)
            glBufferSubData(GL_ARRAY_BUFFER, static_cast<GLintptr>(8 * 20'000 * i), 80, sent().data());
    glDeleteBuffers(1, &name);
}

void changeDynamic(benchmark::State& state)
{
    context().makeCurrent();
    Buffer buffer;
    buffer.setDynamic();
    buffer.init(0, cThere, 0, layoutOf(2));
    buffer.appendVertices(sent().data(), cThere);
    buffer.commit();
    for (auto _ : state)
    {
        for (std::size_t i = 0; i < 100; ++i)
            buffer.updateVertices(20'000 * i, sent().data(), 10);
        buffer.commit();
    }
}

BENCHMARK(appendBare<false>)->Name("Stream/append/bare")->Arg(2)->Arg(8);
BENCHMARK(appendBare<true>)->Name("Stream/append/bareAndKept")->Arg(2)->Arg(8);
BENCHMARK(appendDynamic<false>)->Name("Stream/append/dynamic")->Arg(2)->Arg(8);
BENCHMARK(appendDynamic<true>)->Name("Stream/append/dynamicAndKept")->Arg(2)->Arg(8);
BENCHMARK(appendToRing)->Name("Stream/append/ring")->Arg(2)->Arg(8);
BENCHMARK(changeBare)->Name("Stream/change/bare");
BENCHMARK(changeDynamic)->Name("Stream/change/dynamic");

} // namespace
