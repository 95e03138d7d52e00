// weather_start [INFO.INI]: the main window as the application starts it, over the home $HOME (its kept place and
// weather, its preferences), and the time from the start of the process to its first frame and to the first frame
// whose weather card shows a temperature with the place named. Printed to standard error, then it quits (after ten
// seconds at the latest). Start it once with a forecast service to keep a place and its weather, then again with
// none: the second start shows them from the disk. Needs a display (xvfb-run).
#include "app/HomeWindowViewModel.h"
#include "app/SymbolIconProvider.h"
#include "settings/DeploymentSettings.h"

#include <QFile>
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickStyle>
#include <QQuickWindow>
#include <QTimer>
#include <QtQml/qqmlextensionplugin.h>

#include <cstdio>
#include <ctime>
#include <unistd.h>

Q_IMPORT_QML_PLUGIN(TelverraPlugin)

namespace {

// Milliseconds since the process started (its start is counted in clock ticks since boot).
double sinceProcessStart()
{
    QFile stat(QStringLiteral("/proc/self/stat"));
    stat.open(QIODevice::ReadOnly);
    const QByteArray text = stat.readAll();
    const QList<QByteArray> fields = text.mid(text.lastIndexOf(')') + 2).split(' ');
    const double started = fields.value(19).toDouble() / double(sysconf(_SC_CLK_TCK));
    timespec now{};
    clock_gettime(CLOCK_BOOTTIME, &now);
    return (double(now.tv_sec) + double(now.tv_nsec) / 1e9 - started) * 1000.0;
}

} // namespace

int main(int argc, char *argv[])
{
    QGuiApplication app(argc, argv);
    QQuickStyle::setStyle(QStringLiteral("Fusion"));
    if (argc > 1) {
        DeploymentSettings::setSharedFile(QString::fromLocal8Bit(argv[1]));
    }
    HomeWindowViewModel viewModel;
    QQmlApplicationEngine engine;
    engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
    engine.addImageProvider(QStringLiteral("symbols"), new SymbolIconProvider);
    engine.setInitialProperties({{QStringLiteral("viewModel"), QVariant::fromValue(&viewModel)}});
    engine.load(QUrl(QStringLiteral("qrc:/qt/qml/Telverra/app/Main.qml")));
    auto *window = qobject_cast<QQuickWindow *>(engine.rootObjects().value(0));
    if (!window) {
        return 1;
    }
    bool first = true;
    QObject::connect(window, &QQuickWindow::frameSwapped, &app, [&] {
        if (first) {
            first = false;
            std::fprintf(stderr, "first frame: %.0f ms after the process started\n", sinceProcessStart());
        }
        const QObject *temperature = window->findChild<QObject *>(QStringLiteral("weatherTemp"));
        const QString shown = temperature ? temperature->property("text").toString() : QString();
        if (shown.isEmpty() || shown.startsWith(u"–") || viewModel.weatherPlaceTitle().isEmpty()) {
            return;
        }
        std::fprintf(stderr, "weather on screen: %.0f ms after the process started (%s, %s)\n", sinceProcessStart(),
                     qPrintable(shown), qPrintable(viewModel.weatherPlaceTitle()));
        QTimer::singleShot(0, &app, &QCoreApplication::quit);
    });
    QTimer::singleShot(10'000, &app, [] {
        std::fprintf(stderr, "no weather on screen after ten seconds\n");
        QCoreApplication::exit(1);
    });
    return QGuiApplication::exec();
}
