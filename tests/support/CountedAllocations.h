#pragma once

namespace test
{

/// How often this program called operator new so far, in its libraries too. For programs that have
/// CountedAllocations.cpp among their sources.
unsigned long countedAllocations();

} // namespace test
