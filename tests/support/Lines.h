#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace test
{

inline std::string listed(const std::vector<std::string>& lines)
{
    std::string text;
    for (const std::string& line : lines)
        text += "\n  " + line;
    return lines.empty() ? " none" : text;
}

/// Whether lines are those expected; a failure shows both, under the name of what they are.
inline testing::AssertionResult areLines(const char* name, const std::vector<std::string>& actual,
                                         const std::vector<std::string>& expected)
{
    if (actual == expected)
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << name << ":" << listed(actual) << "\nexpected:" << listed(expected);
}

} // namespace test
