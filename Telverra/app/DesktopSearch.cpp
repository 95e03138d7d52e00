#include "DesktopSearch.h"

#include "HomeWindowViewModel.h"
#include "contacts/ContactLabelNames.h"
#include "contacts/ContactPhotoProvider.h"
#include "contacts/ContactsDataService.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QTimer>
#include <QtConcurrent>

namespace {

const QChar separator(0x1f);

QString identifierOf(const QStringList &parts)
{
    return parts.join(separator);
}

// "mobile +34 600 111 222"
struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(DesktopSearch)
};

QString labelled(const QString &label, const QString &value)
{
    return label.isEmpty() ? value : ContactLabels::displayName(label) + u' ' + value;
}

// The freedesktop icon names of the launches.
QString iconOf(const QString &action)
{
    if (action == u"call") {
        return QStringLiteral("call-start");
    }
    if (action == u"message") {
        return QStringLiteral("mail-message-new");
    }
    if (action == u"mail") {
        return QStringLiteral("mail-send");
    }
    return QStringLiteral("camera-web");
}

// A query's answer now, or, for one that came over the bus while the address book was still being read (the first
// query of a process the bus has just started), a delayed reply sent once it has been.
template<class Answer>
auto answerWhenReady(const QDBusContext &context, DesktopSearch &search, Answer answer) -> decltype(answer())
{
    if (search.isReady() || !context.calledFromDBus()) {
        return answer();
    }
    context.setDelayedReply(true);
    search.whenReady([answer, call = context.message(), bus = context.connection()] {
        bus.send(call.createReply(QVariant::fromValue(answer())));
    });
    return {};
}

} // namespace

QDBusArgument &operator<<(QDBusArgument &argument, const RemoteAction &action)
{
    argument.beginStructure();
    argument << action.id << action.text << action.iconName;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, RemoteAction &action)
{
    argument.beginStructure();
    argument >> action.id >> action.text >> action.iconName;
    argument.endStructure();
    return argument;
}

QDBusArgument &operator<<(QDBusArgument &argument, const RemoteMatch &match)
{
    argument.beginStructure();
    argument << match.id << match.text << match.iconName << match.type << match.relevance << match.properties;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, RemoteMatch &match)
{
    argument.beginStructure();
    argument >> match.id >> match.text >> match.iconName >> match.type >> match.relevance >> match.properties;
    argument.endStructure();
    return argument;
}

QDBusArgument &operator<<(QDBusArgument &argument, const RemoteImage &image)
{
    argument.beginStructure();
    argument << image.width << image.height << image.rowStride << image.hasAlpha << image.bitsPerSample
             << image.channels << image.data;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, RemoteImage &image)
{
    argument.beginStructure();
    argument >> image.width >> image.height >> image.rowStride >> image.hasAlpha >> image.bitsPerSample >>
        image.channels >> image.data;
    argument.endStructure();
    return argument;
}

DesktopSearch::DesktopSearch(HomeWindowViewModel &viewModel, std::function<void(const QString &)> showWindow,
                             QObject *parent)
    : QObject(parent)
    , m_viewModel(viewModel)
    , m_showWindow(std::move(showWindow))
{
    qDBusRegisterMetaType<RemoteAction>();
    qDBusRegisterMetaType<QList<RemoteAction>>();
    qDBusRegisterMetaType<RemoteMatch>();
    qDBusRegisterMetaType<QList<RemoteMatch>>();
    qDBusRegisterMetaType<RemoteImage>();
    qDBusRegisterMetaType<QList<QVariantMap>>();
    auto stale = [this] { m_stale = true; };
    connect(&viewModel, &HomeWindowViewModel::allContactsChanged, this, stale);
    // The queries that came while the address book was being read are answered once it has been.
    auto answerWaiting = [this] {
        if (isReady()) {
            answerWaitingQueries();
        }
    };
    connect(&viewModel.contactsDataService(), &ContactsDataService::allContactsChanged, this, answerWaiting,
            Qt::QueuedConnection); // after the view model has taken the new list
    connect(&viewModel.contactsDataService(), &ContactsDataService::loadingChanged, this, answerWaiting,
            Qt::QueuedConnection);
    connect(&viewModel, &HomeWindowViewModel::allFavoriteTelcosChanged, this, stale);
}

DesktopSearch::~DesktopSearch() = default;

bool DesktopSearch::isReady() const
{
    const ContactsDataService &contacts = m_viewModel.contactsDataService();
    return contacts.hasLoaded() || !contacts.isLoading();
}

void DesktopSearch::whenReady(std::function<void()> answer)
{
    if (isReady()) {
        answer();
        return;
    }
    m_waiting.append(std::move(answer));
    if (m_waiting.size() == 1) {
        // An address book too slow to wait for: the search goes on with what there is.
        QTimer::singleShot(readyTimeout, this, &DesktopSearch::answerWaitingQueries);
    }
}

void DesktopSearch::answerWaitingQueries()
{
    const QList<std::function<void()>> waiting = std::exchange(m_waiting, {});
    for (const auto &answer : waiting) {
        answer();
    }
}

bool DesktopSearch::registerOn(QDBusConnection bus)
{
    m_krunner = std::make_unique<KRunnerService>(*this);
    m_gnome = std::make_unique<GnomeSearchProvider>(*this);
    return bus.registerObject(QString::fromLatin1(KRunnerService::path), m_krunner.get(),
                              QDBusConnection::ExportScriptableSlots) &&
           bus.registerObject(QString::fromLatin1(GnomeSearchProvider::path), m_gnome.get(),
                              QDBusConnection::ExportScriptableSlots);
}

const DesktopSearchIndex &DesktopSearch::index()
{
    if (!m_index || (m_stale && !m_indexComplete)) {
        // The first query waits for the index (with a large address book, about the time of reading it), and so does
        // the first after an index made before the address book had been read.
        m_index =
            std::make_shared<const DesktopSearchIndex>(m_viewModel.allContacts(), m_viewModel.allFavoriteTelcos());
        m_indexComplete = m_viewModel.contactsDataService().hasLoaded();
        m_stale = false;
    } else if (m_stale && !m_rebuilding) {
        // Later ones are answered from the index there is while the new one is made.
        m_stale = false;
        m_rebuilding = true;
        auto *watcher = new QFutureWatcher<std::shared_ptr<const DesktopSearchIndex>>(this);
        connect(watcher, &QFutureWatcherBase::finished, this, [this, watcher] {
            watcher->deleteLater();
            m_index = watcher->result();
            m_rebuilding = false;
        });
        watcher->setFuture(
            QtConcurrent::run([contacts = m_viewModel.allContacts(), links = m_viewModel.allFavoriteTelcos()]() {
                return std::make_shared<const DesktopSearchIndex>(contacts, links);
            }));
    }
    return *m_index;
}

SharedVCardContact DesktopSearch::findRecord(const QString &identifier) const
{
    return m_viewModel.contactsDataService().record(identifier);
}

QList<DesktopSearchResult> DesktopSearch::search(const QStringList &terms)
{
    Q_EMIT used();
    return index().search(terms);
}

QStringList DesktopSearch::launchIdentifiers(const DesktopSearchResult &result)
{
    if (result.kind == DesktopSearchResult::Kind::link) {
        return {identifierOf({u"open"_qs, result.link, result.name})};
    }
    QStringList launches;
    if (!result.phone.isEmpty()) {
        for (const QString &action : {u"call"_qs, u"message"_qs}) {
            launches.append(identifierOf({action, result.identifier, result.phoneLabel, result.phone, result.name}));
        }
    }
    if (!result.email.isEmpty()) {
        launches.append(identifierOf({u"mail"_qs, result.identifier, result.emailLabel, result.email, result.name}));
    }
    return launches;
}

bool DesktopSearch::activate(const QString &identifier)
{
    Q_EMIT used();
    const QStringList parts = identifier.left(4096).split(separator);
    if (parts.size() == 3 && parts[0] == u"open") {
        m_viewModel.openTelcoURL(parts[1]);
        return true;
    }
    if (parts.size() != 5) {
        return false;
    }
    const CallTypes type = parts[0] == u"call"      ? CallTypes::telephone
                           : parts[0] == u"message" ? CallTypes::messages
                                                    : CallTypes::mail;
    if (type == CallTypes::mail && parts[0] != u"mail") {
        return false;
    }
    // As a contact's chip does it: the value through the dialer's validation, then the contact action.
    m_viewModel.validateDialerDisplay(parts[3]);
    m_viewModel.sendContactAction(m_viewModel.contactsDataService().contact(parts[1]).value_or(Contact()), parts[2],
                                  type);
    return true;
}

// ---- KRunner ----

KRunnerService::KRunnerService(DesktopSearch &search)
    : m_search(search)
{}

QList<RemoteAction> KRunnerService::Actions()
{
    return {{u"call"_qs, Texts::tr("Call"), iconOf(u"call"_qs)},
            {u"message"_qs, Texts::tr("Message"), iconOf(u"message"_qs)},
            {u"mail"_qs, Texts::tr("Mail"), iconOf(u"mail"_qs)}};
}

QList<RemoteMatch> KRunnerService::Match(const QString &query)
{
    return answerWhenReady(*this, m_search, [this, query] { return matches(query); });
}

QList<RemoteMatch> KRunnerService::matches(const QString &query)
{
    QList<RemoteMatch> matches;
    for (const DesktopSearchResult &result : m_search.search(DesktopSearchIndex::terms(query))) {
        RemoteMatch match;
        match.relevance = result.relevance;
        match.type = result.relevance >= 1 ? 100 : 30; // an exact match, else a possible one
        if (result.kind == DesktopSearchResult::Kind::link) {
            match.id = DesktopSearch::launchIdentifiers(result).value(0);
            match.text = result.linkKind.isEmpty() ? result.name : result.name + u" (" + result.linkKind + u')';
            match.iconName = iconOf(u"open"_qs);
            match.properties.insert(u"subtext"_qs, result.link);
            matches.append(match);
            continue;
        }
        // One match per contact; its launches are the match's actions, the first of them its default.
        QStringList actions;
        QStringList details;
        for (const QString &launch : DesktopSearch::launchIdentifiers(result)) {
            actions.append(launch.section(QChar(0x1f), 0, 0));
        }
        if (!result.phone.isEmpty()) {
            details.append(labelled(result.phoneLabel, result.phone));
        }
        if (!result.email.isEmpty()) {
            details.append(labelled(result.emailLabel, result.email));
        }
        match.id = identifierOf({u"contact"_qs, result.identifier, result.phoneLabel, result.phone, result.emailLabel,
                                 result.email, result.name});
        match.text = result.name;
        match.iconName = iconOf(actions.value(0));
        match.properties.insert(u"subtext"_qs, details.join(u" · "));
        match.properties.insert(u"actions"_qs, actions);
        // The contact's picture, when its card has one.
        if (const SharedVCardContact record = m_search.findRecord(result.identifier);
            record && record->imageDataAvailable()) {
            const QImage picture = ContactPhotoProvider::roundPicture(record->thumbnailImageData, 64)
                                       .convertToFormat(QImage::Format_RGBA8888);
            if (!picture.isNull()) {
                match.properties.insert(
                    u"icon-data"_qs,
                    QVariant::fromValue(RemoteImage{
                        picture.width(), picture.height(), int(picture.bytesPerLine()), true, 8, 4,
                        QByteArray(reinterpret_cast<const char *>(picture.constBits()), picture.sizeInBytes())}));
            }
        }
        matches.append(match);
    }
    return matches;
}

void KRunnerService::Run(const QString &matchId, const QString &actionId)
{
    const QStringList parts = matchId.left(4096).split(separator);
    if (parts.value(0) != u"contact" || parts.size() != 7) {
        m_search.activate(matchId); // a link
        return;
    }
    // The default action is the first the contact has: a call, else a mail.
    const QString action = !actionId.isEmpty() ? actionId : (!parts[3].isEmpty() ? u"call"_qs : u"mail"_qs);
    const bool byMail = action == u"mail";
    m_search.activate(
        identifierOf({action, parts[1], byMail ? parts[4] : parts[2], byMail ? parts[5] : parts[3], parts[6]}));
}

// ---- GNOME Shell ----

GnomeSearchProvider::GnomeSearchProvider(DesktopSearch &search)
    : m_search(search)
{}

QStringList GnomeSearchProvider::GetInitialResultSet(const QStringList &terms)
{
    return answerWhenReady(*this, m_search, [this, terms] { return resultSet(terms); });
}

QStringList GnomeSearchProvider::resultSet(const QStringList &terms)
{
    QStringList identifiers;
    for (const DesktopSearchResult &result : m_search.search(terms)) {
        identifiers += DesktopSearch::launchIdentifiers(result);
    }
    return identifiers.mid(0, DesktopSearchIndex::maximumResults);
}

QStringList GnomeSearchProvider::GetSubsearchResultSet(const QStringList &previousResults, const QStringList &terms)
{
    Q_UNUSED(previousResults); // searching again costs no more than filtering them
    return GetInitialResultSet(terms);
}

QList<QVariantMap> GnomeSearchProvider::GetResultMetas(const QStringList &identifiers)
{
    //: A result of the desktop's search: %1 is a contact's name, %2 a label and a number or address, "mobile +34 600…"
    static const QMap<QString, const char *> results = {
        {u"call"_qs, QT_TRANSLATE_NOOP("DesktopSearch", "Call %1 (%2)")},
        {u"message"_qs, QT_TRANSLATE_NOOP("DesktopSearch", "Message %1 (%2)")},
        {u"mail"_qs, QT_TRANSLATE_NOOP("DesktopSearch", "Mail %1 (%2)")}};
    QList<QVariantMap> metas;
    for (const QString &identifier : identifiers.mid(0, DesktopSearchIndex::maximumResults)) {
        const QStringList parts = identifier.left(4096).split(separator);
        if (parts.size() == 3 && parts[0] == u"open") {
            metas.append(QVariantMap{{u"id"_qs, identifier},
                                     {u"name"_qs, parts[2]},
                                     {u"description"_qs, parts[1]},
                                     {u"gicon"_qs, iconOf(u"open"_qs)},
                                     {u"clipboardText"_qs, parts[1]}});
        } else if (parts.size() == 5 && results.contains(parts[0])) {
            // "Call Ana García (mobile +34 600 111 222)"
            metas.append(
                QVariantMap{{u"id"_qs, identifier},
                            {u"name"_qs, Texts::tr(results[parts[0]]).arg(parts[4], labelled(parts[2], parts[3]))},
                            {u"gicon"_qs, iconOf(parts[0])},
                            {u"clipboardText"_qs, parts[3]}});
        }
    }
    return metas;
}

void GnomeSearchProvider::ActivateResult(const QString &identifier, const QStringList &terms, uint timestamp)
{
    Q_UNUSED(terms);
    Q_UNUSED(timestamp);
    m_search.activate(identifier);
}

void GnomeSearchProvider::LaunchSearch(const QStringList &terms, uint timestamp)
{
    Q_UNUSED(timestamp);
    Q_EMIT m_search.used();
    m_search.showWindow(DesktopSearchIndex::terms(terms.join(u' ')).join(u' '));
}
