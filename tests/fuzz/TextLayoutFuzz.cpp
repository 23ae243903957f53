// Any bytes as paragraphs, in any style, beside what always holds of carets, lines and glyphs.

#include "Fuzz.h"

#include <gui/draw/TextLayout.h>

#include <algorithm>
#include <cmath>

using fuzz::require;
using namespace gui::draw;

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t n)
{
    fuzz::Input input(bytes, n);
    fuzz::Quiet quiet;
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
    const std::string first = input.text(nFirst), second = input.text(1200);
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
    return 0;
}
