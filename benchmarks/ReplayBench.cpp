#include "EmptyGL.h"

#include <gui/Texture.h>
#include <gui/gl/CommandList.h>
#include <gui/gl/Program.h>
#include <gui/gl/Textures.h>

#include <benchmark/benchmark.h>
#include <epoxy/gl.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

// Replays 100,000 recorded draw commands, beside a loop that makes the same GL calls from a plain array; the same in
// lists of ten; and a random mix of all kinds, beside an interpreter that decides by switch what to call.

namespace
{

using gui::gl::Command;
using gui::gl::CommandList;
using gui::gl::Primitive;
using gui::gl::Textures;

constexpr unsigned int cCommands = 100'000;
constexpr unsigned int cShort = 10; // of a short list
constexpr unsigned int cVertices = 6;
constexpr unsigned int cInstances = 100;
constexpr unsigned int cTextures = 2;
constexpr int cColorLocation = 3;
constexpr int cColorAlphaLocation = 4;

struct ColorProgram : gui::gl::Program
{
    void onLinked() override
    {
        _color3Location = cColorLocation;
        _color4Location = cColorAlphaLocation;
    }
};

enum class What
{
    Plain,     // no state
    OneColor,  // all in the same colour
    TwoColors, // by turns: a uniform for each
    Texture,   // by turns: a texture bound for each
    Instanced,
    Mix // of kinds, primitives, colours and textures, at random
};

/// One draw of the mix, as somebody would record it who interprets it by switch.
struct Drawing
{
    enum Kind : std::uint8_t
    {
        Arrays,
        Elements,
        ArraysInstanced,
        ElementsInstanced
    };
    enum State : std::uint8_t
    {
        None,
        Color,
        ColorAlpha,
        Texture
    };
    Kind kind;
    State state;
    std::uint8_t primitive;
    std::uint8_t rgba[4];
    std::uint8_t texture;
    std::uint32_t first;
    std::uint32_t count;
    std::uint32_t nInstances;
};

constexpr td::ColorID cColors[] = {td::ColorID::Red, td::ColorID::Blue, td::ColorID::White, td::ColorID::Black};
constexpr std::uint8_t cRGB[][3] = {{255, 0, 0}, {0, 0, 255}, {255, 255, 255}, {0, 0, 0}};

std::vector<Drawing> randomMix()
{
    std::mt19937 random(1);
    const auto below = [&random](unsigned int n) { return static_cast<std::uint8_t>(random() % n); };
    std::vector<Drawing> drawings;
    for (unsigned int i = 0; i < cCommands; ++i)
    {
        Drawing drawing{Drawing::Kind(below(4)),
                        Drawing::State(below(4)),
                        below(7),
                        {},
                        below(cTextures),
                        i * cVertices,
                        cVertices,
                        cInstances};
        if (drawing.kind >= Drawing::ArraysInstanced && drawing.state == Drawing::ColorAlpha)
            drawing.state = Drawing::Color;
        const std::uint8_t color = below(4);
        std::copy_n(cRGB[color], 3, drawing.rgba);
        drawing.rgba[3] = 128;
        drawings.push_back(drawing);
    }
    return drawings;
}

void setUp(Command& command, const Drawing& drawing)
{
    const auto primitive = static_cast<Primitive>(drawing.primitive);
    switch (drawing.kind)
    {
    case Drawing::Arrays:
        command.createDrawArrays(primitive, drawing.first, drawing.count);
        break;
    case Drawing::Elements:
        command.createDrawElements(primitive, drawing.first, drawing.count);
        break;
    case Drawing::ArraysInstanced:
        command.createDrawArraysInstanced(primitive, drawing.first, drawing.count, drawing.nInstances);
        break;
    case Drawing::ElementsInstanced:
        command.createDrawElementsInstanced(primitive, drawing.first, drawing.count, drawing.nInstances);
        break;
    }
    std::size_t color = 0;
    while (!std::equal(cRGB[color], cRGB[color] + 3, drawing.rgba))
        ++color;
    if (drawing.state == Drawing::Color)
        command.setColor(cColors[color]);
    if (drawing.state == Drawing::ColorAlpha)
        command.setColor(cColors[color], drawing.rgba[3]);
    if (drawing.state == Drawing::Texture)
        command.setTexture(Textures::Unit::T0, static_cast<char>(drawing.texture));
}

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

/// @param nOfList  commands of each list
void replay(benchmark::State& state, What what, unsigned int nOfList = cCommands)
{
    const bench::EmptyGL gl;
    gui::Texture image;
    gui::TextureHelper helper(&image);
    helper.reserve(3);
    helper.updateInfo(1, 1, 3);
    Textures textures;
    ColorProgram program;
    std::vector<CommandList> lists(cCommands / nOfList);
    bool isReady = textures.append({&image, &image}, gui::gl::Texture::Type::Tex2D) && program.link("", "");
    program.setTextures(&textures);
    const std::vector<Drawing> mix = randomMix();
    for (unsigned int i = 0; i < cCommands; ++i)
    {
        CommandList& list = lists[i / nOfList];
        Command* pCommand = list.get();
        if (what == What::Mix)
            setUp(*pCommand, mix[i]);
        else
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
        for (CommandList& list : lists)
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
template <What what, unsigned int nOfList = cCommands>
void byHand(benchmark::State& state)
{
    const bench::EmptyGL gl;
    std::vector<std::vector<Draw>> lists(cCommands / nOfList);
    for (unsigned int i = 0; i < cCommands; ++i)
    {
        const float red = i % 2 == 0 ? 1.0f : 0.0f;
        lists[i / nOfList].push_back(
            {static_cast<GLint>(i * cVertices), cVertices, {red, 0, 1 - red}, 1 + i % cTextures});
    }
    benchmark::DoNotOptimize(lists.data());
    for (auto _ : state)
    {
        glUseProgram(1);
        if constexpr (what == What::OneColor)
            glUniform3fv(cColorLocation, 1, lists[0][0].color);
        for (const std::vector<Draw>& draws : lists)
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

const void* offset(std::uint32_t first)
{
    return reinterpret_cast<const void*>(static_cast<std::size_t>(first) * sizeof(GLuint));
}

void interpret(benchmark::State& state)
{
    const bench::EmptyGL gl;
    const std::vector<Drawing> drawings = randomMix();
    constexpr GLenum cModes[] = {GL_POINTS,    GL_LINES,        GL_LINE_STRIP,    GL_LINE_LOOP,
                                 GL_TRIANGLES, GL_TRIANGLE_FAN, GL_TRIANGLE_STRIP};
    for (auto _ : state)
    {
        glUseProgram(1);
        std::uint32_t lastColor = 0, lastTexture = ~0u;
        for (const Drawing& d : drawings)
        {
            const std::uint8_t* const c = d.rgba;
            switch (d.state)
            {
            case Drawing::Color:
            case Drawing::ColorAlpha:
            {
                const bool isOpaque = d.state == Drawing::Color;
                const std::uint32_t color =
                    c[0] | std::uint32_t(c[1]) << 8 | std::uint32_t(c[2]) << 16 | (isOpaque ? 255u : c[3]) << 24;
                if (color == lastColor)
                    break;
                lastColor = color;
                const float rgba[] = {c[0] / 255.0f, c[1] / 255.0f, c[2] / 255.0f, c[3] / 255.0f};
                if (isOpaque)
                    glUniform3fv(cColorLocation, 1, rgba);
                else
                    glUniform4fv(cColorAlphaLocation, 1, rgba);
                break;
            }
            case Drawing::Texture:
                if (d.texture == lastTexture)
                    break;
                lastTexture = d.texture;
                glActiveTexture(GL_TEXTURE0);
                glBindTexture(GL_TEXTURE_2D, 1u + d.texture);
                break;
            case Drawing::None:
                break;
            }
            const GLenum mode = cModes[d.primitive];
            const auto first = static_cast<GLint>(d.first);
            const auto count = static_cast<GLsizei>(d.count), nInstances = static_cast<GLsizei>(d.nInstances);
            switch (d.kind)
            {
            case Drawing::Arrays:
                glDrawArrays(mode, first, count);
                break;
            case Drawing::Elements:
                glDrawElements(mode, count, GL_UNSIGNED_INT, offset(d.first));
                break;
            case Drawing::ArraysInstanced:
                glDrawArraysInstanced(mode, first, count, nInstances);
                break;
            case Drawing::ElementsInstanced:
                glDrawElementsInstanced(mode, count, GL_UNSIGNED_INT, offset(d.first), nInstances);
                break;
            }
        }
    }
    state.SetItemsProcessed(state.iterations() * cCommands);
}

BENCHMARK_CAPTURE(replay, Plain, What::Plain)->Name("Plain/commands");
BENCHMARK(byHand<What::Plain>)->Name("Plain/byHand");
BENCHMARK_CAPTURE(replay, Short, What::Plain, cShort)->Name("Short/commands");
BENCHMARK(byHand<What::Plain, cShort>)->Name("Short/byHand");
BENCHMARK_CAPTURE(replay, OneColor, What::OneColor)->Name("OneColor/commands");
BENCHMARK(byHand<What::OneColor>)->Name("OneColor/byHand");
BENCHMARK_CAPTURE(replay, TwoColors, What::TwoColors)->Name("TwoColors/commands");
BENCHMARK(byHand<What::TwoColors>)->Name("TwoColors/byHand");
BENCHMARK_CAPTURE(replay, Texture, What::Texture)->Name("Texture/commands");
BENCHMARK(byHand<What::Texture>)->Name("Texture/byHand");
BENCHMARK_CAPTURE(replay, Instanced, What::Instanced)->Name("Instanced/commands");
BENCHMARK(byHand<What::Instanced>)->Name("Instanced/byHand");
BENCHMARK_CAPTURE(replay, Mix, What::Mix)->Name("Mix/commands");
BENCHMARK(interpret)->Name("Mix/bySwitch");

} // namespace
