#include "CommandLine.h"

#include "HomeWindowViewModel.h"
#include "WindowActivation.h"
#include "calls/CallsManager.h"
#include "contacts/ContactSearchIndex.h"
#include "contacts/ContactStoreManager.h"
#include "contacts/ContactsDataService.h"
#include "contacts/VCardDirectoryStore.h"
#include "favorites/FavoritesDataService.h"
#include "recents/RecentCallItemViewModel.h"
#include "settings/DeploymentSettings.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusContext>
#include <QDBusMessage>
#include <QDBusReply>
#include <QEventLoop>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTimer>

#include <cstdio>

namespace {

const QString serviceName = QStringLiteral("org.telverra.Telverra");
const QString objectPath = QStringLiteral("/org/telverra/Telverra");

const QStringList launchCommands = {u"call"_qs,           u"message"_qs, u"mail"_qs, u"facetime"_qs,
                                    u"facetime-audio"_qs, u"open"_qs,    u"meet"_qs};
const QStringList listCommands = {u"recents"_qs, u"favorites"_qs, u"contacts"_qs};

void out(const QString &text)
{
    std::fputs(text.toUtf8().constData(), stdout);
    std::fflush(stdout);
}

void err(const QString &text)
{
    std::fputs(text.toUtf8().constData(), stderr);
    std::fflush(stderr);
}

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(CommandLine)
};

int usageError(const QString &message)
{
    err(Texts::tr("telverra: %1\nTry 'telverra --help'.").arg(message) + u'\n');
    return 2;
}

// Waits until the address book has been read once (it is read on a thread of its own): a launch looks its number up
// in it and a listing prints it.
void waitForContacts(HomeWindowViewModel &viewModel)
{
    const ContactsDataService &contacts = viewModel.contactsDataService();
    QEventLoop loop;
    QObject::connect(&contacts, &ContactsDataService::loadingChanged, &loop, [&loop, &contacts] {
        if (!contacts.isLoading()) {
            loop.quit();
        }
    });
    if (contacts.isLoading()) {
        loop.exec();
    }
}

QJsonArray labelledValues(const QList<LabeledValue> &values)
{
    QJsonArray array;
    for (const LabeledValue &value : values) {
        array.append(
            QJsonObject{{u"label"_qs, ContactLabels::localizedString(value.label)}, {u"value"_qs, value.value}});
    }
    return array;
}

QJsonObject contactJson(const Contact &contact)
{
    return {{u"id"_qs, contact.id()},
            {u"name"_qs, contact.fullName()},
            {u"organization"_qs, contact.contact().organizationName},
            {u"phoneNumbers"_qs, labelledValues(contact.contact().phoneNumbers)},
            {u"emailAddresses"_qs, labelledValues(contact.contact().emailAddresses)}};
}

QString contactLine(const Contact &contact)
{
    QString name = contact.fullName();
    if (name.isEmpty()) {
        name = contact.contact().organizationName;
    }
    QStringList details;
    for (const LabeledValue &value : contact.contact().phoneNumbers) {
        details.append(value.value);
    }
    for (const LabeledValue &value : contact.contact().emailAddresses) {
        details.append(value.value);
    }
    return name + u'\t' + details.join(u", ") + u'\n';
}

int listRecents(HomeWindowViewModel &viewModel, const QString &search, bool json)
{
    viewModel.setSearchTextForRecents(search);
    const QList<RecentCallEntityPtr> records = viewModel.filteredRecentCalls();
    const QDateTime now = QDateTime::currentDateTime();
    if (json) {
        QJsonArray array;
        for (const RecentCallEntityPtr &record : records) {
            array.append(QJsonObject{{u"date"_qs, record->date().toString(Qt::ISODate)},
                                     {u"callType"_qs, record->callType()},
                                     {u"destinationValue"_qs, record->destinationValue()},
                                     {u"destinationTag"_qs, record->destinationTag()},
                                     {u"contactID"_qs, record->contactID()},
                                     {u"url"_qs, record->url()}});
        }
        out(QString::fromUtf8(QJsonDocument(array).toJson(QJsonDocument::Indented)));
        return 0;
    }
    for (const RecentCallEntityPtr &record : records) {
        out(RecentCallItemViewModel::relativeDateText(record->date(), now, QLocale::system()) + u'\t' +
            record->date().toString(u"yyyy-MM-dd HH:mm") + u'\t' + record->callType() + u'\t' +
            record->destinationValue() + u'\n');
    }
    return 0;
}

int listFavorites(HomeWindowViewModel &viewModel, bool json)
{
    if (json) {
        QJsonArray telcos;
        for (const FavoriteTelcoEntityPtr &telco : viewModel.allFavoriteTelcos()) {
            telcos.append(QJsonObject{{u"name"_qs, telco->telcoName()},
                                      {u"type"_qs, telco->telcoType()},
                                      {u"value"_qs, telco->telcoValue()}});
        }
        QJsonArray contacts;
        for (const Contact &contact : viewModel.allFavoriteContacts()) {
            contacts.append(contactJson(contact));
        }
        out(QString::fromUtf8(QJsonDocument(QJsonObject{{u"telcos"_qs, telcos}, {u"contacts"_qs, contacts}})
                                  .toJson(QJsonDocument::Indented)));
        return 0;
    }
    for (const FavoriteTelcoEntityPtr &telco : viewModel.allFavoriteTelcos()) {
        out(telco->telcoName() + u'\t' + telco->telcoType() + u'\t' + telco->telcoValue() + u'\n');
    }
    for (const Contact &contact : viewModel.allFavoriteContacts()) {
        out(contactLine(contact));
    }
    return 0;
}

int listContacts(HomeWindowViewModel &viewModel, const QString &search, bool json)
{
    const QList<Contact> contacts =
        search.isEmpty() ? viewModel.allContacts()
                         : HomeWindowViewModel::matchingContacts(viewModel.allContacts(),
                                                                 ContactSearchIndex(viewModel.allContacts()), search);
    if (json) {
        QJsonArray array;
        for (const Contact &contact : contacts) {
            array.append(contactJson(contact));
        }
        out(QString::fromUtf8(QJsonDocument(array).toJson(QJsonDocument::Indented)));
        return 0;
    }
    for (const Contact &contact : contacts) {
        out(contactLine(contact));
    }
    return 0;
}

// Runs a launch on this process's own view model; returns its exit status.
int launchHere(HomeWindowViewModel &viewModel, const QString &command, const QString &destination)
{
    LaunchCommand launch(viewModel, command, destination);
    int status = 1;
    QString error;
    QEventLoop loop;
    QObject::connect(&launch, &LaunchCommand::finished, &loop, [&](int s, const QString &e) {
        status = s;
        error = e;
        // A moment for what the launch started to report back (a browser's answer).
        QTimer::singleShot(200, &loop, &QEventLoop::quit);
    });
    launch.start();
    loop.exec();
    if (status != 0) {
        err(error + u'\n');
    }
    return status;
}

// Hands the launch to a running window; nothing when there is no window (or no session bus).
std::optional<int> launchInRunningWindow(const QString &command, const QString &destination)
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected() || !bus.interface() || !bus.interface()->isServiceRegistered(serviceName)) {
        return std::nullopt;
    }
    // Started by a launcher that lets it take the focus: the window comes to the front for the launch.
    if (const QVariantMap platformData = WindowActivation::platformDataFromEnvironment(); !platformData.isEmpty()) {
        CommandService::activateRunningWindow(QString(), platformData);
    }
    QDBusMessage call = QDBusMessage::createMethodCall(serviceName, objectPath, serviceName, u"Launch"_qs);
    call << command << destination;
    const QDBusMessage reply = bus.call(call, QDBus::Block, 30000);
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().size() < 2) {
        return std::nullopt;
    }
    const int status = reply.arguments().at(0).toInt();
    if (status != 0) {
        err(reply.arguments().at(1).toString() + u'\n');
    }
    return status;
}

} // namespace

namespace CommandLine {

bool isCommand(const QStringList &arguments)
{
    // Any word that is not an option or an option's value is a command (an unknown one is a usage error).
    for (qsizetype i = 1; i < arguments.size(); ++i) {
        const QString &argument = arguments.at(i);
        if (argument == u"--contacts" || argument == u"--search" || argument == u"--info" ||
            argument == u"--screenshots" || argument == u"--action") {
            ++i;
            continue;
        }
        if (!argument.startsWith(u'-')) {
            return true;
        }
    }
    return false;
}

QString helpText()
{
    //: The whole of "telverra --help". Command and option names stay as they are; keep the columns aligned.
    return Texts::tr(
        "Usage: telverra [COMMAND [ARGUMENTS]] [OPTIONS]\n"
        "\n"
        "Without a command, Telverra opens its window.\n"
        "\n"
        "Launch commands (forwarded to a running window when there is one):\n"
        "  call NUMBER               place a phone call (tel:)\n"
        "  message DESTINATION       send a text message (sms:)\n"
        "  mail ADDRESS              write an e-mail (mailto:)\n"
        "  facetime DESTINATION      start a FaceTime video call\n"
        "  facetime-audio DESTINATION  start a FaceTime audio call\n"
        "  open URL                  open a Google Meet, Zoom, Webex or Jitsi meeting link\n"
        "  meet                      start a new Google Meet meeting and record its address\n"
        "\n"
        "Listings:\n"
        "  recents [--search TEXT] [--json]    the history of launches, newest first\n"
        "  favorites [--json]                  saved meeting links and favourite contacts\n"
        "  contacts [--search TEXT] [--json]   the address book\n"
        "\n"
        "Options:\n"
        "  --contacts DIR   read the address book from this vCard folder\n"
        "  --info FILE      read the deployment settings (Info.ini) from FILE\n"
        "  --self-test      load every screen without showing it, then exit\n"
        "  --action NAME    run a desktop action in the window: new-meet, call-from-clipboard, dialer\n"
        "  -h, --help       show this help\n"
        "  -v, --version    show the version\n"
        "\n"
        "Exit status: 0 on success, 1 when a launch failed (the reason on standard error), 2 on a usage error.\n");
}

int run(const QStringList &arguments)
{
    QString command;
    QStringList positional;
    QString search;
    QString contactsFolder;
    bool json = false;
    for (qsizetype i = 1; i < arguments.size(); ++i) {
        const QString &argument = arguments.at(i);
        if (argument == u"--json") {
            json = true;
        } else if (argument == u"--search" || argument == u"--contacts" || argument == u"--info") {
            if (i + 1 >= arguments.size()) {
                return usageError(Texts::tr("%1 needs a value").arg(argument));
            }
            const QString value = arguments.at(++i);
            if (argument == u"--info") {
                DeploymentSettings::setSharedFile(value);
            } else {
                (argument == u"--search" ? search : contactsFolder) = value;
            }
        } else if (argument.startsWith(u"--search=")) {
            search = argument.sliced(9);
        } else if (argument.startsWith(u"--contacts=")) {
            contactsFolder = argument.sliced(11);
        } else if (argument == u"--") {
            positional += arguments.mid(i + 1);
            break;
        } else if (argument.startsWith(u'-') && command.isEmpty()) {
            return usageError(Texts::tr("unknown option %1").arg(argument));
        } else if (command.isEmpty()) {
            command = argument;
        } else {
            positional.append(argument); // a destination may start with "-" only after the command
        }
    }
    if (!launchCommands.contains(command) && !listCommands.contains(command)) {
        return usageError(Texts::tr("unknown command %1").arg(command));
    }
    const bool takesDestination = LaunchCommand::takesDestination(command);
    if (takesDestination && positional.size() != 1) {
        return usageError(Texts::tr("%1 takes one destination").arg(command));
    }
    if (!takesDestination && !positional.isEmpty()) {
        return usageError(Texts::tr("%1 takes no destination").arg(command));
    }
    if ((json || !search.isEmpty()) && !listCommands.contains(command)) {
        return usageError(Texts::tr("--json and --search go with recents, favorites and contacts"));
    }
    if (!search.isEmpty() && command == u"favorites") {
        return usageError(Texts::tr("favorites takes no --search"));
    }
    const QString destination = positional.value(0);

    if (LaunchCommand::isLaunch(command) && contactsFolder.isEmpty()) {
        if (const std::optional<int> status = launchInRunningWindow(command, destination)) {
            return *status;
        }
    }

    std::unique_ptr<VCardDirectoryStore> folder;
    if (!contactsFolder.isEmpty()) {
        folder = std::make_unique<VCardDirectoryStore>(QStringList{contactsFolder});
        ContactStoreManager::setSharedContactStore(folder.get());
    }
    HomeWindowViewModel::Environment environment;
    environment.headless = true;
    HomeWindowViewModel viewModel(environment);
    waitForContacts(viewModel);
    if (command == u"recents") {
        return listRecents(viewModel, search, json);
    }
    if (command == u"favorites") {
        return listFavorites(viewModel, json);
    }
    if (command == u"contacts") {
        return listContacts(viewModel, search, json);
    }
    return launchHere(viewModel, command, destination);
}

} // namespace CommandLine

LaunchCommand::LaunchCommand(HomeWindowViewModel &viewModel, const QString &command, const QString &destination,
                             QObject *parent)
    : QObject(parent)
    , m_viewModel(viewModel)
    , m_command(command)
    , m_destination(destination)
{
    connect(&m_viewModel, &HomeWindowViewModel::launchFinished, this, [this](bool success, const QString &text) {
        if (!m_done) {
            m_done = true;
            Q_EMIT finished(success ? 0 : 1, success ? QString() : text);
        }
    });
}

bool LaunchCommand::isLaunch(const QString &command)
{
    return launchCommands.contains(command);
}

bool LaunchCommand::takesDestination(const QString &command)
{
    return isLaunch(command) && command != u"meet";
}

void LaunchCommand::start()
{
    if (m_command == u"open") {
        m_viewModel.openTelcoURL(m_destination);
        return;
    }
    if (m_command == u"meet") {
        m_viewModel.startMeetingInBrowser(CallTypes::googleMeetNew);
        return;
    }
    // The destination goes into the dialer's display, then the dialer's call or the contact action runs.
    m_viewModel.validateDialerDisplay(m_destination);
    if (m_command == u"call") {
        m_viewModel.makeCallFromDialer();
        if (!m_done) { // the dialer refused the number: nothing was launched
            m_done = true;
            Q_EMIT finished(1, Texts::tr("Not a number that can be called: %1").arg(m_destination));
        }
        return;
    }
    const CallTypes type = m_command == u"message"    ? CallTypes::messages
                           : m_command == u"mail"     ? CallTypes::mail
                           : m_command == u"facetime" ? CallTypes::facetime
                                                      : CallTypes::facetimeaudio;
    const ContactsDataService::PhoneNumberMatch match = m_viewModel.contactsDataService().findContact(m_destination);
    m_viewModel.sendContactAction(match.contact.value_or(Contact()), match.label, type);
}

CommandService::CommandService(HomeWindowViewModel &viewModel, QObject *parent)
    : QObject(parent)
    , m_viewModel(viewModel)
{}

bool CommandService::registerOnSessionBus()
{
    // The object first, so that a call the bus held back for an activation finds it when the name appears.
    QDBusConnection bus = QDBusConnection::sessionBus();
    return bus.isConnected() &&
           bus.registerObject(objectPath, this,
                              QDBusConnection::ExportScriptableSlots | QDBusConnection::ExportAdaptors) &&
           bus.registerService(serviceName);
}

void CommandService::unregisterFromSessionBus()
{
    QDBusConnection::sessionBus().unregisterService(serviceName);
}

bool CommandService::activateRunningWindow(const QString &action, const QVariantMap &platformData)
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected() || !bus.interface() || !bus.interface()->isServiceRegistered(serviceName)) {
        return false;
    }
    const QString interface = QStringLiteral("org.freedesktop.Application");
    QDBusMessage call = action.isEmpty()
                            ? QDBusMessage::createMethodCall(serviceName, objectPath, interface, u"Activate"_qs)
                            : QDBusMessage::createMethodCall(serviceName, objectPath, interface, u"ActivateAction"_qs);
    if (action.isEmpty()) {
        call << platformData;
    } else {
        call << action << QVariantList() << platformData;
    }
    return bus.call(call, QDBus::Block, 10000).type() == QDBusMessage::ReplyMessage;
}

int CommandService::Launch(const QString &command, const QString &destination, QString &error)
{
    Q_EMIT used();
    if (!LaunchCommand::isLaunch(command)) {
        error = Texts::tr("Unknown command: %1").arg(command);
        return 2;
    }
    int status = 1;
    bool done = false;
    LaunchCommand launch(m_viewModel, command, destination);
    QEventLoop loop;
    QObject::connect(&launch, &LaunchCommand::finished, &loop, [&](int s, const QString &e) {
        status = s;
        error = e;
        done = true;
        loop.quit();
    });
    launch.start();
    if (!done) {
        loop.exec(); // a new meeting answers after its search
    }
    return status;
}
