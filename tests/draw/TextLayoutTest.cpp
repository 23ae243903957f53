#include <gui/draw/TextLayout.h>

#include "support/FontFiles.h"

#include <fribidi.h>
#include <gtest/gtest.h>
#include <hb.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace
{

using namespace gui::draw;
using test::encoded;
using Affinity = TextLayout::Affinity;
using Position = TextLayout::Position;

const std::string cFonts = "/usr/share/fonts/";

/// Words of a vocabulary, with and without spaces and signs that kern with them.
std::string randomText(std::mt19937& random, const std::vector<std::string>& words, std::size_t n)
{
    std::string text;
    for (std::size_t i = 0; i < n; ++i)
    {
        text += words[random() % words.size()];
        text += random() % 8 == 0 ? "" : random() % 8 == 0 ? "  " : " ";
    }
    return text;
}

const std::vector<std::string> cLatin{"To", "AVATAR", "fi", "Te.",     "T",   "V,",    "office", "y", "1/2",
                                      "r-", "L'",     "P.", "e\u0301", "Åse", "\"W\"", "ffl",    "A", "AT&T"};
const std::vector<std::string> cArabic{"السلام", "لا", "ومن", "الله", "عليكم،", "أحرارًا", "و", "ل", "ـ", "بِسْمِ"};
const std::vector<std::string> cHebrew{"שלום", "לַמְדָן", "עולם", "א", "־", "ב."};
const std::vector<std::string> cHindi{"क्षत्रिय", "हिन्दी", "में", "र्क", "कि", "।", "श्री"};

// A word that is remembered wrongly, a feature or language that gets lost, glyphs in another order.
TEST(TextLayoutTest, GlyphsAreHarfBuzzs)
{
    struct Case
    {
        std::string file;
        const std::vector<std::string>& words;
        hb_script_t script;
        std::vector<FontFeature> features;
    };
    const Case cases[]{{"truetype/dejavu/DejaVuSans.ttf", cLatin, HB_SCRIPT_LATIN, {}},
                       {"truetype/dejavu/DejaVuSerif.ttf", cLatin, HB_SCRIPT_LATIN, {{"liga", 0}}},
                       {"truetype/noto/NotoSansMono-Regular.ttf", cLatin, HB_SCRIPT_LATIN, {}},
                       {"opentype/fonts-hosny-amiri/Amiri-Regular.ttf", cLatin, HB_SCRIPT_LATIN, {{"kern", 0}}},
                       {"opentype/fonts-hosny-amiri/Amiri-Regular.ttf", cArabic, HB_SCRIPT_ARABIC, {}},
                       {"truetype/dejavu/DejaVuSans.ttf", cArabic, HB_SCRIPT_ARABIC, {{"rlig", 0}}},
                       {"truetype/dejavu/DejaVuSans.ttf", cHebrew, HB_SCRIPT_HEBREW, {}},
                       {"truetype/lohit-devanagari/Lohit-Devanagari.ttf", cHindi, HB_SCRIPT_DEVANAGARI, {}}};
    std::mt19937 random(4);
    for (const Case& which : cases)
    {
        const std::string path = cFonts + which.file;
        const Typeface face = Typeface::fromFile(path.c_str()).withFallbacks({}, false);
        ASSERT_TRUE(face) << path;
        hb_blob_t* const pBlob = hb_blob_create_from_file(path.c_str());
        hb_face_t* const pFace = hb_face_create(pBlob, 0);
        hb_font_t* const pFont = hb_font_create(pFace);
        hb_buffer_t* const pBuffer = hb_buffer_create();
        std::vector<hb_feature_t> features;
        for (const FontFeature& feature : which.features)
            features.push_back({feature.tag.value, feature.value, 0, HB_FEATURE_GLOBAL_END});
        for (int i = 0; i < 60; ++i)
        {
            const std::string text =
                which.words[random() % which.words.size()] + randomText(random, which.words, 9) + which.words[0];
            const bool isBackward = HB_DIRECTION_IS_BACKWARD(hb_script_get_horizontal_direction(which.script));
            const TextLayout layout(
                text,
                {.face = face, .size = face.getMetrics().unitsPerEm, .features = which.features, .language = "ur"},
                {.direction = isBackward ? TextDirection::RightToLeft : TextDirection::LeftToRight});
            hb_buffer_clear_contents(pBuffer);
            hb_buffer_add_utf8(pBuffer, text.data(), int(text.size()), 0, -1);
            hb_buffer_set_direction(pBuffer, hb_script_get_horizontal_direction(which.script));
            hb_buffer_set_script(pBuffer, which.script);
            hb_buffer_set_language(pBuffer, hb_language_from_string("ur", -1));
            hb_shape(pFont, pBuffer, features.data(), static_cast<unsigned int>(features.size()));

            unsigned int n = 0;
            const hb_glyph_info_t* const infos = hb_buffer_get_glyph_infos(pBuffer, &n);
            const hb_glyph_position_t* const positions = hb_buffer_get_glyph_positions(pBuffer, &n);
            std::size_t at = 0;
            double pen = 0;
            for (const TextLayout::Run& run : layout.getRuns())
                for (const TextLayout::Glyph& glyph : run.glyphs)
                {
                    ASSERT_LT(at, n) << text;
                    ASSERT_EQ(std::tuple(glyph.glyph, glyph.offset, glyph.advance),
                              std::tuple(infos[at].codepoint, infos[at].cluster, float(positions[at].x_advance)))
                        << path << " glyph " << at << ": " << text;
                    ASSERT_NEAR(glyph.x, pen + positions[at].x_offset, 0.01) << text;
                    ASSERT_EQ(glyph.y, float(-positions[at].y_offset)) << text;
                    pen += positions[at].x_advance;
                    ++at;
                }
            ASSERT_EQ(at, n) << path << ": " << text;
        }
        hb_buffer_destroy(pBuffer);
        hb_font_destroy(pFont);
        hb_face_destroy(pFace);
        hb_blob_destroy(pBlob);
    }
}

/// Where in the text the clusters of the first line begin, from left to right.
std::vector<std::size_t> orderOf(const TextLayout& layout)
{
    std::vector<std::size_t> order;
    for (const TextLayout::Run& run : layout.getRuns())
        for (const TextLayout::Glyph& glyph : run.glyphs)
            if (order.empty() || order.back() != run.text + glyph.offset)
                order.push_back(run.text + glyph.offset);
    return order;
}

TEST(TextLayoutTest, TheOrderOfALineIsFriBidis)
{
    const std::u32string characters =
        U"abc \u05D0\u05D1\u05D2 12 \u0661\u0662,.-()[]+%\u2067\u2066\u2069\u202B\u202C\u200F";
    std::mt19937 random(5);
    for (int i = 0; i < 1500; ++i)
    {
        std::u32string text;
        for (std::size_t k = 0; k < 1 + random() % 24; ++k)
            text += characters[random() % characters.size()];
        std::string bytes;
        std::map<std::size_t, std::size_t> indexOf;
        for (std::size_t k = 0; k < text.size(); ++k)
        {
            indexOf[bytes.size()] = k;
            bytes += encoded(text[k]);
        }
        const TextDirection direction = TextDirection(random() % 3);
        const TextLayout layout(bytes, {.face = Typeface::named("DejaVu Sans")}, {.direction = direction});
        FriBidiParType base = direction == TextDirection::Auto          ? FRIBIDI_PAR_ON
                              : direction == TextDirection::LeftToRight ? FRIBIDI_PAR_LTR
                                                                        : FRIBIDI_PAR_RTL;
        std::vector<FriBidiStrIndex> toLogical(text.size());
        const std::u32string& input = text;
        ASSERT_NE(fribidi_log2vis(reinterpret_cast<const FriBidiChar*>(input.data()), int(text.size()), &base, nullptr,
                                  nullptr, toLogical.data(), nullptr),
                  0);
        const auto order = orderOf(layout);
        const std::set<std::size_t> shown(order.begin(), order.end());
        std::vector<std::size_t> expected, found;
        for (const FriBidiStrIndex index : toLogical)
            expected.push_back(static_cast<std::size_t>(index));
        for (const std::size_t offset : order)
            found.push_back(indexOf.at(offset));
        // HarfBuzz merges what a mark without a glyph stands on.
        std::erase_if(expected, [&](std::size_t index)
                      { return std::ranges::find(found, index) == found.end() && text[index] >= 0x2000; });
        EXPECT_EQ(found, expected) << bytes;
        EXPECT_EQ(layout.getLines()[0].isRightToLeft, FRIBIDI_IS_RTL(base) != 0);
    }
}

/// All that people write, in several styles, with what is hard for carets.
struct Sample
{
    std::string text;
    TextLayout layout;

    explicit Sample(std::mt19937& random, double width, const ParagraphStyle& style = {})
    {
        static const std::vector<std::string> cPieces{"word ",
                                                      "שלום ",
                                                      "السلام ",
                                                      "ffi",
                                                      "e\u0301",
                                                      "क्षि",
                                                      "ภาษาไทย",
                                                      "漢字",
                                                      "👨‍👩‍👧‍👦",
                                                      "🇩🇪🇫🇷",
                                                      "\n",
                                                      "\t",
                                                      "12.5 ",
                                                      "(",
                                                      ")",
                                                      "\u00AD",
                                                      "\u2028",
                                                      "\r\n",
                                                      "\u200D",
                                                      "\u0301",
                                                      " ",
                                                      "averyverylongword",
                                                      "\u202E",
                                                      "\u2069",
                                                      "\xFF"};
        std::vector<std::pair<std::size_t, TextStyle>> spans;
        std::vector<std::string> texts;
        for (std::size_t i = 0; i < 1 + random() % 4; ++i)
        {
            std::string& piece = texts.emplace_back();
            for (std::size_t k = 0; k < random() % 12; ++k)
                piece += cPieces[random() % cPieces.size()];
        }
        std::vector<TextSpan> all;
        for (std::size_t i = 0; i < texts.size(); ++i)
            all.push_back({texts[i],
                           {.face = Typeface::named(i % 2 == 0 ? "DejaVu Sans" : "DejaVu Serif"),
                            .size = 10.0 + double(i % 3) * 4,
                            .letterSpacing = i == 3 ? 2.0 : 0.0}});
        ParagraphStyle paragraph = style;
        paragraph.width = width;
        layout = TextLayout(all, paragraph);
        text = layout.getText();
    }
};

TEST(TextLayoutTest, CaretsHitsAndSelectionsAgree)
{
    std::mt19937 random(6);
    for (int i = 0; i < 300; ++i)
    {
        const Sample sample(random, i % 3 == 0 ? 0 : 60 + double(random() % 200),
                            {.align = Align(i % 4), .direction = TextDirection(i % 3)});
        const TextLayout& layout = sample.layout;
        const std::size_t end = sample.text.size();
        std::vector<std::size_t> places{0};
        while (layout.getNext(places.back()) != places.back())
            places.push_back(layout.getNext(places.back()));
        ASSERT_EQ(places.back(), end);
        for (std::size_t k = places.size(); k-- > 1;)
            ASSERT_EQ(layout.getPrevious(places[k]), places[k - 1]) << sample.text;
        for (const std::size_t place : places)
            for (const Affinity affinity : {Affinity::Downstream, Affinity::Upstream})
            {
                const TextLayout::Caret caret = layout.getCaret({place, affinity});
                const std::size_t line = layout.getLineAt({place, affinity});
                ASSERT_EQ(caret.top.y, layout.getLines()[line].top);
                const Position hit = layout.hitTest({caret.top.x, (caret.top.y + caret.bottom) / 2});
                ASSERT_TRUE(std::ranges::binary_search(places, hit.offset)) << sample.text;
                const TextLayout::Caret again = layout.getCaret(hit);
                ASSERT_NEAR(again.top.x, caret.top.x, 1e-3) << sample.text << " at " << place;
                ASSERT_EQ(again.top.y, caret.top.y) << sample.text << " at " << place;
                const TextLayout::Range word = layout.getWord(place);
                ASSERT_LE(word.begin, place);
                ASSERT_GE(word.end, place);
                ASSERT_TRUE(std::ranges::binary_search(places, word.begin)) << sample.text;
            }
        // All of it selected is as wide as all of its letters, one by one.
        double whole = 0, parts = 0;
        for (const auto& rect : layout.getSelection({0, end}))
            whole += rect.right - rect.left;
        for (std::size_t k = 1; k < places.size(); ++k)
            for (const auto& rect : layout.getSelection({places[k - 1], places[k]}))
                parts += rect.right - rect.left;
        ASSERT_NEAR(whole, parts, 1e-3 * (1 + whole)) << sample.text;
        // To the right until it ends. Between paragraphs of two directions one goes there and back.
        const auto lines = layout.getLines();
        if (std::ranges::any_of(lines, [&](const auto& line) { return line.isRightToLeft != lines[0].isRightToLeft; }))
            continue;
        Position position = layout.getLines()[0].isRightToLeft ? Position{end, Affinity::Downstream} : Position{};
        std::size_t n = 0;
        for (Position next = layout.getRight(position); next != position && n <= 4 * places.size(); ++n)
            position = std::exchange(next, layout.getRight(next));
        ASSERT_LE(n, 4 * places.size()) << sample.text;
    }
}

TEST(TextLayoutTest, LinesHoldAllTextWithinTheWidth)
{
    std::mt19937 random(7);
    for (int i = 0; i < 400; ++i)
    {
        const double width = 20 + double(random() % 200);
        const Sample sample(random, width, {.align = i % 2 == 0 ? Align::Justify : Align::Start});
        std::size_t at = 0;
        double y = 0;
        for (const TextLayout::Line& line : sample.layout.getLines())
        {
            ASSERT_EQ(line.begin, at);
            ASSERT_EQ(line.top, y);
            at = line.end;
            y = line.bottom;
            if (line.width <= width * (1 + 1e-9))
                continue;
            // One letter alone, and what can't be seen.
            std::size_t last = line.begin;
            std::size_t nVisible = 0;
            while (last < line.end)
            {
                const std::size_t next = std::max(sample.layout.getNext(last), last + 1);
                double selected = 0;
                for (const auto& rect : sample.layout.getSelection({last, next}))
                    selected += rect.right - rect.left;
                nVisible += selected > 0 && sample.text[last] != ' ' ? 1 : 0;
                last = next;
            }
            EXPECT_LE(nVisible, 1U) << sample.text << " in " << width;
        }
        ASSERT_EQ(at, sample.text.size());
        ASSERT_EQ(y, sample.layout.getSize().height);
    }
}

// The same paragraph in another layout, width or style; what is remembered must not be another one's.
TEST(TextLayoutTest, WhatIsRememberedIsTheSame)
{
    const auto glyphsOf = [](const TextLayout& layout)
    {
        std::vector<std::tuple<std::uint32_t, double, double, std::size_t>> glyphs;
        for (const TextLayout::Run& run : layout.getRuns())
            for (const TextLayout::Glyph& glyph : run.glyphs)
                glyphs.emplace_back(glyph.glyph, run.origin.x + double(glyph.x), run.origin.y + double(glyph.y),
                                    run.style);
        return glyphs;
    };
    const auto text = std::string("Office AVATAR\nשלום office ");
    const auto layout = [&](const Typeface& face, const TextStyle& change, double width)
    {
        TextStyle style = change;
        style.face = face;
        TextStyle other = style;
        other.paint = "#ff0000";
        return glyphsOf(TextLayout({{text, style}, {"in red", other}}, {.width = width}));
    };
    const Typeface face = Typeface::named("DejaVu Sans");
    const std::vector<TextStyle> styles{{.size = 12},
                                        {.size = 13},
                                        {.size = 12, .letterSpacing = 1},
                                        {.size = 12, .features = {{"liga", 0}}},
                                        {.size = 12, .features = {{"kern", 0}}}};
    std::set<std::vector<std::tuple<std::uint32_t, double, double, std::size_t>>> different;
    for (int round = 0; round < 2; ++round)
        for (const TextStyle& style : styles)
            for (const double width : {0.0, 70.0, 100.0})
            {
                // Another handle has nothing remembered.
                const auto glyphs = layout(face, style, width);
                EXPECT_EQ(glyphs, layout(face.withFallbacks({}), style, width));
                different.insert(glyphs);
            }
    EXPECT_EQ(different.size(), styles.size() * 3);
}

TEST(TextLayoutTest, PlacesOfLines)
{
    const TextStyle style{.face = Typeface::named("DejaVu Sans"), .size = 10};
    const auto metrics = style.face.getMetrics();
    const double lineHeight = (metrics.ascent + metrics.descent + metrics.lineGap) * 10 / metrics.unitsPerEm;
    const TextLayout two("short\na longer line", style);
    ASSERT_EQ(two.getLines().size(), 2U);
    EXPECT_NEAR(two.getSize().height, 2 * lineHeight, 1e-9);
    EXPECT_EQ(two.getSize().width, two.getLines()[1].width);
    const double width = two.getLines()[0].width, all = two.getSize().width;
    EXPECT_NEAR(TextLayout("short\na longer line", style, {.align = Align::End}).getLines()[0].left, all - width, 1e-9);
    EXPECT_NEAR(TextLayout("short\na longer line", style, {.align = Align::Center}).getLines()[0].left,
                (all - width) / 2, 1e-9);
    EXPECT_NEAR(TextLayout("שלום", style, {.width = 100}).getLines()[0].left,
                100 - TextLayout("שלום", style).getTextWidth(), 1e-9);

    // Empty texts, and what stands behind the last line's end, have a line for the caret.
    EXPECT_EQ(TextLayout("", style).getLines().size(), 1U);
    EXPECT_EQ(TextLayout().getLines().size(), 0U);
    EXPECT_EQ(TextLayout().hitTest({3, 4}), Position());
    for (const std::string end : {"\n", "\r\n", "\r", "\u2029", "\u2028", "\u0085"})
    {
        const TextLayout layout("a" + end, style);
        ASSERT_EQ(layout.getLines().size(), 2U) << testing::PrintToString(end);
        EXPECT_EQ(layout.getCaret({layout.getText().size()}).top, TextLayout::Point(0, layout.getLines()[1].top));
    }

    const TextLayout high("a\nb", style, {.lineHeight = 2});
    EXPECT_NEAR(high.getLines()[1].baseline - high.getLines()[0].baseline, 20, 1e-9);

    // Tabs: the stops, then the distance, from the side where reading begins.
    const TextLayout tabs("a\tb\tc\td", style, {.tabs = {30, 50}, .tabDistance = 40});
    EXPECT_NEAR(tabs.getCaret({2}).top.x, 30, 1e-4);
    EXPECT_NEAR(tabs.getCaret({4}).top.x, 50, 1e-4);
    EXPECT_NEAR(tabs.getCaret({6}).top.x, 80, 1e-4);
    const TextLayout backward("א\tב", style, {.width = 100, .tabs = {30}});
    EXPECT_NEAR(backward.getCaret({3}).top.x, 70, 1e-4);

    // A justified line is as wide as the text; the last one isn't.
    const TextLayout justified("one two three four five six seven", style, {.width = 90, .align = Align::Justify});
    ASSERT_GT(justified.getLines().size(), 2U);
    EXPECT_NEAR(justified.getLines()[0].width, 90, 1e-6);
    EXPECT_NEAR(justified.getSelection({0, 3})[0].right, TextLayout("one", style).getTextWidth(), 1e-4);
    EXPECT_LT(justified.getLines().back().width, 90);

    // A hyphen comes where a soft one ends a line, and has no place in the text.
    const TextLayout hyphen("long\u00ADword", style, {.width = TextLayout("long-", style).getTextWidth() + 1});
    ASSERT_EQ(hyphen.getLines().size(), 2U);
    EXPECT_NEAR(hyphen.getLines()[0].width, TextLayout("long\u2010", style).getTextWidth(), 1e-6);
}

TEST(TextLayoutTest, WhatIsCutEndsInAnEllipsis)
{
    const TextStyle style{.face = Typeface::named("DejaVu Sans"), .size = 10};
    const std::string text = "one two three four five six seven\nand more";
    const TextLayout two(text, style, {.width = 80, .maxLines = 2, .ellipsis = "…"});
    ASSERT_EQ(two.getLines().size(), 2U);
    EXPECT_TRUE(two.isCut());
    EXPECT_LE(two.getLines()[1].width, 80);
    EXPECT_EQ(two.getLines()[1].end, text.size());
    EXPECT_EQ(two.getRuns().back().glyphs.back().glyph, style.face.getGlyph(0x2026));
    // Carets of what isn't there are at the end of what is, before the ellipsis.
    EXPECT_EQ(two.getCaret({text.size()}).top.x, two.getCaret({30}).top.x);
    EXPECT_FALSE(TextLayout(text, style, {.width = 80, .maxLines = 9, .ellipsis = "…"}).isCut());
    // Of a character that the face has not.
    const TextLayout grin(text, style, {.width = 80, .maxLines = 2, .ellipsis = "\U0001F9E0"});
    EXPECT_TRUE(grin.getRuns().back().face.isColorGlyph(grin.getRuns().back().glyphs.back().glyph));
    for (const double width : {10.0, 40.0, 70.0})
    {
        const TextLayout line("many words in one שורה אחת", style, {.width = width, .wraps = false, .ellipsis = "..."});
        ASSERT_EQ(line.getLines().size(), 1U);
        EXPECT_TRUE(line.isCut());
        EXPECT_LE(line.getTextWidth(), std::max(width, TextLayout("...", style).getTextWidth()) + 1e-9);
    }
}

TEST(TextLayoutTest, StylesGoWithTheirLetters)
{
    const Typeface face = Typeface::named("DejaVu Sans");
    const TextStyle plain{.face = face, .size = 10}, marked{.face = face, .size = 10, .isUnderlined = true};
    // A change of colour alone changes no place; a mark belongs to its letter.
    const TextLayout one("AVe\u0301", plain), several({{"A", plain}, {"Ve", marked}, {"\u0301", plain}});
    EXPECT_EQ(one.getTextWidth(), several.getTextWidth());
    ASSERT_EQ(several.getRuns().size(), 2U);
    EXPECT_EQ(several.getRuns()[0].style, 0U);
    EXPECT_EQ(several.getRuns()[1].style, 1U);
    ASSERT_EQ(several.getDecorations().size(), 1U);
    EXPECT_NEAR(several.getDecorations()[0].rect.right, several.getTextWidth(), 1e-4);
    EXPECT_GT(several.getDecorations()[0].rect.top, several.getLines()[0].baseline);

    // Emoji in colour though the face has them in black, but not where the text wants them so.
    const auto isColored = [&](const std::string& text)
    {
        const TextLayout layout(text, plain);
        const TextLayout::Run& run = layout.getRuns().front();
        return run.face.isColorGlyph(run.glyphs[0].glyph);
    };
    EXPECT_TRUE(isColored("\U0001F600"));
    EXPECT_TRUE(isColored("\u263A\uFE0F"));
    EXPECT_FALSE(isColored("\u263A"));
    EXPECT_FALSE(isColored("\U0001F600\uFE0E"));
    // What stands beside them, spaces too, is the text's. Flags are two characters each.
    for (const std::string text : {"x\U0001F1EF\U0001F1F5 y", "\U0001F600 \U0001F600", " \U0001F1EF\U0001F1F5"})
    {
        std::string colored, others;
        const TextLayout layout(text, plain);
        for (const TextLayout::Run& run : layout.getRuns())
            for (const TextLayout::Glyph& glyph : run.glyphs)
                (run.face.isColorGlyph(glyph.glyph) ? colored : others) += text[run.text + glyph.offset];
        EXPECT_EQ(others, std::string(text[0] == 'x' ? "x y" : " "));
        EXPECT_EQ(colored, text.ends_with("\U0001F600") ? "\xF0\xF0" : "\xF0");
    }
    // Lines have room for what comes from other faces.
    const TextLayout mixed("x\U0001F600", plain);
    ASSERT_EQ(mixed.getRuns().size(), 2U);
    double above = 0, below = 0;
    for (const TextLayout::Run& run : mixed.getRuns())
    {
        const auto metrics = run.face.getMetrics();
        above = std::max(above, double(metrics.ascent) * 10 / metrics.unitsPerEm);
        below = std::max(below, double(metrics.descent) * 10 / metrics.unitsPerEm);
    }
    EXPECT_GE(mixed.getLines()[0].baseline + 1e-6, above);
    EXPECT_GE(mixed.getSize().height - mixed.getLines()[0].baseline + 1e-6, below);
    EXPECT_EQ(TextLayout("x.", plain).getInkBounds()->top, TextLayout("x", plain).getInkBounds()->top);
    const auto ink = TextLayout("x", plain).getInkBounds();
    EXPECT_NEAR(ink->bottom, TextLayout("x", plain).getLines()[0].baseline, 0.2);
    EXPECT_FALSE(TextLayout(" ", plain).getInkBounds());
}

} // namespace
