#pragma once

#include "Assert.h"
#include "Export.h"

namespace td
{

/// The one thread that applications, windows, views, drawings and all that needs a GL context are for. It is the thread
/// that makes the gui::Application; without one, the thread that makes a context current while no other is alive.
///
/// Builds with assertions notice a call from any other thread: see TD_ASSERT_GUI_THREAD. Work of other threads comes in
/// by gui::ZavObject::asyncCall.
class GUIGL_API GUIThread
{
public:
    /// Makes the calling thread the GUI thread. Any thread.
    static void claim();
    /// Whether the calling thread is it; true as long as none has been claimed. Any thread.
    static bool isCurrent();
    /// "GUI thread only: called on 'loader' (4712), the GUI thread is 'viewer' (4711)", by the names that the threads
    /// have in debuggers (pthread_setname_np) and the numbers that the system has for them. Any thread.
    /// @return valid until the thread calls it again
    static const char* describe();
};

} // namespace td

/// Checks that the GUI thread is the calling one: TD_ASSERT_GUI_THREAD(result...). When it is not, the assertion
/// handler gets a report whose condition is GUIThread::describe's text, on the thread that called, and the enclosing
/// function returns `result`. With NDEBUG there is no check.
#ifdef NDEBUG
#define TD_ASSERT_GUI_THREAD(...) static_cast<void>(0)
#else
#define TD_ASSERT_GUI_THREAD(...)                                                                                      \
    do                                                                                                                 \
    {                                                                                                                  \
        if (!::td::GUIThread::isCurrent()) [[unlikely]]                                                                \
        {                                                                                                              \
            ::td::reportAssert({__func__, __FILE__, __LINE__, ::td::GUIThread::describe()});                           \
            return __VA_ARGS__;                                                                                        \
        }                                                                                                              \
    } while (false)
#endif
