#include "VCardReader.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>
#include <QHash>

namespace {

bool startsWithNoCase(QByteArrayView text, QByteArrayView prefix)
{
    return text.size() >= prefix.size() && qstrnicmp(text.data(), prefix.data(), prefix.size()) == 0;
}

bool equalsNoCase(QByteArrayView a, QByteArrayView b)
{
    return a.size() == b.size() && qstrnicmp(a.data(), b.data(), a.size()) == 0;
}

// Windows-1252's printable characters in 0x80-0x9F; the rest of the set is ISO-8859-1.
constexpr char16_t windows1252High[32] = {0x20AC, 0xFFFD, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                          0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0xFFFD, 0x017D, 0xFFFD,
                                          0xFFFD, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                          0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0xFFFD, 0x017E, 0x0178};

struct Property
{
    QByteArray group;
    QByteArray name;         // upper case
    QList<QByteArray> types; // upper case, from TYPE=… and bare 2.1 parameters
    QByteArray encoding;     // upper case
    QByteArray charset;
    QByteArray valueKind; // VALUE=…, upper case
    QString customLabel;  // Android's X-CUSTOM(…)
    QByteArray rawValue;
};

// The position of the first separator outside double quotes and parentheses, from `from` on; -1 when there is none.
qsizetype indexOutside(QByteArrayView text, char separator, qsizetype from = 0)
{
    bool quoted = false;
    int depth = 0;
    for (qsizetype i = from; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '"') {
            quoted = !quoted;
        } else if (!quoted && c == '(') {
            ++depth;
        } else if (!quoted && c == ')' && depth > 0) {
            --depth;
        } else if (!quoted && depth == 0 && c == separator) {
            return i;
        }
    }
    return -1;
}

// Splits at the separator outside double quotes and parentheses.
QList<QByteArrayView> splitOutside(QByteArrayView text, char separator)
{
    QList<QByteArrayView> parts;
    qsizetype start = 0;
    for (qsizetype at = indexOutside(text, separator); at >= 0; at = indexOutside(text, separator, start)) {
        parts.append(text.sliced(start, at - start));
        start = at + 1;
    }
    parts.append(text.sliced(start));
    return parts;
}

// RFC 6868: ^n is a line break, ^^ a caret, ^' a double quote.
QByteArray decodeParameterValue(QByteArrayView value)
{
    if (value.size() >= 2 && value.front() == '"' && value.back() == '"') {
        value = value.sliced(1, value.size() - 2);
    }
    QByteArray out;
    out.reserve(value.size());
    for (qsizetype i = 0; i < value.size(); ++i) {
        if (value[i] == '^' && i + 1 < value.size()) {
            const char next = value[i + 1];
            if (next == 'n' || next == 'N') {
                out.append('\n');
                ++i;
                continue;
            }
            if (next == '^' || next == '\'') {
                out.append(next == '^' ? '^' : '"');
                ++i;
                continue;
            }
        }
        out.append(value[i]);
    }
    return out;
}

// TYPE=a,b and TYPE="a,b": the quotes hold the whole list.
void addTypes(Property &property, QByteArrayView list)
{
    const QByteArray unquoted = decodeParameterValue(list.trimmed()).toUpper();
    for (const QByteArray &type : unquoted.split(',')) {
        if (!type.trimmed().isEmpty()) {
            property.types.append(type.trimmed());
        }
    }
}

// Android writes a custom label as X-CUSTOM(CHARSET=UTF-8,ENCODING=QUOTED-PRINTABLE,=4D=61=6D=C3=A1) or
// X-CUSTOM(Label): the last element is the label, the others say how it is written.
QString androidCustomLabel(QByteArrayView parameter)
{
    const qsizetype open = parameter.indexOf('(');
    if (open < 0 || !parameter.endsWith(')')) {
        return {};
    }
    const QList<QByteArrayView> parts = splitOutside(parameter.sliced(open + 1, parameter.size() - open - 2), ',');
    QByteArray charset;
    bool quotedPrintable = false;
    for (qsizetype i = 0; i + 1 < parts.size(); ++i) {
        if (startsWithNoCase(parts[i], "CHARSET=")) {
            charset = parts[i].sliced(8).toByteArray();
        } else if (equalsNoCase(parts[i], "ENCODING=QUOTED-PRINTABLE")) {
            quotedPrintable = true;
        }
    }
    QByteArray label = parts.last().toByteArray();
    if (quotedPrintable) {
        label = VCardReader::decodeQuotedPrintable(label);
    }
    return VCardReader::decodeCharset(label, charset).trimmed();
}

std::optional<Property> parseLine(QByteArrayView line)
{
    // The value starts after the first colon outside quotes and parentheses.
    const qsizetype colon = indexOutside(line, ':');
    if (colon <= 0) {
        return std::nullopt;
    }
    Property property;
    property.rawValue = line.sliced(colon + 1).toByteArray();
    const QList<QByteArrayView> head = splitOutside(line.first(colon), ';');
    QByteArrayView name = head.first().trimmed();
    if (const qsizetype dot = name.lastIndexOf('.'); dot >= 0) {
        property.group = name.first(dot).toByteArray().toUpper();
        name = name.sliced(dot + 1);
    }
    property.name = name.toByteArray().toUpper();
    if (property.name.isEmpty()) {
        return std::nullopt;
    }
    for (qsizetype i = 1; i < head.size(); ++i) {
        const QByteArrayView parameter = head[i].trimmed();
        const qsizetype equals = parameter.indexOf('=');
        if (startsWithNoCase(parameter, "X-CUSTOM(")) {
            property.customLabel = androidCustomLabel(parameter);
            continue;
        }
        if (equals < 0) {
            // vCard 2.1 writes bare values: TEL;CELL;VOICE, PHOTO;BASE64.
            const QByteArray bare = parameter.toByteArray().toUpper();
            if (bare == "QUOTED-PRINTABLE" || bare == "BASE64" || bare == "B" || bare == "8BIT" || bare == "7BIT") {
                property.encoding = bare;
            } else {
                addTypes(property, bare);
            }
            continue;
        }
        const QByteArray key = parameter.first(equals).trimmed().toByteArray().toUpper();
        const QByteArrayView value = parameter.sliced(equals + 1).trimmed();
        if (key == "TYPE") {
            addTypes(property, value);
        } else if (key == "ENCODING") {
            property.encoding = decodeParameterValue(value).toUpper();
        } else if (key == "CHARSET") {
            property.charset = decodeParameterValue(value);
        } else if (key == "VALUE") {
            property.valueKind = decodeParameterValue(value).toUpper();
        } else if (key == "PREF") {
            property.types.append("PREF");
        }
    }
    return property;
}

// vCard 3.0 and 4.0 escapes: \\ \, \; \n.
QString unescapeText(QStringView text)
{
    QString out;
    out.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] == u'\\' && i + 1 < text.size()) {
            const QChar next = text[i + 1];
            if (next == u'n' || next == u'N') {
                out.append(u'\n');
            } else {
                out.append(next);
            }
            ++i;
            continue;
        }
        if (text[i] != QChar(0)) {
            out.append(text[i]);
        }
    }
    return out;
}

// The first `count` components of a structured value, split at unescaped ";"; the rest is not looked at.
QStringList components(QStringView text, int count)
{
    QStringList parts;
    qsizetype start = 0;
    for (qsizetype i = 0; i < text.size() && parts.size() < count - 1; ++i) {
        if (text[i] == u'\\') {
            ++i;
            continue;
        }
        if (text[i] == u';') {
            parts.append(unescapeText(text.sliced(start, i - start)).trimmed());
            start = i + 1;
        }
    }
    if (parts.size() < count) {
        QStringView rest = text.sliced(std::min(start, text.size()));
        qsizetype end = rest.size();
        for (qsizetype i = 0; i < rest.size(); ++i) {
            if (rest[i] == u'\\') {
                ++i;
            } else if (rest[i] == u';') {
                end = i;
                break;
            }
        }
        parts.append(unescapeText(rest.first(end)).trimmed());
    }
    while (parts.size() < count) {
        parts.append(QString());
    }
    return parts;
}

// The address book's label token for a set of vCard types; empty when the set names no label.
QString labelForTypes(const QList<QByteArray> &types)
{
    auto has = [&types](const char *type) { return types.contains(QByteArray(type)); };
    if (has("FAX")) {
        return has("HOME") ? QStringLiteral("_$!<HomeFAX>!$_")
                           : (has("WORK") ? QStringLiteral("_$!<WorkFAX>!$_") : QStringLiteral("_$!<OtherFAX>!$_"));
    }
    // In order of precedence when a value carries several types.
    static constexpr std::pair<const char *, const char16_t *> labels[] = {
        {"CELL", u"_$!<Mobile>!$_"}, {"MOBILE", u"_$!<Mobile>!$_"}, {"IPHONE", u"_$!<iPhone>!$_"},
        {"MAIN", u"_$!<Main>!$_"},   {"PAGER", u"_$!<Pager>!$_"},   {"HOME", u"_$!<Home>!$_"},
        {"WORK", u"_$!<Work>!$_"},   {"OTHER", u"_$!<Other>!$_"},
    };
    for (const auto &[type, label] : labels) {
        if (has(type)) {
            return QString::fromUtf16(label);
        }
    }
    return {};
}

std::optional<QDate> parseBirthday(const QString &text)
{
    const QString digits = QString(text).remove(u'-');
    if (digits.size() >= 8) {
        const QDate date = QDate::fromString(digits.first(8), u"yyyyMMdd");
        if (date.isValid()) {
            return date;
        }
    }
    return std::nullopt;
}

QByteArray decodePhoto(const Property &property)
{
    QByteArrayView value = QByteArrayView(property.rawValue).trimmed();
    QByteArray base64;
    if (property.encoding == "B" || property.encoding == "BASE64") {
        base64 = value.toByteArray();
    } else if (startsWithNoCase(value, "data:")) {
        const qsizetype comma = value.indexOf(',');
        if (comma < 0 || !value.first(comma).contains(";base64")) {
            return {};
        }
        base64 = value.sliced(comma + 1).toByteArray();
    } else {
        return {}; // a remote picture: never fetched
    }
    base64.replace(' ', QByteArray()).replace('\t', QByteArray());
    const auto decoded = QByteArray::fromBase64Encoding(base64, QByteArray::AbortOnBase64DecodingErrors);
    if (!decoded || decoded.decoded.size() > VCardReader::maximumPhotoSize) {
        return {};
    }
    return decoded.decoded;
}

class CardBuilder
{
public:
    void add(const Property &property);
    VCardContact finish(const QString &source, int index);
    bool isEmpty() const { return m_properties == 0; }

private:
    QString text(const Property &property) const;

    VCardContact m_contact;
    QString m_formattedName;
    bool m_hasName = false;
    int m_properties = 0;
    QHash<QByteArray, QString> m_groupLabels;
    // For each labelled value: its list, its position there, its group (labels by group are applied at the end).
    struct Pending
    {
        QList<LabeledValue> *list;
        qsizetype index;
        QByteArray group;
    };
    QList<Pending> m_pending;
};

QString CardBuilder::text(const Property &property) const
{
    QByteArray bytes = property.rawValue;
    if (property.encoding == "QUOTED-PRINTABLE") {
        bytes = VCardReader::decodeQuotedPrintable(bytes);
    } else if (property.encoding == "B" || property.encoding == "BASE64") {
        bytes = QByteArray::fromBase64(bytes);
    }
    return VCardReader::decodeCharset(bytes, property.charset);
}

void CardBuilder::add(const Property &property)
{
    ++m_properties;
    const QByteArray &name = property.name;
    if (name == "PHOTO") {
        if (m_contact.thumbnailImageData.isEmpty()) {
            m_contact.thumbnailImageData = decodePhoto(property);
        }
        return;
    }
    // Structured values (N, ADR, ORG) are capped per component below; a long tail of separators costs nothing.
    const bool structured = name == "N" || name == "ADR" || name == "ORG";
    const QString value = text(property);
    if (!structured && value.size() > VCardReader::maximumValueLength) {
        return;
    }
    auto capped = [](QStringList parts) {
        for (QString &part : parts) {
            if (part.size() > VCardReader::maximumValueLength) {
                part.clear();
            }
        }
        return parts;
    };
    auto labelled = [&](QList<LabeledValue> &list, const QString &content) {
        if (content.isEmpty()) {
            return;
        }
        const QString label = !property.customLabel.isEmpty() ? property.customLabel : labelForTypes(property.types);
        list.append({label, content});
        if (!property.group.isEmpty()) {
            m_pending.append({&list, list.size() - 1, property.group});
        }
    };
    if (name == "UID") {
        m_contact.identifier = unescapeText(value).trimmed();
    } else if (name == "FN") {
        m_formattedName = unescapeText(value).trimmed();
    } else if (name == "N") {
        const QStringList parts = capped(components(value, 5));
        m_contact.familyName = parts[0];
        m_contact.givenName = parts[1];
        m_contact.middleName = parts[2];
        m_contact.namePrefix = parts[3];
        m_contact.nameSuffix = parts[4];
        m_hasName = true;
    } else if (name == "NICKNAME") {
        m_contact.nickname = unescapeText(value).trimmed();
    } else if (name == "ORG") {
        m_contact.organizationName = capped(components(value, 1)).first();
    } else if (name == "TITLE") {
        m_contact.jobTitle = unescapeText(value).trimmed();
    } else if (name == "BDAY") {
        m_contact.birthday = parseBirthday(value.trimmed());
    } else if (name == "TEL") {
        QString number = unescapeText(value).trimmed();
        if (number.startsWith(u"tel:", Qt::CaseInsensitive)) {
            number = number.sliced(4);
        }
        labelled(m_contact.phoneNumbers, number);
    } else if (name == "EMAIL") {
        QString address = unescapeText(value).trimmed();
        if (address.startsWith(u"mailto:", Qt::CaseInsensitive)) {
            address = address.sliced(7);
        }
        labelled(m_contact.emailAddresses, address);
    } else if (name == "ADR") {
        const QStringList parts = capped(components(value, 7));
        QStringList lines;
        for (int i = 2; i < 7; ++i) { // street, locality, region, postal code, country
            if (!parts[i].isEmpty()) {
                lines.append(parts[i]);
            }
        }
        labelled(m_contact.postalAddresses, lines.join(u", "));
    } else if (name == "X-SOCIALPROFILE") {
        labelled(m_contact.socialProfiles, unescapeText(value).trimmed());
    } else if (name == "X-ABLABEL") {
        if (!property.group.isEmpty()) {
            m_groupLabels.insert(property.group, unescapeText(value).trimmed());
        }
    }
}

VCardContact CardBuilder::finish(const QString &source, int index)
{
    for (const Pending &pending : std::as_const(m_pending)) {
        const auto label = m_groupLabels.constFind(pending.group);
        if (label != m_groupLabels.cend() && !label->isEmpty()) {
            (*pending.list)[pending.index].label = *label;
        }
    }
    const bool noNames = m_contact.givenName.isEmpty() && m_contact.familyName.isEmpty() &&
                         m_contact.middleName.isEmpty() && m_contact.namePrefix.isEmpty() &&
                         m_contact.nameSuffix.isEmpty();
    if ((!m_hasName || noNames) && !m_formattedName.isEmpty() && m_formattedName != m_contact.organizationName) {
        // No structured name: the last word of the display name is the family name, the rest the given name.
        const qsizetype space = m_formattedName.lastIndexOf(u' ');
        m_contact.familyName = space < 0 ? m_formattedName : m_formattedName.sliced(space + 1);
        m_contact.givenName = space < 0 ? QString() : m_formattedName.first(space).trimmed();
    }
    if (m_contact.identifier.isEmpty()) {
        const QByteArray hash = QCryptographicHash::hash(source.toUtf8(), QCryptographicHash::Sha1).toHex().left(16);
        m_contact.identifier = u"vcf-" + QString::fromLatin1(hash) + u'-' + QString::number(index);
    }
    return std::move(m_contact);
}

} // namespace

QByteArray VCardReader::decodeQuotedPrintable(const QByteArray &encoded)
{
    QByteArray out;
    out.reserve(encoded.size());
    auto hex = [](char c) -> int {
        if (c >= '0' && c <= '9') {
            return c - '0';
        }
        if (c >= 'A' && c <= 'F') {
            return c - 'A' + 10;
        }
        if (c >= 'a' && c <= 'f') {
            return c - 'a' + 10;
        }
        return -1;
    };
    for (qsizetype i = 0; i < encoded.size(); ++i) {
        const char c = encoded[i];
        if (c != '=') {
            out.append(c);
            continue;
        }
        if (i + 1 >= encoded.size()) {
            break; // a final "=" is a soft break with nothing after it
        }
        if (encoded[i + 1] == '\r' || encoded[i + 1] == '\n') { // a soft line break left in the value
            i += (encoded[i + 1] == '\r' && i + 2 < encoded.size() && encoded[i + 2] == '\n') ? 2 : 1;
            continue;
        }
        const int high = hex(encoded[i + 1]);
        const int low = i + 2 < encoded.size() ? hex(encoded[i + 2]) : -1;
        if (high < 0 || low < 0) {
            out.append(c); // not an escape: kept as written
            continue;
        }
        out.append(static_cast<char>(high * 16 + low));
        i += 2;
    }
    return out;
}

QString VCardReader::decodeCharset(const QByteArray &bytes, const QByteArray &charset)
{
    const QByteArray name = charset.trimmed().toUpper();
    if (name == "ISO-8859-1" || name == "LATIN1" || name == "ISO8859-1") {
        return QString::fromLatin1(bytes);
    }
    if (name == "WINDOWS-1252" || name == "CP1252") {
        QString out;
        out.reserve(bytes.size());
        for (char byte : bytes) {
            const auto code = static_cast<unsigned char>(byte);
            out.append(code >= 0x80 && code < 0xA0 ? QChar(windows1252High[code - 0x80]) : QChar(char16_t(code)));
        }
        return out;
    }
    return QString::fromUtf8(bytes); // invalid sequences become U+FFFD
}

QList<VCardContact> VCardReader::read(const QByteArray &data, const QString &source)
{
    QList<VCardContact> cards;
    std::optional<CardBuilder> card;
    int index = 0;

    QByteArray line; // the logical line being assembled
    bool haveLine = false;
    bool quotedPrintable = false;
    bool oversized = false;
    bool isPhoto = false;

    auto flush = [&] {
        if (haveLine && !oversized) {
            const QByteArrayView text = QByteArrayView(line).trimmed();
            if (equalsNoCase(text, "BEGIN:VCARD")) {
                if (!card) { // a card inside a card is not read as a card
                    card.emplace();
                }
            } else if (equalsNoCase(text, "END:VCARD")) {
                if (card) {
                    cards.append(card->finish(source, index++));
                    card.reset();
                }
            } else if (card && !text.isEmpty()) {
                if (const std::optional<Property> property = parseLine(line)) {
                    card->add(*property);
                }
            }
        }
        line.clear();
        haveLine = false;
        oversized = false;
    };

    const qsizetype size = data.size();
    qsizetype position = 0;
    while (position < size) {
        // One physical line, ended by CRLF, LF or CR.
        qsizetype end = position;
        while (end < size && data[end] != '\n' && data[end] != '\r') {
            ++end;
        }
        const QByteArrayView physical(data.constData() + position, end - position);
        position = end + ((end + 1 < size && data[end] == '\r' && data[end + 1] == '\n') ? 2 : 1);

        const bool continuation = !physical.isEmpty() && (physical[0] == ' ' || physical[0] == '\t');
        const bool softBreak = haveLine && !oversized && quotedPrintable && line.endsWith('=');
        QByteArrayView piece = physical;
        if (haveLine && (continuation || softBreak)) {
            if (oversized) {
                continue; // the rest of a dropped line
            }
            if (softBreak) {
                line.chop(1); // quoted-printable soft break: the next line goes on without a separator
            } else {
                piece = physical.sliced(1); // folding: one blank is dropped
            }
        } else {
            flush();
            haveLine = true;
            // The head tells how the value is written; it is short, unlike the value.
            const qsizetype colon = physical.indexOf(':');
            const QByteArrayView head = physical.first(colon < 0 ? std::min<qsizetype>(physical.size(), 4096) : colon);
            quotedPrintable = head.contains("QUOTED-PRINTABLE") || head.contains("quoted-printable");
            const qsizetype semicolon = head.indexOf(';');
            const QByteArrayView name = head.first(semicolon < 0 ? head.size() : semicolon);
            auto endsWithNoCase = [&name](QByteArrayView suffix) {
                return name.size() >= suffix.size() && equalsNoCase(name.last(suffix.size()), suffix);
            };
            isPhoto = endsWithNoCase("PHOTO") || endsWithNoCase("LOGO");
        }
        const qsizetype limit = isPhoto ? maximumFileSize : maximumLineLength;
        if (line.size() + piece.size() > limit) {
            oversized = true; // dropped, with its continuation lines
            line.clear();
            continue;
        }
        line.append(piece);
    }
    flush();
    if (card && !card->isEmpty()) { // no END:VCARD before the end of the file
        cards.append(card->finish(source, index));
    }
    return cards;
}

QList<VCardContact> VCardReader::readFile(const QString &path)
{
    return readFile(QFileInfo(path));
}

QList<VCardContact> VCardReader::readFile(const QFileInfo &info)
{
    if (!info.isFile() || info.size() > maximumFileSize) {
        return {};
    }
    QFile file(info.absoluteFilePath());
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    // Read what the size says (plus one byte to notice growth), not a buffer of the largest size allowed.
    const QByteArray data = file.read(std::min<qint64>(info.size(), maximumFileSize) + 1);
    if (data.size() > maximumFileSize) {
        return {};
    }
    return read(data, info.absoluteFilePath());
}
