#pragma once

#include <QQuickImageProvider>

/// Images for the system symbol names the screens use ("phone.fill", "gear", "sun.max.fill", …), drawn from the
/// vendored SVGs in the colour asked for: "image://symbols/<name>" or "image://symbols/<name>?color=<#rrggbb>".
class SymbolIconProvider : public QQuickImageProvider
{
public:
    SymbolIconProvider();

    QImage requestImage(const QString &id, QSize *size, const QSize &requestedSize) override;

    /// The resource file of a symbol name, or an empty text for a name without one.
    static QString resourceFor(const QString &symbolName);
};
