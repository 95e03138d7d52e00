#include "Workspace.h"

#include "common/Trace.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QTimer>

#include <memory>

// Qt's "signals" keyword would rename a field of GIO's D-Bus structures.
#pragma push_macro("signals")
#undef signals
#include <gio/gio.h>
#pragma pop_macro("signals")

// The handler is found and started through GIO rather than xdg-open: GIO's look-up is the desktop's own (mimeapps.list,
// the desktop files' MimeType=), the application it finds is the one started, and a refusal is reported at once.
// xdg-open hands the address on to desktop-specific openers that rewrite it (kde-open5 turns "tel://…" into a web
// address) or, finding no handler, to the web browser, and says nothing either way.

Workspace::~Workspace() = default;

namespace {

struct GObjectUnref
{
    void operator()(gpointer object) const { g_object_unref(object); }
};
using AppInfoPointer = std::unique_ptr<GAppInfo, GObjectUnref>;

// Inside a Flatpak sandbox the desktop's applications are not visible: the OpenURI portal finds and starts them.
bool insideSandbox()
{
    return QFile::exists(QStringLiteral("/.flatpak-info"));
}

// The default application for the scheme among those that take an address on their command line (%u or %U): one
// that takes none would start without the number.
AppInfoPointer defaultApplication(const QString &scheme)
{
    const QByteArray type = "x-scheme-handler/" + scheme.toLower().toLatin1();
    return AppInfoPointer(g_app_info_get_default_for_type(type.constData(), TRUE));
}

void portalAnswered(GObject *, GAsyncResult *result, gpointer address)
{
    GError *error = nullptr;
    if (!g_app_info_launch_default_for_uri_finish(result, &error)) {
        Trace::line(u"The desktop did not open " + QString::fromUtf8(static_cast<const char *>(address)) + u": " +
                    QString::fromUtf8(error->message));
        g_error_free(error);
    }
    g_free(address);
}

} // namespace

SystemWorkspace::SystemWorkspace(const QString &chromeExecutable)
    : m_chromeExecutable(chromeExecutable)
{}

std::optional<OpenFailure> SystemWorkspace::open(const LaunchAddress &address)
{
    const QByteArray uri = address.text().toLatin1(); // a LaunchAddress is ASCII
    if (insideSandbox()) {
        // The portal asks the user when no application or several could open it; its answer comes later, and a
        // refusal is only logged: the user has seen the portal's own dialog.
        g_app_info_launch_default_for_uri_async(uri.constData(), nullptr, nullptr, portalAnswered,
                                                g_strdup(uri.constData()));
        return std::nullopt;
    }
    const AppInfoPointer application = defaultApplication(address.scheme());
    if (!application) {
        return OpenFailure{OpenFailure::Reason::noApplication, {}, {}};
    }
    // Started at once (a D-Bus activatable application is sent the address instead). What GIO refuses before starting
    // it (an application for a terminal with no terminal installed) is the GError, known before this returns; a
    // program that fails once started is not seen here.
    GList uris{const_cast<char *>(uri.constData()), nullptr, nullptr};
    GError *error = nullptr;
    if (g_app_info_launch_uris(application.get(), &uris, nullptr, &error)) {
        return std::nullopt;
    }
    OpenFailure failure{OpenFailure::Reason::launchFailed, QString::fromUtf8(g_app_info_get_name(application.get())),
                        QString::fromUtf8(error->message)};
    g_error_free(error);
    return failure;
}

SchemeHandler SystemWorkspace::handlerFor(const QString &scheme) const
{
    if (insideSandbox()) {
        return {SchemeHandler::State::chosenAtLaunch, {}};
    }
    const AppInfoPointer application = defaultApplication(scheme);
    if (!application) {
        return {};
    }
    return {SchemeHandler::State::application, QString::fromUtf8(g_app_info_get_name(application.get()))};
}

QString SystemWorkspace::chromeExecutable() const
{
    if (!m_chromeExecutable.isEmpty()) {
        return QFileInfo(m_chromeExecutable).isExecutable() ? m_chromeExecutable : QString();
    }
    for (const char *name : {"google-chrome-stable", "google-chrome", "chromium", "chromium-browser"}) {
        const QString found = QStandardPaths::findExecutable(QString::fromLatin1(name));
        if (!found.isEmpty()) {
            return found;
        }
    }
    return {};
}

void SystemWorkspace::openWithApplication(const LaunchAddress &address, const QString &application,
                                          OpenCompletion completion)
{
    QString errorText;
    QString identifier;
    const QString executable = chromeExecutable();
    if (executable.isEmpty()) {
        errorText = u"The application “" + application + u"” could not be found.";
    } else {
        // "--" ends Chromium's switch parsing: whatever the address holds, it is never read as a switch.
        QProcess process;
        process.setProgram(executable);
        process.setArguments({QStringLiteral("--"), address.text()});
        if (process.startDetached()) {
            identifier = QFileInfo(executable).fileName();
        } else {
            errorText = u"The application “" + application + u"” could not be launched: " + process.errorString();
        }
    }
    auto deliver = [completion = std::move(completion), errorText, identifier] { completion(errorText, identifier); };
    if (QCoreApplication::instance()) {
        QTimer::singleShot(0, QCoreApplication::instance(), std::move(deliver));
    } else {
        deliver();
    }
}
