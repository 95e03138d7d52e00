#include "HomeWindowViewModel.h"

#include "calls/CallsManager.h"
#include "calls/Clipboard.h"
#include "common/TextFolding.h"
#include "common/Trace.h"
#include "contacts/ContactFiling.h"
#include "contacts/ContactSearchIndex.h"
#include "contacts/ContactStoreManager.h"
#include "contacts/ContactsDataService.h"
#include "contacts/ContactsListModel.h"
#include "favorites/FavoriteTelcosListModel.h"
#include "favorites/FavoritesDataService.h"
#include "recents/RecentCallsDataService.h"
#include "recents/RecentCallsListModel.h"
#include "settings/DeploymentSettings.h"
#include "settings/Preferences.h"
#include "store/CoreDataManager.h"
#include "weather/CityGeocoder.h"
#include "weather/CoreLocationDataService.h"
#include "weather/GeoClueLocationManager.h"
#include "weather/WeatherInfoDataService.h"
#include "weather/WeatherStatus.h"
#include "welcome/RandomQuoteDataService.h"

#include <QCoreApplication>
#include <QLocale>
#include <QNetworkAccessManager>
#include <QSet>
#include <QtConcurrent>

#include <algorithm>

namespace {

bool isMeeting(CallTypes type)
{
    switch (type) {
    case CallTypes::googleMeet:
    case CallTypes::googleMeetNew:
    case CallTypes::zoom:
    case CallTypes::webex:
    case CallTypes::jitsi:
        return true;
    default:
        return false;
    }
}

} // namespace

HomeWindowViewModel::HomeWindowViewModel(QObject *parent)
    : HomeWindowViewModel(Environment(), parent)
{}

HomeWindowViewModel::HomeWindowViewModel(const Environment &environment, QObject *parent)
    : QObject(parent)
    , m_preferences(environment.preferences)
    , m_callsManager(environment.callsManager ? environment.callsManager : &CallsManager::shared())
    , m_store(environment.store)
    , m_contactStore(environment.contactStore ? environment.contactStore : &ContactStoreManager::shared())
    , m_clipboard(environment.clipboard)
    , m_headless(environment.headless)
{
    // 1-2. Preferences are read at each use; everything else starts at its initial value.
    if (!m_preferences) {
        m_ownPreferences = std::make_unique<Preferences>(Preferences::defaultFilePath());
        m_preferences = m_ownPreferences.get();
    }
    if (!m_clipboard) {
        m_ownClipboard = std::make_unique<SystemClipboard>();
        m_clipboard = m_ownClipboard.get();
    }
    QNetworkAccessManager *network = environment.network;
    if (!network && !environment.headless) {
        m_ownNetwork = std::make_unique<QNetworkAccessManager>();
        network = m_ownNetwork.get();
    }
    const DeploymentSettings &deployment =
        environment.deployment ? *environment.deployment : DeploymentSettings::shared();
    LocationServices *locationServices = environment.locationServices;
    if (!locationServices && !environment.headless) {
        m_ownLocationServices = std::make_unique<GeoClueLocationServices>();
        locationServices = m_ownLocationServices.get();
    }
    Geocoder *geocoder = environment.geocoder;
    if (!geocoder && !environment.headless) {
        m_ownGeocoder = std::make_unique<CityGeocoder>();
        geocoder = m_ownGeocoder.get();
    }
    // 3. The first preferred language.
    m_languageLocale = QLocale::system().uiLanguages().value(0);

    // 4. The services, in this order.
    m_favoritesDataService = std::make_unique<FavoritesDataService>(m_store, m_contactStore);
    m_recentCallsDataService = std::make_unique<RecentCallsDataService>(m_store);
    m_recentCallsDataService->fetchRecentCalls();
    // A window reads the address book in the background, so that it shows before the books are read.
    m_contactsDataService = std::make_unique<ContactsDataService>(
        m_contactStore, environment.headless ? ContactsDataService::ReadPriority::normal
                                             : ContactsDataService::ReadPriority::background);
    if (!environment.headless) {
        m_corelocationDataService =
            std::make_unique<CoreLocationDataService>(*locationServices, *geocoder, m_preferences);
        m_weatherInfoService = std::make_unique<WeatherInfoDataService>(*network, deployment);
        m_randomQuoteDataService = std::make_unique<RandomQuoteDataService>(*network, deployment, m_languageLocale);
        m_weatherStatus = std::make_unique<WeatherStatus>(*m_weatherInfoService, *m_corelocationDataService);
    }

    // 5. Subscriptions, then the weather timer.
    m_searchDebounce.setSingleShot(true);
    m_searchDebounce.setInterval(500);
    subscribe();
    m_recentCallsModel = std::make_unique<RecentCallsListModel>(*m_contactsDataService);
    auto showRecents = [this] { m_recentCallsModel->setRecords(filteredRecentCalls()); };
    connect(this, &HomeWindowViewModel::allRecentCallsChanged, this, showRecents);
    connect(this, &HomeWindowViewModel::searchTextForRecentsChanged, this, showRecents);
    showRecents();
    m_contactsModel = std::make_unique<ContactsListModel>(*m_preferences);
    for (auto changed :
         {&HomeWindowViewModel::allContactsChanged, &HomeWindowViewModel::filteredContactsChanged,
          &HomeWindowViewModel::shouldSearchForContactsChanged, &HomeWindowViewModel::searchTextForContactsChanged}) {
        connect(this, changed, this, &HomeWindowViewModel::showContacts);
    }
    showContacts();
    m_favoriteContactsModel = std::make_unique<ContactsListModel>(*m_preferences, false);
    m_favoriteTelcosModel = std::make_unique<FavoriteTelcosListModel>(*m_favoritesDataService);
    auto showFavoriteContacts = [this] { m_favoriteContactsModel->setContacts(m_allFavoriteContacts); };
    auto showFavoriteTelcos = [this] { m_favoriteTelcosModel->setRecords(m_allFavoriteTelcos); };
    connect(this, &HomeWindowViewModel::allFavoriteContactsChanged, this, showFavoriteContacts);
    connect(this, &HomeWindowViewModel::allFavoriteTelcosChanged, this, showFavoriteTelcos);
    showFavoriteContacts();
    showFavoriteTelcos();
    if (!environment.headless) {
        startWeatherTimer();
    }
}

HomeWindowViewModel::~HomeWindowViewModel()
{
    for (const QMetaObject::Connection &connection : std::as_const(m_cancelables)) {
        disconnect(connection);
    }
}

bool HomeWindowViewModel::fixedQuoteOnStartup() const
{
    return m_preferences->value(PreferenceKey::fixedQuoteOnStartup);
}

bool HomeWindowViewModel::copyNumberURLToClipBoard() const
{
    return m_preferences->value(PreferenceKey::copyNumberURLToClipBoard);
}

bool HomeWindowViewModel::updateWeatherInfoEveryHour() const
{
    return m_preferences->value(PreferenceKey::updateWeatherInfoEveryHour);
}

// Each subscription takes the publisher's current value at once, then every new one; the view model is the
// context object, so nothing is delivered once it is gone.
void HomeWindowViewModel::subscribe()
{
    // 1. The history.
    auto recents = [this] {
        m_allRecentCalls = m_recentCallsDataService->savedRecents();
        Q_EMIT allRecentCallsChanged();
    };
    m_cancelables.append(
        connect(m_recentCallsDataService.get(), &RecentCallsDataService::savedRecentsChanged, this, recents));
    recents();

    // 2. The welcome hand-over.
    if (!fixedQuoteOnStartup() && !m_headless) {
        m_timer = std::make_unique<QTimer>();
        m_timer->setInterval(1000);
        connect(m_timer.get(), &QTimer::timeout, this, &HomeWindowViewModel::welcomeTick);
        m_timer->start();
    }

    // 3. The quote.
    if (m_randomQuoteDataService) {
        auto quote = [this] {
            m_randomQuote = m_randomQuoteDataService->randomQuote();
            Q_EMIT randomQuoteChanged();
        };
        m_cancelables.append(
            connect(m_randomQuoteDataService.get(), &RandomQuoteDataService::randomQuoteChanged, this, quote));
        quote();
        auto awaited = [this] {
            m_quoteAwaited = m_randomQuoteDataService->awaitsQuote();
            Q_EMIT quoteAwaitedChanged();
        };
        m_cancelables.append(
            connect(m_randomQuoteDataService.get(), &RandomQuoteDataService::awaitsQuoteChanged, this, awaited));
        awaited();
    }

    // 4. The contacts.
    m_cancelables.append(connect(m_contactsDataService.get(), &ContactsDataService::allContactsChanged, this,
                                 &HomeWindowViewModel::handleContacts));
    if (!m_contactsDataService->allContacts().isEmpty()) {
        handleContacts();
    }

    // 5. The contact search, debounced.
    m_cancelables.append(connect(&m_searchDebounce, &QTimer::timeout, this, [this] {
        const bool search = m_searchTextForContacts.size() > 0;
        if (m_shouldSearchForContacts != search) {
            m_shouldSearchForContacts = search;
            Q_EMIT shouldSearchForContactsChanged();
        }
        if (search) {
            runContactFilter();
        }
    }));
    m_searchDebounce.start();

    // 6. The favourite links.
    auto telcos = [this] { setAllFavoriteTelcos(m_favoritesDataService->savedFavoriteTelcos()); };
    m_cancelables.append(
        connect(m_favoritesDataService.get(), &FavoritesDataService::savedFavoriteTelcosChanged, this, telcos));
    telcos();

    // 7. The favourite contacts, resolved against the address book.
    m_cancelables.append(connect(m_favoritesDataService.get(), &FavoritesDataService::savedFavoriteContactsChanged,
                                 this, &HomeWindowViewModel::resolveFavoriteContacts));
    resolveFavoriteContacts();

    // 8. The address book's error.
    auto contactsError = [this] {
        m_contactsPermissionError = m_contactsDataService->permissionError();
        Q_EMIT contactsPermissionErrorChanged();
    };
    m_cancelables.append(
        connect(m_contactsDataService.get(), &ContactsDataService::permissionErrorChanged, this, contactsError));
    if (m_contactsDataService->permissionError()) {
        contactsError();
    }
    if (m_corelocationDataService) {
        subscribeToPlaceAndWeather();
    }
}

void HomeWindowViewModel::subscribeToPlaceAndWeather()
{
    // 9. The location's permission text.
    CoreLocationDataService *location = m_corelocationDataService.get();
    auto locationError = [this, location] {
        m_corelocationPermissionError = location->permissionError();
        Q_EMIT corelocationPermissionErrorChanged();
    };
    m_cancelables.append(connect(location, &CoreLocationDataService::permissionErrorChanged, this, locationError));
    locationError();

    // 10. The position; each new one fetches the weather.
    auto coordinates = [this, location] {
        m_currentLocation = location->coordinates();
        Q_EMIT currentLocationChanged();
        Q_EMIT weatherPlaceChanged();
        if (m_currentLocation) {
            m_weatherInfoService->getWeatherInfo(m_currentLocation->latitude(), m_currentLocation->longitude());
        }
    };
    m_cancelables.append(connect(location, &CoreLocationDataService::coordinatesChanged, this, coordinates));
    coordinates();

    // 11-12. The place names.
    auto city = [this, location] {
        m_cityName = location->cityName();
        Q_EMIT cityNameChanged();
        Q_EMIT weatherPlaceChanged();
    };
    m_cancelables.append(connect(location, &CoreLocationDataService::cityNameChanged, this, city));
    city();
    auto country = [this, location] {
        m_countryName = location->countryName();
        Q_EMIT countryNameChanged();
        Q_EMIT weatherPlaceChanged();
    };
    m_cancelables.append(connect(location, &CoreLocationDataService::countryNameChanged, this, country));
    country();
    m_cancelables.append(connect(location, &CoreLocationDataService::placeSourceChanged, this,
                                 &HomeWindowViewModel::weatherPlaceChanged));

    // 13. The weather document, as the card's record.
    auto weather = [this] {
        if (const std::optional<WeatherInfo> &info = m_weatherInfoService->weatherInfo()) {
            m_weatherInfo = WeatherInfoViewModel::from(*info, QDateTime::currentDateTime());
            Q_EMIT weatherInfoChanged();
        }
    };
    m_cancelables.append(
        connect(m_weatherInfoService.get(), &WeatherInfoDataService::weatherInfoChanged, this, weather));
    weather();
}

QVariant HomeWindowViewModel::weatherInfoValue() const
{
    return m_weatherInfo ? QVariant::fromValue(*m_weatherInfo) : QVariant();
}

QVariant HomeWindowViewModel::currentLocationValue() const
{
    return m_currentLocation ? QVariant::fromValue(*m_currentLocation) : QVariant();
}

QVariant HomeWindowViewModel::dailyWeatherViewModel() const
{
    if (!m_weatherInfo) {
        return {};
    }
    return QVariant::fromValue(
        DailyWeatherViewModel::make(*m_weatherInfo, m_cityName, m_countryName, QDateTime::currentDateTime()));
}

QString HomeWindowViewModel::weatherPlaceTitle() const
{
    const QString title = WeatherPresentation::placeTitle(m_cityName, m_countryName);
    if (title.isEmpty() && m_currentLocation) {
        return m_currentLocation->toString(QGeoCoordinate::DegreesWithHemisphere); // a place no city is near
    }
    return title;
}

QString HomeWindowViewModel::weatherPlaceNote() const
{
    if (!m_corelocationDataService) {
        return {};
    }
    switch (m_corelocationDataService->placeSource()) {
    case CoreLocationDataService::PlaceSource::located:
        return tr("From your location");
    case CoreLocationDataService::PlaceSource::chosen:
        return tr("Chosen by you");
    case CoreLocationDataService::PlaceSource::guessed:
        return tr("Guessed from your time zone");
    case CoreLocationDataService::PlaceSource::none:
        break;
    }
    return {};
}

bool HomeWindowViewModel::weatherPlaceIsGuess() const
{
    return m_corelocationDataService &&
           m_corelocationDataService->placeSource() == CoreLocationDataService::PlaceSource::guessed;
}

bool HomeWindowViewModel::weatherPlaceIsChosen() const
{
    return m_corelocationDataService &&
           m_corelocationDataService->placeSource() == CoreLocationDataService::PlaceSource::chosen;
}

QObject *HomeWindowViewModel::weatherStatusObject() const
{
    return m_weatherStatus.get();
}

void HomeWindowViewModel::chooseWeatherCity(const QVariantMap &city)
{
    const QGeoCoordinate position(city.value(QStringLiteral("latitude")).toDouble(),
                                  city.value(QStringLiteral("longitude")).toDouble());
    const QString name = city.value(QStringLiteral("name")).toString().trimmed();
    if (!m_corelocationDataService || name.isEmpty() || !position.isValid()) {
        return;
    }
    m_corelocationDataService->chooseCity(name, city.value(QStringLiteral("country")).toString(), position);
}

void HomeWindowViewModel::clearWeatherCity()
{
    if (m_corelocationDataService) {
        m_corelocationDataService->clearChosenCity();
    }
}

QString HomeWindowViewModel::greeting(const QDateTime &now) const
{
    return Welcome::greeting((now.isValid() ? now : QDateTime::currentDateTime()).time().hour());
}

void HomeWindowViewModel::updateWeatherInfo()
{
    if (!m_corelocationDataService) {
        return;
    }
    m_corelocationDataService->startUp();
    startWeatherTimer();
}

void HomeWindowViewModel::welcomeTick()
{
    if (m_count == 5) {
        m_count = 0;
        setIsWelcomeShown(false);
        setIsDialerShown(true);
        m_timer->stop();
    }
    ++m_count;
    Q_EMIT countChanged();
}

void HomeWindowViewModel::handleContacts()
{
    m_allContacts = m_contactsDataService->allContacts();
    ++m_contactsVersion;
    m_searchIndex.reset();
    Q_EMIT allContactsChanged();
    if (m_filteredContacts.isEmpty()) {
        m_filteredContacts = m_allContacts;
        Q_EMIT filteredContactsChanged();
    }
    if (!m_searchTextForContacts.isEmpty()) {
        runContactFilter();
    }
    m_favoritesDataService->fetchFavoriteContacts();
}

bool HomeWindowViewModel::contactMatches(const Contact &contact, const QString &searchText)
{
    return !ContactSearchIndex({contact}).matches(searchText).empty();
}

QList<Contact> HomeWindowViewModel::matchingContacts(const QList<Contact> &contacts, const ContactSearchIndex &index,
                                                     const QString &searchText)
{
    QList<Contact> kept;
    for (qsizetype position : index.matches(searchText)) {
        kept.append(contacts.at(position));
    }
    return kept;
}

void HomeWindowViewModel::runContactFilter()
{
    // Works on copies in the global pool; only the newest search's result is applied, on the main thread.
    const quint64 generation = ++m_filterGeneration;
    const quint64 version = m_contactsVersion;
    QPointer<HomeWindowViewModel> self(this);
    (void)QtConcurrent::run([self, generation, version, index = m_searchIndex, contacts = m_allContacts,
                             text = m_searchTextForContacts]() mutable {
        if (!index) {
            index = std::make_shared<const ContactSearchIndex>(contacts);
        }
        QList<Contact> kept = matchingContacts(contacts, *index, text);
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [self, generation, version, index, kept = std::move(kept)] {
                if (!self) {
                    return;
                }
                if (self->m_contactsVersion == version && !self->m_searchIndex) {
                    self->m_searchIndex = index;
                }
                if (self->m_filterGeneration == generation) {
                    self->m_filteredContacts = kept;
                    Q_EMIT self->filteredContactsChanged();
                }
            },
            Qt::QueuedConnection);
    });
}

void HomeWindowViewModel::resolveFavoriteContacts()
{
    // Until the address book has been read there is nobody to find; the first list read resolves them (the manager
    // looks them up in that list, without reading every book on this thread).
    if (!m_contactsDataService->hasLoaded()) {
        return;
    }
    QList<Contact> resolved;
    for (const FavoriteContactEntityPtr &record : m_favoritesDataService->savedFavoriteContacts()) {
        if (std::optional<Contact> contact = m_contactStore->fetchContact(record->contactID())) {
            resolved.append(std::move(*contact));
        }
    }
    m_allFavoriteContacts = std::move(resolved);
    Q_EMIT allFavoriteContactsChanged();
}

void HomeWindowViewModel::startWeatherTimer()
{
    if (!updateWeatherInfoEveryHour() || !m_corelocationDataService) {
        return;
    }
    m_weatherTimer = std::make_unique<QTimer>();
    m_weatherTimer->setInterval(static_cast<int>(m_updateWeatherInfoDelay * 1000));
    connect(m_weatherTimer.get(), &QTimer::timeout, this, [this] {
        if (updateWeatherInfoEveryHour()) {
            // The new position the start-up publishes fetches the weather.
            QTimer::singleShot(0, this, [this] { m_corelocationDataService->startUp(); });
        }
    });
    m_weatherTimer->start();
}

void HomeWindowViewModel::cancelWeatherTimer()
{
    m_weatherTimer.reset();
}

#define TELVERRA_FLAG_SETTER(Name, member, signal)                                                                     \
    void HomeWindowViewModel::Name(bool shown)                                                                         \
    {                                                                                                                  \
        if (member != shown) {                                                                                         \
            member = shown;                                                                                            \
            Q_EMIT signal();                                                                                           \
        }                                                                                                              \
    }
TELVERRA_FLAG_SETTER(setIsWelcomeShown, m_isWelcomeShown, isWelcomeShownChanged)
TELVERRA_FLAG_SETTER(setIsDialerShown, m_isDialerShown, isDialerShownChanged)
TELVERRA_FLAG_SETTER(setIsRecentsShown, m_isRecentsShown, isRecentsShownChanged)
TELVERRA_FLAG_SETTER(setIsFavoritesShown, m_isFavoritesShown, isFavoritesShownChanged)
TELVERRA_FLAG_SETTER(setIsContactsShown, m_isContactsShown, isContactsShownChanged)
TELVERRA_FLAG_SETTER(setIsSettingsShown, m_isSettingsShown, isSettingsShownChanged)
#undef TELVERRA_FLAG_SETTER

void HomeWindowViewModel::setDialer(const Dialer &dialer)
{
    if (!(m_dialer == dialer)) {
        m_dialer = dialer;
        Q_EMIT dialerChanged();
    }
}

bool HomeWindowViewModel::validateDialerDisplay(const QString &text)
{
    const bool valid = m_dialer.validate(text);
    Q_EMIT dialerChanged();
    return valid;
}

void HomeWindowViewModel::pressDialerKey(const QString &key)
{
    m_dialer.pressKey(key, m_longPressDetected);
    Q_EMIT dialerChanged();
}

void HomeWindowViewModel::longPressDialerKey(const QString &key)
{
    Dialer::longPress(key, m_longPressDetected);
}

void HomeWindowViewModel::deleteLastDialerCharacter()
{
    m_dialer.deleteLast();
    Q_EMIT dialerChanged();
}

void HomeWindowViewModel::clearDialer()
{
    clearDialerState();
}

void HomeWindowViewModel::clearDialerState()
{
    m_dialer.display.clear();
    m_dialer.isInvalidNumber = false;
    Q_EMIT dialerChanged();
}

void HomeWindowViewModel::setSearchTextForRecents(const QString &text)
{
    if (m_searchTextForRecents != text) {
        m_searchTextForRecents = text;
        Q_EMIT searchTextForRecentsChanged();
    }
}

QList<RecentCallEntityPtr> HomeWindowViewModel::filteredRecentCalls() const
{
    if (m_searchTextForRecents.isEmpty()) {
        return m_allRecentCalls;
    }
    const QString search = m_searchTextForRecents.toLower();
    QList<RecentCallEntityPtr> kept;
    for (const RecentCallEntityPtr &record : m_allRecentCalls) {
        if (record->destinationValue().toLower().contains(search)) {
            kept.append(record);
        }
    }
    return kept;
}

void HomeWindowViewModel::setAllFavoriteTelcos(const QList<FavoriteTelcoEntityPtr> &telcos)
{
    m_allFavoriteTelcos = telcos;
    Q_EMIT allFavoriteTelcosChanged();
}

void HomeWindowViewModel::setSelectedFavoriteTelco(const FavoriteTelcoEntityPtr &telco)
{
    m_selectedFavoriteTelco = telco;
    Q_EMIT selectedFavoriteTelcoChanged();
}

void HomeWindowViewModel::setSelectedContact(const std::optional<Contact> &contact)
{
    m_selectedContact = contact;
    Q_EMIT selectedContactChanged();
}

void HomeWindowViewModel::setSearchTextForContacts(const QString &text)
{
    if (m_searchTextForContacts != text) {
        m_searchTextForContacts = text;
        Q_EMIT searchTextForContactsChanged();
        m_searchDebounce.start();
    }
}

const QList<Contact> &HomeWindowViewModel::shownContacts() const
{
    return (!m_searchTextForContacts.isEmpty() && m_shouldSearchForContacts) ? m_filteredContacts : m_allContacts;
}

void HomeWindowViewModel::showContacts()
{
    m_contactsModel->setContacts(shownContacts());
}

QStringList HomeWindowViewModel::contactsIndexLetters() const
{
    QSet<QString> letters;
    for (const Contact &contact : shownContacts()) {
        letters.insert(ContactFiling::indexLetter(contact.contact()));
    }
    QStringList sorted(letters.cbegin(), letters.cend());
    std::sort(sorted.begin(), sorted.end());
    return sorted;
}

QList<Contact> HomeWindowViewModel::contactsForIndexLetter(const QString &letter, const QList<Contact> &contacts)
{
    QList<Contact> kept;
    for (const Contact &contact : contacts) {
        if (ContactFiling::belongsUnder(letter, ContactFiling::sectionKey(contact.contact()))) {
            kept.append(contact);
        }
    }
    return kept;
}

// ---- The call operations ----

void HomeWindowViewModel::makeCallFromDialer()
{
    const QString display = m_dialer.display;
    Trace::line(u"make call button pressed with: " + display);
    const bool valid = m_dialer.validate(display);
    Q_EMIT dialerChanged();
    if (!valid) {
        return; // the dialer shows its own warning
    }
    handlePhoneCallResult(m_callsManager->makePhoneCall(m_dialer.display));
}

void HomeWindowViewModel::makeCallFromClipboard()
{
    if (!m_clipboard->isReadable()) {
        // Dialling what this program last saw there could call the wrong number: nothing is dialled.
        const char *text = QT_TR_NOOP("Telverra can read the clipboard only while its window is in front. Bring the "
                                      "window to the front and try again.");
        publishMessage(tr(text), QString::fromUtf8(text));
        return;
    }
    if (const std::optional<QString> text = m_clipboard->plainText()) {
        makeCallFromText(*text);
    }
}

void HomeWindowViewModel::makeCallFromText(const QString &text)
{
    Trace::line(u"make call button pressed with: " + text);
    const bool valid = m_dialer.validate(text);
    Q_EMIT dialerChanged();
    if (valid) {
        handlePhoneCallResult(m_callsManager->makePhoneCall(m_dialer.display));
        return;
    }
    openTelcoURL(ClipboardText::meetingAddress(text));
}

void HomeWindowViewModel::startMeetingInBrowser(CallTypes type)
{
    Trace::line(u"make call in browser button pressed with: " + caseName(type));
    QPointer<HomeWindowViewModel> self(this);
    m_callsManager->startNewMeeting(type, [self](const CallResult &result) {
        if (self) {
            self->handleMeetingResult(result);
        }
    });
}

void HomeWindowViewModel::sendContactAction(const Contact &contact, const QString &destinationTag, CallTypes type)
{
    Trace::line(u"send button of type " + caseName(type) + u" for contact: " + contact.fullName());
    struct Action
    {
        CallTypes type;
        CallResult (CallsManager::*launch)(const QString &);
        const char16_t *trace;
    };
    // The mail row reuses the phone wording; any other kind launches nothing.
    static constexpr Action actions[] = {
        {CallTypes::telephone, &CallsManager::makePhoneCall, u"call launced with number: "},
        {CallTypes::facetime, &CallsManager::makeFacetimeCall, u"facetime call with number: "},
        {CallTypes::facetimeaudio, &CallsManager::makeFacetimeAudioCall, u"facetime-audio call with number: "},
        {CallTypes::messages, &CallsManager::sendMessage, u"text sent with number: "},
        {CallTypes::mail, &CallsManager::sendEmail, u"call launced with number: "},
    };
    const QString destination = m_dialer.display;
    for (const Action &action : actions) {
        if (action.type == type) {
            handleContactActionResult((m_callsManager->*action.launch)(destination), contact, destinationTag, type,
                                      QString::fromUtf16(action.trace) + destination);
            return;
        }
    }
}

void HomeWindowViewModel::recallRecent(const QString &destinationValue, CallTypes type)
{
    m_callsManager->setTypeOfLastCall(type);
    if (isMeeting(type)) {
        openTelcoURL(destinationValue);
        return;
    }
    // Every other kind, FaceTime, messages and mail included, is called again as a telephone number.
    handlePhoneCallResult(m_callsManager->makePhoneCall(destinationValue));
}

void HomeWindowViewModel::recallRecentWithUnknownType(const QString &destinationValue, const QString &contactID)
{
    Q_UNUSED(contactID);
    handlePhoneCallResult(m_callsManager->makePhoneCall(destinationValue));
}

void HomeWindowViewModel::openTelcoURL(const QString &address)
{
    clearDialerState();
    QPointer<HomeWindowViewModel> self(this);
    m_callsManager->openTelco(address, [self](const CallResult &result) {
        if (self) {
            self->handleMeetingResult(result);
        }
    });
}

void HomeWindowViewModel::copyValueToClipboard(const QString &value)
{
    Trace::line(u"copy value to clipboard button pressed with: " + value);
    m_clipboard->setPlainText(value);
}

void HomeWindowViewModel::addContactToFavorites(const Contact &contact)
{
    if (!m_favoritesDataService->favoriteContacts(contact.id()).isEmpty()) {
        Trace::line(QStringLiteral("Contact not added to favorites since it already exists"));
        return;
    }
    m_favoritesDataService->addFavoriteContact(contact.contact().givenName, contact.contact().familyName, contact.id());
}

void HomeWindowViewModel::sendContactActionTo(const QString &contactIdentifier, const QString &destinationTag,
                                              const QString &callTypeRawValue)
{
    const std::optional<Contact> contact = m_contactsDataService->contact(contactIdentifier);
    const std::optional<CallTypes> type = callTypesFromRawValue(callTypeRawValue);
    if (contact && type) {
        sendContactAction(*contact, destinationTag, *type);
    }
}

void HomeWindowViewModel::addContactToFavoritesById(const QString &contactIdentifier)
{
    if (const std::optional<Contact> contact = m_contactsDataService->contact(contactIdentifier)) {
        addContactToFavorites(*contact);
    }
}

void HomeWindowViewModel::selectContact(const QString &contactIdentifier)
{
    setSelectedContact(m_contactsDataService->contact(contactIdentifier));
}

QString HomeWindowViewModel::contactsPermissionErrorDescription() const
{
    return m_contactsPermissionError ? m_contactsPermissionError->localizedDescription() : QString();
}

void HomeWindowViewModel::moveFavoriteTelco(int from, int to)
{
    if (from == to || from < 0 || to < 0 || from >= m_allFavoriteTelcos.size() || to >= m_allFavoriteTelcos.size()) {
        return;
    }
    QList<FavoriteTelcoEntityPtr> telcos = m_allFavoriteTelcos;
    telcos.move(from, to);
    setAllFavoriteTelcos(telcos);
    saveFavoriteTelcosOrder();
}

void HomeWindowViewModel::saveFavoriteTelcosOrder()
{
    qint32 position = 0;
    for (const FavoriteTelcoEntityPtr &telco : std::as_const(m_allFavoriteTelcos)) {
        telco->setOrderIndex(position++);
    }
    (m_store ? *m_store : CoreDataManager::shared()).save();
}

void HomeWindowViewModel::publishError(const CallsManagerError &error)
{
    publishMessage(error.localizedDescription(), error.errorDescription());
}

void HomeWindowViewModel::publishMessage(const QString &text, const QString &traced)
{
    Trace::line(traced);
    m_callManagerErrorMessage = text;
    Q_EMIT callManagerErrorMessageChanged();
    Q_EMIT callManagerErrorPublished(text);
    Q_EMIT launchFinished(false, text);
}

void HomeWindowViewModel::handlePhoneCallResult(const CallResult &result)
{
    if (!result.isSuccess()) {
        publishError(result.error());
        return;
    }
    const QString number = result.value();
    Trace::line(u"call launced with number: " + number);
    m_dialer.validate(number);
    Q_EMIT dialerChanged();
    const ContactsDataService::PhoneNumberMatch match = m_contactsDataService->findContact(number);
    m_recentCallsDataService->addRecentCall(number, CallTypes::telephone,
                                            match.contact ? match.contact->id() : QString(), match.label);
    m_recentCallsDataService->fetchRecentCalls();
    if (copyNumberURLToClipBoard()) {
        copyValueToClipboard(number);
    }
    clearDialerState();
    Q_EMIT launchFinished(true, number);
}

void HomeWindowViewModel::handleContactActionResult(const CallResult &result, const Contact &contact,
                                                    const QString &tag, CallTypes type, const QString &successTrace)
{
    if (!result.isSuccess()) {
        publishError(result.error());
        return;
    }
    Trace::line(successTrace);
    m_dialer.validate(result.value());
    Q_EMIT dialerChanged();
    m_recentCallsDataService->addRecentCall(m_dialer.display, type, contact.id(), tag);
    m_recentCallsDataService->fetchRecentCalls();
    const QString launched = m_dialer.display;
    if (copyNumberURLToClipBoard()) {
        copyValueToClipboard(launched);
    }
    clearDialerState();
    Q_EMIT launchFinished(true, launched);
}

void HomeWindowViewModel::handleMeetingResult(const CallResult &result)
{
    if (!result.isSuccess()) {
        publishError(result.error());
        return;
    }
    const QString address = result.value();
    m_recentCallsDataService->addRecentCall(address, CallsManager::callTypeForURL(address), QString(), QString());
    m_recentCallsDataService->fetchRecentCalls();
    if (copyNumberURLToClipBoard()) {
        copyValueToClipboard(address);
    }
    clearDialerState();
    Q_EMIT launchFinished(true, address);
}

QObject *HomeWindowViewModel::callsManagerObject() const
{
    return m_callsManager;
}

QObject *HomeWindowViewModel::recentCallsModel() const
{
    return m_recentCallsModel.get();
}

QObject *HomeWindowViewModel::contactsModel() const
{
    return m_contactsModel.get();
}

QObject *HomeWindowViewModel::favoriteContactsModel() const
{
    return m_favoriteContactsModel.get();
}

QObject *HomeWindowViewModel::favoriteTelcosModel() const
{
    return m_favoriteTelcosModel.get();
}

QObject *HomeWindowViewModel::favoritesDataServiceObject() const
{
    return m_favoritesDataService.get();
}

QObject *HomeWindowViewModel::recentCallsDataServiceObject() const
{
    return m_recentCallsDataService.get();
}

QObject *HomeWindowViewModel::preferencesObject() const
{
    return m_preferences;
}

QObject *HomeWindowViewModel::weatherInfoServiceObject() const
{
    return m_weatherInfoService.get();
}

QObject *HomeWindowViewModel::corelocationDataServiceObject() const
{
    return m_corelocationDataService.get();
}

QObject *HomeWindowViewModel::contactsDataServiceObject() const
{
    return m_contactsDataService.get();
}

void HomeWindowViewModel::recallRecentAt(int row)
{
    const RecentCallEntityPtr record = m_recentCallsModel->record(row);
    if (!record) {
        return;
    }
    if (const std::optional<CallTypes> type = callTypesFromRawValue(record->callType())) {
        recallRecent(record->destinationValue(), *type);
    } else {
        recallRecentWithUnknownType(record->destinationValue(), record->contactID());
    }
}

void HomeWindowViewModel::addRecentToFavoritesAt(int row)
{
    if (const RecentCallEntityPtr record = m_recentCallsModel->record(row)) {
        m_favoritesDataService->addFavoriteTelco(record->destinationValue(), record->callType(),
                                                 record->destinationValue());
    }
}

void HomeWindowViewModel::copyRecentValueAt(int row)
{
    if (const RecentCallEntityPtr record = m_recentCallsModel->record(row)) {
        copyValueToClipboard(record->destinationValue());
    }
}

void HomeWindowViewModel::removeRecentAt(int row)
{
    if (const RecentCallEntityPtr record = m_recentCallsModel->record(row)) {
        m_recentCallsDataService->deleteRecentCall(record);
        m_recentCallsDataService->fetchRecentCalls();
    }
}

void HomeWindowViewModel::refreshRecents()
{
    m_recentCallsDataService->fetchRecentCalls();
}
