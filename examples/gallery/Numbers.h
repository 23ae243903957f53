#pragma once

#include <string>

namespace gallery
{

/// A number as people write it, with a comma before each three digits.
std::string grouped(long number);

} // namespace gallery
