#include <td/Assert.h>

#include <cstdio>
#include <cstdlib>
#include <utility>

namespace td
{

namespace
{

// A function's static, so that an assertion in a static constructor finds it ready.
AssertHandler& currentHandler()
{
    static AssertHandler handler;
    return handler;
}

} // namespace

AssertHandler setAssertHandler(AssertHandler handler) { return std::exchange(currentHandler(), std::move(handler)); }

void reportAssert(const AssertReport& report)
{
    // The copy keeps the handler alive if it replaces itself.
    if (const AssertHandler handler = currentHandler())
    {
        handler(report);
        return;
    }
    std::fprintf(stderr, "Assertion failed: %s, in %s, %s:%d\n", report.condition, report.function, report.file,
                 report.line);
    std::abort();
}

void stopOnAssert(const AssertReport& report, bool reports)
{
    if (reports)
        reportAssert(report);
    std::abort();
}

} // namespace td
