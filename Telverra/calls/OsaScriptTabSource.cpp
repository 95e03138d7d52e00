#include "OsaScriptTabSource.h"

#include <QProcess>

namespace {

// A recursive-descent reader with an explicit depth limit, so hostile output cannot exhaust the stack.
class Reader
{
public:
    explicit Reader(QStringView text)
        : m_text(text)
    {}

    std::optional<ScriptValue> value(int depth = 0)
    {
        skipBlanks();
        if (depth > 64 || m_at >= m_text.size()) {
            return std::nullopt;
        }
        if (m_text[m_at] == u'"') {
            return text();
        }
        if (m_text[m_at] != u'{') {
            return std::nullopt;
        }
        ++m_at;
        QList<ScriptValue> items;
        skipBlanks();
        if (m_at < m_text.size() && m_text[m_at] == u'}') {
            ++m_at;
            return ScriptValue::fromList(items);
        }
        while (true) {
            std::optional<ScriptValue> item = value(depth + 1);
            if (!item) {
                return std::nullopt;
            }
            items.append(std::move(*item));
            skipBlanks();
            if (m_at >= m_text.size()) {
                return std::nullopt;
            }
            if (m_text[m_at] == u',') {
                ++m_at;
                continue;
            }
            if (m_text[m_at] == u'}') {
                ++m_at;
                return ScriptValue::fromList(items);
            }
            return std::nullopt;
        }
    }

    bool atEnd()
    {
        skipBlanks();
        return m_at == m_text.size();
    }

private:
    std::optional<ScriptValue> text()
    {
        ++m_at; // the opening quote
        QString out;
        while (m_at < m_text.size()) {
            const QChar c = m_text[m_at++];
            if (c == u'"') {
                return ScriptValue::fromText(out);
            }
            if (c == u'\\' && m_at < m_text.size()) {
                const QChar escaped = m_text[m_at++];
                out.append(escaped == u'n' ? QChar(u'\n') : (escaped == u't' ? QChar(u'\t') : escaped));
                continue;
            }
            out.append(c);
        }
        return std::nullopt; // no closing quote
    }

    void skipBlanks()
    {
        while (m_at < m_text.size() && m_text[m_at].isSpace()) {
            ++m_at;
        }
    }

    QStringView m_text;
    qsizetype m_at = 0;
};

} // namespace

std::optional<ScriptValue> OsaScriptTabSource::parse(QStringView printed)
{
    Reader reader(printed);
    std::optional<ScriptValue> result = reader.value();
    return result && reader.atEnd() ? result : std::nullopt;
}

std::optional<ScriptValue> OsaScriptTabSource::run(const QString &script, bool chrome)
{
    Q_UNUSED(chrome); // the script names the browser
    QProcess osascript;
    osascript.start(QStringLiteral("/usr/bin/osascript"), {QStringLiteral("-ss"), QStringLiteral("-e"), script});
    if (!osascript.waitForFinished(timeoutMilliseconds) || osascript.exitStatus() != QProcess::NormalExit ||
        osascript.exitCode() != 0) {
        osascript.kill();
        return std::nullopt;
    }
    return parse(QString::fromUtf8(osascript.readAllStandardOutput()));
}
