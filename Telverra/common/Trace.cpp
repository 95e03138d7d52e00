#include "Trace.h"

#include <QMutex>
#include <QMutexLocker>

#include <cstdio>

namespace Trace {
namespace {
QMutex s_mutex;
Capture *s_capture = nullptr;
} // namespace

void line(const QString &text)
{
    QMutexLocker locker(&s_mutex);
    if (s_capture) {
        s_capture->m_lines.append(text);
        return;
    }
    const QByteArray bytes = text.toUtf8() + '\n';
    std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stdout);
    std::fflush(stdout);
}

Capture::Capture()
{
    QMutexLocker locker(&s_mutex);
    m_previous = s_capture;
    s_capture = this;
}

Capture::~Capture()
{
    QMutexLocker locker(&s_mutex);
    s_capture = m_previous;
}

QStringList Capture::lines() const
{
    QMutexLocker locker(&s_mutex);
    return m_lines;
}

void Capture::clear()
{
    QMutexLocker locker(&s_mutex);
    m_lines.clear();
}

} // namespace Trace
