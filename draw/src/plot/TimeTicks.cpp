#include "TimeTicks.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace gui::draw
{

namespace
{

constexpr double cDayLength = 86400, cMonthLength = 30.436875 * cDayLength;
constexpr std::size_t cMostTimes = 2000;
constexpr int cLastYear = 32'767; // of std::chrono
constexpr std::array<const char*, 12> cMonthNames{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                  "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

struct Date
{
    int year;
    unsigned int month; // from 1
    unsigned int day;
};

Date dateOf(double days)
{
    using namespace std::chrono;
    const year_month_day date(sys_days(std::chrono::days(static_cast<int>(days))));
    return {int(date.year()), unsigned(date.month()), unsigned(date.day())};
}

double daysOf(int year, unsigned int month, unsigned int day)
{
    using namespace std::chrono;
    return static_cast<double>(sys_days(std::chrono::year(year) / std::chrono::month(month) / std::chrono::day(day))
                                   .time_since_epoch()
                                   .count());
}

template <typename... Args>
std::string print(const char* format, Args... args)
{
    std::array<char, 64> text;
    std::snprintf(text.data(), text.size(), format, args...);
    return text.data();
}

std::string yearOf(const Date& date) { return (date.year < 0 ? "\u2212" : "") + std::to_string(std::abs(date.year)); }

int placesOfSeconds(double seconds)
{
    return std::clamp(static_cast<int>(std::ceil(-std::log10(seconds) - 1e-9)), 0, 9);
}

} // namespace

double TimeTicks::Step::getLength() const
{
    return seconds > 0 ? seconds : days > 0 ? days * cDayLength : months * cMonthLength;
}

TimeTicks::TimeTicks(const Scale& scale, const Ticks::Range& range)
    : _zone(scale.zone)
    , _range(range)
{
}

std::vector<TimeTicks::Step> TimeTicks::allSteps()
{
    std::vector<Step> steps;
    for (int power = -9; power < 0; ++power)
        for (const double digit : {1.0, 2.0, 5.0})
            steps.push_back({.seconds = digit * std::pow(10, power)});
    for (const double unit : {1.0, 60.0})
        for (const double n : {1.0, 2.0, 5.0, 10.0, 15.0, 30.0})
            steps.push_back({.seconds = n * unit});
    for (const double hours : {1.0, 2.0, 3.0, 6.0, 12.0})
        steps.push_back({.seconds = hours * 3600});
    for (const int days : {1, 2, 7})
        steps.push_back({.days = days});
    for (const int months : {1, 2, 3, 6})
        steps.push_back({.months = months});
    for (int power = 1; power <= 10000; power *= 10)
        for (const int digit : {1, 2, 5})
            steps.push_back({.months = 12 * digit * power});
    return steps;
}

// Those that come nearest first, and then coarser ones.
std::vector<TimeTicks::Step> TimeTicks::stepsFor(double wanted) const
{
    const double length = (_range.high - _range.low) / std::clamp(wanted, 1.0, 1000.0);
    std::vector<Step> steps = allSteps();
    const auto badness = [length](const Step& step) { return std::abs(std::log(step.getLength() / length)); };
    const auto best = std::min_element(steps.begin(), steps.end(),
                                       [&badness](const Step& a, const Step& b) { return badness(a) < badness(b); });
    return {best, steps.end()};
}

// By UTC, as shown by the zone's clocks.
void TimeTicks::findTimes(const Step& step, std::vector<double>& times) const
{
    const auto add = [this, &times](double utc)
    {
        if (utc >= _range.low && utc <= _range.high && (times.empty() || utc > times.back()))
            times.push_back(utc);
    };
    const double low = _zone.toLocal(_range.low), high = _zone.toLocal(_range.high);
    if (step.seconds > 0 && step.seconds <= 3600)
    {
        const double offset = low - _range.low;
        const double first = std::ceil((_range.low + offset) / step.seconds);
        const double last = std::floor((_range.high + offset) / step.seconds);
        constexpr double cMostTimeSteps = 1e15; // from 1970: each of them is a number of its own
        if (!(std::abs(first) < cMostTimeSteps && std::abs(last) < cMostTimeSteps))
            return;
        for (double i = first; i <= last && times.size() < cMostTimes; ++i)
            add(i * step.seconds - offset);
        return;
    }
    if (step.months == 0)
    {
        for (double day = std::floor(low / cDayLength) - 1;
             day * cDayLength <= high + cDayLength && times.size() < cMostTimes; ++day)
        {
            const unsigned int date = dateOf(day).day;
            if (step.days == 7 && std::fmod(day + 3 + 7e7, 7) != 0)
                continue; // 1 January 1970 was a Thursday
            if (step.days == 2 && (date % 2 == 0 || date > 29))
                continue;
            if (step.days > 0)
                add(_zone.toUTC(day * cDayLength));
            else
                for (double hour = 0; hour < cDayLength; hour += step.seconds)
                    add(_zone.toUTC(day * cDayLength + hour));
        }
        return;
    }
    const Date date = dateOf(std::floor(low / cDayLength));
    int month = date.year * 12 + static_cast<int>(date.month) - 1;
    month -= (month % step.months + step.months) % step.months;
    for (; times.size() < cMostTimes; month += step.months)
    {
        const int year = (month - (month % 12 + 12) % 12) / 12;
        // The largest steps begin and end beyond the years that dates have.
        if (year > cLastYear)
            return;
        if (year < -cLastYear)
            continue;
        const double utc = _zone.toUTC(daysOf(year, static_cast<unsigned int>(month - year * 12) + 1, 1) * cDayLength);
        if (utc > _range.high)
            return;
        add(utc);
    }
}

void TimeTicks::label(const Step& step, Ticks::Tick& tick) const
{
    // Rounded to what is told of it, or a second might lack a billionth.
    const double unit = step.seconds > 0 && step.seconds < 1 ? step.seconds / 2 : 0.5;
    const double local = _zone.toLocal(tick.value);
    const double days = std::floor((local + unit) / cDayLength);
    const double second = std::max(local - days * cDayLength, 0.0);
    const Date date = dateOf(days);
    const auto whole = static_cast<int>(second + unit);
    const std::string day = print("%u %s ", date.day, cMonthNames[date.month - 1]) + yearOf(date);
    if (step.months >= 12)
        tick.label = yearOf(date);
    else if (step.months > 0)
    {
        tick.label = cMonthNames[date.month - 1];
        tick.context = yearOf(date);
    }
    else if (step.days > 0)
    {
        tick.label = print("%u", date.day);
        tick.context = print("%s ", cMonthNames[date.month - 1]) + yearOf(date);
    }
    else if (step.seconds >= 60)
    {
        tick.label = print("%02d:%02d", whole / 3600, whole / 60 % 60);
        tick.context = day;
    }
    else if (step.seconds >= 1)
    {
        tick.label = print("%02d:%02d:%02d", whole / 3600, whole / 60 % 60, whole % 60);
        tick.context = day;
    }
    else
    {
        const int places = placesOfSeconds(step.seconds);
        const double minute = std::floor((second + unit) / 60);
        tick.label = print("%0*.*f", places + 3, places, std::max(second - minute * 60, 0.0));
        tick.context = day + print(" %02d:%02d", static_cast<int>(minute) / 60, static_cast<int>(minute) % 60);
    }
}

void TimeTicks::place(const Step& step, std::vector<Ticks::Tick>& ticks) const
{
    std::vector<double> times;
    findTimes(step, times);
    ticks.clear();
    std::string context;
    for (const double time : times)
    {
        Ticks::Tick& tick = ticks.emplace_back();
        tick.value = time;
        label(step, tick);
        if (tick.context == context)
            tick.context.clear();
        else
            context = tick.context;
    }
}

void TimeTicks::placeMinor(const Step& step, std::vector<double>& minor) const
{
    const auto firstOf = [](const std::vector<Step>& steps, double length)
    {
        return std::find_if(steps.rbegin(), steps.rend(),
                            [length](const Step& other) { return other.getLength() < length; });
    };
    const std::vector<Step> steps = allSteps();
    // A finer step that divides this one, a fifth of it or so.
    for (auto finer = firstOf(steps, step.getLength() / 1.9); finer != steps.rend(); ++finer)
    {
        const double ratio = step.seconds > 0 || step.days > 0
                                 ? step.getLength() / finer->getLength()
                                 : (finer->months > 0 ? double(step.months) / finer->months : 2);
        if (finer->days == 2 || (finer->days == 7 && step.months > 0) || std::abs(ratio - std::round(ratio)) > 1e-6)
            continue;
        if (ratio > 12)
            return;
        if (ratio < 3.5 && finer + 1 != steps.rend() && step.seconds > 0 && finer->seconds != 900)
        {
            const double more = step.getLength() / (finer + 1)->getLength();
            if (more <= 6 && std::abs(more - std::round(more)) < 1e-6)
                continue;
        }
        findTimes(*finer, minor);
        return;
    }
}

std::string TimeTicks::describe(const Scale& scale, double time, double difference)
{
    if (!(std::abs(time) < 5e11))
        return Ticks::format(time, 0);
    const int places = difference < 1 ? placesOfSeconds(std::max(difference, 1e-6)) : 0;
    const double unit = std::pow(10, -places), local = std::round(TimeZone(scale.zone).toLocal(time) / unit) * unit;
    const double days = std::floor(local / cDayLength), second = local - days * cDayLength;
    const Date date = dateOf(days);
    std::string text = print("%u %s ", date.day, cMonthNames[date.month - 1]) + yearOf(date);
    const int whole = static_cast<int>(second);
    if (difference < cDayLength)
        text += print(" %02d:%02d", whole / 3600, whole / 60 % 60);
    if (difference < 60)
        text += print(":%0*.*f", places > 0 ? places + 3 : 2, places, second - (whole - whole % 60));
    return text;
}

} // namespace gui::draw
