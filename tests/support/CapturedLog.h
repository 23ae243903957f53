#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace test
{

/// Collects log lines while it lives. A line that no check asked for fails the test at the end.
class CapturedLog
{
public:
    CapturedLog();
    ~CapturedLog();
    CapturedLog(const CapturedLog&) = delete;
    CapturedLog& operator=(const CapturedLog&) = delete;

    /// The lines since the last call; forgets them.
    std::vector<std::string> take();

    /// Whether exactly this line was written since the last check; forgets what was.
    testing::AssertionResult said(const std::string& line);

private:
    std::vector<std::string> _lines;
};

} // namespace test
