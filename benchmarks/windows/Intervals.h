#pragma once

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdio>
#include <vector>

namespace bench
{

using Clock = std::chrono::steady_clock;

/// @param part  0.5 for the median
inline double quantile(std::vector<double> values, double part)
{
    if (values.empty())
        return 0;
    std::ranges::sort(values);
    return values[std::min(values.size() - 1, static_cast<std::size_t>(part * static_cast<double>(values.size())))];
}

/// Moments in a row, and what is between them.
class Intervals
{
public:
    void add(Clock::time_point time) { _times.push_back(time); }
    const std::vector<Clock::time_point>& getTimes() const { return _times; }

    /// A line: how many there are, in how long, and how many are further apart than one and a half times the median.
    void print(const char* what) const
    {
        std::vector<double> gaps;
        for (std::size_t i = 1; i < _times.size(); ++i)
            gaps.push_back(std::chrono::duration<double, std::milli>(_times[i] - _times[i - 1]).count());
        const double median = quantile(gaps, 0.5);
        const auto nLong = std::ranges::count_if(gaps, [median](double gap) { return gap > 1.5 * median; });
        const double seconds =
            _times.empty() ? 0 : std::chrono::duration<double>(_times.back() - _times.front()).count();
        std::printf("%s: %zu in %.1f s, %.1f a second, median %.2f ms, 99th percentile %.2f ms, %td longer than 1.5\n",
                    what, _times.size(), seconds, seconds > 0 ? static_cast<double>(gaps.size()) / seconds : 0, median,
                    quantile(gaps, 0.99), nLong);
        std::fflush(stdout);
    }

private:
    std::vector<Clock::time_point> _times;
};

} // namespace bench
