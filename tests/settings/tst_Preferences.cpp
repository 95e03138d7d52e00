#include "settings/DeploymentSettings.h"
#include "settings/Preferences.h"
#include "support/TestHome.h"

#include <QFile>
#include <QSignalSpy>
#include <QTest>

class tst_Preferences : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void defaults()
    {
        Preferences preferences(m_home.configHome() + u"/fresh.conf");
        for (const char *on :
             {"useChromeAsDefaultBrowser", "copyNumberURLToClipBoard", "updateWeatherInfoEveryHour",
              "quickActionIsSetForPhoneCalls", "quickActionIsSetForText", "quickActionIsSetForEmails"}) {
            QVERIFY2(preferences.boolValue(QLatin1StringView(on)), on);
        }
        for (const char *off : {"fixedQuoteOnStartup", "quickActionIsSetForFacetimeCalls",
                                "quickActionIsSetForFacetimeAudioCalls", "quickActionIsSetForSkype", "noSuchKey"}) {
            QVERIFY2(!preferences.boolValue(QLatin1StringView(off)), off);
        }
        QVERIFY2(!QFile::exists(preferences.filePath()), "reading defaults writes nothing");
    }

    // Set by name, as the settings window does; read by key, in another instance and another process.
    void writtenValuesSurviveAndAreSeenElsewhere()
    {
        // A QString, not a QStringBuilder: GCC 12 warns (-Wstringop-overflow) on the builder inside QCOMPARE at -O2.
        QCOMPARE(Preferences::defaultFilePath(), QString(m_home.configHome() + u"/telverra/telverra.conf"));
        Preferences first(Preferences::defaultFilePath());
        Preferences second(Preferences::defaultFilePath());
        QVERIFY(second.value(PreferenceKey::useChromeAsDefaultBrowser));
        QSignalSpy changed(&first, &Preferences::valueChanged);
        first.setBoolValue(u"noSuchKey"_qs, true);
        first.setBoolValue(u"useChromeAsDefaultBrowser"_qs, false);
        QCOMPARE(changed.size(), 1);
        QCOMPARE(changed.at(0).at(0).toString(), u"useChromeAsDefaultBrowser"_qs);
        QVERIFY2(!second.value(PreferenceKey::useChromeAsDefaultBrowser), "a change is seen at the next read");
        QVERIFY(QFile::exists(Preferences::defaultFilePath()));

        QSettings outside(Preferences::defaultFilePath(), QSettings::IniFormat);
        outside.setValue(u"fixedQuoteOnStartup"_qs, true);
        outside.sync();
        QVERIFY(first.value(PreferenceKey::fixedQuoteOnStartup));
    }

    void deploymentSettings()
    {
        QCOMPARE(DeploymentSettings::defaultFile(), QString()); // none installed in this home
        const QString file = m_home.writeFile(u".local/share/telverra/Info.ini"_qs,
                                              "[General]\nWEATHER_API_KEY=\nCHROME_DEVTOOLS_PORT=9222\n");
        QCOMPARE(DeploymentSettings::defaultFile(), file);
        const DeploymentSettings settings(file);
        QCOMPARE(settings.value(u"CHROME_DEVTOOLS_PORT"_qs), std::optional(u"9222"_qs));
        QCOMPARE(settings.value(u"WEATHER_API_KEY"_qs), std::optional(QString())); // present but empty
        QCOMPARE(settings.value(u"QUOTE_SERVICE_BASE_URL"_qs), std::nullopt);
        QCOMPARE(DeploymentSettings(m_home.path() + u"/missing.ini"_qs).value(u"WEATHER_API_KEY"_qs), std::nullopt);
    }

private:
    TestHome m_home;
};

QTEST_GUILESS_MAIN(tst_Preferences)
#include "tst_Preferences.moc"
