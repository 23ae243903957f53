#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace gui::gl
{

/// A set of numbers from 0 that finds its next member in a few steps: words of bits, and words of bits that tell which of
/// the words below hold any.
class CornerSet
{
public:
    /// Makes it the set of all numbers below n.
    void fill(std::size_t n)
    {
        clear(n);
        for (std::size_t i = 0; i < n; ++i)
            insert(i);
    }

    /// Empties it and makes room for numbers below n.
    void clear(std::size_t n)
    {
        _nLevels = 0;
        do
        {
            n = n / 64 + 1;
            if (_nLevels == _levels.size())
                _levels.emplace_back();
            _levels[_nLevels++].assign(n, 0);
        } while (n > 1);
    }

    void insert(std::size_t i)
    {
        for (std::size_t level = 0; level < _nLevels; ++level, i /= 64)
            _levels[level][i / 64] |= bit(i);
    }

    /// @return whether it was a member
    bool erase(std::size_t i)
    {
        if ((_levels[0][i / 64] & bit(i)) == 0)
            return false;
        for (std::size_t level = 0; level < _nLevels; ++level, i /= 64)
            if ((_levels[level][i / 64] &= ~bit(i)) != 0)
                break;
        return true;
    }

    static constexpr std::size_t cNone = ~std::size_t(0);

    /// The smallest member from i on, i at most the n given to fill or clear. @return cNone when there is none
    std::size_t findFrom(std::size_t i) const
    {
        for (std::size_t level = 0; level < _nLevels && i / 64 < _levels[level].size(); ++level)
        {
            const std::uint64_t members = _levels[level][i / 64] & (~std::uint64_t(0) << i % 64);
            if (members != 0)
            {
                i = i / 64 * 64 + static_cast<std::size_t>(std::countr_zero(members));
                while (level-- > 0)
                    i = i * 64 + static_cast<std::size_t>(std::countr_zero(_levels[level][i]));
                return i;
            }
            i = i / 64 + 1;
        }
        return cNone;
    }

private:
    static std::uint64_t bit(std::size_t i) { return std::uint64_t(1) << i % 64; }

    std::vector<std::vector<std::uint64_t>> _levels; // kept from one use to the next
    std::size_t _nLevels = 0;
};

} // namespace gui::gl
