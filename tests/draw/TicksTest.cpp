#include <gui/draw/Ticks.h>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <random>
#include <sstream>
#include <string>

namespace
{

using namespace gui::draw;
using Range = Ticks::Range;

constexpr std::array<double, 6> cDigits{1, 5, 2, 2.5, 4, 3};

// As many points for each character, so that widths differ.
double widthOf(std::string_view label) { return 6.5 * static_cast<double>(label.size()); }

// All sequences there are, up to where none is any good.
double bestScore(const Range& range, double wanted)
{
    double best = -2;
    const double length = range.high - range.low;
    for (unsigned int order = 0; order < cDigits.size(); ++order)
        for (unsigned int skip = 1; skip <= 4; ++skip)
            for (int power = static_cast<int>(std::floor(std::log10(length))) - 3;
                 power <= static_cast<int>(std::ceil(std::log10(length))) + 1; ++power)
            {
                const double unit = cDigits[order] * std::pow(10, power), step = unit * skip;
                for (unsigned int count = 2; count <= 40; ++count)
                {
                    const double span = step * (count - 1);
                    if (span > 3 * length || span < length / 3)
                        continue;
                    for (double start = std::floor((range.low - length) / unit); start * unit < range.high; ++start)
                        best = std::max(best, Ticks::score(range, wanted, {start * unit, start * unit + span, step, 0},
                                                           order, skip, count));
                }
            }
    return best;
}

// Steps that end early, or skip what is better.
TEST(TicksTest, TheSearchFindsThePublishedLabelsAndTheHighestScore)
{
    const Ticks::Sequence known = Ticks::search({8.1, 14.1}, 4); // the example of the authors' own program: 8 10 12 14
    EXPECT_DOUBLE_EQ(known.low, 8);
    EXPECT_DOUBLE_EQ(known.high, 14);
    EXPECT_DOUBLE_EQ(known.step, 2);
    const Ticks::Sequence percent = Ticks::search({0, 100}, 5); // everything 1: with 0, covered, as dense as wanted
    EXPECT_DOUBLE_EQ(percent.low, 0);
    EXPECT_DOUBLE_EQ(percent.high, 100);
    EXPECT_DOUBLE_EQ(percent.step, 25);

    std::mt19937 random(1);
    std::uniform_real_distribution<double> unit(0, 1);
    for (int i = 0; i < 60; ++i)
    {
        const double length = std::pow(10, 8 * unit(random) - 4), low = length * (3 * unit(random) - 2);
        const Range range{low, low + length};
        const double wanted = 2 + 10 * unit(random);
        const Ticks::Sequence found = Ticks::search(range, wanted);
        EXPECT_NEAR(found.score, bestScore(range, wanted), 1e-9) << low << " to " << low + length << ", " << wanted;
        const Ticks::Sequence loose = Ticks::search(range, wanted, {}, true);
        EXPECT_LE(loose.score, found.score);
        EXPECT_TRUE(loose.low <= range.low && loose.high >= range.high) << low << ' ' << low + length;
    }
}

// Labels on one another, outside of the axis, out of order, alike, or none where there is room.
TEST(TicksTest, LabelsKeepClearOfEachOtherOnAnyAxis)
{
    std::mt19937 random(2);
    std::uniform_real_distribution<double> unit(0, 1);
    const std::array<Scale, 4> scales{Scale::linear(), Scale::logarithmic(), Scale::time("Europe/Berlin"),
                                      Scale::time()};
    for (int i = 0; i < 100'000; ++i)
    {
        const Scale& scale = scales[i % 4 == 3 ? 0 : static_cast<std::size_t>(i) % 4];
        Range range;
        if (scale.kind == Scale::Kind::Logarithmic)
        {
            range.low = std::pow(10, 60 * unit(random) - 30);
            range.high = range.low * std::pow(10, std::pow(10, 4 * unit(random) - 3));
        }
        else
        {
            const double length = std::pow(10, (scale.kind == Scale::Kind::Time ? 13 : 24) * unit(random) - 4);
            range.low = i % 3 == 0 ? -length * unit(random) : 2e9 * unit(random);
            range.high = range.low + length;
        }
        const Ticks::Room room{
            .length = 20 + 1500 * unit(random), .distance = 40 + 80 * unit(random), .extentOf = widthOf};
        const Ticks ticks(scale, range, room);
        const auto placeOf = [&](double value)
        {
            const double low = scale.toPlace(range.low);
            return (scale.toPlace(value) - low) / (scale.toPlace(range.high) - low) * room.length;
        };
        double end = -1e9, contextEnd = -1e9;
        std::string before;
        std::ostringstream what;
        what << i << ": " << range.low << " to " << range.high << " on " << room.length;
        for (const Ticks::Tick& tick : ticks.getTicks())
        {
            const double at = placeOf(tick.value), half = widthOf(tick.label) / 2;
            ASSERT_TRUE(at > -0.01 && at < room.length + 0.01) << what.str() << ": " << tick.label;
            ASSERT_GE(at - half, end + room.space - 0.01) << what.str() << ": " << tick.label;
            end = at + half;
            if (!tick.context.empty())
            {
                const double contextHalf = widthOf(tick.context) / 2;
                ASSERT_GE(at - contextHalf, contextEnd) << what.str() << ": " << tick.context;
                contextEnd = at + contextHalf;
            }
            ASSERT_NE(tick.label + tick.context, before) << what.str();
            before = scale.kind == Scale::Kind::Time ? "" : tick.label;
        }
        ASSERT_TRUE(ticks.getTicks().size() >= 2 || room.length < 400 ||
                    range.high - range.low < std::abs(range.low) * 1e-9)
            << what.str();
    }
}

struct Case
{
    Scale scale;
    Range range;
    double length;
    const char* labels; // each, and its context in brackets, then the note
};

std::string read(const Ticks& ticks)
{
    std::string text;
    for (const Ticks::Tick& tick : ticks.getTicks())
        text += (text.empty() ? "" : " | ") + tick.label + (tick.context.empty() ? "" : " [" + tick.context + "]");
    return text + (ticks.getNote().empty() ? "" : " ; " + ticks.getNote());
}

// Steps of other units than people's, places too few or too many, wrong days around changes of clocks.
TEST(TicksTest, LabelsAreWhatPeopleWouldWrite)
{
    const Scale berlin = Scale::time("Europe/Berlin");
    const double spring = 1711839600; // 31 March 2024, 0:00 in Berlin, whose clocks skip an hour at 2:00
    const Case cCases[] = {
        {{}, {0, 1}, 400, "0.00 | 0.25 | 0.50 | 0.75 | 1.00"},
        {{}, {-3, 12}, 400, "0 | 4 | 8 | 12"},
        {{}, {0, 50000}, 400, "0 | 10\u2009000 | 20\u2009000 | 30\u2009000 | 40\u2009000 | 50\u2009000"},
        {{}, {0, 4e9}, 400, "0 | 1 | 2 | 3 | 4 ; ×10⁹"},
        {{}, {1e8 + 0.5, 1e8 + 4.5}, 400, "+1 | +2 | +3 | +4 ; +100\u2009000\u2009000"},
        {Scale::logarithmic(), {0.01, 1000}, 400, "0.01 | 0.1 | 1 | 10 | 100 | 1000"},
        {Scale::logarithmic(), {1e-12, 1e12}, 400, "10⁻¹⁰ | 10⁻⁵ | 10⁰ | 10⁵ | 10¹⁰"},
        {berlin,
         {spring, spring + 6 * 3600},
         500,
         "00:00 [31 Mar 2024] | 01:00 | 03:00 | 04:00 | 05:00 | 06:00 | 07:00"},
        {berlin, {spring - 2 * 86400, spring + 3 * 86400}, 500, "29 [Mar 2024] | 30 | 31 | 1 [Apr 2024] | 2 | 3"},
        {Scale::time(), {1704067200, 1735689600}, 500, "Jan [2024] | Mar | May | Jul | Sep | Nov | Jan [2025]"},
        {Scale::time(), {20, 55}, 400, "00:00:20 [1 Jan 1970] | 00:00:30 | 00:00:40 | 00:00:50"},
        {Scale::time(), {58.9, 60.6}, 400, "59.0 [1 Jan 1970 00:00] | 59.5 | 00.0 [1 Jan 1970 00:01] | 00.5"},
        {Scale::time(), {-3e11, 3e11}, 400, "\u22125000 | 0 | 5000 | 10000"},
        // Steps that are no numbers of their own, and years that dates have not: they went on for ever.
        {{}, {1e17, 1e17 + 64}, 400, ""},
        {Scale::time(), {-4.99e11, -4.99e11 + 1e-4}, 400, ""},
        {Scale::time(), {1.7e9, 1.7e9 + 2e-6}, 400, ""},
        {Scale::time(), {-4.99e11, 4.99e11}, 12, "0"},
        {Scale::time(), {0.0005, 0.0025}, 300, "00.0005 [1 Jan 1970 00:00] | 00.0010 | 00.0015 | 00.0020 | 00.0025"},
    };
    for (const Case& test : cCases)
        EXPECT_EQ(read(Ticks(test.scale, test.range, {.length = test.length})), test.labels);
}

} // namespace
