#include "CaughtAsserts.h"

#include <utility>

namespace test
{

namespace
{

std::string listed(const std::vector<std::string>& texts)
{
    std::string list;
    for (const std::string& text : texts)
        list += "\n  " + text;
    return texts.empty() ? " none" : list;
}

} // namespace

CaughtAsserts::CaughtAsserts()
    : _previous(td::setAssertHandler(
          [this](const td::AssertReport& report)
          {
              _conditions.emplace_back(report.condition);
              _lastFunction = report.function;
              _lastFile = report.file;
          }))
{
}

CaughtAsserts::~CaughtAsserts()
{
    EXPECT_TRUE(_conditions.empty()) << "unexpected assertions:" << listed(_conditions);
    td::setAssertHandler(std::move(_previous));
}

testing::AssertionResult CaughtAsserts::caught(const std::vector<std::string>& conditions)
{
    const std::vector<std::string> actual = std::exchange(_conditions, {});
    const std::vector<std::string> expected = td::cAssertReports ? conditions : std::vector<std::string>{};
    if (actual == expected)
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << "assertions:" << listed(actual) << "\nexpected:" << listed(expected);
}

testing::AssertionResult CaughtAsserts::caught(const std::string& condition)
{
    return caught(std::vector<std::string>{condition});
}

} // namespace test
