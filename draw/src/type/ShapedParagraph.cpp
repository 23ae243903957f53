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

// Spaces at which lines break, and which may stand out then (UAX 14's classes SP and, of BA, the spaces).
bool isHangingSpace(char32_t c)
{
    return c == ' ' || c == 0x1680 || (c >= 0x2000 && c <= 0x200A && c != 0x2007) || c == 0x205F || c == 0x3000;
}

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
    _isRightToLeft = FRIBIDI_IS_RTL(levels.direction);
    _hasLevels = !levels.levels.empty();
    if (_hasLevels)
        findSpaces(levels.types, itemizer.getOffsets());
    _glyphs.reserve(itemizer.getOffsets().size());
    for (ShapedRun& run : _runs)
    {
        run.firstGlyph = static_cast<std::uint32_t>(_glyphs.size());
        if (run.kind == ShapedRun::Kind::Text)
            shapeRun(run);
        run.nGlyphs = static_cast<std::uint32_t>(_glyphs.size()) - run.firstGlyph;
    }
    _clusters.reserve(_glyphs.size() + _runs.size());
    for (ShapedRun& run : _runs)
    {
        run.firstCluster = static_cast<std::uint32_t>(_clusters.size());
        addClusters(run, run.begin, run.end, glyphsOf(run), _clusters);
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

void ShapedParagraph::addClusters(const ShapedRun& run, std::uint32_t begin, std::uint32_t end,
                                  std::span<const ShapedGlyph> glyphs, std::vector<ShapedCluster>& clusters) const
{
    if (run.kind != ShapedRun::Kind::Text)
    {
        if (begin < end)
            clusters.push_back({0, begin, 0, 0, true, false, run.kind == ShapedRun::Kind::Tab, false});
        return;
    }
    const ShapeStyle& style = _styles[run.style];
    const double scale = run.scaleIn(style), spacing = style.letterSpacing;
    const std::size_t n = glyphs.size();
    // Runs from right to left begin at their last glyph.
    const bool isReversed = run.isRightToLeft();
    const ShapedGlyph* pGlyph = isReversed ? glyphs.data() + n : glyphs.data();
    for (std::size_t i = 0; i < n;)
    {
        const ShapedGlyph& first = isReversed ? *--pGlyph : *pGlyph++;
        double advance = first.advance;
        bool isUnsafe = first.isUnsafeToBreak;
        std::size_t next = i + 1;
        for (; next < n && (isReversed ? pGlyph[-1] : *pGlyph).cluster == first.cluster; ++next)
        {
            const ShapedGlyph& glyph = isReversed ? *--pGlyph : *pGlyph++;
            advance += glyph.advance;
            isUnsafe = isUnsafe || glyph.isUnsafeToBreak;
        }
        const char letter = _text[first.cluster];
        const char32_t c = letter >= 0 ? char32_t(letter) : characterAt(_text, first.cluster);
        clusters.push_back({advance * scale + spacing, first.cluster,
                            static_cast<std::uint32_t>(isReversed ? n - next : i), static_cast<std::uint32_t>(next - i),
                            isHangingSpace(c), c == ' ' || c == 0xA0, false, isUnsafe});
        i = next;
    }
}

// Those that rule L1 of Unicode's report 9 sets to the paragraph's level where they are the last ones of a line.
void ShapedParagraph::findSpaces(std::span<const FriBidiCharType> types, std::span<const std::uint32_t> offsets)
{
    for (std::size_t i = 0; i < types.size();)
    {
        std::size_t end = i;
        while (end < types.size() && FRIBIDI_IS_EXPLICIT_OR_BN_OR_WS(types[end]))
            ++end;
        if (end > i)
            _spaces.push_back(
                {offsets[i], end < types.size() ? offsets[end] : static_cast<std::uint32_t>(_text.size())});
        i = end + 1;
    }
}

std::uint32_t ShapedParagraph::findSpacesAtEnd(std::uint32_t begin, std::uint32_t end) const
{
    const auto found = std::ranges::lower_bound(_spaces, end, {}, &Spaces::end);
    return found != _spaces.end() && found->begin < end ? std::max(found->begin, begin) : end;
}

const std::vector<ClusterBreak>& ShapedParagraph::getLineBreaks() const
{
    const std::lock_guard lock(_mutex);
    if (_lineBreaks)
        return *_lineBreaks;
    const std::vector<LineBreak> found =
        findLineBreaks(_text, _styles.empty() ? std::string() : _styles.front().language);
    _lineBreaks.emplace().reserve(found.size());
    auto at = _clusters.begin();
    for (const LineBreak& each : found)
    {
        while (at != _clusters.end() && at->begin < each.offset)
            ++at;
        if (at != _clusters.end() && at->begin == each.offset)
            _lineBreaks->push_back({static_cast<std::uint32_t>(at - _clusters.begin()), each.isHard,
                                    std::string_view(_text).substr(0, each.offset).ends_with(cSoftHyphen)});
    }
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
           _clusters.capacity() * sizeof(ShapedCluster) + _runs.capacity() * sizeof(ShapedRun) +
           _spaces.capacity() * sizeof(Spaces);
}

} // namespace gui::draw
