#include "LaunchAddress.h"

#include <algorithm>
#include <iterator>

namespace {

bool isAlpha(char16_t c)
{
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z');
}

bool isDigit(char16_t c)
{
    return c >= u'0' && c <= u'9';
}

bool isHexDigit(char16_t c)
{
    return isDigit(c) || (c >= u'a' && c <= u'f') || (c >= u'A' && c <= u'F');
}

bool isUnreserved(char16_t c)
{
    return isAlpha(c) || isDigit(c) || c == u'-' || c == u'.' || c == u'_' || c == u'~';
}

bool isSubDelimiter(char16_t c)
{
    switch (c) {
    case u'!':
    case u'$':
    case u'&':
    case u'\'':
    case u'(':
    case u')':
    case u'*':
    case u'+':
    case u',':
    case u';':
    case u'=':
        return true;
    default:
        return false;
    }
}

// Checks that every character of the view is allowed: unreserved, sub-delimiters, the extra characters given, or a
// well-formed percent escape.
bool allCharactersAllowed(QStringView text, QStringView extra)
{
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t c = text[i].unicode();
        if (c == u'%') {
            if (i + 2 >= text.size() || !isHexDigit(text[i + 1].unicode()) || !isHexDigit(text[i + 2].unicode())) {
                return false;
            }
            i += 2;
            continue;
        }
        if (!isUnreserved(c) && !isSubDelimiter(c) && !extra.contains(QChar(c))) {
            return false;
        }
    }
    return true;
}

bool isValidPort(QStringView port)
{
    for (QChar c : port) {
        if (!isDigit(c.unicode())) {
            return false;
        }
    }
    return true;
}

bool isValidHost(QStringView host)
{
    if (host.startsWith(u'[')) {
        if (!host.endsWith(u']') || host.size() < 3) {
            return false;
        }
        return allCharactersAllowed(host.sliced(1, host.size() - 2), u":");
    }
    return allCharactersAllowed(host, u"");
}

bool isValidAuthority(QStringView authority, bool *hasUserInfo, QStringView *hostOut)
{
    const qsizetype at = authority.indexOf(u'@');
    *hasUserInfo = at >= 0;
    if (at >= 0 && !allCharactersAllowed(authority.first(at), u":")) {
        return false;
    }
    QStringView hostAndPort = at >= 0 ? authority.sliced(at + 1) : authority;
    QStringView host = hostAndPort;
    const qsizetype closingBracket = hostAndPort.lastIndexOf(u']');
    const qsizetype colon = hostAndPort.lastIndexOf(u':');
    if (colon >= 0 && colon > closingBracket) {
        if (!isValidPort(hostAndPort.sliced(colon + 1))) {
            return false;
        }
        host = hostAndPort.first(colon);
    }
    *hostOut = host;
    return isValidHost(host);
}

struct Components
{
    QStringView scheme;
    bool hasAuthority = false;
    bool hasUserInfo = false;
    QStringView host;
    QStringView path;
    std::optional<QStringView> query;
};

// RFC 3986 "absolute-URI [ # fragment ]", ASCII only. Linear in the length of the text.
std::optional<Components> parseAbsoluteUri(QStringView text)
{
    Components parts;
    const qsizetype colon = text.indexOf(u':');
    if (colon <= 0 || !isAlpha(text[0].unicode())) {
        return std::nullopt;
    }
    parts.scheme = text.first(colon);
    for (QChar c : parts.scheme) {
        const char16_t u = c.unicode();
        if (!isAlpha(u) && !isDigit(u) && u != u'+' && u != u'-' && u != u'.') {
            return std::nullopt;
        }
    }
    QStringView rest = text.sliced(colon + 1);

    const qsizetype hash = rest.indexOf(u'#');
    if (hash >= 0) {
        if (!allCharactersAllowed(rest.sliced(hash + 1), u":@/?")) {
            return std::nullopt;
        }
        rest = rest.first(hash);
    }
    const qsizetype question = rest.indexOf(u'?');
    if (question >= 0) {
        parts.query = rest.sliced(question + 1);
        if (!allCharactersAllowed(*parts.query, u":@/?")) {
            return std::nullopt;
        }
        rest = rest.first(question);
    }
    if (rest.startsWith(u"//")) {
        rest = rest.sliced(2);
        const qsizetype slash = rest.indexOf(u'/');
        const QStringView authority = slash >= 0 ? rest.first(slash) : rest;
        parts.hasAuthority = true;
        if (!isValidAuthority(authority, &parts.hasUserInfo, &parts.host)) {
            return std::nullopt;
        }
        rest = slash >= 0 ? rest.sliced(slash) : QStringView();
    }
    parts.path = rest;
    if (!allCharactersAllowed(rest, u":@/")) {
        return std::nullopt;
    }
    return parts;
}

bool hasOnlyHarmlessMailFields(QStringView query)
{
    static constexpr QStringView harmless[] = {u"to", u"cc", u"bcc", u"subject", u"body", u"in-reply-to"};
    for (QStringView field : query.split(u'&')) {
        if (field.isEmpty()) {
            continue;
        }
        const qsizetype equals = field.indexOf(u'=');
        const QStringView name = equals >= 0 ? field.first(equals) : field;
        const QString decoded = QUrl::fromPercentEncoding(name.toLatin1()).toLower();
        if (std::find(std::begin(harmless), std::end(harmless), decoded) == std::end(harmless)) {
            return false;
        }
    }
    return true;
}

} // namespace

std::optional<LaunchAddress> LaunchAddress::parse(const QString &text)
{
    if (text.isEmpty() || text.size() > maximumLength) {
        return std::nullopt;
    }
    const std::optional<Components> parts = parseAbsoluteUri(text);
    if (!parts) {
        return std::nullopt;
    }
    if (parts->scheme.compare(u"mailto", Qt::CaseInsensitive) == 0 && parts->query &&
        !hasOnlyHarmlessMailFields(*parts->query)) {
        return std::nullopt;
    }
    return LaunchAddress(text);
}

std::optional<LaunchAddress> LaunchAddress::parseForBrowser(const QString &text)
{
    if (text.size() > maximumBrowserLength) {
        return std::nullopt;
    }
    const std::optional<Components> parts = parseAbsoluteUri(text);
    if (!parts) {
        return std::nullopt;
    }
    const bool web = parts->scheme.compare(u"https", Qt::CaseInsensitive) == 0 ||
                     parts->scheme.compare(u"http", Qt::CaseInsensitive) == 0;
    if (!web || !parts->hasAuthority || parts->hasUserInfo || parts->host.isEmpty()) {
        return std::nullopt;
    }
    // The web hosts must also be what QUrl reads them as, since the browser gets the QUrl form on some platforms.
    const QUrl url(text, QUrl::StrictMode);
    if (!url.isValid() || url.host().isEmpty()) {
        return std::nullopt;
    }
    return LaunchAddress(text);
}

QString LaunchAddress::scheme() const
{
    return m_text.first(m_text.indexOf(u':')).toLower();
}

QUrl LaunchAddress::toUrl() const
{
    return QUrl::fromEncoded(m_text.toLatin1(), QUrl::StrictMode);
}
