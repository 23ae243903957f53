#pragma once

#include "Export.h"

#include <cstddef>
#include <utility>

namespace cnt
{
template <typename String, std::size_t N>
class StringBuilder;
}

namespace td
{

/// A string of bytes (UTF-8 where it is text) that never changes in place: it is replaced or copied whole.
/// It is one pointer. Copies share one buffer, up to 15 of them; the next copy gets a buffer of its own. The count is
/// not atomic: strings that were copied from one another belong to one thread, the GUI thread.
class GUIGL_API StringBase
{
public:
    /// An empty string; no buffer.
    StringBase() = default;
    /// Copies a zero-terminated text. Null gives the empty string.
    StringBase(const char* text);
    /// Copies the first `length` bytes, zeros included. Null gives the empty string.
    StringBase(const char* text, std::size_t length);

    StringBase(const StringBase& other)
        : _pBuffer(other.share())
    {
    }
    StringBase(StringBase&& other) noexcept
        : _pBuffer(std::exchange(other._pBuffer, nullptr))
    {
    }
    ~StringBase() { drop(); }

    StringBase& operator=(const StringBase& other);
    /// Takes the buffer over and leaves `other` empty.
    StringBase& operator=(StringBase&& other) noexcept;
    /// Copies a zero-terminated text, which may lie in this string. Null gives the empty string.
    StringBase& operator=(const char* text) { return *this = StringBase(text); }

    /// The text with a zero behind it; never null. Valid until the string is assigned to, moved from or destroyed.
    const char* c_str() const { return _pBuffer != nullptr ? _pBuffer->text() : ""; }
    /// Length in bytes, without the terminating zero.
    std::size_t length() const { return _pBuffer != nullptr ? _pBuffer->length : 0; }
    bool isEmpty() const { return length() == 0; }

    /// This string without the white space (space, tab, line feed, vertical tab, form feed, return) at both ends.
    StringBase trim() const;

    /// Whether both have the same bytes.
    GUIGL_API friend bool operator==(const StringBase& a, const StringBase& b);

private:
    template <typename String, std::size_t N>
    friend class cnt::StringBuilder;

    struct _buffer
    {
        unsigned int nRefs;
        std::size_t length;

        // The characters and their zero lie behind the record.
        char* text() { return reinterpret_cast<char*>(this + 1); }
    };

    // A string of `length` bytes to be written through _pBuffer->text() before anybody else sees it.
    static StringBase allocate(std::size_t length);

    _buffer* share() const;
    void drop() noexcept;

    _buffer* _pBuffer = nullptr;
};

static_assert(sizeof(StringBase) == 8);

/// The name that applications use.
using String = StringBase;

} // namespace td
