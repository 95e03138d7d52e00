#pragma once

#include "search/DesktopSearchIndex.h"

#include <QDBusConnection>
#include <QDBusContext>
#include <QObject>
#include <QVariantMap>

#include <functional>
#include <memory>

class HomeWindowViewModel;
class QDBusArgument;

/// KRunner's types on the bus: an action (sss), a match (sssida{sv}) and a picture (iiibiiay).
struct RemoteAction
{
    QString id;
    QString text;
    QString iconName;
};
struct RemoteMatch
{
    QString id;
    QString text;
    QString iconName;
    int type = 0;
    double relevance = 0;
    QVariantMap properties;
};
struct RemoteImage
{
    int width = 0;
    int height = 0;
    int rowStride = 0;
    bool hasAlpha = true;
    int bitsPerSample = 8;
    int channels = 4;
    QByteArray data;
};
QDBusArgument &operator<<(QDBusArgument &argument, const RemoteAction &action);
const QDBusArgument &operator>>(const QDBusArgument &argument, RemoteAction &action);
QDBusArgument &operator<<(QDBusArgument &argument, const RemoteMatch &match);
const QDBusArgument &operator>>(const QDBusArgument &argument, RemoteMatch &match);
QDBusArgument &operator<<(QDBusArgument &argument, const RemoteImage &image);
const QDBusArgument &operator>>(const QDBusArgument &argument, RemoteImage &image);
Q_DECLARE_METATYPE(RemoteAction)
Q_DECLARE_METATYPE(RemoteMatch)
Q_DECLARE_METATYPE(RemoteImage)

/// The desktop's search over Telverra's contacts and favourite links, for KRunner and GNOME Shell: the index is made
/// at the first query and again, away from the bus, after the address book or the links change; a result the user
/// activates runs the view model's operation, so the launch is recorded as the window would record it.
///
/// A result is named by an identifier that carries what it launches (the action, the contact and the value), so it
/// still means the same after the index changed.
class DesktopSearch : public QObject
{
    Q_OBJECT
public:
    /// `showWindow` brings a window up on the Contacts screen with a search (GNOME's "more results").
    DesktopSearch(HomeWindowViewModel &viewModel, std::function<void(const QString &search)> showWindow,
                  QObject *parent = nullptr);
    ~DesktopSearch() override;

    QList<DesktopSearchResult> search(const QStringList &terms);
    /// The identifiers of a result's launches: call and message for a number, mail for an address, open for a link.
    static QStringList launchIdentifiers(const DesktopSearchResult &result);
    /// Runs the launch an identifier names; false for an identifier that names none.
    bool activate(const QString &identifier);
    void showWindow(const QString &search) { m_showWindow(search); }
    /// A contact's record in the address book the window shows.
    SharedVCardContact findRecord(const QString &identifier) const;

    /// Registers KRunner's runner and GNOME Shell's search provider on the session bus connection.
    bool registerOn(QDBusConnection bus);

    /// Whether the address book has been read (or could not be): a query answered before would find nobody.
    bool isReady() const;
    /// Runs `answer` once the address book has been read, or after readyTimeout at the latest.
    void whenReady(std::function<void()> answer);
    static constexpr int readyTimeout = 10000;

Q_SIGNALS:
    /// A query or an activation came: the desktop still uses the search.
    void used();

private:
    const DesktopSearchIndex &index();
    void answerWaitingQueries();

    HomeWindowViewModel &m_viewModel;
    std::function<void(const QString &)> m_showWindow;
    std::shared_ptr<const DesktopSearchIndex> m_index;
    bool m_stale = true;
    bool m_rebuilding = false;
    bool m_indexComplete = false;
    QList<std::function<void()>> m_waiting;
    std::unique_ptr<QObject> m_krunner;
    std::unique_ptr<QObject> m_gnome;
};

/// org.kde.krunner1, at /org/telverra/Telverra/krunner: one match per contact or link, with the contact's ways to reach
/// it as the match's actions.
class KRunnerService : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.krunner1")
public:
    static constexpr const char *path = "/org/telverra/Telverra/krunner";
    explicit KRunnerService(DesktopSearch &search);

public Q_SLOTS:
    Q_SCRIPTABLE QList<RemoteAction> Actions();
    Q_SCRIPTABLE QList<RemoteMatch> Match(const QString &query);
    Q_SCRIPTABLE void Run(const QString &matchId, const QString &actionId);

private:
    QList<RemoteMatch> matches(const QString &query);

    DesktopSearch &m_search;
};

/// org.gnome.Shell.SearchProvider2, at /org/telverra/Telverra/SearchProvider: one result per launch ("Call Ana García
/// (mobile …)", "Message …", "Mail …", a link).
class GnomeSearchProvider : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.gnome.Shell.SearchProvider2")
public:
    static constexpr const char *path = "/org/telverra/Telverra/SearchProvider";
    explicit GnomeSearchProvider(DesktopSearch &search);

public Q_SLOTS:
    Q_SCRIPTABLE QStringList GetInitialResultSet(const QStringList &terms);
    Q_SCRIPTABLE QStringList GetSubsearchResultSet(const QStringList &previousResults, const QStringList &terms);
    Q_SCRIPTABLE QList<QVariantMap> GetResultMetas(const QStringList &identifiers);
    Q_SCRIPTABLE void ActivateResult(const QString &identifier, const QStringList &terms, uint timestamp);
    Q_SCRIPTABLE void LaunchSearch(const QStringList &terms, uint timestamp);

private:
    QStringList resultSet(const QStringList &terms);

    DesktopSearch &m_search;
};
