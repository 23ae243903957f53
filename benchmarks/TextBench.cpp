#include "EmptyGL.h"

#include "../tests/support/FontFiles.h"

#include <gui/Texture.h>
#include <gui/gl/Text.h>

#include <benchmark/benchmark.h>
#include <epoxy/gl.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include <unistd.h>

// Lays out text of several scripts, and draws a frame of many strings beside a loop that makes the same GL calls.

namespace
{

using gui::gl::Font;
using gui::gl::Text;

constexpr std::size_t cStrings = 1000;
constexpr std::size_t cLabel = 20;      // characters
constexpr std::size_t cParagraph = 400; // characters
constexpr std::size_t cWord = 7;        // a space in the place of every seventh

struct Script
{
    char32_t first;
    char32_t last;
};

constexpr Script cASCII{U'a', U'z'};
constexpr Script cLatin1{0xC0, 0xFF};
constexpr Script cCyrillic{0x410, 0x44F};
constexpr Script cCJK{0x4E00, 0x5FFF};

/// @param seed  which of many such texts
std::string textIn(const Script& script, std::size_t nCharacters, unsigned int seed = 1)
{
    std::string utf8;
    for (std::size_t i = 0; i < nCharacters; ++i)
    {
        seed = seed * 1664525 + 1013904223;
        utf8 += i % cWord == cWord - 1 ? " "
                                       : test::encoded(script.first + seed / 65536 % (script.last - script.first + 1));
    }
    return utf8;
}

/// A Text with a font of all the scripts, ready to lay out and, on an empty GL, to draw.
class Fixture
{
public:
    Fixture()
    {
        std::u32string characters;
        for (const Script& script : {cASCII, cLatin1, cCyrillic, cCJK})
        {
            for (char32_t c = script.first; c <= script.last; ++c)
                characters += c;
        }
        const std::string path =
            std::filesystem::temp_directory_path() / ("guigl-text-bench-" + std::to_string(::getpid()));
        gui::Image::_data imgData;
        float metricC = 0;
        gui::Texture atlas;
        gui::TextureHelper helper(&atlas);
        helper.reserve(4);
        helper.updateInfo(1, 1, 4);
        text.init({1920, 1080}, gui::gl::Textures::Unit::T0);
        text.allocFonts(1);
        isReady = font().loadBinaryData(test::writeFile(path, test::FontFile(characters).bytes()).c_str(), imgData,
                                        metricC) &&
                  font().setTexture(atlas);
        std::filesystem::remove(path);
    }
    ~Fixture() { text.release(); }
    Fixture(const Fixture&) = delete;
    Fixture& operator=(const Fixture&) = delete;

    Font& font() { return *text.getFont(0); }

    bool check(benchmark::State& state) const
    {
        if (!isReady)
            state.SkipWithError("no font");
        return isReady;
    }

    const bench::EmptyGL gl;
    Text text;
    bool isReady = false;
};

void layOut(benchmark::State& state, const Script& script, td::BYTE alignment)
{
    Fixture fixture;
    if (!fixture.check(state))
        return;
    const auto nCharacters = static_cast<std::size_t>(state.range(0));
    const std::string utf8 = textIn(script, nCharacters);
    const Font::_format format{.scale = 1.25f, .hAlignment = alignment};
    fixture.font().reserve(nCharacters);
    for (auto _ : state)
    {
        fixture.font().reset();
        benchmark::DoNotOptimize(fixture.font().addString({10, 20}, utf8.data(), utf8.size(), format));
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(nCharacters));
}

void measure(benchmark::State& state, const Script& script)
{
    Fixture fixture;
    if (!fixture.check(state))
        return;
    const auto nCharacters = static_cast<std::size_t>(state.range(0));
    const std::string utf8 = textIn(script, nCharacters);
    for (auto _ : state)
        benchmark::DoNotOptimize(fixture.font().measure(utf8.data(), utf8.size(), {}));
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(nCharacters));
}

std::vector<std::string> labels()
{
    std::vector<std::string> strings;
    for (unsigned int i = 0; i < cStrings; ++i)
        strings.push_back(textIn(cASCII, cLabel, i));
    return strings;
}

td::ColorID colorOf(std::size_t i) { return i % 4 == 0 ? td::ColorID::Red : td::ColorID::Black; }

void addAll(Font& font, const std::vector<std::string>& strings)
{
    for (std::size_t i = 0; i < strings.size(); ++i)
        font.addString({10, static_cast<float>(i)}, strings[i].data(), strings[i].size(), colorOf(i), 1.0f);
}

void drawFrame(benchmark::State& state)
{
    Fixture fixture;
    if (!fixture.check(state))
        return;
    addAll(fixture.font(), labels());
    for (auto _ : state)
        fixture.text.render(Text::Ctrl::BlendNoDepthTest);
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(cStrings));
}

/// What somebody would keep of each string who draws without the library.
struct Draw
{
    GLint first;
    GLsizei count;
    float color[4];
    bool isColorNew;
};

void drawFrameByHand(benchmark::State& state)
{
    const bench::EmptyGL gl;
    std::vector<Draw> draws;
    for (std::size_t i = 0; i < cStrings; ++i)
    {
        const float red = colorOf(i) == td::ColorID::Red ? 1.0f : 0.0f;
        draws.push_back({static_cast<GLint>(i * cLabel * 6), cLabel * 6, {red, 0, 0, 1}, i % 4 < 2});
    }
    benchmark::DoNotOptimize(draws.data());
    for (auto _ : state)
    {
        glUseProgram(1);
        glBindVertexArray(1);
        glBindTexture(GL_TEXTURE_2D, 1);
        for (const Draw& draw : draws)
        {
            if (draw.isColorNew)
                glUniform4fv(1, 1, draw.color);
            glDrawArrays(GL_TRIANGLES, draw.first, draw.count);
        }
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(cStrings));
}

// A clock among the labels: all are added again, uploaded and drawn.
void changeOneAndDraw(benchmark::State& state)
{
    Fixture fixture;
    if (!fixture.check(state))
        return;
    std::vector<std::string> strings = labels();
    unsigned int frame = 0;
    for (auto _ : state)
    {
        strings[cStrings / 2] = textIn(cASCII, cLabel, ++frame);
        fixture.font().reset();
        addAll(fixture.font(), strings);
        fixture.text.render(Text::Ctrl::BlendNoDepthTest);
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(cStrings));
}

BENCHMARK_CAPTURE(layOut, ASCII, cASCII, Font::cLeft)->Name("Layout/ASCII")->Arg(cLabel)->Arg(cParagraph);
BENCHMARK_CAPTURE(layOut, Latin1, cLatin1, Font::cLeft)->Name("Layout/Latin1")->Arg(cLabel)->Arg(cParagraph);
BENCHMARK_CAPTURE(layOut, Cyrillic, cCyrillic, Font::cLeft)->Name("Layout/Cyrillic")->Arg(cLabel)->Arg(cParagraph);
BENCHMARK_CAPTURE(layOut, CJK, cCJK, Font::cLeft)->Name("Layout/CJK")->Arg(cLabel)->Arg(cParagraph);
BENCHMARK_CAPTURE(layOut, Centred, cASCII, Font::cCentre)->Name("Layout/ASCII centred")->Arg(cLabel);
BENCHMARK_CAPTURE(measure, ASCII, cASCII)->Name("Measure/ASCII")->Arg(cLabel)->Arg(cParagraph);
BENCHMARK_CAPTURE(measure, CJK, cCJK)->Name("Measure/CJK")->Arg(cLabel)->Arg(cParagraph);
BENCHMARK(drawFrame)->Name("Frame/1000 strings");
BENCHMARK(drawFrameByHand)->Name("Frame/byHand");
BENCHMARK(changeOneAndDraw)->Name("Frame/one string of 1000 changes");

} // namespace
