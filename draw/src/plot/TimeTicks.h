#pragma once

#include "TimeZone.h"

#include <gui/draw/Ticks.h>

#include <vector>

namespace gui::draw
{

/// The ticks of an axis of time, by the calendar of a zone.
class TimeTicks
{
public:
    /// In seconds, months and years of usual length.
    struct Step
    {
        double seconds = 0; ///< below a day; else 0
        int days = 0;       ///< 1, 2 within months, or 7 for Mondays
        int months = 0;     ///< up to a year, or whole years
        double getLength() const;
    };

    TimeTicks(const Scale& scale, const Ticks::Range& range);

    /// The step whose labels are about as many as wanted, or that of a length. Never more than 1000 labels.
    std::vector<Step> stepsFor(double wanted) const;
    static std::vector<Step> allSteps();
    /// A time in words, to a second or a part of it where a difference asks for that.
    static std::string describe(const Scale& scale, double time, double difference);

    void place(const Step& step, std::vector<Ticks::Tick>& ticks) const;
    void placeMinor(const Step& step, std::vector<double>& minor) const;

private:
    void findTimes(const Step& step, std::vector<double>& times) const;
    void label(const Step& step, Ticks::Tick& tick) const;

    TimeZone _zone;
    Ticks::Range _range;
};

} // namespace gui::draw
