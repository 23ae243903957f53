#pragma once

namespace td
{

/// 'A' to 'Z' in lower case; every other character as it is, whatever the locale.
constexpr char toLower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

} // namespace td
