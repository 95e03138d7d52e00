#include "CoreLocationDataService.h"

#include "common/Trace.h"
#include "settings/Preferences.h"

CoreLocationDataService::CoreLocationDataService(LocationServices &services, Geocoder &geocoder,
                                                 Preferences *preferences, QObject *parent)
    : QObject(parent)
    , m_services(services)
    , m_geocoder(geocoder)
    , m_preferences(preferences)
{
    startUp();
}

CoreLocationDataService::~CoreLocationDataService() = default;

void CoreLocationDataService::startUp()
{
    if (!m_services.locationServicesEnabled()) {
        setPermissionError(QStringLiteral("Show an alert letting the user know Location Services are not activated, "
                                          "and must be turn-on on the Settings app."));
        Trace::line(*m_permissionError);
        useManualPlace();
        return;
    }
    // A new manager each time: it reads the system's newest position (and any change of mind about permission).
    m_locationManager = m_services.makeManager();
    connect(m_locationManager.get(), &LocationManager::authorizationChanged, this,
            &CoreLocationDataService::checkAuthorization);
    connect(m_locationManager.get(), &LocationManager::failed, this, [](const QString &error) { Trace::line(error); });
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
            useManualPlace();
            break;
        case LocationManager::denied:
            setPermissionError(QStringLiteral(
                "Show an alert !!! Location Services are not activated, and must be turn-on on the Settings app."));
            useManualPlace();
            break;
        case LocationManager::authorizedAlways:
        case LocationManager::authorizedWhenInUse:
            if (!handlePosition()) {
                useManualPlace();
                return; // no position yet: nothing changes and nothing is said
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
    m_coordinates = position;
    Q_EMIT coordinatesChanged();
    m_geocoder.reverseGeocode(*position, this, [this](const std::optional<QList<Placemark>> &placemarks) {
        if (placemarks && !placemarks->isEmpty()) {
            setPlace(placemarks->first());
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

void CoreLocationDataService::useManualPlace()
{
    const QString place = m_preferences ? m_preferences->weatherPlace().trimmed() : QString();
    if (place.isEmpty()) {
        return;
    }
    m_geocoder.geocodePlace(place, this, [this](const std::optional<QGeoCoordinate> &position, const Placemark &names) {
        if (!position) {
            return;
        }
        m_coordinates = position;
        Q_EMIT coordinatesChanged();
        setPlace(names);
    });
}
