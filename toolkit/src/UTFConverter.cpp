#include <vo/UTFConverter.h>

#include <utf8.h>

#include <algorithm>

namespace vo
{

namespace
{

constexpr unsigned int cReplacement = 0xFFFD;

struct ByteRange
{
    unsigned char first;
    unsigned char last;
};

// The bytes that may follow a lead byte: a few leads allow less, to keep out overlong forms (E0, F0), surrogates (ED) and
// values above U+10FFFF (F4).
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

// The end of the maximal subpart at p, where a sequence that is not well-formed begins.
const unsigned char* skipMalformed(const unsigned char* p, const unsigned char* end)
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

// Calls put with each code point until it returns false.
template <typename Put>
bool decode(const unsigned char* begin, const unsigned char* end, Put put)
{
    while (begin < end)
    {
        const unsigned char* const valid = utf8::find_invalid(begin, end);
        while (begin != valid)
        {
            if (!put(utf8::unchecked::next(begin)))
                return false;
        }
        if (begin == end)
            break;
        if (!put(cReplacement))
            return false;
        begin = skipMalformed(begin, end);
    }
    return true;
}

} // namespace

std::ptrdiff_t UTFConverter::measureUTF8toUTF32(const unsigned char* begin, const unsigned char* end, Flags)
{
    std::ptrdiff_t nCodePoints = 0;
    decode(begin, end,
           [&](unsigned int)
           {
               ++nCodePoints;
               return true;
           });
    return nCodePoints * 4;
}

bool UTFConverter::convertUTF8toUTF32(const unsigned char* begin, const unsigned char* end, unsigned int* outBegin,
                                      unsigned int* outEnd, Flags)
{
    return decode(begin, end,
                  [&](unsigned int codePoint)
                  {
                      if (outBegin >= outEnd)
                          return false;
                      *outBegin++ = codePoint;
                      return true;
                  });
}

} // namespace vo
