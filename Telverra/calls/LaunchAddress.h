#pragma once

#include <QString>
#include <QUrl>

#include <optional>

/// An address that is safe to hand to the system opener: an absolute URI checked strictly (RFC 3986, ASCII only, no
/// control characters, and none percent-encoded either: no encoded control, bidi or zero-width character anywhere but
/// in a mail body), kept exactly as written.
///
/// QUrl is not used for the check because it rewrites what a phone number needs kept: it refuses a "+" in an
/// authority ("tel://+34600123456") and reads a numeric one as an IPv4 address ("tel://12" becomes
/// "tel://0.0.0.12"). Everything that opens something takes a LaunchAddress, so unchecked text cannot reach it.
class LaunchAddress
{
public:
    /// Longest address handed to the system opener; well inside the kernel's limit for one argument.
    static constexpr qsizetype maximumLength = 32 * 1024;
    /// Longest address handed to a browser.
    static constexpr qsizetype maximumBrowserLength = 2048;

    /// A strictly valid absolute URI, or nothing. A "mailto:" address may only carry the harmless header fields
    /// (to, cc, bcc, subject, body, in-reply-to): mail clients that honour "attach=" would send local files.
    static std::optional<LaunchAddress> parse(const QString &text);

    /// What a browser may open: a valid absolute http or https address with a host, no user information, and at
    /// most maximumBrowserLength characters. Anything else (file:, javascript:, data:, text starting with "-") is
    /// refused.
    static std::optional<LaunchAddress> parseForBrowser(const QString &text);

    const QString &text() const { return m_text; }
    /// The scheme in lower case.
    QString scheme() const;
    /// The address as a QUrl, for platform calls that need one; only faithful for http and https.
    QUrl toUrl() const;

    friend bool operator==(const LaunchAddress &, const LaunchAddress &) = default;

private:
    explicit LaunchAddress(const QString &text)
        : m_text(text)
    {}

    QString m_text;
};
