#include "Contact.h"

#include <algorithm>
#include <array>

Contact::Contact()
    : m_contact(std::make_shared<const VCardContact>())
{}

Contact::Contact(VCardContact contact)
    : m_contact(std::make_shared<const VCardContact>(std::move(contact)))
{}

Contact::Contact(SharedVCardContact contact)
    : m_contact(contact ? std::move(contact) : std::make_shared<const VCardContact>())
{}

namespace {
// The structured name's parts, in the order they are written out.
std::array<const QString *, 5> nameParts(const VCardContact &contact)
{
    const VCardContact::Details &details = contact.details();
    return {&details.namePrefix, &contact.givenName, &details.middleName, &contact.familyName, &details.nameSuffix};
}

// Whether the text is the structured name, without writing that out: true for nearly every card read.
bool isStructuredName(const VCardContact &contact, QStringView text)
{
    qsizetype at = 0;
    for (const QString *part : nameParts(contact)) {
        if (part->isEmpty()) {
            continue;
        }
        if (at > 0) {
            if (at >= text.size() || text[at] != u' ') {
                return false;
            }
            ++at;
        }
        if (text.size() - at < part->size() || text.sliced(at, part->size()) != *part) {
            return false;
        }
        at += part->size();
    }
    return at == text.size();
}
} // namespace

QString Contact::fullName(const VCardContact &contact)
{
    const QString &formatted = contact.details().formattedName;
    return formatted.isEmpty() ? structuredName(contact) : formatted;
}

QString Contact::structuredName(const VCardContact &contact)
{
    QStringList parts;
    for (const QString *part : nameParts(contact)) {
        if (!part->isEmpty()) {
            parts.append(*part);
        }
    }
    return parts.join(u' ');
}

void Contact::setFormattedName(VCardContact &contact, const QString &formattedName)
{
    if (formattedName.isEmpty()) {
        return;
    }
    const auto parts = nameParts(contact);
    const bool unnamed = std::all_of(parts.cbegin(), parts.cend(), [](const QString *part) { return part->isEmpty(); });
    if (unnamed && formattedName != contact.organizationName) {
        const qsizetype space = formattedName.lastIndexOf(u' ');
        contact.familyName = space < 0 ? formattedName : formattedName.sliced(space + 1);
        contact.givenName = space < 0 ? QString() : formattedName.first(space).trimmed();
    }
    if (!isStructuredName(contact, formattedName)) {
        contact.editDetails().formattedName = formattedName;
    }
}

QString Contact::description() const
{
    return u"Contact(id: " + id() + u", name: " + fullName() + u')';
}

namespace ContactLabels {

QString localizedString(const QString &label)
{
    static const QMap<QString, QString> standard = {
        {QStringLiteral("_$!<Mobile>!$_"), QStringLiteral("mobile")},
        {QStringLiteral("_$!<iPhone>!$_"), QStringLiteral("iPhone")},
        {QStringLiteral("_$!<Main>!$_"), QStringLiteral("main")},
        {QStringLiteral("_$!<HomeFAX>!$_"), QStringLiteral("home fax")},
        {QStringLiteral("_$!<WorkFAX>!$_"), QStringLiteral("work fax")},
        {QStringLiteral("_$!<OtherFAX>!$_"), QStringLiteral("other fax")},
        {QStringLiteral("_$!<Pager>!$_"), QStringLiteral("pager")},
        {QStringLiteral("_$!<Home>!$_"), QStringLiteral("home")},
        {QStringLiteral("_$!<Work>!$_"), QStringLiteral("work")},
        {QStringLiteral("_$!<Other>!$_"), QStringLiteral("other")},
    };
    const auto found = standard.constFind(label);
    if (found != standard.cend()) {
        return *found;
    }
    if (label.startsWith(u"_$!<") && label.endsWith(u">!$_") && label.size() > 8) {
        return label.sliced(4, label.size() - 8).toLower(); // another standard token ("_$!<School>!$_")
    }
    return label;
}

namespace {
QMap<QString, QStringList> byLabel(const QList<LabeledValue> &values)
{
    QMap<QString, QStringList> groups;
    for (const LabeledValue &entry : values) {
        QString key = localizedString(entry.label);
        if (key.isEmpty()) {
            key = QStringLiteral("other");
        }
        groups[key].append(entry.value);
    }
    return groups;
}
} // namespace

QMap<QString, QStringList> phoneNumbersByLabel(const VCardContact &contact)
{
    return byLabel(contact.phoneNumbers);
}

QMap<QString, QStringList> emailAddressesByLabel(const VCardContact &contact)
{
    return byLabel(contact.emailAddresses);
}

} // namespace ContactLabels
