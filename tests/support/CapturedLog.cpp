#include "CapturedLog.h"

#include "Lines.h"

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

testing::AssertionResult CapturedLog::said(const std::string& line) { return areLines("log lines", take(), {line}); }

} // namespace test
