#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QString>

#include <optional>

/// Reads the fields of JSON objects as a strict decoder does: a required key must be there and not null, every value
/// must have the expected type, and an integer field must hold an integral number. The first failure is kept and
/// every later read returns a default, so a decoder reads all its fields and asks once at the end.
class StrictJson
{
public:
    enum class Failure
    {
        none,
        missing,     // a required key is absent or null
        wrongFormat, // not JSON, or a value of the wrong type, or a fraction in an integer field
    };

    /// The top-level object of the text; a text that is no JSON object fails with wrongFormat.
    QJsonObject document(const QByteArray &json);

    qint64 integer(const QJsonObject &object, const QString &key);
    std::optional<qint64> optionalInteger(const QJsonObject &object, const QString &key);
    double number(const QJsonObject &object, const QString &key);
    std::optional<double> optionalNumber(const QJsonObject &object, const QString &key);
    QString text(const QJsonObject &object, const QString &key);
    QJsonObject object(const QJsonObject &object, const QString &key);
    std::optional<QJsonObject> optionalObject(const QJsonObject &object, const QString &key);
    QJsonArray array(const QJsonObject &object, const QString &key);
    /// An element of a list that must be an object.
    QJsonObject element(const QJsonValue &value);

    bool ok() const { return m_failure == Failure::none; }
    Failure failure() const { return m_failure; }
    /// What a decoding failure says to the user.
    QString failureText() const;

private:
    // The value under the key, or nothing when absent or null; a required read records the absence.
    std::optional<QJsonValue> lookUp(const QJsonObject &object, const QString &key, bool required);
    void fail(Failure failure);
    std::optional<qint64> toInteger(const QJsonValue &value);
    std::optional<double> toNumber(const QJsonValue &value);

    Failure m_failure = Failure::none;
};
