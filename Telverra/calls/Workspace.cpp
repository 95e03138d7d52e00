#include "Workspace.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QFileInfo>
#include <QGuiApplication>
#include <QProcess>
#include <QStandardPaths>
#include <QTimer>

Workspace::~Workspace() = default;

SystemWorkspace::SystemWorkspace(const QString &chromeExecutable)
    : m_chromeExecutable(chromeExecutable)
{}

void SystemWorkspace::open(const LaunchAddress &address)
{
    // A LaunchAddress always starts with its scheme, so the argument can never be read as an option.
    const QString xdgOpen = QStandardPaths::findExecutable(QStringLiteral("xdg-open"));
    if (!xdgOpen.isEmpty()) {
        QProcess::startDetached(xdgOpen, {address.text()});
        return;
    }
    if (qobject_cast<QGuiApplication *>(QCoreApplication::instance())) {
        QDesktopServices::openUrl(address.toUrl());
    }
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
