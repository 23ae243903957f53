#include "WithoutDraws.h"

#include <gui/draw/Instances.h>
#include <gui/draw/Points3.h>
#include <gui/draw/Polylines3.h>
#include <gui/gl/Context.h>
#include <gui/gl/OffscreenContext.h>

#include <benchmark/benchmark.h>
#include <epoxy/gl.h>

#include <glm/ext/matrix_clip_space.hpp>
#include <glm/geometric.hpp>
#include <glm/matrix.hpp>
#include <glm/trigonometric.hpp>

#include <cmath>
#include <cstdint>
#include <random>
#include <utility>
#include <vector>

// A hundred thousand instances, a million points, a thousand lines of a thousand points that turn: what a frame costs
// in the library, beside the calls that one would write by hand for instances. What the driver does for triangles is
// left out: its calls for them go nowhere meanwhile.

namespace
{

using namespace gui::draw;

constexpr std::size_t cInstances = 100'000, cPoints = 1'000'000, cLines = 1000;

Eye eyeAt(double distance, double angle)
{
    const glm::dvec3 back = glm::normalize(glm::dvec3(std::cos(angle), std::sin(angle), 0.3));
    const glm::dvec3 right = glm::normalize(glm::cross(glm::dvec3(0, 0, 1), back));
    const glm::dmat3 axes(right, glm::cross(back, right), back);
    return {
        distance * back, glm::transpose(axes), glm::perspective(glm::radians(40.0), 1.0, 0.1, 1000.0), {1000, 1000}};
}

gui::gl::Context settings()
{
    using namespace gui::gl;
    return {DepthBuffer::Size::Bits24, StencilBuffer::Size::None, Context::Profile::Core41};
}

std::vector<glm::dvec3> scattered(std::size_t n)
{
    std::mt19937 random(7);
    std::normal_distribution<> normal(0, 4);
    std::vector<glm::dvec3> places(n);
    for (glm::dvec3& place : places)
        place = {normal(random), normal(random), normal(random)};
    return places;
}

std::vector<Instances::Placement> placements()
{
    std::vector<Instances::Placement> all;
    for (const glm::dvec3& place : scattered(cInstances))
        all.push_back({place, {1, place.x, place.y, place.z}, glm::dvec3(0.05)});
    return all;
}

Mesh pyramid()
{
    Mesh mesh;
    mesh.positions = {{-1, 0, 1}, {1, 0, 1}, {1, 0, -1}, {-1, 0, -1}, {0, 1.5, 0}};
    mesh.indices = {0, 1, 4, 1, 2, 4, 2, 3, 4, 3, 0, 4, 0, 2, 1, 0, 3, 2};
    return mesh;
}

std::vector<std::vector<glm::dvec3>> spirals()
{
    std::vector<std::vector<glm::dvec3>> all;
    for (const glm::dvec3& begin : scattered(cLines))
    {
        std::vector<glm::dvec3>& line = all.emplace_back();
        for (std::size_t i = 0; i < cPoints / cLines; ++i)
        {
            const double along = 0.004 * static_cast<double>(i);
            line.push_back(begin + glm::dvec3(std::cos(9 * along), std::sin(9 * along), along));
        }
    }
    return all;
}

/// All in view, from 60 units; or a part of it, from 3. With 1 one changes its colour in each frame.
void InstancesTurn(benchmark::State& state)
{
    gui::gl::OffscreenContext context({1000, 1000}, settings());
    Instances instances;
    instances.setMesh(pyramid());
    instances.set(placements());
    const auto distance = static_cast<double>(state.range(0));
    instances.draw(eyeAt(distance, 0)); // uploads
    const bench::WithoutDraws without;
    double angle = 0;
    std::size_t changed = 0;
    for (auto _ : state)
    {
        if (state.range(1) != 0)
            instances.setColor(changed = (changed + 7919) % cInstances, "#ff8020");
        instances.draw(eyeAt(distance, angle += 0.01));
    }
}
BENCHMARK(InstancesTurn)->Args({60, 0})->Args({3, 0})->Args({60, 1})->Unit(benchmark::kMicrosecond);

/// All of them are elsewhere in each frame, which sends all that there is.
void InstancesMove(benchmark::State& state)
{
    gui::gl::OffscreenContext context({1000, 1000}, settings());
    std::vector<Instances::Placement> all = placements();
    Instances instances;
    instances.setMesh(pyramid());
    instances.set(all);
    const bench::WithoutDraws without;
    for (auto _ : state)
    {
        for (Instances::Placement& placement : all)
            placement.position.z += 0.001;
        instances.setPlacements(0, all);
        instances.draw(eyeAt(60, 0));
    }
}
BENCHMARK(InstancesMove)->Unit(benchmark::kMillisecond);

/// The least that one would write: places, turns and colours as attributes of instances, two uniforms, one call for
/// everything.
void InstancesTurnPlain(benchmark::State& state)
{
    gui::gl::OffscreenContext context({1000, 1000}, settings());
    const auto compile = [](GLenum stage, const char* source)
    {
        const GLuint shader = glCreateShader(stage);
        glShaderSource(shader, 1, &source, nullptr);
        glCompileShader(shader);
        return shader;
    };
    const GLuint program = glCreateProgram();
    glAttachShader(program, compile(GL_VERTEX_SHADER, R"(#version 330 core
uniform mat4 toClip;
layout(location = 0) in vec3 position;
layout(location = 1) in vec3 place;
layout(location = 2) in vec4 turn;
layout(location = 3) in vec4 paint;
flat out vec4 tint;
void main()
{
    vec3 v = position + 2.0 * cross(turn.xyz, cross(turn.xyz, position) + turn.w * position);
    tint = paint;
    gl_Position = toClip * vec4(place + 0.05 * v, 1.0);
})"));
    glAttachShader(program, compile(GL_FRAGMENT_SHADER, R"(#version 330 core
uniform vec3 toLight;
flat in vec4 tint;
out vec4 color;
void main() { color = tint * toLight.z; })"));
    glLinkProgram(program);
    const GLint toClip = glGetUniformLocation(program, "toClip"), toLight = glGetUniformLocation(program, "toLight");
    std::vector<float> numbers;
    for (const Instances::Placement& p : placements())
    {
        const glm::dquat q = glm::normalize(p.rotation);
        for (const double number : {p.position.x, p.position.y, p.position.z, q.x, q.y, q.z, q.w, 1.0, 1.0, 1.0, 1.0})
            numbers.push_back(static_cast<float>(number));
    }
    const Mesh mesh = pyramid();
    const std::vector<glm::vec3> positions(mesh.positions.begin(), mesh.positions.end());
    GLuint vao = 0, buffers[3] = {};
    glGenVertexArrays(1, &vao);
    glGenBuffers(3, buffers);
    glBindVertexArray(vao);
    const auto upload = [](GLenum target, GLuint buffer, const auto& data)
    {
        glBindBuffer(target, buffer);
        glBufferData(target, static_cast<GLsizeiptr>(data.size() * sizeof(data[0])), data.data(), GL_STATIC_DRAW);
    };
    upload(GL_ARRAY_BUFFER, buffers[0], positions);
    glEnableVertexAttribArray(0);
    glVertexAttribPointer(0, 3, GL_FLOAT, GL_FALSE, 0, nullptr);
    upload(GL_ARRAY_BUFFER, buffers[1], numbers);
    const int sizes[] = {3, 4, 4};
    std::size_t offset = 0;
    for (GLuint i = 1; i <= 3; ++i)
    {
        glEnableVertexAttribArray(i);
        glVertexAttribPointer(i, sizes[i - 1], GL_FLOAT, GL_FALSE, 44, reinterpret_cast<const void*>(offset));
        glVertexAttribDivisor(i, 1);
        offset += sizeof(float) * static_cast<std::size_t>(sizes[i - 1]);
    }
    upload(GL_ELEMENT_ARRAY_BUFFER, buffers[2], mesh.indices);
    const bench::WithoutDraws without;
    double angle = 0;
    for (auto _ : state)
    {
        const glm::mat4 matrix = eyeAt(60, angle += 0.01).getMatrix();
        glEnable(GL_DEPTH_TEST);
        glUseProgram(program);
        glUniformMatrix4fv(toClip, 1, GL_FALSE, &matrix[0][0]);
        glUniform3f(toLight, 0, 0, 1);
        glBindVertexArray(vao);
        glDrawElementsInstanced(GL_TRIANGLES, static_cast<GLsizei>(mesh.indices.size()), GL_UNSIGNED_INT, nullptr,
                                static_cast<GLsizei>(cInstances));
    }
}
BENCHMARK(InstancesTurnPlain)->Unit(benchmark::kMicrosecond);

void PointsTurn(benchmark::State& state)
{
    gui::gl::OffscreenContext context({1000, 1000}, settings());
    Points3 points;
    points.set(scattered(cPoints));
    const bench::WithoutDraws without;
    points.draw(eyeAt(60, 0));
    double angle = 0;
    for (auto _ : state)
        points.draw(eyeAt(60, angle += 0.01));
}
BENCHMARK(PointsTurn)->Unit(benchmark::kMicrosecond);

void LinesTurn(benchmark::State& state)
{
    gui::gl::OffscreenContext context({1000, 1000}, settings());
    Polylines3 lines;
    for (const std::vector<glm::dvec3>& line : spirals())
        lines.add(line);
    const bench::WithoutDraws without;
    lines.draw(eyeAt(60, 0));
    double angle = 0;
    for (auto _ : state)
        lines.draw(eyeAt(60, angle += 0.01));
}
BENCHMARK(LinesTurn)->Unit(benchmark::kMicrosecond);

/// A hundred thousand instances, a million points, a million points of lines, as they are set.
void SetInstances(benchmark::State& state)
{
    const std::vector<Instances::Placement> all = placements();
    Instances instances;
    for (auto _ : state)
        benchmark::DoNotOptimize(instances.set(all));
}
BENCHMARK(SetInstances)->Unit(benchmark::kMillisecond);

void SetPoints(benchmark::State& state)
{
    const std::vector<glm::dvec3> all = scattered(cPoints);
    Points3 points;
    for (auto _ : state)
        benchmark::DoNotOptimize(points.set(all));
}
BENCHMARK(SetPoints)->Unit(benchmark::kMillisecond);

void AddLines(benchmark::State& state)
{
    const std::vector<std::vector<glm::dvec3>> all = spirals();
    Polylines3 lines;
    for (auto _ : state)
    {
        lines.clear();
        for (const std::vector<glm::dvec3>& line : all)
            benchmark::DoNotOptimize(lines.add(line));
    }
}
BENCHMARK(AddLines)->Unit(benchmark::kMillisecond);

} // namespace
