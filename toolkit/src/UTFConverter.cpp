#include <vo/UTFConverter.h>

#include <algorithm>

namespace vo
{

namespace
{

struct ByteRange
{
    unsigned char first;
    unsigned char last;
};

// The bytes that may follow a lead byte: a few leads allow less, to keep out overlong forms (E0, F0), surrogates (ED)
// and values above U+10FFFF (F4).
constexpr ByteRange secondBytes(unsigned char lead)
{
    switch (lead)
    {
    case 0xE0:
        return {0xA0, 0xBF};
    case 0xED:
        return {0x80, 0x9F};
    case 0xF0:
        return {0x90, 0xBF};
    case 0xF4:
        return {0x80, 0x8F};
    default:
        return {0x80, 0xBF};
    }
}

// How many bytes a well-formed sequence with this lead has; 1 for bytes that lead none.
constexpr std::ptrdiff_t sequenceLength(unsigned char lead)
{
    if (lead >= 0xC2 && lead <= 0xDF)
        return 2;
    if (lead >= 0xE0 && lead <= 0xEF)
        return 3;
    if (lead >= 0xF0 && lead <= 0xF4)
        return 4;
    return 1;
}

// Whether what was decoded to U+FFFD is that, and not malformed.
bool isReplacement(const unsigned char* begin, const unsigned char* end)
{
    return end - begin == 3 && begin[1] == 0xBF && begin[2] == 0xBD;
}

} // namespace

// The end of the maximal subpart at p, where a sequence that is not well-formed begins.
const unsigned char* UTFConverter::skipMalformed(const unsigned char* p, const unsigned char* end)
{
    const std::ptrdiff_t length = std::min(sequenceLength(*p), end - p);
    ByteRange allowed = secondBytes(*p);
    for (std::ptrdiff_t i = 1; i < length; ++i)
    {
        if (p[i] < allowed.first || p[i] > allowed.last)
            return p + i;
        allowed = {0x80, 0xBF};
    }
    return p + length;
}

std::ptrdiff_t UTFConverter::measureUTF8toUTF32(const unsigned char* begin, const unsigned char* end, Flags)
{
    std::ptrdiff_t nCodePoints = 0;
    for (; begin < end; ++nCodePoints)
        next(begin, end);
    return nCodePoints * 4;
}

bool UTFConverter::convertUTF8toUTF32(const unsigned char* begin, const unsigned char* end, unsigned int* outBegin,
                                      unsigned int* outEnd, Flags)
{
    while (begin < end)
    {
        if (outBegin >= outEnd)
            return false;
        *outBegin++ = next(begin, end);
    }
    return true;
}

bool UTFConverter::isWellFormed(std::string_view text)
{
    const auto* p = reinterpret_cast<const unsigned char*>(text.data());
    const unsigned char* const end = p + text.size();
    while (p < end)
    {
        const unsigned char* const at = p;
        if (next(p, end) == cReplacement && !isReplacement(at, p))
            return false;
    }
    return true;
}

std::string UTFConverter::toWellFormed(std::string_view text)
{
    std::string result;
    appendWellFormed(result, text);
    return result;
}

void UTFConverter::appendWellFormed(std::string& text, std::string_view more)
{
    const auto* const begin = reinterpret_cast<const unsigned char*>(more.data());
    const unsigned char* const end = begin + more.size();
    const auto* p = begin;
    const auto* kept = begin;
    const auto keep = [&](const unsigned char* to)
    { text.append(reinterpret_cast<const char*>(kept), static_cast<std::size_t>(to - kept)); };
    while (p < end)
    {
        // Most text is words of such letters.
        while (p < end && *p < 0x80)
            ++p;
        while (end - p >= 2 && *p >= 0xC2 && *p <= 0xDF && isTrail(p[1]))
            p += 2;
        while (end - p >= 3 && *p > 0xE0 && *p < 0xED && isTrail(p[1]) && isTrail(p[2]))
            p += 3;
        if (p == end || *p < 0x80)
            continue;
        const auto* const at = p;
        if (next(p, end) == cReplacement && !isReplacement(at, p))
        {
            keep(at);
            text += "\uFFFD";
            kept = p;
        }
    }
    keep(end);
}

} // namespace vo
