#pragma once

#include "List.h"

#include <td/Assert.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <utility>

namespace cnt
{

/// Builds a long text from pieces, kept in chunks of N bytes until the whole is copied out as one string.
/// When an allocation fails (an exception), the text is what it was before. It can't be copied.
template <typename String, std::size_t N>
class StringBuilder
{
public:
    /// @param allocateNow  true allocates the first chunk here, false with the first piece
    explicit StringBuilder(bool allocateNow)
    {
        if (allocateNow)
            addChunk();
    }

    /// Appends a zero-terminated text; null appends nothing.
    StringBuilder& operator<<(const char* text)
    {
        if (text != nullptr)
            append(text, std::strlen(text));
        return *this;
    }

    /// Appends a literal without its terminating zero.
    template <std::size_t K>
    StringBuilder& appendCString(const char (&literal)[K])
    {
        append(literal, K - 1);
        return *this;
    }

    /// Appends the first n bytes, zeros included. @param text  n bytes; null appends nothing. @param n  not negative
    StringBuilder& appendString(const char* text, int n)
    {
        TD_ASSERT(n >= 0, *this);
        if (text != nullptr)
            append(text, std::size_t(n));
        return *this;
    }

    /// The whole text; empty when nothing was appended.
    String toString() const
    {
        String str;
        copyText(str);
        return str;
    }

    /// Gives the whole text. @param str  receives it. @param trim  whether white space at both ends is left out
    /// @return true, also for an empty text
    bool getString(String& str, bool trim) const
    {
        String text;
        if (!copyText(text))
            return false;
        str = trim ? text.trim() : std::move(text);
        return true;
    }

    /// Empties the text. The chunks are kept, to be filled again.
    void reset() { _nTotalCh = 0; }

private:
    void addChunk()
    {
        _chunks.push();
        ++_nChunks;
    }

    void append(const char* text, std::size_t n)
    {
        // All the chunks first: when one can't be had, the text is still whole.
        while (_nChunks * N - _nTotalCh < n)
            addChunk();
        while (n > 0)
        {
            const std::size_t offset = _nTotalCh % N;
            if (_nTotalCh == 0)
                _current = _chunks.begin();
            else if (offset == 0)
                ++_current;
            const std::size_t nPart = std::min(n, N - offset);
            std::memcpy(*_current + offset, text, nPart);
            text += nPart;
            n -= nPart;
            _nTotalCh += nPart;
        }
    }

    bool copyText(String& str) const
    {
        str = String::allocate(_nTotalCh);
        TD_ASSERT(_nTotalCh == str.length(), false);
        std::size_t nCopied = 0;
        for (auto chunk = _chunks.begin(); nCopied < _nTotalCh; ++chunk)
        {
            const std::size_t nPart = std::min(N, _nTotalCh - nCopied);
            std::memcpy(str._pBuffer->text() + nCopied, *chunk, nPart);
            nCopied += nPart;
        }
        return true;
    }

    List<char[N], false> _chunks;
    typename List<char[N], false>::iterator _current; // the chunk being filled, once there is text
    std::size_t _nChunks = 0;
    std::size_t _nTotalCh = 0;
};

} // namespace cnt
