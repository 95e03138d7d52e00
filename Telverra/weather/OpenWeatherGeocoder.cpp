#include "OpenWeatherGeocoder.h"

#include "common/StrictJson.h"
#include "settings/DeploymentSettings.h"
#include "weather/WeatherInfoDataService.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QLocale>
#include <QUrl>
#include <QUrlQuery>

OpenWeatherGeocoder::OpenWeatherGeocoder(QNetworkAccessManager &network, const DeploymentSettings &deployment)
    : m_network(network)
    , m_deployment(deployment)
{}

QString OpenWeatherGeocoder::baseUrl() const
{
    return m_deployment.baseUrl(QStringLiteral("WEATHER_API_BASE_URL"),
                                QString::fromLatin1(WeatherInfoDataService::defaultBaseUrl));
}

QString OpenWeatherGeocoder::key() const
{
    return m_deployment.value(QStringLiteral("WEATHER_API_KEY")).value_or(QString());
}

QString OpenWeatherGeocoder::countryName(const QString &isoCode)
{
    const QLocale::Territory territory = QLocale::codeToTerritory(isoCode);
    return territory == QLocale::AnyTerritory ? isoCode : QLocale::territoryToString(territory);
}

std::optional<QList<QPair<QGeoCoordinate, Placemark>>> OpenWeatherGeocoder::decode(const QByteArray &body)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(body, &error);
    if (error.error != QJsonParseError::NoError || !document.isArray()) {
        return std::nullopt;
    }
    StrictJson json;
    QList<QPair<QGeoCoordinate, Placemark>> places;
    for (const QJsonValue &value : document.array()) {
        const QJsonObject object = json.element(value);
        const double lat = json.number(object, QStringLiteral("lat"));
        const double lon = json.number(object, QStringLiteral("lon"));
        Placemark placemark;
        const QJsonValue country = object.value(QStringLiteral("country"));
        if (country.isString() && !country.toString().isEmpty()) {
            placemark.country = countryName(country.toString());
        }
        const QJsonValue name = object.value(QStringLiteral("name"));
        if (name.isString() && !name.toString().isEmpty()) {
            placemark.locality = name.toString();
        }
        const QGeoCoordinate position(lat, lon);
        if (!position.isValid()) {
            return std::nullopt; // a place off the globe: the answer is not one to trust
        }
        places.append({position, placemark});
    }
    if (!json.ok()) {
        return std::nullopt;
    }
    return places;
}

void OpenWeatherGeocoder::reverseGeocode(const QGeoCoordinate &position, QObject *context,
                                         std::function<void(const std::optional<QList<Placemark>> &)> done)
{
    const QUrl url(baseUrl() + u"/geo/1.0/reverse?lat=" + WeatherInfoDataService::coordinateText(position.latitude()) +
                       u"&lon=" + WeatherInfoDataService::coordinateText(position.longitude()) + u"&limit=1&appid=" +
                       QString::fromLatin1(QUrl::toPercentEncoding(key())),
                   QUrl::StrictMode);
    if (!isFetchableUrl(url)) {
        done(std::nullopt);
        return;
    }
    boundedGet(
        m_network, url, context,
        [done](const FetchResult &result) {
            const auto places = result.isSuccessStatus() ? decode(result.body) : std::nullopt;
            if (!places || places->isEmpty()) {
                done(std::nullopt);
                return;
            }
            QList<Placemark> placemarks;
            for (const auto &place : *places) {
                placemarks.append(place.second);
            }
            done(placemarks);
        },
        m_limits);
}

void OpenWeatherGeocoder::geocodePlace(
    const QString &name, QObject *context,
    std::function<void(const std::optional<QGeoCoordinate> &, const Placemark &)> done)
{
    QUrl url(baseUrl() + u"/geo/1.0/direct", QUrl::StrictMode);
    QUrlQuery query;
    query.addQueryItem(QStringLiteral("q"), QString::fromLatin1(QUrl::toPercentEncoding(name)));
    query.addQueryItem(QStringLiteral("limit"), QStringLiteral("1"));
    query.addQueryItem(QStringLiteral("appid"), QString::fromLatin1(QUrl::toPercentEncoding(key())));
    url.setQuery(query);
    if (!isFetchableUrl(url)) {
        done(std::nullopt, {});
        return;
    }
    boundedGet(
        m_network, url, context,
        [done](const FetchResult &result) {
            const auto places = result.isSuccessStatus() ? decode(result.body) : std::nullopt;
            if (!places || places->isEmpty()) {
                done(std::nullopt, {});
                return;
            }
            done(places->first().first, places->first().second);
        },
        m_limits);
}
