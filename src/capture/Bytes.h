#pragma once

#include <cstdint>
#include <cstring>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>

// Numbers and texts as captured frames have them: little-endian, whatever the machine.

namespace gui::gl
{

/// The bytes of a file, or of a part of it.
using ByteSpan = std::span<const unsigned char>;

class ByteWriter
{
public:
    template <typename T>
    void number(T value)
    {
        static_assert(std::is_integral_v<T>);
        auto bits = static_cast<std::uint64_t>(value);
        for (std::size_t i = 0; i < sizeof(T); ++i, bits >>= 8)
            _bytes.push_back(static_cast<char>(bits & 0xFF));
    }
    void real(double value)
    {
        std::uint64_t bits = 0;
        std::memcpy(&bits, &value, sizeof bits);
        number(bits);
    }
    void text(std::string_view text)
    {
        number(static_cast<std::uint32_t>(text.size()));
        _bytes += text;
    }
    void data(const void* bytes, std::size_t n)
    {
        align();
        if (n > 0)
            _bytes.append(static_cast<const char*>(bytes), n);
    }
    /// Data begins where every number may stand.
    void align() { _bytes.resize((_bytes.size() + 7) / 8 * 8); }

    const std::string& bytes() const { return _bytes; }

private:
    std::string _bytes;
};

/// Reads what a ByteWriter wrote. Behind the end all is 0 and empty, and it is not ok any more.
class ByteReader
{
public:
    explicit ByteReader(ByteSpan bytes)
        : _bytes(bytes)
    {
    }

    bool isOk() const { return _isOk; }
    bool isAtEnd() const { return _at == _bytes.size(); }
    std::size_t left() const { return _bytes.size() - _at; }

    template <typename T>
    T number()
    {
        static_assert(std::is_integral_v<T>);
        const ByteSpan bytes = take(sizeof(T));
        std::uint64_t bits = 0;
        for (std::size_t i = bytes.size(); i-- > 0;)
            bits = bits << 8 | bytes[i];
        return static_cast<T>(bits);
    }
    double real()
    {
        const auto bits = number<std::uint64_t>();
        double value = 0;
        std::memcpy(&value, &bits, sizeof value);
        return value;
    }
    std::string_view text()
    {
        const ByteSpan bytes = take(number<std::uint32_t>());
        return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
    }
    ByteSpan data(std::uint64_t n)
    {
        align();
        return take(n);
    }
    void align() { take((8 - _at % 8) % 8); }

private:
    ByteSpan take(std::uint64_t n)
    {
        if (!_isOk || n > left())
        {
            _isOk = false;
            return {};
        }
        const ByteSpan bytes = _bytes.subspan(_at, static_cast<std::size_t>(n));
        _at += static_cast<std::size_t>(n);
        return bytes;
    }

    ByteSpan _bytes;
    std::size_t _at = 0;
    bool _isOk = true;
};

} // namespace gui::gl
