#pragma once

#include "VCardContact.h"

#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>

#include <memory>

/// A number with its kind. Part of the contact record, though nothing fills it today.
struct NumberStruct
{
    QString value;
    QString type;
    friend bool operator==(const NumberStruct &, const NumberStruct &) = default;
};

/// Which of a contact's details the user picked in a contact row.
enum class TypeOfContactDetails
{
    phoneNumbers,
    eMailAccounts,
    socialAccounts
};

/// A contact as the screens pass it around: the address book's record and four collections that are kept empty;
/// screens compute a contact's numbers and addresses on demand with the label groupings.
///
/// The record is shared and never changed, so copying a contact (search results, favourites) costs one reference.
struct Contact
{
    Contact();
    explicit Contact(VCardContact contact);
    explicit Contact(SharedVCardContact contact);

    /// The address book's record, as fetched.
    const VCardContact &contact() const { return *m_contact; }
    QList<NumberStruct> phoneNumbers;
    QMap<QString, QStringList> alleMails;
    QMap<QString, QStringList> allSocialAccounts;
    QMap<QString, QString> allAdresses;

    /// The record itself, shared.
    const SharedVCardContact &record() const { return m_contact; }
    /// The address book's identifier of the contact.
    const QString &id() const { return m_contact->identifier; }

    /// The name a contact goes by wherever a whole name is shown or searched: the one its card gives (vCard FN, the
    /// name its owner chose) when it has one, else the structured name; empty when there is neither.
    static QString fullName(const VCardContact &contact);
    QString fullName() const { return fullName(*m_contact); }
    /// Prefix, given, middle, family and suffix names joined by single blanks; empty when all are empty.
    static QString structuredName(const VCardContact &contact);
    /// For whoever builds a record from an address book, once its structured names are set: gives it the name its
    /// source writes out whole (a vCard's FN, a full-name field). A record without structured names takes them from
    /// it (the last word the family name, the rest the given name) so that it sorts and files, unless it is the
    /// organisation's name. The name itself is kept only where it differs from the structured name.
    static void setFormattedName(VCardContact &contact, const QString &formattedName);
    /// "Contact(id: …, name: …)", for traces.
    QString description() const;

private:
    SharedVCardContact m_contact;
};

namespace ContactLabels {
/// The user-visible form of a stored label: "_$!<Mobile>!$_" is "mobile", "_$!<HomeFAX>!$_" "home fax"; a custom
/// label is shown as written.
QString localizedString(const QString &label);
/// The contact's numbers grouped by visible label (no label: "other"), each group in stored order.
QMap<QString, QStringList> phoneNumbersByLabel(const VCardContact &contact);
QMap<QString, QStringList> emailAddressesByLabel(const VCardContact &contact);
} // namespace ContactLabels
