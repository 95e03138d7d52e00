#pragma once

#include "weather/WeatherInfo.h"

#include <QDateTime>
#include <QTimeZone>
#include <QUrl>

#include <optional>

/// MET Norway's Locationforecast 2.0, the keyless forecast: its request, and its answer (a GeoJSON time series)
/// turned into the One Call document the card and the pop-over read. Only what the answer gives is filled in; what it
/// cannot give (visibility, the moon, and without the `complete` fields the UV index, dew point, gusts and the chance
/// of rain) is listed in WeatherInfo::absent.
namespace MetNorwayForecast {

/// The service's address, unless Info.ini names another (MET_NORWAY_BASE_URL).
inline constexpr const char *defaultBaseUrl = "https://api.met.no";
/// The `complete` document: the compact one and the UV index, dew point, gusts and chance of rain.
inline constexpr const char *path = "/weatherapi/locationforecast/2.0/complete";
/// Where the attribution links to.
inline constexpr const char *providerAddress = "https://www.met.no/en";

/// A coordinate rounded to four decimals, as the service asks (more only defeats its caches): 28.4636, -3.5, 40.
QString coordinateText(double value);
/// The request for a position (`base` without a trailing slash).
QUrl requestUrl(const QString &base, double lat, double lon);

/// The forecast of `body` as seen at `now`: the current block from the time step that holds `now`; one day per
/// calendar day of `zone` from today, with its minimum, maximum and symbol from the hourly series, sunrise and
/// sunset computed for the position. Nothing when the body is no forecast or holds no step at or after the hour of
/// `now`.
std::optional<WeatherInfo> convert(const QByteArray &body, const QDateTime &now,
                                   const QTimeZone &zone = QTimeZone::systemTimeZone());

/// The temperature it feels like (Steadman's apparent temperature, as weather services give it): from the air
/// temperature (°C), the relative humidity (%) and the wind speed (m/s).
double apparentTemperature(double celsius, double humidity, double windSpeed);

} // namespace MetNorwayForecast
