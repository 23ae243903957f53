#pragma once

#include <mem/LargePages.h>
#include <td/Assert.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

namespace cnt
{

/// The growable array: its capacity doubles, from 1. All slots of the storage are default-constructed, also those
/// behind the last element in use. It moves but can't be copied. The second argument is always 0.
/// Growing copies the elements by assignment, in bulk where they are trivially copyable, and makes pointers and
/// references to them invalid. When an allocation or a copy fails with an exception, the vector keeps its elements;
/// only reserve loses them. Values that are pushed or inserted may be elements of the vector itself.
template <typename T, unsigned char N = 0>
class PushBackVector
{
    static_assert(N == 0);

public:
    /// No elements, no storage.
    PushBackVector() = default;
    PushBackVector(PushBackVector&& other) noexcept
        : _pData(std::exchange(other._pData, nullptr))
        , _pEnd(std::exchange(other._pEnd, nullptr))
        , _capacity(std::exchange(other._capacity, 0))
    {
    }
    PushBackVector(const PushBackVector&) = delete;
    PushBackVector& operator=(const PushBackVector&) = delete;
    ~PushBackVector()
    {
        static_assert(offsetof(PushBackVector, _pData) == 0 && offsetof(PushBackVector, _pEnd) == 8 &&
                      offsetof(PushBackVector, _capacity) == 16);
        delete[] _pData;
    }

    /// Empties the vector and sets its capacity to exactly n. This is no growth hint: the elements are gone in every
    /// case. The storage is kept only when n is the capacity already. If the allocation fails (an exception), the
    /// vector is left without storage.
    void reserve(std::size_t n)
    {
        if (n != _capacity)
        {
            release();
            if (n > 0)
            {
                _pData = allocate(n);
                _capacity = n;
            }
        }
        _pEnd = _pData;
    }

    /// Appends a copy of a value.
    void push_back(const T& value)
    {
        if (_pEnd != getEndPos()) [[likely]]
        {
            *_pEnd = value;
            ++_pEnd;
        }
        else
            insertAndGrow(size(), &value, 1);
    }

    /// Appends copies of n values: the same as pushing them one by one, the final capacity included, but growing at
    /// most once. Either all of them are appended or, with an exception, none.
    /// @param pValues  n values; may be null when n is 0
    void push_back(const T* pValues, std::size_t n)
    {
        TD_ASSERT(pValues != nullptr || n == 0);
        if (n > _capacity - size()) [[unlikely]]
            insertAndGrow(size(), pValues, n);
        else if constexpr (std::is_trivially_copyable_v<T>)
        {
            // By its own name: the compiler knows no better way to copy a few values. And last: _pEnd would be read
            // again behind it.
            T* const pTo = std::exchange(_pEnd, _pEnd + n);
            if (n != 0) [[likely]]
                std::memcpy(pTo, pValues, n * sizeof(T));
        }
        else
            _pEnd = std::copy_n(pValues, n, _pEnd);
    }

    /// Appends one slot that the caller fills: it holds a default-constructed or a formerly used element.
    /// @return the slot; valid until the vector grows, is reserved, released or destroyed
    T& push_back()
    {
        if (_pEnd == getEndPos()) [[unlikely]]
            return *pushSlots(1);
        return *_pEnd++;
    }
    T& push_back2() { return push_back(); }

    /// The same for n slots in a row, growing at most once. @return the first of them; null when there is no storage
    T* pushSlots(std::size_t n)
    {
        const std::size_t sz = size();
        if (n <= _capacity - sz)
            _pEnd += n;
        else
            insertAndGrow(sz, nullptr, n);
        return _pData + sz;
    }

    /// Takes into use all slots up to one, which the caller has filled already.
    /// @param pEnd  from end() to getEndPos()
    void useTo(T* pEnd) { _pEnd = pEnd; }

    /// Inserts a copy of a value before the element at pos; a pos of size() or beyond appends it.
    void insert(std::size_t pos, const T& value)
    {
        if (pos >= size())
        {
            push_back(value);
            return;
        }
        if (_pEnd == getEndPos())
        {
            insertAndGrow(pos, &value, 1);
            return;
        }
        // The value may be one of the elements that move, or belong to one.
        const T copy(value);
        T* const pLast = _pEnd - 1;
        *_pEnd = *pLast;
        ++_pEnd;
        std::copy_backward(_pData + pos, pLast, pLast + 1);
        _pData[pos] = copy;
    }

    /// Takes the last element out of use; its slot keeps the value. @return false when there is none
    bool remove_back()
    {
        if (_pEnd == _pData)
            return false;
        --_pEnd;
        return true;
    }

    /// Both stop the program when pos is not below size().
    T& at(std::size_t pos)
    {
        checkPos(__func__, pos, "pos < size()");
        return _pData[pos];
    }
    const T& at(std::size_t pos) const
    {
        checkPos(__func__, pos, "pos < size()");
        return _pData[pos];
    }
    T& operator[](std::size_t pos)
    {
        checkPos(__func__, pos, "pos < sz");
        return _pData[pos];
    }
    const T& operator[](std::size_t pos) const
    {
        checkPos(__func__, pos, "pos < sz");
        return _pData[pos];
    }

    std::size_t size() const { return std::size_t(_pEnd - _pData); }
    std::size_t capacity() const { return _capacity; }

    T* begin() { return _pData; }
    T* end() { return _pEnd; }
    const T* begin() const { return _pData; }
    const T* end() const { return _pEnd; }

    /// One past the last slot of the storage: where end() can get without growing.
    T* getEndPos() { return _pData + _capacity; }
    const T* getEndPos() const { return _pData + _capacity; }

    /// Empties the vector. The storage, and what its slots hold, is kept.
    void reset() { _pEnd = _pData; }

    /// Empties the vector and frees its storage.
    void release()
    {
        T* const pData = std::exchange(_pData, nullptr);
        _pEnd = nullptr;
        _capacity = 0;
        delete[] pData;
    }

private:
    void checkPos(const char* function, std::size_t pos, const char* condition) const
    {
        const std::size_t sz = size();
        if (pos >= sz) [[unlikely]]
            td::stopOnAssert({function, __FILE__, __LINE__, condition}, td::cAssertReports);
    }

    static T* allocate(std::size_t n)
    {
        T* const pData = new T[n];
        // Slots that are made by writing to them have their pages already.
        if constexpr (std::is_trivially_default_constructible_v<T>)
            if (n >= mem::cLargePagesFrom / sizeof(T)) [[unlikely]]
                mem::adviseLargePages(pData, n * sizeof(T));
        return pData;
    }

    // Doubles the capacity until n more elements fit, at least once, and puts the n values before pos; without values,
    // the slots are left as they are made. The old storage lives on until they are copied, since they may lie in it.
    [[gnu::noinline]] void insertAndGrow(std::size_t pos, const T* pValues, std::size_t n)
    {
        constexpr std::size_t cMax = std::numeric_limits<std::size_t>::max();
        const std::size_t sz = size();
        if (n > cMax - sz)
            throw std::bad_array_new_length();
        std::size_t newCapacity = _capacity;
        do
        {
            if (newCapacity > cMax / 2)
                throw std::bad_array_new_length();
            newCapacity = newCapacity == 0 ? 1 : newCapacity * 2;
        } while (newCapacity < sz + n);

        std::unique_ptr<T[]> newData(allocate(newCapacity));
        T* const pNewData = newData.get();
        // A class with an operator new[] of its own that never throws can get here without storage.
        if (pNewData == nullptr) [[unlikely]]
            td::stopOnAssert({"push_back", __FILE__, __LINE__, "pNewData != nullptr"}, td::cAssertReports);
        T* pTo = std::copy_n(_pData, pos, pNewData);
        pTo = pValues != nullptr ? std::copy_n(pValues, n, pTo) : pTo + n;
        pTo = std::copy(_pData + pos, _pEnd, pTo);

        T* const pOldData = std::exchange(_pData, newData.release());
        _pEnd = pTo;
        _capacity = newCapacity;
        delete[] pOldData;
    }

    T* _pData = nullptr;
    T* _pEnd = nullptr;
    std::size_t _capacity = 0;
};

} // namespace cnt
