#pragma once

#include <cstddef>
#include <cstdlib>
#include <new>
#include <type_traits>

namespace gui::draw
{

/// Records in a row, which the system moves by their pages when there are more of them: copying tens of megabytes over
/// and over, into pages that are new each time, takes longer than making what is in them.
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
        {
            const std::size_t capacity = _size + n + (_size + n) / 2;
            void* moved = std::realloc(static_cast<void*>(_records), capacity * sizeof(Record));
            if (moved == nullptr)
                throw std::bad_alloc();
            _records = static_cast<Record*>(moved);
            _capacity = capacity;
        }
        _size += n;
    }

    /// Keeps the memory.
    void clear() { _size = 0; }

private:
    Record* _records = nullptr;
    std::size_t _size = 0;
    std::size_t _capacity = 0;
};

} // namespace gui::draw
