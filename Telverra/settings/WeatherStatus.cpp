#include "WeatherStatus.h"

#include "weather/CoreLocationDataService.h"
#include "weather/WeatherInfoDataService.h"

WeatherStatus::WeatherStatus(QObject *parent)
    : QObject(parent)
{}

QObject *WeatherStatus::weatherService() const
{
    return m_weather;
}

void WeatherStatus::setWeatherService(QObject *service)
{
    m_weather = qobject_cast<WeatherInfoDataService *>(service);
    if (m_weather) {
        connect(m_weather, &WeatherInfoDataService::weatherInfoChanged, this, &WeatherStatus::textChanged,
                Qt::UniqueConnection);
    }
    Q_EMIT servicesChanged();
    Q_EMIT textChanged();
}

QObject *WeatherStatus::locationService() const
{
    return m_location;
}

void WeatherStatus::setLocationService(QObject *service)
{
    m_location = qobject_cast<CoreLocationDataService *>(service);
    if (m_location) {
        connect(m_location, &CoreLocationDataService::coordinatesChanged, this, &WeatherStatus::textChanged,
                Qt::UniqueConnection);
        connect(m_location, &CoreLocationDataService::permissionErrorChanged, this, &WeatherStatus::textChanged,
                Qt::UniqueConnection);
    }
    Q_EMIT servicesChanged();
    Q_EMIT textChanged();
}

QString WeatherStatus::text() const
{
    if (!m_weather || !m_location) {
        return {};
    }
    if (m_weather->weatherInfo()) {
        return {};
    }
    if (m_weather->weatherApiKey().isEmpty()) {
        return QStringLiteral("No weather: Info.ini holds no WEATHER_API_KEY. The README tells where the key goes.");
    }
    if (!m_location->coordinates()) {
        if (!m_location->permissionError().value_or(QString()).isEmpty()) {
            return QStringLiteral("No weather: the desktop's location service is off or refused Telverra. Name a "
                                  "place above to use it instead.");
        }
        return QStringLiteral("No weather yet: waiting for a position from the location service or the place above.");
    }
    return QStringLiteral("No weather yet: the weather service has not answered.");
}
