#include "Clipboard.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

Clipboard::~Clipboard() = default;

namespace {
QClipboard *systemClipboard()
{
    return qobject_cast<QGuiApplication *>(QCoreApplication::instance()) ? QGuiApplication::clipboard() : nullptr;
}
} // namespace

std::optional<QString> SystemClipboard::plainText() const
{
    QClipboard *clipboard = systemClipboard();
    if (!clipboard) {
        return std::nullopt;
    }
    const QMimeData *data = clipboard->mimeData();
    if (!data || !data->hasText()) {
        return std::nullopt;
    }
    return data->text();
}

void SystemClipboard::setPlainText(const QString &text)
{
    if (QClipboard *clipboard = systemClipboard()) {
        clipboard->clear();
        clipboard->setText(text);
    }
}

QString ClipboardText::meetingAddress(const QString &text)
{
    // What "\\s+$" removes, in one pass from the end: a regular expression backtracks quadratically over a long run of
    // white space that something else follows.
    qsizetype end = text.size();
    while (end > 0 && text[end - 1].isSpace()) {
        --end;
    }
    qsizetype start = 0;
    while (start < end && (text[start] == u'\t' || text[start].category() == QChar::Separator_Space)) {
        ++start;
    }
    return text.sliced(start, end - start);
}
