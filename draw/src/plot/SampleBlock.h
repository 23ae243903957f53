#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

namespace gui::draw
{

/// The lowest and the highest of some numbers; above each other's reach when there is none.
template <typename T>
struct SampleBounds
{
    T low = std::numeric_limits<T>::infinity();
    T high = -std::numeric_limits<T>::infinity();

    void add(T value)
    {
        // Comparisons with NaN are false, and infinite numbers count as gaps too.
        if (!(std::abs(value) <= std::numeric_limits<T>::max()))
            return;
        low = value < low ? value : low;
        high = value > high ? value : high;
    }
    void add(const SampleBounds& other)
    {
        low = other.low < low ? other.low : low;
        high = other.high > high ? other.high : high;
    }
};

/// Up to 65,536 numbers in a row, kept here or elsewhere, and the pyramid over them.
template <typename T>
struct SampleBlock
{
    static constexpr std::size_t cFanOut = 16;
    static constexpr std::size_t cLevels = 4;
    static constexpr std::size_t cSize = cFanOut * cFanOut * cFanOut * cFanOut;

    const T* data = nullptr; ///< of the numbers; null when they are computed
    std::size_t size = 0;
    std::vector<T> own; ///< the numbers, when they are kept here
    /// levels[i] has the bounds of each 16^(i + 1) numbers.
    std::array<std::vector<SampleBounds<T>>, cLevels> levels;

    static SampleBounds<T> scan(const T* values, std::size_t n)
    {
        constexpr std::size_t cLanes = 8; // that compilers make vectors of
        std::array<T, cLanes> low, high;
        low.fill(std::numeric_limits<T>::infinity());
        high.fill(-std::numeric_limits<T>::infinity());
        std::size_t i = 0;
        for (; i + cLanes <= n; i += cLanes)
        {
            for (std::size_t lane = 0; lane < cLanes; ++lane)
            {
                const T value = values[i + lane];
                const bool isFinite = std::abs(value) <= std::numeric_limits<T>::max();
                const T lower = isFinite ? value : std::numeric_limits<T>::infinity();
                const T higher = isFinite ? value : -std::numeric_limits<T>::infinity();
                low[lane] = lower < low[lane] ? lower : low[lane];
                high[lane] = higher > high[lane] ? higher : high[lane];
            }
        }
        SampleBounds<T> bounds;
        for (std::size_t lane = 0; lane < cLanes; ++lane)
            bounds.add(SampleBounds<T>{low[lane], high[lane]});
        for (; i < n; ++i)
            bounds.add(values[i]);
        return bounds;
    }

    /// Takes numbers that stand behind those of data into the pyramid. @param values  n of them
    void extend(const T* values, std::size_t n)
    {
        while (n > 0)
        {
            const std::size_t place = size % cFanOut;
            const std::size_t count = std::min(n, cFanOut - place);
            const SampleBounds<T> bounds = scan(values, count);
            std::size_t index = size;
            for (std::vector<SampleBounds<T>>& level : levels)
            {
                index /= cFanOut;
                if (index == level.size())
                    level.push_back(bounds);
                else
                    level[index].add(bounds);
            }
            size += count;
            values += count;
            n -= count;
        }
    }

    /// Makes what was grown as small as it can be.
    void shrink()
    {
        own.shrink_to_fit();
        for (std::vector<SampleBounds<T>>& level : levels)
            level.shrink_to_fit();
    }

    /// Adds the bounds of numbers first to end - 1. @param scanRange  says what numbers themselves are: (first, end)
    template <typename ScanRange>
    void fold(std::size_t first, std::size_t end, SampleBounds<T>& bounds, const ScanRange& scanRange) const
    {
        const std::size_t firstWhole = (first + cFanOut - 1) / cFanOut, endWhole = end / cFanOut;
        if (firstWhole >= endWhole)
        {
            if (first < end)
                bounds.add(scanRange(first, end));
            return;
        }
        if (first < firstWhole * cFanOut)
            bounds.add(scanRange(first, firstWhole * cFanOut));
        if (endWhole * cFanOut < end)
            bounds.add(scanRange(endWhole * cFanOut, end));
        first = firstWhole;
        end = endWhole;
        for (std::size_t level = 0;; ++level)
        {
            const std::vector<SampleBounds<T>>& nodes = levels[level];
            std::size_t innerFirst = (first + cFanOut - 1) / cFanOut, innerEnd = end / cFanOut;
            const bool isLast = innerFirst >= innerEnd || level + 1 == cLevels;
            if (isLast)
                innerFirst = innerEnd = end / cFanOut;
            const std::size_t leftEnd = isLast ? end : innerFirst * cFanOut;
            for (std::size_t i = first; i < leftEnd; ++i)
                bounds.add(nodes[i]);
            if (isLast)
                return;
            for (std::size_t i = innerEnd * cFanOut; i < end; ++i)
                bounds.add(nodes[i]);
            first = innerFirst;
            end = innerEnd;
        }
    }
};

} // namespace gui::draw
