// Any bytes as paragraphs, in any style, beside what always holds of carets, lines and glyphs; and then as a user who
// edits them, beside a plain string to which the same is done.

#include "Fuzz.h"

#include <gui/TextComposition.h>
#include <gui/draw/TextEditor.h>

#include <algorithm>
#include <cmath>

namespace fuzz::textlayout
{

using namespace gui::draw;

namespace
{

// What any bytes are in an editor that takes more than one line.
std::string taken(const std::string& bytes)
{
    TextEditor editor;
    editor.paste(bytes);
    return editor.getText();
}

bool isBoundary(const TextLayout& layout, std::size_t offset)
{
    return offset == layout.getText().size() || layout.getPrevious(layout.getNext(offset)) == offset;
}

void edit(Input& input, const std::string& text, const TextStyle& style, const ParagraphStyle& paragraph)
{
    TextEditor editor(style, paragraph);
    editor.setPage(40);
    editor.setText(text.substr(0, 300));
    std::string model = taken(text.substr(0, 300));
    const std::string first = model;
    require(editor.getText() == model, "an editor's text is what it was given");
    for (int i = 0; i < 60 && input.left() > 0; ++i)
    {
        const TextEditor::Range selected = editor.getSelection();
        const std::size_t nSelected = selected.end - selected.begin;
        const auto motion = TextEditor::Motion(input.below(18));
        const TextEditor::Point point{input.take<td::BYTE>() * 1.5, input.take<td::BYTE>() * 1.0};
        std::string typed;
        switch (const unsigned int act = input.below(10))
        {
        case 0:
        case 1:
            typed = taken(input.text(input.below(5)));
            model.replace(selected.begin, nSelected, typed);
            act == 0 ? editor.insert(typed) : editor.paste(typed);
            break;
        case 2:
            require(editor.cut() == model.substr(selected.begin, nSelected), "what is cut was selected");
            model.erase(selected.begin, nSelected);
            break;
        case 3:
        {
            TextEditor::Range gone = selected;
            if (TextEditor other = editor; nSelected == 0)
            {
                other.move(motion, true);
                gone = other.getSelection();
            }
            model.erase(gone.begin, gone.end - gone.begin);
            editor.erase(motion);
            break;
        }
        case 4:
            editor.compose({input.text(input.below(9)), input.below(9), input.below(9)});
            break;
        case 5:
            if (editor.undo())
                require(editor.redo() && editor.getText() == model, "what was undone is done again");
            break;
        case 6:
            editor.press(point, input.below(4), input.below(2) != 0);
            break;
        case 7:
            editor.drag(point);
            break;
        case 8:
            editor.select({input.take<td::BYTE>(), input.take<td::BYTE>()});
            break;
        default:
            editor.move(motion, input.below(2) != 0);
        }
        require(editor.getText() == model, "an edit does what it says");
        const TextLayout layout(model, style);
        require(isBoundary(layout, editor.getCaret().offset), "a caret stands between letters");
        require(isBoundary(layout, editor.getSelection().begin + editor.getSelection().end - editor.getCaret().offset),
                "so does the selection's other end");
        require(std::isfinite(editor.getCaretRect().left), "a caret has a place");
        (void) editor.getSelectionRects();
        (void) editor.getCompositionRects();
        (void) editor.scrollToCaret(point, {50, 20});
    }
    while (editor.undo())
        continue;
    require(editor.getText() == first, "all can be undone");
    while (editor.redo())
        continue;
    require(editor.getText() == model, "and done again");
}

void run(const std::uint8_t* bytes, std::size_t n)
{
    Input input(bytes, n);
    Quiet quiet;
    ParagraphStyle paragraph{.width = input.take<td::BYTE>() * 1.5,
                             .wraps = input.below(4) != 0,
                             .align = Align(input.below(4)),
                             .direction = TextDirection(input.below(3)),
                             .lineHeight = input.below(3) * 1.0,
                             .tabs = {20, 10, 50},
                             .tabDistance = input.below(60) - 10.0,
                             .maxLines = input.below(5),
                             .ellipsis = input.below(2) != 0 ? "…" : ""};
    const std::size_t nFirst = input.take<td::BYTE>();
    const TextStyle plain{.face = Typeface::named("DejaVu Sans"), .size = input.below(30) * 1.0};
    const TextStyle other{.size = 14,
                          .isUnderlined = true,
                          .letterSpacing = input.below(9) - 4.0,
                          .features = {{"smcp"}, {"kern", input.below(2)}},
                          .language = input.below(2) != 0 ? "ja" : "x-\xFF"};
    const std::string first = input.text(nFirst),
                      second = input.text(std::min<std::size_t>(1200, input.left() - input.left() / 4));
    const TextLayout layout({{first, plain}, {second, other}}, paragraph);

    const std::string& text = layout.getText();
    std::size_t at = 0;
    for (const TextLayout::Line& line : layout.getLines())
    {
        require(line.begin == at && line.end >= line.begin, "lines follow each other");
        require(line.bottom >= line.top && std::isfinite(line.bottom), "lines have heights");
        at = line.end;
    }
    require(at == text.size() || paragraph.maxLines > 0, "lines hold all of the text");
    for (const TextLayout::Run& run : layout.getRuns())
    {
        require(run.style < layout.getNumberOfStyles() && bool(run.face), "a run has a style and a face");
        for (const TextLayout::Glyph& glyph : run.glyphs)
            require(run.text + glyph.offset <= text.size() && std::isfinite(glyph.x), "a glyph has a place");
    }
    std::size_t place = 0;
    for (std::size_t i = 0; i < 64; ++i)
    {
        const TextLayout::Caret caret = layout.getCaret({place});
        require(std::isfinite(caret.top.x), "a caret has a place");
        (void) layout.getRight({place});
        (void) layout.getLeft({place, TextLayout::Affinity::Upstream});
        (void) layout.getWord(place);
        require(layout.hitTest(caret.top).offset <= text.size(), "a hit is in the text");
        const std::size_t next = layout.getNext(place);
        require(next > place || next == layout.getNext(text.size()) || !layout.isCut() || next == place,
                "letters go on");
        require(next == place || layout.getPrevious(next) == place, "and back");
        if (next == place)
            break;
        place = next;
    }
    (void) layout.getSelection({input.take<std::uint16_t>(), text.size()});
    (void) layout.getInkBounds();
    edit(input, text, plain, paragraph);
}

const Target cTarget("textlayout", run);

} // namespace

} // namespace fuzz::textlayout
