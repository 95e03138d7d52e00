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
