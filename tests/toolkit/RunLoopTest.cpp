#include "support/CaughtAsserts.h"

#include <gui/NativeView.h>
#include <gui/Timer.h>
#include <gui/port/RunLoop.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <optional>
#include <string>
#include <thread>

namespace
{

class View : public gui::NativeView
{
public:
    void release() override {}
    void getSize(td::Size<double>& size) const override { size = {}; }
    void reDraw() override {}
    void* getNativeWindow() const override { return nullptr; }
    bool isAlive() const override { return true; }
    void enteredWindow() override {}
    void leftWindow() override {}
    void windowClosed() override {}
    void sizeChanged() override {}
    void scaleChanged() override {}
    void drawNow() override {}
    void onFrameTick() override {}
};

/// Says how long it would sleep, and does not.
class Loop : public gui::RunLoop
{
public:
    using RunLoop::alignFrameClock;

    double displayRate = 60;
    std::optional<Time> end;

protected:
    void wait(const std::optional<Time>& until) override { end = until; }
    void dispatchEvents() override {}
    void wakeUp() override {}
    double getDisplayRate(const gui::NativeView*) const override { return displayRate; }
};

TEST(RunLoop, ClocksBeatWithTheDisplayWithinTheirRange)
{
    const struct
    {
        double displayRate;
        float min, max;
        double rate;
    } cases[] = {
        {60, 0, 0, 60},    {0, 0, 0, 60},      {144, 60, 30, 144},
        {60, 10, 20, 15},  {60, 25, 35, 30},   {60, 30, 60, 60},
        {60, 29, 31, 30},  {60, 40, 50, 45},   {60, 70, 90, 60},
        {144, 30, 60, 48}, {60, 55, 1e6f, 60}, {60, 1e-12f, 1e-12f, 1e-6}, // a tick in a million seconds has to do
    };
    for (const auto& [displayRate, min, max, rate] : cases)
    {
        Loop loop;
        View view;
        loop.displayRate = displayRate;
        const auto before = gui::RunLoop::Clock::now();
        loop.startFrameClock(&view, min, max);
        const auto after = gui::RunLoop::Clock::now();
        loop.step(1e9);
        ASSERT_TRUE(loop.end);
        const auto period =
            std::chrono::duration_cast<gui::RunLoop::Clock::duration>(std::chrono::duration<double>(1 / rate));
        EXPECT_GE(*loop.end, before + period) << min << " to " << max << " at " << displayRate;
        EXPECT_LE(*loop.end, after + period) << min << " to " << max << " at " << displayRate;
    }
}

// A loop that sleeps as long as it says.
class SleepingLoop : public Loop
{
protected:
    void wait(const std::optional<Time>& until) override { std::this_thread::sleep_until(*until); }
};

using std::chrono::duration_cast, std::chrono::microseconds;
using Time = gui::RunLoop::Time;

// How far a time is from the nearest of the places where ticks belong: an eighth of a beat behind each beat.
double offBeat(Time time, Time shown, microseconds beat)
{
    const double beats = std::chrono::duration<double>(time - shown) / beat - 1.0 / 8;
    return std::abs(beats - std::round(beats));
}

// Ticks that drift against the display are seen twice or never; those that hop from beat to beat as well.
TEST(RunLoop, ClocksKeepToTheBeatOfTheirDisplay)
{
    const struct
    {
        microseconds said, real; // between two frames
        float min, max;
        int nBeats; // from one tick to the next
    } cases[] = {
        {microseconds(16667), microseconds(16667), 0, 0, 1},
        {microseconds(16667), microseconds(16690), 0, 0, 1}, // a clock that is off
        {microseconds(16667), microseconds(19670), 0, 0, 1}, // a compositor with a beat of its own
        {microseconds(6944), microseconds(6950), 30, 60, 3},
    };
    for (const auto& [said, real, min, max, nBeats] : cases)
    {
        SleepingLoop loop;
        View view;
        loop.displayRate = 1e6 / static_cast<double>(said.count());
        loop.startFrameClock(&view, min, max);
        const Time first = *loop.getNextDue();
        // Enough frames for what was measured to be seen, of which some were missed.
        Time shown = first - real * 400;
        for (int i = 0; i < 400; ++i, shown += real)
            if (i % 7 != 3)
                loop.alignFrameClock(&view, shown, said);
        shown -= real;
        const Time tick = *loop.getNextDue();
        EXPECT_LT(offBeat(tick, shown, real), 0.01) << real.count();
        // However late the turn is.
        loop.step(1);
        const double beats = std::chrono::duration<double>(*loop.getNextDue() - tick) / real;
        EXPECT_LT(std::abs(beats / nBeats - std::round(beats / nBeats)), 0.01) << real.count() << ": " << beats;
        EXPECT_GT(beats, nBeats - 0.5);

        // The display begins anew somewhere else; then it does not know any more.
        shown += real + real / 3;
        const Time before = *loop.getNextDue();
        loop.alignFrameClock(&view, shown, said);
        EXPECT_LT(offBeat(*loop.getNextDue(), shown, real), 0.01) << real.count();
        EXPECT_LE(std::chrono::abs(*loop.getNextDue() - before), real / 2 + microseconds(1));
        const Time after = *loop.getNextDue();
        loop.alignFrameClock(&view, shown + real / 2, microseconds(0));
        loop.alignFrameClock(&view, shown + real / 2, std::chrono::hours(1));
        EXPECT_EQ(*loop.getNextDue(), after);
    }
}

TEST(RunLoop, EachClockKeepsToItsOwnDisplay)
{
    Loop loop;
    View at60, at75, without, unknown;
    loop.startFrameClock(&at60, 0, 0);
    loop.displayRate = 75;
    loop.startFrameClock(&at75, 0, 0);
    const Time now = gui::RunLoop::Clock::now();
    constexpr microseconds c60(16667), c75(13333);
    for (int i = 0; i < 10; ++i)
    {
        loop.alignFrameClock(&at75, now + c75 * i, c75);
        loop.alignFrameClock(&at60, now + microseconds(5000) + c60 * i, c60);
        loop.alignFrameClock(&without, now, c60);
    }
    EXPECT_FALSE(loop.hasFrameClock(&without));
    loop.setVisible(&at75, false);
    EXPECT_LT(offBeat(*loop.getNextDue(), now + microseconds(5000), c60), 0.01);
    loop.stopFrameClock(&at60);
    EXPECT_FALSE(loop.getNextDue());
    loop.setVisible(&at75, true); // at once, and on the beat from the next frame on
    loop.alignFrameClock(&at75, now + c75 * 10, c75);
    EXPECT_LT(offBeat(*loop.getNextDue(), now, c75), 0.01);

    // What else is drawn has no clock to ask.
    loop.setNeedsDisplay(&without);
    loop.alignFrameClock(&without, now, c60);
    for (const Time after : {now, now + c60 * 7 + c60 / 2})
    {
        const Time next = loop.getNextBeat(&without, after).value_or(Time());
        EXPECT_TRUE(next > after && next <= after + c60);
        EXPECT_LT(offBeat(next, now, c60), 0.01);
    }
    EXPECT_FALSE(loop.getNextBeat(&without, now + std::chrono::seconds(2))) << "the display may have slept";
    EXPECT_FALSE(loop.getNextBeat(&unknown, now));
}

TEST(RunLoop, TimersMayStopStartAndDeleteEachOther)
{
    SleepingLoop loop;
    std::string calls;
    auto pDeleted = std::make_unique<gui::Timer>([&] { calls += '!'; });
    gui::Timer stopped([&] { calls += '!'; });
    gui::Timer again([&] { calls += 'c'; });
    gui::Timer once(
        [&]
        {
            calls += 'a';
            pDeleted.reset();
            stopped.stop();
            again.startOnce(0.002);
        });
    std::unique_ptr<gui::Timer> pItself;
    pItself = std::make_unique<gui::Timer>(
        [&]
        {
            calls += 'b';
            if (calls.size() > 4)
                pItself.reset();
        });
    // Longest first: the calls are in the order of their times, also where the machine was busy and all are due.
    pDeleted->start(0.004);
    stopped.start(0.004);
    again.startOnce(0.003);
    pItself->start(0.002);
    once.startOnce(0.001);
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
    loop.step(0);
    EXPECT_EQ(calls, "ab") << "each once, however late";
    EXPECT_FALSE(once.isRunning() || stopped.isRunning());
    while (pItself || again.isRunning())
        loop.step(1);
    EXPECT_EQ(std::ranges::count(calls, 'c'), 1);
    EXPECT_EQ(std::ranges::count(calls, '!'), 0);
    EXPECT_FALSE(loop.getNextDue());
}

TEST(RunLoop, TimersRefuseWhatIsNoTime)
{
    Loop loop;
    gui::Timer timer([] {});
    timer.start(1000);
    const auto due = loop.getNextDue();
    ASSERT_TRUE(due);
    test::CaughtAsserts asserts;
    timer.start(0);
    timer.start(std::nan(""));
    timer.startOnce(-1);
    gui::Timer empty(nullptr);
    EXPECT_TRUE(asserts.caught({"interval > 0", "interval > 0", "delay >= 0", "fn != nullptr"}));
    empty.start(1);
    EXPECT_FALSE(empty.isRunning());
    EXPECT_EQ(loop.getNextDue(), due);
    timer.startOnce(INFINITY);
    EXPECT_GT(*loop.getNextDue(), *due);
}

} // namespace
