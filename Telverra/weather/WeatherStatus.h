#pragma once

#include <QObject>

class CoreLocationDataService;
class WeatherInfoDataService;

/// What the settings say about the weather, in a line: that One Call refused the key (the keyless forecast is used
/// instead), or why there is no weather yet (the location service off or refused, a position or an answer still
/// awaited). Empty while there is weather and nothing to tell.
class WeatherStatus : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString text READ text NOTIFY textChanged)
public:
    WeatherStatus(const WeatherInfoDataService &weather, const CoreLocationDataService &location,
                  QObject *parent = nullptr);

    QString text() const;

Q_SIGNALS:
    void textChanged();

private:
    const WeatherInfoDataService &m_weather;
    const CoreLocationDataService &m_location;
};
