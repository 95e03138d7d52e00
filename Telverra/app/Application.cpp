#include "Application.h"

#include "CommandLine.h"
#include "CursorBlinkTimeout.h"
#include "DesktopActivation.h"
#include "DesktopSearch.h"
#include "HomeWindowViewModel.h"
#include "Translations.h"
#include "WindowActivation.h"
#include "calls/Clipboard.h"
#include "contacts/ContactPhotoProvider.h"
#include "contacts/ContactStoreManager.h"
#include "contacts/ContactsDataService.h"
#include "contacts/VCardDirectoryStore.h"
#include "settings/DeploymentSettings.h"
#include "store/CoreDataManager.h"

#include "app/SymbolIconProvider.h"
#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDBusConnection>
#include <QDirIterator>
#include <QEventLoop>
#include <QGuiApplication>
#include <QIcon>
#include <QPointer>
#include <QProcess>

#include <QQmlApplicationEngine>
#include <QQmlComponent>
#include <QQuickStyle>
#include <QQuickWindow>
#include <QTimer>
#include <QtQml/qqmlextensionplugin.h>

#include <cstdio>

Q_IMPORT_QML_PLUGIN(TelverraPlugin)

namespace Application {
namespace {

const QUrl mainQml(QStringLiteral("qrc:/qt/qml/Telverra/app/Main.qml"));

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(CommandLine)
};

void printError(const QString &text)
{
    std::fputs((text + u'\n').toUtf8().constData(), stderr);
}

void prepareEngine(QQmlEngine &engine)
{
    engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
    engine.addImageProvider(QStringLiteral("symbols"), new SymbolIconProvider);
}

// The contacts' pictures, from the address book the view model shows. The engine goes before the view model.
void addContactPhotos(QQmlEngine &engine, const HomeWindowViewModel &viewModel)
{
    const ContactsDataService *contacts = &viewModel.contactsDataService();
    engine.addImageProvider(QStringLiteral("contactphoto"),
                            new ContactPhotoProvider([contacts](const QString &id) { return contacts->record(id); }));
}

// Saves a picture of each section into the folder, then quits (the screenshots of the README).
void takeScreenshots(QQmlApplicationEngine &engine, HomeWindowViewModel &viewModel, const QString &folder)
{
    auto *window = qobject_cast<QQuickWindow *>(engine.rootObjects().value(0));
    if (!window) {
        QCoreApplication::exit(1);
        return;
    }
    const QString suffix = qEnvironmentVariable("TELVERRA_COLOR_SCHEME") == u"dark" ? u"-dark"_qs : u"-light"_qs;
    // The window a shot is taken of: the main one, or the settings window once it is open.
    auto windowTitled = [window](const QString &title) -> QQuickWindow * {
        for (QWindow *candidate : QGuiApplication::topLevelWindows()) {
            if (candidate->title() == title && candidate->isVisible()) {
                return qobject_cast<QQuickWindow *>(candidate);
            }
        }
        return window;
    };
    struct Shot
    {
        const char *name;
        std::function<void()> select;
        QString windowTitle = QStringLiteral("Telverra");
    };
    auto shots = std::make_shared<QList<Shot>>(QList<Shot>{
        {"welcome", [] {}},
        {"dialer", [&viewModel] { viewModel.setIsDialerShown(true); }},
        {"recents", [&viewModel] { viewModel.setIsRecentsShown(true); }},
        {"weather", [window] { QMetaObject::invokeMethod(window, "openWeatherPopover"); }},
        {"contacts",
         [&viewModel, window] {
             QMetaObject::invokeMethod(window, "closeWeatherPopover");
             viewModel.setIsContactsShown(true);
         }},
        {"favorites", [&viewModel] { viewModel.setIsFavoritesShown(true); }},
        {"link-editor", [window] { QMetaObject::invokeMethod(window, "openLinkEditor"); }},
        {"settings", [window] { QMetaObject::invokeMethod(window, "openSettings"); },
         QCoreApplication::translate("SettingsView", "Telverra Settings")},
    });
    auto next = std::make_shared<std::function<void(int)>>();
    *next = [=](int index) {
        if (index >= shots->size()) {
            QCoreApplication::quit();
            return;
        }
        shots->at(index).select();
        QTimer::singleShot(1500, window, [=] {
            windowTitled(shots->at(index).windowTitle)
                ->grabWindow()
                .save(folder + u'/' + QLatin1StringView(shots->at(index).name) + suffix + u".png");
            (*next)(index + 1);
        });
    };
    QTimer::singleShot(2500, window, [next] { (*next)(0); });
}

// Where there is a display, a store that cannot be opened is told in a window before the process stops; a terminal
// alone only ever sees the fatal line.
void tellStoreFailuresOnScreen()
{
    const QString platform = QGuiApplication::platformName();
    if (platform == u"offscreen" || platform == u"minimal") {
        return;
    }
    CoreDataManager::setLoadFailureNotice([](const QString &storeFile, const QString &error) {
        QQmlApplicationEngine engine;
        prepareEngine(engine);
        engine.setInitialProperties({{QStringLiteral("storeFile"), storeFile}, {QStringLiteral("error"), error}});
        engine.load(QUrl(QStringLiteral("qrc:/qt/qml/Telverra/app/StoreErrorWindow.qml")));
        auto *window = qobject_cast<QQuickWindow *>(engine.rootObjects().value(0));
        if (!window) {
            return;
        }
        QEventLoop loop;
        QObject::connect(window, &QWindow::visibleChanged, &loop, [&loop](bool visible) {
            if (!visible) {
                loop.quit();
            }
        });
        window->requestActivate();
        loop.exec();
    });
}

// How long an action that reads the clipboard waits for the window to get the focus.
constexpr int focusWaitMilliseconds = 10000;

// Runs a desktop action in the window. The clipboard call waits until the window has the focus where the desktop
// hands the clipboard only to the focused window (Wayland): read before that, there is nothing true to dial. If the
// focus does not come, the call itself tells the user so.
void runActionWhenReady(HomeWindowViewModel &viewModel, const QString &action)
{
    if (action != u"call-from-clipboard" || SystemClipboard().isReadable()) {
        DesktopActivation::runAction(viewModel, action);
        return;
    }
    WindowActivation::whenFocused(&viewModel, focusWaitMilliseconds,
                                  [&viewModel, action](bool) { DesktopActivation::runAction(viewModel, action); });
}

void showContactsSearch(HomeWindowViewModel &viewModel, const QString &text)
{
    viewModel.setIsContactsShown(true);
    viewModel.setSearchTextForContacts(text);
}

// What the session bus starts for the desktop (D-Bus activation): the command line's view model serves the desktop's
// search and its launches without a window, and leaves after a minute without a call. A request for a window hands
// over to a new start of the program, which opens one.
int runService(QGuiApplication &app)
{
    if (CommandService::activateRunningWindow()) {
        return 0; // a window serves already
    }
    HomeWindowViewModel::Environment environment;
    environment.headless = true;
    HomeWindowViewModel viewModel(environment);
    CommandService commands(viewModel);
    auto handOver = [&commands, &app](const QStringList &arguments, const QString &token = {}) {
        commands.unregisterFromSessionBus();
        // The launcher's token goes to the new process, whose window takes the focus with it.
        QProcess process;
        process.setProgram(QCoreApplication::applicationFilePath());
        process.setArguments(arguments);
        QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
        for (const auto &[name, value] : WindowActivation::environmentFor(token)) {
            variables.insert(name, value);
        }
        process.setProcessEnvironment(variables);
        process.startDetached();
        QTimer::singleShot(500, &app, &QCoreApplication::quit); // after the reply has gone
    };
    auto *activation = new DesktopActivation(&commands, [handOver](const QString &desktopAction, const QString &token) {
        handOver(desktopAction.isEmpty() ? QStringList() : QStringList{u"--action"_qs, desktopAction}, token);
    });
    DesktopSearch desktopSearch(viewModel, [handOver](const QString &text) { handOver({u"--search"_qs, text}); });
    QTimer idle;
    idle.setSingleShot(true);
    idle.setInterval(serviceIdleMilliseconds);
    QObject::connect(&idle, &QTimer::timeout, &app, &QCoreApplication::quit);
    QObject::connect(activation, &DesktopActivation::used, &idle, qOverload<>(&QTimer::start));
    QObject::connect(&desktopSearch, &DesktopSearch::used, &idle, qOverload<>(&QTimer::start));
    QObject::connect(&commands, &CommandService::used, &idle, qOverload<>(&QTimer::start));
    if (!desktopSearch.registerOn(QDBusConnection::sessionBus()) || !commands.registerOnSessionBus()) {
        return 1;
    }
    idle.start();
    return QCoreApplication::exec();
}

} // namespace

int selfTest()
{
    QQmlEngine engine;
    prepareEngine(engine);
    int failures = 0;
    int loaded = 0;
    QDirIterator files(QStringLiteral(":/qt/qml/Telverra"), {QStringLiteral("*.qml")}, QDir::Files,
                       QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QUrl url(u"qrc" + files.next());
        QQmlComponent component(&engine, url);
        if (component.isError()) {
            ++failures;
            for (const QQmlError &error : component.errors()) {
                printError(error.toString());
            }
        }
        ++loaded;
    }

    HomeWindowViewModel::Environment environment;
    environment.headless = true;
    HomeWindowViewModel viewModel(environment);
    QQmlApplicationEngine application;
    prepareEngine(application);
    addContactPhotos(application, viewModel);
    application.setInitialProperties(
        {{QStringLiteral("viewModel"), QVariant::fromValue(&viewModel)}, {QStringLiteral("visible"), false}});
    application.load(mainQml);
    if (application.rootObjects().isEmpty()) {
        printError(QStringLiteral("self-test: the main window did not load"));
        ++failures;
    }
    std::printf("self-test: %d QML files compiled, %d failed\n", loaded, failures);
    return failures == 0 && loaded > 0 ? 0 : 1;
}

int run(int argc, char *argv[])
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i) {
        arguments.append(QString::fromLocal8Bit(argv[i]));
    }
    // A second start hands its launcher's token to the running window; Qt's X11 platform takes DESKTOP_STARTUP_ID out
    // of the environment when it starts, so it is read first.
    const QVariantMap launcherPlatformData = WindowActivation::platformDataFromEnvironment();
    const bool help = arguments.contains(u"--help"_qs) || arguments.contains(u"-h"_qs);
    if (CommandLine::isCommand(arguments) || help) {
        // No window: a console application, so that commands work without a display.
        QCoreApplication app(argc, argv);
        QCoreApplication::setApplicationName(QStringLiteral("Telverra"));
        QCoreApplication::setApplicationVersion(QStringLiteral(TELVERRA_VERSION));
        Translations::install();
        if (help) {
            std::fputs(CommandLine::helpText().toUtf8().constData(), stdout);
            return 0;
        }
        return CommandLine::run(arguments);
    }
    if (arguments.contains(u"--version"_qs) || arguments.contains(u"-v"_qs)) {
        std::puts("Telverra " TELVERRA_VERSION);
        return 0;
    }
    // Without a display, what needs no window (the self-test, the desktop's search started by the bus) draws
    // offscreen; a window cannot be shown, and that is said plainly rather than by Qt's abort.
    const bool display = !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") ||
                         !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") || arguments.contains(u"-platform"_qs);
    std::vector<char *> applicationArguments(argv, argv + argc);
    char platformOption[] = "-platform";
    char offscreen[] = "offscreen";
    if (!display) {
        if (!arguments.contains(u"--self-test"_qs) && !arguments.contains(u"--gapplication-service"_qs)) {
            QCoreApplication console(argc, argv);
            Translations::install();
            printError(Texts::tr("telverra: no display to show the window on (neither DISPLAY nor WAYLAND_DISPLAY is "
                                 "set).\nThe commands work without one: try 'telverra --help'."));
            return 1;
        }
        applicationArguments.insert(applicationArguments.begin() + 1, {platformOption, offscreen});
    }
    int applicationArgumentCount = int(applicationArguments.size());
    applicationArguments.push_back(nullptr);

    QGuiApplication app(applicationArgumentCount, applicationArguments.data());
    QGuiApplication::setApplicationName(QStringLiteral("Telverra"));
    QGuiApplication::setApplicationVersion(QStringLiteral(TELVERRA_VERSION));
    QGuiApplication::setDesktopFileName(QString::fromLatin1(applicationId));
    QGuiApplication::setWindowIcon(QIcon(QStringLiteral(":/icons/app/org.telverra.Telverra.svg")));
    // Before the first window and the first message.
    Translations::install();
    if (qEnvironmentVariableIsEmpty("QT_QUICK_CONTROLS_STYLE")) {
        QQuickStyle::setStyle(QStringLiteral("Fusion"));
    }

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Telverra: calls, messages, mail and meetings from one window."));
    parser.addVersionOption();
    const QCommandLineOption selfTestOption(QStringLiteral("self-test"),
                                            QStringLiteral("Load every screen without showing it, then exit."));
    const QCommandLineOption contactsOption(QStringLiteral("contacts"),
                                            QStringLiteral("Read the address book from this vCard folder."),
                                            QStringLiteral("DIR"));
    const QCommandLineOption infoOption(
        QStringLiteral("info"), QStringLiteral("Read the deployment settings from FILE."), QStringLiteral("FILE"));
    parser.addOption(selfTestOption);
    parser.addOption(contactsOption);
    const QCommandLineOption screenshotsOption(QStringLiteral("screenshots"),
                                               QStringLiteral("Save a picture of each screen into DIR, then quit."),
                                               QStringLiteral("DIR"));
    const QCommandLineOption actionOption(
        QStringLiteral("action"), QStringLiteral("Run a desktop action: new-meet, call-from-clipboard or dialer."),
        QStringLiteral("NAME"));
    // What D-Bus activation starts the program with; it starts as usual and the bus then hands over the call.
    QCommandLineOption serviceOption(QStringLiteral("gapplication-service"));
    serviceOption.setFlags(QCommandLineOption::HiddenFromHelp);
    parser.addOption(infoOption);
    parser.addOption(screenshotsOption);
    const QCommandLineOption searchOption(QStringLiteral("search"),
                                          QStringLiteral("Open on the Contacts screen searching for TEXT."),
                                          QStringLiteral("TEXT"));
    parser.addOption(actionOption);
    parser.addOption(serviceOption);
    parser.addOption(searchOption);
    if (!parser.parse(arguments)) {
        printError(Texts::tr("telverra: %1\nTry 'telverra --help'.").arg(parser.errorText()));
        return 2;
    }
    if (parser.isSet(u"version"_qs)) {
        parser.showVersion();
    }
    if (parser.isSet(selfTestOption)) {
        return selfTest();
    }
    if (parser.isSet(serviceOption)) {
        return runService(app);
    }
    const QString action = parser.value(actionOption);
    if (!action.isEmpty() && !DesktopActivation::actions.contains(action)) {
        printError(Texts::tr("telverra: no action %1\nTry 'telverra --help'.").arg(action));
        return 2;
    }
    // One window: a second start brings the first to the front (and runs its action there).
    if (!parser.isSet(screenshotsOption) && CommandService::activateRunningWindow(action, launcherPlatformData)) {
        return 0;
    }

    if (parser.isSet(infoOption)) {
        DeploymentSettings::setSharedFile(parser.value(infoOption));
    }
    // The store is loaded before any window: a store that cannot be loaded stops the process here.
    tellStoreFailuresOnScreen();
    CoreDataManager::shared();
    std::unique_ptr<VCardDirectoryStore> contactsFolder;
    if (parser.isSet(contactsOption)) {
        contactsFolder = std::make_unique<VCardDirectoryStore>(QStringList{parser.value(contactsOption)});
        ContactStoreManager::setSharedContactStore(contactsFolder.get());
    }
    HomeWindowViewModel viewModel;
    QPointer<QQuickWindow> window;
    auto raise = [&window](const QString &token = {}) { WindowActivation::bringToFront(window, token); };
    CommandService commands(viewModel);
    new DesktopActivation(&commands, [&viewModel, raise](const QString &desktopAction, const QString &token) {
        raise(token);
        runActionWhenReady(viewModel, desktopAction);
    });
    DesktopSearch desktopSearch(viewModel, [&viewModel, raise](const QString &text) {
        showContactsSearch(viewModel, text);
        raise();
    });
    // Commands from the command line and the desktop reach this window. Another window that took the name meanwhile
    // is the one the user gets.
    desktopSearch.registerOn(QDBusConnection::sessionBus());
    if (!commands.registerOnSessionBus() && CommandService::activateRunningWindow(action, launcherPlatformData)) {
        return 0;
    }

    const CursorBlinkTimeout cursorBlinkTimeout; // a window left alone draws nothing
    QQmlApplicationEngine engine;
    prepareEngine(engine);
    addContactPhotos(engine, viewModel);
    engine.setInitialProperties(
        {{QStringLiteral("viewModel"), QVariant::fromValue(&viewModel)},
         {QStringLiteral("darkScheme"), qEnvironmentVariable("TELVERRA_COLOR_SCHEME") == u"dark"}});
    QObject::connect(
        &engine, &QQmlApplicationEngine::objectCreationFailed, &app, [] { QCoreApplication::exit(1); },
        Qt::QueuedConnection);
    engine.load(mainQml);
    if (engine.rootObjects().isEmpty()) {
        return 1;
    }
    window = qobject_cast<QQuickWindow *>(engine.rootObjects().value(0));
    // The address book is read once the window is on screen.
    QObject::connect(
        window, &QQuickWindow::frameSwapped, &viewModel.contactsDataService(),
        [&viewModel] { viewModel.contactsDataService().allowBackgroundReading(); },
        static_cast<Qt::ConnectionType>(Qt::QueuedConnection | Qt::SingleShotConnection));
    if (!action.isEmpty()) {
        runActionWhenReady(viewModel, action);
    }
    if (parser.isSet(searchOption)) {
        showContactsSearch(viewModel, parser.value(searchOption));
    }
    if (parser.isSet(screenshotsOption)) {
        takeScreenshots(engine, viewModel, parser.value(screenshotsOption));
    }
    return QGuiApplication::exec();
}

} // namespace Application
