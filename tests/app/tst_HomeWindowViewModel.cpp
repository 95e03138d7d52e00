#include "app/HomeWindowViewModel.h"
#include "calls/BrowserTabSource.h"
#include "calls/CallsManager.h"
#include "calls/Clipboard.h"
#include "common/Trace.h"
#include "contacts/ContactFiling.h"
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
#include "weather/WeatherInfoDataService.h"

#include <QFile>
#include <QNetworkAccessManager>

#include <QClipboard>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QSignalSpy>
#include <QTest>

#include <algorithm>

namespace {

QStringList names(const QList<Contact> &contacts)
{
    QStringList out;
    for (const Contact &contact : contacts) {
        out.append(contact.fullName().isEmpty() ? contact.contact().organizationName : contact.fullName());
    }
    return out;
}

// The tabs a browser would report, for the meeting search.
class FixedTabs : public BrowserTabSource
{
public:
    std::optional<ScriptValue> run(const QString &, bool) override { return answer; }
    std::optional<ScriptValue> answer;
};

} // namespace

class tst_HomeWindowViewModel : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init();
    void cleanup();

    void handOverAtTheSixthTick();
    void fixedWelcomeMakesNoTimer();
    void weatherTimerIsNeverTwo();
    void contactSearch();
    void indexLetters();
    void contactsForIndexLetter_data();
    void contactsForIndexLetter();
    void favoriteContactsResolvedAgainstAddressBook();
    void dialerCall_data();
    void dialerCall();
    void clipboardMeetingAddressIsTrimmed();
    void unrecognisedAddressPublishesError();
    void failingLaunchPublishesExactText();
    void recalledFacetimePlacesTelephoneCall();
    void contactActions_data();
    void contactActions();
    void favoriteContactNotAddedTwice();
    void saveFavoriteTelcosOrder();
    void filteredRecentCalls();
    void newMeeting();
    void placeWeatherAndQuote();
    void weatherTimerTickRunsTheLocationStartUp();

private:
    void makeViewModel();
    HomeWindowViewModel &vm() { return *m_vm; }
    QList<RecentCallEntityPtr> records() const { return m_vm->allRecentCalls(); }

    std::unique_ptr<TestHome> m_home;
    std::unique_ptr<Preferences> m_preferences;
    RecordingWorkspace m_workspace;
    SystemClipboard m_clipboard;
    FixedTabs m_tabs;
    std::unique_ptr<CallsManager> m_calls;
    std::unique_ptr<CoreDataManager> m_store;
    std::unique_ptr<VCardDirectoryStore> m_addressBook;
    std::unique_ptr<ContactStoreManager> m_contacts;
    LoopbackHttpServer m_server;
    QNetworkAccessManager m_network;
    std::unique_ptr<DeploymentSettings> m_deployment;
    ScriptedServices m_location;
    ScriptedGeocoder m_geocoder;
    std::unique_ptr<HomeWindowViewModel> m_vm;
};

void tst_HomeWindowViewModel::init()
{
    m_home = std::make_unique<TestHome>();
    m_home->writeFile(u".local/share/contacts/people/people.vcf"_qs,
                      "BEGIN:VCARD\nUID:elodie\nN:Dubois;Élodie;;;\nTEL;TYPE=CELL:+33 6 12 34 56 78\nEND:VCARD\n"
                      "BEGIN:VCARD\nUID:eva\nN:NÚÑEZ;EVA;;;\nEMAIL:eva@example.org\nEND:VCARD\n"
                      "BEGIN:VCARD\nUID:alvarez\nN:Álvarez;Luis;;;\nTEL;TYPE=HOME:+34 600 111 222\nEND:VCARD\n"
                      "BEGIN:VCARD\nUID:alba\nN:alba;Rosa;;;\nEND:VCARD\n"
                      "BEGIN:VCARD\nUID:3m\nORG:3M\nEND:VCARD\n"
                      "BEGIN:VCARD\nUID:nameless\nN:;;Eve;;\nEND:VCARD\n");
    m_preferences = std::make_unique<Preferences>(Preferences::defaultFilePath());
    m_preferences->setValue(PreferenceKey::useChromeAsDefaultBrowser, false);
    m_workspace = RecordingWorkspace();
    m_calls = std::make_unique<CallsManager>(m_workspace, *m_preferences, m_clipboard);
    m_calls->setBrowserTabSource(&m_tabs);
    m_store = std::make_unique<CoreDataManager>(m_home->dataHome() + u"/telverra/Telverra.sqlite");
    m_addressBook = std::make_unique<VCardDirectoryStore>();
    m_contacts = std::make_unique<ContactStoreManager>(*m_addressBook);
    QGuiApplication::clipboard()->setText(u"untouched"_qs);
    if (!m_server.isListening()) {
        QVERIFY(m_server.listen());
    }
    m_deployment = std::make_unique<DeploymentSettings>(m_home->writeFile(
        u"Info.ini"_qs, (u"[General]\nWEATHER_API_KEY=k3y\nWEATHER_API_BASE_URL=" + m_server.baseUrl() +
                         u"\nQUOTE_SERVICE_BASE_URL=" + m_server.baseUrl() + u'\n')
                            .toUtf8()));
    m_location.enabled = true;
    m_location.status = LocationManager::authorizedWhenInUse;
    m_location.position = QGeoCoordinate(28.4636, -16.2518);
}

void tst_HomeWindowViewModel::makeViewModel()
{
    m_vm = std::make_unique<HomeWindowViewModel>(
        HomeWindowViewModel::Environment{m_preferences.get(), m_calls.get(), m_store.get(), m_contacts.get(),
                                         &m_clipboard, &m_network, m_deployment.get(), &m_location, &m_geocoder});
    QTRY_COMPARE(m_vm->allContacts().size(), 6);
}

void tst_HomeWindowViewModel::cleanup()
{
    m_vm.reset();
    m_contacts.reset();
    m_addressBook.reset();
    m_store.reset();
    m_calls.reset();
    m_preferences.reset();
    m_home.reset();
}

void tst_HomeWindowViewModel::handOverAtTheSixthTick()
{
    QElapsedTimer sinceStart;
    sinceStart.start();
    makeViewModel(); // waits for the address book, which a window reads once it shows
    QVERIFY(vm().isWelcomeShown());
    QVERIFY(vm().timer() && vm().timer()->isActive());
    vm().setIsRecentsShown(true); // the user's choice meanwhile does not stop the hand-over
    QTest::qWait(static_cast<int>(5500 - sinceStart.elapsed()));
    QVERIFY(vm().isWelcomeShown());
    QCOMPARE(vm().count(), 5);
    QTRY_VERIFY_WITH_TIMEOUT(vm().isDialerShown(), 2000);
    QVERIFY(!vm().isWelcomeShown());
    QCOMPARE(vm().count(), 1);
    QVERIFY(!vm().timer()->isActive());
    QVERIFY2(vm().isRecentsShown(), "one section at a time is not enforced");
}

void tst_HomeWindowViewModel::fixedWelcomeMakesNoTimer()
{
    m_preferences->setValue(PreferenceKey::fixedQuoteOnStartup, true);
    makeViewModel();
    QVERIFY(!vm().timer());
    QVERIFY(vm().isWelcomeShown());
    QCOMPARE(vm().count(), 0);
}

void tst_HomeWindowViewModel::weatherTimerIsNeverTwo()
{
    m_preferences->setValue(PreferenceKey::updateWeatherInfoEveryHour, false);
    makeViewModel();
    QVERIFY(!vm().weatherTimer());
    vm().startWeatherTimer();
    QVERIFY2(!vm().weatherTimer(), "off: no timer");
    m_preferences->setValue(PreferenceKey::updateWeatherInfoEveryHour, true);
    vm().startWeatherTimer();
    const QTimer *first = vm().weatherTimer();
    QVERIFY(first && first->isActive());
    QCOMPARE(first->interval(), 3600 * 1000);
    QPointer<const QTimer> firstAlive(first);
    vm().startWeatherTimer();
    QVERIFY(vm().weatherTimer() != nullptr);
    QVERIFY2(firstAlive.isNull(), "the second start replaces the first timer");
    vm().cancelWeatherTimer();
    QVERIFY(!vm().weatherTimer());
}

void tst_HomeWindowViewModel::contactSearch()
{
    makeViewModel();
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

void tst_HomeWindowViewModel::indexLetters()
{
    makeViewModel();
    // Dubois, NÚÑEZ, Álvarez, alba, 3M, and the nameless card.
    QCOMPARE(vm().contactsIndexLetters(), (QStringList{u"#"_qs, u"A"_qs, u"D"_qs, u"N"_qs}));
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
    auto make = [](const QString &family, const QString &given, const QString &organization) {
        VCardContact card;
        card.familyName = family;
        card.givenName = given;
        card.organizationName = organization;
        return Contact(card);
    };
    const QList<Contact> list = {
        make(u"Álvarez"_qs, u"Luis"_qs, {}), make(u"alba"_qs, u"Rosa"_qs, {}), make({}, {}, u"3M"_qs),
        make(u"-dash"_qs, {}, {}),           make(u"_under"_qs, {}, {}),       make({}, {}, {})};
    QCOMPARE(names(HomeWindowViewModel::contactsForIndexLetter(letter, list)), filed);
    // The screen's sections, made in one pass over the list, hold the same contacts.
    QList<SharedVCardContact> records;
    for (const Contact &contact : list) {
        records.append(contact.record());
    }
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
        FavoritesDataService favorites(m_store.get(), m_contacts.get());
        favorites.addFavoriteContact(u"EVA"_qs, u"NÚÑEZ"_qs, u"eva"_qs);
        favorites.fetchFavoriteContacts();
        favorites.addFavoriteContact(u"Gone"_qs, u"Away"_qs, u"deleted-from-address-book"_qs);
        favorites.fetchFavoriteContacts();
        favorites.addFavoriteContact(u"Élodie"_qs, u"Dubois"_qs, u"elodie"_qs);
    }
    Trace::Capture capture;
    makeViewModel();
    QTRY_COMPARE(names(vm().allFavoriteContacts()), (QStringList{u"EVA NÚÑEZ"_qs, u"Élodie Dubois"_qs}));
}

void tst_HomeWindowViewModel::dialerCall_data()
{
    QTest::addColumn<QString>("display");
    QTest::addColumn<bool>("copy");
    QTest::addColumn<QString>("opened");
    QTest::addColumn<QString>("contactID");
    QTest::addColumn<QString>("clipboard");
    QTest::newRow("valid, copied") << u"+34 600-123.456"_qs << true << u"tel:+34600123456"_qs << QString()
                                   << u"+34 600-123.456"_qs;
    QTest::newRow("valid, not copied") << u"+34 600-123.456"_qs << false << u"tel:+34600123456"_qs << QString()
                                       << u"untouched"_qs;
    QTest::newRow("a contact's number") << u"0034600111222"_qs << true << u"tel:0034600111222"_qs << QString()
                                        << u"0034600111222"_qs;
    QTest::newRow("same digits as a contact")
        << u"+34 600 111 222"_qs << true << u"tel:+34600111222"_qs << u"alvarez"_qs << u"+34 600 111 222"_qs;
    QTest::newRow("invalid: nothing happens") << u"(600) 123"_qs << true << QString() << QString() << u"untouched"_qs;
}

void tst_HomeWindowViewModel::dialerCall()
{
    QFETCH(QString, display);
    QFETCH(bool, copy);
    QFETCH(QString, opened);
    QFETCH(QString, contactID);
    QFETCH(QString, clipboard);
    m_preferences->setValue(PreferenceKey::copyNumberURLToClipBoard, copy);
    makeViewModel();
    vm().validateDialerDisplay(display);
    Trace::Capture capture;
    vm().makeCallFromDialer();
    QCOMPARE(capture.lines().value(0), u"make call button pressed with: "_qs + display);
    QCOMPARE(QGuiApplication::clipboard()->text(), clipboard);
    if (opened.isEmpty()) {
        QVERIFY(m_workspace.opened.isEmpty());
        QVERIFY(records().isEmpty());
        QCOMPARE(vm().dialer().display, display);
        QVERIFY(vm().dialer().isInvalidNumber);
        return;
    }
    QCOMPARE(m_workspace.opened, QStringList{opened});
    QCOMPARE(capture.lines().value(1), u"call launced with number: "_qs + display);
    QCOMPARE(records().size(), 1);
    QCOMPARE(records().at(0)->callType(), u"telephone"_qs);
    QCOMPARE(records().at(0)->destinationValue(), display);
    QCOMPARE(records().at(0)->contactID(), contactID);
    QCOMPARE(records().at(0)->destinationTag(), contactID.isEmpty() ? QString() : u"home"_qs);
    QCOMPARE(vm().dialer().display, QString());
    QVERIFY(!vm().dialer().isInvalidNumber);
}

void tst_HomeWindowViewModel::clipboardMeetingAddressIsTrimmed()
{
    makeViewModel();
    QGuiApplication::clipboard()->setText(u" \thttps://us02web.zoom.us/j/123 \t\n"_qs);
    vm().makeCallFromClipboard();
    QCOMPARE(m_workspace.opened, QStringList{u"https://us02web.zoom.us/j/123"_qs});
    QCOMPARE(records().size(), 1);
    QCOMPARE(records().at(0)->callType(), u"zoom"_qs);
    QCOMPARE(records().at(0)->url(), u"https://us02web.zoom.us/j/123"_qs);
    QCOMPARE(QGuiApplication::clipboard()->text(), u"https://us02web.zoom.us/j/123"_qs);

    // A number on the clipboard is a phone call; an empty clipboard does nothing.
    QGuiApplication::clipboard()->setText(u"600 12 34"_qs);
    vm().makeCallFromClipboard();
    QCOMPARE(m_workspace.opened.last(), u"tel:6001234"_qs);
    QGuiApplication::clipboard()->clear();
    Trace::Capture capture;
    vm().makeCallFromClipboard();
    QVERIFY(capture.lines().isEmpty());
}

void tst_HomeWindowViewModel::unrecognisedAddressPublishesError()
{
    makeViewModel();
    QSignalSpy published(&vm(), &HomeWindowViewModel::callManagerErrorPublished);
    QGuiApplication::clipboard()->setText(u"  https://example.com/room  "_qs);
    vm().makeCallFromClipboard();
    vm().makeCallFromClipboard();
    const QString text = u"Telco not supported: Attempt to open Telco of type: 'https://example.com/room'"_qs;
    QCOMPARE(vm().callManagerErrorMessage(), text);
    QCOMPARE(published.size(), 2); // the alert shows again for the same text
    QVERIFY(records().isEmpty());
}

void tst_HomeWindowViewModel::failingLaunchPublishesExactText()
{
    makeViewModel();
    vm().validateDialerDisplay(u"600"_qs);
    vm().recallRecent(u"6\u00e900"_qs, CallTypes::telephone);
    QCOMPARE(vm().callManagerErrorMessage(),
             u"Error Creating call in Workspace with number: Error creating call: 6\u00e900"_qs);
    QCOMPARE(vm().dialer().display, u"600"_qs); // left as it was
    QVERIFY(records().isEmpty());
}

void tst_HomeWindowViewModel::recalledFacetimePlacesTelephoneCall()
{
    makeViewModel();
    vm().recallRecent(u"bob@example.com"_qs, CallTypes::facetime);
    QCOMPARE(m_workspace.opened, QStringList{u"tel:bob@examplecom"_qs});
    QCOMPARE(records().at(0)->callType(), u"telephone"_qs);
    QCOMPARE(m_calls->typeOfLastCall(), CallTypes::facetime);
    QTest::qWait(2); // a later date, so that the next record is the newest
    vm().recallRecent(u"https://meet.jit.si/Room"_qs, CallTypes::jitsi);
    QCOMPARE(m_workspace.opened.last(), u"https://meet.jit.si/Room"_qs);
    QCOMPARE(records().at(0)->callType(), u"jitsi"_qs);
}

void tst_HomeWindowViewModel::contactActions_data()
{
    QTest::addColumn<CallTypes>("type");
    QTest::addColumn<QString>("destination");
    QTest::addColumn<QString>("opened");
    QTest::addColumn<QString>("successTrace");
    QTest::newRow("telephone") << CallTypes::telephone << u"+33 6 12"_qs << u"tel:+33612"_qs
                               << u"call launced with number: +33 6 12"_qs;
    QTest::newRow("facetime") << CallTypes::facetime << u"a@b.c"_qs << u"facetime://a@b.c"_qs
                              << u"facetime call with number: a@b.c"_qs;
    QTest::newRow("facetime audio") << CallTypes::facetimeaudio << u"600-1"_qs << u"facetime-audio://6001"_qs
                                    << u"facetime-audio call with number: 600-1"_qs;
    QTest::newRow("messages") << CallTypes::messages << u"600 1"_qs << u"sms:6001"_qs
                              << u"text sent with number: 600 1"_qs;
    QTest::newRow("mail, phone wording") << CallTypes::mail << u"a@b.c"_qs << u"mailto:a@b.c"_qs
                                         << u"call launced with number: a@b.c"_qs;
    QTest::newRow("skype does nothing") << CallTypes::skype << u"bob"_qs << QString() << QString();
    QTest::newRow("slack does nothing") << CallTypes::slack << u"bob"_qs << QString() << QString();
    QTest::newRow("telegram does nothing") << CallTypes::telegram << u"bob"_qs << QString() << QString();
}

void tst_HomeWindowViewModel::contactActions()
{
    QFETCH(CallTypes, type);
    QFETCH(QString, destination);
    QFETCH(QString, opened);
    QFETCH(QString, successTrace);
    makeViewModel();
    const auto found = std::find_if(vm().allContacts().cbegin(), vm().allContacts().cend(),
                                    [](const Contact &contact) { return contact.id() == u"elodie"; });
    QVERIFY(found != vm().allContacts().cend());
    const Contact elodie = *found;
    vm().validateDialerDisplay(destination);
    Trace::Capture capture;
    vm().sendContactAction(elodie, u"mobile"_qs, type);
    QCOMPARE(capture.lines().value(0),
             u"send button of type "_qs + caseName(type) + u" for contact: " + elodie.fullName());
    if (opened.isEmpty()) {
        QCOMPARE(capture.lines().size(), 1);
        QVERIFY(m_workspace.opened.isEmpty());
        QVERIFY(records().isEmpty());
        return;
    }
    QCOMPARE(capture.lines().value(1), successTrace);
    QCOMPARE(m_workspace.opened, QStringList{opened});
    QCOMPARE(records().size(), 1);
    QCOMPARE(records().at(0)->callType(), rawValue(type));
    QCOMPARE(records().at(0)->destinationValue(), destination);
    QCOMPARE(records().at(0)->contactID(), elodie.id());
    QCOMPARE(records().at(0)->destinationTag(), u"mobile"_qs);
    QCOMPARE(QGuiApplication::clipboard()->text(), destination);
    QCOMPARE(vm().dialer().display, QString());
}

void tst_HomeWindowViewModel::favoriteContactNotAddedTwice()
{
    makeViewModel();
    const Contact contact = vm().allContacts().at(2);
    vm().addContactToFavorites(contact);
    Trace::Capture capture;
    vm().addContactToFavorites(contact);
    QCOMPARE(capture.lines(), QStringList{u"Contact not added to favorites since it already exists"_qs});
    QCOMPARE(vm().favoritesDataService().favoriteContacts(contact.id()).size(), 1);
}

void tst_HomeWindowViewModel::saveFavoriteTelcosOrder()
{
    makeViewModel();
    FavoritesDataService &favorites = vm().favoritesDataService();
    for (const QString &name : {u"a"_qs, u"b"_qs, u"c"_qs}) {
        favorites.addFavoriteTelco(name, u"zoom"_qs, u"https://zoom.us/j/"_qs + name);
        favorites.fetchFavoriteTelcos();
    }
    QList<FavoriteTelcoEntityPtr> moved = vm().allFavoriteTelcos();
    moved.move(2, 0); // the user drags "c" to the top
    vm().setAllFavoriteTelcos(moved);
    vm().saveFavoriteTelcosOrder();
    QVERIFY(!m_store->viewContext().hasChanges());
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
    recents.addRecentCall(u"600123"_qs, CallTypes::telephone, {}, {});
    QTest::qWait(2);
    recents.addRecentCall(u"bob@example.com"_qs, CallTypes::mail, {}, {});
    QTest::qWait(2);
    recents.addRecentCall(u"https://us02web.zoom.us/j/1"_qs, CallTypes::zoom, {}, {});
    QTest::qWait(2);
    recents.addRecentCall(u"700600"_qs, CallTypes::telephone, {}, {});
    m_store->viewContext().insertNewObject<RecentCallEntity>(); // no destination at all
    m_store->save();
    recents.fetchRecentCalls();
    auto values = [this] {
        QStringList out;
        for (const auto &record : vm().filteredRecentCalls()) {
            out.append(record->destinationValue());
        }
        return out;
    };
    vm().setSearchTextForRecents(u"600"_qs);
    QCOMPARE(values(), (QStringList{u"700600"_qs, u"600123"_qs}));
    vm().setSearchTextForRecents(u"ZOOM"_qs);
    QCOMPARE(values(), QStringList{u"https://us02web.zoom.us/j/1"_qs});
    vm().setSearchTextForRecents(u"unknown"_qs);
    QCOMPARE(values(), QStringList{u"unknown destinationValue"_qs});
    vm().setSearchTextForRecents(QString());
    QCOMPARE(values().size(), 5);
}

void tst_HomeWindowViewModel::newMeeting()
{
    makeViewModel();
    Trace::Capture capture;
    vm().startMeetingInBrowser(CallTypes::zoom); // not a Meet kind: nothing, and never an answer
    QCOMPARE(capture.lines(), QStringList{u"make call in browser button pressed with: zoom"_qs});
    QVERIFY(m_workspace.opened.isEmpty());

    const QString meeting = u"https://meet.google.com/abc-defg-hij"_qs;
    m_tabs.answer = ScriptValue::fromList({ScriptValue::fromList(
        {ScriptValue::fromText(u"Window ID: 7"_qs),
         ScriptValue::fromList({ScriptValue::fromList(
             {ScriptValue::fromText(u"Title: Meet - ~new"_qs), ScriptValue::fromText(u"URL: "_qs + meeting)})})})});
    QSignalSpy finished(&vm(), &HomeWindowViewModel::launchFinished);
    vm().startMeetingInBrowser(CallTypes::googleMeetNew);
    QCOMPARE(m_workspace.opened, QStringList{u"https://meet.google.com/new"_qs});
    QVERIFY(capture.lines().contains(u"Run Apple Script Delayed 5.0 seconds"_qs));
    QTRY_COMPARE_WITH_TIMEOUT(finished.size(), 1, 7000);
    QCOMPARE(records().at(0)->destinationValue(), meeting);
    QCOMPARE(records().at(0)->callType(), u"meet"_qs);
    QCOMPARE(m_calls->lastCallDestinationValue(), meeting);

    m_tabs.answer.reset(); // the browser cannot be asked
    vm().startMeetingInBrowser(CallTypes::googleMeet);
    QTRY_COMPARE_WITH_TIMEOUT(finished.size(), 2, 7000);
    QCOMPARE(vm().callManagerErrorMessage(),
             u"Error Creating telco in browser: Couldn't find the url for the telco, you might have accidentaly closed "
             u"the browser. The call will not be registered in recents."_qs);
    QCOMPARE(QGuiApplication::clipboard()->text(), meeting); // the earlier find, copied when the search cleared it
    QCOMPARE(records().size(), 1);
}

void tst_HomeWindowViewModel::placeWeatherAndQuote()
{
    QFile onecall(QStringLiteral(TELVERRA_TEST_DATA "/onecall.json"));
    QVERIFY(onecall.open(QIODevice::ReadOnly));
    m_server.setResponse(u"/data/2.5/onecall"_qs, 200, "application/json", onecall.readAll());
    m_server.setResponse(u"/randomquote/es_ES"_qs, 200, "application/json", R"({"language":"es","text":"Hola."})");
    m_server.setResponse(u"/randomquote/en_US"_qs, 200, "application/json", R"({"language":"en","text":"Hi."})");
    const qsizetype before = m_server.requests().size();
    makeViewModel();
    QVERIFY(vm().currentLocation());
    QCOMPARE(vm().currentLocation()->latitude(), 28.4636);
    QCOMPARE(vm().corelocationPermissionError(), std::nullopt);
    QTRY_COMPARE(vm().cityName(), u"La Laguna"_qs);
    QCOMPARE(vm().countryName(), u"Spain"_qs);
    QTRY_VERIFY(vm().weatherInfo().has_value());
    QCOMPARE(vm().weatherInfo()->temp, u"21.0"_qs);
    QCOMPARE(vm().weatherInfo()->openweather_id, u"801"_qs);
    QCOMPARE(vm().weatherInfo()->icon, u"sun.max.fill"_qs); // "algo de nubes" is no English phrase
    QCOMPARE(vm().weatherInfo()->daily.size(), 4);
    const auto popover = vm().dailyWeatherViewModel().value<DailyWeatherViewModel>();
    QCOMPARE(popover.title, u"La Laguna, Spain"_qs);
    QCOMPARE(popover.rows.size(), 4);
    QTRY_VERIFY(!vm().randomQuote().isEmpty());
    QVERIFY(m_server.requests().mid(before).contains(
        u"GET /data/2.5/onecall?lat=28.4636&lon=-16.2518&exclude=hourly,minutely&units=metric&lang=es_ES&appid=k3y"_qs));

    // "Update weather info": the location start-up again, which fetches again.
    m_location.position = QGeoCoordinate(40.0, -3.5);
    vm().updateWeatherInfo();
    QTRY_VERIFY(m_server.requests().last().startsWith(u"GET /data/2.5/onecall?lat=40.0&lon=-3.5&"));
    QCOMPARE(vm().weatherInfoService()->cancelables(), 2);
}

void tst_HomeWindowViewModel::weatherTimerTickRunsTheLocationStartUp()
{
    m_location.enabled = false;
    Trace::Capture capture;
    makeViewModel();
    QCOMPARE(vm().corelocationPermissionError().value_or(QString()).left(20), u"Show an alert lettin"_qs);
    QVERIFY(!vm().currentLocation());
    QVERIFY(vm().weatherTimer());
    m_location.enabled = true;
    QMetaObject::invokeMethod(const_cast<QTimer *>(vm().weatherTimer()), "timeout", Qt::DirectConnection);
    QTRY_VERIFY(vm().currentLocation().has_value());
    m_preferences->setValue(PreferenceKey::updateWeatherInfoEveryHour, false);
    m_location.position = QGeoCoordinate(1, 1);
    QMetaObject::invokeMethod(const_cast<QTimer *>(vm().weatherTimer()), "timeout", Qt::DirectConnection);
    QTest::qWait(20);
    QCOMPARE(vm().currentLocation()->latitude(), 28.4636); // the tick did nothing, the timer keeps running
    QVERIFY(vm().weatherTimer()->isActive());
}

QTEST_MAIN(tst_HomeWindowViewModel)
#include "tst_HomeWindowViewModel.moc"
