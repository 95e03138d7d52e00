#pragma once

#include "weather/LocationManager.h"

#include <QGeoCoordinate>
#include <QObject>

#include <memory>
#include <optional>

class Preferences;

/// Where the machine is: the coordinates the weather needs, the city and country the weather card names, and a text
/// for the user when location cannot be used. Reads the system's last known position at start-up and at every
/// authorization change; when the system gives no position, the place chosen in the settings is used instead.
class CoreLocationDataService : public QObject
{
    Q_OBJECT
public:
    CoreLocationDataService(LocationServices &services, Geocoder &geocoder, Preferences *preferences = nullptr,
                            QObject *parent = nullptr);
    ~CoreLocationDataService() override;

    const std::optional<QGeoCoordinate> &coordinates() const { return m_coordinates; }
    const QString &cityName() const { return m_cityName; }
    const QString &countryName() const { return m_countryName; }
    const std::optional<QString> &permissionError() const { return m_permissionError; }
    LocationManager *locationManager() const { return m_locationManager.get(); }

    /// The start-up check: services off stop here with their text; otherwise a manager and the authorization check.
    void startUp();
    /// Reads the status and acts on it; runs again at every authorization change.
    void checkAuthorization();

Q_SIGNALS:
    void coordinatesChanged();
    void cityNameChanged();
    void countryNameChanged();
    void permissionErrorChanged();

private:
    // Publishes the last known position and looks up its names; false when there is none.
    bool handlePosition();
    void setPermissionError(const QString &text);
    void setPlace(const Placemark &placemark);
    // The settings' place, when the system gives no position and one is set.
    void useManualPlace();

    LocationServices &m_services;
    Geocoder &m_geocoder;
    Preferences *m_preferences;
    std::optional<QGeoCoordinate> m_coordinates;
    QString m_cityName;
    QString m_countryName;
    std::optional<QString> m_permissionError;
    std::unique_ptr<LocationManager> m_locationManager;
};
