// The half of TextEditor that is about places: motions, the pointer, and what is to be shown.

#include <gui/draw/TextEditor.h>

#include <unicode/uchar.h>
#include <vo/UTFConverter.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace gui::draw
{

namespace
{

using Position = TextLayout::Position;
using Affinity = TextLayout::Affinity;

constexpr std::array<std::string_view, 4> cLineEnds{"\n", "\u2028", "\u2029", "\u0085"};

// Whether there is anything but spaces and signs.
bool hasWord(std::string_view text)
{
    const auto* p = reinterpret_cast<const unsigned char*>(text.data());
    const unsigned char* const end = p + text.size();
    while (p < end)
    {
        const auto c = static_cast<UChar32>(vo::UTFConverter::next(p, end));
        if (u_isUWhiteSpace(c) == 0 && u_ispunct(c) == 0 && u_isISOControl(c) == 0)
            return true;
    }
    return false;
}

std::size_t nextWordEnd(const TextLayout& layout, std::size_t offset)
{
    const std::string_view text = layout.getText();
    while (offset < text.size())
    {
        const TextLayout::Range word = layout.getWord(offset);
        if (word.end <= offset) // at the end of a paragraph
            offset = layout.getNext(offset);
        else if (hasWord(text.substr(offset, word.end - offset)))
            return word.end;
        else
            offset = word.end;
    }
    return offset;
}

std::size_t previousWordBegin(const TextLayout& layout, std::size_t offset)
{
    const std::string_view text = layout.getText();
    while (offset > 0)
    {
        const std::size_t letter = layout.getPrevious(offset);
        const TextLayout::Range word = layout.getWord(letter);
        if (word.end <= letter)
            offset = letter;
        else if (hasWord(text.substr(word.begin, offset - word.begin)))
            return word.begin;
        else
            offset = word.begin;
    }
    return offset;
}

} // namespace

const TextLayout& TextEditor::getLayout() const
{
    if (_isDirty)
    {
        const Range range = getSelection();
        std::string text = _text;
        if (isComposing())
            text.replace(range.begin, range.end - range.begin, _composition);
        _layout = TextLayout(text, _style, _paragraph);
        _isDirty = false;
    }
    return _layout;
}

// A place that is no letter's inside: behind the letter that it is in.
std::size_t TextEditor::toBoundary(std::size_t offset) const
{
    if (offset == 0 || offset >= _text.size())
        return offset;
    const TextLayout& layout = getLayout();
    const std::size_t next = layout.getNext(offset);
    return layout.getPrevious(next) == offset ? offset : next;
}

Position TextEditor::hit(Point point) const
{
    const Position at = getLayout().hitTest(point);
    return {toBoundary(at.offset), at.affinity};
}

bool TextEditor::goTo(const Place& place, bool keepsX)
{
    const bool isNew = place.caret != _caret || place.anchor != _anchor;
    _caret = place.caret;
    _anchor = place.anchor;
    _canJoin = false;
    if (!keepsX)
        _x.reset();
    return isNew;
}

void TextEditor::select(Range range)
{
    giveUpComposition();
    const auto toPlace = [this](std::size_t offset)
    {
        offset = std::min(offset, _text.size());
        const std::size_t boundary = toBoundary(offset);
        return boundary == offset ? offset : getLayout().getPrevious(boundary);
    };
    goTo({{toPlace(range.end)}, toPlace(range.begin)});
}

// Motions.

bool TextEditor::move(Motion motion, bool selects)
{
    giveUpComposition();
    const bool isVertical = motion >= Motion::Up && motion <= Motion::PageDown;
    if (isVertical && !_x)
        _x = getLayout().getCaret(_caret).top.x;
    const bool isSideward = motion == Motion::Left || motion == Motion::Right;
    const Position to = isSideward && hasSelection() && !selects ? besideSelection(motion == Motion::Right)
                                                                 : find(motion, _x.value_or(0));
    return goTo({to, selects ? _anchor : to.offset}, isVertical);
}

// The side of the selection that is seen at the left, or right; where it is in several lines, its beginning or end.
Position TextEditor::besideSelection(bool isRight) const
{
    const Range range = getSelection();
    const Position begin{range.begin, Affinity::Downstream}, end{range.end, Affinity::Upstream};
    const TextLayout& layout = getLayout();
    const std::size_t line = layout.getLineAt(begin);
    const bool isEndRight = line == layout.getLineAt(end) ? layout.getCaret(end).top.x >= layout.getCaret(begin).top.x
                                                          : !layout.getLines()[line].isRightToLeft;
    return isRight == isEndRight ? end : begin;
}

Position TextEditor::find(Motion motion, double x) const
{
    const TextLayout& layout = getLayout();
    const std::size_t line = layout.getLineAt(_caret);
    const bool isRightToLeft = layout.getLines()[line].isRightToLeft;
    switch (motion)
    {
    case Motion::Left:
        return layout.getLeft(_caret);
    case Motion::Right:
        return layout.getRight(_caret);
    case Motion::WordLeft:
        return find(isRightToLeft ? Motion::NextWord : Motion::PreviousWord, x);
    case Motion::WordRight:
        return find(isRightToLeft ? Motion::PreviousWord : Motion::NextWord, x);
    case Motion::Previous:
        return {layout.getPrevious(_caret.offset), Affinity::Downstream};
    case Motion::Next:
        return {layout.getNext(_caret.offset), Affinity::Downstream};
    case Motion::PreviousWord:
        return {previousWordBegin(layout, _caret.offset), Affinity::Downstream};
    case Motion::NextWord:
        return {nextWordEnd(layout, _caret.offset), Affinity::Upstream};
    case Motion::LineStart:
        return {toBoundary(layout.getLines()[line].begin), Affinity::Downstream};
    case Motion::LineEnd:
        return endOfLine(line);
    case Motion::Up:
    case Motion::Down:
        return inLine(line, motion == Motion::Down, x);
    case Motion::PageUp:
    case Motion::PageDown:
        return pageFrom(line, motion == Motion::PageDown, x);
    case Motion::ParagraphStart:
    {
        const std::size_t begin = paragraphAt(_caret.offset).begin;
        return {begin < _caret.offset ? begin : paragraphAt(layout.getPrevious(begin)).begin, Affinity::Downstream};
    }
    case Motion::ParagraphEnd:
    {
        const std::size_t end = paragraphAt(_caret.offset).end;
        return {end > _caret.offset ? end : paragraphAt(layout.getNext(end)).end, Affinity::Downstream};
    }
    case Motion::TextStart:
        return {0, Affinity::Downstream};
    case Motion::TextEnd:
        return {_text.size(), Affinity::Downstream};
    }
    return _caret;
}

Position TextEditor::inLine(std::size_t line, bool isDown, double x) const
{
    const TextLayout& layout = getLayout();
    const auto lines = layout.getLines();
    if (isDown ? line + 1 >= lines.size() : line == 0)
        return {isDown ? _text.size() : 0, Affinity::Downstream};
    const TextLayout::Line& to = lines[isDown ? line + 1 : line - 1];
    return hit({x, (to.top + to.bottom) / 2});
}

Position TextEditor::pageFrom(std::size_t line, bool isDown, double x) const
{
    const auto lines = getLayout().getLines();
    if (!(_page > 0))
        return _caret;
    if (isDown ? line + 1 >= lines.size() : line == 0)
        return inLine(line, isDown, x);
    const double y = (lines[line].top + lines[line].bottom) / 2 + (isDown ? _page : -_page);
    const std::size_t to = getLayout().getLineAt(hit({x, y}));
    // A page that is lower than a line goes on all the same.
    return to == line ? inLine(line, isDown, x) : hit({x, y});
}

bool TextEditor::endsHard(std::size_t line) const
{
    const TextLayout& layout = getLayout();
    const std::string_view text = std::string_view(layout.getText()).substr(0, layout.getLines()[line].end);
    return line + 1 < layout.getLines().size() &&
           std::ranges::any_of(cLineEnds, [text](std::string_view end) { return text.ends_with(end); });
}

Position TextEditor::endOfLine(std::size_t line) const
{
    const TextLayout& layout = getLayout();
    const std::size_t end = layout.getLines()[line].end;
    // Where a mark on a space begins the next line, that letter is in both.
    const bool isWithin = end < layout.getText().size() && layout.getPrevious(layout.getNext(end)) != end;
    return {endsHard(line) || isWithin ? layout.getPrevious(end) : end, Affinity::Upstream};
}

// Without what ends it.
TextEditor::Range TextEditor::paragraphAt(std::size_t offset) const
{
    const TextLayout& layout = getLayout();
    const auto lines = layout.getLines();
    const std::size_t line = layout.getLineAt({offset, Affinity::Downstream});
    std::size_t first = line, last = line;
    while (first > 0 && !endsHard(first - 1))
        --first;
    while (last + 1 < lines.size() && !endsHard(last))
        ++last;
    return {lines[first].begin, endOfLine(last).offset};
}

// The pointer.

// The word, or paragraph, of the letter that was hit.
TextEditor::Range TextEditor::unitAt(Position hit) const
{
    const TextLayout& layout = getLayout();
    const Range paragraph = paragraphAt(hit.offset);
    if (_unit == Unit::Paragraph)
        return paragraph;
    if (_unit == Unit::Letter || paragraph.begin == paragraph.end)
        return {hit.offset, hit.offset};
    const bool isBehind = hit.affinity == Affinity::Upstream && hit.offset > paragraph.begin;
    return layout.getWord(isBehind ? layout.getPrevious(hit.offset) : hit.offset);
}

void TextEditor::press(Point point, unsigned int nClicks, bool extends)
{
    giveUpComposition();
    const Position at = hit(point);
    if (extends)
    {
        _unit = Unit::Letter;
        _pressed = {_anchor, _anchor};
        goTo({at, _anchor});
        return;
    }
    _unit = nClicks <= 1 ? Unit::Letter : nClicks == 2 ? Unit::Word : Unit::Paragraph;
    _pressed = unitAt(at);
    if (_unit == Unit::Letter)
        goTo({at, at.offset});
    else
        goTo({{_pressed.end, Affinity::Upstream}, _pressed.begin});
}

void TextEditor::drag(Point point)
{
    giveUpComposition();
    // The text may have become shorter since.
    _pressed = {std::min(_pressed.begin, _text.size()), std::min(_pressed.end, _text.size())};
    const Position at = hit(point);
    const Range unit = unitAt(at);
    if (_unit == Unit::Letter)
        goTo({at, toBoundary(_pressed.begin)});
    else if (unit.begin < _pressed.begin)
        goTo({{unit.begin, Affinity::Downstream}, toBoundary(_pressed.end)});
    else
        goTo({{std::max(unit.end, toBoundary(_pressed.end)), Affinity::Upstream}, toBoundary(_pressed.begin)});
}

// What is to be shown.

// In a composition the layout's places are not the text's.
Position TextEditor::caretInLayout() const
{
    if (!isComposing())
        return _caret;
    const bool isAtEnd = _inComposition.end == _composition.size();
    return {getSelection().begin + _inComposition.end, isAtEnd ? Affinity::Upstream : Affinity::Downstream};
}

TextEditor::Rect TextEditor::getCaretRect(double width) const
{
    const TextLayout::Caret caret = getLayout().getCaret(caretInLayout());
    return {caret.top.x, caret.top.y, caret.top.x + width, caret.bottom};
}

std::vector<TextEditor::Rect> TextEditor::getSelectionRects() const
{
    const TextLayout& layout = getLayout();
    Range range = getSelection();
    if (isComposing())
        range = {range.begin + _inComposition.begin, range.begin + _inComposition.end};
    std::vector<Rect> rects = layout.getSelection(range);
    if (range.begin == range.end)
        return rects;
    constexpr double cLineEndEms = 0.25;
    const std::size_t last = layout.getLineAt({range.end, Affinity::Upstream});
    for (std::size_t i = layout.getLineAt({range.begin, Affinity::Downstream}); i <= last; ++i)
    {
        const Position end = endOfLine(i);
        if (!endsHard(i) || end.offset < range.begin || end.offset >= range.end)
            continue;
        const TextLayout::Line& line = layout.getLines()[i];
        const double x = layout.getCaret(end).top.x, width = cLineEndEms * std::max(_style.size, 0.0);
        rects.emplace_back(line.isRightToLeft ? x - width : x, line.top, line.isRightToLeft ? x : x + width,
                           line.bottom);
    }
    return rects;
}

std::vector<TextEditor::Rect> TextEditor::getCompositionRects(double thickness) const
{
    if (!isComposing())
        return {};
    const TextLayout& layout = getLayout();
    const std::size_t begin = getSelection().begin;
    std::vector<Rect> rects = layout.getSelection({begin, begin + _composition.size()});
    for (Rect& rect : rects)
    {
        const auto lines = layout.getLines();
        const auto line = std::ranges::find_if(lines, [&rect](const auto& l) { return l.bottom == rect.bottom; });
        const double below = line != lines.end() ? (line->bottom - line->baseline) / 2 : 0;
        rect = {rect.left, rect.bottom - below, rect.right, rect.bottom - below + thickness};
    }
    return rects;
}

TextEditor::Point TextEditor::scrollToCaret(Point scroll, const td::Size<double>& window) const
{
    const Rect caret = getCaretRect();
    const TextLayout& layout = getLayout();
    const td::Size<double> size = layout.getSize();
    double left = 0, right = std::max(size.width, caret.right);
    for (const TextLayout::Line& line : layout.getLines())
    {
        left = std::min(left, line.left);
        right = std::max(right, line.left + line.width + 1);
    }
    const auto fit = [](double at, double length, double from, double to, double begin, double end)
    {
        at = std::min(std::max(at, to - length), from);
        return std::max(std::min(at, end - length), begin);
    };
    return {fit(scroll.x, window.width, caret.left, caret.right, left, right),
            fit(scroll.y, window.height, caret.top, caret.bottom, 0, size.height)};
}

} // namespace gui::draw
