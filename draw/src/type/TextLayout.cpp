#include <gui/draw/TextLayout.h>

#include "LaidParagraph.h"
#include "ParagraphCache.h"
#include "ShapedParagraph.h"
#include "TextBreaks.h"

#include <td/Assert.h>
#include <vo/UTFConverter.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace gui::draw
{

namespace
{

constexpr std::size_t cLongest = std::size_t(1) << 30;

// How many bytes at a place end a paragraph.
std::size_t paragraphEndAt(std::string_view text, std::size_t at)
{
    if (text[at] == '\n')
        return 1;
    if (text[at] == '\r')
        return text.substr(at).starts_with("\r\n") ? 2 : 1;
    const std::string_view rest = text.substr(at);
    return rest.starts_with("\u2029") ? 3 : rest.starts_with("\u0085") ? 2 : 0;
}

// Whether a byte may begin what ends a paragraph.
bool mayEndParagraph(char byte) { return byte == '\n' || byte == '\r' || byte == '\xC2' || byte == '\xE2'; }

// Where a paragraph ends that begins here.
std::size_t findParagraphEnd(std::string_view text, std::size_t begin)
{
    // Compilers look at all bytes of a block at once.
    constexpr std::size_t cBlock = 32;
    for (std::size_t at = begin; at < text.size();)
    {
        std::size_t end = std::min(at + cBlock, text.size());
        if (end - at == cBlock)
        {
            unsigned char mayEnd = 0;
            for (std::size_t i = 0; i < cBlock; ++i)
                mayEnd = static_cast<unsigned char>(mayEnd | static_cast<unsigned char>(mayEndParagraph(text[at + i])));
            if (mayEnd == 0)
                at = end;
        }
        for (; at < end; ++at)
            if (mayEndParagraph(text[at]) && paragraphEndAt(text, at) > 0)
                return at;
    }
    return text.size();
}

// Letters that are in several spans have the first one's style.
void alignToLetters(std::string_view text, std::span<ParagraphText::Span> spans)
{
    std::vector<std::uint32_t> letters;
    for (ParagraphText::Span& span : spans)
        if (mayBeOneLetter(text, span.end))
        {
            if (letters.empty())
                letters = findGraphemes(text);
            const auto found = std::ranges::lower_bound(letters, span.end);
            if (found != letters.end())
                span.end = *found;
        }
}

double lengthOrZero(double value) { return value > 0 && std::isfinite(value) ? value : 0; }

} // namespace

TextLayout::TextLayout(std::string_view text, const TextStyle& style, const ParagraphStyle& paragraph)
    : TextLayout({TextSpan{text, style}}, paragraph)
{
}

TextLayout::TextLayout(std::initializer_list<TextSpan> spans, const ParagraphStyle& paragraph)
    : TextLayout(std::span(spans.begin(), spans.size()), paragraph)
{
}

TextLayout::TextLayout(std::span<const TextSpan> spans, const ParagraphStyle& paragraph)
    : _paragraphStyle(paragraph)
{
    std::size_t n = 0;
    for (const TextSpan& span : spans)
    {
        TD_ASSERT(span.text.size() <= cLongest - n);
        n += span.text.size();
    }
    lay(spans);
}

void TextLayout::lay(std::span<const TextSpan> spans)
{
    for (const TextSpan& span : spans)
    {
        vo::UTFConverter::appendWellFormed(_text, span.text);
        _styles.push_back({span.style, _text.size()});
    }
    if (_styles.empty())
        return;
    layParagraphs();
    place();
}

void TextLayout::layParagraphs()
{
    LineSettings settings{.width = lengthOrZero(_paragraphStyle.width),
                          .wraps = _paragraphStyle.wraps,
                          .isJustified = _paragraphStyle.align == Align::Justify,
                          .lineHeight = lengthOrZero(_paragraphStyle.lineHeight),
                          .tabs = _paragraphStyle.tabs,
                          .tabDistance = _paragraphStyle.tabDistance,
                          .ellipsis = {}};
    vo::UTFConverter::appendWellFormed(settings.ellipsis, _paragraphStyle.ellipsis);
    std::vector<ShapeStyle> styles;
    std::vector<ParagraphText::Span> spans;
    std::size_t style = 0, nLines = 0;
    for (std::size_t begin = 0;;)
    {
        const std::size_t end = findParagraphEnd(_text, begin);
        const std::size_t next = end < _text.size() ? end + paragraphEndAt(_text, end) : end;
        const bool isLast = end == next;
        while (style + 1 < _styles.size() &&
               (_styles[style].end < begin || (_styles[style].end == begin && begin < _text.size())))
            ++style;
        styles.clear();
        spans.clear();
        for (std::size_t i = style; i < _styles.size(); ++i)
        {
            ShapeStyle shapeStyle = ShapeStyle::of(_styles[i].style);
            if (styles.empty() || styles.back() != shapeStyle)
                styles.push_back(std::move(shapeStyle));
            spans.push_back({static_cast<std::uint32_t>(std::min(_styles[i].end, end) - begin),
                             static_cast<std::uint32_t>(styles.size() - 1)});
            if (_styles[i].end >= end)
                break;
        }
        if (spans.size() > 1)
            alignToLetters({_text.data() + begin, end - begin}, spans);
        if (_paragraphStyle.maxLines > 0)
        {
            settings.maxLines = _paragraphStyle.maxLines - static_cast<unsigned int>(nLines);
            settings.goesOnBehind = !isLast;
        }
        auto pLaid = ParagraphCache::instance().lay({.text = {_text.data() + begin, end - begin},
                                                     .spans = spans,
                                                     .styles = styles,
                                                     .direction = _paragraphStyle.direction},
                                                    settings);
        _paragraphs.push_back({begin, end, nLines, style, std::move(pLaid)});
        nLines += _paragraphs.back().pLaid->lines.size();
        if (isLast || (_paragraphStyle.maxLines > 0 && nLines >= _paragraphStyle.maxLines))
        {
            _isCut = !isLast || _paragraphs.back().pLaid->lines.back().end < end - begin;
            return;
        }
        begin = next;
    }
}

void TextLayout::place()
{
    std::size_t nRuns = 0, nLines = 0;
    for (const Paragraph& paragraph : _paragraphs)
    {
        nRuns += paragraph.pLaid->runs.size();
        nLines += paragraph.pLaid->lines.size();
        for (const LaidLine& line : paragraph.pLaid->lines)
        {
            _textWidth = std::max(_textWidth, line.right - line.left);
            _isCut = _isCut || line.isCut;
        }
    }
    _runs.reserve(nRuns);
    _lines.reserve(nLines);
    _size.width = lengthOrZero(_paragraphStyle.width);
    if (_size.width == 0)
        _size.width = _textWidth;
    for (std::size_t i = 0; i < _paragraphs.size(); ++i)
    {
        const LaidParagraph& laid = *_paragraphs[i].pLaid;
        for (std::size_t k = 0; k < laid.lines.size(); ++k)
        {
            const bool isLast = k + 1 == laid.lines.size();
            const std::size_t end = !isLast                      ? _paragraphs[i].begin + laid.lines[k + 1].begin
                                    : i + 1 < _paragraphs.size() ? _paragraphs[i + 1].begin
                                                                 : _text.size();
            placeLine(_paragraphs[i], laid.lines[k], end);
        }
    }
}

void TextLayout::placeLine(const Paragraph& paragraph, const LaidLine& laid, std::size_t end)
{
    const bool isRightToLeft = paragraph.pLaid->pShaped->isRightToLeft();
    const double width = laid.right - laid.left, room = _size.width - width;
    const Align align = _paragraphStyle.align;
    const bool isAtRight = align != Align::Center && (align == Align::End) != isRightToLeft;
    const double left = align == Align::Center ? room / 2 : isAtRight ? room : 0;
    const Point origin(left - laid.left, _size.height + laid.ascent);
    _size.height += laid.ascent + laid.descent;
    _lines.push_back({.begin = paragraph.begin + laid.begin,
                      .end = end,
                      .left = left,
                      .width = width,
                      .top = origin.y - laid.ascent,
                      .baseline = origin.y,
                      .bottom = _size.height,
                      .isRightToLeft = isRightToLeft});
    const LaidParagraph& all = *paragraph.pLaid;
    for (const LaidRun& run : std::span(all.runs).subspan(laid.firstRun, laid.nRuns))
    {
        const std::size_t style = paragraph.firstStyle + run.span;
        if (run.nGlyphs > 0)
            _runs.push_back({.face = run.face,
                             .size = run.size,
                             .style = style,
                             .origin = origin,
                             .glyphs = std::span(all.glyphs).subspan(run.firstGlyph, run.nGlyphs),
                             .text = paragraph.begin,
                             .isRightToLeft = run.isRightToLeft});
        const TextStyle& wanted = _styles[style].style;
        const double runLeft = std::max(run.left, laid.left), runRight = std::min(run.right, laid.right);
        if ((wanted.isUnderlined || wanted.isStruckThrough) && runLeft < runRight)
            decorate(style, origin, runLeft, runRight);
    }
}

// Of the style's own face, so that letters of another one don't move the line.
void TextLayout::decorate(std::size_t style, Point origin, double left, double right)
{
    const TextStyle& wanted = _styles[style].style;
    const ShapeStyle shapeStyle = ShapeStyle::of(wanted);
    const Typeface::Metrics& metrics = shapeStyle.face.getMetrics();
    const double scale = shapeStyle.scale(), half = metrics.underlineThickness * scale / 2;
    const auto add = [&](double y)
    {
        const Rect rect(origin.x + left, y - half, origin.x + right, y + half);
        // On from the run before.
        for (auto at = _decorations.rbegin(); at != _decorations.rend() && at - _decorations.rbegin() < 2; ++at)
            if (at->style == style && at->rect.top == rect.top && std::abs(at->rect.right - rect.left) <= half)
            {
                at->rect.right = rect.right;
                return;
            }
        _decorations.push_back({rect, style});
    };
    if (wanted.isUnderlined)
        add(origin.y + metrics.underlinePosition * scale);
    if (wanted.isStruckThrough)
        add(origin.y - metrics.strikeoutPosition * scale);
}

std::optional<TextLayout::Rect> TextLayout::getInkBounds() const
{
    std::optional<Rect> bounds;
    const auto include = [&bounds](const Rect& rect)
    {
        if (!bounds)
            bounds = rect;
        bounds->left = std::min(bounds->left, rect.left);
        bounds->top = std::min(bounds->top, rect.top);
        bounds->right = std::max(bounds->right, rect.right);
        bounds->bottom = std::max(bounds->bottom, rect.bottom);
    };
    for (const Run& run : _runs)
    {
        const double unitsPerEm = run.face.getMetrics().unitsPerEm;
        const double scale = unitsPerEm > 0 ? run.size / unitsPerEm : 0;
        for (const Glyph& glyph : run.glyphs)
            if (const auto box = run.face.getBounds(glyph.glyph))
            {
                const double x = run.origin.x + double(glyph.x), y = run.origin.y + double(glyph.y);
                include({x + box->left * scale, y + box->top * scale, x + box->right * scale, y + box->bottom * scale});
            }
    }
    for (const Decoration& decoration : _decorations)
        include(decoration.rect);
    return bounds;
}

} // namespace gui::draw
