#pragma once

#include <QObject>
#include <QSettings>
#include <QString>

#include <array>
#include <memory>
#include <optional>

/// Every preference the program keeps; all are booleans.
enum class PreferenceKey
{
    useChromeAsDefaultBrowser,
    copyNumberURLToClipBoard,
    fixedQuoteOnStartup,
    updateWeatherInfoEveryHour,
    quickActionIsSetForPhoneCalls,
    quickActionIsSetForText,
    quickActionIsSetForEmails,
    quickActionIsSetForFacetimeCalls,
    quickActionIsSetForFacetimeAudioCalls,
    quickActionIsSetForSkype,
};

struct PreferenceDefinition
{
    PreferenceKey key;
    const char *name;
    bool defaultValue;
};

/// The one table of keys and defaults: every reader goes through it, so a key never written reads the same everywhere.
inline constexpr std::array<PreferenceDefinition, 10> preferenceTable{{
    {PreferenceKey::useChromeAsDefaultBrowser, "useChromeAsDefaultBrowser", true},
    {PreferenceKey::copyNumberURLToClipBoard, "copyNumberURLToClipBoard", true},
    {PreferenceKey::fixedQuoteOnStartup, "fixedQuoteOnStartup", false},
    {PreferenceKey::updateWeatherInfoEveryHour, "updateWeatherInfoEveryHour", true},
    {PreferenceKey::quickActionIsSetForPhoneCalls, "quickActionIsSetForPhoneCalls", true},
    {PreferenceKey::quickActionIsSetForText, "quickActionIsSetForText", true},
    {PreferenceKey::quickActionIsSetForEmails, "quickActionIsSetForEmails", true},
    {PreferenceKey::quickActionIsSetForFacetimeCalls, "quickActionIsSetForFacetimeCalls", false},
    {PreferenceKey::quickActionIsSetForFacetimeAudioCalls, "quickActionIsSetForFacetimeAudioCalls", false},
    {PreferenceKey::quickActionIsSetForSkype, "quickActionIsSetForSkype", false},
}};

const PreferenceDefinition &preferenceDefinition(PreferenceKey key);

/// The user's preference store: an INI file at an explicit path, read again at every use so that a change made
/// elsewhere (the settings window, another process) takes effect on the next read.
class Preferences : public QObject
{
    Q_OBJECT
public:
    explicit Preferences(const QString &filePath, QObject *parent = nullptr);
    ~Preferences() override;

    /// $XDG_CONFIG_HOME/telverra/telverra.conf
    static QString defaultFilePath();

    QString filePath() const;
    bool value(PreferenceKey key) const;
    void setValue(PreferenceKey key, bool value);

    /// By key name, for QML; an unknown name reads false and is not written.
    Q_INVOKABLE bool boolValue(const QString &name) const;
    Q_INVOKABLE void setBoolValue(const QString &name, bool value);

    /// The city the user chose for the weather: its name (key "weatherPlace", empty for none), with the country and
    /// position it was chosen with ("weatherPlaceCountry", "weatherPlaceLatitude", "weatherPlaceLongitude"). A name
    /// written into the file by hand has no position.
    struct WeatherPlace
    {
        QString name;
        QString country;
        std::optional<double> latitude;
        std::optional<double> longitude;
    };
    WeatherPlace weatherPlace() const;
    /// Keeps the city; one with an empty name clears it.
    void setWeatherPlace(const WeatherPlace &place);

    /// Whether the address book takes in Evolution Data Server's books (key "useEvolutionDataServer", default true),
    /// read when the address book is opened.
    bool useEvolutionDataServer() const;

Q_SIGNALS:
    void valueChanged(const QString &name);

private:
    std::unique_ptr<QSettings> m_settings;
};
