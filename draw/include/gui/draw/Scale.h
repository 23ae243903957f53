#pragma once

#include <td/Export.h>
#include <td/Types.h>

#include <string>
#include <utility>

namespace gui::draw
{

/// How an axis shows values along its length. A value:
///
///     axes.y().setScale(Scale::logarithmic());
///     axes.x().setScale(Scale::time("Europe/Berlin"));
struct GUIGL_API Scale
{
    /// What values are.
    enum class Kind : td::BYTE
    {
        Linear,      ///< numbers, evenly
        Logarithmic, ///< numbers above 0, each factor of the same length; what is not above 0 has no place
        Time         ///< seconds since the beginning of 1970, UTC, evenly; ticks by the calendar
    };

    Kind kind = Kind::Linear; ///< what values are
    /// Of Time alone: whose clocks and days ticks go by, such as "Europe/Berlin"; empty for UTC, "local" for the
    /// system's own. One that nobody knows is UTC.
    std::string zone{};

    static Scale linear() { return {}; }                       ///< Kind::Linear
    static Scale logarithmic() { return {Kind::Logarithmic}; } ///< Kind::Logarithmic
    /// Kind::Time. @param zone  see zone
    static Scale time(std::string zone = {}) { return {Kind::Time, std::move(zone)}; }

    /// Where a value stands on an even axis: itself, or its decimal logarithm. Minus infinity for 0 and NaN for what is
    /// below on a logarithmic one.
    double toPlace(double value) const;
    /// The value at a place.
    double toValue(double place) const;

    bool operator==(const Scale&) const = default; ///< whether both are the same kind, in the same zone
};

} // namespace gui::draw
