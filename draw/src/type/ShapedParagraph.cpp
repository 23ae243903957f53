#include "ShapedParagraph.h"

#include "TextItemizer.h"
#include "TypefaceImpl.h"

#include <vo/UTFConverter.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <utility>

namespace gui::draw
{

namespace
{

using Buffer = std::unique_ptr<hb_buffer_t, Release<hb_buffer_destroy>>;

hb_language_t languageOf(const ShapeStyle& style)
{
    return style.language.empty() ? hb_language_get_default()
                                  : hb_language_from_string(style.language.data(), int(style.language.size()));
}

// The thread's buffer, which keeps its memory from run to run.
hb_buffer_t* emptyBuffer()
{
    thread_local const Buffer s_pBuffer(hb_buffer_create());
    hb_buffer_reset(s_pBuffer.get());
    return s_pBuffer.get();
}

void shape(hb_buffer_t* pBuffer, const ShapedRun& run, const ShapeStyle& style, std::vector<ShapedGlyph>& glyphs)
{
    std::vector<hb_feature_t> features;
    const auto add = [&features](std::uint32_t tag, std::uint32_t value) {
        features.push_back({tag, value, HB_FEATURE_GLOBAL_START, HB_FEATURE_GLOBAL_END});
    };
    if (style.letterSpacing != 0)
    {
        add(HB_TAG('l', 'i', 'g', 'a'), 0);
        add(HB_TAG('c', 'l', 'i', 'g'), 0);
    }
    for (const FontFeature& feature : style.features)
        add(feature.tag.value, feature.value);
    hb_buffer_set_direction(pBuffer, run.isRightToLeft() ? HB_DIRECTION_RTL : HB_DIRECTION_LTR);
    hb_buffer_set_script(pBuffer, run.script);
    hb_buffer_set_language(pBuffer, languageOf(style));
    hb_shape(TypefaceImpl::of(run.face)->font().getFont(), pBuffer, features.data(),
             static_cast<unsigned int>(features.size()));

    unsigned int n = 0;
    const hb_glyph_info_t* const infos = hb_buffer_get_glyph_infos(pBuffer, &n);
    const hb_glyph_position_t* const positions = hb_buffer_get_glyph_positions(pBuffer, &n);
    glyphs.reserve(glyphs.size() + n);
    for (unsigned int i = 0; i < n; ++i)
        glyphs.push_back({infos[i].codepoint, infos[i].cluster, positions[i].x_advance, positions[i].x_offset,
                          positions[i].y_offset,
                          (hb_glyph_info_get_glyph_flags(&infos[i]) & HB_GLYPH_FLAG_UNSAFE_TO_BREAK) != 0});
}

} // namespace

ShapeStyle ShapeStyle::of(const TextStyle& style)
{
    const auto number = [](double value) { return std::isfinite(value) ? value : 0; };
    return {style.face ? style.face : Typeface::named("sans-serif"), std::max(number(style.size), 0.0),
            number(style.letterSpacing), style.features, style.language};
}

ShapedParagraph::ShapedParagraph(const ParagraphText& paragraph)
    : _text(paragraph.text)
    , _spans(paragraph.spans.begin(), paragraph.spans.end())
    , _styles(paragraph.styles.begin(), paragraph.styles.end())
{
    TextItemizer itemizer(_text, _spans, _styles);
    TextItemizer::Levels levels = itemizer.findLevels(paragraph.direction);
    _runs = itemizer.findRuns(levels);
    _direction = levels.direction;
    _isRightToLeft = FRIBIDI_IS_RTL(_direction);
    if (!levels.levels.empty())
    {
        _offsets = itemizer.getOffsets();
        _types = std::move(levels.types);
        _levels = std::move(levels.levels);
    }
    _glyphs.reserve(_text.size() + _text.size() / 8);
    for (ShapedRun& run : _runs)
    {
        run.firstGlyph = static_cast<std::uint32_t>(_glyphs.size());
        if (run.kind == ShapedRun::Kind::Text)
            shapeInto(run, run.begin, run.end, _glyphs);
        run.nGlyphs = static_cast<std::uint32_t>(_glyphs.size()) - run.firstGlyph;
    }
}

void ShapedParagraph::shapeInto(const ShapedRun& run, std::uint32_t begin, std::uint32_t end,
                                std::vector<ShapedGlyph>& glyphs) const
{
    hb_buffer_t* const pBuffer = emptyBuffer();
    // Letters may look at those beside the run, as Arabic ones do.
    hb_buffer_add_utf8(pBuffer, _text.data(), int(_text.size()), begin, int(end - begin));
    hb_buffer_set_flags(pBuffer, hb_buffer_flags_t((begin == 0 ? HB_BUFFER_FLAG_BOT : 0) |
                                                   (end == _text.size() ? HB_BUFFER_FLAG_EOT : 0)));
    shape(pBuffer, run, _styles[run.style], glyphs);
}

std::vector<ShapedGlyph> ShapedParagraph::shapePart(const ShapedRun& run, std::uint32_t begin, std::uint32_t end) const
{
    std::vector<ShapedGlyph> glyphs;
    shapeInto(run, begin, end, glyphs);
    return glyphs;
}

std::vector<ShapedGlyph> ShapedParagraph::shapeOther(ShapedRun& run, std::string_view text) const
{
    std::vector<ShapedGlyph> glyphs;
    if (!run.face || text.empty())
        return glyphs;
    const auto* p = reinterpret_cast<const unsigned char*>(text.data());
    run.face = run.face.forCharacter(vo::UTFConverter::next(p, p + text.size()), _styles[run.style].language);
    if (!run.face)
        run.face = _styles[run.style].face;
    hb_buffer_t* const pBuffer = emptyBuffer();
    hb_buffer_add_utf8(pBuffer, text.data(), int(text.size()), 0, int(text.size()));
    shape(pBuffer, run, _styles[run.style], glyphs);
    return glyphs;
}

void ShapedParagraph::getLineLevels(std::uint32_t begin, std::uint32_t end, std::vector<std::uint32_t>& offsets,
                                    std::vector<FriBidiLevel>& levels) const
{
    const auto first = std::ranges::lower_bound(_offsets, begin) - _offsets.begin();
    const auto last = std::ranges::lower_bound(_offsets, end) - _offsets.begin();
    offsets.assign(_offsets.begin() + first, _offsets.begin() + last);
    levels.assign(_levels.begin() + first, _levels.begin() + last);
    // It wants the levels of the whole paragraph, but looks at the line's alone.
    if (last > first && fribidi_reorder_line(FRIBIDI_FLAGS_DEFAULT, _types.data() + first, int(last - first), 0,
                                             _direction, levels.data(), nullptr, nullptr) == 0)
        std::ranges::fill(levels, FriBidiLevel(_isRightToLeft));
}

const std::vector<LineBreak>& ShapedParagraph::getLineBreaks() const
{
    const std::lock_guard lock(_mutex);
    if (!_lineBreaks)
        _lineBreaks = findLineBreaks(_text, _styles.empty() ? std::string() : _styles.front().language);
    return *_lineBreaks;
}

const std::vector<std::uint32_t>& ShapedParagraph::getGraphemes() const
{
    const std::lock_guard lock(_mutex);
    if (!_graphemes)
    {
        _graphemes = findGraphemes(_text);
        _graphemes->insert(_graphemes->begin(), 0);
    }
    return *_graphemes;
}

const std::vector<std::uint32_t>& ShapedParagraph::getWords() const
{
    const std::lock_guard lock(_mutex);
    if (!_words)
    {
        _words = findWords(_text, _styles.empty() ? std::string() : _styles.front().language);
        _words->insert(_words->begin(), 0);
    }
    return *_words;
}

std::size_t ShapedParagraph::getBytes() const
{
    return sizeof *this + _text.capacity() + _glyphs.capacity() * sizeof(ShapedGlyph) +
           _runs.capacity() * sizeof(ShapedRun) + _offsets.capacity() * (4 + sizeof(FriBidiCharType) + 1);
}

} // namespace gui::draw
