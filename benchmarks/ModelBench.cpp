#include "WithoutDraws.h"

#include <gui/draw/Model.h>
#include <gui/gl/Context.h>
#include <gui/gl/OffscreenContext.h>

#include <benchmark/benchmark.h>
#include <epoxy/gl.h>

#include <glm/ext/matrix_clip_space.hpp>
#include <glm/geometric.hpp>
#include <glm/matrix.hpp>
#include <glm/trigonometric.hpp>

#include <cmath>
#include <numbers>
#include <utility>

// A million triangles that turn: what a frame costs in the library, beside the calls that one would write by hand to
// draw all of them. What the driver does for the triangles is left out: its call for them goes nowhere meanwhile.

namespace
{

using namespace gui::draw;

constexpr std::uint32_t cSectors = 1000, cStacks = 500;

/// A ball with waves on it, a million triangles.
const Mesh& ball()
{
    static const Mesh s_mesh = []
    {
        Mesh mesh;
        for (std::uint32_t stack = 0; stack <= cStacks; ++stack)
            for (std::uint32_t i = 0; i < cSectors; ++i)
            {
                const double polar = std::numbers::pi * stack / cStacks, around = 2 * std::numbers::pi * i / cSectors;
                const double radius = 10 + 0.2 * std::sin(20 * polar) * std::sin(20 * around);
                mesh.positions.emplace_back(radius * std::sin(polar) * std::cos(around),
                                            radius * std::sin(polar) * std::sin(around), radius * std::cos(polar));
            }
        for (std::uint32_t stack = 0; stack < cStacks; ++stack)
            for (std::uint32_t i = 0; i < cSectors; ++i)
            {
                const std::uint32_t a = stack * cSectors + i, b = stack * cSectors + (i + 1) % cSectors;
                for (const std::uint32_t index : {a, a + cSectors, b, b, a + cSectors, b + cSectors})
                    mesh.indices.push_back(index);
            }
        return mesh;
    }();
    return s_mesh;
}

Eye eyeAt(double distance, double angle)
{
    const glm::dvec3 back(std::cos(angle), std::sin(angle), 0.3);
    const glm::dvec3 right = glm::normalize(glm::cross(glm::dvec3(0, 0, 1), back));
    const glm::dmat3 axes(right, glm::cross(glm::normalize(back), right), glm::normalize(back));
    return {
        distance * axes[2], glm::transpose(axes), glm::perspective(glm::radians(40.0), 1.0, 0.1, 1000.0), {1000, 1000}};
}

gui::gl::Context settings()
{
    using namespace gui::gl;
    return {DepthBuffer::Size::Bits24, StencilBuffer::Size::None, Context::Profile::Core41};
}

/// All in view, from 40 units; or a part of it, from 11.
void Turning(benchmark::State& state)
{
    gui::gl::OffscreenContext context({1000, 1000}, settings());
    Model model;
    model.setMesh(ball());
    model.setTolerance(0);
    if (state.range(1) != 0)
        model.setEdges({});
    const auto distance = static_cast<double>(state.range(0));
    model.draw(eyeAt(distance, 0)); // uploads
    const bench::WithoutDraws without;
    double angle = 0;
    for (auto _ : state)
        model.draw(eyeAt(distance, angle += 0.01));
}
BENCHMARK(Turning)->Args({40, 0})->Args({11, 0})->Args({40, 1})->Unit(benchmark::kMicrosecond);

/// The least that one would write: a program, a vertex array, three uniforms, one call for everything.
void TurningPlain(benchmark::State& state)
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
out vec3 place;
void main() { place = position; gl_Position = toClip * vec4(position, 1.0); })"));
    glAttachShader(program, compile(GL_FRAGMENT_SHADER, R"(#version 330 core
uniform vec3 toLight;
uniform vec4 paint;
in vec3 place;
out vec4 color;
void main() { color = paint * dot(normalize(place), toLight); })"));
    glLinkProgram(program);
    const GLint toClip = glGetUniformLocation(program, "toClip"), toLight = glGetUniformLocation(program, "toLight");
    const GLint paint = glGetUniformLocation(program, "paint");
    const std::vector<glm::vec3> positions(ball().positions.begin(), ball().positions.end());
    GLuint vao = 0, buffers[2] = {};
    glGenVertexArrays(1, &vao);
    glGenBuffers(2, buffers);
    glBindVertexArray(vao);
    glBindBuffer(GL_ARRAY_BUFFER, buffers[0]);
    glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(positions.size() * sizeof(glm::vec3)), positions.data(),
                 GL_STATIC_DRAW);
    glEnableVertexAttribArray(0);
    glVertexAttribPointer(0, 3, GL_FLOAT, GL_FALSE, 0, nullptr);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, buffers[1]);
    glBufferData(GL_ELEMENT_ARRAY_BUFFER, static_cast<GLsizeiptr>(ball().indices.size() * sizeof(std::uint32_t)),
                 ball().indices.data(), GL_STATIC_DRAW);
    const bench::WithoutDraws without;
    double angle = 0;
    for (auto _ : state)
    {
        const Eye eye = eyeAt(40, angle += 0.01);
        const glm::mat4 matrix = eye.getMatrix();
        glEnable(GL_DEPTH_TEST);
        glUseProgram(program);
        glUniformMatrix4fv(toClip, 1, GL_FALSE, &matrix[0][0]);
        glUniform3f(toLight, 0, 0, 1);
        glUniform4f(paint, 1, 1, 1, 1);
        glBindVertexArray(vao);
        glDrawElements(GL_TRIANGLES, static_cast<GLsizei>(ball().indices.size()), GL_UNSIGNED_INT, nullptr);
    }
}
BENCHMARK(TurningPlain)->Unit(benchmark::kMicrosecond);

/// A plane goes through the million: its face and the lines about it are made and uploaded for each frame. The plane's
/// way is at most as long as the waves on the ball are high, so that all frames cut as much.
void Cutting(benchmark::State& state)
{
    gui::gl::OffscreenContext context({1000, 1000}, settings());
    Model model;
    model.setMesh(ball());
    model.setTolerance(0);
    Eye eye = eyeAt(40, 0);
    model.draw(eye); // uploads
    const bench::WithoutDraws without;
    double place = 0;
    for (auto _ : state)
    {
        place = place > 0.2 ? 0 : place + 0.001;
        eye.setClipping({{0, 0, place}, {0.3, 0.2, -1}});
        model.draw(eye);
    }
}
BENCHMARK(Cutting)->Unit(benchmark::kMillisecond);

/// A mesh becomes what is drawn: welding, normals, edges, cells and coarser meshes.
void SetMesh(benchmark::State& state)
{
    ball();
    for (auto _ : state)
    {
        Model model;
        model.setMesh(ball());
        benchmark::DoNotOptimize(model.getNumberOfTriangles());
    }
}
BENCHMARK(SetMesh)->Unit(benchmark::kMillisecond);

} // namespace
