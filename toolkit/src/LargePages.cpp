#include <mem/LargePages.h>

#ifdef __linux__
#include <sys/mman.h>
#endif

#include <cerrno>
#include <cstdint>

namespace mem
{

void adviseLargePages([[maybe_unused]] void* pMemory, [[maybe_unused]] std::size_t nBytes) noexcept
{
#ifdef MADV_HUGEPAGE
    constexpr std::uintptr_t cLargePage = std::uintptr_t(2) << 20;
    const auto address = reinterpret_cast<std::uintptr_t>(pMemory);
    const std::uintptr_t begin = (address + cLargePage - 1) & ~(cLargePage - 1);
    const std::uintptr_t end = (address + nBytes) & ~(cLargePage - 1);
    if (begin >= end)
        return;
    const int error = errno; // a kernel without large pages says so
    madvise(reinterpret_cast<void*>(begin), end - begin, MADV_HUGEPAGE);
    errno = error;
#endif
}

} // namespace mem
