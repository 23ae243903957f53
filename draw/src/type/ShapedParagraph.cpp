#include "ShapedParagraph.h"

#include "TextItemizer.h"
#include "TypefaceImpl.h"
#include "WordShapes.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace gui::draw
{

namespace
{

hb_language_t languageOf(const ShapeStyle& style)
{
    return style.language.empty() ? hb_language_get_default()
                                  : hb_language_from_string(style.language.data(), int(style.language.size()));
}

WordShapes::Plan planOf(const ShapedRun& run, const ShapeStyle& style)
{
    WordShapes::Plan plan{.pFont = TypefaceImpl::of(run.face)->font().getFont(),
                          .script = run.script,
                          .direction = run.isRightToLeft() ? HB_DIRECTION_RTL : HB_DIRECTION_LTR,
                          .language = languageOf(style),
                          .features = {}};
    const auto add = [&plan](std::uint32_t tag, std::uint32_t value) {
        plan.features.push_back({tag, value, HB_FEATURE_GLOBAL_START, HB_FEATURE_GLOBAL_END});
    };
    if (style.letterSpacing != 0)
    {
        add(HB_TAG('l', 'i', 'g', 'a'), 0);
        add(HB_TAG('c', 'l', 'i', 'g'), 0);
    }
    for (const FontFeature& feature : style.features)
        add(feature.tag.value, feature.value);
    return plan;
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
    _glyphs.reserve(itemizer.getOffsets().size());
    for (ShapedRun& run : _runs)
    {
        run.firstGlyph = static_cast<std::uint32_t>(_glyphs.size());
        if (run.kind == ShapedRun::Kind::Text)
            shapeRun(run);
        run.nGlyphs = static_cast<std::uint32_t>(_glyphs.size()) - run.firstGlyph;
    }
}

void ShapedParagraph::shapeRun(ShapedRun& run)
{
    const WordShapes::Plan plan = planOf(run, _styles[run.style]);
    if (!TypefaceImpl::of(run.face)->font().getWordShapes().shape(plan, _text, run.begin, run.end, _glyphs))
        shapeByHarfBuzz(plan, _text, run.begin, run.end, _glyphs);
}

std::vector<ShapedGlyph> ShapedParagraph::shapePart(const ShapedRun& run, std::uint32_t begin, std::uint32_t end) const
{
    std::vector<ShapedGlyph> glyphs;
    shapeByHarfBuzz(planOf(run, _styles[run.style]), _text, begin, end, glyphs);
    return glyphs;
}

std::vector<ShapedGlyph> ShapedParagraph::shapeOther(ShapedRun& run, std::string_view text) const
{
    std::vector<ShapedGlyph> glyphs;
    if (!run.face || text.empty())
        return glyphs;
    run.face = run.face.forCharacter(characterAt(text, 0), _styles[run.style].language);
    if (!run.face)
        run.face = _styles[run.style].face;
    shapeByHarfBuzz(planOf(run, _styles[run.style]), text, 0, static_cast<std::uint32_t>(text.size()), glyphs);
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
    const std::vector<std::uint32_t>& letters = getGraphemes();
    const std::lock_guard lock(_mutex);
    if (!_words)
    {
        _words = findWords(_text, _styles.empty() ? std::string() : _styles.front().language);
        // Flags behind invisible characters are parted at other places than letters are.
        std::erase_if(*_words, [&letters](std::uint32_t at) { return !std::ranges::binary_search(letters, at); });
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
