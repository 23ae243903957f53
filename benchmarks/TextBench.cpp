#include "EmptyGL.h"

#include "../tests/text/PlainLayout.h"

#include <gui/Texture.h>
#include <gui/gl/Text.h>

#include <benchmark/benchmark.h>
#include <epoxy/gl.h>
#ifdef BENCH_IMGUI
#include <imgui.h>
#endif

#include <cmath>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include <unistd.h>

// Lays out text beside a plain two-pass layout, beside Dear ImGui, and beside the additions that nobody can save, adds
// strings again of which one changed, and draws many beside a loop that makes the same GL calls.

namespace
{

using gui::gl::Font;
using gui::gl::Text;
using Strings = std::vector<std::string>;

constexpr std::size_t cLabels = 100;
constexpr std::size_t cLabel = 20; // characters
constexpr std::size_t cParagraphs = 4;
constexpr std::size_t cParagraph = 500;
constexpr std::size_t cManyStrings = 10'000;

struct Script
{
    char32_t first;
    char32_t last;
};

constexpr Script cASCII{U'a', U'z'};
constexpr Script cLatin1{0xC0, 0xFF};
constexpr Script cCyrillic{0x410, 0x44F};
constexpr Script cCJK{0x4E00, 0x5FFF};
constexpr Script cScripts[] = {cASCII, cLatin1, cCyrillic, cCJK};

/// Words of two to nine letters.
class Writer
{
public:
    explicit Writer(unsigned int seed)
        : _seed(seed)
    {
    }

    std::string write(std::size_t nCharacters, bool isMixed)
    {
        std::string utf8;
        const Script* pScript = &cASCII;
        std::size_t nLeft = 2 + below(8);
        for (std::size_t i = 0; i < nCharacters; ++i)
        {
            if (nLeft-- == 0)
            {
                utf8 += ' ';
                nLeft = 2 + below(8);
                if (isMixed)
                    pScript = &cScripts[below(std::size(cScripts))];
            }
            else
                utf8 +=
                    test::encoded(pScript->first + static_cast<char32_t>(below(pScript->last - pScript->first + 1)));
        }
        return utf8;
    }

private:
    std::size_t below(std::size_t n)
    {
        _seed = _seed * 1664525 + 1013904223;
        return _seed / 65536 % n;
    }

    unsigned int _seed;
};

Strings texts(std::size_t n, std::size_t nCharacters, bool isMixed, unsigned int seed)
{
    Writer writer(seed);
    Strings strings(n);
    for (std::string& string : strings)
        string = writer.write(nCharacters, isMixed);
    return strings;
}

enum class Kind
{
    Labels,
    Mixed,
    Paragraphs,
    Letters, ///< marks of an axis and cells of a table: 1, 2 and 5 characters
    Pairs,
    Figures
};

std::size_t lengthOfShort(Kind kind) { return kind == Kind::Letters ? 1 : kind == Kind::Pairs ? 2 : 5; }

bool isShort(Kind kind) { return kind >= Kind::Letters; }

/// Texts of a kind. Two seeds make texts that differ from the first word on, the short ones all from their first
/// letter: what is the same as before is not laid out.
Strings textsOf(Kind kind, unsigned int seed)
{
    if (isShort(kind))
    {
        Strings strings = texts(cLabels, lengthOfShort(kind), false, seed);
        for (std::string& string : strings)
            string[0] = static_cast<char>('a' + seed);
        return strings;
    }
    return kind == Kind::Paragraphs ? texts(cParagraphs, cParagraph, false, seed)
                                    : texts(cLabels, cLabel, kind == Kind::Mixed, seed);
}

test::FontFile fontFile()
{
    std::u32string characters;
    for (const Script& script : cScripts)
    {
        for (char32_t c = script.first; c <= script.last; ++c)
            characters += c;
    }
    // Whole numbers, as baked fonts have.
    test::FontFile file(characters);
    file.spaceWidth = 6;
    for (test::FontFile::Glyph& glyph : file.glyphs)
        glyph = {glyph.codePoint, std::round(2 * glyph.bearing), glyph.width, std::round(glyph.advance), glyph.tx};
    return file;
}

/// A Text with a font of all the scripts, ready to lay out and, on an empty GL, to draw.
class Fixture
{
public:
    Fixture()
    {
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
        isReady = font().loadBinaryData(test::writeFile(path, fontFile().bytes()).c_str(), imgData, metricC) &&
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

void count(benchmark::State& state, std::size_t nPerIteration)
{
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(nPerIteration));
}

std::size_t charactersOf(Kind kind)
{
    if (isShort(kind))
        return cLabels; // the time is that of a string
    return kind == Kind::Paragraphs ? cParagraphs * cParagraph : cLabels * cLabel;
}

Font::_format formatOf(td::BYTE alignment) { return {.scale = 1.25f, .hAlignment = alignment}; }

void layOut(benchmark::State& state, Kind kind, td::BYTE alignment)
{
    Fixture fixture;
    if (!fixture.check(state))
        return;
    const Strings strings[] = {textsOf(kind, 1), textsOf(kind, 2)};
    unsigned int round = 0;
    for (auto _ : state)
    {
        fixture.font().reset();
        for (const std::string& string : strings[++round % 2])
            benchmark::DoNotOptimize(
                fixture.font().addString({10, 20}, string.data(), string.size(), formatOf(alignment)));
    }
    count(state, charactersOf(kind));
}

void layOutPlainly(benchmark::State& state, Kind kind, td::BYTE alignment)
{
    test::PlainLayout plain{.file = fontFile(), .vertices = {}};
    const Strings strings[] = {textsOf(kind, 1), textsOf(kind, 2)};
    unsigned int round = 0;
    for (auto _ : state)
    {
        plain.vertices.clear();
        for (const std::string& string : strings[++round % 2])
            benchmark::DoNotOptimize(plain.addString({10, 20}, string, formatOf(alignment)));
    }
    count(state, charactersOf(kind));
}

#ifdef BENCH_IMGUI
/// By a draw list with the same glyphs in a font of its own.
void layOutByImGui(benchmark::State& state, Kind kind, td::BYTE alignment)
{
    const float scale = formatOf(alignment).scale;
    ImGuiContext* pContext = ImGui::CreateContext();
    ImFontAtlas atlas;
    ImFont font;
    font.ContainerAtlas = &atlas;
    font.FontSize = 16;
    font.AddGlyph(nullptr, ' ', 0, 0, 0, 0, 0, 0, 0, 0, 6);
    for (const test::FontFile::Glyph& glyph : fontFile().glyphs)
        font.AddGlyph(nullptr, static_cast<ImWchar>(glyph.codePoint), glyph.bearing, 0, glyph.bearing + glyph.width, 16,
                      glyph.tx, 0, glyph.tx + 0.01f, 1, glyph.advance);
    font.BuildLookupTable();
    ImDrawList list(ImGui::GetDrawListSharedData());
    const float size = font.FontSize * scale;
    const Strings strings[] = {textsOf(kind, 1), textsOf(kind, 2)};
    unsigned int round = 0;
    for (auto _ : state)
    {
        list._ResetForNewFrame();
        list.PushClipRect({0, 0}, {1e6f, 1e6f});
        list.PushTextureID(atlas.TexID);
        for (const std::string& string : strings[++round % 2])
        {
            const char* const pEnd = string.data() + string.size();
            ImVec2 at(1000, 20);
            if (alignment == Font::cCentre)
                at.x -= font.CalcTextSizeA(size, 1e9f, 0, string.data(), pEnd).x / 2;
            list.AddText(&font, size, at, IM_COL32_BLACK, string.data(), pEnd);
        }
        benchmark::DoNotOptimize(list.VtxBuffer.Data);
        list.PopTextureID();
        list.PopClipRect();
    }
    ImGui::DestroyContext(pContext);
    count(state, charactersOf(kind));
}
#endif

void measure(benchmark::State& state, Kind kind)
{
    Fixture fixture;
    if (!fixture.check(state))
        return;
    const Strings strings = textsOf(kind, 1);
    for (auto _ : state)
    {
        for (const std::string& string : strings)
            benchmark::DoNotOptimize(fixture.font().measure(string.data(), string.size(), {}));
    }
    count(state, charactersOf(kind));
}

/// Each glyph moves the pen three times, and each time waits for the one before.
void addThreeTimes(benchmark::State& state)
{
    struct Step
    {
        float bearing;
        float advance;
    };
    std::vector<Step> steps;
    for (const std::string& string : textsOf(Kind::Labels, 1))
    {
        for (const char c : string)
            steps.push_back({float(c % 5) / 4, float(c % 11) / 4});
    }
    benchmark::DoNotOptimize(steps.data());
    const float halfPadding = 1.25f;
    for (auto _ : state)
    {
        float x = 10;
        for (const Step& step : steps)
        {
            x += step.bearing;
            x -= halfPadding;
            x += step.advance;
        }
        benchmark::DoNotOptimize(x);
    }
    count(state, steps.size());
}

td::ColorID colorOf(std::size_t i) { return i % 4 == 0 ? td::ColorID::Red : td::ColorID::Black; }

void addAll(Font& font, const Strings& strings)
{
    for (std::size_t i = 0; i < strings.size(); ++i)
        font.addString({10, static_cast<float>(i)}, strings[i].data(), strings[i].size(), colorOf(i), 1.0f);
}

enum class Again
{
    OneLetter,
    OneLength,
    All
};

void addAgain(benchmark::State& state, Again what)
{
    Fixture fixture;
    if (!fixture.check(state))
        return;
    Strings strings[] = {texts(cManyStrings, cLabel, false, 1), texts(cManyStrings, cLabel, false, 2)};
    unsigned int round = 0;
    const auto add = [&]
    {
        ++round;
        Strings& now = strings[what == Again::All ? round % 2 : 0];
        now[cManyStrings / 2][0] = static_cast<char>('a' + round % 26);
        if (what == Again::OneLength)
            now[cManyStrings / 10].resize(cLabel - round % 2, 'a');
        fixture.font().reset();
        addAll(fixture.font(), now);
    };
    add(); // the memory is there
    add();
    for (auto _ : state)
        add();
    count(state, cManyStrings);
}

/// One of many strings is another one in each frame, as a counter is.
void replaceOne(benchmark::State& state)
{
    Fixture fixture;
    if (!fixture.check(state))
        return;
    addAll(fixture.font(), texts(cManyStrings, cLabel, false, 1));
    fixture.font().commit();
    unsigned int round = 0;
    for (auto _ : state)
    {
        const std::string number = std::to_string(++round % 1000);
        fixture.font().replaceString(cManyStrings / 2, {10, 20}, number.data(), number.size(), formatOf(Font::cLeft));
        fixture.font().commit();
    }
}

void draw(benchmark::State& state)
{
    Fixture fixture;
    if (!fixture.check(state))
        return;
    addAll(fixture.font(), texts(cManyStrings, cLabel, false, 1));
    for (auto _ : state)
        fixture.text.render(Text::Ctrl::BlendNoDepthTest);
    count(state, cManyStrings);
}

/// What somebody would keep of each string who draws without the library.
struct Draw
{
    GLint first;
    GLsizei count;
    float color[4];
    bool isColorNew;
};

void drawByHand(benchmark::State& state)
{
    const bench::EmptyGL gl;
    std::vector<Draw> draws;
    for (std::size_t i = 0; i < cManyStrings; ++i)
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
    count(state, cManyStrings);
}

BENCHMARK_CAPTURE(layOut, labels, Kind::Labels, Font::cLeft)->Name("Layout/labels");
BENCHMARK_CAPTURE(layOut, mixed, Kind::Mixed, Font::cLeft)->Name("Layout/mixed");
BENCHMARK_CAPTURE(layOut, paragraphs, Kind::Paragraphs, Font::cLeft)->Name("Layout/paragraphs");
BENCHMARK_CAPTURE(layOut, centred, Kind::Labels, Font::cCentre)->Name("Layout/centred");
BENCHMARK_CAPTURE(layOut, letters, Kind::Letters, Font::cLeft)->Name("Layout/letters");
BENCHMARK_CAPTURE(layOut, pairs, Kind::Pairs, Font::cLeft)->Name("Layout/pairs");
BENCHMARK_CAPTURE(layOut, figures, Kind::Figures, Font::cLeft)->Name("Layout/figures");
BENCHMARK_CAPTURE(layOut, centredFigures, Kind::Figures, Font::cCentre)->Name("Layout/figures centred");
BENCHMARK_CAPTURE(layOutPlainly, labels, Kind::Labels, Font::cLeft)->Name("Layout/labels/plain");
BENCHMARK_CAPTURE(layOutPlainly, mixed, Kind::Mixed, Font::cLeft)->Name("Layout/mixed/plain");
BENCHMARK_CAPTURE(layOutPlainly, paragraphs, Kind::Paragraphs, Font::cLeft)->Name("Layout/paragraphs/plain");
BENCHMARK_CAPTURE(layOutPlainly, centred, Kind::Labels, Font::cCentre)->Name("Layout/centred/plain");
BENCHMARK_CAPTURE(layOutPlainly, letters, Kind::Letters, Font::cLeft)->Name("Layout/letters/plain");
BENCHMARK_CAPTURE(layOutPlainly, pairs, Kind::Pairs, Font::cLeft)->Name("Layout/pairs/plain");
BENCHMARK_CAPTURE(layOutPlainly, figures, Kind::Figures, Font::cLeft)->Name("Layout/figures/plain");
BENCHMARK_CAPTURE(layOutPlainly, centredFigures, Kind::Figures, Font::cCentre)->Name("Layout/figures centred/plain");
#ifdef BENCH_IMGUI
BENCHMARK_CAPTURE(layOutByImGui, labels, Kind::Labels, Font::cLeft)->Name("Layout/labels/ImGui");
BENCHMARK_CAPTURE(layOutByImGui, mixed, Kind::Mixed, Font::cLeft)->Name("Layout/mixed/ImGui");
BENCHMARK_CAPTURE(layOutByImGui, paragraphs, Kind::Paragraphs, Font::cLeft)->Name("Layout/paragraphs/ImGui");
BENCHMARK_CAPTURE(layOutByImGui, centred, Kind::Labels, Font::cCentre)->Name("Layout/centred/ImGui");
BENCHMARK_CAPTURE(layOutByImGui, letters, Kind::Letters, Font::cLeft)->Name("Layout/letters/ImGui");
BENCHMARK_CAPTURE(layOutByImGui, pairs, Kind::Pairs, Font::cLeft)->Name("Layout/pairs/ImGui");
BENCHMARK_CAPTURE(layOutByImGui, figures, Kind::Figures, Font::cLeft)->Name("Layout/figures/ImGui");
BENCHMARK_CAPTURE(layOutByImGui, centredFigures, Kind::Figures, Font::cCentre)->Name("Layout/figures centred/ImGui");
BENCHMARK_CAPTURE(layOutByImGui, centredParagraphs, Kind::Paragraphs, Font::cCentre)
    ->Name("Layout/paragraphs centred/ImGui");
#endif
BENCHMARK_CAPTURE(layOut, centredParagraphs, Kind::Paragraphs, Font::cCentre)->Name("Layout/paragraphs centred");
BENCHMARK_CAPTURE(measure, labels, Kind::Labels)->Name("Measure/labels");
BENCHMARK_CAPTURE(measure, mixed, Kind::Mixed)->Name("Measure/mixed");
BENCHMARK(addThreeTimes)->Name("ThreeAdditions/labels");
BENCHMARK_CAPTURE(addAgain, one, Again::OneLetter)->Name("Again/one of 10000 changes");
BENCHMARK_CAPTURE(addAgain, length, Again::OneLength)->Name("Again/one of 10000 changes its length");
BENCHMARK_CAPTURE(addAgain, all, Again::All)->Name("Again/all change");
BENCHMARK(replaceOne)->Name("Replace/one of 10000");
BENCHMARK(draw)->Name("Draw/10000 strings");
BENCHMARK(drawByHand)->Name("Draw/byHand");

} // namespace
