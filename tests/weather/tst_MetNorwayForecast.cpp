// MET Norway's forecast turned into the card's document: a Locationforecast answer shaped like the real one (hourly
// steps, then six-hourly ones), read at a chosen moment; and the sunrise and sunset computed for it.
#include "weather/MetNorwayForecast.h"
#include "weather/SunTimes.h"

#include <QFile>
#include <QTest>

namespace {

// The fixture's first step is this hour.
const QDateTime fixtureNow(QDate(2026, 11, 22), QTime(10, 30), QTimeZone::utc());

QByteArray fixture()
{
    QFile file(QStringLiteral(TELVERRA_TEST_DATA "/locationforecast.json"));
    if (!file.open(QIODevice::ReadOnly)) {
        qFatal("cannot read the Locationforecast fixture");
    }
    return file.readAll();
}

// The fixture with the `complete` document's extra fields in its first step.
QByteArray completeFixture()
{
    return fixture().replace(R"("air_pressure_at_sea_level": 1016.3,)",
                             R"("air_pressure_at_sea_level": 1016.3, "ultraviolet_index_clear_sky": 3.4,)"
                             R"( "dew_point_temperature": 9.1,)");
}

QString hhmm(const std::optional<qint64> &seconds)
{
    return seconds ? QDateTime::fromSecsSinceEpoch(*seconds, QTimeZone::utc()).toString(u"HH:mm") : u"none"_qs;
}

} // namespace

class tst_MetNorwayForecast : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void currentConditions();
    void days_data();
    void days();
    void unusableBodies_data();
    void unusableBodies();
    void sunTimes_data();
    void sunTimes();
};

void tst_MetNorwayForecast::currentConditions()
{
    const std::optional<WeatherInfo> info = MetNorwayForecast::convert(fixture(), fixtureNow, QTimeZone::utc());
    QVERIFY(info);
    QCOMPARE(info->provider, WeatherProvider::metNorway);
    QCOMPARE(info->lat, 28.4682);
    QCOMPARE(info->lon, -16.2546);
    const Current &now = info->current;
    QCOMPARE(now.dt, QDateTime(QDate(2026, 11, 22), QTime(10, 0), QTimeZone::utc()).toSecsSinceEpoch());
    QCOMPARE(now.temp, 17.2);
    QCOMPARE(now.humidity, 60);
    QCOMPARE(now.pressure, 1016);
    QCOMPARE(now.clouds, 35);
    QCOMPARE(now.windSpeed, 4.0);
    // Steadman's apparent temperature of 17.2 °C, 60 % and 4 m/s.
    QVERIFY2(qAbs(now.feelsLike - 14.2766) < 0.001, qPrintable(QString::number(now.feelsLike)));
    QCOMPARE(now.weather.value(0).main, u"Clouds"_qs);
    QCOMPARE(now.weather.value(0).weatherDescription, u"scattered clouds"_qs);
    QCOMPARE(now.weather.value(0).icon, u"03d"_qs);
    QVERIFY(!now.rain);
    QCOMPARE(hhmm(now.sunrise), u"07:34"_qs);
    QCOMPARE(hhmm(now.sunset), u"18:10"_qs);
    // What the compact document does not give is never shown.
    for (const char *field :
         {"current.uvi", "current.dew_point", "current.visibility", "daily.pop", "daily.moon_phase"}) {
        QVERIFY2(!info->has(QLatin1StringView(field), 0), field);
    }
    QVERIFY(info->has(u"current.humidity"_qs));
    QVERIFY(info->has(u"daily.sunrise"_qs, 0));

    // The complete document's extra fields, where it has them: only the first step has a UV index.
    const std::optional<WeatherInfo> complete =
        MetNorwayForecast::convert(completeFixture(), fixtureNow, QTimeZone::utc());
    QVERIFY(complete);
    QCOMPARE(complete->current.uvi, 3.4);
    QCOMPARE(complete->current.dewPoint, 9.1);
    QCOMPARE(complete->daily.at(0).uvi, 3.4);
    QVERIFY(complete->has(u"current.uvi"_qs) && complete->has(u"current.dew_point"_qs) &&
            complete->has(u"daily.uvi"_qs, 0) && !complete->has(u"daily.uvi"_qs, 1));
}

void tst_MetNorwayForecast::days_data()
{
    QTest::addColumn<QByteArray>("zone");
    QTest::addColumn<int>("day");
    QTest::addColumn<QDate>("date");
    QTest::addColumn<double>("min");
    QTest::addColumn<double>("max");
    QTest::addColumn<QString>("main");
    QTest::addColumn<double>("rain");
    // Today: partly cloudy for 7 hours, fair for 5, light rain for only 2 (too short to name the day).
    QTest::newRow("today, UTC") << QByteArray("UTC") << 0 << QDate(2026, 11, 22) << 13.8 << 20.5 << u"Clouds"_qs << 0.8;
    QTest::newRow("four hours of rain") << QByteArray("UTC") << 1 << QDate(2026, 11, 23) << 12.3 << 21.3 << u"Rain"_qs
                                        << 1.6;
    QTest::newRow("clear") << QByteArray("UTC") << 2 << QDate(2026, 11, 24) << 13.1 << 22.1 << u"Clear"_qs << 0.0;
    QTest::newRow("six-hourly, a storm") << QByteArray("UTC") << 3 << QDate(2026, 11, 25) << 15.2 << 21.6
                                         << u"Thunderstorm"_qs << 3.2;
    QTest::newRow("last day") << QByteArray("UTC") << 5 << QDate(2026, 11, 27) << 16.8 << 23.2 << u"Clouds"_qs << 0.0;
    // An hour east of UTC, today starts an hour later and 23:00 UTC belongs to tomorrow.
    QTest::newRow("today, Madrid") << QByteArray("Europe/Madrid") << 0 << QDate(2026, 11, 22) << 14.8 << 20.5
                                   << u"Clouds"_qs << 0.8;
}

void tst_MetNorwayForecast::days()
{
    QFETCH(QByteArray, zone);
    QFETCH(int, day);
    QFETCH(QDate, date);
    QFETCH(double, min);
    QFETCH(double, max);
    QFETCH(QString, main);
    QFETCH(double, rain);
    const QTimeZone timeZone(zone);
    const std::optional<WeatherInfo> info = MetNorwayForecast::convert(fixture(), fixtureNow, timeZone);
    QVERIFY(info);
    QCOMPARE(info->daily.size(), 6);
    const Daily &daily = info->daily.at(day);
    QCOMPARE(QDateTime::fromSecsSinceEpoch(daily.dt, timeZone), QDateTime(date, QTime(12, 0), timeZone));
    QCOMPARE(daily.temp.min, min);
    QCOMPARE(daily.temp.max, max);
    QCOMPARE(daily.weather.value(0).main, main);
    QCOMPARE(daily.rain.value_or(0), rain);
    QCOMPARE(daily.rain.has_value(), rain > 0);
    const SunTimes::Day sun = SunTimes::on(date, info->lat, info->lon);
    QCOMPARE(daily.sunrise, *sun.sunrise);
}

void tst_MetNorwayForecast::unusableBodies_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QDateTime>("now");
    QTest::newRow("not JSON") << QByteArray("<html>busy</html>") << fixtureNow;
    QTest::newRow("no position") << QByteArray(R"({"properties":{"timeseries":[]}})") << fixtureNow;
    QTest::newRow("position off the globe") << QByteArray(fixture()).replace("28.4682", "128.4682") << fixtureNow;
    QTest::newRow("no steps") << QByteArray(R"({"geometry":{"coordinates":[-16.25,28.46]},"properties":{}})")
                              << fixtureNow;
    QTest::newRow("a temperature no weather has")
        << QByteArray(R"({"geometry":{"coordinates":[1,2]},"properties":{"timeseries":[{"time":"2026-11-22T10:00:00Z",)"
                      R"("data":{"instant":{"details":{"air_temperature":1e6}},)"
                      R"("next_1_hours":{"summary":{"symbol_code":"rain"}}}}]}})")
        << fixtureNow;
    QTest::newRow("the forecast has run out") << fixture() << fixtureNow.addDays(6);
}

void tst_MetNorwayForecast::unusableBodies()
{
    QFETCH(QByteArray, body);
    QFETCH(QDateTime, now);
    QVERIFY(!MetNorwayForecast::convert(body, now, QTimeZone::utc()));
}

void tst_MetNorwayForecast::sunTimes_data()
{
    QTest::addColumn<QDate>("date");
    QTest::addColumn<double>("latitude");
    QTest::addColumn<double>("longitude");
    QTest::addColumn<QDateTime>("sunrise"); // almanac times; none for a day the sun does not rise or set
    QTest::addColumn<QDateTime>("sunset");
    const auto utc = [](int month, int day, int hour, int minute) {
        return QDateTime(QDate(2026, month, day), QTime(hour, minute), QTimeZone::utc());
    };
    // Madrid at the solstice: 06:44 and 21:48, summer time.
    QTest::newRow("Madrid, solstice") << QDate(2026, 6, 21) << 40.4168 << -3.7038 << utc(6, 21, 4, 44)
                                      << utc(6, 21, 19, 48);
    QTest::newRow("Tromsø, polar night") << QDate(2026, 12, 21) << 69.6492 << 18.9553 << QDateTime() << QDateTime();
    QTest::newRow("Tromsø, midnight sun") << QDate(2026, 6, 21) << 69.6492 << 18.9553 << QDateTime() << QDateTime();
    // Fiji's 22 November begins on the 21st in UTC: sunrise 05:20, sunset 18:18, local time (UTC+12).
    QTest::newRow("Labasa, by the date line")
        << QDate(2026, 11, 22) << -16.4332 << 179.3645 << utc(11, 21, 17, 20) << utc(11, 22, 6, 18);
}

void tst_MetNorwayForecast::sunTimes()
{
    QFETCH(QDate, date);
    QFETCH(double, latitude);
    QFETCH(double, longitude);
    QFETCH(QDateTime, sunrise);
    QFETCH(QDateTime, sunset);
    const SunTimes::Day day = SunTimes::on(date, latitude, longitude);
    QCOMPARE(day.sunrise.has_value(), sunrise.isValid());
    QCOMPARE(day.sunset.has_value(), sunset.isValid());
    if (day.sunrise) {
        QVERIFY2(qAbs(*day.sunrise - sunrise.toSecsSinceEpoch()) <= 150, qPrintable(hhmm(day.sunrise)));
        QVERIFY2(qAbs(*day.sunset - sunset.toSecsSinceEpoch()) <= 150, qPrintable(hhmm(day.sunset)));
    }
}

QTEST_GUILESS_MAIN(tst_MetNorwayForecast)
#include "tst_MetNorwayForecast.moc"
