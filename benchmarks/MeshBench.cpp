#include <gui/gl/Buffer.h>

#include <benchmark/benchmark.h>

#include <glm/geometric.hpp>
#include <glm/vec3.hpp>

#include <cmath>
#include <cstddef>

// Spheres beside the straightforward loop over their vertices. The counter tells the time per vertex.

namespace
{

using gui::gl::Buffer;
using gui::gl::Texture;
using enum gui::gl::DataType;

struct Size
{
    unsigned int sectors, stacks;
};

Size sizeOf(benchmark::State& state)
{
    using benchmark::Counter;
    const auto sectors = static_cast<unsigned int>(state.range(0));
    const double nVertices = (sectors + 1.0) * (sectors / 2 + 1.0);
    state.counters["per_vertex"] = Counter(nVertices, Counter::kIsIterationInvariantRate | Counter::kInvert);
    return {sectors, sectors / 2};
}

void addSphere(benchmark::State& state, Texture::Type type, bool normals)
{
    const Size size = sizeOf(state);
    Buffer buffer;
    if (!(type == Texture::Type::Tex2D ? buffer.init(1, 0, 0, {Vec3, Vec3, Vec2}) : buffer.init(1, 0, 0, {Vec3})))
    {
        state.SkipWithError("cannot set up");
        return;
    }
    buffer.addSphere(2, size.sectors, size.stacks, type, normals); // the lists grow once
    for (auto _ : state)
    {
        buffer.reset();
        benchmark::DoNotOptimize(buffer.addSphere(2, size.sectors, size.stacks, type, normals));
    }
}

void addSpherePlainly(benchmark::State& state, Texture::Type type, bool normals)
{
    const Size size = sizeOf(state);
    cnt::PushBackVector<float> vertices;
    cnt::PushBackVector<unsigned int> indices;
    volatile float given = 2; // a number that the compiler does not know
    const float radius = given;
    const float sectorStep = 6.283185F / static_cast<float>(size.sectors);
    const float stackStep = 3.1415925F / static_cast<float>(size.stacks);
    for (auto _ : state)
    {
        vertices.reset();
        indices.reset();
        for (unsigned int i = 0; i <= size.stacks; ++i)
        {
            const float stackAngle = 1.5707963F - static_cast<float>(i) * stackStep;
            const float xy = radius * std::cos(stackAngle), z = radius * std::sin(stackAngle);
            for (unsigned int j = 0; j <= size.sectors; ++j)
            {
                const float sectorAngle = static_cast<float>(j) * sectorStep;
                const glm::vec3 p(xy * std::cos(sectorAngle), xy * std::sin(sectorAngle), z);
                vertices.push_back(&p.x, 3);
                if (normals)
                {
                    const glm::vec3 normal = glm::normalize(p);
                    vertices.push_back(&normal.x, 3);
                }
                if (type == Texture::Type::Tex2D)
                {
                    vertices.push_back(static_cast<float>(j) / static_cast<float>(size.sectors));
                    vertices.push_back(static_cast<float>(i) / static_cast<float>(size.stacks));
                }
            }
        }
        for (unsigned int i = 0; i < size.stacks; ++i)
        {
            for (unsigned int j = 0; j < size.sectors; ++j)
            {
                const unsigned int k1 = i * (size.sectors + 1) + j, k2 = k1 + size.sectors + 1;
                for (const unsigned int index : {k1, k2, k1 + 1})
                    if (i != 0)
                        indices.push_back(index);
                for (const unsigned int index : {k1 + 1, k2, k2 + 1})
                    if (i + 1 != size.stacks)
                        indices.push_back(index);
            }
        }
        benchmark::DoNotOptimize(vertices.begin());
        benchmark::DoNotOptimize(indices.begin());
        benchmark::ClobberMemory();
    }
}

constexpr auto Tex2D = Texture::Type::Tex2D, CubeMap = Texture::Type::CubeMap;

BENCHMARK_CAPTURE(addSphere, full, Tex2D, true)->Name("Sphere/full")->Arg(12)->Arg(36)->Arg(256);
BENCHMARK_CAPTURE(addSpherePlainly, full, Tex2D, true)->Name("Sphere/full/plain")->Arg(12)->Arg(36)->Arg(256);
BENCHMARK_CAPTURE(addSphere, positions, CubeMap, false)->Name("Sphere/positions")->Arg(12)->Arg(36)->Arg(256);
BENCHMARK_CAPTURE(addSpherePlainly, positions, CubeMap, false)
    ->Name("Sphere/positions/plain")
    ->Arg(12)
    ->Arg(36)
    ->Arg(256);

} // namespace
