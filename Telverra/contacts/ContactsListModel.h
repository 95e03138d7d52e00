#pragma once

#include "Contact.h"
#include "common/KeyedListModel.h"

#include <QFutureWatcher>
#include <QStringList>

class Preferences;

/// The contacts screen's list: the contacts shown, in lettered sections (a "letter" role for the view's sections), one
/// row per contact and section, so a name filed under two letters has two rows. A long list has its sections worked
/// out away from the main thread; the rows change when they are ready.
///
/// A row's quick actions are the ones the preferences enable when the row is read, so a change in the settings shows
/// on the rows drawn after it (and at once on the rows in view).
class ContactsListModel : public KeyedListModel
{
    Q_OBJECT
    /// The number of contacts shown (a contact in two sections counts once).
    Q_PROPERTY(int contactCount READ contactCount NOTIFY contactCountChanged)
    /// The index letters, in order.
    Q_PROPERTY(QStringList letters READ letters NOTIFY lettersChanged)
public:
    enum Role
    {
        identifierRole = Qt::UserRole + 1,
        nameRole,
        letterRole,
        initialsRole,
        isCompanyRole,
        photoRole, // "image://contactphoto/…" when the card has a picture, else empty
        phoneTagsRole,
        emailTagsRole,
        quickActionsRole, // the enabled actions' call types, in the row's order ("telephone", "mail", …)
    };

    /// Lists of this many contacts or more have their sections made on another thread.
    static constexpr qsizetype backgroundThreshold = 2000;

    /// `lettered` false: one row per contact, in list order, without sections (the favourite contacts).
    explicit ContactsListModel(Preferences &preferences, bool lettered = true, QObject *parent = nullptr);

    /// The list to show, in its order.
    void setContacts(const QList<Contact> &contacts);

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    int contactCount() const { return m_contactCount; }
    const QStringList &letters() const { return m_letters; }
    /// The first row of a letter's section, or -1.
    Q_INVOKABLE int firstRowOfLetter(const QString &letter) const;
    /// The contact of a row, or nothing.
    std::optional<Contact> contactAt(int row) const;

    /// The initials an avatar shows: the first character of the given name, then of the family name.
    static QString initials(const VCardContact &contact);
    /// The name a row shows: the full name, or the organisation for a company.
    static QString displayName(const VCardContact &contact);
    /// The picture's address for the "contactphoto" image provider, or empty when the card has none.
    static QString photoSource(const SharedVCardContact &contact);

Q_SIGNALS:
    void contactCountChanged();
    void lettersChanged();

private:
    struct Row
    {
        SharedVCardContact record;
        qint32 section = 0;
        bool underNumbers = false; // in the "#" section: a contact is listed at most there and under its own letter
        qint32 occurrence = 0;     // in a plain list, the same contact's first, second, … row
    };
    struct Computed
    {
        QList<Row> rows;
        QStringList letters;
        int contactCount = 0;
    };
    static Computed compute(const QList<SharedVCardContact> &records, bool lettered);
    void apply(Computed computed);
    QVariantList quickActions() const;

    Preferences &m_preferences;
    bool m_lettered;
    QList<Row> m_rows;
    QStringList m_letters;
    int m_contactCount = 0;
    quint64 m_generation = 0;
};
