#pragma once

#include <stdexcept>

namespace fontbake
{

/// Why there is no font: one line for the user.
class Error : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

} // namespace fontbake
