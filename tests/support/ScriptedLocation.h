#pragma once

#include "weather/LocationManager.h"

#include <QPointer>

// Location services whose answers a test sets: the platform's permission dialogs and fixes cannot run here.

// A location manager whose answers the test sets.
class ScriptedManager : public LocationManager
{
public:
    int status = notDetermined;
    std::optional<QGeoCoordinate> position;
    int requests = 0;

    int authorizationStatus() const override { return status; }
    void requestWhenInUseAuthorization() override { ++requests; }
    std::optional<QGeoCoordinate> location() const override { return position; }
    void change(int newStatus)
    {
        status = newStatus;
        Q_EMIT authorizationChanged();
    }
};

class ScriptedServices : public LocationServices
{
public:
    bool enabled = true;
    int status = LocationManager::notDetermined;
    std::optional<QGeoCoordinate> position;
    QPointer<ScriptedManager> last;

    bool locationServicesEnabled() const override { return enabled; }
    std::unique_ptr<LocationManager> makeManager() override
    {
        auto manager = std::make_unique<ScriptedManager>();
        manager->status = status;
        manager->position = position;
        last = manager.get();
        return manager;
    }
};

class ScriptedGeocoder : public Geocoder
{
public:
    std::optional<QList<Placemark>> answer = QList<Placemark>{{u"Spain"_qs, u"La Laguna"_qs}};
    QList<QGeoCoordinate> asked;
    QStringList places;

    /// Answers `answer` on the next turn of the event loop.
    void reverseGeocode(const QGeoCoordinate &position, QObject *context,
                        std::function<void(const std::optional<QList<Placemark>> &)> done) override;
    /// Every place is Madrid.
    void geocodePlace(const QString &name, QObject *context,
                      std::function<void(const std::optional<QGeoCoordinate> &, const Placemark &)> done) override;
};
