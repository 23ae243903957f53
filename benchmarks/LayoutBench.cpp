// Text laid out: 100 kB in ten languages and seven scripts, wrapped; beside it HarfBuzz alone, which shapes the same
// runs, and Pango and Qt, which lay out the same paragraphs in the same faces.

#include "QtArguments.h"

#include <gui/draw/TextLayout.h>

#include <benchmark/benchmark.h>
#include <hb.h>

#ifdef BENCH_PANGO
#include <fontconfig/fontconfig.h>
#include <pango/pangocairo.h>
#include <pango/pangofc-fontmap.h>
#endif
#ifdef BENCH_QT
#include <QFontDatabase>
#include <QGuiApplication>
#include <QTextLayout>
#endif

#include <algorithm>
#include <array>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace
{

using namespace gui::draw;

constexpr std::array<std::string_view, 10> cSentences{
    "All human beings are born free and equal in dignity and rights. They are endowed with reason and conscience and "
    "should act towards one another in a spirit of brotherhood. ",
    "Alle Menschen sind frei und gleich an Würde und Rechten geboren. Sie sind mit Vernunft und Gewissen begabt und "
    "sollen einander im Geiste der Brüderlichkeit begegnen. ",
    "Tous les êtres humains naissent libres et égaux en dignité et en droits. Ils sont doués de raison et de "
    "conscience "
    "et doivent agir les uns envers les autres dans un esprit de fraternité. ",
    "Все люди рождаются свободными и равными в своем достоинстве и правах. Они наделены разумом и совестью и должны "
    "поступать в отношении друг друга в духе братства. ",
    "Όλοι οι άνθρωποι γεννιούνται ελεύθεροι και ίσοι στην αξιοπρέπεια και τα δικαιώματα. Είναι προικισμένοι με λογική "
    "και συνείδηση. ",
    "يولد جميع الناس أحرارًا متساوين في الكرامة والحقوق. "
    "وقد وهبوا عقلاً وضميرًا وعليهم أن يعامل بعضهم بعضًا بروح الإخاء. ",
    "כל בני האדם נולדו בני חורין ושווים בערכם ובזכויותיהם. כולם חוננו בתבונה ובמצפון. ",
    "सभी मनुष्यों को गौरव और अधिकारों के मामले में जन्मजात स्वतन्त्रता और समानता प्राप्त है। ",
    "人人生而自由，在尊严和权利上一律平等。他们赋有理性和良心，并应以兄弟关系的精神相对待。",
    "Wszyscy ludzie rodzą się wolni i równi pod względem swej godności i swych praw. Są oni obdarzeni rozumem. "};

constexpr std::size_t cBytes = 100000;
constexpr std::array cFiles{"/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf",
                            "/usr/share/fonts/truetype/lohit-devanagari/Lohit-Devanagari.ttf",
                            "/usr/share/fonts/truetype/droid/DroidSansFallbackFull.ttf"};

// Paragraphs of some sentences each, none like another one.
std::string makeText()
{
    std::string text;
    unsigned int random = 7;
    for (unsigned int i = 0; text.size() < cBytes; ++i)
    {
        text += std::to_string(i) + ") ";
        for (unsigned int k = 0; k < 4; ++k)
        {
            random = random * 1664525 + 1013904223;
            text += cSentences[(random >> 16) % cSentences.size()];
        }
        text.back() = '\n';
    }
    return text;
}

struct Fonts
{
    Typeface face;
    std::map<std::uint64_t, std::size_t> indices; // by the faces' IDs
    std::vector<hb_font_t*> fonts;

    Fonts()
    {
        std::vector<Typeface> faces;
        for (const char* const file : cFiles)
            if (const Typeface opened = Typeface::fromFile(file))
            {
                hb_blob_t* const pBlob = hb_blob_create_from_file(file);
                hb_face_t* const pFace = hb_face_create(pBlob, 0);
                indices[opened.getID()] = fonts.size();
                fonts.push_back(hb_font_create(pFace));
                hb_face_destroy(pFace);
                hb_blob_destroy(pBlob);
                faces.push_back(opened);
            }
        face = faces.front().withFallbacks({faces.begin() + 1, faces.end()}, false);
    }
    ~Fonts() { std::ranges::for_each(fonts, hb_font_destroy); }
    Fonts(const Fonts&) = delete;
    Fonts& operator=(const Fonts&) = delete;
};

const Fonts& fonts()
{
    static const Fonts s_fonts;
    return s_fonts;
}

struct ShapeRun
{
    std::size_t begin, end;
    std::size_t font;
    hb_segment_properties_t properties;
};

// What there is to shape, taken from the layout.
std::vector<ShapeRun> runsOf(const TextLayout& layout)
{
    std::vector<ShapeRun> runs;
    for (const TextLayout::Run& run : layout.getRuns())
    {
        const auto first = std::ranges::min_element(run.glyphs, {}, &TextLayout::Glyph::offset);
        runs.push_back({run.text + first->offset,
                        0,
                        fonts().indices.at(run.face.getID()),
                        {run.isRightToLeft ? HB_DIRECTION_RTL : HB_DIRECTION_LTR, HB_SCRIPT_COMMON,
                         hb_language_get_default(), nullptr, nullptr}});
    }
    std::ranges::sort(runs, {}, &ShapeRun::begin);
    for (std::size_t i = 0; i < runs.size(); ++i)
        runs[i].end = std::min(i + 1 < runs.size() ? runs[i + 1].begin : layout.getText().size(),
                               layout.getText().find('\n', runs[i].begin));
    hb_buffer_t* const pBuffer = hb_buffer_create();
    for (ShapeRun& run : runs)
    {
        hb_buffer_clear_contents(pBuffer);
        hb_buffer_add_utf8(pBuffer, layout.getText().data() + run.begin, int(run.end - run.begin), 0, -1);
        hb_buffer_guess_segment_properties(pBuffer);
        run.properties.script = hb_buffer_get_script(pBuffer);
    }
    hb_buffer_destroy(pBuffer);
    return runs;
}

std::size_t shapeByHarfBuzz(const std::string& text, const std::vector<ShapeRun>& runs, const Fonts& fonts)
{
    static hb_buffer_t* const s_pBuffer = hb_buffer_create();
    std::size_t nGlyphs = 0;
    for (const ShapeRun& run : runs)
    {
        hb_buffer_clear_contents(s_pBuffer);
        hb_buffer_add_utf8(s_pBuffer, text.data(), int(text.size()), static_cast<unsigned int>(run.begin),
                           int(run.end - run.begin));
        hb_buffer_set_segment_properties(s_pBuffer, &run.properties);
        hb_shape(fonts.fonts[run.font], s_pBuffer, nullptr, 0);
        nGlyphs += hb_buffer_get_length(s_pBuffer);
    }
    return nGlyphs;
}

void HarfBuzzAlone(benchmark::State& state)
{
    const std::string text = makeText();
    const std::vector<ShapeRun> runs = runsOf(TextLayout(text, {.face = fonts().face}));
    std::size_t nGlyphs = 0;
    for (auto _ : state)
        nGlyphs = shapeByHarfBuzz(text, runs, fonts());
    state.counters["glyphs"] = double(nGlyphs);
    state.counters["runs"] = double(runs.size());
}
BENCHMARK(HarfBuzzAlone)->Unit(benchmark::kMillisecond);

// The first text of a program: fonts that have not shaped any.
void HarfBuzzAloneInNewFonts(benchmark::State& state)
{
    const std::string text = makeText();
    const std::vector<ShapeRun> runs = runsOf(TextLayout(text, {.face = fonts().face}));
    for (auto _ : state)
    {
        state.PauseTiming();
        const Fonts opened;
        state.ResumeTiming();
        benchmark::DoNotOptimize(shapeByHarfBuzz(text, runs, opened));
    }
}
BENCHMARK(HarfBuzzAloneInNewFonts)->Unit(benchmark::kMillisecond)->Iterations(30);

void LayoutFirstInNewFonts(benchmark::State& state)
{
    const std::string text = makeText();
    for (auto _ : state)
    {
        state.PauseTiming();
        const Fonts opened;
        state.ResumeTiming();
        benchmark::DoNotOptimize(TextLayout(text, {.face = opened.face}, {.width = 400}));
    }
}
BENCHMARK(LayoutFirstInNewFonts)->Unit(benchmark::kMillisecond)->Iterations(30);

// Each time in a size that there wasn't.
void LayoutFirst(benchmark::State& state)
{
    const std::string text = makeText();
    static double s_size = 12;
    std::size_t nLines = 0;
    for (auto _ : state)
    {
        s_size += 1e-9;
        const TextLayout layout(text, {.face = fonts().face, .size = s_size}, {.width = 400});
        nLines = layout.getLines().size();
    }
    state.counters["lines"] = double(nLines);
}
BENCHMARK(LayoutFirst)->Unit(benchmark::kMillisecond);

void LayoutAgain(benchmark::State& state)
{
    const std::string text = makeText();
    for (auto _ : state)
        benchmark::DoNotOptimize(TextLayout(text, {.face = fonts().face}, {.width = 400}));
}
BENCHMARK(LayoutAgain)->Unit(benchmark::kMillisecond);

// Shaped before, but never so wide.
void LayoutInAnotherWidth(benchmark::State& state)
{
    const std::string text = makeText();
    static double s_width = 400;
    for (auto _ : state)
    {
        s_width += 0.01;
        benchmark::DoNotOptimize(TextLayout(text, {.face = fonts().face}, {.width = s_width}));
    }
}
BENCHMARK(LayoutInAnotherWidth)->Unit(benchmark::kMillisecond);

// What a key pressed in an editor costs: one paragraph is another one.
void LayoutAfterAKey(benchmark::State& state)
{
    std::string text = makeText();
    const std::size_t middle = text.find('\n', text.size() / 2);
    char letter = 'a';
    for (auto _ : state)
    {
        text.insert(middle, 1, letter);
        letter = letter == 'z' ? 'a' : char(letter + 1);
        benchmark::DoNotOptimize(TextLayout(text, {.face = fonts().face}, {.width = 400}));
    }
}
BENCHMARK(LayoutAfterAKey)->Unit(benchmark::kMillisecond)->Iterations(100);

#ifdef BENCH_PANGO
// With fonts that have shaped the same words before, as above.
class Pango
{
public:
    Pango()
        : _pFonts(pango_cairo_font_map_new())
    {
        FcConfig* const pConfig = FcConfigCreate();
        for (const char* const file : cFiles)
            FcConfigAppFontAddFile(pConfig, reinterpret_cast<const FcChar8*>(file));
        pango_fc_font_map_set_config(PANGO_FC_FONT_MAP(_pFonts), pConfig);
        FcConfigDestroy(pConfig);
        _pContext = pango_font_map_create_context(_pFonts);
        pango_cairo_context_set_resolution(_pContext, 72);
        _pFont = pango_font_description_from_string("DejaVu Sans 12");
    }
    ~Pango()
    {
        for (PangoLayout* const pLayout : layouts)
            g_object_unref(pLayout);
        pango_font_description_free(_pFont);
        g_object_unref(_pContext);
        g_object_unref(_pFonts);
    }
    Pango(const Pango&) = delete;
    Pango& operator=(const Pango&) = delete;

    void add(const std::string& text)
    {
        for (std::size_t begin = 0, end = 0; begin < text.size(); begin = end + 1)
        {
            end = std::min(text.find('\n', begin), text.size());
            PangoLayout* const pLayout = pango_layout_new(_pContext);
            pango_layout_set_font_description(pLayout, _pFont);
            pango_layout_set_wrap(pLayout, PANGO_WRAP_WORD_CHAR);
            pango_layout_set_text(pLayout, text.data() + begin, static_cast<int>(end - begin));
            layouts.push_back(pLayout);
        }
    }
    std::size_t layOut(double width)
    {
        std::size_t nLines = 0;
        for (PangoLayout* const pLayout : layouts)
        {
            pango_layout_set_width(pLayout, static_cast<int>(width * PANGO_SCALE));
            nLines += static_cast<std::size_t>(pango_layout_get_line_count(pLayout));
        }
        return nLines;
    }

    std::vector<PangoLayout*> layouts;

private:
    PangoFontMap* _pFonts;
    PangoContext* _pContext = nullptr;
    PangoFontDescription* _pFont = nullptr;
};

void LayoutByPango(benchmark::State& state)
{
    const std::string text = makeText();
    Pango pango;
    std::size_t nLines = 0;
    for (auto _ : state)
    {
        pango.add(text);
        nLines = pango.layOut(400);
        state.PauseTiming();
        for (PangoLayout* const pLayout : pango.layouts)
            g_object_unref(pLayout);
        pango.layouts.clear();
        state.ResumeTiming();
    }
    state.counters["lines"] = double(nLines);
}
BENCHMARK(LayoutByPango)->Unit(benchmark::kMillisecond);

void LayoutInAnotherWidthByPango(benchmark::State& state)
{
    Pango pango;
    pango.add(makeText());
    double width = 400;
    for (auto _ : state)
        benchmark::DoNotOptimize(pango.layOut(width = width == 400 ? 410 : 400));
}
BENCHMARK(LayoutInAnotherWidthByPango)->Unit(benchmark::kMillisecond);
#endif

#ifdef BENCH_QT
void LayoutByQt(benchmark::State& state)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    bench::QtArguments arguments;
    const QGuiApplication application(arguments.count, arguments.values.data());
    QStringList families;
    for (const char* const file : cFiles)
        families += QFontDatabase::applicationFontFamilies(QFontDatabase::addApplicationFont(file)).value(0);
    QFont font(families);
    font.setPixelSize(12);
    const QStringList paragraphs = QString::fromStdString(makeText()).split('\n', Qt::SkipEmptyParts);
    std::size_t nLines = 0;
    for (auto _ : state)
    {
        nLines = 0;
        for (const QString& paragraph : paragraphs)
        {
            QTextLayout layout(paragraph, font);
            layout.beginLayout();
            for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine(), ++nLines)
                line.setLineWidth(400);
            layout.endLayout();
        }
    }
    state.counters["lines"] = double(nLines);
}
BENCHMARK(LayoutByQt)->Unit(benchmark::kMillisecond);
#endif

} // namespace
