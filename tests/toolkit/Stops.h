#pragma once

#include <td/Assert.h>

#include <gtest/gtest.h>

#include <csignal>
#include <string>

namespace test
{

/// The pattern that finds what the program says when it stops: without assertion reports it says nothing.
inline std::string stopPattern(const std::string& condition, const std::string& function)
{
    if (!td::cAssertReports)
        return "";
    std::string pattern;
    for (const char c : "Assertion failed: " + condition + ", in " + function + ",")
    {
        if (std::string("()[]|.*+?").find(c) != std::string::npos)
            pattern += '\\';
        pattern += c;
    }
    return pattern;
}

} // namespace test

/// Expects the statement to stop the program with an assertion of this text in this function.
#define EXPECT_STOPS(statement, condition, function)                                                                   \
    EXPECT_EXIT(statement, testing::KilledBySignal(SIGABRT), test::stopPattern(condition, function))
