#pragma once

#include "LargeBlock.h"

#include <mem/LargePages.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <new>
#include <type_traits>
#include <utility>

namespace gui::draw
{

/// Records in a row, for millions of them: the first touch of each page of memory takes as long as some hundred
/// records, so large arrays are blocks that grow without being copied, to four times what they were, which costs
/// nothing as long as it is not touched.
template <typename Record>
class GrowingArray
{
    static_assert(std::is_trivially_copyable_v<Record>);

public:
    GrowingArray() = default;
    ~GrowingArray()
    {
        if (_block.getMemory() == nullptr)
            std::free(_records);
    }
    GrowingArray(const GrowingArray&) = delete;
    GrowingArray& operator=(const GrowingArray&) = delete;
    GrowingArray(GrowingArray&& other) noexcept { swap(other); }
    GrowingArray& operator=(GrowingArray&& other) noexcept
    {
        GrowingArray(std::move(other)).swap(*this);
        return *this;
    }

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

    /// Leaves the first n of them, and keeps the memory.
    void shrink(std::size_t n) { _size = n; }
    void clear() { _size = 0; }

private:
    void swap(GrowingArray& other) noexcept
    {
        std::swap(_block, other._block);
        std::swap(_records, other._records);
        std::swap(_size, other._size);
        std::swap(_capacity, other._capacity);
    }

    void reserve(std::size_t n)
    {
        // So large that few ever have to grow again, between two frames.
        constexpr std::size_t cLeast = std::size_t(32) << 20;
        if (n * sizeof(Record) >= mem::cLargePagesFrom / 4)
        {
            const bool isFirst = _block.getMemory() == nullptr;
            _block.grow(std::max(4 * n * sizeof(Record), cLeast));
            auto* const records = static_cast<Record*>(_block.getMemory());
            if (isFirst && _size != 0)
                std::memcpy(static_cast<void*>(records), static_cast<const void*>(_records), _size * sizeof(Record));
            if (isFirst)
                std::free(_records);
            _records = records;
            _capacity = _block.getSize() / sizeof(Record);
            return;
        }
        const std::size_t capacity = n + n / 2;
        void* const pMemory = std::realloc(static_cast<void*>(_records), capacity * sizeof(Record));
        if (pMemory == nullptr)
            throw std::bad_alloc();
        _records = static_cast<Record*>(pMemory);
        _capacity = capacity;
    }

    LargeBlock _block; // that the records are in, where there are many
    Record* _records = nullptr;
    std::size_t _size = 0;
    std::size_t _capacity = 0;
};

} // namespace gui::draw
