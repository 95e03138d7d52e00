#pragma once

#include "app/HomeWindowViewModel.h"
#include "calls/BrowserTabSource.h"
#include "calls/CallsManager.h"
#include "calls/Clipboard.h"
#include "contacts/ContactStoreManager.h"
#include "contacts/VCardDirectoryStore.h"
#include "settings/DeploymentSettings.h"
#include "settings/Preferences.h"
#include "store/CoreDataManager.h"
#include "support/LoopbackHttpServer.h"
#include "support/RecordingWorkspace.h"
#include "support/ScriptedLocation.h"
#include "support/TestHome.h"

#include <QNetworkAccessManager>

class QQmlEngine;

/// The tabs a browser reports to the meeting search: `answer`, or nothing when it cannot be asked.
class FixedTabs : public BrowserTabSource
{
public:
    std::optional<ScriptValue> run(const QString &, bool) override { return answer; }
    std::optional<ScriptValue> answer = ScriptValue::fromList({});
};

/// A view model over real parts in a throw-away home: the address book's cards in a vCard folder, the store file, the
/// preference file (links open in the default browser), the real clipboard, a recording opener, the weather served on
/// 127.0.0.1 (key "k3y") and a position at La Laguna from scripted location services.
class ViewModelFixture
{
public:
    explicit ViewModelFixture(const QByteArray &cards);
    ~ViewModelFixture();

    /// Info.ini names the loopback server for the quotes too.
    void serveQuotes();
    /// The server answers the weather with the recorded document of La Laguna; false when it cannot.
    bool serveWeather();
    /// The import path and the image providers the program's windows use.
    void prepareEngine(QQmlEngine &engine);

    /// Builds the view model; `environment` may be changed first.
    HomeWindowViewModel &makeViewModel();
    QString storeFile() const { return home.dataHome() + u"/telverra/Telverra.sqlite"; }

    TestHome home;
    LoopbackHttpServer server;
    QNetworkAccessManager network;
    RecordingWorkspace workspace;
    SystemClipboard clipboard;
    FixedTabs tabs;
    ScriptedServices location;
    ScriptedGeocoder geocoder;
    std::unique_ptr<DeploymentSettings> deployment;
    std::unique_ptr<Preferences> preferences;
    std::unique_ptr<CallsManager> calls;
    std::unique_ptr<CoreDataManager> store;
    std::unique_ptr<VCardDirectoryStore> addressBook;
    std::unique_ptr<ContactStoreManager> contacts;
    HomeWindowViewModel::Environment environment;
    std::unique_ptr<HomeWindowViewModel> viewModel;
};
