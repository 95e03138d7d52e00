#include "CallsManager.h"

#include "BrowserTabSource.h"

#include "Clipboard.h"
#include "DevToolsTabSource.h"
#include "FirefoxSessionTabSource.h"
#include "LaunchAddress.h"
#include "OsaScriptTabSource.h"
#include "PlasmaBrowserTabSource.h"
#include "Workspace.h"
#include "common/Trace.h"
#include "settings/DeploymentSettings.h"
#include "settings/Preferences.h"

#include <QPointer>
#include <QTimer>

#include <mutex>

namespace {
struct SharedCollaborators
{
    Workspace *workspace = nullptr;
    Preferences *preferences = nullptr;
    Clipboard *clipboard = nullptr;
};

SharedCollaborators &sharedCollaborators()
{
    static SharedCollaborators collaborators;
    return collaborators;
}
} // namespace

CallsManager::CallsManager(Workspace &workspace, Preferences &preferences, Clipboard &clipboard, QObject *parent)
    : QObject(parent)
    , m_workspace(workspace)
    , m_preferences(preferences)
    , m_clipboard(clipboard)
{}

CallsManager::~CallsManager() = default;

void CallsManager::setSharedCollaborators(Workspace *workspace, Preferences *preferences, Clipboard *clipboard)
{
    sharedCollaborators() = {workspace, preferences, clipboard};
}

CallsManager &CallsManager::shared()
{
    static std::once_flag once;
    static CallsManager *instance = nullptr;
    std::call_once(once, [] {
        SharedCollaborators given = sharedCollaborators();
        // Lives until the process ends, like its collaborators made here.
        const DeploymentSettings &deployment = DeploymentSettings::shared();
        Workspace *workspace =
            given.workspace
                ? given.workspace
                : new SystemWorkspace(deployment.value(QStringLiteral("CHROME_EXECUTABLE")).value_or(QString()));
        Preferences *preferences =
            given.preferences ? given.preferences : new Preferences(Preferences::defaultFilePath());
        Clipboard *clipboard = given.clipboard ? given.clipboard : new SystemClipboard;
        instance = new CallsManager(*workspace, *preferences, *clipboard);
        // The desktop's tab sources, for the new-meeting search.
#ifdef Q_OS_MACOS
        static OsaScriptTabSource scriptHost;
        instance->setBrowserTabSource(&scriptHost);
#else
        static PlasmaBrowserTabSource plasma;
        static DevToolsTabSource devTools(
            static_cast<quint16>(deployment.value(QStringLiteral("CHROME_DEVTOOLS_PORT")).value_or(QString()).toUInt()));
        static FirefoxSessionTabSource firefox;
        static DesktopBrowserTabSource desktop({&plasma, &devTools}, {&plasma, &firefox});
        instance->setBrowserTabSource(&desktop);
#endif
    });
    return *instance;
}

bool CallsManager::useChromeAsDefaultBrowser() const
{
    return m_preferences.value(PreferenceKey::useChromeAsDefaultBrowser);
}

bool CallsManager::copyNumberURLToClipBoard() const
{
    return m_preferences.value(PreferenceKey::copyNumberURLToClipBoard);
}

void CallsManager::setLastCallDestinationValue(const QString &value)
{
    const QString replaced = std::exchange(m_lastCallDestinationValue, value);
    if (copyNumberURLToClipBoard() && !replaced.isEmpty()) {
        m_clipboard.setPlainText(replaced);
    }
}

QString CallsManager::cleanNumber(const QString &number)
{
    QString cleaned = number;
    cleaned.remove(u'-');
    cleaned.remove(u'.');
    cleaned.remove(u'/');
    cleaned.remove(u' ');
    return cleaned;
}

QString CallsManager::desktopPrefix(CallTypes type)
{
    // RFC 3966 "tel:+34…": KDE Connect and Plasma read "tel://+34…" as a web address. Records keep "tel://".
    return type == CallTypes::telephone ? QStringLiteral("tel:") : launchPrefix(type);
}

SchemeHandler CallsManager::handlerFor(CallTypes type) const
{
    const QString prefix = desktopPrefix(type);
    return m_workspace.handlerFor(prefix.first(qMax(0, prefix.indexOf(u':'))));
}

namespace {

// What is missing and what to install, for each kind of launch; the last names the address's scheme.
const char *noApplicationText(CallTypes type)
{
    switch (type) {
    case CallTypes::telephone:
        return QT_TRANSLATE_NOOP("CallsManager", "No application on this computer opens phone calls (tel: addresses). "
                                                 "Install KDE Connect to call through your phone, or GNOME Calls.");
    case CallTypes::messages:
        return QT_TRANSLATE_NOOP("CallsManager",
                                 "No application on this computer sends text messages (sms: addresses). Install KDE "
                                 "Connect to send them through your phone, or Chats.");
    case CallTypes::mail:
        return QT_TRANSLATE_NOOP("CallsManager",
                                 "No application on this computer writes e-mails (mailto: addresses). Install a mail "
                                 "client such as Thunderbird or Evolution, or choose one as the default for e-mail in "
                                 "the system settings.");
    case CallTypes::facetime:
    case CallTypes::facetimeaudio:
        return QT_TRANSLATE_NOOP("CallsManager",
                                 "No application on this computer opens FaceTime calls (facetime: addresses). FaceTime "
                                 "runs on Apple devices only: place a phone call or send a message instead.");
    default:
        return QT_TRANSLATE_NOOP("CallsManager", "No application on this computer opens %1 addresses.");
    }
}

// Only the last of them has a place for the scheme.
QString withScheme(const QString &text, CallTypes type)
{
    return text.contains(u"%1") ? text.arg(CallsManager::desktopPrefix(type)) : text;
}

const char *const applicationFailedText =
    QT_TRANSLATE_NOOP("CallsManager", "%1 could not be started to open the address: %2");

} // namespace

QString CallsManager::noApplicationMessage(CallTypes type)
{
    return withScheme(tr(noApplicationText(type)), type);
}

CallsManagerError CallsManager::notOpened(CallTypes type, const OpenFailure &failure)
{
    if (failure.reason == OpenFailure::Reason::noApplication) {
        return CallsManagerError::noApplication(withScheme(QString::fromUtf8(noApplicationText(type)), type),
                                                noApplicationMessage(type));
    }
    return CallsManagerError::applicationFailed(
        QString::fromUtf8(applicationFailedText).arg(failure.application, failure.detail),
        tr(applicationFailedText).arg(failure.application, failure.detail));
}

CallResult CallsManager::launch(CallTypes type, const QString &destination, const char *failureText,
                                const QString &shownDestination)
{
    const std::optional<LaunchAddress> address = LaunchAddress::parse(desktopPrefix(type) + destination);
    if (!address) {
        return CallResult::failure(CallsManagerError::errorCreatingCall(
            QString::fromUtf8(failureText).arg(shownDestination), tr(failureText).arg(shownDestination)));
    }
    // Where no application opens the address the launch fails with a message: no one else on this desktop says so.
    if (const std::optional<OpenFailure> failure = m_workspace.open(*address)) {
        return CallResult::failure(notOpened(type, *failure));
    }
    return CallResult::success(destination);
}

namespace {
// An "@" marks an account (iMessage, FaceTime) that is used as written.
QString cleanedUnlessAccount(const QString &destination)
{
    return destination.contains(u'@') ? destination : CallsManager::cleanNumber(destination);
}
} // namespace

CallResult CallsManager::makePhoneCall(const QString &number)
{
    const CallResult result =
        launch(CallTypes::telephone, cleanNumber(number), QT_TR_NOOP("Error creating call: %1"), number);
    return result.isSuccess() ? CallResult::success(number) : result;
}

CallResult CallsManager::makeFacetimeCall(const QString &destination)
{
    const CallResult result = launch(CallTypes::facetime, cleanedUnlessAccount(destination),
                                     QT_TR_NOOP("Error creating Facetime call: %1"), destination);
    return result.isSuccess() ? CallResult::success(destination) : result;
}

CallResult CallsManager::makeFacetimeAudioCall(const QString &destination)
{
    const CallResult result = launch(CallTypes::facetimeaudio, cleanedUnlessAccount(destination),
                                     QT_TR_NOOP("Error creating Facetime Audio call: %1"), destination);
    return result.isSuccess() ? CallResult::success(destination) : result;
}

CallResult CallsManager::sendMessage(const QString &destination)
{
    // Messages share the e-mail wording of their failure text.
    const CallResult result = launch(CallTypes::messages, cleanedUnlessAccount(destination),
                                     QT_TR_NOOP("Error creating eMail: %1"), destination);
    return result.isSuccess() ? CallResult::success(destination) : result;
}

CallResult CallsManager::sendEmail(const QString &address)
{
    return launch(CallTypes::mail, address, QT_TR_NOOP("Error creating eMail: %1"), address);
}

CallTypes CallsManager::callTypeForURL(QStringView text)
{
    if (text.contains(MeetingAddresses::googleMeet)) {
        return CallTypes::googleMeet;
    }
    if (text.contains(MeetingAddresses::jitsi)) {
        return CallTypes::jitsi;
    }
    if (text.contains(MeetingAddresses::zoom)) {
        return CallTypes::zoom;
    }
    if (text.contains(MeetingAddresses::webex)) {
        return CallTypes::webex;
    }
    return CallTypes::notRecognized;
}

void CallsManager::openTelco(const QString &address, const CallCompletion &completion)
{
    if (callTypeForURL(address) == CallTypes::notRecognized) {
        const char *text = QT_TR_NOOP("Attempt to open Telco of type: '%1'");
        completion(CallResult::failure(
            CallsManagerError::invalidTelcoType(QString::fromUtf8(text).arg(address), tr(text).arg(address))));
        return;
    }
    openClassified(address);
    completion(CallResult::success(address));
}

void CallsManager::openClassified(const QString &address)
{
    const CallTypes type = callTypeForURL(address);
    m_typeOfLastCall = type;
    switch (type) {
    case CallTypes::googleMeet:
    case CallTypes::zoom:
    case CallTypes::webex:
    case CallTypes::jitsi:
        openInBrowser(address);
        break;
    case CallTypes::googleMeetNew:
        openInBrowser(address);
        m_typeOfLastCall = CallTypes::googleMeet;
        break;
    case CallTypes::messages:
    case CallTypes::skype:
    case CallTypes::slack:
        // Not produced by the classification today; kept for when recognition learns these kinds.
        openInBrowser(launchPrefix(type));
        break;
    default:
        break;
    }
    Trace::line(u"Openning URL From Clipboard: " + address);
}

void CallsManager::openInBrowser(const QString &address)
{
    if (useChromeAsDefaultBrowser()) {
        openInChrome(address);
    } else {
        openInDefaultBrowser(address);
    }
}

void CallsManager::openInDefaultBrowser(const QString &address)
{
    const std::optional<LaunchAddress> url = LaunchAddress::parseForBrowser(address);
    if (!url) {
        Trace::line(QStringLiteral("Error creating URL for Default Browser"));
        return;
    }
    // A meeting is recorded whatever the browser does; a browser that is missing or does not start is logged.
    if (const std::optional<OpenFailure> failure = m_workspace.open(*url)) {
        Trace::line(failure->reason == OpenFailure::Reason::noApplication
                        ? QString(u"No application opens " + url->scheme() + u" addresses")
                        : QString(failure->application + u" could not be started: " + failure->detail));
    }
}

void CallsManager::openInChrome(const QString &address)
{
    const std::optional<LaunchAddress> url = LaunchAddress::parseForBrowser(address);
    if (!url) {
        Trace::line(QStringLiteral("Error creating URL for Chrome"));
        return;
    }
    QPointer<CallsManager> self(this);
    m_workspace.openWithApplication(*url, QStringLiteral("Google Chrome"),
                                    [self, address](const QString &errorText, const QString &identifier) {
                                        if (!self) {
                                            return;
                                        }
                                        if (!errorText.isEmpty()) {
                                            Trace::line(errorText);
                                            self->openInDefaultBrowser(address);
                                            return;
                                        }
                                        Trace::line(u"Successfully openned URL " + address + u" call in " + identifier);
                                    });
}

BrowserTabSource::~BrowserTabSource() = default;

QString printedForm(const QList<BrowserWindow> &windows)
{
    auto quoted = [](const QString &text) -> QString { return u'"' + QString(text).replace(u'"', u"\\\""_qs) + u'"'; };
    QStringList printedWindows;
    for (const BrowserWindow &window : windows) {
        QStringList printedTabs;
        for (const Tab &tab : window.tabs) {
            printedTabs.append(u"Tab(title: " + quoted(tab.title) + u", url: " + quoted(tab.url) + u')');
        }
        printedWindows.append(u"BrowserWindow(name: " + quoted(window.name) + u", tabs: [" + printedTabs.join(u", ") +
                              u"])");
    }
    return u'[' + printedWindows.join(u", ") + u']';
}

void CallsManager::startNewMeeting(CallTypes type, const CallCompletion &completion)
{
    if (type != CallTypes::googleMeet && type != CallTypes::googleMeetNew) {
        return;
    }
    const QString address = launchPrefix(type);
    Trace::line(u"Run Apple Script Delayed " + QString::number(meetingSearchDelay, 'f', 1) + u" seconds");
    QPointer<CallsManager> self(this);
    QTimer::singleShot(static_cast<int>(meetingSearchDelay * 1000), this, [self, completion] {
        if (!self) {
            return;
        }
        self->setLastCallDestinationValue(QString());
        self->setLastCallDestinationValue(meetingURL(self->listBrowserWindows()));
        if (!self->lastCallDestinationValue().isEmpty()) {
            completion(CallResult::success(self->lastCallDestinationValue()));
        } else {
            const char *text = QT_TR_NOOP("Couldn't find the url for the telco, you might have accidentaly closed "
                                          "the browser. The call will not be registered in recents.");
            completion(CallResult::failure(CallsManagerError::errorCreatingTelco(QString::fromUtf8(text), tr(text))));
        }
    });
    openInBrowser(address);
}

QList<BrowserWindow> CallsManager::listBrowserWindows()
{
    const bool chrome = useChromeAsDefaultBrowser();
    Trace::line(chrome ? QStringLiteral("Chrome") : QStringLiteral("Safari"));
    const QString &script = chrome ? myAppleScriptChrome : myAppleScriptSafari;
    Trace::line(u"Running Apple Script " + script);
    const std::optional<ScriptValue> result = m_tabSource ? m_tabSource->run(script, chrome) : std::nullopt;
    return result ? browserWindows(*result) : QList<BrowserWindow>();
}

QList<BrowserWindow> CallsManager::browserWindows(const ScriptValue &result)
{
    QList<BrowserWindow> windows;
    for (const ScriptValue &entry : result.list) {
        BrowserWindow window;
        for (const ScriptValue &item : entry.list) {
            if (item.text) {
                if (item.text->contains(u"Window ID:")) {
                    window.name = *item.text;
                }
                continue;
            }
            if (!item.isList || item.list.isEmpty()) {
                continue;
            }
            for (const ScriptValue &tabEntry : item.list) {
                Tab tab;
                for (const ScriptValue &field : tabEntry.list) {
                    if (!field.text) {
                        continue;
                    }
                    if (field.text->startsWith(u"Title: ")) {
                        tab.title = QString(*field.text).remove(u"Title: "_qs);
                    } else if (field.text->startsWith(u"URL: ")) {
                        tab.url = QString(*field.text).remove(u"URL: "_qs);
                    }
                }
                window.tabs.append(tab);
            }
        }
        windows.append(window);
    }
    return windows;
}

QString CallsManager::meetingURL(const QList<BrowserWindow> &windows)
{
    const QString rule(45, u'-');
    Trace::line(rule);
    Trace::line(printedForm(windows));
    Trace::line(rule);
    for (const BrowserWindow &window : windows) {
        for (const Tab &tab : window.tabs) {
            // A tab's address comes from the browser: it is recorded and reopened only if a browser may open it.
            if (tab.title == u"Meet - ~new" && LaunchAddress::parseForBrowser(tab.url)) {
                return tab.url;
            }
        }
    }
    return {};
}
