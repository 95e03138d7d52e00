// idle_window SCREEN [MINUTES]: the main window left alone on one screen, and what it costs at rest. SCREEN is one of
// welcome (its quote shown), dialer (a number typed in and left there), recents, favorites, contacts, settings (the
// settings window open over the dialer), weather (the weather pop-over open over the dialer), or waiting (the welcome
// screen waiting for a quote that does not come: its indicator moves).
// The window is the application's (Main.qml over a view model), in a home seeded with 10,000 contacts, 1,000 recent
// calls, saved links and favourite contacts, with a weather document and a quote served on 127.0.0.1; the quote fails
// (as it does offline) behind every screen but the welcome screen. It starts as a user starts it: the welcome screen
// hands over to the dialer after six seconds (the welcome screens keep it, "fixed quote on start-up"), the window is
// activated, the screen is chosen, and once it has settled the frames of every window of the process and the process's
// CPU time (all its threads) are counted over the first minute and over the whole run, and the resident memory is read
// after 1 minute and at the end (MINUTES, 10 by default). One line of figures goes to standard error. Needs a display
// (xvfb-run).
#include "VdirGenerator.h"
#include "app/CursorBlinkTimeout.h"
#include "app/HomeWindowViewModel.h"
#include "app/SymbolIconProvider.h"
#include "calls/CallsManager.h"
#include "calls/Clipboard.h"
#include "contacts/ContactPhotoProvider.h"
#include "contacts/ContactStoreManager.h"
#include "contacts/ContactsDataService.h"
#include "contacts/ContactsListModel.h"
#include "contacts/VCardDirectoryStore.h"
#include "settings/DeploymentSettings.h"
#include "settings/Preferences.h"
#include "store/CoreDataManager.h"
#include "support/LoopbackHttpServer.h"
#include "support/RecordingWorkspace.h"
#include "support/ScriptedLocation.h"

#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QNetworkAccessManager>
#include <QQmlApplicationEngine>
#include <QQuickItem>
#include <QQuickStyle>
#include <QQuickWindow>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QtQml/qqmlextensionplugin.h>

#include <sys/resource.h>

#include <cstdio>

Q_IMPORT_QML_PLUGIN(TelverraPlugin)

namespace {

// The process's CPU time so far, every thread, in milliseconds.
double cpuMilliseconds()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    auto ms = [](const timeval &t) { return double(t.tv_sec) * 1000.0 + double(t.tv_usec) / 1000.0; };
    return ms(usage.ru_utime) + ms(usage.ru_stime);
}

// The resident memory, in MB (Linux).
double residentMegabytes()
{
    QFile status(QStringLiteral("/proc/self/status"));
    status.open(QIODevice::ReadOnly);
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith("VmRSS:")) {
            return line.mid(6).trimmed().split(' ').value(0).toDouble() / 1024.0;
        }
    }
    return 0;
}

// Runs the event loop until `done` holds or the deadline passes; false on the deadline.
bool waitFor(const std::function<bool()> &done, int seconds)
{
    QDeadlineTimer deadline(seconds * 1000);
    while (!done()) {
        if (deadline.hasExpired()) {
            return false;
        }
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 50);
    }
    return true;
}

void rest(int milliseconds)
{
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

// The seeded home: the address book, and the store with its history, saved links and favourite contacts.
struct Home
{
    explicit Home(const QString &folder)
        : root(folder)
    {
        generateVdir(contacts(), 10000);
        CoreDataManager seed(storeFile());
        const QDateTime start = QDateTime::currentDateTime().addDays(-120);
        for (int i = 0; i < 1000; ++i) {
            auto record = seed.viewContext().insertNewObject<RecentCallEntity>();
            record->setDate(start.addSecs(i * 7200));
            record->setCallType(i % 5 == 0 ? u"mail"_qs : u"telephone"_qs);
            record->setDestinationValue(i % 5 == 0 ? QString(u"person"_qs + QString::number(i) + u"@example.org"_qs)
                                                   : QString(u"+34 600 "_qs + QString::number(100000 + i)));
        }
        for (int i = 0; i < 8; ++i) {
            auto link = seed.viewContext().insertNewObject<FavoriteTelcoEntity>();
            link->setTelcoName(u"Team meeting "_qs + QString::number(i + 1));
            link->setTelcoType(u"jitsi"_qs);
            link->setTelcoValue(u"https://meet.jit.si/telverra-team-"_qs + QString::number(i + 1));
            link->setOrderIndex(i);
        }
        for (int i = 0; i < 12; ++i) {
            auto favorite = seed.viewContext().insertNewObject<FavoriteContactEntity>();
            favorite->setContactID(u"gen-"_qs + QString::number(i * 800));
            favorite->setOrderIndex(i);
        }
        seed.save();
    }
    QString contacts() const { return root + u"/contacts"_qs; }
    QString storeFile() const { return root + u"/Telverra.sqlite"_qs; }

    QString root;
};

} // namespace

int main(int argc, char *argv[])
{
    const QStringList screens{u"welcome"_qs,  u"dialer"_qs,   u"recents"_qs, u"favorites"_qs,
                              u"contacts"_qs, u"settings"_qs, u"weather"_qs, u"waiting"_qs};
    const QString screen = argc > 1 ? QString::fromLocal8Bit(argv[1]) : QString();
    if (!screens.contains(screen)) {
        std::fprintf(stderr, "usage: idle_window %s [MINUTES]\n", qPrintable(screens.join(u'|')));
        return 2;
    }
    const int minutes = argc > 2 ? std::max(1, QByteArray(argv[2]).toInt()) : 10;

    // Nothing of the user's is read or written: the home is a temporary one.
    QTemporaryDir dir;
    qputenv("HOME", dir.path().toLocal8Bit());
    qputenv("XDG_CONFIG_HOME", (dir.path() + u"/.config").toLocal8Bit());
    qputenv("XDG_DATA_HOME", (dir.path() + u"/.local/share").toLocal8Bit());
    QGuiApplication app(argc, argv);
    QQuickStyle::setStyle(QStringLiteral("Fusion"));

    Home home(dir.path());
    LoopbackHttpServer server;
    if (!server.listen()) {
        return 1;
    }
    QFile onecall(QStringLiteral(TELVERRA_WEATHER_DOCUMENT));
    if (!onecall.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "no weather document at %s\n", TELVERRA_WEATHER_DOCUMENT);
        return 1;
    }
    server.setResponse(u"/data/3.0/onecall"_qs, 200, "application/json", onecall.readAll());
    const bool welcome = screen == u"welcome" || screen == u"waiting";
    const bool quoteServed = screen == u"welcome";
    const QByteArray quote = R"({"language":"en","text":"Simplicity is the ultimate sophistication."})";
    for (const QString &path : {u"/randomquote/en_US"_qs, u"/randomquote/es_ES"_qs}) {
        server.setResponse(path, quoteServed ? 200 : 503, "application/json", quoteServed ? quote : QByteArray());
    }
    QFile info(dir.path() + u"/Info.ini"_qs);
    info.open(QIODevice::WriteOnly);
    info.write((u"[General]\nWEATHER_API_KEY=k\nWEATHER_API_BASE_URL=" + server.baseUrl() +
                u"\nQUOTE_SERVICE_BASE_URL=" + server.baseUrl() + u'\n')
                   .toUtf8());
    info.close();
    DeploymentSettings deployment(info.fileName());

    Preferences preferences(dir.path() + u"/telverra.conf");
    preferences.setValue(PreferenceKey::fixedQuoteOnStartup, welcome);
    RecordingWorkspace workspace; // launches nothing
    SystemClipboard clipboard;
    CallsManager calls(workspace, preferences, clipboard);
    CoreDataManager store(home.storeFile());
    VCardDirectoryStore folder(QStringList{home.contacts()});
    ContactStoreManager manager(folder);
    QNetworkAccessManager network;
    ScriptedServices location;
    location.status = LocationManager::authorizedWhenInUse;
    location.position = QGeoCoordinate(28.4636, -16.2518);
    ScriptedGeocoder geocoder;
    HomeWindowViewModel viewModel(HomeWindowViewModel::Environment{&preferences, &calls, &store, &manager, &clipboard,
                                                                   &network, &deployment, &location, &geocoder});
    const CursorBlinkTimeout cursorBlinkTimeout;
    QQmlApplicationEngine engine;
    engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
    engine.addImageProvider(QStringLiteral("symbols"), new SymbolIconProvider);
    const ContactsDataService *contacts = &viewModel.contactsDataService();
    engine.addImageProvider(QStringLiteral("contactphoto"),
                            new ContactPhotoProvider([contacts](const QString &id) { return contacts->record(id); }));
    engine.setInitialProperties({{QStringLiteral("viewModel"), QVariant::fromValue(&viewModel)}});
    engine.load(QUrl(QStringLiteral("qrc:/qt/qml/Telverra/app/Main.qml")));
    auto *window = qobject_cast<QQuickWindow *>(engine.rootObjects().value(0));
    if (!window) {
        return 1;
    }
    QObject::connect(
        window, &QQuickWindow::frameSwapped, &viewModel.contactsDataService(),
        [&viewModel] { viewModel.contactsDataService().allowBackgroundReading(); },
        static_cast<Qt::ConnectionType>(Qt::QueuedConnection | Qt::SingleShotConnection));

    // Every frame of every window of the process.
    qint64 frames = 0;
    QSet<QQuickWindow *> watched;
    auto watchWindows = [&] {
        for (QWindow *candidate : QGuiApplication::topLevelWindows()) {
            auto *quick = qobject_cast<QQuickWindow *>(candidate);
            if (quick && !watched.contains(quick)) {
                watched.insert(quick);
                QObject::connect(quick, &QQuickWindow::frameSwapped, &app, [&frames] { ++frames; });
            }
        }
    };
    watchWindows();

    // The address book read and listed, the favourite contacts found in it, the weather and the quote (or its failure)
    // in.
    auto *contactsModel = qobject_cast<ContactsListModel *>(viewModel.contactsModel());
    const bool ready = waitFor(
        [&] {
            return window->property("loaded").toBool() && contacts->hasLoaded() &&
                   contactsModel->contactCount() == contacts->count() && !viewModel.allFavoriteContacts().isEmpty() &&
                   viewModel.weatherInfo().has_value() &&
                   (quoteServed ? !viewModel.randomQuote().isEmpty()
                                : server.requests().filter(u"/randomquote/"_qs).size() == 1);
        },
        600); // the address book is read at the lowest priority: on a busy machine that takes its time
    if (!ready) {
        std::fprintf(stderr, "%s: the window did not get ready\n", qPrintable(screen));
        return 1;
    }
    // The user's window is the active one, as it is when they have just used it (a focused text field blinks only
    // there).
    window->requestActivate();
    if (!waitFor([window] { return window->isActive(); }, 10)) {
        std::fprintf(stderr, "%s: the window is not active\n", qPrintable(screen));
        return 1;
    }
    if (!welcome && !waitFor([&] { return viewModel.isDialerShown() && !viewModel.timer()->isActive(); }, 30)) {
        std::fprintf(stderr, "%s: no hand-over to the dialer\n", qPrintable(screen));
        return 1;
    }
    if (screen == u"recents") {
        viewModel.setIsRecentsShown(true);
    } else if (screen == u"favorites") {
        viewModel.setIsFavoritesShown(true);
    } else if (screen == u"contacts") {
        viewModel.setIsContactsShown(true);
    } else if (screen == u"settings") {
        QMetaObject::invokeMethod(window, "openSettings");
    } else if (screen == u"weather") {
        QMetaObject::invokeMethod(window, "openWeatherPopover");
    } else if (screen == u"dialer") {
        // A number typed and left there: the display keeps the focus and its cursor.
        if (auto *display = window->findChild<QQuickItem *>(u"display"_qs)) {
            display->forceActiveFocus();
        }
        for (Qt::Key key : {Qt::Key_6, Qt::Key_0, Qt::Key_0}) {
            QTest::keyClick(window, key);
        }
        if (viewModel.dialer().display != u"600") {
            std::fprintf(stderr, "dialer: typing did not reach the display\n");
            return 1;
        }
    }
    watchWindows();
    // Left alone: what a screen does when it appears or is typed in (building, fading in, blinking the cursor for
    // ten seconds) is over.
    rest(15000);

    // Minute by minute: the frames, and the resident memory at the end of the minute.
    const double cpuAtRest = cpuMilliseconds();
    QElapsedTimer clock;
    clock.start();
    QList<qint64> framesByMinute;
    QList<double> residentByMinute{residentMegabytes()};
    double cpuFirstMinute = 0;
    double secondsFirstMinute = 0;
    for (int minute = 0; minute < minutes; ++minute) {
        const qint64 before = frames;
        rest(60 * 1000);
        framesByMinute.append(frames - before);
        residentByMinute.append(residentMegabytes());
        if (minute == 0) {
            cpuFirstMinute = cpuMilliseconds() - cpuAtRest;
            secondsFirstMinute = double(clock.elapsed()) / 1000.0;
        }
    }
    const double cpuAll = cpuMilliseconds() - cpuAtRest;
    const double secondsAll = double(clock.elapsed()) / 1000.0;
    QStringList frameList;
    for (qint64 count : framesByMinute) {
        frameList.append(QString::number(count));
    }
    QStringList residentList;
    for (double megabytes : residentByMinute) {
        residentList.append(QString::number(megabytes, 'f', 1));
    }
    std::fprintf(stderr,
                 "%-9s first minute: %lld frames, CPU %.0f ms (%.2f%% of a core) | %d minutes: CPU %.0f ms (%.2f%%), "
                 "frames by minute %s | resident MB by minute %s: after 1 minute %.1f, after %d %.1f (%+.1f)\n",
                 qPrintable(screen), static_cast<long long>(framesByMinute.first()), cpuFirstMinute,
                 cpuFirstMinute / secondsFirstMinute / 10.0, minutes, cpuAll, cpuAll / secondsAll / 10.0,
                 qPrintable(frameList.join(u' ')), qPrintable(residentList.join(u' ')), residentByMinute.at(1), minutes,
                 residentByMinute.last(), residentByMinute.last() - residentByMinute.at(1));
    return 0;
}
