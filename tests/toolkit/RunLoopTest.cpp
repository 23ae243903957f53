#include <gui/NativeView.h>
#include <gui/port/RunLoop.h>

#include <gtest/gtest.h>

#include <optional>

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

} // namespace
