#pragma once

#include <mem/LargePages.h>

#include <cstddef>
#include <memory>
#include <new>
#include <utility>
#include <vector>

namespace gui::draw
{

/// Gives a vector large pages, where it is large, and leaves records that are added without a value as they are: the
/// first touch of millions of them takes as long as the work on them.
template <typename T>
struct LargeAllocator
{
    using value_type = T;

    LargeAllocator() = default;
    template <typename U>
    LargeAllocator(const LargeAllocator<U>&)
    {
    }

    T* allocate(std::size_t n)
    {
        T* const p = std::allocator<T>().allocate(n);
        if (n * sizeof(T) >= mem::cLargePagesFrom)
            mem::adviseLargePages(p, n * sizeof(T));
        return p;
    }

    void deallocate(T* p, std::size_t n) { std::allocator<T>().deallocate(p, n); }

    template <typename U>
    void construct(U* p)
    {
        ::new (static_cast<void*>(p)) U;
    }
    template <typename U, typename... Values>
    void construct(U* p, Values&&... values)
    {
        ::new (static_cast<void*>(p)) U(std::forward<Values>(values)...);
    }

    bool operator==(const LargeAllocator&) const = default;
};

/// A vector for millions of records. What resize adds has no value yet.
template <typename T>
using LargeVector = std::vector<T, LargeAllocator<T>>;

} // namespace gui::draw
