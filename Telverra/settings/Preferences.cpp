#include "Preferences.h"

#include <QDir>
#include <QStandardPaths>

const PreferenceDefinition &preferenceDefinition(PreferenceKey key)
{
    return preferenceTable[static_cast<size_t>(key)];
}

Preferences::Preferences(const QString &filePath, QObject *parent)
    : QObject(parent)
    , m_settings(std::make_unique<QSettings>(filePath, QSettings::IniFormat))
{
    static_assert(preferenceTable.size() == static_cast<size_t>(PreferenceKey::quickActionIsSetForSkype) + 1);
}

Preferences::~Preferences() = default;

QString Preferences::defaultFilePath()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + u"/telverra/telverra.conf";
}

QString Preferences::filePath() const
{
    return m_settings->fileName();
}

bool Preferences::value(PreferenceKey key) const
{
    const PreferenceDefinition &definition = preferenceDefinition(key);
    m_settings->sync(); // pick up what another process wrote since the last read
    return m_settings->value(QLatin1StringView(definition.name), definition.defaultValue).toBool();
}

void Preferences::setValue(PreferenceKey key, bool value)
{
    const PreferenceDefinition &definition = preferenceDefinition(key);
    const QString name = QLatin1StringView(definition.name);
    m_settings->setValue(name, value);
    m_settings->sync();
    Q_EMIT valueChanged(name);
}

bool Preferences::boolValue(const QString &name) const
{
    for (const PreferenceDefinition &definition : preferenceTable) {
        if (name == QLatin1StringView(definition.name)) {
            return value(definition.key);
        }
    }
    return false;
}

void Preferences::setBoolValue(const QString &name, bool value)
{
    for (const PreferenceDefinition &definition : preferenceTable) {
        if (name == QLatin1StringView(definition.name)) {
            setValue(definition.key, value);
            return;
        }
    }
}

Preferences::WeatherPlace Preferences::weatherPlace() const
{
    m_settings->sync();
    WeatherPlace place{m_settings->value(QStringLiteral("weatherPlace")).toString().trimmed(),
                       m_settings->value(QStringLiteral("weatherPlaceCountry")).toString(),
                       {},
                       {}};
    bool latitudeRead = false;
    bool longitudeRead = false;
    const double latitude = m_settings->value(QStringLiteral("weatherPlaceLatitude")).toDouble(&latitudeRead);
    const double longitude = m_settings->value(QStringLiteral("weatherPlaceLongitude")).toDouble(&longitudeRead);
    if (latitudeRead && longitudeRead) {
        place.latitude = latitude;
        place.longitude = longitude;
    }
    return place;
}

void Preferences::setWeatherPlace(const WeatherPlace &place)
{
    const QString name = place.name.trimmed();
    if (name.isEmpty()) {
        for (const char *key :
             {"weatherPlace", "weatherPlaceCountry", "weatherPlaceLatitude", "weatherPlaceLongitude"}) {
            m_settings->remove(QLatin1StringView(key));
        }
    } else {
        m_settings->setValue(QStringLiteral("weatherPlace"), name);
        m_settings->setValue(QStringLiteral("weatherPlaceCountry"), place.country);
        if (place.latitude && place.longitude) {
            m_settings->setValue(QStringLiteral("weatherPlaceLatitude"), *place.latitude);
            m_settings->setValue(QStringLiteral("weatherPlaceLongitude"), *place.longitude);
        } else {
            m_settings->remove(QStringLiteral("weatherPlaceLatitude"));
            m_settings->remove(QStringLiteral("weatherPlaceLongitude"));
        }
    }
    m_settings->sync();
    Q_EMIT valueChanged(QStringLiteral("weatherPlace"));
}

bool Preferences::useEvolutionDataServer() const
{
    m_settings->sync();
    return m_settings->value(QStringLiteral("useEvolutionDataServer"), true).toBool();
}
