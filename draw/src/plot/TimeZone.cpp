#include "TimeZone.h"

#include <unicode/ucal.h>

#include <cmath>
#include <string>

namespace gui::draw
{

namespace
{

constexpr double cZoneDay = 86400;

} // namespace

struct TimeZone::Calendar
{
    explicit Calendar(const std::string& name)
    {
        std::u16string zone(name.begin(), name.end());
        UErrorCode status = U_ZERO_ERROR;
        const bool isLocal = name == "local";
        pCalendar = ucal_open(isLocal ? nullptr : zone.c_str(), isLocal ? 0 : static_cast<std::int32_t>(zone.size()),
                              "en", UCAL_GREGORIAN, &status);
        if (U_FAILURE(status))
            pCalendar = nullptr;
    }
    ~Calendar() { ucal_close(pCalendar); }
    Calendar(const Calendar&) = delete;
    Calendar& operator=(const Calendar&) = delete;

    UCalendar* pCalendar = nullptr;
};

TimeZone::TimeZone(const std::string& name)
{
    if (name.empty() || name == "UTC")
        return;
    auto pCalendar = std::make_unique<Calendar>(name);
    if (pCalendar->pCalendar != nullptr)
        _pCalendar = std::move(pCalendar);
}

TimeZone::~TimeZone() = default;

double TimeZone::offsetAt(double utc) const
{
    if (!_pCalendar)
        return 0;
    UErrorCode status = U_ZERO_ERROR;
    ucal_setMillis(_pCalendar->pCalendar, std::floor(utc) * 1000, &status);
    const std::int32_t zone = ucal_get(_pCalendar->pCalendar, UCAL_ZONE_OFFSET, &status);
    const std::int32_t summer = ucal_get(_pCalendar->pCalendar, UCAL_DST_OFFSET, &status);
    return U_SUCCESS(status) ? (zone + summer) / 1000.0 : 0;
}

// Offsets change once a day at most, so those of the days before and after are the two that it can be.
double TimeZone::toUTC(double local) const
{
    if (!_pCalendar)
        return local;
    const double before = offsetAt(local - cZoneDay), after = offsetAt(local + cZoneDay);
    const double first = local - before, second = local - after;
    if (toLocal(first) == local && toLocal(second) == local)
        return std::fmin(first, second);
    return toLocal(second) == local ? second : first;
}

} // namespace gui::draw
