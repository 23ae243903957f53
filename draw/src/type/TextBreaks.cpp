#include "TextBreaks.h"

#include <td/Types.h>
#include <vo/Log.h>
#include <vo/UTFConverter.h>

#include <unicode/ubrk.h>
#include <unicode/uchar.h>
#include <unicode/uloc.h>
#include <unicode/utext.h>

#include <array>
#include <map>
#include <memory>
#include <utility>

namespace gui::draw
{

namespace
{

struct CloseIterator
{
    void operator()(UBreakIterator* p) const { ubrk_close(p); }
};
using Iterator = std::unique_ptr<UBreakIterator, CloseIterator>;

std::string toLocale(const std::string& language)
{
    std::array<char, ULOC_FULLNAME_CAPACITY> locale{};
    UErrorCode error = U_ZERO_ERROR;
    uloc_forLanguageTag(language.c_str(), locale.data(), ULOC_FULLNAME_CAPACITY - 1, nullptr, &error);
    return U_SUCCESS(error) != 0 ? locale.data() : "";
}

// Opening one takes milliseconds, so each thread keeps those that it had; null when ICU's data aren't there.
UBreakIterator* iteratorFor(UBreakIteratorType type, const std::string& language)
{
    thread_local std::map<std::pair<UBreakIteratorType, std::string>, Iterator> s_iterators;
    // Languages come with texts, from anywhere; those of one program are few.
    constexpr std::size_t cMost = 64;
    if (s_iterators.size() > cMost)
        s_iterators.clear();
    const auto [found, isNew] = s_iterators.try_emplace({type, language});
    if (isNew)
    {
        UErrorCode error = U_ZERO_ERROR;
        found->second.reset(ubrk_open(type, toLocale(language).c_str(), nullptr, 0, &error));
        if (U_FAILURE(error) != 0)
        {
            found->second.reset();
            vo::dbgLog("ERROR! TextLayout cannot find where text breaks (%s)", u_errorName(error));
        }
    }
    return found->second.get();
}

template <typename Take>
void forBreaks(std::string_view text, UBreakIteratorType type, const std::string& language, Take take)
{
    UBreakIterator* const pIterator = text.empty() ? nullptr : iteratorFor(type, language);
    if (pIterator == nullptr)
        return;
    UErrorCode error = U_ZERO_ERROR;
    UText uText = UTEXT_INITIALIZER;
    utext_openUTF8(&uText, text.data(), static_cast<std::int64_t>(text.size()), &error);
    ubrk_setUText(pIterator, &uText, &error);
    if (U_SUCCESS(error) != 0)
    {
        ubrk_first(pIterator);
        for (int at = ubrk_next(pIterator); at != UBRK_DONE; at = ubrk_next(pIterator))
            take(static_cast<std::uint32_t>(at));
    }
    // The iterator has a copy that looks at the text too; without one it looks nowhere.
    UText none = UTEXT_INITIALIZER;
    utext_openUTF8(&none, "", 0, &error);
    ubrk_setUText(pIterator, &none, &error);
    utext_close(&none);
    utext_close(&uText);
}

// What there is in words, of Unicode's report 14.
enum class Plain : td::BYTE
{
    None,
    Letter, // AL, HL
    Mark,   // CM
    Sign,   // IS
    Space
};

Plain plainOf(char32_t c)
{
    constexpr std::size_t cFirst = 0xE00;
    static const auto s_first = []
    {
        std::array<Plain, cFirst> first{};
        for (std::size_t i = 0; i < cFirst; ++i)
            switch (u_getIntPropertyValue(UChar32(i), UCHAR_LINE_BREAK))
            {
            case U_LB_ALPHABETIC:
            case U_LB_HEBREW_LETTER:
                first[i] = Plain::Letter;
                break;
            case U_LB_COMBINING_MARK:
                first[i] = Plain::Mark;
                break;
            case U_LB_INFIX_NUMERIC:
                first[i] = Plain::Sign;
                break;
            default:
                break;
            }
        first[' '] = Plain::Space;
        return first;
    }();
    return c < cFirst ? s_first[c] : Plain::None;
}

// A part of a text that ends where a line may end: behind a word, signs and spaces, and before a letter (rules 9, 13,
// 18 and 28), or at the text's end. From such a place on, breaks don't depend on what is before.
struct Chunk
{
    std::uint32_t end;
    bool isPlain; // a word, signs and spaces: there is no other break in it
};

void findChunks(std::string_view text, std::vector<Chunk>& chunks)
{
    chunks.clear();
    const auto* const begin = reinterpret_cast<const unsigned char*>(text.data());
    const unsigned char* const end = begin + text.size();
    bool isPlain = true;
    // What the characters up to here end in: a word, signs behind one, spaces behind these, or anything else.
    Plain state = Plain::None;
    for (const unsigned char* p = begin; p < end;)
    {
        const unsigned char* const at = p;
        const Plain plain = plainOf(vo::UTFConverter::next(p, end));
        if (plain == Plain::Letter)
        {
            if (state == Plain::Space)
            {
                chunks.push_back({static_cast<std::uint32_t>(at - begin), isPlain});
                isPlain = true;
            }
            else if (state == Plain::Sign || (state == Plain::None && at > begin))
                isPlain = false;
            state = Plain::Letter;
        }
        else if ((plain == Plain::Mark && state == Plain::Letter) || (plain == Plain::Space && state == Plain::Space))
            continue;
        else if ((plain == Plain::Sign || plain == Plain::Space) && (state == Plain::Letter || state == Plain::Sign))
            state = plain;
        else
        {
            isPlain = false;
            state = Plain::None;
        }
    }
    if (!text.empty())
        chunks.push_back({static_cast<std::uint32_t>(text.size()), isPlain});
}

// ICU's property, which most letters are asked for more than once.
int graphemeBreakOf(char32_t c)
{
    const auto ask = [](char32_t which) { return u_getIntPropertyValue(UChar32(which), UCHAR_GRAPHEME_CLUSTER_BREAK); };
    constexpr std::size_t cFirst = 0x1000;
    static const auto s_first = [&ask]
    {
        std::array<td::BYTE, cFirst> first{};
        for (std::size_t i = 0; i < cFirst; ++i)
            first[i] = static_cast<td::BYTE>(ask(char32_t(i)));
        return first;
    }();
    return c < cFirst ? s_first[c] : ask(c);
}

} // namespace

std::vector<LineBreak> findLineBreaks(std::string_view text, const std::string& language)
{
    std::vector<LineBreak> breaks;
    breaks.reserve(text.size() / 6);
    thread_local std::vector<Chunk> s_chunks;
    findChunks(text, s_chunks);
    for (std::size_t i = 0; i < s_chunks.size();)
    {
        if (s_chunks[i].isPlain)
        {
            breaks.push_back({s_chunks[i++].end, false});
            continue;
        }
        const std::uint32_t begin = i > 0 ? s_chunks[i - 1].end : 0;
        // To start and end ICU takes as long as some words do.
        constexpr std::uint32_t cFewBytes = 48;
        std::size_t last = i;
        for (std::size_t k = i + 1; k < s_chunks.size() && s_chunks[k - 1].end <= s_chunks[last].end + cFewBytes; ++k)
            if (!s_chunks[k].isPlain)
                last = k;
        const std::uint32_t end = s_chunks[last].end;
        // ICU's own word on whether a line has to end also goes for the places that its dictionaries find before there.
        forBreaks(text.substr(begin, end - begin), UBRK_LINE, language,
                  [&](std::uint32_t at) {
                      breaks.push_back({begin + at, endsInLineEnd(text.substr(0, begin + at))});
                  });
        i = last + 1;
    }
    return breaks;
}

bool endsInLineEnd(std::string_view text)
{
    const char last = text.empty() ? ' ' : text.back();
    return (last >= '\n' && last <= '\r') || text.ends_with("\u0085") || text.ends_with("\u2028") ||
           text.ends_with("\u2029");
}

std::vector<std::uint32_t> findGraphemes(std::string_view text)
{
    std::vector<std::uint32_t> breaks;
    breaks.reserve(text.size());
    forBreaks(text, UBRK_CHARACTER, {}, [&](std::uint32_t at) { breaks.push_back(at); });
    return breaks;
}

std::vector<std::uint32_t> findWords(std::string_view text, const std::string& language)
{
    std::vector<std::uint32_t> breaks;
    forBreaks(text, UBRK_WORD, language, [&](std::uint32_t at) { breaks.push_back(at); });
    return breaks;
}

char32_t characterAt(std::string_view text, std::size_t offset)
{
    const auto* p = reinterpret_cast<const unsigned char*>(text.data()) + offset;
    return vo::UTFConverter::next(p, reinterpret_cast<const unsigned char*>(text.data()) + text.size());
}

char32_t characterBefore(std::string_view text, std::size_t offset)
{
    std::size_t at = offset - 1;
    while (at > 0 && (static_cast<unsigned char>(text[at]) & 0xC0U) == 0x80)
        --at;
    return characterAt(text, at);
}

bool mayBeOneLetter(std::string_view text, std::size_t offset)
{
    return offset > 0 && offset < text.size() &&
           mayBeOneLetter(characterBefore(text, offset), characterAt(text, offset));
}

bool mayBeOneLetter(char32_t first, char32_t second)
{
    const int before = graphemeBreakOf(first), after = graphemeBreakOf(second);
    if (before == U_GCB_PREPEND || before == U_GCB_ZWJ)
        return true;
    switch (after)
    {
    case U_GCB_OTHER:
        return false;
    case U_GCB_REGIONAL_INDICATOR:
        return before == U_GCB_REGIONAL_INDICATOR;
    case U_GCB_L:
    case U_GCB_LV:
    case U_GCB_LVT:
        return before == U_GCB_L;
    case U_GCB_V:
        return before == U_GCB_L || before == U_GCB_LV || before == U_GCB_V;
    case U_GCB_T:
        return before == U_GCB_LV || before == U_GCB_V || before == U_GCB_LVT || before == U_GCB_T;
    default:
        return true;
    }
}

} // namespace gui::draw
