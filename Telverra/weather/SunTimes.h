#pragma once

#include <QDate>

#include <optional>

/// Sunrise and sunset computed from the position and the date (the sunrise equation: the sun's centre 0.833° below
/// the horizon, which counts refraction and the disc's radius; within a minute or two away from the poles).
namespace SunTimes {

struct Day
{
    /// Seconds since 1970; nothing on a day the sun does not rise (polar night) or does not set (polar day).
    std::optional<qint64> sunrise;
    std::optional<qint64> sunset;
};

/// The sunrise and sunset of the calendar day `date` at the place (degrees, east and north positive).
Day on(const QDate &date, double latitude, double longitude);

} // namespace SunTimes
