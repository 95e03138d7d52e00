#pragma once

#include "support/ViewModelFixture.h"

/// The application as a user meets it, in process: a real view model over a temporary home and store, an address-book
/// folder, the real clipboard, a recording opener, a weather document served on 127.0.0.1, and a QML engine set up as
/// the program sets up its own. The welcome screen stays (no hand-over timer) and meetings open in the default browser.
class AppEnvironment
{
public:
    /// The address book the environment starts with: García (a mobile), Smith (a work and a home number), -Dash (an
    /// e-mail address only) and the company 3M.
    static const char *const defaultAddressBook;

    explicit AppEnvironment(const QByteArray &addressBook = defaultAddressBook);

    /// Whether everything could be set up (the home, the server, the weather document).
    bool isValid() const { return m_valid; }
    HomeWindowViewModel &viewModel() { return *m_app.viewModel; }
    Preferences &preferences() { return *m_app.preferences; }
    RecordingWorkspace &workspace() { return m_app.workspace; }
    const TestHome &home() const { return m_app.home; }
    QString storeFile() const { return m_app.storeFile(); }
    /// The import path and the image providers the program's windows use.
    void prepareEngine(QQmlEngine &engine) { m_app.prepareEngine(engine); }

private:
    ViewModelFixture m_app;
    bool m_valid = false;
};
