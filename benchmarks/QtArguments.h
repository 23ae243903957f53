#pragma once

#include <array>

namespace bench
{

/// What an application of Qt's is made with.
struct QtArguments
{
    std::array<char, 6> name{"bench"};
    std::array<char*, 2> values{name.data(), nullptr};
    int count = 1;

    QtArguments() = default;
    QtArguments(const QtArguments&) = delete;
    QtArguments& operator=(const QtArguments&) = delete;
};

} // namespace bench
