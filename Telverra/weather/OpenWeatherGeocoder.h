#pragma once

#include "common/BoundedFetch.h"
#include "weather/LocationManager.h"

class DeploymentSettings;
class QNetworkAccessManager;

/// Place names from the weather provider's geocoding (the same key and host as the weather): reverse for a position,
/// direct for a place name. The ISO country code it answers becomes the country's name.
class OpenWeatherGeocoder : public Geocoder
{
public:
    OpenWeatherGeocoder(QNetworkAccessManager &network, const DeploymentSettings &deployment);

    void reverseGeocode(const QGeoCoordinate &position, QObject *context,
                        std::function<void(const std::optional<QList<Placemark>> &)> done) override;
    void geocodePlace(const QString &name, QObject *context,
                      std::function<void(const std::optional<QGeoCoordinate> &, const Placemark &)> done) override;

    /// The country name of an ISO 3166 code ("ES" → "Spain"); an unknown code is kept as it is.
    static QString countryName(const QString &isoCode);
    /// The places of a geocoding answer with their positions; nothing for a body of another shape or with a place off
    /// the globe.
    static std::optional<QList<QPair<QGeoCoordinate, Placemark>>> decode(const QByteArray &body);

    void setFetchLimits(FetchLimits limits) { m_limits = limits; }

private:
    QString baseUrl() const;
    QString key() const;

    QNetworkAccessManager &m_network;
    const DeploymentSettings &m_deployment;
    FetchLimits m_limits;
};
