#include "ViewModelFixture.h"

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

ViewModelFixture::~ViewModelFixture()
{
    viewModel.reset(); // before the services it uses
}

HomeWindowViewModel &ViewModelFixture::makeViewModel()
{
    viewModel = std::make_unique<HomeWindowViewModel>(environment);
    return *viewModel;
}
