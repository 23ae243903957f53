#include "TextItemizer.h"

#include "TextBreaks.h"
#include "TypefaceImpl.h"

#include <vo/UTFConverter.h>

#include <unicode/uchar.h>

#include <algorithm>
#include <array>

namespace gui::draw
{

namespace
{

// As many open brackets as the bidirectional algorithm follows.
constexpr std::size_t cMaxBrackets = 63;

constexpr std::size_t cLongestCluster = 32; // of characters, for those that never end
constexpr char32_t cFirstMark = 0x300;      // there is none before
constexpr char32_t cTextSelector = 0xFE0E, cEmojiSelector = 0xFE0F;

// Whether a character can have or give a level other than 0: all right-to-left scripts and the controls that set
// levels. Some of the others that are let through have none.
bool mayHaveLevel(char32_t c)
{
    return c >= 0x590 && ((c < 0x900) || c == 0x200F || (c >= 0x202A && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069) ||
                          (c >= 0xFB1D && c < 0xFE00) || (c >= 0xFE70 && c < 0xFF00) || (c >= 0x10800 && c < 0x11000) ||
                          (c >= 0x1E800 && c < 0x1F000));
}

// What stands between letters of one direction has that direction too (Unicode's report 9, rules W1, W6 and N1), and
// all rules before leave it alone, unless it is a bracket, a number or a control. FriBidi takes as long as there are
// pieces of different types, so that a text of words is best told to it as one.
std::vector<FriBidiCharType> joinLetters(const std::vector<FriBidiCharType>& types,
                                         const std::vector<FriBidiBracketType>& brackets)
{
    std::vector<FriBidiCharType> joined = types;
    for (std::size_t i = 0; i < joined.size();)
    {
        const FriBidiCharType letter = joined[i++];
        if (!FRIBIDI_IS_LETTER(letter))
            continue;
        while (i < joined.size() && joined[i] == FRIBIDI_TYPE_NSM)
            joined[i++] = letter;
        std::size_t next = i;
        while (next < joined.size() && brackets[next] == FRIBIDI_NO_BRACKET &&
               (joined[next] == FRIBIDI_TYPE_WS || joined[next] == FRIBIDI_TYPE_CS || joined[next] == FRIBIDI_TYPE_ES ||
                joined[next] == FRIBIDI_TYPE_ON))
            ++next;
        if (next < joined.size() && FRIBIDI_IS_LETTER(joined[next]) &&
            FRIBIDI_IS_RTL(joined[next]) == FRIBIDI_IS_RTL(letter))
            std::fill(joined.begin() + std::ptrdiff_t(i), joined.begin() + std::ptrdiff_t(next), letter);
        i = next;
    }
    return joined;
}

ShapedRun::Kind kindOf(char32_t c)
{
    if (c == '\t')
        return ShapedRun::Kind::Tab;
    return c < 0x20 || (c >= 0x7F && c < 0xA0) || c == 0x2028 || c == 0x2029 ? ShapedRun::Kind::Invisible
                                                                             : ShapedRun::Kind::Text;
}

hb_script_t findScript(char32_t c)
{
    constexpr std::size_t cFirst = 0x800;
    static const auto s_first = []
    {
        std::array<hb_script_t, cFirst> first{};
        for (std::size_t i = 0; i < cFirst; ++i)
            first[i] = hb_unicode_script(hb_unicode_funcs_get_default(), hb_codepoint_t(i));
        return first;
    }();
    return c < cFirst ? s_first[c] : hb_unicode_script(hb_unicode_funcs_get_default(), c);
}

bool isIgnorable(char32_t c)
{
    return c >= 0xAD && u_hasBinaryProperty(UChar32(c), UCHAR_DEFAULT_IGNORABLE_CODE_POINT) != 0;
}

// Whether a face shows a character, HarfBuzz's ways of getting along without it included.
bool shows(const TypefaceImpl& face, char32_t c)
{
    if (face.has(c) || isIgnorable(c))
        return true;
    if (c < 0xA0)
        return false;
    hb_unicode_funcs_t* const pUnicode = hb_unicode_funcs_get_default();
    if (hb_unicode_general_category(pUnicode, c) == HB_UNICODE_GENERAL_CATEGORY_SPACE_SEPARATOR)
        return face.has(' ');
    if (c == 0x2011)
        return face.has(0x2010);
    hb_codepoint_t first = 0, second = 0;
    return hb_unicode_decompose(pUnicode, c, &first, &second) != 0 && shows(face, first) &&
           (second == 0 || face.has(second));
}

bool showsAll(const TypefaceImpl& face, std::span<const char32_t> cluster)
{
    for (std::size_t i = 0; i < cluster.size(); ++i)
        if (!shows(face, cluster[i]))
        {
            // A mark that makes another character of the one before.
            hb_codepoint_t both = 0;
            if (i == 0 || hb_unicode_compose(hb_unicode_funcs_get_default(), cluster[i - 1], cluster[i], &both) == 0 ||
                !face.has(both))
                return false;
        }
    return true;
}

// Chinese characters and Korean syllables, of which texts have many, and none of which is or becomes an emoji.
bool isIdeograph(char32_t c) { return (c >= 0x3400 && c < 0xA000) || (c >= 0xAC00 && c < 0xD7A4); }

bool wantsEmoji(std::span<const char32_t> cluster)
{
    if (cluster.size() == 1 && isIdeograph(cluster[0]))
        return false;
    if (std::ranges::find(cluster, cEmojiSelector) != cluster.end())
        return true;
    return cluster[0] >= 0x231A && u_hasBinaryProperty(UChar32(cluster[0]), UCHAR_EMOJI_PRESENTATION) != 0 &&
           std::ranges::find(cluster, cTextSelector) == cluster.end();
}

} // namespace

thread_local std::vector<char32_t> TextItemizer::s_spareCharacters;
thread_local std::vector<std::uint32_t> TextItemizer::s_spareOffsets;

TextItemizer::TextItemizer(std::string_view text, std::span<const ParagraphText::Span> spans,
                           std::span<const ShapeStyle> styles)
    : _text(text)
    , _spans(spans)
    , _styles(styles)
{
    _characters.swap(s_spareCharacters);
    _offsets.swap(s_spareOffsets);
    _characters.clear();
    _offsets.clear();
    _characters.reserve(text.size());
    _offsets.reserve(text.size());
    const auto* const begin = reinterpret_cast<const unsigned char*>(text.data());
    const unsigned char* const end = begin + text.size();
    for (const unsigned char* p = begin; p < end;)
    {
        _offsets.push_back(static_cast<std::uint32_t>(p - begin));
        _characters.push_back(vo::UTFConverter::next(p, end));
    }
}

TextItemizer::~TextItemizer()
{
    s_spareCharacters.swap(_characters);
    s_spareOffsets.swap(_offsets);
}

TextItemizer::Levels TextItemizer::findLevels(TextDirection direction) const
{
    Levels result;
    if (direction != TextDirection::RightToLeft && std::ranges::none_of(_characters, mayHaveLevel))
        return result;
    result.direction = direction == TextDirection::Auto          ? FRIBIDI_PAR_ON
                       : direction == TextDirection::LeftToRight ? FRIBIDI_PAR_LTR
                                                                 : FRIBIDI_PAR_RTL;
    const auto n = static_cast<FriBidiStrIndex>(_characters.size());
    const std::vector<FriBidiChar> characters(_characters.begin(), _characters.end());
    std::vector<FriBidiBracketType> brackets(_characters.size());
    result.types.resize(_characters.size());
    result.levels.resize(_characters.size());
    fribidi_get_bidi_types(characters.data(), n, result.types.data());
    fribidi_get_bracket_types(characters.data(), n, result.types.data(), brackets.data());
    const std::vector<FriBidiCharType> types = joinLetters(result.types, brackets);
    // Without memory all is read from left to right.
    if (fribidi_get_par_embedding_levels_ex(types.data(), brackets.data(), n, &result.direction,
                                            result.levels.data()) == 0)
        return {};
    if (result.direction == FRIBIDI_PAR_ON)
        result.direction = FRIBIDI_PAR_LTR;
    return result;
}

// Unicode's report 24: common and inherited characters have the script before them, those at the beginning the one
// behind, and a closing bracket that of the opening one.
hb_script_t TextItemizer::scriptOf(char32_t c)
{
    if (c >= 0x4E00 && c < 0x9FA6)
        return _script = HB_SCRIPT_HAN;
    if (c < 0x80)
    {
        if ((c | 0x20U) >= 'a' && (c | 0x20U) <= 'z')
            return _script = HB_SCRIPT_LATIN;
        if (c != '(' && c != ')' && c != '[' && c != ']' && c != '{' && c != '}')
            return _script;
    }
    const hb_script_t script = findScript(c);
    if (script != HB_SCRIPT_COMMON && script != HB_SCRIPT_INHERITED)
        return _script = script;
    const int bracket = u_getIntPropertyValue(UChar32(c), UCHAR_BIDI_PAIRED_BRACKET_TYPE);
    if (bracket == U_BPT_OPEN && _brackets.size() < cMaxBrackets)
        _brackets.push_back({char32_t(u_getBidiPairedBracket(UChar32(c))), _script});
    else if (bracket == U_BPT_CLOSE)
        for (std::size_t i = _brackets.size(); i-- > 0;)
            if (_brackets[i].closing == c)
            {
                // Opened before there was any letter, it goes on with what there is now.
                if (_brackets[i].script != HB_SCRIPT_COMMON)
                    _script = _brackets[i].script;
                _brackets.resize(i);
                break;
            }
    return _script;
}

// Of several faces the first that shows the whole cluster; else one that shows its first character.
const Typeface* TextItemizer::faceFor(std::span<const char32_t> cluster, const ShapeStyle& style) const
{
    const TypefaceImpl* const pOwn = TypefaceImpl::of(style.face);
    if (wantsEmoji(cluster))
        if (const Typeface* const pFace =
                pOwn->font().isColored() && pOwn->has(cluster[0])
                    ? &style.face
                    : pOwn->fallbackFor(cluster[0], TypefaceImpl::Presentation::Emoji, style.language))
            return pFace;
    if (showsAll(*pOwn, cluster))
        return &style.face;
    const Typeface* pFirst = pOwn->has(cluster[0]) ? &style.face : nullptr;
    for (const char32_t c : cluster)
    {
        if (shows(*pOwn, c))
            continue;
        const Typeface* const pFace = pOwn->fallbackFor(c, TypefaceImpl::Presentation::Text, style.language);
        if (pFace != nullptr && showsAll(*TypefaceImpl::of(*pFace), cluster))
            return pFace;
        if (pFirst == nullptr)
            pFirst = pFace;
    }
    return pFirst != nullptr ? pFirst : &style.face;
}

bool TextItemizer::needsOtherFaces() const
{
    std::size_t at = 0;
    for (const ParagraphText::Span& span : _spans)
    {
        const TypefaceImpl* const pFace = TypefaceImpl::of(_styles[span.style].face);
        for (; at < _characters.size() && _offsets[at] < span.end; ++at)
        {
            const char32_t c = _characters[at];
            if (pFace != nullptr && kindOf(c) == ShapedRun::Kind::Text &&
                (!pFace->has(c) || c == cEmojiSelector || (c >= 0x231A && wantsEmoji({&c, 1}))))
                return true;
        }
    }
    return false;
}

void TextItemizer::findFaces()
{
    // Most paragraphs need no other face, and so no clusters.
    if (!needsOtherFaces())
        return;
    _faces.resize(_characters.size());
    // Of single characters that were looked for lately.
    struct Known
    {
        const ShapeStyle* pStyle;
        char32_t character;
        const Typeface* pFace;
    };
    std::array<Known, 64> known{};
    std::size_t span = 0;
    for (std::size_t begin = 0, end = 0; begin < _characters.size(); begin = end)
    {
        // What may be one letter has one face; whether it is one doesn't matter.
        end = begin + 1;
        while (end < _characters.size() && end - begin < cLongestCluster && _characters[end] >= cFirstMark &&
               mayBeOneLetter(_characters[end - 1], _characters[end]))
            ++end;
        while (_offsets[begin] >= _spans[span].end)
            ++span;
        const ShapeStyle& style = _styles[_spans[span].style];
        const Typeface* pFace = &style.face;
        if (end - begin == 1 && style.face)
        {
            Known& found = known[_characters[begin] % known.size()];
            if (found.pStyle != &style || found.character != _characters[begin])
                found = {&style, _characters[begin], faceFor({&_characters[begin], 1}, style)};
            pFace = found.pFace;
        }
        else if (style.face)
            pFace = faceFor(std::span(_characters).subspan(begin, end - begin), style);
        std::fill(_faces.begin() + std::ptrdiff_t(begin), _faces.begin() + std::ptrdiff_t(end), pFace);
    }
    // Spaces between words of another face are that face's too, so that the words are one run; not between emoji, whose
    // face has a space as wide as themselves.
    for (std::size_t i = 1; i < _faces.size(); ++i)
        if (_characters[i] == ' ' && _faces[i - 1] != _faces[i] && _faces[i - 1] != nullptr)
        {
            std::size_t next = i;
            while (next < _faces.size() && _characters[next] == ' ')
                ++next;
            if (next < _faces.size() && _faces[next] != nullptr && *_faces[next] == *_faces[i - 1] &&
                TypefaceImpl::of(*_faces[next])->has(' ') && !TypefaceImpl::of(*_faces[next])->font().isColored())
                std::fill(_faces.begin() + std::ptrdiff_t(i), _faces.begin() + std::ptrdiff_t(next), _faces[next]);
            i = next;
        }
}

std::vector<ShapedRun> TextItemizer::findRuns(const Levels& levels)
{
    findFaces();
    std::vector<ShapedRun> runs;
    std::size_t span = 0;
    const Typeface* pFace = nullptr;
    for (std::size_t i = 0; i < _characters.size(); ++i)
    {
        while (_offsets[i] >= _spans[span].end)
            ++span;
        const std::uint32_t style = _spans[span].style;
        const Typeface* const pNextFace = _faces.empty() ? &_styles[style].face : _faces[i];
        const ShapedRun::Kind kind = *pNextFace ? kindOf(_characters[i]) : ShapedRun::Kind::Invisible;
        const FriBidiLevel level = levels.levels.empty() ? FriBidiLevel(0) : levels.levels[i];
        const hb_script_t script = scriptOf(_characters[i]);
        ShapedRun* const pRun = runs.empty() ? nullptr : &runs.back();
        if (pRun != nullptr && pRun->style == style && pRun->level == level && pRun->kind == kind &&
            kind == ShapedRun::Kind::Text && (pFace == pNextFace || (pFace != nullptr && *pFace == *pNextFace)) &&
            (pRun->script == script || pRun->script == HB_SCRIPT_COMMON))
            pRun->script = script;
        else
            runs.push_back({.begin = _offsets[i],
                            .end = 0,
                            .style = style,
                            .firstGlyph = 0,
                            .nGlyphs = 0,
                            .firstCluster = 0,
                            .script = script,
                            .face = *pNextFace,
                            .kind = kind,
                            .level = level});
        pFace = pNextFace;
    }
    for (std::size_t i = 0; i < runs.size(); ++i)
        runs[i].end = i + 1 < runs.size() ? runs[i + 1].begin : static_cast<std::uint32_t>(_text.size());
    return runs;
}

} // namespace gui::draw
