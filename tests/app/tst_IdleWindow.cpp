// The main window at rest draws nothing: each screen is shown, left to settle, and then no frame comes for three
// seconds (one is allowed, for a minute of the clock that turns over). Frames are counted, so a slow machine only
// makes fewer of them.
#include "app/CursorBlinkTimeout.h"
#include "app/HomeWindowViewModel.h"
#include "app/SymbolIconProvider.h"
#include "calls/CallsManager.h"
#include "calls/Clipboard.h"
#include "contacts/ContactPhotoProvider.h"
#include "contacts/ContactStoreManager.h"
#include "contacts/ContactsDataService.h"
#include "contacts/VCardDirectoryStore.h"
#include "favorites/FavoritesDataService.h"
#include "recents/RecentCallsDataService.h"
#include "settings/DeploymentSettings.h"
#include "settings/Preferences.h"
#include "store/CoreDataManager.h"
#include "support/LoopbackHttpServer.h"
#include "support/RecordingWorkspace.h"
#include "support/ScriptedLocation.h"
#include "support/TestHome.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QNetworkAccessManager>
#include <QQmlApplicationEngine>
#include <QQuickItem>
#include <QQuickStyle>
#include <QQuickWindow>
#include <QTest>
#include <QtQml/qqmlextensionplugin.h>

Q_IMPORT_QML_PLUGIN(TelverraPlugin)

namespace {

// Whether any picture of the window is still being drawn on the image loader's thread.
bool imagesLoading(QQuickItem *item)
{
    constexpr int loading = 2; // Image.Loading
    if (item->inherits("QQuickImageBase") && item->property("status").toInt() == loading) {
        return true;
    }
    const QList<QQuickItem *> children = item->childItems();
    return std::any_of(children.begin(), children.end(), imagesLoading);
}

} // namespace

class tst_IdleWindow : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void screenAtRestDrawsNothing_data();
    void screenAtRestDrawsNothing();

private:
    TestHome m_home;
    LoopbackHttpServer m_server;
};

void tst_IdleWindow::initTestCase()
{
    QQuickStyle::setStyle(u"Fusion"_qs);
    m_home.writeFile(u".local/share/contacts/people/people.vcf"_qs,
                     "BEGIN:VCARD\nUID:ana\nN:García;Ana;;;\nTEL;TYPE=CELL:+34 600 111 222\nEND:VCARD\n"
                     "BEGIN:VCARD\nUID:bob\nN:Smith;Bob;;;\nEMAIL:bob@example.org\nEND:VCARD\n");
    QVERIFY(m_server.listen());
    QFile onecall(QStringLiteral(TELVERRA_TEST_DATA "/onecall.json"));
    QVERIFY(onecall.open(QIODevice::ReadOnly));
    m_server.setResponse(u"/data/2.5/onecall"_qs, 200, "application/json", onecall.readAll());
    m_home.writeFile(u"Info.ini"_qs, (u"[General]\nWEATHER_API_KEY=k\nWEATHER_API_BASE_URL=" + m_server.baseUrl() +
                                      u"\nQUOTE_SERVICE_BASE_URL=" + m_server.baseUrl())
                                         .toUtf8());
}

void tst_IdleWindow::screenAtRestDrawsNothing_data()
{
    QTest::addColumn<QString>("screen");
    QTest::addColumn<bool>("quoteServed");
    // Behind every screen but the first the quote has failed, so that the welcome screen waits for it.
    QTest::newRow("welcome with its quote") << u"welcome"_qs << true;
    QTest::newRow("dialer") << u"dialer"_qs << false;
    QTest::newRow("dialer, a digit typed") << u"typed"_qs << false; // the cursor stops blinking
    QTest::newRow("recents") << u"recents"_qs << false;
    QTest::newRow("favorites") << u"favorites"_qs << false;
    QTest::newRow("contacts") << u"contacts"_qs << false;
    QTest::newRow("settings window") << u"settings"_qs << false;
    QTest::newRow("weather pop-over") << u"weather"_qs << false;
    // Not at rest: the indicator moves while the welcome screen waits for its quote.
    QTest::newRow("welcome waiting") << u"waiting"_qs << false;
}

void tst_IdleWindow::screenAtRestDrawsNothing()
{
    QFETCH(QString, screen);
    QFETCH(bool, quoteServed);
    const QByteArray quote = R"({"language":"en","text":"Less is more."})";
    for (const QString &path : {u"/randomquote/en_US"_qs, u"/randomquote/es_ES"_qs}) {
        m_server.setResponse(path, quoteServed ? 200 : 503, "application/json", quoteServed ? quote : QByteArray());
    }
    const qsizetype quoteRequests = m_server.requests().filter(u"/randomquote/"_qs).size();

    QTemporaryDir dir;
    Preferences preferences(dir.path() + u"/telverra.conf");
    preferences.setValue(PreferenceKey::fixedQuoteOnStartup, true);
    RecordingWorkspace workspace;
    SystemClipboard clipboard;
    CallsManager calls(workspace, preferences, clipboard);
    CoreDataManager store(dir.path() + u"/Telverra.sqlite");
    VCardDirectoryStore addressBook;
    ContactStoreManager contacts(addressBook);
    QNetworkAccessManager network;
    DeploymentSettings deployment(m_home.path() + u"/Info.ini");
    ScriptedServices location;
    location.status = LocationManager::authorizedWhenInUse;
    location.position = QGeoCoordinate(28.4636, -16.2518);
    ScriptedGeocoder geocoder;
    HomeWindowViewModel viewModel(HomeWindowViewModel::Environment{&preferences, &calls, &store, &contacts, &clipboard,
                                                                   &network, &deployment, &location, &geocoder});
    viewModel.contactsDataService().allowBackgroundReading();
    viewModel.recentCallsDataService().addRecentCall(u"+34 600 111 222"_qs, CallTypes::telephone, u"ana"_qs, {});
    viewModel.recentCallsDataService().fetchRecentCalls();
    viewModel.favoritesDataService().addFavoriteTelco(u"Team"_qs, u"jitsi"_qs, u"https://meet.jit.si/team"_qs);
    viewModel.favoritesDataService().addFavoriteContact({}, {}, u"bob"_qs);
    viewModel.favoritesDataService().fetchFavoriteTelcos();

    const CursorBlinkTimeout cursorBlinkTimeout(std::chrono::seconds(1));
    QQmlApplicationEngine engine;
    engine.addImportPath(u"qrc:/qt/qml"_qs);
    engine.addImageProvider(u"symbols"_qs, new SymbolIconProvider);
    const ContactsDataService *service = &viewModel.contactsDataService();
    engine.addImageProvider(u"contactphoto"_qs,
                            new ContactPhotoProvider([service](const QString &id) { return service->record(id); }));
    engine.setInitialProperties({{u"viewModel"_qs, QVariant::fromValue(&viewModel)}});
    engine.load(QUrl(u"qrc:/qt/qml/Telverra/app/Main.qml"_qs));
    auto *window = qobject_cast<QQuickWindow *>(engine.rootObjects().value(0));
    QVERIFY(window);
    window->requestActivate(); // the user's window: a focused text field blinks
    QVERIFY(QTest::qWaitForWindowActive(window));
    // The address book is read at the lowest priority: on a busy machine that takes its time.
    QTRY_VERIFY_WITH_TIMEOUT(window->property("loaded").toBool() && viewModel.contactsDataService().hasLoaded() &&
                                 viewModel.weatherInfo().has_value() &&
                                 m_server.requests().filter(u"/randomquote/"_qs).size() > quoteRequests,
                             60000);
    QTRY_COMPARE(viewModel.randomQuote().isEmpty(), !quoteServed);

    if (screen == u"recents") {
        viewModel.setIsRecentsShown(true);
    } else if (screen == u"favorites") {
        viewModel.setIsFavoritesShown(true);
    } else if (screen == u"contacts") {
        viewModel.setIsContactsShown(true);
    } else if (screen != u"welcome" && screen != u"waiting") {
        viewModel.setIsDialerShown(true);
    }
    if (screen == u"settings") {
        QMetaObject::invokeMethod(window, "openSettings");
    } else if (screen == u"weather") {
        QMetaObject::invokeMethod(window, "openWeatherPopover");
    } else if (screen == u"typed") {
        auto *display = window->findChild<QQuickItem *>(u"display"_qs);
        QVERIFY(display);
        display->forceActiveFocus();
        QTest::keyClick(window, Qt::Key_6);
        QCOMPARE(viewModel.dialer().display, u"6"_qs);
    }

    // Every frame of every window: the settings window is one of its own.
    int frames = 0;
    QList<QQuickWindow *> windows;
    for (QWindow *candidate : QGuiApplication::topLevelWindows()) {
        if (auto *quick = qobject_cast<QQuickWindow *>(candidate); quick && quick->isVisible()) {
            windows.append(quick);
            connect(quick, &QQuickWindow::frameSwapped, this, [&frames] { ++frames; });
        }
    }
    QCOMPARE(windows.size(), screen == u"settings" ? 2 : 1);
    if (screen == u"waiting") {
        QTRY_VERIFY_WITH_TIMEOUT(frames >= 4, 10000); // the wave goes on
        return;
    }

    // Settled: no picture still loading, then a whole second without a frame.
    QTRY_VERIFY_WITH_TIMEOUT(std::none_of(windows.begin(), windows.end(),
                                          [](QQuickWindow *shown) { return imagesLoading(shown->contentItem()); }),
                             30000);
    QDeadlineTimer settling(20000);
    for (int seen = -1; seen != frames;) {
        QVERIFY2(!settling.hasExpired(), "the screen never stops drawing");
        seen = frames;
        QTest::qWait(1000);
    }

    const int atRest = frames;
    QTest::qWait(3000);
    QVERIFY2(frames - atRest <= 1, qPrintable(u"%1 frames in three seconds at rest"_qs.arg(frames - atRest)));
}

QTEST_MAIN(tst_IdleWindow)

#include "tst_IdleWindow.moc"
