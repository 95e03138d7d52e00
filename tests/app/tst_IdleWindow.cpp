// The main window at rest draws nothing: each screen is shown, left to settle, and then no frame comes for three
// seconds (one is allowed, for a minute of the clock that turns over). Frames are counted, so a slow machine only
// makes fewer of them.
#include "app/CursorBlinkTimeout.h"
#include "contacts/ContactsDataService.h"
#include "favorites/FavoritesDataService.h"
#include "recents/RecentCallsDataService.h"
#include "support/ViewModelFixture.h"

#include <QDeadlineTimer>
#include <QFile>
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
    void initTestCase() { QQuickStyle::setStyle(u"Fusion"_qs); }
    void screenAtRestDrawsNothing_data();
    void screenAtRestDrawsNothing();
};

void tst_IdleWindow::screenAtRestDrawsNothing_data()
{
    QTest::addColumn<QString>("screen");
    // "typed": the dialer with a digit typed, whose cursor stops blinking. Behind every screen but the first the quote
    // has failed, so that the welcome screen waits for it: "waiting" is not at rest, its indicator moves.
    for (const char *screen :
         {"welcome", "dialer", "typed", "recents", "favorites", "contacts", "settings", "weather", "waiting"}) {
        QTest::newRow(screen) << QString::fromLatin1(screen);
    }
}

void tst_IdleWindow::screenAtRestDrawsNothing()
{
    QFETCH(QString, screen);
    const bool quoteServed = screen == u"welcome";
    ViewModelFixture app("BEGIN:VCARD\nUID:ana\nN:García;Ana;;;\nTEL;TYPE=CELL:+34 600 111 222\nEND:VCARD\n"
                         "BEGIN:VCARD\nUID:bob\nN:Smith;Bob;;;\nEMAIL:bob@example.org\nEND:VCARD\n");
    app.serveQuotes();
    QVERIFY(app.serveWeather());
    const QByteArray quote = R"({"language":"en","text":"Less is more."})";
    for (const QString &path : {u"/randomquote/en_US"_qs, u"/randomquote/es_ES"_qs}) {
        app.server.setResponse(path, quoteServed ? 200 : 503, "application/json", quoteServed ? quote : QByteArray());
    }
    app.preferences->setValue(PreferenceKey::fixedQuoteOnStartup, true);
    HomeWindowViewModel &viewModel = app.makeViewModel();
    viewModel.contactsDataService().allowBackgroundReading();
    viewModel.recentCallsDataService().addRecentCall(u"+34 600 111 222"_qs, CallTypes::telephone, u"ana"_qs, {});
    viewModel.recentCallsDataService().fetchRecentCalls();
    viewModel.favoritesDataService().addFavoriteTelco(u"Team"_qs, u"jitsi"_qs, u"https://meet.jit.si/team"_qs);
    viewModel.favoritesDataService().addFavoriteContact({}, {}, u"bob"_qs);
    viewModel.favoritesDataService().fetchFavoriteTelcos();

    const CursorBlinkTimeout cursorBlinkTimeout(std::chrono::seconds(1));
    QQmlApplicationEngine engine;
    app.prepareEngine(engine);
    engine.setInitialProperties({{u"viewModel"_qs, QVariant::fromValue(&viewModel)}});
    engine.load(QUrl(u"qrc:/qt/qml/Telverra/app/Main.qml"_qs));
    auto *window = qobject_cast<QQuickWindow *>(engine.rootObjects().value(0));
    QVERIFY(window);
    window->requestActivate(); // the user's window: a focused text field blinks
    QVERIFY(QTest::qWaitForWindowActive(window));
    // The address book is read at the lowest priority: on a busy machine that takes its time.
    QTRY_VERIFY_WITH_TIMEOUT(window->property("loaded").toBool() && viewModel.contactsDataService().hasLoaded() &&
                                 viewModel.weatherInfo().has_value() &&
                                 !app.server.requests().filter(u"/randomquote/"_qs).isEmpty(),
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
