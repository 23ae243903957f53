#pragma once

#include "ShapedParagraph.h"

#include <gui/draw/ParagraphStyle.h>

#include <hb.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace gui::draw
{

/// Takes a paragraph apart into runs that are shaped each on their own: of one level, script, style and face.
class TextItemizer
{
public:
    /// @param text, spans, styles  as the paragraph's; not owned
    TextItemizer(std::string_view text, std::span<const ParagraphText::Span> spans, std::span<const ShapeStyle> styles);
    ~TextItemizer();
    TextItemizer(const TextItemizer&) = delete;
    TextItemizer& operator=(const TextItemizer&) = delete;

    /// The paragraph's direction, and the levels where directions differ.
    struct Levels
    {
        std::vector<FriBidiCharType> types;
        std::vector<FriBidiLevel> levels; // empty where all are 0
        FriBidiParType direction = FRIBIDI_PAR_LTR;
    };
    Levels findLevels(TextDirection direction) const;

    std::vector<ShapedRun> findRuns(const Levels& levels);

    /// Where the characters are, in bytes.
    const std::vector<std::uint32_t>& getOffsets() const { return _offsets; }

private:
    struct Bracket
    {
        char32_t closing;
        hb_script_t script;
    };

    void findFaces();
    bool needsOtherFaces() const;
    const Typeface* faceFor(std::span<const char32_t> cluster, const ShapeStyle& style) const;
    hb_script_t scriptOf(char32_t character);

    // Memory that the thread's next one has again.
    static thread_local std::vector<char32_t> s_spareCharacters;
    static thread_local std::vector<std::uint32_t> s_spareOffsets;

    std::string_view _text;
    std::span<const ParagraphText::Span> _spans;
    std::span<const ShapeStyle> _styles;
    std::vector<char32_t> _characters;
    std::vector<std::uint32_t> _offsets;
    std::vector<const Typeface*> _faces; // of each character; empty where all have their style's
    hb_script_t _script = HB_SCRIPT_COMMON;
    std::vector<Bracket> _brackets; // that are open
};

} // namespace gui::draw
