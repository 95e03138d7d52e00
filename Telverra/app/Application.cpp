#include "Application.h"

#include "store/CoreDataManager.h"

#include <QCommandLineParser>
#include <QDirIterator>
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQmlComponent>
#include <QQuickStyle>
#include <QQuickWindow>
#include <QtQml/qqmlextensionplugin.h>

#include <cstdio>

Q_IMPORT_QML_PLUGIN(TelverraPlugin)

namespace Application {
namespace {

const QUrl mainQml(QStringLiteral("qrc:/qt/qml/Telverra/app/Main.qml"));

void printError(const QString &text)
{
    std::fputs(qPrintable(text + u'\n'), stderr);
}

void prepareEngine(QQmlEngine &engine)
{
    engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
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

    QQmlApplicationEngine application;
    prepareEngine(application);
    application.setInitialProperties({{QStringLiteral("visible"), false}});
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
    QGuiApplication app(argc, argv);
    QGuiApplication::setApplicationName(QStringLiteral("Telverra"));
    QGuiApplication::setApplicationVersion(QStringLiteral(TELVERRA_VERSION));
    QGuiApplication::setDesktopFileName(QString::fromLatin1(applicationId));
    if (qEnvironmentVariableIsEmpty("QT_QUICK_CONTROLS_STYLE")) {
        QQuickStyle::setStyle(QStringLiteral("Fusion"));
    }

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Telverra: calls, messages, mail and meetings from one window."));
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption selfTestOption(QStringLiteral("self-test"),
                                            QStringLiteral("Load every screen without showing it, then exit."));
    parser.addOption(selfTestOption);
    parser.process(app);

    if (parser.isSet(selfTestOption)) {
        return selfTest();
    }

    // The store is loaded before any window: a store that cannot be loaded stops the process here.
    CoreDataManager::shared();

    QQmlApplicationEngine engine;
    prepareEngine(engine);
    QObject::connect(
        &engine, &QQmlApplicationEngine::objectCreationFailed, &app, [] { QCoreApplication::exit(1); },
        Qt::QueuedConnection);
    engine.load(mainQml);
    if (engine.rootObjects().isEmpty()) {
        return 1;
    }
    return QGuiApplication::exec();
}

} // namespace Application
