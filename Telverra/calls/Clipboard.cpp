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
