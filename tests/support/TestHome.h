#pragma once

#include <QString>
#include <QStringList>
#include <QTemporaryDir>

/// A throw-away home: HOME and the XDG folders point into a temporary directory for as long as this lives.
class TestHome
{
public:
    TestHome();
    ~TestHome();
    TestHome(const TestHome &) = delete;
    TestHome &operator=(const TestHome &) = delete;

    bool isValid() const { return m_dir.isValid(); }
    QString path() const { return m_dir.path(); }
    QString configHome() const { return m_dir.path() + u"/.config"; }
    QString dataHome() const { return m_dir.path() + u"/.local/share"; }
    /// Writes a file below the home, creating its folders; returns its absolute path.
    QString writeFile(const QString &relativePath, const QByteArray &content) const;
    /// Writes an executable file (a script with its "#!" line) below the home; returns its absolute path.
    QString writeScript(const QString &relativePath, const QByteArray &content) const;
    /// Makes a recording application the desktop's handler for the schemes ("tel", "https"), as a desktop finds one:
    /// a desktop file in the data home and a mimeapps.list in the config home naming it. Each address it is started
    /// with is appended to `log`, one line each. `startable` false: an application that runs in a terminal, which
    /// GIO refuses to start when there is no terminal on the PATH.
    bool registerRecordingHandler(const QStringList &schemes, const QString &log, bool startable = true) const;
    /// Writes an executable that appends each argument it is given, one a line, to `log` (a stand-in for a browser);
    /// returns its absolute path.
    QString writeRecorder(const QString &relativePath, const QString &log) const;
    /// The text of a file (below the home when the path is relative); empty when it does not exist.
    QString read(const QString &path) const;
    /// Its lines, the empty ones left out.
    QStringList lines(const QString &path) const;

private:
    QTemporaryDir m_dir;
    QList<QPair<QByteArray, QByteArray>> m_saved;
};
