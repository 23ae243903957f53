#include <gui/draw/Ticks.h>

#include "TimeTicks.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <iterator>
#include <unordered_map>
#include <utility>

namespace gui::draw
{

namespace
{

constexpr double cWidthOfCharacter = 7;
constexpr int cManyDigits = 6;    // of labels: beyond, what they have in common is told once
constexpr double cEpsilon = 1e-6; // of a step, that a tick may be beyond the range
constexpr std::size_t cMostTicks = 2000;
constexpr double cFewestWanted = 3.2; // labels, on short axes too: what has no room for them gets fewer
constexpr double cMostWanted = 400;
constexpr double cLeastDistance = 12;   // points: nearer to each other no labels can be read
constexpr double cFinestRange = 1e-13;  // of the distance from 0: less than that doubles do not tell apart well enough
constexpr double cMostTickSteps = 1e15; // from 0: each of them is a number of its own
// Years that calendars and clocks know.
constexpr double cEarliest = -5.0e11, cLatest = 5.0e11;

const std::array<const char*, 10> cSuperscripts{"⁰", "¹", "²", "³", "⁴", "⁵", "⁶", "⁷", "⁸", "⁹"};

std::string powerOfTen(int exponent)
{
    std::string text = "10";
    if (exponent < 0)
        text += "⁻";
    for (const char digit : std::to_string(std::abs(exponent)))
        text += cSuperscripts[static_cast<std::size_t>(digit - '0')];
    return text;
}

// So many places behind the point tell a step exactly, up to what doubles tell.
int placesOf(double step)
{
    for (int places = 0; places < 15; ++places)
    {
        const double scaled = step * std::pow(10, places);
        if (std::abs(scaled - std::round(scaled)) < 1e-6 * scaled && scaled > 0.5)
            return places;
    }
    return 15;
}

double largestOf(const Ticks::Range& range) { return std::max(std::abs(range.low), std::abs(range.high)); }

int exponentOf(double value) { return static_cast<int>(std::floor(std::log10(std::abs(value)) + 1e-12)); }

double wantedLabels(const Ticks::Room& room)
{
    const double distance = room.distance > cLeastDistance ? room.distance : cLeastDistance;
    return std::clamp(room.length / distance, cFewestWanted, cMostWanted);
}

double extentOf(const Ticks::Room& room, std::string_view label)
{
    if (room.extentOf)
        return room.extentOf(label);
    const auto n = std::count_if(label.begin(), label.end(), [](char c) { return (c & 0xC0) != 0x80; });
    return cWidthOfCharacter * static_cast<double>(n);
}

} // namespace

std::string Ticks::format(double value, int places)
{
    std::array<char, 400> digits;
    std::snprintf(digits.data(), digits.size(), "%.*f", places, std::abs(value));
    std::string text = digits.data();
    const bool isZero = text.find_first_not_of("0.") == std::string::npos;
    const std::size_t nWhole = std::min(text.find('.'), text.size());
    if (nWhole >= 5 && std::isfinite(value))
        for (std::size_t at = nWhole; at > 3;)
            text.insert(at -= 3, "\u2009");
    return value < 0 && !isZero ? "\u2212" + text : text;
}

Ticks::Ticks(const Scale& scale, const Range& range, const Room& room, double step)
{
    const bool isLogarithmic = scale.kind == Scale::Kind::Logarithmic;
    if (!(range.low < range.high) || !std::isfinite(range.low) || !std::isfinite(range.high) || !(room.length > 0) ||
        !std::isfinite(room.length) || !std::isfinite(range.high - range.low) || (isLogarithmic && !(range.low > 0)) ||
        range.high - range.low < cFinestRange * largestOf(range))
        return;
    if (isLogarithmic)
        makeLogarithmic(range, room, step);
    else if (scale.kind == Scale::Kind::Time && range.low > cEarliest && range.high < cLatest &&
             range.high - range.low > 1e-6)
        makeTime(scale, range, room, step);
    else
        makeLinear(scale, range, room, step);
    thin(scale, range, room);
    clearContexts(range, room);
}

void Ticks::makeLinear(const Scale& scale, const Range& range, const Room& room, double step)
{
    if (step > 0 && (range.high - range.low) / step < cMostTicks && largestOf(range) / step < cMostTickSteps)
    {
        placeLinear(range, step);
        if (!collide(scale, range, room))
            return;
    }
    const double pointsPerUnit = room.length / (range.high - range.low);
    Ticks trial;
    const auto judge = [&](double tried)
    {
        const double points = tried * pointsPerUnit;
        // The publication lets labels stand a little beyond the data; here nobody would see these.
        const double nSeen = std::floor(range.high / tried + cEpsilon) - std::ceil(range.low / tried - cEpsilon) + 1;
        if (points < room.space || nSeen < 2)
            return -std::numeric_limits<double>::infinity();
        if (points > 20 * cWidthOfCharacter && scale.kind != Scale::Kind::Logarithmic)
            return 1.0;
        trial.placeLinear(range, tried);
        return trial.collide(scale, range, room) ? -std::numeric_limits<double>::infinity() : 1.0;
    };
    // It is all about the step, which many sequences share, but for its last digits.
    std::unordered_map<long long, double> known;
    const auto legibility = [&](const Sequence& sequence)
    {
        const auto [found, isNew] = known.try_emplace(std::llround(std::log(sequence.step) / cEpsilon));
        if (isNew)
            found->second = judge(sequence.step);
        return found->second;
    };
    const Sequence best = search(range, wantedLabels(room), legibility);
    if (best.step > 0)
        return placeLinear(range, best.step);
    // Nothing fits: one label in the middle, or none (see thin).
    placeLinear(range, std::pow(10, std::floor(std::log10(range.high - range.low))));
}

void Ticks::placeLinear(const Range& range, double step)
{
    _step = step;
    _ticks.clear();
    _minor.clear();
    _note.clear();
    const double first = std::ceil(range.low / step - cEpsilon), last = std::floor(range.high / step + cEpsilon);
    if (!(last - first < cMostTicks))
        return;
    const double largest = std::max(std::abs(first), std::abs(last)) * step;
    // Far from zero what is common is told once; so are many zeros.
    double offset = 0;
    int power = 0;
    if (last > first && largest / step >= std::pow(10, cManyDigits))
    {
        const double unit = std::pow(10, exponentOf(range.high - range.low) + 1);
        offset = std::floor(range.low / unit) * unit;
    }
    const double rest = offset != 0 ? std::max(range.high - offset, step) : largest;
    if (rest > 0 && (rest >= std::pow(10, cManyDigits) || (placesOf(step) > 5 && rest < 0.01) || placesOf(step) > 12))
        power = static_cast<int>(std::floor(exponentOf(rest) / 3.0)) * 3;
    const double factor = std::pow(10, -power);
    const int places = placesOf(step * factor);
    for (double i = first; i <= last; ++i)
        _ticks.push_back({i * step, (offset != 0 ? "+" : "") + format((i * step - offset) * factor, places)});
    if (power != 0)
        _note = "×" + powerOfTen(power);
    if (offset != 0)
        _note += (_note.empty() ? "" : "  ") + std::string(offset > 0 ? "+" : "") +
                 format(offset, std::max(0, -exponentOf(range.high - range.low) - 1));
    // By the step's first digits.
    const double digits = step / std::pow(10, std::floor(std::log10(step) + 1e-9));
    const int nParts = std::abs(digits - 2) < 1e-6 || std::abs(digits - 4) < 1e-6 ? 4
                       : std::abs(digits - 3) < 1e-6                              ? 3
                                                                                  : 5;
    const double part = step / nParts;
    for (double i = std::ceil(range.low / part - cEpsilon); i <= std::floor(range.high / part + cEpsilon); ++i)
        if (std::fmod(std::abs(i), nParts) != 0)
            _minor.push_back(i * part);
}

void Ticks::makeLogarithmic(const Range& range, const Room& room, double step)
{
    const Scale scale = Scale::logarithmic();
    const double low = std::log10(range.low), high = std::log10(range.high);
    const double decades = high - low;
    // Labels at these places of each decade; those of a few decades are written in full.
    const auto isPlain = [](int exponent) { return exponent >= -4 && exponent <= 4; };
    const auto place = [&](int stepOfDecades, std::span<const int> digits)
    {
        _ticks.clear();
        _minor.clear();
        _step = stepOfDecades;
        const int first = static_cast<int>(std::floor(low)), last = static_cast<int>(std::floor(high + cEpsilon));
        const bool arePlain = isPlain(static_cast<int>(std::ceil(low - cEpsilon))) && isPlain(last);
        const auto isIn = [&](double value)
        { return value >= range.low * (1 - 1e-12) && value <= range.high * (1 + 1e-12); };
        for (int exponent = first; exponent <= last; ++exponent)
        {
            const double unit = std::pow(10, exponent);
            const bool isLabelled = (exponent % stepOfDecades + stepOfDecades) % stepOfDecades == 0;
            for (int digit = 1; digit < 10; ++digit)
            {
                const double value = digit * unit;
                if (!isIn(value))
                    continue;
                if (isLabelled && std::find(digits.begin(), digits.end(), digit) != digits.end())
                    _ticks.push_back({value, arePlain     ? format(value, std::max(0, -exponent))
                                             : digit == 1 ? powerOfTen(exponent)
                                                          : std::to_string(digit) + "·" + powerOfTen(exponent)});
                else if (digit == 1 || (stepOfDecades == 1 && decades < 12))
                    _minor.push_back(value);
            }
        }
    };
    constexpr std::array<int, 1> cOne{1};
    constexpr std::array<int, 2> cTwo{1, 3};
    constexpr std::array<int, 3> cThree{1, 2, 5};
    constexpr std::array<int, 9> cAll{1, 2, 3, 4, 5, 6, 7, 8, 9};
    const double wanted = wantedLabels(room);
    if (decades < 1.5)
    {
        if (decades >= 0.7)
            for (const std::span<const int> digits : {std::span<const int>(cAll), std::span<const int>(cThree)})
            {
                place(1, digits);
                if (_ticks.size() >= 2 && static_cast<double>(_ticks.size()) < 2 * wanted &&
                    !collide(scale, range, room))
                    return;
            }
        return makeLinear(scale, range, room, step >= 1 ? 0 : step);
    }
    for (const std::span<const int> digits : {std::span<const int>(cThree), std::span<const int>(cTwo)})
    {
        if (decades * static_cast<double>(digits.size()) > 1.5 * wanted)
            continue;
        place(1, digits);
        if (!collide(scale, range, room))
            return;
    }
    for (int stepOfDecades = std::max(1, static_cast<int>(std::round(decades / wanted))); stepOfDecades < 700;
         ++stepOfDecades)
    {
        place(stepOfDecades, cOne);
        if (!collide(scale, range, room))
            return;
    }
}

void Ticks::makeTime(const Scale& scale, const Range& range, const Room& room, double step)
{
    const TimeTicks times(scale, range);
    const auto use = [&](const TimeTicks::Step& used)
    {
        times.place(used, _ticks);
        _step = used.getLength();
        return !_ticks.empty() && !collide(scale, range, room);
    };
    const std::vector<TimeTicks::Step> all = TimeTicks::allSteps();
    const auto kept = std::find_if(all.begin(), all.end(),
                                   [step](const TimeTicks::Step& other) { return other.getLength() == step; });
    const std::vector<TimeTicks::Step> steps = times.stepsFor(wantedLabels(room));
    if (kept != all.end() && (range.high - range.low) / step < cMostTicks && use(*kept))
        return times.placeMinor(*kept, _minor);
    for (const TimeTicks::Step& next : steps)
        if (use(next))
            return times.placeMinor(next, _minor);
}

bool Ticks::collide(const Scale& scale, const Range& range, const Room& room) const
{
    const double low = scale.toPlace(range.low);
    const double perPlace = room.length / (scale.toPlace(range.high) - low);
    double end = -std::numeric_limits<double>::infinity();
    for (const Tick& tick : _ticks)
    {
        const double half = extentOf(room, tick.label) / 2, at = (scale.toPlace(tick.value) - low) * perPlace;
        if (at - half < end + room.space)
            return true;
        end = at + half;
    }
    return false;
}

// The last resort: every other label, until they keep clear of each other.
void Ticks::thin(const Scale& scale, const Range& range, const Room& room)
{
    while (_ticks.size() > 1 && collide(scale, range, room))
    {
        std::vector<Tick> rest;
        for (std::size_t i = 0; i < _ticks.size(); ++i)
            i % 2 == 0 ? rest.push_back(std::move(_ticks[i])) : _minor.push_back(_ticks[i].value);
        _ticks = std::move(rest);
        std::sort(_minor.begin(), _minor.end());
    }
}

// The second lines are longer: one that stands at the beginning gives way to the next.
void Ticks::clearContexts(const Range& range, const Room& room)
{
    const double perUnit = room.length / (range.high - range.low);
    Tick* pBefore = nullptr;
    double end = 0;
    for (Tick& tick : _ticks)
    {
        if (tick.context.empty())
            continue;
        const double half = extentOf(room, tick.context) / 2, at = tick.value * perUnit;
        if (pBefore != nullptr && at - half < end + room.space)
        {
            if (pBefore == &_ticks.front())
                pBefore->context.clear();
            else
            {
                tick.context.clear();
                continue;
            }
        }
        pBefore = &tick;
        end = at + half;
    }
}

} // namespace gui::draw
