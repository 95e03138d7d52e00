#pragma once

#include <QString>
#include <QStringList>

/// The program's diagnostic lines: one line per event on standard output, flushed at once.
namespace Trace {

void line(const QString &text);

/// While one of these lives, lines are collected here instead of being written to standard output.
/// Used by embedders and tests that need to read what the program said; captures nest.
class Capture
{
public:
    Capture();
    ~Capture();
    Capture(const Capture &) = delete;
    Capture &operator=(const Capture &) = delete;

    QStringList lines() const;
    void clear();

private:
    friend void line(const QString &text);
    Capture *m_previous = nullptr;
    QStringList m_lines;
};

} // namespace Trace
