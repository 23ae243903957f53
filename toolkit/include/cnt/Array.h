#pragma once

#include <td/Assert.h>

#include <cstddef>

namespace cnt
{

/// SIZE elements in place, with checked access. Elements that no initialiser is given for are value-initialised.
template <typename T, std::size_t SIZE>
struct Array
{
    static_assert(SIZE > 0);

    T _data[SIZE]{};

    /// Stops the program when pos is not below SIZE.
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

    static constexpr std::size_t size() { return SIZE; }

    T* begin() { return _data; }
    T* end() { return _data + SIZE; }
    const T* begin() const { return _data; }
    const T* end() const { return _data + SIZE; }

private:
    static void checkPos(const char* function, std::size_t pos)
    {
        if (pos >= SIZE) [[unlikely]]
            td::stopOnAssert({function, __FILE__, __LINE__, "(pos >=0) && (pos < SIZE)"}, td::cAssertReports);
    }
};

} // namespace cnt
