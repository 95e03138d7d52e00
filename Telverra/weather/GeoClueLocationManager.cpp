#include "GeoClueLocationManager.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QGeoPositionInfoSource>

namespace {

const QString service = QStringLiteral("org.freedesktop.GeoClue2");
const QString clientInterface = QStringLiteral("org.freedesktop.GeoClue2.Client");

// Calls a method and hands the reply to `next` on this object's thread.
void callAsync(const QDBusConnection &bus, const QDBusMessage &message, QObject *context,
               std::function<void(const QDBusMessage &)> next)
{
    auto *watcher = new QDBusPendingCallWatcher(bus.asyncCall(message), context);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, context, [watcher, next = std::move(next)] {
        watcher->deleteLater();
        next(watcher->reply());
    });
}

} // namespace

GeoClueLocationManager::GeoClueLocationManager(const QDBusConnection &bus, const QString &desktopId,
                                               QGeoPositionInfoSource *source, QObject *parent)
    : LocationManager(parent)
    , m_bus(bus)
    , m_desktopId(desktopId)
    , m_source(source)
{
    if (m_source) {
        m_source->setParent(this);
        // GeoClue has a position only some time after our client started: its first fix completes the
        // authorization, so the service reads it then.
        connect(m_source, &QGeoPositionInfoSource::positionUpdated, this, [this] {
            if (m_status == authorizedWhenInUse) {
                Q_EMIT authorizationChanged();
            }
        });
        connect(m_source, &QGeoPositionInfoSource::errorOccurred, this, [this](QGeoPositionInfoSource::Error error) {
            if (error != QGeoPositionInfoSource::NoError && error != QGeoPositionInfoSource::UpdateTimeoutError) {
                Q_EMIT failed(u"Location error " + QString::number(static_cast<int>(error)) + u": " +
                              m_source->sourceName());
            }
        });
    }
}

GeoClueLocationManager::~GeoClueLocationManager() = default;

void GeoClueLocationManager::requestWhenInUseAuthorization()
{
    if (m_requested) {
        return;
    }
    m_requested = true;
    const QDBusMessage getClient =
        QDBusMessage::createMethodCall(service, QStringLiteral("/org/freedesktop/GeoClue2/Manager"),
                                       QStringLiteral("org.freedesktop.GeoClue2.Manager"), QStringLiteral("GetClient"));
    callAsync(m_bus, getClient, this, [this](const QDBusMessage &reply) {
        if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty()) {
            failedWith(reply.errorName(), reply.errorMessage());
            return;
        }
        const QString client = reply.arguments().first().value<QDBusObjectPath>().path();
        QDBusMessage setId = QDBusMessage::createMethodCall(
            service, client, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Set"));
        setId << clientInterface << QStringLiteral("DesktopId") << QVariant::fromValue(QDBusVariant(m_desktopId));
        callAsync(m_bus, setId, this, [this, client](const QDBusMessage &setReply) {
            if (setReply.type() == QDBusMessage::ErrorMessage) {
                failedWith(setReply.errorName(), setReply.errorMessage());
                return;
            }
            const QDBusMessage start =
                QDBusMessage::createMethodCall(service, client, clientInterface, QStringLiteral("Start"));
            callAsync(m_bus, start, this, [this](const QDBusMessage &startReply) {
                if (startReply.type() == QDBusMessage::ErrorMessage) {
                    failedWith(startReply.errorName(), startReply.errorMessage());
                    return;
                }
                if (m_source) {
                    m_source->requestUpdate(60000);
                }
                answered(authorizedWhenInUse);
            });
        });
    });
}

void GeoClueLocationManager::answered(int status)
{
    m_status = status;
    Q_EMIT authorizationChanged();
}

void GeoClueLocationManager::failedWith(const QString &name, const QString &message)
{
    // The agent refusing us, and location turned off in the desktop's settings, both mean "not allowed".
    if (name == u"org.freedesktop.DBus.Error.AccessDenied" || message.contains(u"disabled", Qt::CaseInsensitive)) {
        answered(denied);
        return;
    }
    m_requested = false; // a later start-up may ask again
    Q_EMIT failed(name + u": " + message);
}

std::optional<QGeoCoordinate> GeoClueLocationManager::location() const
{
    if (!m_source) {
        return std::nullopt;
    }
    // Some plugins only keep the fixes of continuous updates as their last known position.
    const QGeoCoordinate coordinate = m_lastFix.isValid() ? m_lastFix : m_source->lastKnownPosition().coordinate();
    if (!coordinate.isValid()) {
        return std::nullopt;
    }
    return coordinate;
}

GeoClueLocationServices::GeoClueLocationServices()
    : GeoClueLocationServices(QDBusConnection::systemBus(), QStringLiteral("org.telverra.Telverra"), [] {
        return QGeoPositionInfoSource::createSource(
            QStringLiteral("geoclue2"), {{QStringLiteral("desktopId"), QStringLiteral("org.telverra.Telverra")}},
            nullptr);
    })
{}

GeoClueLocationServices::GeoClueLocationServices(const QDBusConnection &bus, const QString &desktopId,
                                                 SourceFactory sourceFactory)
    : m_bus(bus)
    , m_desktopId(desktopId)
    , m_sourceFactory(std::move(sourceFactory))
{}

bool GeoClueLocationServices::locationServicesEnabled() const
{
    if (!m_bus.isConnected() || !m_bus.interface()) {
        return false;
    }
    QDBusConnectionInterface *bus = m_bus.interface();
    return bus->isServiceRegistered(service).value() || bus->activatableServiceNames().value().contains(service);
}

std::unique_ptr<LocationManager> GeoClueLocationServices::makeManager()
{
    return std::make_unique<GeoClueLocationManager>(m_bus, m_desktopId, m_sourceFactory ? m_sourceFactory() : nullptr);
}
