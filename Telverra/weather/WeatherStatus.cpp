#include "WeatherStatus.h"

#include "weather/CoreLocationDataService.h"
#include "weather/WeatherInfoDataService.h"

WeatherStatus::WeatherStatus(const WeatherInfoDataService &weather, const CoreLocationDataService &location,
                             QObject *parent)
    : QObject(parent)
    , m_weather(weather)
    , m_location(location)
{
    for (auto changed : {&WeatherInfoDataService::weatherInfoChanged, &WeatherInfoDataService::keyRefusedChanged}) {
        connect(&weather, changed, this, &WeatherStatus::textChanged);
    }
    for (auto changed :
         {&CoreLocationDataService::coordinatesChanged, &CoreLocationDataService::permissionErrorChanged}) {
        connect(&location, changed, this, &WeatherStatus::textChanged);
    }
}

QString WeatherStatus::text() const
{
    if (m_weather.keyRefused()) {
        return tr("This key has no One Call 3.0 subscription. The weather comes from MET Norway instead.");
    }
    if (m_weather.weatherInfo()) {
        return {};
    }
    if (!m_location.coordinates()) {
        if (!m_location.permissionError().value_or(QString()).isEmpty()) {
            return tr("No weather: the desktop's location service is off or refused Telverra. Choose your city "
                      "above.");
        }
        return tr("No weather yet: waiting for a position from the location service, or choose your city above.");
    }
    return tr("No weather yet: the weather service has not answered.");
}
