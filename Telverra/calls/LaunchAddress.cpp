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

int hexValue(char16_t c)
{
    return isDigit(c) ? c - u'0' : (c | 0x20) - u'a' + 10;
}

// Characters no address has a use for once decoded: controls (C0, DEL, C1) and the invisible ones that reorder or hide
// text (bidi marks, embeddings, overrides and isolates; zero-width spaces, joiners and the byte-order mark).
bool isInvisibleCodePoint(char32_t c)
{
    return c < 0x20 || (c >= 0x7f && c <= 0x9f) || c == 0x61c || c == 0x180e || (c >= 0x200b && c <= 0x200f) ||
           (c >= 0x202a && c <= 0x202e) || (c >= 0x2060 && c <= 0x2064) || (c >= 0x2066 && c <= 0x2069) || c == 0xfeff;
}

// Whether the percent escapes of an already checked component decode to a control or an invisible character. The
// decoded bytes are read as UTF-8; an overlong form (the classic way to smuggle a line break past a check) and a lone
// byte 0x80-0x9F (a C1 control to a Latin-1 reader) count as such too. Other bytes that are no UTF-8 (a Latin-1
// letter) are left alone.
bool carriesEncodedInvisible(QStringView component)
{
    QByteArray bytes;
    for (qsizetype i = 0; i < component.size(); ++i) {
        if (component[i] == u'%') {
            bytes.append(char(hexValue(component[i + 1].unicode()) * 16 + hexValue(component[i + 2].unicode())));
            i += 2;
        } else {
            bytes.append(char(component[i].unicode())); // ASCII: the component passed the character check
        }
    }
    const auto *data = reinterpret_cast<const unsigned char *>(bytes.constData());
    const qsizetype size = bytes.size();
    for (qsizetype i = 0; i < size;) {
        const unsigned char lead = data[i];
        const int length = lead < 0x80             ? 1
                           : (lead & 0xe0) == 0xc0 ? 2
                           : (lead & 0xf0) == 0xe0 ? 3
                           : (lead & 0xf8) == 0xf0 ? 4
                                                   : 0;
        bool wellFormed = length > 0 && i + length <= size;
        char32_t c = length == 1 ? lead : length == 2 ? lead & 0x1f : length == 3 ? lead & 0x0f : lead & 0x07;
        for (int k = 1; wellFormed && k < length; ++k) {
            wellFormed = (data[i + k] & 0xc0) == 0x80;
            c = (c << 6) | (data[i + k] & 0x3f);
        }
        if (!wellFormed) {
            if (lead >= 0x80 && lead <= 0x9f) {
                return true;
            }
            ++i;
            continue;
        }
        static constexpr char32_t smallest[] = {0, 0, 0x80, 0x800, 0x10000};
        if (c < smallest[length] || isInvisibleCodePoint(c)) {
            return true;
        }
        i += length;
    }
    return false;
}

// A mail address may carry a multi-line body (%0D%0A is how one is written); everything else of it, the recipients
// and the header fields, must not hide a line break or a reordering mark.
bool mailCarriesEncodedInvisible(QStringView afterScheme)
{
    const qsizetype hash = afterScheme.indexOf(u'#');
    if (hash >= 0) {
        if (carriesEncodedInvisible(afterScheme.sliced(hash + 1))) {
            return true;
        }
        afterScheme = afterScheme.first(hash);
    }
    const qsizetype question = afterScheme.indexOf(u'?');
    if (question < 0) {
        return carriesEncodedInvisible(afterScheme);
    }
    if (carriesEncodedInvisible(afterScheme.first(question))) {
        return true;
    }
    for (QStringView field : afterScheme.sliced(question + 1).split(u'&')) {
        const qsizetype equals = field.indexOf(u'=');
        const QStringView name = equals >= 0 ? field.first(equals) : field;
        if (carriesEncodedInvisible(name)) {
            return true;
        }
        const bool body = QUrl::fromPercentEncoding(name.toLatin1()).compare(u"body", Qt::CaseInsensitive) == 0;
        if (!body && equals >= 0 && carriesEncodedInvisible(field.sliced(equals + 1))) {
            return true;
        }
    }
    return false;
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
    const QStringView afterScheme = QStringView(text).sliced(parts->scheme.size() + 1);
    if (parts->scheme.compare(u"mailto", Qt::CaseInsensitive) == 0) {
        if ((parts->query && !hasOnlyHarmlessMailFields(*parts->query)) || mailCarriesEncodedInvisible(afterScheme)) {
            return std::nullopt;
        }
    } else if (carriesEncodedInvisible(afterScheme)) {
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
    if (!web || !parts->hasAuthority || parts->hasUserInfo || parts->host.isEmpty() || carriesEncodedInvisible(text)) {
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
