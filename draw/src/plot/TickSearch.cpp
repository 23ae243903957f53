#include <gui/draw/Ticks.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

// Talbot, Lin, Hanrahan: An Extension of Wilkinson's Algorithm for Positioning Tick Labels on Axes, 2010.

namespace gui::draw
{

namespace
{

// The first digits of steps, the nicest ones first, and what each of the four counts.
constexpr std::array<double, 6> cFirstDigits{1, 5, 2, 2.5, 4, 3};
constexpr double cSimplicityWeight = 0.25, cCoverageWeight = 0.2, cDensityWeight = 0.5, cLegibilityWeight = 0.05;

constexpr double cReach = 0.1;       // the part of the range beyond which missing coverage counts fully
constexpr unsigned int cMaxSkip = 5; // and labels: beyond these nothing was ever the best
constexpr unsigned int cMaxLabels = 500;

double total(double simplicity, double coverage, double density, double legibility)
{
    return cSimplicityWeight * simplicity + cCoverageWeight * coverage + cDensityWeight * density +
           cLegibilityWeight * legibility;
}

// The simplicity without what a 0 among the labels adds.
double plainSimplicity(unsigned int order, unsigned int skip)
{
    return 1 - static_cast<double>(order) / (cFirstDigits.size() - 1) - skip;
}

bool hasZero(const Ticks::Sequence& sequence)
{
    constexpr double cEpsilon = 1e-10;
    const double rest = std::abs(std::remainder(sequence.low, sequence.step));
    return rest < cEpsilon * std::max(1.0, sequence.step) && rest < sequence.step / 1000 && sequence.low <= rest &&
           sequence.high >= -rest;
}

double coverage(const Ticks::Range& range, double low, double high)
{
    const double length = cReach * (range.high - range.low);
    const double above = range.high - high, below = range.low - low;
    return 1 - 0.5 * (above * above + below * below) / (length * length);
}

double bestCoverage(const Ticks::Range& range, double span)
{
    const double length = range.high - range.low;
    if (span <= length)
        return 1;
    const double half = (span - length) / 2;
    return 1 - half * half / (cReach * length * cReach * length);
}

double density(const Ticks::Range& range, double wanted, double low, double high, double count)
{
    const double is = (count - 1) / (high - low);
    const double should = (wanted - 1) / (std::max(high, range.high) - std::min(low, range.low));
    return 2 - std::max(is / should, should / is);
}

double bestDensity(double count, double wanted) { return count >= wanted ? 2 - (count - 1) / (wanted - 1) : 1; }

} // namespace

double Ticks::score(const Range& range, double wanted, const Sequence& sequence, unsigned int order, unsigned int skip,
                    unsigned int count)
{
    return total(plainSimplicity(order, skip) + (hasZero(sequence) ? 1 : 0),
                 coverage(range, sequence.low, sequence.high),
                 density(range, wanted, sequence.low, sequence.high, count), 1);
}

// Each loop ends where the best that is left cannot reach what was found.
Ticks::Sequence Ticks::search(const Range& range, double wanted, const Legibility& legibility, bool isLoose)
{
    Sequence best{0, 0, 0, -2};
    const double length = range.high - range.low;
    // Of lengths whose squares are no numbers nothing can be said.
    constexpr double cLeast = 1e-140, cMost = 1e140;
    if (!(length > cLeast && length < cMost) || !(wanted > 1))
        return best;
    for (unsigned int skip = 1; skip <= cMaxSkip; ++skip)
    {
        for (unsigned int order = 0; order < cFirstDigits.size(); ++order)
        {
            const double simplest = plainSimplicity(order, skip) + 1;
            if (total(simplest, 1, 1, 1) < best.score)
                return best;
            for (unsigned int count = 2; count <= cMaxLabels; ++count)
            {
                const double densest = bestDensity(count, wanted);
                if (total(simplest, 1, densest, 1) < best.score)
                    break;
                const double delta = length / (count + 1) / skip / cFirstDigits[order];
                for (int power = static_cast<int>(std::ceil(std::log10(delta)));; ++power)
                {
                    const double unit = cFirstDigits[order] * std::pow(10, power);
                    const double step = skip * unit;
                    if (total(simplest, bestCoverage(range, step * (count - 1)), densest, 1) < best.score)
                        break;
                    const double minStart = std::floor(range.high / step) * skip - (count - 1.0) * skip;
                    const double maxStart = std::ceil(range.low / step) * skip;
                    // So far from zero that multiples of the step are no longer told apart.
                    if (!(std::abs(minStart) < 1e15 && std::abs(maxStart) < 1e15))
                        continue;
                    for (double start = minStart; start <= maxStart; ++start)
                    {
                        Sequence sequence{start * unit, start * unit + step * (count - 1), step, 0};
                        if (isLoose && !(sequence.low <= range.low && sequence.high >= range.high))
                            continue;
                        sequence.score = score(range, wanted, sequence, order, skip, count);
                        if (sequence.score <= best.score)
                            continue;
                        if (legibility)
                            sequence.score += cLegibilityWeight * (legibility(sequence) - 1);
                        if (sequence.score > best.score)
                            best = sequence;
                    }
                }
            }
        }
    }
    return best;
}

} // namespace gui::draw
