#pragma once

#include <cnt/List.h>

#include <cstddef>
#include <memory>

namespace mem
{

/// A pool that hands out slots for a T, one after another from blocks of nPerBlock. A slot keeps its address until
/// reset hands it out again; single slots are not given back. Destroying the pool frees all of them. It can't be
/// copied.
template <typename T, std::size_t nPerBlock = 1023>
class MemoryManager
{
    static_assert(nPerBlock > 0);

public:
    MemoryManager() = default;
    MemoryManager(const MemoryManager&) = delete;
    MemoryManager& operator=(const MemoryManager&) = delete;
    ~MemoryManager()
    {
        for (T* pBlock : _blocks)
            delete[] pBlock;
    }

    /// @return the next slot, never null. What it holds is left from its last use or, where T's default constructor
    ///         sets nothing, uninitialised. Slots of one block lie side by side. When a new block is needed and can't
    ///         be allocated (an exception), the pool is unchanged.
    T* alloc()
    {
        if (_nUsed == nPerBlock || _current.isEnd())
            openNextBlock();
        return *_current + _nUsed++;
    }

    /// Starts again with the first slot of the first block; no block is freed.
    void reset()
    {
        _current = _blocks.begin();
        _nUsed = 0;
    }

private:
    using Blocks = cnt::List<T*, false>;

    void openNextBlock()
    {
        typename Blocks::iterator next = _current;
        if (!next.isEnd())
            ++next;
        if (next.isEnd())
        {
            auto block = std::make_unique_for_overwrite<T[]>(nPerBlock);
            next = _blocks.push_back(block.get());
            block.release();
        }
        _current = next;
        _nUsed = 0;
    }

    Blocks _blocks;
    typename Blocks::iterator _current; // the block that slots are taken from
    std::size_t _nUsed = 0;             // of that block
};

} // namespace mem
