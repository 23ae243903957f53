#include "sdl/DisplayBeat.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace test
{

namespace
{

using gui::DisplayBeat;
using std::chrono::duration_cast, std::chrono::microseconds;
using Clock = gui::RunLoop::Clock;
using Time = gui::RunLoop::Time;

/// A server whose display goes on every so often, and which tells of it late by up to so much.
struct Server
{
    microseconds beat, jitter{};
    Time begin = Time(std::chrono::hours(1));
    std::uint64_t count = 1000; // of the last frame that was told
    int nTold = 0;

    Time at(std::uint64_t n) const { return begin + beat * static_cast<std::int64_t>(n - 1000); }
    DisplayBeat::Frame tell(std::uint64_t n)
    {
        count = n;
        return {n, at(n) + jitter * (++nTold * 7 % 5) / 4};
    }
    bool answer(DisplayBeat& shown, std::uint64_t wait = 1)
    {
        const std::uint64_t last = count + DisplayBeat::cSpan;
        const DisplayBeat::Frame first = tell(count + wait);
        const DisplayBeat::Frame second = tell(std::max(first.count, last));
        return shown.add(first, second, second.time);
    }
    /// In parts of a beat.
    double off(const DisplayBeat& shown) const
    {
        const double beats = std::chrono::duration<double>(shown.getTime() - begin) / beat;
        return std::abs(beats - std::round(beats));
    }
    double slow(const DisplayBeat& shown) const
    {
        return std::abs(std::chrono::duration<double>(shown.getInterval()) / beat - 1);
    }
};

// Clocks that drift against the display, or hop with the jitter of a server that has none; those that stay with a beat
// that was.
TEST(DisplayBeat, IsWhatFramesAreApart)
{
    const struct
    {
        microseconds beat, jitter, next;
    } cases[] = {
        {microseconds(16667), {}, microseconds(13333)},
        {microseconds(13333), microseconds(1500), microseconds(6944)},
        {microseconds(6944), microseconds(800), microseconds(16683)},
        {microseconds(33367), microseconds(4000), microseconds(16667)},
    };
    for (const auto& [beat, jitter, next] : cases)
    {
        Server server{beat, jitter};
        DisplayBeat shown;
        EXPECT_TRUE(server.answer(shown)) << beat.count();
        for (int i = 0; i < 50; ++i)
            EXPECT_TRUE(server.answer(shown, i % 3 + 1)) << beat.count() << ", " << i;
        EXPECT_LT(server.slow(shown), 0.001) << beat.count();
        EXPECT_LT(server.off(shown), 0.15) << beat.count(); // half of the jitter
        // A pause: both of a pair are the next frame.
        EXPECT_FALSE(server.answer(shown, 40));
        EXPECT_TRUE(server.answer(shown));
        // One that comes late moves nothing.
        const Time before = shown.getTime();
        server.begin += beat / 2;
        EXPECT_FALSE(server.answer(shown));
        server.begin -= beat / 2;
        EXPECT_EQ(shown.getTime(), before);
        EXPECT_TRUE(server.answer(shown));
        // Another display.
        server.begin = server.at(server.count) - next * static_cast<std::int64_t>(server.count - 1000);
        server.beat = next;
        EXPECT_FALSE(server.answer(shown));
        EXPECT_TRUE(server.answer(shown)) << next.count();
        EXPECT_LT(server.slow(shown), 0.05) << next.count();
    }
}

// A program at rest looks at what it asked for when something happens, and does not know then when the next frame is.
TEST(DisplayBeat, TellsHowFarFramesWereApartLongAgo)
{
    constexpr microseconds cBeat(6944);
    Server server{cBeat};
    const DisplayBeat::Frame first = server.tell(1000), second = server.tell(1016);
    DisplayBeat shown;
    EXPECT_FALSE(shown.add(first, second, second.time + std::chrono::minutes(1)));
    EXPECT_EQ(shown.getInterval(), cBeat);
    EXPECT_FALSE(shown.add(first, {second.count, second.time - cBeat}, second.time + std::chrono::minutes(1)));
    EXPECT_EQ(shown.getInterval(), cBeat * 15 / 16) << "of another display";
    EXPECT_TRUE(server.answer(shown));
    EXPECT_LT(server.off(shown), 0.001);
}

// Servers that answer without looking at a display; clocks of another machine; anything at all.
TEST(DisplayBeat, IsNotWhatCanBeNone)
{
    constexpr microseconds cBeat(16667);
    constexpr std::uint64_t cMost = std::numeric_limits<std::uint64_t>::max();
    const Time now(std::chrono::hours(1));
    const struct
    {
        const char* name;
        DisplayBeat::Frame first, second;
    } cases[] = {
        {"counts nothing", {7, now - cBeat * 16}, {7, now}},
        {"both at once", {7, now}, {23, now}},
        {"both almost at once", {7, now - microseconds(900)}, {23, now}},
        {"backwards", {23, now - cBeat * 16}, {7, now}},
        {"time backwards", {7, now}, {23, now - cBeat * 16}},
        {"too slow", {7, now - std::chrono::minutes(1)}, {23, now}},
        {"another clock", {7, now - std::chrono::hours(1)}, {23, now - std::chrono::hours(1) + cBeat * 16}},
        {"anything", {0, Time()}, {cMost, now}},
        {"wraps", {cMost, now - cBeat}, {2, now}},
    };
    for (const auto& [name, first, second] : cases)
    {
        DisplayBeat shown;
        EXPECT_FALSE(shown.add(first, second, now)) << name;
        Server server{cBeat};
        EXPECT_TRUE(server.answer(shown)) << name;
        shown.add(first, second, now);
        EXPECT_TRUE(server.answer(shown) || server.answer(shown)) << name;
        EXPECT_LT(server.slow(shown), 0.001) << name;
    }
}

} // namespace

} // namespace test
