#include <gui/draw/TextEditor.h>

#include <gui/Key.h>
#include <gui/TextComposition.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{

using namespace gui::draw;
using Motion = TextEditor::Motion;

const TextStyle& style()
{
    static const TextStyle s_style{.face = Typeface::named("DejaVu Sans"), .size = 10};
    return s_style;
}

/// A text as people write it down: "|" is the caret, and "[" or "]" the selection's other end.
TextEditor parse(std::string text, const ParagraphStyle& paragraph = {})
{
    std::size_t caret = text.find('|');
    text.erase(caret, 1);
    std::size_t anchor = text.find_first_of("[]");
    if (anchor == std::string::npos)
        anchor = caret;
    else
    {
        text.erase(anchor, 1);
        caret -= anchor < caret ? 1 : 0;
    }
    TextEditor editor(style(), paragraph);
    editor.setText(text);
    editor.select({anchor, caret});
    return editor;
}

std::string shown(const TextEditor& editor)
{
    std::string text = editor.getText();
    const std::size_t caret = editor.getCaret().offset;
    const TextEditor::Range selected = editor.getSelection();
    const bool isAtEnd = selected.end == caret;
    if (editor.hasSelection() && !isAtEnd)
        text.insert(selected.end, "]");
    text.insert(caret, "|");
    if (editor.hasSelection() && isAtEnd)
        text.insert(selected.begin, "[");
    return text;
}

TextEditor::Point pointIn(const TextEditor& editor, std::size_t offset, double dx)
{
    const TextLayout::Caret caret = editor.getLayout().getCaret({offset});
    return {caret.top.x + dx, caret.top.y + 3};
}

TEST(TextEditorTest, Motions)
{
    const struct
    {
        Motion motion;
        bool selects;
        const char* from;
        const char* to;
    } cases[] = {
        {Motion::Next, false, "a|e\u0301b", "ae\u0301|b"},
        {Motion::NextWord, false, "so|me (words), here", "some| (words), here"},
        {Motion::NextWord, false, "some| (words), here", "some (words|), here"},
        {Motion::NextWord, true, "one|\n\n two", "one[\n\n two|"},
        {Motion::PreviousWord, false, "one (two).  |", "one (|two).  "},
        {Motion::PreviousWord, true, "one\n|", "|one\n]"},
        {Motion::WordLeft, false, "שלום| עולם", "שלום עולם|"},
        {Motion::WordRight, false, "שלום עולם|", "שלום |עולם"},
        {Motion::Left, false, "|אב", "א|ב"},
        {Motion::Right, true, "אב|", "א|ב]"},
        // To a side of the selection.
        {Motion::Left, false, "on[e two|", "on|e two"},
        {Motion::Right, false, "on|e two]", "one two|"},
        {Motion::Left, false, "ש[לום|", "שלום|"},
        {Motion::Right, false, "o[ne\ntw|o", "one\ntw|o"},
        {Motion::LineStart, false, "one\nt|wo", "one\n|two"},
        {Motion::LineEnd, true, "o|ne\ntwo", "o[ne|\ntwo"},
        {Motion::LineEnd, false, "one\nt|wo", "one\ntwo|"},
        {Motion::ParagraphStart, false, "one\nt|wo", "one\n|two"},
        {Motion::ParagraphStart, false, "one\n\n|two", "one\n|\ntwo"},
        {Motion::ParagraphEnd, false, "one|\n\ntwo", "one\n|\ntwo"},
        {Motion::Up, false, "o|ne", "|one"},
        {Motion::Down, true, "o|ne", "o[ne|"},
        {Motion::TextStart, false, "one\nt|wo", "|one\ntwo"},
        {Motion::TextEnd, true, "o|ne\ntwo", "o[ne\ntwo|"},
    };
    for (const auto& [motion, selects, from, to] : cases)
    {
        TextEditor editor = parse(from);
        editor.move(motion, selects);
        EXPECT_EQ(shown(editor), to) << from << ", motion " << int(motion);
    }
    // The x of the first line is that of the last, however short those between are.
    TextEditor editor = parse("a long line|\nab\n\nanother long line");
    const double x = editor.getCaretRect().left;
    for (int i = 0; i < 3; ++i)
        editor.move(Motion::Down);
    EXPECT_NEAR(editor.getCaretRect().left, x, 4);
    EXPECT_EQ(editor.getLayout().getLineAt(editor.getCaret()), 3U);
    // By pages of some two lines.
    editor.setPage(2.2 * (editor.getCaretRect().bottom - editor.getCaretRect().top));
    editor.move(Motion::TextStart);
    for (const std::size_t line : {2U, 3U})
    {
        editor.move(Motion::PageDown);
        EXPECT_EQ(editor.getLayout().getLineAt(editor.getCaret()), line);
    }
    // A wrapped line's end is in that line, and its beginning too.
    TextEditor wrapped = parse("several |words in lines", {.width = 50});
    wrapped.move(Motion::LineEnd);
    const double top = wrapped.getCaretRect().top;
    wrapped.move(Motion::LineEnd);
    EXPECT_EQ(wrapped.getCaretRect().top, top);
    EXPECT_NE(wrapped.getCaret().offset, wrapped.getText().size());
    wrapped.move(Motion::LineStart);
    EXPECT_EQ(shown(wrapped), "several |words in lines");
}

TEST(TextEditorTest, Keys)
{
    using Virtual = gui::Key::Virtual;
    constexpr unsigned int cShift = 1, cAlt = 8, cCtrl = 16, cAltGr = 32 + 8;
    const struct
    {
        gui::Key key;
        const char* from;
        const char* to;
        bool isUsed = true;
    } cases[] = {
        {{0, 0, 1, int(Virtual::Left)}, "one| two", "on|e two"},
        {{0, cShift | cCtrl, 1, int(Virtual::Right)}, "one| two", "one[ two|"},
        {{0, cCtrl, 1, int(Virtual::Home)}, "one\nt|wo", "|one\ntwo"},
        {{0, cShift, 1, int(Virtual::End)}, "o|ne\ntwo", "o[ne|\ntwo"},
        {{0, cCtrl, 1, int(Virtual::Down)}, "o|ne\ntwo", "one|\ntwo"},
        {{0, 0, 1, int(Virtual::Backspace)}, "oe\u0301|", "o|"},
        {{0, cCtrl, 1, int(Virtual::Backspace)}, "one two|", "one |"},
        {{0, 0, 1, int(Virtual::Delete)}, "o[ne|", "o|"},
        {{0, cCtrl, 1, int(Virtual::Delete)}, "one| two", "one|"},
        {{0, 0, 1, int(Virtual::Return)}, "o[n|e", "o\n|e"},
        {{'a', cCtrl, 1, 0}, "o|ne", "[one|"},
        {{'e', 0, 1, 0}, "o|ne", "o|ne"}, // its text comes by itself
        {{' ', 0, 1, 0}, "o|ne", "o|ne"},
        {{'@', cAltGr, 1, 0}, "o|ne", "o|ne"},
        {{'e', cAlt, 1, 0}, "o|ne", "o|ne", false},
        {{'v', cCtrl, 1, 0}, "o|ne", "o|ne", false},
        {{0, 0, 1, int(Virtual::Tab)}, "o|ne", "o|ne", false},
        {{0, 0, 1, int(Virtual::Escape)}, "o|ne", "o|ne", false},
    };
    for (const auto& [key, from, to, isUsed] : cases)
    {
        TextEditor editor = parse(from);
        EXPECT_EQ(editor.onKey(key), isUsed) << key.getCode() << ' ' << int(key.getVirtual());
        EXPECT_EQ(shown(editor), to);
    }
    TextEditor field(style(), {}, {.isSingleLine = true});
    EXPECT_FALSE(field.onKey({0, 0, 1, int(Virtual::Return)}));
    EXPECT_FALSE(field.onKey({0, 0, 1, int(Virtual::Up)}));
}

// By the letter that was hit, on either half of it; and on from there by what the press began with.
TEST(TextEditorTest, Pointer)
{
    TextEditor editor = parse("|one two, three\nfour");
    editor.press(pointIn(editor, 7, -1), 2);
    EXPECT_EQ(shown(editor), "one [two|, three\nfour");
    editor.drag(pointIn(editor, 1, 1));
    EXPECT_EQ(shown(editor), "|one two], three\nfour");
    editor.drag(pointIn(editor, 11, 1));
    EXPECT_EQ(shown(editor), "one [two, three|\nfour");
    editor.press(pointIn(editor, 2, 1), 3);
    EXPECT_EQ(shown(editor), "[one two, three|\nfour");
    editor.drag(pointIn(editor, 16, 1));
    EXPECT_EQ(shown(editor), "[one two, three\nfour|");
    editor.press(pointIn(editor, 4, 1));
    editor.drag(pointIn(editor, 2, 1));
    EXPECT_EQ(shown(editor), "on|e ]two, three\nfour");
    editor.press(pointIn(editor, 7, 1), 1, true);
    EXPECT_EQ(shown(editor), "one [two|, three\nfour");
    editor.select({9, 9});
    editor.press(pointIn(editor, 12, 1), 1, true);
    editor.drag(pointIn(editor, 13, 1));
    EXPECT_EQ(shown(editor), "one two, [thre|e\nfour");
    editor.press(pointIn(editor, 4, 1), 2);
    EXPECT_EQ(shown(editor), "one [two|, three\nfour") << "on its first letter";
    editor.press({500, 500});
    EXPECT_EQ(shown(editor), "one two, three\nfour|");
}

TEST(TextEditorTest, UndoTakesWordsAndRunsOfDeletions)
{
    TextEditor editor = parse("start|");
    for (const char c : std::string(" of all"))
        editor.insert({&c, 1});
    for (int i = 0; i < 3; ++i)
        editor.erase(Motion::Previous);
    editor.paste("!");
    editor.insert("?");
    editor.move(Motion::Left);
    editor.insert("x");
    std::vector<std::string> steps{shown(editor)};
    while (editor.undo())
        steps.push_back(shown(editor));
    EXPECT_EQ(steps, (std::vector<std::string>{"start of !x|?", "start of !|?", "start of !|", "start of |",
                                               "start of all|", "start of |", "start |", "start|"}));
    for (std::size_t i = steps.size() - 1; i-- > 0;)
    {
        EXPECT_TRUE(editor.redo());
        EXPECT_EQ(editor.getText(),
                  [&]
                  {
                      auto text = steps[i];
                      return text.erase(text.find('|'), 1);
                  }());
    }
    editor.undo();
    editor.insert("y");
    EXPECT_FALSE(editor.canRedo());
    // Nothing in the place of something, and what is typed then, are one step.
    editor.select({0, 5});
    EXPECT_TRUE(editor.insert("") && editor.insert("end"));
    EXPECT_EQ(editor.getText().substr(0, 4), "end ");
    editor.undo();
    EXPECT_EQ(editor.getText().substr(0, 6), "start ");
}

TEST(TextEditorTest, LimitsLeaveWholeLetters)
{
    TextEditor field(style(), {.width = 30}, {.isSingleLine = true, .maxLength = 8});
    EXPECT_TRUE(field.paste("a\r\nb\x1b\xFF\u2029c"));
    EXPECT_EQ(field.getText(), "a b\uFFFD c");
    EXPECT_TRUE(field.insert("xe\u0301\u0302")) << "two characters of room, of which the letter needs three";
    EXPECT_EQ(shown(field), "a b\uFFFD cx|");
    field.select({0, 2});
    EXPECT_TRUE(field.insert("1234"));
    EXPECT_EQ(shown(field), "123|b\uFFFD cx");
    EXPECT_FALSE(field.insert("4"));
    EXPECT_EQ(field.getLayout().getLines().size(), 1U);
    // It never scrolls beyond what it has.
    field.move(Motion::TextEnd);
    const td::Size<double> window{30, 10};
    const double end = field.scrollToCaret({0, 0}, window).x;
    EXPECT_NEAR(end + window.width, field.getCaretRect().right, 1);
    field.move(Motion::TextStart);
    EXPECT_EQ(field.scrollToCaret({end, 5}, window).x, 0);
}

TEST(TextEditorTest, ACompositionIsShownAndNotThere)
{
    TextEditor editor = parse("one [two| three");
    const double before = editor.getCaretRect().left;
    editor.compose({"にほんご", 6, 9});
    EXPECT_EQ(editor.getText(), "one two three");
    EXPECT_EQ(editor.getLayout().getText(), "one にほんご three");
    const auto lines = editor.getCompositionRects(), selected = editor.getSelectionRects();
    ASSERT_EQ(lines.size(), 1U);
    ASSERT_EQ(selected.size(), 1U);
    EXPECT_NEAR(lines[0].left, editor.getLayout().getCaret({4}).top.x, 1e-6);
    EXPECT_LT(lines[0].left, selected[0].left);
    EXPECT_GT(lines[0].right, selected[0].right);
    EXPECT_EQ(editor.getCaretRect().left, selected[0].right);
    EXPECT_NEAR(lines[0].bottom - lines[0].top, 1, 1e-9);
    EXPECT_LT(lines[0].bottom, selected[0].bottom);
    editor.compose({});
    EXPECT_EQ(shown(editor), "one [two| three");
    EXPECT_EQ(editor.getCaretRect().left, before);
    editor.compose({"に", 0, 0});
    editor.insert("日");
    EXPECT_EQ(editor.getLayout().getText(), "one 日 three");
    editor.undo();
    EXPECT_EQ(shown(editor), "one [two| three");
    editor.compose({"に", 0, 0});
    EXPECT_FALSE(editor.undo() && editor.undo());
    EXPECT_EQ(editor.getLayout().getText(), editor.getText());
    editor.compose({"に", 9, 4});
    editor.move(Motion::TextStart);
    EXPECT_EQ(editor.getLayout().getText(), "one two three");
}

// Of a selected end of a line something is seen, and nothing twice.
TEST(TextEditorTest, SelectionsShowEndsOfLines)
{
    TextEditor editor = parse("a[b\n\ncd|");
    const auto rects = editor.getSelectionRects();
    ASSERT_EQ(rects.size(), 4U);
    for (const auto& a : rects)
        for (const auto& b : rects)
            EXPECT_TRUE(&a == &b || a.right <= b.left || b.right <= a.left || a.bottom <= b.top || b.bottom <= a.top);
}

} // namespace
