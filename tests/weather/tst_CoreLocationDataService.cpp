// The location service. Its decisions are checked against a scripted location manager; the GeoClue client against
// a stand-in GeoClue service on a private session bus (run under dbus-run-session), with the nmea position plugin
// reading a recorded fix. Places are named by the real offline city database, and the time zone is Madrid's.
#include "common/Trace.h"
#include "settings/Preferences.h"
#include "support/ScriptedLocation.h"
#include "support/TestHome.h"
#include "weather/CityGeocoder.h"
#include "weather/CoreLocationDataService.h"
#include "weather/GeoClueLocationManager.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusContext>
#include <QDBusObjectPath>
#include <QFile>
#include <QNmeaPositionInfoSource>
#include <QSignalSpy>
#include <QTest>

namespace {

const QString disabledText = u"Show an alert letting the user know Location Services are not activated, and must be "
                             u"turn-on on the Settings app."_qs;
const QString restrictedText = u"Show alert !!! Your location is restricted likely due to parental controls"_qs;
const QString deniedText =
    u"Show an alert !!! Location Services are not activated, and must be turn-on on the Settings app."_qs;
const QGeoCoordinate tenerife(28.4636, -16.2518);
using Source = CoreLocationDataService::PlaceSource;

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
    void initTestCase();
    void init();
    void statuses_data();
    void statuses();
    void deniedThenGranted();
    void chosenCityWinsUntilCleared_data();
    void chosenCityWinsUntilCleared();
    void keptPlaceShownAtOnce();
    void geoClueAnswers_data();
    void geoClueAnswers();

private:
    std::unique_ptr<TestHome> m_home;
    CityGeocoder m_geocoder;
};

void tst_CoreLocationDataService::initTestCase()
{
    qputenv("TZ", "Europe/Madrid"); // the time zone whose city is the guess
}

void tst_CoreLocationDataService::init()
{
    m_home.reset();                        // first: it puts back the environment it found
    m_home = std::make_unique<TestHome>(); // a fresh cache: no place kept from the row before
}

void tst_CoreLocationDataService::statuses_data()
{
    QTest::addColumn<bool>("enabled");
    QTest::addColumn<int>("status");
    QTest::addColumn<QGeoCoordinate>("position");
    QTest::addColumn<QString>("permissionError");
    QTest::addColumn<QStringList>("lines");
    QTest::addColumn<QString>("city"); // where it settles: the position's city, else the time zone's, as a guess
    QTest::addColumn<Source>("source");

    const QString madrid = u"Madrid"_qs;
    const QString santaCruz = u"Santa Cruz de Tenerife"_qs;
    QTest::newRow("services off") << false << 0 << tenerife << disabledText << QStringList{disabledText} << madrid
                                  << Source::guessed;
    QTest::newRow("not determined") << true << 0 << tenerife << QString() << QStringList{QString()} << madrid
                                    << Source::guessed;
    QTest::newRow("restricted") << true << 1 << tenerife << restrictedText << QStringList{restrictedText} << madrid
                                << Source::guessed;
    QTest::newRow("denied") << true << 2 << tenerife << deniedText << QStringList{deniedText} << madrid
                            << Source::guessed;
    QTest::newRow("always") << true << 3 << tenerife << QString() << QStringList{QString()} << santaCruz
                            << Source::located;
    QTest::newRow("when in use") << true << 4 << tenerife << QString() << QStringList{QString()} << santaCruz
                                 << Source::located;
    QTest::newRow("authorized, no position")
        << true << 4 << QGeoCoordinate() << QString() << QStringList() << madrid << Source::guessed;
    QTest::newRow("authorized, at sea: no city")
        << true << 4 << QGeoCoordinate(35, -30) << QString() << QStringList{QString()} << QString() << Source::located;
    QTest::newRow("unknown status") << true << 7 << tenerife << QString()
                                    << QStringList{u"Unexpected Core Location Status"_qs, QString()} << madrid
                                    << Source::guessed;
}

void tst_CoreLocationDataService::statuses()
{
    QFETCH(bool, enabled);
    QFETCH(int, status);
    QFETCH(QGeoCoordinate, position);
    QFETCH(QString, permissionError);
    QFETCH(QStringList, lines);
    QFETCH(QString, city);
    QFETCH(Source, source);
    ScriptedServices services;
    services.enabled = enabled;
    services.status = status;
    if (position.isValid()) {
        services.position = position;
    }
    Trace::Capture capture;
    CoreLocationDataService service(services, m_geocoder);
    service.setLocateTimeLimit(100);
    QCOMPARE(capture.lines(), lines);
    QCOMPARE(service.permissionError().value_or(QString()), permissionError);
    QCOMPARE(service.permissionError().has_value(), !permissionError.isEmpty());
    QCOMPARE(service.locationManager() != nullptr, enabled);
    QCOMPARE(services.last ? services.last->requests : 0, status == 0 && enabled ? 1 : 0);
    // A position is published at once; a guess only once the system has given up.
    QCOMPARE(service.coordinates().has_value(), source == Source::located);
    QTRY_COMPARE(service.placeSource(), source);
    QTRY_COMPARE(service.cityName(), city);
    QCOMPARE(service.countryName(), city.isEmpty() ? QString() : u"Spain"_qs);
    QVERIFY(service.coordinates());
    if (source == Source::located) {
        QCOMPARE(*service.coordinates(), position);
    }
    QCOMPARE(capture.lines(), lines); // falling back says nothing
}

void tst_CoreLocationDataService::deniedThenGranted()
{
    ScriptedServices services;
    services.status = LocationManager::denied;
    services.position = tenerife;
    Trace::Capture capture;
    CoreLocationDataService service(services, m_geocoder);
    QCOMPARE(service.permissionError(), std::optional<QString>(deniedText));
    QTRY_COMPARE(service.cityName(), u"Madrid"_qs);
    QCOMPARE(service.placeSource(), Source::guessed);
    QSignalSpy coordinates(&service, &CoreLocationDataService::coordinatesChanged);
    services.last->change(LocationManager::authorizedWhenInUse);
    QCOMPARE(coordinates.size(), 1);
    QCOMPARE(service.placeSource(), Source::located);
    QTRY_COMPARE(service.cityName(), u"Santa Cruz de Tenerife"_qs);
    QCOMPARE(service.permissionError(), std::optional<QString>(deniedText));
    QCOMPARE(capture.lines(), (QStringList{deniedText, deniedText}));
}

void tst_CoreLocationDataService::chosenCityWinsUntilCleared_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("country");
    QTest::addColumn<QGeoCoordinate>("position"); // invalid: a name written into the preferences by hand
    QTest::addColumn<QGeoCoordinate>("published");
    QTest::addColumn<QString>("city");
    QTest::newRow("chosen from the list") << u"Cadiz"_qs << u"Spain"_qs << QGeoCoordinate(36.52672, -6.2891)
                                          << QGeoCoordinate(36.52672, -6.2891) << u"Cadiz"_qs;
    QTest::newRow("a name alone") << u"santa cruz de la palma"_qs << QString() << QGeoCoordinate()
                                  << QGeoCoordinate(28.68351, -17.76421) << u"Santa Cruz de La Palma"_qs;
}

void tst_CoreLocationDataService::chosenCityWinsUntilCleared()
{
    QFETCH(QString, name);
    QFETCH(QString, country);
    QFETCH(QGeoCoordinate, position);
    QFETCH(QGeoCoordinate, published);
    QFETCH(QString, city);
    Preferences preferences(m_home->configHome() + u"/telverra/telverra.conf");
    preferences.setWeatherPlace({name, country, position.isValid() ? std::optional(position.latitude()) : std::nullopt,
                                 position.isValid() ? std::optional(position.longitude()) : std::nullopt});
    ScriptedServices services;
    services.status = LocationManager::authorizedWhenInUse;
    services.position = tenerife;
    CoreLocationDataService service(services, m_geocoder, &preferences);
    QTRY_COMPARE(service.placeSource(), Source::chosen);
    QVERIFY2(!services.last, "the system's position is not even asked for");
    QVERIFY(service.coordinates()->distanceTo(published) < 1000);
    QCOMPARE(service.cityName(), city);

    service.startUp(); // the hourly refresh keeps the city
    QCOMPARE(service.placeSource(), Source::chosen);
    QVERIFY(!services.last);

    service.clearChosenCity();
    QCOMPARE(preferences.weatherPlace().name, QString());
    QCOMPARE(service.placeSource(), Source::located);
    QTRY_COMPARE(service.cityName(), u"Santa Cruz de Tenerife"_qs);

    service.chooseCity(u"Madrid"_qs, u"Spain"_qs, QGeoCoordinate(40.4165, -3.7026));
    QCOMPARE(service.placeSource(), Source::chosen);
    QCOMPARE(service.cityName(), u"Madrid"_qs);
    const Preferences::WeatherPlace kept = preferences.weatherPlace();
    QCOMPARE(kept.name, u"Madrid"_qs);
    QCOMPARE(kept.latitude, std::optional(40.4165));
}

void tst_CoreLocationDataService::keptPlaceShownAtOnce()
{
    {
        ScriptedServices services;
        services.status = LocationManager::authorizedWhenInUse;
        services.position = tenerife;
        CoreLocationDataService service(services, m_geocoder);
        QTRY_COMPARE(service.cityName(), u"Santa Cruz de Tenerife"_qs);
    }
    // The next start, with no location service at all: the last place from the first moment, and it stays.
    ScriptedServices off;
    off.enabled = false;
    Trace::Capture capture;
    CoreLocationDataService service(off, m_geocoder);
    QCOMPARE(service.coordinates(), std::optional(tenerife));
    QCOMPARE(service.cityName(), u"Santa Cruz de Tenerife"_qs);
    QCOMPARE(service.countryName(), u"Spain"_qs);
    QCOMPARE(service.placeSource(), Source::located);
    QTest::qWait(200); // time for a guess, were one asked for
    QCOMPARE(service.cityName(), u"Santa Cruz de Tenerife"_qs);
}

void tst_CoreLocationDataService::geoClueAnswers_data()
{
    QTest::addColumn<QString>("errorName");
    QTest::addColumn<QString>("errorMessage");
    QTest::addColumn<QString>("permissionError");
    QTest::addColumn<QStringList>("lines");
    QTest::addColumn<bool>("positioned"); // else the time zone's city, as soon as refused or at the time limit
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

    Trace::Capture capture;
    CoreLocationDataService service(services, m_geocoder);
    service.setLocateTimeLimit(positioned ? 60'000 : 1000);
    QTRY_COMPARE(client.starts, 1);
    QCOMPARE(client.desktopId, u"org.telverra.Telverra"_qs);
    QTRY_COMPARE(capture.lines(), lines);
    QCOMPARE(service.permissionError().value_or(QString()), permissionError);
    if (positioned) {
        QTRY_VERIFY(service.coordinates().has_value());
        QCOMPARE(service.coordinates()->latitude(), 28.4636);
        QCOMPARE(service.coordinates()->longitude(), -16.2518);
        QTRY_COMPARE(service.cityName(), u"Santa Cruz de Tenerife"_qs);
        QCOMPARE(service.placeSource(), Source::located);
    } else {
        QTRY_COMPARE(service.cityName(), u"Madrid"_qs);
        QCOMPARE(service.placeSource(), Source::guessed);
    }
    geoclue.unregisterObject(u"/org/freedesktop/GeoClue2/Manager"_qs);
    geoclue.unregisterObject(u"/org/freedesktop/GeoClue2/Client/1"_qs);
    geoclue.unregisterService(name);
    QTRY_VERIFY(!services.locationServicesEnabled());
}

QTEST_GUILESS_MAIN(tst_CoreLocationDataService)
#include "tst_CoreLocationDataService.moc"
