// The weather card's texts and symbols, computed for chosen moments.
#include "weather/WeatherPresentation.h"

#include <QTest>

using namespace WeatherPresentation;

namespace {

// Sunday 22 November 2026, 10:30.
const QDateTime now(QDate(2026, 11, 22), QTime(10, 30));

Weather condition(const QString &main, const QString &description)
{
    return {800, main, description, u"01d"_qs};
}

QDateTime on(int day, int hour, int minute = 0)
{
    return QDateTime(QDate(2026, 11, day), QTime(hour, minute));
}

} // namespace

class tst_WeatherPresentation : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void icons_data();
    void icons();
    void texts_data();
    void texts();
    void popover_data();
    void popover();
};

void tst_WeatherPresentation::icons_data()
{
    QTest::addColumn<bool>("daily"); // else the current conditions, named by their description
    QTest::addColumn<QString>("condition");
    QTest::addColumn<int>("hour");
    QTest::addColumn<QString>("icon");
    QTest::newRow("clear sky 20:59") << false << u"clear sky"_qs << 20 << u"sun.max.fill"_qs;
    QTest::newRow("clear sky 21:00") << false << u"clear sky"_qs << 21 << u"moon.fill"_qs;
    QTest::newRow("clear sky 04:59") << false << u"clear sky"_qs << 4 << u"moon.fill"_qs;
    QTest::newRow("clear sky 05:00") << false << u"clear sky"_qs << 5 << u"sun.max.fill"_qs;
    QTest::newRow("few clouds night") << false << u"few clouds"_qs << 23 << u"cloud.moon.fill"_qs;
    QTest::newRow("shower rain day") << false << u"shower rain"_qs << 12 << u"cloud.heavyrain.fill"_qs;
    QTest::newRow("shower rain night") << false << u"shower rain"_qs << 2 << u"cloud.moon.rain.fill"_qs;
    QTest::newRow("rain night has no moon") << false << u"rain"_qs << 2 << u"cloud.rain.fill"_qs;
    QTest::newRow("thunderstorm night") << false << u"thunderstorm"_qs << 22 << u"cloud.moon.bolt.fill"_qs;
    QTest::newRow("mist") << false << u"mist"_qs << 8 << u"cloud.fog.fill"_qs;
    QTest::newRow("Spanish clear sky") << false << u"cielo claro"_qs << 22 << u"sun.max.fill"_qs;
    QTest::newRow("case matters") << false << u"Clear sky"_qs << 22 << u"sun.max.fill"_qs;
    QTest::newRow("daily Clear night") << true << u"Clear"_qs << 21 << u"moon.fill"_qs;
    QTest::newRow("daily Clouds day") << true << u"Clouds"_qs << 5 << u"cloud.sun.fill"_qs;
    QTest::newRow("daily Rain night has a moon") << true << u"Rain"_qs << 3 << u"cloud.moon.rain.fill"_qs;
    QTest::newRow("daily Rain day") << true << u"Rain"_qs << 15 << u"cloud.rain.fill"_qs;
    QTest::newRow("daily Snow night") << true << u"Snow"_qs << 0 << u"cloud.snow.fill"_qs;
    QTest::newRow("daily Drizzle falls back") << true << u"Drizzle"_qs << 0 << u"sun.max.fill"_qs;
}

void tst_WeatherPresentation::icons()
{
    QFETCH(bool, daily);
    QFETCH(QString, condition);
    QFETCH(int, hour);
    QFETCH(QString, icon);
    QCOMPARE(daily ? dailyWeatherIcon(condition, hour) : currentConditionsIcon(condition, hour), icon);
}

void tst_WeatherPresentation::texts_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");
    const QLocale c = QLocale::c();
    QTest::newRow("21.04") << temperatureText(21.04) << u"21.0"_qs;
    QTest::newRow("-0.06") << temperatureText(-0.06) << u"-0.1"_qs;
    QTest::newRow("-0.5") << temperatureText(-0.5) << u"-0.5"_qs;
    QTest::newRow("9.96") << temperatureText(9.96) << u"10.0"_qs;
    QTest::newRow("today") << relativeTimeText(on(22, 7, 5), now, c) << u"07:05"_qs;
    QTest::newRow("later today") << relativeTimeText(on(22, 23, 59), now, c) << u"23:59"_qs;
    QTest::newRow("yesterday") << relativeTimeText(on(21, 23, 59), now, c) << u"yesterday"_qs;
    QTest::newRow("this week") << relativeTimeText(on(18, 12), now, c) << u"Wednesday"_qs;
    QTest::newRow("seven days ago, midnight") << relativeTimeText(on(15, 0), now, c) << u"Sunday"_qs;
    QTest::newRow("eight days ago") << relativeTimeText(on(14, 23, 59), now, c) << u"Sat, 14/11/2026"_qs;
    QTest::newRow("tomorrow") << relativeTimeText(on(23, 9), now, c) << u"Mon, 23/11/2026"_qs;
    QTest::newRow("day today") << dayLabel(on(22, 0).toSecsSinceEpoch(), now, c) << u"Today"_qs;
    QTest::newRow("day tomorrow") << dayLabel(on(23, 12).toSecsSinceEpoch(), now, c) << u"Mon"_qs;
    QTest::newRow("day in Spanish") << dayLabel(on(23, 12).toSecsSinceEpoch(), now, QLocale(u"es_ES"_qs)) << u"Lun"_qs;
    QTest::newRow("title") << placeTitle(u"Santa Cruz"_qs, u"Spain"_qs) << u"Santa Cruz, Spain"_qs;
    QTest::newRow("title without city") << placeTitle(QString(), u"Spain"_qs) << u"Spain"_qs;
}

void tst_WeatherPresentation::texts()
{
    QFETCH(QString, text);
    QFETCH(QString, expected);
    QCOMPARE(text, expected);
}

void tst_WeatherPresentation::popover_data()
{
    QTest::addColumn<WeatherProvider>("provider");
    QTest::addColumn<QStringList>("absent");
    QTest::addColumn<QString>("attribution");
    QTest::addColumn<QStringList>("labels");
    QTest::newRow("One Call") << WeatherProvider::oneCall << QStringList()
                              << u"free weather data provided by [Open Weather Map](https://openweathermap.org)"_qs
                              << QStringList{u"Feels like"_qs, u"Humidity"_qs, u"Wind"_qs,
                                             u"Pressure"_qs,   u"UV index"_qs, u"Dew point"_qs,
                                             u"Visibility"_qs, u"Sunrise"_qs,  u"Sunset"_qs};
    // What MET Norway's compact document does not give is left out, never shown as 0.
    QTest::newRow("MET Norway") << WeatherProvider::metNorway
                                << QStringList{u"current.uvi"_qs, u"current.dew_point"_qs, u"current.visibility"_qs}
                                << u"Data from [MET Norway](https://www.met.no/en)"_qs
                                << QStringList{u"Feels like"_qs, u"Humidity"_qs, u"Wind"_qs,
                                               u"Pressure"_qs,   u"Sunrise"_qs,  u"Sunset"_qs};
}

void tst_WeatherPresentation::popover()
{
    QFETCH(WeatherProvider, provider);
    QFETCH(QStringList, absent);
    QFETCH(QString, attribution);
    QFETCH(QStringList, labels);
    WeatherInfo info;
    info.provider = provider;
    info.absent = absent;
    info.current.dt = on(21, 18).toSecsSinceEpoch();
    info.current.temp = -0.06;
    info.current.humidity = 60;
    info.current.sunrise = on(22, 7, 34).toSecsSinceEpoch();
    info.current.sunset = on(22, 18, 10).toSecsSinceEpoch();
    info.current.weather = {condition(u"Clear"_qs, u"clear sky"_qs), condition(u"Mist"_qs, u"mist"_qs)};
    const QStringList mains{u"Clouds"_qs, u"Rain"_qs, u"Tornado"_qs};
    for (qsizetype i = 0; i < mains.size(); ++i) {
        Daily day;
        day.dt = (i == 0 ? now.addSecs(-3600) : now.addDays(i)).toSecsSinceEpoch();
        day.temp.min = 9.04;
        day.temp.max = 22.75 + static_cast<double>(i);
        day.weather = {condition(mains.at(i), QString())};
        info.daily.append(day);
    }
    const WeatherInfoViewModel card = WeatherInfoViewModel::from(info, now);
    QCOMPARE(QStringList({card.openweather_id, card.temp, card.icon, card.main, card.description}),
             QStringList({u"800"_qs, u"-0.1"_qs, u"sun.max.fill"_qs, u"Clear"_qs, u"clear sky"_qs}));
    QCOMPARE(card.date, on(21, 18));
    QCOMPARE(WeatherInfoViewModel::from(info, on(22, 21)).icon,
             u"moon.fill"_qs); // the hour of looking, not of updating

    const DailyWeatherViewModel model = DailyWeatherViewModel::make(card, u"La Laguna"_qs, u"Spain"_qs, now);
    QCOMPARE(model.title, u"La Laguna, Spain"_qs);
    QCOMPARE(model.attribution, QString(attribution + u". Last updated on Sat at yesterday"));
    QStringList rows;
    for (const QVariant &row : model.rows) {
        const QVariantMap day = row.toMap();
        rows.append(QStringList{day.value(u"dayLabel"_qs).toString(), day.value(u"isToday"_qs).toString(),
                                day.value(u"max"_qs).toString(), day.value(u"min"_qs).toString(),
                                day.value(u"icon"_qs).toString()}
                        .join(u' '));
    }
    QCOMPARE(rows, QStringList({u"Today true 22.8 9.0 cloud.sun.fill"_qs, u"Mon false 23.8 9.0 cloud.rain.fill"_qs,
                                u"Tue false 24.8 9.0 sun.max.fill"_qs}));
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
