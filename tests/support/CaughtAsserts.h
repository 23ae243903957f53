#pragma once

#include <td/Assert.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace test
{

/// Collects failed assertions while it lives, so that the operation under test goes on and returns its result for
/// misuse, in builds with assertions and without alike.
/// EXPECT_TRUE(asserts.caught("_handle == nullptr")) also fails on every other assertion since the last check; without
/// assertion reports it expects none. An assertion that no check asked for fails the test at the end.
class CaughtAsserts
{
public:
    CaughtAsserts();
    ~CaughtAsserts();
    CaughtAsserts(const CaughtAsserts&) = delete;
    CaughtAsserts& operator=(const CaughtAsserts&) = delete;

    /// Whether exactly these conditions failed, in this order, since the last check; forgets them.
    testing::AssertionResult caught(const std::vector<std::string>& conditions);
    testing::AssertionResult caught(const std::string& condition);

    /// The function in which the last assertion stood. Empty without assertion reports.
    const std::string& lastFunction() const { return _lastFunction; }

private:
    td::AssertHandler _previous;
    std::vector<std::string> _conditions;
    std::string _lastFunction;
};

} // namespace test
