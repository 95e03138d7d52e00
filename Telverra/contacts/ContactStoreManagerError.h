#pragma once

#include <QCoreApplication>
#include <QString>

/// An address-book failure, published for the screens to show.
class ContactStoreManagerError
{
    Q_DECLARE_TR_FUNCTIONS(ContactStoreManagerError)

public:
    enum class Case
    {
        fetchError,
        containerError,
        contactWithContactIDNotFound,
        permissionError
    };

    static ContactStoreManagerError fetchError(const QString &underlying) { return {Case::fetchError, underlying}; }
    static ContactStoreManagerError containerError(const QString &underlying)
    {
        return {Case::containerError, underlying};
    }
    static ContactStoreManagerError contactWithContactIDNotFound(const QString &underlying)
    {
        return {Case::contactWithContactIDNotFound, underlying};
    }
    static ContactStoreManagerError permissionError() { return {Case::permissionError, {}}; }

    Case errorCase() const { return m_case; }
    /// The underlying error's description; empty for permissionError.
    const QString &underlying() const { return m_underlying; }
    /// The identity used when the error is shown as an alert ("PermisionError" is spelt so on purpose).
    QString id() const;
    /// In English, as printed.
    QString description() const;
    /// What the user is shown: the same in their language (the underlying error as it came).
    QString localizedDescription() const;

    friend bool operator==(const ContactStoreManagerError &, const ContactStoreManagerError &) = default;

private:
    ContactStoreManagerError(Case errorCase, const QString &underlying)
        : m_case(errorCase)
        , m_underlying(underlying)
    {}

    const char *text() const;

    Case m_case;
    QString m_underlying;
};
