#include "WeatherPresentation.h"

#include "common/FatalError.h"
#include "weather/MetNorwayForecast.h"

#include <QCoreApplication>

#include <QCoreApplication>

namespace WeatherPresentation {

namespace {

struct SymbolRow
{
    const char16_t *condition;
    const char *day;
    const char *night;
};

constexpr SymbolRow currentConditionsTable[] = {
    {u"clear sky", "sun.max.fill", "moon.fill"},
    {u"few clouds", "cloud.sun.fill", "cloud.moon.fill"},
    {u"scattered clouds", "cloud.fill", "cloud.fill"},
    {u"broken clouds", "cloud.fill", "cloud.fill"},
    {u"shower rain", "cloud.heavyrain.fill", "cloud.moon.rain.fill"},
    {u"rain", "cloud.rain.fill", "cloud.rain.fill"},
    {u"thunderstorm", "cloud.bolt.fill", "cloud.moon.bolt.fill"},
    {u"snow", "cloud.snow.fill", "cloud.snow.fill"},
    {u"mist", "cloud.fog.fill", "cloud.fog.fill"},
};

constexpr SymbolRow dailyTable[] = {
    {u"Clear", "sun.max.fill", "moon.fill"},
    {u"Clouds", "cloud.sun.fill", "cloud.moon.fill"},
    {u"Thunderstorm", "cloud.bolt.fill", "cloud.moon.bolt.fill"},
    {u"Rain", "cloud.rain.fill", "cloud.moon.rain.fill"},
    {u"Snow", "cloud.snow.fill", "cloud.snow.fill"},
    {u"Mist", "cloud.fog.fill", "cloud.fog.fill"},
};

template<std::size_t N>
QString symbol(const SymbolRow (&table)[N], const QString &condition, int hour)
{
    for (const SymbolRow &row : table) {
        if (condition == QStringView(row.condition)) {
            return QString::fromLatin1(isDaytime(hour) ? row.day : row.night);
        }
    }
    return QStringLiteral("sun.max.fill");
}

QString capitalizedFirstLetter(QString text)
{
    if (!text.isEmpty()) {
        text.replace(0, 1, text.left(1).toUpper());
    }
    return text;
}

} // namespace

bool isDaytime(int hour)
{
    return static_cast<unsigned>(hour - 5) < 16U;
}

QString currentConditionsIcon(const QString &description, int hour)
{
    return symbol(currentConditionsTable, description, hour);
}

QString dailyWeatherIcon(const QString &mainCondition, int hour)
{
    return symbol(dailyTable, mainCondition, hour);
}

QString temperatureText(double celsius)
{
    return QString::asprintf("%.1f", celsius);
}

QString relativeTimeText(const QDateTime &date, const QDateTime &now, const QLocale &locale)
{
    const QDate today = now.date();
    const QDate day = date.date();
    if (day == today) {
        return locale.toString(date.time(), QStringLiteral("HH:mm"));
    }
    if (day == today.addDays(-1)) {
        return QCoreApplication::translate("WeatherPresentation", "yesterday");
    }
    if (date < now && date >= today.addDays(-7).startOfDay()) {
        return locale.standaloneDayName(day.dayOfWeek(), QLocale::LongFormat);
    }
    return locale.standaloneDayName(day.dayOfWeek(), QLocale::ShortFormat) + u", " +
           locale.toString(day, QStringLiteral("dd/MM/yyyy"));
}

QString abbreviatedWeekday(const QDateTime &date, const QLocale &locale)
{
    return capitalizedFirstLetter(locale.dayName(date.date().dayOfWeek(), QLocale::ShortFormat));
}

QString dayLabel(qint64 secondsSince1970, const QDateTime &now, const QLocale &locale)
{
    const QDateTime date = QDateTime::fromSecsSinceEpoch(secondsSince1970, now.timeSpec());
    if (date.date() == now.date()) {
        return QCoreApplication::translate("WeatherPresentation", "Today");
    }
    return abbreviatedWeekday(date, locale);
}

QString attributionText(const QDateTime &updated, const QDateTime &now, const QLocale &locale, WeatherProvider provider)
{
    if (provider == WeatherProvider::metNorway) {
        return QCoreApplication::translate("WeatherPresentation",
                                           "Data from [MET Norway](%1). Last updated on %2 at %3")
            .arg(QString::fromLatin1(MetNorwayForecast::providerAddress), abbreviatedWeekday(updated, locale),
                 relativeTimeText(updated, now, locale));
    }
    return QCoreApplication::translate("WeatherPresentation",
                                       "free weather data provided by [Open Weather Map](%1). Last updated on %2 at %3")
        .arg(QString::fromLatin1(providerAddress), abbreviatedWeekday(updated, locale),
             relativeTimeText(updated, now, locale));
}

QVariantList currentDetails(const WeatherInfo &info, const QLocale &locale)
{
    const Current &now = info.current;
    QVariantList details;
    auto add = [&details, &info](const char *field, const char *label, const QString &value) {
        if (info.has(QLatin1StringView(field))) {
            details.append(
                QVariantMap{{QStringLiteral("label"), QCoreApplication::translate("WeatherPresentation", label)},
                            {QStringLiteral("value"), value}});
        }
    };
    auto hourText = [&locale](const std::optional<qint64> &seconds) {
        return locale.toString(QDateTime::fromSecsSinceEpoch(*seconds).time(), QStringLiteral("HH:mm"));
    };
    add("current.feels_like", QT_TRANSLATE_NOOP("WeatherPresentation", "Feels like"),
        temperatureText(now.feelsLike) + u"º");
    add("current.humidity", QT_TRANSLATE_NOOP("WeatherPresentation", "Humidity"),
        locale.toString(now.humidity) + u" %");
    add("current.wind_speed", QT_TRANSLATE_NOOP("WeatherPresentation", "Wind"),
        locale.toString(now.windSpeed, 'f', 1) + u" m/s");
    add("current.pressure", QT_TRANSLATE_NOOP("WeatherPresentation", "Pressure"),
        QCoreApplication::translate("WeatherPresentation", "%1 hPa").arg(locale.toString(now.pressure)));
    add("current.uvi", QT_TRANSLATE_NOOP("WeatherPresentation", "UV index"), locale.toString(now.uvi, 'f', 1));
    add("current.dew_point", QT_TRANSLATE_NOOP("WeatherPresentation", "Dew point"),
        temperatureText(now.dewPoint) + u"º");
    add("current.visibility", QT_TRANSLATE_NOOP("WeatherPresentation", "Visibility"),
        QCoreApplication::translate("WeatherPresentation", "%1 km")
            .arg(locale.toString(double(now.visibility) / 1000.0, 'f', 1)));
    if (now.sunrise) {
        add("current.sunrise", QT_TRANSLATE_NOOP("WeatherPresentation", "Sunrise"), hourText(now.sunrise));
    }
    if (now.sunset) {
        add("current.sunset", QT_TRANSLATE_NOOP("WeatherPresentation", "Sunset"), hourText(now.sunset));
    }
    return details;
}

QString placeTitle(const QString &cityName, const QString &countryName)
{
    if (cityName.isEmpty() || countryName.isEmpty()) {
        return cityName + countryName;
    }
    return cityName + u", " + countryName;
}

} // namespace WeatherPresentation

WeatherInfoViewModel WeatherInfoViewModel::from(const WeatherInfo &info, const QDateTime &now)
{
    if (info.current.weather.isEmpty()) {
        fatalError("Telverra/WeatherInfoViewModel", __LINE__,
                   QStringLiteral("the current conditions of a weather document hold no weather entry"));
    }
    const Weather &condition = info.current.weather.first();
    WeatherInfoViewModel model;
    model.openweather_id = QString::number(condition.id);
    model.temp = WeatherPresentation::temperatureText(info.current.temp);
    model.icon = WeatherPresentation::currentConditionsIcon(condition.weatherDescription, now.time().hour());
    model.main = condition.main;
    model.description = condition.weatherDescription;
    model.daily = info.daily;
    model.date = QDateTime::fromSecsSinceEpoch(info.current.dt, now.timeSpec());
    model.provider = info.provider;
    model.details = WeatherPresentation::currentDetails(info);
    return model;
}

DailyWeatherViewModel DailyWeatherViewModel::make(const WeatherInfoViewModel &weather, const QString &cityName,
                                                  const QString &countryName, const QDateTime &now)
{
    DailyWeatherViewModel model;
    model.date = weather.date;
    model.dailyInfo = weather.daily;
    model.cityName = cityName;
    model.countryName = countryName;
    model.title = WeatherPresentation::placeTitle(cityName, countryName);
    for (const Daily &day : weather.daily) {
        if (day.weather.isEmpty()) {
            fatalError("Telverra/DailyWeatherViewModel", __LINE__,
                       QStringLiteral("a forecast day of a weather document holds no weather entry"));
        }
        const QString label = WeatherPresentation::dayLabel(day.dt, now);
        model.rows.append(QVariantMap{
            {QStringLiteral("dayLabel"), label},
            {QStringLiteral("max"), WeatherPresentation::temperatureText(day.temp.max)},
            {QStringLiteral("min"), WeatherPresentation::temperatureText(day.temp.min)},
            {QStringLiteral("icon"),
             WeatherPresentation::dailyWeatherIcon(day.weather.first().main, now.time().hour())},
            {QStringLiteral("isToday"), QDateTime::fromSecsSinceEpoch(day.dt, now.timeSpec()).date() == now.date()}});
    }
    model.attribution = WeatherPresentation::attributionText(weather.date, now, QLocale::system(), weather.provider);
    model.details = weather.details;
    return model;
}
