#include "MetNorwayForecast.h"

#include "weather/SunTimes.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QUrlQuery>

#include <algorithm>
#include <cmath>
#include <map>

namespace MetNorwayForecast {

namespace {

// The symbol families, from the mildest; a day shows the worst one that lasts.
enum Severity
{
    clear,
    fair,
    partlyCloudy,
    cloudy,
    fog,
    showers,
    rain,
    sleet,
    snow,
    thunder,
};

struct Symbol
{
    Severity severity;
    Weather weather;
};

// One time step of the series.
struct Step
{
    qint64 time = 0;
    double temperature = 0;
    std::optional<double> humidity, pressure, clouds, windSpeed, windDirection, gust, dewPoint, uv;
    // The period the step's symbol and precipitation cover: the next 1, 6 or 12 hours (0: none given).
    int hours = 0;
    std::optional<Symbol> symbol;
    std::optional<double> precipitation, chanceOfRain, periodMin, periodMax;
};

std::optional<double> numberAt(const QJsonObject &object, const QString &key)
{
    const QJsonValue value = object.value(key);
    if (!value.isDouble() || !std::isfinite(value.toDouble())) {
        return std::nullopt;
    }
    return value.toDouble();
}

std::optional<Symbol> symbolOf(const QString &code)
{
    const QString family = code.section(u'_', 0, 0);
    const bool night = code.endsWith(u"_night");
    // 0 light, 1 normal, 2 heavy: the One Call service's ids grow the same way.
    const int intensity = family.startsWith(u"light") ? 0 : family.startsWith(u"heavy") ? 2 : 1;
    auto make = [night](Severity severity, qint64 id, const char *main, const char *description, const char *icon) {
        return Symbol{severity, Weather{id, QString::fromLatin1(main), QString::fromLatin1(description),
                                        QString::fromLatin1(icon) + (night ? u'n' : u'd')}};
    };
    if (family.contains(u"thunder")) {
        return make(thunder, 200 + intensity, "Thunderstorm", "thunderstorm", "11");
    }
    if (family.contains(u"snow")) {
        return make(snow, 600 + intensity, "Snow", "snow", "13");
    }
    if (family.contains(u"sleet")) {
        return make(sleet, 611, "Snow", "snow", "13");
    }
    if (family.contains(u"rainshowers")) {
        return make(showers, 520 + intensity, "Rain", "shower rain", "09");
    }
    if (family.contains(u"rain")) {
        return make(rain, 500 + intensity, "Rain", "rain", "10");
    }
    if (family == u"fog") {
        return make(fog, 741, "Mist", "mist", "50");
    }
    if (family == u"cloudy") {
        return make(cloudy, 803, "Clouds", "broken clouds", "04");
    }
    if (family == u"partlycloudy") {
        return make(partlyCloudy, 802, "Clouds", "scattered clouds", "03");
    }
    if (family == u"fair") {
        return make(fair, 801, "Clouds", "few clouds", "02");
    }
    if (family == u"clearsky") {
        return make(clear, 800, "Clear", "clear sky", "01");
    }
    return std::nullopt;
}

std::optional<Step> readStep(const QJsonValue &value)
{
    const QJsonObject entry = value.toObject();
    const QDateTime time = QDateTime::fromString(entry.value(u"time").toString(), Qt::ISODate);
    const QJsonObject data = entry.value(u"data").toObject();
    const QJsonObject details = data.value(u"instant").toObject().value(u"details").toObject();
    const std::optional<double> temperature = numberAt(details, QStringLiteral("air_temperature"));
    // Values no weather has are no forecast: they would only turn into nonsense (or infinities) further on.
    if (!time.isValid() || !temperature || std::abs(*temperature) > 100) {
        return std::nullopt;
    }
    auto within = [](std::optional<double> number, double low, double high) {
        return number && *number >= low && *number <= high ? number : std::nullopt;
    };
    Step step;
    step.time = time.toSecsSinceEpoch();
    step.temperature = *temperature;
    step.humidity = within(numberAt(details, QStringLiteral("relative_humidity")), 0, 100);
    step.pressure = numberAt(details, QStringLiteral("air_pressure_at_sea_level"));
    step.clouds = numberAt(details, QStringLiteral("cloud_area_fraction"));
    step.windSpeed = within(numberAt(details, QStringLiteral("wind_speed")), 0, 150);
    step.windDirection = numberAt(details, QStringLiteral("wind_from_direction"));
    step.gust = numberAt(details, QStringLiteral("wind_speed_of_gust"));
    step.dewPoint = numberAt(details, QStringLiteral("dew_point_temperature"));
    step.uv = numberAt(details, QStringLiteral("ultraviolet_index_clear_sky"));
    static constexpr std::pair<const char16_t *, int> periods[] = {
        {u"next_1_hours", 1}, {u"next_6_hours", 6}, {u"next_12_hours", 12}};
    for (const auto &[key, hours] : periods) {
        const QJsonObject period = data.value(QString::fromUtf16(key)).toObject();
        if (period.isEmpty()) {
            continue;
        }
        const QJsonObject periodDetails = period.value(u"details").toObject();
        if (hours == 6) {
            step.periodMin = within(numberAt(periodDetails, QStringLiteral("air_temperature_min")), -100, 100);
            step.periodMax = within(numberAt(periodDetails, QStringLiteral("air_temperature_max")), -100, 100);
        }
        if (step.hours != 0) {
            continue; // the shortest period describes the step
        }
        step.symbol = symbolOf(period.value(u"summary").toObject().value(u"symbol_code").toString());
        if (!step.symbol) {
            continue;
        }
        step.hours = hours;
        step.precipitation = numberAt(periodDetails, QStringLiteral("precipitation_amount"));
        step.chanceOfRain = numberAt(periodDetails, QStringLiteral("probability_of_precipitation"));
    }
    return step;
}

qint64 rounded(double value)
{
    return std::llround(value);
}

// The step nearest to an hour of the day, among the day's steps.
const Step &nearest(const QList<const Step *> &steps, const QDate &date, int hour, const QTimeZone &zone)
{
    const qint64 target = QDateTime(date, QTime(hour, 0), zone).toSecsSinceEpoch();
    return **std::min_element(steps.begin(), steps.end(), [target](const Step *a, const Step *b) {
        return std::abs(a->time - target) < std::abs(b->time - target);
    });
}

template<typename Get>
std::optional<double> maximum(const QList<const Step *> &steps, Get get)
{
    std::optional<double> best;
    for (const Step *step : steps) {
        if (const std::optional<double> value = get(*step); value && (!best || *value > *best)) {
            best = value;
        }
    }
    return best;
}

// The day's symbol: the worst family that covers at least three hours, else the worst there is; within a family
// the heaviest.
std::optional<Weather> daySymbol(const QList<const Step *> &steps)
{
    std::map<Severity, std::pair<int, Weather>> families;
    for (const Step *step : steps) {
        if (!step->symbol) {
            continue;
        }
        const auto entry = families.try_emplace(step->symbol->severity, 0, step->symbol->weather).first;
        entry->second.first += step->hours;
        if (step->symbol->weather.id > entry->second.second.id) {
            entry->second.second = step->symbol->weather;
        }
    }
    if (families.empty()) {
        return std::nullopt;
    }
    for (auto family = families.rbegin(); family != families.rend(); ++family) {
        if (family->second.first >= 3) {
            return family->second.second;
        }
    }
    return families.rbegin()->second.second;
}

} // namespace

QString coordinateText(double value)
{
    QString text = QString::number(std::round(value * 10000.0) / 10000.0, 'f', 4);
    while (text.endsWith(u'0')) {
        text.chop(1);
    }
    if (text.endsWith(u'.')) {
        text.chop(1);
    }
    return text == u"-0" ? QStringLiteral("0") : text;
}

QUrl requestUrl(const QString &base, double lat, double lon)
{
    QUrl url(base + QString::fromLatin1(path), QUrl::StrictMode);
    QUrlQuery query;
    query.addQueryItem(QStringLiteral("lat"), coordinateText(lat));
    query.addQueryItem(QStringLiteral("lon"), coordinateText(lon));
    url.setQuery(query);
    return url;
}

double apparentTemperature(double celsius, double humidity, double windSpeed)
{
    const double vapourPressure = humidity / 100.0 * 6.105 * std::exp(17.27 * celsius / (237.7 + celsius));
    return celsius + 0.33 * vapourPressure - 0.70 * windSpeed - 4.00;
}

std::optional<WeatherInfo> convert(const QByteArray &body, const QDateTime &now, const QTimeZone &zone)
{
    const QJsonObject root = QJsonDocument::fromJson(body).object();
    const QJsonArray position = root.value(u"geometry").toObject().value(u"coordinates").toArray();
    const QJsonArray series = root.value(u"properties").toObject().value(u"timeseries").toArray();
    if (position.size() < 2 || !position.at(0).isDouble() || !position.at(1).isDouble()) {
        return std::nullopt;
    }
    WeatherInfo info;
    info.provider = WeatherProvider::metNorway;
    info.lon = position.at(0).toDouble();
    info.lat = position.at(1).toDouble();
    if (!(std::abs(info.lat) <= 90.0) || !(std::abs(info.lon) <= 180.0)) {
        return std::nullopt;
    }
    QList<Step> steps;
    for (const QJsonValue &value : series) {
        if (std::optional<Step> step = readStep(value)) {
            steps.append(std::move(*step));
        }
    }
    std::stable_sort(steps.begin(), steps.end(), [](const Step &a, const Step &b) { return a.time < b.time; });

    // The current block: the step that holds now (the first one when now comes before the series).
    const qint64 nowSeconds = now.toSecsSinceEpoch();
    auto current = std::find_if(steps.rbegin(), steps.rend(),
                                [nowSeconds](const Step &step) { return step.time <= nowSeconds && step.symbol; });
    const Step *currentStep = current != steps.rend() ? &*current : nullptr;
    if (!currentStep) {
        auto first = std::find_if(steps.begin(), steps.end(), [](const Step &step) { return bool(step.symbol); });
        currentStep = first != steps.end() ? &*first : nullptr;
    }
    if (!currentStep || currentStep->time + qint64(currentStep->hours) * 3600 <= nowSeconds) {
        return std::nullopt; // nothing left of the forecast that says what it is like now
    }
    info.timezone = QString::fromUtf8(zone.id());
    info.timezoneOffset = zone.offsetFromUtc(now);

    Current &block = info.current;
    auto given = [&info](const std::optional<double> &value, const QString &field) {
        if (!value) {
            info.absent.append(field);
        }
        return value.value_or(0);
    };
    block.dt = currentStep->time;
    block.temp = currentStep->temperature;
    block.humidity = rounded(given(currentStep->humidity, QStringLiteral("current.humidity")));
    block.pressure = rounded(given(currentStep->pressure, QStringLiteral("current.pressure")));
    block.clouds = rounded(given(currentStep->clouds, QStringLiteral("current.clouds")));
    block.windSpeed = given(currentStep->windSpeed, QStringLiteral("current.wind_speed"));
    block.dewPoint = given(currentStep->dewPoint, QStringLiteral("current.dew_point"));
    block.uvi = given(currentStep->uv, QStringLiteral("current.uvi"));
    if (currentStep->humidity && currentStep->windSpeed) {
        block.feelsLike = apparentTemperature(block.temp, *currentStep->humidity, *currentStep->windSpeed);
    } else {
        info.absent.append(QStringLiteral("current.feels_like"));
    }
    info.absent.append(QStringLiteral("current.visibility"));
    block.weather = {currentStep->symbol->weather};
    if (currentStep->hours == 1 && currentStep->precipitation.value_or(0) > 0) {
        block.rain = Rain{*currentStep->precipitation};
    }
    const QDate today = now.toTimeZone(zone).date();
    const SunTimes::Day sunToday = SunTimes::on(today, info.lat, info.lon);
    block.sunrise = sunToday.sunrise;
    block.sunset = sunToday.sunset;

    // One day per calendar day of the zone, from the current step on.
    std::map<QDate, QList<const Step *>> days;
    for (const Step &step : steps) {
        if (step.time >= currentStep->time) {
            days[QDateTime::fromSecsSinceEpoch(step.time, zone).date()].append(&step);
        }
    }
    info.absent.append(
        {QStringLiteral("daily.moonrise"), QStringLiteral("daily.moonset"), QStringLiteral("daily.moon_phase")});
    for (const auto &[date, daySteps] : days) {
        const std::optional<Weather> symbol = daySymbol(daySteps);
        if (!symbol || info.daily.size() == 8) {
            continue;
        }
        const QString prefix = u"daily." + QString::number(info.daily.size()) + u'.';
        auto dayGiven = [&info, &prefix](const std::optional<double> &value, const char *field) {
            if (!value) {
                info.absent.append(prefix + QLatin1StringView(field));
            }
            return value.value_or(0);
        };
        Daily day;
        day.dt = QDateTime(date, QTime(12, 0), zone).toSecsSinceEpoch();
        const SunTimes::Day sun = SunTimes::on(date, info.lat, info.lon);
        day.sunrise = rounded(dayGiven(sun.sunrise ? std::optional<double>(*sun.sunrise) : std::nullopt, "sunrise"));
        day.sunset = rounded(dayGiven(sun.sunset ? std::optional<double>(*sun.sunset) : std::nullopt, "sunset"));
        double low = daySteps.first()->temperature;
        double high = low;
        for (const Step *step : daySteps) {
            // Where the series is six-hourly, the extremes between two steps are in the step's period.
            const bool sixHourly = step->hours == 6;
            low = std::min({low, step->temperature, sixHourly ? step->periodMin.value_or(low) : low});
            high = std::max({high, step->temperature, sixHourly ? step->periodMax.value_or(high) : high});
        }
        auto feels = [](const Step &step) {
            return apparentTemperature(step.temperature, step.humidity.value_or(0), step.windSpeed.value_or(0));
        };
        const Step &noon = nearest(daySteps, date, 12, zone);
        const Step &morning = nearest(daySteps, date, 6, zone);
        const Step &evening = nearest(daySteps, date, 18, zone);
        const Step &night = nearest(daySteps, date, 0, zone);
        day.temp = {noon.temperature, low, high, night.temperature, evening.temperature, morning.temperature};
        day.feelsLike = {feels(noon), feels(night), feels(evening), feels(morning)};
        if (!noon.humidity || !noon.windSpeed) {
            info.absent.append(prefix + u"feels_like");
        }
        day.pressure = rounded(dayGiven(noon.pressure, "pressure"));
        day.humidity = rounded(dayGiven(noon.humidity, "humidity"));
        day.dewPoint = dayGiven(noon.dewPoint, "dew_point");
        day.windSpeed = dayGiven(noon.windSpeed, "wind_speed");
        day.windDeg = rounded(dayGiven(noon.windDirection, "wind_deg"));
        day.windGust = dayGiven(noon.gust, "wind_gust");
        day.clouds = rounded(dayGiven(noon.clouds, "clouds"));
        day.weather = {*symbol};
        day.pop = dayGiven(maximum(daySteps, [](const Step &step) { return step.chanceOfRain; }), "pop") / 100.0;
        day.uvi = dayGiven(maximum(daySteps, [](const Step &step) { return step.uv; }), "uvi");
        double precipitation = 0;
        for (const Step *step : daySteps) {
            precipitation += step->precipitation.value_or(0);
        }
        if (precipitation > 0) {
            day.rain = precipitation;
        }
        info.daily.append(day);
    }
    return info;
}

} // namespace MetNorwayForecast
