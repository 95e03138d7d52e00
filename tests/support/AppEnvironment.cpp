#include "AppEnvironment.h"

#include "app/HomeWindowViewModel.h"
#include "app/SymbolIconProvider.h"
#include "calls/BrowserTabSource.h"
#include "calls/CallsManager.h"
#include "contacts/ContactPhotoProvider.h"
#include "contacts/ContactStoreManager.h"
#include "contacts/ContactsDataService.h"
#include "contacts/VCardDirectoryStore.h"
#include "settings/DeploymentSettings.h"
#include "settings/Preferences.h"
#include "store/CoreDataManager.h"

#include <QFile>
#include <QQmlEngine>

namespace {

// The browser shows no tabs: a new meeting is looked for and not found.
class NoTabs : public BrowserTabSource
{
public:
    std::optional<ScriptValue> run(const QString &, bool) override { return ScriptValue::fromList({}); }
};

} // namespace

const char *const AppEnvironment::defaultAddressBook =
    "BEGIN:VCARD\nUID:ana\nN:García;Ana;;;\nTEL;TYPE=CELL:+34 600 111 222\nEND:VCARD\n"
    "BEGIN:VCARD\nUID:bob\nN:Smith;Bob;;;\nTEL;TYPE=WORK:+1 555 0100\nTEL;TYPE=HOME:+1 555 0101\nEND:VCARD\n"
    "BEGIN:VCARD\nUID:dee\nN:-Dash;Dee;;;\nEMAIL:dee@example.org\nEND:VCARD\n"
    "BEGIN:VCARD\nUID:3m\nORG:3M\nEND:VCARD\n";

AppEnvironment::AppEnvironment(const QByteArray &addressBook)
{
    m_home.writeFile(u".local/share/contacts/people/people.vcf"_qs, addressBook);
    QFile onecall(QStringLiteral(TELVERRA_WEATHER_FIXTURE));
    if (!m_home.isValid() || !m_server.listen() || !onecall.open(QIODevice::ReadOnly)) {
        return;
    }
    m_server.setResponse(u"/data/2.5/onecall"_qs, 200, "application/json", onecall.readAll());
    m_deployment = std::make_unique<DeploymentSettings>(m_home.writeFile(
        u"Info.ini"_qs, (u"[General]\nWEATHER_API_KEY=k\nWEATHER_API_BASE_URL=" + m_server.baseUrl()).toUtf8()));
    m_preferences = std::make_unique<Preferences>(Preferences::defaultFilePath());
    m_preferences->setValue(PreferenceKey::useChromeAsDefaultBrowser, false);
    m_preferences->setValue(PreferenceKey::fixedQuoteOnStartup, true);
    m_tabs = std::make_unique<NoTabs>();
    m_calls = std::make_unique<CallsManager>(m_workspace, *m_preferences, m_clipboard);
    m_calls->setBrowserTabSource(m_tabs.get());
    m_store = std::make_unique<CoreDataManager>(storeFile());
    m_addressBook = std::make_unique<VCardDirectoryStore>();
    m_contacts = std::make_unique<ContactStoreManager>(*m_addressBook);
    m_location.status = LocationManager::authorizedWhenInUse;
    m_location.position = QGeoCoordinate(28.4636, -16.2518);
    m_viewModel = std::make_unique<HomeWindowViewModel>(
        HomeWindowViewModel::Environment{m_preferences.get(), m_calls.get(), m_store.get(), m_contacts.get(),
                                         &m_clipboard, &m_network, m_deployment.get(), &m_location, &m_geocoder});
    m_valid = true;
}

AppEnvironment::~AppEnvironment() = default;

QString AppEnvironment::storeFile() const
{
    return m_home.dataHome() + u"/telverra/Telverra.sqlite";
}

void AppEnvironment::prepareEngine(QQmlEngine &engine)
{
    engine.addImportPath(u"qrc:/qt/qml"_qs);
    engine.addImageProvider(u"symbols"_qs, new SymbolIconProvider);
    const ContactsDataService *contacts = &m_viewModel->contactsDataService();
    engine.addImageProvider(u"contactphoto"_qs,
                            new ContactPhotoProvider([contacts](const QString &id) { return contacts->record(id); }));
}
