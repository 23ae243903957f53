#include "CapturedLog.h"

#include "Lines.h"

#include <vo/Log.h>

#include <string_view>
#include <utility>

namespace test
{

CapturedLog::CapturedLog()
{
    // What the driver's version is has nothing to do with what a test does.
    vo::setLogSink(
        [this](std::string_view text)
        {
            if (!text.starts_with("Warning! OffscreenContext asked for OpenGL 4.1 core"))
                _lines.emplace_back(text);
        });
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
