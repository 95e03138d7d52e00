#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

// The One Call forecast document. Integer fields hold integral JSON numbers; optional fields may be missing or null;
// keys not listed are ignored. Current.rain is an object while Daily.rain is a bare number, on purpose.

struct Weather
{
    qint64 id = 0;
    QString main;
    QString weatherDescription; // "description"
    QString icon;
    bool operator==(const Weather &) const = default;
};

struct Rain
{
    double the1H = 0; // "1h"
    bool operator==(const Rain &) const = default;
};

struct Temp
{
    double day = 0, min = 0, max = 0, night = 0, eve = 0, morn = 0;
    bool operator==(const Temp &) const = default;
};

struct FeelsLike
{
    double day = 0, night = 0, eve = 0, morn = 0;
    bool operator==(const FeelsLike &) const = default;
};

struct Current
{
    qint64 dt = 0;
    std::optional<qint64> sunrise;
    std::optional<qint64> sunset;
    double temp = 0;
    double feelsLike = 0;
    qint64 pressure = 0;
    qint64 humidity = 0;
    double dewPoint = 0;
    double uvi = 0;
    qint64 clouds = 0;
    qint64 visibility = 0;
    double windSpeed = 0;
    QList<Weather> weather;
    std::optional<Rain> rain;
    bool operator==(const Current &) const = default;
};

struct Daily
{
    qint64 dt = 0;
    qint64 sunrise = 0;
    qint64 sunset = 0;
    qint64 moonrise = 0;
    qint64 moonset = 0;
    double moonPhase = 0;
    Temp temp;
    FeelsLike feelsLike;
    qint64 pressure = 0;
    qint64 humidity = 0;
    double dewPoint = 0;
    double windSpeed = 0;
    qint64 windDeg = 0;
    double windGust = 0;
    QList<Weather> weather;
    qint64 clouds = 0;
    double pop = 0;
    double uvi = 0;
    std::optional<double> rain;
    bool operator==(const Daily &) const = default;
};

/// Where a document came from: the One Call service (with a key), or MET Norway's keyless forecast turned into the
/// same document.
enum class WeatherProvider
{
    oneCall,
    metNorway,
};

struct WeatherInfo
{
    double lat = 0;
    double lon = 0;
    QString timezone;
    qint64 timezoneOffset = 0;
    Current current;
    QList<Daily> daily;
    // Beside the document: its source, and the fields that source does not give ("current.uvi", "daily.pop",
    // "daily.2.sunrise" for one day), which hold 0 and are never shown.
    WeatherProvider provider = WeatherProvider::oneCall;
    QStringList absent;
    bool operator==(const WeatherInfo &) const = default;

    /// Whether the source gave the field ("current.uvi"), or for a day ("daily.pop" for day 2 is also "daily.2.pop").
    bool has(const QString &field, qsizetype day = -1) const;

    /// The document, or nothing when a required field is missing or any field has the wrong shape.
    static std::optional<WeatherInfo> decode(const QByteArray &json);
    QJsonObject toJson() const;
};
