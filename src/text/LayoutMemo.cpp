#include "LayoutMemo.h"

#include <new>

namespace gui::gl
{

namespace
{

constexpr std::size_t cWasteAlwaysTaken = 4096; // bytes

} // namespace

// Makes the string's entry one whose text is so long. @return false when there can't be one
bool LayoutMemo::makeRoom(std::size_t number, std::size_t textLength) noexcept
try
{
    // What was forgotten among strings that are still there is known again only after a restart.
    if (number > _entries.size())
        return false;
    const std::size_t textAt = _texts.size();
    _texts.resize(textAt + textLength);
    if (number == _entries.size())
        _entries.push_back({});
    _nWasted += _entries[number].textLength;
    _entries[number].textAt = textAt;
    _entries[number].textLength = textLength;
    return true;
}
catch (const std::bad_alloc&)
{
    forget();
    return false;
}

void LayoutMemo::restart(std::size_t nStrings)
{
    _overwrittenEnd = 0;
    for (; _entries.size() > nStrings; _entries.pop_back())
        _nWasted += _entries.back().textLength;
    _nKnown = _entries.size();
    if (_nWasted > _texts.size() / 2 + cWasteAlwaysTaken)
        forget();
}

} // namespace gui::gl
