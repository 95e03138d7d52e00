#pragma once

#include "weather/LocationManager.h"

#include <QGeoCoordinate>
#include <QObject>
#include <QTimer>

#include <memory>
#include <optional>

class Preferences;

/// Where the machine is: the coordinates the weather needs, the city and country the weather card names, and a text
/// for the user when location cannot be used. The place comes, in this order, from the city the user chose, from the
/// system's last known position (read at start-up and at every authorization change, named by the geocoder), or,
/// when the system gives none within a time limit, from the time zone's city, marked as a guess. The last place is
/// kept on disk and published at construction, before anything is asked.
class CoreLocationDataService : public QObject
{
    Q_OBJECT
public:
    /// Where the published place comes from.
    enum class PlaceSource
    {
        none,
        located,
        chosen,
        guessed,
    };
    Q_ENUM(PlaceSource)

    CoreLocationDataService(LocationServices &services, Geocoder &geocoder, Preferences *preferences = nullptr,
                            QObject *parent = nullptr);
    ~CoreLocationDataService() override;

    const std::optional<QGeoCoordinate> &coordinates() const { return m_coordinates; }
    const QString &cityName() const { return m_cityName; }
    const QString &countryName() const { return m_countryName; }
    const std::optional<QString> &permissionError() const { return m_permissionError; }
    LocationManager *locationManager() const { return m_locationManager.get(); }
    PlaceSource placeSource() const { return m_placeSource; }

    /// The start-up: the chosen city when there is one; else the system's location services (off: their text and
    /// the fallback), a manager and the authorization check.
    void startUp();
    /// Reads the status and acts on it; runs again at every authorization change.
    void checkAuthorization();

    /// Keeps the user's city in the preferences and uses it, instead of the system's position, until cleared.
    void chooseCity(const QString &name, const QString &country, const QGeoCoordinate &position);
    /// Forgets the chosen city and runs the start-up again.
    void clearChosenCity();
    /// How long a start-up waits for the system's position before the fallback (10 s; tests shorten it).
    void setLocateTimeLimit(int milliseconds) { m_locateLimit.setInterval(milliseconds); }
    /// Where the last place is kept between runs ($XDG_CACHE_HOME/telverra/place.json).
    static QString cacheFile();

Q_SIGNALS:
    void coordinatesChanged();
    void cityNameChanged();
    void countryNameChanged();
    void permissionErrorChanged();
    void placeSourceChanged();

private:
    // Publishes the last known position and looks up its names; false when there is none.
    bool handlePosition();
    void setPermissionError(const QString &text);
    void setPlace(const Placemark &placemark);
    void setPlaceSource(PlaceSource source);
    void publish(const QGeoCoordinate &position, const Placemark &names, PlaceSource source);
    // The chosen city, when there is one: published (or looked up by its name), and true.
    bool useChosenCity();
    // The system gave no position: a place it gave before stays; else the time zone's city, as a guess.
    void fallBack();
    void keepPlace() const;
    void loadKeptPlace();

    LocationServices &m_services;
    Geocoder &m_geocoder;
    Preferences *m_preferences;
    std::optional<QGeoCoordinate> m_coordinates;
    QString m_cityName;
    QString m_countryName;
    std::optional<QString> m_permissionError;
    std::unique_ptr<LocationManager> m_locationManager;
    PlaceSource m_placeSource = PlaceSource::none;
    QTimer m_locateLimit;
    // Each new place asked for; an answer about an older one is dropped.
    quint64 m_generation = 0;
    int m_startUps = 0;
};
