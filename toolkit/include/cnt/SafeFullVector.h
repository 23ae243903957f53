#pragma once

#include <td/Assert.h>

#include <cstddef>
#include <cstring>
#include <type_traits>
#include <utility>

namespace cnt
{

/// An array on the heap whose size is set by reserve, with checked access; every element is in use from then on.
/// It moves but can't be copied. The second argument is always false.
template <typename T, bool NotUsed = false>
class SafeFullVector
{
    static_assert(!NotUsed);

public:
    /// No elements, no storage.
    SafeFullVector() = default;
    SafeFullVector(SafeFullVector&& other) noexcept
        : _data(std::exchange(other._data, nullptr))
        , _size(std::exchange(other._size, 0))
    {
    }
    SafeFullVector(const SafeFullVector&) = delete;
    SafeFullVector& operator=(const SafeFullVector&) = delete;
    ~SafeFullVector() { delete[] _data; }

    /// Makes it n elements long. When n is the size already, nothing happens. Otherwise the old elements are destroyed
    /// and the new ones default-constructed: numbers hold anything until they are written or zeros() is called. If the
    /// allocation fails (an exception), there are no elements left.
    void reserve(std::size_t n)
    {
        if (n == _size)
            return;
        delete[] std::exchange(_data, nullptr);
        _size = 0;
        if (n == 0)
            return;
        _data = new T[n];
        _size = n;
    }

    /// Sets all bytes of the elements to 0.
    void zeros()
    {
        static_assert(std::is_trivially_copyable_v<T>);
        if (_size != 0)
            std::memset(static_cast<void*>(_data), 0, _size * sizeof(T));
    }

    /// Stops the program when pos is not below the size.
    T& operator[](std::size_t pos)
    {
        checkPos(__func__, pos);
        return _data[pos];
    }
    const T& operator[](std::size_t pos) const
    {
        checkPos(__func__, pos);
        return _data[pos];
    }

    std::size_t size() const { return _size; }

    T* begin() { return _data; }
    T* end() { return _data + _size; }
    const T* begin() const { return _data; }
    const T* end() const { return _data + _size; }

private:
    void checkPos(const char* function, std::size_t pos) const
    {
        // A size above 0 comes with storage, so this is the whole of the condition.
        if (pos >= _size) [[unlikely]]
            td::stopOnAssert({function, __FILE__, __LINE__, "pos >= 0 && pos < _size && _data"}, td::cAssertReports);
    }

    T* _data = nullptr;
    std::size_t _size = 0;
};

static_assert(sizeof(SafeFullVector<char>) == 16);

} // namespace cnt
