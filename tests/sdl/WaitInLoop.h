#pragma once

#include "Waiting.h"

#include <gui/Application.h>

#include <string>

namespace test
{

/// The program that a fixture runs.
inline gui::Application*& theApplication()
{
    static gui::Application* pApplication = nullptr;
    return pApplication;
}

/// Turns the run loop until the condition is true. @return whether it came true in time
template <typename Condition>
bool waitInLoop(const Condition& condition, double seconds = cPatience)
{
    constexpr double cTurn = 0.02;
    const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
    while (!condition())
    {
        if (std::chrono::steady_clock::now() > end)
            return false;
        theApplication()->step(cTurn);
    }
    return true;
}

} // namespace test
