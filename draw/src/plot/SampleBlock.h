#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

namespace gui::draw
{

/// The lowest and the highest of some numbers; above each other's reach when there is none. The highest is kept with
/// the other sign, so that both are lowest numbers, and many of them in a row are plain numbers to find the lowest of.
template <typename T>
struct SampleBounds
{
    T low = std::numeric_limits<T>::infinity();
    T minusHigh = std::numeric_limits<T>::infinity();

    void add(T value)
    {
        // Comparisons with NaN are false, and infinite numbers count as gaps too.
        const bool isFinite = std::abs(value) <= std::numeric_limits<T>::max();
        low = isFinite && value < low ? value : low;
        minusHigh = isFinite && -value < minusHigh ? -value : minusHigh;
    }
    void add(const SampleBounds& other)
    {
        low = other.low < low ? other.low : low;
        minusHigh = other.minusHigh < minusHigh ? other.minusHigh : minusHigh;
    }
    void add(const SampleBounds* others, std::size_t n)
    {
        constexpr std::size_t cLanes = 4; // that compilers make vectors of
        std::array<SampleBounds, cLanes> lanes;
        std::size_t i = 0;
        for (; i + cLanes <= n; i += cLanes)
        {
            for (std::size_t lane = 0; lane < cLanes; ++lane)
            {
                lanes[lane].low = others[i + lane].low < lanes[lane].low ? others[i + lane].low : lanes[lane].low;
                lanes[lane].minusHigh = others[i + lane].minusHigh < lanes[lane].minusHigh ? others[i + lane].minusHigh
                                                                                           : lanes[lane].minusHigh;
            }
        }
        for (; i < n; ++i)
            add(others[i]);
        for (const SampleBounds& lane : lanes)
            add(lane);
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
        SampleBounds<T> bounds;
        constexpr std::size_t cLanes = 8; // that compilers make vectors of
        if (n < 4 * cLanes)
        {
            for (std::size_t k = 0; k < n; ++k)
                bounds.add(values[k]);
            return bounds;
        }
        std::array<T, cLanes> low, high;
        low.fill(std::numeric_limits<T>::infinity());
        high.fill(std::numeric_limits<T>::infinity());
        std::size_t i = 0;
        for (; i + cLanes <= n; i += cLanes)
        {
            for (std::size_t lane = 0; lane < cLanes; ++lane)
            {
                const T value = values[i + lane];
                const bool isFinite = std::abs(value) <= std::numeric_limits<T>::max();
                const T lower = isFinite ? value : std::numeric_limits<T>::infinity();
                const T higher = isFinite ? -value : std::numeric_limits<T>::infinity();
                low[lane] = lower < low[lane] ? lower : low[lane];
                high[lane] = higher < high[lane] ? higher : high[lane];
            }
        }
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
            bounds.add(nodes.data() + first, leftEnd - first);
            if (isLast)
                return;
            bounds.add(nodes.data() + innerEnd * cFanOut, end - innerEnd * cFanOut);
            first = innerFirst;
            end = innerEnd;
        }
    }
};

} // namespace gui::draw
