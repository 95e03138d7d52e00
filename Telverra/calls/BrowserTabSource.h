#pragma once

#include <QList>
#include <QString>

#include <optional>

/// What a browser-listing script returns: a text, or a list of such values.
struct ScriptValue
{
    std::optional<QString> text;
    QList<ScriptValue> list;
    bool isList = false;

    static ScriptValue fromText(const QString &value) { return {value, {}, false}; }
    static ScriptValue fromList(const QList<ScriptValue> &items) { return {std::nullopt, items, true}; }
};

/// Asks a browser for its windows and tabs and answers with the nested list the listing script would: one entry per
/// window, each the text "Window ID: …" and a list of tabs, each tab the texts "Title: …" and "URL: …".
class BrowserTabSource
{
public:
    virtual ~BrowserTabSource();
    /// `script` is the listing script for the browser asked (Chrome or the default browser); nothing when the
    /// browser cannot be asked or the script fails.
    virtual std::optional<ScriptValue> run(const QString &script, bool chrome) = 0;
};
