#pragma once

#include "TriangReference.h"

#include <cstddef>
#include <random>
#include <span>

namespace test
{

/// Numbers that look random and are the same in every run, on every machine.
class Random
{
public:
    explicit Random(unsigned int seed)
        : _engine(seed)
    {
    }

    unsigned int below(unsigned int n) { return static_cast<unsigned int>(_engine() % n); }
    float between(float low, float high) { return low + (high - low) * static_cast<float>(below(1U << 24)) / 0x1p24f; }
    bool isOneIn(unsigned int n) { return below(n) == 0; }

private:
    std::mt19937 _engine;
};

/// A kind of outlines, all of them about as large as the unit square.
struct Family
{
    const char* name;
    Outline (*make)(Random& random, std::size_t n); ///< with n corners or a few more or less
};

/// Outlines whose edges meet at their corners only.
std::span<const Family> simpleFamilies();

/// Outlines that cross and touch themselves, stand still, run back and lie on one line.
std::span<const Family> wildFamilies();

/// Outlines that make much work of little.
std::span<const Family> hostileFamilies();

/// Moves or distorts an outline: far away, huge, tiny, with numbers that are none; way is below cDistortions.
inline constexpr unsigned int cDistortions = 10;
Outline distort(const Outline& outline, unsigned int way, Random& random);

} // namespace test
