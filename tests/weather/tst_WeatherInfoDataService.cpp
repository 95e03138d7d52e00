// The weather service against a real HTTP server on 127.0.0.1: the request it sends, what it keeps from each answer,
// and the limits that protect it from a slow or endless server.
#include "common/Trace.h"
#include "settings/DeploymentSettings.h"
#include "support/LoopbackHttpServer.h"
#include "support/TestHome.h"
#include "weather/WeatherInfoDataService.h"

#include <QElapsedTimer>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QNetworkAccessManager>
#include <QSignalSpy>
#include <QTest>

namespace {

const QString onecallPath = QStringLiteral("/data/2.5/onecall");

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

} // namespace

class tst_WeatherInfoDataService : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init();
    void decoding_data();
    void decoding();
    void roundTrip();
    void coordinateText_data();
    void coordinateText();
    void requestText_data();
    void requestText();
    void missingKey_data();
    void missingKey();
    void failuresKeepThePreviousDocument_data();
    void failuresKeepThePreviousDocument();
    void slowServerCutAtTheDeadline();
    void endlessBodyCutAtTheCap_data();
    void endlessBodyCutAtTheCap();

private:
    std::unique_ptr<DeploymentSettings> settings(const QString &keyLine);
    std::unique_ptr<TestHome> m_home;
    LoopbackHttpServer *m_server = nullptr;
    QNetworkAccessManager *m_network = nullptr;
};

void tst_WeatherInfoDataService::init()
{
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
        QStringLiteral("Info.ini"),
        (u"[General]\n" + keyLine + u"\nWEATHER_API_BASE_URL=" + m_server->baseUrl() + u'\n').toUtf8());
    return std::make_unique<DeploymentSettings>(file);
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

void tst_WeatherInfoDataService::roundTrip()
{
    const std::optional<WeatherInfo> info = WeatherInfo::decode(document());
    QVERIFY(info);
    QCOMPARE(WeatherInfo::decode(QJsonDocument(info->toJson()).toJson()), info);
}

void tst_WeatherInfoDataService::coordinateText_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("text");
    QTest::newRow("integral") << 40.0 << u"40.0"_qs;
    QTest::newRow("half") << -3.5 << u"-3.5"_qs;
    QTest::newRow("latitude") << 28.4636 << u"28.4636"_qs;
    QTest::newRow("longitude") << -16.2518 << u"-16.2518"_qs;
    QTest::newRow("zero") << 0.0 << u"0.0"_qs;
    QTest::newRow("shortest of a sum") << 0.1 + 0.2 << u"0.30000000000000004"_qs;
}

void tst_WeatherInfoDataService::coordinateText()
{
    QFETCH(double, value);
    QFETCH(QString, text);
    QCOMPARE(WeatherInfoDataService::coordinateText(value), text);
    QCOMPARE(text.toDouble(), value);
}

void tst_WeatherInfoDataService::requestText_data()
{
    QTest::addColumn<double>("lat");
    QTest::addColumn<double>("lon");
    QTest::addColumn<QString>("request");
    QTest::newRow("Madrid")
        << 40.0 << -3.5
        << u"GET /data/2.5/onecall?lat=40.0&lon=-3.5&exclude=hourly,minutely&units=metric&lang=es_ES"
           u"&appid=k3y"_qs;
    QTest::newRow("Tenerife") << 28.4636 << -16.2518
                              << u"GET /data/2.5/onecall?lat=28.4636&lon=-16.2518&exclude=hourly,minutely&units=metric"
                                 u"&lang=es_ES&appid=k3y"_qs;
}

void tst_WeatherInfoDataService::requestText()
{
    QFETCH(double, lat);
    QFETCH(double, lon);
    QFETCH(QString, request);
    m_server->setResponse(onecallPath, 200, "application/json", document());
    Trace::Capture capture;
    const auto deployment = settings(u"WEATHER_API_KEY=k3y"_qs);
    WeatherInfoDataService service(*m_network, *deployment);
    QCOMPARE(capture.lines(), QStringList{u"WEATHER_API_KEY found: 'k3y'"_qs});
    QSignalSpy published(&service, &WeatherInfoDataService::weatherInfoChanged);
    service.getWeatherInfo(lat, lon);
    QCOMPARE(service.cancelables(), 1);
    QVERIFY(published.wait());
    QCOMPARE(m_server->requests(), QStringList{request});
    QCOMPARE(service.weatherInfo()->current.temp, 21.04);
    service.getWeatherInfo(lat, lon);
    QCOMPARE(service.cancelables(), 2);
    QVERIFY(published.wait());
}

void tst_WeatherInfoDataService::missingKey_data()
{
    QTest::addColumn<QString>("keyLine");
    QTest::newRow("absent") << QString();
    QTest::newRow("empty") << u"WEATHER_API_KEY="_qs;
}

void tst_WeatherInfoDataService::missingKey()
{
    QFETCH(QString, keyLine);
    m_server->setResponse(onecallPath, 401, "application/json", R"({"cod":401})");
    Trace::Capture capture;
    const auto deployment = settings(keyLine);
    WeatherInfoDataService service(*m_network, *deployment);
    QCOMPARE(capture.lines(), QStringList{u"💥 Error !!! Weather API SECRET KEY cannot be found on system. Unable to "
                                          u"continue with Weather Data Service."_qs});
    QCOMPARE(service.weatherApiKey(), QString());
    service.getWeatherInfo(40, -3.5);
    QTRY_COMPARE(m_server->requests().size(), 1);
    QVERIFY(m_server->requests().first().endsWith(u"&appid="));
}

void tst_WeatherInfoDataService::failuresKeepThePreviousDocument_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("body");
    QTest::newRow("401") << 401 << QByteArray(R"({"cod":401,"message":"Invalid API key."})");
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
    QTest::qWait(100); // let the answer be handled
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
    QElapsedTimer clock;
    clock.start();
    service.getWeatherInfo(40, -3.5);
    QTRY_COMPARE(m_server->requests().size(), 1);
    // The transfer is abandoned at the deadline: the service is free again and nothing was published.
    QTRY_VERIFY_WITH_TIMEOUT(m_network->findChildren<QNetworkReply *>().isEmpty(), 5000);
    QVERIFY2(clock.elapsed() < 4000, qPrintable(QString::number(clock.elapsed())));
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
