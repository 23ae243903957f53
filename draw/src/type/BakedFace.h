#pragma once

#include <td/Types.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace gui::draw
{

/// The file of a face that fontbake has made for drawings. Numbers are little-endian, so that a file is for any
/// machine:
///
///     from byte  bytes
///             0      8  "GuiGLFac"
///             8      4  the version of all that follows: 1
///            12      4  n, how many bytes there are from byte 24 on
///            16      8  their checksum, which checksumOf explains
///            24      n  a font as OpenType has them, big-endian
///
/// The font has the characters that were asked for, in whatever order of glyphs, and all tables that measure, shape and
/// outline them; none for hinting, and no pictures: these are made of the outlines, at whatever size is drawn.
///
/// The checksum is against damage, not against malice: what it holds is read as carefully as any font.
class BakedFace
{
public:
    static constexpr std::uint32_t cVersion = 1;
    static constexpr std::size_t cHeaderSize = 24;

    /// Whether the bytes begin as such a file does, whatever comes then.
    static bool isOne(std::span<const td::BYTE> bytes);

    /// The font in such a file. @param cause  set when there is none, to one of
    ///         "baked face is cut off", "baked face of version 2, not 1", "baked face is damaged"
    /// @return a part of the bytes; empty then
    static std::span<const td::BYTE> fontIn(std::span<const td::BYTE> bytes, std::string& cause);

    /// What stands before a font in the file.
    static std::array<td::BYTE, cHeaderSize> headerOf(std::span<const td::BYTE> font);

    /// Begins with the number of bytes. For each eight of them, the last ones filled up with zeros: the exclusive or
    /// with them as a little-endian number, times 2^64 / the golden ratio (odd); then the upper half onto the lower one
    /// by exclusive or. So damage to one of these eights is found for certain.
    static std::uint64_t checksumOf(std::span<const td::BYTE> bytes);
};

} // namespace gui::draw
