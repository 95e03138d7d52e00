#pragma once

#include "calls/CallResult.h"
#include "calls/CallTypes.h"
#include "contacts/Contact.h"
#include "contacts/ContactStoreManagerError.h"
#include "dialer/Dialer.h"
#include "store/Entities.h"
#include "weather/WeatherPresentation.h"

#include <QGeoCoordinate>
#include <QObject>
#include <QPointer>
#include <QTimer>

#include <memory>
#include <optional>

class CallsManager;
class CoreLocationDataService;
class DeploymentSettings;
class Geocoder;
class LocationServices;
class QNetworkAccessManager;
class RandomQuoteDataService;
class WeatherInfoDataService;
class WeatherStatus;
class ContactSearchIndex;
class Clipboard;
class ContactStoreManager;
class ContactsDataService;
class CoreDataManager;
class FavoritesDataService;
class Preferences;
class RecentCallsDataService;
class RecentCallsListModel;
class ContactsListModel;
class FavoriteTelcosListModel;

/// The one application object: the whole state the screens show, the services that fill it, and every operation
/// the screens and the command line call.
class HomeWindowViewModel : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool isWelcomeShown READ isWelcomeShown WRITE setIsWelcomeShown NOTIFY isWelcomeShownChanged)
    Q_PROPERTY(bool isDialerShown READ isDialerShown WRITE setIsDialerShown NOTIFY isDialerShownChanged)
    Q_PROPERTY(bool isRecentsShown READ isRecentsShown WRITE setIsRecentsShown NOTIFY isRecentsShownChanged)
    Q_PROPERTY(bool isFavoritesShown READ isFavoritesShown WRITE setIsFavoritesShown NOTIFY isFavoritesShownChanged)
    Q_PROPERTY(bool isContactsShown READ isContactsShown WRITE setIsContactsShown NOTIFY isContactsShownChanged)
    Q_PROPERTY(bool isSettingsShown READ isSettingsShown WRITE setIsSettingsShown NOTIFY isSettingsShownChanged)
    Q_PROPERTY(qint64 count READ count NOTIFY countChanged)
    Q_PROPERTY(Dialer dialer READ dialer WRITE setDialer NOTIFY dialerChanged)
    Q_PROPERTY(QString callManagerErrorMessage READ callManagerErrorMessage NOTIFY callManagerErrorMessageChanged)
    Q_PROPERTY(QString searchTextForRecents READ searchTextForRecents WRITE setSearchTextForRecents NOTIFY
                   searchTextForRecentsChanged)
    Q_PROPERTY(QString searchTextForContacts READ searchTextForContacts WRITE setSearchTextForContacts NOTIFY
                   searchTextForContactsChanged)
    Q_PROPERTY(bool shouldSearchForContacts READ shouldSearchForContacts NOTIFY shouldSearchForContactsChanged)
    Q_PROPERTY(bool accessContactsPermission MEMBER m_accessContactsPermission NOTIFY accessContactsPermissionChanged)
    Q_PROPERTY(QString randomQuote READ randomQuote NOTIFY randomQuoteChanged)
    /// Whether a quote may still come: the welcome screen waves its indicator meanwhile.
    Q_PROPERTY(bool quoteAwaited READ quoteAwaited NOTIFY quoteAwaitedChanged)
    Q_PROPERTY(QString cityName READ cityName NOTIFY cityNameChanged)
    Q_PROPERTY(QString countryName READ countryName NOTIFY countryNameChanged)
    Q_PROPERTY(QVariant weatherInfo READ weatherInfoValue NOTIFY weatherInfoChanged)
    Q_PROPERTY(QVariant currentLocation READ currentLocationValue NOTIFY currentLocationChanged)
    Q_PROPERTY(QString corelocationPermissionError READ corelocationPermissionErrorText NOTIFY
                   corelocationPermissionErrorChanged)
    /// The weather's place as the pop-over and the settings name it ("Madrid, Spain"), where it comes from ("Guessed
    /// from your time zone"), and whether it is a guess or the user's choice.
    Q_PROPERTY(QString weatherPlaceTitle READ weatherPlaceTitle NOTIFY weatherPlaceChanged)
    Q_PROPERTY(QString weatherPlaceNote READ weatherPlaceNote NOTIFY weatherPlaceChanged)
    Q_PROPERTY(bool weatherPlaceIsGuess READ weatherPlaceIsGuess NOTIFY weatherPlaceChanged)
    Q_PROPERTY(bool weatherPlaceIsChosen READ weatherPlaceIsChosen NOTIFY weatherPlaceChanged)
    /// What the settings say about the weather (a refused key, or why there is none): a WeatherStatus.
    Q_PROPERTY(QObject *weatherStatus READ weatherStatusObject CONSTANT)
    Q_PROPERTY(QString languageLocale READ languageLocale CONSTANT)
    Q_PROPERTY(QObject *recentCallsModel READ recentCallsModel CONSTANT)
    Q_PROPERTY(QObject *contactsModel READ contactsModel CONSTANT)
    Q_PROPERTY(QObject *favoriteContactsModel READ favoriteContactsModel CONSTANT)
    Q_PROPERTY(QObject *favoriteTelcosModel READ favoriteTelcosModel CONSTANT)
    Q_PROPERTY(QObject *favoritesDataService READ favoritesDataServiceObject CONSTANT)
    Q_PROPERTY(QObject *recentCallsDataService READ recentCallsDataServiceObject CONSTANT)
    Q_PROPERTY(QObject *weatherInfoService READ weatherInfoServiceObject CONSTANT)
    Q_PROPERTY(QObject *corelocationDataService READ corelocationDataServiceObject CONSTANT)
    /// The preference store the settings window edits.
    Q_PROPERTY(QObject *preferences READ preferencesObject CONSTANT)
    /// The launcher, for the settings to tell which application opens each kind of launch.
    Q_PROPERTY(QObject *callsManager READ callsManagerObject CONSTANT)
    Q_PROPERTY(QVariant selectedFavoriteTelco READ selectedFavoriteTelcoValue WRITE setSelectedFavoriteTelcoValue NOTIFY
                   selectedFavoriteTelcoChanged)
    Q_PROPERTY(QObject *contactsDataService READ contactsDataServiceObject CONSTANT)
    Q_PROPERTY(QString contactsPermissionErrorDescription READ contactsPermissionErrorDescription NOTIFY
                   contactsPermissionErrorChanged)
    Q_PROPERTY(bool fixedQuoteOnStartup READ fixedQuoteOnStartup CONSTANT)
    Q_PROPERTY(bool copyNumberURLToClipBoard READ copyNumberURLToClipBoard)
    Q_PROPERTY(bool updateWeatherInfoEveryHour READ updateWeatherInfoEveryHour)

public:
    /// What the view model works with. Anything left empty is the process's shared instance (or, for the
    /// preferences and the clipboard, the desktop's).
    struct Environment
    {
        Preferences *preferences = nullptr;
        CallsManager *callsManager = nullptr;
        CoreDataManager *store = nullptr;
        ContactStoreManager *contactStore = nullptr;
        Clipboard *clipboard = nullptr;
        QNetworkAccessManager *network = nullptr;
        const DeploymentSettings *deployment = nullptr;
        LocationServices *locationServices = nullptr;
        Geocoder *geocoder = nullptr;
        /// The command line's view model: no location, weather or quote services (no network, no GeoClue) and no
        /// timers.
        bool headless = false;
    };

    explicit HomeWindowViewModel(QObject *parent = nullptr);
    explicit HomeWindowViewModel(const Environment &environment, QObject *parent = nullptr);
    ~HomeWindowViewModel() override;

    // Preferences, read from the preference store at every use.
    bool fixedQuoteOnStartup() const;
    bool copyNumberURLToClipBoard() const;
    bool updateWeatherInfoEveryHour() const;
    const QString &languageLocale() const { return m_languageLocale; }

    FavoritesDataService &favoritesDataService() const { return *m_favoritesDataService; }
    RecentCallsDataService &recentCallsDataService() const { return *m_recentCallsDataService; }
    ContactsDataService &contactsDataService() const { return *m_contactsDataService; }
    // Null in a headless view model.
    RandomQuoteDataService *randomQuoteDataService() const { return m_randomQuoteDataService.get(); }
    WeatherInfoDataService *weatherInfoService() const { return m_weatherInfoService.get(); }
    CoreLocationDataService *corelocationDataService() const { return m_corelocationDataService.get(); }
    CallsManager &callsManager() const { return *m_callsManager; }
    QObject *callsManagerObject() const;

    bool isWelcomeShown() const { return m_isWelcomeShown; }
    bool isDialerShown() const { return m_isDialerShown; }
    bool isRecentsShown() const { return m_isRecentsShown; }
    bool isFavoritesShown() const { return m_isFavoritesShown; }
    bool isContactsShown() const { return m_isContactsShown; }
    bool isSettingsShown() const { return m_isSettingsShown; }
    void setIsWelcomeShown(bool shown);
    void setIsDialerShown(bool shown);
    void setIsRecentsShown(bool shown);
    void setIsFavoritesShown(bool shown);
    void setIsContactsShown(bool shown);
    void setIsSettingsShown(bool shown);

    qint64 count() const { return m_count; }
    /// The welcome hand-over timer while it runs.
    const QTimer *timer() const { return m_timer.get(); }

    const Dialer &dialer() const { return m_dialer; }
    void setDialer(const Dialer &dialer);
    /// Validates the text into the dialer (the display field's edits, the keypad).
    Q_INVOKABLE bool validateDialerDisplay(const QString &text);
    Q_INVOKABLE void pressDialerKey(const QString &key);
    Q_INVOKABLE void longPressDialerKey(const QString &key);
    Q_INVOKABLE void deleteLastDialerCharacter();
    /// "Clear display": empty display, no warning.
    Q_INVOKABLE void clearDialer();

    const QString &callManagerErrorMessage() const { return m_callManagerErrorMessage; }

    const QList<RecentCallEntityPtr> &allRecentCalls() const { return m_allRecentCalls; }
    const QString &searchTextForRecents() const { return m_searchTextForRecents; }
    void setSearchTextForRecents(const QString &text);
    /// The history to show: records whose destination contains the search text, ignoring case; all when empty.
    QList<RecentCallEntityPtr> filteredRecentCalls() const;

    const QList<Contact> &allFavoriteContacts() const { return m_allFavoriteContacts; }
    const QList<FavoriteTelcoEntityPtr> &allFavoriteTelcos() const { return m_allFavoriteTelcos; }
    void setAllFavoriteTelcos(const QList<FavoriteTelcoEntityPtr> &telcos);
    const QList<FavoriteActionEntityPtr> &allFavoriteActions() const { return m_allFavoriteActions; }
    const FavoriteTelcoEntityPtr &selectedFavoriteTelco() const { return m_selectedFavoriteTelco; }
    void setSelectedFavoriteTelco(const FavoriteTelcoEntityPtr &telco);
    QVariant selectedFavoriteTelcoValue() const { return QVariant::fromValue(m_selectedFavoriteTelco); }
    void setSelectedFavoriteTelcoValue(const QVariant &telco)
    {
        setSelectedFavoriteTelco(telco.value<FavoriteTelcoEntityPtr>());
    }
    /// The user moved a saved link in the list: the new order is kept (saveFavoriteTelcosOrder).
    Q_INVOKABLE void moveFavoriteTelco(int from, int to);

    const QList<Contact> &allContacts() const { return m_allContacts; }
    const QList<Contact> &filteredContacts() const { return m_filteredContacts; }
    const std::optional<ContactStoreManagerError> &contactsPermissionError() const { return m_contactsPermissionError; }
    QString contactsPermissionErrorDescription() const;
    const std::optional<Contact> &selectedContact() const { return m_selectedContact; }
    void setSelectedContact(const std::optional<Contact> &contact);
    const QString &searchTextForContacts() const { return m_searchTextForContacts; }
    void setSearchTextForContacts(const QString &text);
    bool shouldSearchForContacts() const { return m_shouldSearchForContacts; }
    /// The contacts the Contacts screen shows: the search's result while a search is in force, all contacts otherwise.
    const QList<Contact> &shownContacts() const;
    /// The distinct index letters of the contacts shown ("#" for a number or no name), sorted.
    QStringList contactsIndexLetters() const;
    /// The contacts of the list filed under the letter ("#": a digit, "-", "_", "." or "ç" first).
    static QList<Contact> contactsForIndexLetter(const QString &letter, const QList<Contact> &contacts);
    /// Whether a contact matches a search text, as the contact search decides it.
    static bool contactMatches(const Contact &contact, const QString &searchText);
    /// The contacts that match, in their order (what the search computes away from the main thread).
    static QList<Contact> matchingContacts(const QList<Contact> &contacts, const ContactSearchIndex &index,
                                           const QString &searchText);

    const QString &randomQuote() const { return m_randomQuote; }
    bool quoteAwaited() const { return m_quoteAwaited; }
    const QString &cityName() const { return m_cityName; }
    const QString &countryName() const { return m_countryName; }
    const std::optional<QString> &corelocationPermissionError() const { return m_corelocationPermissionError; }
    QString corelocationPermissionErrorText() const { return m_corelocationPermissionError.value_or(QString()); }
    const std::optional<WeatherInfoViewModel> &weatherInfo() const { return m_weatherInfo; }
    /// The weather record for QML; null before the first document.
    QVariant weatherInfoValue() const;
    const std::optional<QGeoCoordinate> &currentLocation() const { return m_currentLocation; }
    QVariant currentLocationValue() const;
    /// What the daily forecast popover shows, built now (null before the first document).
    Q_INVOKABLE QVariant dailyWeatherViewModel() const;
    /// The welcome screen's greeting for the hour of `now` (the current time when invalid).
    Q_INVOKABLE QString greeting(const QDateTime &now = QDateTime()) const;
    QString weatherPlaceTitle() const;
    QString weatherPlaceNote() const;
    bool weatherPlaceIsGuess() const;
    bool weatherPlaceIsChosen() const;
    QObject *weatherStatusObject() const;
    /// The user chose a city for the weather (a map of name, country, latitude and longitude, as the city search
    /// gives it): it is used instead of the system's position until cleared.
    Q_INVOKABLE void chooseWeatherCity(const QVariantMap &city);
    /// Back to the system's position, or the time zone's city.
    Q_INVOKABLE void clearWeatherCity();
    /// The menu command "Update weather info": the location start-up again, then the weather timer.
    Q_INVOKABLE void updateWeatherInfo();
    double updateWeatherInfoDelay() const { return m_updateWeatherInfoDelay; }
    /// The hourly weather timer while it exists.
    const QTimer *weatherTimer() const { return m_weatherTimer.get(); }
    /// (Re)starts the hourly weather timer when hourly updates are on; there is never more than one.
    Q_INVOKABLE void startWeatherTimer();
    /// Turning hourly updates off in the settings cancels the timer.
    Q_INVOKABLE void cancelWeatherTimer();

    // The call operations.
    Q_INVOKABLE void makeCallFromDialer();
    Q_INVOKABLE void makeCallFromClipboard();
    /// What the clipboard call does with its text, for a text given: a number is called, anything else opened as a
    /// meeting address (a saved link's double click).
    Q_INVOKABLE void makeCallFromText(const QString &text);
    void startMeetingInBrowser(CallTypes type);
    Q_INVOKABLE void startNewGoogleMeet() { startMeetingInBrowser(CallTypes::googleMeetNew); }
    void sendContactAction(const Contact &contact, const QString &destinationTag, CallTypes type);
    void recallRecent(const QString &destinationValue, CallTypes type);
    /// A history row whose stored type is no known kind: called as a telephone number.
    void recallRecentWithUnknownType(const QString &destinationValue, const QString &contactID);
    Q_INVOKABLE void openTelcoURL(const QString &address);
    Q_INVOKABLE void copyValueToClipboard(const QString &value);
    void addContactToFavorites(const Contact &contact);
    /// The contacts screen's actions, by the contact's identifier (the first of duplicates).
    Q_INVOKABLE void sendContactActionTo(const QString &contactIdentifier, const QString &destinationTag,
                                         const QString &callTypeRawValue);
    Q_INVOKABLE void addContactToFavoritesById(const QString &contactIdentifier);
    Q_INVOKABLE void selectContact(const QString &contactIdentifier);
    Q_INVOKABLE void saveFavoriteTelcosOrder();

    // The Recents screen: its rows and their actions, by row of the filtered list.
    QObject *recentCallsModel() const;
    QObject *contactsModel() const;
    QObject *favoriteContactsModel() const;
    QObject *favoriteTelcosModel() const;
    QObject *favoritesDataServiceObject() const;
    QObject *recentCallsDataServiceObject() const;
    QObject *preferencesObject() const;
    QObject *weatherInfoServiceObject() const;
    QObject *corelocationDataServiceObject() const;
    QObject *contactsDataServiceObject() const;
    /// Double click: calls the destination again (a stored type that is no known kind is called as a number).
    Q_INVOKABLE void recallRecentAt(int row);
    Q_INVOKABLE void addRecentToFavoritesAt(int row);
    Q_INVOKABLE void copyRecentValueAt(int row);
    Q_INVOKABLE void removeRecentAt(int row);
    /// The screen's refresh: the history read again from the store.
    Q_INVOKABLE void refreshRecents();

Q_SIGNALS:
    void isWelcomeShownChanged();
    void isDialerShownChanged();
    void isRecentsShownChanged();
    void isFavoritesShownChanged();
    void isContactsShownChanged();
    void isSettingsShownChanged();
    void countChanged();
    void dialerChanged();
    void callManagerErrorMessageChanged();
    /// Every time a launch error is published, even when the text is the same as before (the alert shows again).
    void callManagerErrorPublished(const QString &text);
    void allRecentCallsChanged();
    void searchTextForRecentsChanged();
    void allFavoriteContactsChanged();
    void allFavoriteTelcosChanged();
    void allFavoriteActionsChanged();
    void selectedFavoriteTelcoChanged();
    void allContactsChanged();
    void filteredContactsChanged();
    void contactsPermissionErrorChanged();
    void accessContactsPermissionChanged();
    void selectedContactChanged();
    void searchTextForContactsChanged();
    void shouldSearchForContactsChanged();
    void randomQuoteChanged();
    void quoteAwaitedChanged();
    void weatherPlaceChanged();
    void cityNameChanged();
    void countryNameChanged();
    void corelocationPermissionErrorChanged();
    void weatherInfoChanged();
    void currentLocationChanged();
    /// A launch finished (with success or not); the command line waits for it.
    void launchFinished(bool success, const QString &text);

private:
    void subscribe();
    void subscribeToPlaceAndWeather();
    void welcomeTick();
    void handleContacts();
    void runContactFilter();
    void resolveFavoriteContacts();
    void handlePhoneCallResult(const CallResult &result);
    void handleContactActionResult(const CallResult &result, const Contact &contact, const QString &tag, CallTypes type,
                                   const QString &successTrace);
    void handleMeetingResult(const CallResult &result);
    void publishError(const CallsManagerError &error);
    /// Shows the text in the window's launch alert, as a failed launch does, and prints `traced`, its English.
    void publishMessage(const QString &text, const QString &traced);
    void clearDialerState();

    Preferences *m_preferences;
    CallsManager *m_callsManager;
    CoreDataManager *m_store;
    ContactStoreManager *m_contactStore;
    Clipboard *m_clipboard;
    bool m_headless;
    std::unique_ptr<Preferences> m_ownPreferences;
    std::unique_ptr<Clipboard> m_ownClipboard;
    std::unique_ptr<QNetworkAccessManager> m_ownNetwork;
    std::unique_ptr<LocationServices> m_ownLocationServices;
    std::unique_ptr<Geocoder> m_ownGeocoder;

    QString m_languageLocale;
    std::unique_ptr<FavoritesDataService> m_favoritesDataService;
    std::unique_ptr<RecentCallsDataService> m_recentCallsDataService;
    std::unique_ptr<ContactsDataService> m_contactsDataService;
    std::unique_ptr<RandomQuoteDataService> m_randomQuoteDataService;
    std::unique_ptr<WeatherInfoDataService> m_weatherInfoService;
    std::unique_ptr<CoreLocationDataService> m_corelocationDataService;
    std::unique_ptr<WeatherStatus> m_weatherStatus;
    QList<QMetaObject::Connection> m_cancelables;

    bool m_isWelcomeShown = true;
    bool m_isDialerShown = false;
    bool m_isRecentsShown = false;
    bool m_isFavoritesShown = false;
    bool m_isContactsShown = false;
    bool m_isSettingsShown = false;
    qint64 m_count = 0;
    std::unique_ptr<QTimer> m_timer;
    Dialer m_dialer;
    bool m_longPressDetected = false;
    QString m_callManagerErrorMessage;
    QList<RecentCallEntityPtr> m_allRecentCalls;
    QString m_searchTextForRecents;
    QList<Contact> m_allFavoriteContacts;
    QList<FavoriteTelcoEntityPtr> m_allFavoriteTelcos;
    QList<FavoriteActionEntityPtr> m_allFavoriteActions;
    FavoriteTelcoEntityPtr m_selectedFavoriteTelco;
    QList<Contact> m_allContacts;
    QList<Contact> m_filteredContacts;
    std::optional<ContactStoreManagerError> m_contactsPermissionError;
    bool m_accessContactsPermission = false;
    std::optional<Contact> m_selectedContact;
    QString m_searchTextForContacts;
    bool m_shouldSearchForContacts = false;
    QString m_randomQuote;
    bool m_quoteAwaited = false;
    std::optional<WeatherInfoViewModel> m_weatherInfo;
    std::unique_ptr<QTimer> m_weatherTimer;
    double m_updateWeatherInfoDelay = 3600;
    std::optional<QString> m_corelocationPermissionError;
    QString m_cityName;
    QString m_countryName;
    std::optional<QGeoCoordinate> m_currentLocation;

    void showContacts();

    std::unique_ptr<RecentCallsListModel> m_recentCallsModel;
    std::unique_ptr<ContactsListModel> m_contactsModel;
    std::unique_ptr<ContactsListModel> m_favoriteContactsModel;
    std::unique_ptr<FavoriteTelcosListModel> m_favoriteTelcosModel;
    QTimer m_searchDebounce;
    quint64 m_filterGeneration = 0;
    // Made by the first search over a contacts list, in the background, and kept until the list changes.
    std::shared_ptr<const ContactSearchIndex> m_searchIndex;
    quint64 m_contactsVersion = 0;
};
