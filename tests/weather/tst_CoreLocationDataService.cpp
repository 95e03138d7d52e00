// The location service. Its decisions are checked against a scripted location manager; the GeoClue client against
// a stand-in GeoClue service on a private session bus (run under dbus-run-session), with the nmea position plugin
// reading a recorded fix; the place names against a real HTTP server on 127.0.0.1.
#include "common/Trace.h"
#include "settings/DeploymentSettings.h"
#include "settings/Preferences.h"
#include "support/LoopbackHttpServer.h"
#include "support/ScriptedLocation.h"
#include "support/TestHome.h"
#include "weather/CoreLocationDataService.h"
#include "weather/GeoClueLocationManager.h"
#include "weather/OpenWeatherGeocoder.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusContext>
#include <QDBusObjectPath>
#include <QFile>
#include <QNetworkAccessManager>
#include <QNmeaPositionInfoSource>
#include <QSignalSpy>
#include <QTest>

namespace {

const QString disabledText = u"Show an alert letting the user know Location Services are not activated, and must be "
                             u"turn-on on the Settings app."_qs;
const QString restrictedText = u"Show alert !!! Your location is restricted likely due to parental controls"_qs;
const QString deniedText =
    u"Show an alert !!! Location Services are not activated, and must be turn-on on the Settings app."_qs;

class GeoClueManagerStandIn : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.GeoClue2.Manager")
public Q_SLOTS:
    QDBusObjectPath GetClient() { return QDBusObjectPath(u"/org/freedesktop/GeoClue2/Client/1"_qs); }
};

class GeoClueClientStandIn : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.GeoClue2.Client")
    Q_PROPERTY(QString DesktopId MEMBER desktopId)
public:
    QString desktopId;
    QString errorName; // empty: Start succeeds
    QString errorMessage;
    int starts = 0;
public Q_SLOTS:
    void Start()
    {
        ++starts;
        if (!errorName.isEmpty()) {
            sendErrorReply(errorName, errorMessage);
        }
    }
};

} // namespace

class tst_CoreLocationDataService : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void statuses_data();
    void statuses();
    void deniedThenGranted();
    void noLocalityGivesAnEmptyCity();
    void geocodingFailureChangesNothing();
    void manualPlaceWhenThereIsNoPosition();
    void reverseGeocodingOverHttp_data();
    void reverseGeocodingOverHttp();
    void geoClueAnswers_data();
    void geoClueAnswers();
};

void tst_CoreLocationDataService::statuses_data()
{
    QTest::addColumn<bool>("enabled");
    QTest::addColumn<int>("status");
    QTest::addColumn<bool>("hasPosition");
    QTest::addColumn<QString>("permissionError");
    QTest::addColumn<QStringList>("lines");
    QTest::addColumn<bool>("published");

    QTest::newRow("services off") << false << 0 << true << disabledText << QStringList{disabledText} << false;
    QTest::newRow("not determined") << true << 0 << true << QString() << QStringList{QString()} << false;
    QTest::newRow("restricted") << true << 1 << true << restrictedText << QStringList{restrictedText} << false;
    QTest::newRow("denied") << true << 2 << true << deniedText << QStringList{deniedText} << false;
    QTest::newRow("always") << true << 3 << true << QString() << QStringList{QString()} << true;
    QTest::newRow("when in use") << true << 4 << true << QString() << QStringList{QString()} << true;
    QTest::newRow("authorized, no position") << true << 4 << false << QString() << QStringList() << false;
    QTest::newRow("unknown status") << true << 7 << true << QString()
                                    << QStringList{u"Unexpected Core Location Status"_qs, QString()} << false;
}

void tst_CoreLocationDataService::statuses()
{
    QFETCH(bool, enabled);
    QFETCH(int, status);
    QFETCH(bool, hasPosition);
    QFETCH(QString, permissionError);
    QFETCH(QStringList, lines);
    QFETCH(bool, published);
    ScriptedServices services;
    services.enabled = enabled;
    services.status = status;
    if (hasPosition) {
        services.position = QGeoCoordinate(28.4636, -16.2518);
    }
    ScriptedGeocoder geocoder;
    Trace::Capture capture;
    CoreLocationDataService service(services, geocoder);
    QCOMPARE(capture.lines(), lines);
    QCOMPARE(service.permissionError().value_or(QString()), permissionError);
    QCOMPARE(service.permissionError().has_value(), !permissionError.isEmpty());
    QCOMPARE(service.locationManager() != nullptr, enabled);
    QCOMPARE(services.last ? services.last->requests : 0, status == 0 && enabled ? 1 : 0);
    QCOMPARE(service.coordinates().has_value(), published);
    if (published) {
        QCOMPARE(*service.coordinates(), QGeoCoordinate(28.4636, -16.2518));
        QTRY_COMPARE(service.cityName(), u"La Laguna"_qs);
        QCOMPARE(service.countryName(), u"Spain"_qs);
    }
    QCOMPARE(geocoder.asked.size(), published ? 1 : 0);
}

void tst_CoreLocationDataService::deniedThenGranted()
{
    ScriptedServices services;
    services.status = LocationManager::denied;
    services.position = QGeoCoordinate(28.4636, -16.2518);
    ScriptedGeocoder geocoder;
    Trace::Capture capture;
    CoreLocationDataService service(services, geocoder);
    QCOMPARE(service.permissionError(), std::optional<QString>(deniedText));
    QSignalSpy coordinates(&service, &CoreLocationDataService::coordinatesChanged);
    services.last->change(LocationManager::authorizedWhenInUse);
    QCOMPARE(coordinates.size(), 1);
    QTRY_COMPARE(service.cityName(), u"La Laguna"_qs);
    QCOMPARE(service.permissionError(), std::optional<QString>(deniedText));
    QCOMPARE(capture.lines(), (QStringList{deniedText, deniedText}));
}

void tst_CoreLocationDataService::noLocalityGivesAnEmptyCity()
{
    ScriptedServices services;
    services.status = LocationManager::authorizedAlways;
    services.position = QGeoCoordinate(0, -30);
    ScriptedGeocoder geocoder;
    geocoder.answer = QList<Placemark>{{u"Portugal"_qs, std::nullopt}};
    CoreLocationDataService service(services, geocoder);
    QSignalSpy city(&service, &CoreLocationDataService::cityNameChanged);
    QVERIFY(city.wait());
    QCOMPARE(service.cityName(), QString());
    QCOMPARE(service.countryName(), u"Portugal"_qs);
}

void tst_CoreLocationDataService::geocodingFailureChangesNothing()
{
    ScriptedServices services;
    services.status = LocationManager::authorizedAlways;
    services.position = QGeoCoordinate(1, 2);
    ScriptedGeocoder geocoder;
    CoreLocationDataService service(services, geocoder);
    QTRY_COMPARE(service.cityName(), u"La Laguna"_qs);
    geocoder.answer = std::nullopt;
    Trace::Capture capture;
    service.startUp();
    QTRY_COMPARE(geocoder.asked.size(), 2);
    QTest::qWait(20);
    QCOMPARE(service.cityName(), u"La Laguna"_qs);
    QCOMPARE(capture.lines(), QStringList{QString()});
}

void tst_CoreLocationDataService::manualPlaceWhenThereIsNoPosition()
{
    TestHome home;
    Preferences preferences(home.configHome() + u"/telverra/telverra.conf");
    preferences.setWeatherPlace(u"  Madrid "_qs);
    ScriptedServices services;
    services.enabled = false;
    ScriptedGeocoder geocoder;
    Trace::Capture capture;
    CoreLocationDataService service(services, geocoder, &preferences);
    QCOMPARE(geocoder.places, QStringList{u"Madrid"_qs});
    QTRY_VERIFY(service.coordinates().has_value());
    QCOMPARE(*service.coordinates(), QGeoCoordinate(40.4168, -3.7038));
    QCOMPARE(service.cityName(), u"Madrid"_qs);
    QCOMPARE(service.permissionError(), std::optional<QString>(disabledText));
}

void tst_CoreLocationDataService::reverseGeocodingOverHttp_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<bool>("answered");
    QTest::addColumn<QString>("country");
    QTest::addColumn<QString>("locality");
    QTest::newRow("a place") << QByteArray(R"([{"name":"San Cristóbal de La Laguna","local_names":{"es":"La Laguna"},)"
                                           R"("lat":28.48,"lon":-16.31,"country":"ES","state":"Canarias"}])")
                             << true << u"Spain"_qs << u"San Cristóbal de La Laguna"_qs;
    QTest::newRow("no name") << QByteArray(R"([{"lat":0.5,"lon":-30.2,"country":"PT"}])") << true << u"Portugal"_qs
                             << QString();
    QTest::newRow("unknown code") << QByteArray(R"([{"name":"Nowhere","lat":1,"lon":2,"country":"QQ"}])") << true
                                  << u"QQ"_qs << u"Nowhere"_qs;
    QTest::newRow("nothing found") << QByteArray("[]") << false << QString() << QString();
    QTest::newRow("an object") << QByteArray(R"({"cod":401})") << false << QString() << QString();
    QTest::newRow("no coordinates") << QByteArray(R"([{"name":"X","country":"ES"}])") << false << QString()
                                    << QString();
    QTest::newRow("latitude off the globe")
        << QByteArray(R"([{"name":"X","lat":400.0,"lon":-3.5,"country":"ES"}])") << false << QString() << QString();
    QTest::newRow("longitude off the globe")
        << QByteArray(R"([{"lat":1,"lon":-180.5}])") << false << QString() << QString();
}

void tst_CoreLocationDataService::reverseGeocodingOverHttp()
{
    QFETCH(QByteArray, body);
    QFETCH(bool, answered);
    QFETCH(QString, country);
    QFETCH(QString, locality);
    TestHome home;
    LoopbackHttpServer server;
    QVERIFY(server.listen());
    server.setResponse(u"/geo/1.0/reverse"_qs, 200, "application/json", body);
    const DeploymentSettings deployment(home.writeFile(
        u"Info.ini"_qs, (u"[General]\nWEATHER_API_KEY=k3y\nWEATHER_API_BASE_URL=" + server.baseUrl()).toUtf8()));
    QNetworkAccessManager network;
    OpenWeatherGeocoder geocoder(network, deployment);
    std::optional<std::optional<QList<Placemark>>> result;
    geocoder.reverseGeocode(QGeoCoordinate(28.4636, -16.2518), this,
                            [&result](const std::optional<QList<Placemark>> &placemarks) { result = placemarks; });
    QTRY_VERIFY(result.has_value());
    QCOMPARE(server.requests(), QStringList{u"GET /geo/1.0/reverse?lat=28.4636&lon=-16.2518&limit=1&appid=k3y"_qs});
    QCOMPARE(result->has_value(), answered);
    if (answered) {
        QCOMPARE((*result)->first().country.value_or(QString()), country);
        QCOMPARE((*result)->first().locality.value_or(QString()), locality);
    }
}

void tst_CoreLocationDataService::geoClueAnswers_data()
{
    QTest::addColumn<QString>("errorName");
    QTest::addColumn<QString>("errorMessage");
    QTest::addColumn<QString>("permissionError");
    QTest::addColumn<QStringList>("lines");
    QTest::addColumn<bool>("positioned");
    QTest::newRow("granted") << QString() << QString() << QString() << QStringList{QString(), QString()} << true;
    QTest::newRow("agent refuses") << u"org.freedesktop.DBus.Error.AccessDenied"_qs
                                   << u"'org.telverra.Telverra' disallowed by the agent"_qs << deniedText
                                   << QStringList{QString(), deniedText} << false;
    QTest::newRow("location off") << u"org.freedesktop.DBus.Error.AccessDenied"_qs << u"Geolocation disabled"_qs
                                  << deniedText << QStringList{QString(), deniedText} << false;
    QTest::newRow("other failure") << u"org.freedesktop.DBus.Error.Failed"_qs << u"boom"_qs << QString()
                                   << QStringList{QString(), u"org.freedesktop.DBus.Error.Failed: boom"_qs} << false;
}

void tst_CoreLocationDataService::geoClueAnswers()
{
    QFETCH(QString, errorName);
    QFETCH(QString, errorMessage);
    QFETCH(QString, permissionError);
    QFETCH(QStringList, lines);
    QFETCH(bool, positioned);
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        QSKIP("no session bus: run under dbus-run-session");
    }
    const QString nmea = QStringLiteral(TELVERRA_TEST_DATA "/tenerife.nmea");
    GeoClueLocationServices services(bus, u"org.telverra.Telverra"_qs, [nmea] {
        // Qt's NMEA source replaying a recorded fix. (The nmea plugin's factory gives no source inside a Qt Test
        // program, so the source is made directly.)
        auto *source = new QNmeaPositionInfoSource(QNmeaPositionInfoSource::SimulationMode);
        auto *file = new QFile(nmea, source);
        file->open(QIODevice::ReadOnly);
        source->setDevice(file);
        return source;
    });
    const QString name = u"org.freedesktop.GeoClue2"_qs;
    QVERIFY(!services.locationServicesEnabled());

    // The stand-in answers on a connection of its own, as GeoClue does: calls go through the bus daemon.
    QDBusConnection geoclue = QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"geoclue"_qs);
    GeoClueManagerStandIn manager;
    GeoClueClientStandIn client;
    client.errorName = errorName;
    client.errorMessage = errorMessage;
    QVERIFY(geoclue.registerObject(u"/org/freedesktop/GeoClue2/Manager"_qs, &manager, QDBusConnection::ExportAllSlots));
    QVERIFY(geoclue.registerObject(u"/org/freedesktop/GeoClue2/Client/1"_qs, &client,
                                   QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllProperties));
    QVERIFY(geoclue.registerService(name));
    QVERIFY(services.locationServicesEnabled());

    TestHome home;
    LoopbackHttpServer server;
    QVERIFY(server.listen());
    server.setResponse(u"/geo/1.0/reverse"_qs, 200, "application/json",
                       R"([{"name":"La Laguna","lat":28.48,"lon":-16.31,"country":"ES"}])");
    const DeploymentSettings deployment(home.writeFile(
        u"Info.ini"_qs, (u"[General]\nWEATHER_API_KEY=k3y\nWEATHER_API_BASE_URL=" + server.baseUrl()).toUtf8()));
    QNetworkAccessManager network;
    OpenWeatherGeocoder geocoder(network, deployment);

    Trace::Capture capture;
    CoreLocationDataService service(services, geocoder);
    QTRY_COMPARE(client.starts, 1);
    QCOMPARE(client.desktopId, u"org.telverra.Telverra"_qs);
    QTRY_COMPARE(capture.lines(), lines);
    QCOMPARE(service.permissionError().value_or(QString()), permissionError);
    if (positioned) {
        QTRY_VERIFY(service.coordinates().has_value());
        QCOMPARE(service.coordinates()->latitude(), 28.4636);
        QCOMPARE(service.coordinates()->longitude(), -16.2518);
        QTRY_COMPARE(service.cityName(), u"La Laguna"_qs);
        QCOMPARE(service.countryName(), u"Spain"_qs);
    } else {
        QTest::qWait(200);
        QVERIFY(!service.coordinates());
    }
    geoclue.unregisterObject(u"/org/freedesktop/GeoClue2/Manager"_qs);
    geoclue.unregisterObject(u"/org/freedesktop/GeoClue2/Client/1"_qs);
    geoclue.unregisterService(name);
    QTRY_VERIFY(!services.locationServicesEnabled());
}

QTEST_GUILESS_MAIN(tst_CoreLocationDataService)
#include "tst_CoreLocationDataService.moc"
