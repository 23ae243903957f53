#pragma once

#include "PushBackVector.h"

#include <algorithm>
#include <cstddef>

namespace cnt
{

/// Values looked up by key: an array sorted by key, filled in bulk and searched in halves. Filling it:
/// reserve, beginUpdate, append as often as needed, endUpdate. It moves but can't be copied.
template <typename Key, typename Value>
class Dictionary
{
public:
    /// A key with its value.
    struct _entry
    {
        Key key;
        Value value;
    };

    /// Empties the dictionary, makes room for exactly nEntries, and breaks off an update.
    void reserve(std::size_t nEntries)
    {
        _updating = false;
        _entries.reserve(nEntries);
    }

    /// Starts an update. Until it ends, find finds nothing.
    void beginUpdate() { _updating = true; }

    /// Adds an entry to what is there, growing beyond the reserved room if need be. Only during an update.
    /// Keys should differ: of equal ones any may be found.
    void append(const Key& key, const Value& value)
    {
        TD_ASSERT(_updating);
        _entries.push_back({key, value});
    }

    /// Ends an update: sorts all entries by key, ascending.
    void endUpdate()
    {
        std::sort(_entries.begin(), _entries.end(), isBefore);
        _updating = false;
    }

    /// @return the value of a key, owned by the dictionary and valid until the next reserve or update; null when the
    ///         key isn't there, and during an update
    const Value* find(const Key& key) const
    {
        if (_updating || isEmpty())
            return nullptr;
        const _entry* const pLast = _entries.end() - 1;
        if (key < _entries.begin()->key || pLast->key < key)
            return nullptr;
        // The last key is not less than this one, so the search ends at an entry.
        const _entry* const pEntry =
            std::lower_bound(_entries.begin(), pLast, key, [](const _entry& e, const Key& k) { return e.key < k; });
        return key < pEntry->key ? nullptr : &pEntry->value;
    }

    std::size_t size() const { return _entries.size(); }
    bool isEmpty() const { return _entries.size() == 0; }

    /// The entries, ascending by key unless during an update.
    const _entry* begin() const { return _entries.begin(); }
    const _entry* end() const { return _entries.end(); }

private:
    static bool isBefore(const _entry& a, const _entry& b) { return a.key < b.key; }

    PushBackVector<_entry> _entries;
    bool _updating = false;
};

} // namespace cnt
