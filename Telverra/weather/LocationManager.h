#pragma once

#include <QGeoCoordinate>
#include <QObject>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

/// The system's location manager as the location service sees it: an authorization status numbered as the
/// platforms number it, a permission request, and the last position the system knows (never a fresh fix on demand).
class LocationManager : public QObject
{
    Q_OBJECT
public:
    enum AuthorizationStatus
    {
        notDetermined = 0,
        restricted = 1,
        denied = 2,
        authorizedAlways = 3,
        authorizedWhenInUse = 4,
    };

    using QObject::QObject;

    virtual int authorizationStatus() const = 0;
    virtual void requestWhenInUseAuthorization() = 0;
    virtual std::optional<QGeoCoordinate> location() const = 0;

Q_SIGNALS:
    void authorizationChanged();
    void failed(const QString &error);
};

/// Whether the system has location services at all, and the manager when it has.
class LocationServices
{
public:
    virtual ~LocationServices() = default;
    virtual bool locationServicesEnabled() const = 0;
    virtual std::unique_ptr<LocationManager> makeManager() = 0;
};

/// Country and locality of a position; either may be missing.
struct Placemark
{
    std::optional<QString> country;
    std::optional<QString> locality;
};

/// Turns positions into place names and place names into positions.
class Geocoder
{
public:
    using PlaceAnswer = std::function<void(const std::optional<QGeoCoordinate> &, const Placemark &)>;

    virtual ~Geocoder() = default;
    /// `done` gets the placemarks (never an empty list) or nothing on any failure; not called once `context` is gone.
    virtual void reverseGeocode(const QGeoCoordinate &position, QObject *context,
                                std::function<void(const std::optional<QList<Placemark>> &)> done) = 0;
    /// The position and names of the first place called `name`, or nothing.
    virtual void geocodePlace(const QString &name, QObject *context, PlaceAnswer done) = 0;
    /// The position and names of the city of a time zone ("Europe/Madrid": Madrid), or nothing; a geocoder that
    /// knows no time zones answers nothing.
    virtual void placeOfTimeZone(const QString &zoneId, QObject *context, PlaceAnswer done)
    {
        Q_UNUSED(zoneId);
        Q_UNUSED(context);
        done(std::nullopt, {});
    }
};
