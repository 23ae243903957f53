#pragma once

#include <td/Export.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace vo
{

/// Decodes UTF-8 into code points, whatever the bytes are: each malformed sequence becomes one U+FFFD, the replacement
/// character. A malformed sequence is a maximal subpart as Unicode recommends it (chapter 3, "U+FFFD Substitution of
/// Maximal Subparts"): the longest run of bytes that begins a well-formed sequence, or else a single byte. So a
/// character that breaks off becomes one U+FFFD, and each byte of an overlong form, of a surrogate or of a value above
/// U+10FFFF one. All operations decode alike, and read nothing outside the range.
class GUIGL_API UTFConverter
{
public:
    /// There is nothing to choose yet: pass Flags(0).
    enum class Flags : unsigned int
    {
        None = 0
    };

    /// Takes one code point, for loops over text: inline, and quick where bytes are well-formed.
    /// @param p  before end; behind the code point, or the malformed sequence, afterwards
    static char32_t next(const unsigned char*& p, const unsigned char* end)
    {
        char32_t codePoint = cReplacement;
        if (!nextWellFormed(p, end, codePoint)) [[unlikely]]
            p = skipMalformed(p, end);
        return codePoint;
    }

    /// The same where bytes are well-formed. @return false, with nothing changed, where they are not
    static bool nextWellFormed(const unsigned char*& p, const unsigned char* end, char32_t& codePoint)
    {
        const unsigned char* const q = p;
        const char32_t lead = *q;
        if (lead < 0x80)
        {
            codePoint = lead;
            p = q + 1;
            return true;
        }
        if (lead >= 0xE0 && lead <= 0xEF)
        {
            if (end - q < 3 || !isTrail(q[1]) || !isTrail(q[2])) [[unlikely]]
                return false;
            const char32_t taken = (lead & 0x0F) << 12 | bits(q[1]) << 6 | bits(q[2]);
            if (taken < 0x800 || (taken >= 0xD800 && taken <= 0xDFFF)) [[unlikely]]
                return false;
            codePoint = taken;
            p = q + 3;
            return true;
        }
        if (lead >= 0xC2 && lead <= 0xDF)
        {
            if (end - q < 2 || !isTrail(q[1])) [[unlikely]]
                return false;
            codePoint = (lead & 0x1F) << 6 | bits(q[1]);
            p = q + 2;
            return true;
        }
        if (lead < 0xF0 || lead > 0xF4 || end - q < 4 || !isTrail(q[1]) || !isTrail(q[2]) || !isTrail(q[3]))
            return false;
        const char32_t taken = (lead & 0x07) << 18 | bits(q[1]) << 12 | bits(q[2]) << 6 | bits(q[3]);
        if (taken < 0x10000 || taken > 0x10FFFF)
            return false;
        codePoint = taken;
        p = q + 4;
        return true;
    }

    /// @param begin, end  the UTF-8 bytes; nothing is read when end is not behind begin
    /// @return the bytes that the range takes as UTF-32, 4 per code point; 0 for an empty range
    static std::ptrdiff_t measureUTF8toUTF32(const unsigned char* begin, const unsigned char* end, Flags flags);

    /// Writes the code points of the range, in the machine's byte order and without a terminating zero.
    /// @param outBegin, outEnd  room for them; measureUTF8toUTF32 / 4 are needed
    /// @return true when all were written; false, with the room filled, when it was too small (nothing is logged)
    static bool convertUTF8toUTF32(const unsigned char* begin, const unsigned char* end, unsigned int* outBegin,
                                   unsigned int* outEnd, Flags flags);

    /// Whether a text decodes without a U+FFFD that isn't in it.
    static bool isWellFormed(std::string_view text);
    /// Appends a text, with each malformed sequence in it as U+FFFD.
    static void appendWellFormed(std::string& text, std::string_view more);
    /// The text like that.
    static std::string toWellFormed(std::string_view text);

private:
    static constexpr char32_t cReplacement = 0xFFFD;

    static bool isTrail(unsigned char byte) { return (byte & 0xC0U) == 0x80; }
    static char32_t bits(unsigned char trail) { return trail & 0x3FU; }
    static const unsigned char* skipMalformed(const unsigned char* p, const unsigned char* end);
};

} // namespace vo
