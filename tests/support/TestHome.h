#pragma once

#include <QString>
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

private:
    QTemporaryDir m_dir;
    QList<QPair<QByteArray, QByteArray>> m_saved;
};
