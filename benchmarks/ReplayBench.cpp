#include "EmptyGL.h"

#include <gui/Texture.h>
#include <gui/gl/CommandList.h>
#include <gui/gl/Program.h>
#include <gui/gl/Textures.h>

#include <benchmark/benchmark.h>
#include <epoxy/gl.h>

#include <vector>

// Replays 100,000 recorded draw commands, beside a loop that makes the same GL calls from a plain array.

namespace
{

using gui::gl::Command;
using gui::gl::CommandList;
using gui::gl::Primitive;
using gui::gl::Textures;

constexpr unsigned int cCommands = 100'000;
constexpr unsigned int cVertices = 6;
constexpr unsigned int cInstances = 100;
constexpr unsigned int cTextures = 2;
constexpr int cColorLocation = 3;

struct ColorProgram : gui::gl::Program
{
    void onLinked() override { _color3Location = cColorLocation; }
};

enum class What
{
    Plain,     // no state
    OneColor,  // all in the same colour
    TwoColors, // by turns: a uniform for each
    Texture,   // by turns: a texture bound for each
    Instanced
};

void setUp(Command& command, What what, unsigned int i)
{
    if (what == What::Instanced)
        command.createDrawArraysInstanced(Primitive::Triangles, i * cVertices, cVertices, cInstances);
    else
        command.createDrawArrays(Primitive::Triangles, i * cVertices, cVertices);
    if (what == What::OneColor)
        command.setColor(td::ColorID::Red);
    if (what == What::TwoColors)
        command.setColor(i % 2 == 0 ? td::ColorID::Red : td::ColorID::Blue);
    if (what == What::Texture)
        command.setTexture(Textures::Unit::T0, static_cast<char>(i % cTextures));
}

void replay(benchmark::State& state, What what)
{
    const bench::EmptyGL gl;
    gui::Texture image;
    gui::TextureHelper helper(&image);
    helper.reserve(3);
    helper.updateInfo(1, 1, 3);
    Textures textures;
    ColorProgram program;
    CommandList list(cCommands);
    bool isReady = textures.append({&image, &image}, gui::gl::Texture::Type::Tex2D) && program.link("", "");
    program.setTextures(&textures);
    for (unsigned int i = 0; i < cCommands; ++i)
    {
        Command* pCommand = list.get();
        setUp(*pCommand, what, i);
        isReady = list.encode(pCommand) && isReady;
    }
    if (!isReady)
    {
        state.SkipWithError("cannot record");
        return;
    }
    for (auto _ : state)
    {
        program.activate();
        list.execute();
    }
    state.SetItemsProcessed(state.iterations() * cCommands);
}

/// What somebody would keep who draws without the library.
struct Draw
{
    GLint first;
    GLsizei count;
    float color[3];
    GLuint texture;
};

// A template, so that each loop has the calls of its case and no decision in it.
template <What what>
void byHand(benchmark::State& state)
{
    const bench::EmptyGL gl;
    std::vector<Draw> draws;
    for (unsigned int i = 0; i < cCommands; ++i)
    {
        const float red = i % 2 == 0 ? 1.0f : 0.0f;
        draws.push_back({static_cast<GLint>(i * cVertices), cVertices, {red, 0, 1 - red}, 1 + i % cTextures});
    }
    benchmark::DoNotOptimize(draws.data());
    for (auto _ : state)
    {
        glUseProgram(1);
        if constexpr (what == What::OneColor)
            glUniform3fv(cColorLocation, 1, draws[0].color);
        for (const Draw& draw : draws)
        {
            if constexpr (what == What::TwoColors)
                glUniform3fv(cColorLocation, 1, draw.color);
            if constexpr (what == What::Texture)
            {
                glActiveTexture(GL_TEXTURE0);
                glBindTexture(GL_TEXTURE_2D, draw.texture);
            }
            if constexpr (what == What::Instanced)
                glDrawArraysInstanced(GL_TRIANGLES, draw.first, draw.count, cInstances);
            else
                glDrawArrays(GL_TRIANGLES, draw.first, draw.count);
        }
    }
    state.SetItemsProcessed(state.iterations() * cCommands);
}

BENCHMARK_CAPTURE(replay, Plain, What::Plain)->Name("Plain/commands");
BENCHMARK(byHand<What::Plain>)->Name("Plain/byHand");
BENCHMARK_CAPTURE(replay, OneColor, What::OneColor)->Name("OneColor/commands");
BENCHMARK(byHand<What::OneColor>)->Name("OneColor/byHand");
BENCHMARK_CAPTURE(replay, TwoColors, What::TwoColors)->Name("TwoColors/commands");
BENCHMARK(byHand<What::TwoColors>)->Name("TwoColors/byHand");
BENCHMARK_CAPTURE(replay, Texture, What::Texture)->Name("Texture/commands");
BENCHMARK(byHand<What::Texture>)->Name("Texture/byHand");
BENCHMARK_CAPTURE(replay, Instanced, What::Instanced)->Name("Instanced/commands");
BENCHMARK(byHand<What::Instanced>)->Name("Instanced/byHand");

} // namespace
