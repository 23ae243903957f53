#pragma once

#include <td/Export.h>

#include <cstddef>

namespace mem
{

/// From this many bytes on, asking for large pages is worth its system call.
inline constexpr std::size_t cLargePagesFrom = std::size_t(4) << 20;

/// Asks the system to back memory that was not touched yet with large pages, where it lies on whole ones: filling it
/// then takes one interruption for megabytes instead of one for every 4,096 bytes. A hint: nothing else changes, and
/// nothing fails.
GUIGL_API void adviseLargePages(void* pMemory, std::size_t nBytes) noexcept;

} // namespace mem
