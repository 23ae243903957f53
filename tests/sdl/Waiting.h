#pragma once

#include <chrono>
#include <thread>

namespace test
{

/// Longer than anything takes on a busy machine.
constexpr double cPatience = 30;

/// Asks again and again. @return whether the condition came true in time
template <typename Condition>
bool waitFor(const Condition& condition, double seconds = cPatience)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
    while (!condition())
    {
        if (std::chrono::steady_clock::now() > end)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
}

} // namespace test
