#pragma once

#include <cstddef>

namespace test
{

/// How often this program called operator new so far, in its libraries too. For programs that have
/// CountedAllocations.cpp among their sources.
unsigned long countedAllocations();

/// The largest number of bytes that was asked for at once since the last call.
std::size_t largestAllocation();

} // namespace test
