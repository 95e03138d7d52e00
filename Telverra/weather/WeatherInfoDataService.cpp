#include "WeatherInfoDataService.h"

#include "common/Trace.h"
#include "settings/DeploymentSettings.h"
#include "weather/MetNorwayForecast.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocale>
#include <QPointer>
#include <QSaveFile>
#include <QStandardPaths>
#include <QTimeZone>
#include <QUrl>
#include <QtConcurrent>

#include <charconv>
#include <utility>

namespace {

// An HTTP date ("Sun, 22 Nov 2026 11:00:00 GMT"); invalid for anything else.
QDateTime httpDate(const QByteArray &text)
{
    QDateTime date =
        QLocale::c().toDateTime(QString::fromLatin1(text).trimmed(), QStringLiteral("ddd, dd MMM yyyy HH:mm:ss 'GMT'"));
    date.setTimeZone(QTimeZone::utc());
    return date;
}

} // namespace

WeatherInfoDataService::WeatherInfoDataService(QNetworkAccessManager &network, const DeploymentSettings &deployment,
                                               QObject *parent)
    : QObject(parent)
    , m_network(network)
    , m_deployment(deployment)
{
    getAPIKey();
    loadKept();
}

QString WeatherInfoDataService::cacheFile()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation) + u"/telverra/weather.json";
}

void WeatherInfoDataService::getAPIKey()
{
    const std::optional<QString> key = m_deployment.value(QStringLiteral("WEATHER_API_KEY"));
    if (key && !key->isEmpty()) {
        Trace::line(u"WEATHER_API_KEY found: '" + *key + u'\'');
        m_weatherApiKey = *key;
        return;
    }
    Trace::line(QStringLiteral("💥 Error !!! Weather API SECRET KEY cannot be found on system. Unable to continue with "
                               "Weather Data Service."));
    m_weatherApiKey.clear();
}

QString WeatherInfoDataService::coordinateText(double value)
{
    char buffer[64];
    const auto [end, error] = std::to_chars(buffer, buffer + sizeof buffer, value);
    QString text = QString::fromLatin1(buffer, error == std::errc() ? end - buffer : 0);
    if (std::isfinite(value) && !text.contains(u'.') && !text.contains(u'e')) {
        text += u".0";
    }
    return text;
}

QString WeatherInfoDataService::requestText(const QString &base, const QString &path, double lat, double lon,
                                            const QString &key)
{
    return base + path + u"?lat=" + coordinateText(lat) + u"&lon=" + coordinateText(lon) +
           u"&exclude=hourly,minutely&units=metric&lang=es_ES&appid=" + key;
}

std::optional<QByteArray> WeatherInfoDataService::handleOutput(const FetchResult &result)
{
    if (!result.isSuccessStatus()) {
        return std::nullopt;
    }
    return result.body;
}

void WeatherInfoDataService::getWeatherInfo(double lat, double lon)
{
    if (m_loadingKept) {
        m_waiting = qMakePair(lat, lon);
        return;
    }
    if (!m_weatherApiKey.isEmpty() && !m_keyRefused) {
        fetchOneCall(lat, lon);
    } else {
        fetchKeyless(lat, lon);
    }
}

void WeatherInfoDataService::fetchOneCall(double lat, double lon)
{
    const QString text = requestText(
        m_deployment.baseUrl(QStringLiteral("WEATHER_API_BASE_URL"), QString::fromLatin1(defaultBaseUrl)),
        m_deployment.value(QStringLiteral("WEATHER_ONECALL_PATH")).value_or(QString::fromLatin1(defaultOneCallPath)),
        lat, lon, m_weatherApiKey);
    const QUrl url(text, QUrl::StrictMode);
    if (!isFetchableUrl(url)) {
        return;
    }
    ++m_cancelables;
    boundedGet(
        m_network, url, this,
        [this, lat, lon](const FetchResult &result) {
            if (result.transferred && result.status == 401 && !m_keyRefused) {
                // The key has no One Call 3.0 subscription (2.5 is closed to every key): the keyless forecast.
                m_keyRefused = true;
                Q_EMIT keyRefusedChanged();
                fetchKeyless(lat, lon);
                return;
            }
            if (const std::optional<QByteArray> body = handleOutput(result)) {
                keep({WeatherProvider::oneCall, lat, lon, *body, {}, {}});
            }
        },
        m_limits);
}

void WeatherInfoDataService::fetchKeyless(double lat, double lon)
{
    using MetNorwayForecast::coordinateText;
    const bool samePlace = m_kept && m_kept->provider == WeatherProvider::metNorway &&
                           coordinateText(m_kept->lat) == coordinateText(lat) &&
                           coordinateText(m_kept->lon) == coordinateText(lon);
    const QDateTime now = QDateTime::currentDateTimeUtc();
    if (samePlace && m_kept->expires.isValid() && now < m_kept->expires) {
        publish(documentOf(*m_kept, now)); // the service asks not to be asked again before then
        return;
    }
    const QUrl url =
        MetNorwayForecast::requestUrl(m_deployment.baseUrl(QStringLiteral("MET_NORWAY_BASE_URL"),
                                                           QString::fromLatin1(MetNorwayForecast::defaultBaseUrl)),
                                      lat, lon);
    if (!isFetchableUrl(url)) {
        return;
    }
    QList<QPair<QByteArray, QByteArray>> headers;
    if (samePlace && !m_kept->lastModified.isEmpty()) {
        headers.append({QByteArrayLiteral("If-Modified-Since"), m_kept->lastModified});
    }
    ++m_cancelables;
    boundedGet(
        m_network, url, this,
        [this, lat, lon](const FetchResult &result) {
            const QDateTime expires = httpDate(result.header("Expires"));
            if (result.transferred && result.status == 304 && m_kept &&
                m_kept->provider == WeatherProvider::metNorway) {
                // Unchanged: the kept forecast holds until the new expiry, and the hour moved on.
                Kept kept = *m_kept;
                kept.expires = expires;
                keep(std::move(kept));
                return;
            }
            if (const std::optional<QByteArray> body = handleOutput(result)) {
                keep({WeatherProvider::metNorway, lat, lon, *body, expires, result.header("Last-Modified")});
            }
        },
        m_limits, headers);
}

std::optional<WeatherInfo> WeatherInfoDataService::documentOf(const Kept &kept, const QDateTime &now)
{
    if (kept.provider == WeatherProvider::metNorway) {
        return MetNorwayForecast::convert(kept.body, now);
    }
    return WeatherInfo::decode(kept.body);
}

bool WeatherInfoDataService::keep(Kept kept)
{
    std::optional<WeatherInfo> info = documentOf(kept, QDateTime::currentDateTimeUtc());
    if (!info) {
        return false;
    }
    const QJsonObject stored{
        {QStringLiteral("provider"),
         kept.provider == WeatherProvider::metNorway ? QStringLiteral("metNorway") : QStringLiteral("oneCall")},
        {QStringLiteral("lat"), kept.lat},
        {QStringLiteral("lon"), kept.lon},
        {QStringLiteral("expires"), kept.expires.isValid() ? kept.expires.toSecsSinceEpoch() : 0},
        {QStringLiteral("lastModified"), QString::fromLatin1(kept.lastModified)},
        {QStringLiteral("body"), QString::fromUtf8(kept.body)},
    };
    m_kept = std::move(kept);
    QDir().mkpath(QFileInfo(cacheFile()).absolutePath());
    QSaveFile file(cacheFile());
    if (file.open(QIODevice::WriteOnly)) {
        file.write(QJsonDocument(stored).toJson(QJsonDocument::Compact));
        file.commit(); // a cache: a failed write only costs a request at the next start
    }
    publish(std::move(info));
    return true;
}

void WeatherInfoDataService::publish(std::optional<WeatherInfo> info)
{
    if (!info) {
        return;
    }
    m_weatherInfo = std::move(info);
    Q_EMIT weatherInfoChanged();
}

void WeatherInfoDataService::loadKept()
{
    const QString file = cacheFile();
    if (!QFile::exists(file)) {
        return;
    }
    // Read and converted away from the GUI thread, so that the window's first frame does not wait for it.
    m_loadingKept = true;
    QPointer<WeatherInfoDataService> self(this);
    (void)QtConcurrent::run([self, file] {
        std::optional<Kept> kept;
        std::optional<WeatherInfo> info;
        QFile input(file);
        if (input.size() <= 4 * (1 << 20) && input.open(QIODevice::ReadOnly)) {
            const QJsonObject stored = QJsonDocument::fromJson(input.readAll()).object();
            Kept read;
            read.provider = stored.value(u"provider").toString() == u"metNorway" ? WeatherProvider::metNorway
                                                                                 : WeatherProvider::oneCall;
            read.lat = stored.value(u"lat").toDouble();
            read.lon = stored.value(u"lon").toDouble();
            read.body = stored.value(u"body").toString().toUtf8();
            if (const qint64 expires = stored.value(u"expires").toInteger(); expires > 0) {
                read.expires = QDateTime::fromSecsSinceEpoch(expires, QTimeZone::utc());
            }
            read.lastModified = stored.value(u"lastModified").toString().toLatin1();
            info = documentOf(read, QDateTime::currentDateTimeUtc());
            if (info) {
                kept = std::move(read);
            }
        }
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [self, kept = std::move(kept), info = std::move(info)]() mutable {
                if (!self) {
                    return;
                }
                self->m_loadingKept = false;
                if (kept && !self->m_kept) {
                    self->m_kept = std::move(kept);
                    self->publish(std::move(info));
                }
                if (const auto waiting = std::exchange(self->m_waiting, std::nullopt)) {
                    self->getWeatherInfo(waiting->first, waiting->second);
                }
            },
            Qt::QueuedConnection);
    });
}
