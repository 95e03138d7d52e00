#pragma once

#include "weather/WeatherInfo.h"

#include <QDateTime>
#include <QLocale>
#include <QObject>
#include <QVariantList>

// How the forecast document is shown: the display records, the two condition-to-symbol tables, the temperature
// text and the date texts. Everything takes the moment "now" so that it can be computed for any time.

namespace WeatherPresentation {

/// The provider's site, linked from the attribution.
inline constexpr const char *providerAddress = "https://openweathermap.org";

/// Day is 05:00 to 20:59 by the wall clock; any other hour is night.
bool isDaytime(int hour);
/// The current-conditions symbol, chosen by the exact description (English phrases; anything else is sunny).
QString currentConditionsIcon(const QString &description, int hour);
/// A forecast day's symbol, chosen by its main condition.
QString dailyWeatherIcon(const QString &mainCondition, int hour);
/// "%.1f": one decimal, rounded.
QString temperatureText(double celsius);
/// "HH:mm" today, "yesterday", the weekday within the last week, else "ccc, dd/MM/yyyy".
QString relativeTimeText(const QDateTime &date, const QDateTime &now, const QLocale &locale = QLocale::system());
/// "Today", else the abbreviated weekday with its first letter capitalized.
QString dayLabel(qint64 secondsSince1970, const QDateTime &now, const QLocale &locale = QLocale::system());
/// The abbreviated weekday of the date, first letter capitalized.
QString abbreviatedWeekday(const QDateTime &date, const QLocale &locale = QLocale::system());
/// The attribution line of the document's source, with the provider's name as a Markdown link.
QString attributionText(const QDateTime &updated, const QDateTime &now, const QLocale &locale = QLocale::system(),
                        WeatherProvider provider = WeatherProvider::oneCall);
/// The current conditions beyond the temperature, each a map of "label" and "value", in the order the pop-over shows
/// them; what the document's source does not give is left out.
QVariantList currentDetails(const WeatherInfo &info, const QLocale &locale = QLocale::system());
/// The popover's title: city and country joined by ", ", leaving out the empty ones.
QString placeTitle(const QString &cityName, const QString &countryName);

} // namespace WeatherPresentation

/// The weather card's record, built from one document.
class WeatherInfoViewModel
{
    Q_GADGET
    Q_PROPERTY(QString openweather_id MEMBER openweather_id)
    Q_PROPERTY(QString temp MEMBER temp)
    Q_PROPERTY(QString icon MEMBER icon)
    Q_PROPERTY(QString main MEMBER main)
    Q_PROPERTY(QString description MEMBER description)
    Q_PROPERTY(QDateTime date MEMBER date)
    Q_PROPERTY(QVariantList details MEMBER details)
public:
    QString openweather_id;
    QString temp;
    QString icon;
    QString main;
    QString description;
    QList<Daily> daily;
    QDateTime date;
    WeatherProvider provider = WeatherProvider::oneCall;
    /// WeatherPresentation::currentDetails() of the document.
    QVariantList details;

    /// The record of a document; the current block must hold at least one condition (stops the program otherwise).
    static WeatherInfoViewModel from(const WeatherInfo &info, const QDateTime &now);
    bool operator==(const WeatherInfoViewModel &) const = default;
};

/// What the daily forecast popover shows, built when it opens.
class DailyWeatherViewModel
{
    Q_GADGET
    Q_PROPERTY(QDateTime date MEMBER date)
    Q_PROPERTY(QString cityName MEMBER cityName)
    Q_PROPERTY(QString countryName MEMBER countryName)
    Q_PROPERTY(QString title MEMBER title)
    Q_PROPERTY(QVariantList rows MEMBER rows)
    Q_PROPERTY(QString attribution MEMBER attribution)
    Q_PROPERTY(QVariantList details MEMBER details)
public:
    QDateTime date;
    QList<Daily> dailyInfo;
    QString cityName;
    QString countryName;
    // Derived for the view at the moment the popover opens.
    QString title;
    /// One map per day: dayLabel, max, min, icon, isToday.
    QVariantList rows;
    QString attribution;
    QVariantList details;

    static DailyWeatherViewModel make(const WeatherInfoViewModel &weather, const QString &cityName,
                                      const QString &countryName, const QDateTime &now);
};
