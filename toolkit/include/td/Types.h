#pragma once

#include <type_traits>

namespace td
{

/// 8 bits without a sign.
using BYTE = unsigned char;

/// The types that points, sizes and the other geometric value types are made of.
template <typename T>
concept Number = std::is_arithmetic_v<T>;

} // namespace td
