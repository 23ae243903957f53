#include "WordShapes.h"

#include "OpenFont.h"
#include "TextBreaks.h"

#include <hb-aat.h>
#include <unicode/uchar.h>

#include <algorithm>
#include <iterator>
#include <utility>

namespace gui::draw
{

namespace
{

// Longer ones are rarely the same.
constexpr std::uint32_t cLongestWord = 64;
constexpr std::size_t cMostGlyphs = std::size_t(1) << 16;
constexpr std::size_t cMostTables = 32;
constexpr std::size_t cMostSeen = std::size_t(1) << 12;
// Shaping a word on its own, and remembering it, takes some four times as long as shaping it as a part of a text.
constexpr std::size_t cWholeFrom = 4;
// A font whose words often don't stand alone is not asked again; some don't in every font.
constexpr std::size_t cMostRefused = 16;

using Buffer = std::unique_ptr<hb_buffer_t, Release<hb_buffer_destroy>>;

// Shaped glyphs stay in the thread's buffer until it is used again.
hb_buffer_t* shapeIntoBuffer(const WordShapes::Plan& plan, std::string_view text, std::uint32_t begin,
                             std::uint32_t end, unsigned int flags)
{
    thread_local const Buffer s_pBuffer(hb_buffer_create());
    hb_buffer_t* const pBuffer = s_pBuffer.get();
    hb_buffer_clear_contents(pBuffer);
    hb_buffer_add_utf8(pBuffer, text.data(), int(text.size()), begin, int(end - begin));
    if (begin == 0)
        flags |= HB_BUFFER_FLAG_BOT;
    if (end == text.size())
        flags |= HB_BUFFER_FLAG_EOT;
    hb_buffer_set_flags(pBuffer, hb_buffer_flags_t(flags));
    hb_buffer_set_direction(pBuffer, plan.direction);
    hb_buffer_set_script(pBuffer, plan.script);
    hb_buffer_set_language(pBuffer, plan.language);
    hb_shape(plan.pFont, pBuffer, plan.features.data(), static_cast<unsigned int>(plan.features.size()));
    return pBuffer;
}

std::span<const hb_glyph_info_t> infosOf(hb_buffer_t* pBuffer)
{
    unsigned int n = 0;
    const hb_glyph_info_t* const infos = hb_buffer_get_glyph_infos(pBuffer, &n);
    return {infos, n};
}

void append(hb_buffer_t* pBuffer, std::vector<ShapedGlyph>& glyphs)
{
    const std::span<const hb_glyph_info_t> infos = infosOf(pBuffer);
    const hb_glyph_position_t* const positions = hb_buffer_get_glyph_positions(pBuffer, nullptr);
    // Offsets are a few em, of at most 16,384 units each.
    const auto toOffset = [](hb_position_t value)
    { return static_cast<std::int16_t>(std::clamp(value, -32768, 32767)); };
    const std::size_t first = glyphs.size();
    glyphs.resize(first + infos.size());
    for (std::size_t i = 0; i < infos.size(); ++i)
        glyphs[first + i] = {.glyph = infos[i].codepoint,
                             .cluster = infos[i].cluster & 0x7FFFFFFFU,
                             .isUnsafeToBreak =
                                 (hb_glyph_info_get_glyph_flags(&infos[i]) & HB_GLYPH_FLAG_UNSAFE_TO_BREAK) != 0,
                             .advance = positions[i].x_advance,
                             .xOffset = toOffset(positions[i].x_offset),
                             .yOffset = toOffset(positions[i].y_offset)};
}

// Whether a letter beside a run may join with one in it.
bool joins(char32_t character)
{
    return character >= 0x80 && u_getIntPropertyValue(UChar32(character), UCHAR_JOINING_TYPE) != U_JT_NON_JOINING;
}

bool isMark(char32_t character) { return (U_GET_GC_MASK(UChar32(character)) & U_GC_M_MASK) != 0; }

// Words, each with the spaces behind it; a mark on a space goes with the space. @return false when one is too long
bool findPieces(std::string_view text, std::uint32_t begin, std::uint32_t end, std::vector<WordShapes::Piece>& pieces)
{
    constexpr unsigned char cFirstByteOfMarks = 0xCC; // the first byte of U+0300
    pieces.clear();
    if (isMark(characterAt(text, begin)) || (begin > 0 && joins(characterBefore(text, begin))) ||
        (end < text.size() && joins(characterAt(text, end))))
        return false;
    for (std::uint32_t first = begin, at = begin; at < end;)
    {
        while (at < end && text[at] != ' ')
            ++at;
        while (at < end && text[at] == ' ')
            ++at;
        if (at - first > cLongestWord)
            return false;
        if (at < end && static_cast<unsigned char>(text[at]) >= cFirstByteOfMarks && mayBeOneLetter(text, at))
            continue;
        pieces.push_back({first, at});
        first = at;
    }
    return true;
}

} // namespace

void shapeByHarfBuzz(const WordShapes::Plan& plan, std::string_view text, std::uint32_t begin, std::uint32_t end,
                     std::vector<ShapedGlyph>& glyphs)
{
    append(shapeIntoBuffer(plan, text, begin, end, 0), glyphs);
}

WordShapes::Table& WordShapes::tableFor(const Plan& plan)
{
    if (_tables.size() >= cMostTables)
        _tables.clear();
    std::string features;
    for (const hb_feature_t& feature : plan.features)
    {
        features.append(reinterpret_cast<const char*>(&feature.tag), sizeof feature.tag);
        features.append(reinterpret_cast<const char*>(&feature.value), sizeof feature.value);
    }
    const auto [found, isNew] = _tables.try_emplace({plan.script, plan.direction, plan.language, features});
    Table& table = found->second;
    if (isNew)
    {
        hb_codepoint_t space = 0;
        hb_face_t* const pFace = hb_font_get_face(plan.pFont);
        // HarfBuzz doesn't tell of Apple's tables how far they look.
        table.mayStandAlone = hb_font_get_nominal_glyph(plan.pFont, ' ', &space) != 0 &&
                              hb_aat_layout_has_substitution(pFace) == 0 && hb_aat_layout_has_positioning(pFace) == 0;
        table.space = space;
        table.spaceAdvance = hb_font_get_glyph_h_advance(plan.pFont, space);
    }
    if (table.glyphs.size() > cMostGlyphs)
    {
        table.words.clear();
        table.glyphs.clear();
    }
    return table;
}

// The word between spaces. It stands alone where HarfBuzz has looked no farther than the nearest of these, in vain or
// not, and where the first one and the word leave each other as they are. What comes of a space behind it is its own.
const WordShapes::Word& WordShapes::Table::add(const Plan& plan, std::string_view word)
{
    // Two more spaces than there may be in the text: HarfBuzz marks what it looks at together, from the first to the
    // last, and with one alone, to look at it would be to look at the end.
    const std::size_t nAdded = word.ends_with(' ') ? 2 : 3;
    const std::string text = ' ' + std::string(word) + std::string(nAdded, ' ');
    const auto end = static_cast<std::uint32_t>(text.size());
    hb_buffer_t* const pBuffer = shapeIntoBuffer(plan, text, 0, end, HB_BUFFER_FLAG_PRODUCE_UNSAFE_TO_CONCAT);
    std::vector<ShapedGlyph> shaped;
    append(pBuffer, shaped);
    const std::span<const hb_glyph_info_t> infos = infosOf(pBuffer);
    const bool isBackward = HB_DIRECTION_IS_BACKWARD(plan.direction);
    const std::size_t n = shaped.size(), last = n - std::min(n, nAdded);
    if (isBackward)
        std::ranges::reverse(shaped);
    const auto isSpaceAt = [&](std::size_t at, std::uint32_t cluster)
    {
        const ShapedGlyph& glyph = shaped[at];
        return glyph.glyph == space && glyph.advance == spaceAdvance && glyph.xOffset == 0 && glyph.yOffset == 0 &&
               glyph.cluster == cluster;
    };
    const auto isSafe = [&](std::size_t at)
    {
        const hb_glyph_info_t& info = infos[isBackward ? n - 1 - at : at];
        return (hb_glyph_info_get_glyph_flags(&info) & HB_GLYPH_FLAG_UNSAFE_TO_CONCAT) == 0;
    };
    bool isAlone = last > 1 && isSafe(0) && isSafe(n - 1) && isSafe(n - 2) && isSpaceAt(0, 0) &&
                   shaped[1].cluster > 0 && shaped[1].isUnsafeToBreak == 0 && shaped[last].isUnsafeToBreak == 0;
    for (std::size_t i = last; isAlone && i < n; ++i)
        isAlone = isSpaceAt(i, end - static_cast<std::uint32_t>(n - i)) && shaped[i - 1].cluster < shaped[i].cluster;
    Word entry{static_cast<std::uint32_t>(glyphs.size()), 0};
    if (isAlone)
    {
        entry.nGlyphs = static_cast<std::uint32_t>(last - 1);
        for (std::size_t i = 1; i < last; ++i)
        {
            ShapedGlyph glyph = shaped[isBackward ? last - i : i];
            glyph.cluster = (glyph.cluster - 1) & 0x7FFFFFFFU;
            glyphs.push_back(glyph);
        }
    }
    else
        ++nRefused;
    return words.emplace(word, entry).first->second;
}

// Whether a word was seen before, unless too many were since then.
bool WordShapes::Table::see(std::string_view word)
{
    seen.resize(cMostSeen);
    const std::size_t hash = Hash()(word);
    const auto rest = static_cast<std::uint32_t>(hash / cMostSeen | 1);
    return std::exchange(seen[hash % cMostSeen], rest) == rest;
}

bool WordShapes::shape(const Plan& plan, std::string_view text, std::uint32_t begin, std::uint32_t end,
                       std::vector<ShapedGlyph>& glyphs)
{
    thread_local std::vector<Piece> s_pieces;
    // Against its script's direction, HarfBuzz goes by whether there are numbers, but no letters, in the whole run.
    const hb_direction_t native = hb_script_get_horizontal_direction(plan.script);
    if ((native != HB_DIRECTION_INVALID && native != plan.direction) || !findPieces(text, begin, end, s_pieces))
        return false;
    // From left to right.
    if (HB_DIRECTION_IS_BACKWARD(plan.direction))
        std::ranges::reverse(s_pieces);
    const std::lock_guard lock(_mutex);
    Table& table = tableFor(plan);
    if (!table.mayStandAlone || table.nRefused > cMostRefused + table.words.size() / 16)
        return false;
    thread_local std::vector<const Word*> s_words;
    s_words.clear();
    std::size_t nNew = 0;
    const auto wordOf = [text](const Piece& piece) { return text.substr(piece.begin, piece.end - piece.begin); };
    for (const Piece& piece : s_pieces)
    {
        const auto found = table.words.find(wordOf(piece));
        s_words.push_back(found != table.words.end() ? &found->second : nullptr);
        nNew += found == table.words.end();
        if (found != table.words.end() && found->second.nGlyphs == 0)
            return false;
    }
    if (nNew * cWholeFrom > s_pieces.size())
    {
        std::size_t nUnseen = 0;
        for (std::size_t i = 0; i < s_pieces.size(); ++i)
            nUnseen += s_words[i] == nullptr && !table.see(wordOf(s_pieces[i]));
        if (nUnseen * cWholeFrom > s_pieces.size())
            return false;
    }
    for (std::size_t i = 0; nNew > 0 && i < s_pieces.size(); ++i)
        if (s_words[i] == nullptr)
        {
            // It may have come twice.
            const std::string_view word = wordOf(s_pieces[i]);
            const auto found = table.words.find(word);
            s_words[i] = found != table.words.end() ? &found->second : &table.add(plan, word);
            if (s_words[i]->nGlyphs == 0)
                return false;
        }
    for (std::size_t i = 0; i < s_pieces.size(); ++i)
    {
        const auto from = table.glyphs.begin() + std::ptrdiff_t(s_words[i]->first);
        std::transform(from, from + std::ptrdiff_t(s_words[i]->nGlyphs), std::back_inserter(glyphs),
                       [begin = s_pieces[i].begin](ShapedGlyph glyph)
                       {
                           glyph.cluster = (glyph.cluster + begin) & 0x7FFFFFFFU;
                           return glyph;
                       });
    }
    return true;
}

} // namespace gui::draw
