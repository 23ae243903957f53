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
    const auto isTrueOrTurns = [&]
    {
        if (condition())
            return true;
        theApplication()->step(0.02);
        return false;
    };
    return waitFor(isTrueOrTurns, seconds);
}

} // namespace test
