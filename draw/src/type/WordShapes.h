#pragma once

#include "ShapedParagraph.h"

#include <hb.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <vector>

namespace gui::draw
{

/// Words that a font has shaped, each with the spaces behind it. A text says most of its words more than once, and
/// HarfBuzz knows which words look the same whatever is beside them: those are shaped once. Text of which many words
/// are new is shaped as a whole, which takes less time than to shape its words; they are remembered when they come
/// again. For any thread.
class WordShapes
{
public:
    /// How text is to be shaped.
    struct Plan
    {
        hb_font_t* pFont;
        hb_script_t script;
        hb_direction_t direction;
        hb_language_t language;
        std::vector<hb_feature_t> features;
    };

    /// Appends the glyphs of a part of a text.
    /// @return false, with nothing appended, when its words don't stand alone
    bool shape(const Plan& plan, std::string_view text, std::uint32_t begin, std::uint32_t end,
               std::vector<ShapedGlyph>& glyphs);

    /// A part of a text, in bytes.
    struct Piece
    {
        std::uint32_t begin, end;
    };

private:
    struct Word
    {
        std::uint32_t first, nGlyphs; // of the table's; none where the word doesn't stand alone
    };
    struct Hash
    {
        using is_transparent = void;
        std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
    };
    // The words of one script, direction, language and choice of features.
    struct Table
    {
        std::unordered_map<std::string, Word, Hash, std::equal_to<>> words;
        std::vector<ShapedGlyph> glyphs; // clusters count from the word's beginning
        std::vector<std::uint32_t> seen; // hashes of words that came once, each where it has its place
        std::size_t nRefused = 0;
        bool mayStandAlone = false;

        std::uint32_t space = 0; // the glyph
        std::int32_t spaceAdvance = 0;

        const Word& add(const Plan& plan, std::string_view word);
        bool see(std::string_view word);
    };
    using Key = std::tuple<std::uint32_t, int, hb_language_t, std::string>;

    Table& tableFor(const Plan& plan);

    std::mutex _mutex;
    std::map<Key, Table> _tables;
};

/// Has HarfBuzz shape a part of a text, with its neighbours in view.
void shapeByHarfBuzz(const WordShapes::Plan& plan, std::string_view text, std::uint32_t begin, std::uint32_t end,
                     std::vector<ShapedGlyph>& glyphs);

} // namespace gui::draw
