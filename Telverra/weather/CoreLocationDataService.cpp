#include "CoreLocationDataService.h"

#include "common/Trace.h"
#include "settings/Preferences.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMetaEnum>
#include <QSaveFile>
#include <QStandardPaths>
#include <QTimeZone>

CoreLocationDataService::CoreLocationDataService(LocationServices &services, Geocoder &geocoder,
                                                 Preferences *preferences, QObject *parent)
    : QObject(parent)
    , m_services(services)
    , m_geocoder(geocoder)
    , m_preferences(preferences)
{
    m_locateLimit.setSingleShot(true);
    m_locateLimit.setInterval(10'000);
    connect(&m_locateLimit, &QTimer::timeout, this, &CoreLocationDataService::fallBack);
    loadKeptPlace();
    startUp();
}

CoreLocationDataService::~CoreLocationDataService() = default;

QString CoreLocationDataService::cacheFile()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation) + u"/telverra/place.json";
}

void CoreLocationDataService::startUp()
{
    ++m_startUps;
    m_locateLimit.stop();
    if (useChosenCity()) {
        return; // the user's city wins over the system's position
    }
    if (!m_services.locationServicesEnabled()) {
        setPermissionError(QStringLiteral("Show an alert letting the user know Location Services are not activated, "
                                          "and must be turn-on on the Settings app."));
        Trace::line(*m_permissionError);
        fallBack();
        return;
    }
    // A new manager each time: it reads the system's newest position (and any change of mind about permission).
    m_locationManager = m_services.makeManager();
    connect(m_locationManager.get(), &LocationManager::authorizationChanged, this,
            &CoreLocationDataService::checkAuthorization);
    connect(m_locationManager.get(), &LocationManager::failed, this, [](const QString &error) { Trace::line(error); });
    m_locateLimit.start();
    checkAuthorization();
}

void CoreLocationDataService::checkAuthorization()
{
    if (m_locationManager) {
        switch (m_locationManager->authorizationStatus()) {
        case LocationManager::notDetermined:
            m_locationManager->requestWhenInUseAuthorization();
            break;
        case LocationManager::restricted:
            setPermissionError(
                QStringLiteral("Show alert !!! Your location is restricted likely due to parental controls"));
            fallBack();
            break;
        case LocationManager::denied:
            setPermissionError(QStringLiteral(
                "Show an alert !!! Location Services are not activated, and must be turn-on on the Settings app."));
            fallBack();
            break;
        case LocationManager::authorizedAlways:
        case LocationManager::authorizedWhenInUse:
            if (!handlePosition()) {
                return; // no position yet: nothing changes and nothing is said (the time limit falls back)
            }
            break;
        default:
            Trace::line(QStringLiteral("Unexpected Core Location Status"));
            break;
        }
    }
    Trace::line(m_permissionError.value_or(QString()));
}

bool CoreLocationDataService::handlePosition()
{
    const std::optional<QGeoCoordinate> position = m_locationManager->location();
    if (!position) {
        return false;
    }
    m_locateLimit.stop();
    const quint64 generation = ++m_generation;
    m_coordinates = position;
    Q_EMIT coordinatesChanged();
    setPlaceSource(PlaceSource::located);
    m_geocoder.reverseGeocode(*position, this, [this, generation](const std::optional<QList<Placemark>> &placemarks) {
        if (generation == m_generation && placemarks && !placemarks->isEmpty()) {
            setPlace(placemarks->first());
            keepPlace();
        }
    });
    return true;
}

void CoreLocationDataService::setPermissionError(const QString &text)
{
    m_permissionError = text;
    Q_EMIT permissionErrorChanged();
}

void CoreLocationDataService::setPlace(const Placemark &placemark)
{
    m_countryName = placemark.country.value_or(QString());
    Q_EMIT countryNameChanged();
    m_cityName = placemark.locality.value_or(QString());
    Q_EMIT cityNameChanged();
}

void CoreLocationDataService::setPlaceSource(PlaceSource source)
{
    if (m_placeSource != source) {
        m_placeSource = source;
        Q_EMIT placeSourceChanged();
    }
}

void CoreLocationDataService::publish(const QGeoCoordinate &position, const Placemark &names, PlaceSource source)
{
    m_coordinates = position;
    Q_EMIT coordinatesChanged();
    setPlace(names);
    setPlaceSource(source);
    keepPlace();
}

bool CoreLocationDataService::useChosenCity()
{
    const Preferences::WeatherPlace place = m_preferences ? m_preferences->weatherPlace() : Preferences::WeatherPlace();
    if (place.name.isEmpty()) {
        return false;
    }
    m_locationManager.reset();
    const quint64 generation = ++m_generation;
    if (place.latitude && place.longitude) {
        publish(QGeoCoordinate(*place.latitude, *place.longitude), Placemark{place.country, place.name},
                PlaceSource::chosen);
        return true;
    }
    // A name alone, written into the preferences by hand: the geocoder finds it.
    m_geocoder.geocodePlace(place.name, this,
                            [this, generation](const std::optional<QGeoCoordinate> &position, const Placemark &names) {
                                if (generation != m_generation) {
                                    return;
                                }
                                if (position) {
                                    publish(*position, names, PlaceSource::chosen);
                                } else {
                                    fallBack();
                                }
                            });
    return true;
}

void CoreLocationDataService::fallBack()
{
    m_locateLimit.stop();
    if (m_placeSource == PlaceSource::located || m_placeSource == PlaceSource::chosen) {
        // The place the system gave last stays. Published again on a later start-up (the hourly refresh), whose
        // weather follows its position; the first start-up's was read with the kept place.
        if (m_startUps > 1 && m_coordinates) {
            Q_EMIT coordinatesChanged();
        }
        return;
    }
    const quint64 generation = ++m_generation;
    m_geocoder.placeOfTimeZone(
        QString::fromUtf8(QTimeZone::systemTimeZoneId()), this,
        [this, generation](const std::optional<QGeoCoordinate> &position, const Placemark &names) {
            if (generation == m_generation && position) {
                publish(*position, names, PlaceSource::guessed);
            }
        });
}

void CoreLocationDataService::chooseCity(const QString &name, const QString &country, const QGeoCoordinate &position)
{
    if (!m_preferences) {
        ++m_generation;
        publish(position, Placemark{country, name}, PlaceSource::chosen);
        return;
    }
    m_preferences->setWeatherPlace({name, country, position.latitude(), position.longitude()});
    startUp();
}

void CoreLocationDataService::clearChosenCity()
{
    if (m_preferences) {
        m_preferences->setWeatherPlace({});
    }
    if (m_placeSource == PlaceSource::chosen) {
        setPlaceSource(PlaceSource::none); // shown until the system's position or the guess replaces it
    }
    startUp();
}

void CoreLocationDataService::keepPlace() const
{
    if (!m_coordinates) {
        return;
    }
    QDir().mkpath(QFileInfo(cacheFile()).absolutePath());
    QSaveFile file(cacheFile());
    if (!file.open(QIODevice::WriteOnly)) {
        return;
    }
    const QJsonObject kept{{QStringLiteral("latitude"), m_coordinates->latitude()},
                           {QStringLiteral("longitude"), m_coordinates->longitude()},
                           {QStringLiteral("city"), m_cityName},
                           {QStringLiteral("country"), m_countryName},
                           {QStringLiteral("source"),
                            QString::fromLatin1(QMetaEnum::fromType<PlaceSource>().valueToKey(int(m_placeSource)))}};
    file.write(QJsonDocument(kept).toJson(QJsonDocument::Compact));
    file.commit(); // a cache: a failed write only costs the place at the next start
}

void CoreLocationDataService::loadKeptPlace()
{
    // A few hundred bytes, read before the first frame: the card names the place from the start.
    QFile file(cacheFile());
    if (file.size() > 64 * 1024 || !file.open(QIODevice::ReadOnly)) {
        return;
    }
    const QJsonObject kept = QJsonDocument::fromJson(file.readAll()).object();
    const QGeoCoordinate position(kept.value(u"latitude").toDouble(qQNaN()),
                                  kept.value(u"longitude").toDouble(qQNaN()));
    bool known = false;
    const auto source = PlaceSource(
        QMetaEnum::fromType<PlaceSource>().keyToValue(kept.value(u"source").toString().toLatin1().constData(), &known));
    if (!position.isValid() || !known || source == PlaceSource::none) {
        return;
    }
    if (source == PlaceSource::chosen && (!m_preferences || m_preferences->weatherPlace().name.isEmpty())) {
        return; // the user has cleared that city since
    }
    m_coordinates = position;
    m_cityName = kept.value(u"city").toString();
    m_countryName = kept.value(u"country").toString();
    m_placeSource = source;
}
