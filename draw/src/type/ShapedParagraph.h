#pragma once

#include "TextBreaks.h"

#include <gui/draw/ParagraphStyle.h>
#include <gui/draw/TextStyle.h>
#include <gui/draw/Typeface.h>

#include <fribidi.h>
#include <hb.h>

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace gui::draw
{

/// Shown where a line ends behind it.
constexpr std::string_view cSoftHyphen = "\u00AD";

/// What of a style decides which glyphs there are, and where.
struct ShapeStyle
{
    Typeface face;
    double size;
    double letterSpacing;
    std::vector<FontFeature> features;
    std::string language;

    /// With the system's face for none, and without sizes that are none.
    static ShapeStyle of(const TextStyle& style);

    bool operator==(const ShapeStyle&) const = default;

    double scale() const
    {
        const double unitsPerEm = face.getMetrics().unitsPerEm;
        return unitsPerEm > 0 ? size / unitsPerEm : 0;
    }
};

/// A paragraph before it is shaped. What is in it lives during the call only.
struct ParagraphText
{
    struct Span
    {
        std::uint32_t end;   // of its text
        std::uint32_t style; // in styles; neighbours may have the same
    };

    std::string_view text; // well-formed, without what ends the paragraph
    std::span<const Span> spans;
    std::span<const ShapeStyle> styles;
    TextDirection direction;
};

/// A glyph as HarfBuzz places it, in font units.
struct ShapedGlyph
{
    std::uint32_t glyph;
    std::uint32_t cluster : 31;        // in bytes from the paragraph's beginning
    std::uint32_t isUnsafeToBreak : 1; // text that is taken apart before it has to be shaped anew
    std::int32_t advance;
    std::int16_t xOffset;
    std::int16_t yOffset; // upwards
};

/// Text of one face, style, script and direction.
struct ShapedRun
{
    enum class Kind : td::BYTE
    {
        Text,
        Tab,
        Invisible // control characters, and all text where there is no face; has no glyphs
    };

    std::uint32_t begin, end; // in bytes
    std::uint32_t style;
    std::uint32_t firstGlyph, nGlyphs; // of the paragraph's, from left to right
    std::uint32_t firstCluster;        // of the paragraph's; the next run's is where its own end
    hb_script_t script;
    Typeface face;
    Kind kind;
    FriBidiLevel level;

    bool isRightToLeft() const { return (level & 1) != 0; }
    /// From the face's units, which may be another one than the style's.
    double scaleIn(const ShapeStyle& shapeStyle) const
    {
        const double unitsPerEm = face.getMetrics().unitsPerEm;
        return unitsPerEm > 0 ? shapeStyle.size / unitsPerEm : 0;
    }
};

/// Glyphs that belong together.
struct ShapedCluster
{
    double advance;           // with letter spacing; a tab's is known in its line
    std::uint32_t begin;      // of its text
    std::uint32_t firstGlyph; // of the run's, from left to right
    std::uint32_t nGlyphs;
    bool hangs;       // may stand out at a line's end
    bool isWordSpace; // is wider in a justified line
    bool isTab;
    bool isUnsafeToBreak;
};

/// A cluster before which a line may end, or has to.
struct ClusterBreak
{
    std::uint32_t cluster;
    bool isHard;
    bool isAfterSoftHyphen;
};

/// A paragraph's glyphs, whatever the width of its lines will be. Unchanged once it is made; for any thread.
class ShapedParagraph
{
public:
    explicit ShapedParagraph(const ParagraphText& paragraph);

    const std::string& getText() const { return _text; }
    const std::vector<ShapeStyle>& getStyles() const { return _styles; }
    const std::vector<ParagraphText::Span>& getSpans() const { return _spans; }
    /// In the text's order.
    const std::vector<ShapedRun>& getRuns() const { return _runs; }
    const std::vector<ShapedGlyph>& getGlyphs() const { return _glyphs; }
    std::span<const ShapedGlyph> glyphsOf(const ShapedRun& run) const
    {
        return std::span(_glyphs).subspan(run.firstGlyph, run.nGlyphs);
    }
    /// In the text's order, those of one run after those of another.
    const std::vector<ShapedCluster>& getClusters() const { return _clusters; }
    /// Those of a part of a run that was shaped anew.
    void addClusters(const ShapedRun& run, std::uint32_t begin, std::uint32_t end, std::span<const ShapedGlyph> glyphs,
                     std::vector<ShapedCluster>& clusters) const;
    bool isRightToLeft() const { return _isRightToLeft; }

    /// Whether runs have levels of their own; else all have 0.
    bool hasLevels() const { return _hasLevels; }
    /// Where the spaces at a line's end begin, which have the paragraph's level, whichever run they are in.
    std::uint32_t findSpacesAtEnd(std::uint32_t begin, std::uint32_t end) const;

    /// These are found when they are first asked for.
    const std::vector<ClusterBreak>& getLineBreaks() const;
    const std::vector<std::uint32_t>& getGraphemes() const; ///< the beginning too
    const std::vector<std::uint32_t>& getWords() const;     ///< the beginning too

    /// A part of a run, shaped without what is beside it.
    std::vector<ShapedGlyph> shapePart(const ShapedRun& run, std::uint32_t begin, std::uint32_t end) const;
    /// Another text in a run's place, such as a hyphen: in the run's face, or else in one that has it.
    /// @param run  its face becomes the one that was taken
    std::vector<ShapedGlyph> shapeOther(ShapedRun& run, std::string_view text) const;

    /// What it takes of memory, about.
    std::size_t getBytes() const;

private:
    void shapeRun(ShapedRun& run);
    void findSpaces(std::span<const FriBidiCharType> types, std::span<const std::uint32_t> offsets);

    std::string _text;
    std::vector<ParagraphText::Span> _spans;
    std::vector<ShapeStyle> _styles;
    std::vector<ShapedRun> _runs;
    std::vector<ShapedGlyph> _glyphs;
    std::vector<ShapedCluster> _clusters;
    // Spaces, and what counts as such at a line's end, where directions differ.
    struct Spaces
    {
        std::uint32_t begin, end;
    };
    std::vector<Spaces> _spaces;
    bool _hasLevels = false;
    bool _isRightToLeft = false;

    mutable std::mutex _mutex; // of the three below
    mutable std::optional<std::vector<ClusterBreak>> _lineBreaks;
    mutable std::optional<std::vector<std::uint32_t>> _graphemes;
    mutable std::optional<std::vector<std::uint32_t>> _words;
};

} // namespace gui::draw
