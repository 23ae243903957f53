#pragma once

#include <gui/gl/Font.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace gui::gl
{

/// What the strings of a font were, so that those added again after a reset, as most are when one of many changes, are not
/// laid out again. Their vertices are still in the storage: a reset empties it without touching it. So a string that is in
/// all respects the one of the same number before, and begins at the same vertex, keeps its vertices, unless others were
/// written over them since.
class LayoutMemo
{
public:
    /// All that layout depends on, beside the glyphs.
    struct Key
    {
        float x;
        float y;
        float scale;
        float additionalSpace;
        float lineSpacing;
        unsigned int alignment;
        std::string_view text;
    };

    struct Layout
    {
        std::size_t firstVertex;
        std::size_t nVertices;
        td::Size<float> size;
    };

    /// @param number  of the string  @param firstVertex  where it begins  @param capacity  the storage's, in vertices
    /// @return the layout when it is known and its vertices are there, valid until the next call; null otherwise
    const Layout* find(std::size_t number, const Key& key, std::size_t firstVertex, std::size_t capacity) const;

    /// Remembers a string that was laid out. Without memory to do so, all is forgotten.
    void remember(std::size_t number, const Key& key, const Layout& layout) noexcept;

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
        // Of the key. Numbers are compared by their bits.
        float numbers[5];
        unsigned int alignment;
        std::size_t textAt; // in _texts
        std::size_t textLength;
        Layout layout;
    };

    std::vector<Entry> _entries;
    std::string _texts;
    std::size_t _nWasted = 0; // bytes of _texts that belong to no entry
    std::size_t _capacity = 0;
    std::size_t _overwrittenEnd = 0;
};

} // namespace gui::gl
