#pragma once

#include "weather/LocationManager.h"

#include <QDBusConnection>
#include <QPointer>

#include <functional>

class QGeoPositionInfoSource;

/// The location manager over GeoClue: its answer to our client's Start() is the authorization (granted, or refused
/// by the agent, or location turned off), and the position source gives the last known position.
class GeoClueLocationManager : public LocationManager
{
    Q_OBJECT
public:
    /// `source` may be null (no position plugin); the manager owns it.
    GeoClueLocationManager(const QDBusConnection &bus, const QString &desktopId, QGeoPositionInfoSource *source,
                           QObject *parent = nullptr);
    ~GeoClueLocationManager() override;

    int authorizationStatus() const override { return m_status; }
    void requestWhenInUseAuthorization() override;
    std::optional<QGeoCoordinate> location() const override;

private:
    void answered(int status);
    void failedWith(const QString &name, const QString &message);

    QDBusConnection m_bus;
    QString m_desktopId;
    QGeoPositionInfoSource *m_source;
    QGeoCoordinate m_lastFix;
    int m_status = notDetermined;
    bool m_requested = false;
};

/// Location services on this desktop: on when GeoClue is on the bus (running or activatable).
class GeoClueLocationServices : public LocationServices
{
public:
    using SourceFactory = std::function<QGeoPositionInfoSource *()>;

    /// The system bus, the application id, and the geoclue2 position plugin.
    GeoClueLocationServices();
    GeoClueLocationServices(const QDBusConnection &bus, const QString &desktopId, SourceFactory sourceFactory);

    bool locationServicesEnabled() const override;
    std::unique_ptr<LocationManager> makeManager() override;

private:
    QDBusConnection m_bus;
    QString m_desktopId;
    SourceFactory m_sourceFactory;
};
