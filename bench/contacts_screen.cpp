// contacts_screen ROOT|--desktop [STEP]: the contacts screen over the address book in the vdir ROOT (or the desktop's
// address book, Evolution Data Server's books included, as the application reads it), in a window, as the
// application shows it. Once the list is in, it scrolls from top to bottom, STEP pixels a frame (2,000 by default: a
// fast fling, a new screenful of rows every frame), then jumps to every letter of the alphabet index; it prints the
// time each frame took, from the change to the frame on screen, and the resident memory and its high-water mark when
// the list is in and at the end (compare with an empty ROOT), and quits. The figures go to standard error (the rows'
// traces to standard output). Needs a display (xvfb-run).
#include "app/HomeWindowViewModel.h"
#include "app/SymbolIconProvider.h"
#include "calls/CallsManager.h"
#include "calls/Clipboard.h"
#include "calls/Workspace.h"
#include "contacts/ContactPhotoProvider.h"
#include "contacts/ContactStoreManager.h"
#include "contacts/ContactsDataService.h"
#include "contacts/ContactsListModel.h"
#include "contacts/VCardDirectoryStore.h"
#include "settings/Preferences.h"
#include "store/CoreDataManager.h"

#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickStyle>
#include <QQuickView>
#include <QTemporaryDir>
#include <QTimer>
#include <QtQml/qqmlextensionplugin.h>

#include <algorithm>
#include <cstdio>

#include <unistd.h>

Q_IMPORT_QML_PLUGIN(TelverraPlugin)

namespace {

class NoWorkspace : public Workspace
{
public:
    std::optional<OpenFailure> open(const LaunchAddress &) override { return std::nullopt; }
    SchemeHandler handlerFor(const QString &) const override { return {}; }
    void openWithApplication(const LaunchAddress &, const QString &, OpenCompletion) override {}
};

// Milliseconds since this process started (Linux; to the clock tick).
double sinceProcessStart()
{
    QFile stat(QStringLiteral("/proc/self/stat"));
    QFile uptime(QStringLiteral("/proc/uptime"));
    if (!stat.open(QIODevice::ReadOnly) || !uptime.open(QIODevice::ReadOnly)) {
        return -1;
    }
    const QByteArray fields = stat.readAll();
    // The fields after the command's name, which may hold blanks: the start time is the 20th of them.
    const QList<QByteArray> after = fields.mid(fields.lastIndexOf(')') + 2).split(' ');
    const double started = after.value(19).toDouble() / double(sysconf(_SC_CLK_TCK));
    return (uptime.readAll().split(' ').value(0).toDouble() - started) * 1000;
}

// The resident memory now and at its highest, in MB (Linux).
QString residentMemory()
{
    QFile status(QStringLiteral("/proc/self/status"));
    status.open(QIODevice::ReadOnly);
    QString now;
    QString peak;
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith("VmRSS:") || line.startsWith("VmHWM:")) {
            const QString megabytes =
                QString::number(line.mid(6).trimmed().split(' ').value(0).toDouble() / 1024, 'f', 0);
            (line.startsWith("VmRSS:") ? now : peak) = megabytes;
        }
    }
    return now + u" MB resident, " + peak + u" MB at the most";
}

void report(const char *what, std::vector<double> times)
{
    if (times.empty()) {
        std::fprintf(stderr, "%s: no frames\n", what);
        return;
    }
    std::sort(times.begin(), times.end());
    auto at = [&times](double share) {
        return times[std::min(times.size() - 1, size_t(share * double(times.size())))];
    };
    std::fprintf(stderr, "%s: %zu frames, median %.2f ms, 99th percentile %.2f ms, slowest %.2f ms, over 16 ms: %zu\n",
                 what, times.size(), at(0.5), at(0.99), times.back(),
                 size_t(std::count_if(times.begin(), times.end(), [](double t) { return t > 16.0; })));
}

} // namespace

int main(int argc, char *argv[])
{
    QGuiApplication app(argc, argv);
    QQuickStyle::setStyle(QStringLiteral("Fusion"));
    if (argc < 2) {
        std::fprintf(stderr, "usage: contacts_screen ROOT|--desktop [STEP]\n");
        return 2;
    }
    const double step = argc > 2 ? QByteArray(argv[2]).toDouble() : 2000;
    QTemporaryDir home;
    Preferences preferences(home.path() + u"/telverra.conf");
    preferences.setValue(PreferenceKey::fixedQuoteOnStartup, true);
    NoWorkspace workspace;
    SystemClipboard clipboard;
    CallsManager calls(workspace, preferences, clipboard);
    CoreDataManager store(home.path() + u"/Telverra.sqlite");
    const QString root = QString::fromLocal8Bit(argv[1]);
    std::unique_ptr<ContactStore> folder;
    if (root != u"--desktop") {
        folder = std::make_unique<VCardDirectoryStore>(QStringList{root});
    }
    ContactStoreManager manager(folder ? *folder : *ContactStoreManager::desktopStore());
    HomeWindowViewModel::Environment environment{&preferences, &calls, &store, &manager, &clipboard};
    environment.headless = true; // no weather or quote: the screen alone
    HomeWindowViewModel viewModel(environment);

    QQuickView view;
    view.engine()->addImportPath(QStringLiteral("qrc:/qt/qml"));
    view.engine()->addImageProvider(QStringLiteral("symbols"), new SymbolIconProvider);
    const ContactsDataService *contacts = &viewModel.contactsDataService();
    view.engine()->addImageProvider(
        QStringLiteral("contactphoto"),
        new ContactPhotoProvider([contacts](const QString &id) { return contacts->record(id); }));
    view.setInitialProperties({{QStringLiteral("viewModel"), QVariant::fromValue(&viewModel)}});
    view.setResizeMode(QQuickView::SizeRootObjectToView);
    view.resize(1000, 680);
    view.setSource(QUrl(QStringLiteral("qrc:/qt/qml/Telverra/contacts/AllContactsView.qml")));
    if (!view.rootObject()) {
        return 1;
    }
    view.show();
    QQuickItem *list = view.rootObject()->findChild<QQuickItem *>(QStringLiteral("contactsList"));
    auto *model = qobject_cast<ContactsListModel *>(viewModel.contactsModel());

    QElapsedTimer clock;
    clock.start();
    QElapsedTimer frame;
    std::vector<double> scrolling;
    std::vector<double> jumps;
    QStringList letters;
    enum class Phase
    {
        loading,
        scroll,
        done,
        jump
    } phase = Phase::loading;
    auto change = std::make_shared<std::function<void()>>();
    *change = [&] {
        if (phase == Phase::loading) {
            // Read, and in the list (a long list is laid out in sections on another thread first).
            if (contacts->isLoading() || !contacts->hasLoaded() || model->contactCount() != contacts->count()) {
                return;
            }
            std::fprintf(stderr,
                         "list in after %.0f ms (%.0f ms after the process started): %d rows, %d contacts; %s\n",
                         double(clock.elapsed()), sinceProcessStart(), model->rowCount(), model->contactCount(),
                         qPrintable(residentMemory()));
            phase = Phase::scroll;
            QMetaObject::invokeMethod(list, "positionViewAtBeginning");
            view.update();
            return;
        }
        if (phase == Phase::scroll) {
            const double y = list->property("contentY").toDouble();
            const double end =
                list->property("contentHeight").toDouble() - list->height() + list->property("originY").toDouble();
            if (y >= end - 1) {
                phase = Phase::jump;
                letters = model->letters();
            } else {
                frame.start();
                list->setProperty("contentY", std::min(end, y + step));
                view.update(); // a frame in any case, so that the run goes on
                return;
            }
        }
        if (letters.isEmpty()) {
            if (phase != Phase::done) {
                phase = Phase::done;
                report("scrolling from top to bottom", scrolling);
                report("jumps by the alphabet index", jumps);
                std::fprintf(stderr, "after the run: %s\n", qPrintable(residentMemory()));
                QCoreApplication::quit();
            }
            return;
        }
        frame.start();
        QMetaObject::invokeMethod(view.rootObject(), "jumpTo", Q_ARG(QVariant, letters.takeFirst()));
        view.update(); // a frame even when the section is in view already
    };
    QObject::connect(&view, &QQuickWindow::frameSwapped, &app, [&] {
        const double took = double(frame.nsecsElapsed()) / 1e6;
        if (frame.isValid()) {
            (phase == Phase::jump ? jumps : scrolling).push_back(took);
            frame.invalidate();
        }
        // The next change from the event loop, once this frame is done.
        QTimer::singleShot(0, &app, [change] { (*change)(); });
    });
    // Frames stop when nothing changes: while the list loads, look again now and then.
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, &app, [&] {
        if (phase == Phase::loading) {
            (*change)();
            view.update();
        }
    });
    poll.start(50);
    return QGuiApplication::exec();
}
