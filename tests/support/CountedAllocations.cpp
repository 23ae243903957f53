#include "CountedAllocations.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

namespace
{

std::atomic<unsigned long> s_nAllocations = 0;
std::atomic<std::size_t> s_largest = 0;

void* allocateOrNull(std::size_t n) noexcept
{
    ++s_nAllocations;
    s_largest = std::max(s_largest.load(), n);
    return std::malloc(n == 0 ? 1 : n);
}

void* allocate(std::size_t n)
{
    if (void* p = allocateOrNull(n))
        return p;
    throw std::bad_alloc();
}

} // namespace

void* operator new(std::size_t n) { return allocate(n); }
void* operator new[](std::size_t n) { return allocate(n); }
void* operator new(std::size_t n, const std::nothrow_t&) noexcept { return allocateOrNull(n); }
void* operator new[](std::size_t n, const std::nothrow_t&) noexcept { return allocateOrNull(n); }
void operator delete(void* p) noexcept { std::free(p); }
void operator delete[](void* p) noexcept { std::free(p); }
void operator delete(void* p, std::size_t) noexcept { std::free(p); }
void operator delete[](void* p, std::size_t) noexcept { std::free(p); }

namespace test
{

unsigned long countedAllocations() { return s_nAllocations; }

std::size_t largestAllocation() { return s_largest.exchange(0); }

} // namespace test
