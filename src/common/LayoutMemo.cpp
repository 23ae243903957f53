#include "LayoutMemo.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace gui::gl
{

namespace
{

constexpr std::size_t cWasteAlwaysTaken = 4096; // bytes

} // namespace

const LayoutMemo::Layout* LayoutMemo::find(std::size_t number, const Key& key, std::size_t firstVertex,
                                           std::size_t capacity) const
{
    // A storage that grew has what was in use, and nothing of what was behind it.
    if (number >= _entries.size() || firstVertex < _overwrittenEnd || capacity != _capacity)
        return nullptr;
    const Entry& entry = _entries[number];
    const float numbers[] = {key.x, key.y, key.scale, key.additionalSpace, key.lineSpacing};
    const bool isSame = entry.layout.firstVertex == firstVertex && entry.textLength == key.text.size() &&
                        entry.alignment == key.alignment && std::memcmp(entry.numbers, numbers, sizeof numbers) == 0 &&
                        key.text == std::string_view(_texts.data() + entry.textAt, entry.textLength);
    return isSame ? &entry.layout : nullptr;
}

void LayoutMemo::remember(std::size_t number, const Key& key, const Layout& layout) noexcept
try
{
    // What was forgotten among strings that are still there is known again only after a restart.
    if (number > _entries.size())
        return;
    if (number == _entries.size())
        _entries.push_back({});
    Entry& entry = _entries[number];
    const std::size_t length = key.text.size();
    if (length <= entry.textLength)
    {
        _nWasted += entry.textLength - length;
        std::copy(key.text.begin(), key.text.end(), _texts.begin() + static_cast<std::ptrdiff_t>(entry.textAt));
    }
    else
    {
        _nWasted += entry.textLength;
        entry.textAt = _texts.size();
        _texts.append(key.text);
    }
    entry = {
        {key.x, key.y, key.scale, key.additionalSpace, key.lineSpacing}, key.alignment, entry.textAt, length, layout};
}
catch (const std::bad_alloc&)
{
    forget();
}

void LayoutMemo::restart(std::size_t nStrings, std::size_t capacity)
{
    _capacity = capacity;
    _overwrittenEnd = 0;
    for (; _entries.size() > nStrings; _entries.pop_back())
        _nWasted += _entries.back().textLength;
    if (_nWasted > _texts.size() / 2 + cWasteAlwaysTaken)
        forget();
}

} // namespace gui::gl
