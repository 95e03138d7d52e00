#pragma once

#include <QString>

#include <optional>

/// The general clipboard, plain text only.
class Clipboard
{
public:
    virtual ~Clipboard();
    /// The first item's plain text; nothing when the clipboard is empty, holds no text, or cannot be read now.
    virtual std::optional<QString> plainText() const = 0;
    /// Declares plain text as the only content, then sets it; the previous content is replaced.
    virtual void setPlainText(const QString &text) = 0;
    /// Whether plainText() can tell what the desktop's clipboard holds now. A Wayland desktop hands its clipboard
    /// only to the window that has the keyboard focus: without it there is nothing true to read.
    virtual bool isReadable() const { return true; }
};

namespace ClipboardText {
/// Clipboard text taken as a meeting address: trailing white space removed (line breaks included), then leading
/// blanks and tabs (a leading line break stays).
QString meetingAddress(const QString &text);
} // namespace ClipboardText

/// The desktop clipboard of the running QGuiApplication; without one (a console run) it reads nothing and drops
/// writes. On Wayland it reads only while a window of the program has the keyboard focus, and copies only where the
/// compositor takes the copy (see Clipboard.cpp).
class SystemClipboard : public Clipboard
{
public:
    std::optional<QString> plainText() const override;
    void setPlainText(const QString &text) override;
    bool isReadable() const override;
};
