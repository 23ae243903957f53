#pragma once

#include <td/Assert.h>

#include <utility>

namespace cnt
{

/// A singly linked list that grows at its end. Every entry is allocated on its own, so elements keep their address
/// until the list is cleaned or destroyed. It can't be copied. The second argument is always false.
template <typename T, bool NotUsed = false>
class List
{
    static_assert(!NotUsed);

    struct _entry
    {
        T value;
        _entry* pNext = nullptr;
    };

    template <typename Value, typename Entry>
    class _iterator
    {
    public:
        /// At the end.
        _iterator() = default;
        explicit _iterator(Entry* pEntry)
            : _pEntry(pEntry)
        {
        }

        bool isEnd() const { return _pEntry == nullptr; }

        /// Stops the program at the end.
        Value& operator*() const
        {
            if (_pEntry == nullptr) [[unlikely]]
                td::stopOnAssert({__func__, __FILE__, __LINE__, "pIt"}, td::cAssertReports);
            return _pEntry->value;
        }

        /// Advancing at the end is a programming error ("pIt"); the iterator stays there.
        _iterator& operator++()
        {
            Entry* const pIt = _pEntry;
            TD_ASSERT(pIt, *this);
            _pEntry = pIt->pNext;
            return *this;
        }

        bool operator==(const _iterator&) const = default;

    private:
        Entry* _pEntry = nullptr;
    };

public:
    /// Walk from the first entry to the last. They stay good while entries are appended.
    using iterator = _iterator<T, _entry>;
    using const_iterator = _iterator<const T, const _entry>;

    List() = default;
    List(const List&) = delete;
    List& operator=(const List&) = delete;
    ~List() { clean(); }

    /// Appends a copy of a value. @return the new entry
    iterator push_back(const T& value) { return append(new _entry{value}); }

    /// Appends a default-constructed element: numbers, pointers and characters hold anything until they are written.
    /// @return the new entry
    iterator push_back() { return append(new _entry); }
    iterator push() { return push_back(); }

    iterator begin() { return iterator(_pFirst); }
    iterator end() { return iterator(); }
    const_iterator begin() const { return const_iterator(_pFirst); }
    const_iterator end() const { return const_iterator(); }

    /// The last entry; at the end when the list is empty.
    iterator getLast() { return iterator(_pLast); }
    const_iterator getLast() const { return const_iterator(_pLast); }

    bool isEmpty() const { return _pFirst == nullptr; }

    /// Frees all entries.
    void clean()
    {
        _pLast = nullptr;
        while (_pFirst != nullptr)
            delete std::exchange(_pFirst, _pFirst->pNext);
    }

private:
    iterator append(_entry* pEntry)
    {
        (_pLast != nullptr ? _pLast->pNext : _pFirst) = pEntry;
        _pLast = pEntry;
        return iterator(pEntry);
    }

    _entry* _pFirst = nullptr;
    _entry* _pLast = nullptr;
};

} // namespace cnt
