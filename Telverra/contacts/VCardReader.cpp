#include "VCardReader.h"

#include "Contact.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QStringDecoder>
#include <QVarLengthArray>

#include <cerrno>
#include <cstring>
#include <string>
#include <type_traits>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// Property names, parameters and types are ASCII: compared in any case, in place.
bool equalsNoCase(QByteArrayView a, QByteArrayView b)
{
    if (a.size() != b.size()) {
        return false;
    }
    for (qsizetype i = 0; i < a.size(); ++i) {
        const auto x = static_cast<unsigned char>(a[i]);
        const auto y = static_cast<unsigned char>(b[i]);
        if (x != y && ((x | 0x20) != (y | 0x20) || (x | 0x20) < 'a' || (x | 0x20) > 'z')) {
            return false;
        }
    }
    return true;
}

bool startsWithNoCase(QByteArrayView text, QByteArrayView prefix)
{
    return text.size() >= prefix.size() && equalsNoCase(text.first(prefix.size()), prefix);
}

// The vCard types that decide a value's label.
enum TypeFlag : quint16
{
    cellType = 1 << 0,
    mobileType = 1 << 1,
    iphoneType = 1 << 2,
    mainType = 1 << 3,
    pagerType = 1 << 4,
    homeType = 1 << 5,
    workType = 1 << 6,
    otherType = 1 << 7,
    faxType = 1 << 8,
};

enum class Encoding
{
    none,
    quotedPrintable,
    base64
};

// One content line, as views into the line being read: nothing is copied until a value is kept.
struct Property
{
    QByteArrayView group;
    QByteArrayView name;
    quint16 types = 0;
    Encoding encoding = Encoding::none;
    QByteArray charset; // rare: only 2.1 exports name one
    // Android's X-CUSTOM(…), or else the first type outside the known ones ("MODEM", "X-NEC-SECRET"), which counts
    // only when the known types name no label.
    QString customLabel;
    bool customLabelIsType = false;
    QByteArrayView rawValue;
};

// The properties that are read; the others are skipped.
enum class Field
{
    other,
    photo,
    name,
    organization,
    address,
    phone,
    email,
    socialProfile,
    groupLabel,
    identifier,
    nickname,
    title,
    formattedName,
    birthday
};

Field fieldNamed(QByteArrayView name)
{
    static constexpr std::pair<QByteArrayView, Field> fields[] = {
        {"N", Field::name},
        {"FN", Field::formattedName},
        {"TEL", Field::phone},
        {"ORG", Field::organization},
        {"ADR", Field::address},
        {"UID", Field::identifier},
        {"BDAY", Field::birthday},
        {"PHOTO", Field::photo},
        {"EMAIL", Field::email},
        {"TITLE", Field::title},
        {"NICKNAME", Field::nickname},
        {"X-ABLABEL", Field::groupLabel},
        {"X-SOCIALPROFILE", Field::socialProfile},
    };
    for (const auto &[text, field] : fields) {
        if (equalsNoCase(name, text)) {
            return field;
        }
    }
    return Field::other;
}

// Whether `word` (upper case) occurs in the text in any case.
bool containsNoCase(QByteArrayView text, QByteArrayView word)
{
    for (qsizetype i = 0; i + word.size() <= text.size(); ++i) {
        if ((text[i] & ~0x20) == word[0] && equalsNoCase(text.sliced(i, word.size()), word)) {
            return true;
        }
    }
    return false;
}

// The position of `c` in text[from, to), or -1.
qsizetype find(QByteArrayView text, char c, qsizetype from, qsizetype to)
{
    if (to - from < 64) { // most ranges are a name or a short value: a call to memchr would cost more
        for (qsizetype i = from; i < to; ++i) {
            if (text[i] == c) {
                return i;
            }
        }
        return -1;
    }
    const void *hit = std::memchr(text.data() + from, c, static_cast<size_t>(to - from));
    return hit ? static_cast<const char *>(hit) - text.data() : -1;
}

// The position of the first separator outside double quotes and parentheses, from `from` on; -1 when there is none.
qsizetype indexOutside(QByteArrayView text, char separator, qsizetype from = 0)
{
    // Quotes and parentheses are rare: when none comes before the first separator, that one is it.
    const qsizetype first = find(text, separator, from, text.size());
    const qsizetype end = first < 0 ? text.size() : first;
    if (find(text, '"', from, end) < 0 && find(text, '(', from, end) < 0) {
        return first;
    }
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

// Types that say what a value is but are no label.
constexpr TypeFlag notALabel = TypeFlag(1 << 15);

quint16 typeFlag(QByteArrayView type)
{
    // The commonest first.
    static constexpr std::pair<QByteArrayView, TypeFlag> known[] = {
        {"CELL", cellType},      {"HOME", homeType},     {"WORK", workType},   {"VOICE", notALabel},
        {"INTERNET", notALabel}, {"PREF", notALabel},    {"FAX", faxType},     {"MOBILE", mobileType},
        {"MAIN", mainType},      {"IPHONE", iphoneType}, {"PAGER", pagerType}, {"OTHER", otherType},
        {"TEXT", notALabel},
    };
    for (const auto &[name, flag] : known) {
        if (equalsNoCase(type, name)) {
            return flag;
        }
    }
    return 0;
}

// TYPE=a,b and TYPE="a,b": the quotes hold the whole list.
void addTypes(Property &property, QByteArrayView list)
{
    list = list.trimmed();
    QByteArray decoded;
    if (find(list, '"', 0, list.size()) >= 0 || find(list, '^', 0, list.size()) >= 0) {
        decoded = decodeParameterValue(list);
        list = decoded;
    }
    qsizetype start = 0;
    while (start <= list.size()) {
        qsizetype comma = find(list, ',', start, list.size());
        if (comma < 0) {
            comma = list.size();
        }
        const QByteArrayView type = list.sliced(start, comma - start).trimmed();
        const quint16 flag = typeFlag(type);
        property.types |= flag;
        if (flag == 0 && property.customLabel.isEmpty() && type.size() <= VCardReader::maximumValueLength) {
            // A phone's own type is the label it shows; "X-" only says that it is not a standard one.
            property.customLabel =
                QString::fromUtf8(startsWithNoCase(type, "X-") ? type.sliced(2) : type).remove(QChar(0)).trimmed();
            property.customLabelIsType = true;
        }
        start = comma + 1;
    }
}

Encoding encodingNamed(QByteArrayView name)
{
    if (equalsNoCase(name, "QUOTED-PRINTABLE")) {
        return Encoding::quotedPrintable;
    }
    if (equalsNoCase(name, "B") || equalsNoCase(name, "BASE64")) {
        return Encoding::base64;
    }
    return Encoding::none;
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
    return VCardReader::decodeCharset(label, charset).remove(QChar(0)).trimmed();
}

void addParameter(Property &property, QByteArrayView parameter)
{
    parameter = parameter.trimmed();
    if (startsWithNoCase(parameter, "X-CUSTOM(")) {
        property.customLabel = androidCustomLabel(parameter);
        property.customLabelIsType = false;
        return;
    }
    const qsizetype equals = find(parameter, '=', 0, parameter.size());
    if (equals < 0) {
        // vCard 2.1 writes bare values: TEL;CELL;VOICE, PHOTO;BASE64.
        if (equalsNoCase(parameter, "8BIT") || equalsNoCase(parameter, "7BIT")) {
            property.encoding = Encoding::none;
        } else if (const Encoding encoding = encodingNamed(parameter); encoding != Encoding::none) {
            property.encoding = encoding;
        } else {
            addTypes(property, parameter);
        }
        return;
    }
    const QByteArrayView key = parameter.first(equals).trimmed();
    const QByteArrayView value = parameter.sliced(equals + 1).trimmed();
    if (equalsNoCase(key, "TYPE")) {
        addTypes(property, value);
    } else if (equalsNoCase(key, "ENCODING")) {
        property.encoding = encodingNamed(decodeParameterValue(value));
    } else if (equalsNoCase(key, "CHARSET")) {
        property.charset = decodeParameterValue(value);
    }
}

std::optional<Property> parseLine(QByteArrayView line)
{
    // The value starts after the first colon outside quotes and parentheses.
    const qsizetype colon = indexOutside(line, ':');
    if (colon <= 0) {
        return std::nullopt;
    }
    Property property;
    property.rawValue = line.sliced(colon + 1);
    const QByteArrayView head = line.first(colon);
    qsizetype separator = indexOutside(head, ';');
    QByteArrayView name = head.first(separator < 0 ? head.size() : separator).trimmed();
    for (qsizetype dot = name.size() - 1; dot >= 0; --dot) {
        if (name[dot] == '.') {
            property.group = name.first(dot);
            name = name.sliced(dot + 1);
            break;
        }
    }
    if (name.isEmpty()) {
        return std::nullopt;
    }
    property.name = name;
    while (separator >= 0) {
        const qsizetype start = separator + 1;
        separator = indexOutside(head, ';', start);
        addParameter(property, head.sliced(start, (separator < 0 ? head.size() : separator) - start));
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

// A text value as it is kept: escapes resolved, NULs dropped, blanks at both ends trimmed.
QString plainText(QString decoded)
{
    if (decoded.contains(u'\\') || decoded.contains(QChar(0))) {
        return unescapeText(decoded).trimmed();
    }
    return std::move(decoded).trimmed();
}

// The same from UTF-8 bytes, or from a part of a decoded value.
QString plainText(QByteArrayView utf8)
{
    if (find(utf8, '\\', 0, utf8.size()) < 0 && find(utf8, '\0', 0, utf8.size()) < 0) {
        return QString::fromUtf8(utf8).trimmed();
    }
    return plainText(QString::fromUtf8(utf8));
}

QString plainText(QStringView text)
{
    return plainText(text.toString());
}

// Where the first of a structured value's components (or of a component's list) ends: at the first unescaped
// separator from `from` on. With `noteCommas`, whether an unescaped "," comes before it.
template<bool noteCommas = false, typename View>
qsizetype componentEnd(View text, qsizetype from, char16_t separator = u';', bool *comma = nullptr)
{
    for (qsizetype i = from; i < text.size(); ++i) {
        if (text[i] == u'\\') {
            ++i;
        } else if (text[i] == separator) {
            return i;
        } else if constexpr (noteCommas) {
            *comma = *comma || text[i] == u',';
        }
    }
    return text.size();
}

// A component that is a list ("Isabel,Clara"): its elements joined by single blanks.
template<typename View>
QString listText(View text)
{
    QStringList elements;
    for (qsizetype start = 0, end = componentEnd(text, 0, u','); start <= text.size();
         end = componentEnd(text, start, u',')) {
        if (QString element = plainText(text.sliced(start, end - start)); !element.isEmpty()) {
            elements.append(std::move(element));
        }
        start = end + 1;
    }
    return elements.join(u' ');
}

// The first `count` components of a structured value, split at unescaped ";", each at most maximumValueLength long
// (longer ones are left empty); the rest is not looked at. With `lists`, a component's elements are joined by blanks.
template<bool lists, typename View>
QStringList components(View text, int count)
{
    QStringList parts;
    parts.reserve(count);
    qsizetype start = 0;
    while (parts.size() < count) {
        if (start > text.size()) {
            parts.append(QString());
            continue;
        }
        bool comma = false;
        const qsizetype end = componentEnd<lists>(text, start, u';', &comma);
        const View piece = text.sliced(start, end - start);
        QString part = comma ? listText(piece) : plainText(piece);
        if (part.size() > VCardReader::maximumValueLength) {
            part.clear();
        }
        parts.append(std::move(part));
        start = end + 1;
    }
    return parts;
}

// The address book's label token for a set of vCard types; empty when the set names no label. The tokens are static
// strings: a label costs no memory of its own.
QString labelForTypes(quint16 types)
{
    if (types & faxType) {
        return (types & homeType)   ? QStringLiteral("_$!<HomeFAX>!$_")
               : (types & workType) ? QStringLiteral("_$!<WorkFAX>!$_")
                                    : QStringLiteral("_$!<OtherFAX>!$_");
    }
    // In order of precedence when a value carries several types.
    if (types & (cellType | mobileType)) {
        return QStringLiteral("_$!<Mobile>!$_");
    }
    if (types & iphoneType) {
        return QStringLiteral("_$!<iPhone>!$_");
    }
    if (types & mainType) {
        return QStringLiteral("_$!<Main>!$_");
    }
    if (types & pagerType) {
        return QStringLiteral("_$!<Pager>!$_");
    }
    if (types & homeType) {
        return QStringLiteral("_$!<Home>!$_");
    }
    if (types & workType) {
        return QStringLiteral("_$!<Work>!$_");
    }
    if (types & otherType) {
        return QStringLiteral("_$!<Other>!$_");
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
    QByteArrayView value = property.rawValue.trimmed();
    QByteArray base64;
    if (property.encoding == Encoding::base64) {
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

// Whether a CHARSET parameter names UTF-8 (or nothing): such values are taken as they are.
bool isUtf8Name(QByteArrayView charset)
{
    if (charset.isEmpty()) {
        return true;
    }
    charset = charset.trimmed();
    return charset.isEmpty() || equalsNoCase(charset, "UTF-8") || equalsNoCase(charset, "UTF8");
}

// A character set's name as ICU may be asked for it: ICU reads "/" in a name as the path of a converter file to load
// and "," as options, so a card's name is passed on only when it is letters, digits, "-", "_" and ".".
bool isPlainCharsetName(QByteArrayView name)
{
    return !name.isEmpty() && name.size() <= 64 && std::all_of(name.cbegin(), name.cend(), [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' || c == '_' ||
               c == '.';
    });
}

class CardBuilder
{
public:
    void add(const Property &property);
    VCardContact finish(const std::function<QString()> &source, int index, VCardReader::Labels *labels);
    bool isEmpty() const { return m_properties == 0; }

private:
    // Most values are UTF-8 as written; those need no decoding step of their own.
    static bool isPlainUtf8(const Property &property)
    {
        return property.encoding == Encoding::none && isUtf8Name(property.charset);
    }
    static QString decodedText(const Property &property);
    static std::optional<QString> text(const Property &property);
    static QStringList structured(const Property &property, int count, bool lists = false);
    void labelled(QList<LabeledValue> &list, const Property &property, QString content);

    VCardContact m_contact;
    QString m_formattedName;
    int m_properties = 0;
    // Groups ("item1") are short: std::string keeps them without an allocation of their own.
    QVarLengthArray<std::pair<std::string, QString>, 4> m_groupLabels;
    // For each grouped value: its list, its position there, its group (labels by group are applied at the end).
    struct Pending
    {
        QList<LabeledValue> *list;
        qsizetype index;
        std::string group;
    };
    QVarLengthArray<Pending, 4> m_pending;
};

std::string groupKey(QByteArrayView group)
{
    std::string key(group.data(), static_cast<size_t>(group.size()));
    for (char &c : key) {
        c = (c >= 'a' && c <= 'z') ? static_cast<char>(c - 'a' + 'A') : c;
    }
    return key;
}

// The value in its character set, escapes still in.
QString CardBuilder::decodedText(const Property &property)
{
    switch (property.encoding) {
    case Encoding::quotedPrintable:
        return VCardReader::decodeCharset(VCardReader::decodeQuotedPrintable(property.rawValue.toByteArray()),
                                          property.charset);
    case Encoding::base64:
        return VCardReader::decodeCharset(QByteArray::fromBase64(property.rawValue.toByteArray()), property.charset);
    case Encoding::none:
        break;
    }
    return VCardReader::decodeCharset(property.rawValue, property.charset);
}

// A single text value; none when it is longer than a value may be.
std::optional<QString> CardBuilder::text(const Property &property)
{
    if (isPlainUtf8(property) && property.rawValue.size() <= VCardReader::maximumValueLength) {
        return plainText(property.rawValue); // never longer in UTF-16 than in bytes
    }
    QString decoded = decodedText(property);
    if (decoded.size() > VCardReader::maximumValueLength) {
        return std::nullopt;
    }
    return plainText(std::move(decoded));
}

// A structured value (N, ADR, ORG): each component is capped on its own, so a long tail of separators costs nothing.
QStringList CardBuilder::structured(const Property &property, int count, bool lists)
{
    // ";", "," and "\" never occur inside a UTF-8 sequence, so plain values are split before they are decoded. Other
    // character sets use these bytes inside their characters (Shift_JIS and Big5 "\"): those are decoded first.
    if (isPlainUtf8(property)) {
        return lists ? components<true>(property.rawValue, count) : components<false>(property.rawValue, count);
    }
    const QString decoded = decodedText(property);
    return lists ? components<true>(QStringView(decoded), count) : components<false>(QStringView(decoded), count);
}

void CardBuilder::labelled(QList<LabeledValue> &list, const Property &property, QString content)
{
    if (content.isEmpty()) {
        return;
    }
    QString label = !property.customLabel.isEmpty() && !property.customLabelIsType ? property.customLabel
                                                                                   : labelForTypes(property.types);
    if (label.isEmpty() && property.customLabelIsType) {
        label = property.customLabel;
    }
    list.append({std::move(label), std::move(content)});
    if (!property.group.isEmpty()) {
        m_pending.append({&list, list.size() - 1, groupKey(property.group)});
    }
}

void CardBuilder::add(const Property &property)
{
    ++m_properties;
    const Field field = fieldNamed(property.name);
    switch (field) {
    case Field::photo:
        if (m_contact.thumbnailImageData.isEmpty()) {
            m_contact.thumbnailImageData = decodePhoto(property);
        }
        break;
    case Field::name: {
        const QStringList parts = structured(property, 5, true);
        m_contact.familyName = parts[0];
        m_contact.givenName = parts[1];
        if (!parts[2].isEmpty() || !parts[3].isEmpty() || !parts[4].isEmpty()) {
            VCardContact::Details &details = m_contact.editDetails();
            details.middleName = parts[2];
            details.namePrefix = parts[3];
            details.nameSuffix = parts[4];
        }
        break;
    }
    case Field::organization:
        m_contact.organizationName = structured(property, 1).constFirst();
        break;
    case Field::address: {
        const QStringList parts = structured(property, 7);
        QStringList lines;
        for (int i = 2; i < 7; ++i) { // street, locality, region, postal code, country
            if (!parts[i].isEmpty()) {
                lines.append(parts[i]);
            }
        }
        labelled(m_contact.editDetails().postalAddresses, property, lines.join(u", "));
        break;
    }
    case Field::phone:
        if (std::optional<QString> number = text(property)) {
            if (number->startsWith(u"tel:", Qt::CaseInsensitive)) {
                number->remove(0, 4);
            }
            // Some mail programs write a field's name where its number would be ("BusinessPhone"): no number.
            if (std::any_of(number->cbegin(), number->cend(), [](QChar c) { return c.isDigit(); })) {
                labelled(m_contact.phoneNumbers, property, std::move(*number));
            }
        }
        break;
    case Field::email:
        if (std::optional<QString> address = text(property)) {
            if (address->startsWith(u"mailto:", Qt::CaseInsensitive)) {
                address->remove(0, 7);
            }
            labelled(m_contact.emailAddresses, property, std::move(*address));
        }
        break;
    case Field::socialProfile:
        if (std::optional<QString> profile = text(property)) {
            labelled(m_contact.editDetails().socialProfiles, property, std::move(*profile));
        }
        break;
    case Field::groupLabel:
        if (!property.group.isEmpty()) {
            if (std::optional<QString> label = text(property)) {
                m_groupLabels.append({groupKey(property.group), std::move(*label)});
            }
        }
        break;
    case Field::identifier:
    case Field::nickname:
    case Field::title:
    case Field::formattedName:
        if (std::optional<QString> value = text(property)) {
            QString &target = field == Field::identifier ? m_contact.identifier
                              : field == Field::nickname ? m_contact.editDetails().nickname
                              : field == Field::title    ? m_contact.editDetails().jobTitle
                                                         : m_formattedName;
            target = std::move(*value);
        }
        break;
    case Field::birthday: {
        const QString value = decodedText(property);
        if (value.size() <= VCardReader::maximumValueLength) {
            m_contact.editDetails().birthday = parseBirthday(value.trimmed());
        }
        break;
    }
    case Field::other:
        break;
    }
}

VCardContact CardBuilder::finish(const std::function<QString()> &source, int index, VCardReader::Labels *labels)
{
    // The last label given to a group counts. A few groups are looked up in place, many through a hash.
    auto groupLabel = [this](const std::string &group) -> const QString * {
        for (auto entry = m_groupLabels.crbegin(); entry != m_groupLabels.crend(); ++entry) {
            if (entry->first == group) {
                return &entry->second;
            }
        }
        return nullptr;
    };
    QHash<QByteArrayView, const QString *> byGroup;
    if (m_groupLabels.size() > 16 && m_pending.size() > 16) {
        for (const auto &[group, label] : std::as_const(m_groupLabels)) {
            byGroup.insert(QByteArrayView(group.data(), static_cast<qsizetype>(group.size())), &label);
        }
    }
    for (const Pending &pending : std::as_const(m_pending)) {
        const QString *label =
            byGroup.isEmpty()
                ? groupLabel(pending.group)
                : byGroup.value(QByteArrayView(pending.group.data(), static_cast<qsizetype>(pending.group.size())));
        if (label && !label->isEmpty()) {
            // The same label in many cards ("Oficina") is kept once.
            (*pending.list)[pending.index].label = labels ? *labels->insert(*label) : *label;
        }
    }
    m_contact.dropEmptyDetails();
    Contact::setFormattedName(m_contact, m_formattedName);
    if (m_contact.identifier.isEmpty()) {
        const QByteArray hash = QCryptographicHash::hash(source().toUtf8(), QCryptographicHash::Sha1).toHex().left(16);
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

QString VCardReader::decodeCharset(QByteArrayView bytes, QByteArrayView charset)
{
    const QByteArrayView name = charset.trimmed();
    if (isUtf8Name(name)) {
        return QString::fromUtf8(bytes); // invalid sequences become U+FFFD
    }
    if (equalsNoCase(name, "ISO-8859-1") || equalsNoCase(name, "LATIN1") || equalsNoCase(name, "ISO8859-1")) {
        return QString::fromLatin1(bytes); // the commonest after UTF-8, and needs no converter
    }
    // Debian's Qt is built with ICU, so QStringDecoder opens every set ICU knows under any of its names (Shift_JIS,
    // SJIS, Big5, GB18030, KOI8-R, windows-1251 …); iconv would have needed our own buffers and error handling.
    if (isPlainCharsetName(name)) {
        QStringDecoder decoder(name.toByteArray().constData());
        if (decoder.isValid()) {
            QString text = decoder.decode(bytes);
            // ICU writes SUB for a byte that is no character of the set; U+FFFD says so as the UTF-8 decoder does.
            text.replace(QChar(0x1A), QChar::ReplacementCharacter);
            return text;
        }
    }
    return QString::fromUtf8(bytes); // a set nobody knows: most often UTF-8 after all
}

QList<VCardContact> VCardReader::read(QByteArrayView data, const QString &source)
{
    return read(data, [&source] { return source; });
}

QList<VCardContact> VCardReader::read(QByteArrayView data, const std::function<QString()> &source, Labels *labels)
{
    QList<VCardContact> cards;
    std::optional<CardBuilder> card;
    int index = 0;

    // The logical line being assembled: a view into the data while it is one physical line, else `joined`.
    QByteArrayView line;
    QByteArray joined;
    bool isJoined = false;
    bool haveLine = false;
    bool quotedPrintable = false;
    bool oversized = false;
    bool isPhoto = false;

    auto flush = [&] {
        if (haveLine && !oversized) {
            const QByteArrayView text = line.trimmed();
            if (equalsNoCase(text, "BEGIN:VCARD")) {
                if (!card) { // a card inside a card is not read as a card
                    card.emplace();
                }
            } else if (equalsNoCase(text, "END:VCARD")) {
                if (card) {
                    cards.append(card->finish(source, index++, labels));
                    card.reset();
                }
            } else if (card && !text.isEmpty()) {
                if (const std::optional<Property> property = parseLine(line)) {
                    card->add(*property);
                }
            }
        }
        line = {};
        isJoined = false;
        haveLine = false;
        oversized = false;
    };

    const char *const bytes = data.data();
    const qsizetype size = data.size();
    qsizetype position = 0;
    while (position < size) {
        // One physical line, ended by CRLF, LF or CR.
        qsizetype end = find(data, '\n', position, size);
        end = end < 0 ? size : end;
        if (const qsizetype cr = find(data, '\r', position, end); cr >= 0) {
            end = cr;
        }
        const QByteArrayView physical(bytes + position, end - position);
        position = end + ((end + 1 < size && bytes[end] == '\r' && bytes[end + 1] == '\n') ? 2 : 1);

        const bool continuation = !physical.isEmpty() && (physical[0] == ' ' || physical[0] == '\t');
        const bool softBreak = haveLine && !oversized && quotedPrintable && line.endsWith('=');
        if (haveLine && (continuation || softBreak)) {
            if (oversized) {
                continue; // the rest of a dropped line
            }
            if (!isJoined) {
                joined.resize(0); // keeps its storage from one joined line to the next
                joined.append(line);
                isJoined = true;
            }
            QByteArrayView piece = physical;
            if (softBreak) {
                joined.chop(1); // quoted-printable soft break: the next line goes on without a separator
            } else {
                piece = physical.sliced(1); // folding: one blank is dropped
            }
            if (joined.size() + piece.size() > (isPhoto ? maximumFileSize : maximumLineLength)) {
                oversized = true; // dropped, with its continuation lines
                joined.resize(0);
                line = {};
                continue;
            }
            joined.append(piece);
            line = joined;
            continue;
        }
        flush();
        haveLine = true;
        // The head tells how the value is written; it is short, unlike the value.
        const qsizetype colon = find(physical, ':', 0, physical.size());
        const QByteArrayView head = physical.first(colon < 0 ? std::min<qsizetype>(physical.size(), 4096) : colon);
        quotedPrintable = containsNoCase(head, "QUOTED-PRINTABLE");
        const qsizetype semicolon = find(head, ';', 0, head.size());
        const QByteArrayView name = head.first(semicolon < 0 ? head.size() : semicolon);
        auto endsWithNoCase = [&name](QByteArrayView suffix) {
            return name.size() >= suffix.size() && equalsNoCase(name.last(suffix.size()), suffix);
        };
        isPhoto = endsWithNoCase("PHOTO") || endsWithNoCase("LOGO");
        if (physical.size() > (isPhoto ? maximumFileSize : maximumLineLength)) {
            oversized = true;
            continue;
        }
        line = physical;
    }
    flush();
    if (card && !card->isEmpty()) { // no END:VCARD before the end of the file
        cards.append(card->finish(source, index, labels));
    }
    return cards;
}

bool VCardReader::readRegularFile(int directory, const char *name, QByteArray &buffer)
{
    // Non-blocking, so that a FIFO put in the file's place is not waited on; it is then refused as not regular.
    const int fd = ::openat(directory, name, O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
    if (fd < 0) {
        return false;
    }
    struct stat status = {};
    bool ok = ::fstat(fd, &status) == 0 && S_ISREG(status.st_mode) && status.st_size <= maximumFileSize;
    if (ok) {
        // What the size says, plus one byte to notice a file that grew past the limit meanwhile. A regular file reads
        // short only at its end, so a file that did not grow takes a single read.
        const qsizetype expected = static_cast<qsizetype>(status.st_size);
        buffer.resize(expected + 1);
        qsizetype filled = 0;
        while (filled < buffer.size()) {
            const ssize_t got = ::read(fd, buffer.data() + filled, static_cast<size_t>(buffer.size() - filled));
            if (got < 0 && errno == EINTR) {
                continue;
            }
            if (got <= 0) {
                ok = got == 0;
                break;
            }
            filled += got;
            if (filled == buffer.size() && filled <= maximumFileSize) {
                buffer.resize(std::min(buffer.size() * 2, maximumFileSize + 1)); // it grew: read on to the limit
            } else if (filled >= expected && filled < buffer.size()) {
                break; // the end
            }
        }
        ok = ok && filled <= maximumFileSize;
        buffer.resize(ok ? filled : 0);
    }
    ::close(fd);
    return ok;
}

QList<VCardContact> VCardReader::readFile(const QString &path)
{
    QByteArray buffer;
    if (!readRegularFile(AT_FDCWD, QFile::encodeName(path).constData(), buffer)) {
        return {};
    }
    return read(buffer, QFileInfo(path).absoluteFilePath());
}
