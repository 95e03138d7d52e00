#include "Contact.h"

Contact::Contact()
    : m_contact(std::make_shared<const VCardContact>())
{}

Contact::Contact(VCardContact contact)
    : m_contact(std::make_shared<const VCardContact>(std::move(contact)))
{}

Contact::Contact(SharedVCardContact contact)
    : m_contact(contact ? std::move(contact) : std::make_shared<const VCardContact>())
{}

QString Contact::fullName(const VCardContact &contact)
{
    QStringList parts;
    for (const QString *part : {&contact.details().namePrefix, &contact.givenName, &contact.details().middleName,
                                &contact.familyName, &contact.details().nameSuffix}) {
        if (!part->isEmpty()) {
            parts.append(*part);
        }
    }
    return parts.join(u' ');
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
