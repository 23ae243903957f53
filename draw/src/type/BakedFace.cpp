#include "BakedFace.h"

#include <algorithm>
#include <string_view>

namespace gui::draw
{

namespace
{

constexpr std::string_view cMagic = "GuiGLFac";

std::uint64_t littleEndian(std::span<const td::BYTE> bytes)
{
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i)
        value |= std::uint64_t(bytes[i]) << (8 * i);
    return value;
}

void writeLittleEndian(std::span<td::BYTE> bytes, std::uint64_t value)
{
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<td::BYTE>(value >> (8 * i));
}

} // namespace

bool BakedFace::isOne(std::span<const td::BYTE> bytes)
{
    return bytes.size() >= cMagic.size() && std::ranges::equal(bytes.first(cMagic.size()), cMagic);
}

std::span<const td::BYTE> BakedFace::fontIn(std::span<const td::BYTE> bytes, std::string& cause)
{
    // Another version may have another header.
    const std::uint64_t version = bytes.size() < 12 ? cVersion : littleEndian(bytes.subspan(8, 4));
    const std::size_t size = bytes.size() < cHeaderSize ? 0 : std::size_t(littleEndian(bytes.subspan(12, 4)));
    if (version != cVersion)
        cause = "baked face of version " + std::to_string(version) + ", not " + std::to_string(cVersion);
    else if (bytes.size() < cHeaderSize || bytes.size() - cHeaderSize < size)
        cause = "baked face is cut off";
    else if (bytes.size() - cHeaderSize > size || size == 0 ||
             littleEndian(bytes.subspan(16, 8)) != checksumOf(bytes.subspan(cHeaderSize)))
        cause = "baked face is damaged";
    else
        return bytes.subspan(cHeaderSize);
    return {};
}

std::array<td::BYTE, BakedFace::cHeaderSize> BakedFace::headerOf(std::span<const td::BYTE> font)
{
    std::array<td::BYTE, cHeaderSize> header{};
    std::ranges::copy(cMagic, header.begin());
    const std::span<td::BYTE> bytes(header);
    writeLittleEndian(bytes.subspan(8, 4), cVersion);
    writeLittleEndian(bytes.subspan(12, 4), font.size());
    writeLittleEndian(bytes.subspan(16, 8), checksumOf(font));
    return header;
}

std::uint64_t BakedFace::checksumOf(std::span<const td::BYTE> bytes)
{
    std::uint64_t sum = bytes.size();
    for (; !bytes.empty(); bytes = bytes.subspan(std::min<std::size_t>(bytes.size(), 8)))
    {
        // A compiler makes one load of the whole ones.
        const std::uint64_t word = bytes.size() >= 8 ? littleEndian(bytes.first<8>()) : littleEndian(bytes);
        sum = (sum ^ word) * 0x9E3779B97F4A7C15U;
        sum ^= sum >> 32;
    }
    return sum;
}

} // namespace gui::draw
