#include "app/HomeWindowViewModel.h"
#include "common/Trace.h"
#include "contacts/ContactFiling.h"
#include "contacts/ContactsDataService.h"
#include "favorites/FavoritesDataService.h"
#include "recents/RecentCallsDataService.h"
#include "support/ViewModelFixture.h"
#include "weather/WeatherInfoDataService.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QSignalSpy>
#include <QTest>

#include <algorithm>
#include <array>

namespace {

QStringList names(const QList<Contact> &contacts)
{
    QStringList out;
    for (const Contact &contact : contacts) {
        out.append(contact.fullName().isEmpty() ? contact.contact().organizationName : contact.fullName());
    }
    return out;
}

const QByteArray cards = "BEGIN:VCARD\nUID:elodie\nN:Dubois;Élodie;;;\nTEL;TYPE=CELL:+33 6 12 34 56 78\nEND:VCARD\n"
                         "BEGIN:VCARD\nUID:eva\nN:NÚÑEZ;EVA;;;\nEMAIL:eva@example.org\nEND:VCARD\n"
                         "BEGIN:VCARD\nUID:alvarez\nN:Álvarez;Luis;;;\nTEL;TYPE=HOME:+34 600 111 222\nEND:VCARD\n"
                         "BEGIN:VCARD\nUID:alba\nN:alba;Rosa;;;\nEND:VCARD\n"
                         "BEGIN:VCARD\nUID:3m\nORG:3M\nEND:VCARD\n"
                         "BEGIN:VCARD\nUID:nameless\nN:;;Eve;;\nEND:VCARD\n";

// A launch from the dialer (its display typed) or from a contact's action button (its destination).
struct Press
{
    QString text;
    CallTypes type = CallTypes::telephone;
    bool contact = false;
    QString opened = {}; // what the desktop is asked to open, if anything
    QString record = {}; // the history record as "type|destination|contact|tag"; a contact's is Élodie's mobile
    QString done = {};   // the trace's verb: "<done> with number: <text>"
    bool copy = true;
};

// How a launch is asked for in launchOutcomes: from the clipboard, or by recalling a history entry of a kind.
struct Launch
{
    QString clipboard; // with no recalled destination: what the clipboard holds
    QString recalled;
    CallTypes type = CallTypes::telephone;
    QString opened;   // what the desktop is asked to open, if anything
    QString recorded; // the history record's type
    QString error;    // the alert's text
};

} // namespace

class tst_HomeWindowViewModel : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init();
    void cleanup();

    void handOverAtTheSixthTick();
    void timersFollowThePreferences();
    void contactSearch();
    void contactsForIndexLetter_data();
    void contactsForIndexLetter();
    void favoriteContactsResolvedAgainstAddressBook();
    void dialerAndContactLaunches_data();
    void dialerAndContactLaunches();
    void launchOutcomes_data();
    void launchOutcomes();
    void favoritesKeepTheirOrderAndNoTwins();
    void filteredRecentCalls();
    void newMeeting();
    void placeWeatherAndQuote();

private:
    void makeViewModel();
    HomeWindowViewModel &vm() { return *m_app->viewModel; }
    QList<RecentCallEntityPtr> records() const { return m_app->viewModel->allRecentCalls(); }
    // The history, newest first, each record as "type|destination|contact|tag".
    QStringList history() const
    {
        QStringList out;
        for (const RecentCallEntityPtr &record : records()) {
            out.append(QStringList{record->callType(), record->destinationValue(), record->contactID(),
                                   record->destinationTag()}
                           .join(u'|'));
        }
        return out;
    }
    static QStringList one(const QString &text) { return text.isEmpty() ? QStringList() : QStringList{text}; }

    std::unique_ptr<ViewModelFixture> m_app;
};

void tst_HomeWindowViewModel::init()
{
    m_app = std::make_unique<ViewModelFixture>(cards);
    QGuiApplication::clipboard()->setText(u"untouched"_qs);
}

void tst_HomeWindowViewModel::cleanup()
{
    m_app.reset();
}

void tst_HomeWindowViewModel::makeViewModel()
{
    m_app->makeViewModel();
    QTRY_COMPARE(vm().allContacts().size(), 6);
}

void tst_HomeWindowViewModel::handOverAtTheSixthTick()
{
    m_app->makeViewModel(); // the ticks are watched from its first turn of the event loop
    QStringList ticks;      // the count as the window sees it at each tick, and which section shows
    connect(&vm(), &HomeWindowViewModel::countChanged, this,
            [this, &ticks] { ticks.append(QString::number(vm().count()) + (vm().isWelcomeShown() ? u'w' : u'd')); });
    QVERIFY(vm().isWelcomeShown());
    vm().setIsRecentsShown(true); // the user's choice meanwhile does not stop the hand-over
    QTRY_VERIFY_WITH_TIMEOUT(vm().isDialerShown(), 30000);
    QCOMPARE(ticks, (QStringList{u"1w"_qs, u"2w"_qs, u"3w"_qs, u"4w"_qs, u"5w"_qs, u"1d"_qs}));
    QVERIFY(!vm().timer()->isActive());
    QVERIFY2(vm().isRecentsShown(), "one section at a time is not enforced");
}

void tst_HomeWindowViewModel::timersFollowThePreferences()
{
    m_app->preferences->setValue(PreferenceKey::fixedQuoteOnStartup, true);
    m_app->location.enabled = false;
    Trace::Capture capture;
    makeViewModel();
    QVERIFY2(!vm().timer(), "a fixed welcome screen makes no hand-over timer");
    QVERIFY(vm().isWelcomeShown());
    QCOMPARE(vm().count(), 0);
    QCOMPARE(vm().corelocationPermissionError().value_or(QString()).left(20), u"Show an alert lettin"_qs);
    QVERIFY(!vm().currentLocation());
    QPointer<const QTimer> first(vm().weatherTimer());
    QVERIFY(first && first->isActive());
    QCOMPARE(first->interval(), 3600 * 1000);
    // Each hourly tick runs the location start-up again, while the preference holds.
    auto tick = [this] {
        QMetaObject::invokeMethod(const_cast<QTimer *>(vm().weatherTimer()), "timeout", Qt::DirectConnection);
    };
    m_app->location.enabled = true;
    tick();
    QTRY_VERIFY(vm().currentLocation().has_value());
    vm().startWeatherTimer();
    QVERIFY(vm().weatherTimer());
    QVERIFY2(first.isNull(), "the second start replaces the first timer");
    m_app->preferences->setValue(PreferenceKey::updateWeatherInfoEveryHour, false);
    m_app->location.position = QGeoCoordinate(1, 1);
    tick();
    QTest::qWait(20);
    QCOMPARE(vm().currentLocation()->latitude(), 28.4636); // the tick did nothing, the timer keeps running
    QVERIFY(vm().weatherTimer()->isActive());
    vm().cancelWeatherTimer();
    QVERIFY(!vm().weatherTimer());
    vm().startWeatherTimer();
    QVERIFY2(!vm().weatherTimer(), "hourly weather off: no timer");
}

void tst_HomeWindowViewModel::contactSearch()
{
    makeViewModel();
    // Dubois, NÚÑEZ, Álvarez, alba, 3M, and the nameless card.
    QCOMPARE(vm().contactsIndexLetters(), (QStringList{u"#"_qs, u"A"_qs, u"D"_qs, u"N"_qs}));
    QCOMPARE(vm().filteredContacts().size(), 6); // the whole list until a search runs
    QSignalSpy filtered(&vm(), &HomeWindowViewModel::filteredContactsChanged);
    vm().setSearchTextForContacts(u"e"_qs);
    QVERIFY(!vm().shouldSearchForContacts());
    QTRY_VERIFY(vm().shouldSearchForContacts());
    QTRY_COMPARE(filtered.size(), 1);
    // Álvarez, Élodie (diacritics ignored) and EVA (case ignored), in list order; the nameless card's middle name
    // "Eve" does not count.
    QCOMPARE(names(vm().filteredContacts()), (QStringList{u"Luis Álvarez"_qs, u"Élodie Dubois"_qs, u"EVA NÚÑEZ"_qs}));

    vm().setSearchTextForContacts(QString());
    QTRY_VERIFY(!vm().shouldSearchForContacts());
    QTest::qWait(100);
    QCOMPARE(filtered.size(), 1); // no new filter
    QCOMPARE(vm().filteredContacts().size(), 3);
    QCOMPARE(vm().contactsIndexLetters().size(), 4); // falls back to every contact
}

void tst_HomeWindowViewModel::contactsForIndexLetter_data()
{
    QTest::addColumn<QString>("letter");
    QTest::addColumn<QStringList>("filed");
    QTest::newRow("A takes Álvarez and alba") << u"A"_qs << QStringList{u"Luis Álvarez"_qs, u"Rosa alba"_qs};
    QTest::newRow("lower-case letter") << u"a"_qs << QStringList{u"Luis Álvarez"_qs, u"Rosa alba"_qs};
    QTest::newRow("# takes a digit, dash and underscore")
        << u"#"_qs << QStringList{u"3M"_qs, u"-dash"_qs, u"_under"_qs};
    QTest::newRow("- is its own letter too") << u"-"_qs << QStringList{u"-dash"_qs};
}

void tst_HomeWindowViewModel::contactsForIndexLetter()
{
    QFETCH(QString, letter);
    QFETCH(QStringList, filed);
    QList<Contact> list;
    QList<SharedVCardContact> records;
    for (const auto &[family, given, organization] :
         {std::array{u"Álvarez"_qs, u"Luis"_qs, QString()}, std::array{u"alba"_qs, u"Rosa"_qs, QString()},
          std::array{QString(), QString(), u"3M"_qs}, std::array{u"-dash"_qs, QString(), QString()},
          std::array{u"_under"_qs, QString(), QString()}, std::array{QString(), QString(), QString()}}) {
        VCardContact card;
        card.familyName = family;
        card.givenName = given;
        card.organizationName = organization;
        list.append(Contact(card));
        records.append(list.last().record());
    }
    QCOMPARE(names(HomeWindowViewModel::contactsForIndexLetter(letter, list)), filed);
    // The screen's sections, made in one pass over the list, hold the same contacts.
    const ContactFiling::Sections sections = ContactFiling::sections(records);
    if (const qsizetype section = sections.letters.indexOf(letter); section >= 0) {
        QList<Contact> listed;
        for (qsizetype position : sections.members[section]) {
            listed.append(list[position]);
        }
        QCOMPARE(names(listed), filed);
    }
}

void tst_HomeWindowViewModel::favoriteContactsResolvedAgainstAddressBook()
{
    {
        FavoritesDataService favorites(m_app->store.get(), m_app->contacts.get());
        for (const auto &[given, family, id] : {std::array{u"EVA"_qs, u"NÚÑEZ"_qs, u"eva"_qs},
                                                std::array{u"Gone"_qs, u"Away"_qs, u"deleted-from-address-book"_qs},
                                                std::array{u"Élodie"_qs, u"Dubois"_qs, u"elodie"_qs}}) {
            favorites.addFavoriteContact(given, family, id);
            favorites.fetchFavoriteContacts();
        }
    }
    Trace::Capture capture;
    makeViewModel();
    QTRY_COMPARE(names(vm().allFavoriteContacts()), (QStringList{u"EVA NÚÑEZ"_qs, u"Élodie Dubois"_qs}));
}

void tst_HomeWindowViewModel::dialerAndContactLaunches_data()
{
    QTest::addColumn<Press>("press");
    const QString typed = u"+34 600-123.456"_qs, called = u"call launced"_qs;
    const CallTypes phone = CallTypes::telephone;
    QTest::newRow("dialer, copied") << Press{
        typed, phone, false, u"tel:+34600123456"_qs, u"telephone|"_qs + typed + u"||", called};
    QTest::newRow("dialer, not copied") << Press{
        typed, phone, false, u"tel:+34600123456"_qs, u"telephone|"_qs + typed + u"||", called, false};
    QTest::newRow("dialer, a contact's number written otherwise")
        << Press{u"0034600111222"_qs, phone, false, u"tel:0034600111222"_qs, u"telephone|0034600111222||"_qs, called};
    QTest::newRow("dialer, same digits as a contact") << Press{u"+34 600 111 222"_qs,
                                                               phone,
                                                               false,
                                                               u"tel:+34600111222"_qs,
                                                               u"telephone|+34 600 111 222|alvarez|home"_qs,
                                                               called};
    QTest::newRow("dialer, invalid: nothing happens") << Press{u"(600) 123"_qs};
    QTest::newRow("contact, telephone") << Press{u"+33 6 12"_qs, phone, true, u"tel:+33612"_qs, {}, called};
    QTest::newRow("contact, facetime") << Press{u"a@b.c"_qs, CallTypes::facetime, true, u"facetime://a@b.c"_qs,
                                                {},          u"facetime call"_qs};
    QTest::newRow("contact, facetime audio") << Press{
        u"600-1"_qs, CallTypes::facetimeaudio, true, u"facetime-audio://6001"_qs, {}, u"facetime-audio call"_qs};
    QTest::newRow("contact, messages") << Press{u"600 1"_qs, CallTypes::messages, true, u"sms:6001"_qs,
                                                {},          u"text sent"_qs};
    QTest::newRow("contact, mail in the phone's wording")
        << Press{u"a@b.c"_qs, CallTypes::mail, true, u"mailto:a@b.c"_qs, {}, called};
    for (CallTypes type : {CallTypes::skype, CallTypes::slack, CallTypes::telegram}) {
        QTest::addRow("contact, %s does nothing", qPrintable(caseName(type))) << Press{u"bob"_qs, type, true};
    }
}

void tst_HomeWindowViewModel::dialerAndContactLaunches()
{
    QFETCH(Press, press);
    m_app->preferences->setValue(PreferenceKey::copyNumberURLToClipBoard, press.copy);
    makeViewModel();
    const Contact elodie = *std::find_if(vm().allContacts().cbegin(), vm().allContacts().cend(),
                                         [](const Contact &contact) { return contact.id() == u"elodie"; });
    vm().validateDialerDisplay(press.text);
    Trace::Capture capture;
    press.contact ? vm().sendContactAction(elodie, u"mobile"_qs, press.type) : vm().makeCallFromDialer();
    const bool made = !press.opened.isEmpty();
    QCOMPARE(capture.lines().value(0), press.contact ? QString(u"send button of type "_qs + caseName(press.type) +
                                                               u" for contact: " + elodie.fullName())
                                                     : QString(u"make call button pressed with: "_qs + press.text));
    QCOMPARE(capture.lines().value(1), made ? press.done + u" with number: " + press.text : QString());
    QCOMPARE(m_app->workspace.opened, one(press.opened));
    if (press.contact && made) {
        press.record = rawValue(press.type) + u'|' + press.text + u"|elodie|mobile";
    }
    QCOMPARE(history(), one(press.record));
    QCOMPARE(QGuiApplication::clipboard()->text(), press.copy && made ? press.text : u"untouched"_qs);
    if (!press.contact) {
        QCOMPARE(vm().dialer().isInvalidNumber, !made);
    }
    if (made || !press.contact) {
        QCOMPARE(vm().dialer().display, made ? QString() : press.text);
    }
}

void tst_HomeWindowViewModel::launchOutcomes_data()
{
    QTest::addColumn<Launch>("launch");
    const QString unsupported = u"Telco not supported: Attempt to open Telco of type: 'https://example.com/room'"_qs;
    const QString notAscii = u"Error Creating call in Workspace with number: Error creating call: 6\u00e900"_qs;
    QTest::newRow("clipboard meeting, trimmed and copied back") << Launch{
        u" \thttps://us02web.zoom.us/j/123 \t\n"_qs, {}, {}, u"https://us02web.zoom.us/j/123"_qs, u"zoom"_qs, {}};
    QTest::newRow("clipboard number") << Launch{u"600 12 34"_qs, {}, {}, u"tel:6001234"_qs, u"telephone"_qs, {}};
    QTest::newRow("empty clipboard") << Launch{};
    QTest::newRow("clipboard link of no kind")
        << Launch{u"  https://example.com/room  "_qs, {}, {}, {}, {}, unsupported};
    QTest::newRow("recalled number that is not ASCII")
        << Launch{{}, u"6\u00e900"_qs, CallTypes::telephone, {}, {}, notAscii};
    QTest::newRow("recalled FaceTime is a phone call")
        << Launch{{}, u"bob@example.com"_qs, CallTypes::facetime, u"tel:bob@examplecom"_qs, u"telephone"_qs, {}};
    QTest::newRow("recalled meeting") << Launch{
        {}, u"https://meet.jit.si/Room"_qs, CallTypes::jitsi, u"https://meet.jit.si/Room"_qs, u"jitsi"_qs, {}};
}

void tst_HomeWindowViewModel::launchOutcomes()
{
    QFETCH(Launch, launch);
    makeViewModel();
    vm().validateDialerDisplay(u"600"_qs);
    QGuiApplication::clipboard()->clear();
    if (!launch.clipboard.isEmpty()) {
        QGuiApplication::clipboard()->setText(launch.clipboard);
    }
    QSignalSpy published(&vm(), &HomeWindowViewModel::callManagerErrorPublished);
    auto run = [&] {
        launch.recalled.isEmpty() ? vm().makeCallFromClipboard() : vm().recallRecent(launch.recalled, launch.type);
    };
    Trace::Capture capture;
    run();
    QCOMPARE(m_app->workspace.opened, one(launch.opened));
    QCOMPARE(vm().callManagerErrorMessage(), launch.error);
    QCOMPARE(records().size(), launch.recorded.isEmpty() ? 0 : 1);
    if (!launch.recorded.isEmpty()) {
        QCOMPARE(records().at(0)->callType(), launch.recorded);
        if (!launch.recalled.isEmpty()) {
            QCOMPARE(m_app->calls->typeOfLastCall(), launch.type); // FaceTime, though a phone call was placed
        }
    } else if (!launch.error.isEmpty()) {
        QCOMPARE(vm().dialer().display, launch.recalled.isEmpty() ? QString() : u"600"_qs); // a recall leaves it
        run();
        QCOMPARE(published.size(), 2); // the alert shows again for the same text
    } else {
        QVERIFY(capture.lines().isEmpty());
    }
    if (launch.recorded == u"zoom") {
        QCOMPARE(records().at(0)->url(), launch.opened);
        QCOMPARE(QGuiApplication::clipboard()->text(), launch.opened);
    }
}

void tst_HomeWindowViewModel::favoritesKeepTheirOrderAndNoTwins()
{
    makeViewModel();
    const Contact contact = vm().allContacts().at(2);
    vm().addContactToFavorites(contact);
    {
        Trace::Capture capture;
        vm().addContactToFavorites(contact);
        QCOMPARE(capture.lines(), QStringList{u"Contact not added to favorites since it already exists"_qs});
    }
    FavoritesDataService &favorites = vm().favoritesDataService();
    QCOMPARE(favorites.favoriteContacts(contact.id()).size(), 1);

    for (const QString &name : {u"a"_qs, u"b"_qs, u"c"_qs}) {
        favorites.addFavoriteTelco(name, u"zoom"_qs, u"https://zoom.us/j/"_qs + name);
        favorites.fetchFavoriteTelcos();
    }
    QList<FavoriteTelcoEntityPtr> moved = vm().allFavoriteTelcos();
    moved.move(2, 0); // the user drags "c" to the top
    vm().setAllFavoriteTelcos(moved);
    vm().saveFavoriteTelcosOrder();
    QVERIFY(!m_app->store->viewContext().hasChanges());
    favorites.fetchFavoriteTelcos();
    QStringList order;
    for (const auto &telco : vm().allFavoriteTelcos()) {
        order.append(telco->telcoName() + QString::number(telco->orderIndex()));
    }
    QCOMPARE(order, (QStringList{u"c0"_qs, u"a1"_qs, u"b2"_qs}));
}

void tst_HomeWindowViewModel::filteredRecentCalls()
{
    makeViewModel();
    RecentCallsDataService &recents = vm().recentCallsDataService();
    for (const auto &[value, type] :
         {std::pair{u"600123"_qs, CallTypes::telephone}, std::pair{u"bob@example.com"_qs, CallTypes::mail},
          std::pair{u"https://us02web.zoom.us/j/1"_qs, CallTypes::zoom},
          std::pair{u"700600"_qs, CallTypes::telephone}}) {
        recents.addRecentCall(value, type, {}, {});
        QTest::qWait(2); // a later date for the next one
    }
    m_app->store->viewContext().insertNewObject<RecentCallEntity>(); // no destination at all
    m_app->store->save();
    recents.fetchRecentCalls();
    auto found = [this](const QString &text) {
        vm().setSearchTextForRecents(text);
        QStringList out;
        for (const auto &record : vm().filteredRecentCalls()) {
            out.append(record->destinationValue());
        }
        return out;
    };
    QCOMPARE(found(u"600"_qs), (QStringList{u"700600"_qs, u"600123"_qs}));
    QCOMPARE(found(u"ZOOM"_qs), QStringList{u"https://us02web.zoom.us/j/1"_qs});
    QCOMPARE(found(u"unknown"_qs), QStringList{u"unknown destinationValue"_qs});
    QCOMPARE(found(QString()).size(), 5);
}

void tst_HomeWindowViewModel::newMeeting()
{
    makeViewModel();
    Trace::Capture capture;
    vm().startMeetingInBrowser(CallTypes::zoom); // not a Meet kind: nothing, and never an answer
    QCOMPARE(capture.lines(), QStringList{u"make call in browser button pressed with: zoom"_qs});
    QVERIFY(m_app->workspace.opened.isEmpty());

    const QString meeting = u"https://meet.google.com/abc-defg-hij"_qs;
    m_app->tabs.answer = ScriptValue::fromList({ScriptValue::fromList(
        {ScriptValue::fromText(u"Window ID: 7"_qs),
         ScriptValue::fromList({ScriptValue::fromList(
             {ScriptValue::fromText(u"Title: Meet - ~new"_qs), ScriptValue::fromText(u"URL: "_qs + meeting)})})})});
    QSignalSpy finished(&vm(), &HomeWindowViewModel::launchFinished);
    vm().startMeetingInBrowser(CallTypes::googleMeetNew);
    QCOMPARE(m_app->workspace.opened, QStringList{u"https://meet.google.com/new"_qs});
    QVERIFY(capture.lines().contains(u"Run Apple Script Delayed 5.0 seconds"_qs));
    QTRY_COMPARE_WITH_TIMEOUT(finished.size(), 1, 30000); // five seconds after the start
    QCOMPARE(records().at(0)->destinationValue(), meeting);
    QCOMPARE(records().at(0)->callType(), u"meet"_qs);
    QCOMPARE(m_app->calls->lastCallDestinationValue(), meeting);

    m_app->tabs.answer.reset(); // the browser cannot be asked
    vm().startMeetingInBrowser(CallTypes::googleMeet);
    QTRY_COMPARE_WITH_TIMEOUT(finished.size(), 2, 30000);
    QCOMPARE(vm().callManagerErrorMessage(),
             u"Error Creating telco in browser: Couldn't find the url for the telco, you might have accidentaly closed "
             u"the browser. The call will not be registered in recents."_qs);
    QCOMPARE(QGuiApplication::clipboard()->text(), meeting); // the earlier find, copied when the search cleared it
    QCOMPARE(records().size(), 1);
}

void tst_HomeWindowViewModel::placeWeatherAndQuote()
{
    LoopbackHttpServer &server = m_app->server;
    QVERIFY(m_app->serveWeather());
    server.setResponse(u"/randomquote/es_ES"_qs, 200, "application/json", R"({"language":"es","text":"Hola."})");
    server.setResponse(u"/randomquote/en_US"_qs, 200, "application/json", R"({"language":"en","text":"Hi."})");
    m_app->serveQuotes();
    makeViewModel();
    QVERIFY(vm().currentLocation());
    QCOMPARE(vm().currentLocation()->latitude(), 28.4636);
    QCOMPARE(vm().corelocationPermissionError(), std::nullopt);
    QTRY_COMPARE(vm().cityName(), u"La Laguna"_qs);
    QCOMPARE(vm().countryName(), u"Spain"_qs);
    QTRY_VERIFY(vm().weatherInfo().has_value());
    // "algo de nubes" is no English phrase: the icon is the id's.
    const WeatherInfoViewModel &weather = *vm().weatherInfo();
    QCOMPARE((QStringList{weather.temp, weather.openweather_id, weather.icon, QString::number(weather.daily.size())}),
             (QStringList{u"21.0"_qs, u"801"_qs, u"sun.max.fill"_qs, u"4"_qs}));
    const auto popover = vm().dailyWeatherViewModel().value<DailyWeatherViewModel>();
    QCOMPARE(popover.title, u"La Laguna, Spain"_qs);
    QCOMPARE(popover.rows.size(), 4);
    QTRY_VERIFY(!vm().randomQuote().isEmpty());
    QVERIFY(server.requests().contains(
        u"GET /data/3.0/onecall?lat=28.4636&lon=-16.2518&exclude=hourly,minutely&units=metric&lang=es_ES&appid=k3y"_qs));

    // "Update weather info": the location start-up again, which fetches again.
    m_app->location.position = QGeoCoordinate(40.0, -3.5);
    vm().updateWeatherInfo();
    QTRY_VERIFY(server.requests().last().startsWith(u"GET /data/3.0/onecall?lat=40.0&lon=-3.5&"));
    QCOMPARE(vm().weatherInfoService()->cancelables(), 2);
}

QTEST_MAIN(tst_HomeWindowViewModel)
#include "tst_HomeWindowViewModel.moc"
