#pragma once

#include "common/BoundedFetch.h"
#include "weather/WeatherInfo.h"

#include <QObject>

#include <optional>

class DeploymentSettings;
class QNetworkAccessManager;

/// Fetches the current conditions and the daily forecast for a position from the One Call service and publishes
/// the last document that decoded. A failed request changes nothing and says nothing.
class WeatherInfoDataService : public QObject
{
    Q_OBJECT
public:
    /// The provider's host and path, unless Info.ini names others (WEATHER_API_BASE_URL, WEATHER_ONECALL_PATH).
    static constexpr const char *defaultBaseUrl = "https://api.openweathermap.org";
    static constexpr const char *defaultOneCallPath = "/data/2.5/onecall";

    WeatherInfoDataService(QNetworkAccessManager &network, const DeploymentSettings &deployment,
                           QObject *parent = nullptr);

    const std::optional<WeatherInfo> &weatherInfo() const { return m_weatherInfo; }
    const QString &weatherApiKey() const { return m_weatherApiKey; }
    /// One per request ever made; never shrinks.
    qsizetype cancelables() const { return m_cancelables; }
    /// Limits of every request (tests shorten the deadline).
    void setFetchLimits(FetchLimits limits) { m_limits = limits; }

    /// Reads WEATHER_API_KEY from Info.ini and says whether it was found.
    void getAPIKey();
    /// Starts one request and returns at once; the document arrives later through weatherInfoChanged().
    void getWeatherInfo(double lat, double lon);

    /// The request text for a position (`base` without a trailing slash).
    static QString requestText(const QString &base, const QString &path, double lat, double lon, const QString &key);
    /// A coordinate in the shortest form that reads back as the same double; integral values keep ".0".
    static QString coordinateText(double value);
    /// The response check: the body of an HTTP answer with a 2xx status, else nothing.
    static std::optional<QByteArray> handleOutput(const FetchResult &result);

Q_SIGNALS:
    void weatherInfoChanged();

private:
    QNetworkAccessManager &m_network;
    const DeploymentSettings &m_deployment;
    std::optional<WeatherInfo> m_weatherInfo;
    QString m_weatherApiKey;
    qsizetype m_cancelables = 0;
    FetchLimits m_limits;
};
