#pragma once

#include <td/Types.h>

#include <cstddef>
#include <cstdint>
#include <span>

namespace gui::draw
{

/// A table of a font: numbers with the high byte first. What is read beyond the end is 0.
class TableBytes
{
public:
    explicit TableBytes(std::span<const td::BYTE> bytes)
        : _bytes(bytes)
    {
    }

    std::size_t getSize() const { return _bytes.size(); }
    /// Whether there is so much.
    bool has(std::size_t at, std::size_t n) const { return at <= _bytes.size() && n <= _bytes.size() - at; }

    std::uint32_t unsigned8(std::size_t at) const { return number<1>(at); }
    std::uint32_t unsigned16(std::size_t at) const { return number<2>(at); }
    std::uint32_t unsigned24(std::size_t at) const { return number<3>(at); }
    std::uint32_t unsigned32(std::size_t at) const { return number<4>(at); }
    std::int32_t signed8(std::size_t at) const { return static_cast<std::int8_t>(number<1>(at)); }
    std::int32_t signed16(std::size_t at) const { return static_cast<std::int16_t>(number<2>(at)); }
    std::int32_t signed32(std::size_t at) const { return static_cast<std::int32_t>(number<4>(at)); }
    /// @param n  bytes, 1 to 4
    std::uint32_t unsignedOf(std::size_t at, std::size_t n) const
    {
        std::uint32_t value = 0;
        for (std::size_t i = 0; i < n; ++i)
            value = value << 8 | unsigned8(at + i);
        return value;
    }

private:
    template <std::size_t n>
    std::uint32_t number(std::size_t at) const
    {
        std::uint32_t value = 0;
        for (std::size_t i = 0; has(at, n) && i < n; ++i)
            value = value << 8 | _bytes[at + i];
        return value;
    }

    std::span<const td::BYTE> _bytes;
};

} // namespace gui::draw
