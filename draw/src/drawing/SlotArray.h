#pragma once

#include <mem/LargePages.h>

#include <array>
#include <bit>
#include <cstddef>
#include <new>

namespace gui::draw
{

/// Objects by number that stay where they are while more are added, in blocks that double: few of them take little
/// memory, and a million are found as fast. Not copyable; nothing is removed.
template <typename Object>
class SlotArray
{
public:
    SlotArray() = default;
    ~SlotArray()
    {
        for (std::size_t i = 0; i < _size; ++i)
            (*this)[i].~Object();
        for (Object* pBlock : _blocks)
            ::operator delete(pBlock, cAlignment);
    }
    SlotArray(const SlotArray&) = delete;
    SlotArray& operator=(const SlotArray&) = delete;

    std::size_t size() const { return _size; }
    Object& operator[](std::size_t i)
    {
        const std::size_t block = blockOf(i);
        return _blocks[block][i - firstOf(block)];
    }
    const Object& operator[](std::size_t i) const
    {
        const std::size_t block = blockOf(i);
        return _blocks[block][i - firstOf(block)];
    }

    void emplace_back()
    {
        const std::size_t block = blockOf(_size);
        if (_blocks[block] == nullptr)
        {
            // Blocks have numbers of a few bits. NOLINTNEXTLINE(clang-analyzer-core.UndefinedBinaryOperatorResult)
            const std::size_t nBytes = (cFirst << block) * sizeof(Object);
            void* pMemory = ::operator new(nBytes, cAlignment);
            if (nBytes >= mem::cLargePagesFrom)
                mem::adviseLargePages(pMemory, nBytes);
            _blocks[block] = static_cast<Object*>(pMemory);
        }
        new (_blocks[block] + (_size - firstOf(block))) Object; // with what its members are given, and no zeros before
        ++_size;
    }

private:
    static constexpr std::size_t cFirst = 32; // objects of the first block
    static constexpr std::align_val_t cAlignment{64};

    static std::size_t blockOf(std::size_t i) { return static_cast<std::size_t>(std::bit_width(i / cFirst + 1)) - 1; }
    static std::size_t firstOf(std::size_t block) { return cFirst * ((std::size_t(1) << block) - 1); }

    std::array<Object*, 40> _blocks{};
    std::size_t _size = 0;
};

} // namespace gui::draw
