#pragma once

#include <QString>

/// A launch failure; each case carries one text and shows it behind a fixed prefix, but for the two cases of the
/// desktop (no application for the address, or one that could not start), whose text is a whole sentence that tells
/// the user what to do and is shown as it stands.
class CallsManagerError
{
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

    CallsManagerError(Case errorCase, const QString &text)
        : m_case(errorCase)
        , m_text(text)
    {}

    static CallsManagerError invalidNumber(const QString &text) { return {Case::invalidNumber, text}; }
    static CallsManagerError invalidTelcoType(const QString &text) { return {Case::invalidTelcoType, text}; }
    static CallsManagerError errorCreatingCall(const QString &text) { return {Case::errorCreatingCall, text}; }
    static CallsManagerError errorCreatingTelco(const QString &text) { return {Case::errorCreatingTelco, text}; }
    static CallsManagerError errorCreatingeMail(const QString &text) { return {Case::errorCreatingeMail, text}; }
    static CallsManagerError noApplication(const QString &text) { return {Case::noApplication, text}; }
    static CallsManagerError applicationFailed(const QString &text) { return {Case::applicationFailed, text}; }

    Case errorCase() const { return m_case; }
    /// The text the case carries, without its prefix.
    const QString &text() const { return m_text; }
    /// The user-facing text: the case's prefix followed by the carried text.
    QString errorDescription() const;

    friend bool operator==(const CallsManagerError &, const CallsManagerError &) = default;

private:
    Case m_case;
    QString m_text;
};
