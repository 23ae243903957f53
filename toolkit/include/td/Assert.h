#pragma once

#include "Export.h"

#include <functional>

namespace td
{

/// What a failed assertion says: where it stands and the condition as it is written there.
struct AssertReport
{
    const char* function;  ///< name of the function, unqualified
    const char* file;      ///< source file
    int line;              ///< line in that file
    const char* condition; ///< text of the condition that did not hold
};

/// What is called with the report of a failed assertion.
using AssertHandler = std::function<void(const AssertReport&)>;

/// Replaces what happens when an assertion fails. The default prints one line to standard error and aborts the program.
/// A handler may throw, and the exception leaves the operation that asserted; when it returns, that operation returns
/// the result its comment names for misuse, having changed nothing.
/// @param handler  the new handler; an empty one restores the default
/// @return the handler that was set before, empty for the default. GUI thread only.
GUIGL_API AssertHandler setAssertHandler(AssertHandler handler);

/// Calls the handler. For TD_ASSERT.
GUIGL_API void reportAssert(const AssertReport& report);

/// For checks that have no result to return, the element access of containers: calls the handler (in builds with
/// assertions, when `reports` is true) and stops the program if the handler returns.
[[noreturn]] GUIGL_API void stopOnAssert(const AssertReport& report, bool reports);

/// Whether this build was compiled with assertions, that is without NDEBUG.
#ifdef NDEBUG
inline constexpr bool cAssertReports = false;
#else
inline constexpr bool cAssertReports = true;
#endif

} // namespace td

/// Checks a condition that only a programming error can break: TD_ASSERT(condition, result...).
/// When it does not hold, the failure is reported through the handler, and the enclosing function returns `result`.
/// With NDEBUG only the report goes: the check stays, and the function returns `result` all the same.
#ifdef NDEBUG
#define TD_ASSERT(condition, ...)                                                                                      \
    do                                                                                                                 \
    {                                                                                                                  \
        if (!(condition)) [[unlikely]]                                                                                 \
            return __VA_ARGS__;                                                                                        \
    } while (false)
#else
#define TD_ASSERT(condition, ...)                                                                                      \
    do                                                                                                                 \
    {                                                                                                                  \
        if (!(condition)) [[unlikely]]                                                                                 \
        {                                                                                                              \
            ::td::reportAssert({__func__, __FILE__, __LINE__, #condition});                                            \
            return __VA_ARGS__;                                                                                        \
        }                                                                                                              \
    } while (false)
#endif
