#pragma once

#include "BrowserTabSource.h"

/// On macOS: runs the listing script itself with `osascript -ss` (structured output) and reads the list it prints.
class OsaScriptTabSource : public BrowserTabSource
{
public:
    static constexpr int timeoutMilliseconds = 10000;

    std::optional<ScriptValue> run(const QString &script, bool chrome) override;

    /// Reads an AppleScript value as `osascript -ss` prints it: {"text", {"nested", "list"}}, with \" and \\ escapes.
    /// Nothing when the text is not such a value.
    static std::optional<ScriptValue> parse(QStringView printed);
};
