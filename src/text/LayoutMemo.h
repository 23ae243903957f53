#pragma once

#include <td/Point.h>
#include <td/Size.h>

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string_view>
#include <vector>

namespace gui::gl
{

/// What the strings of a font were, so that those added again after a reset, as most are when one of many changes, are
/// not laid out again. Their vertices are still in the storage: a reset empties it without touching it. So a string
/// that is in all respects the one of the same number before, and begins at the same vertex, keeps its vertices, unless
/// others were written over them since.
class LayoutMemo
{
public:
    /// All that layout depends on, beside the text and the glyphs.
    struct Style
    {
        float x;
        float y;
        float scale;
        float additionalSpace;
        float lineSpacing;
        unsigned int alignment;

        /// To the bit. Number by number, as they are put together: a block of several, read right after it was written,
        /// is not at hand before all that was written earlier is in memory, and that is a string's vertices.
        bool isSameAs(const Style& other) const
        {
            return isSame(x, other.x) && isSame(y, other.y) && isSame(scale, other.scale) &&
                   isSame(additionalSpace, other.additionalSpace) && isSame(lineSpacing, other.lineSpacing) &&
                   alignment == other.alignment;
        }

    private:
        static bool isSame(float a, float b)
        {
            return std::bit_cast<unsigned int>(a) == std::bit_cast<unsigned int>(b);
        }
    };

    /// What is known of a string.
    struct Entry
    {
        Style style;
        std::size_t textAt; // in the memo's texts
        std::size_t textLength;
        std::size_t firstVertex;
        std::size_t nVertices;
        td::Size<float> size;
    };

    /// @param number  of the string  @param firstVertex  where it begins
    /// @return the string when it is known and its vertices are there, valid until the next call; null otherwise
    const Entry* find(std::size_t number, std::string_view text, const Style& style, std::size_t firstVertex) const
    {
        if (number >= _nKnown || firstVertex < _overwrittenEnd)
            return nullptr;
        const Entry& entry = _entries[number];
        const bool isSame = entry.firstVertex == firstVertex && entry.textLength == text.size() &&
                            entry.style.isSameAs(style) &&
                            isSameText(_texts.data() + entry.textAt, text.data(), text.size());
        return isSame ? &entry : nullptr;
    }

    /// Remembers a string before it is laid out, while its style is at hand. The caller enters the layout.
    /// @return its entry, valid until the next call; null without memory to remember it, whereupon all is forgotten
    Entry* remember(std::size_t number, std::string_view text, const Style& style) noexcept
    {
        if ((number >= _entries.size() || text.size() > _entries[number].textLength) && !makeRoom(number, text.size()))
            [[unlikely]]
            return nullptr;
        Entry& entry = _entries[number];
        _nWasted += entry.textLength - text.size();
        entry.textLength = text.size();
        entry.style = style;
        copyText(_texts.data() + entry.textAt, text.data(), text.size());
        return &entry;
    }

    /// Tells that the vertices are elsewhere: a storage that grew has what was in use, and nothing of what was behind
    /// it. Nothing is found before all is added again.
    void moved() { _nKnown = 0; }

    /// Tells that vertices before this one, though not in use, were written over.
    void overwrote(std::size_t end) { _overwrittenEnd = std::max(_overwrittenEnd, end); }

    /// Tells that a string is another one.
    void forgetString(std::size_t number)
    {
        if (number < _entries.size())
            _entries[number].firstVertex = cNowhere;
    }

    /// Tells that strings are added again, from the first one on.
    /// @param nStrings  how many there were
    void restart(std::size_t nStrings);

    /// Forgets everything.
    void forget() { *this = {}; }

private:
    static constexpr std::size_t cNowhere = std::numeric_limits<std::size_t>::max();

    // A few bytes by their ends, which overlap: a call takes longer than that.
    template <typename Word>
    static bool isSameByEnds(const char* a, const char* b, std::size_t n)
    {
        Word words[4];
        std::memcpy(&words[0], a, sizeof(Word));
        std::memcpy(&words[1], b, sizeof(Word));
        std::memcpy(&words[2], a + n - sizeof(Word), sizeof(Word));
        std::memcpy(&words[3], b + n - sizeof(Word), sizeof(Word));
        return words[0] == words[1] && words[2] == words[3];
    }
    template <typename Word>
    static void copyByEnds(char* to, const char* from, std::size_t n)
    {
        Word first, last;
        std::memcpy(&first, from, sizeof(Word));
        std::memcpy(&last, from + n - sizeof(Word), sizeof(Word));
        std::memcpy(to, &first, sizeof(Word));
        std::memcpy(to + n - sizeof(Word), &last, sizeof(Word));
    }
    static bool isSameText(const char* a, const char* b, std::size_t n)
    {
        if (n > 16)
            return std::memcmp(a, b, n) == 0;
        if (n >= 8)
            return isSameByEnds<std::uint64_t>(a, b, n);
        if (n >= 4)
            return isSameByEnds<std::uint32_t>(a, b, n);
        return n == 0 || (a[0] == b[0] && a[n / 2] == b[n / 2] && a[n - 1] == b[n - 1]);
    }
    static void copyText(char* to, const char* from, std::size_t n)
    {
        if (n > 16)
            std::memcpy(to, from, n);
        else if (n >= 8)
            copyByEnds<std::uint64_t>(to, from, n);
        else if (n >= 4)
            copyByEnds<std::uint32_t>(to, from, n);
        else if (n > 0)
        {
            to[0] = from[0];
            to[n / 2] = from[n / 2];
            to[n - 1] = from[n - 1];
        }
    }

    bool makeRoom(std::size_t number, std::size_t textLength) noexcept;

    std::vector<Entry> _entries;
    std::vector<char> _texts; // which a string would not free
    std::size_t _nWasted = 0; // bytes of _texts that belong to no entry
    std::size_t _nKnown = 0;  // entries that have vertices
    std::size_t _overwrittenEnd = 0;
};

} // namespace gui::gl
