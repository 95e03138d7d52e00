#pragma once

#include "weather/LocationManager.h"

/// Place names without a network: the nearest city of the offline city database names a position, a name finds its
/// city, and a time zone its city. Answers once the database is read (on a worker thread, at the first question).
class CityGeocoder : public Geocoder
{
public:
    /// A position with no city within reach (at sea) is answered with a placemark without names.
    void reverseGeocode(const QGeoCoordinate &position, QObject *context,
                        std::function<void(const std::optional<QList<Placemark>> &)> done) override;
    void geocodePlace(const QString &name, QObject *context, PlaceAnswer done) override;
    void placeOfTimeZone(const QString &zoneId, QObject *context, PlaceAnswer done) override;
};
