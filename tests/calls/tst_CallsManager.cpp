#include "calls/CallsManager.h"
#include "calls/Clipboard.h"
#include "calls/Workspace.h"
#include "common/Trace.h"
#include "settings/Preferences.h"
#include "support/RecordingWorkspace.h"
#include "support/TestHome.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QTest>

#include <functional>
#include <memory>

using Launch = std::function<CallResult(CallsManager &, const QString &)>;
Q_DECLARE_METATYPE(Launch)

class tst_CallsManager : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init();
    void cleanup();

    void directLaunches_data();
    void directLaunches();
    void noApplication_data();
    void noApplication();
    void errorDescriptions();
    void callTypeForURL_data();
    void callTypeForURL();
    void openTelco_data();
    void openTelco();
    void preferencesReadAtEachUse();
    void lastCallDestinationClipboardRule_data();
    void lastCallDestinationClipboardRule();
    void sharedUsesCollaboratorsGivenBeforeFirstUse();

private:
    std::unique_ptr<TestHome> m_home;
    std::unique_ptr<Preferences> m_preferences;
    RecordingWorkspace m_workspace;
    SystemClipboard m_clipboard;
    std::unique_ptr<CallsManager> m_manager;
};

void tst_CallsManager::init()
{
    m_home = std::make_unique<TestHome>();
    QVERIFY(m_home->isValid());
    m_preferences = std::make_unique<Preferences>(Preferences::defaultFilePath());
    m_workspace = RecordingWorkspace();
    m_manager = std::make_unique<CallsManager>(m_workspace, *m_preferences, m_clipboard);
    QGuiApplication::clipboard()->clear();
}

void tst_CallsManager::cleanup()
{
    m_manager.reset();
    m_preferences.reset();
    m_home.reset();
}

void tst_CallsManager::directLaunches_data()
{
    QTest::addColumn<Launch>("launch");
    QTest::addColumn<QString>("destination");
    QTest::addColumn<QString>("outcome"); // the address opened, or the failure's text before ": <destination>"

    const Launch phone = &CallsManager::makePhoneCall;
    const Launch facetime = &CallsManager::makeFacetimeCall;
    const Launch audio = &CallsManager::makeFacetimeAudioCall;
    const Launch message = &CallsManager::sendMessage;
    const Launch mail = &CallsManager::sendEmail;
    QTest::newRow("phone, every separator removed") << phone << u"+34 600-12.34/56"_qs << u"tel:+34600123456"_qs;
    QTest::newRow("phone, short number not read as an address") << phone << u"12"_qs << u"tel:12"_qs;
    QTest::newRow("phone, parentheses kept") << phone << u"(600) 123"_qs << u"tel:(600)123"_qs;
    QTest::newRow("phone, at sign still cleaned") << phone << u"a-b@c.d"_qs << u"tel:ab@cd"_qs;
    QTest::newRow("phone, newline and switch") << phone << u"600\n--no-sandbox"_qs << u"Error creating call"_qs;
    QTest::newRow("phone, non-ASCII") << phone << u"6\u00e900"_qs << u"Error creating call"_qs;
    QTest::newRow("facetime, number cleaned") << facetime << u"600-1 2"_qs << u"facetime://60012"_qs;
    QTest::newRow("facetime, account as written")
        << facetime << u"bob.s@example.com"_qs << u"facetime://bob.s@example.com"_qs;
    QTest::newRow("facetime, bad account") << facetime << u"bob s@example.com"_qs << u"Error creating Facetime call"_qs;
    QTest::newRow("facetime audio") << audio << u"600.12"_qs << u"facetime-audio://60012"_qs;
    QTest::newRow("facetime audio, bad account") << audio << u"a b@c.d"_qs << u"Error creating Facetime Audio call"_qs;
    QTest::newRow("message, blanks removed") << message << u"600 12 34"_qs << u"sms:6001234"_qs;
    QTest::newRow("message, account unchanged")
        << message << u"ana.b-c@example.com"_qs << u"sms:ana.b-c@example.com"_qs;
    QTest::newRow("message, e-mail wording on failure")
        << message << u"ana b@example.com"_qs << u"Error creating eMail"_qs;
    QTest::newRow("mail, not cleaned") << mail << u"ana.b-c@example.com"_qs << u"mailto:ana.b-c@example.com"_qs;
    QTest::newRow("mail, blank is no address") << mail << u"bob smith@example.com"_qs << u"Error creating eMail"_qs;
    QTest::newRow("mail, attachment refused")
        << mail << u"bob@example.com?attach=/etc/passwd"_qs << u"Error creating eMail"_qs;
    QTest::newRow("mail, subject allowed")
        << mail << u"bob@example.com?subject=Hello"_qs << u"mailto:bob@example.com?subject=Hello"_qs;
}

void tst_CallsManager::directLaunches()
{
    QFETCH(Launch, launch);
    QFETCH(QString, destination);
    QFETCH(QString, outcome);

    const CallResult result = launch(*m_manager, destination);
    if (!outcome.startsWith(u"Error creating ")) {
        QVERIFY(result.isSuccess());
        QCOMPARE(result.value(), destination);
        QCOMPARE(m_workspace.opened, QStringList{outcome});
    } else {
        const QString failureText = outcome + u": " + destination;
        QVERIFY(!result.isSuccess());
        QCOMPARE(result.error(), CallsManagerError::errorCreatingCall(failureText));
        QCOMPARE(result.error().errorDescription(), u"Error Creating call in Workspace with number: " + failureText);
        QVERIFY(m_workspace.opened.isEmpty());
    }
}

// No application for the scheme: the kind's own message, shown as it stands; nothing opened.
void tst_CallsManager::noApplication_data()
{
    QTest::addColumn<Launch>("launch");
    QTest::addColumn<QString>("scheme");
    QTest::addColumn<CallTypes>("type");
    QTest::newRow("phone") << Launch(&CallsManager::makePhoneCall) << u"tel"_qs << CallTypes::telephone;
    QTest::newRow("facetime") << Launch(&CallsManager::makeFacetimeCall) << u"facetime"_qs << CallTypes::facetime;
    QTest::newRow("facetime audio") << Launch(&CallsManager::makeFacetimeAudioCall) << u"facetime-audio"_qs
                                    << CallTypes::facetimeaudio;
    QTest::newRow("message") << Launch(&CallsManager::sendMessage) << u"sms"_qs << CallTypes::messages;
    QTest::newRow("mail") << Launch(&CallsManager::sendEmail) << u"mailto"_qs << CallTypes::mail;
}

void tst_CallsManager::noApplication()
{
    QFETCH(Launch, launch);
    QFETCH(QString, scheme);
    QFETCH(CallTypes, type);
    m_workspace.missingSchemes = {scheme};
    const CallResult result = launch(*m_manager, u"6001234"_qs);
    QVERIFY(!result.isSuccess());
    QCOMPARE(result.error(), CallsManagerError::noApplication(CallsManager::noApplicationMessage(type)));
    QVERIFY(m_workspace.opened.isEmpty());
    QCOMPARE(m_manager->handlerFor(type).state, SchemeHandler::State::none);
}

// Each kind of error's text around its detail; the desktop's own messages are shown as they stand.
void tst_CallsManager::errorDescriptions()
{
    using Case = CallsManagerError::Case;
    QStringList descriptions;
    for (Case errorCase :
         {Case::invalidNumber, Case::invalidTelcoType, Case::errorCreatingCall, Case::errorCreatingTelco,
          Case::errorCreatingeMail, Case::noApplication, Case::applicationFailed}) {
        descriptions.append(CallsManagerError(errorCase, u"x"_qs).errorDescription());
    }
    QCOMPARE(descriptions,
             (QStringList{u"Invalid Number used for CallManager API with number: x"_qs, u"Telco not supported: x"_qs,
                          u"Error Creating call in Workspace with number: x"_qs,
                          u"Error Creating telco in browser: x"_qs, u"Error Creating eMail: x"_qs, u"x"_qs, u"x"_qs}));
}

void tst_CallsManager::callTypeForURL_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<CallTypes>("type");
    QTest::newRow("meet") << u"https://meet.google.com/abc-defg-hij"_qs << CallTypes::googleMeet;
    QTest::newRow("new meet is meet") << u"https://meet.google.com/new"_qs << CallTypes::googleMeet;
    QTest::newRow("zoom with meet part is meet")
        << u"https://zoom.us/j/1?x=https://meet.google.com/"_qs << CallTypes::googleMeet;
    QTest::newRow("jitsi") << u"https://meet.jit.si/Room"_qs << CallTypes::jitsi;
    QTest::newRow("zoom") << u"https://us02web.zoom.us/j/8?pwd=x"_qs << CallTypes::zoom;
    QTest::newRow("webex") << u"https://acme.webex.com/meet/bob"_qs << CallTypes::webex;
    QTest::newRow("meet host without slash") << u"https://meet.google.com"_qs << CallTypes::notRecognized;
    QTest::newRow("case-sensitive") << u"HTTPS://MEET.GOOGLE.COM/x"_qs << CallTypes::notRecognized;
    QTest::newRow("user info") << u"https://meet.google.com@evil.example/x"_qs << CallTypes::notRecognized;
    QTest::newRow("backslash user info") << u"https://evil.example\\@meet.google.com/x"_qs << CallTypes::notRecognized;
    QTest::newRow("other site") << u"https://example.com/zoom"_qs << CallTypes::notRecognized;
    QTest::newRow("skype is never recognised") << u"skype://?chat"_qs << CallTypes::notRecognized;
    QTest::newRow("empty") << QString() << CallTypes::notRecognized;
}

void tst_CallsManager::callTypeForURL()
{
    QFETCH(QString, text);
    QFETCH(CallTypes, type);
    QCOMPARE(CallsManager::callTypeForURL(text), type);
}

// A meeting link: refused when of no kind, else opened in Chrome or the default browser and reported opened (and
// recorded) whatever the browser does; a missing default browser or a Chrome that fails is logged.
void tst_CallsManager::openTelco_data()
{
    QTest::addColumn<QString>("link");
    QTest::addColumn<bool>("useChrome");
    QTest::addColumn<QStringList>("missingSchemes");
    QTest::addColumn<QString>("chromeError");
    QTest::addColumn<CallTypes>("type");
    QTest::addColumn<QStringList>("opened");     // by the default browser
    QTest::addColumn<QStringList>("withChrome"); // "application|address"
    QTest::addColumn<QStringList>("trace");
    const QString zoom = u"https://us02web.zoom.us/j/123"_qs;
    const QString meet = u"https://meet.google.com/abc-defg-hij"_qs;
    const QString jitsi = u"https://meet.jit.si/Room"_qs;
    const QString opening = u"Openning URL From Clipboard: "_qs;
    const QString notFound = u"The application “Google Chrome” could not be found."_qs;
    QTest::newRow("not a meeting") << u"https://example.com/x"_qs << true << QStringList() << QString()
                                   << CallTypes::notRecognized << QStringList() << QStringList() << QStringList();
    QTest::newRow("default browser") << zoom << false << QStringList() << QString() << CallTypes::zoom
                                     << QStringList{zoom} << QStringList() << QStringList{opening + zoom};
    QTest::newRow("Chrome") << meet << true << QStringList() << QString() << CallTypes::googleMeet << QStringList()
                            << QStringList{u"Google Chrome|" + meet}
                            << QStringList{opening + meet,
                                           u"Successfully openned URL " + meet + u" call in google-chrome"};
    QTest::newRow("Chrome fails: the default browser")
        << jitsi << true << QStringList() << notFound << CallTypes::jitsi << QStringList{jitsi}
        << QStringList{u"Google Chrome|" + jitsi} << QStringList{opening + jitsi, notFound};
    QTest::newRow("no default browser") << jitsi << false << QStringList{u"https"_qs} << QString() << CallTypes::jitsi
                                        << QStringList() << QStringList()
                                        << QStringList{u"No application opens https addresses"_qs, opening + jitsi};
    // Hostile text that reads as a meeting: each browser's path goes through the browser gate (whose cases are in
    // tst_LaunchAddress), and opens nothing.
    const QString huge =
        QString(5 * 1024 * 1024, u'x') + u"https://meet.google.com/abc" + QString(5 * 1024 * 1024, u'y');
    for (const QString &text : {u"--renderer-cmd-prefix=/tmp/x https://meet.google.com/"_qs, huge}) {
        QTest::addRow("%s, Chrome", qPrintable(text.left(30)))
            << text << true << QStringList() << QString() << CallTypes::googleMeet << QStringList() << QStringList()
            << QStringList{u"Error creating URL for Chrome"_qs, opening + text};
        QTest::addRow("%s, default browser", qPrintable(text.left(30)))
            << text << false << QStringList() << QString() << CallTypes::googleMeet << QStringList() << QStringList()
            << QStringList{u"Error creating URL for Default Browser"_qs, opening + text};
    }
}

void tst_CallsManager::openTelco()
{
    QFETCH(QString, link);
    QFETCH(bool, useChrome);
    QFETCH(QStringList, missingSchemes);
    QFETCH(QString, chromeError);
    QFETCH(CallTypes, type);
    QFETCH(QStringList, opened);
    QFETCH(QStringList, withChrome);
    QFETCH(QStringList, trace);
    m_preferences->setValue(PreferenceKey::useChromeAsDefaultBrowser, useChrome);
    m_workspace.missingSchemes = missingSchemes;
    m_workspace.applicationError = chromeError;
    Trace::Capture capture;
    std::optional<CallResult> result;
    m_manager->openTelco(link, [&](const CallResult &r) { result = r; });
    QVERIFY(result.has_value());
    if (type == CallTypes::notRecognized) {
        const QString reason = u"Attempt to open Telco of type: '"_qs + link + u"'";
        QCOMPARE(*result, CallResult::failure(CallsManagerError::invalidTelcoType(reason)));
        QCOMPARE(result->error().errorDescription(), u"Telco not supported: "_qs + reason);
    } else {
        QCOMPARE(*result, CallResult::success(link));
    }
    QCOMPARE(m_manager->typeOfLastCall(), type);
    QTRY_COMPARE(capture.lines(), trace);
    QTRY_COMPARE(m_workspace.opened, opened);
    QCOMPARE(m_workspace.openedWithApplication, withChrome);
}

void tst_CallsManager::preferencesReadAtEachUse()
{
    const QString link = u"https://meet.jit.si/Room"_qs;
    Preferences elsewhere(m_preferences->filePath()); // the settings window's own handle on the same file
    elsewhere.setValue(PreferenceKey::useChromeAsDefaultBrowser, false);
    m_manager->openInBrowser(link);
    QCOMPARE(m_workspace.opened.size(), 1);
    elsewhere.setValue(PreferenceKey::useChromeAsDefaultBrowser, true);
    m_manager->openInBrowser(link);
    QCOMPARE(m_workspace.opened.size(), 1);
    QCOMPARE(m_workspace.openedWithApplication.size(), 1);
}

void tst_CallsManager::lastCallDestinationClipboardRule_data()
{
    QTest::addColumn<bool>("copy");
    QTest::addColumn<QString>("previous");
    QTest::addColumn<QString>("next");
    QTest::addColumn<QString>("clipboard");
    const QString link = u"https://meet.google.com/abc-defg-hij"_qs;
    QTest::newRow("clearing a found address copies it") << true << link << QString() << link;
    QTest::newRow("storing after a clear copies nothing") << true << QString() << link << u"untouched"_qs;
    QTest::newRow("the replaced value is copied, not the new one") << true << link << u"other"_qs << link;
    QTest::newRow("copying off") << false << link << QString() << u"untouched"_qs;
}

void tst_CallsManager::lastCallDestinationClipboardRule()
{
    QFETCH(bool, copy);
    QFETCH(QString, previous);
    QFETCH(QString, next);
    QFETCH(QString, clipboard);

    m_manager->setLastCallDestinationValue(previous);
    QGuiApplication::clipboard()->setText(u"untouched"_qs);
    m_preferences->setValue(PreferenceKey::copyNumberURLToClipBoard, copy);
    m_manager->setLastCallDestinationValue(next);
    QCOMPARE(m_manager->lastCallDestinationValue(), next);
    QCOMPARE(QGuiApplication::clipboard()->text(), clipboard);
}

void tst_CallsManager::sharedUsesCollaboratorsGivenBeforeFirstUse()
{
    static RecordingWorkspace workspace;
    static Preferences preferences(m_home->configHome() + u"/shared.conf");
    CallsManager::setSharedCollaborators(&workspace, &preferences, &m_clipboard);
    CallsManager &shared = CallsManager::shared();
    QCOMPARE(&CallsManager::shared(), &shared);
    QVERIFY(shared.makePhoneCall(u"600 1"_qs).isSuccess());
    QCOMPARE(workspace.opened, QStringList{u"tel:6001"_qs});
}

QTEST_MAIN(tst_CallsManager)
#include "tst_CallsManager.moc"
