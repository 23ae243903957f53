#pragma once

namespace test
{

/// Whether as many cases are tried as it takes: as released. With assertions and sanitizers, which take ten times as
/// long for each, a part of them shows what those are for.
#ifdef NDEBUG
constexpr bool cIsThorough = true;
#else
constexpr bool cIsThorough = false;
#endif

} // namespace test
