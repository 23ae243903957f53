#pragma once

#include <mem/LargePages.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <new>
#include <type_traits>

namespace gui::draw
{

/// Records in a row, for millions of them: the first touch of each page of memory takes as long as some hundred
/// records, so large arrays grow to four times what they were, which costs nothing as long as it is not touched, and
/// ask for large pages.
template <typename Record>
class GrowingArray
{
    static_assert(std::is_trivially_copyable_v<Record>);

public:
    GrowingArray() = default;
    ~GrowingArray() { std::free(_records); }
    GrowingArray(const GrowingArray&) = delete;
    GrowingArray& operator=(const GrowingArray&) = delete;

    std::size_t size() const { return _size; }
    Record* data() { return _records; }
    const Record* data() const { return _records; }
    Record& operator[](std::size_t i) { return _records[i]; }
    const Record& operator[](std::size_t i) const { return _records[i]; }

    /// Adds records of undefined content.
    void grow(std::size_t n)
    {
        if (_size + n > _capacity)
            reserve(_size + n);
        _size += n;
    }

    /// Keeps the memory.
    void clear() { _size = 0; }

private:
    void reserve(std::size_t n)
    {
        // So large that few ever have to move to another place, between two frames.
        constexpr std::size_t cLeast = std::size_t(32) << 20;
        const bool isLarge = n * sizeof(Record) >= mem::cLargePagesFrom / 4;
        const std::size_t capacity = isLarge ? std::max(4 * n, cLeast / sizeof(Record)) : n + n / 2;
        const std::size_t nBytes = capacity * sizeof(Record);
        constexpr std::size_t cLargePage = std::size_t(2) << 20;
        void* moved = isLarge ? std::aligned_alloc(cLargePage, (nBytes + cLargePage - 1) / cLargePage * cLargePage)
                              : std::realloc(static_cast<void*>(_records), nBytes);
        if (moved == nullptr)
            throw std::bad_alloc();
        if (isLarge)
        {
            mem::adviseLargePages(moved, nBytes);
            if (_size != 0)
                std::memcpy(moved, static_cast<const void*>(_records), _size * sizeof(Record));
            std::free(_records);
        }
        _records = static_cast<Record*>(moved);
        _capacity = capacity;
    }

    Record* _records = nullptr;
    std::size_t _size = 0;
    std::size_t _capacity = 0;
};

} // namespace gui::draw
