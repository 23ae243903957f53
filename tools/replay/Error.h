#pragma once

#include <stdexcept>

namespace replay
{

/// Why a file is refused, or a command: one line for the user.
class Error : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

} // namespace replay
