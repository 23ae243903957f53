// The half of TextEditor that changes its text.

#include <gui/draw/TextEditor.h>

#include <gui/Key.h>
#include <gui/TextComposition.h>
#include <vo/UTFConverter.h>

#include <algorithm>
#include <utility>

namespace gui::draw
{

namespace
{

constexpr std::size_t cLongestText = std::size_t(1) << 30; // a layout's own limit
constexpr std::size_t cLargestHistory = std::size_t(16) << 20;

bool isLead(char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80; }

std::size_t countCharacters(std::string_view text)
{
    return static_cast<std::size_t>(std::ranges::count_if(text, isLead));
}

// The bytes of control characters that the text goes without; and of ends of lines, to be written as one.
struct Unwanted
{
    std::size_t nBytes = 0; // 0: none
    bool isLineEnd = false;
};

Unwanted unwantedAt(std::string_view rest, bool isSingleLine)
{
    const auto c = static_cast<unsigned char>(rest[0]);
    if (c == '\r')
        return {rest.starts_with("\r\n") ? 2U : 1U, true};
    if (c == '\v' || c == '\f' || (c == '\n' && isSingleLine))
        return {1, true};
    if ((c < ' ' && c != '\t' && c != '\n') || c == 0x7F)
        return {1, false};
    if (isSingleLine && (rest.starts_with("\u2028") || rest.starts_with("\u2029")))
        return {3, true};
    const bool isC1 = c == 0xC2 && static_cast<unsigned char>(rest[1]) < 0xA0;
    const bool isNextLine = isC1 && rest.starts_with("\u0085");
    if (isC1 && (!isNextLine || isSingleLine))
        return {2, isNextLine};
    return {};
}

std::string withoutControls(std::string_view text, bool isSingleLine)
{
    const std::string wellFormed = vo::UTFConverter::toWellFormed(text);
    std::string result;
    result.reserve(wellFormed.size());
    for (std::size_t at = 0; at < wellFormed.size();)
    {
        const Unwanted unwanted = unwantedAt(std::string_view(wellFormed).substr(at), isSingleLine);
        if (unwanted.nBytes == 0)
            result += wellFormed[at++];
        else if (unwanted.isLineEnd)
            result += isSingleLine ? ' ' : '\n';
        at += unwanted.nBytes;
    }
    return result;
}

} // namespace

TextEditor::TextEditor(const TextStyle& style, const ParagraphStyle& paragraph, const Limits& limits)
    : _style(style)
    , _limits(limits)
{
    setParagraphStyle(paragraph);
}

void TextEditor::setText(std::string_view text)
{
    giveUpComposition();
    _text = take(text, {0, _text.size()});
    setDirty();
    _steps.clear();
    _historySize = 0;
    _nDone = 0;
    goTo({{_text.size()}, _text.size()});
}

void TextEditor::setStyle(const TextStyle& style)
{
    _style = style;
    setDirty();
}

void TextEditor::setParagraphStyle(const ParagraphStyle& paragraph)
{
    _paragraph = paragraph;
    _paragraph.maxLines = 0;
    _paragraph.ellipsis.clear();
    _paragraph.wraps = paragraph.wraps && !_limits.isSingleLine;
    setDirty();
}

void TextEditor::setWidth(double width)
{
    if (width == _paragraph.width)
        return;
    _paragraph.width = width;
    setDirty();
}

TextEditor::Range TextEditor::getSelection() const
{
    return {std::min(_caret.offset, _anchor), std::max(_caret.offset, _anchor)};
}

std::string TextEditor::getSelectedText() const
{
    const Range range = getSelection();
    return _text.substr(range.begin, range.end - range.begin);
}

// As many whole letters as there is room for, in characters.
std::string TextEditor::makeFit(std::string_view text, std::size_t nRoom) const
{
    if (countCharacters(text) <= nRoom)
        return std::string(text);
    const TextLayout letters(text, _style);
    std::size_t end = 0;
    for (std::size_t next = letters.getNext(0); next > end; next = letters.getNext(end))
    {
        const std::size_t n = countCharacters(text.substr(end, next - end));
        if (n > nRoom)
            break;
        nRoom -= n;
        end = next;
    }
    return std::string(text.substr(0, end));
}

// What comes in of a text in the place of another one.
std::string TextEditor::take(std::string_view text, Range replaced) const
{
    if (text.size() > cLongestText)
        return {};
    std::string taken = withoutControls(text, _limits.isSingleLine);
    const std::size_t nKept = _text.size() - (replaced.end - replaced.begin);
    if (nKept + taken.size() > cLongestText)
        return {};
    if (_limits.maxLength > 0)
    {
        const std::string_view out = std::string_view(_text).substr(replaced.begin, replaced.end - replaced.begin);
        const std::size_t n = countCharacters(_text) - countCharacters(out);
        taken = makeFit(taken, _limits.maxLength - std::min(n, _limits.maxLength));
    }
    return taken;
}

bool TextEditor::insert(std::string_view text)
{
    giveUpComposition();
    return replace(getSelection(), take(text, getSelection()), Kind::Typing);
}

bool TextEditor::paste(std::string_view text)
{
    giveUpComposition();
    return replace(getSelection(), take(text, getSelection()), Kind::Other);
}

std::string TextEditor::cut()
{
    giveUpComposition();
    std::string text = getSelectedText();
    replace(getSelection(), {}, Kind::Other);
    return text;
}

bool TextEditor::erase(Motion motion)
{
    giveUpComposition();
    if (hasSelection())
        return replace(getSelection(), {}, Kind::Other);
    const std::size_t to = find(motion, _x.value_or(getCaretRect().left)).offset;
    const Range range{std::min(to, _caret.offset), std::max(to, _caret.offset)};
    return replace(range, {}, to < _caret.offset ? Kind::DeletingBack : Kind::DeletingOn);
}

bool TextEditor::replace(Range range, std::string_view text, Kind kind)
{
    const std::size_t nRemoved = range.end - range.begin;
    if (nRemoved == 0 && text.empty())
        return false;
    Step step{range.begin, _text.substr(range.begin, nRemoved), std::string(text), {_caret, _anchor}, {}, kind};
    _text.replace(range.begin, nRemoved, text);
    setDirty();
    const bool canJoin = _canJoin;
    const std::size_t caret = toBoundary(range.begin + text.size());
    goTo({{caret}, caret});
    step.after = {_caret, _anchor};
    for (; _steps.size() > _nDone; _steps.pop_back())
        _historySize -= sizeOf(_steps.back());
    _historySize += sizeOf(step);
    if (!canJoin || !join(step))
        _steps.push_back(std::move(step));
    _canJoin = kind != Kind::Other;
    forgetOldSteps();
    return true;
}

// Makes a step a part of the last one.
bool TextEditor::join(const Step& step)
{
    if (_steps.empty() || _steps.back().kind != step.kind)
        return false;
    Step& last = _steps.back();
    if (step.kind == Kind::Typing)
    {
        const auto isSpace = [](char c) { return c == ' ' || c == '\t' || c == '\n'; };
        if (!step.removed.empty() || step.at != last.at + last.inserted.size() ||
            step.inserted.find('\n') != std::string::npos)
            return false;
        // The last one may have put nothing in the place of what was selected.
        if (!last.inserted.empty() && isSpace(last.inserted.back()) && !isSpace(step.inserted.front()))
            return false;
        last.inserted += step.inserted;
    }
    else if (step.kind == Kind::DeletingBack)
    {
        if (step.at + step.removed.size() != last.at)
            return false;
        last.at = step.at;
        last.removed.insert(0, step.removed);
    }
    else
    {
        if (step.at != last.at)
            return false;
        last.removed += step.removed;
    }
    last.after = step.after;
    _historySize -= sizeof(Step);
    return true;
}

std::size_t TextEditor::sizeOf(const Step& step) { return step.removed.size() + step.inserted.size() + sizeof(Step); }

void TextEditor::forgetOldSteps()
{
    for (; _historySize > cLargestHistory && _steps.size() > 1; _steps.pop_front())
        _historySize -= sizeOf(_steps.front());
    _nDone = _steps.size();
}

bool TextEditor::undo()
{
    giveUpComposition();
    if (!canUndo())
        return false;
    const Step& step = _steps[--_nDone];
    _text.replace(step.at, step.inserted.size(), step.removed);
    setDirty();
    goTo(step.before);
    return true;
}

bool TextEditor::redo()
{
    giveUpComposition();
    if (!canRedo())
        return false;
    const Step& step = _steps[_nDone++];
    _text.replace(step.at, step.removed.size(), step.inserted);
    setDirty();
    goTo(step.after);
    return true;
}

void TextEditor::compose(const gui::TextComposition& composition)
{
    giveUpComposition();
    _composition = withoutControls(composition.text, true);
    setDirty();
    // Where something was taken out, the caret is at the end.
    const bool isWhole = _composition == composition.text;
    const std::size_t size = _composition.size();
    _inComposition = {isWhole ? std::min(composition.begin, size) : size,
                      isWhole ? std::min(composition.end, size) : size};
}

void TextEditor::giveUpComposition()
{
    if (_composition.empty())
        return;
    _composition.clear();
    setDirty();
}

bool TextEditor::onKey(const gui::Key& key)
{
    using Virtual = gui::Key::Virtual;
    const bool isCmd = key.isCmdPressed(), isShift = key.isShiftPressed();
    if ((key.isAltPressed() && !key.isFnPressed()) || gui::isCtrlPressed(key.getModifiers()))
        return false;
    const auto moves = [&](Motion motion, Motion withCmd) { move(isCmd ? withCmd : motion, isShift); };
    switch (key.getVirtual())
    {
    case Virtual::None:
        break;
    case Virtual::Left:
        moves(Motion::Left, Motion::WordLeft);
        return true;
    case Virtual::Right:
        moves(Motion::Right, Motion::WordRight);
        return true;
    case Virtual::Up:
    case Virtual::Down:
    {
        const bool isUp = key.getVirtual() == Virtual::Up;
        if (_limits.isSingleLine)
            return false;
        moves(isUp ? Motion::Up : Motion::Down, isUp ? Motion::ParagraphStart : Motion::ParagraphEnd);
        return true;
    }
    case Virtual::PageUp:
    case Virtual::PageDown:
        if (_page > 0 && !isCmd)
            move(key.getVirtual() == Virtual::PageUp ? Motion::PageUp : Motion::PageDown, isShift);
        return _page > 0 && !isCmd;
    case Virtual::Home:
        moves(Motion::LineStart, Motion::TextStart);
        return true;
    case Virtual::End:
        moves(Motion::LineEnd, Motion::TextEnd);
        return true;
    case Virtual::Backspace:
        erase(isCmd ? Motion::PreviousWord : Motion::Previous);
        return true;
    case Virtual::Delete:
        erase(isCmd ? Motion::NextWord : Motion::Next);
        return true;
    case Virtual::Return:
    case Virtual::KeypadEnter:
        if (_limits.isSingleLine || isCmd)
            return false;
        insert("\n");
        return true;
    default:
        return !isCmd && key.getVirtual() >= Virtual::Keypad0 && key.getVirtual() <= Virtual::KeypadDivide;
    }
    if (!isCmd)
        return key.getCode() >= ' ';
    switch (key.getChar())
    {
    case 'a':
    case 'A':
        selectAll();
        return true;
    case 'z':
    case 'Z':
        isShift ? redo() : undo();
        return true;
    case 'y':
    case 'Y':
        redo();
        return true;
    default:
        return false;
    }
}

} // namespace gui::draw
