#include "SunTimes.h"

#include <cmath>
#include <numbers>

namespace SunTimes {

namespace {

constexpr double julianDay2000 = 2451545.0;
constexpr double julianDayOf1970 = 2440587.5;

double radians(double degrees)
{
    return degrees * std::numbers::pi / 180.0;
}

double degrees(double radians)
{
    return radians * 180.0 / std::numbers::pi;
}

qint64 unixTime(double julianDay)
{
    return std::llround((julianDay - julianDayOf1970) * 86400.0);
}

} // namespace

Day on(const QDate &date, double latitude, double longitude)
{
    // Mean solar noon of the place's day, in days since 2000-01-01 12:00 UTC.
    const double day = double(date.toJulianDay()) - julianDay2000 + 0.0008;
    const double meanNoon = day - longitude / 360.0;
    const double anomaly = std::fmod(357.5291 + 0.98560028 * meanNoon, 360.0);
    const double m = radians(anomaly);
    const double centre = 1.9148 * std::sin(m) + 0.0200 * std::sin(2 * m) + 0.0003 * std::sin(3 * m);
    const double eclipticLongitude = radians(std::fmod(anomaly + centre + 180.0 + 102.9372, 360.0));
    const double transit = julianDay2000 + meanNoon + 0.0053 * std::sin(m) - 0.0069 * std::sin(2 * eclipticLongitude);
    const double sinDeclination = std::sin(eclipticLongitude) * std::sin(radians(23.4397));
    const double declination = std::asin(sinDeclination);
    const double phi = radians(latitude);
    const double cosHourAngle =
        (std::sin(radians(-0.833)) - std::sin(phi) * sinDeclination) / (std::cos(phi) * std::cos(declination));
    if (!std::isfinite(cosHourAngle) || cosHourAngle > 1.0 || cosHourAngle < -1.0) {
        return {}; // the sun stays below (polar night) or above (polar day) the horizon all day
    }
    const double halfDay = degrees(std::acos(cosHourAngle)) / 360.0;
    return {unixTime(transit - halfDay), unixTime(transit + halfDay)};
}

} // namespace SunTimes
