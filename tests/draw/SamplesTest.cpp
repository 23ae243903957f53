#include <gui/draw/Samples.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace
{

using gui::draw::Samples;

constexpr double cInfinity = std::numeric_limits<double>::infinity();

Samples::Range scan(const std::vector<double>& values, std::size_t first, std::size_t end)
{
    Samples::Range range{cInfinity, -cInfinity, values[first], values[end - 1]};
    for (std::size_t i = first; i < end; ++i)
        if (std::isfinite(values[i]))
            range = {std::min(range.low, values[i]), std::max(range.high, values[i]), range.first, range.last};
    return range;
}

bool areEqual(double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); }

// Bounds of blocks that were not brought up to date, or that lie across the ends of what was asked for; gaps that
// count.
TEST(SamplesTest, BoundsAreThoseOfAPlainScanHoweverTheNumbersCame)
{
    std::mt19937 random(3);
    std::normal_distribution<float> normal;
    std::vector<float> floats(300'000);
    for (float& value : floats)
        value = random() % 9 == 0    ? std::nanf("")
                : random() % 50 == 0 ? -std::numeric_limits<float>::infinity()
                                     : normal(random);
    std::fill(floats.begin() + 70'000, floats.begin() + 71'000, std::nanf(""));
    const std::vector<double> values(floats.begin(), floats.end());

    std::vector<Samples> all;
    all.emplace_back(floats);
    all.emplace_back(values);
    all.emplace_back(std::span<const float>(floats));
    all.push_back(Samples::computed(
        values.size(), [&values](std::size_t first, std::span<double> part)
        { std::copy_n(values.begin() + static_cast<std::ptrdiff_t>(first), part.size(), part.begin()); }));
    Samples grown = Samples::ofFloats();
    for (std::size_t at = 0; at < floats.size();)
    {
        const std::size_t n =
            std::min<std::size_t>(random() % 7 == 0 ? random() % 90'000 : random() % 300, floats.size() - at);
        grown.append(std::span(floats).subspan(at, n));
        at += n;
    }
    all.push_back(std::move(grown));
    // Half looked at or computed, half appended.
    all.emplace_back(std::span<const double>(values).first(100'001));
    all.back().append(std::span(floats).subspan(100'001));
    all.push_back(Samples::computed(
        100'003, [&values](std::size_t first, std::span<double> part)
        { std::copy_n(values.begin() + static_cast<std::ptrdiff_t>(first), part.size(), part.begin()); }));
    all.back().append(std::span(values).subspan(100'003));

    for (int i = 0; i < 100'000; ++i)
    {
        const double share = std::pow(10, -5.5 * static_cast<double>(random()) / 4294967296.0);
        const auto length =
            std::max<std::size_t>(1, static_cast<std::size_t>(share * static_cast<double>(values.size())));
        const std::size_t first = random() % (values.size() - length + 1), end = first + length;
        const Samples::Range expected =
            length < 3000 || i % 50 == 0 ? scan(values, first, end) : all[0].getRange(first, end);
        for (const Samples& samples : all)
        {
            const Samples::Range range = samples.getRange(first, end);
            ASSERT_TRUE(range.low == expected.low && range.high == expected.high &&
                        areEqual(range.first, expected.first) && areEqual(range.last, expected.last))
                << &samples - all.data() << ": " << first << " to " << end;
        }
    }
    for (const Samples& samples : all)
        EXPECT_TRUE(areEqual(samples[123'456], values[123'456]));
    EXPECT_LT(all[0].getMemory(), 1.25 * 4 * 300'000);
    EXPECT_LT(all[4].getMemory(), 1.25 * 4 * 300'000);
}

// Indices that move when old numbers go, and places that are found by a guess.
TEST(SamplesTest, IndicesStayAndSortedPlacesAreFound)
{
    Samples samples;
    samples.setLimit(100'000);
    std::vector<double> places;
    std::mt19937 random(4);
    double place = 0;
    for (int i = 0; i < 400'000; ++i)
    {
        place += random() % 1000 == 0 ? 5000 : random() % 3 == 0 ? 0 : 1e-3 * static_cast<double>(random() % 100);
        places.push_back(place);
    }
    samples.append(places);
    EXPECT_EQ(samples.size(), 400'000U);
    EXPECT_GE(samples.getFirst(), 400'000U - 100'000 - 65'536);
    EXPECT_LE(samples.getFirst(), 300'000U);
    EXPECT_EQ(samples[399'999], places.back());
    EXPECT_TRUE(std::isnan(samples[0]));
    ASSERT_TRUE(samples.isRising());
    const auto begin = places.begin() + static_cast<std::ptrdiff_t>(samples.getFirst());
    for (int i = 0; i < 20'000; ++i)
    {
        const double value =
            i % 2 == 0 ? places[random() % places.size()] : place * static_cast<double>(random()) / 4294967296.0;
        ASSERT_EQ(samples.lowerBound(value),
                  static_cast<std::size_t>(std::lower_bound(begin, places.end(), value) - places.begin()));
    }
    samples.append(1);
    EXPECT_FALSE(samples.isRising());
}

} // namespace
