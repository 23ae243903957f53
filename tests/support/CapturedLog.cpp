#include "CapturedLog.h"

#include <vo/Log.h>

#include <utility>

namespace test
{

CapturedLog::CapturedLog()
{
    vo::setLogSink([this](const char* text) { _lines.emplace_back(text); });
}

CapturedLog::~CapturedLog()
{
    vo::setLogSink({});
    for (const std::string& line : _lines)
        ADD_FAILURE() << "unexpected log line: " << line;
}

std::vector<std::string> CapturedLog::take() { return std::exchange(_lines, {}); }

testing::AssertionResult CapturedLog::said(const std::string& line)
{
    const std::vector<std::string> actual = take();
    if (actual == std::vector<std::string>{line})
        return testing::AssertionSuccess();
    testing::AssertionResult result = testing::AssertionFailure() << "log lines:";
    for (const std::string& text : actual)
        result << "\n  " << text;
    return result << "\nexpected:\n  " << line;
}

} // namespace test
