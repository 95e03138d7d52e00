#pragma once

#include "common/BoundedFetch.h"
#include "weather/WeatherInfo.h"

#include <QDateTime>
#include <QObject>

#include <optional>

class DeploymentSettings;
class QNetworkAccessManager;

/// Fetches the current conditions and the daily forecast for a position and publishes the last document that
/// decoded. With a key it asks the One Call service; without one, or once One Call has refused the key, MET
/// Norway's keyless forecast, asked again only after the time its answer expires (then only whether it changed).
/// The last answer is kept on disk and published at start-up, before any request. A failed request changes nothing
/// and says nothing.
class WeatherInfoDataService : public QObject
{
    Q_OBJECT
public:
    /// The provider's host and path, unless Info.ini names others (WEATHER_API_BASE_URL, WEATHER_ONECALL_PATH).
    /// One Call 2.5 is closed: 3.0, whose document holds everything read here, is the default.
    static constexpr const char *defaultBaseUrl = "https://api.openweathermap.org";
    static constexpr const char *defaultOneCallPath = "/data/3.0/onecall";

    WeatherInfoDataService(QNetworkAccessManager &network, const DeploymentSettings &deployment,
                           QObject *parent = nullptr);

    const std::optional<WeatherInfo> &weatherInfo() const { return m_weatherInfo; }
    const QString &weatherApiKey() const { return m_weatherApiKey; }
    /// One per request ever made; never shrinks.
    qsizetype cancelables() const { return m_cancelables; }
    /// Whether One Call answered 401 to the key (no One Call 3.0 subscription): the keyless forecast is used since.
    bool keyRefused() const { return m_keyRefused; }
    /// Limits of every request (tests shorten the deadline).
    void setFetchLimits(FetchLimits limits) { m_limits = limits; }
    /// Where the last answer is kept between runs ($XDG_CACHE_HOME/telverra/weather.json).
    static QString cacheFile();

    /// Reads WEATHER_API_KEY from Info.ini and says whether it was found.
    void getAPIKey();
    /// Starts one request (or none, while the kept keyless answer is still valid) and returns at once; the document
    /// arrives later through weatherInfoChanged().
    void getWeatherInfo(double lat, double lon);

    /// The request text for a position (`base` without a trailing slash).
    static QString requestText(const QString &base, const QString &path, double lat, double lon, const QString &key);
    /// A coordinate in the shortest form that reads back as the same double; integral values keep ".0".
    static QString coordinateText(double value);
    /// The response check: the body of an HTTP answer with a 2xx status, else nothing.
    static std::optional<QByteArray> handleOutput(const FetchResult &result);

Q_SIGNALS:
    void weatherInfoChanged();
    void keyRefusedChanged();

private:
    // The last answer, as it came, with what is needed to ask again politely.
    struct Kept
    {
        WeatherProvider provider = WeatherProvider::oneCall;
        double lat = 0;
        double lon = 0;
        QByteArray body;
        QDateTime expires;
        QByteArray lastModified;
    };

    void fetchOneCall(double lat, double lon);
    void fetchKeyless(double lat, double lon);
    // Keeps an answer (on disk too) and publishes its document; false when it does not decode.
    bool keep(Kept kept);
    void publish(std::optional<WeatherInfo> info);
    void loadKept();
    static std::optional<WeatherInfo> documentOf(const Kept &kept, const QDateTime &now);

    QNetworkAccessManager &m_network;
    const DeploymentSettings &m_deployment;
    std::optional<WeatherInfo> m_weatherInfo;
    QString m_weatherApiKey;
    qsizetype m_cancelables = 0;
    FetchLimits m_limits;
    bool m_keyRefused = false;
    std::optional<Kept> m_kept;
    // While the kept answer is read, a request waits for it (its expiry decides whether to ask at all).
    bool m_loadingKept = false;
    std::optional<QPair<double, double>> m_waiting;
};
