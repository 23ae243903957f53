#pragma once

#include "ParagraphStyle.h"
#include "TextStyle.h"

#include <td/Export.h>
#include <td/Point.h>
#include <td/RectNormalized.h>
#include <td/Size.h>
#include <td/Types.h>

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace gui::draw
{

struct LaidLine;
struct LaidParagraph;

/// A text in one style, as a part of a TextLayout's.
struct TextSpan
{
    std::string_view text; ///< read during the call only
    TextStyle style{};
};

/// Text laid out: in any script and direction, in several styles, wrapped by Unicode's rules; where each glyph stands,
/// and where carets, selections and the pointer are in it.
///
///     #include <gui/draw/TextLayout.h>
///     #include <cstdio>
///
///     int main()
///     {
///         using namespace gui::draw;
///         const TextStyle plain{.size = 16}, strong{.face = Typeface::named("serif", {.weight = 700}), .size = 16};
///         const TextLayout layout({{"Letters go left, ", plain}, {"and שמאלה too", strong}}, {.width = 120});
///         for (const TextLayout::Run& run : layout.getRuns())
///             for (const TextLayout::Glyph& glyph : run.glyphs)
///                 std::printf("%s glyph %u at %g, %g\n", run.face.getFamily().c_str(), unsigned(glyph.glyph),
///                             run.origin.x + double(glyph.x), run.origin.y + double(glyph.y));
///         return 0;
///     }
///
/// It is a value that doesn't change: another text, style or width is another layout. That is cheap where it can be:
/// paragraphs are remembered, those last used up to some 32 MiB for the whole program (60 to 120 bytes a letter), so a
/// layout of which one paragraph is new costs as much as that one, and a new width costs no shaping. For any thread.
///
/// Coordinates begin at the top left corner, y growing downwards; lengths are in the unit of the first style. Lines
/// stand below each other without gaps. Places in the text are bytes of getText(), from 0 to its size.
///
/// Paragraphs end at U+000A, U+000D (or both), U+2029 and U+0085; U+2028 ends a line. The order of letters is Unicode's
/// bidirectional algorithm (FriBidi), their shapes are HarfBuzz's, lines break where ICU says (for Thai and its like by
/// dictionary), and inside of a word only where a word is wider than the line. Spaces at a line's end stand out.
/// Characters that a face lacks come from the face's others (see Typeface), emoji in colour if there is a face for
/// them. Control characters are not shown; a soft hyphen where a line ends is.
class GUIGL_API TextLayout
{
public:
    using Point = td::Point<double>;         ///< from the top left corner, y downwards
    using Rect = td::RectNormalized<double>; ///< likewise

    /// A glyph at its place.
    struct Glyph
    {
        std::uint32_t glyph;  ///< in the run's face
        std::uint32_t offset; ///< of the cluster that it belongs to, from the run's text on
        float x;              ///< from the run's origin to the glyph's own
        float y;
        float advance; ///< how far the pen goes on, with spacing
    };

    /// Glyphs of one face, size and style, from left to right in one line: what there is to draw.
    struct Run
    {
        Typeface face;
        double size;                   ///< of an em
        std::size_t style;             ///< of the spans' styles, see getStyle
        Point origin;                  ///< the line's left end on its base line
        std::span<const Glyph> glyphs; ///< live as long as the layout or a copy of it
        std::size_t text;              ///< what the glyphs' offsets count from
        bool isRightToLeft;
    };

    /// A line under text, or through it.
    struct Decoration
    {
        Rect rect;
        std::size_t style; ///< whose paint it has
    };

    /// A line of text.
    struct Line
    {
        std::size_t begin; ///< of the text
        std::size_t end;   ///< with spaces, the line's end and what was cut; the next line begins there
        double left;       ///< where its letters begin
        double width;      ///< of its letters, without spaces at its end
        double top;
        double baseline;
        double bottom;      ///< the next line's top
        bool isRightToLeft; ///< whether its paragraph is
    };

    /// Which of the two places an offset has where lines wrap and directions change.
    enum class Affinity : td::BYTE
    {
        Downstream, ///< before the letter that follows
        Upstream    ///< behind the letter before
    };

    /// A place for a caret in the text.
    struct Position
    {
        std::size_t offset = 0;
        Affinity affinity = Affinity::Downstream;

        bool operator==(const Position&) const = default;
    };

    /// A caret's place in the plane.
    struct Caret
    {
        Point top;
        double bottom;
        bool isRightToLeft; ///< whether what is written here goes on to the left
    };

    /// A piece of the text.
    struct Range
    {
        std::size_t begin = 0;
        std::size_t end = 0;

        bool operator==(const Range&) const = default;
    };

    TextLayout() = default; ///< no text, without a line
    /// @param text  UTF-8; each malformed sequence counts as U+FFFD. Longer than 1 GiB is an assertion, and no text
    TextLayout(std::string_view text, const TextStyle& style, const ParagraphStyle& paragraph = {});
    /// The spans' texts one after the other. Characters that make one letter together may be in several spans: the
    /// letter has the style of the first one.
    TextLayout(std::span<const TextSpan> spans, const ParagraphStyle& paragraph = {});
    TextLayout(std::initializer_list<TextSpan> spans, const ParagraphStyle& paragraph = {});

    /// What was laid out, well-formed.
    const std::string& getText() const { return _text; }
    /// Of a span, in the order they were given.
    const TextStyle& getStyle(std::size_t span) const { return _styles.at(span).style; }
    std::size_t getNumberOfStyles() const { return _styles.size(); }
    const ParagraphStyle& getParagraphStyle() const { return _paragraphStyle; }

    /// Line by line, each from left to right.
    std::span<const Run> getRuns() const { return _runs; }
    std::span<const Decoration> getDecorations() const { return _decorations; }

    /// At least one, an empty one when the text is empty, unless it was made of nothing at all.
    std::span<const Line> getLines() const { return _lines; }
    /// Of the lines: the paragraph style's width, or else that of the longest line, and the sum of their heights.
    td::Size<double> getSize() const { return _size; }
    /// The longest line's width, without spaces at its end, whatever width there is to fill.
    double getTextWidth() const { return _textWidth; }
    /// Around all that is drawn, without halo and emboldening; empty when there is nothing to be seen. Takes a look at
    /// every glyph.
    std::optional<Rect> getInkBounds() const;
    /// Whether lines were left out or cut (see ParagraphStyle::maxLines and ellipsis).
    bool isCut() const { return _isCut; }

    /// Where the caret of a place stands. Offsets within a letter count as its beginning, those beyond the text, or in
    /// what was cut, as the end of what is there.
    Caret getCaret(Position position) const;
    /// The line that a caret is in.
    std::size_t getLineAt(Position position) const;
    /// The place whose caret is the nearest to a point: in the line at its height (the first or last one above or
    /// below), and there by x.
    Position hitTest(Point point) const;
    /// What is to be painted behind a piece of selected text: in each line rectangles of its height, from left to
    /// right, none beside another one.
    std::vector<Rect> getSelection(Range range) const;

    /// The next place for a caret, and the one before; by letters as readers see them (grapheme clusters). At the ends
    /// it stays.
    std::size_t getNext(std::size_t offset) const;
    std::size_t getPrevious(std::size_t offset) const;
    /// The place that is seen to the right, or left, of a caret; into the line below or above at a line's ends.
    Position getRight(Position position) const;
    Position getLeft(Position position) const;
    /// The word, or the spaces or signs between words, that an offset is in or at the beginning of, by Unicode's rules;
    /// at the end of a paragraph the last one. Its ends are places for carets.
    Range getWord(std::size_t offset) const;

private:
    struct Style
    {
        TextStyle style;
        std::size_t end; // of its text
    };
    struct Paragraph
    {
        std::size_t begin; // of its text
        std::size_t end;   // without what ends it
        std::size_t firstLine;
        std::size_t firstStyle;
        std::shared_ptr<const LaidParagraph> pLaid;
    };
    struct Box;

    void lay(std::span<const TextSpan> spans);
    void layParagraphs();
    void place();
    void placeLine(const Paragraph& paragraph, const LaidLine& laid, std::size_t end);
    void decorate(std::size_t style, Point origin, double left, double right);
    const Paragraph& paragraphAt(std::size_t offset) const;
    std::vector<Box> boxesOf(std::size_t line) const;
    const Box* boxOf(const std::vector<Box>& boxes, Position position, bool& isBehind) const;
    std::size_t toLetter(std::size_t offset) const;
    Position step(Position position, bool isToRight) const;

    std::string _text;
    std::vector<Style> _styles;
    ParagraphStyle _paragraphStyle;
    std::vector<Paragraph> _paragraphs;
    std::vector<Line> _lines;
    std::vector<Run> _runs;
    std::vector<Decoration> _decorations;
    td::Size<double> _size;
    double _textWidth = 0;
    bool _isCut = false;
};

} // namespace gui::draw
