#pragma once

#include <td/Point.h>
#include <td/Size.h>

#include <bit>
#include <cstddef>
#include <cstring>
#include <string>
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

    struct Layout
    {
        std::size_t firstVertex;
        std::size_t nVertices;
        td::Size<float> size;
    };

    /// @param number  of the string  @param firstVertex  where it begins  @param capacity  the storage's, in vertices
    /// @return the layout when it is known and its vertices are there, valid until the next call; null otherwise
    const Layout* find(std::size_t number, std::string_view text, const Style& style, std::size_t firstVertex,
                       std::size_t capacity) const
    {
        // A storage that grew has what was in use, and nothing of what was behind it.
        if (number >= _entries.size() || firstVertex < _overwrittenEnd || capacity != _capacity)
            return nullptr;
        const Entry& entry = _entries[number];
        const bool isSame = entry.layout.firstVertex == firstVertex && entry.textLength == text.size() &&
                            entry.style.isSameAs(style) &&
                            std::memcmp(_texts.data() + entry.textAt, text.data(), text.size()) == 0;
        return isSame ? &entry.layout : nullptr;
    }

    /// Remembers a string that was laid out. Without memory to do so, all is forgotten.
    void remember(std::size_t number, std::string_view text, const Style& style, const Layout& layout) noexcept
    {
        if ((number >= _entries.size() || text.size() > _entries[number].textLength) && !makeRoom(number, text.size()))
            return;
        Entry& entry = _entries[number];
        _nWasted += entry.textLength - text.size();
        entry.textLength = text.size();
        entry.style = style;
        entry.layout = layout;
        std::memcpy(_texts.data() + entry.textAt, text.data(), text.size());
    }

    /// Tells that vertices before this one, though not in use, were written over.
    void overwrote(std::size_t end) { _overwrittenEnd = end; }

    /// Tells that strings are added again, from the first one on.
    /// @param nStrings  how many there were  @param capacity  of the storage that has their vertices
    void restart(std::size_t nStrings, std::size_t capacity);

    /// Forgets everything.
    void forget() { *this = {}; }

private:
    struct Entry
    {
        Style style;
        std::size_t textAt; // in _texts
        std::size_t textLength;
        Layout layout;
    };

    bool makeRoom(std::size_t number, std::size_t textLength) noexcept;

    std::vector<Entry> _entries;
    std::string _texts;
    std::size_t _nWasted = 0; // bytes of _texts that belong to no entry
    std::size_t _capacity = 0;
    std::size_t _overwrittenEnd = 0;
};

} // namespace gui::gl
