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
///
/// What every list shows is kept in the record; what few cards carry (name prefixes and suffixes, middle names,
/// nicknames, titles, birthdays, postal addresses, social profiles) is kept apart and only when there is any: an
/// address book of 100,000 contacts is held in about 17 MB less.
struct VCardContact
{
    struct Details
    {
        /// The name the card itself gives (vCard FN), kept only where it differs from the one the structured names
        /// make: see Contact::setFormattedName.
        QString formattedName;
        QString namePrefix;
        QString middleName;
        QString nameSuffix;
        QString nickname;
        QString jobTitle;
        std::optional<QDate> birthday;
        QList<LabeledValue> postalAddresses;
        QList<LabeledValue> socialProfiles;

        bool isEmpty() const
        {
            return formattedName.isEmpty() && namePrefix.isEmpty() && middleName.isEmpty() && nameSuffix.isEmpty() &&
                   nickname.isEmpty() && jobTitle.isEmpty() && !birthday && postalAddresses.isEmpty() &&
                   socialProfiles.isEmpty();
        }
    };

    QString identifier;
    QString givenName;
    QString familyName;
    QString organizationName;
    QList<LabeledValue> phoneNumbers;
    QList<LabeledValue> emailAddresses;
    /// The embedded picture's bytes, when the card carries one (remote pictures are never fetched).
    QByteArray thumbnailImageData;

    bool imageDataAvailable() const { return !thumbnailImageData.isEmpty(); }
    /// The rarer details (all empty when the card has none).
    const Details &details() const
    {
        static const Details none;
        return m_details ? *m_details : none;
    }
    /// For the one who builds the record.
    Details &editDetails()
    {
        if (!m_details) {
            m_details = std::make_shared<Details>();
        }
        return *m_details;
    }
    void dropEmptyDetails()
    {
        if (m_details && m_details->isEmpty()) {
            m_details.reset();
        }
    }

private:
    std::shared_ptr<Details> m_details;
};

/// A contact as an address book hands it out: read once, then shared and never changed, so that lists of thousands
/// of contacts are passed around, sorted and wrapped without copying a single one.
using SharedVCardContact = std::shared_ptr<const VCardContact>;
