#include "WeatherInfoDataService.h"

#include "common/Trace.h"
#include "settings/DeploymentSettings.h"

#include <QUrl>

#include <charconv>

WeatherInfoDataService::WeatherInfoDataService(QNetworkAccessManager &network, const DeploymentSettings &deployment,
                                               QObject *parent)
    : QObject(parent)
    , m_network(network)
    , m_deployment(deployment)
{
    getAPIKey();
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
        [this](const FetchResult &result) {
            const std::optional<QByteArray> body = handleOutput(result);
            if (!body) {
                return;
            }
            std::optional<WeatherInfo> info = WeatherInfo::decode(*body);
            if (!info) {
                return;
            }
            m_weatherInfo = std::move(info);
            Q_EMIT weatherInfoChanged();
        },
        m_limits);
}
