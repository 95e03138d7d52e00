#include "TestHome.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace {
const char *const variables[] = {"HOME",           "XDG_CONFIG_HOME", "XDG_DATA_HOME",
                                 "XDG_CACHE_HOME", "XDG_STATE_HOME",  "XDG_RUNTIME_DIR"};
}

TestHome::TestHome()
{
    for (const char *name : variables) {
        m_saved.append({QByteArray(name), qgetenv(name)});
    }
    const QString root = m_dir.path();
    const QString paths[] = {root,
                             root + u"/.config",
                             root + u"/.local/share",
                             root + u"/.cache",
                             root + u"/.local/state",
                             root + u"/runtime"};
    for (int i = 0; i < 6; ++i) {
        QDir().mkpath(paths[i]);
        qputenv(variables[i], QFile::encodeName(paths[i]));
    }
    QFile::setPermissions(paths[5], QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
}

TestHome::~TestHome()
{
    for (const auto &[name, value] : m_saved) {
        if (value.isNull()) {
            qunsetenv(name.constData());
        } else {
            qputenv(name.constData(), value);
        }
    }
}

QString TestHome::writeFile(const QString &relativePath, const QByteArray &content) const
{
    const QString path = m_dir.path() + u'/' + relativePath;
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(content) != content.size()) {
        return {};
    }
    return path;
}

QString TestHome::writeScript(const QString &relativePath, const QByteArray &content) const
{
    const QString path = writeFile(relativePath, content);
    if (path.isEmpty() || !QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner)) {
        return {};
    }
    return path;
}

bool TestHome::registerRecordingHandler(const QStringList &schemes, const QString &log, bool startable) const
{
    const QString recorder = writeScript(u"bin/telverra-recorder"_qs,
                                         "#!/bin/sh\nprintf '%s\\n' \"$1\" >> \"" + QFile::encodeName(log) + "\"\n");
    QByteArray types;
    QByteArray defaults = "[Default Applications]\n";
    for (const QString &scheme : schemes) {
        types += "x-scheme-handler/" + scheme.toLatin1() + ';';
        defaults += "x-scheme-handler/" + scheme.toLatin1() + "=telverra-recorder.desktop\n";
    }
    // Not startable: an application for a terminal, which GIO refuses to start where it finds no terminal.
    return !recorder.isEmpty() &&
           !writeFile(u".local/share/applications/telverra-recorder.desktop"_qs,
                      "[Desktop Entry]\nType=Application\nName=Recorder\nNoDisplay=true\nTerminal=" +
                          QByteArray(startable ? "false" : "true") + "\nExec=" + QFile::encodeName(recorder) +
                          " %u\nMimeType=" + types + '\n')
                .isEmpty() &&
           !writeFile(u".config/mimeapps.list"_qs, defaults).isEmpty();
}

QString TestHome::writeRecorder(const QString &relativePath, const QString &log) const
{
    return writeScript(relativePath, "#!/bin/sh\nfor a in \"$@\"; do printf '%s\\n' \"$a\"; done >> \"" +
                                         QFile::encodeName(QDir(m_dir.path()).filePath(log)) + "\"\n");
}

QString TestHome::read(const QString &path) const
{
    QFile file(QDir(m_dir.path()).filePath(path));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

QStringList TestHome::lines(const QString &path) const
{
    return read(path).split(u'\n', Qt::SkipEmptyParts);
}
