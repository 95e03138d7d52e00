// The weather service against real HTTP servers on 127.0.0.1, a One Call stand-in and a MET Norway stand-in that
// refuses clients that do not say who they are: the requests it sends, what it keeps from each answer (on disk too),
// when it asks again, and the limits that protect it from a slow or endless server.
#include "common/Trace.h"
#include "settings/DeploymentSettings.h"
#include "support/LoopbackHttpServer.h"
#include "support/TestHome.h"
#include "weather/MetNorwayForecast.h"
#include "weather/WeatherInfoDataService.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QLocale>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSignalSpy>
#include <QTest>

namespace {

const QString onecallPath = QStringLiteral("/data/3.0/onecall");
const QString forecastPath = QStringLiteral("/weatherapi/locationforecast/2.0/complete");

QJsonObject fixture()
{
    QFile file(QStringLiteral(TELVERRA_TEST_DATA "/onecall.json"));
    if (!file.open(QIODevice::ReadOnly)) {
        qFatal("cannot read the One Call fixture");
    }
    return QJsonDocument::fromJson(file.readAll()).object();
}

// Applies an edit at a path like "current.rain" or "daily.1.wind_gust"; an invalid value removes the key.
QJsonValue edited(const QJsonValue &node, QStringList path, const QJsonValue &value)
{
    const QString head = path.takeFirst();
    if (node.isArray()) {
        QJsonArray array = node.toArray();
        const int index = head.toInt();
        array[index] = path.isEmpty() ? value : edited(array.at(index), path, value);
        return array;
    }
    QJsonObject object = node.toObject();
    if (path.isEmpty()) {
        if (value.isUndefined()) {
            object.remove(head);
        } else {
            object.insert(head, value);
        }
    } else {
        object.insert(head, edited(object.value(head), path, value));
    }
    return object;
}

QByteArray document(const QString &path = {}, const QJsonValue &value = QJsonValue::Undefined)
{
    const QJsonObject base = fixture();
    const QJsonObject result = path.isEmpty() ? base : edited(base, path.split(u'.'), value).toObject();
    return QJsonDocument(result).toJson(QJsonDocument::Compact);
}

// The Locationforecast fixture moved to the current hour, as the service reads it at the real time.
QByteArray currentForecast()
{
    QFile file(QStringLiteral(TELVERRA_TEST_DATA "/locationforecast.json"));
    if (!file.open(QIODevice::ReadOnly)) {
        qFatal("cannot read the Locationforecast fixture");
    }
    QJsonObject root = QJsonDocument::fromJson(file.readAll()).object();
    QJsonObject properties = root.value(u"properties").toObject();
    QJsonArray series = properties.value(u"timeseries").toArray();
    const QDateTime hour = QDateTime::currentDateTimeUtc().addSecs(-(QDateTime::currentSecsSinceEpoch() % 3600));
    const qint64 shift = QDateTime(QDate(2026, 11, 22), QTime(10, 0), QTimeZone::utc()).secsTo(hour);
    for (qsizetype i = 0; i < series.size(); ++i) {
        QJsonObject step = series.at(i).toObject();
        const QDateTime time = QDateTime::fromString(step.value(u"time").toString(), Qt::ISODate);
        step.insert(u"time"_qs, time.addSecs(shift).toString(Qt::ISODate));
        series[i] = step;
    }
    properties.insert(u"timeseries"_qs, series);
    root.insert(u"properties"_qs, properties);
    return QJsonDocument(root).toJson(QJsonDocument::Compact);
}

QByteArray httpDate(const QDateTime &date)
{
    return QLocale::c().toString(date.toUTC(), u"ddd, dd MMM yyyy HH:mm:ss 'GMT'").toLatin1();
}

} // namespace

class tst_WeatherInfoDataService : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init();
    void decoding_data();
    void decoding();
    void coordinateText_data();
    void coordinateText();
    void providers_data();
    void providers();
    void keylessAnswerKeptUntilItExpires();
    void failuresKeepThePreviousDocument_data();
    void failuresKeepThePreviousDocument();
    void slowServerCutAtTheDeadline();
    void endlessBodyCutAtTheCap_data();
    void endlessBodyCutAtTheCap();

private:
    std::unique_ptr<DeploymentSettings> settings(const QString &keyLine);
    // The MET Norway stand-in: 403 to a client that does not say it is Telverra, 304 to a question whether the
    // answer of `lastModified` changed, the forecast otherwise; every answer expires `expiresIn` seconds later.
    void serveForecast(const QByteArray &lastModified, int expiresIn);
    std::unique_ptr<TestHome> m_home;
    LoopbackHttpServer *m_server = nullptr;
    QNetworkAccessManager *m_network = nullptr;
};

void tst_WeatherInfoDataService::init()
{
    m_home.reset(); // first: it puts back the environment it found
    m_home = std::make_unique<TestHome>();
    delete m_server;
    m_server = new LoopbackHttpServer(this);
    QVERIFY(m_server->listen());
    delete m_network;
    m_network = new QNetworkAccessManager(this);
}

std::unique_ptr<DeploymentSettings> tst_WeatherInfoDataService::settings(const QString &keyLine)
{
    const QString file = m_home->writeFile(
        QStringLiteral("Info.ini"), (u"[General]\n" + keyLine + u"\nWEATHER_API_BASE_URL=" + m_server->baseUrl() +
                                     u"\nMET_NORWAY_BASE_URL=" + m_server->baseUrl() + u'\n')
                                        .toUtf8());
    return std::make_unique<DeploymentSettings>(file);
}

void tst_WeatherInfoDataService::serveForecast(const QByteArray &lastModified, int expiresIn)
{
    m_server->setHandler(forecastPath, [lastModified, expiresIn](const QHash<QByteArray, QByteArray> &request) {
        const LoopbackHttpServer::Headers headers{
            {"Expires", httpDate(QDateTime::currentDateTimeUtc().addSecs(expiresIn))}, {"Last-Modified", lastModified}};
        if (!request.value("user-agent").startsWith("Telverra/")) {
            return LoopbackHttpServer::Answer{403, "text/plain", "Identify yourself", {}};
        }
        if (request.value("if-modified-since") == lastModified) {
            return LoopbackHttpServer::Answer{304, "application/json", {}, headers};
        }
        return LoopbackHttpServer::Answer{200, "application/json", currentForecast(), headers};
    });
}

void tst_WeatherInfoDataService::decoding_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QJsonValue>("value");
    QTest::addColumn<bool>("decodes");

    QTest::newRow("the fixture") << QString() << QJsonValue() << true;
    QTest::newRow("current rain absent") << u"current.rain"_qs << QJsonValue(QJsonValue::Undefined) << true;
    QTest::newRow("current rain 1h") << u"current.rain"_qs << QJsonValue(QJsonObject{{u"1h"_qs, 0.25}}) << true;
    QTest::newRow("current rain without 1h") << u"current.rain"_qs << QJsonValue(QJsonObject{}) << false;
    QTest::newRow("current rain a number") << u"current.rain"_qs << QJsonValue(0.25) << false;
    QTest::newRow("daily rain a number") << u"daily.0.rain"_qs << QJsonValue(3.1) << true;
    QTest::newRow("daily rain an object") << u"daily.0.rain"_qs << QJsonValue(QJsonObject{{u"1h"_qs, 1}}) << false;
    QTest::newRow("daily rain null") << u"daily.1.rain"_qs << QJsonValue(QJsonValue::Null) << true;
    QTest::newRow("no current sunrise") << u"current.sunrise"_qs << QJsonValue(QJsonValue::Undefined) << true;
    QTest::newRow("no daily sunrise") << u"daily.2.sunrise"_qs << QJsonValue(QJsonValue::Undefined) << false;
    QTest::newRow("no daily wind_gust") << u"daily.1.wind_gust"_qs << QJsonValue(QJsonValue::Undefined) << false;
    QTest::newRow("fraction in pressure") << u"current.pressure"_qs << QJsonValue(1013.5) << false;
    QTest::newRow("integral double in pressure") << u"current.pressure"_qs << QJsonValue(1013.0) << true;
    QTest::newRow("integer in a double field") << u"current.temp"_qs << QJsonValue(21) << true;
    QTest::newRow("text in a number field") << u"current.temp"_qs << QJsonValue(u"21"_qs) << false;
    QTest::newRow("null required field") << u"timezone"_qs << QJsonValue(QJsonValue::Null) << false;
    QTest::newRow("daily not a list") << u"daily"_qs << QJsonValue(QJsonObject{}) << false;
    QTest::newRow("condition without icon")
        << u"current.weather.0.icon"_qs << QJsonValue(QJsonValue::Undefined) << false;
    QTest::newRow("unknown key") << u"current.snow"_qs << QJsonValue(QJsonObject{{u"1h"_qs, 2}}) << true;
    QTest::newRow("huge integer") << u"current.dt"_qs << QJsonValue(1e300) << false;
}

void tst_WeatherInfoDataService::decoding()
{
    QFETCH(QString, path);
    QFETCH(QJsonValue, value);
    QFETCH(bool, decodes);
    const std::optional<WeatherInfo> info = WeatherInfo::decode(document(path, value));
    QCOMPARE(info.has_value(), decodes);
    if (!info) {
        return;
    }
    QCOMPARE(WeatherInfo::decode(QJsonDocument(info->toJson()).toJson()), info); // what is kept reads back the same
    QCOMPARE(info->timezone, u"Atlantic/Canary"_qs);
    QCOMPARE(info->daily.size(), 4);
    QCOMPARE(info->current.weather.value(0).weatherDescription, u"algo de nubes"_qs);
    if (path == u"current.rain" && value.isObject()) {
        QCOMPARE(info->current.rain, std::optional<Rain>(Rain{0.25}));
    } else {
        QVERIFY(!info->current.rain);
    }
    QCOMPARE(info->daily.at(0).rain, path == u"daily.0.rain" ? std::optional<double>(3.1) : std::nullopt);
    QCOMPARE(info->daily.at(1).rain, path == u"daily.1.rain" ? std::nullopt : std::optional<double>(3.1));
    QCOMPARE(info->current.sunrise.has_value(), path != u"current.sunrise");
}

void tst_WeatherInfoDataService::coordinateText_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("text");    // One Call: the shortest text that reads back the same
    QTest::addColumn<QString>("keyless"); // MET Norway: four decimals at most
    QTest::newRow("integral") << 40.0 << u"40.0"_qs << u"40"_qs;
    QTest::newRow("half") << -3.5 << u"-3.5"_qs << u"-3.5"_qs;
    QTest::newRow("latitude") << 28.4636 << u"28.4636"_qs << u"28.4636"_qs;
    QTest::newRow("longitude") << -16.2518 << u"-16.2518"_qs << u"-16.2518"_qs;
    QTest::newRow("zero") << 0.0 << u"0.0"_qs << u"0"_qs;
    QTest::newRow("shortest of a sum") << 0.1 + 0.2 << u"0.30000000000000004"_qs << u"0.3"_qs;
    QTest::newRow("five decimals rounded") << 28.46824 << u"28.46824"_qs << u"28.4682"_qs;
    QTest::newRow("rounded up") << -16.25465 << u"-16.25465"_qs << u"-16.2547"_qs;
    QTest::newRow("rounded to nothing") << -0.00001 << u"-1e-05"_qs << u"0"_qs;
}

void tst_WeatherInfoDataService::coordinateText()
{
    QFETCH(double, value);
    QFETCH(QString, text);
    QFETCH(QString, keyless);
    QCOMPARE(WeatherInfoDataService::coordinateText(value), text);
    QCOMPARE(text.toDouble(), value);
    QCOMPARE(MetNorwayForecast::coordinateText(value), keyless);
}

void tst_WeatherInfoDataService::providers_data()
{
    QTest::addColumn<QString>("keyLine");
    QTest::addColumn<QString>("line"); // the trace at start
    QTest::addColumn<int>("oneCallStatus");
    QTest::addColumn<QStringList>("paths"); // asked, in order, for two positions
    QTest::addColumn<bool>("keyRefused");
    QTest::addColumn<WeatherProvider>("provider");
    const QStringList keyless{forecastPath, forecastPath};
    const QString noKey = u"💥 Error !!! Weather API SECRET KEY cannot be found on system. Unable to continue with "
                          u"Weather Data Service."_qs;
    const QString found = u"WEATHER_API_KEY found: 'k3y'"_qs;
    const QString key = u"WEATHER_API_KEY=k3y"_qs;
    QTest::newRow("no key") << QString() << noKey << 200 << keyless << false << WeatherProvider::metNorway;
    QTest::newRow("an empty key") << u"WEATHER_API_KEY="_qs << noKey << 200 << keyless << false
                                  << WeatherProvider::metNorway;
    QTest::newRow("a key") << key << found << 200 << QStringList{onecallPath, onecallPath} << false
                           << WeatherProvider::oneCall;
    // No One Call 3.0 subscription: the keyless forecast at once, and from then on.
    QTest::newRow("a key One Call refuses")
        << key << found << 401 << QStringList{onecallPath, forecastPath, forecastPath} << true
        << WeatherProvider::metNorway;
}

void tst_WeatherInfoDataService::providers()
{
    QFETCH(QString, keyLine);
    QFETCH(QString, line);
    QFETCH(int, oneCallStatus);
    QFETCH(QStringList, paths);
    QFETCH(bool, keyRefused);
    QFETCH(WeatherProvider, provider);
    m_server->setResponse(onecallPath, oneCallStatus, "application/json",
                          oneCallStatus == 200 ? document() : QByteArray(R"({"cod":401})"));
    serveForecast("Sun, 22 Nov 2026 09:41:07 GMT", 0);
    Trace::Capture capture;
    const auto deployment = settings(keyLine);
    WeatherInfoDataService service(*m_network, *deployment);
    QCOMPARE(capture.lines(), QStringList{line});
    QSignalSpy refused(&service, &WeatherInfoDataService::keyRefusedChanged);
    service.getWeatherInfo(28.4636, -16.2518);
    QCOMPARE(service.cancelables(), 1);
    QTRY_COMPARE(m_server->requests().size(), paths.size() - 1);
    service.getWeatherInfo(40.4168, -3.7038);
    QTRY_COMPARE(m_server->requests().size(), paths.size());
    QStringList asked;
    for (const QString &request : m_server->requests()) {
        asked.append(request.section(u' ', 1).section(u'?', 0, 0));
    }
    QCOMPARE(asked, paths);
    QCOMPARE(service.cancelables(), paths.size());
    // Every request says who asks; One Call gets the whole question, MET Norway four decimals at most.
    QCOMPARE(m_server->requestHeader("User-Agent"), QList<QByteArray>(paths.size(), userAgent()));
    QVERIFY(userAgent().startsWith("Telverra/" TELVERRA_VERSION " (+http"));
    QCOMPARE(m_server->requests().constFirst().section(u'?', 1),
             paths.constFirst() == onecallPath
                 ? u"lat=28.4636&lon=-16.2518&exclude=hourly,minutely&units=metric&lang=es_ES&appid=k3y"_qs
                 : u"lat=28.4636&lon=-16.2518"_qs);
    QCOMPARE(service.keyRefused(), keyRefused);
    QCOMPARE(refused.size(), keyRefused ? 1 : 0);
    QTRY_VERIFY(service.weatherInfo());
    QCOMPARE(service.weatherInfo()->provider, provider);
    QCOMPARE(service.weatherInfo()->current.temp, provider == WeatherProvider::oneCall ? 21.04 : 17.2);
}

void tst_WeatherInfoDataService::keylessAnswerKeptUntilItExpires()
{
    const QByteArray lastModified = "Sun, 22 Nov 2026 09:41:07 GMT";
    serveForecast(lastModified, -60); // expired as it arrives
    const auto deployment = settings(QString());
    {
        WeatherInfoDataService service(*m_network, *deployment);
        QSignalSpy published(&service, &WeatherInfoDataService::weatherInfoChanged);
        service.getWeatherInfo(28.46824, -16.25465);
        QVERIFY(published.wait());
        QCOMPARE(m_server->requests(), QStringList{u"GET " + forecastPath + u"?lat=28.4682&lon=-16.2547"});
        QCOMPARE(m_server->requestHeader("If-Modified-Since"), QList<QByteArray>{QByteArray()});
        QCOMPARE(service.weatherInfo()->current.weather.value(0).weatherDescription, u"scattered clouds"_qs);
        QVERIFY(service.weatherInfo()->daily.size() >= 5);
        QVERIFY(!service.weatherInfo()->has(u"current.visibility"_qs));

        // Expired: asked again, whether it changed; it did not (304), and the kept forecast is published again.
        serveForecast(lastModified, 3600);
        service.getWeatherInfo(28.46824, -16.25465);
        QVERIFY(published.wait());
        QCOMPARE(m_server->requestHeader("If-Modified-Since").value(1), lastModified);
        QCOMPARE(service.weatherInfo()->current.temp, 17.2);

        // Not expired: not asked at all, the same forecast again; another place is asked for.
        service.getWeatherInfo(28.46824, -16.25465);
        QCOMPARE(published.size(), 3);
        QCOMPARE(m_server->requests().size(), 2);
        service.getWeatherInfo(40.4168, -3.7038);
        QTRY_COMPARE(published.size(), 4);
        QCOMPARE(m_server->requests().size(), 3);
        QCOMPARE(service.weatherInfo()->lat, 28.4682); // the fixture's position, whatever was asked
    }
    // The next start: the last forecast before any request, and none while it has not expired.
    m_server->setResponse(forecastPath, 500, "text/plain", "down");
    WeatherInfoDataService restarted(*m_network, *deployment);
    QVERIFY(!restarted.weatherInfo());
    QSignalSpy published(&restarted, &WeatherInfoDataService::weatherInfoChanged);
    QVERIFY(published.wait());
    QCOMPARE(restarted.weatherInfo()->current.temp, 17.2);
    restarted.getWeatherInfo(40.4168, -3.7038);
    QCOMPARE(published.size(), 2);
    QCOMPARE(m_server->requests().size(), 3);
}

void tst_WeatherInfoDataService::failuresKeepThePreviousDocument_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("body");
    QTest::newRow("429") << 429 << QByteArray(R"({"cod":429})");
    QTest::newRow("500") << 500 << document();
    QTest::newRow("no wind_gust") << 200 << document(u"daily.1.wind_gust"_qs);
    QTest::newRow("fraction") << 200 << document(u"daily.0.humidity"_qs, 58.5);
    QTest::newRow("not JSON") << 200 << QByteArray("<html>busy</html>");
    QTest::newRow("empty") << 200 << QByteArray();
}

void tst_WeatherInfoDataService::failuresKeepThePreviousDocument()
{
    QFETCH(int, status);
    QFETCH(QByteArray, body);
    const auto deployment = settings(u"WEATHER_API_KEY=k3y"_qs);
    WeatherInfoDataService service(*m_network, *deployment);
    m_server->setResponse(onecallPath, 200, "application/json", document(u"current.temp"_qs, 17.5));
    QSignalSpy published(&service, &WeatherInfoDataService::weatherInfoChanged);
    service.getWeatherInfo(40, -3.5);
    QVERIFY(published.wait());

    m_server->setResponse(onecallPath, status, "application/json", body);
    Trace::Capture capture;
    service.getWeatherInfo(40, -3.5);
    QTRY_COMPARE(m_server->requests().size(), 2);
    QTRY_VERIFY(m_network->findChildren<QNetworkReply *>().isEmpty()); // the answer handled
    QCOMPARE(published.size(), 1);
    QCOMPARE(service.weatherInfo()->current.temp, 17.5);
    QCOMPARE(capture.lines(), QStringList());
}

void tst_WeatherInfoDataService::slowServerCutAtTheDeadline()
{
    const auto deployment = settings(u"WEATHER_API_KEY=k3y"_qs);
    WeatherInfoDataService service(*m_network, *deployment);
    service.setFetchLimits({1500, 1 << 20});
    m_server->setTrickle(onecallPath, document(), 1000);
    QSignalSpy published(&service, &WeatherInfoDataService::weatherInfoChanged);
    service.getWeatherInfo(40, -3.5);
    QTRY_COMPARE(m_server->requests().size(), 1);
    // The transfer is abandoned at the deadline: the service is free again and nothing was published. The whole
    // body would take 40 minutes at this pace, so a reply still open after half a minute was never cut.
    QTRY_VERIFY_WITH_TIMEOUT(m_network->findChildren<QNetworkReply *>().isEmpty(), 30000);
    QCOMPARE(published.size(), 0);
    QVERIFY(!service.weatherInfo());
}

void tst_WeatherInfoDataService::endlessBodyCutAtTheCap_data()
{
    QTest::addColumn<bool>("announceLength");
    QTest::newRow("announced") << true;
    QTest::newRow("unannounced") << false;
}

void tst_WeatherInfoDataService::endlessBodyCutAtTheCap()
{
    QFETCH(bool, announceLength);
    const auto deployment = settings(u"WEATHER_API_KEY=k3y"_qs);
    WeatherInfoDataService service(*m_network, *deployment);
    m_server->setEndless(onecallPath, 100 * 1024 * 1024, announceLength);
    QSignalSpy published(&service, &WeatherInfoDataService::weatherInfoChanged);
    service.getWeatherInfo(40, -3.5);
    QTRY_COMPARE(m_server->requests().size(), 1);
    QTRY_VERIFY_WITH_TIMEOUT(m_network->findChildren<QNetworkReply *>().isEmpty(), 10000);
    QCOMPARE(published.size(), 0);
    // The server never got far: a few buffers past the cap at most.
    QVERIFY2(m_server->bytesStreamed() < 8 * 1024 * 1024, qPrintable(QString::number(m_server->bytesStreamed())));
}

QTEST_GUILESS_MAIN(tst_WeatherInfoDataService)
#include "tst_WeatherInfoDataService.moc"
