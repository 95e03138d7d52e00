#include "ViewModelFixture.h"

#include "app/SymbolIconProvider.h"
#include "contacts/ContactPhotoProvider.h"
#include "contacts/ContactsDataService.h"

#include <QFile>
#include <QQmlEngine>

ViewModelFixture::ViewModelFixture(const QByteArray &cards)
{
    home.writeFile(u".local/share/contacts/people/people.vcf"_qs, cards);
    server.listen();
    deployment = std::make_unique<DeploymentSettings>(home.writeFile(
        u"Info.ini"_qs, (u"[General]\nWEATHER_API_KEY=k3y\nWEATHER_API_BASE_URL=" + server.baseUrl()).toUtf8()));
    preferences = std::make_unique<Preferences>(Preferences::defaultFilePath());
    preferences->setValue(PreferenceKey::useChromeAsDefaultBrowser, false);
    calls = std::make_unique<CallsManager>(workspace, *preferences, clipboard);
    calls->setBrowserTabSource(&tabs);
    store = std::make_unique<CoreDataManager>(storeFile());
    addressBook = std::make_unique<VCardDirectoryStore>();
    contacts = std::make_unique<ContactStoreManager>(*addressBook);
    location.status = LocationManager::authorizedWhenInUse;
    location.position = QGeoCoordinate(28.4636, -16.2518);
    environment = {preferences.get(), calls.get(),      store.get(), contacts.get(), &clipboard,
                   &network,          deployment.get(), &location,   &geocoder};
}

void ViewModelFixture::serveQuotes()
{
    deployment = std::make_unique<DeploymentSettings>(
        home.writeFile(u"Info.ini"_qs, (u"[General]\nWEATHER_API_KEY=k3y\nWEATHER_API_BASE_URL=" + server.baseUrl() +
                                        u"\nQUOTE_SERVICE_BASE_URL=" + server.baseUrl())
                                           .toUtf8()));
    environment.deployment = deployment.get();
}

bool ViewModelFixture::serveWeather()
{
    QFile onecall(QStringLiteral(TELVERRA_WEATHER_FIXTURE));
    if (!server.isListening() || !onecall.open(QIODevice::ReadOnly)) {
        return false;
    }
    server.setResponse(u"/data/3.0/onecall"_qs, 200, "application/json", onecall.readAll());
    return true;
}

void ViewModelFixture::prepareEngine(QQmlEngine &engine)
{
    engine.addImportPath(u"qrc:/qt/qml"_qs);
    engine.addImageProvider(u"symbols"_qs, new SymbolIconProvider);
    const ContactsDataService *service = &viewModel->contactsDataService();
    engine.addImageProvider(u"contactphoto"_qs,
                            new ContactPhotoProvider([service](const QString &id) { return service->record(id); }));
}

ViewModelFixture::~ViewModelFixture()
{
    viewModel.reset(); // before the services it uses
}

HomeWindowViewModel &ViewModelFixture::makeViewModel()
{
    viewModel = std::make_unique<HomeWindowViewModel>(environment);
    return *viewModel;
}
