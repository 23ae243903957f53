#include "CharacterSet.h"

#include "Error.h"

#include <utf8.h>

#include <algorithm>
#include <charconv>
#include <cstdio>

namespace fontbake
{

namespace
{

constexpr char32_t cLastCodePoint = 0x10FFFF;
constexpr char32_t cByteOrderMark = 0xFEFF;

bool isSurrogate(char32_t codePoint) { return codePoint >= 0xD800 && codePoint <= 0xDFFF; }

bool isControl(char32_t codePoint) { return codePoint < 0x20 || (codePoint >= 0x7F && codePoint < 0xA0); }

bool isWithoutPicture(char32_t codePoint)
{
    constexpr char32_t cWithout[] = {U'\t', U'\n', U' ', 0x2028, 0xFFFD};
    return std::ranges::find(cWithout, codePoint) != std::end(cWithout);
}

CharacterSet ordered(CharacterSet characters)
{
    std::erase_if(characters, isWithoutPicture);
    std::ranges::sort(characters);
    characters.erase(std::unique(characters.begin(), characters.end()), characters.end());
    return characters;
}

char32_t codePointOf(std::string_view text)
{
    const bool isHexadecimal = text.starts_with("U+") || text.starts_with("u+");
    const std::string_view digits = text.substr(isHexadecimal ? 2 : 0);
    unsigned int value = 0;
    const auto [end, error] =
        std::from_chars(digits.data(), digits.data() + digits.size(), value, isHexadecimal ? 16 : 10);
    if (error != std::errc() || end != digits.data() + digits.size() || value > cLastCodePoint || isSurrogate(value))
        throw Error("'" + std::string(text) + "' is no character: write 65, or U+41, up to U+10FFFF");
    return value;
}

} // namespace

CharacterSet charactersOfRanges(std::string_view ranges)
{
    CharacterSet characters;
    for (std::size_t start = 0; start <= ranges.size();)
    {
        const std::size_t end = std::min(ranges.find(',', start), ranges.size());
        const std::string_view range = ranges.substr(start, end - start);
        start = end + 1;

        const std::size_t dash = std::min(range.find('-'), range.size());
        const char32_t first = codePointOf(range.substr(0, dash));
        const char32_t last = dash < range.size() ? codePointOf(range.substr(dash + 1)) : first;
        if (last < first)
            throw Error("the range '" + std::string(range) + "' ends before it begins");
        for (char32_t codePoint = first; codePoint <= last; ++codePoint)
            if (!isSurrogate(codePoint))
                characters.push_back(codePoint);
    }
    return ordered(std::move(characters));
}

CharacterSet charactersOfText(std::string_view text, const std::string& name)
{
    const auto malformed = utf8::find_invalid(text.begin(), text.end());
    if (malformed != text.end())
        throw Error(name + " is not UTF-8 in line " + std::to_string(1 + std::count(text.begin(), malformed, '\n')));
    CharacterSet characters;
    utf8::utf8to32(text.begin(), text.end(), std::back_inserter(characters));
    std::erase_if(characters, isControl);
    std::erase(characters, cByteOrderMark);
    return ordered(std::move(characters));
}

std::string nameOf(char32_t codePoint)
{
    char name[16];
    std::snprintf(name, sizeof name, "U+%04X", static_cast<unsigned int>(codePoint));
    return name;
}

} // namespace fontbake
