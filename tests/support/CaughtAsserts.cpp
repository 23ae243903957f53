#include "CaughtAsserts.h"

#include "Lines.h"

#include <utility>

namespace test
{

CaughtAsserts::CaughtAsserts()
    : _previous(td::setAssertHandler(
          [this](const td::AssertReport& report)
          {
              _conditions.emplace_back(report.condition);
              _lastFunction = report.function;
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
    return areLines("assertions", std::exchange(_conditions, {}),
                    td::cAssertReports ? conditions : std::vector<std::string>{});
}

testing::AssertionResult CaughtAsserts::caught(const std::string& condition)
{
    return caught(std::vector<std::string>{condition});
}

} // namespace test
