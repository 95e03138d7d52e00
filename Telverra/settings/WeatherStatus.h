#pragma once

#include <QObject>
#include <QPointer>
#include <QtQml/qqmlregistration.h>

class CoreLocationDataService;
class WeatherInfoDataService;

/// Why there is no weather, in a line the settings show: no key in Info.ini, the location service off or refused, or
/// an answer still awaited. Empty while there is weather.
class WeatherStatus : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QObject *weatherService READ weatherService WRITE setWeatherService NOTIFY servicesChanged)
    Q_PROPERTY(QObject *locationService READ locationService WRITE setLocationService NOTIFY servicesChanged)
    Q_PROPERTY(QString text READ text NOTIFY textChanged)
public:
    explicit WeatherStatus(QObject *parent = nullptr);

    QObject *weatherService() const;
    void setWeatherService(QObject *service);
    QObject *locationService() const;
    void setLocationService(QObject *service);
    QString text() const;

Q_SIGNALS:
    void servicesChanged();
    void textChanged();

private:
    QPointer<WeatherInfoDataService> m_weather;
    QPointer<CoreLocationDataService> m_location;
};
