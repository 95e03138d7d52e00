#pragma once

#include "BrowserWindow.h"
#include "CallResult.h"
#include "CallTypes.h"

#include <QObject>
#include <QString>

class BrowserTabSource;
struct OpenFailure;
struct SchemeHandler;
class Clipboard;
struct ScriptValue;
class Preferences;
class Workspace;

/// The launcher: turns a destination and a way of reaching it into an address and hands it to the system.
class CallsManager : public QObject
{
    Q_OBJECT
public:
    CallsManager(Workspace &workspace, Preferences &preferences, Clipboard &clipboard, QObject *parent = nullptr);
    ~CallsManager() override;

    /// The process's launcher, created on first use with the desktop's workspace, clipboard and preference store,
    /// or with those given to setSharedCollaborators() before that first use.
    static CallsManager &shared();
    /// Points the shared launcher at other collaborators; only has an effect before the first use of shared().
    /// The objects must outlive the process's use of the launcher.
    static void setSharedCollaborators(Workspace *workspace, Preferences *preferences, Clipboard *clipboard);

    static const QString myAppleScriptSafari;
    static const QString myAppleScriptChrome;

    /// Read from the preference store at every use.
    bool useChromeAsDefaultBrowser() const;
    bool copyNumberURLToClipBoard() const;

    /// The meeting address found by the last browser search. Every assignment puts the value it replaces on the
    /// clipboard when that value is not empty and copying is on.
    const QString &lastCallDestinationValue() const { return m_lastCallDestinationValue; }
    void setLastCallDestinationValue(const QString &value);

    CallTypes typeOfLastCall() const { return m_typeOfLastCall; }
    void setTypeOfLastCall(CallTypes type) { m_typeOfLastCall = type; }

    /// Removes every "-", ".", "/" and space; nothing else.
    static QString cleanNumber(const QString &number);

    CallResult makePhoneCall(const QString &number);
    CallResult makeFacetimeCall(const QString &destination);
    CallResult makeFacetimeAudioCall(const QString &destination);
    CallResult sendMessage(const QString &destination);
    CallResult sendEmail(const QString &address);

    /// The prefix of the address the desktop is handed for a direct launch of this kind (phone, FaceTime, messages,
    /// mail): the launch prefix, but "tel:" for a phone call.
    static QString desktopPrefix(CallTypes type);
    /// The application that would open a direct launch of this kind now.
    SchemeHandler handlerFor(CallTypes type) const;
    /// What the user is told when no application opens this kind of launch: what is missing and what to install.
    static QString noApplicationMessage(CallTypes type);

    /// Classifies a meeting address by plain substring search; the first hit wins.
    static CallTypes callTypeForURL(QStringView text);

    /// Opens a recognised meeting address in the chosen browser; an unrecognised one fails with invalidTelcoType.
    void openTelco(const QString &address, const CallCompletion &completion);

    void openInBrowser(const QString &address);
    void openInChrome(const QString &address);
    void openInDefaultBrowser(const QString &address);

    /// Opens a new Google Meet meeting (googleMeet or googleMeetNew; any other type does nothing) and, 5.0 seconds
    /// later, looks for its address among the browser's tabs; the completion gets the address or errorCreatingTelco.
    void startNewMeeting(CallTypes type, const CallCompletion &completion);
    /// Delay of the meeting search, in seconds.
    static constexpr double meetingSearchDelay = 5.0;
    /// Asks the browser for its windows and tabs; an empty list when it cannot be asked.
    QList<BrowserWindow> listBrowserWindows();
    /// The windows and tabs in a listing script's result (the parsing rules of the macOS script result).
    static QList<BrowserWindow> browserWindows(const ScriptValue &result);
    /// The address of the first tab titled exactly "Meet - ~new", or empty.
    static QString meetingURL(const QList<BrowserWindow> &windows);

    /// Where listBrowserWindows() asks; none means every search finds nothing.
    void setBrowserTabSource(BrowserTabSource *source) { m_tabSource = source; }

    static QString displayName(CallTypes type) { return label(type); }
    static QString icon(CallTypes type) { return ::icon(type); }

private:
    /// `failureText` (with %1 for `shownDestination`) is the carried text of the failure to make an address.
    CallResult launch(CallTypes type, const QString &destination, const char *failureText,
                      const QString &shownDestination);
    static CallsManagerError notOpened(CallTypes type, const OpenFailure &failure);
    void openClassified(const QString &address);

    Workspace &m_workspace;
    Preferences &m_preferences;
    Clipboard &m_clipboard;
    QString m_lastCallDestinationValue;
    CallTypes m_typeOfLastCall = CallTypes::notRecognized;
    BrowserTabSource *m_tabSource = nullptr;
};
