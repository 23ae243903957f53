#pragma once

#include <td/Export.h>

#include <cstddef>

namespace vo
{

/// Decodes UTF-8 into code points, whatever the bytes are: each malformed sequence becomes one U+FFFD, the replacement
/// character. A malformed sequence is a maximal subpart as Unicode recommends it (chapter 3, "U+FFFD Substitution of
/// Maximal Subparts"): the longest run of bytes that begins a well-formed sequence, or else a single byte. So a character
/// that breaks off becomes one U+FFFD, and each byte of an overlong form, of a surrogate or of a value above U+10FFFF one.
/// Both operations decode alike, and read nothing outside the range.
class GUIGL_API UTFConverter
{
public:
    /// There is nothing to choose yet: pass Flags(0).
    enum class Flags : unsigned int
    {
        None = 0
    };

    /// @param begin, end  the UTF-8 bytes; nothing is read when end is not behind begin
    /// @return the bytes that the range takes as UTF-32, 4 per code point; 0 for an empty range
    static std::ptrdiff_t measureUTF8toUTF32(const unsigned char* begin, const unsigned char* end, Flags flags);

    /// Writes the code points of the range, in the machine's byte order and without a terminating zero.
    /// @param outBegin, outEnd  room for them; measureUTF8toUTF32 / 4 are needed
    /// @return true when all were written; false, with the room filled, when it was too small (nothing is logged)
    static bool convertUTF8toUTF32(const unsigned char* begin, const unsigned char* end, unsigned int* outBegin,
                                   unsigned int* outEnd, Flags flags);
};

} // namespace vo
