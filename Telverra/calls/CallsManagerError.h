#pragma once

#include <QCoreApplication>
#include <QString>

/// A launch failure; each case carries one text and shows it behind a fixed prefix, but for the two cases of the
/// desktop (no application for the address, or one that could not start), whose text is a whole sentence that tells
/// the user what to do and is shown as it stands. The English text is the one printed; the user reads it in their
/// language.
class CallsManagerError
{
    Q_DECLARE_TR_FUNCTIONS(CallsManagerError)

public:
    enum class Case
    {
        invalidNumber,
        invalidTelcoType,
        errorCreatingCall,
        errorCreatingTelco,
        errorCreatingeMail,
        noApplication,
        applicationFailed,
    };

    /// `localizedText` is the carried text in the user's language; none means the same as `text`.
    CallsManagerError(Case errorCase, const QString &text, const QString &localizedText = {})
        : m_case(errorCase)
        , m_text(text)
        , m_localizedText(localizedText.isNull() ? text : localizedText)
    {}

    static CallsManagerError invalidNumber(const QString &text, const QString &localizedText = {})
    {
        return {Case::invalidNumber, text, localizedText};
    }
    static CallsManagerError invalidTelcoType(const QString &text, const QString &localizedText = {})
    {
        return {Case::invalidTelcoType, text, localizedText};
    }
    static CallsManagerError errorCreatingCall(const QString &text, const QString &localizedText = {})
    {
        return {Case::errorCreatingCall, text, localizedText};
    }
    static CallsManagerError errorCreatingTelco(const QString &text, const QString &localizedText = {})
    {
        return {Case::errorCreatingTelco, text, localizedText};
    }
    static CallsManagerError errorCreatingeMail(const QString &text, const QString &localizedText = {})
    {
        return {Case::errorCreatingeMail, text, localizedText};
    }
    static CallsManagerError noApplication(const QString &text, const QString &localizedText = {})
    {
        return {Case::noApplication, text, localizedText};
    }
    static CallsManagerError applicationFailed(const QString &text, const QString &localizedText = {})
    {
        return {Case::applicationFailed, text, localizedText};
    }

    Case errorCase() const { return m_case; }
    /// The text the case carries, without its prefix.
    const QString &text() const { return m_text; }
    /// The user-facing text: the case's prefix followed by the carried text, in English (the trace line).
    QString errorDescription() const;
    /// The same in the user's language: what the user is shown.
    QString localizedDescription() const;

    friend bool operator==(const CallsManagerError &, const CallsManagerError &) = default;

private:
    Case m_case;
    QString m_text;
    QString m_localizedText;
};
