#pragma once

#include <memory>
#include <string>

namespace gui::draw
{

/// Clocks of a place. Times are in seconds since the beginning of 1970, by UTC or by the clocks there.
class TimeZone
{
public:
    /// @param name  see Scale::zone
    explicit TimeZone(const std::string& name);
    ~TimeZone();
    TimeZone(const TimeZone&) = delete;
    TimeZone& operator=(const TimeZone&) = delete;

    double toLocal(double utc) const { return utc + offsetAt(utc); }
    /// The first instant at which clocks show it; where none does, an hour that is left out, the instant before it and
    /// as far on.
    double toUTC(double local) const;

private:
    double offsetAt(double utc) const;

    struct Calendar;
    std::unique_ptr<Calendar> _pCalendar; // none for UTC
};

} // namespace gui::draw
