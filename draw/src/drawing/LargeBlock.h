#pragma once

#include <cstddef>

namespace gui::draw
{

/// Memory for what is so large that touching and copying it are most of what it costs: it asks for large pages, and
/// where the system can move pages to other addresses it grows without being copied. What was not touched yet takes
/// addresses alone.
class LargeBlock
{
public:
    LargeBlock() = default;
    ~LargeBlock();
    LargeBlock(LargeBlock&& other) noexcept { swap(other); }
    LargeBlock& operator=(LargeBlock&& other) noexcept;

    void* getMemory() const { return _pMemory; }
    std::size_t getSize() const { return _size; }

    /// Makes it larger; what it held stays, at another address perhaps. Throws std::bad_alloc when there is no room.
    void grow(std::size_t nBytes);

private:
    void swap(LargeBlock& other) noexcept;

    void* _pMemory = nullptr;
    std::size_t _size = 0; // bytes
};

} // namespace gui::draw
