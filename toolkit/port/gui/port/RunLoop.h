#pragma once

#include <td/Export.h>

#include <chrono>
#include <optional>
#include <vector>

namespace gui
{

class NativeView;
class Window;

/// One turn after the other: the window system's events, functions from asyncCall, due timers and frame ticks, redraws.
/// It sleeps when nothing is due. What is the same on every window system is here; a window system waits and
/// dispatches. GUI thread only, but for wakeUp.
class GUIGL_API RunLoop
{
public:
    /// What times are read from, and what they are.
    using Clock = std::chrono::steady_clock;
    /// A moment of it.
    using Time = Clock::time_point;

    RunLoop();
    virtual ~RunLoop();
    RunLoop(const RunLoop&) = delete;
    RunLoop& operator=(const RunLoop&) = delete;

    /// Turns until quit, or until the last open window closed. @return the code that was given to quit, which is
    /// forgotten then; else 0
    int run();

    /// One turn, after sleeping until something is due, at most that long.
    /// @param seconds  0 or less does not sleep  @return false when the loop is to end
    bool step(double seconds);

    /// When a turn is due: now or before, when something is; null when nothing is but for the window system's events.
    /// For a host, whose own loop calls step(0) then.
    std::optional<Time> getNextDue() const;

    /// Ends run and step, now or when the turn under way is over. @param code  what run returns
    void quit(int code);
    /// Forgets an earlier quit, and that the last window closed.
    void restart();
    /// Quits, and closes the windows that are open, the last one first.
    void closeWindows(int code);

    /// Asks for drawNow in this turn, or in the next when it is under way.
    void setNeedsDisplay(NativeView* pView);

    /// Ticks at the display's rate. When the range is one (both above 0, the maximum not below the minimum), at the
    /// display's rate divided by a whole number: the one within the range that is nearest to its middle, the higher of
    /// two. At 60 Hz (25, 35) gives 30, and (30, 60) gives 60. Where no such rate is in the range it is the middle, if
    /// the display is that fast. A view has one clock at most; starting it again changes its rate.
    void startFrameClock(NativeView* pView, float minFPS, float maxFPS);
    void stopFrameClock(NativeView* pView);
    bool hasFrameClock(const NativeView* pView) const;

    /// The first time behind this one to draw the view at, as the display goes on: a little behind its beat, where
    /// ticks of a clock lie. Null where the display has not told of its beat within the last second.
    std::optional<Time> getNextBeat(const NativeView* pView, Time after) const;

    /// A clock of a view that cannot be seen pauses, and goes on when it can.
    void setVisible(NativeView* pView, bool isVisible);

    /// The view is going away.
    void forget(NativeView* pView);

    /// Windows are counted: when the last one closes, the loop quits with 0.
    void windowOpened(Window* pWindow);
    /// See windowOpened.
    void windowClosed(Window* pWindow);

protected:
    /// Sleeps until the time (null: without end), an event of the window system, or wakeUp.
    virtual void wait(const std::optional<Time>& until) = 0;
    /// Hands out the events that are there. Does not wait.
    virtual void dispatchEvents() = 0;
    /// Ends a wait, or the next one if there is none. Any thread.
    virtual void wakeUp() = 0;
    /// Frames per second of the display the view is on; 0 when the window system does not know.
    virtual double getDisplayRate(const NativeView* pView) const = 0;

    /// Events behind a quit wait for the next run.
    bool hasQuit() const { return _exitCode.has_value() || _hasLastWindowClosed; }
    /// The view's display, or its rate, may have changed: its clock goes on at the new rate.
    void updateFrameClock(NativeView* pView);

    /// The display showed a frame of the view at this time, and goes on to the next every so often: the ticks of its
    /// clock lie a little after the display's beat from now on and keep to it, however the two clocks differ. The
    /// period may be off by a quarter: how often frames are seen tells better. Without a clock it is kept for
    /// getNextBeat. Nothing changes for a period that is unknown, which is 0, or no display's: beyond 1 millisecond to
    /// 1 second.
    void alignFrameClock(NativeView* pView, Time shown, Clock::duration refresh);

    /// The derived constructor and destructor call these: the wake-up needs the whole object.
    void connect();
    void disconnect();

private:
    struct Entry
    {
        NativeView* pView;
        bool needsDisplay = false;
        bool hasClock = false;
        bool isVisible = true;
        float minFPS = 0;
        float maxFPS = 0;
        Clock::duration period{};
        Time nextTick{};
        Time shown{};               // last
        Clock::duration refresh{};  // as the display has it; 0 for unknown
        Clock::duration measured{}; // as frames are seen
    };

    static void measure(Entry& entry, Time shown, Clock::duration refresh);
    Entry& entryOf(NativeView* pView);
    Entry* find(const NativeView* pView);
    const Entry* find(const NativeView* pView) const;
    bool isSomethingDue() const;
    std::optional<Time> getNextTick() const;
    void runTicks();
    void runRedraws();

    std::vector<Entry> _entries;
    std::optional<int> _exitCode;
    std::vector<Window*> _openWindows; // in the order in which they opened
    bool _hasLastWindowClosed = false;
};

} // namespace gui
