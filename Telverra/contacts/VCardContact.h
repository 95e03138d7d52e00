#pragma once

#include <QByteArray>
#include <QDate>
#include <QList>
#include <QString>

#include <memory>
#include <optional>

/// A value of a contact with its label, as the address book stores it: Apple-style label tokens such as
/// "_$!<Mobile>!$_" for the standard kinds, the user's own text for a custom label, or empty for none.
struct LabeledValue
{
    QString label;
    QString value;
    friend bool operator==(const LabeledValue &, const LabeledValue &) = default;
};

/// One person or company as the address book holds it.
struct VCardContact
{
    QString identifier;
    QString namePrefix;
    QString givenName;
    QString middleName;
    QString familyName;
    QString nameSuffix;
    QString nickname;
    QString organizationName;
    QString jobTitle;
    std::optional<QDate> birthday;
    QList<LabeledValue> phoneNumbers;
    QList<LabeledValue> emailAddresses;
    QList<LabeledValue> postalAddresses;
    QList<LabeledValue> socialProfiles;
    /// The embedded picture's bytes, when the card carries one (remote pictures are never fetched).
    QByteArray thumbnailImageData;

    bool imageDataAvailable() const { return !thumbnailImageData.isEmpty(); }
};

/// A contact as an address book hands it out: read once, then shared and never changed, so that lists of thousands
/// of contacts are passed around, sorted and wrapped without copying a single one.
using SharedVCardContact = std::shared_ptr<const VCardContact>;
