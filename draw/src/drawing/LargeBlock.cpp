#include "LargeBlock.h"

#include <mem/LargePages.h>

#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>

#ifdef __linux__
#include <sys/mman.h>

#include <cstdint>
#endif

namespace gui::draw
{

namespace
{

constexpr std::size_t cLargePage = std::size_t(2) << 20;

#ifdef __linux__

// Of addresses alone, on whole large pages: those of another block keep their pages only where they lie as they did.
void* takeAddresses(std::size_t nBytes)
{
    const std::size_t nWithin = nBytes + cLargePage;
    void* const pAll = mmap(nullptr, nWithin, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (pAll == MAP_FAILED)
        throw std::bad_alloc();
    char* const pFirst = static_cast<char*>(pAll);
    const std::size_t before = (cLargePage - reinterpret_cast<std::uintptr_t>(pAll) % cLargePage) % cLargePage;
    if (before != 0)
        munmap(pFirst, before);
    munmap(pFirst + before + nBytes, cLargePage - before);
    return pFirst + before;
}

void* allocate(std::size_t nBytes)
{
    void* const pMemory = takeAddresses(nBytes);
    if (mprotect(pMemory, nBytes, PROT_READ | PROT_WRITE) == 0)
        return pMemory;
    munmap(pMemory, nBytes);
    throw std::bad_alloc();
}

void deallocate(void* pMemory, std::size_t nBytes) { munmap(pMemory, nBytes); }

void* enlarge(void* pMemory, std::size_t nOld, std::size_t nBytes)
{
    void* const pPlace = takeAddresses(nBytes);
    // What was there is gone when it fails, and may be another thread's by then.
    if (mremap(pMemory, nOld, nBytes, MREMAP_MAYMOVE | MREMAP_FIXED, pPlace) != pPlace)
        throw std::bad_alloc();
    return pPlace;
}

#else

void* allocate(std::size_t nBytes)
{
    void* const pMemory = std::malloc(nBytes);
    if (pMemory == nullptr)
        throw std::bad_alloc();
    return pMemory;
}

void deallocate(void* pMemory, std::size_t) { std::free(pMemory); }

void* enlarge(void* pMemory, std::size_t, std::size_t nBytes)
{
    void* const pLarger = std::realloc(pMemory, nBytes);
    if (pLarger == nullptr)
        throw std::bad_alloc();
    return pLarger;
}

#endif

} // namespace

LargeBlock::~LargeBlock()
{
    if (_pMemory != nullptr)
        deallocate(_pMemory, _size);
}

LargeBlock& LargeBlock::operator=(LargeBlock&& other) noexcept
{
    LargeBlock(std::move(other)).swap(*this);
    return *this;
}

void LargeBlock::swap(LargeBlock& other) noexcept
{
    std::swap(_pMemory, other._pMemory);
    std::swap(_size, other._size);
}

void LargeBlock::grow(std::size_t nBytes)
{
    const std::size_t size = (nBytes + cLargePage - 1) / cLargePage * cLargePage;
    _pMemory = _pMemory == nullptr ? allocate(size) : enlarge(_pMemory, _size, size);
    _size = size;
    mem::adviseLargePages(_pMemory, _size);
}

} // namespace gui::draw
