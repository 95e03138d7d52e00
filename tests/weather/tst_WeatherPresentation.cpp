// The weather card's texts and symbols, computed for chosen moments.
#include "weather/WeatherPresentation.h"

#include <QTest>

using namespace WeatherPresentation;

namespace {

Weather condition(const QString &main, const QString &description)
{
    return {800, main, description, u"01d"_qs};
}

WeatherInfo documentAt(const QDateTime &updated, const QList<QDateTime> &days)
{
    WeatherInfo info;
    info.current.dt = updated.toSecsSinceEpoch();
    info.current.temp = -0.06;
    info.current.weather = {condition(u"Clear"_qs, u"clear sky"_qs), condition(u"Mist"_qs, u"mist"_qs)};
    const QStringList mains{u"Clouds"_qs, u"Rain"_qs, u"Tornado"_qs};
    for (qsizetype i = 0; i < days.size(); ++i) {
        Daily day;
        day.dt = days.at(i).toSecsSinceEpoch();
        day.temp.max = 22.75 + static_cast<double>(i);
        day.temp.min = 9.04;
        day.weather = {condition(mains.value(i), QString())};
        info.daily.append(day);
    }
    return info;
}

} // namespace

class tst_WeatherPresentation : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void currentConditionsIcon_data();
    void currentConditionsIcon();
    void dailyWeatherIcon_data();
    void dailyWeatherIcon();
    void temperatureText_data();
    void temperatureText();
    void relativeTimeText_data();
    void relativeTimeText();
    void dayLabels();
    void cardRecord();
    void popover();
    void sourceShownAsItIs_data();
    void sourceShownAsItIs();
};

void tst_WeatherPresentation::currentConditionsIcon_data()
{
    QTest::addColumn<QString>("description");
    QTest::addColumn<int>("hour");
    QTest::addColumn<QString>("icon");
    QTest::newRow("clear sky 20:59") << u"clear sky"_qs << 20 << u"sun.max.fill"_qs;
    QTest::newRow("clear sky 21:00") << u"clear sky"_qs << 21 << u"moon.fill"_qs;
    QTest::newRow("clear sky 04:59") << u"clear sky"_qs << 4 << u"moon.fill"_qs;
    QTest::newRow("clear sky 05:00") << u"clear sky"_qs << 5 << u"sun.max.fill"_qs;
    QTest::newRow("clear sky midnight") << u"clear sky"_qs << 0 << u"moon.fill"_qs;
    QTest::newRow("few clouds night") << u"few clouds"_qs << 23 << u"cloud.moon.fill"_qs;
    QTest::newRow("shower rain day") << u"shower rain"_qs << 12 << u"cloud.heavyrain.fill"_qs;
    QTest::newRow("shower rain night") << u"shower rain"_qs << 2 << u"cloud.moon.rain.fill"_qs;
    QTest::newRow("rain night has no moon") << u"rain"_qs << 2 << u"cloud.rain.fill"_qs;
    QTest::newRow("thunderstorm night") << u"thunderstorm"_qs << 22 << u"cloud.moon.bolt.fill"_qs;
    QTest::newRow("mist") << u"mist"_qs << 8 << u"cloud.fog.fill"_qs;
    QTest::newRow("Spanish clear sky") << u"cielo claro"_qs << 22 << u"sun.max.fill"_qs;
    QTest::newRow("case matters") << u"Clear sky"_qs << 22 << u"sun.max.fill"_qs;
}

void tst_WeatherPresentation::currentConditionsIcon()
{
    QFETCH(QString, description);
    QFETCH(int, hour);
    QFETCH(QString, icon);
    QCOMPARE(WeatherPresentation::currentConditionsIcon(description, hour), icon);
}

void tst_WeatherPresentation::dailyWeatherIcon_data()
{
    QTest::addColumn<QString>("mainCondition");
    QTest::addColumn<int>("hour");
    QTest::addColumn<QString>("icon");
    QTest::newRow("Clear night") << u"Clear"_qs << 21 << u"moon.fill"_qs;
    QTest::newRow("Clouds day") << u"Clouds"_qs << 5 << u"cloud.sun.fill"_qs;
    QTest::newRow("Rain night has a moon") << u"Rain"_qs << 3 << u"cloud.moon.rain.fill"_qs;
    QTest::newRow("Rain day") << u"Rain"_qs << 15 << u"cloud.rain.fill"_qs;
    QTest::newRow("Snow night") << u"Snow"_qs << 0 << u"cloud.snow.fill"_qs;
    QTest::newRow("Drizzle falls back") << u"Drizzle"_qs << 0 << u"sun.max.fill"_qs;
}

void tst_WeatherPresentation::dailyWeatherIcon()
{
    QFETCH(QString, mainCondition);
    QFETCH(int, hour);
    QFETCH(QString, icon);
    QCOMPARE(WeatherPresentation::dailyWeatherIcon(mainCondition, hour), icon);
}

void tst_WeatherPresentation::temperatureText_data()
{
    QTest::addColumn<double>("celsius");
    QTest::addColumn<QString>("text");
    QTest::newRow("21.04") << 21.04 << u"21.0"_qs;
    QTest::newRow("-0.06") << -0.06 << u"-0.1"_qs;
    QTest::newRow("-0.5") << -0.5 << u"-0.5"_qs;
    QTest::newRow("21.0") << 21.0 << u"21.0"_qs;
    QTest::newRow("9.96") << 9.96 << u"10.0"_qs;
}

void tst_WeatherPresentation::temperatureText()
{
    QFETCH(double, celsius);
    QFETCH(QString, text);
    QCOMPARE(WeatherPresentation::temperatureText(celsius), text);
}

void tst_WeatherPresentation::relativeTimeText_data()
{
    // Sunday 22 November 2026, 10:30.
    const QDateTime now(QDate(2026, 11, 22), QTime(10, 30));
    QTest::addColumn<QDateTime>("date");
    QTest::addColumn<QDateTime>("now");
    QTest::addColumn<QString>("text");
    QTest::newRow("today") << QDateTime(QDate(2026, 11, 22), QTime(7, 5)) << now << u"07:05"_qs;
    QTest::newRow("later today") << QDateTime(QDate(2026, 11, 22), QTime(23, 59)) << now << u"23:59"_qs;
    QTest::newRow("yesterday") << QDateTime(QDate(2026, 11, 21), QTime(23, 59)) << now << u"yesterday"_qs;
    QTest::newRow("this week") << QDateTime(QDate(2026, 11, 18), QTime(12, 0)) << now << u"Wednesday"_qs;
    QTest::newRow("seven days ago, midnight") << QDateTime(QDate(2026, 11, 15), QTime(0, 0)) << now << u"Sunday"_qs;
    QTest::newRow("eight days ago") << QDateTime(QDate(2026, 11, 14), QTime(23, 59)) << now << u"Sat, 14/11/2026"_qs;
    QTest::newRow("tomorrow") << QDateTime(QDate(2026, 11, 23), QTime(9, 0)) << now << u"Mon, 23/11/2026"_qs;
}

void tst_WeatherPresentation::relativeTimeText()
{
    QFETCH(QDateTime, date);
    QFETCH(QDateTime, now);
    QFETCH(QString, text);
    QCOMPARE(WeatherPresentation::relativeTimeText(date, now, QLocale::c()), text);
}

void tst_WeatherPresentation::dayLabels()
{
    const QDateTime now(QDate(2026, 11, 22), QTime(10, 30));
    QCOMPARE(dayLabel(QDateTime(QDate(2026, 11, 22), QTime(0, 0)).toSecsSinceEpoch(), now, QLocale::c()), u"Today"_qs);
    QCOMPARE(dayLabel(QDateTime(QDate(2026, 11, 23), QTime(12, 0)).toSecsSinceEpoch(), now, QLocale::c()), u"Mon"_qs);
    QCOMPARE(dayLabel(QDateTime(QDate(2026, 11, 23), QTime(12, 0)).toSecsSinceEpoch(), now,
                      QLocale(QLocale::Spanish, QLocale::Spain)),
             u"Lun"_qs);
    QCOMPARE(placeTitle(u"Santa Cruz"_qs, u"Spain"_qs), u"Santa Cruz, Spain"_qs);
    QCOMPARE(placeTitle(QString(), u"Spain"_qs), u"Spain"_qs);
}

void tst_WeatherPresentation::cardRecord()
{
    const QDateTime now(QDate(2026, 11, 22), QTime(21, 0));
    const WeatherInfoViewModel card = WeatherInfoViewModel::from(documentAt(now, {}), now);
    QCOMPARE(card.openweather_id, u"800"_qs);
    QCOMPARE(card.temp, u"-0.1"_qs);
    QCOMPARE(card.icon, u"moon.fill"_qs);
    QCOMPARE(card.main, u"Clear"_qs);
    QCOMPARE(card.description, u"clear sky"_qs);
    QCOMPARE(card.date, now);
}

void tst_WeatherPresentation::popover()
{
    const QDateTime now(QDate(2026, 11, 22), QTime(10, 30));
    const QDateTime updated(QDate(2026, 11, 21), QTime(18, 0));
    const WeatherInfo info = documentAt(updated, {now.addSecs(-3600), now.addDays(1), now.addDays(2)});
    const DailyWeatherViewModel model =
        DailyWeatherViewModel::make(WeatherInfoViewModel::from(info, now), u"La Laguna"_qs, u"Spain"_qs, now);
    QCOMPARE(model.title, u"La Laguna, Spain"_qs);
    QCOMPARE(model.rows.size(), 3);
    const QVariantMap today = model.rows.at(0).toMap();
    QCOMPARE(today.value(u"dayLabel"_qs).toString(), u"Today"_qs);
    QCOMPARE(today.value(u"isToday"_qs).toBool(), true);
    QCOMPARE(today.value(u"max"_qs).toString(), u"22.8"_qs);
    QCOMPARE(today.value(u"min"_qs).toString(), u"9.0"_qs);
    QCOMPARE(today.value(u"icon"_qs).toString(), u"cloud.sun.fill"_qs);
    const QVariantMap tomorrow = model.rows.at(1).toMap();
    QCOMPARE(tomorrow.value(u"isToday"_qs).toBool(), false);
    QCOMPARE(tomorrow.value(u"icon"_qs).toString(), u"cloud.rain.fill"_qs);
    QCOMPARE(model.rows.at(2).toMap().value(u"icon"_qs).toString(), u"sun.max.fill"_qs);
    QCOMPARE(model.attribution, u"free weather data provided by [Open Weather Map](https://openweathermap.org). Last "
                                u"updated on Sat at yesterday"_qs);
}

void tst_WeatherPresentation::sourceShownAsItIs_data()
{
    QTest::addColumn<WeatherProvider>("provider");
    QTest::addColumn<QStringList>("absent");
    QTest::addColumn<QString>("attribution");
    QTest::addColumn<QStringList>("labels");
    const QStringList all{u"Feels like"_qs, u"Humidity"_qs,   u"Wind"_qs,    u"Pressure"_qs, u"UV index"_qs,
                          u"Dew point"_qs,  u"Visibility"_qs, u"Sunrise"_qs, u"Sunset"_qs};
    QTest::newRow("One Call") << WeatherProvider::oneCall << QStringList()
                              << u"free weather data provided by [Open Weather Map](https://openweathermap.org)"_qs
                              << all;
    // What MET Norway's compact document does not give is left out, never shown as 0.
    QTest::newRow("MET Norway") << WeatherProvider::metNorway
                                << QStringList{u"current.uvi"_qs, u"current.dew_point"_qs, u"current.visibility"_qs}
                                << u"Data from [MET Norway](https://www.met.no/en)"_qs
                                << QStringList{u"Feels like"_qs, u"Humidity"_qs, u"Wind"_qs,
                                               u"Pressure"_qs,   u"Sunrise"_qs,  u"Sunset"_qs};
}

void tst_WeatherPresentation::sourceShownAsItIs()
{
    QFETCH(WeatherProvider, provider);
    QFETCH(QStringList, absent);
    QFETCH(QString, attribution);
    QFETCH(QStringList, labels);
    const QDateTime now(QDate(2026, 11, 22), QTime(10, 30));
    WeatherInfo info = documentAt(now, {now});
    info.provider = provider;
    info.absent = absent;
    info.current.sunrise = QDateTime(QDate(2026, 11, 22), QTime(7, 34)).toSecsSinceEpoch();
    info.current.sunset = QDateTime(QDate(2026, 11, 22), QTime(18, 10)).toSecsSinceEpoch();
    info.current.humidity = 60;
    const DailyWeatherViewModel model =
        DailyWeatherViewModel::make(WeatherInfoViewModel::from(info, now), u"Madrid"_qs, u"Spain"_qs, now);
    QCOMPARE(model.attribution, QString(attribution + u". Last updated on Sun at 10:30"));
    QStringList shown;
    for (const QVariant &detail : model.details) {
        shown.append(detail.toMap().value(u"label"_qs).toString());
    }
    QCOMPARE(shown, labels);
    QCOMPARE(model.details.at(1).toMap().value(u"value"_qs).toString(), u"60 %"_qs);
    QCOMPARE(model.details.at(shown.indexOf(u"Sunrise"_qs)).toMap().value(u"value"_qs).toString(), u"07:34"_qs);
}

QTEST_GUILESS_MAIN(tst_WeatherPresentation)
#include "tst_WeatherPresentation.moc"
